#include "measure/segmentitems.h"

#include "measure/geometry.h"
#include "measure/graphicstext.h"

#include <QPainter>

namespace {

/// An offset too small to be drawn, in scene units.
bool isNegligible(double offset) { return -0.1 < offset && offset < 0.1; }

void appendSegment(QPainterPath &path, const QLineF &line)
{
    path.moveTo(line.p1());
    path.lineTo(line.p2());
}

QRectF boxOf(const QLineF &line) { return QRectF(line.p1(), line.p2()).normalized(); }

QRectF widened(const QRectF &box, QPointF point)
{
    return QRectF(QPointF(qMin(box.left(), point.x()), qMin(box.top(), point.y())),
                  QPointF(qMax(box.right(), point.x()), qMax(box.bottom(), point.y())));
}

/// Whether the foot of a perpendicular lies between the ends of the base line, by x alone: on an
/// upright one it never does.
bool liesOn(const QLineF &base, QPointF foot)
{
    return base.x1() < foot.x() ? foot.x() < base.x2() : base.x2() < foot.x();
}

} // namespace

QRectF GraphicsLine::boundingRect() const
{
    QRectF box = boxOf(lineA_);
    for (const QLineF &line : {lineB_, lineC_}) {
        if (isDrawable(line))
            box = widened(widened(box, line.p1()), line.p2());
    }
    const QPointF extra = extraPoint();
    if (extra != QPointF() && isFinite(extra))
        box = widened(box, extra);
    return withMargin(box);
}

QPainterPath GraphicsLine::shape() const { return strokeOf(geometryPath(), pen_); }

void GraphicsLine::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    syncHandles();
    text->setAnchor(mapToScene(lineA_.center()));
    painter->setPen(pen_);
    painter->drawLine(lineA_);
    for (const QLineF &line : {lineB_, lineC_}) {
        if (isDrawable(line))
            painter->drawLine(line);
    }
    paintExtra(painter);
}

void GraphicsLine::updatePoints()
{
    if (points.size() < 2)
        return;
    const QLineF line(handleInItem(0), handleInItem(1));
    const bool moved = !fuzzyEqual(line, lineA_);
    if (moved)
        prepareGeometryChange();
    lineA_ = line;
    if (!updateText().toBool() && !moved)
        return;
    update();
    announceUpdate();
}

QPainterPath GraphicsLine::geometryPath() const
{
    QPainterPath path;
    // An absent second segment ends the outline, whatever the third one is.
    for (const QLineF &line : {lineA_, lineB_, lineC_}) {
        if (!isDrawable(line))
            break;
        appendSegment(path, line);
    }
    return path;
}

QVariant GraphicsLine::updateText()
{
    const double offset1 = text->toPixels(distance1);
    const double offset2 = text->toPixels(distance2);
    const bool relabelled = text->setValue(length("Len", lineA_.length()));
    if (points.size() < 2 || (isNegligible(offset1) && isNegligible(offset2)))
        return relabelled;

    const QLineF base(handleInItem(0), handleInItem(1));
    // A distance that returned to nothing leaves its old segment standing.
    const bool rebuiltB = !isNegligible(offset1) && replace(lineB_, offsetSegment(base, offset1));
    const bool rebuiltC = !isNegligible(offset2) && replace(lineC_, offsetSegment(base, offset2));
    return relabelled || rebuiltB || rebuiltC;
}

bool GraphicsLine::paintExtra(QPainter *) { return true; }

void GraphicsLine::setLineDistance1(double distance)
{
    distance1 = distance;
    if (recompute())
        announceUpdate();
}

void GraphicsLine::setLineDistance2(double distance)
{
    distance2 = distance;
    if (recompute())
        announceUpdate();
}

QVector<QPointF> GraphicsLine::handlePlaces() const
{
    if (isAbsent(lineA_))
        return {};
    return {lineA_.p1(), lineA_.p2()};
}

bool GraphicsLine::replace(QLineF &line, const QLineF &with)
{
    if (fuzzyEqual(line, with))
        return false;
    prepareGeometryChange();
    line = with;
    return true;
}

QVariant GraphicsPar::updateText()
{
    if (points.size() < 3 ||
        !replace(lineB_, parallelThrough(lineA_.p1(), lineA_.p2(), handleInItem(2))))
        return false;
    const double distance = parallelDistance(lineA_, lineB_, foot);
    text->setValues(lines({length("Len", lineA_.length()), length("Dis", distance)}));
    return true;
}

bool GraphicsPar::paintExtra(QPainter *) { return !isAbsent(foot); }

QVector<QPointF> GraphicsPar::handlePlaces() const
{
    QVector<QPointF> places = GraphicsLine::handlePlaces();
    if (!places.isEmpty() && !isAbsent(foot))
        places << lineB_.center();
    return places;
}

QVariant GraphicsVer::updateText()
{
    if (points.size() < 3)
        return false;
    const QPointF tip = handleInItem(2);
    // A foot that stays where it is leaves the label alone, also when the base grew longer.
    if (!replace(lineB_, {tip, footOfPerpendicular(tip, lineA_.p1(), lineA_.p2())}))
        return false;
    text->setValues(lines({length("Len", lineA_.length()), length("Dis", lineB_.length())}));
    return true;
}

bool GraphicsVer::paintExtra(QPainter *painter)
{
    if (isAbsent(lineB_))
        return false;
    const QPointF foot = lineB_.p2();
    if (!liesOn(lineA_, foot))
        drawExtension(painter, pen_, endNearFoot(lineA_, foot), foot);
    return true;
}

QVector<QPointF> GraphicsVer::handlePlaces() const
{
    QVector<QPointF> places = GraphicsLine::handlePlaces();
    if (!places.isEmpty() && !isAbsent(lineB_))
        places << lineB_.p1();
    return places;
}

QVariant GraphicsAng::updateText()
{
    // The first segment alone changes neither label nor list until the second one moves.
    if (points.size() < 4 || !replace(lineB_, {handleInItem(2), handleInItem(3)}))
        return false;
    text->setValue(angle("Ang", lineA_.angleTo(lineB_)));
    return true;
}

bool GraphicsAng::paintExtra(QPainter *painter)
{
    if (isAbsent(lineB_))
        return false;
    QPointF crossing;
    if (lineA_.intersects(lineB_, &crossing) == QLineF::UnboundedIntersection) {
        drawExtension(painter, pen_, crossing, endNearIntersection(lineA_, crossing));
        drawExtension(painter, pen_, crossing, endNearIntersection(lineB_, crossing));
    }
    return true;
}

QPointF GraphicsAng::extraPoint() const
{
    QPointF crossing;
    lineA_.intersects(lineB_, &crossing);
    return crossing;
}

QVector<QPointF> GraphicsAng::handlePlaces() const
{
    QVector<QPointF> places = GraphicsLine::handlePlaces();
    if (!places.isEmpty() && !isAbsent(lineB_))
        places << lineB_.p1() << lineB_.p2();
    return places;
}

void GraphicsLCali::updatePoints()
{
    if (points.size() < 2)
        return;
    const QPointF a = handleInItem(0);
    const QPointF b = handleInItem(1);
    if (fuzzyEqual(a, b) || (fuzzyEqual(a, measureA_) && fuzzyEqual(b, measureB_)))
        return;
    prepareGeometryChange();
    const TickPair ticks = tickPair(a, b);
    lineA_ = ticks.first;
    lineB_ = ticks.second;
    measureA_ = a;
    measureB_ = b;
    // No announcement: the record is in no list.
    update();
}

QVariant GraphicsLCali::updateText() { return {}; }

bool GraphicsLCali::paintExtra(QPainter *painter)
{
    painter->drawLine(measureA_, measureB_);
    return true;
}

QRectF GraphicsRect::boundingRect() const { return withMargin(rect_.normalized()); }

QPainterPath GraphicsRect::shape() const { return strokeOf(geometryPath(), pen_); }

void GraphicsRect::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    syncHandles();
    text->setAnchor(mapToScene(rect_.center()));
    painter->setPen(pen_);
    painter->drawRects(&rect_, 1);
    paintExtra(painter);
}

void GraphicsRect::updatePoints()
{
    if (points.size() < 2)
        return;
    const QPointF first = handleInItem(0);
    const QPointF second = handleInItem(1);
    const QRectF box(first, second);
    if (fuzzyEqual(box.topLeft(), rect_.topLeft()) && fuzzyEqual(box.width(), rect_.width()) &&
        fuzzyEqual(box.height(), rect_.height()))
        return;
    prepareGeometryChange();
    rect_ = box;
    update();
    announceUpdate();
}

QPainterPath GraphicsRect::geometryPath() const
{
    QPainterPath path;
    const bool isEmpty = isAbsent(rect_.topLeft()) && isAbsent({rect_.width(), rect_.height()});
    if (!isEmpty)
        path.addRect(rect_);
    return path;
}

QVariant GraphicsRect::updateText() { return QRectF(); }

bool GraphicsRect::paintExtra(QPainter *)
{
    // Comes after the announcement of the change: the list lags one change behind the label.
    const double width = rect_.width();
    const double height = rect_.height();
    return text->setValues(
        lines({length("Wid", width), length("Hei", height), length("CLen", 2 * (width + height)),
               area("Area", qAbs(width * height))}));
}

QVector<QPointF> GraphicsRect::handlePlaces() const
{
    if (isAbsent(rect_.topLeft()) && isAbsent({rect_.width(), rect_.height()}))
        return {};
    return {rect_.topLeft(), rect_.bottomRight()};
}
