#include "measure/burnin.h"

#include "measure/base.h"
#include "measure/geometry.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/pathitems.h"
#include "measure/segmentitems.h"

#include <QPainter>

#include <cmath>

namespace {

/// A shape seen in picture pixels.
class PixelShape
{
public:
    PixelShape(const Base &shapeRecord, double pixelsPerUnit)
        : record(shapeRecord)
        , scale(pixelsPerUnit)
        , displacement(record.item()->pos())
    {}

    template<class Item>
    const Item &item() const
    {
        return static_cast<const Item &>(*record.item());
    }
    bool hasHandles(int count) const { return record.pointCount() >= count; }

    /// A handle's place. It already contains the displacement of a shape that was dragged as a
    /// whole, which is added once more.
    QPointF handle(int index) const
    {
        return (record.points()[index]->pos() + displacement) * scale;
    }
    QPointF local(QPointF point) const { return (point + displacement) * scale; }
    QLineF local(const QLineF &line) const { return {local(line.p1()), local(line.p2())}; }

    /// A real length in scene units: the picture's scale does not enter.
    double toSceneUnits(double length) const { return record.text()->toPixels(length); }

private:
    const Base &record;
    double scale;
    QPointF displacement;
};

struct Circle
{
    QPointF centre;
    double radius;
};

/// The circle of three successive handles.
Circle circleOf(const PixelShape &shape, int first)
{
    Circle circle{};
    circle.centre = circleFromPoints(shape.handle(first), shape.handle(first + 1),
                                     shape.handle(first + 2), circle.radius);
    return circle;
}

void drawCircle(QPainter &painter, const Circle &circle)
{
    if (isFinite(circle.centre) && std::isfinite(circle.radius))
        painter.drawEllipse(circle.centre, circle.radius, circle.radius);
}

void paintSegments(QPainter &painter, const PixelShape &shape)
{
    const auto &item = shape.item<GraphicsLine>();
    painter.drawLine(shape.local(item.lineA()));
    for (const QLineF &line : {item.lineB(), item.lineC()}) {
        if (!isAbsent(line))
            painter.drawLine(shape.local(line));
    }
}

void paintVer(QPainter &painter, const PixelShape &shape)
{
    const QLineF base = shape.local(shape.item<GraphicsLine>().lineA());
    painter.drawLine(base);
    if (!shape.hasHandles(3))
        return;
    const QLineF perpendicular = shape.local(shape.item<GraphicsLine>().lineB());
    painter.drawLine(perpendicular);
    // Also when the foot lies on the base line: the dashes lie on it then.
    drawExtension(&painter, painter.pen(), endNearFoot(base, perpendicular.p2()),
                  perpendicular.p2());
}

void paintAng(QPainter &painter, const PixelShape &shape)
{
    const QLineF first = shape.local(shape.item<GraphicsLine>().lineA());
    painter.drawLine(first);
    if (!shape.hasHandles(4))
        return;
    const QLineF second = shape.local(shape.item<GraphicsLine>().lineB());
    painter.drawLine(second);
    QPointF crossing;
    if (first.intersects(second, &crossing) != QLineF::UnboundedIntersection)
        return;
    drawExtension(&painter, painter.pen(), crossing, endNearIntersection(first, crossing));
    drawExtension(&painter, painter.pen(), crossing, endNearIntersection(second, crossing));
}

void paintRect(QPainter &painter, const PixelShape &shape)
{
    const QRectF rect = shape.item<GraphicsRect>().rect();
    const QRectF pixels(shape.local(rect.topLeft()), shape.local(rect.bottomRight()));
    painter.drawRects(&pixels, 1);
}

void paintArc(QPainter &painter, const PixelShape &shape)
{
    if (!shape.hasHandles(3))
        return;
    const Circle circle = circleOf(shape, 0);
    const ArcSweep arc = arcSweep(circle.centre, shape.handle(0), shape.handle(1), shape.handle(2));
    // An arc from the third point that does not wrap gets a chord from its second point.
    const bool hasChord = arc.fromThird && !arc.wraps;
    painter.drawPath(
        arcPath(circle.centre, circle.radius, arc, hasChord ? shape.handle(1) : arc.start));
}

void paintCir(QPainter &painter, const PixelShape &shape)
{
    if (shape.hasHandles(3))
        drawCircle(painter, circleOf(shape, 0));
}

void paintRing(QPainter &painter, const PixelShape &shape)
{
    if (!shape.hasHandles(3))
        return;
    const Circle circle = circleOf(shape, 0);
    drawCircle(painter, circle);
    // Unlike on the screen both inner circles are drawn whatever their radius.
    const auto &ring = shape.item<GraphicsRing>();
    for (double distance : {ring.ringDistance1(), ring.ringDistance2()})
        drawCircle(painter, {circle.centre, circle.radius - shape.toSceneUnits(distance)});
}

void paintPoly(QPainter &painter, const PixelShape &shape)
{
    int count = 0;
    for (; shape.hasHandles(count + 2); ++count)
        painter.drawLine(shape.handle(count), shape.handle(count + 1));
    painter.drawLine(shape.handle(count), shape.handle(0));
}

void paintLCir(QPainter &painter, const PixelShape &shape)
{
    if (!shape.hasHandles(3))
        return;
    const Circle circle = circleOf(shape, 0);
    drawCircle(painter, circle);
    if (shape.hasHandles(4))
        painter.drawLine(circle.centre, shape.handle(3));
}

void paintTCir(QPainter &painter, const PixelShape &shape)
{
    if (!shape.hasHandles(3))
        return;
    const Circle first = circleOf(shape, 0);
    drawCircle(painter, first);
    if (!shape.hasHandles(6))
        return;
    const Circle second = circleOf(shape, 3);
    drawCircle(painter, second);
    painter.drawLine(first.centre, second.centre);
}

void paintLText(QPainter &painter, const PixelShape &shape)
{
    const QPointF tip = shape.handle(1);
    const ArrowHead head = arrowHead(shape.handle(0), tip);
    painter.drawLine(shape.handle(0), tip);
    painter.drawLine(head.first, tip);
    painter.drawLine(head.second, tip);
}

using ShapePainter = void (*)(QPainter &, const PixelShape &);

// Index = type; the two calibration shapes paint nothing.
constexpr ShapePainter shapePainters[] = {
    nullptr,   paintSegments, paintSegments, paintSegments, paintSegments, paintVer,
    paintAng,  paintRect,     paintArc,      paintCir,      paintRing,     paintPoly,
    paintLCir, nullptr,       paintTCir,     paintLText,    nullptr,       nullptr,
};

void paintLabel(QPainter &painter, const Base &record, double scale)
{
    const GraphicsText &label = *record.text();
    const QRectF box =
        label.sceneBoundingRect().translated(4.0, 4.0).translated(record.item()->pos());
    painter.setFont(label.font());
    painter.setPen(label.defaultTextColor());
    painter.drawText(QRectF(box.topLeft() * scale, box.bottomRight() * scale), Qt::TextWrapAnywhere,
                     label.toPlainText());
}

} // namespace

void burnIn(QPainter &painter, const Base &record, double scale)
{
    painter.setPen(record.item()->pen());
    if (const ShapePainter paint = shapePainters[record.type()])
        paint(painter, PixelShape(record, scale));
    paintLabel(painter, record, scale);
}
