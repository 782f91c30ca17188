#include "fusion/reconstruction.h"

#include <opencv2/core/hal/intrin.hpp>

#include <algorithm>
#include <cstring>

namespace {

using Floats = std::array<cv::v_float32x4, 4>;

Floats toFloats(const cv::v_uint8x16 &bytes)
{
    cv::v_uint16x8 low, high;
    cv::v_expand(bytes, low, high);
    std::array<cv::v_uint32x4, 4> words;
    cv::v_expand(low, words[0], words[1]);
    cv::v_expand(high, words[2], words[3]);
    Floats result;
    for (size_t i = 0; i < 4; ++i)
        result[i] = cv::v_cvt_f32(cv::v_reinterpret_as_s32(words[i]));
    return result;
}

cv::v_uint8x16 toBytes(const Floats &values)
{
    return cv::v_pack_u(cv::v_pack(cv::v_round(values[0]), cv::v_round(values[1])),
                        cv::v_pack(cv::v_round(values[2]), cv::v_round(values[3])));
}

cv::v_uint8x16 weightedSum(const cv::v_uint8x16 &a, const cv::v_uint8x16 &b, const Floats &wa,
                           const Floats &wb)
{
    Floats fa = toFloats(a);
    const Floats fb = toFloats(b);
    for (size_t i = 0; i < 4; ++i)
        fa[i] = fa[i] * wa[i] + fb[i] * wb[i];
    return toBytes(fa);
}

Floats loadFloats(const float *p)
{
    return {cv::v_load(p), cv::v_load(p + 4), cv::v_load(p + 8), cv::v_load(p + 12)};
}

void normaliseBlock(float *first, float *second, bool divide)
{
    const auto one = cv::v_setall_f32(1.0f);
    for (int x = 0; x < blockSize; x += 4) {
        auto a = cv::v_load(first + x);
        auto b = cv::v_load(second + x);
        a = cv::v_select(a > one, one, a);
        b = cv::v_select(b > one, one, b);
        const auto divisor = divide ? a + b : one;
        cv::v_store(first + x, a / divisor);
        cv::v_store(second + x, b / divisor);
    }
}

/// The pixels of at most one block.
void addWeighted(const std::array<const uchar *, 2> &frames,
                 const std::array<const float *, 2> &weights, uchar *out, int count)
{
    if (count == blockSize) {
        const Floats wa = loadFloats(weights[0]);
        const Floats wb = loadFloats(weights[1]);
        cv::v_uint8x16 a[3], b[3];
        cv::v_load_deinterleave(frames[0], a[0], a[1], a[2]);
        cv::v_load_deinterleave(frames[1], b[0], b[1], b[2]);
        for (int c = 0; c < 3; ++c)
            a[c] = weightedSum(a[c], b[c], wa, wb);
        cv::v_store_interleave(out, a[0], a[1], a[2]);
        return;
    }
    for (int x = 0; x < count; ++x) {
        for (int c = 3 * x; c < 3 * x + 3; ++c)
            out[c] = cv::saturate_cast<uchar>(frames[0][c] * weights[0][x] +
                                              frames[1][c] * weights[1][x]);
    }
}

} // namespace

void normaliseWeights(const std::array<float *, 2> &weights,
                      const std::array<const BlockKind *, 2> &kinds, int count, int mode)
{
    if (mode != 1 && mode != 2)
        return;
    for (int block = 0; block < blocksFor(count); ++block) {
        if (isOneSided(kinds[0][block], kinds[1][block]))
            continue;
        const int x = block * blockSize;
        normaliseBlock(weights[0] + x, weights[1] + x, mode == 1);
    }
}

void reconstruct(const std::array<const uchar *, 2> &frames,
                 const std::array<const float *, 2> &weights,
                 const std::array<const BlockKind *, 2> &kinds, uchar *out, int count)
{
    const auto isOneSidedAt = [&](int block) {
        return isOneSided(kinds[0][block], kinds[1][block]);
    };
    const int blocks = blocksFor(count);
    for (int block = 0; block < blocks;) {
        const int x = block * blockSize;
        if (!isOneSidedAt(block)) {
            addWeighted({frames[0] + 3 * x, frames[1] + 3 * x}, {weights[0] + x, weights[1] + x},
                        out + 3 * x, std::min(blockSize, count - x));
            ++block;
            continue;
        }
        // As far as it comes from the same frame.
        const BlockKind first = kinds[0][block];
        do
            ++block;
        while (block < blocks && kinds[0][block] == first && isOneSidedAt(block));
        const uchar *frame = frames[first == BlockKind::AllOne ? 0 : 1];
        const int end = std::min(block * blockSize, count);
        std::memmove(out + 3 * x, frame + 3 * x, size_t(3 * (end - x)));
    }
}
