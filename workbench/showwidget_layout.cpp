#include "workbench/showwidget.h"

#include "camera/mycamera.h"
#include "measure/mainscene.h"
#include "ui_showwidget.h"
#include "workbench/graphicsview.h"
#include "workbench/pictureview.h"
#include "workbench/videowidget.h"

#include <QScrollBar>

namespace {

constexpr double liveZoomStep = 0.03;
constexpr double maximumLiveZoom = 1.0; // one frame pixel to one screen pixel

/// Where a picture page's view lies in one direction, and whether it needs a scroll bar.
struct Extent
{
    int offset;
    int length;
    Qt::ScrollBarPolicy policy;
};

Extent extentOf(int area, double scaledLength)
{
    if (area >= scaledLength) {
        return {int((area - scaledLength) * 0.5), int(scaledLength), Qt::ScrollBarAlwaysOff};
    }
    return {0, area, Qt::ScrollBarAlwaysOn};
}

} // namespace

void ShowWidget::setZoom(double zoom)
{
    if (live)
        return;
    pictureScale = zoom;
    adjustView();
}

void ShowWidget::setFitMode(int index)
{
    if (!live || !camera)
        return;
    switch (index) {
    case 0:
        lastFit = liveZoom = fitScale();
        followFit = true;
        break;
    case 1:
        fitTo(ui->widget->width(), camera->frameWidth());
        break;
    case 2:
        fitTo(ui->widget->height(), camera->frameHeight());
        break;
    case 3:
        followFit = false;
        liveZoom = maximumLiveZoom;
        break;
    default:
        break;
    }
    adjustView();
}

void ShowWidget::fitTo(int areaLength, int frameLength)
{
    lastFit = fitScale();
    liveZoom = double(areaLength) / frameLength;
    if (liveZoom > maximumLiveZoom)
        liveZoom = maximumLiveZoom;
    else if (liveZoom == lastFit)
        followFit = true;
}

void ShowWidget::stepLiveZoom(bool up)
{
    liveZoom += up ? liveZoomStep : -liveZoomStep;
    adjustView();
}

double ShowWidget::viewWidth() const { return video->content()->width(); }

double ShowWidget::viewHeight() const { return video->content()->height(); }

double ShowWidget::fitScale() const
{
    double width = camera->frameWidth();
    double height = camera->frameHeight();
    const double areaWidth = ui->widget->width();
    const double areaHeight = ui->widget->height();
    if (areaWidth < width) {
        height = height * areaWidth / width;
        width = areaWidth;
    }
    if (areaHeight < height) {
        width = width * areaHeight / height;
        height = areaHeight;
    }
    return width / camera->frameWidth();
}

void ShowWidget::adjustView()
{
    if (live)
        adjustLiveView();
    else
        adjustPictureView();
}

void ShowWidget::adjustLiveView()
{
    if (!camera)
        return;
    const double fit = fitScale();
    if (fit != lastFit) {
        lastFit = fit;
        if (followFit)
            liveZoom = fit;
    }
    followFit = fit >= liveZoom;
    if (followFit)
        liveZoom = fit;
    liveZoom = qMin(liveZoom, maximumLiveZoom);

    const QSize scaled(int(camera->frameWidth() * liveZoom), int(camera->frameHeight() * liveZoom));
    // Shapes that shrink to nothing could not grow again.
    if (scaled.isEmpty())
        return;

    const QRect area = ui->widget->geometry();
    const QSize shown = scaled.boundedTo(area.size());
    video->setGeometry(area.x() + (area.width() - shown.width()) / 2,
                       area.y() + (area.height() - shown.height()) / 2, shown.width(),
                       shown.height());
    video->setContentSize(scaled.width(), scaled.height());
    view->setGeometry(QRect(QPoint(), scaled));
    scene->setViewScale(scaled.width(), camera->frameWidth());
    scene->setSceneRect(QRect(QPoint(), scaled));
    scene->refreshItems();
}

void ShowWidget::adjustPictureView()
{
    const QRect area = ui->widget->geometry();
    video->setGeometry(area);
    const QSize size = picture.isNull() ? area.size() : picture.size();
    const Extent across = extentOf(area.width(), size.width() * pictureScale);
    const Extent down = extentOf(area.height(), size.height() * pictureScale);
    view->setHorizontalScrollBarPolicy(across.policy);
    view->setVerticalScrollBarPolicy(down.policy);
    // Both scroll bars relax the horizontal policy; the vertical one keeps its setting.
    if (view->horizontalScrollBar()->isVisible())
        view->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    if (view->verticalScrollBar()->isVisible())
        view->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);

    view->setGeometry(across.offset, down.offset, across.length, down.length);
    scene->setSceneRect(QRect(QPoint(), size));
    scene->setBackgroundBrush(QBrush(picture));
    if (auto *pictureView = qobject_cast<PictureView *>(view))
        pictureView->followBackground();
    view->setTransform(QTransform::fromScale(pictureScale, pictureScale));
}

void ShowWidget::resizeEvent(QResizeEvent *) { adjustView(); }
