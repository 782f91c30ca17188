#pragma once

#include <opencv2/videoio.hpp>

#include <QMutex>

/// The one capture object of the process. Whichever capture layer an executable links binds it:
/// the platform's real cameras, the simulated microscope, or a test's script.
extern cv::VideoCapture &sharedCapture;

/// Guards frame reading, releasing the device and the frame-size change.
extern QMutex cameraMutex;

/// Guards the mask of pending parameters and the store of their values.
extern QMutex parameterMutex;

// The capture layer defines these two and enumerateVideoDevices.

/// The backend number given to `sharedCapture.open`.
extern const int captureBackend;

/// The raw firmware number of the open device.
double readFirmwareVersion();
