#pragma once

#include "camera/pause.h"

#include <QStringList>
#include <QThread>

#include <atomic>
#include <mutex>

/// Watches the list of attached cameras by listing them once a period.
///
/// Device paths tell cameras apart, and their order is part of the list: names alone changing is no
/// change, another order is one.
class CameraDetect : public QThread
{
    Q_OBJECT

public:
    /// @param pollPeriodMs  rest between two listings
    explicit CameraDetect(int pollPeriodMs = 1000, QObject *parent = nullptr);
    /// Ends the thread. The program itself lets it run until the process ends.
    ~CameraDetect() override;

    /// The device path of the camera in use; empty when none is wanted.
    QString watchedPath() const;
    void setWatchedPath(const QString &path);

signals:
    /// The list changed.
    void detect(QStringList names, QStringList paths);
    /// What keeps the listed devices from being opened, an empty text where nothing does. Follows
    /// every `detect`, and comes when it changes: rights to a device may come a moment after it.
    void accessChange(QStringList faults);
    /// The camera in use is listed at this moment. Sent every period while that holds.
    void alive();

protected:
    void run() override;

private:
    void poll();

    QStringList deviceNames;
    QStringList devicePaths;
    QStringList deviceFaults;
    QString watchedPath_; // guarded by watchedMutex
    std::atomic<bool> polling{true};

    mutable std::mutex watchedMutex;
    Pause pause;
    const int pollPeriodMs;
};
