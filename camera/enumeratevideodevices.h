#pragma once

#include <string>
#include <vector>

/// The attached video input devices in a stable order: position N is the device that
/// `sharedCapture.open(N, ...)` opens. Defined by the capture layer.
/// @param names  receives the friendly names, UTF-8
/// @param paths  receives for each device a path that stays its own while it stays attached
/// @returns the number of devices, 0 on failure
int enumerateVideoDevices(std::vector<std::string> &names, std::vector<std::string> &paths);

/// What keeps this program from opening a listed device, in the system's words, for instance
/// "/dev/video0: Permission denied". Defined by the capture layer.
/// @returns UTF-8; empty when nothing does, or when the system does not tell without an attempt
std::string videoDeviceFault(const std::string &path);
