#pragma once

#include <QJsonObject>
#include <QList>
#include <QPointF>
#include <QString>
#include <QVariant>

class GraphicsConnect;
class GraphicsPoint;
class GraphicsText;
class MainScene;
class QGraphicsScene;

/// Record of one measured shape: the authority on its handles, its label, its item and the drawing
/// properties that it was made with. What distinguishes two shapes stands in the shape table and in
/// their items; a subclass adds its number alone.
class Base
{
public:
    /// @param unit      unit code; fixed for good when it is text or degrees
    /// @param axisLock  0 free, 1 every handle keeps its x, 2 every handle keeps its y
    Base(MainScene *scene, int unit, int axisLock);
    virtual ~Base();
    Q_DISABLE_COPY(Base)

    virtual bool isComplete() const;
    /// Moves the last handle, if there is one, and lets the item follow.
    virtual void moveLastPoint(QPointF pos);
    virtual void setUnit(int mode);
    virtual void removeLastPoint();
    virtual QString typeName() const;
    virtual bool isFull() const;
    virtual bool isType(int type) const;
    /// Adds a handle; the first call makes two of them, the label and the item. Full records
    /// refuse.
    virtual void addPoint(QPointF pos, double calibration);
    virtual int type() const = 0;

    int pointCount() const { return points_.size(); }
    /// False when the last handle stands where an earlier one does.
    bool pointsDistinct() const;
    QString textContent() const;
    void setTextContent(const QString &content);
    void makePoint(QGraphicsScene *scene, QPointF pos);
    void applyProperties();
    /// Shows or hides handles, label and item, also those that are still to come.
    void setVisible(bool visible);
    void setScale(double scale);
    /// Picture pixels per scene unit for the label, which is not formatted anew.
    void setImageScale(double scale);
    void setPointWidth(const QVariant &value);
    void setPointColor(const QVariant &value);
    void setLineWidth(const QVariant &value);
    void setLineColor(const QVariant &value);
    void setTextSize(const QVariant &value);
    void setTextColor(const QVariant &value);
    void setRingDistance1(const QVariant &value);
    void setRingDistance2(const QVariant &value);
    void setLineDistance1(const QVariant &value);
    void setLineDistance2(const QVariant &value);
    QJsonObject toJson(double imageScale) const;

    const QList<GraphicsPoint *> &points() const { return points_; }
    GraphicsText *text() const { return text_; }
    GraphicsConnect *item() const { return item_; }
    int unit() const { return unit_; }

    /// The drawing properties as they were last set, not clamped.
    QVariant pointWidth() const { return pointWidth_; }
    QVariant pointColor() const { return pointColor_; }
    QVariant lineWidth() const { return lineWidth_; }
    QVariant lineColor() const { return lineColor_; }
    QVariant textSize() const { return textSize_; }
    QVariant textColor() const { return textColor_; }

private:
    MainScene *scene;
    QList<GraphicsPoint *> points_;   // owned, in order of the clicks
    GraphicsText *text_ = nullptr;    // owned, null until the first point
    GraphicsConnect *item_ = nullptr; // owned, null until the first point
    int unit_;
    int axisLock;
    bool visible = true;
    QVariant pointWidth_;
    QVariant pointColor_;
    QVariant lineWidth_;
    QVariant lineColor_;
    QVariant textSize_;
    QVariant textColor_;
};
