#include "calibration/accountitem.h"
#include "calibration/calibratecombobox.h"
#include "camera/camerasetwidget2.h"
#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "settings/selectbutton.h"
#include "settings/settingsfiles.h"
#include "tests/support/mainwindow.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"
#include "tests/support/scenemouse.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

namespace {

constexpr char deletePrompt[] = "|确认要删除吗";
constexpr char deleteAllPrompt[] = "|确认要删除所有吗";

/// A finished line of 100 pixels on a page, drawn with the mouse over its scene.
Base *drawLine(ShowWidget *page, double y = 50)
{
    sceneOf(page).setDrawType(1);
    SceneMouse(sceneOf(page)).click({QPointF(10, y), QPointF(110, y)});
    sceneOf(page).setDrawType(0);
    return sceneOf(page).items().last();
}

/// Chooses from the menu behind the corner of the calibration button.
void chooseCalibrationTool(const MainWindow &window, const QString &entry)
{
    for (QAction *action : window.part<SelectButton>("cali")->findChildren<QAction *>())
        if (action->text() == entry)
            action->trigger();
}

} // namespace

class TestTavorinTools : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    // Tools
    void aToolButtonGivesItsNumberToEveryPage_data();
    void aToolButtonGivesItsNumberToEveryPage();
    void aSecondClickLeavesTheToolAndStillStopsAutofocus();
    void aClickOnCaliRightAfterStartTakesTheCircle();
    void theCornerMenuOfAnUnusedCaliChangesItsIconOnly();
    void theCornerMenuOfAUsedCaliChangesTheTool();
    void aRightClickGoesBackToTheHand();
    void aNewPageGetsTheToolAndTheLivePageTakesItAway();

    // Scale, unit, zoom
    void aChangeOfUnitReachesEveryPage_data();
    void aChangeOfUnitReachesEveryPage();
    void anUnknownUnitIsSentAgainAsItWas();
    void aPickedCalibrationReachesEveryPage();
    void zoomChangesTheCurrentPictureOnly();
    void fitModesActOnTheLivePageOnly();
    void theWheelStepsTheZoomAndStopsAtBothEnds();

    // Shapes
    void undoTakesTheLastShape();
    void deletingAsks_data();
    void deletingAsks();
    void deletingAllAsks();
    void twoDeletionsAddOneStar();
    void aLivePageHasNoStar();
    void aPageWithoutATabOnlyEnablesTheButtons();
    void aTextIsAskedForAndShown();
    void cancellingTheTextKeepsIt();
    void propertiesOfAShapeOpenInShapeMode();

    // Crosshair
    void movedCrosshairLinesAreStoredWithinASecond();
    void theCrosshairWaitsForALivePage();
    void propertiesOfACrosshairLineOpenInCrosshairMode();
    void theCrosshairDialogActsOnTheCurrentPage();
    void crosshairsOfPicturesAreNeverStored();

    // Calibration
    void aMeasuredLengthBecomesACalibrationThatIsNotInForce();
    void aLengthOnTheLivePageIsBroughtToFramePixels();
    void closingTheCalibrationDialogAddsNothing();

    // Settings
    void settingsTakeEffectOnEveryPageAndOnNewOnes();
    void savingInTheCameraIsConfirmed();
};

void TestTavorinTools::initTestCase() { static MessageWatch watch; }

void TestTavorinTools::cleanup()
{
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
}

// ---- Tools

void TestTavorinTools::aToolButtonGivesItsNumberToEveryPage_data()
{
    QTest::addColumn<int>("tool");
    QTest::newRow("hand") << 0;
    QTest::newRow("line") << 1;
    QTest::newRow("hline") << 2;
    QTest::newRow("vline") << 3;
    QTest::newRow("par") << 4;
    QTest::newRow("ver") << 5;
    QTest::newRow("angle") << 6;
    QTest::newRow("rect") << 7;
    QTest::newRow("arc") << 8;
    QTest::newRow("circle") << 9;
    QTest::newRow("ring") << 10;
    QTest::newRow("poly") << 11;
    QTest::newRow("line_circle") << 12;
    QTest::newRow("ver_circle") << 13; // hidden, but its slot stays
    QTest::newRow("two_circle") << 14;
    QTest::newRow("text") << 15;
    QTest::newRow("cali") << 17;
}

void TestTavorinTools::aToolButtonGivesItsNumberToEveryPage()
{
    QFETCH(int, tool);
    MainWindow window;
    const ShowWidget *first = window.addPicture("first");
    const ShowWidget *second = window.addPicture("second");
    window->setDrawType(99);
    auto *manual = window.part("page_2")->findChild<QCheckBox *>("checkBox_3");
    QSignalSpy spy(window.get(), &Tavorin::setFocusManual);

    window.click(QTest::currentDataTag());
    QCOMPARE(sceneOf(first).drawType(), tool);
    QCOMPARE(sceneOf(second).drawType(), tool);
    QCOMPARE(spy.count(), 1);
    QVERIFY(manual->isChecked());
    const auto *group = window->findChild<QButtonGroup *>("buttonGroup");
    QCOMPARE(group->checkedButton(), window.part<QAbstractButton>(QTest::currentDataTag()));
    QCOMPARE(sceneOf(window.addPicture("third")).drawType(), tool);
}

void TestTavorinTools::aSecondClickLeavesTheToolAndStillStopsAutofocus()
{
    MainWindow window;
    const ShowWidget *page = window.addPicture("page");
    window.click("rect");
    QWidget *panel = window.part("page_2");
    panel->findChild<QCheckBox *>("checkBox")->setChecked(true);
    window.click("rect");
    QCOMPARE(sceneOf(page).drawType(), 7);
    QVERIFY(window.part<QAbstractButton>("rect")->isChecked());
    QVERIFY(panel->findChild<QCheckBox *>("checkBox_3")->isChecked());
    QVERIFY(!panel->findChild<QCheckBox *>("checkBox")->isChecked());
}

void TestTavorinTools::aClickOnCaliRightAfterStartTakesTheCircle()
{
    MainWindow window;
    const ShowWidget *page = window.addPicture("page");
    window.click("cali");
    QCOMPARE(sceneOf(page).drawType(), 17);
}

void TestTavorinTools::theCornerMenuOfAnUnusedCaliChangesItsIconOnly()
{
    MainWindow window;
    const ShowWidget *page = window.addPicture("page");
    const auto *cali = window.part<SelectButton>("cali");
    window.click("angle");
    chooseCalibrationTool(window, "line");
    QCOMPARE(cali->data().toInt(), 16);
    QCOMPARE(cali->icon().pixmap(32).toImage(), QIcon(":/pic/1.png").pixmap(32).toImage());
    QCOMPARE(sceneOf(page).drawType(), 6);
    QVERIFY(window.part<QAbstractButton>("angle")->isChecked());
    window.click("cali");
    QCOMPARE(sceneOf(page).drawType(), 16);
}

void TestTavorinTools::theCornerMenuOfAUsedCaliChangesTheTool()
{
    MainWindow window;
    const ShowWidget *page = window.addPicture("page");
    window.click("cali");
    QSignalSpy manual(window.get(), &Tavorin::setFocusManual);
    chooseCalibrationTool(window, "line");
    QCOMPARE(sceneOf(page).drawType(), 16);
    // Unlike a click on a tool.
    QCOMPARE(manual.count(), 0);
}

void TestTavorinTools::aRightClickGoesBackToTheHand()
{
    MainWindow window;
    const ShowWidget *page = window.addPicture("page");
    const ShowWidget *other = window.addPicture("other");
    window.click("circle");
    QSignalSpy manual(window.get(), &Tavorin::setFocusManual);
    SceneMouse(sceneOf(other)).press(QPointF(5, 5), Qt::RightButton);
    QVERIFY(window.part<QAbstractButton>("hand")->isChecked());
    QCOMPARE(sceneOf(page).drawType(), 0);
    QCOMPARE(sceneOf(other).drawType(), 0);
    QCOMPARE(manual.count(), 1);
}

void TestTavorinTools::aNewPageGetsTheToolAndTheLivePageTakesItAway()
{
    MainWindow window;
    const ShowWidget *live = window.addDeadCamera();
    const ShowWidget *first = window.addPicture("first");
    window.click("vline");
    const ShowWidget *second = window.addPicture("second");
    QCOMPARE(sceneOf(second).drawType(), 3);
    window.tabs()->setCurrentIndex(0);
    for (const ShowWidget *page : {live, first, second})
        QCOMPARE(sceneOf(page).drawType(), 0);
}

// ---- Scale, unit, zoom

void TestTavorinTools::aChangeOfUnitReachesEveryPage_data()
{
    QTest::addColumn<QString>("readout");
    // 100 pixels of 2.54 um.
    QTest::newRow("pix") << "Line\nLen = 100px";
    QTest::newRow("um") << "Line\nLen = 254um";
    QTest::newRow("mm") << "Line\nLen = 0.254mm";
    QTest::newRow("mil") << "Line\nLen = 10mil";
}

void TestTavorinTools::aChangeOfUnitReachesEveryPage()
{
    QFETCH(QString, readout);
    MainWindow window;
    ShowWidget *first = window.addPicture("first");
    ShowWidget *second = window.addPicture("second");
    window->calibrateChange(2.54);
    drawLine(first);
    drawLine(second);
    auto *units = window.part<QComboBox>("comboBox_2");
    units->setCurrentIndex(units->currentIndex() == 0 ? 3 : 0);
    units->setCurrentText(QTest::currentDataTag());
    QCOMPARE(rowsOf(first), QStringList(readout));
    QCOMPARE(rowsOf(second), QStringList(readout));
    ShowWidget *third = window.addPicture("third");
    drawLine(third);
    QCOMPARE(rowsOf(third), QStringList(readout));
}

void TestTavorinTools::anUnknownUnitIsSentAgainAsItWas()
{
    MainWindow window;
    ShowWidget *page = window.addPicture("page");
    drawLine(page);
    window->on_comboBox_2_currentIndexChanged("um");
    QCOMPARE(rowsOf(page), QStringList("Line\nLen = 100um"));
    for (const char *text : {"furlong", "MM", ""}) {
        sceneOf(page).setUnit(1);
        window->on_comboBox_2_currentIndexChanged(text);
        QCOMPARE(rowsOf(page), QStringList("Line\nLen = 100um"));
    }
}

void TestTavorinTools::aPickedCalibrationReachesEveryPage()
{
    MainWindow window;
    auto *box = window.part<CaliBrateComboBox>("calibrateCombo");
    box->addItem({"x5", 1.0, "mm", 4.0}, false);
    ShowWidget *first = window.addPicture("first");
    ShowWidget *second = window.addPicture("second");
    window.part<QComboBox>("comboBox_2")->setCurrentText("um");
    drawLine(first);
    drawLine(second);
    AccountItem item({"x5", 1.0, "mm", 4.0});
    box->showAccount(&item);
    QCOMPARE(rowsOf(first), QStringList("Line\nLen = 400um"));
    QCOMPARE(rowsOf(second), QStringList("Line\nLen = 400um"));
    ShowWidget *third = window.addPicture("third");
    drawLine(third);
    QCOMPARE(rowsOf(third), QStringList("Line\nLen = 400um"));
}

void TestTavorinTools::zoomChangesTheCurrentPictureOnly()
{
    MainWindow window;
    const ShowWidget *live = window.addDeadCamera();
    const ShowWidget *first = window.addPicture("first");
    const ShowWidget *second = window.addPicture("second");
    window.part<QComboBox>("zoom")->setCurrentText("150");
    QCOMPARE(second->zoomFactor(), 1.5);
    QCOMPARE(first->zoomFactor(), 1.0);
    window.tabs()->setCurrentIndex(0);
    window.part<QComboBox>("zoom")->setCurrentText("200");
    QCOMPARE(live->zoomFactor(), 1.0);
    QCOMPARE(second->zoomFactor(), 1.5);
}

void TestTavorinTools::fitModesActOnTheLivePageOnly()
{
    MainWindow window;
    window->show();
    const ShowWidget *live = window.addDeadCamera();
    QCoreApplication::processEvents();
    QVERIFY(live->viewWidth() < 1920);
    window.part<QComboBox>("comboBox")->setCurrentIndex(3); // 100%
    QCOMPARE(live->viewWidth(), 1920.0);

    const ShowWidget *picture = window.addPicture("picture");
    window.part<QComboBox>("comboBox")->setCurrentIndex(0);
    QCOMPARE(live->viewWidth(), 1920.0);
    QCOMPARE(picture->zoomFactor(), 1.0);
}

void TestTavorinTools::theWheelStepsTheZoomAndStopsAtBothEnds()
{
    MainWindow window;
    const ShowWidget *page = window.addPicture("page");
    auto *zoom = window.part<QComboBox>("zoom");
    window->wheelAdd(true);
    QCOMPARE(zoom->currentText(), QString("75"));
    QCOMPARE(page->zoomFactor(), 0.75);
    zoom->setCurrentText("10");
    window->wheelAdd(true);
    QCOMPARE(zoom->currentText(), QString("10"));
    window->wheelAdd(false);
    QCOMPARE(zoom->currentText(), QString("25"));
    zoom->setCurrentText("400");
    window->wheelAdd(false);
    QCOMPARE(zoom->currentText(), QString("400"));
    QCOMPARE(page->zoomFactor(), 4.0);
}

// ---- Shapes

void TestTavorinTools::undoTakesTheLastShape()
{
    MainWindow window;
    ShowWidget *page = window.addPicture("page");
    drawLine(page, 20);
    const Base *first = sceneOf(page).items().first();
    drawLine(page, 40);
    window->on_redo_clicked();
    QCOMPARE(sceneOf(page).items().size(), 1);
    QCOMPARE(sceneOf(page).items().first(), first);
    QVERIFY(window.part("redo")->isEnabled());
    window->on_redo_clicked();
    QCOMPARE(rowsOf(page), QStringList());
    // Unlike a deletion it brings the controls up to date.
    QVERIFY(!window.part("redo")->isEnabled());
    window->on_redo_clicked();
}

void TestTavorinTools::deletingAsks_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("shapesLeft");
    QTest::newRow("yes") << int(QMessageBox::Yes) << 1;
    QTest::newRow("no") << int(QMessageBox::No) << 2;
}

void TestTavorinTools::deletingAsks()
{
    QFETCH(int, answer);
    QFETCH(int, shapesLeft);
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    drawLine(page, 20);
    const Base *second = drawLine(page, 40);
    page->findChild<QListWidget *>()->setCurrentRow(0);
    answers.press(QMessageBox::StandardButton(answer));
    window->delItem();
    QCOMPARE(answers.seen(), QStringList(deletePrompt));
    QCOMPARE(sceneOf(page).items().size(), shapesLeft);
    QCOMPARE(sceneOf(page).items().last(), second);
    QCOMPARE(rowsOf(page).size(), shapesLeft);
    // No refreshControls: the button stays as the drawing left it.
    QVERIFY(window.part("redo")->isEnabled());
}

void TestTavorinTools::deletingAllAsks()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    drawLine(page, 20);
    drawLine(page, 40);
    answers.press(QMessageBox::No);
    window->delAllItem();
    QCOMPARE(rowsOf(page).size(), 2);
    answers.press(QMessageBox::Yes);
    window->delAllItem();
    QCOMPARE(rowsOf(page).size(), 0);
    QVERIFY(sceneOf(page).items().isEmpty());
    QCOMPARE(answers.seen(), QStringList({deleteAllPrompt, deleteAllPrompt}));
    QVERIFY(window.part("redo")->isEnabled());
}

void TestTavorinTools::twoDeletionsAddOneStar()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    drawLine(page, 20);
    drawLine(page, 40);
    page->setModified(false);
    window.tabs()->setTabText(0, "page");
    for (int i = 0; i < 2; ++i) {
        page->findChild<QListWidget *>()->setCurrentRow(0);
        answers.press(QMessageBox::Yes);
        window->delItem();
        QCOMPARE(window.tabText(), QString("page*"));
    }
    QCOMPARE(rowsOf(page).size(), 0);
}

void TestTavorinTools::aLivePageHasNoStar()
{
    MainWindow window;
    ShowWidget *live = window.addDeadCamera();
    live->setModified(true);
    QCOMPARE(window.tabText(), QString("Orvane_gone"));
    QVERIFY(!window.part("save")->isEnabled());
}

void TestTavorinTools::aPageWithoutATabOnlyEnablesTheButtons()
{
    MainWindow window;
    window.addPicture("page");
    ShowWidget stray(window.menu(), false);
    window->modified(&stray);
    QCOMPARE(window.tabText(), QString("page"));
    QVERIFY(window.part("save")->isEnabled());
    QVERIFY(window.part("redo")->isEnabled());
}

void TestTavorinTools::aTextIsAskedForAndShown()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    window.click("text");
    answers.enterText("pad 7");
    SceneMouse(sceneOf(page)).click({QPointF(10, 10), QPointF(60, 40)});
    QCOMPARE(answers.seen(), QStringList(""));
    QCOMPARE(sceneOf(page).items().last()->textContent(), QString("pad 7"));
}

void TestTavorinTools::cancellingTheTextKeepsIt()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    window.click("text");
    answers.cancel();
    SceneMouse(sceneOf(page)).click({QPointF(10, 10), QPointF(60, 40)});
    const Base *shape = sceneOf(page).items().last();
    const QString before = shape->textContent();
    answers.enterText("");
    window->ltextEdit();
    QCOMPARE(shape->textContent(), before);
    answers.enterText("pad 7");
    window->ltextEdit();
    answers.cancel();
    window->ltextEdit();
    QCOMPARE(shape->textContent(), QString("pad 7"));
    QVERIFY(answers.allAnswered());
}

void TestTavorinTools::propertiesOfAShapeOpenInShapeMode()
{
    MainWindow window("[draw]\nLineWidth=1\n");
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    Base *line = drawLine(page);
    painted(sceneOf(page));
    answers.expect([](QWidget *dialog) {
        QVERIFY(dialog->findChild<QPushButton *>("pushButton")->isHidden()); // no delete
        dialog->findChild<QSpinBox *>("spinBox_2")->setValue(3);
        static_cast<QDialog *>(dialog)->reject();
    });
    SceneMouse mouse(sceneOf(page));
    mouse.press(QPointF(60, 50));
    mouse.release(QPointF(60, 50));
    mouse.doubleClick(QPointF(60, 50));
    QCOMPARE(answers.seen(), QStringList("属性"));
    QCOMPARE(line->item()->pen().width(), 3);
}

// ---- Crosshair

void TestTavorinTools::movedCrosshairLinesAreStoredWithinASecond()
{
    MainWindow window;
    ShowWidget *live = window.addDeadCamera();
    live->setCrossHorCount(1);
    window->onCrossChangedTimeOut();
    QVERIFY(!QFile::exists("corss.ini"));
    emit live->crossStatusChanged(nullptr);
    QVERIFY(!QFile::exists("corss.ini")); // not on each movement
    QTRY_COMPARE(readCrosses().size(), 1);
}

void TestTavorinTools::theCrosshairWaitsForALivePage()
{
    MainWindow window;
    window->crossStatusChanged(nullptr);
    window->onCrossChangedTimeOut();
    QVERIFY(!QFile::exists("corss.ini"));
    window.addDeadCamera()->setCrossVerCount(2);
    QTRY_COMPARE(readCrosses().size(), 2);
}

void TestTavorinTools::propertiesOfACrosshairLineOpenInCrosshairMode()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *live = window.addDeadCamera();
    live->setCrossHorCount(2);
    answers.expect([&](QWidget *dialog) {
        answers.press(QMessageBox::Yes);
        dialog->findChild<QPushButton *>("pushButton")->click(); // delete
    });
    emit live->crossStatusChanged(sceneOf(live).crossLines().first());
    QCOMPARE(answers.seen(), QStringList({"属性", deletePrompt}));
    QCOMPARE(sceneOf(live).crossHorCount(), 1);
    window->onCrossChangedTimeOut();
    QCOMPARE(readCrosses().size(), 1);
}

void TestTavorinTools::theCrosshairDialogActsOnTheCurrentPage()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *live = window.addDeadCamera();
    ShowWidget *picture = window.addPicture("picture");
    live->setCrossHorCount(4);
    const auto setThree = [](QWidget *dialog) {
        dialog->findChild<QSpinBox *>("spinBox")->setValue(3);
        static_cast<QDialog *>(dialog)->accept();
    };
    answers.expect(setThree);
    window.click("cross");
    QCOMPARE(answers.seen(), QStringList("十字线"));
    QCOMPARE(picture->crossHorCount(), 3);
    QCOMPARE(live->crossHorCount(), 4);
}

void TestTavorinTools::crosshairsOfPicturesAreNeverStored()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *live = window.addDeadCamera();
    live->setCrossHorCount(4);
    window.addPicture("picture");
    answers.cancel();
    window.click("cross");
    window->onCrossChangedTimeOut();
    QCOMPARE(readCrosses().size(), 4);
}

// ---- Calibration

void TestTavorinTools::aMeasuredLengthBecomesACalibrationThatIsNotInForce()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    chooseCalibrationTool(window, "line");
    window.click("cali");
    answers.expect([](QWidget *dialog) {
        QCOMPARE(dialog->findChild<QLabel *>("label_6")->text(), QString("200 pixel"));
        dialog->findChild<QLineEdit *>("lineEdit")->setText("x10");
        dialog->findChild<QLineEdit *>("lineEdit_2")->setText("100");
        dialog->findChild<QPushButton *>("pushButton")->click();
    });
    SceneMouse(sceneOf(page)).click({QPointF(10, 10), QPointF(210, 10)});
    QCOMPARE(answers.seen(), QStringList("标定"));
    auto *box = window.part<CaliBrateComboBox>("calibrateCombo");
    QCOMPARE(box->records().size(), 1);
    QCOMPARE(box->records().first().real, 500.0); // 100 mm on 200 pixels
    QCOMPARE(readCalibrations().size(), 1);

    window.part<QComboBox>("comboBox_2")->setCurrentText("um");
    drawLine(page);
    QCOMPARE(rowsOf(page), QStringList("Line\nLen = 100um"));

    // The same one again is known.
    answers.expect([&](QWidget *dialog) {
        dialog->findChild<QLineEdit *>("lineEdit")->setText("x10");
        dialog->findChild<QLineEdit *>("lineEdit_2")->setText("100");
        dialog->findChild<QPushButton *>("pushButton")->click();
        QCOMPARE(dialog->findChild<QLabel *>("label_8")->text(), QString("该标定已存在"));
        static_cast<QDialog *>(dialog)->reject();
    });
    window->caliOver(300);
    QCOMPARE(box->records().size(), 1);
}

void TestTavorinTools::aLengthOnTheLivePageIsBroughtToFramePixels()
{
    MainWindow window;
    ModalAnswers answers;
    window->show();
    ShowWidget *live = window.addDeadCamera();
    window.part<QComboBox>("comboBox")->setCurrentIndex(3); // 100%
    QString pixels;
    const auto read = [&](QWidget *dialog) {
        pixels = dialog->findChild<QLabel *>("label_6")->text();
        static_cast<QDialog *>(dialog)->reject();
    };
    answers.expect(read);
    window->caliOver(200);
    QCOMPARE(pixels, QString("200 pixel"));

    window.part<QComboBox>("comboBox")->setCurrentIndex(0);
    QVERIFY(live->viewWidth() < 1900);
    answers.expect(read);
    window->caliOver(live->viewWidth()); // the whole width is the whole frame
    QCOMPARE(pixels, QString("1920 pixel"));
}

void TestTavorinTools::closingTheCalibrationDialogAddsNothing()
{
    MainWindow window;
    ModalAnswers answers;
    window.addPicture("page");
    answers.expect([](QWidget *dialog) {
        dialog->findChild<QLineEdit *>("lineEdit")->setText("x10");
        dialog->findChild<QLineEdit *>("lineEdit_2")->setText("100");
        dialog->close();
    });
    window->caliOver(200);
    QVERIFY(window.part<CaliBrateComboBox>("calibrateCombo")->records().isEmpty());
    QVERIFY(!QFile::exists("calibration.ini"));
}

// ---- Settings

void TestTavorinTools::settingsTakeEffectOnEveryPageAndOnNewOnes()
{
    MainWindow window("[draw]\nLineWidth=1\n");
    ModalAnswers answers;
    ShowWidget *first = window.addPicture("first");
    const Base *line = drawLine(first);
    window.addPicture("second");
    answers.expect([&](QWidget *dialog) {
        dialog->findChild<QSpinBox *>("spinBox_2")->setValue(3);
        QCOMPARE(line->item()->pen().width(), 3); // at once
        static_cast<QDialog *>(dialog)->reject();
    });
    window.click("settingBtn");
    QCOMPARE(answers.seen(), QStringList("绘制设置"));
    QCOMPARE(line->item()->pen().width(), 3); // there is no way back
    QCOMPARE(drawLine(window.addPicture("third"))->item()->pen().width(), 3);
    QCOMPARE(readDrawSettings()[LineWidth].toInt(), 3);
}

void TestTavorinTools::savingInTheCameraIsConfirmed()
{
    MainWindow window;
    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    emit window.part<CameraSetWidget2>("page_2")->showSuccess();
    QCOMPARE(answers.seen(), QStringList("提醒|保存成功"));
}

QTEST_MAIN(TestTavorinTools)
#include "test_tavorin_tools.moc"
