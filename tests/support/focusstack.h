#pragma once

#include <opencv2/core.hpp>

/// Drawn pictures for the fusion: a textured surface seen with its focus at different heights.
namespace focusstack {

/// A sharp colour picture with detail at several scales.
cv::Mat surface(cv::Size size, unsigned seed);

/// The surface as a camera with a shallow focus sees it: sharp around one height, blurred with the
/// distance from it, a little sensor noise over it.
/// @param index  position of the focus, 0 to count - 1, from the left edge to the right one
cv::Mat frame(const cv::Mat &surface, int index, int count);

} // namespace focusstack
