#include "camera/camerasetwidget2.h"
#include "camera/deviceinfowidget.h"
#include "fusion/fusionwidget.h"
#include "settings/pushbutton.h"
#include "settings/selectbutton.h"
#include "settings/settingsfiles.h"
#include "tests/support/mainwindow.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"
#include "tests/support/scenemouse.h"
#include "tests/support/system.h"
#include "tests/support/windowsweep.h"

#include <QActionGroup>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QMenuBar>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>
#include <QtTest>

namespace {

constexpr char quitPrompt[] = "提醒|是否确定要退出?";
constexpr char unsavedPrompt[] = "提醒|信息尚未保存，是否确定退出?";
constexpr char closePagePrompt[] = "提醒|修改尚未保存，确定要退出吗？";

/// What the eye sees of an icon.
QImage imageOf(const QIcon &icon) { return icon.pixmap(32, 32).toImage(); }

/// The focus slider of the camera panel, in manual focus and at 100.
QSlider *manualFocusAt100(const MainWindow &window)
{
    const QWidget *panel = window.part("page_2");
    panel->findChild<QCheckBox *>("checkBox_3")->setChecked(true);
    auto *slider = panel->findChild<QSlider *>("horizontalSlider");
    slider->setValue(100);
    return slider;
}

/// A turn of the wheel as the system reports it: only such an event travels up to the window.
void turnWheel(QWidget *receiver, int delta)
{
    const QPointF pos(5, 5);
    QWheelEvent event(pos, receiver->mapToGlobal(pos.toPoint()), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(receiver, &event);
}

/// What a widget sees of a pointer that comes to rest over it.
void movePointerOver(QWidget *widget, QPoint pos)
{
    widget->setAttribute(Qt::WA_UnderMouse);
    QHoverEvent hover(QEvent::HoverMove, pos, QPoint(-1, -1));
    QCoreApplication::sendEvent(widget, &hover);
    QMouseEvent move(QEvent::MouseMove, pos, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
}

/// @returns whether the window agreed to be closed
bool closeWindow(const MainWindow &window)
{
    QCloseEvent event;
    QCoreApplication::sendEvent(window.get(), &event);
    return event.isAccepted();
}

} // namespace

class TestTavorin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    // Has to come first: the counter belongs to the process.
    void untitledPagesCountUpAndAreModified();

    // Form
    void toolRowStandsInOrder();
    void otherRowsStandInOrder();
    void partsAreOfTheirClasses_data();
    void partsAreOfTheirClasses();
    void controlsMatchTheForm_data();
    void controlsMatchTheForm();
    void iconButtonsAre32PixelsAndWithoutText();
    void comboBoxesOfferTheirEntries_data();
    void comboBoxesOfferTheirEntries();
    void calibrationAndToolsShareOneExclusiveGroup();
    void sideColumnMatchesTheForm_data();
    void sideColumnMatchesTheForm();
    void sideStackHoldsThreePanelsAndStartsHidden();
    void sideStackKeepsItsMinimumAboveItsMaximum();
    void stripsAreSixPixelsWide();
    void tabsAreClosableTrianglesAndNoneIsThere();
    void menuHoldsTheLanguages();
    void settingActionStandsInNoMenu();
    void formHasItsNameSizeAndTitle();
    void styleSheetsReferToResourcesThatExist();
    void coloursAreThoseOfTheHouse_data();
    void coloursAreThoseOfTheHouse();
    void coloursUnderThePointer_data();
    void coloursUnderThePointer();
    void tabsAreBlueWhenChosenAndWhiteElse();
    void thePaneIsLinedAndTiled();
    void theStripTellsWhichWayThePanelGoes();
    void everyControlIsReachedByTab();

    // Start
    void startsWithoutAPageAndWithoutACamera();
    void newPagesGetWhatAllPagesShare();

    // Enable rules
    void withoutAPageOnlyAFewControlsRespond();
    void aPictureEnablesDrawingAndNoCamera();
    void aModifiedPictureCanBeSaved();
    void aLivePageWithoutItsCameraAllowsNothing();

    // Pages
    void goingToTheLivePagePutsTheToolBack();
    void goingToAPictureKeepsTheToolAndShowsItsZoom();
    void closingTheLastPageShowsSaveAgain();
    void closingAnUnmodifiedPageAsksNothing();
    void closingAModifiedPageAsks_data();
    void closingAModifiedPageAsks();
    void aPageThatVanishesDuringItsPromptDoesNoHarm();
    void closingTheLivePageStoresTheCrosshairAndGivesTheCameraUp();
    void closingTheLivePageWithAnUntouchedCrosshairStoresNothing();
    void aPageMayBeClosedFromItsOwnContextMenu();

    // Quitting
    void quittingAsksOnceForTheFirstModifiedPage();
    void quittingWithModifiedPagesDoesNotStoreTheCrosshair();
    void aRefusedQuitStillStoresTheCrosshair();
    void quittingIsPossible();

    // Panels
    void leftHideTogglesThePanelAndLaysThePagesOut();
    void panelButtonsShowTheirPanelAndNeverHideIt();
    void buttonsWithoutAFunctionDoNothing();

    // Events
    void middleButtonTogglesTheFocusMode();
    void wheelWithoutAPageDoesNothing();
    void wheelOverAPictureLeavesTheFocusAlone();
    void wheelOnTheLivePageStepsTheFocus();
    void wheelStepsFromTheCamerasPosition();
    void wheelWithControlStepsTheLiveZoom();
    void controlCountsAlsoWhenThePictureHasTheFocus();
    void resolutionChangeFillsTheScreen();
    void firmwareVersionStandsBehindTheTitleOnce();
    void pickingAFocusCellTurnsAutofocusOn();

    // Camera
    void aStartedCameraGetsALivePage();
    void aSecondStartReusesTheLivePage();
    void givingTheCameraUpKeepsThePage();
    void connectingAndLosingTheCamera();
    void closingTheLivePageStopsTheCamera();
    void panelReachesTheCamera();
    void clickFocusReachesTheScene();
    void theWindowClosesWhileTheCameraStreams();
    void theWindowClosesWhileTheCameraIsOpening();

    // Language
    void englishReachesTheFormAndEveryPage();
    void englishReachesThePanelsAtOnce();
    void anOfflineRowKeepsItsLanguage();
    void aCameraWithoutAccessIsMarkedUntilTheRightComes();
    void ownTextsStayChineseInEnglish();
    void fixedEntriesAndTitlesStay();
    void chineseTwiceChangesNothing();
    void languageIsNotStored();

    // Process
    void missingFontIsToldAtStart();
};

void TestTavorin::initTestCase()
{
    static MessageWatch watch;
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void TestTavorin::init() { simulatedMicroscope().attach({}); }

void TestTavorin::cleanup()
{
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
}

void TestTavorin::untitledPagesCountUpAndAreModified()
{
    MainWindow window;
    ModalAnswers answers;
    QVERIFY(window.addPicture("")->isModified());
    QCOMPARE(window.tabText(), QString("Tab0*"));
    window.addPicture("");
    QCOMPARE(window.tabText(), QString("Tab1*"));
    answers.press(QMessageBox::Yes);
    answers.press(QMessageBox::Yes);
    window.closeTab(1);
    window.closeTab(0);
    window.addPicture("");
    QCOMPARE(window.tabText(), QString("Tab2*"));
    window.addPicture("named");
    QCOMPARE(window.tabText(), QString("named"));
    QVERIFY(!window.currentPage()->isModified());
}

// ---- Form

void TestTavorin::toolRowStandsInOrder()
{
    MainWindow window;
    const auto *row = window->findChild<QLayout *>("horizontalLayout");
    QStringList names;
    for (int i = 0; i < row->count(); ++i) {
        QLayoutItem *item = row->itemAt(i);
        names += item->widget() ? item->widget()->objectName() : QString("spacer");
    }
    QCOMPARE(names.join(' '),
             QString("open save save_2 captureBtn redo settingBtn zoom comboBox capture2Btn "
                     "freezeBtn export_2 spacer cali calibrateCombo comboBox_2 hand line hline "
                     "vline par ver angle rect arc circle ring poly line_circle ver_circle "
                     "two_circle text cross"));
    QCOMPARE(window.part("widget")->layout()->objectName(), QString("horizontalLayout_3"));
    QCOMPARE(window->centralWidget()->layout()->count(), 3);
}

void TestTavorin::otherRowsStandInOrder()
{
    MainWindow window;
    const auto names = [&](const QLayout *layout) {
        QStringList found;
        for (int i = 0; i < layout->count(); ++i) {
            QLayoutItem *item = layout->itemAt(i);
            found += item->widget()   ? item->widget()->objectName()
                     : item->layout() ? item->layout()->objectName()
                                      : QString("spacer");
        }
        return found.join(' ');
    };
    QCOMPARE(names(window->centralWidget()->layout()),
             QString("widget horizontalLayout_4 horizontalLayout_7"));
    QCOMPARE(names(window->findChild<QLayout *>("horizontalLayout_4")),
             QString("widget_4 stackedWidget widget_5 tabWidget"));
    QCOMPARE(names(window.part("widget_4")->layout()), QString("leftHide"));
    QCOMPARE(names(window.part("widget_5")->layout()),
             QString("deviceManager configManager compose split motorManager comAndSplit spacer"));
    QCOMPARE(names(window->findChild<QLayout *>("horizontalLayout_7")),
             QString("statusLabel1 statusLabel2"));
}

void TestTavorin::partsAreOfTheirClasses_data()
{
    QTest::addColumn<QString>("className");
    const QPair<const char *, const char *> rows[] = {
        {"widget", "QWidget"},
        {"zoom", "QComboBox"},
        {"comboBox", "QComboBox"},
        {"calibrateCombo", "CaliBrateComboBox"},
        {"comboBox_2", "QComboBox"},
        {"widget_4", "QWidget"},
        {"leftHide", "QPushButton"},
        {"stackedWidget", "QStackedWidget"},
        {"page_1", "DeviceWidget"},
        {"page_2", "CameraSetWidget2"},
        {"page_4", "FusionWidget"},
        {"widget_5", "QWidget"},
        {"deviceManager", "PushButton"},
        {"configManager", "PushButton"},
        {"compose", "PushButton"},
        {"split", "PushButton"},
        {"motorManager", "PushButton"},
        {"comAndSplit", "PushButton"},
        {"tabWidget", "QTabWidget"},
        {"statusLabel1", "QLabel"},
        {"statusLabel2", "QLabel"},
        {"menuBar", "QMenuBar"},
        {"menu", "QMenu"},
    };
    for (const auto &row : rows)
        QTest::newRow(row.first) << row.second;
}

void TestTavorin::partsAreOfTheirClasses()
{
    MainWindow window;
    QTEST(QString(window.part(QTest::currentDataTag())->metaObject()->className()), "className");
}

void TestTavorin::controlsMatchTheForm_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("tooltip");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("shortcut");
    QTest::addColumn<bool>("isHidden");
    QTest::addColumn<bool>("isEnabled");

    QTest::newRow("open") << "QPushButton"
                          << "打开"
                          << "open"
                          << "Ctrl+O" << false << true;
    QTest::newRow("save") << "QPushButton"
                          << "保存"
                          << "save"
                          << "Ctrl+S" << false << false;
    QTest::newRow("save_2") << "QPushButton"
                            << ""
                            << "save"
                            << "Ctrl+S" << true << true;
    QTest::newRow("captureBtn") << "QPushButton"
                                << "快速保存"
                                << "save_2"
                                << "Ctrl+Q" << false << false;
    QTest::newRow("redo") << "QPushButton"
                          << "撤销"
                          << ""
                          << "Ctrl+Z" << true << false;
    QTest::newRow("settingBtn") << "QPushButton"
                                << "配置"
                                << "setting"
                                << "" << false << true;
    QTest::newRow("capture2Btn") << "QPushButton"
                                 << "抓拍"
                                 << "capture2"
                                 << "" << false << false;
    QTest::newRow("freezeBtn") << "QPushButton"
                               << "冻结"
                               << ""
                               << "" << true << true;
    QTest::newRow("export_2") << "QPushButton"
                              << "导出"
                              << "export"
                              << "" << false << true;
    QTest::newRow("cali") << "SelectButton"
                          << "标定"
                          << "10"
                          << "" << false << false;
    QTest::newRow("hand") << "QPushButton"
                          << "鼠标"
                          << "0"
                          << "" << false << false;
    QTest::newRow("line") << "QPushButton"
                          << "直线"
                          << "1"
                          << "" << false << false;
    QTest::newRow("hline") << "QPushButton"
                           << "线"
                           << "2"
                           << "" << false << false;
    QTest::newRow("vline") << "QPushButton"
                           << "线"
                           << "3"
                           << "" << false << false;
    QTest::newRow("par") << "QPushButton"
                         << "平行线"
                         << "5"
                         << "" << false << false;
    QTest::newRow("ver") << "QPushButton"
                         << "垂线"
                         << "6"
                         << "" << false << false;
    QTest::newRow("angle") << "QPushButton"
                           << "角度"
                           << "7"
                           << "" << false << false;
    QTest::newRow("rect") << "QPushButton"
                          << "矩形"
                          << "8"
                          << "" << false << false;
    QTest::newRow("arc") << "QPushButton"
                         << "弧线"
                         << "9"
                         << "" << false << false;
    QTest::newRow("circle") << "QPushButton"
                            << "圆"
                            << "10"
                            << "" << false << false;
    QTest::newRow("ring") << "QPushButton"
                          << "同心圆"
                          << "11"
                          << "" << false << false;
    QTest::newRow("poly") << "QPushButton"
                          << "多边形"
                          << "12"
                          << "" << false << false;
    QTest::newRow("line_circle") << "QPushButton"
                                 << "线圆"
                                 << "13"
                                 << "" << false << false;
    QTest::newRow("ver_circle") << "QPushButton"
                                << ""
                                << "14"
                                << "" << true << false;
    QTest::newRow("two_circle") << "QPushButton"
                                << "双圆"
                                << "15"
                                << "" << false << false;
    QTest::newRow("text") << "QPushButton"
                          << "文字"
                          << "16"
                          << "" << false << false;
    QTest::newRow("cross") << "QPushButton"
                           << "十字线"
                           << "4"
                           << "" << false << false;
}

void TestTavorin::controlsMatchTheForm()
{
    QFETCH(QString, className);
    QFETCH(QString, tooltip);
    QFETCH(QString, icon);
    QFETCH(QString, shortcut);
    QFETCH(bool, isHidden);
    QFETCH(bool, isEnabled);
    MainWindow window;
    const auto *button = window.part<QPushButton>(QTest::currentDataTag());
    QCOMPARE(QString(button->metaObject()->className()), className);
    QCOMPARE(button->toolTip(), tooltip);
    QCOMPARE(button->icon().isNull(), icon.isEmpty());
    if (!icon.isEmpty())
        QCOMPARE(imageOf(button->icon()), imageOf(QIcon(":/pic/" + icon + ".png")));
    QCOMPARE(button->shortcut().toString(), shortcut);
    QCOMPARE(button->isHidden(), isHidden);
    QCOMPARE(button->isEnabled(), isEnabled);
}

void TestTavorin::iconButtonsAre32PixelsAndWithoutText()
{
    MainWindow window;
    int count = 0;
    for (const auto *button : window.part("widget")->findChildren<QPushButton *>(
             QString(), Qt::FindDirectChildrenOnly)) {
        QCOMPARE(button->maximumSize(), QSize(32, 32));
        QCOMPARE(button->iconSize(), QSize(32, 32));
        QCOMPARE(button->text(), QString());
        ++count;
    }
    QCOMPARE(count, 27);
}

void TestTavorin::comboBoxesOfferTheirEntries_data()
{
    QTest::addColumn<QString>("entries");
    QTest::addColumn<int>("current");
    QTest::addColumn<bool>("isHidden");
    QTest::newRow("zoom") << "10 25 33 50 67 75 100 150 200 300 400" << 6 << false;
    QTest::newRow("comboBox") << "适合窗口 适合宽度 适合高度 100%" << 0 << true;
    QTest::newRow("comboBox_2") << "pix um mm mil" << 0 << false;
    QTest::newRow("calibrateCombo") << "" << -1 << false;
}

void TestTavorin::comboBoxesOfferTheirEntries()
{
    QFETCH(QString, entries);
    QFETCH(int, current);
    QFETCH(bool, isHidden);
    MainWindow window;
    const auto *box = window.part<QComboBox>(QTest::currentDataTag());
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts += box->itemText(i);
    QCOMPARE(texts.join(' '), entries);
    QCOMPARE(box->currentIndex(), current);
    QCOMPARE(box->isHidden(), isHidden);
}

void TestTavorin::calibrationAndToolsShareOneExclusiveGroup()
{
    MainWindow window;
    const auto *group = window->findChild<QButtonGroup *>("buttonGroup");
    QVERIFY(group->exclusive());
    QCOMPARE(group->buttons().size(), 17);
    for (const QAbstractButton *button : group->buttons())
        QVERIFY(button->isCheckable());
    QCOMPARE(group->checkedButton()->objectName(), QString("hand"));
    QVERIFY(group->buttons().contains(window.part<QAbstractButton>("cali")));
    QVERIFY(!window.part<QAbstractButton>("cross")->group());
    QVERIFY(!window.part<QAbstractButton>("cross")->isCheckable());
}

void TestTavorin::sideColumnMatchesTheForm_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<bool>("isHidden");
    QTest::newRow("deviceManager") << "设备管理"
                                   << "device" << false;
    QTest::newRow("configManager") << "配置管理"
                                   << "config" << false;
    QTest::newRow("compose") << "景深合成"
                             << "fusion" << false;
    QTest::newRow("split") << "拼接"
                           << "compose" << true;
    QTest::newRow("motorManager") << "电机管理"
                                  << "motor" << true;
    QTest::newRow("comAndSplit") << "合成+拼接"
                                 << "comandfusion" << true;
}

void TestTavorin::sideColumnMatchesTheForm()
{
    QFETCH(QString, text);
    QFETCH(QString, icon);
    QFETCH(bool, isHidden);
    MainWindow window;
    window->show();
    const auto *button = window.part<PushButton>(QTest::currentDataTag());
    QCOMPARE(button->text(), text);
    QCOMPARE(imageOf(button->icon()), imageOf(QIcon(":/pic/" + icon + ".png")));
    QCOMPARE(button->iconSize(), QSize(30, 30));
    QCOMPARE(button->minimumHeight(), 60);
    QCOMPARE(button->isHidden(), isHidden);
    QVERIFY(button->isCheckable());
    QCOMPARE(button->group()->objectName(), QString("buttonGroup_2"));

    const auto *caption = button->findChild<QLabel *>();
    QVERIFY(isHidden || caption->fontMetrics().horizontalAdvance(text) <= caption->width());
}

void TestTavorin::sideStackHoldsThreePanelsAndStartsHidden()
{
    MainWindow window;
    const auto *stack = window.part<QStackedWidget>("stackedWidget");
    QCOMPARE(stack->count(), 3);
    QVERIFY(qobject_cast<DeviceWidget *>(stack->widget(0)));
    QVERIFY(qobject_cast<CameraSetWidget2 *>(stack->widget(1)));
    QVERIFY(qobject_cast<FusionWidget *>(stack->widget(2)));
    QCOMPARE(stack->widget(0)->objectName(), QString("page_1"));
    QCOMPARE(stack->widget(1)->objectName(), QString("page_2"));
    QCOMPARE(stack->widget(2)->objectName(), QString("page_4"));
    QCOMPARE(stack->currentIndex(), 0);
    QVERIFY(stack->isHidden());
}

void TestTavorin::sideStackKeepsItsMinimumAboveItsMaximum()
{
    MainWindow window;
    window.click("deviceManager");
    window->show();
    const auto *stack = window.part<QStackedWidget>("stackedWidget");
    QCOMPARE(stack->minimumWidth(), 210);
    QCOMPARE(stack->maximumWidth(), 200);
    // The minimum wins, and the layout knows it.
    QCOMPARE(stack->width(), 210);
    QVERIFY(stack->geometry().right() < window.part("widget_5")->geometry().left());
}

void TestTavorin::stripsAreSixPixelsWide()
{
    MainWindow window;
    window->show();
    QCOMPARE(window.part("widget_4")->maximumWidth(), 6);
    QCOMPARE(window.part("leftHide")->parentWidget(), window.part("widget_4"));
    QCOMPARE(window.part("widget_4")->width(), 6);
}

void TestTavorin::tabsAreClosableTrianglesAndNoneIsThere()
{
    MainWindow window;
    QVERIFY(window.tabs()->tabsClosable());
    QCOMPARE(window.tabs()->tabShape(), QTabWidget::Triangular);
    QCOMPARE(window.tabs()->count(), 0);
    QCOMPARE(window.tabs()->currentIndex(), -1);
}

void TestTavorin::menuHoldsTheLanguages()
{
    MainWindow window;
    const auto *menu = window->findChild<QMenu *>("menu");
    QCOMPARE(menu->title(), QString("菜单"));
    const QList<QAction *> actions = menu->actions();
    QCOMPARE(actions.size(), 4);
    QVERIFY(actions[0]->isSeparator());
    QVERIFY(actions[1]->isSeparator());
    QCOMPARE(actions[2]->objectName(), QString("actionchinese"));
    QCOMPARE(actions[2]->text(), QString("中文"));
    QCOMPARE(actions[3]->objectName(), QString("actionenglish"));
    QCOMPARE(actions[3]->text(), QString("English"));
    QVERIFY(actions[2]->isChecked());
    QVERIFY(actions[3]->isCheckable() && !actions[3]->isChecked());
    QVERIFY(actions[2]->actionGroup()->isExclusive());
    QCOMPARE(actions[2]->actionGroup(), actions[3]->actionGroup());
}

void TestTavorin::settingActionStandsInNoMenu()
{
    MainWindow window;
    const auto *action = window->findChild<QAction *>("actionsetting");
    QCOMPARE(action->text(), QString("设置"));
    QVERIFY(action->associatedWidgets().isEmpty());
}

void TestTavorin::formHasItsNameSizeAndTitle()
{
    MainWindow window;
    QCOMPARE(window->objectName(), QString("TavorinClass"));
    QCOMPARE(window->size(), QSize(1580, 834));
    QCOMPARE(window->windowTitle(), QString("Orvane相机    190715"));
    QVERIFY(!window->findChild<QStatusBar *>());
    QVERIFY(!window->findChild<QToolBar *>());
}

void TestTavorin::styleSheetsReferToResourcesThatExist()
{
    MainWindow window;
    const QRegularExpression url("url\\((:[^)]*)\\)");
    int count = 0;
    for (const char *name :
         {"widget", "widget_4", "widget_5", "tabWidget", "statusLabel1", "statusLabel2"}) {
        auto found = url.globalMatch(window.part(name)->styleSheet());
        for (; found.hasNext(); ++count) {
            const QString file = found.next().captured(1);
            QVERIFY2(QFile::exists(file), qPrintable(file));
        }
    }
    QCOMPARE(count, 5);
}

void TestTavorin::coloursAreThoseOfTheHouse_data()
{
    QTest::addColumn<QPoint>("place"); // negative: from the right and the bottom
    QTest::addColumn<QString>("colour");
    QTest::newRow("widget") << QPoint(2, 2) << "#f3f6fa";
    QTest::newRow("hand") << QPoint(3, 3) << "#c8c8d2"; // checked
    QTest::newRow("open") << QPoint(1, 1) << "#f3f6fa";
    QTest::newRow("zoom") << QPoint(4, 4) << "#e4e6e9";
    QTest::newRow("zoom") << QPoint(0, 8) << "#c7ced9";
    QTest::newRow("calibrateCombo") << QPoint(4, 4) << "#ffffff";
    QTest::newRow("calibrateCombo") << QPoint(0, 8) << "#c7ced9";
    QTest::newRow("widget_5") << QPoint(40, 0) << "#d3d3d3"; // light gray
    QTest::newRow("widget_5") << QPoint(40, -20) << "#f0f0f0";
    QTest::newRow("statusLabel1") << QPoint(-2, -2) << "#f3f6fa";
    QTest::newRow("statusLabel2") << QPoint(-2, -2) << "#f3f6fa";
    QTest::newRow("configManager") << QPoint(3, 3) << "#ffffff"; // checked
}

void TestTavorin::coloursAreThoseOfTheHouse()
{
    QFETCH(QPoint, place);
    QFETCH(QString, colour);
    MainWindow window;
    window.addPicture("page");
    window.part<QAbstractButton>("configManager")->setChecked(true);
    window->show();
    window->setFocus();
    const QImage image = window.part(QTest::currentDataTag())->grab().toImage();
    const QPoint pixel(place.x() < 0 ? image.width() + place.x() : place.x(),
                       place.y() < 0 ? image.height() + place.y() : place.y());
    QCOMPARE(image.pixelColor(pixel).name(), colour);
}

void TestTavorin::coloursUnderThePointer_data()
{
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<QString>("colour");
    QTest::newRow("open") << QPoint(1, 1) << "#dcdce6";
    QTest::newRow("line") << QPoint(1, 1) << "#dcdce6";
    QTest::newRow("zoom") << QPoint(0, 8) << "#5a96fa";
    QTest::newRow("comboBox_2") << QPoint(0, 8) << "#5a96fa";
    QTest::newRow("calibrateCombo") << QPoint(0, 8) << "#5a96fa";
}

void TestTavorin::coloursUnderThePointer()
{
    QFETCH(QPoint, place);
    MainWindow window;
    window.addPicture("page");
    window->show();
    window->setFocus();
    QWidget *part = window.part(QTest::currentDataTag());
    movePointerOver(part, QPoint(8, 8));
    QTEST(part->grab().toImage().pixelColor(place).name(), "colour");
}

void TestTavorin::tabsAreBlueWhenChosenAndWhiteElse()
{
    MainWindow window;
    window.addPicture("first");
    window.addPicture("second");
    window->show();
    window->setFocus();
    QTabBar *bar = window.tabs()->tabBar();
    const auto colour = [&](int tab) {
        return bar->grab().toImage().pixelColor(bar->tabRect(tab).center().x(), 3).name();
    };
    QCOMPARE(colour(0), QString("#ffffff"));
    QCOMPARE(colour(1), QString("#5a96fa"));
    window.tabs()->setCurrentIndex(0);
    QCOMPARE(colour(0), QString("#5a96fa"));
    QCOMPARE(colour(1), QString("#ffffff"));

    // The rule stands; the toolkit does not paint it on tabs of triangular shape.
    QVERIFY(
        window.tabs()->styleSheet().contains("QTabBar::tab:hover { background-color: #dcdce6; }"));

    // Ten pixels of padding on both sides of the text's line, which is #435165.
    QVERIFY(bar->tabRect(1).height() >= 20 + bar->fontMetrics().height());
    QVERIFY(window.tabs()->styleSheet().contains("color: #435165; padding: 10px;"));
}

void TestTavorin::thePaneIsLinedAndTiled()
{
    MainWindow window;
    window->show();
    const QImage pane = window.tabs()->grab().toImage();
    const int top = pane.height() / 2;
    QCOMPARE(pane.pixelColor(9, 0).name(), QString("#5a96fa"));
    QCOMPARE(pane.pixelColor(9, 1).name(), QString("#5a96fa"));
    QVERIFY(pane.pixelColor(9, 2).name() != QString("#5a96fa"));
    // The tile comes again after 64 pixels, and is not of one colour.
    const QImage tile = pane.copy(0, top, 64, 64);
    QCOMPARE(pane.copy(64, top, 64, 64), tile);
    QCOMPARE(pane.copy(0, top + 64, 64, 64), tile);
    QSet<QRgb> colours;
    for (int y = 0; y < 64; ++y)
        colours += tile.pixel(40, y);
    QVERIFY(colours.size() > 1);
}

void TestTavorin::theStripTellsWhichWayThePanelGoes()
{
    MainWindow window;
    window->show();
    const auto *strip = window.part<QPushButton>("leftHide");
    const auto picture = [&] {
        const auto state = strip->isChecked() ? QIcon::On : QIcon::Off;
        return strip->icon().pixmap(6, 16, QIcon::Normal, state).toImage();
    };
    QVERIFY(QImage(":/pic/left-arrow.png") != QImage(":/pic/right-arrow.png"));
    QCOMPARE(picture(), QIcon(":/pic/right-arrow.png").pixmap(6, 16).toImage());
    window.click("leftHide");
    QCOMPARE(picture(), QIcon(":/pic/left-arrow.png").pixmap(6, 16).toImage());
    window.click("leftHide");
    QCOMPARE(picture(), QIcon(":/pic/right-arrow.png").pixmap(6, 16).toImage());
    // A panel that opens by its own button turns it as well.
    window.click("deviceManager");
    QCOMPARE(picture(), QIcon(":/pic/left-arrow.png").pixmap(6, 16).toImage());
}

void TestTavorin::everyControlIsReachedByTab()
{
    MainWindow window;
    window.addPicture("page");
    window->show();
    QSet<QString> reached;
    const QWidget *start = window.part("open");
    for (const QWidget *widget = start->nextInFocusChain(); widget != start;
         widget = widget->nextInFocusChain())
        if (widget->focusPolicy() & Qt::TabFocus)
            reached += widget->objectName();
    for (const char *name : {"save",        "captureBtn",  "settingBtn",    "zoom",
                             "capture2Btn", "export_2",    "cali",          "calibrateCombo",
                             "comboBox_2",  "hand",        "line",          "hline",
                             "vline",       "par",         "ver",           "angle",
                             "rect",        "arc",         "circle",        "ring",
                             "poly",        "line_circle", "two_circle",    "text",
                             "cross",       "leftHide",    "deviceManager", "configManager",
                             "compose"})
        QVERIFY2(reached.contains(name), name);
}

// ---- Start

void TestTavorin::startsWithoutAPageAndWithoutACamera()
{
    MainWindow window;
    QCOMPARE(window.status(), QString("断开连接"));
    QCOMPARE(window.part<QLabel>("statusLabel2")->text(), QString("0x0"));
    QCOMPARE(window.part<SelectButton>("cali")->data().toInt(), 17);
    QVERIFY(!window.part<QCheckBox>("checkBox_3")->isEnabled()); // the camera panel's
}

void TestTavorin::newPagesGetWhatAllPagesShare()
{
    MainWindow window("[draw]\nLineWidth=3\nAntialiasing=true\n");
    window.addPicture("first");
    window.click("vline");
    window->calibrateChange(2.5);
    window.part<QComboBox>("comboBox_2")->setCurrentText("mm");
    ShowWidget *page = window.addPicture("second");
    QCOMPARE(sceneOf(page).drawType(), 3);
    auto *view = page->findChild<QGraphicsView *>();
    QVERIFY(view->renderHints() & QPainter::Antialiasing);
    // 100 pixels of 2.5 um are 0.25 mm.
    SceneMouse mouse(sceneOf(page));
    sceneOf(page).setDrawType(1);
    mouse.click({QPointF(10, 10), QPointF(110, 10)});
    QCOMPARE(rowsOf(page), QStringList("Line\nLen = 0.25mm"));
}

// ---- Enable rules

void TestTavorin::withoutAPageOnlyAFewControlsRespond()
{
    MainWindow window;
    for (const char *name : {"open", "settingBtn", "export_2", "deviceManager", "leftHide", "zoom",
                             "calibrateCombo", "comboBox_2"})
        QVERIFY2(window.part(name)->isEnabled(), name);
    for (const char *name : {"save", "captureBtn", "capture2Btn", "redo", "cali", "hand", "line",
                             "text", "cross", "configManager", "compose", "page_2", "page_4"})
        QVERIFY2(!window.part(name)->isEnabled(), name);
    QVERIFY(window.part("comboBox")->isHidden());
    QVERIFY(!window.part("zoom")->isHidden());
}

void TestTavorin::aPictureEnablesDrawingAndNoCamera()
{
    MainWindow window;
    window.addPicture("page");
    QCOMPARE(window.status(), QString("显示图片"));
    for (const char *name : {"cali", "hand", "line", "ver_circle", "text", "cross", "capture2Btn"})
        QVERIFY2(window.part(name)->isEnabled(), name);
    for (const char *name :
         {"save", "captureBtn", "redo", "configManager", "compose", "page_2", "page_4"})
        QVERIFY2(!window.part(name)->isEnabled(), name);
    QVERIFY(window.part("comboBox")->isHidden());
    QVERIFY(!window.part("zoom")->isHidden());
    QVERIFY(!window.part("save")->isHidden());
    QVERIFY(window.part("save_2")->isHidden());
}

void TestTavorin::aModifiedPictureCanBeSaved()
{
    MainWindow window;
    ShowWidget *page = window.addPicture("page");
    page->setModified(true);
    QVERIFY(window.part("save")->isEnabled());
    QVERIFY(window.part("redo")->isEnabled());
    QCOMPARE(window.tabText(), QString("page*"));
    window->refreshControls();
    QVERIFY(window.part("save")->isEnabled());
    QVERIFY(!window.part("redo")->isEnabled()); // it has no shape
}

void TestTavorin::aLivePageWithoutItsCameraAllowsNothing()
{
    MainWindow window;
    window.addDeadCamera();
    QCOMPARE(window.status(), QString("断开连接"));
    for (const char *name : {"save", "captureBtn", "capture2Btn", "cali", "hand", "text", "cross",
                             "configManager", "compose", "page_2", "page_4"})
        QVERIFY2(!window.part(name)->isEnabled(), name);
    QVERIFY(!window.part("zoom")->isHidden());
    QVERIFY(window.part("comboBox")->isHidden());
    QVERIFY(window.part("save")->isHidden());
    QVERIFY(!window.part("save_2")->isHidden());
}

// ---- Pages

void TestTavorin::goingToTheLivePagePutsTheToolBack()
{
    MainWindow window;
    ShowWidget *live = window.addDeadCamera();
    ShowWidget *picture = window.addPicture("page");
    window.click("hline");
    QCOMPARE(sceneOf(picture).drawType(), 2);
    QCOMPARE(sceneOf(live).drawType(), 2);

    QSignalSpy manual(window.get(), &Tavorin::setFocusManual);
    window.tabs()->setCurrentWidget(live);
    QCOMPARE(manual.count(), 1);
    QVERIFY(window.part<QAbstractButton>("hand")->isChecked());
    QCOMPARE(sceneOf(picture).drawType(), 0);
    QCOMPARE(sceneOf(live).drawType(), 0);
    QVERIFY(window.part("save")->isHidden());
    QVERIFY(!window.part("save_2")->isHidden());
}

void TestTavorin::goingToAPictureKeepsTheToolAndShowsItsZoom()
{
    MainWindow window;
    ShowWidget *first = window.addPicture("first");
    window.part<QComboBox>("zoom")->setCurrentText("33");
    QCOMPARE(first->zoomFactor(), 0.33);
    window.addPicture("second");
    QCOMPARE(window.part<QComboBox>("zoom")->currentText(), QString("100"));
    window.click("rect");

    QSignalSpy manual(window.get(), &Tavorin::setFocusManual);
    window.tabs()->setCurrentWidget(first);
    QCOMPARE(manual.count(), 0);
    QVERIFY(window.part<QAbstractButton>("rect")->isChecked());
    QCOMPARE(sceneOf(first).drawType(), 7);
    QCOMPARE(window.part<QComboBox>("zoom")->currentText(), QString("33"));
    QCOMPARE(window.page(1)->zoomFactor(), 1.0);
}

void TestTavorin::closingTheLastPageShowsSaveAgain()
{
    MainWindow window;
    window.addDeadCamera();
    QVERIFY(window.part("save")->isHidden());
    window.closeTab(0);
    QCOMPARE(window.tabs()->currentIndex(), -1);
    QVERIFY(!window.part("save")->isHidden());
    QVERIFY(window.part("save_2")->isHidden());
    QCOMPARE(window.status(), QString("断开连接"));
    QVERIFY(!window.part("hand")->isEnabled());
}

void TestTavorin::closingAnUnmodifiedPageAsksNothing()
{
    MainWindow window;
    ModalAnswers answers;
    const QPointer<ShowWidget> page = window.addPicture("page");
    window.closeTab(0);
    QVERIFY(answers.seen().isEmpty());
    QCOMPARE(window.tabs()->count(), 0);
    QTRY_VERIFY(!page);
}

void TestTavorin::closingAModifiedPageAsks_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("pagesLeft");
    QTest::newRow("yes") << int(QMessageBox::Yes) << 1;
    QTest::newRow("no") << int(QMessageBox::No) << 2;
}

void TestTavorin::closingAModifiedPageAsks()
{
    QFETCH(int, answer);
    QFETCH(int, pagesLeft);
    MainWindow window;
    ModalAnswers answers;
    window.addPicture("first")->setModified(true);
    window.addPicture("second");
    answers.press(QMessageBox::StandardButton(answer));
    window.closeTab(0);
    QCOMPARE(answers.seen(), QStringList(closePagePrompt));
    QVERIFY(answers.allAnswered());
    QCOMPARE(window.tabs()->count(), pagesLeft);
    QCOMPARE(window.tabs()->tabText(0), pagesLeft == 1 ? QString("second") : QString("first*"));
}

void TestTavorin::aPageThatVanishesDuringItsPromptDoesNoHarm()
{
    MainWindow window;
    ModalAnswers answers;
    const QPointer<ShowWidget> page = window.addPicture("page");
    page->setModified(true);
    answers.expect([&](QWidget *box) {
        delete page.data();
        qobject_cast<QMessageBox *>(box)->button(QMessageBox::Yes)->click();
    });
    window.closeTab(0);
    QVERIFY(answers.allAnswered());
    QCOMPARE(window.tabs()->count(), 0);
    window.closeTab(0);
    window.closeTab(-1);
}

void TestTavorin::closingTheLivePageStoresTheCrosshairAndGivesTheCameraUp()
{
    MainWindow window;
    ShowWidget *live = window.addDeadCamera();
    live->setCrossHorCount(2);
    window->crossStatusChanged(nullptr);
    window.closeTab(0);
    QCOMPARE(readCrosses().size(), 2);

    // The next start makes a fresh page.
    window.addDeadCamera();
    QCOMPARE(window.tabs()->count(), 1);
    QVERIFY(window.currentPage()->isLive());
}

void TestTavorin::closingTheLivePageWithAnUntouchedCrosshairStoresNothing()
{
    MainWindow window;
    window.addDeadCamera()->setCrossHorCount(2);
    window.closeTab(0);
    QVERIFY(!QFile::exists("corss.ini"));
}

void TestTavorin::aPageMayBeClosedFromItsOwnContextMenu()
{
    MainWindow window;
    window->show();
    ModalAnswers answers;
    const QPointer<ShowWidget> page = window.addPicture("page");
    auto *list = page->findChild<QListWidget *>();
    list->addItem("row");
    list->setCurrentRow(0);
    answers.expect([&](QWidget *menu) {
        window.closeTab(0);
        menu->close();
    });
    page->menuRequest(QPoint(1, 1));
    QCOMPARE(answers.seen(), QStringList("menu"));
    QCOMPARE(window.tabs()->count(), 0);
    QTRY_VERIFY(!page);
}

// ---- Quitting

void TestTavorin::quittingAsksOnceForTheFirstModifiedPage()
{
    for (const bool agreed : {true, false}) {
        MainWindow window;
        ModalAnswers answers;
        window.addPicture("clean");
        window.addPicture("first")->setModified(true);
        window.addPicture("second")->setModified(true);
        answers.press(agreed ? QMessageBox::Yes : QMessageBox::No);
        QCOMPARE(closeWindow(window), agreed);
        QCOMPARE(answers.seen(), QStringList(unsavedPrompt));
    }
}

void TestTavorin::quittingWithModifiedPagesDoesNotStoreTheCrosshair()
{
    MainWindow window;
    ModalAnswers answers;
    window.addDeadCamera()->setCrossHorCount(2);
    window.addPicture("page")->setModified(true);
    answers.expect([&](QWidget *box) {
        window->crossStatusChanged(nullptr);
        qobject_cast<QMessageBox *>(box)->button(QMessageBox::Yes)->click();
    });
    QVERIFY(closeWindow(window));
    QVERIFY(!QFile::exists("corss.ini"));
    // It is still waiting to be stored.
    window->onCrossChangedTimeOut();
    QCOMPARE(readCrosses().size(), 2);
}

void TestTavorin::aRefusedQuitStillStoresTheCrosshair()
{
    MainWindow window;
    ModalAnswers answers;
    window.addDeadCamera()->setCrossVerCount(3);
    answers.expect([&](QWidget *box) {
        window->crossStatusChanged(nullptr);
        qobject_cast<QMessageBox *>(box)->button(QMessageBox::No)->click();
    });
    QVERIFY(!closeWindow(window));
    QCOMPARE(answers.seen(), QStringList(quitPrompt));
    QCOMPARE(readCrosses().size(), 3);
    // Nothing is left to be stored.
    QVERIFY(QFile::remove("corss.ini"));
    window->onCrossChangedTimeOut();
    QVERIFY(!QFile::exists("corss.ini"));
}

void TestTavorin::quittingIsPossible()
{
    MainWindow window;
    ModalAnswers answers;
    answers.press(QMessageBox::Yes);
    QVERIFY(closeWindow(window));
    QCOMPARE(answers.seen(), QStringList(quitPrompt));
}

// ---- Panels

void TestTavorin::leftHideTogglesThePanelAndLaysThePagesOut()
{
    MainWindow window;
    window->show();
    ShowWidget *page = window.addPicture("page", QSize(4000, 3000));
    const auto *view = page->findChild<QGraphicsView *>();
    const int before = view->width();
    window.click("leftHide");
    QVERIFY(!window.part("stackedWidget")->isHidden());
    QTRY_COMPARE(view->width(), before - 210);
    window.click("leftHide");
    QVERIFY(window.part("stackedWidget")->isHidden());
    QTRY_COMPARE(view->width(), before);
}

void TestTavorin::panelButtonsShowTheirPanelAndNeverHideIt()
{
    MainWindow window;
    auto *stack = window.part<QStackedWidget>("stackedWidget");
    const struct
    {
        void (Tavorin::*open)();
        int index;
    } panels[] = {{&Tavorin::on_deviceManager_clicked, 0},
                  {&Tavorin::on_configManager_clicked, 1},
                  {&Tavorin::on_compose_clicked, 2}};
    for (const auto &panel : panels) {
        stack->hide();
        for (int click = 0; click < 2; ++click) {
            (window.get()->*panel.open)();
            QCOMPARE(stack->currentIndex(), panel.index);
            QVERIFY(!stack->isHidden());
        }
    }
}

void TestTavorin::buttonsWithoutAFunctionDoNothing()
{
    MainWindow window;
    auto *stack = window.part<QStackedWidget>("stackedWidget");
    for (const char *name : {"split", "motorManager", "comAndSplit", "freezeBtn"})
        window.click(name);
    window->on_zoom_currentIndexChanged(3);
    QCOMPARE(stack->currentIndex(), 0);
    QVERIFY(stack->isHidden());
    QCOMPARE(window.tabs()->count(), 0);
}

// ---- Events

void TestTavorin::middleButtonTogglesTheFocusMode()
{
    MainWindow window;
    window->show();
    const auto *automatic = window.part("page_2")->findChild<QCheckBox *>("checkBox");
    const auto *manual = window.part("page_2")->findChild<QCheckBox *>("checkBox_3");
    QTest::mouseClick(window.part("statusLabel1"), Qt::MiddleButton);
    QVERIFY(manual->isChecked());
    QTest::mouseClick(window.part("statusLabel1"), Qt::MiddleButton);
    QVERIFY(automatic->isChecked() && !manual->isChecked());
    QTest::mouseClick(window.part("statusLabel1"), Qt::RightButton);
    QVERIFY(automatic->isChecked());
    QTest::mouseClick(window.part("statusLabel1"), Qt::MiddleButton);
    QVERIFY(manual->isChecked() && !automatic->isChecked());
}

void TestTavorin::wheelWithoutAPageDoesNothing()
{
    MainWindow window;
    const QSlider *slider = manualFocusAt100(window);
    turnWheel(window.get(), 120);
    QCOMPARE(slider->value(), 100);
}

void TestTavorin::wheelOverAPictureLeavesTheFocusAlone()
{
    MainWindow window;
    window->show();
    window.addPicture("page");
    const QSlider *slider = manualFocusAt100(window);
    turnWheel(window.currentPage(), 120);
    QCOMPARE(slider->value(), 100);
    QCOMPARE(window.part<QComboBox>("zoom")->currentText(), QString("150"));
}

void TestTavorin::wheelOnTheLivePageStepsTheFocus()
{
    MainWindow window;
    window->show();
    ShowWidget *live = window.addDeadCamera();
    QSlider *slider = manualFocusAt100(window);
    // Without a device the focus reads -1.
    turnWheel(live->findChild<QGraphicsView *>()->viewport(), 120);
    QCOMPARE(slider->value(), 0);
    slider->setValue(100);
    turnWheel(live, -120);
    QCOMPARE(slider->value(), 0);
}

void TestTavorin::wheelStepsFromTheCamerasPosition()
{
    MainWindow window;
    window->show();
    simulatedMicroscope().setMotorSpeed(1e6);
    streamFromCamera(window, 4, QSize(640, 480));
    const QSlider *slider = manualFocusAt100(window);
    const auto focus = [] { return MyCamera::readCameraInfo().focus; };
    QTRY_COMPARE(focus(), 100);
    turnWheel(window.currentPage(), 120);
    QCOMPARE(slider->value(), 101);
    QTRY_COMPARE(focus(), 101);
    turnWheel(window.currentPage(), -120);
    QCOMPARE(slider->value(), 100);
}

void TestTavorin::wheelWithControlStepsTheLiveZoom()
{
    MainWindow window;
    window->show();
    ShowWidget *live = window.addDeadCamera();
    const QSlider *slider = manualFocusAt100(window);
    QCoreApplication::processEvents();
    const double fit = live->viewWidth();
    QTest::keyPress(window.get(), Qt::Key_Control);
    turnWheel(live, 120);
    // 0.03 of 1920 are 57.6 pixels, and both widths are cut.
    QVERIFY2(qAbs(live->viewWidth() - fit - 57.6) < 1,
             qPrintable(QString::number(live->viewWidth() - fit)));
    QTest::keyRelease(window.get(), Qt::Key_Control);
    QCOMPARE(slider->value(), 100);

    // Any other key leaves it alone.
    QTest::keyPress(window.get(), Qt::Key_Shift);
    turnWheel(live, 120);
    QCOMPARE(slider->value(), 0);
}

void TestTavorin::controlCountsAlsoWhenThePictureHasTheFocus()
{
    MainWindow window;
    window->show();
    ShowWidget *live = window.addDeadCamera();
    auto *view = live->findChild<QGraphicsView *>();
    QCoreApplication::processEvents();
    const double before = live->viewWidth();
    QTest::keyPress(view, Qt::Key_Control);
    turnWheel(view->viewport(), 120);
    QTest::keyRelease(view, Qt::Key_Control);
    QVERIFY(live->viewWidth() > before);
}

void TestTavorin::resolutionChangeFillsTheScreen()
{
    MainWindow window;
    window->show();
    window->resize(1200, 700);
    emit window->cameraThread()->resolutionChange("640*480");
    QCOMPARE(window.part<QLabel>("statusLabel2")->text(), QString("640*480"));
    const QSize screen = QGuiApplication::primaryScreen()->geometry().size();
    QCOMPARE(window->size(), screen.expandedTo(window->minimumSizeHint()));
}

void TestTavorin::firmwareVersionStandsBehindTheTitleOnce()
{
    MainWindow window;
    window->cameraFirmwareVersionShow(26);
    QCOMPARE(window->windowTitle(), QString("Orvane相机    190715    固件：2.15"));
    window->cameraFirmwareVersionShow(0);
    QCOMPARE(window->windowTitle(), QString("Orvane相机    190715    固件：1.89"));
}

void TestTavorin::pickingAFocusCellTurnsAutofocusOn()
{
    MainWindow window;
    const QWidget *panel = window.part("page_2");
    window->blinkArea(17, 4);
    QVERIFY(panel->findChild<QCheckBox *>("checkBox")->isChecked());
    QCOMPARE(panel->findChild<QSlider *>("horizontalSlider_2")->value(), 17);
    QCOMPARE(panel->findChild<QSlider *>("horizontalSlider_3")->value(), 4);
}

// ---- Camera

void TestTavorin::aStartedCameraGetsALivePage()
{
    MainWindow window;
    window.addPicture("page");
    ShowWidget *live = window.addDeadCamera();
    QVERIFY(live->isLive());
    QCOMPARE(window.tabs()->currentIndex(), 1);
    QCOMPARE(window.tabText(), QString("Orvane_gone"));
    QVERIFY(window->cameraThread()->isRunning());
}

void TestTavorin::aSecondStartReusesTheLivePage()
{
    MainWindow window;
    ShowWidget *live = window.addDeadCamera();
    window.addPicture("page");
    emit window.part<DeviceWidget>("page_1")->cameraWork(1, "Orvane_other", "elsewhere");
    QCOMPARE(window.tabs()->count(), 2);
    QCOMPARE(window.currentPage(), live);
    QCOMPARE(window.tabText(), QString("Orvane_other"));
}

void TestTavorin::givingTheCameraUpKeepsThePage()
{
    MainWindow window;
    ShowWidget *live = window.addDeadCamera();
    emit window.part<DeviceWidget>("page_1")->cameraClose();
    QCOMPARE(window.currentPage(), live);
    QTRY_VERIFY(!window->cameraThread()->isRunning());
}

void TestTavorin::connectingAndLosingTheCamera()
{
    MainWindow window;
    window->show();
    ModalAnswers answers;
    QStringList ready; // when the message comes
    answers.expect([&](QWidget *box) {
        for (const char *name : {"page_2", "page_4", "save_2"})
            if (window.part(name)->isEnabled())
                ready += name;
        static_cast<QMessageBox *>(box)->button(QMessageBox::Ok)->click();
    });
    writeCrosses({{2, 1, Qt::red, QPointF(0, 10), false, true}});
    QAbstractButton *clickFocus = window.part("page_2")->findChild<QCheckBox *>("checkBox_14");
    clickFocus->setChecked(true);

    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    emit window.part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_A", "a");
    QTRY_COMPARE(answers.seen(), QStringList("提醒|连接成功"));
    QTRY_COMPARE(window.status(), QString("连接成功"));
    QCOMPARE(ready, QStringList({"page_2", "page_4", "save_2"}));
    QCOMPARE(window.part<QLabel>("statusLabel2")->text(), QString("1920*1080"));
    QCOMPARE(window->windowTitle(), QString("Orvane相机    190715    固件：2.15"));
    for (const char *name : {"captureBtn", "configManager", "compose", "cali", "hand", "cross",
                             "capture2Btn", "page_2", "page_4", "save_2"})
        QVERIFY2(window.part(name)->isEnabled(), name);
    QVERIFY(window.part("zoom")->isHidden());
    QVERIFY(!window.part("comboBox")->isHidden());
    QVERIFY(!clickFocus->isChecked());
    QCOMPARE(sceneOf(window.currentPage()).crossHorCount(), 1);

    window.click("arc");
    sceneOf(window.currentPage()).setCrossHorCount(5);
    window->onCrossChangedTimeOut(); // else the next second would store the five
    writeCrosses({{2, 1, Qt::red, QPointF(0, 10), false, true}});
    answers.press(QMessageBox::Ok);
    QSignalSpy manual(window.get(), &Tavorin::setFocusManual);
    simulatedMicroscope().unplug("a");
    QTRY_COMPARE(answers.seen().size(), 2);
    QCOMPARE(answers.seen().last(), QString("提醒|断开连接"));
    QTRY_COMPARE(window.status(), QString("断开连接"));
    QCOMPARE(window.part<QLabel>("statusLabel2")->text(), QString("0x0"));
    QVERIFY(manual.count() >= 1);
    QVERIFY(window.part<QAbstractButton>("hand")->isChecked());
    QCOMPARE(sceneOf(window.currentPage()).drawType(), 0);
    for (const char *name :
         {"captureBtn", "configManager", "compose", "hand", "save_2", "page_2", "page_4"})
        QVERIFY2(!window.part(name)->isEnabled(), name);
    // The stored crosshair is back.
    QCOMPARE(sceneOf(window.currentPage()).crossHorCount(), 1);
    QVERIFY(answers.allAnswered());
}

void TestTavorin::closingTheLivePageStopsTheCamera()
{
    MainWindow window;
    window->show();
    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    // Through the panel, as an operator does it: the list comes with the next look at the devices.
    QTRY_VERIFY(window.part("page_1")->findChild<QRadioButton *>());
    window.part("page_1")->findChild<QRadioButton *>()->click();
    QTRY_COMPARE(window.status(), QString("连接成功"));
    window.part<QComboBox>("comboBox")->setCurrentIndex(3);

    answers.press(QMessageBox::Ok);
    window.closeTab(0);
    QCOMPARE(window.status(), QString("断开连接"));
    QTRY_VERIFY(!window->cameraThread()->isRunning());
    QTRY_COMPARE(answers.seen().size(), 2);
    QVERIFY(!window.part("page_1")->findChild<QRadioButton *>()->isChecked());

    // The next start creates a fresh page, which begins at the fit.
    answers.press(QMessageBox::Ok);
    window.part("page_1")->findChild<QRadioButton *>()->click();
    QTRY_COMPARE(window.status(), QString("连接成功"));
    QVERIFY(window.currentPage()->viewWidth() < 1920);
    QVERIFY(answers.allAnswered());
}

void TestTavorin::panelReachesTheCamera()
{
    MainWindow window;
    window->show();
    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    emit window.part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_A", "a");
    QTRY_COMPARE(window.status(), QString("连接成功"));

    const auto sent = [](int property, double value) {
        static std::vector<std::pair<int, double>> all;
        for (const auto &set : simulatedMicroscope().takeSets())
            all.push_back(set);
        return std::find(all.begin(), all.end(), std::make_pair(property, value)) != all.end();
    };
    window.click("configManager");
    auto *contrast = window.part("page_2")->findChild<QSlider *>("horizontalSlider_9");
    contrast->setValue(37);
    QTRY_VERIFY(sent(cv::CAP_PROP_CONTRAST, 37));

    // A slider of the sweep panel moves the camera panel's focus, and that the camera.
    window.click("compose");
    window.part("page_4")->findChild<QSlider *>("horizontalSlider")->setValue(123);
    QTRY_VERIFY(sent(cv::CAP_PROP_FOCUS, 123));
    QCOMPARE(window.part("page_2")->findChild<QSlider *>("horizontalSlider")->value(), 123);

    // A focus cell goes to the panel and to the camera.
    emit window.currentPage()->blinkArea(17, 15);
    QTRY_VERIFY(sent(cv::CAP_PROP_PAN, 4367));
    QCOMPARE(window.part("page_2")->findChild<QSlider *>("horizontalSlider_2")->value(), 17);

    answers.press(QMessageBox::Ok);
    window.part("page_2")->findChild<QPushButton *>("pushButton_14")->click();
    QCOMPARE(answers.seen().last(), QString("提醒|保存成功"));
}

void TestTavorin::clickFocusReachesTheScene()
{
    MainWindow window;
    window->show();
    ShowWidget *live = window.addDeadCamera();
    QCoreApplication::processEvents();
    QSignalSpy area(live, &ShowWidget::blinkArea);
    window.part("page_2")->findChild<QCheckBox *>("checkBox_14")->setChecked(true);
    SceneMouse(sceneOf(live)).press(QPointF(1, 1));
    QCOMPARE(area.size(), 1);
    QCOMPARE(area[0], QVariantList({1, 1}));
}

void TestTavorin::theWindowClosesWhileTheCameraStreams()
{
    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    MainWindow window;
    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    emit window.part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_A", "a");
    QTRY_VERIFY(!window->cameraThread()->currentPixmap().isNull());
}

void TestTavorin::theWindowClosesWhileTheCameraIsOpening()
{
    MainWindow window;
    window.addDeadCamera();
    QVERIFY(window->cameraThread()->isRunning());
}

// ---- Language

void TestTavorin::englishReachesTheFormAndEveryPage()
{
    MainWindow window;
    window.addDeadCamera();
    window.addPicture("page");
    window->findChild<QAction *>("actionenglish")->trigger();
    QCOMPARE(window.part("open")->toolTip(), QString("Open"));
    QCOMPARE(window.part("circle")->toolTip(), QString("Cricle"));
    QCOMPARE(window.part("redo")->toolTip(), QString("Redo"));
    QCOMPARE(window.part<PushButton>("deviceManager")->text(), QString("Device"));
    QCOMPARE(window.part<QComboBox>("comboBox")->itemText(0), QString("FitWindow"));
    QCOMPARE(window.part<QComboBox>("comboBox")->itemText(3), QString("100%"));
    QCOMPARE(window->findChild<QMenu *>("menu")->title(), QString("Menu"));
    QCOMPARE(window.page(0)->findChild<QLabel *>("label_2")->text(), QString("List"));
    QCOMPARE(window.page(1)->findChild<QLabel *>("label_2")->text(), QString("List"));
    // Opened in English.
    QCOMPARE(window.addPicture("new")->findChild<QLabel *>("label_2")->text(), QString("List"));

    window->findChild<QAction *>("actionchinese")->trigger();
    QCOMPARE(window.part("open")->toolTip(), QString("打开"));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(window.page(i)->findChild<QLabel *>("label_2")->text(), QString("列表"));
}

void TestTavorin::englishReachesThePanelsAtOnce()
{
    MainWindow window;
    window->on_actionenglish_triggered();
    const auto *focus = window.part("page_2")->findChild<QPushButton *>("pushButton");
    const auto *start = window.part("page_4")->findChild<QPushButton *>("pushButton");
    QCOMPARE(focus->text(), QString("Focus Mode"));
    QCOMPARE(start->text(), QString("Start"));
    window->on_actionchinese_triggered();
    QCOMPARE(focus->text(), QString("聚焦模式"));
    QCOMPARE(start->text(), QString("开始"));
}

void TestTavorin::anOfflineRowKeepsItsLanguage()
{
    MainWindow window;
    auto *panel = window.part<DeviceWidget>("page_1");
    panel->deviceChange({"Orvane_A"}, {"a"});
    panel->findChild<QRadioButton *>()->setChecked(true);
    panel->deviceChange({}, {});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(panel->findChild<QLabel *>("label")->text(), QString("离线"));
    panel->findChild<QRadioButton *>()->setText("offline");
    window->on_actionenglish_triggered();
    QCOMPARE(panel->findChild<QLabel *>("label")->text(), QString("离线"));
    QCOMPARE(panel->findChild<QRadioButton *>()->text(), QString());
    // Until the list is rebuilt.
    panel->deviceChange({}, {});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(panel->findChild<QLabel *>("label")->text(), QString("OffLine"));
    window->on_actionchinese_triggered();
}

void TestTavorin::aCameraWithoutAccessIsMarkedUntilTheRightComes()
{
    MainWindow window;
    auto *panel = window.part<DeviceWidget>("page_1");
    const auto toolTip = [panel] {
        const auto *row = panel->findChild<DeviceInfoWidget *>();
        return row ? row->findChild<QLabel *>("label_2")->toolTip() : QString();
    };
    simulatedMicroscope().attach({{"Orvane_A", "a", "/dev/video0: Permission denied"}});
    QTRY_COMPARE(toolTip(), QString("Orvane_A\n/dev/video0: Permission denied"));
    simulatedMicroscope().attach({{"Orvane_A", "a"}});
    QTRY_COMPARE(toolTip(), QString("Orvane_A"));
}

void TestTavorin::ownTextsStayChineseInEnglish()
{
    MainWindow window;
    ModalAnswers answers;
    window->on_actionenglish_triggered();
    QCOMPARE(window.status(), QString("断开连接"));
    QCOMPARE(window.menu()->actions()[0]->text(), QString("删除"));
    QCOMPARE(window.menu()->actions()[1]->text(), QString("删除所有"));
    window.addPicture("page");
    QCOMPARE(window.status(), QString("显示图片"));
    answers.press(QMessageBox::Ok);
    window->showSuccess();
    answers.press(QMessageBox::No);
    closeWindow(window);
    answers.press(QMessageBox::Ok);
    window.click("export_2");
    answers.press(QMessageBox::Ok);
    window->cameraStatusChange(false);
    QCOMPARE(answers.seen(),
             QStringList({"提醒|保存成功", quitPrompt, "提醒|当前没有图元", "提醒|断开连接"}));
    window->on_actionchinese_triggered();
}

void TestTavorin::fixedEntriesAndTitlesStay()
{
    MainWindow window;
    window.addPicture("a.jpg");
    window->cameraFirmwareVersionShow(26);
    emit window->cameraThread()->resolutionChange("640*480");
    window.part<QComboBox>("comboBox")->setCurrentIndex(2);
    for (const bool english : {true, false}) {
        english ? window->on_actionenglish_triggered() : window->on_actionchinese_triggered();
        QCOMPARE(window->windowTitle(), QString("Orvane相机    190715    固件：2.15"));
        QCOMPARE(window.tabText(), QString("a.jpg"));
        QCOMPARE(window.part<QLabel>("statusLabel2")->text(), QString("640*480"));
        QCOMPARE(window.part<QComboBox>("comboBox_2")->itemText(0), QString("pix"));
        QCOMPARE(window.part<QComboBox>("zoom")->itemText(6), QString("100"));
        QCOMPARE(window.part<QComboBox>("comboBox")->currentIndex(), 2);
        QCOMPARE(window->findChild<QAction *>("actionchinese")->text(), QString("中文"));
        const QList<QAction *> entries =
            window.part<SelectButton>("cali")->findChildren<QAction *>();
        QStringList texts;
        for (const QAction *action : entries)
            texts += action->text();
        QVERIFY(texts.contains("line") && texts.contains("circle"));
    }
}

void TestTavorin::chineseTwiceChangesNothing()
{
    MainWindow window;
    window->findChild<QAction *>("actionchinese")->trigger();
    window->findChild<QAction *>("actionchinese")->trigger();
    QCOMPARE(window.part("open")->toolTip(), QString("打开"));
    QVERIFY(window->findChild<QAction *>("actionchinese")->isChecked());
}

void TestTavorin::languageIsNotStored()
{
    MainWindow window;
    window->on_actionenglish_triggered();
    QVERIFY(QDir(".").entryList(QDir::Files).isEmpty());
    window->on_actionchinese_triggered();
}

// ---- Process

void TestTavorin::missingFontIsToldAtStart()
{
    if (onWindows())
        QSKIP("Windows brings its fonts.");
    WorkingDirectory directory;
    directory.write("fonts.conf", "<?xml version=\"1.0\"?><fontconfig/>\n");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("FONTCONFIG_FILE", directory.path("fonts.conf"));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(DEMO_PROGRAM, QStringList());
    QByteArray errors;
    QTRY_VERIFY_WITH_TIMEOUT(
        (errors += program.readAllStandardError(), errors.contains("fonts-noto-cjk")), 20000);
    QCOMPARE(errors.count("fonts-noto-cjk"), 1);
    program.kill();
    program.waitForFinished();
}

QTEST_MAIN(TestTavorin)
#include "test_tavorin.moc"
