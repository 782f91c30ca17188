#pragma once

#include <QByteArray>

/// Unit and the two densities in the header of a JPEG file, in hexadecimal.
inline QByteArray jfifDensity(const QByteArray &jpeg) { return jpeg.mid(13, 5).toHex(); }
