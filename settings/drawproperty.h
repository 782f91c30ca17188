#pragma once

#include <QMap>
#include <QMetaType>
#include <QVariant>

/// The fourteen drawing settings. Their names are the keys of group "draw" in ./config.ini.
enum DrawProperty : int {
    PointWidth,     ///< int, thickness of the handles
    PointColor,     ///< QColor
    LineWidth,      ///< int, thickness of the shapes' lines
    LineColor,      ///< QColor
    TextSize,       ///< int, pixel size of the labels
    TextColor,      ///< QColor
    Antialiasing,   ///< bool
    QuickSavePath,  ///< QString, directory of the quick save
    DrawCrossWidth, ///< int, thickness of the crosshair lines
    DrawCrossColor, ///< QColor
    RingDistance1,  ///< double, first spacing of a ring, in the unit in force
    RingDistance2,  ///< double, second spacing of a ring
    LineDistance1,  ///< double, first spacing of a line's parallels
    LineDistance2   ///< double, second spacing of a line's parallels
};
Q_DECLARE_METATYPE(DrawProperty)

constexpr int drawPropertyCount = 14;

using DrawProperties = QMap<DrawProperty, QVariant>;

/// The setting's key in ./config.ini, or null for a number that is no setting.
const char *drawPropertyName(DrawProperty key);
