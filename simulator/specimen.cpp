#include "simulator/specimen.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace specimen {

namespace {

const cv::Scalar solderMask(74, 104, 36);
const cv::Scalar tracePaint(92, 138, 58);
const cv::Scalar gold(112, 190, 222);
const cv::Scalar drilled(24, 26, 28);
const cv::Scalar moulding(52, 48, 46);
const cv::Scalar metal(196, 192, 186);
const cv::Scalar silkscreen(232, 236, 236);

/// How much of a pixel lies between two limits, along one axis.
double overlap(double middle, double low, double high)
{
    return std::clamp(std::min(middle + 0.5, high) - std::max(middle - 0.5, low), 0.0, 1.0);
}

/// How much of a pixel lies inside a rounded edge. @param inside  its middle's distance from there
double covered(double inside) { return std::clamp(inside + 0.5, 0.0, 1.0); }

/// Draws in micrometres onto a picture. Each pixel takes as much of a colour as it is covered, so
/// that edges lie where the tables say to a fraction of a pixel. (The library's own antialiased
/// fillings reach most of a pixel over theirs.)
class Pen
{
public:
    Pen(cv::Mat &target, double micrometresPerPixel)
        : picture(target)
        , perPixel(micrometresPerPixel)
        , middle(target.cols / 2.0, target.rows / 2.0)
    {}

    void rectangle(const cv::Rect2d &area, const cv::Scalar &colour) const
    {
        const cv::Point2d low = inPixels(area.tl());
        const cv::Point2d high = inPixels(area.br());
        fill(low, high, colour, [&](cv::Point2d pixel) {
            return overlap(pixel.x, low.x, high.x) * overlap(pixel.y, low.y, high.y);
        });
    }

    void disc(cv::Point2d centre, double radius, const cv::Scalar &colour) const
    {
        stroke(centre, centre, 2 * radius, colour);
    }

    /// A stroke of a width with round ends.
    void stroke(cv::Point2d a, cv::Point2d b, double width, const cv::Scalar &colour) const
    {
        const cv::Point2d from = inPixels(a);
        const cv::Point2d along = inPixels(b) - from;
        const double radius = width / 2 / perPixel;
        const cv::Point2d reach(radius + 1, radius + 1);
        const cv::Point2d to = from + along;
        const cv::Point2d low(std::min(from.x, to.x), std::min(from.y, to.y));
        const cv::Point2d high(std::max(from.x, to.x), std::max(from.y, to.y));
        fill(low - reach, high + reach, colour, [&](cv::Point2d pixel) {
            const double square = along.dot(along);
            const double part =
                square > 0 ? std::clamp((pixel - from).dot(along) / square, 0.0, 1.0) : 0.0;
            const cv::Point2d off = pixel - from - part * along;
            return covered(radius - std::hypot(off.x, off.y));
        });
    }

    /// A line of text whose capitals are `height` high, from its lower left corner.
    void text(const char *words, cv::Point2d corner, double height, const cv::Scalar &colour) const
    {
        const int font = cv::FONT_HERSHEY_SIMPLEX;
        const int thickness = std::max(1, cvRound(height / 7 / perPixel));
        const double scale = height / perPixel / 21.0; // its capitals are 21 high at scale 1
        cv::putText(picture, words, pixel(corner), font, scale, colour, thickness, cv::LINE_AA);
    }

private:
    /// A place in pixels; (0, 0) is the corner of the first one.
    cv::Point2d inPixels(cv::Point2d point) const { return point / perPixel + middle; }
    cv::Point pixel(cv::Point2d point) const { return inPixels(point) - cv::Point2d(0.5, 0.5); }

    /// Blends a colour into all pixels between two corners.
    /// @param coverage  from 0 to 1, of the pixel whose middle it is given
    template<class Coverage>
    void fill(cv::Point2d low, cv::Point2d high, const cv::Scalar &colour, Coverage coverage) const
    {
        const cv::Rect box = cv::Rect(cv::Point(cvFloor(low.x), cvFloor(low.y)),
                                      cv::Point(cvCeil(high.x), cvCeil(high.y))) &
                             cv::Rect({}, picture.size());
        for (int y = box.y; y < box.y + box.height; ++y)
            for (int x = box.x; x < box.x + box.width; ++x) {
                const double part = coverage({x + 0.5, y + 0.5});
                auto &value = picture.at<cv::Vec3b>(y, x);
                for (int i = 0; i < 3; ++i)
                    value[i] = cv::saturate_cast<uchar>(value[i] + part * (colour[i] - value[i]));
            }
    }

    cv::Mat &picture;
    double perPixel;
    cv::Point2d middle;
};

/// Fine grain that every surface has, so that focus can be judged everywhere. The same each time.
void addGrain(cv::Mat &picture, double micrometresPerPixel)
{
    cv::Mat grain(cvCeil(picture.rows * micrometresPerPixel / 10.0),
                  cvCeil(picture.cols * micrometresPerPixel / 10.0), CV_8UC1);
    cv::RNG random(0x5eed);
    random.fill(grain, cv::RNG::UNIFORM, 0, 28);
    cv::Mat sized;
    cv::resize(grain, sized, picture.size(), 0, 0, cv::INTER_LINEAR);
    cv::cvtColor(sized, sized, cv::COLOR_GRAY2BGR);
    picture += sized;
    picture -= cv::Scalar::all(14);
}

void drawRuler(const Pen &pen)
{
    const Ruler &scale = ruler();
    for (int i = 0; i <= scale.intervals; ++i) {
        const cv::Point2d foot = scale.firstTick + cv::Point2d(i * scale.pitch, 0);
        const bool isLong = i % scale.ticksPerLongTick == 0;
        const double reach = isLong ? 320 : i % (scale.ticksPerLongTick / 2) == 0 ? 230 : 150;
        pen.rectangle({foot.x - 10, foot.y - reach, 20, reach}, silkscreen);
        if (isLong)
            pen.text(std::to_string(i / scale.ticksPerLongTick).c_str(),
                     foot + cv::Point2d(25, -200), 110, silkscreen);
    }
    pen.rectangle(
        {scale.firstTick.x - 10, scale.firstTick.y, scale.intervals * scale.pitch + 20, 20},
        silkscreen);
    pen.text("mm", scale.firstTick + cv::Point2d(scale.intervals * scale.pitch + 70, 0), 110,
             silkscreen);
}

} // namespace

const std::vector<cv::Rect2d> &pads()
{
    static const std::vector<cv::Rect2d> list = [] {
        std::vector<cv::Rect2d> result;
        result.reserve(8);
        for (int i = 0; i < 6; ++i)
            result.emplace_back(-4200.0 + i * 500.0, -2000, 300, 700);
        result.emplace_back(-1000, 900, 800, 400);
        result.emplace_back(200, 900, 800, 400);
        return result;
    }();
    return list;
}

const std::vector<Hole> &holes()
{
    static const std::vector<Hole> list{
        {{-3600, 700}, 250, 450}, {{-2400, 700}, 200, 400}, {{3900, -1900}, 300, 500}};
    return list;
}

const std::vector<Trace> &traces()
{
    static const std::vector<Trace> list{
        {{{-3600, 700}, {-3600, -400}, {-3050, -950}, {-3050, -1700}}, 120},
        {{{-2400, 700}, {-2400, -300}, {-2050, -650}, {-2050, -1700}}, 120},
        {{{-2400, 700}, {-1400, 700}, {-1000, 1100}, {-800, 1100}}, 100},
        {{{800, 1000}, {1800, 1000}, {2300, 500}, {4900, 500}}, 100},
        {{{3900, -1900}, {3200, -1900}, {2800, -1500}, {2200, -1500}}, 150},
        {{{800, 1200}, {1900, 1200}, {2400, 700}, {4900, 700}}, 100}};
    return list;
}

const std::vector<Block> &blocks()
{
    static const std::vector<Block> list{{{-900, -2000, 2600, 1700}, 290, "OV 4712"},
                                         {{2700, -700, 1500, 800}, 340, "2R2"},
                                         {{-4400, 1500, 900, 500}, 120, "TP1"}};
    return list;
}

const Ruler &ruler()
{
    static const Ruler scale{{-3000, 2300}, 100, 60, 10};
    return scale;
}

double boardHeight(double y) { return 200.0 + y / 90.0; }

cv::Mat draw(cv::Size size, double micrometresPerPixel)
{
    cv::Mat picture(size, CV_8UC3, solderMask);
    const Pen pen(picture, micrometresPerPixel);

    for (const Trace &trace : traces())
        for (size_t i = 1; i < trace.corners.size(); ++i)
            pen.stroke(trace.corners[i - 1], trace.corners[i], trace.width, tracePaint);
    for (const cv::Rect2d &pad : pads())
        pen.rectangle(pad, gold);
    for (const Hole &hole : holes()) {
        pen.disc(hole.centre, hole.outerRadius, gold);
        pen.disc(hole.centre, hole.innerRadius, drilled);
    }
    for (const Block &block : blocks()) {
        pen.rectangle(block.area, block.height > 300 ? metal : moulding);
        const double height = std::min(220.0, block.area.height / 3);
        pen.text(block.text,
                 {block.area.x + 120, block.area.y + block.area.height / 2 + height / 2}, height,
                 block.height > 300 ? moulding : silkscreen);
    }
    pen.text("C12", {-900, 820}, 130, silkscreen);
    pen.text("J3", {-4400, 150}, 150, silkscreen);
    drawRuler(pen);
    addGrain(picture, micrometresPerPixel);
    return picture;
}

} // namespace specimen
