#pragma once

#include <opencv2/core.hpp>

#include <QImage>

/// The picture of a Mat.
///
/// `CV_8UC3` (BGR): the Mat's own pixels are turned to RGB order in place, and the `Format_RGB888`
/// image lies over them. It is valid only while the Mat lives and is not written to; a caller
/// takes it to a pixmap at once. A Mat that is converted twice comes back with red and blue
/// exchanged each time.
/// `CV_8UC4` (BGRA): an independent `Format_ARGB32` image.
/// `CV_8UC1`: an independent `Format_Indexed8` image with a gray colour table.
/// @returns a null image for any other type and for an empty Mat
QImage cvMatToQImage(const cv::Mat &mat);

/// The Mat of a picture.
///
/// The 32-bit formats `RGB32`, `ARGB32` and `ARGB32_Premultiplied`: an independent `CV_8UC3` in BGR
/// order, alpha dropped.
/// `RGB888`: a `CV_8UC3` in BGR order over the image's pixels, which are left in that order.
/// `Indexed8`: a `CV_8UC1` over the image's pixels; the colour table is ignored.
/// A Mat that shares pixels is valid only while the image lives. A shared image is detached first.
/// @returns an empty Mat for any other format
cv::Mat qImageToCvMat(QImage &image);
