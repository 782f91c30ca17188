#include "settings/settingsfiles.h"
#include "tests/support/workingdirectory.h"

#include <QColor>
#include <QSettings>
#include <QtTest>

#include <cmath>

namespace {
QByteArray shippedSettings()
{
    QFile file(QStringLiteral(SOURCE_DIR "/packaging/config.ini"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Relative luminance of an sRGB colour, 0 to 1, by the definition of WCAG 2.1.
double luminance(const QColor &colour)
{
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}
} // namespace

/// What is laid beside the program on a fresh machine.
class TestPackaging : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        directory.reset(new WorkingDirectory);
        directory->write(QStringLiteral("config.ini"), shippedSettings());
    }
    void cleanup() { directory.reset(); }

    void numbersLieInsideTheRangesOfTheirControls_data();
    void numbersLieInsideTheRangesOfTheirControls();
    void coloursStandOutFromBrightAndDarkSpecimens_data();
    void coloursStandOutFromBrightAndDarkSpecimens();
    void drawsWithAntialiasing();
    void quickSaveGoesToTheWorkingDirectory();
    void debugIsOffAndNoDirectoryIsRemembered();
    void linesCarryNoParallelsBeforeTheOperatorAsks();
    void fileReadsAsTheSettingsWriteIt();

private:
    QScopedPointer<WorkingDirectory> directory;
};

void TestPackaging::numbersLieInsideTheRangesOfTheirControls_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<double>("least");
    QTest::addColumn<double>("most");

    QTest::newRow("point width") << int(PointWidth) << 1.0 << 3.0;
    QTest::newRow("line width") << int(LineWidth) << 1.0 << 3.0;
    QTest::newRow("text size") << int(TextSize) << 13.0 << 32.0;
    QTest::newRow("crosshair width") << int(DrawCrossWidth) << 1.0 << 3.0;
    QTest::newRow("first ring spacing") << int(RingDistance1) << 0.0 << 99.99;
    QTest::newRow("second ring spacing") << int(RingDistance2) << 0.0 << 99.99;
    QTest::newRow("first line spacing") << int(LineDistance1) << -99.99 << 99.99;
    QTest::newRow("second line spacing") << int(LineDistance2) << -99.99 << 99.99;
}

void TestPackaging::numbersLieInsideTheRangesOfTheirControls()
{
    QFETCH(int, key);
    QFETCH(double, least);
    QFETCH(double, most);
    bool isNumber = false;
    const double value = readDrawSettings().value(DrawProperty(key)).toDouble(&isNumber);
    QVERIFY(isNumber);
    QVERIFY(value >= least);
    QVERIFY(value <= most);
}

void TestPackaging::coloursStandOutFromBrightAndDarkSpecimens_data()
{
    QTest::addColumn<int>("key");

    QTest::newRow("points") << int(PointColor);
    QTest::newRow("lines") << int(LineColor);
    QTest::newRow("text") << int(TextColor);
    QTest::newRow("crosshair") << int(DrawCrossColor);
}

void TestPackaging::coloursStandOutFromBrightAndDarkSpecimens()
{
    QFETCH(int, key);
    const QVariant value = readDrawSettings().value(DrawProperty(key));
    QCOMPARE(value.userType(), int(QMetaType::QColor));

    // A contrast of 3 to 1 against white and against black, and full saturation against gray metal.
    const QColor colour = value.value<QColor>();
    QVERIFY(1.05 / (luminance(colour) + 0.05) >= 3);
    QVERIFY((luminance(colour) + 0.05) / 0.05 >= 3);
    QVERIFY(colour.hsvSaturation() > 200);
    QCOMPARE(colour.alpha(), 255);
}

void TestPackaging::drawsWithAntialiasing()
{
    QVERIFY(readDrawSettings().value(Antialiasing).toBool());
}

void TestPackaging::quickSaveGoesToTheWorkingDirectory()
{
    QCOMPARE(readDrawSettings().value(QuickSavePath).toString(), QStringLiteral("."));
}

void TestPackaging::debugIsOffAndNoDirectoryIsRemembered()
{
    QCOMPARE(readIsDebug(), false);
    QCOMPARE(readFilePath(), QString());

    const QSettings file(QStringLiteral("./config.ini"), QSettings::IniFormat);
    QVERIFY(file.contains(QStringLiteral("base/isDebug")));
    QVERIFY(file.contains(QStringLiteral("base/filePath")));
}

void TestPackaging::linesCarryNoParallelsBeforeTheOperatorAsks()
{
    const DrawProperties shipped = readDrawSettings();
    QCOMPARE(shipped.value(LineDistance1).toDouble(), 0.0);
    QCOMPARE(shipped.value(LineDistance2).toDouble(), 0.0);
}

// Storing every value again leaves the file as it was: each stands there in the very form in which
// the dialogs will write it.
void TestPackaging::fileReadsAsTheSettingsWriteIt()
{
    QVERIFY(!shippedSettings().isEmpty());
    const DrawProperties shipped = readDrawSettings();
    for (auto setting = shipped.cbegin(); setting != shipped.cend(); ++setting)
        writeDrawSetting(setting.key(), setting.value());
    writeFilePath(readFilePath());

    QByteArray written = directory->read(QStringLiteral("config.ini"));
    QCOMPARE(written.replace("\r\n", "\n"), shippedSettings());

    // The typed value of a colour, as the colour button stores it.
    QVERIFY(written.contains("LineColor=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff"
                             "\\xff\\xff\\x1f\\x1f\\xa8\\xa8\\0\\0)\n"));
}

QTEST_GUILESS_MAIN(TestPackaging)
#include "test_packaging.moc"
