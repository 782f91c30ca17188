#include "fusion/fusionsweep.h"

#include "fusion/sharpness.h"

namespace {

/// How much sharper a fused picture must be to replace the running result.
constexpr double leastGain = 2.0;
/// A last sharpness below this counts as not yet known.
constexpr double unknownSharpness = 1e-05;
/// So many declines in a row are still fused.
constexpr int toleratedDeclines = 4;

} // namespace

FusionSweep::FusionSweep(std::ostream &timesTo)
    : times(timesTo)
{}

FusionSweep::Outcome FusionSweep::add(cv::Mat &frame)
{
    CV_Assert(!frame.empty() && frame.type() == CV_8UC3);
    if (isEmpty()) {
        cv::swap(resultFrame, frame);
        return Outcome::First;
    }
    if (lastSharpness < unknownSharpness)
        lastSharpness = resultSharpness();
    const double value = sharpness(frame);
    const bool skip = declines(value) && declineGate;
    lastSharpness = value;
    if (skip)
        return Outcome::Skipped;

    fuseFrames({resultFrame, frame}, frame, 1, buffers, times);
    const double fused = sharpness(frame);
    if (!(resultSharpness() + leastGain < fused))
        return Outcome::Dropped;
    cv::swap(resultFrame, frame);
    sharpnessOfResult = fused;
    return Outcome::Accepted;
}

/// Counts a decline. A skipped frame does not reset the count: once it has run over, every further
/// decline is skipped, until a frame is at least as sharp as its predecessor.
bool FusionSweep::declines(double value)
{
    if (lastSharpness > value)
        return ++declineCount > toleratedDeclines;
    declineCount = 0;
    return false;
}

double FusionSweep::resultSharpness()
{
    if (sharpnessOfResult < 0.0 && !isEmpty())
        sharpnessOfResult = sharpness(resultFrame);
    return sharpnessOfResult;
}

void FusionSweep::reset()
{
    resultFrame.release();
    buffers = {};
    sharpnessOfResult = -1.0;
    lastSharpness = 0.0;
    declineCount = 0;
}
