#include "measure/graphicscross.h"

#include "measure/geometry.h"
#include "measure/graphicsconnect.h"
#include "measure/mainscene.h"

#include <QCursor>
#include <QPainter>

GraphicsCross::GraphicsCross(int direction, MainScene *scene, QGraphicsItem *parent)
    : QGraphicsLineItem(parent)
    , direction_(direction)
    , scene_(scene)
{
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setCursor(Qt::SizeAllCursor);
}

QPainterPath GraphicsCross::shape() const
{
    QPainterPath path(line().p1());
    path.lineTo(line().p2());
    return strokeOf(path, pen());
}

QRectF GraphicsCross::boundingRect() const { return shape().controlPointRect(); }

void GraphicsCross::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    painter->setPen(pen());
    painter->drawLine(line());
}

QVariant GraphicsCross::itemChange(GraphicsItemChange change, const QVariant &value)
{
    if (change != ItemPositionChange)
        return QGraphicsLineItem::itemChange(change, value);

    emit scene_->crossStatusChanged(nullptr);
    QPointF pos = value.toPointF();
    (direction_ == Horizontal ? pos.rx() : pos.ry()) = 0.0;
    const QRectF rect = scene_->sceneRect();
    return rect.contains(pos) && isFinite(pos) ? pos : clampCross(pos, rect.size());
}
