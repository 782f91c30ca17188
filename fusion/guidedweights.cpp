#include "fusion/guidedweights.h"

#include <opencv2/imgproc.hpp>
#include <opencv2/ximgproc.hpp>

#include <algorithm>
#include <array>

namespace {

constexpr double epsilon = 0.06502499999999999; // 1e-6 * 255 * 255

/// Compares both filters on gradients of all magnitudes with ragged patches selected. The width is
/// no multiple of a vector's, so that the columns behind the last full one are compared too.
bool streamedFilterIsExact()
{
    constexpr int width = 83, height = 61;
    const cv::Size size(width, height);
    cv::RNG random(1);
    cv::Mat noise(size, CV_32F), patches(size, CV_8U);
    random.fill(noise, cv::RNG::UNIFORM, -6.0, 7.0);
    random.fill(patches, cv::RNG::UNIFORM, 0, 256);
    cv::GaussianBlur(patches, patches, cv::Size(), 3.0);
    cv::Mat guide, selection;
    createPadded(guide, size, CV_32F);
    createPadded(selection, size, CV_8U);
    cv::exp(noise, guide);
    cv::compare(patches, 127, selection, cv::CMP_GT);

    std::array<float, size_t(blocksFor(width) * blockSize)> expected, actual;
    std::array<BlockKind, size_t(blocksFor(width))> kinds;
    for (const bool firstFrame : {true, false}) {
        GuidedWeights library(guide, selection, firstFrame, GuidedWeights::Filter::Library);
        GuidedWeights streamed(guide, selection, firstFrame, GuidedWeights::Filter::Streamed);
        for (int y = 0; y < height; ++y) {
            library.next(expected.data(), kinds.data());
            streamed.next(actual.data(), kinds.data());
            if (!std::equal(actual.begin(), actual.begin() + width, expected.begin()))
                return false;
        }
    }
    return true;
}

} // namespace

GuidedWeights::GuidedWeights(const cv::Mat &guide, const cv::Mat &selection, bool firstFrame,
                             Filter filter)
{
    if (filter == Filter::Streamed) {
        streamed.emplace(guide, selection, firstFrame, epsilon);
        return;
    }
    cv::Mat source = cv::Mat::zeros(guide.size(), CV_32F);
    source.setTo(1.0f, firstFrame ? selection == 0 : selection != 0);
    cv::ximgproc::guidedFilter(guide, source, whole, windowRadius, epsilon);
}

void GuidedWeights::next(float *weights, BlockKind *blocks)
{
    if (streamed) {
        streamed->next(weights, blocks);
        return;
    }
    std::memcpy(weights, whole.ptr(row++), size_t(whole.cols) * sizeof(float));
    std::fill_n(blocks, blocksFor(whole.cols), BlockKind::Mixed);
}

GuidedWeights::Filter GuidedWeights::exactFilter()
{
    static const Filter filter = streamedFilterIsExact() ? Filter::Streamed : Filter::Library;
    return filter;
}
