#include "tests/support/scriptedcapture.h"

#include "camera/capture.h"
#include "camera/enumeratevideodevices.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <chrono>

namespace {

using Lock = std::unique_lock<std::mutex>;

} // namespace

ScriptedCapture &scriptedCapture()
{
    static ScriptedCapture capture;
    return capture;
}

cv::VideoCapture &sharedCapture = scriptedCapture();

const int captureBackend = 700;

double readFirmwareVersion() { return sharedCapture.get(cv::CAP_PROP_TILT); }

int enumerateVideoDevices(std::vector<std::string> &names, std::vector<std::string> &paths)
{
    const std::vector<ScriptedDevice> devices = scriptedCapture().listDevices();
    for (const ScriptedDevice &device : devices) {
        names.push_back(device.name);
        paths.push_back(device.path);
    }
    return int(devices.size());
}

std::string videoDeviceFault(const std::string &path)
{
    for (const ScriptedDevice &device : scriptedCapture().attachedDevices())
        if (device.path == path)
            return device.fault;
    return {};
}

void ScriptedCapture::reset()
{
    Lock lock(mutex);
    list.clear();
    openPath.clear();
    opened = false;
    opensToFail = 0;
    frames.clear();
    endless = cv::Mat(48, 64, CV_8UC3, cv::Scalar::all(128));
    stalled = false;
    refusing = false;
    values.clear();
    listingCount = 0;
    hook = nullptr;
    record_.clear();
    changed.notify_all();
}

void ScriptedCapture::attach(std::vector<ScriptedDevice> devices)
{
    Lock lock(mutex);
    list = std::move(devices);
    changed.notify_all();
}

void ScriptedCapture::failNextOpens(int count)
{
    Lock lock(mutex);
    opensToFail = count;
}

void ScriptedCapture::giveFrames(const std::vector<cv::Mat> &next)
{
    Lock lock(mutex);
    // Copies: the test and the camera's thread share no memory.
    for (const cv::Mat &frame : next)
        frames.push_back(frame.clone());
    changed.notify_all();
}

void ScriptedCapture::showEndlessly(const cv::Mat &frame)
{
    Lock lock(mutex);
    endless = frame.clone();
}

void ScriptedCapture::stall(bool on, int limitMs)
{
    Lock lock(mutex);
    stalled = on;
    stallLimitMs = limitMs;
    changed.notify_all();
}

void ScriptedCapture::setValue(int property, double value)
{
    Lock lock(mutex);
    values[property] = value;
}

void ScriptedCapture::refuseSets(bool on)
{
    Lock lock(mutex);
    refusing = on;
}

void ScriptedCapture::onCall(Hook newHook)
{
    Lock lock(mutex);
    hook = std::move(newHook);
}

QStringList ScriptedCapture::calls() const
{
    Lock lock(mutex);
    return record_;
}

QStringList ScriptedCapture::calls(const QString &start) const
{
    QStringList found;
    for (const QString &call : calls())
        if (call.startsWith(start))
            found.append(call);
    return found;
}

QString ScriptedCapture::lastCall() const
{
    Lock lock(mutex);
    return record_.isEmpty() ? QString() : record_.last();
}

void ScriptedCapture::forgetCalls()
{
    Lock lock(mutex);
    record_.clear();
}

int ScriptedCapture::listings() const
{
    Lock lock(mutex);
    return listingCount;
}

std::vector<ScriptedDevice> ScriptedCapture::attachedDevices() const
{
    Lock lock(mutex);
    return list;
}

bool ScriptedCapture::isWaiting() const
{
    Lock lock(mutex);
    return waiting;
}

std::vector<ScriptedDevice> ScriptedCapture::listDevices()
{
    Lock lock(mutex);
    ++listingCount;
    return list;
}

void ScriptedCapture::record(const QString &call) const
{
    Hook told;
    {
        Lock lock(mutex);
        record_.append(call);
        told = hook;
    }
    if (told)
        told(call);
}

bool ScriptedCapture::isAttached() const
{
    return std::any_of(list.begin(), list.end(),
                       [this](const ScriptedDevice &d) { return d.path == openPath; });
}

bool ScriptedCapture::open(int index, int backend)
{
    record(QStringLiteral("open %1 %2").arg(index).arg(backend));
    Lock lock(mutex);
    opened = false;
    if (opensToFail > 0) {
        --opensToFail;
        return false;
    }
    if (index < 0 || index >= int(list.size()))
        return false;
    openPath = list[size_t(index)].path;
    opened = true;
    return true;
}

bool ScriptedCapture::isOpened() const
{
    Lock lock(mutex);
    return opened;
}

void ScriptedCapture::release()
{
    record(QStringLiteral("release"));
    Lock lock(mutex);
    opened = false;
}

bool ScriptedCapture::read(cv::OutputArray image)
{
    cv::Mat frame;
    {
        Lock lock(mutex);
        // The pace of the endless stream.
        if (frames.empty())
            changed.wait_for(lock, std::chrono::milliseconds(1));
        const auto over = [this] { return !stalled || !frames.empty() || !isAttached(); };
        waiting = !over();
        changed.wait_for(lock, std::chrono::milliseconds(stallLimitMs), over);
        waiting = false;
        if (!frames.empty()) {
            frame = frames.front();
            frames.pop_front();
        } else if (opened && !stalled && isAttached()) {
            frame = endless;
        }
    }
    if (frame.empty())
        image.release();
    else
        frame.copyTo(image);
    return !frame.empty();
}

bool ScriptedCapture::set(int property, double value)
{
    record(QStringLiteral("set %1 %2").arg(property).arg(value, 0, 'g', 17));
    Lock lock(mutex);
    if (refusing || !opened)
        return false;
    values[property] = value;
    return true;
}

double ScriptedCapture::get(int property) const
{
    record(QStringLiteral("get %1").arg(property));
    Lock lock(mutex);
    const auto value = values.find(property);
    return value == values.end() ? -1 : value->second;
}
