#pragma once

#include <QCoreApplication>
#include <QString>
#include <QThread>

#include <cstddef>

/// What the process holds at this moment, as the system counts it. What it does not count is 0.
struct ProcessLoad
{
    int threads = 0;
    int descriptors = 0;
    std::size_t heapBytes = 0; ///< in use; under a sanitizer, which brings its own heap, constant

    static ProcessLoad now(); // processload_linux.cpp, processload_windows.cpp

    /// The least of each over a moment, with events served: a thread that has just ended may still
    /// be listed.
    static ProcessLoad atRest()
    {
        ProcessLoad least = now();
        for (int i = 0; i < 20; ++i) {
            QCoreApplication::processEvents();
            QThread::msleep(5);
            const ProcessLoad sample = now();
            least.threads = qMin(least.threads, sample.threads);
            least.descriptors = qMin(least.descriptors, sample.descriptors);
            least.heapBytes = qMin(least.heapBytes, sample.heapBytes);
        }
        return least;
    }

    /// Whether it stands where it stood before: no more threads and descriptors, and no more on the
    /// heap than some slack.
    bool standsWhere(const ProcessLoad &before, std::size_t slackBytes) const
    {
        return threads <= before.threads && descriptors <= before.descriptors &&
               heapBytes <= before.heapBytes + slackBytes;
    }

    QString text() const
    {
        return QStringLiteral("%1 threads, %2 descriptors, %3 bytes")
            .arg(threads)
            .arg(descriptors)
            .arg(heapBytes);
    }
};
