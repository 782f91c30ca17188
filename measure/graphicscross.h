#pragma once

#include <QGraphicsLineItem>

class MainScene;

/// A line of the crosshair grid. Moves only across itself.
class GraphicsCross : public QGraphicsLineItem
{
public:
    enum { Type = 0x10004 };
    enum Direction { Vertical = 1, Horizontal = 2 };

    /// @param direction  a Direction; a line of any other, as a file may tell, has no extent
    GraphicsCross(int direction, MainScene *scene, QGraphicsItem *parent);

    int direction() const { return direction_; }
    MainScene *mainScene() const { return scene_; }

    /// As easy to catch with the mouse as the line of a shape.
    QPainterPath shape() const override;
    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;
    int type() const override { return Type; }

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;

private:
    int direction_;
    MainScene *scene_;
};
