#include "settings/settingsfiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

void write(const QString &path, const uint8_t *data, size_t size)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(reinterpret_cast<const char *>(data), qint64(size));
}

void enterEmptyFolder()
{
    static const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    for (const QString &name : QDir().entryList(QDir::Files))
        QFile::remove(name);
}

bool isSame(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void compare(const CalibrationRecords &written, const CalibrationRecords &read)
{
    if (written.size() != read.size())
        std::abort();
    for (int i = 0; i < read.size(); ++i) {
        if (written[i].name != read[i].name || written[i].unit != read[i].unit ||
            !isSame(written[i].length, read[i].length) || !isSame(written[i].real, read[i].real))
            std::abort();
    }
}

void compare(const CrossRecords &written, const CrossRecords &read)
{
    if (written.size() != read.size())
        std::abort();
    for (int i = 0; i < read.size(); ++i) {
        if (written[i].direct != read[i].direct || written[i].width != read[i].width ||
            written[i].color != read[i].color || written[i].lock != read[i].lock ||
            written[i].visible != read[i].visible || !isSame(written[i].pos.x(), read[i].pos.x()) ||
            !isSame(written[i].pos.y(), read[i].pos.y()))
            std::abort();
    }
}

} // namespace

/// All three files with these bytes: read, written over, read again. What was written comes back,
/// whatever else the file holds.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    enterEmptyFolder();
    for (const char *name : {"config.ini", "calibration.ini", "corss.ini"})
        write(name, data, size);

    if (readDrawSettings().size() != drawPropertyCount)
        std::abort();
    readIsDebug();
    readFilePath();
    writeDrawSetting(LineWidth, 2);
    writeFilePath("C:/");
    if (readDrawSettings()[LineWidth].toInt() != 2 || readFilePath() != "C:/")
        std::abort();

    CalibrationRecords calibrations = readCalibrations();
    calibrations.append({"x5", 100.0, "mm", 500.0});
    writeCalibrations(calibrations);
    compare(calibrations, readCalibrations());

    CrossRecords crosses = readCrosses();
    crosses.append({2, 1, Qt::red, {0.0, 100.5}, true, true});
    writeCrosses(crosses);
    compare(crosses, readCrosses());
    return 0;
}
