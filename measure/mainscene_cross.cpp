#include "measure/graphicscross.h"
#include "measure/mainscene.h"
#include "settings/settingsfiles.h"

#include <QPen>

#include <utility>

// The crosshair grid.

namespace {

QPen crossLinePen(const QColor &color, int width)
{
    return {color, double(width), Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

} // namespace

void MainScene::setCrossHorCount(int count) { setCrossCount(GraphicsCross::Horizontal, count); }
void MainScene::setCrossVerCount(int count) { setCrossCount(GraphicsCross::Vertical, count); }

/// Builds the lines of one direction anew: they divide the scene in equal parts.
void MainScene::setCrossCount(int direction, int count)
{
    int &counted = direction == GraphicsCross::Horizontal ? crossHorCount_ : crossVerCount_;
    if (!crossVisible_ || count < 0 || count == counted)
        return;
    counted = count;
    for (GraphicsCross *line : QList<GraphicsCross *>(crossLines_)) {
        if (line->direction() == direction) {
            crossLines_.removeOne(line);
            delete line;
        }
    }
    const QPointF extent(sceneRect().width(), sceneRect().height());
    for (int i = 1; i <= count; ++i) {
        auto *line = new GraphicsCross(direction, this, nullptr);
        line->setPen(crossPen());
        addCross(line);
        line->setPos(extent * i / (count + 1)); // it keeps one of the two
    }
}

void MainScene::addCross(GraphicsCross *line)
{
    addItem(line);
    crossLines_.append(line);
    layOutCross(line);
}

/// A line runs across the whole scene.
void MainScene::layOutCross(GraphicsCross *line) const
{
    if (line->direction() == GraphicsCross::Horizontal)
        line->setLine(0.0, 0.0, sceneRect().width(), 0.0);
    else if (line->direction() == GraphicsCross::Vertical)
        line->setLine(0.0, 0.0, 0.0, sceneRect().height());
}

QPen MainScene::crossPen() const
{
    return crossLinePen(drawProperties.value(DrawCrossColor).value<QColor>(),
                        drawProperties.value(DrawCrossWidth).toInt());
}

void MainScene::setCrossVisible(bool visible)
{
    crossVisible_ = visible;
    for (GraphicsCross *line : qAsConst(crossLines_))
        line->setVisible(visible);
    fitCrossLines();
}

/// Every call moves the lines by the ratio of the last resize, so each Show and Hide does too.
void MainScene::fitCrossLines()
{
    for (GraphicsCross *line : qAsConst(crossLines_)) {
        line->setPos(line->pos() * resizeRatio);
        layOutCross(line);
    }
}

void MainScene::removeCross(GraphicsCross *line)
{
    if (!crossLines_.removeOne(line))
        return;
    if (line->direction() == GraphicsCross::Horizontal)
        --crossHorCount_;
    else if (line->direction() == GraphicsCross::Vertical)
        --crossVerCount_;
    delete line;
}

void MainScene::loadCross()
{
    qDeleteAll(std::exchange(crossLines_, {}));
    crossHorCount_ = crossVerCount_ = 0;
    for (const CrossRecord &record : readCrosses()) {
        auto *line = new GraphicsCross(record.direct, this, nullptr);
        line->setPen(crossLinePen(record.color, record.width));
        line->setPos(record.pos * resizeRatio);
        line->setFlag(QGraphicsItem::ItemIsMovable, !record.lock);
        line->setVisible(record.visible);
        crossVisible_ = record.visible;
        addCross(line);
        if (record.direct == GraphicsCross::Horizontal)
            ++crossHorCount_;
        else if (record.direct == GraphicsCross::Vertical)
            ++crossVerCount_;
    }
}

void MainScene::saveCross() const
{
    CrossRecords records;
    for (const GraphicsCross *line : crossLines_) {
        const bool isLocked = !line->flags().testFlag(QGraphicsItem::ItemIsMovable);
        records.append({line->direction(), line->pen().width(), line->pen().color(),
                        line->pos() / resizeRatio, isLocked, line->isVisible()});
    }
    writeCrosses(records);
}
