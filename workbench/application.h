#pragma once

/// What every program with the window does before its QApplication is made.
void prepareApplication();

/// Without a font the whole interface would be empty boxes, which tells nobody what is missing:
/// a line on standard error does.
void warnOfMissingFont();
