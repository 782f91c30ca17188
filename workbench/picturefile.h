#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>

/// Reads a picture file in its own pixels: no suffix of the name changes their density and nothing
/// is kept in a cache, where a file that was just rewritten could be missed.
/// @returns a null pixmap when the file cannot be read or claims more than 2^27 pixels
QPixmap readPicture(const QString &path);

/// Writes a picture file; the format follows from the extension.
/// @param dotsPerMetre  the true scale of the picture; at 0, or where the format cannot carry the
///                      number, the file carries no scale at all
/// @param format  overrules the extension
/// @returns false on an unknown format, an empty picture or a failed write; a file that was there
///          before is then as it was
bool writePicture(const QImage &picture, const QString &path, int quality, double dotsPerMetre,
                  const char *format = nullptr);
