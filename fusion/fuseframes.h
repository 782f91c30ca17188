#pragma once

#include <opencv2/core.hpp>

#include <array>
#include <iosfwd>

/// Working pictures of a fusion, kept from one to the next so that a sweep allocates them once.
struct FusionBuffers
{
    std::array<cv::Mat, 2> gradients;
    cv::Mat selection;
};

/// Fuses two frames, pixel by pixel, into one that shows each place from the frame that has more
/// detail there.
///
/// A variant of guided-filter fusion (see saliency.h for the method and what differs): no base and
/// detail layers, and the guide is a frame's gradient map instead of the frame.
/// @param frames  `CV_8UC3` in BGR order, of one size, at least 10 rows; otherwise throws
///                `cv::Exception`. Equal saliency gives a pixel to the first.
/// @param out     receives the picture; may be one of the frames
/// @param mode    1: weights are clamped to 1 and divided by their sum; 2: clamped only;
///                any other: as the filter left them
/// @param times   receives the stages' running times, without line ends
void fuseFrames(const std::array<cv::Mat, 2> &frames, cv::Mat &out, int mode,
                FusionBuffers &buffers, std::ostream &times);
