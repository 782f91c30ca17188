#include "camera/cameradetect.h"

#include "camera/videodevices.h"

#include <utility>

CameraDetect::CameraDetect(int pollPeriod, QObject *parent)
    : QThread(parent)
    , pollPeriodMs(pollPeriod)
{}

CameraDetect::~CameraDetect()
{
    polling.store(false, std::memory_order_relaxed);
    pause.cut();
    wait();
}

QString CameraDetect::watchedPath() const
{
    std::lock_guard<std::mutex> lock(watchedMutex);
    return watchedPath_;
}

void CameraDetect::setWatchedPath(const QString &path)
{
    std::lock_guard<std::mutex> lock(watchedMutex);
    watchedPath_ = path;
}

void CameraDetect::run()
{
    while (polling.load(std::memory_order_relaxed)) {
        poll();
        pause.rest(pollPeriodMs, [this] { return !polling.load(std::memory_order_relaxed); });
    }
}

void CameraDetect::poll()
{
    QStringList names;
    QStringList paths;
    listVideoDevices(names, paths);
    // Paths only, and in order: names are for display.
    const bool listChanged = paths != devicePaths;
    if (listChanged) {
        devicePaths = paths;
        deviceNames = names;
        emit detect(deviceNames, devicePaths);
    }
    QStringList faults = videoDeviceFaults(devicePaths);
    if (listChanged || faults != deviceFaults) {
        deviceFaults = std::move(faults);
        emit accessChange(deviceFaults);
    }
    const QString watched = watchedPath();
    if (!watched.isEmpty() && devicePaths.contains(watched))
        emit alive();
}
