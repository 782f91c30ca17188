#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

namespace tour {

/// A place on the specimen, in micrometres from the middle of the field.
struct Place
{
    QPointF at;
    QPointF across; ///< where the place lies on an edge: the unit vector at right angles to it
};

/// One shape to draw and one value to read off its label.
struct Measure
{
    const char *tool;      ///< object name of the tool's button
    QVector<Place> places; ///< to click on, in order
    const char *value;     ///< name of the label's line; null where nothing is measured
    double truth;          ///< what the specimen has, in millimetres or degrees
    double tolerance;      ///< what one pixel is worth, in the same unit
    const char *feature;
    QPointF labelShift = {}; ///< how far the label is dragged to where it can be read
};

/// Shapes that lie side by side, and the zoom in per cent at which they fill the window.
struct MeasureGroup
{
    const char *name;
    const char *zoom;
    QVector<Measure> measures;
};

/// Every tool once.
const QVector<MeasureGroup> &measureGroups();

/// The ends of the stage ruler, 6 mm apart.
QVector<Place> rulerEnds();
/// Three places on the outer circle of the largest ring, which is 1 mm wide.
QVector<Place> largeRing();

/// The distance of the inner circle that the ring tool draws, in millimetres.
constexpr double ringDistance = 0.2;

/// The number behind "name = " in a label. @throws Error when the label has none
double valueIn(const QString &label, const QString &name);

} // namespace tour
