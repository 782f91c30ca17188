#pragma once

#include <QGraphicsItem>
#include <QPen>

class Base;
class GraphicsPoint;
class GraphicsText;
class MainScene;

/// Item of a shape: draws it and follows its handles, or leads them while it is selected.
class GraphicsConnect : public QGraphicsItem
{
public:
    enum { Type = 0x10001 };

    GraphicsConnect(Base *record, GraphicsText *text, MainScene *scene, QGraphicsItem *parent);

    QRectF boundingRect() const override = 0;
    QPainterPath shape() const override = 0;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option,
               QWidget *widget) override = 0;
    int type() const override { return Type; }

    virtual void prepareHook();
    /// Takes the handles' places into the geometry; announces a change to the scene.
    virtual void updatePoints() = 0;
    virtual QPainterPath geometryPath() const = 0;
    /// Computes what depends on the points, and the label.
    /// @returns a true bool when the label changed or the geometry was rebuilt
    virtual QVariant updateText() = 0;
    virtual bool paintExtra(QPainter *painter) = 0;
    /// A further point for the bounding rectangle; (0, 0) means none.
    virtual QPointF extraPoint() const;

    /// Computes anew what depends on the scale, the unit or a distance, and repaints.
    void recompute()
    {
        prepareGeometryChange();
        updateText();
        update();
    }

    QPen pen() const { return pen_; }
    void setPenWidth(int width);
    void setPenColor(const QColor &color);
    void appendPoint(GraphicsPoint *point);
    /// Takes the last handle out of the item's list.
    void removeLastPoint();
    /// Locks or unlocks the item, its handles and its label.
    void setHandlesMovable(bool movable);
    Base *record() const { return record_; }

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;

    QList<GraphicsPoint *> points;
    GraphicsText *text;
    MainScene *scene_;
    Base *record_;
    QPen pen_;
};

/// The band along an outline that a click has to meet: 4 wide for thin pens, else the width and 3.
QPainterPath strokeOf(const QPainterPath &path, const QPen &pen);
