#include "settings/settingsfiles.h"

#include "settings/inifile.h"

#include <QSettings>

namespace {

/// One of the three files, with a group entered for as long as the object lives.
class SettingsGroup
{
public:
    SettingsGroup(const QString &path, const QString &group)
        : settings(safeIniFile(path), QSettings::IniFormat)
    {
        settings.beginGroup(group);
    }
    ~SettingsGroup() { settings.endGroup(); }
    Q_DISABLE_COPY(SettingsGroup)

    QVariant value(const QString &key) const { return settings.value(key); }
    void setValue(const QString &key, const QVariant &value) { settings.setValue(key, value); }

private:
    QSettings settings;
};

constexpr auto configFile = "./config.ini";
constexpr auto calibrationFile = "./calibration.ini";
constexpr auto crossFile = "./corss.ini";

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
    QSettings settings(safeIniFile(path), QSettings::IniFormat);
    QList<Record> records;
    const int size = settings.beginReadArray(array);
    const int rows = rowsToRead(settings, size);
    for (int i = 0; i < rows; ++i) {
        settings.setArrayIndex(i);
        records.append(readRow(settings));
    }
    settings.endArray();
    return records;
}

template<class Record>
void writeArray(const QString &path, const QString &array, const QList<Record> &records,
                void (*writeRow)(QSettings &, const Record &))
{
    QSettings settings(safeIniFile(path), QSettings::IniFormat);
    settings.beginWriteArray(array, records.size());
    for (int i = 0; i < records.size(); ++i) {
        settings.setArrayIndex(i);
        writeRow(settings, records[i]);
    }
    settings.endArray();
}

} // namespace

DrawProperties readDrawSettings()
{
    const SettingsGroup draw(configFile, "draw");
    DrawProperties properties;
    for (int i = 0; i < drawPropertyCount; ++i) {
        const auto key = static_cast<DrawProperty>(i);
        properties.insert(key, draw.value(drawPropertyName(key)));
    }
    if (properties[QuickSavePath].toString().isEmpty())
        properties[QuickSavePath] = QVariant("D:/");
    return properties;
}

void writeDrawSetting(DrawProperty key, const QVariant &value)
{
    SettingsGroup draw(configFile, "draw");
    if (const char *name = drawPropertyName(key))
        draw.setValue(name, value);
}

bool readIsDebug()
{
    return SettingsGroup(configFile, "base").value("isDebug").toString().contains("true");
}

void writeIsDebug(bool isDebug)
{
    // Group "draw", where readIsDebug() does not look: the switch is set by hand alone.
    SettingsGroup(configFile, "draw").setValue("isDebug", isDebug ? "true" : "false");
}

QString readFilePath() { return SettingsGroup(configFile, "base").value("filePath").toString(); }

void writeFilePath(const QString &path)
{
    SettingsGroup(configFile, "base").setValue("filePath", path);
}

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
