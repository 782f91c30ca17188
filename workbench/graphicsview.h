#pragma once

#include <QGraphicsView>
#include <QPixmap>
#include <QRegion>

/// Shows the scene of a page. The wheel and the middle button belong to the page and the window.
class GraphicsView : public QGraphicsView
{
    Q_OBJECT

public:
    using QGraphicsView::QGraphicsView;

protected:
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
};

/// View over a moving picture. Each frame repaints all that lies above it, so the scene is kept
/// painted in a transparent pixmap, of which only what changed is painted anew.
class OverlayView : public GraphicsView
{
    Q_OBJECT

public:
    using GraphicsView::GraphicsView;

public slots:
    /// To be connected to the scene's `changed`; without it the view shows what it saw first.
    void sceneChanged(const QList<QRectF> &rects);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void refreshOverlay();

    QPixmap overlay;
    QRegion stale; // what of the overlay is out of date, in viewport coordinates
    QTransform paintedTransform;
    QPainter::RenderHints paintedHints;
};
