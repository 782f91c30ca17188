#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

/// Serves events until the condition holds. A fine-grained QTRY_VERIFY for loops of many waits.
template<typename Condition>
bool eventually(Condition condition, int timeoutMs = 20000)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(timeoutMs))
            return false;
        QCoreApplication::processEvents();
        QThread::usleep(200);
    }
    return true;
}
