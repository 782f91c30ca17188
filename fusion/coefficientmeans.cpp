#include "fusion/coefficientmeans.h"

#include <opencv2/core/hal/intrin.hpp>

#include <algorithm>

namespace {

using Constants = std::array<double, 2 * blockSize>;

/// Pairs of sums, factor and offset, of `count` coefficients of a kind.
Constants constantSums(BlockKind kind, int count)
{
    Constants sums{};
    if (kind == BlockKind::AllOne) {
        for (size_t i = 1; i < sums.size(); i += 2)
            sums[i] = count;
    }
    return sums;
}

const Constants rowSums[] = {constantSums(BlockKind::AllZero, windowSide),
                             constantSums(BlockKind::AllOne, windowSide)};
const Constants settledSums[] = {constantSums(BlockKind::AllZero, windowSide *(windowSide - 1)),
                                 constantSums(BlockKind::AllOne, windowSide *(windowSide - 1))};

} // namespace

CoefficientMeans::CoefficientMeans(cv::Size size)
    : height(size.height)
    , blocks(blocksFor(size.width))
    , pairs(size.width)
    , kinds(size_t(blocks))
    , ringSums(size_t(ringRows * blocks * pairsSize))
    , ringKinds(size_t(ringRows * blocks))
    , columns(size_t(blocks * pairsSize))
    , equalRows(size_t(blocks))
    , lastKinds(size_t(blocks), BlockKind::Mixed)
    , settled(size_t(blocks), BlockKind::Mixed)
{}

void CoefficientMeans::add(const Block &coefficients)
{
    auto *target = reinterpret_cast<float *>(pairs.data() + addedBlock * blockSize);
    for (int i = 0; i < blockSize; i += 4)
        cv::v_store_interleave(target + 2 * i, cv::v_load(coefficients.factor.data() + i),
                               cv::v_load(coefficients.offset.data() + i));
    blockAdded(BlockKind::Mixed);
}

void CoefficientMeans::add(BlockKind constant)
{
    const float offset = constant == BlockKind::AllOne ? 1.0f : 0.0f;
    std::fill_n(pairs.data() + addedBlock * blockSize, blockSize, Pair{0.0f, offset});
    blockAdded(constant);
}

/// Sums one block behind, since a window reaches into the next block. So the additions, each of
/// which waits for the one before it, overlap with the work on that block.
void CoefficientMeans::blockAdded(BlockKind kind)
{
    kinds[size_t(addedBlock)] = kind;
    const bool isLast = addedBlock == blocks - 1;
    if (isLast)
        pairs.mirror();
    if (addedBlock > 0)
        sumAlongRow(addedBlock - 1);
    if (isLast) {
        sumAlongRow(addedBlock);
        addedStart = ringStart(++addedRow);
    }
    addedBlock = isLast ? 0 : addedBlock + 1;
}

void CoefficientMeans::sumAlongRow(int block)
{
    const Pair *pair = pairs.data();
    const auto load = [pair](int x) { return cv::v_cvt_f64(cv::v_load_low(&pair[x].factor)); };
    auto sum = cv::v_load(runningSum);
    if (block == 0) {
        pairs.mirrorLeft();
        sum = cv::v_setzero_f64();
        for (int x = -windowRadius; x <= windowRadius; ++x)
            sum += load(x);
    }
    const BlockKind kind = kinds[size_t(block)];
    const bool alike = kind != BlockKind::Mixed && kinds[size_t(std::max(block - 1, 0))] == kind &&
                       kinds[size_t(std::min(block + 1, blocks - 1))] == kind &&
                       cv::v_check_all(sum == cv::v_load(rowSums[size_t(kind)].data()));
    const size_t index = addedStart + size_t(block);
    ringKinds[index] = alike ? kind : BlockKind::Mixed;
    if (!alike) {
        double *sums = ringSums.data() + index * pairsSize;
        for (int i = 0; i < blockSize; ++i) {
            const int x = block * blockSize + i;
            cv::v_store(sums + 2 * i, sum);
            sum += load(x + windowRadius + 1) - load(x - windowRadius);
        }
    }
    cv::v_store(runningSum, sum);
}

size_t CoefficientMeans::ringStart(int y) const { return size_t((y % ringRows) * blocks); }

size_t CoefficientMeans::mirroredStart(int y) const
{
    return ringStart(cv::borderInterpolate(y, height, cv::BORDER_REFLECT));
}

const double *CoefficientMeans::sumsAt(size_t index) const
{
    const BlockKind kind = ringKinds[index];
    return kind == BlockKind::Mixed ? ringSums.data() + index * pairsSize
                                    : rowSums[size_t(kind)].data();
}

void CoefficientMeans::nextRow()
{
    if (row < 0) {
        for (int y = -windowRadius; y < windowRadius; ++y)
            enterRow(mirroredStart(y));
    }
    ++row;
    startIn = mirroredStart(row + windowRadius);
    startOut = mirroredStart(row - windowRadius);
}

BlockKind CoefficientMeans::slide(int block, Block &means)
{
    const BlockKind kind = ringKinds[startIn + size_t(block)];
    if (kind != BlockKind::Mixed && kind == settled[size_t(block)])
        return kind;

    const double *in = sumsAt(startIn + size_t(block));
    const double *out = sumsAt(startOut + size_t(block));
    double *column = columns.data() + block * pairsSize;
    const auto scale = cv::v_setall_f64(windowScale);
    const auto slidePair = [&](int i) {
        const auto sum = cv::v_load(column + i) + cv::v_load(in + i);
        cv::v_store(column + i, sum - cv::v_load(out + i));
        return sum * scale;
    };
    std::array<float, pairsSize> interleaved;
    for (int i = 0; i < pairsSize; i += 4)
        cv::v_store(interleaved.data() + i, cv::v_cvt_f32(slidePair(i), slidePair(i + 2)));
    for (int i = 0; i < blockSize; i += 4) {
        cv::v_float32x4 factor, offset;
        cv::v_load_deinterleave(interleaved.data() + 2 * i, factor, offset);
        cv::v_store(means.factor.data() + i, factor);
        cv::v_store(means.offset.data() + i, offset);
    }
    noteEntry(block, kind);
    return BlockKind::Mixed;
}

/// Adds a row to the columns of the first window.
void CoefficientMeans::enterRow(size_t start)
{
    for (int block = 0; block < blocks; ++block) {
        const size_t index = start + size_t(block);
        const double *in = sumsAt(index);
        double *column = columns.data() + block * pairsSize;
        for (int i = 0; i < pairsSize; ++i)
            column[i] += in[i];
        noteEntry(block, ringKinds[index]);
    }
}

/// Finds out whether the block has settled, now that a row of a kind has entered.
void CoefficientMeans::noteEntry(int block, BlockKind kind)
{
    uchar &rows = equalRows[size_t(block)];
    rows = kind == lastKinds[size_t(block)] ? uchar(std::min(rows + 1, windowSide - 1)) : uchar(1);
    lastKinds[size_t(block)] = kind;
    const double *column = columns.data() + block * pairsSize;
    const bool isSettled =
        kind != BlockKind::Mixed && rows == windowSide - 1 &&
        std::equal(column, column + pairsSize, settledSums[size_t(kind)].begin());
    settled[size_t(block)] = isSettled ? kind : BlockKind::Mixed;
}
