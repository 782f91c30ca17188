#pragma once

#include <QDir>
#include <QString>

#include <malloc.h>

#include <cstddef>

/// What the process holds at this moment, as the system counts it (Linux).
struct ProcessLoad
{
    int threads = 0;
    int descriptors = 0;
    std::size_t heapBytes = 0; ///< in use; under a sanitizer, which brings its own heap, constant

    static ProcessLoad now()
    {
        const auto entries = [](const char *folder) {
            return int(QDir(QLatin1String(folder))
                           .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                           .size());
        };
        const struct mallinfo2 heap = mallinfo2();
        return {entries("/proc/self/task"), entries("/proc/self/fd"), heap.uordblks + heap.hblkhd};
    }

    /// Whether it stands where it stood before: same counts, and no more than a few frames' worth
    /// of small change on the heap.
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
