#pragma once

#include <QLineF>
#include <QPainterPath>
#include <QPointF>
#include <QSizeF>
#include <QVector>

// Plane geometry on plain coordinates, in double precision; y grows downwards. Degenerate input is
// not guarded unless a function says so: NaN and infinity pass through.

/// Whether two values agree by the items' fuzzy rule: relative 1e-12, absolute beside a zero.
/// Infinity and what is not a number agree with themselves.
bool fuzzyEqual(double a, double b);
bool fuzzyEqual(QPointF a, QPointF b);
bool fuzzyEqual(const QLineF &a, const QLineF &b);

/// Whether every coordinate is at most 1e-12 in absolute value: the mark of an absent part.
bool isAbsent(QPointF point);
bool isAbsent(const QLineF &line);

bool isFinite(QPointF point);

/// Whether a segment is present and all its coordinates are finite.
bool isDrawable(const QLineF &line);

/// Circle through three points.
/// @param radius  receives the distance of p1 from the centre, or -1 when the determinant is below
///                1e-5, as for points on one line or very close together
/// @returns the centre; (0, 0) when there is none
QPointF circleFromPoints(QPointF p1, QPointF p2, QPointF p3, double &radius);

/// Foot of the perpendicular from `point` on the line through a and b; NaN when a equals b.
QPointF footOfPerpendicular(QPointF point, QPointF a, QPointF b);

/// Segment of the length and direction of a, b whose midpoint is `middle`.
QLineF parallelThrough(QPointF a, QPointF b, QPointF middle);

/// Distance that a parallel reports: from the middle of the base to the foot of the parallel's own
/// middle on the parallel itself, which is that middle. Not the distance of the two lines.
/// @param foot  receives that foot
double parallelDistance(const QLineF &base, const QLineF &parallel, QPointF &foot);

/// The segment moved sideways by a signed distance; a positive one lies below a segment that was
/// drawn from left to right.
QLineF offsetSegment(const QLineF &segment, double distance);

/// The arc around a centre that runs through the second of three points.
struct ArcSweep
{
    QPointF start;
    double startAngle = 0.0; ///< degrees, counter-clockwise on the screen, 0 to under 360
    double sweep = 0.0;      ///< degrees, never negative
    bool wraps = false;      ///< the arc runs through 0 degrees
    bool fromThird = false;  ///< it starts at the third point instead of the first
};
ArcSweep arcSweep(QPointF centre, QPointF p0, QPointF p1, QPointF p2);

/// Path of an arc. The box of its ellipse is one unit short of the diameter.
/// @param from  where the pen is put down: the arc's start, or else a chord leads there
/// @returns an empty path when the circle is not finite
QPainterPath arcPath(QPointF centre, double radius, const ArcSweep &arc, QPointF from);

/// Length of a path as the toolkit tells it. That of an enormous one, on which the toolkit would
/// work for seconds, is taken on a smaller copy.
double pathLength(const QPainterPath &path);

/// Area by the shoelace rule, never negative; 0 below three vertices.
double polygonArea(const QVector<QPointF> &vertices);

/// Wing points of an arrow head, 20 units long at 30 degrees to the shaft.
struct ArrowHead
{
    QPointF first;
    QPointF second;
};
ArrowHead arrowHead(QPointF tail, QPointF tip);

/// Two ticks of 200 units that cross the ends of a measure at right angles, centred on them.
struct TickPair
{
    QLineF first;
    QLineF second;
};
TickPair tickPair(QPointF a, QPointF b);

/// End of a segment from which a dashed extension runs to an intersection; compares x alone.
QPointF endNearIntersection(const QLineF &segment, QPointF intersection);

/// End of a segment from which a dashed extension runs to a foot; compares x distances alone.
QPointF endNearFoot(const QLineF &segment, QPointF foot);

/// A handle's place kept within 0 to the scene's width and height; what is not a number becomes 0.
QPointF clampHandle(QPointF pos, QSizeF scene);

/// A crosshair line's place kept within 0 to the width and height less 1.
QPointF clampCross(QPointF pos, QSizeF scene);
