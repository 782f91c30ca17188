#include "workbench/graphicsview.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QWheelEvent>

#include <cmath>
#include <utility>

void GraphicsView::wheelEvent(QWheelEvent *event) { event->ignore(); }

void GraphicsView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton)
        event->ignore();
    else
        QGraphicsView::mousePressEvent(event);
}

void GraphicsView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton)
        event->ignore();
    else
        QGraphicsView::mouseDoubleClickEvent(event);
}

void OverlayView::sceneChanged(const QList<QRectF> &rects)
{
    // Past this number one rectangle around all is cheaper than the exact region.
    constexpr int maximumRects = 32;
    QRect around;
    for (const QRectF &rect : rects) {
        // Antialiasing may reach over the edge of an item.
        const QRect changed =
            viewportTransform().mapRect(rect).toAlignedRect().adjusted(-2, -2, 2, 2);
        if (rects.size() > maximumRects)
            around |= changed;
        else
            stale += changed;
    }
    stale += around;
}

void OverlayView::refreshOverlay()
{
    const qreal ratio = viewport()->devicePixelRatioF();
    const QSize size = (QSizeF(viewport()->size()) * ratio).toSize();
    if (overlay.size() != size || overlay.devicePixelRatio() != ratio ||
        paintedTransform != viewportTransform() || paintedHints != renderHints()) {
        overlay = QPixmap(size);
        overlay.setDevicePixelRatio(ratio);
        overlay.fill(Qt::transparent);
        paintedTransform = viewportTransform();
        paintedHints = renderHints();
        stale = viewport()->rect();
    }
    stale &= viewport()->rect();
    if (stale.isEmpty())
        return;
    // At a fractional ratio the edges of a part fall between device pixels.
    if (std::floor(ratio) != ratio)
        stale = viewport()->rect();

    QPainter painter(&overlay);
    for (const QRect &rect : std::exchange(stale, QRegion())) {
        painter.setRenderHints(renderHints());
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        render(&painter, rect, rect);
    }
}

void OverlayView::paintEvent(QPaintEvent *)
{
    refreshOverlay();
    QPainter painter(viewport());
    painter.drawPixmap(0, 0, overlay);
}
