#pragma once

#include <opencv2/core.hpp>

#include <QPixmap>

#include <functional>
#include <vector>

/// The fusion written down step by step, with nothing merged, cached or skipped: the oracle that
/// the production steps are held against, and the baseline of the benchmark. Reference pictures are
/// never stored, since the library's results differ in rare grey levels between processors.
namespace literal {

/// What one fusion computes on its way. Filled by `fuseFrames` on demand.
struct Trace
{
    std::vector<cv::Mat> logGray;
    std::vector<cv::Mat> gradient;
    std::vector<cv::Mat> maximum;
    std::vector<cv::Mat> saliency;
    std::vector<cv::Mat> selection;
    std::vector<cv::Mat> guided;
    std::vector<cv::Mat> weight;
};

/// Called with an empty name when the fusion begins, then with the stage's name ("S", "P", "Wbd",
/// "norm", "lastF") when a stage has ended.
using StageObserver = std::function<void(const char *stage)>;

std::vector<float> slidingMax(const std::vector<float> &values, int window);
void maxFilter(const cv::Mat &src, cv::Mat &dst, int radius);
double sharpness(const cv::Mat &frame);
void fuseFrames(const std::vector<cv::Mat> &frames, cv::Mat &out, int mode, Trace *trace = nullptr,
                const StageObserver &stageEnded = {});

/// What became of a frame.
enum class Outcome { First, Skipped, Dropped, Accepted };

/// The gates of a sweep around the literal steps, without the pauses.
class Sweep
{
public:
    Outcome add(const QPixmap &framePix);
    QPixmap pix() const { return resultPix; }

    double lastSharpness = 0.0;
    int declineCount = 0;
    StageObserver stageEnded;

private:
    QPixmap resultPix;
};

} // namespace literal
