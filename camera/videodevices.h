#pragma once

#include <QStringList>

/// The attached video input devices, as `enumerateVideoDevices` lists them, decoded from UTF-8.
/// @returns the number of devices, 0 on failure
int listVideoDevices(QStringList &names, QStringList &paths);

/// What `videoDeviceFault` says of each device; an empty text where nothing is wrong.
QStringList videoDeviceFaults(const QStringList &paths);
