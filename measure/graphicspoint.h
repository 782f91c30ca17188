#pragma once

#include <QGraphicsEllipseItem>

class GraphicsConnect;

/// A handle of a shape. Its scene position is the ground truth of the shape's geometry.
class GraphicsPoint : public QGraphicsEllipseItem
{
public:
    enum { Type = 0x10002 };

    GraphicsPoint(QPointF pos, QGraphicsScene *scene, int axisLock, QGraphicsItem *parent);

    void setOwner(GraphicsConnect *owner);
    /// Moves the handle with its selected shape: a locked coordinate is read from here afterwards.
    void follow(QPointF pos);

    int type() const override { return Type; }

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;

private:
    GraphicsConnect *owner = nullptr;
    int axisLock;
    QPointF fixedPos;
    QGraphicsScene *scene_;
};
