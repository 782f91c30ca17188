#include "simulator/simulatedcapture.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double firmwareNumber = 26; // shown as 2.15
constexpr int noiseAmplitude = 4;
constexpr int gridColumns = 17;
constexpr int gridRows = 15;

} // namespace

SimulatedCapture::SimulatedCapture()
    : attached{{"Orvane_Simulated", "simulated:microscope"}}
{}

bool SimulatedCapture::open(int index, int /*backend*/)
{
    const std::lock_guard lock(mutex);
    openPath.clear();
    if (opensToFail > 0) {
        --opensToFail;
        return false;
    }
    if (index < 0 || index >= int(attached.size()) || !attached[index].fault.empty())
        return false;
    openPath = attached[index].path;
    nextFrame = Motor::Clock::now();
    return true;
}

bool SimulatedCapture::isOpened() const
{
    const std::lock_guard lock(mutex);
    return !openPath.empty();
}

void SimulatedCapture::release()
{
    const std::lock_guard lock(mutex);
    openPath.clear();
    changed.notify_all();
}

bool SimulatedCapture::grab() { return waitForFrame(); }

bool SimulatedCapture::retrieve(cv::OutputArray image, int /*flag*/)
{
    View view;
    bool grainy = false;
    {
        const std::lock_guard lock(mutex);
        view = {frameSize, motor.position(Motor::Clock::now()), settings};
        grainy = noisy;
    }
    if (!(view == shown))
        develop(view);
    if (!grainy) {
        picture.copyTo(image);
        return true;
    }
    if (noise.size() != picture.size()) {
        noise.create(picture.size(), CV_8UC3);
        random.fill(noise, cv::RNG::UNIFORM, 0, noiseAmplitude);
    }
    // The same grain, but moved by whole rows: cheap, and the eye sees no pattern.
    const int cut = random.uniform(1, picture.rows);
    image.create(picture.size(), CV_8UC3);
    cv::Mat frame = image.getMat();
    cv::add(picture.rowRange(0, cut), noise.rowRange(picture.rows - cut, picture.rows),
            frame.rowRange(0, cut));
    cv::add(picture.rowRange(cut, picture.rows), noise.rowRange(0, picture.rows - cut),
            frame.rowRange(cut, picture.rows));
    return true;
}

bool SimulatedCapture::read(cv::OutputArray image)
{
    if (grab())
        return retrieve(image);
    image.release();
    return false;
}

cv::VideoCapture &SimulatedCapture::operator>>(cv::Mat &image)
{
    read(image);
    return *this;
}

bool SimulatedCapture::waitForFrame()
{
    std::unique_lock lock(mutex);
    const std::string path = openPath;
    changed.wait_until(lock, nextFrame, [&] { return openPath != path || !isAttached(path); });
    const auto now = Motor::Clock::now();
    nextFrame = std::max(nextFrame + frameInterval, now);
    if (openPath.empty() || openPath != path || !isAttached(path))
        return false;
    if (emptyFrames > 0) {
        --emptyFrames;
        return false;
    }
    return true;
}

void SimulatedCapture::prepareOptics(cv::Size size)
{
    if (!optics || optics->size() != size)
        optics = std::make_unique<Optics>(size);
}

void SimulatedCapture::develop(const View &view)
{
    const std::lock_guard lock(opticsMutex);
    prepareOptics(view.size);
    picture = ::develop(optics->render(view.focus), view.settings);
    shown = view;
}

bool SimulatedCapture::set(int property, double value)
{
    const int number = cvRound(value);
    std::unique_lock lock(mutex);
    sets.emplace_back(property, value);
    if (openPath.empty() || !isAttached(openPath))
        return false;
    switch (property) {
    case cv::CAP_PROP_FOURCC:
        return true;
    case cv::CAP_PROP_FRAME_WIDTH:
        nextWidth = number;
        return true;
    case cv::CAP_PROP_FRAME_HEIGHT:
        if (nextWidth < 16 || number < 16 || nextWidth > 8192 || number > 8192)
            return false;
        frameSize = {nextWidth, number};
        return true;
    case cv::CAP_PROP_FOCUS:
        if (autofocus)
            return false;
        motor.moveTo(std::clamp(number, 0, 400), Motor::Clock::now());
        return true;
    case cv::CAP_PROP_AUTOFOCUS:
        autofocus = number == 1;
        break;
    case cv::CAP_PROP_PAN:
        focusCell = number;
        break;
    case cv::CAP_PROP_WHITE_BALANCE_RED_V:
        whiteBalanceRed = number;
        return true;
    default:
        if (int *field = setting(property)) {
            // A sharpness beyond the slider's range is the command to store, which changes nothing.
            if (property != cv::CAP_PROP_SHARPNESS || number <= 15)
                *field = number;
            return true;
        }
        return false;
    }
    const bool search = autofocus;
    lock.unlock();
    if (search)
        startAutofocus();
    return true;
}

double SimulatedCapture::get(int property) const
{
    const std::lock_guard lock(mutex);
    if (openPath.empty() || !isAttached(openPath))
        return -1;
    switch (property) {
    case cv::CAP_PROP_FRAME_WIDTH:
        return frameSize.width;
    case cv::CAP_PROP_FRAME_HEIGHT:
        return frameSize.height;
    case cv::CAP_PROP_FOCUS:
        return std::round(motor.position(Motor::Clock::now()));
    case cv::CAP_PROP_AUTOFOCUS:
        return autofocus;
    case cv::CAP_PROP_PAN:
        return focusCell;
    case cv::CAP_PROP_TILT:
        return firmwareNumber;
    case cv::CAP_PROP_WHITE_BALANCE_RED_V:
        return whiteBalanceRed;
    default:
        const int *field = const_cast<SimulatedCapture *>(this)->setting(property);
        return field ? *field : -1;
    }
}

int *SimulatedCapture::setting(int property)
{
    switch (property) {
    case cv::CAP_PROP_BRIGHTNESS:
        return &settings.brightness;
    case cv::CAP_PROP_CONTRAST:
        return &settings.contrast;
    case cv::CAP_PROP_SATURATION:
        return &settings.saturation;
    case cv::CAP_PROP_HUE:
        return &settings.hue;
    case cv::CAP_PROP_GAIN:
        return &settings.gain;
    case cv::CAP_PROP_EXPOSURE:
        return &settings.exposure;
    case cv::CAP_PROP_SHARPNESS:
        return &settings.sharpness;
    case cv::CAP_PROP_GAMMA:
        return &settings.red;
    case cv::CAP_PROP_ROLL:
        return &settings.green;
    case cv::CAP_PROP_IRIS:
        return &settings.blue;
    case cv::CAP_PROP_ZOOM:
        return &settings.zoom;
    case cv::CAP_PROP_BACKLIGHT:
        return &settings.functions;
    default:
        return nullptr;
    }
}

/// Finds the sharpest focus of the window by trying, as the camera does, and sends the motor there.
void SimulatedCapture::startAutofocus()
{
    std::unique_lock lock(mutex);
    const cv::Rect window = focusWindow();
    const cv::Size size = frameSize;
    lock.unlock();

    std::unique_lock lens(opticsMutex);
    prepareOptics(size);
    const double best = optics->sharpestFocus(window);
    lens.unlock();

    lock.lock();
    if (autofocus)
        motor.moveTo(best, Motor::Clock::now());
}

cv::Rect SimulatedCapture::focusWindow() const
{
    const int column = std::clamp(focusCell >> 8, 1, gridColumns) - 1;
    const int row = std::clamp(focusCell & 0xff, 1, gridRows) - 1;
    const cv::Size cell(frameSize.width / gridColumns, frameSize.height / gridRows);
    const cv::Point middle(column * cell.width + cell.width / 2,
                           row * cell.height + cell.height / 2);
    const cv::Size part = settings.functions & LargeFocusArea
                              ? cv::Size(frameSize.width / 5, frameSize.height / 5)
                              : cell;
    return cv::Rect(middle - cv::Point(part / 2), part) & cv::Rect({}, frameSize);
}

std::vector<SimulatedCapture::Device> SimulatedCapture::devices() const
{
    const std::lock_guard lock(mutex);
    return attached;
}

bool SimulatedCapture::isAttached(const std::string &path) const
{
    return std::any_of(attached.begin(), attached.end(),
                       [&](const Device &device) { return device.path == path; });
}

void SimulatedCapture::attach(const std::vector<Device> &list)
{
    const std::lock_guard lock(mutex);
    attached = list;
    changed.notify_all();
}

void SimulatedCapture::unplug(const std::string &path)
{
    const std::lock_guard lock(mutex);
    attached.erase(std::remove_if(attached.begin(), attached.end(),
                                  [&](const Device &device) { return device.path == path; }),
                   attached.end());
    changed.notify_all();
}

void SimulatedCapture::plugIn(const Device &device)
{
    const std::lock_guard lock(mutex);
    attached.push_back(device);
}

void SimulatedCapture::failNextOpens(int count)
{
    const std::lock_guard lock(mutex);
    opensToFail = count;
}

void SimulatedCapture::giveEmptyFrames(int count)
{
    const std::lock_guard lock(mutex);
    emptyFrames = count;
}

void SimulatedCapture::setNoise(bool on)
{
    const std::lock_guard lock(mutex);
    noisy = on;
}

void SimulatedCapture::setFrameInterval(std::chrono::microseconds interval)
{
    const std::lock_guard lock(mutex);
    frameInterval = interval;
}

void SimulatedCapture::setMotorSpeed(double unitsPerSecond)
{
    const std::lock_guard lock(mutex);
    motor.setSpeed(unitsPerSecond, Motor::Clock::now());
}

std::vector<std::pair<int, double>> SimulatedCapture::takeSets()
{
    const std::lock_guard lock(mutex);
    return std::exchange(sets, {});
}

double SimulatedCapture::focusPosition() const
{
    const std::lock_guard lock(mutex);
    return motor.position(Motor::Clock::now());
}

bool SimulatedCapture::View::operator==(const View &other) const
{
    return size == other.size && focus == other.focus && settings == other.settings;
}
