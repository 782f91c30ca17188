#pragma once

#include <opencv2/core.hpp>

/// The sum of the absolute Sobel gradients along both directions, |gx| + |gy|, for some rows of a
/// picture: to the last bit as two calls of `cv::Sobel` (3 by 3, default border) give it, in one
/// pass.
/// @param picture    `CV_32F`
/// @param rows       the rows wanted
/// @param magnitude  `CV_32F`, receives them from its first row on
void gradientMagnitude(const cv::Mat &picture, cv::Range rows, const cv::Mat &magnitude);
