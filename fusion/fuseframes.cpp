#include "fusion/fuseframes.h"

#include "fusion/reconstruction.h"
#include "fusion/rowbands.h"
#include "fusion/saliency.h"

#include <opencv2/ximgproc.hpp>

#include <ostream>

namespace {

constexpr int guideRadius = 7;
constexpr double guideEpsilon = 0.06502499999999999; // 1e-6 on a scale of 0..1, for 0..255

} // namespace

void fuseFrames(const std::array<cv::Mat, 2> &frames, cv::Mat &out, int mode,
                FusionBuffers &buffers, std::ostream &times)
{
    const cv::Size size = frames[0].size();
    CV_Assert(frames[0].type() == CV_8UC3 && frames[1].type() == CV_8UC3);
    CV_Assert(frames[1].size() == size);
    auto &[gradients, selection] = buffers;
    int64 begin = cv::getTickCount();
    const auto secondsSince = [&begin] {
        const int64 since = begin;
        begin = cv::getTickCount();
        return double(begin - since) / cv::getTickFrequency();
    };

    for (size_t i = 0; i < 2; ++i) {
        gradients[i].create(size, CV_32F);
        forEachBand(size.height,
                    [&](cv::Range rows) { gradientMap(frames[i], rows, gradients[i]); });
    }
    selection.create(size, CV_8U);
    forEachBand(size.height, [&](cv::Range rows) {
        cv::compare(saliency(gradients[1], rows), saliency(gradients[0], rows),
                    selection.rowRange(rows), cv::CMP_GT);
    });
    times << "S-running time " << secondsSince() << " sec.";
    const double won = cv::countNonZero(selection);
    times << "P-running time " << secondsSince() << " sec.";
    times << "P-running time " << won << " 像素";

    std::array<cv::Mat, 2> weights;
    for (size_t i = 0; i < 2; ++i) {
        cv::Mat source;
        (i == 0 ? ~selection : selection).convertTo(source, CV_32F, 1.0 / 255);
        cv::ximgproc::guidedFilter(gradients[i], source, weights[i], guideRadius, guideEpsilon);
    }
    times << "Wbd-running time " << secondsSince() << " sec.";
    for (int y = 0; y < size.height; ++y)
        normaliseWeights(weights[0].ptr<float>(y), weights[1].ptr<float>(y), size.width, mode);
    times << "norm-running time " << secondsSince() << " sec.";
    out.create(size, CV_8UC3);
    for (int y = 0; y < size.height; ++y)
        reconstruct({frames[0].ptr(y), frames[1].ptr(y)},
                    {weights[0].ptr<float>(y), weights[1].ptr<float>(y)}, out.ptr(y), size.width);
    times << "lastF-running time " << secondsSince() << " sec.";
}
