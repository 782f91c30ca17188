#pragma once

#include "camera/guardedcapture.h"

#include <atomic>

/// Cameras behind the kernel's V4L2 interface, spoken to with the numbers of the parameter table.
///
/// Where the kernel's units differ from the table's, or the library's backend has another control
/// behind a number or none, the number is carried to the same control of the UVC device. What a
/// device lacks or refuses stays silent.
class V4l2Capture : public GuardedCapture
{
public:
    V4l2Capture();

    using GuardedCapture::open;
    /// @param index  position in the list of `enumerateVideoDevices`, not a node number
    bool open(int index, int backend) override;
    bool set(int property, double value) override;
    double get(int property) const override;

private:
    bool setFunctionWord(int word);

    std::atomic<int> node{-1}; // N of the open /dev/videoN
};

/// Shutter of the parameter table, the logarithm to the base 2 of seconds, in the kernel's unit.
/// @returns 1 or more units of 100 us
int exposureUnits(double log2Seconds);

/// The way back, rounded; -1 for what is no exposure time.
double exposureLog2Seconds(double units);
