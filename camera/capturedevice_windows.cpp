#include "camera/capture.h"
#include "camera/enumeratevideodevices.h"
#include "camera/guardedcapture.h"

// Never destroyed: a thread may still be at the device when the process leaves main.
cv::VideoCapture &sharedCapture = *new GuardedCapture;

const int captureBackend = cv::CAP_DSHOW;

double readFirmwareVersion() { return sharedCapture.get(cv::CAP_PROP_TILT); }

// Only an attempt to open it would tell.
std::string videoDeviceFault(const std::string &) { return {}; }
