#include "measure/base.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"

#include <QDebug>
#include <QGraphicsRectItem>
#include <QPen>

#include <cmath>

// The focus area, and what a change of the live page's size does to the scene.

void MainScene::setBlinkFlags(bool picksFocus, bool isCoarse, bool isShown)
{
    clickFocus = picksFocus;
    coarseGrid = isCoarse;
    showBlinkRect = isShown;
    updateBlinkRect();
}

void MainScene::pickFocusArea(QPointF pos)
{
    lastClick = pos;
    const QSizeF size = sceneRect().size();
    if (size.isEmpty())
        return;
    // The numbers are those of the fine grid, with the coarse one too; the far edge lies outside.
    const int column = int(std::floor(pos.x() / size.width() * 17.0)) + 1;
    const int row = int(std::floor(pos.y() / size.height() * 15.0)) + 1;
    qDebug() << "rectX: " << pos.x();
    qDebug() << "rectY: " << pos.y();
    qDebug() << "xnum: " << column;
    qDebug() << "ynum: " << row;
    updateBlinkRect();
    emit blinkArea(column, row);
}

void MainScene::updateBlinkRect()
{
    if (!showBlinkRect) {
        delete blinkRect;
        blinkRect = nullptr;
        return;
    }
    if (lastClick.x() < 0.0 || lastClick.y() < 0.0)
        return;
    if (!blinkRect)
        blinkRect = addRect(QRectF(), QPen(Qt::gray));

    const QSizeF size = sceneRect().size();
    const double width = size.width() / (coarseGrid ? 5.0 : 17.0) + 0.5;
    const double height = size.height() / (coarseGrid ? 5.0 : 15.0) + 0.5;
    double x = qMax(0.0, lastClick.x() - 0.5 * width);
    double y = qMax(0.0, lastClick.y() - 0.5 * height);
    if (x + width > size.width())
        x = size.width() - width;
    if (y + height > size.height())
        y = size.height() - height;
    qDebug() << "draw " << x << " , " << y << "  width =" << width << "  height" << height;
    blinkRect->setRect(x, y, width, height);
}

void MainScene::setViewScale(double sceneWidth, double pictureWidth)
{
    const double before = sceneRect().width();
    const bool known = sceneWidth > 0.0 && before > 0.0;
    resizeRatio = known ? sceneWidth / before : 1.0;
    if (sceneWidth > 0.0)
        imageScale_ = pictureWidth / sceneWidth;
    lastClick *= resizeRatio;
}

void MainScene::refreshItems()
{
    QList<Base *> records = items_;
    if (current_)
        records.append(current_);
    for (Base *record : qAsConst(records)) {
        record->setImageScale(imageScale_);
        record->text()->scaleBy(resizeRatio);
        // A locked coordinate stays where it was: the handle takes it back.
        const QList<GraphicsPoint *> &points = record->points();
        for (int i = 0; i + 1 < points.size(); ++i)
            points[i]->setPos(points[i]->pos() * resizeRatio);
        record->moveLastPoint(points.last()->pos() * resizeRatio);
    }
    fitCrossLines();
    updateBlinkRect();
}
