#include "fusion/fuseframes.h"

#include "fusion/guidedweights.h"
#include "fusion/reconstruction.h"
#include "fusion/rowbands.h"
#include "fusion/saliency.h"

#include <opencv2/core.hpp>

#include <ostream>
#include <vector>

namespace {

/// Processor ticks spent in the stages.
class StageClock
{
public:
    /// Adds what has passed since the last call to a stage.
    void add(double &seconds)
    {
        const int64 now = cv::getTickCount();
        seconds += double(now - last) / cv::getTickFrequency();
        last = now;
    }

private:
    int64 last = cv::getTickCount();
};

struct SelectionBuffers : SaliencyBuffers
{
    cv::Mat saliency[2];
};

/// Rows of weights of both frames, few enough to stay in the cache.
class WeightBand
{
public:
    static constexpr int rows = 16;

    explicit WeightBand(int width)
        : blocks(blocksFor(width))
    {
        for (int i = 0; i < 2; ++i) {
            weights[i].resize(size_t(rows * blocks * blockSize));
            kinds[i].resize(size_t(rows * blocks));
        }
    }

    float *weightsOf(int frame, int y) { return weights[frame].data() + y * blocks * blockSize; }
    BlockKind *kindsOf(int frame, int y) { return kinds[frame].data() + y * blocks; }

private:
    int blocks;
    std::vector<float> weights[2];
    std::vector<BlockKind> kinds[2];
};

} // namespace

void fuseFrames(const std::array<cv::Mat, 2> &frames, cv::Mat &out, int mode,
                FusionBuffers &buffers, std::ostream &times)
{
    const cv::Size size = frames[0].size();
    CV_Assert(frames[0].type() == CV_8UC3 && frames[1].type() == CV_8UC3);
    CV_Assert(frames[1].size() == size);
    StageClock clock;

    auto &[gradients, selection] = buffers;
    for (cv::Mat &gradient : gradients)
        createPadded(gradient, size, CV_32F);
    createPadded(selection, size, CV_8U);
    forEachBand<SaliencyBuffers>(size.height, [&](cv::Range rows, SaliencyBuffers &band) {
        for (size_t i = 0; i < 2; ++i)
            gradientMap(frames[i], rows, gradients[i], band);
    });
    forEachBand<SelectionBuffers>(size.height, [&](cv::Range rows, SelectionBuffers &band) {
        // Of equal values the first frame's wins.
        cv::compare(saliency(gradients[1], rows, band.saliency[1], band),
                    saliency(gradients[0], rows, band.saliency[0], band), selection.rowRange(rows),
                    cv::CMP_GT);
    });
    double seconds = 0.0;
    clock.add(seconds);
    times << "S-running time " << seconds << " sec.";

    const double won = cv::countNonZero(selection);
    seconds = 0.0;
    clock.add(seconds);
    times << "P-running time " << seconds << " sec.";
    times << "P-running time " << won << " 像素";

    // The remaining stages follow each other on every band, with their times added up.
    double filtering = 0.0, normalising = 0.0, reconstructing = 0.0;
    std::array<GuidedWeights, 2> filters = {GuidedWeights(gradients[0], selection, true),
                                            GuidedWeights(gradients[1], selection, false)};
    WeightBand band(size.width);
    out.create(size, CV_8UC3);
    for (int top = 0; top < size.height; top += WeightBand::rows) {
        const int height = std::min(WeightBand::rows, size.height - top);
        cv::parallel_for_(cv::Range(0, 2), [&](const cv::Range &range) {
            for (int i = range.start; i < range.end; ++i)
                for (int y = 0; y < height; ++y)
                    filters[size_t(i)].next(band.weightsOf(i, y), band.kindsOf(i, y));
        });
        clock.add(filtering);
        for (int y = 0; y < height; ++y)
            normaliseWeights({band.weightsOf(0, y), band.weightsOf(1, y)},
                             {band.kindsOf(0, y), band.kindsOf(1, y)}, size.width, mode);
        clock.add(normalising);
        for (int y = 0; y < height; ++y)
            reconstruct({frames[0].ptr(top + y), frames[1].ptr(top + y)},
                        {band.weightsOf(0, y), band.weightsOf(1, y)},
                        {band.kindsOf(0, y), band.kindsOf(1, y)}, out.ptr(top + y), size.width);
        clock.add(reconstructing);
    }
    times << "Wbd-running time " << filtering << " sec.";
    times << "norm-running time " << normalising << " sec.";
    times << "lastF-running time " << reconstructing << " sec.";
}
