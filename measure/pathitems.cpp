#include "measure/pathitems.h"

#include "measure/geometry.h"
#include "measure/graphicstext.h"

#include <QPainter>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double twoPi = 6.283185307179586;

struct Circle
{
    QPointF centre;
    double radius = 0.0;
};

/// The circle through three points of a list; radius -1 about the origin when there is none.
Circle circleThrough(const QVector<QPointF> &points, int first = 0)
{
    Circle circle;
    circle.centre =
        circleFromPoints(points[first], points[first + 1], points[first + 2], circle.radius);
    return circle;
}

void appendCircle(QPainterPath &path, QPointF centre, double radius)
{
    path.addEllipse(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius));
}

void appendCircle(QPainterPath &path, const Circle &circle)
{
    appendCircle(path, circle.centre, circle.radius);
}

void appendSegment(QPainterPath &path, QPointF from, QPointF to)
{
    path.moveTo(from);
    path.lineTo(to);
}

/// Radius, circumference and area, their names followed by the circle's number if it has one.
Readout circleReadout(double radius, const QString &number = {})
{
    return {length("R" + number, radius), length("CLen" + number, twoPi * radius),
            area("Area" + number, pi * radius * radius)};
}

} // namespace

QRectF GraphicsArc::boundingRect() const { return withMargin(path.controlPointRect()); }

QPainterPath GraphicsArc::shape() const { return strokeOf(path, pen_); }

void GraphicsArc::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    if (path.isEmpty())
        return;
    syncHandles();
    painter->setPen(pen_);
    painter->drawPath(path);
    paintExtra(painter);
}

void GraphicsArc::updatePoints()
{
    bool changed = points.size() != localPoints.size();
    if (changed)
        localPoints.clear();
    if (points.isEmpty())
        return;
    for (int i = 0; i < points.size(); ++i) {
        const QPointF place = handleInItem(i);
        if (i == localPoints.size())
            localPoints.append(place);
        else if (!fuzzyEqual(localPoints[i], place))
            localPoints[i] = place;
        else
            continue;
        changed = true;
    }
    if (changed && updateText().toBool()) {
        update();
        announceUpdate();
    }
}

QPainterPath GraphicsArc::geometryPath() const { return path; }

QVariant GraphicsArc::updateText()
{
    if (localPoints.size() < 3)
        return false;
    const Circle circle = circleThrough(localPoints);
    const ArcSweep arc = arcSweep(circle.centre, localPoints[0], localPoints[1], localPoints[2]);
    setPath(arcPath(circle.centre, circle.radius, arc, arc.start));
    text->setValues(lines(
        {angle("CLen", arc.sweep), length("Len", pathLength(path)), length("R", circle.radius)}));
    return true;
}

bool GraphicsArc::paintExtra(QPainter *)
{
    anchorLabel(localPoints.value(1));
    return true;
}

QVector<QPointF> GraphicsArc::handlePlaces() const { return localPoints; }

void GraphicsArc::anchorLabel(QPointF place) { text->setAnchor(mapToScene(place)); }

void GraphicsArc::setPath(const QPainterPath &outline)
{
    prepareGeometryChange();
    path = outline;
}

bool GraphicsOutline::paintExtra(QPainter *)
{
    anchorLabel(localPoints.value(0));
    return true;
}

QVariant GraphicsCir::updateText()
{
    if (localPoints.size() < 3)
        return false;
    const Circle circle = circleThrough(localPoints);
    QPainterPath outline;
    appendCircle(outline, circle);
    setPath(outline);
    // The circumference is the path's own length here; the other circles take 2 pi r.
    text->setValues(lines({length("R", circle.radius), length("CLen", pathLength(path)),
                           area("Area", pi * circle.radius * circle.radius)}));
    return true;
}

QVariant GraphicsRing::updateText()
{
    if (localPoints.size() < 3)
        return false;
    const Circle outer = circleThrough(localPoints);
    QPainterPath outline;
    appendCircle(outline, outer);
    Readout values = circleReadout(outer.radius, "1");

    const double inner[] = {outer.radius - text->toPixels(distance1),
                            outer.radius - text->toPixels(distance2)};
    const auto exists = [&](double radius) { return 0 < radius && radius < outer.radius; };
    if (exists(inner[0])) {
        appendCircle(outline, outer.centre, inner[0]);
        values += circleReadout(inner[0], "2");
    }
    if (exists(inner[1])) {
        appendCircle(outline, outer.centre, inner[1]);
        values += circleReadout(inner[1], "3");
    } else {
        // Only the third circle's area goes without a line end.
        values.last() = endLine(values.last());
    }
    setPath(outline);
    text->setValues(lines(values));
    return true;
}

void GraphicsRing::setRingDistance1(double distance)
{
    distance1 = distance;
    if (recompute())
        announceUpdate();
}

void GraphicsRing::setRingDistance2(double distance)
{
    distance2 = distance;
    if (recompute())
        announceUpdate();
}

QVariant GraphicsPoly::updateText()
{
    if (localPoints.size() < 2)
        return false;
    QPainterPath outline(localPoints[0]);
    for (int i = 1; i < localPoints.size(); ++i)
        outline.lineTo(localPoints[i]);
    outline.lineTo(localPoints[0]);
    setPath(outline);
    text->setValues(
        lines({length("CLen", pathLength(path)), area("Area", polygonArea(localPoints))}));
    return true;
}

QVariant GraphicsLCir::updateText()
{
    if (localPoints.size() < 3)
        return false;
    const Circle circle = circleThrough(localPoints);
    QPainterPath outline;
    appendCircle(outline, circle);
    Readout values = circleReadout(circle.radius);
    if (localPoints.size() == 4) {
        appendSegment(outline, circle.centre, localPoints[3]);
        values << length("Len", QLineF(circle.centre, localPoints[3]).length());
    }
    setPath(outline);
    text->setValues(lines(values));
    return true;
}

QVariant GraphicsTCir::updateText()
{
    if (localPoints.size() < 3)
        return false;
    const Circle first = circleThrough(localPoints);
    QPainterPath outline;
    appendCircle(outline, first);
    Readout values = circleReadout(first.radius, "1");
    // The last handle starts on the one before it: until they part there is no second circle.
    if (localPoints.size() == 6 && localPoints[4] != localPoints[5]) {
        const Circle second = circleThrough(localPoints, 3);
        appendCircle(outline, second);
        appendSegment(outline, first.centre, second.centre);
        values += circleReadout(second.radius, "2");
        values << length("Dis", QLineF(first.centre, second.centre).length());
    }
    setPath(outline);
    text->setValues(lines(values));
    return true;
}

QVariant GraphicsLText::updateText()
{
    if (localPoints.size() < 2)
        return false;
    const QPointF tip = localPoints[1];
    const ArrowHead head = arrowHead(localPoints[0], tip);
    QPainterPath outline(localPoints[0]);
    outline.lineTo(tip);
    outline.addPolygon(QPolygonF({head.first, tip, head.second}));
    setPath(outline);
    return true;
}

bool GraphicsLText::paintExtra(QPainter *)
{
    anchorLabel(0.5 * (localPoints.value(0) + localPoints.value(1)));
    // On every paint, so that the list follows edits of the words.
    announceUpdate();
    return true;
}

QVariant GraphicsCCali::updateText()
{
    if (localPoints.size() < 3)
        return false;
    const Circle circle = circleThrough(localPoints);
    radius_ = circle.radius;
    QPainterPath outline;
    appendCircle(outline, circle);
    setPath(outline);
    return true;
}

bool GraphicsCCali::paintExtra(QPainter *) { return true; }
