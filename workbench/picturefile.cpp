#include "workbench/picturefile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>
#include <QtEndian>

#include <cmath>
#include <limits>

namespace {

constexpr qint64 maximumPixels = qint64(1) << 27;

/// A density as the header of a JPEG file holds it (JFIF 1.02, page 5).
struct JfifDensity
{
    quint8 unit = 0; // 0 tells proportions only, 1 dots per inch, 2 dots per centimetre
    quint16 dots = 1;
};

double relativeError(double dots)
{
    const double rounded = std::round(dots);
    if (rounded < 1.0 || rounded > std::numeric_limits<quint16>::max())
        return std::numeric_limits<double>::infinity();
    return std::abs(rounded - dots) / dots;
}

/// The nearest density of 16 bits; none when the scale is finer or coarser than they reach.
JfifDensity jfifDensity(double dotsPerMetre)
{
    const double perInch = dotsPerMetre * 0.0254;
    const double perCentimetre = dotsPerMetre * 0.01;
    if (relativeError(perInch) < relativeError(perCentimetre))
        return {1, quint16(std::lround(perInch))};
    if (std::isfinite(relativeError(perCentimetre)))
        return {2, quint16(std::lround(perCentimetre))};
    return {};
}

void setJpegScale(QByteArray &file, double dotsPerMetre)
{
    constexpr int unitAt = 13; // start of image, marker, length, "JFIF\0", version
    if (file.size() < unitAt + 5 || file.mid(6, 4) != "JFIF")
        return;
    const JfifDensity density = dotsPerMetre > 0.0 ? jfifDensity(dotsPerMetre) : JfifDensity();
    file[unitAt] = char(density.unit);
    qToBigEndian(density.dots, file.data() + unitAt + 1);
    qToBigEndian(density.dots, file.data() + unitAt + 3);
}

void removePngScale(QByteArray &file)
{
    // A file is a signature of 8 bytes and chunks: length, name, data, checksum.
    for (int at = 8; at + 12 <= file.size();) {
        const int chunkSize = qFromBigEndian<qint32>(file.constData() + at) + 12;
        if (file.mid(at + 4, 4) == "pHYs") {
            file.remove(at, chunkSize);
            return;
        }
        at += chunkSize;
    }
}

void removeBmpScale(QByteArray &file)
{
    constexpr int dotsAt = 38; // behind the compressed size, two numbers of 4 bytes
    if (file.size() >= dotsAt + 8)
        std::fill_n(file.data() + dotsAt, 8, '\0');
}

} // namespace

QPixmap readPicture(const QString &path)
{
    QImageReader reader(path);
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > maximumPixels)
        return {};
    QPixmap picture = QPixmap::fromImage(reader.read());
    picture.setDevicePixelRatio(1.0);
    return picture;
}

bool writePicture(const QImage &picture, const QString &path, int quality, double dotsPerMetre,
                  const char *format)
{
    const QByteArray kind =
        format ? QByteArray(format) : QFileInfo(path).suffix().toLatin1().toLower();
    const bool hasScale = dotsPerMetre >= 1.0 && dotsPerMetre <= std::numeric_limits<int>::max();
    QImage scaled = picture;
    if (hasScale) {
        scaled.setDotsPerMeterX(qRound(dotsPerMetre));
        scaled.setDotsPerMeterY(qRound(dotsPerMetre));
    }

    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, kind);
    writer.setQuality(quality);
    if (kind.isEmpty() || !writer.write(scaled))
        return false;

    // The toolkit writes the screen's density where it knows none.
    QByteArray &bytes = buffer.buffer();
    if (kind == "jpg" || kind == "jpeg")
        setJpegScale(bytes, hasScale ? dotsPerMetre : 0.0);
    else if (kind == "png" && !hasScale)
        removePngScale(bytes);
    else if (kind == "bmp" && !hasScale)
        removeBmpScale(bytes);

    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    // The end alone does not tell whether the file's buffer could be written.
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() &&
           file.commit();
}
