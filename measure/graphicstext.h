#pragma once

#include "measure/readout.h"

#include <QGraphicsTextItem>

/// Label of a shape: shows its read-outs in the unit in force, or a free text that can be edited.
class GraphicsText : public QGraphicsTextItem
{
public:
    enum { Type = 0x10003 };

    GraphicsText(double calibration, int unit, QGraphicsItem *parent);

    /// Moves the label to the anchor and its own offset, unless it is selected.
    void setAnchor(QPointF anchor);
    void scaleBy(double ratio);

    QString formatValue(const ReadoutValue &value) const;
    /// @returns whether the text changed
    bool setValue(const ReadoutValue &value);
    bool setValues(const Readout &values);
    void setUnit(int unit);
    void setScale(double calibration);
    /// Shows at the next change of the values.
    void setImageScale(double scale);
    /// A real length in scene units; 0 in units 0 to 2.
    double toPixels(double length) const;

    int type() const override { return Type; }

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void reformat();

    QPointF lastPos;
    QPointF offset;
    int unit;
    double calibration;
    double imageScale = 1.0;
    Readout values;
};
