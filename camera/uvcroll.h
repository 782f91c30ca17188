#pragma once

/// The absolute roll of a UVC camera (USB Video Class 1.5, CT_ROLL_ABSOLUTE_CONTROL). No V4L2
/// control stands for it; the driver's query call is the only door, and most devices and drivers
/// keep it shut. The node is opened for the one call: an open descriptor would make a camera that
/// is replugged come back under another number.

/// @param node  N of /dev/videoN
/// @returns the roll, or -1 when the device has none
int uvcRoll(int node);

/// @returns whether the device took it
bool setUvcRoll(int node, int roll);
