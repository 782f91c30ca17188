#include "tests/support/diskfaults.h"

#include <QFile>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t nobody = 65534;

rlim_t limitFiles(rlim_t bytes)
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlim_t before = limit.rlim_cur;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
    return before;
}

} // namespace

FullDisk::FullDisk(int bytes)
{
    std::signal(SIGXFSZ, SIG_IGN); // a write beyond the limit fails instead
    before = limitFiles(rlim_t(bytes));
}

FullDisk::~FullDisk() { limitFiles(rlim_t(before)); }

ReadOnlyFolder::ReadOnlyFolder(const QString &path)
    : folder(path)
    , wasRoot(geteuid() == 0)
{
    chmod(QFile::encodeName(folder), 0555);
    if (wasRoot && seteuid(nobody) != 0)
        qFatal("cannot give up the rights of an administrator");
}

ReadOnlyFolder::~ReadOnlyFolder()
{
    if (wasRoot && seteuid(0) != 0)
        qFatal("cannot take the rights of an administrator back");
    chmod(QFile::encodeName(folder), 0755);
}
