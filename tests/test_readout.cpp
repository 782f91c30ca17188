#include "measure/graphicstext.h"
#include "measure/readout.h"

#include <QtTest>

#include <cmath>

class TestReadout : public QObject
{
    Q_OBJECT

private slots:
    void unitsConvertLengthsAndAreas_data();
    void unitsConvertLengthsAndAreas();
    void areaTakesTheCalibrationOnceAndTheImageScaleSquared();
    void areaHasThePlainLengthSuffix();
    void lineOfAHundredUnitsReadsOneMillimetre();
    void numbersHaveSixSignificantDigits_data();
    void numbersHaveSixSignificantDigits();
    void angleReadsDegreesInEveryUnit();
    void realLengthInSceneUnits_data();
    void realLengthInSceneUnits();
    void lineEndsStandBehindAllButTheLast();
    void freeLabelStartsWithThreeDots();
    void readoutLabelStartsEmpty();
    void sameTextIsNoChangeAndKeepsTheStoredValue();
    void imageScaleShowsAtTheNextChange();
    void unitAndScaleReformatTheStoredValues();
    void freeTextKeepsItsWords();
    void textWithATrailingLineEndIsNoChangeTheSecondTime();
};

void TestReadout::unitsConvertLengthsAndAreas_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("lengthText");
    QTest::addColumn<QString>("areaText");
    // Of 100 at 2 pixels per scene unit and 5 um per pixel.
    QTest::newRow("negative") << -1 << ""
                              << "";
    QTest::newRow("text") << 0 << ""
                          << "";
    QTest::newRow("px") << 1 << "L = 200px"
                        << "A = 400px";
    QTest::newRow("degrees") << 2 << QString::fromUtf8("L = 100°") << QString::fromUtf8("A = 100°");
    QTest::newRow("mm") << 3 << "L = 1mm"
                        << "A = 0.002mm";
    QTest::newRow("um") << 4 << "L = 1000um"
                        << "A = 2000um";
    QTest::newRow("mil") << 5 << "L = 39.3701mil"
                         << "A = 3.10001mil";
    QTest::newRow("unknown") << 6 << ""
                             << "";
}

void TestReadout::unitsConvertLengthsAndAreas()
{
    QFETCH(int, unit);
    QTEST(formatReadout(length("L", 100), unit, 5, 2), "lengthText");
    QTEST(formatReadout(area("A", 100), unit, 5, 2), "areaText");
}

void TestReadout::areaTakesTheCalibrationOnceAndTheImageScaleSquared()
{
    QCOMPARE(formatReadout(area("A", 10), Unit::Micrometre, 3, 1), QString("A = 30um"));
    QCOMPARE(formatReadout(area("A", 10), Unit::Micrometre, 1, 3), QString("A = 90um"));
}

void TestReadout::areaHasThePlainLengthSuffix()
{
    QVERIFY(formatReadout(area("A", 1), Unit::Millimetre, 1, 1).endsWith("mm"));
}

void TestReadout::lineOfAHundredUnitsReadsOneMillimetre()
{
    GraphicsText label(5, Unit::Millimetre, nullptr);
    label.setImageScale(2);
    label.setValue(length("Len", 100));
    QCOMPARE(label.toPlainText(), QString("Len = 1mm"));
}

void TestReadout::numbersHaveSixSignificantDigits_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("rounded") << 12.345678 << "12.3457px";
    QTest::newRow("whole") << 500.0 << "500px";
    QTest::newRow("no trailing zeros") << 0.25 << "0.25px";
    QTest::newRow("six digits") << 999999.0 << "999999px";
    QTest::newRow("above a million") << 1234567.8 << "1.23457e+06px";
    QTest::newRow("a million") << 1000000.0 << "1e+06px";
    QTest::newRow("small") << 0.00001234567 << "1.23457e-05px";
    QTest::newRow("negative") << -200.0 << "-200px";
    QTest::newRow("negative zero") << -0.0 << "0px";
    QTest::newRow("not a number") << std::nan("") << "nanpx";
    QTest::newRow("infinite") << double(HUGE_VAL) << "infpx";
}

void TestReadout::numbersHaveSixSignificantDigits()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(formatReadout(length("Len", value), Unit::Pixel, 1, 1), "Len = " + text);
}

void TestReadout::angleReadsDegreesInEveryUnit()
{
    for (int unit = -1; unit <= 6; ++unit) {
        QCOMPARE(formatReadout(angle("CLen", 90), unit, 5, 2), QString::fromUtf8("CLen = 90°"));
    }
}

void TestReadout::realLengthInSceneUnits_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("sceneUnits");
    // Of 2 at 2 pixels per scene unit and 5 um per pixel.
    QTest::newRow("text") << 0 << 0.0;
    QTest::newRow("px") << 1 << 0.0;
    QTest::newRow("degrees") << 2 << 0.0;
    QTest::newRow("mm") << 3 << 200.0;
    QTest::newRow("um") << 4 << 0.2;
    QTest::newRow("mil") << 5 << 5.08;
    QTest::newRow("unknown") << 6 << 0.0;
    QTest::newRow("negative") << -1 << 0.0;
}

void TestReadout::realLengthInSceneUnits()
{
    QFETCH(int, unit);
    GraphicsText label(5, unit, nullptr);
    label.setImageScale(2);
    QTEST(label.toPixels(2), "sceneUnits");
}

void TestReadout::lineEndsStandBehindAllButTheLast()
{
    const Readout values = lines({length("Len", 1), length("Dis", 2)});
    QCOMPARE(values[0].format, QString("Len = %1%2\n"));
    QCOMPARE(values[1].format, QString("Dis = %1%2"));
    QVERIFY(lines({}).isEmpty());
}

void TestReadout::freeLabelStartsWithThreeDots()
{
    QCOMPARE(GraphicsText(1, Unit::Text, nullptr).toPlainText(), QString("..."));
}

void TestReadout::readoutLabelStartsEmpty()
{
    QCOMPARE(GraphicsText(1, Unit::Pixel, nullptr).toPlainText(), QString());
}

void TestReadout::sameTextIsNoChangeAndKeepsTheStoredValue()
{
    GraphicsText label(1, Unit::Pixel, nullptr);
    QVERIFY(label.setValue(length("Len", 50)));
    QVERIFY(!label.setValue(length("Len", 50)));
    // Half the value at twice the image scale reads the same: the old value stays in store.
    label.setImageScale(2);
    QVERIFY(!label.setValue(length("Len", 25)));
    label.setUnit(Unit::Micrometre);
    QCOMPARE(label.toPlainText(), QString("Len = 100um"));
}

void TestReadout::imageScaleShowsAtTheNextChange()
{
    GraphicsText label(1, Unit::Pixel, nullptr);
    label.setValue(length("Len", 50));
    label.setImageScale(2);
    QCOMPARE(label.toPlainText(), QString("Len = 50px"));
    QVERIFY(label.setValue(length("Len", 50)));
    QCOMPARE(label.toPlainText(), QString("Len = 100px"));
}

void TestReadout::unitAndScaleReformatTheStoredValues()
{
    GraphicsText label(1, Unit::Pixel, nullptr);
    label.setValues(lines({length("R", 500), area("Area", 2000)}));
    QCOMPARE(label.toPlainText(), QString("R = 500px\nArea = 2000px"));
    label.setUnit(Unit::Millimetre);
    QCOMPARE(label.toPlainText(), QString("R = 0.5mm\nArea = 0.002mm"));
    label.setScale(4);
    QCOMPARE(label.toPlainText(), QString("R = 2mm\nArea = 0.008mm"));
}

void TestReadout::freeTextKeepsItsWords()
{
    GraphicsText label(1, Unit::Text, nullptr);
    label.setPlainText("solder bridge");
    label.setScale(4);
    label.setUnit(Unit::Text);
    QCOMPARE(label.toPlainText(), QString("solder bridge"));
}

void TestReadout::textWithATrailingLineEndIsNoChangeTheSecondTime()
{
    GraphicsText label(1, Unit::Pixel, nullptr);
    const Readout values{endLine(length("R1", 5))};
    QVERIFY(label.setValues(values));
    QCOMPARE(label.toPlainText(), QString("R1 = 5px\n"));
    QVERIFY(!label.setValues(values));
}

QTEST_MAIN(TestReadout)
#include "test_readout.moc"
