#include "measure/annotationtrailer.h"

#include <QDataStream>
#include <QFile>

namespace {

constexpr qint32 magicNumber = 0x001FF8D8;
constexpr qint32 longestDocument = 128 << 20; // bytes; five thousand shapes take less than one MiB
constexpr qint64 frame = 12;                  // bytes of a trailer around its document

qint32 readInt(QIODevice &device, qint64 position)
{
    qint32 value = 0;
    QDataStream stream(&device);
    if (device.seek(position))
        stream >> value;
    return value;
}

} // namespace

QByteArray readAnnotationTrailer(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? readAnnotationTrailer(file) : QByteArray();
}

QByteArray readAnnotationTrailer(QIODevice &device)
{
    const qint64 size = device.size();
    if (size < frame || readInt(device, size - 4) != magicNumber)
        return {};
    const qint32 length = readInt(device, size - 8);
    if (length <= 2 || length > longestDocument || length > size - frame)
        return {};
    // The length in front of the document counts for the reading. Where it says more than there
    // is, the stream gives nothing; it never takes more memory than the device has bytes.
    QByteArray document;
    QDataStream stream(&device);
    if (device.seek(size - frame - length))
        stream >> document;
    return document;
}
