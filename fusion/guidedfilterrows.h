#pragma once

#include "fusion/coefficientmeans.h"
#include "fusion/windowsums.h"

#include <opencv2/core.hpp>

/// The guided filter of K. He, J. Sun, X. Tang, "Guided Image Filtering", ECCV 2010, radius 7, for
/// a source of zeros and ones, streamed by rows. It gives the library's bits: the same operations
/// in the same order, less those that change nothing. Where the source is constant in a whole
/// window its coefficients are exactly 0 and the constant.
class GuidedFilterRows
{
public:
    /// @param guidePicture  `CV_32F`, not negative, a padded picture
    /// @param selection     0 or 255, `CV_8U`, a padded picture
    /// @param inverted      the source is 1 where the selection is 0
    /// @param regularity    epsilon, what is added to the guide's variance
    GuidedFilterRows(const cv::Mat &guidePicture, const cv::Mat &selection, bool inverted,
                     double regularity);

    /// The next row of the filtered source, from the top.
    /// @param filtered  room for whole blocks
    /// @param kinds     what is known of each block
    void next(float *filtered, BlockKind *kinds);

private:
    void nextCoefficients();
    void coefficients(int block, const std::array<double, blockSize> &energy,
                      CoefficientMeans::Block &result);

    cv::Mat guide;
    float epsilon;
    int row = 0;
    int coefficientsDone = 0;
    GuideMeans guideMeans;
    EnergySums energySums;
    CoefficientMeans means;
};
