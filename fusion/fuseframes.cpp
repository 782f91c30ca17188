#include "fusion/fuseframes.h"

#include "fusion/guidedweights.h"
#include "fusion/reconstruction.h"
#include "fusion/rowbands.h"
#include "fusion/saliency.h"

#include <opencv2/core.hpp>

#include <ostream>
#include <vector>

namespace {

/// The time since the last question or the clock's making.
class StageClock
{
public:
    int64 ticks()
    {
        const int64 since = last;
        last = cv::getTickCount();
        return last - since;
    }

private:
    int64 last = cv::getTickCount();
};

double seconds(int64 ticks) { return double(ticks) / cv::getTickFrequency(); }

/// A row of one frame's weights.
struct WeightRow
{
    explicit WeightRow(int width)
        : weights(size_t(blocksFor(width) * blockSize))
        , kinds(size_t(blocksFor(width)))
    {}

    std::vector<float> weights;
    std::vector<BlockKind> kinds;
};

} // namespace

void fuseFrames(const std::array<cv::Mat, 2> &frames, cv::Mat &out, int mode,
                FusionBuffers &buffers, std::ostream &times)
{
    const cv::Size size = frames[0].size();
    CV_Assert(frames[0].type() == CV_8UC3 && frames[1].type() == CV_8UC3);
    CV_Assert(frames[1].size() == size);
    StageClock stage;

    auto &gradients = buffers.gradients;
    cv::Mat &selection = buffers.selection;
    for (cv::Mat &gradient : gradients)
        createPadded(gradient, size, CV_32F);
    createPadded(selection, size, CV_8U);
    forEachBand<SaliencyBuffers>(size.height, [&](cv::Range rows, SaliencyBuffers &band) {
        for (size_t i = 0; i < 2; ++i)
            gradientMap(frames[i], rows, gradients[i], band);
    });
    // Apart from the gradients: each band takes rows from around it.
    using Saliencies = std::array<cv::Mat, 2>;
    forEachBand<Saliencies>(size.height, [&](cv::Range rows, Saliencies &band) {
        // Of equal values the first frame's wins.
        cv::compare(saliency(gradients[1], rows, band[1]), saliency(gradients[0], rows, band[0]),
                    selection.rowRange(rows), cv::CMP_GT);
    });
    times << "S-running time " << seconds(stage.ticks()) << " sec.";

    const double won = cv::countNonZero(selection);
    times << "P-running time " << seconds(stage.ticks()) << " sec.";
    times << "P-running time " << won << " 像素";

    // The remaining stages follow each other on every row.
    GuidedWeights filters[] = {GuidedWeights(gradients[0], selection, true),
                               GuidedWeights(gradients[1], selection, false)};
    WeightRow rows[] = {WeightRow(size.width), WeightRow(size.width)};
    int64 filtering = 0, normalising = 0, reconstructing = 0;
    out.create(size, CV_8UC3);
    for (int y = 0; y < size.height; ++y) {
        for (int i = 0; i < 2; ++i)
            filters[i].next(rows[i].weights.data(), rows[i].kinds.data());
        filtering += stage.ticks();
        normaliseWeights({rows[0].weights.data(), rows[1].weights.data()},
                         {rows[0].kinds.data(), rows[1].kinds.data()}, size.width, mode);
        normalising += stage.ticks();
        reconstruct({frames[0].ptr(y), frames[1].ptr(y)},
                    {rows[0].weights.data(), rows[1].weights.data()},
                    {rows[0].kinds.data(), rows[1].kinds.data()}, out.ptr(y), size.width);
        reconstructing += stage.ticks();
    }
    times << "Wbd-running time " << seconds(filtering) << " sec.";
    times << "norm-running time " << seconds(normalising) << " sec.";
    times << "lastF-running time " << seconds(reconstructing) << " sec.";
}
