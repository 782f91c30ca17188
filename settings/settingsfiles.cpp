#include "settings/settingsfiles.h"

#include "settings/inifile.h"

namespace {

constexpr auto configFile = "./config.ini";
constexpr auto calibrationFile = "./calibration.ini";
constexpr auto crossFile = "./corss.ini";

QVariant readConfig(const QString &group, const QString &key)
{
    return IniFile(configFile, IniFile::Read)->value(group + '/' + key);
}

void writeConfig(const QString &group, const QString &key, const QVariant &value)
{
    IniFile file(configFile, IniFile::Change);
    file->beginGroup(group);
    file->setValue(key, value);
    file->endGroup();
    file.store();
}

CalibrationRecord readCalibration(const QSettings &row)
{
    CalibrationRecord record;
    record.name = row.value("name").toString();
    record.length = row.value("length").toReal();
    record.unit = row.value("unit").toString();
    record.real = row.value("real").toReal();
    return record;
}

void writeCalibration(QSettings &row, const CalibrationRecord &record)
{
    row.setValue("name", record.name);
    row.setValue("length", record.length);
    row.setValue("unit", record.unit);
    row.setValue("real", record.real);
}

CrossRecord readCross(const QSettings &row)
{
    CrossRecord record;
    record.direct = row.value("direct").toInt();
    record.width = row.value("width").toInt();
    record.color = row.value("color").value<QColor>();
    record.pos = row.value("pos").toPointF();
    record.lock = row.value("lock").toBool();
    record.visible = row.value("visible").toBool();
    return record;
}

void writeCross(QSettings &row, const CrossRecord &record)
{
    row.setValue("direct", record.direct);
    row.setValue("width", record.width);
    row.setValue("color", record.color);
    row.setValue("pos", record.pos);
    row.setValue("lock", record.lock);
    row.setValue("visible", record.visible);
}

/// The number of rows to read where the size entry tells `size`. A row that the file lacks reads as
/// an empty one; but a size that promises more than a thousand of those is damaged, and must not
/// fill the memory: then the rows that stand in the file count.
int rowsToRead(const QSettings &array, int size)
{
    constexpr int missingRowsAllowed = 1000;
    const int present = array.childGroups().size();
    return size > present + missingRowsAllowed ? present : size;
}

template<class Record>
QList<Record> readArray(const QString &path, const QString &array,
                        Record (*readRow)(const QSettings &))
{
    const IniFile file(path, IniFile::Read);
    QList<Record> records;
    const int size = file->beginReadArray(array);
    const int rows = rowsToRead(*file, size);
    for (int i = 0; i < rows; ++i) {
        file->setArrayIndex(i);
        records.append(readRow(*file));
    }
    file->endArray();
    return records;
}

template<class Record>
void writeArray(const QString &path, const QString &array, const QList<Record> &records,
                void (*writeRow)(QSettings &, const Record &))
{
    IniFile file(path, IniFile::Change);
    file->beginWriteArray(array, records.size());
    for (int i = 0; i < records.size(); ++i) {
        file->setArrayIndex(i);
        writeRow(*file, records[i]);
    }
    file->endArray();
    file.store();
}

} // namespace

DrawProperties readDrawSettings()
{
    const IniFile file(configFile, IniFile::Read);
    file->beginGroup("draw");
    DrawProperties properties;
    for (int i = 0; i < drawPropertyCount; ++i) {
        const auto key = static_cast<DrawProperty>(i);
        properties.insert(key, file->value(drawPropertyName(key)));
    }
    file->endGroup();
    if (properties[QuickSavePath].toString().isEmpty())
        properties[QuickSavePath] = QVariant("D:/");
    return properties;
}

void writeDrawSetting(DrawProperty key, const QVariant &value)
{
    if (const char *name = drawPropertyName(key))
        writeConfig("draw", name, value);
}

bool readIsDebug() { return readConfig("base", "isDebug").toString().contains("true"); }

void writeIsDebug(bool isDebug)
{
    // Group "draw", where readIsDebug() does not look: the switch is set by hand alone.
    writeConfig("draw", "isDebug", isDebug ? "true" : "false");
}

QString readFilePath() { return readConfig("base", "filePath").toString(); }

void writeFilePath(const QString &path) { writeConfig("base", "filePath", path); }

CalibrationRecords readCalibrations()
{
    return readArray(calibrationFile, "calibrate", readCalibration);
}

void writeCalibrations(const CalibrationRecords &records)
{
    writeArray(calibrationFile, "calibrate", records, writeCalibration);
}

CrossRecords readCrosses() { return readArray(crossFile, "corss", readCross); }

void writeCrosses(const CrossRecords &records)
{
    writeArray(crossFile, "corss", records, writeCross);
}
