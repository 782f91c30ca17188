#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// A thread's rest that another thread can cut short.
class Pause
{
public:
    /// Rests for the time, or until `over` says true; it is asked again after each `cut`.
    template<class Condition>
    void rest(int ms, Condition over)
    {
        std::unique_lock<std::mutex> lock(mutex);
        woken.wait_for(lock, std::chrono::milliseconds(ms), over);
    }

    /// Makes the condition of a rest in progress be looked at now.
    void cut()
    {
        // With the lock, so that no rest is between its look at the condition and its sleep.
        const std::lock_guard<std::mutex> lock(mutex);
        woken.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable woken;
};
