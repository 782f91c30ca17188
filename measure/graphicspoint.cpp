#include "measure/graphicspoint.h"

#include "measure/geometry.h"
#include "measure/graphicsconnect.h"
#include "measure/shapetable.h"

#include <QCursor>
#include <QGraphicsScene>

GraphicsPoint::GraphicsPoint(QPointF pos, QGraphicsScene *scene, int lock, QGraphicsItem *parent)
    : QGraphicsEllipseItem(-7, -7, 15, 15, parent)
    , axisLock(lock)
    , fixedPos(pos)
    , scene_(scene)
{
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setCursor(Qt::SizeAllCursor);
    setPos(pos);
}

void GraphicsPoint::setOwner(GraphicsConnect *item) { owner = item; }

void GraphicsPoint::follow(QPointF pos)
{
    fixedPos = pos;
    setPos(pos);
}

QVariant GraphicsPoint::itemChange(GraphicsItemChange change, const QVariant &value)
{
    if (change != ItemPositionChange)
        return QGraphicsEllipseItem::itemChange(change, value);

    // Still sees the old place; the paint catches up. A selected shape leads its handles instead.
    if (owner && isSelected() && !owner->isSelected())
        owner->updatePoints();

    QPointF pos = value.toPointF();
    if (axisLock == KeepY)
        pos.setY(fixedPos.y());
    else if (axisLock == KeepX)
        pos.setX(fixedPos.x());
    return clampHandle(pos, scene_->sceneRect().size());
}
