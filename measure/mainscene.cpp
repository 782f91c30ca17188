#include "measure/mainscene.h"

#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/graphicscross.h"
#include "measure/graphicstext.h"
#include "measure/pathitems.h"
#include "measure/segmentitems.h"
#include "measure/shapetable.h"

#include <QGraphicsSceneMouseEvent>
#include <QPen>
#include <QPointer>

#include <utility>

namespace {

/// What a drawing property does to an existing record; null where it concerns no record.
using RecordSetter = void (Base::*)(const QVariant &);

constexpr RecordSetter recordSetters[drawPropertyCount] = {
    &Base::setPointWidth,
    &Base::setPointColor,
    &Base::setLineWidth,
    &Base::setLineColor,
    &Base::setTextSize,
    &Base::setTextColor,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    &Base::setRingDistance1,
    &Base::setRingDistance2,
    &Base::setLineDistance1,
    &Base::setLineDistance2,
};

/// Hands a property to a record. The setter is taken out of its array first: the bounds sanitizer
/// of GCC 12 reads an unset index where a member is called through an array element.
void applySetting(Base *record, DrawProperty key, const QVariant &value)
{
    const RecordSetter setter = recordSetters[key];
    (record->*setter)(value);
}

/// Types whose geometry depends on distances in a real unit: the lines and the ring.
bool hasDistances(const Base *record) { return record->type() <= 3 || record->type() == 10; }

} // namespace

MainScene::MainScene(QObject *parent)
    : QGraphicsScene(parent)
{
    // 1024 cells of a page. By itself the index would keep the few cells that suit an empty page,
    // and every repaint would ask a good part of a thousand shapes.
    setBspTreeDepth(10);
}

// The items go with their records: the toolkit must find an empty scene when it takes it down.
MainScene::~MainScene()
{
    dropCurrent();
    clearItems();
}

void MainScene::setDrawType(int type)
{
    if (type == drawType_)
        return;
    drawType_ = type;
    clearSelection();
    dropCurrent();
}

Base *MainScene::createRecord() { return makeRecord(drawType_); }

Base *MainScene::makeRecord(int type)
{
    Base *record = makeShape(type, this, unit);
    if (!record)
        return nullptr;
    for (int key = PointWidth; key <= TextColor; ++key)
        applySetting(record, DrawProperty(key), drawProperties.value(DrawProperty(key)));
    return record;
}

void MainScene::finishRecord()
{
    if (!current_)
        return;
    const auto measureOver = [this](double length) {
        // The listener may run a dialog, and the scene may end meanwhile.
        const QPointer<MainScene> alive(this);
        emit caliOver(length);
        if (alive)
            dropCurrent();
    };
    if (const auto *measure = dynamic_cast<GraphicsLCali *>(current_->item())) {
        measureOver(QLineF(measure->measureA(), measure->measureB()).length());
        return;
    }
    if (const auto *circle = dynamic_cast<GraphicsCCali *>(current_->item())) {
        measureOver(2.0 * circle->radius());
        return;
    }
    if (hidesCurrent)
        current_->setVisible(true);
    emit itemInsert(current_);
    items_.append(current_);
    // The record is the list's from here on: whoever edits its text may change the tool meanwhile.
    const Base *record = std::exchange(current_, nullptr);
    emit currentChanged();
    if (record->isType(15))
        emit ltextEdit();
}

void MainScene::setCurrentHidden(bool hidden)
{
    hidesCurrent = hidden;
    if (current_)
        current_->setVisible(!hidden);
}

void MainScene::dropCurrent()
{
    if (!current_)
        return;
    delete std::exchange(current_, nullptr);
    emit currentChanged();
}

void MainScene::setDrawProperties(const DrawProperties &properties) { drawProperties = properties; }

void MainScene::setDrawProperty(DrawProperty key, const QVariant &value)
{
    drawProperties[key] = value;
    if (key >= 0 && key < drawPropertyCount && recordSetters[key]) {
        for (Base *record : qAsConst(items_))
            applySetting(record, key, value);
    }
    if (key == DrawCrossWidth || key == DrawCrossColor) {
        for (GraphicsCross *line : qAsConst(crossLines_))
            line->setPen(crossPen());
    }
}

void MainScene::setScale(double value)
{
    for (Base *record : qAsConst(items_)) {
        record->setScale(value);
        reformat(record);
    }
    scale = value;
}

void MainScene::setUnit(int mode)
{
    unit = mode;
    for (Base *record : qAsConst(items_)) {
        record->setUnit(mode);
        reformat(record);
    }
}

/// After a change of scale or unit.
void MainScene::reformat(Base *record)
{
    if (hasDistances(record))
        record->item()->recompute();
    emit itemUpdate(record);
}

int MainScene::itemIndex(Base *record) const
{
    // From the back: it is the newest shapes that are asked for most.
    return items_.lastIndexOf(record);
}

void MainScene::removeItemAt(int index)
{
    if (index >= 0 && index < items_.size())
        delete items_.takeAt(index);
}

void MainScene::clearItems() { qDeleteAll(std::exchange(items_, {})); }

void MainScene::setItemText(const QString &text)
{
    if (!items_.isEmpty())
        items_.last()->setTextContent(text);
}

void MainScene::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    const bool isServed = event->button() == Qt::LeftButton || event->button() == Qt::RightButton;
    event->setAccepted(isServed);
    if (!loads.isEmpty())
        return;
    if (event->button() == Qt::LeftButton && clickFocus)
        pickFocusArea(event->scenePos());
    else if (event->button() == Qt::LeftButton && drawType_ == 0)
        QGraphicsScene::mousePressEvent(event);
    else if (event->button() == Qt::LeftButton)
        placePoint(event->scenePos());
    else if (event->button() == Qt::RightButton && current_)
        dropCurrent();
    else if (event->button() == Qt::RightButton)
        emit clearDrawType();
}

/// A left press with a tool.
void MainScene::placePoint(QPointF pos)
{
    if (current_ && !current_->isType(drawType_)) {
        dropCurrent();
        return;
    }
    if (current_ && !current_->pointsDistinct())
        return;
    if (current_ && current_->isFull()) {
        finishRecord();
        return;
    }
    if (!current_)
        current_ = createRecord();
    if (!current_)
        return;
    current_->setVisible(!hidesCurrent);
    current_->addPoint(pos, scale);
    current_->setImageScale(imageScale_);
    // Each distance reaches the ring or the lines alone.
    for (DrawProperty key : {RingDistance1, RingDistance2, LineDistance1, LineDistance2})
        applySetting(current_, key, drawProperties.value(key));
    emit currentChanged();
}

void MainScene::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (current_) {
        current_->moveLastPoint(event->scenePos());
        emit currentChanged();
    } else if (drawType_ == 0) {
        QGraphicsScene::mouseMoveEvent(event);
    }
}

void MainScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    const bool left = event->button() == Qt::LeftButton;
    if (!loads.isEmpty() || (left && clickFocus))
        return;
    if (left && current_ && current_->isType(11)) {
        if (current_->pointCount() <= 3) {
            dropCurrent();
            return;
        }
        // The first press of the double click has placed the last vertex: the moving point goes.
        current_->removeLastPoint();
        finishRecord();
    }
    QGraphicsScene::mouseDoubleClickEvent(event);
    if (!left || drawType_ != 0 || selectedItems().isEmpty())
        return;
    QGraphicsItem *item = selectedItems().constFirst();
    if (item->type() == GraphicsConnect::Type)
        emit changeProperty(static_cast<GraphicsConnect *>(item));
    else if (item->type() == GraphicsCross::Type)
        emit crossStatusChanged(static_cast<GraphicsCross *>(item));
}
