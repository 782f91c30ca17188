#pragma once

#include <QColor>
#include <QString>

// What the buttons that show and choose a colour have in common.

/// Style sheet of a button that shows the colour; an invalid one shows black.
QString colourSheet(const QColor &colour);

/// Asks the operator for a colour, starting from white.
/// @returns an invalid colour when the operator cancels
QColor askForColour();
