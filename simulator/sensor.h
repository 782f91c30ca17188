#pragma once

#include <opencv2/core.hpp>

/// What the camera makes of the light: the parameters that change colours and orientation.
struct SensorSettings
{
    int brightness = 56;
    int contrast = 50;
    int hue = 50;
    int saturation = 50;
    int gain = 0;
    int exposure = -6; ///< log2 seconds
    int sharpness = 4;
    int zoom = 1;
    int red = 668;
    int green = 269;
    int blue = 5570;
    int functions = 12; ///< bit word: flips, white balance, exposure, reflection, focus area

    bool operator==(const SensorSettings &other) const;
};

/// Bits of the function word.
enum SensorFunction {
    FlipVertically = 1,
    FlipHorizontally = 2,
    AutomaticWhiteBalance = 4,
    AutomaticExposure = 8,
    EliminateReflection = 16,
    LargeFocusArea = 32
};

/// Develops a BGR picture: zoom, colour, tone, sharpening and flips. Neutral settings change
/// nothing.
cv::Mat develop(const cv::Mat &light, const SensorSettings &settings);
