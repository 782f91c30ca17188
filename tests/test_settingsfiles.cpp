#include "settings/settingsfiles.h"
#include "tests/support/workingdirectory.h"

#include <QDataStream>
#include <QFileInfo>
#include <QSettings>
#include <QTest>

#include <memory>

namespace {

/// The bytes as an INI file spells them, each one escaped.
QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    for (const char byte : bytes)
        text += "\\x" + QByteArray::number(uchar(byte), 16);
    return text;
}

/// A value of the given type number and content in the text form of an INI file.
QByteArray variant(quint32 type, const QByteArray &content)
{
    QByteArray number;
    QDataStream(&number, QIODevice::WriteOnly) << type;
    return "@Variant(" + escaped(number + content) + ")";
}

constexpr quint32 listType = 9;
constexpr quint32 polygonType = 71;
const QByteArray hugeLength("\x7f\xff\xff\xff");

/// A list in a list in a list, and so on.
QByteArray nestedLists(int depth) { return QByteArray("\0\0\0\x01\0\0\0\x09", 8).repeated(depth); }

} // namespace

class TestSettingsFiles : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<WorkingDirectory>(); }
    void cleanup() { directory.reset(); }

    void namesOfTheDrawSettings();
    void aNumberThatIsNoDrawSettingHasNoName();

    void withoutAFileAllDrawSettingsButThePathAreInvalid();
    void anEmptyQuickSavePathReadsAsTheDefault();
    void aStoredQuickSavePathReadsUnchanged();
    void drawSettingsComeBackAsWritten();
    void drawSettingsStandInTheFileAsText();
    void aKeyBeyondTheSettingsIsNotWritten_data();
    void aKeyBeyondTheSettingsIsNotWritten();

    void theDebugSwitch_data();
    void theDebugSwitch();
    void theDebugSwitchIsWrittenWhereItIsNotRead();
    void theFilePathIsKeptInGroupBase();

    void withoutAFileThereAreNoCalibrations();
    void calibrationsComeBackAsWritten();
    void calibrationsStandInTheFileAsText();
    void aShorterListLeavesOldRowsInTheFile();
    void aRowThatTheFileLacksReadsAsAnEmptyOne();
    void aHugeSizeGivesTheRowsOfTheFile_data();
    void aHugeSizeGivesTheRowsOfTheFile();
    void wrongTypesInACalibrationReadAsNothing();

    void crossesComeBackAsWritten();
    void crossesStandInTheFileAsText();
    void aCrossWithoutItsKeysKeepsTheInitialValues();
    void anUnreadableColourKeepsTheRow_data();
    void anUnreadableColourKeepsTheRow();
    void aColourNameConverts();

    void aHostileValueIsReadAsText_data();
    void aHostileValueIsReadAsText();
    void aHostileFileIsNotTouchedByReading();
    void aHostileFileCanStillBeWritten();
    void sectionsWithoutANameCanStillBeWritten();
    void aFileThatWasRewrittenAtOnceIsReadAnew();
    void aTextThatLooksLikeAValueKeepsItsSecret();
    void everyTruncationIsSurvived();
    void rubbishIsNoFile_data();
    void rubbishIsNoFile();
    void somethingElseThanAFileIsLeftAlone();
    void anUnwritableDirectoryGoesUnnoticed();
    void aFileOfMoreThan16MegabytesIsNotRead();
    void aWriteLeavesNoOtherFileBehind();

private:
    std::unique_ptr<WorkingDirectory> directory;
};

void TestSettingsFiles::namesOfTheDrawSettings()
{
    const QStringList expected = {
        "PointWidth",    "PointColor",    "LineWidth",     "LineColor",      "TextSize",
        "TextColor",     "Antialiasing",  "QuickSavePath", "DrawCrossWidth", "DrawCrossColor",
        "RingDistance1", "RingDistance2", "LineDistance1", "LineDistance2"};
    QStringList names;
    for (int i = 0; i < 14; ++i)
        names += drawPropertyName(static_cast<DrawProperty>(i));
    QCOMPARE(names, expected);
}

void TestSettingsFiles::aNumberThatIsNoDrawSettingHasNoName()
{
    QVERIFY(!drawPropertyName(static_cast<DrawProperty>(14)));
    QVERIFY(!drawPropertyName(static_cast<DrawProperty>(-1)));
}

void TestSettingsFiles::withoutAFileAllDrawSettingsButThePathAreInvalid()
{
    const DrawProperties properties = readDrawSettings();
    QCOMPARE(properties.size(), 14);
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        if (it.key() == QuickSavePath)
            QCOMPARE(it.value(), QVariant("D:/"));
        else
            QVERIFY(!it.value().isValid());
    }
    QVERIFY(!QFileInfo::exists("config.ini"));
}

void TestSettingsFiles::anEmptyQuickSavePathReadsAsTheDefault()
{
    directory->write("config.ini", "[draw]\nQuickSavePath=\n");
    QCOMPARE(readDrawSettings()[QuickSavePath], QVariant("D:/"));
}

void TestSettingsFiles::aStoredQuickSavePathReadsUnchanged()
{
    writeDrawSetting(QuickSavePath, QString::fromUtf8("E:/图片, 2/a b"));
    QCOMPARE(readDrawSettings()[QuickSavePath], QVariant(QString::fromUtf8("E:/图片, 2/a b")));
}

void TestSettingsFiles::drawSettingsComeBackAsWritten()
{
    writeDrawSetting(PointWidth, 2);
    writeDrawSetting(LineColor, QColor(10, 20, 30));
    writeDrawSetting(Antialiasing, true);
    writeDrawSetting(LineDistance1, -5.25);
    const DrawProperties properties = readDrawSettings();
    QCOMPARE(properties[PointWidth].toInt(), 2);
    QCOMPARE(properties[LineColor].value<QColor>(), QColor(10, 20, 30));
    QCOMPARE(properties[Antialiasing].toBool(), true);
    QCOMPARE(properties[LineDistance1].toDouble(), -5.25);
    QVERIFY(!properties[LineDistance2].isValid());
}

void TestSettingsFiles::drawSettingsStandInTheFileAsText()
{
    writeDrawSetting(LineWidth, 3);
    writeDrawSetting(LineColor, QColor(Qt::red));
    writeDrawSetting(Antialiasing, false);
    writeDrawSetting(RingDistance1, 0.25);
    QCOMPARE(directory->read("config.ini"),
             QByteArray("[draw]\n"
                        "Antialiasing=false\n"
                        "LineColor=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\xff\\xff\\0\\0\\0\\0\\0"
                        "\\0)\n"
                        "LineWidth=3\n"
                        "RingDistance1=0.25\n"));
}

void TestSettingsFiles::aKeyBeyondTheSettingsIsNotWritten_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("fourteen") << 14;
    QTest::newRow("a thousand") << 1000;
    QTest::newRow("negative") << -1;
}

void TestSettingsFiles::aKeyBeyondTheSettingsIsNotWritten()
{
    QFETCH(int, key);
    writeDrawSetting(LineWidth, 3);
    writeDrawSetting(static_cast<DrawProperty>(key), 5);
    QCOMPARE(directory->read("config.ini"), QByteArray("[draw]\nLineWidth=3\n"));
}

void TestSettingsFiles::theDebugSwitch_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("expected");
    QTest::newRow("no file") << QByteArray() << false;
    QTest::newRow("true in group base") << QByteArray("[base]\nisDebug=true\n") << true;
    QTest::newRow("true in group draw") << QByteArray("[draw]\nisDebug=true\n") << false;
    QTest::newRow("false") << QByteArray("[base]\nisDebug=false\n") << false;
    QTest::newRow("true within a word") << QByteArray("[base]\nisDebug=untrue!\n") << true;
    QTest::newRow("another case") << QByteArray("[base]\nisDebug=True\n") << false;
    QTest::newRow("a number") << QByteArray("[base]\nisDebug=1\n") << false;
}

void TestSettingsFiles::theDebugSwitch()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, expected);
    directory->write("config.ini", file);
    QCOMPARE(readIsDebug(), expected);
}

void TestSettingsFiles::theDebugSwitchIsWrittenWhereItIsNotRead()
{
    writeIsDebug(true);
    QCOMPARE(directory->read("config.ini"), QByteArray("[draw]\nisDebug=true\n"));
    QCOMPARE(readIsDebug(), false);
    writeIsDebug(false);
    QCOMPARE(directory->read("config.ini"), QByteArray("[draw]\nisDebug=false\n"));
}

void TestSettingsFiles::theFilePathIsKeptInGroupBase()
{
    QCOMPARE(readFilePath(), QString());
    writeFilePath("D:/pictures");
    QCOMPARE(directory->read("config.ini"), QByteArray("[base]\nfilePath=D:/pictures\n"));
    QCOMPARE(readFilePath(), QString("D:/pictures"));
}

void TestSettingsFiles::withoutAFileThereAreNoCalibrations()
{
    QVERIFY(readCalibrations().isEmpty());
    QVERIFY(!QFileInfo::exists("calibration.ini"));
}

void TestSettingsFiles::calibrationsComeBackAsWritten()
{
    writeCalibrations({{QString::fromUtf8("5倍"), 100, "mm", 500}, {"x10", 7, "mil", 12.7}});
    const CalibrationRecords records = readCalibrations();
    QCOMPARE(records.size(), 2);
    QCOMPARE(records[0].name, QString::fromUtf8("5倍"));
    QCOMPARE(records[0].length, 100.0);
    QCOMPARE(records[0].unit, QString("mm"));
    QCOMPARE(records[0].real, 500.0);
    QCOMPARE(records[1].name, QString("x10"));
    QCOMPARE(records[1].length, 7.0);
    QCOMPARE(records[1].unit, QString("mil"));
    QCOMPARE(records[1].real, 12.7);
}

void TestSettingsFiles::calibrationsStandInTheFileAsText()
{
    writeCalibrations({{"abc", 100, "mm", 0.5}});
    QCOMPARE(directory->read("calibration.ini"), QByteArray("[calibrate]\n"
                                                            "1\\length=100\n"
                                                            "1\\name=abc\n"
                                                            "1\\real=0.5\n"
                                                            "1\\unit=mm\n"
                                                            "size=1\n"));
}

void TestSettingsFiles::aShorterListLeavesOldRowsInTheFile()
{
    writeCalibrations({{"a", 1, "mm", 2}, {"b", 3, "um", 4}});
    writeCalibrations({{"c", 5, "mil", 6}});
    const CalibrationRecords records = readCalibrations();
    QCOMPARE(records.size(), 1);
    QCOMPARE(records[0].name, QString("c"));
    QVERIFY(directory->read("calibration.ini").contains("2\\name=b\n"));

    writeCalibrations({});
    QVERIFY(readCalibrations().isEmpty());
    QVERIFY(directory->read("calibration.ini").contains("size=0\n"));
}

void TestSettingsFiles::aRowThatTheFileLacksReadsAsAnEmptyOne()
{
    directory->write("calibration.ini", "[calibrate]\nsize=3\n1\\name=a\n3\\name=c\n");
    const CalibrationRecords records = readCalibrations();
    QCOMPARE(records.size(), 3);
    QCOMPARE(records[1].name, QString());
    QCOMPARE(records[1].real, 0.0);
    QCOMPARE(records[2].name, QString("c"));
}

void TestSettingsFiles::aHugeSizeGivesTheRowsOfTheFile_data()
{
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<int>("expected");
    QTest::newRow("largest number") << QByteArray("2147483647") << 2;
    QTest::newRow("a thousand rows missing") << QByteArray("1002") << 1002;
    QTest::newRow("one more") << QByteArray("1003") << 2;
    QTest::newRow("beyond a number") << QByteArray("99999999999999") << 2;
    QTest::newRow("negative") << QByteArray("-1") << 0;
    QTest::newRow("smallest number") << QByteArray("-2147483648") << 0;
    QTest::newRow("a word") << QByteArray("many") << 0;
    QTest::newRow("empty") << QByteArray() << 0;
}

void TestSettingsFiles::aHugeSizeGivesTheRowsOfTheFile()
{
    QFETCH(QByteArray, size);
    QFETCH(int, expected);
    directory->write("calibration.ini", "[calibrate]\n1\\name=a\n2\\name=b\nsize=" + size + "\n");
    directory->write("corss.ini", "[corss]\n1\\direct=1\n2\\direct=2\nsize=" + size + "\n");
    QCOMPARE(readCalibrations().size(), expected);
    QCOMPARE(readCrosses().size(), expected);
}

void TestSettingsFiles::wrongTypesInACalibrationReadAsNothing()
{
    directory->write(
        "calibration.ini",
        "[calibrate]\n1\\length=long\n1\\name=a, b\n1\\real=1e999\n"
        "1\\unit=@Size(1 2)\n2\\length=@ByteArray(\\xff\\n2\\real=@Invalid()\nsize=2\n");
    const CalibrationRecords records = readCalibrations();
    QCOMPARE(records.size(), 2);
    QCOMPARE(records[0].length, 0.0);
    QCOMPARE(records[0].name, QString());
    QCOMPARE(records[0].unit, QString());
    QCOMPARE(records[1].real, 0.0);
}

void TestSettingsFiles::crossesComeBackAsWritten()
{
    writeCrosses({{2, 1, QColor(255, 0, 0), {0, 100.5}, true, false},
                  {1, 3, QColor(1, 2, 3), {-7.25, 0}, false, true}});
    const CrossRecords records = readCrosses();
    QCOMPARE(records.size(), 2);
    QCOMPARE(records[0].direct, 2);
    QCOMPARE(records[0].width, 1);
    QCOMPARE(records[0].color, QColor(255, 0, 0));
    QCOMPARE(records[0].pos, QPointF(0, 100.5));
    QCOMPARE(records[0].lock, true);
    QCOMPARE(records[0].visible, false);
    QCOMPARE(records[1].direct, 1);
    QCOMPARE(records[1].width, 3);
    QCOMPARE(records[1].color, QColor(1, 2, 3));
    QCOMPARE(records[1].pos, QPointF(-7.25, 0));
    QCOMPARE(records[1].lock, false);
    QCOMPARE(records[1].visible, true);
}

void TestSettingsFiles::crossesStandInTheFileAsText()
{
    writeCrosses({{2, 1, QColor(Qt::red), {1, 2}, true, false}});
    QCOMPARE(directory->read("corss.ini"),
             QByteArray("[corss]\n"
                        "1\\color=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\xff\\xff\\0\\0\\0\\0\\0"
                        "\\0)\n"
                        "1\\direct=2\n"
                        "1\\lock=true\n"
                        "1\\pos=@Variant(\\0\\0\\0\\x1a?\\xf0\\0\\0\\0\\0\\0\\0@\\0\\0\\0\\0\\0\\0"
                        "\\0)\n"
                        "1\\visible=false\n"
                        "1\\width=1\n"
                        "size=1\n"));
}

void TestSettingsFiles::aCrossWithoutItsKeysKeepsTheInitialValues()
{
    directory->write("corss.ini", "[corss]\nsize=1\n");
    const CrossRecords records = readCrosses();
    QCOMPARE(records.size(), 1);
    QCOMPARE(records[0].direct, 0);
    QCOMPARE(records[0].width, 0);
    QVERIFY(!records[0].color.isValid());
    QCOMPARE(records[0].pos, QPointF(0, 0));
    QVERIFY(!records[0].lock);
    QVERIFY(!records[0].visible);
}

void TestSettingsFiles::anUnreadableColourKeepsTheRow_data()
{
    QTest::addColumn<QByteArray>("color");
    QTest::newRow("a word") << QByteArray("nonsense");
    QTest::newRow("a point") << variant(26, QByteArray(16, '\0'));
    QTest::newRow("a list") << variant(listType, QByteArray(4, '\0'));
    QTest::newRow("a list without end") << variant(listType, hugeLength);
    QTest::newRow("cut off") << QByteArray("@Variant(\\0\\0\\0\\x43)");
    QTest::newRow("of no form") << QByteArray("@Variant(\\0\\0\\0\\x43\\x7\\xff)");
    QTest::newRow("never closed") << QByteArray("@Variant(\\0\\0\\0\\x43\\x1\\xff");
    QTest::newRow("bytes") << QByteArray("@ByteArray(\\xff\\xff)");
}

void TestSettingsFiles::anUnreadableColourKeepsTheRow()
{
    QFETCH(QByteArray, color);
    directory->write("corss.ini", "[corss]\n1\\color=" + color +
                                      "\n1\\direct=2\n1\\visible=true\n1\\width=3\nsize=1\n");
    const CrossRecords records = readCrosses();
    QCOMPARE(records.size(), 1);
    QVERIFY(!records[0].color.isValid());
    QCOMPARE(records[0].direct, 2);
    QCOMPARE(records[0].width, 3);
    QCOMPARE(records[0].visible, true);
}

void TestSettingsFiles::aColourNameConverts()
{
    directory->write("corss.ini", "[corss]\n1\\color=#102030\nsize=1\n");
    QCOMPARE(readCrosses().value(0).color, QColor(0x10, 0x20, 0x30));
}

void TestSettingsFiles::aHostileValueIsReadAsText_data()
{
    QTest::addColumn<QByteArray>("value");
    const QByteArray list = variant(listType, hugeLength);
    const QByteArray rest = list.mid(9);
    QTest::newRow("list of a huge length") << list;
    QTest::newRow("polygon of a huge length") << variant(polygonType, hugeLength);
    QTest::newRow("lists in lists") << variant(listType, nestedLists(300000));
    QTest::newRow("time") << QByteArray("@DateTime(\\0\\0\\0\\0)");
    QTest::newRow("second of two values") << QByteArray("a, ") + list;
    QTest::newRow("within a quoted value") << "\"" + list + "\"";
    QTest::newRow("sign in hexadecimal") << "\\x40Variant(" + rest;
    QTest::newRow("sign beyond two bytes") << "\\x10040Variant(" + rest;
    QTest::newRow("sign in octal") << "\\100Variant(" + rest;
    QTest::newRow("letters escaped") << "@\\x56\\141ria\\x6Et\\50" + rest;
    QTest::newRow("quotes and blanks between") << "@Var\"\" \"\"iant(" + rest;
    QTest::newRow("line end between") << "@Var\\\niant(" + rest;
    QTest::newRow("line end of two bytes between") << "@Var\\\r\niant(" + rest;
    QTest::newRow("unknown escapes between") << "@V\\qa\\xr\\8iant(" + rest;
    QTest::newRow("colour's number one byte late")
        << QByteArray("@Variant(\\0\\0\\x9\\0\\0\\0\\x43)");
    QTest::newRow("colour's number read on") << QByteArray("@Variant(\\0\\0\\0\\x43f)");
    QTest::newRow("a zero before it") << QByteArray("\0, ", 3) + list;
    QTest::newRow("two brackets") << "@Variant((" + rest;
    QTest::newRow("many signs") << QByteArray(200000, '@') + "Variant(" + rest;
}

void TestSettingsFiles::aHostileValueIsReadAsText()
{
    QFETCH(QByteArray, value);
    directory->write("config.ini", "[draw]\nLineColor=" + value + "\nLineWidth=2\n");
    const DrawProperties properties = readDrawSettings();
    QVERIFY(!properties[LineColor].value<QColor>().isValid());
    QVERIFY(properties[LineColor].toStringList().last().contains('['));
    QCOMPARE(properties[LineWidth].toInt(), 2);
}

void TestSettingsFiles::aHostileFileIsNotTouchedByReading()
{
    const QByteArray hostile = "[draw]\nLineColor=" + variant(listType, hugeLength) + "\n";
    directory->write("config.ini", hostile);
    readDrawSettings();
    QCOMPARE(directory->read("config.ini"), hostile);
}

void TestSettingsFiles::aFileThatWasRewrittenAtOnceIsReadAnew()
{
    // Of the same size and within the same tick of the file's clock.
    for (int width = 1; width <= 9; ++width) {
        directory->write("config.ini", "[draw]\nLineWidth=" + QByteArray::number(width) + "\n");
        QCOMPARE(readDrawSettings()[LineWidth].toInt(), width);
    }
}

void TestSettingsFiles::aHostileFileCanStillBeWritten()
{
    directory->write("config.ini",
                     "[draw]\nTextColor=" + variant(listType, nestedLists(300000)) + "\n");
    writeDrawSetting(LineWidth, 2);
    QCOMPARE(readDrawSettings()[LineWidth].toInt(), 2);
}

void TestSettingsFiles::sectionsWithoutANameCanStillBeWritten()
{
    // Both keys are one when the file is written again.
    directory->write("config.ini", "size=4\n[]\nsize=5\n");
    writeFilePath("C:/");
    QCOMPARE(readFilePath(), QString("C:/"));
    QVERIFY(directory->read("config.ini").contains("size="));
}

void TestSettingsFiles::aTextThatLooksLikeAValueKeepsItsSecret()
{
    directory->write("config.ini",
                     "[base]\nfilePath=@@Variant(" + variant(listType, hugeLength).mid(9) + "\n");
    QVERIFY(readFilePath().startsWith("@Variant["));
    writeFilePath("C:/");
    QCOMPARE(readFilePath(), QString("C:/"));
}

void TestSettingsFiles::everyTruncationIsSurvived()
{
    writeDrawSetting(LineColor, QColor(Qt::red));
    writeDrawSetting(RingDistance1, 0.25);
    writeCalibrations({{QString::fromUtf8("5倍"), 100, "mm", 500}, {"x10", 7, "mil", 12.7}});
    writeCrosses({{2, 1, QColor(Qt::red), {0, 100.5}, true, false}});
    for (const char *name : {"config.ini", "calibration.ini", "corss.ini"}) {
        const QByteArray whole = directory->read(name);
        for (int size = 0; size < whole.size(); ++size) {
            directory->write(name, whole.left(size));
            QCOMPARE(readDrawSettings().size(), 14);
            QVERIFY(readCalibrations().size() <= 2);
            QVERIFY(readCrosses().size() <= 1);
        }
        directory->write(name, whole);
    }
    QCOMPARE(readDrawSettings()[RingDistance1].toDouble(), 0.25);
    QCOMPARE(readCalibrations().size(), 2);
    QCOMPARE(readCrosses().size(), 1);
}

void TestSettingsFiles::rubbishIsNoFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("zeros") << QByteArray(10000, '\0');
    QByteArray bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += char(i * 7919 >> 3);
    QTest::newRow("binary") << bytes;
    QTest::newRow("brackets") << QByteArray(100000, '[');
    QTest::newRow("quotes") << QByteArray(100001, '"');
    QTest::newRow("backslashes") << QByteArray(100001, '\\');
    QTest::newRow("signs") << QByteArray(1000000, '@');
    QTest::newRow("one long escape") << "@\\x" + QByteArray(1000000, '4');
    QTest::newRow("signs and quotes") << QByteArray("@\" ").repeated(300000);
    QTest::newRow("nearly a value") << QByteArray("@Variant").repeated(100000);
    QTest::newRow("too large") << "[base]\nfilePath=x\n" + QByteArray(17 * 1024 * 1024, ';');
}

void TestSettingsFiles::rubbishIsNoFile()
{
    QFETCH(QByteArray, bytes);
    for (const char *name : {"config.ini", "calibration.ini", "corss.ini"})
        directory->write(name, bytes);
    QCOMPARE(readDrawSettings().size(), 14);
    QCOMPARE(readFilePath(), QString());
    QVERIFY(readCalibrations().isEmpty());
    QVERIFY(readCrosses().isEmpty());
}

void TestSettingsFiles::somethingElseThanAFileIsLeftAlone()
{
    QDir().mkdir("config.ini");
    writeFilePath("D:/");
    QCOMPARE(readFilePath(), QString());
    QVERIFY(QFileInfo("config.ini").isDir());
}

void TestSettingsFiles::aFileOfMoreThan16MegabytesIsNotRead()
{
    const QByteArray settings = "[base]\nfilePath=D:/pictures\n;";
    const int most = 16 * 1024 * 1024;
    directory->write("config.ini", settings + QByteArray(most - settings.size(), '-'));
    QCOMPARE(readFilePath(), QString("D:/pictures"));
    directory->write("config.ini", settings + QByteArray(most + 1 - settings.size(), '-'));
    QCOMPARE(readFilePath(), QString());
}

void TestSettingsFiles::anUnwritableDirectoryGoesUnnoticed()
{
    // The directory vanishes, so that not even an administrator can write there.
    QDir().mkdir("gone");
    QDir::setCurrent("gone");
    if (!QDir("..").rmdir("gone"))
        QSKIP("This system keeps the directory that a program works in.");
    writeCalibrations({{"a", 1, "mm", 1}});
    QVERIFY(readCalibrations().isEmpty());
}

void TestSettingsFiles::aWriteLeavesNoOtherFileBehind()
{
    writeFilePath("D:/");
    writeCalibrations({{"a", 1, "mm", 1}});
    writeCrosses({{}});
    QCOMPARE(QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({"calibration.ini", "config.ini", "corss.ini"}));
}

QTEST_GUILESS_MAIN(TestSettingsFiles)
#include "test_settingsfiles.moc"
