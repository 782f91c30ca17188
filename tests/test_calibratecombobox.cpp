#include "calibration/accountitem.h"
#include "calibration/calibratecombobox.h"
#include "settings/settingsfiles.h"
#include "tests/support/workingdirectory.h"

#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

const CalibrationRecords stored = {
    {"x5", 100, "mm", 500}, {"x10", 7, "mil", 12.7}, {"x20", 3, "um", 0.25}};

QStringList names(const CalibrationRecords &records)
{
    QStringList names;
    for (const CalibrationRecord &record : records)
        names += record.name;
    return names;
}

/// The box in a window, as an operator has it.
struct Fixture
{
    QWidget window;
    CaliBrateComboBox box{&window};
    QListWidget *list = box.findChild<QListWidget *>();
    QSignalSpy changes{&box, &CaliBrateComboBox::calibrateChange};

    Fixture()
    {
        box.setGeometry(10, 10, 148, 32);
        window.resize(300, 300);
        window.show();
    }

    AccountItem *row(int index) const
    {
        return qobject_cast<AccountItem *>(list->itemWidget(list->item(index)));
    }
    QPushButton *deleteButton(int index) const { return row(index)->findChild<QPushButton *>(); }
    QString text() const { return box.lineEdit()->text(); }
    void open()
    {
        box.showPopup();
        QVERIFY(list->isVisible());
    }
    void click(int index) { QTest::mouseClick(row(index), Qt::LeftButton); }
};

} // namespace

class TestCalibrateComboBox : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<WorkingDirectory>(); }
    void cleanup() { directory.reset(); }

    void withoutAFileTheListIsEmpty();
    void theStoredRowsAreBackAndNoneIsInForce();
    void theStoredFileIsOnlyRead();
    void theTextOfARow_data();
    void theTextOfARow();
    void theFormOfARow();
    void aLongTextLeavesTheButtonInTheRow();
    void aClickOnARowPutsItInForce();
    void theSignalComesBeforeTheText();
    void aClickOnTheTextOfARowCounts();
    void aRightClickDoesNothing();
    void anyButtonsReleaseEndsALeftPress();
    void aPressOnTheDeleteButtonDoesNotPutTheRowInForce();
    void deletingARowInForceClearsTheBox();
    void deletingAnotherRowClearsTheBoxToo();
    void deletingTheLastRowLeavesTheBoxEmpty();
    void aDeletedRowMayBeInTheMiddleOfItsOwnClick();
    void deletingAForeignRowOnlyStoresTheList();
    void anAddedRowIsStoredOnlyWhenAskedFor();
    void anAddedRowIsNotInForce();
    void afterARestartTheRowsAreBackAndNoneIsInForce();
    void theKeysPickARowToo();
    void theTextCannotBeEdited();
    void aClickOnTheTextOpensTheList();

private:
    std::unique_ptr<WorkingDirectory> directory;
};

void TestCalibrateComboBox::withoutAFileTheListIsEmpty()
{
    Fixture f;
    QVERIFY(f.box.records().isEmpty());
    QCOMPARE(f.text(), QString());
    QVERIFY(!QFile::exists("calibration.ini"));
}

void TestCalibrateComboBox::theStoredRowsAreBackAndNoneIsInForce()
{
    writeCalibrations(stored);
    Fixture f;
    QCOMPARE(names(f.box.records()), QStringList({"x5", "x10", "x20"}));
    const CalibrationRecord second = f.box.records().at(1);
    QCOMPARE(second.length, 7.0);
    QCOMPARE(second.unit, QString("mil"));
    QCOMPARE(second.real, 12.7);
    QCOMPARE(f.text(), QString());
    QCOMPARE(f.box.currentIndex(), -1);
    QCOMPARE(f.changes.count(), 0);
}

void TestCalibrateComboBox::theStoredFileIsOnlyRead()
{
    // Written again, it would get the keys that the row lacks.
    const QByteArray asEdited = "[calibrate]\n1\\name=x5\nsize=1\n";
    directory->write("calibration.ini", asEdited);
    const Fixture f;
    QCOMPARE(f.box.count(), 1);
    QCOMPARE(directory->read("calibration.ini"), asEdited);
}

void TestCalibrateComboBox::theTextOfARow_data()
{
    QTest::addColumn<double>("length");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("expected");
    QTest::newRow("whole") << 100.0 << "mm"
                           << "x5, 100mm";
    QTest::newRow("largest") << 100000.0 << "mil"
                             << "x5, 100000mil";
    QTest::newRow("fraction") << 0.123456789 << "um"
                              << "x5, 0.123457um";
}

void TestCalibrateComboBox::theTextOfARow()
{
    QFETCH(double, length);
    QFETCH(QString, unit);
    QFETCH(QString, expected);
    AccountItem item({"x5", length, unit, 2.5});
    QCOMPARE(item.text(), expected);
    QCOMPARE(item.findChild<QLabel *>()->text(), expected);
    QCOMPARE(item.scale(), 2.5);
    QCOMPARE(item.record().unit, unit);
}

void TestCalibrateComboBox::theFormOfARow()
{
    AccountItem item({"x5", 100, "mm", 500});
    item.show();
    QCOMPARE(item.width(), 120);
    QCOMPARE(item.layout()->spacing(), 0);
    QCOMPARE(item.layout()->contentsMargins(), QMargins());
    const auto *button = item.findChild<QPushButton *>();
    QCOMPARE(button->styleSheet(), QString("border: none;"));
    QCOMPARE(button->iconSize(), QSize(16, 16));
    QCOMPARE(button->icon().availableSizes(), QList<QSize>({QSize(16, 16)}));
    QCOMPARE(button->geometry().right(), 119);
}

void TestCalibrateComboBox::aLongTextLeavesTheButtonInTheRow()
{
    AccountItem item({QString(100, 'w'), 100, "mm", 500});
    item.show();
    const auto *button = item.findChild<QPushButton *>();
    QCOMPARE(button->geometry().right(), 119);
    QVERIFY(button->width() >= button->sizeHint().width());
    QCOMPARE(item.toolTip(), item.text());
}

void TestCalibrateComboBox::aClickOnARowPutsItInForce()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    f.click(1);
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(f.changes[0][0].toDouble(), 12.7);
    QCOMPARE(f.text(), QString("x10, 7mil"));
    QVERIFY(!f.list->isVisible());

    f.open();
    f.click(0);
    QCOMPARE(f.changes.count(), 2);
    QCOMPARE(f.changes[1][0].toDouble(), 500.0);
    QCOMPARE(f.text(), QString("x5, 100mm"));
}

void TestCalibrateComboBox::theSignalComesBeforeTheText()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    QString textAtTheSignal = "none";
    bool openAtTheSignal = false;
    connect(&f.box, &CaliBrateComboBox::calibrateChange, this, [&] {
        textAtTheSignal = f.text();
        openAtTheSignal = f.list->isVisible();
    });
    f.click(2);
    QCOMPARE(textAtTheSignal, QString());
    QVERIFY(openAtTheSignal);
}

void TestCalibrateComboBox::aClickOnTheTextOfARowCounts()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    QTest::mouseClick(f.row(2)->findChild<QLabel *>(), Qt::LeftButton);
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(f.text(), QString("x20, 3um"));
}

void TestCalibrateComboBox::aRightClickDoesNothing()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    QTest::mouseClick(f.row(1), Qt::RightButton);
    QCOMPARE(f.changes.count(), 0);
    QCOMPARE(f.text(), QString());
    QVERIFY(f.list->isVisible());
}

void TestCalibrateComboBox::anyButtonsReleaseEndsALeftPress()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    QTest::mousePress(f.row(1), Qt::LeftButton);
    QCOMPARE(f.changes.count(), 0);
    QTest::mouseRelease(f.row(1), Qt::RightButton);
    QCOMPARE(f.changes.count(), 1);
    QTest::mouseRelease(f.row(1), Qt::LeftButton);
    QCOMPARE(f.changes.count(), 1);
}

void TestCalibrateComboBox::aPressOnTheDeleteButtonDoesNotPutTheRowInForce()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    QTest::mousePress(f.deleteButton(1), Qt::LeftButton);
    QTest::mouseRelease(f.deleteButton(1), Qt::LeftButton, {}, QPoint(-50, 2)); // let go elsewhere
    QCOMPARE(f.changes.count(), 0);
    QCOMPARE(f.text(), QString());
    QCOMPARE(f.list->count(), 3);
}

void TestCalibrateComboBox::deletingARowInForceClearsTheBox()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    f.click(1);
    f.open();
    QTest::mouseClick(f.deleteButton(1), Qt::LeftButton);
    QCOMPARE(f.changes.count(), 2);
    QCOMPARE(f.changes[1][0].toDouble(), 1.0);
    QCOMPARE(f.text(), QString());
    QCOMPARE(names(f.box.records()), QStringList({"x5", "x20"}));
    QCOMPARE(names(readCalibrations()), QStringList({"x5", "x20"}));
}

void TestCalibrateComboBox::deletingAnotherRowClearsTheBoxToo()
{
    writeCalibrations(stored);
    for (const int deleted : {0, 2}) {
        Fixture f;
        f.open();
        f.click(1);
        f.open();
        QTest::mouseClick(f.deleteButton(deleted), Qt::LeftButton);
        QCOMPARE(f.changes.last()[0].toDouble(), 1.0);
        QCOMPARE(f.text(), QString());
        QCOMPARE(f.box.currentIndex(), -1);
        writeCalibrations(stored);
    }
}

void TestCalibrateComboBox::deletingTheLastRowLeavesTheBoxEmpty()
{
    writeCalibrations({{"x5", 100, "mm", 500}});
    Fixture f;
    f.open();
    f.click(0);
    f.open();
    QTest::mouseClick(f.deleteButton(0), Qt::LeftButton);
    QCOMPARE(f.box.count(), 0);
    QCOMPARE(f.text(), QString());
    QCOMPARE(f.changes.last()[0].toDouble(), 1.0);
    QVERIFY(!f.list->isVisible());
    QVERIFY(readCalibrations().isEmpty());
}

void TestCalibrateComboBox::aDeletedRowMayBeInTheMiddleOfItsOwnClick()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    const QPointer<AccountItem> row = f.row(0);
    const QPointer<QPushButton> button = f.deleteButton(0);
    button->click();
    QVERIFY(button); // still there when its own click returns
    QCOMPARE(f.list->count(), 2);
    QTRY_VERIFY(!row);
    QVERIFY(!button);
}

void TestCalibrateComboBox::deletingAForeignRowOnlyStoresTheList()
{
    writeCalibrations(stored);
    Fixture f;
    QFile::remove("calibration.ini");
    AccountItem foreign(stored[0]);
    f.box.removeAccount(&foreign);
    QCOMPARE(f.changes.count(), 0);
    QCOMPARE(f.list->count(), 3);
    QCOMPARE(readCalibrations().size(), 3);
}

void TestCalibrateComboBox::anAddedRowIsStoredOnlyWhenAskedFor()
{
    Fixture f;
    f.box.addItem({"a", 1, "mm", 2}, false);
    QVERIFY(readCalibrations().isEmpty());
    f.box.addItem({"b", 3, "um", 4}, true);
    QCOMPARE(names(readCalibrations()), QStringList({"a", "b"}));
    QCOMPARE(directory->read("calibration.ini"), QByteArray("[calibrate]\n"
                                                            "1\\length=1\n"
                                                            "1\\name=a\n"
                                                            "1\\real=2\n"
                                                            "1\\unit=mm\n"
                                                            "2\\length=3\n"
                                                            "2\\name=b\n"
                                                            "2\\real=4\n"
                                                            "2\\unit=um\n"
                                                            "size=2\n"));
}

void TestCalibrateComboBox::anAddedRowIsNotInForce()
{
    writeCalibrations(stored);
    Fixture f;
    f.open();
    f.click(1);
    f.box.addItem({"new", 1, "mm", 2}, true);
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(f.text(), QString("x10, 7mil"));
}

void TestCalibrateComboBox::afterARestartTheRowsAreBackAndNoneIsInForce()
{
    {
        Fixture f;
        f.box.addItem({QString::fromUtf8("物镜一"), 100, "mm", 500}, true);
        f.box.addItem({"x10", 7, "mil", 12.7}, true);
        f.open();
        f.click(0);
    }
    Fixture f;
    QCOMPARE(names(f.box.records()), QStringList({QString::fromUtf8("物镜一"), "x10"}));
    QCOMPARE(f.text(), QString());
    QCOMPARE(f.changes.count(), 0);
}

void TestCalibrateComboBox::theKeysPickARowToo()
{
    writeCalibrations(stored);
    Fixture f;
    QTest::keyClick(&f.box, Qt::Key_Down);
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(f.changes[0][0].toDouble(), 500.0);
    QCOMPARE(f.text(), QString("x5, 100mm"));

    f.open();
    QTest::keyClick(f.list, Qt::Key_Down);
    QTest::keyClick(f.list, Qt::Key_Return);
    QCOMPARE(f.changes.count(), 2);
    QCOMPARE(f.changes[1][0].toDouble(), 12.7);
    QCOMPARE(f.text(), QString("x10, 7mil"));
}

void TestCalibrateComboBox::theTextCannotBeEdited()
{
    Fixture f;
    QVERIFY(f.box.lineEdit()->isReadOnly());
    QTest::keyClicks(f.box.lineEdit(), "abc");
    QCOMPARE(f.text(), QString());
}

void TestCalibrateComboBox::aClickOnTheTextOpensTheList()
{
    writeCalibrations(stored);
    Fixture f;
    QTest::mouseClick(f.box.lineEdit(), Qt::LeftButton);
    QVERIFY(f.list->isVisible());
    QCOMPARE(f.changes.count(), 0);
}

QTEST_MAIN(TestCalibrateComboBox)
#include "test_calibratecombobox.moc"
