#pragma once

#include <opencv2/core.hpp>

/// The sharpness of a frame: the sum of its absolute Sobel gradients in both directions, in units
/// of a million grey levels.
/// @param frame  `CV_8UC3` in BGR order, not empty
double sharpness(const cv::Mat &frame);
