#include "fusion/fuseframes.h"

#include "fusion/guidedweights.h"
#include "fusion/reconstruction.h"
#include "fusion/rowbands.h"
#include "fusion/saliency.h"

#include <opencv2/core.hpp>

#include <atomic>
#include <cstddef>
#include <ostream>

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
    double seconds() { return double(ticks()) / cv::getTickFrequency(); }

private:
    int64 last = cv::getTickCount();
};

/// The weights of a row, which stand in the place of the gradients one row higher.
float *weightsOf(cv::Mat &gradient, int row)
{
    return gradient.ptr<float>() + (row - 1) * ptrdiff_t(gradient.step1());
}

} // namespace

void fuseFrames(const std::array<cv::Mat, 2> &frames, cv::Mat &out, int mode,
                FusionBuffers &buffers, std::ostream &times)
{
    const cv::Size size = frames[0].size();
    CV_Assert(frames[0].type() == CV_8UC3 && frames[1].type() == CV_8UC3);
    CV_Assert(frames[1].size() == size);
    StageClock stage;

    auto &[gradients, selection, kinds] = buffers;
    for (cv::Mat &gradient : gradients)
        createPadded(gradient, size, CV_32F);
    createPadded(selection, size, CV_8U);
    forEachBand<SaliencyBuffers>(size.height, [&](cv::Range rows, SaliencyBuffers &band) {
        for (size_t i = 0; i < 2; ++i)
            gradientMap(frames[i], rows, gradients[i], band);
    });
    // Higher bands: each takes rows from around it.
    using Saliencies = std::array<cv::Mat, 2>;
    forEachBand<Saliencies, 128>(size.height, [&](cv::Range rows, Saliencies &band) {
        // Of equal values the first frame's wins.
        cv::compare(saliency(gradients[1], rows, band[1]), saliency(gradients[0], rows, band[0]),
                    selection.rowRange(rows), cv::CMP_GT);
    });
    times << "S-running time " << stage.seconds() << " sec.";

    const double won = cv::countNonZero(selection);
    times << "P-running time " << stage.seconds() << " sec.";
    times << "P-running time " << won << " 像素";

    const int blocks = blocksFor(size.width);
    for (std::vector<BlockKind> &frameKinds : kinds)
        frameKinds.resize(size_t(blocks * size.height));
    cv::parallel_for_(cv::Range(0, 2), [&](const cv::Range &range) {
        for (int i = range.start; i < range.end; ++i) {
            GuidedWeights filter(gradients[i], selection, i == 0);
            for (int y = 0; y < size.height; ++y)
                filter.next(weightsOf(gradients[i], y), &kinds[i][size_t(y * blocks)]);
        }
    });
    times << "Wbd-running time " << stage.seconds() << " sec.";

    // Both remaining stages follow each other on every row; each thread counts its time for them.
    std::atomic<int64> normalising{0}, reconstructing{0};
    out.create(size, CV_8UC3);
    forEachBand<StageClock>(size.height, [&](cv::Range rows, StageClock &clock) {
        for (int y = rows.start; y < rows.end; ++y) {
            const std::array<float *, 2> weights = {weightsOf(gradients[0], y),
                                                    weightsOf(gradients[1], y)};
            const std::array<const BlockKind *, 2> kindsOfRow = {&kinds[0][size_t(y * blocks)],
                                                                 &kinds[1][size_t(y * blocks)]};
            normaliseWeights(weights, kindsOfRow, size.width, mode);
            normalising += clock.ticks();
            reconstruct({frames[0].ptr(y), frames[1].ptr(y)}, {weights[0], weights[1]}, kindsOfRow,
                        out.ptr(y), size.width);
            reconstructing += clock.ticks();
        }
    });
    times << "norm-running time " << double(normalising) / cv::getTickFrequency() << " sec.";
    times << "lastF-running time " << double(reconstructing) / cv::getTickFrequency() << " sec.";
}
