#include "measure/graphicstext.h"

#include <QTextCursor>

namespace {

const QLatin1String emptyText("...");

}

GraphicsText::GraphicsText(double scale, int unitCode, QGraphicsItem *parent)
    : QGraphicsTextItem(parent)
    , unit(unitCode)
    , calibration(scale)
{
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    if (unit == Unit::Text)
        setPlainText(emptyText);
}

void GraphicsText::setAnchor(QPointF anchor)
{
    if (!isSelected())
        setPos(anchor + offset);
}

void GraphicsText::scaleBy(double ratio)
{
    lastPos *= ratio;
    offset *= ratio;
    setPos(pos() * ratio);
}

QString GraphicsText::formatValue(const ReadoutValue &value) const
{
    return formatReadout(value, unit, calibration, imageScale);
}

bool GraphicsText::setValue(const ReadoutValue &value) { return setValues({value}); }

bool GraphicsText::setValues(const Readout &newValues)
{
    QString joined;
    for (const ReadoutValue &value : newValues)
        joined += formatValue(value);
    // A change below the digits shown leaves the stored values as they were.
    if (joined == toPlainText())
        return false;
    setPlainText(joined);
    values = newValues;
    return true;
}

void GraphicsText::setUnit(int code)
{
    unit = code;
    reformat();
}

void GraphicsText::setScale(double scale)
{
    calibration = scale;
    reformat();
}

void GraphicsText::setImageScale(double scale) { imageScale = scale; }

double GraphicsText::toPixels(double length) const
{
    return lengthInScene(length, unit, calibration, imageScale);
}

void GraphicsText::reformat()
{
    // A free text holds no values and keeps its words.
    if (!values.isEmpty())
        setValues(Readout(values));
}

QVariant GraphicsText::itemChange(GraphicsItemChange change, const QVariant &value)
{
    if (change == ItemPositionChange) {
        const QPointF pos = value.toPointF();
        if (lastPos != QPointF() && isSelected())
            offset += pos - lastPos;
        lastPos = pos;
    }
    return QGraphicsTextItem::itemChange(change, value);
}

void GraphicsText::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    if (textInteractionFlags() == Qt::NoTextInteraction && unit == Unit::Text) {
        setTextInteractionFlags(Qt::TextEditorInteraction);
        setFocus(Qt::OtherFocusReason);
    }
    QGraphicsTextItem::mouseDoubleClickEvent(event);
}

void GraphicsText::focusOutEvent(QFocusEvent *event)
{
    setTextInteractionFlags(Qt::NoTextInteraction);
    if (toPlainText().trimmed().isEmpty())
        setPlainText(emptyText);
    QTextCursor cursor = textCursor();
    cursor.clearSelection();
    setTextCursor(cursor);
    QGraphicsTextItem::focusOutEvent(event);
}
