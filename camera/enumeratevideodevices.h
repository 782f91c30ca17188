#pragma once

#include <string>
#include <vector>

/// The attached video input devices in a stable order: position N is the device that
/// `sharedCapture.open(N, ...)` opens. Defined by the capture layer.
/// @param names  receives the friendly names, UTF-8
/// @param paths  receives for each device a path that stays its own while it stays attached
/// @returns the number of devices, 0 on failure
int enumerateVideoDevices(std::vector<std::string> &names, std::vector<std::string> &paths);
