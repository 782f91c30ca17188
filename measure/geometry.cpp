#include "measure/geometry.h"

#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double thirdOfPi = 1.0471975511965976;
constexpr double nearZero = 1e-12;
constexpr double degenerateDeterminant = 1e-5;
constexpr double wingLength = 20.0;
constexpr double halfTick = 100.0;

QPointF polar(QPointF origin, double length, double angle)
{
    return {origin.x() + std::sin(angle) * length, origin.y() + std::cos(angle) * length};
}

} // namespace

bool fuzzyEqual(double a, double b)
{
    // What is not a number agrees with itself: a degenerate shape must come to rest.
    if (a == b || (std::isnan(a) && std::isnan(b)))
        return true;
    const double difference = std::abs(a - b);
    if (a == 0.0 || b == 0.0)
        return difference <= nearZero;
    return difference * 1e12 <= std::min(std::abs(a), std::abs(b));
}

bool fuzzyEqual(QPointF a, QPointF b)
{
    return fuzzyEqual(a.x(), b.x()) && fuzzyEqual(a.y(), b.y());
}

bool fuzzyEqual(const QLineF &a, const QLineF &b)
{
    return fuzzyEqual(a.p1(), b.p1()) && fuzzyEqual(a.p2(), b.p2());
}

bool isAbsent(QPointF point)
{
    return std::abs(point.x()) <= nearZero && std::abs(point.y()) <= nearZero;
}

bool isAbsent(const QLineF &line) { return isAbsent(line.p1()) && isAbsent(line.p2()); }

bool isFinite(QPointF point) { return std::isfinite(point.x()) && std::isfinite(point.y()); }

bool isDrawable(const QLineF &line)
{
    return !isAbsent(line) && isFinite(line.p1()) && isFinite(line.p2());
}

QPointF circleFromPoints(QPointF p1, QPointF p2, QPointF p3, double &radius)
{
    const double dx12 = p1.x() - p2.x();
    const double dy12 = p1.y() - p2.y();
    const double dx13 = p1.x() - p3.x();
    const double dy13 = p1.y() - p3.y();
    const double det = dx13 * dy12 - dx12 * dy13;
    if (std::abs(det) < degenerateDeterminant) {
        radius = -1.0;
        return {};
    }
    const double a =
        ((p1.y() * p1.y() - p2.y() * p2.y()) + (p1.x() * p1.x() - p2.x() * p2.x())) * 0.5;
    const double b =
        0.5 * ((p1.x() * p1.x() - p3.x() * p3.x()) + (p1.y() * p1.y() - p3.y() * p3.y()));
    const QPointF centre(-(dy13 * a - dy12 * b) / det, -(b * dx12 - a * dx13) / det);
    radius = std::hypot(p1.x() - centre.x(), p1.y() - centre.y());
    return centre;
}

QPointF footOfPerpendicular(QPointF point, QPointF a, QPointF b)
{
    const double dx = a.x() - b.x();
    const double dy = a.y() - b.y();
    const double t = ((point.x() - a.x()) * dx + (point.y() - a.y()) * dy) / (dx * dx + dy * dy);
    return {a.x() + dx * t, a.y() + dy * t};
}

QLineF parallelThrough(QPointF a, QPointF b, QPointF middle)
{
    const QPointF baseMiddle = 0.5 * a + 0.5 * b;
    return {a + middle - baseMiddle, b + middle - baseMiddle};
}

double parallelDistance(const QLineF &base, const QLineF &parallel, QPointF &foot)
{
    // The parallel's own middle is projected on the parallel itself, on purpose: what is told is
    // the distance of the two middles.
    foot = footOfPerpendicular(parallel.center(), parallel.p1(), parallel.p2());
    return QLineF(base.center(), foot).length();
}

QLineF offsetSegment(const QLineF &segment, double distance)
{
    const double dx = segment.dx();
    const double dy = segment.dy();
    const double k = distance / std::sqrt(dx * dx + dy * dy);
    const QPointF start((segment.y1() - segment.y2()) * k + segment.x1(), k * dx + segment.y1());
    return {start, start + (segment.p2() - segment.p1())};
}

ArcSweep arcSweep(QPointF centre, QPointF p0, QPointF p1, QPointF p2)
{
    const double a0 = QLineF(centre, p0).angle();
    const double a1 = QLineF(centre, p1).angle();
    const double a2 = QLineF(centre, p2).angle();

    ArcSweep arc;
    arc.wraps = (a1 < a0 && a1 < a2) || (a1 > a0 && a1 > a2);
    arc.fromThird = arc.wraps == (a2 > a0);
    const double end = arc.fromThird ? a0 : a2;
    arc.start = arc.fromThird ? p2 : p0;
    arc.startAngle = arc.fromThird ? a2 : a0;
    arc.sweep = end + (arc.wraps ? 360.0 : 0.0) - arc.startAngle;
    return arc;
}

QPainterPath arcPath(QPointF centre, double radius, const ArcSweep &arc, QPointF from)
{
    QPainterPath path;
    if (!isFinite(centre) || !std::isfinite(radius) || !isFinite(from))
        return path;
    // One unit short of the diameter, in the drawing alone.
    const double side = 2 * radius - 1;
    path.moveTo(from);
    path.arcTo(centre.x() - radius, centre.y() - radius, side, side, arc.startAngle, arc.sweep);
    return path;
}

double pathLength(const QPainterPath &path)
{
    constexpr double largest = 1e8;
    const QRectF box = path.controlPointRect();
    const double size = std::max(box.width(), box.height());
    if (!(size > largest))
        return path.length();
    return QTransform::fromScale(largest / size, largest / size).map(path).length() *
           (size / largest);
}

double polygonArea(const QVector<QPointF> &vertices)
{
    const int count = vertices.size();
    if (count < 3)
        return 0.0;
    double sum = 0.0;
    for (int i = 0; i < count; ++i) {
        const QPointF &a = vertices[i];
        const QPointF &b = vertices[(i + 1) % count];
        sum += a.x() * b.y() - b.x() * a.y();
    }
    return std::abs(0.5 * sum);
}

ArrowHead arrowHead(QPointF tail, QPointF tip)
{
    const double angle = std::atan2(tip.y() - tail.y(), tail.x() - tip.x());
    return {polar(tip, wingLength, angle + thirdOfPi),
            polar(tip, wingLength, (angle + pi) - thirdOfPi)};
}

TickPair tickPair(QPointF a, QPointF b)
{
    const QPointF along = b - a;
    const double angle = std::atan(along.y() / along.x());
    const QPointF half(halfTick * std::sin(angle), -halfTick * std::cos(angle));
    const QLineF first(a + half, a - half);
    return {first, first.translated(along)};
}

QPointF endNearIntersection(const QLineF &segment, QPointF intersection)
{
    const bool secondIsRight = segment.x2() > segment.x1();
    if (segment.x1() > intersection.x())
        return secondIsRight ? segment.p1() : segment.p2();
    return secondIsRight ? segment.p2() : segment.p1();
}

QPointF endNearFoot(const QLineF &segment, QPointF foot)
{
    const bool firstIsNearer =
        std::abs(segment.x2() - foot.x()) > std::abs(segment.x1() - foot.x());
    return firstIsNearer ? segment.p1() : segment.p2();
}

QPointF clampHandle(QPointF pos, QSizeF scene)
{
    // What is not a number fails the first comparison and becomes 0: no handle stands nowhere.
    const auto clamp = [](double value, double limit) {
        return value >= 0.0 ? std::min(value, limit) : 0.0;
    };
    return {clamp(pos.x(), scene.width()), clamp(pos.y(), scene.height())};
}

QPointF clampCross(QPointF pos, QSizeF scene)
{
    const auto clamp = [](double value, double limit) {
        if (value >= limit)
            return limit - 1;
        return value >= 0.0 ? value : 0.0;
    };
    return {clamp(pos.x(), scene.width()), clamp(pos.y(), scene.height())};
}
