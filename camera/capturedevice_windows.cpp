#include "camera/capture.h"
#include "camera/guardedcapture.h"

// Never destroyed: a thread may still be at the device when the process leaves main.
cv::VideoCapture &sharedCapture = *new GuardedCapture;

const int captureBackend = cv::CAP_DSHOW;

double readFirmwareVersion() { return sharedCapture.get(cv::CAP_PROP_TILT); }
