#pragma once

#include <opencv2/core.hpp>

#include <vector>

/// The board under the simulated microscope. All lengths are micrometres, the origin is the middle
/// of the field, y grows downwards. Heights are the focus positions at which a part is sharp.
/// Drawing and the comparison of measured with true values read the same tables.
namespace specimen {

struct Hole
{
    cv::Point2d centre;
    double innerRadius;
    double outerRadius; ///< of the copper ring around it
};

struct Trace
{
    std::vector<cv::Point2d> corners;
    double width;
};

/// A stage ruler: a row of ticks to the right of its first one.
struct Ruler
{
    cv::Point2d firstTick;
    double pitch;
    int intervals;
    int ticksPerLongTick;
};

/// A part that stands above the board, flat on top.
struct Block
{
    cv::Rect2d area;
    double height;
    const char *text;
};

/// Rectangles of bare copper, lying on the board.
const std::vector<cv::Rect2d> &pads();
const std::vector<Hole> &holes();
const std::vector<Trace> &traces();
const std::vector<Block> &blocks();
const Ruler &ruler();

/// The field that the camera sees at zoom 1, whatever its resolution, in x.
constexpr double fieldWidth = 9600.0;

/// Focus position at which the bare board is sharp: it is tilted along y.
double boardHeight(double y);

/// The whole specimen sharp, as an 8-bit BGR picture centred on the origin.
cv::Mat draw(cv::Size size, double micrometresPerPixel);

} // namespace specimen
