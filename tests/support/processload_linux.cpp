#include "tests/support/processload.h"

#include <QDir>

#include <malloc.h>

ProcessLoad ProcessLoad::now()
{
    const auto entries = [](const char *folder) {
        return int(QDir(QLatin1String(folder))
                       .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                       .size());
    };
    const struct mallinfo2 heap = mallinfo2();
    return {entries("/proc/self/task"), entries("/proc/self/fd"), heap.uordblks + heap.hblkhd};
}
