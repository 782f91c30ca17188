#include "workbench/showwidget.h"

#include "camera/mycamera.h"
#include "measure/annotationtrailer.h"
#include "measure/base.h"
#include "measure/mainscene.h"
#include "ui_showwidget.h"
#include "workbench/capturename.h"
#include "workbench/graphicsview.h"
#include "workbench/picturefile.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPointer>
#include <QTextStream>
#include <QTimer>

#include <chrono>
#include <cmath>

namespace {

constexpr std::chrono::milliseconds trackingDelay{50};
constexpr int pictureQuality = 100;
constexpr int viewportQuality = 95;
constexpr int scrollBarExtent = 18;

} // namespace

void ShowWidget::openFile(const QString &path)
{
    fileName = path;
    picture = readPicture(path);
    live = false;

    // Changes count as edits once this time is over and the shapes of the file are there, so that
    // they never mark the page modified themselves.
    openingSteps = 1;
    const QByteArray annotations = readAnnotationTrailer(path);
    if (!annotations.isEmpty()) {
        ++openingSteps;
        // The page reaches its final size first.
        QTimer::singleShot(0, this, [this, annotations] { loadAnnotations(annotations); });
    }
    adjustView();
    QTimer::singleShot(trackingDelay, this, &ShowWidget::passOpeningStep);
}

void ShowWidget::loadAnnotations(const QByteArray &json)
{
    // The load pumps the event queue, in which the page may be closed.
    const QPointer<ShowWidget> page(this);
    scene->loadJson(json);
    if (!page)
        return;
    settleRows();
    passOpeningStep();
}

/// Brings labels and rows to their final state. Some shapes measure themselves and a text announces
/// itself only when it is painted, which may be much later and would then count as a change.
void ShowWidget::settleRows()
{
    QImage nowhere(1, 1, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&nowhere);
    scene->render(&painter);
    for (Base *record : scene->items())
        itemUpdate(record);
}

void ShowWidget::passOpeningStep()
{
    if (--openingSteps == 0)
        trackChanges = true;
}

void ShowWidget::savePicture(const QString &path)
{
    if (live) {
        camera->requestCapture();
        return;
    }
    if (!path.isEmpty())
        fileName = path;
    if (fileName.isEmpty()) {
        const QString directory = QDir::currentPath();
        fileName = directory + QLatin1Char('/') + nextCaptureName(directory);
    }
    if (!picture.isNull())
        scene->renderItems(&picture);
    writePicture(picture.toImage(), fileName, pictureQuality, dotsPerMetre());
    scene->clearItems();
    ui->listWidget->clear();
    adjustView();
}

void ShowWidget::saveViewport(const QString &path)
{
    QSize size = view->size();
    if (view->verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn)
        size.rwidth() -= scrollBarExtent;
    if (view->horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOn)
        size.rheight() -= scrollBarExtent;
    if (size.isEmpty())
        return;
    // Of the told size on a screen of any density.
    QImage shot(size, QImage::Format_ARGB32_Premultiplied);
    shot.fill(Qt::transparent);
    view->QWidget::render(&shot, QPoint(), QRect(QPoint(), size));
    writePicture(shot, path, viewportQuality, dotsPerMetre() * (live ? liveZoom : pictureScale),
                 "jpg");
}

void ShowWidget::captureTo(const QString &path)
{
    if (!live)
        return;
    capturePath = path;
    camera->requestCapture();
}

void ShowWidget::cappix(QPixmap frame)
{
    scene->renderItems(&frame);
    writePicture(frame.toImage(), capturePath, pictureQuality, dotsPerMetre());
    adjustView();
}

void ShowWidget::exportCsv(const QString &path) const
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return;
    QTextStream stream(&file);
    int number = 0;
    for (const Base *record : scene->items()) {
        stream << ++number << ',' << record->typeName() << ",\"" << record->textContent() << "\"\n";
    }
}

double ShowWidget::dotsPerMetre() const
{
    // A scale of exactly 1.0 means that no calibration is in force.
    if (!std::isfinite(scale) || scale <= 0.0 || scale == 1.0)
        return 0.0;
    return 1e6 / scale;
}
