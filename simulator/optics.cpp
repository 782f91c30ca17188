#include "simulator/optics.h"

#include "simulator/specimen.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace {

/// Distances from the focus at which the picture is prepared; between them it is blended. Up to the
/// first one after 0 the depth of field keeps the picture sharp.
constexpr double stageDefocus[] = {0, 12, 24, 48, 96, 192, 400};
constexpr double depthOfField = 4;
/// Standard deviation of the blur in pixels of a picture 1920 wide, for each unit of defocus.
constexpr double blurPerUnit = 0.06;

/// A Gaussian blur that works on a smaller picture when it is wide: the eye sees no difference.
cv::Mat blurred(const cv::Mat &sharp, double sigma)
{
    cv::Mat result;
    const int shrink = std::max(1, cvFloor(sigma / 2));
    cv::Mat small;
    cv::resize(sharp, small, {}, 1.0 / shrink, 1.0 / shrink, cv::INTER_AREA);
    cv::GaussianBlur(small, small, {}, sigma / shrink);
    cv::resize(small, result, sharp.size(), 0, 0, cv::INTER_LINEAR);
    return result;
}

double gradientSum(const cv::Mat &picture)
{
    cv::Mat gray, gx, gy;
    cv::cvtColor(picture, gray, cv::COLOR_BGR2GRAY);
    cv::Sobel(gray, gx, CV_32F, 1, 0);
    cv::Sobel(gray, gy, CV_32F, 0, 1);
    return cv::norm(gx, cv::NORM_L1) + cv::norm(gy, cv::NORM_L1);
}

} // namespace

Optics::Optics(cv::Size size)
    : micrometresPerPixel(specimen::fieldWidth / size.width)
{
    const cv::Mat sharp = specimen::draw(size, micrometresPerPixel);
    for (double defocus : stageDefocus) {
        const double sigma = defocus * blurPerUnit * size.width / 1920.0;
        stages.push_back({defocus, defocus == 0 ? sharp : blurred(sharp, sigma)});
    }
}

cv::Mat Optics::render(double focus) const { return render(focus, {{}, size()}); }

cv::Mat Optics::render(double focus, const cv::Rect &part) const
{
    cv::Mat result(part.size(), CV_8UC3);
    for (int row = 0; row < part.height; ++row) {
        const cv::Rect line(part.x, part.y + row, part.width, 1);
        blend(std::abs(heightOfRow(line.y) - focus), line, result.row(row));
    }
    for (const specimen::Block &block : specimen::blocks()) {
        const cv::Rect area = inPixels(block.area) & part;
        if (!area.empty())
            blend(std::abs(block.height - focus), area, result(area - part.tl()));
    }
    return result;
}

void Optics::blend(double defocus, const cv::Rect &part, cv::Mat target) const
{
    if (defocus <= depthOfField) {
        allInFocus()(part).copyTo(target);
        return;
    }
    const double distance = std::min(defocus - depthOfField, stages.back().defocus);
    const auto upper =
        std::lower_bound(stages.begin() + 1, stages.end() - 1, distance,
                         [](const Stage &stage, double value) { return stage.defocus < value; });
    const Stage &lower = *std::prev(upper);
    const double weight = (distance - lower.defocus) / (upper->defocus - lower.defocus);
    cv::addWeighted(lower.picture(part), 1 - weight, upper->picture(part), weight, 0, target);
}

double Optics::sharpestFocus(const cv::Rect &part) const
{
    double best = 0;
    double strongest = -1;
    const auto tryRange = [&](double from, double to, double step) {
        for (double focus = std::max(0.0, from); focus <= std::min(400.0, to); focus += step) {
            const double strength = gradientSum(render(focus, part));
            if (strength > strongest) {
                strongest = strength;
                best = focus;
            }
        }
    };
    tryRange(0, 400, 8);
    tryRange(best - 7, best + 7, 1);
    return best;
}

double Optics::heightOfRow(int row) const
{
    return specimen::boardHeight((row + 0.5 - size().height / 2.0) * micrometresPerPixel);
}

cv::Rect Optics::inPixels(const cv::Rect2d &area) const
{
    const cv::Point2d middle(size().width / 2.0, size().height / 2.0);
    const cv::Point topLeft = area.tl() / micrometresPerPixel + middle;
    const cv::Point bottomRight = area.br() / micrometresPerPixel + middle;
    return {topLeft, bottomRight};
}
