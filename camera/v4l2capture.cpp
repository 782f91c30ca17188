#include "camera/v4l2capture.h"

#include "camera/cameraparameters.h"
#include "camera/uvcroll.h"
#include "camera/videodevices_v4l2.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr double unitsPerSecond = 10000;

// The kernel's numbers of V4L2_CID_EXPOSURE_AUTO that USB cameras know.
constexpr int manualExposure = 1;
constexpr int automaticExposure = 3;

} // namespace

int exposureUnits(double log2Seconds)
{
    const double units = std::round(std::exp2(log2Seconds) * unitsPerSecond);
    return int(std::clamp(units, 1.0, double(std::numeric_limits<int>::max())));
}

double exposureLog2Seconds(double units)
{
    return units < 1 ? -1 : std::round(std::log2(units / unitsPerSecond));
}

V4l2Capture::V4l2Capture()
{
    // A silent device holds a read for this many seconds; the library's ten would hold up quitting.
    setenv("OPENCV_VIDEOIO_V4L_SELECT_TIMEOUT", "2", 1);
}

bool V4l2Capture::open(int index, int backend)
{
    const std::vector<CaptureNode> nodes = listCaptureNodes();
    if (index < 0 || index >= int(nodes.size())) {
        release();
        return false;
    }
    node = nodes[size_t(index)].number;
    return GuardedCapture::open(node, backend);
}

bool V4l2Capture::set(int property, double value)
{
    switch (property) {
    case cv::CAP_PROP_EXPOSURE:
        return GuardedCapture::set(property, exposureUnits(value));
    case cv::CAP_PROP_ROLL:
        return isOpened() && setUvcRoll(node, int(value));
    case cv::CAP_PROP_BACKLIGHT:
        return setFunctionWord(int(value));
    default:
        return GuardedCapture::set(property, value);
    }
}

double V4l2Capture::get(int property) const
{
    switch (property) {
    case cv::CAP_PROP_EXPOSURE:
        return exposureLog2Seconds(GuardedCapture::get(property));
    case cv::CAP_PROP_ROLL:
        return isOpened() ? uvcRoll(node) : -1;
    default:
        return GuardedCapture::get(property);
    }
}

bool V4l2Capture::setFunctionWord(int word)
{
    const bool taken = GuardedCapture::set(cv::CAP_PROP_BACKLIGHT, word);
    // A camera without the word keeps its modes in the standard controls, and refuses exposure and
    // white balance by hand until these say so.
    const bool autoExposure = word & FunctionWord::AutoExposure;
    const bool autoWhiteBalance = word & FunctionWord::AutoWhiteBalance;
    GuardedCapture::set(cv::CAP_PROP_AUTO_EXPOSURE,
                        autoExposure ? automaticExposure : manualExposure);
    GuardedCapture::set(cv::CAP_PROP_AUTO_WB, autoWhiteBalance ? 1 : 0);
    return taken;
}
