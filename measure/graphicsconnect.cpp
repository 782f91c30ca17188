#include "measure/graphicsconnect.h"

#include "measure/base.h"
#include "measure/geometry.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"

#include <QCursor>
#include <QPainter>
#include <QPainterPathStroker>

#include <cmath>
#include <numeric>

namespace {

constexpr double margin = 10.0;
// Scene units beyond which nothing can be seen, however small the zoom.
constexpr double sight = 1e6;
// The toolkit draws lines of more than some ten thousand dashes solid.
constexpr double longestDashes = 5e4;
constexpr double thinHitBand = 4.0;
constexpr double hitBandExtra = 3.0;

} // namespace

GraphicsConnect::GraphicsConnect(Base *record, GraphicsText *label, MainScene *scene,
                                 QGraphicsItem *parent)
    : QGraphicsItem(parent)
    , points(record->points())
    , text(label)
    , scene_(scene)
    , record_(record)
{
    for (GraphicsPoint *point : qAsConst(points))
        point->setOwner(this);
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setCursor(Qt::SizeAllCursor);
}

void GraphicsConnect::prepareHook() {}

QPointF GraphicsConnect::extraPoint() const { return {}; }

bool GraphicsConnect::recompute()
{
    prepareGeometryChange();
    update();
    return updateText().toBool();
}

void GraphicsConnect::setPenWidth(int width)
{
    pen_.setWidth(width);
    prepareGeometryChange();
    update();
}

void GraphicsConnect::setPenColor(const QColor &color)
{
    pen_.setColor(color);
    prepareGeometryChange();
    update();
}

void GraphicsConnect::appendPoint(GraphicsPoint *point)
{
    points.append(point);
    point->setOwner(this);
}

void GraphicsConnect::removeLastPoint()
{
    if (!points.isEmpty())
        points.removeLast();
}

void GraphicsConnect::setHandlesMovable(bool movable)
{
    setFlag(ItemIsMovable, movable);
    for (GraphicsPoint *point : qAsConst(points))
        point->setFlag(ItemIsMovable, movable);
    text->setFlag(ItemIsMovable, movable);
}

QVariant GraphicsConnect::itemChange(GraphicsItemChange change, const QVariant &value)
{
    if (change == ItemPositionChange)
        return keptInScene(value.toPointF());
    // Several moves may come between two paints: the next one needs the handles in their places.
    if (change == ItemPositionHasChanged && isSelected())
        leadHandles();
    return QGraphicsItem::itemChange(change, value);
}

QPointF GraphicsConnect::handleInItem(int index) const
{
    return mapFromItem(points[index], QPointF());
}

void GraphicsConnect::syncHandles()
{
    if (isSelected())
        leadHandles();
    else
        updatePoints();
}

void GraphicsConnect::announceUpdate() { emit scene_->itemUpdate(record_); }

void GraphicsConnect::leadHandles()
{
    const QVector<QPointF> places = handlePlaces();
    const int count = qMin(places.size(), points.size());
    for (int i = 0; i < count; ++i)
        points[i]->follow(mapToScene(places[i]));
}

QPointF GraphicsConnect::keptInScene(QPointF wanted) const
{
    const QRectF area = scene_->sceneRect();
    double dx = wanted.x() - pos().x();
    double dy = wanted.y() - pos().y();
    for (const GraphicsPoint *point : points) {
        const QPointF place = point->pos() + QPointF(dx, dy);
        if (area.contains(place))
            continue;
        if (place.x() < 0)
            dx -= place.x();
        if (place.y() < 0)
            dy -= place.y();
        if (place.x() > area.width())
            dx = dx - place.x() + area.width();
        if (place.y() > area.height())
            dy = dy - place.y() + area.height();
    }
    return pos() + QPointF(dx, dy);
}

QPainterPath strokeOf(const QPainterPath &path, const QPen &pen)
{
    if (path.isEmpty() || pen.style() == Qt::NoPen)
        return path;
    QPainterPathStroker stroker;
    stroker.setCapStyle(pen.capStyle());
    stroker.setJoinStyle(pen.joinStyle());
    stroker.setMiterLimit(pen.miterLimit());
    stroker.setWidth(pen.widthF() <= 1.0 ? thinHitBand : pen.widthF() + hitBandExtra);
    return stroker.createStroke(path);
}

QRectF withMargin(const QRectF &box)
{
    return box.adjusted(-margin, -margin, margin, margin) &
           QRectF(-sight, -sight, 2 * sight, 2 * sight);
}

void drawExtension(QPainter *painter, QPen pen, QPointF from, QPointF to)
{
    const QLineF line(to, from);
    const double length = line.length();
    if (!std::isfinite(length))
        return;
    pen.setStyle(Qt::DashLine);
    if (length > longestDashes) {
        // The dashes fall where those of the whole line would.
        const QVector<qreal> dashes = pen.dashPattern();
        const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0);
        pen.setDashOffset(std::fmod((length - longestDashes) / qMax(1.0, pen.widthF()), period));
        from = line.pointAt(longestDashes / length);
    }
    painter->setPen(pen);
    painter->drawLine(from, to);
}
