#pragma once

#include <QGraphicsItem>
#include <QPen>
#include <QVector>

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
    /// @returns whether the label or the geometry changed
    bool recompute();

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

    /// Where the handles stand by the geometry, in item coordinates; none while there is no
    /// geometry.
    virtual QVector<QPointF> handlePlaces() const = 0;
    /// A handle's position in item coordinates.
    QPointF handleInItem(int index) const;
    /// Lets the geometry follow the handles, or lead them while the shape is selected.
    void syncHandles();
    void announceUpdate();

    QList<GraphicsPoint *> points; // not owned
    GraphicsText *text;
    MainScene *scene_;
    Base *record_;
    QPen pen_;

private:
    void leadHandles();
    QPointF keptInScene(QPointF wanted) const;
};

/// A shape's box with room for the pen and the handles; bounded where it runs far out of any sight.
QRectF withMargin(const QRectF &box);

/// The band along an outline that a click has to meet: 4 wide for thin pens, else the width and 3.
QPainterPath strokeOf(const QPainterPath &path, const QPen &pen);

/// Draws the dashed extension from an intersection to a segment's end with a dashed copy of the
/// pen. Of one that comes from far away only the last stretch is drawn; one that is not finite is
/// not drawn.
void drawExtension(QPainter *painter, QPen pen, QPointF from, QPointF to);
