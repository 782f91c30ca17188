#include "camera/capture.h"
#include "camera/enumeratevideodevices.h"
#include "simulator/simulatedcapture.h"

SimulatedCapture &simulatedMicroscope()
{
    // Never destroyed: discovery goes on listing devices when the process leaves main.
    static SimulatedCapture &microscope = *new SimulatedCapture;
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

std::string videoDeviceFault(const std::string &path)
{
    for (const SimulatedCapture::Device &device : simulatedMicroscope().devices())
        if (device.path == path)
            return device.fault;
    return {};
}
