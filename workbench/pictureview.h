#pragma once

#include "workbench/graphicsview.h"

#include <QPixmap>
#include <QRegion>
#include <QSet>

class MainScene;

/// View of a picture page. While a shape is under construction all the rest stands still, so it is
/// kept painted in two layers, and a move of the mouse paints that one shape between them.
class PictureView : public GraphicsView
{
    Q_OBJECT

public:
    using GraphicsView::GraphicsView;

    void setMainScene(MainScene *scene);
    /// After another picture became the scene's background. Over a picture without holes the view
    /// paints the shape under construction, else the scene does as ever.
    void followBackground();

protected:
    void paintEvent(QPaintEvent *event) override;
    void drawBackground(QPainter *painter, const QRectF &rect) override;
    void drawItems(QPainter *painter, int count, QGraphicsItem *items[],
                   const QStyleOptionGraphicsItem options[]) override;

private:
    enum class Layer { All, Below, Above };

    void followCurrent();
    bool paintsCurrent() const;
    void refreshLayers(qreal ratio);
    QPixmap painted(Layer which, qreal ratio);
    void paintCurrent(QPainter &painter);
    QRegion currentRegion() const;

    MainScene *mainScene = nullptr;
    QPixmap below;            // the picture and what lies below the shape under construction
    QPixmap above;            // what lies over it: the handles of all other shapes
    Layer layer = Layer::All; // being painted
    QSet<QGraphicsItem *> itemsAbove;
    QRegion shown; // where the shape under construction was painted last
    QRegion asked; // to be painted for the sake of that shape alone
};
