#include "fusion/pictureconversion.h"

#include <opencv2/imgproc.hpp>

#include <QVector>

#include <cstring>

namespace {

const QVector<QRgb> &grayTable()
{
    static const QVector<QRgb> table = [] {
        QVector<QRgb> colours(256);
        for (int i = 0; i < 256; ++i)
            colours[i] = qRgb(i, i, i);
        return colours;
    }();
    return table;
}

QImage grayImage(const cv::Mat &mat)
{
    QImage image(mat.cols, mat.rows, QImage::Format_Indexed8);
    image.setColorTable(grayTable());
    for (int y = 0; y < mat.rows; ++y)
        std::memcpy(image.scanLine(y), mat.ptr(y), size_t(mat.cols));
    return image;
}

/// A header over the image's own pixels.
cv::Mat pixelsOf(QImage &image, int type)
{
    uchar *bits = image.bits(); // detaches, which may bring the lines closer together
    return cv::Mat(image.height(), image.width(), type, bits, size_t(image.bytesPerLine()));
}

} // namespace

QImage cvMatToQImage(const cv::Mat &mat)
{
    if (mat.empty())
        return QImage();
    switch (mat.type()) {
    case CV_8UC3:
        // In place although the Mat is const: a live frame is copied once only, by its pixmap.
        cv::cvtColor(mat, mat, cv::COLOR_BGR2RGB);
        return QImage(mat.data, mat.cols, mat.rows, int(mat.step), QImage::Format_RGB888);
    case CV_8UC4:
        return QImage(mat.data, mat.cols, mat.rows, int(mat.step), QImage::Format_ARGB32).copy();
    case CV_8UC1:
        return grayImage(mat);
    default:
        return QImage();
    }
}

cv::Mat qImageToCvMat(QImage &image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied: {
        cv::Mat mat = pixelsOf(image, CV_8UC4);
        cv::cvtColor(mat, mat, cv::COLOR_BGRA2BGR);
        return mat;
    }
    case QImage::Format_RGB888: {
        cv::Mat mat = pixelsOf(image, CV_8UC3);
        cv::cvtColor(mat, mat, cv::COLOR_BGR2RGB);
        return mat;
    }
    case QImage::Format_Indexed8:
        return pixelsOf(image, CV_8UC1);
    default:
        return cv::Mat();
    }
}
