#pragma once

#include <opencv2/videoio.hpp>

#include <QStringList>

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

struct ScriptedDevice
{
    std::string name;
    std::string path;
    std::string fault{}; ///< why it cannot be opened; empty when it can
};

/// The capture object of a test: cameras that follow a script, and a record of what was asked of
/// them. Every operation may be called from any thread.
class ScriptedCapture : public cv::VideoCapture
{
public:
    using Hook = std::function<void(const QString &call)>;

    // ---- The script

    /// Nothing attached, nothing recorded, no hook.
    void reset();
    /// The devices attached from now on, in the order of the list. One that is open and is not
    /// among them gives empty frames from now on.
    void attach(std::vector<ScriptedDevice> devices);
    void failNextOpens(int count);
    /// The next frames, before the endless ones. An empty Mat is an empty frame.
    void giveFrames(const std::vector<cv::Mat> &frames);
    /// What the endless frames show; gray, three channels, 64 x 48 unless told.
    void showEndlessly(const cv::Mat &frame);
    /// Until this is over, a read waits for frames given, and gives up after `limitMs`.
    void stall(bool on, int limitMs = 2000);
    /// What `get` answers until it is set.
    void setValue(int property, double value);
    /// From now on every `set` is refused.
    void refuseSets(bool on);
    /// Called at each recorded call, on the calling thread and before it takes effect.
    void onCall(Hook hook);

    // ---- The record: "open 0 700", "set 28 200", "get 34", "release"

    QStringList calls() const;
    /// Those that begin with a word.
    QStringList calls(const QString &start) const;
    /// Empty when there is none.
    QString lastCall() const;
    void forgetCalls();
    /// How often the device list was asked for.
    int listings() const;
    /// Whether a read waits for a frame at this moment.
    bool isWaiting() const;

    // ---- What the program sees

    std::vector<ScriptedDevice> listDevices();
    std::vector<ScriptedDevice> attachedDevices() const;
    bool open(int index, int backend) override;
    bool isOpened() const override;
    void release() override;
    bool read(cv::OutputArray image) override;
    bool set(int property, double value) override;
    double get(int property) const override;

private:
    void record(const QString &call) const;
    bool isAttached() const; // with the mutex held

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<ScriptedDevice> list;
    std::string openPath;
    bool opened = false;
    int opensToFail = 0;
    std::deque<cv::Mat> frames;
    cv::Mat endless;
    bool stalled = false;
    int stallLimitMs = 2000;
    bool waiting = false;
    bool refusing = false;
    std::map<int, double> values;
    int listingCount = 0;
    Hook hook;
    mutable QStringList record_;
};

/// The one behind `sharedCapture`.
ScriptedCapture &scriptedCapture();
