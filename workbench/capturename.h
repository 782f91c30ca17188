#pragma once

#include <QString>

/// The first free name of the form capture00000.jpg in a directory: one above the highest number
/// that stands at the same place in any JPEG name of the same length.
/// @returns the name without its directory, or an empty string after capture99999.jpg
QString nextCaptureName(const QString &directory);
