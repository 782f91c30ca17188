#pragma once

#include "fusion/guidedfilterrows.h"

#include <opencv2/core.hpp>

#include <optional>

/// Stage Wbd of the fusion: the weights of one frame, its selection smoothed along the edges of its
/// gradient map, to the last bit as `cv::ximgproc::guidedFilter` gives them (radius 7, epsilon
/// 1e-6 on a scale of 0..1).
class GuidedWeights
{
public:
    enum class Filter {
        Streamed, ///< our own rows, several times as fast
        Library   ///< the library's filter on the whole picture
    };

    /// @param guide       the frame's gradient map, a `CV_32F` padded picture
    /// @param selection   255 where the second frame is chosen, else 0, a `CV_8U` padded picture
    /// @param firstFrame  the weights of the first frame are wanted, not of the second
    GuidedWeights(const cv::Mat &guide, const cv::Mat &selection, bool firstFrame,
                  Filter filter = exactFilter());

    /// The next row, from the top.
    /// @param weights  room for whole blocks
    /// @param blocks   receives what is known of each block of the row
    void next(float *weights, BlockKind *blocks);

    /// The streamed filter where it gives the library's bits, which depend on the processor's
    /// arithmetic; otherwise the library's. Found out once, on a small picture.
    static Filter exactFilter();

private:
    std::optional<GuidedFilterRows> streamed;
    cv::Mat whole; ///< the library's weights
    int row = 0;
};
