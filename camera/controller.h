#pragma once

#include "camera/cameraparameters.h"

#include <QThread>

#include <atomic>

/// Applies changes of the camera's parameters in the background.
///
/// The thread lives only while changes are pending. All that arrives while it rests is folded into
/// one batch, in which each type occurs at most once, with its newest number: that keeps a dragged
/// slider from flooding the device.
class Controller : public QThread
{
    Q_OBJECT

public:
    /// @param batchPeriodMs  rest between two batches
    explicit Controller(int batchPeriodMs = 40, QObject *parent = nullptr);
    ~Controller() override;

    /// Posts a change. Dropped while the device is closed, and for a number that is no type.
    void setCameraInfo(int type, int num);

    /// Reads one parameter back; -1 when the device is not open or the type is not known here.
    static int readParameter(int type);

    /// The size asked for, never the one that the device reports. It survives close and reopen.
    int frameWidth() const { return frameWidth_.load(std::memory_order_relaxed); }
    int frameHeight() const { return frameHeight_.load(std::memory_order_relaxed); }

    /// True from a successful open until the device is closed.
    bool isEnabled() const { return enabled.load(std::memory_order_relaxed); }
    void setEnabled(bool on) { enabled.store(on, std::memory_order_relaxed); }

signals:
    /// The size now asked for, as in "640*480". Emitted on this thread.
    void resolutionChange(QString text);

protected:
    void run() override;

private:
    void startIfNeeded();
    bool hasWork() const;
    void applyPending();
    void apply(const CameraParameterRow &row, int num);
    void applyResolution(int width, int height);

    std::atomic<int> frameWidth_{1920};
    std::atomic<int> frameHeight_{1080};
    std::atomic<quint32> pendingMask{0};
    std::array<std::atomic<int>, cameraParameterCount> values{};
    std::atomic<bool> enabled{false};
    const int batchPeriodMs;
};
