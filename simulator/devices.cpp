#include "camera/capture.h"
#include "camera/videodevices.h"
#include "simulator/simulatedcapture.h"

SimulatedCapture &simulatedMicroscope()
{
    static SimulatedCapture microscope;
    return microscope;
}

cv::VideoCapture &sharedCapture = simulatedMicroscope();

const int captureBackend = cv::CAP_ANY;

double readFirmwareVersion() { return sharedCapture.get(cv::CAP_PROP_TILT); }

int enumerateVideoDevices(std::vector<std::string> &names, std::vector<std::string> &paths)
{
    for (const SimulatedCapture::Device &device : simulatedMicroscope().devices()) {
        names.push_back(device.name);
        paths.push_back(device.path);
    }
    return int(names.size());
}
