#pragma once

#include <QString>

/// Makes an INI file safe to open with `QSettings`.
///
/// The toolkit builds any type that an "@Variant(...)" in an INI file names, containers with a
/// length of the file's choosing and nested without end included: one line of rubbish can end the
/// program. Of such values the program writes colours and points alone, so in every other one the
/// bracket is replaced in the file, and it reads as plain text from then on.
///
/// @returns the path, or an empty one, with which `QSettings` finds and stores nothing, when
///          something else than a file of at most 16 MiB lies there or it cannot be made safe
QString safeIniFile(const QString &path);
