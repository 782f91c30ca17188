#pragma once

#include "fusion/blocks.h"

#include <opencv2/core.hpp>

#include <array>

/// Whether a block of the picture comes from one frame alone: one weight is 0, the other is 1.
constexpr bool isOneSided(BlockKind first, BlockKind second)
{
    return first != BlockKind::Mixed && second != BlockKind::Mixed && first != second;
}

/// Stage norm: clamps two rows of weights to at most 1 (modes 1 and 2) and divides each by their
/// sum (mode 1). Negative weights stay, and a sum of zero is not guarded against.
/// @param kinds  what is known of the blocks; one-sided ones stay as they are in any mode
void normaliseWeights(const std::array<float *, 2> &weights,
                      const std::array<const BlockKind *, 2> &kinds, int count, int mode);

/// Stage lastF: a row of the fused picture, the sum of weight times pixel, rounded to the nearest
/// level and saturated to 0..255.
/// @param frames   three bytes a pixel
/// @param weights  room for whole blocks
/// @param kinds    what is known of the blocks of weights
/// @param out      may be one of the frames
void reconstruct(const std::array<const uchar *, 2> &frames,
                 const std::array<const float *, 2> &weights,
                 const std::array<const BlockKind *, 2> &kinds, uchar *out, int count);
