#pragma once

#include "fusion/blocks.h"

#include <opencv2/core.hpp>

#include <array>
#include <vector>

/// Sums and means over a square window that moves down a picture, row by row, for the guided
/// filter. Outside the picture its rows and columns are mirrored, the edge included.
///
/// Rows of sums have room for whole blocks and a margin on either side. What stands behind the
/// picture's last column is of no account.

constexpr int windowRadius = 7;
constexpr int windowSide = 2 * windowRadius + 1;
constexpr double windowScale = 1.0 / (windowSide * windowSide);
constexpr int windowMargin = windowRadius + 3; // a pair of windows is moved on by a pair of columns

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
            mirrored.emplace_back(x, cv::borderInterpolate(x, width, cv::BORDER_REFLECT));
        for (int x = width; x < blocksFor(width) * blockSize + windowMargin; ++x)
            mirrored.emplace_back(x, cv::borderInterpolate(x, width, cv::BORDER_REFLECT));
    }

    T *data() { return values.data() + windowMargin; }
    const T *data() const { return values.data() + windowMargin; }

    /// Fills what lies beside the picture.
    void mirror() { mirror(mirrored.size()); }
    void mirrorLeft() { mirror(windowMargin); }

private:
    void mirror(size_t count)
    {
        T *row = data();
        for (size_t i = 0; i < count; ++i)
            row[mirrored[i].first] = row[mirrored[i].second];
    }

    std::vector<T> values;
    std::vector<std::pair<int, int>> mirrored; ///< column outside, column inside; left ones first
};

/// Means of the guide, of the guide where the source is 1, and of the source. The guide is a sum of
/// differences of logarithmic grey levels, which are multiples of 2^-22 and at most 150: all sums
/// are exact, and the order of their terms does not matter.
class GuideMeans
{
public:
    struct Block
    {
        std::array<float, blockSize> guide;
        std::array<float, blockSize> product;
        std::array<float, blockSize> source;
    };

    /// @param inverted  the source is 1 where the selection is 0, otherwise where it is 255
    GuideMeans(const cv::Mat &guidePicture, const cv::Mat &selectionPicture, bool inverted);

    /// Moves the window's centre to the next row, from the top.
    void nextRow();
    /// Whether the source is constant in the windows of all pixels of a block.
    BlockKind sourceAround(int block) const;
    /// The means of a block's pixels; fastest for one block after the other.
    void mean(int block, Block &means);

private:
    struct Row
    {
        const float *guide;
        const uchar *selection;
    };
    /// Column sums, and the sums of the windows around a pair of neighbouring pixels.
    struct Sums
    {
        explicit Sums(int width)
            : columns(width)
        {}

        void begin(int x);
        void meansFrom(int x, float *means);

        MarginRow<double> columns;
        double pair[2];
    };
    Row mirroredRow(int y) const;
    void exchangeSources(const Row &in, const Row &out);
    void exchangeGuides(int block, const Row &in, const Row &out);
    void refresh(int block);

    cv::Mat guide, selection;
    cv::Mat noGuide, noSource;
    Row nothing; ///< a row that adds nothing
    uchar inversion;
    int row = -1;
    Row rowIn, rowOut;
    Sums guideSums, productSums;
    MarginRow<uchar> sourceColumns;
    std::vector<int> refreshed; ///< the row that the guide's columns of each block stand at
    int nextBlock = -1;         ///< the block that the pairs of windows stand at
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
