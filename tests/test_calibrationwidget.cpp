#include "calibration/calibrationwidget.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTranslator>

class TestCalibrationWidget : public QObject
{
    Q_OBJECT

private slots:
    void theMeasuredPixelsStandInTheForm_data();
    void theMeasuredPixelsStandInTheForm();
    void ratioAndScale_data();
    void ratioAndScale();
    void aNewUnitUpdatesTheRatioAtOnce();
    void anUnusableEntryIsWarnedOf_data();
    void anUnusableEntryIsWarnedOf();
    void theSameNameLengthAndUnitIsADuplicate();
    void anotherLengthUnitOrNameIsNoDuplicate_data();
    void anotherLengthUnitOrNameIsNoDuplicate();
    void theWarningStaysAndItsTextChanges();
    void warningsStayChineseInEnglish();
    void theFourthCharacterOfTheNameIsRefused();
    void theLengthTakesWholeNumbersAlone_data();
    void theLengthTakesWholeNumbersAlone();
    void theLengthIsReadAlikeEverywhere();
    void anEmptyMeasurementGivesAnInfiniteRatio();
    void closingTheWindowRejects();
    void theEnterKeyAccepts();
    void theFormInEnglish();
};

namespace {

/// The dialog on the screen, with its controls by name.
struct Form
{
    CalibrationWidget dialog;
    QLineEdit *name = dialog.findChild<QLineEdit *>("lineEdit");
    QLineEdit *length = dialog.findChild<QLineEdit *>("lineEdit_2");
    QComboBox *unit = dialog.findChild<QComboBox *>("comboBox");
    QLabel *pixels = dialog.findChild<QLabel *>("label_6");
    QLabel *ratio = dialog.findChild<QLabel *>("label_7");
    QLabel *warning = dialog.findChild<QLabel *>("label_8");
    QPushButton *ok = dialog.findChild<QPushButton *>("pushButton");

    explicit Form(double measured = 200.0, const CalibrationRecords &existing = {})
        : dialog(measured, existing)
    {
        dialog.show();
    }

    void enter(const QString &newName, const QString &newLength, const QString &newUnit)
    {
        name->clear();
        length->clear();
        QTest::keyClicks(name, newName);
        QTest::keyClicks(length, newLength);
        unit->setCurrentText(newUnit);
    }
    void pressOk() { QTest::mouseClick(ok, Qt::LeftButton); }
    bool isAccepted() const { return dialog.result() == QDialog::Accepted; }
};

const char *const emptyWarning = "标定参数不能为空";
const char *const duplicateWarning = "该标定已存在";

} // namespace

void TestCalibrationWidget::theMeasuredPixelsStandInTheForm_data()
{
    QTest::addColumn<double>("pixels");
    QTest::addColumn<QString>("expected");
    QTest::newRow("whole") << 200.0 << "200 pixel";
    QTest::newRow("six figures") << 123.456789 << "123.457 pixel";
    QTest::newRow("large") << 12345678.0 << "1.23457e+07 pixel";
}

void TestCalibrationWidget::theMeasuredPixelsStandInTheForm()
{
    QFETCH(double, pixels);
    Form f(pixels);
    QTEST(f.pixels->text(), "expected");
    QVERIFY(!f.warning->isVisible());
    QCOMPARE(f.pixels->styleSheet(), QString("color: red;"));
}

void TestCalibrationWidget::ratioAndScale_data()
{
    QTest::addColumn<QString>("length");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("ratio");
    QTest::addColumn<double>("real");
    QTest::newRow("millimetres") << "100"
                                 << "mm"
                                 << "0.5 mm/pixel" << 500.0;
    QTest::newRow("micrometres") << "100"
                                 << "um"
                                 << "0.5 um/pixel" << 0.5;
    QTest::newRow("mil") << "100"
                         << "mil"
                         << "0.5 mil/pixel" << 12.7;
    QTest::newRow("six figures") << "1234567"
                                 << "um"
                                 << "617.28 um/pixel" << 617.28;
}

void TestCalibrationWidget::ratioAndScale()
{
    QFETCH(QString, length);
    QFETCH(QString, unit);
    QFETCH(double, real);
    Form f;
    f.enter("x5", length, unit);
    QTEST(f.ratio->text(), "ratio");
    const CalibrationRecord record = f.dialog.record();
    QCOMPARE(record.name, QString("x5"));
    QCOMPARE(record.unit, unit);
    QCOMPARE(record.real, real);
}

void TestCalibrationWidget::aNewUnitUpdatesTheRatioAtOnce()
{
    Form f;
    QCOMPARE(f.unit->currentText(), QString("mm"));
    QTest::keyClicks(f.length, "50");
    QCOMPARE(f.ratio->text(), QString("0.25 mm/pixel"));
    QTest::keyClick(f.unit, Qt::Key_Down);
    QCOMPARE(f.ratio->text(), QString("0.25 um/pixel"));
    QTest::keyClick(f.unit, Qt::Key_Down);
    QCOMPARE(f.ratio->text(), QString("0.25 mil/pixel"));
    QTest::keyClick(f.length, Qt::Key_Backspace);
    QCOMPARE(f.ratio->text(), QString("0.025 mil/pixel"));
}

void TestCalibrationWidget::anUnusableEntryIsWarnedOf_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("length");
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("no name") << ""
                             << "100";
    QTest::newRow("no length") << "x5"
                               << "";
    QTest::newRow("length of zero") << "x5"
                                    << "0";
}

void TestCalibrationWidget::anUnusableEntryIsWarnedOf()
{
    QFETCH(QString, name);
    QFETCH(QString, length);
    Form f;
    f.enter(name, length, "mm");
    f.pressOk();
    QVERIFY(!f.isAccepted());
    QVERIFY(f.dialog.isVisible());
    QVERIFY(f.warning->isVisible());
    QCOMPARE(f.warning->text(), QString::fromUtf8(emptyWarning));
}

void TestCalibrationWidget::theSameNameLengthAndUnitIsADuplicate()
{
    // Stored with another scale: that is not compared.
    Form f(200.0, {{"a", 1, "um", 2}, {"x5", 100, "mm", 77}});
    f.enter("x5", "100", "mm");
    f.pressOk();
    QVERIFY(!f.isAccepted());
    QVERIFY(f.warning->isVisible());
    QCOMPARE(f.warning->text(), QString::fromUtf8(duplicateWarning));
}

void TestCalibrationWidget::anotherLengthUnitOrNameIsNoDuplicate_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("length");
    QTest::addColumn<QString>("unit");
    QTest::newRow("length") << "x5"
                            << "101"
                            << "mm";
    QTest::newRow("unit") << "x5"
                          << "100"
                          << "um";
    QTest::newRow("name") << "X5"
                          << "100"
                          << "mm";
}

void TestCalibrationWidget::anotherLengthUnitOrNameIsNoDuplicate()
{
    QFETCH(QString, name);
    QFETCH(QString, length);
    QFETCH(QString, unit);
    Form f(200.0, {{"x5", 100, "mm", 500}});
    f.enter(name, length, unit);
    f.pressOk();
    QVERIFY(f.isAccepted());
    QVERIFY(!f.dialog.isVisible());
}

void TestCalibrationWidget::theWarningStaysAndItsTextChanges()
{
    Form f(200.0, {{"x5", 100, "mm", 500}});
    f.pressOk();
    QCOMPARE(f.warning->text(), QString::fromUtf8(emptyWarning));
    f.enter("x5", "100", "mm");
    QVERIFY(f.warning->isVisible());
    QCOMPARE(f.warning->text(), QString::fromUtf8(emptyWarning));
    f.pressOk();
    QVERIFY(f.warning->isVisible());
    QCOMPARE(f.warning->text(), QString::fromUtf8(duplicateWarning));
}

void TestCalibrationWidget::warningsStayChineseInEnglish()
{
    QTranslator english;
    QVERIFY(english.load(":/language_en.qm"));
    QCoreApplication::installTranslator(&english);
    Form f(200.0, {{"x5", 100, "mm", 500}});
    f.pressOk();
    QCOMPARE(f.warning->text(), QString::fromUtf8(emptyWarning));
    f.enter("x5", "100", "mm");
    f.pressOk();
    QCOMPARE(f.warning->text(), QString::fromUtf8(duplicateWarning));
}

void TestCalibrationWidget::theFourthCharacterOfTheNameIsRefused()
{
    Form f;
    QTest::keyClicks(f.name, "x100");
    QCOMPARE(f.name->text(), QString("x10"));
}

void TestCalibrationWidget::theLengthTakesWholeNumbersAlone_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("expected");
    QTest::newRow("largest") << "100000"
                             << "100000";
    QTest::newRow("negative") << "-5"
                              << "5";
    QTest::newRow("fraction") << "2.5"
                              << "25";
    QTest::newRow("letters") << "1e3"
                             << "13";
}

void TestCalibrationWidget::theLengthTakesWholeNumbersAlone()
{
    QFETCH(QString, typed);
    Form f;
    QTest::keyClicks(f.length, typed);
    QTEST(f.length->text(), "expected");
}

void TestCalibrationWidget::theLengthIsReadAlikeEverywhere()
{
    // Where a point parts the thousands, "2.5" would pass as a whole number.
    for (const QLocale &locale : {QLocale(QLocale::German), QLocale(QLocale::English)}) {
        QLocale::setDefault(locale);
        Form f;
        QTest::keyClicks(f.length, "2.5,1");
        QLocale::setDefault(QLocale::c());
        QCOMPARE(f.length->text(), QString("251"));
    }
}

void TestCalibrationWidget::anEmptyMeasurementGivesAnInfiniteRatio()
{
    Form f(0.0);
    f.enter("x5", "100", "mm");
    QCOMPARE(f.ratio->text(), QString("inf mm/pixel"));
    QVERIFY(qIsInf(f.dialog.record().real));
}

void TestCalibrationWidget::closingTheWindowRejects()
{
    Form f;
    f.enter("x5", "100", "mm");
    f.dialog.close();
    QCOMPARE(f.dialog.result(), int(QDialog::Rejected));
    QVERIFY(!f.dialog.isVisible());
}

void TestCalibrationWidget::theEnterKeyAccepts()
{
    Form f;
    f.enter("x5", "100", "mm");
    QTest::keyClick(f.length, Qt::Key_Return);
    QVERIFY(f.isAccepted());
}

void TestCalibrationWidget::theFormInEnglish()
{
    QTranslator english;
    QVERIFY(english.load(":/language_en.qm"));
    QCoreApplication::installTranslator(&english);
    Form f;
    QCOMPARE(f.dialog.windowTitle(), QString("Calibration"));
    const QStringList expected = {"Name", "Length", "Unit", "Real Pixel:", "Real Ruler:"};
    QStringList texts;
    for (const char *name : {"label", "label_2", "label_3", "label_4", "label_5"})
        texts += f.dialog.findChild<QLabel *>(name)->text();
    QCOMPARE(texts, expected);
    QCOMPARE(f.ok->text(), QString("OK"));
    QStringList units;
    for (int i = 0; i < f.unit->count(); ++i)
        units += f.unit->itemText(i);
    QCOMPARE(units, QStringList({"mm", "um", "mil"}));
}

QTEST_MAIN(TestCalibrationWidget)
#include "test_calibrationwidget.moc"
