#pragma once

#include "simulator/motor.h"
#include "simulator/optics.h"
#include "simulator/sensor.h"

#include <opencv2/videoio.hpp>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

/// The simulated microscope: a capture device that looks at the drawn specimen, obeys every
/// parameter of the camera, and can be told to fail. Safe to call from any thread, as the program
/// does.
class SimulatedCapture : public cv::VideoCapture
{
public:
    struct Device
    {
        std::string name;
        std::string path;
        std::string fault{}; ///< why it cannot be opened; empty when it can
    };

    SimulatedCapture();

    // What the program sees.
    using cv::VideoCapture::open;
    bool open(int index, int backend) override;
    bool isOpened() const override;
    void release() override;
    bool grab() override;
    bool retrieve(cv::OutputArray image, int flag = 0) override;
    bool read(cv::OutputArray image) override;
    cv::VideoCapture &operator>>(cv::Mat &image) override;
    bool set(int property, double value) override;
    double get(int property) const override;
    std::vector<Device> devices() const;

    // What a test or the tour tells it.
    void attach(const std::vector<Device> &list);
    /// Takes a device away, also in the middle of a stream.
    void unplug(const std::string &path);
    /// Puts a device at the end of the list.
    void plugIn(const Device &device);
    void failNextOpens(int count);
    void giveEmptyFrames(int count);
    /// Whether frames carry the sensor's noise; without it equal settings give equal frames.
    void setNoise(bool on);
    void setFrameInterval(std::chrono::microseconds interval);
    void setMotorSpeed(double unitsPerSecond);
    /// Every set since the last call, in order: property and value.
    std::vector<std::pair<int, double>> takeSets();
    double focusPosition() const;

private:
    /// Everything that the picture depends on besides the specimen.
    struct View
    {
        cv::Size size;
        double focus = -1;
        SensorSettings settings;
        bool operator==(const View &other) const;
    };

    bool isAttached(const std::string &path) const;
    bool waitForFrame();
    void prepareOptics(cv::Size size);
    void develop(const View &view);
    void startAutofocus();
    cv::Rect focusWindow() const;
    int *setting(int property);

    mutable std::mutex mutex; // guards all below up to the picture
    std::condition_variable changed;
    std::vector<Device> attached;
    std::string openPath; // empty while closed
    cv::Size frameSize{1920, 1080};
    int nextWidth = 1920;
    SensorSettings settings;
    Motor motor;
    bool autofocus = false;
    int focusCell = (9 << 8) + 8;
    int whiteBalanceRed = 0;
    int opensToFail = 0;
    int emptyFrames = 0;
    bool noisy = true;
    std::chrono::microseconds frameInterval{33333};
    Motor::Clock::time_point nextFrame;
    std::vector<std::pair<int, double>> sets;

    std::mutex opticsMutex; // guards the lens, which the reader and autofocus share
    std::unique_ptr<Optics> optics;

    // The reader's own.
    View shown;
    cv::Mat picture;
    cv::Mat noise;
    cv::RNG random{1};
};

/// The one simulated microscope of a program that links it.
SimulatedCapture &simulatedMicroscope();
