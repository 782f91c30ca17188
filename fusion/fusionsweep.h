#pragma once

#include "fusion/fuseframes.h"

#include <QtGlobal>

#include <iosfwd>

/// The running result of a focus sweep and the gates that a frame has to pass on its way into it.
/// The stack is never held: memory does not depend on the number of frames.
class FusionSweep
{
public:
    enum class Outcome {
        First,   ///< became the running result
        Skipped, ///< the fifth or a later one in a row that was less sharp than the one before it
        Dropped, ///< fused, but the picture was not sharper enough
        Accepted ///< fused, and the picture became the running result
    };

    /// @param timesTo  receives the stages' running times of each fusion
    explicit FusionSweep(std::ostream &timesTo);

    /// Without the decline gate no frame is skipped.
    void setDeclineGate(bool on) { declineGate = on; }

    /// Adds the next frame, `CV_8UC3` in BGR order. Its pixels are overwritten; afterwards `frame`
    /// may stand for any buffer of that size.
    /// Throws `cv::Exception` on an empty frame, another size than the running result's or fewer
    /// than 10 rows; the running result stays as it was.
    Outcome add(cv::Mat &frame);

    bool isEmpty() const { return resultFrame.empty(); }
    const cv::Mat &result() const { return resultFrame; }
    /// Sharpness of the running result.
    double resultSharpness();
    /// Sharpness of the newest frame that was compared, 0 before the second.
    double frameSharpness() const { return lastSharpness; }

    /// Forgets the sweep and frees its memory.
    void reset();

private:
    bool declines(double value);

    std::ostream &times;
    cv::Mat resultFrame;
    double sharpnessOfResult = -1.0; ///< negative: not yet known
    double lastSharpness = 0.0;
    qint32 declineCount = 0;
    bool declineGate = true;
    FusionBuffers buffers;
};
