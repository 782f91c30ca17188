#pragma once

#include <opencv2/core.hpp>

/// Stage S of the fusion: how much detail a frame shows around each pixel.
///
/// After S. Li, X. Kang, J. Hu, "Image Fusion with Guided Filtering", IEEE Transactions on Image
/// Processing 22(7), 2013, whose Gaussian (11 by 11, sigma 5) it keeps. The source is not a
/// Laplacian but the gradient of the logarithmic grey levels, and an 11 by 11 maximum filter
/// stands between the two.

/// Working pictures of a band of rows, reused from band to band.
struct SaliencyBuffers
{
    cv::Mat bgr;
    cv::Mat gray;
    cv::Mat levels;
};

/// Logarithmic grey levels: 0 stays 0, 255 becomes 150.
/// @param rows     the rows wanted; the picture's last row may only come with the 64 before it
/// @param buffers  receives these rows in `levels`, `CV_32F`
void logGray(const cv::Mat &frame, cv::Range rows, SaliencyBuffers &buffers);

/// Sum of the absolute Sobel gradients of the logarithmic grey levels, for some rows of a frame.
/// @param frame     `CV_8UC3` in BGR order
/// @param gradient  `CV_32F` of the frame's size; receives these rows
void gradientMap(const cv::Mat &frame, cv::Range rows, cv::Mat &gradient, SaliencyBuffers &buffers);

/// Maximum over a square of side 2 * radius + 1 wherever that fits into the picture; the outer
/// `radius` pixels keep their values.
/// @param src  `CV_32F` of at least 2 * radius rows, otherwise the library throws
/// @param dst  receives the maxima of these rows
void maxFilter(const cv::Mat &src, cv::Range rows, cv::Mat &dst, int radius);

/// The saliency of some rows of a picture, from its whole gradient map.
/// @param buffer  working picture, which the returned rows belong to
cv::Mat saliency(const cv::Mat &gradient, cv::Range rows, cv::Mat &buffer);
