#pragma once

#include <opencv2/core.hpp>

#include <array>

/// Stage norm: clamps two rows of weights to at most 1 (modes 1 and 2) and divides each by their
/// sum (mode 1). Negative weights stay, and a sum of zero is not guarded against.
void normaliseWeights(float *first, float *second, int count, int mode);

/// Stage lastF: a row of the fused picture, the sum of weight times pixel, rounded to the nearest
/// level and saturated to 0..255.
/// @param out  three bytes a pixel; may be one of the frames
void reconstruct(const std::array<const uchar *, 2> &frames,
                 const std::array<const float *, 2> &weights, uchar *out, int count);
