#pragma once

#include "settings/drawproperty.h"

#include <QGraphicsScene>
#include <QList>

class Base;
class GraphicsCross;
class QGraphicsRectItem;
class QPaintDevice;
class QPen;

/// Scene of one image page: turns mouse events into records, keeps the finished ones in order, and
/// holds the page's drawing properties, scale and unit.
class MainScene : public QGraphicsScene
{
    Q_OBJECT

public:
    explicit MainScene(QObject *parent = nullptr);
    ~MainScene() override;

    /// 0 is the hand, else the type number of the shape to draw. Unfinished work is lost.
    void setDrawType(int type);
    int drawType() const { return drawType_; }
    /// A record of the tool's class with the scene's properties, or null where the tool has none.
    Base *createRecord();
    void finishRecord();
    void setDrawProperties(const DrawProperties &properties);
    /// @param scale  micrometres per picture pixel
    void setScale(double scale);
    void setUnit(int unit);
    /// Position in items(), or -1.
    int itemIndex(Base *record) const;
    const QList<Base *> &items() const { return items_; }
    /// The record under construction, or null.
    Base *current() const { return current_; }
    /// Hides the shape under construction in the scene, for a view that paints it itself: for each
    /// item that moves in sight the toolkit walks through all items.
    void setCurrentHidden(bool hidden);
    bool isCurrentHidden() const { return hidesCurrent; }
    void removeItemAt(int index);
    void clearItems();
    void setItemText(const QString &text);

    QByteArray toJson() const;
    /// Adds the shapes of a document; lets queued events run meanwhile, and notices when they take
    /// away a shape or the scene. A document that comes during a load waits for its end.
    void loadJson(const QByteArray &json);

    /// Paints all finished shapes onto a device in picture pixels.
    void renderItems(QPaintDevice *device) const;

    /// Before the scene rectangle of a live page changes: how scene and picture pixels relate.
    void setViewScale(double sceneWidth, double pictureWidth);
    /// After it changed: carries every shape and crosshair line over.
    void refreshItems();
    double imageScale() const { return imageScale_; }

    void setBlinkFlags(bool clickFocus, bool coarseGrid, bool showBlinkRect);

    void setCrossHorCount(int count);
    void setCrossVerCount(int count);
    void setCrossVisible(bool visible);
    int crossHorCount() const { return crossHorCount_; }
    int crossVerCount() const { return crossVerCount_; }
    bool crossVisible() const { return crossVisible_; }
    const QList<GraphicsCross *> &crossLines() const { return crossLines_; }
    void removeCross(GraphicsCross *line);
    void saveCross() const;
    void loadCross();

public slots:
    void setDrawProperty(DrawProperty key, const QVariant &value);

signals:
    void itemInsert(Base *record);
    void itemUpdate(Base *record);
    void caliOver(double length);
    void ltextEdit();
    void blinkArea(int x, int y);
    void changeProperty(void *item);
    void crossStatusChanged(void *line);
    void clearDrawType();
    /// The shape under construction appeared, moved or went.
    void currentChanged();

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;

private:
    class ShapeLoader;

    Base *makeRecord(int type);
    void dropCurrent();
    void placePoint(QPointF pos);
    void pickFocusArea(QPointF pos);
    void updateBlinkRect();
    void reformat(Base *record);

    QPen crossPen() const;
    void setCrossCount(int direction, int count);
    void addCross(GraphicsCross *line);
    void layOutCross(GraphicsCross *line) const;
    void fitCrossLines();

    int drawType_ = 0;
    Base *current_ = nullptr; // owned
    bool hidesCurrent = false;
    QList<Base *> items_; // owned, in order of finishing
    DrawProperties drawProperties;
    double scale = 1.0;
    int unit = 1;
    QList<GraphicsCross *> crossLines_; // owned
    bool crossVisible_ = true;
    int crossHorCount_ = 0;
    int crossVerCount_ = 0;
    QGraphicsRectItem *blinkRect = nullptr; // owned through the scene
    double resizeRatio = 1.0;               // new scene width over the old one at the last resize
    double imageScale_ = 1.0;               // picture pixels per scene unit
    bool clickFocus = false;
    bool coarseGrid = false;
    bool showBlinkRect = false;
    QPointF lastClick{-1.0, -1.0};
    QList<QByteArray> loads; // the document being loaded and those that wait for it
};
