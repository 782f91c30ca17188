#pragma once

#include "fusion/blocks.h"

#include <opencv2/core.hpp>

#include <array>
#include <vector>

/// Sums over a square window that moves down a picture, row by row, for the guided filter. Outside
/// the picture its rows and columns are mirrored, the edge included.
///
/// Rows of sums have room for whole blocks and a margin on either side. What stands behind the
/// picture's last column is of no account.

constexpr int windowRadius = 7;
constexpr int windowSide = 2 * windowRadius + 1;
constexpr int windowArea = windowSide * windowSide;
constexpr int windowMargin = windowRadius + 1;

/// A row of values with its margins.
template<typename T>
class MarginRow
{
public:
    MarginRow() = default;
    explicit MarginRow(int width)
        : values(size_t(blocksFor(width) * blockSize + 2 * windowMargin))
    {
        for (int x = -windowMargin; x < 0; ++x)
            mirrored.push_back({x, cv::borderInterpolate(x, width, cv::BORDER_REFLECT)});
        for (int x = width; x < blocksFor(width) * blockSize + windowMargin; ++x)
            mirrored.push_back({x, cv::borderInterpolate(x, width, cv::BORDER_REFLECT)});
    }

    T *data() { return values.data() + windowMargin; }
    const T *data() const { return values.data() + windowMargin; }

    /// Fills what lies beside the picture.
    void mirror()
    {
        T *row = data();
        for (const auto &[outside, inside] : mirrored)
            row[outside] = row[inside];
    }

private:
    std::vector<T> values;
    std::vector<std::pair<int, int>> mirrored;
};

/// Sums of the guide, of the guide where the source is 1, and of the source. The guide is a sum of
/// differences of logarithmic grey levels, which are multiples of 2^-22 and at most 150: all sums
/// are exact, and the order of their terms does not matter.
class GuideSums
{
public:
    struct Block
    {
        std::array<double, blockSize> guide;
        std::array<double, blockSize> product;
        std::array<double, blockSize> source;
    };

    /// @param inverted  the source is 1 where the selection is 0, otherwise where it is 255
    GuideSums(const cv::Mat &guidePicture, const cv::Mat &selectionPicture, bool inverted);

    /// Moves the window's centre to the next row, from the top.
    void nextRow();
    /// Whether the source is constant in the windows of all pixels of a block.
    BlockKind sourceAround(int block) const;
    /// The sums of a block's pixels.
    void sum(int block, Block &sums) const;

private:
    struct Row
    {
        const float *guide;
        const uchar *selection;
    };
    Row mirroredRow(int y) const;
    void exchange(const Row &in, const Row &out);

    cv::Mat guide, selection;
    uchar inversion;
    int row = 0;
    MarginRow<double> guideColumns, productColumns;
    MarginRow<uchar> sourceColumns;
};

/// Sums of the guide's squares, each rounded to a float first. They are not exact: they are added
/// in the library's order, along each row from the left edge and down each column from the top.
class EnergySums
{
public:
    explicit EnergySums(const cv::Mat &guidePicture);

    void nextRow();
    /// Moves the window to the current row for one block; once for every block of a row.
    /// @returns the sums of the block's pixels
    void slide(int block, std::array<double, blockSize> &sums);

private:
    static constexpr int ringRows = 20; ///< a window's rows and the group that is summed ahead

    double *sumsOfRow(int y);
    const double *mirroredRow(int y);
    void sumFourRows(int y);

    cv::Mat guide;
    int row = 0;
    int rowsDone = 0;
    std::array<MarginRow<float>, 4> squares;
    std::vector<double> ring;
    std::vector<double> columns;
    const double *rowIn = nullptr;
    const double *rowOut = nullptr;
};
