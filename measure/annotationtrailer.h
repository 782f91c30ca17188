#pragma once

#include <QByteArray>
#include <QString>

class QIODevice;

/// Finds the shapes that a picture carries behind its own bytes. The trailer, in big-endian order:
/// the length of the document as a data stream stores it, the document, its length L once more,
/// the number 0x001FF8D8.
/// @returns the JSON document, or an empty array for a plain picture: no or a damaged trailer, an L
///          of 2 or less, beyond the file's start or above 128 MiB, a file that cannot be read
QByteArray readAnnotationTrailer(const QString &path);
/// @param device  open for reading, with random access
QByteArray readAnnotationTrailer(QIODevice &device);
