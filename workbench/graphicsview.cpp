#include "workbench/graphicsview.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QWheelEvent>

#include <cmath>
#include <utility>

namespace {

/// The distance in viewport pixels at which edges fall on device pixels: 1, 2 or 4, or 0 where the
/// ratio is none of those that systems offer.
int gridOf(qreal ratio)
{
    for (const int grid : {1, 2, 4}) {
        if (std::floor(ratio * grid) == ratio * grid)
            return grid;
    }
    return 0;
}

/// The rectangle with its edges moved outwards to the grid.
QRect alignedTo(int grid, const QRect &rect)
{
    const auto down = [grid](int at) { return at / grid * grid; };
    const QPoint first(down(rect.left()), down(rect.top()));
    const QPoint end(down(rect.right() + grid), down(rect.bottom() + grid));
    return {first, end - QPoint(1, 1)};
}

} // namespace

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
    // A part whose edges fall between device pixels would leave seams.
    const int grid = gridOf(ratio);
    if (grid == 0)
        stale = viewport()->rect();

    QPainter painter(&overlay);
    for (const QRect &part : std::exchange(stale, QRegion())) {
        const QRect rect = grid > 1 ? alignedTo(grid, part) : part;
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
