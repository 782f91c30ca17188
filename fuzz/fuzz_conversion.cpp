#include "fusion/pictureconversion.h"

#include <QColor>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

/// Deals out the bytes of an input, and zeros behind its end.
class Bytes
{
public:
    Bytes(const uint8_t *bytes, size_t count)
        : data(bytes)
        , size(count)
    {}
    uint8_t next() { return at < size ? data[at++] : 0; }

private:
    const uint8_t *data;
    size_t size;
    size_t at = 0;
};

void check(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

QColor colourOf(const uint8_t *bgr) { return QColor(bgr[2], bgr[1], bgr[0]); }

/// A part of a larger Mat, so that its rows are further apart than they are long.
void convertMat(Bytes &bytes)
{
    static constexpr int types[] = {CV_8UC1, CV_8UC3, CV_8UC4, CV_8UC2, CV_16UC3, CV_32FC1};
    const int type = types[bytes.next() % 6];
    const int rows = bytes.next() % 40;
    const int columns = bytes.next() % 40;
    const int left = bytes.next() % 4;
    const int right = bytes.next() % 4;
    cv::Mat whole(rows, left + columns + right, type);
    for (int y = 0; y < rows; ++y) {
        for (size_t i = 0; i < whole.cols * whole.elemSize(); ++i)
            whole.ptr(y)[i] = bytes.next();
    }
    const cv::Mat mat = whole.colRange(left, left + columns);
    const cv::Mat before = mat.clone();
    const QImage image = cvMatToQImage(mat);

    const bool isKnown = type == CV_8UC1 || type == CV_8UC3 || type == CV_8UC4;
    check(image.isNull() == (!isKnown || rows == 0 || columns == 0));
    if (image.isNull())
        return;
    check(image.size() == QSize(columns, rows));
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            const uint8_t *element = before.ptr(y, x);
            if (type == CV_8UC1)
                check(image.pixel(x, y) == qRgb(*element, *element, *element));
            else if (type == CV_8UC3)
                check(image.pixelColor(x, y) == colourOf(element));
            else
                check(image.pixel(x, y) == qRgba(element[2], element[1], element[0], element[3]));
        }
    }
}

/// A picture over foreign memory with padding behind its lines, or one with its own memory that is
/// shared.
void convertImage(Bytes &bytes)
{
    const auto format = static_cast<QImage::Format>(bytes.next() % QImage::NImageFormats);
    const int width = bytes.next() % 40;
    const int height = bytes.next() % 40;
    const int padding = bytes.next() % 3 * 4;
    const bool isShared = bytes.next() % 2;
    const QImage own(width, height, format);
    const int lineBytes = own.bytesPerLine() + padding;
    std::vector<uchar> memory(size_t(lineBytes * own.height()));
    for (uchar &byte : memory)
        byte = bytes.next();
    QImage image;
    if (!own.isNull())
        image = QImage(memory.data(), width, height, lineBytes, format);
    if (format == QImage::Format_RGB32) { // its fourth byte is 255 by definition
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < width; ++x)
                memory[size_t(y * lineBytes + 4 * x + 3)] = 255;
        }
    }
    const QImage twin = isShared ? image : QImage();
    const QImage before = image.copy();
    const cv::Mat mat = qImageToCvMat(image);

    const bool isKnown = format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
                         format == QImage::Format_ARGB32_Premultiplied ||
                         format == QImage::Format_RGB888 || format == QImage::Format_Indexed8;
    check(mat.empty() == (!isKnown || before.isNull()));
    if (mat.empty())
        return;
    check(mat.size() == cv::Size(width, height));
    for (int y = 0; y < height; ++y) {
        const uchar *line = before.constScanLine(y);
        for (int x = 0; x < width; ++x) {
            const uint8_t *element = mat.ptr(y, x);
            if (format == QImage::Format_Indexed8)
                check(*element == line[x]);
            else if (format == QImage::Format_RGB888)
                check(element[0] == line[3 * x + 2] && element[1] == line[3 * x + 1] &&
                      element[2] == line[3 * x]);
            else
                check(element[0] == line[4 * x] && element[1] == line[4 * x + 1] &&
                      element[2] == line[4 * x + 2]);
        }
    }
    check(!isShared || twin == before);
}

} // namespace

/// The first byte chooses the direction, the next ones kind, sizes and strides, the others fill the
/// picture. Every pixel is compared.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Bytes bytes(data, size);
    if (bytes.next() % 2)
        convertMat(bytes);
    else
        convertImage(bytes);
    return 0;
}
