#pragma once

#include <QMap>
#include <QString>

#include <atomic>
#include <chrono>
#include <thread>

class ShowWidget;
class Tavorin;

/// Looks whether the list and the scene of every page of a window are in step.
class StepWatch
{
public:
    explicit StepWatch(const Tavorin *tavorin)
        : window(tavorin)
    {}

    /// What is wrong: another number of rows than of finished shapes, or a row that goes on telling
    /// something else than its shape. A label is final once its shape has been painted, and a load
    /// announces its shapes in batches, so a text may lag for a while. Empty while all is well.
    QString fault();

private:
    const Tavorin *window;
    QMap<const ShowWidget *, int> lagging; // for how many looks in a row
};

/// Counts the warnings that the program and the toolkit utter, and ends the process on none.
class Warnings
{
public:
    Warnings();
    /// Each warning with how often it came.
    static QMap<QString, int> heard();
};

/// Ends the process with a word when the thread that it watches does not call for too long.
class HangWatch
{
public:
    explicit HangWatch(std::chrono::seconds limit);
    ~HangWatch();

    void call() { calls.fetch_add(1, std::memory_order_relaxed); }

private:
    std::atomic<unsigned> calls{0};
    std::atomic<bool> over{false};
    std::thread thread;
};

/// Has the process say this line, to the error output, should it crash. At most 250 bytes.
void setLastWords(const QString &line);
