#include "simulator/sensor.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

auto fields(const SensorSettings &s)
{
    return std::tie(s.brightness, s.contrast, s.hue, s.saturation, s.gain, s.exposure, s.sharpness,
                    s.zoom, s.red, s.green, s.blue, s.functions);
}

const SensorSettings neutral;

/// Digital zoom about the middle, from 1 at 1 to 4 at 130.
cv::Mat zoomed(const cv::Mat &picture, int zoom)
{
    const double factor = 1.0 + 3.0 * (std::clamp(zoom, 1, 130) - 1) / 129.0;
    if (factor == 1.0)
        return picture;
    const cv::Size part(cvRound(picture.cols / factor), cvRound(picture.rows / factor));
    const cv::Rect middle({(picture.cols - part.width) / 2, (picture.rows - part.height) / 2},
                          part);
    cv::Mat result;
    cv::resize(picture(middle), result, picture.size(), 0, 0, cv::INTER_LINEAR);
    return result;
}

/// Brightness of the light on the sensor, as a factor.
double exposureFactor(const SensorSettings &s)
{
    if (s.functions & AutomaticExposure)
        return std::exp2((s.brightness - neutral.brightness) / 30.0);
    return std::exp2(s.exposure - neutral.exposure) * (1.0 + s.gain / 10.0);
}

double balance(int value, int neutralValue, const SensorSettings &s)
{
    if (s.functions & AutomaticWhiteBalance)
        return 1.0;
    return std::clamp(double(value) / neutralValue, 0.1, 4.0);
}

/// One table a channel holds all that works on single values.
cv::Mat toneTable(const SensorSettings &s)
{
    const double light = exposureFactor(s);
    const double gains[] = {light * balance(s.blue, neutral.blue, s),
                            light * balance(s.green, neutral.green, s),
                            light * balance(s.red, neutral.red, s)};
    const double highest = s.functions & EliminateReflection ? 200.0 : 255.0;
    cv::Mat table(1, 256, CV_8UC3);
    for (int value = 0; value < 256; ++value)
        for (int channel = 0; channel < 3; ++channel) {
            const double lit = std::min(value * gains[channel], highest);
            table.at<cv::Vec3b>(0, value)[channel] =
                cv::saturate_cast<uchar>((lit - 128.0) * s.contrast / neutral.contrast + 128.0);
        }
    return table;
}

/// Saturation about the grey axis and a turn of the hue around it, in the plane of equal channels.
cv::Matx33d colourMatrix(const SensorSettings &s)
{
    const double turn = (s.hue - neutral.hue) * CV_PI / 100.0;
    const double strength = double(s.saturation) / neutral.saturation;
    const double c = std::cos(turn) * strength;
    const double d = std::sin(turn) * strength / std::sqrt(3.0);
    const double a = (1.0 + 2.0 * c) / 3.0;
    const double b = (1.0 - c) / 3.0;
    return {a, b - d, b + d, b + d, a, b - d, b - d, b + d, a};
}

} // namespace

bool SensorSettings::operator==(const SensorSettings &other) const
{
    return fields(*this) == fields(other);
}

cv::Mat develop(const cv::Mat &light, const SensorSettings &settings)
{
    cv::Mat picture = zoomed(light, settings.zoom);
    cv::Mat result;
    cv::LUT(picture, toneTable(settings), result);
    if (settings.saturation != neutral.saturation || settings.hue != neutral.hue)
        cv::transform(result, result, colourMatrix(settings));
    if (settings.sharpness != neutral.sharpness) {
        cv::Mat soft;
        cv::GaussianBlur(result, soft, {5, 5}, 1.2);
        const double strength = (settings.sharpness - neutral.sharpness) / 8.0;
        cv::addWeighted(result, 1.0 + strength, soft, -strength, 0, result);
    }
    const bool upsideDown = settings.functions & FlipVertically;
    const bool mirrored = settings.functions & FlipHorizontally;
    if (upsideDown || mirrored)
        cv::flip(result, result, upsideDown && mirrored ? -1 : upsideDown ? 0 : 1);
    return result;
}
