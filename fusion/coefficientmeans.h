#pragma once

#include "fusion/windowsums.h"

#include <array>
#include <vector>

/// Means of the guided filter's two coefficients over a window that moves down a picture.
///
/// The sums are not exact and are added in the library's order, along each row from the left edge
/// and down each column from the top. A block is left out as long as nothing would change: all
/// coefficients that enter and leave are (0, 0) or all (0, 1), and the sums so far carry no
/// rounding error, which is checked.
class CoefficientMeans
{
public:
    struct Block
    {
        std::array<float, blockSize> factor;
        std::array<float, blockSize> offset;
    };

    explicit CoefficientMeans(cv::Size size);

    /// Adds a block of coefficients: rows from the top, each from the left. A row of means takes
    /// all rows up to `windowRadius` below it.
    void add(const Block &coefficients);
    /// The same where all factors are 0 and all offsets are 0 or 1.
    void add(BlockKind constant);

    /// Moves the window to the next row, from the top.
    void nextRow();
    /// Moves the window for one block; once for every block of a row.
    /// @param means  receives the means unless the kind of the block says them
    /// @returns AllZero or AllOne where all means are (0, 0) or (0, 1)
    BlockKind slide(int block, Block &means);

private:
    static constexpr int ringRows = 16;
    static constexpr int pairsSize = 2 * blockSize;
    struct Pair
    {
        float factor, offset;
    };

    void blockAdded(BlockKind kind);
    void sumAlongRow(int block);
    size_t ringStart(int y) const;
    size_t mirroredStart(int y) const;
    const double *sumsAt(size_t index) const;
    void enterRow(size_t start);
    void noteEntry(int block, BlockKind kind);

    int height;
    int blocks;
    MarginRow<Pair> pairs;
    std::vector<BlockKind> kinds;
    int addedRow = 0;      ///< the row that is being added
    size_t addedStart = 0; ///< where its blocks begin in the ring
    int addedBlock = 0;    ///< the block that comes next in it
    double runningSum[2];
    std::vector<double> ringSums;
    std::vector<BlockKind> ringKinds; ///< AllZero, AllOne: the sums are exactly those of 15 of them

    int row = -1;
    size_t startIn = 0; ///< where the blocks of the row that enters begin in the ring
    size_t startOut = 0;
    std::vector<double> columns;
    std::vector<uchar> equalRows; ///< how many rows of this kind entered last
    std::vector<BlockKind> lastKinds;
    std::vector<BlockKind> settled; ///< the sums are exactly those of 14 rows of this kind
};
