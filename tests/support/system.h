#pragma once

#include <QString>
#include <QSysInfo>

/// Whether the tests run on Windows, or on wine.
inline bool onWindows() { return QSysInfo::kernelType() == QLatin1String("winnt"); }
