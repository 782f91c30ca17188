#pragma once

#include <chrono>

/// The focus motor: it needs time to move.
class Motor
{
public:
    using Clock = std::chrono::steady_clock;

    /// @param unitsPerSecond  focus positions that the motor passes in a second, from now on
    void setSpeed(double unitsPerSecond, Clock::time_point now);
    void moveTo(double position, Clock::time_point now);
    double position(Clock::time_point now) const;

private:
    double speed = 1000;
    double start = 200;
    double target = 200;
    Clock::time_point startTime;
};
