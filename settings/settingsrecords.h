#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QString>

/// A named scale: the operator measured `length` `unit` and got a scale of `real`.
struct CalibrationRecord
{
    QString name;
    double length = 0.0; ///< as typed, in `unit`
    QString unit;        ///< "mm", "um" or "mil"
    double real = 0.0;   ///< micrometres per pixel
};

/// A line of the crosshair grid as it is stored between runs.
struct CrossRecord
{
    int direct = 0; ///< 2 horizontal, 1 vertical
    int width = 0;  ///< pen width
    QColor color;   ///< invalid when the file's colour could not be read
    QPointF pos;    ///< position in the unscaled scene
    bool lock = false;
    bool visible = false;
};

using CalibrationRecords = QList<CalibrationRecord>;
using CrossRecords = QList<CrossRecord>;
