#include "workbench/pictureview.h"

#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"

#include <QPaintEvent>
#include <QStyleOptionGraphicsItem>

#include <algorithm>
#include <utility>

void PictureView::setMainScene(MainScene *scene)
{
    mainScene = scene;
    setScene(scene);
    connect(scene, &MainScene::currentChanged, this, &PictureView::followCurrent);
}

void PictureView::followBackground()
{
    const QPixmap picture = scene()->backgroundBrush().texture();
    mainScene->setCurrentHidden(!picture.isNull() && !picture.hasAlpha());
    followCurrent();
}

bool PictureView::paintsCurrent() const
{
    return mainScene && mainScene->current() && mainScene->isCurrentHidden();
}

/// After the shape under construction appeared, moved or went.
void PictureView::followCurrent()
{
    if (!paintsCurrent()) {
        below = above = QPixmap();
        shown = asked = QRegion();
        setViewportUpdateMode(MinimalViewportUpdate);
        viewport()->update();
        return;
    }
    // Whatever else changes meanwhile asks for everything, so that it can be told from this shape.
    setViewportUpdateMode(FullViewportUpdate);
    const QRegion touched = shown + currentRegion();
    asked += touched;
    viewport()->update(touched);
}

/// Where the shape under construction lies in the viewport.
QRegion PictureView::currentRegion() const
{
    const Base &record = *mainScene->current();
    QRegion region;
    const auto add = [&](const QGraphicsItem *item) {
        const QRectF box = viewportTransform().mapRect(item->sceneBoundingRect());
        // Antialiasing may reach over the edge of an item.
        region += box.toAlignedRect().adjusted(-2, -2, 2, 2) & viewport()->rect();
    };
    add(record.text());
    add(record.item());
    for (const GraphicsPoint *point : record.points())
        add(point);
    return region;
}

void PictureView::paintEvent(QPaintEvent *event)
{
    const bool isForCurrentAlone = (event->region() - std::exchange(asked, QRegion())).isEmpty() &&
                                   !(viewport()->visibleRegion() - event->region()).isEmpty();
    // The toolkit asks for later changes of those items alone that it has painted itself.
    if (!paintsCurrent() || !isForCurrentAlone)
        GraphicsView::paintEvent(event);
    if (!paintsCurrent())
        return;

    QPainter painter(viewport());
    const qreal ratio = painter.deviceTransform().m11();
    if (!isForCurrentAlone || below.isNull() || below.devicePixelRatio() != ratio)
        refreshLayers(ratio);
    shown = currentRegion();
    painter.setRenderHints(renderHints());
    const GraphicsText &label = *mainScene->current()->text();
    const QRectF place = label.sceneBoundingRect();
    const QString words = label.toPlainText();
    paintCurrent(painter);
    // The label is painted first, and the shape may have moved or renamed it since.
    if (label.sceneBoundingRect() != place || label.toPlainText() != words)
        followCurrent();
}

/// The shape under construction between the two layers, as its place in the scene is.
void PictureView::paintCurrent(QPainter &painter)
{
    const auto paint = [&](QGraphicsItem *item) {
        QStyleOptionGraphicsItem option;
        option.exposedRect = item->boundingRect();
        painter.save();
        painter.setTransform(item->deviceTransform(viewportTransform()));
        item->paint(&painter, &option, viewport());
        painter.restore();
    };
    const Base &record = *mainScene->current();
    painter.drawPixmap(0, 0, below);
    paint(record.text());
    paint(record.item());
    painter.drawPixmap(0, 0, above);
    for (GraphicsPoint *point : record.points())
        paint(point);
}

void PictureView::refreshLayers(qreal ratio)
{
    const QList<QGraphicsItem *> items = scene()->items(Qt::AscendingOrder);
    const int place = items.indexOf(mainScene->current()->text());
    itemsAbove = QSet<QGraphicsItem *>(items.begin() + place, items.end());
    below = painted(Layer::Below, ratio);
    above = painted(Layer::Above, ratio);
    itemsAbove.clear();
}

QPixmap PictureView::painted(Layer which, qreal ratio)
{
    QPixmap pixmap((QSizeF(viewport()->size()) * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    if (which == Layer::Above)
        pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHints(renderHints());
    layer = which;
    render(&painter, viewport()->rect(), viewport()->rect());
    layer = Layer::All;
    return pixmap;
}

void PictureView::drawBackground(QPainter *painter, const QRectF &rect)
{
    if (layer == Layer::Above)
        return;
    // Where edges fall between device pixels, as on a screen at 150 %, those at the edge are part
    // of what is cleared: they are to be filled in full, not in the share that the rectangle
    // covers.
    const double margin = 2.0 / viewportTransform().m11();
    GraphicsView::drawBackground(painter, rect.adjusted(-margin, -margin, margin, margin));
}

void PictureView::drawItems(QPainter *painter, int count, QGraphicsItem *items[],
                            const QStyleOptionGraphicsItem options[])
{
    // They come in their order from below.
    const auto isBelow = [this](QGraphicsItem *item) { return !itemsAbove.contains(item); };
    const int belowCount = int(std::partition_point(items, items + count, isBelow) - items);
    const int first = layer == Layer::Above ? belowCount : 0;
    const int end = layer == Layer::Below ? belowCount : count;
    GraphicsView::drawItems(painter, end - first, items + first, options + first);
}
