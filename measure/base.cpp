#include "measure/base.h"

#include "measure/graphicsconnect.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "measure/pathitems.h"
#include "measure/readout.h"
#include "measure/segmentitems.h"
#include "measure/shapetable.h"

#include <QColor>
#include <QFont>
#include <QJsonArray>

#include <algorithm>

namespace {

constexpr double handleZ = 100.0;
// Out of sight until the first paint places the label.
constexpr QPointF parkedLabel(0.0, -500.0);

int penWidth(const QVariant &value) { return qBound(1, value.toInt(), 3); }

int textPixels(const QVariant &value) { return qBound(13, value.toInt(), 32); }

QColor colour(const QVariant &value)
{
    return value.isNull() ? QColor(Qt::black) : value.value<QColor>();
}

void applyWidth(GraphicsPoint *point, const QVariant &width)
{
    QPen pen = point->pen();
    pen.setWidth(penWidth(width));
    point->setPen(pen);
}

void applyColour(GraphicsPoint *point, const QVariant &value)
{
    QPen pen = point->pen();
    pen.setColor(colour(value));
    point->setPen(pen);
}

void applySize(GraphicsText *text, const QVariant &size)
{
    QFont font = text->font();
    font.setPixelSize(textPixels(size));
    text->setFont(font);
}

/// The item of a ring, or null.
GraphicsRing *ring(const Base &record)
{
    return record.isType(10) ? static_cast<GraphicsRing *>(record.item()) : nullptr;
}

/// The item of a line, free or locked to an axis, or null.
GraphicsLine *singleLine(const Base &record)
{
    const bool isLine = record.isType(1) || record.isType(2) || record.isType(3);
    return isLine ? static_cast<GraphicsLine *>(record.item()) : nullptr;
}

} // namespace

Base::Base(MainScene *mainScene, int unit, int lock)
    : scene(mainScene)
    , unit_(unit)
    , axisLock(lock)
{}

Base::~Base()
{
    qDeleteAll(points_);
    delete text_;
    delete item_;
}

bool Base::isComplete() const { return isFull() && pointsDistinct(); }

void Base::moveLastPoint(QPointF pos)
{
    if (points_.isEmpty())
        return;
    points_.last()->setPos(pos);
    if (item_)
        item_->updatePoints();
}

void Base::setUnit(int mode)
{
    if (unit_ == Unit::Text || unit_ == Unit::Degree)
        return;
    unit_ = mode;
    if (text_)
        text_->setUnit(mode);
}

void Base::removeLastPoint()
{
    if (points_.isEmpty())
        return;
    if (item_)
        item_->removeLastPoint();
    delete points_.takeLast();
}

QString Base::typeName() const { return QString::fromLatin1(shapeRow(type()).name); }

bool Base::isFull() const { return pointCount() > shapeRow(type()).fullAbove; }

bool Base::isType(int number) const { return type() == number; }

void Base::addPoint(QPointF pos, double calibration)
{
    if (isFull())
        return;
    makePoint(scene, pos);
    if (item_) {
        item_->appendPoint(points_.last());
        return;
    }
    // The first click: its second handle is the one that follows the mouse.
    makePoint(scene, pos);
    text_ = new GraphicsText(calibration, unit_, nullptr);
    text_->setVisible(visible);
    scene->addItem(text_);
    item_ = shapeRow(type()).makeItem(this, text_, scene);
    item_->setVisible(visible);
    scene->addItem(item_);
    applyProperties();
}

bool Base::pointsDistinct() const
{
    const auto same = [this](const GraphicsPoint *point) {
        return point->pos() == points_.last()->pos();
    };
    return points_.isEmpty() || std::none_of(points_.begin(), points_.end() - 1, same);
}

QString Base::textContent() const { return text_ ? text_->toPlainText() : QString(); }

void Base::setTextContent(const QString &content)
{
    if (text_)
        text_->setPlainText(content);
}

void Base::makePoint(QGraphicsScene *graphicsScene, QPointF pos)
{
    auto *point = new GraphicsPoint(pos, graphicsScene, axisLock, nullptr);
    point->setVisible(visible);
    graphicsScene->addItem(point);
    points_.append(point);
    applyWidth(point, pointWidth_);
    applyColour(point, pointColor_);
    point->setZValue(handleZ);
}

void Base::applyProperties()
{
    setLineWidth(lineWidth_);
    setLineColor(lineColor_);
    setTextSize(textSize_);
    setTextColor(textColor_);
    if (text_)
        text_->setAnchor(parkedLabel);
}

void Base::setVisible(bool isVisible)
{
    visible = isVisible;
    for (GraphicsPoint *point : qAsConst(points_))
        point->setVisible(isVisible);
    if (text_)
        text_->setVisible(isVisible);
    if (item_)
        item_->setVisible(isVisible);
}

void Base::setScale(double scale)
{
    if (text_)
        text_->setScale(scale);
}

void Base::setImageScale(double scale)
{
    if (text_)
        text_->setImageScale(scale);
}

void Base::setPointWidth(const QVariant &value)
{
    pointWidth_ = value;
    for (GraphicsPoint *point : qAsConst(points_))
        applyWidth(point, value);
}

void Base::setPointColor(const QVariant &value)
{
    pointColor_ = value;
    for (GraphicsPoint *point : qAsConst(points_))
        applyColour(point, value);
}

void Base::setLineWidth(const QVariant &value)
{
    lineWidth_ = value;
    if (item_)
        item_->setPenWidth(penWidth(value));
}

void Base::setLineColor(const QVariant &value)
{
    lineColor_ = value;
    if (item_)
        item_->setPenColor(colour(value));
}

void Base::setTextSize(const QVariant &value)
{
    textSize_ = value;
    if (text_)
        applySize(text_, value);
}

void Base::setTextColor(const QVariant &value)
{
    textColor_ = value;
    if (text_)
        text_->setDefaultTextColor(colour(value));
}

void Base::setRingDistance1(const QVariant &value)
{
    if (GraphicsRing *item = ring(*this))
        item->setRingDistance1(value.toReal());
}

void Base::setRingDistance2(const QVariant &value)
{
    if (GraphicsRing *item = ring(*this))
        item->setRingDistance2(value.toReal());
}

void Base::setLineDistance1(const QVariant &value)
{
    if (GraphicsLine *item = singleLine(*this))
        item->setLineDistance1(value.toReal());
}

void Base::setLineDistance2(const QVariant &value)
{
    if (GraphicsLine *item = singleLine(*this))
        item->setLineDistance2(value.toReal());
}

QJsonObject Base::toJson(double imageScale) const
{
    QJsonArray places;
    for (const GraphicsPoint *point : points_) {
        const QPointF pos = point->pos() * imageScale;
        places.append(QJsonObject{{"x", pos.x()}, {"y", pos.y()}});
    }
    QJsonObject object{{"type", type()}, {"point", places}};
    if (isType(15))
        object["text"] = textContent();
    return object;
}
