#pragma once

#include <opencv2/core.hpp>

/// Pixels of a row that the weights treat together.
constexpr int blockSize = 16;

/// What is known of the values of a block.
enum class BlockKind : uchar { AllZero, AllOne, Mixed };

constexpr int blocksFor(int width) { return (width + blockSize - 1) / blockSize; }

/// Makes `picture` one whose rows can be read and written up to the end of their last block. Keeps
/// it if it already is one of this size.
inline void createPadded(cv::Mat &picture, cv::Size size, int type)
{
    if (picture.size() == size && picture.type() == type && picture.isSubmatrix())
        return;
    const int columns = (blocksFor(size.width) + 1) * blockSize;
    picture = cv::Mat(size.height, columns, type, cv::Scalar()).colRange(0, size.width);
}
