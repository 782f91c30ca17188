#include "camera/deviceinfowidget.h"
#include "camera/devicewidget.h"
#include "tests/support/panel.h"

#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QtTest>

class TestDeviceWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void listsOnlyTheMakersCameras();
    void thePrefixIsCaseSensitive();
    void aClickStartsTheCamera();
    void aSecondClickGivesItUp();
    void selectingOneUnselectsTheOther();
    void behindAForeignDeviceTheClickedRowUnchecksItself();
    void theSelectedCameraIsStartedAgainAtItsNewIndex();
    void aVanishedCameraLeavesAnOfflineRow();
    void anOfflineRowKeepsTheLastRunningNumber();
    void aCameraThatComesBackIsStarted();
    void aClickOnAnOfflineRowDismissesIt();
    void nothingSelectedAndNothingAttachedIsSilent();
    void closingTheCurrentUnchecksTheFirstCheckedRowOnly();
    void twoCheckedRowsLetTheLastOneCount();
    void retranslatingKeepsTheOfflineText();
    void fewerNamesThanPathsDoNoHarm();
    void aDeviceWithoutAPathIsNeverTakenForTheSelectedOne();
    void aVeryLongNameDoesNotWidenThePanel();
    void theFlushButtonIsHidden();
    void everySlotFindsItsSignal();
    void aRowHasItsFormAndHidesThePath();
    void aNameTooLongForItsRowStaysWhole();
    void anOfflineRowBuiltInEnglishSaysSo();
    void dismissingAnOfflineRowKeepsTheOthers();
    void anEmptyListAtAFaultyPassBringsTheCameraBackAtTheNext();
    void aCameraThatCannotBeOpenedIsPaleAndItsTooltipTellsWhy();
    void faultsGoByDeviceIndex();

private:
    QList<DeviceInfoWidget *> rows() const;
    QRadioButton *button(int row) const;
    QString numberText(int row) const;

    DeviceWidget *panel = nullptr;
    QSignalSpy *work = nullptr;
    QSignalSpy *close = nullptr;
};

void TestDeviceWidget::init()
{
    panel = new DeviceWidget;
    work = new QSignalSpy(panel, &DeviceWidget::cameraWork);
    close = new QSignalSpy(panel, &DeviceWidget::cameraClose);
    panel->show();
}

void TestDeviceWidget::cleanup()
{
    delete work;
    delete close;
    delete panel;
}

/// The rows that stand, in display order; those on their way out do not count.
QList<DeviceInfoWidget *> TestDeviceWidget::rows() const
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QList<DeviceInfoWidget *> found = panel->findChildren<DeviceInfoWidget *>();
    const QLayout *box = panel->findChild<QLayout *>("verticalLayout");
    std::sort(found.begin(), found.end(), [box](DeviceInfoWidget *a, DeviceInfoWidget *b) {
        return box->indexOf(a) < box->indexOf(b);
    });
    return found;
}

QRadioButton *TestDeviceWidget::button(int row) const
{
    return rows().at(row)->findChild<QRadioButton *>("radioButton");
}

QString TestDeviceWidget::numberText(int row) const
{
    return rows().at(row)->findChild<QLabel *>("label")->text();
}

void TestDeviceWidget::listsOnlyTheMakersCameras()
{
    panel->deviceChange({"Webcam", "Orvane_A", "Other", "Orvane_B"}, {"w", "a", "o", "b"});
    QCOMPARE(rows().size(), 2);
    QCOMPARE(numberText(0), QString("1"));
    QCOMPARE(rows().at(0)->name(), QString("Orvane_A"));
    QCOMPARE(numberText(1), QString("2"));
    QCOMPARE(rows().at(1)->path(), QString("b"));
    button(1)->click();
    QCOMPARE(work->takeFirst(), (QVariantList{3, "Orvane_B", "b"}));
}

void TestDeviceWidget::thePrefixIsCaseSensitive()
{
    panel->deviceChange({"orvane_A"}, {"a"});
    QVERIFY(rows().isEmpty());
}

void TestDeviceWidget::aClickStartsTheCamera()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    QTest::mouseClick(button(0), Qt::LeftButton, {}, QPoint(8, button(0)->height() / 2));
    QCOMPARE(work->takeFirst(), (QVariantList{0, "Orvane_A", "a"}));
    QVERIFY(button(0)->isChecked());
    QVERIFY(close->isEmpty());
}

void TestDeviceWidget::aSecondClickGivesItUp()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    button(0)->click();
    button(0)->click();
    QCOMPARE(work->size(), 1);
    QCOMPARE(close->size(), 1);
    QVERIFY(!button(0)->isChecked());
    QCOMPARE(rows().size(), 1);
}

void TestDeviceWidget::selectingOneUnselectsTheOther()
{
    panel->deviceChange({"Orvane_A", "Orvane_B"}, {"a", "b"});
    button(0)->click();
    button(1)->click();
    QVERIFY(!button(0)->isChecked());
    QVERIFY(button(1)->isChecked());
}

void TestDeviceWidget::behindAForeignDeviceTheClickedRowUnchecksItself()
{
    panel->deviceChange({"Webcam", "Orvane_A"}, {"w", "a"});
    QCOMPARE(numberText(0), QString("1"));
    button(0)->click();
    QCOMPARE(work->takeFirst(), (QVariantList{1, "Orvane_A", "a"}));
    QVERIFY(!button(0)->isChecked());
}

void TestDeviceWidget::theSelectedCameraIsStartedAgainAtItsNewIndex()
{
    panel->deviceChange({"Orvane_A", "Orvane_B"}, {"a", "b"});
    button(1)->click();
    work->clear();
    panel->deviceChange({"Orvane_B"}, {"b"});
    QCOMPARE(work->size(), 1);
    QCOMPARE(work->takeFirst(), (QVariantList{0, "Orvane_B", "b"}));
    QVERIFY(button(0)->isChecked());
}

void TestDeviceWidget::aVanishedCameraLeavesAnOfflineRow()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    button(0)->click();
    work->clear();
    panel->deviceChange({}, {});
    QCOMPARE(rows().size(), 1);
    QCOMPARE(numberText(0), QString("离线"));
    QCOMPARE(rows().at(0)->name(), QString("Orvane_A"));
    QVERIFY(button(0)->isChecked());
    QVERIFY(work->isEmpty());
    QVERIFY(close->isEmpty());
}

void TestDeviceWidget::anOfflineRowKeepsTheLastRunningNumber()
{
    // The number is the last row's own, but the offline text stands in its place.
    panel->deviceChange({"Orvane_A", "Orvane_B"}, {"a", "b"});
    button(1)->click();
    panel->deviceChange({"Orvane_A"}, {"a"});
    QCOMPARE(numberText(0), QString("1"));
    QCOMPARE(numberText(1), QString("离线"));
}

void TestDeviceWidget::aCameraThatComesBackIsStarted()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    button(0)->click();
    panel->deviceChange({}, {});
    work->clear();
    panel->deviceChange({"Webcam", "Orvane_A"}, {"w", "a"});
    QCOMPARE(work->takeFirst(), (QVariantList{1, "Orvane_A", "a"}));
    QCOMPARE(rows().size(), 1);
    QCOMPARE(numberText(0), QString("1"));
    // The slots of a click do not run here, so the row stays checked whatever its position.
    QVERIFY(button(0)->isChecked());
}

void TestDeviceWidget::aClickOnAnOfflineRowDismissesIt()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    button(0)->click();
    panel->deviceChange({}, {});
    button(0)->click();
    QCOMPARE(close->size(), 1);
    QVERIFY(rows().isEmpty());
    work->clear();
    panel->deviceChange({"Orvane_A"}, {"a"});
    QVERIFY(work->isEmpty());
    QVERIFY(!button(0)->isChecked());
}

void TestDeviceWidget::nothingSelectedAndNothingAttachedIsSilent()
{
    panel->deviceChange({}, {});
    QVERIFY(rows().isEmpty());
    QVERIFY(work->isEmpty());
    QVERIFY(close->isEmpty());
}

void TestDeviceWidget::closingTheCurrentUnchecksTheFirstCheckedRowOnly()
{
    panel->closeCurrent();
    QVERIFY(close->isEmpty());
    panel->deviceChange({"Orvane_A", "Orvane_B"}, {"a", "b"});
    button(0)->setChecked(true);
    button(1)->setChecked(true);
    panel->closeCurrent();
    QVERIFY(!button(0)->isChecked());
    QVERIFY(button(1)->isChecked());
    QCOMPARE(close->size(), 1);
}

void TestDeviceWidget::twoCheckedRowsLetTheLastOneCount()
{
    panel->deviceChange({"Orvane_A", "Orvane_B"}, {"a", "b"});
    button(0)->setChecked(true);
    button(1)->setChecked(true);
    panel->deviceChange({"Orvane_A", "Orvane_B"}, {"a", "b"});
    QCOMPARE(work->size(), 1);
    QCOMPARE(work->takeFirst(), (QVariantList{1, "Orvane_B", "b"}));
}

void TestDeviceWidget::retranslatingKeepsTheOfflineText()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    button(0)->click();
    panel->deviceChange({}, {});
    button(0)->setText("something");
    panel->retranslateRows();
    QCOMPARE(button(0)->text(), QString());
    QCOMPARE(numberText(0), QString("离线"));
}

void TestDeviceWidget::fewerNamesThanPathsDoNoHarm()
{
    panel->deviceChange({"Orvane_A"}, {"a", "b", "c"});
    QCOMPARE(rows().size(), 1);
}

void TestDeviceWidget::aDeviceWithoutAPathIsNeverTakenForTheSelectedOne()
{
    panel->deviceChange({"Orvane_A"}, {""});
    QCOMPARE(rows().size(), 1);
    QVERIFY(work->isEmpty());
}

void TestDeviceWidget::aVeryLongNameDoesNotWidenThePanel()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    const auto *content = panel->findChild<QWidget *>("scrollAreaWidgetContents");
    const int width = content->minimumSizeHint().width();
    panel->deviceChange({"Orvane_" + QString(300, QChar(0x663e))}, {"a"});
    rows();
    QCOMPARE(content->minimumSizeHint().width(), width);
}

void TestDeviceWidget::theFlushButtonIsHidden()
{
    auto *flush = panel->findChild<QPushButton *>("pushButton");
    QCOMPARE(flush->text(), QString("flush"));
    QVERIFY(flush->isHidden());
}

void TestDeviceWidget::everySlotFindsItsSignal()
{
    const Complaints complaints;
    const DeviceWidget built;
    const DeviceInfoWidget row;
    QCOMPARE(complaints.heard(), QStringList());
}

void TestDeviceWidget::aRowHasItsFormAndHidesThePath()
{
    const DeviceInfoWidget row;
    QCOMPARE(row.objectName(), QString("DeviceInfoWidget"));
    QCOMPARE(row.size(), QSize(271, 60));
    const auto &number = control<QLabel>(row, "label");
    QCOMPARE(number.text(), QString("1"));
    QCOMPARE(number.minimumWidth(), 20);
    QCOMPARE(number.alignment(), Qt::AlignCenter);
    const auto &name = control<QLabel>(row, "label_2");
    QCOMPARE(name.text(), QString("uvc"));
    QCOMPARE(name.alignment(), Qt::AlignCenter);
    const auto &path = control<QLabel>(row, "label_3");
    QCOMPARE(path.text(), QString("sid"));
    QCOMPARE(path.font().pointSize(), 6);
    QCOMPARE(path.alignment(), Qt::AlignCenter);
    QVERIFY(path.wordWrap());
    QVERIFY(path.isHidden());
    QCOMPARE(textOf(row, "radioButton"), QString());
}

void TestDeviceWidget::aNameTooLongForItsRowStaysWhole()
{
    const QString name = "Orvane_" + QString(40, 'W');
    panel->resize(210, 200);
    panel->deviceChange({name}, {"a"});
    QCOMPARE(rows().at(0)->name(), name);
    auto &label = control<QLabel>(*rows().at(0), "label_2");
    QCOMPARE(label.toolTip(), name);
    // What is shown begins as a name that fits does: the end is cut, not both ends.
    label.setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label.resize(100, 20);
    const QImage shown = label.grab().toImage().copy(0, 0, 50, 20);
    label.setText("Orvane_WW");
    QCOMPARE(label.grab().toImage().copy(0, 0, 50, 20), shown);
}

void TestDeviceWidget::anOfflineRowBuiltInEnglishSaysSo()
{
    const English english;
    panel->deviceChange({"Orvane_A"}, {"a"});
    button(0)->click();
    panel->deviceChange({}, {});
    QCOMPARE(numberText(0), QString("OffLine"));
}

void TestDeviceWidget::dismissingAnOfflineRowKeepsTheOthers()
{
    panel->deviceChange({"Orvane_A", "Orvane_B"}, {"a", "b"});
    button(1)->click();
    panel->deviceChange({"Orvane_A"}, {"a"});
    work->clear();
    button(1)->click();
    QCOMPARE(close->size(), 1);
    QCOMPARE(rows().size(), 1);
    button(0)->click();
    QCOMPARE(work->takeFirst(), (QVariantList{0, "Orvane_A", "a"}));
    QVERIFY(button(0)->isChecked());
}

void TestDeviceWidget::anEmptyListAtAFaultyPassBringsTheCameraBackAtTheNext()
{
    panel->deviceChange({"Webcam", "Orvane_A", "Orvane_B"}, {"w", "a", "b"});
    button(1)->click(); // position 1, index 2: unchecks itself
    QVERIFY(!button(1)->isChecked());
    button(0)->setChecked(true);
    work->clear();
    panel->deviceChange({}, {});
    panel->deviceChange({"Webcam", "Orvane_A", "Orvane_B"}, {"w", "a", "b"});
    QCOMPARE(work->size(), 1);
    QCOMPARE(work->takeFirst(), (QVariantList{1, "Orvane_A", "a"}));
    QVERIFY(button(0)->isChecked());
    QVERIFY(!button(1)->isChecked());
}

void TestDeviceWidget::aCameraThatCannotBeOpenedIsPaleAndItsTooltipTellsWhy()
{
    panel->deviceChange({"Orvane_A"}, {"a"});
    const QLabel &name = control<QLabel>(*rows().at(0), "label_2");
    const QColor usual = name.palette().color(QPalette::WindowText);
    QCOMPARE(name.toolTip(), QString("Orvane_A"));

    panel->accessChange({"/dev/video0: Permission denied"});
    QVERIFY(name.palette().color(QPalette::WindowText).lightness() > usual.lightness() + 60);
    QCOMPARE(name.toolTip(), QString("Orvane_A\n/dev/video0: Permission denied"));
    // Number, name and button say what they always say, and the row can be chosen.
    QCOMPARE(numberText(0), QString("1"));
    QCOMPARE(rows().at(0)->name(), QString("Orvane_A"));
    QCOMPARE(textOf(*rows().at(0), "radioButton"), QString());
    button(0)->click();
    QCOMPARE(work->takeFirst(), (QVariantList{0, "Orvane_A", "a"}));

    panel->accessChange({""});
    QCOMPARE(name.palette().color(QPalette::WindowText), usual);
    QCOMPARE(name.toolTip(), QString("Orvane_A"));
}

void TestDeviceWidget::faultsGoByDeviceIndex()
{
    panel->deviceChange({"Webcam", "Orvane_A", "Orvane_B"}, {"w", "a", "b"});
    panel->accessChange({"first", "", "third"});
    QCOMPARE(control<QLabel>(*rows().at(0), "label_2").toolTip(), QString("Orvane_A"));
    QCOMPARE(control<QLabel>(*rows().at(1), "label_2").toolTip(), QString("Orvane_B\nthird"));
    panel->accessChange({});
    QCOMPARE(control<QLabel>(*rows().at(1), "label_2").toolTip(), QString("Orvane_B"));
}

QTEST_MAIN(TestDeviceWidget)
#include "test_devicewidget.moc"
