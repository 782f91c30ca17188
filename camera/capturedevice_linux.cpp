#include "camera/capture.h"
#include "camera/v4l2capture.h"

// Never destroyed: a thread may still be at the device when the process leaves main.
cv::VideoCapture &sharedCapture = *new V4l2Capture;

const int captureBackend = cv::CAP_V4L2;

double readFirmwareVersion() { return sharedCapture.get(cv::CAP_PROP_TILT); }
