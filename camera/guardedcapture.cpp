#include "camera/guardedcapture.h"

#include <mutex>

namespace {

using Alone = std::unique_lock<std::shared_mutex>;
using Together = std::shared_lock<std::shared_mutex>;

bool changesFormat(int property)
{
    return property == cv::CAP_PROP_FOURCC || property == cv::CAP_PROP_FRAME_WIDTH ||
           property == cv::CAP_PROP_FRAME_HEIGHT;
}

} // namespace

bool GuardedCapture::open(int index, int backend)
{
    release();
    Alone lock(device);
    opened = cv::VideoCapture::open(index, backend);
    return opened;
}

bool GuardedCapture::isOpened() const { return opened; }

void GuardedCapture::release()
{
    opened = false;
    Alone lock(device);
    cv::VideoCapture::release();
}

bool GuardedCapture::read(cv::OutputArray image)
{
    Together lock(device);
    try {
        if (opened && cv::VideoCapture::read(image))
            return true;
    } catch (const cv::Exception &) {
        // A buffer that holds no picture.
    }
    image.release();
    return false;
}

bool GuardedCapture::set(int property, double value)
{
    Alone alone(device, std::defer_lock);
    Together together(device, std::defer_lock);
    if (changesFormat(property))
        alone.lock();
    else
        together.lock();
    try {
        return opened && cv::VideoCapture::set(property, value);
    } catch (const cv::Exception &) {
        return false;
    }
}

double GuardedCapture::get(int property) const
{
    // Not even for an opening in progress does a reader wait.
    if (!opened)
        return -1;
    Together lock(device);
    try {
        return opened ? cv::VideoCapture::get(property) : -1;
    } catch (const cv::Exception &) {
        return -1;
    }
}
