#include "simulator/motor.h"

#include <algorithm>
#include <cmath>

void Motor::setSpeed(double unitsPerSecond, Clock::time_point now)
{
    moveTo(target, now);
    speed = unitsPerSecond;
}

void Motor::moveTo(double newTarget, Clock::time_point now)
{
    start = position(now);
    startTime = now;
    target = newTarget;
}

double Motor::position(Clock::time_point now) const
{
    const double seconds = std::chrono::duration<double>(now - startTime).count();
    const double way = std::min(std::abs(target - start), speed * seconds);
    return target > start ? start + way : start - way;
}
