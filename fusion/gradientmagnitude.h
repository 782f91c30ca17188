#pragma once

#include <opencv2/core.hpp>

/// The sum of the absolute Sobel gradients along both directions, |gx| + |gy|, for some rows of a
/// picture: to the last bit as two calls of `cv::Sobel` (3 by 3, default border) give it, in one
/// pass.
/// @param picture    `CV_32F`
/// @param rows       the rows wanted
/// @param magnitude  `CV_32F`, receives them from its first row on
void gradientMagnitude(const cv::Mat &picture, cv::Range rows, const cv::Mat &magnitude);

/// Whether it is one pass here. Where the library adds in another order, which depends on the
/// processor, `cv::Sobel` itself is called. Found out once, on a small picture.
bool isGradientOnePass();
