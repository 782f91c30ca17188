#include "camera/videodevices.h"

#include "camera/enumeratevideodevices.h"

namespace {

void decode(const std::vector<std::string> &entries, QStringList &texts)
{
    for (const std::string &entry : entries)
        texts.append(QString::fromUtf8(entry.data(), int(entry.size())));
}

} // namespace

int listVideoDevices(QStringList &names, QStringList &paths)
{
    std::vector<std::string> rawNames;
    std::vector<std::string> rawPaths;
    const int count = enumerateVideoDevices(rawNames, rawPaths);
    decode(rawNames, names);
    decode(rawPaths, paths);
    return count;
}

QStringList videoDeviceFaults(const QStringList &paths)
{
    QStringList faults;
    for (const QString &path : paths)
        faults.append(QString::fromStdString(videoDeviceFault(path.toStdString())));
    return faults;
}
