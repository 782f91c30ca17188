#include "camera/cameraparameters.h"

#include "camera/capture.h"

#include <algorithm>
#include <cmath>
#include <limits>

const std::array<CameraParameterRow, cameraParameterCount> cameraParameters = {{
    {CameraParameter::Brightness, cv::CAP_PROP_BRIGHTNESS, &CameraInfo::brightness},
    {CameraParameter::Contrast, cv::CAP_PROP_CONTRAST, &CameraInfo::contrast},
    {CameraParameter::Chroma, cv::CAP_PROP_HUE, &CameraInfo::chroma},
    {CameraParameter::Saturation, cv::CAP_PROP_SATURATION, &CameraInfo::saturation},
    {CameraParameter::Focus, cv::CAP_PROP_FOCUS, &CameraInfo::focus},
    // After the focus, so that a batch with both ends in the mode that was asked for.
    {CameraParameter::AutoFocus, cv::CAP_PROP_AUTOFOCUS, &CameraInfo::autoFocus},
    {CameraParameter::Resolution, cv::CAP_PROP_FRAME_WIDTH, nullptr},
    {CameraParameter::Zoom, cv::CAP_PROP_ZOOM, &CameraInfo::zoom},
    {CameraParameter::FocusWindow, cv::CAP_PROP_PAN, nullptr},
    {CameraParameter::Red, cv::CAP_PROP_GAMMA, &CameraInfo::red},
    {CameraParameter::Gain, cv::CAP_PROP_GAIN, &CameraInfo::gain},
    {CameraParameter::Sharpness, cv::CAP_PROP_SHARPNESS, &CameraInfo::sharpness},
    {CameraParameter::WhiteBalanceV, cv::CAP_PROP_WHITE_BALANCE_RED_V, &CameraInfo::whiteBalanceV},
    {CameraParameter::FunctionSwitches, cv::CAP_PROP_BACKLIGHT, &CameraInfo::functionWord},
    {CameraParameter::Green, cv::CAP_PROP_ROLL, &CameraInfo::green},
    {CameraParameter::Blue, cv::CAP_PROP_IRIS, &CameraInfo::blue},
    {CameraParameter::Shutter, cv::CAP_PROP_EXPOSURE, &CameraInfo::shutter},
}};

int cameraParameterIndex(int type)
{
    const auto row = std::find_if(cameraParameters.begin(), cameraParameters.end(),
                                  [type](const CameraParameterRow &r) { return r.type == type; });
    return row == cameraParameters.end() ? -1 : int(row - cameraParameters.begin());
}

namespace {

/// Toward zero. A device may answer anything: what no int holds reads as if it were absent.
int truncated(double value)
{
    const bool fits = value > std::numeric_limits<int>::min() - 1.0 &&
                      value < std::numeric_limits<int>::max() + 1.0;
    return fits ? int(value) : -1;
}

} // namespace

int readCameraProperty(int property)
{
    return sharedCapture.isOpened() ? truncated(sharedCapture.get(property)) : -1;
}

CameraInfo readCameraRecord()
{
    CameraInfo info;
    if (!sharedCapture.isOpened())
        return info;
    info.valid = true;
    for (const CameraParameterRow &row : cameraParameters)
        if (row.field)
            info.*row.field = truncated(sharedCapture.get(row.property));
    return info;
}
