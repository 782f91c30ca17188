#include "simulator/tour_measures.h"

#include "simulator/specimen.h"
#include "simulator/tour_operator.h"

#include <QRegularExpression>
#include <QtMath>

namespace tour {

namespace {

using namespace specimen;

constexpr double millimetre = 1000; // micrometres
/// What a pixel is worth in a frame 1920 wide, in millimetres.
constexpr double pixel = fieldWidth / 1920 / millimetre;

const QPointF sideways(1, 0);
const QPointF upright(0, 1);

QPointF point(cv::Point2d p) { return {p.x, p.y}; }

Place corner(double x, double y) { return {{x, y}, {}}; }

Place left(const cv::Rect2d &area, double y) { return {{area.x, y}, sideways}; }

Place right(const cv::Rect2d &area, double y) { return {{area.x + area.width, y}, sideways}; }

/// The left edge of a tick of the ruler.
Place tick(int number)
{
    const Ruler &scale = ruler();
    return {{scale.firstTick.x + number * scale.pitch - 10, scale.firstTick.y - 50}, sideways};
}

/// Three places on the upper half of a circle: right, top and left.
QVector<Place> circle(cv::Point2d centre, double radius)
{
    QVector<Place> places;
    for (const QPointF &out : {sideways, -upright, -sideways})
        places.append({point(centre) + radius * out, out});
    return places;
}

MeasureGroup distances()
{
    const cv::Rect2d first = pads()[0];
    const cv::Rect2d second = pads()[1];
    const cv::Rect2d fourth = pads()[3];
    const cv::Rect2d last = pads()[5];
    const double row = first.y + first.height / 2;
    const double foot = first.y + first.height;
    const double column = fourth.x + fourth.width / 2;
    const Place corners[] = {corner(first.x, first.y), corner(first.x, foot),
                             corner(last.x + last.width, foot)};
    const Place hole{point(holes()[1].centre), {}};
    const auto &trace = traces()[0].corners;
    const Place bend{point(trace[1]), {}};
    const Place upper{point(trace[2]), {}};
    const Place hub{point(trace[0]), {}};
    const Place lower{(hub.at + bend.at) / 2, {}};
    // A pixel at the end of the shorter leg.
    const double turn = qRadiansToDegrees(pixel * millimetre / cv::norm(trace[2] - trace[1]));
    const QVector<Measure> measures{
        {"hline", {left(second, row), right(second, row)}, "Len", 0.3, pixel, "pad, width"},
        {"vline",
         {{{column, first.y}, upright}, {{column, foot}, upright}},
         "Len",
         0.7,
         pixel,
         "pad, height"},
        {"par", {corners[0], corners[1], left(last, row)}, "Dis", 2.5, pixel, "first to last pad"},
        {"ver", {corners[1], corners[2], hole}, "Dis", 2.0, pixel, "row of pads to hole"},
        {"angle", {bend, upper, hub, lower}, "Ang", 45.0, turn, "bend of a trace"}};
    return {"distances", "150", measures};
}

MeasureGroup holesSideBySide()
{
    const Hole &big = holes()[0];
    const Hole &small = holes()[1];
    const QVector<Place> bigHole = circle(big.centre, big.innerRadius);
    const QVector<Place> smallHole = circle(small.centre, small.innerRadius);
    const QVector<Place> bothRings =
        circle(big.centre, big.outerRadius) + circle(small.centre, small.outerRadius);
    const Place middle{point(big.centre), {}};
    const QVector<Measure> measures{
        {"circle", bigHole, "R", 0.25, pixel, "left hole, radius", {-1400, -360}},
        {"line_circle",
         smallHole + QVector<Place>{middle},
         "Len",
         1.2,
         pixel,
         "hole to hole",
         {250, 150}},
        {"two_circle", bothRings, "Dis", 1.2, pixel, "ring to ring", {-100, 480}}};
    return {"holes", "200", measures};
}

MeasureGroup rings()
{
    const QVector<Measure> measures{
        {"ring", largeRing(), "R2", 0.3, pixel, "ring, inner circle", {-900, 560}},
        {"arc", largeRing(), "R", 0.5, pixel, "ring, outer arc", {-1200, 0}}};
    return {"rings", "200", measures};
}

MeasureGroup areas()
{
    const auto corners = [](const cv::Rect2d &pad) {
        const double x = pad.x + pad.width;
        const double y = pad.y + pad.height;
        return QVector<Place>{corner(pad.x, pad.y), corner(x, pad.y), corner(x, y),
                              corner(pad.x, y)};
    };
    const QVector<Place> box = corners(pads()[6]);
    const QVector<Place> outline = corners(pads()[7]);
    const Place tip = outline[2];
    const Place tail = corner(tip.at.x() + 300, tip.at.y() + 300);
    const QVector<Measure> measures{
        {"line", {tick(10), tick(40)}, "Len", 3.0, pixel, "ruler, 1 to 4 mm", {0, 80}},
        {"rect", {box[0], box[2]}, "Wid", 0.8, pixel, "wide pad, width", {-300, -200}},
        // Each of the four sides may be off by a pixel.
        {"poly", outline, "CLen", 2.4, 4 * pixel, "wide pad, outline"},
        {"text", {tail, tip}, nullptr, 0, 0, nullptr, {80, 40}}};
    return {"areas", "150", measures};
}

} // namespace

QVector<Place> rulerEnds() { return {tick(0), tick(ruler().intervals)}; }

QVector<Place> largeRing() { return circle(holes()[2].centre, holes()[2].outerRadius); }

const QVector<MeasureGroup> &measureGroups()
{
    static const QVector<MeasureGroup> groups{distances(), holesSideBySide(), rings(), areas()};
    return groups;
}

double valueIn(const QString &label, const QString &name)
{
    const QRegularExpression line("^" + name + " = (-?[0-9.e+-]+)",
                                  QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = line.match(label);
    if (!match.hasMatch())
        throw Error("the label has no " + name + ": " + label);
    return match.captured(1).toDouble();
}

} // namespace tour
