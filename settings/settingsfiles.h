#pragma once

#include "settings/drawproperty.h"
#include "settings/settingsrecords.h"

#include <QString>

// The three INI files of the working directory. Every function opens its file, does its one job and
// closes the file again; nothing is cached. An absent or unreadable file acts as an empty one and
// a failed write goes unnoticed. GUI thread only.

/// All fourteen drawing settings of ./config.ini; absent ones are invalid variants, but
/// `QuickSavePath`, which is "D:/" when absent or empty.
DrawProperties readDrawSettings();

/// Stores one drawing setting. A key of 14 or above stores nothing.
void writeDrawSetting(DrawProperty key, const QVariant &value);

/// Whether "true" occurs in the text of key isDebug in group "base".
bool readIsDebug();

/// Stores "true" or "false" under isDebug in group "draw", where the reader does not look.
void writeIsDebug(bool isDebug);

/// The last directory of a file dialog, or an empty string.
QString readFilePath();
void writeFilePath(const QString &path);

/// The rows of ./calibration.ini, as many as its size entry tells.
CalibrationRecords readCalibrations();
/// Old rows past the new count stay in the file and are ignored by the reader.
void writeCalibrations(const CalibrationRecords &records);

/// The rows of ./corss.ini.
CrossRecords readCrosses();
void writeCrosses(const CrossRecords &records);
