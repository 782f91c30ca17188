#include "fusion/guidedfilterrows.h"

#include <opencv2/core/hal/intrin.hpp>

#include <algorithm>

namespace {

/// Up to this mean square of the guide, epsilon outweighs all rounding of the variance. Above it
/// the variance may come out as 0 and make a coefficient not a number, in constant windows too.
constexpr double calmEnergy = 65536.0;

/// The library takes the processor's estimate where there is one.
cv::v_float32x4 reciprocal(const cv::v_float32x4 &value)
{
#if CV_SSE2
    return cv::v_float32x4(_mm_rcp_ps(value.val));
#else
    return cv::v_setall_f32(1.0f) / value;
#endif
}

bool isCalm(const std::array<double, blockSize> &energy)
{
    auto most = cv::v_load(energy.data());
    for (int i = 2; i < blockSize; i += 2)
        most = cv::v_max(most, cv::v_load(energy.data() + i));
    return cv::v_check_all(most < cv::v_setall_f64(calmEnergy / windowScale));
}

std::array<float, blockSize> meansOf(const std::array<double, blockSize> &sums)
{
    std::array<float, blockSize> means;
    const auto scale = cv::v_setall_f64(windowScale);
    for (int i = 0; i < blockSize; i += 4) {
        cv::v_store(means.data() + i, cv::v_cvt_f32(cv::v_load(sums.data() + i) * scale,
                                                    cv::v_load(sums.data() + i + 2) * scale));
    }
    return means;
}

} // namespace

GuidedFilterRows::GuidedFilterRows(const cv::Mat &guidePicture, const cv::Mat &selection,
                                   bool inverted, double regularity)
    : guide(guidePicture)
    , epsilon(float(regularity))
    , guideMeans(guide, selection, inverted)
    , energySums(guide)
    , means(guide.size())
{}

void GuidedFilterRows::next(float *filtered, BlockKind *kinds)
{
    while (coefficientsDone <= std::min(row + windowRadius, guide.rows - 1))
        nextCoefficients();
    means.nextRow();
    const float *guideRow = guide.ptr<float>(row++);
    CoefficientMeans::Block mean;
    for (int block = 0; block < blocksFor(guide.cols); ++block) {
        float *out = filtered + block * blockSize;
        kinds[block] = means.slide(block, mean);
        if (kinds[block] != BlockKind::Mixed) {
            std::fill_n(out, blockSize, kinds[block] == BlockKind::AllOne ? 1.0f : 0.0f);
            continue;
        }
        for (int i = 0; i < blockSize; i += 4) {
            const auto product =
                cv::v_load(mean.factor.data() + i) * cv::v_load(guideRow + block * blockSize + i);
            cv::v_store(out + i, cv::v_load(mean.offset.data() + i) + product);
        }
    }
}

void GuidedFilterRows::nextCoefficients()
{
    guideMeans.nextRow();
    energySums.nextRow();
    std::array<double, blockSize> energy;
    CoefficientMeans::Block coefficient;
    for (int block = 0; block < blocksFor(guide.cols); ++block) {
        energySums.slide(block, energy);
        const BlockKind source = guideMeans.sourceAround(block);
        if (source != BlockKind::Mixed && isCalm(energy)) {
            means.add(source);
            continue;
        }
        coefficients(block, energy, coefficient);
        means.add(coefficient);
    }
    ++coefficientsDone;
}

/// factor = covariance of guide and source / (variance of guide + epsilon)
/// offset = mean of source - factor * mean of guide
void GuidedFilterRows::coefficients(int block, const std::array<double, blockSize> &energy,
                                    CoefficientMeans::Block &result)
{
    GuideMeans::Block mean;
    guideMeans.mean(block, mean);
    const auto square = meansOf(energy);
    const auto &[guides, product, source] = mean;

    // The columns behind the last full vector take other roundings.
    const int vectorEnd = std::min(guide.cols / 4 * 4 - block * blockSize, blockSize);
    int i = 0;
    for (; i < vectorEnd; i += 4) {
        const auto g = cv::v_load(guides.data() + i);
        const auto s = cv::v_load(source.data() + i);
        const auto variance = cv::v_load(square.data() + i) + cv::v_setall_f32(epsilon) - g * g;
        const auto covariance = cv::v_load(product.data() + i) - s * g;
        const auto factor = reciprocal(variance) * covariance;
        cv::v_store(result.factor.data() + i, factor);
        cv::v_store(result.offset.data() + i, s - factor * g);
    }
    for (; i < blockSize; ++i) {
        const auto x = size_t(i);
        const float variance = square[x] - (guides[x] * guides[x] - epsilon);
        const float covariance = product[x] - source[x] * guides[x];
        result.factor[x] = 1.0f / variance * covariance;
        result.offset[x] = source[x] - result.factor[x] * guides[x];
    }
}
