// An operator's hour at the microscope: the real window, driven by mouse, keyboard and dialogs,
// with the simulated camera plugged in and out.

#include "measure/base.h"
#include "tests/support/eventually.h"
#include "tests/support/mainwindow.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"
#include "tests/support/panel.h"
#include "tests/support/setrecord.h"
#include "tests/support/viewmouse.h"
#include "workbench/videowidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGraphicsRectItem>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSignalSpy>
#include <QSlider>
#include <QTabBar>
#include <QtTest>

namespace {

const SimulatedCapture::Device microscope = {"Orvane_A", "usb-1"};

constexpr char configuration[] = "[draw]\nPointWidth=1\nPointColor=#ff0000\nLineWidth=3\n"
                                 "LineColor=#ff0000\nTextSize=13\nTextColor=#ff0000\n"
                                 "QuickSavePath=quick\n";

const QSize frameSize(1920, 1080);
// Drawn at a fit of one half: twice as long in the frame.
const QStringList shapes = {"Line\nLen = 600px",
                            "Rect\nWid = 400px\nHei = 300px\nCLen = 1400px\nArea = 120000px"};

bool isReddish(QColor colour)
{
    return colour.red() > 180 && colour.green() < 110 && colour.blue() < 110;
}

/// Whether a frame carries the two shapes, at their places in frame pixels.
bool carriesTheShapes(const QImage &frame)
{
    return isReddish(frame.pixelColor(350, 400)) && isReddish(frame.pixelColor(1000, 350)) &&
           isReddish(frame.pixelColor(1200, 500)) && !isReddish(frame.pixelColor(350, 300)) &&
           !isReddish(frame.pixelColor(1200, 430));
}

/// The picture of a picture page.
QImage pictureOf(const ShowWidget *page)
{
    return sceneOf(page).backgroundBrush().texture().toImage();
}

} // namespace

/// Each step begins where the one before has left the window.
class TestGuiLive : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void aClickOnItsRowStartsTheCamera();
    void aClickOnTheLivePictureFocusesThere();
    void shapesAreReadInFramePixelsAtAFitBelowOne();
    void everyControlOfThePanelReachesTheCamera_data();
    void everyControlOfThePanelReachesTheCamera();
    void saveAndMotorButtonsReachTheCamera();
    void theWheelOverTheLivePictureMovesTheFocus();
    void resolutionChangesInTheMiddleOfTheStream();
    void quickSaveStoresADatedFrameWithTheShapes();
    void aFrameIsSavedThroughTheDialog();
    void aSnapshotOpensANewTab();
    void theSnapshotIsMeasuredAndSaved();
    void savedFilesComeBackWithTheirShapesInThePixels_data();
    void savedFilesComeBackWithTheirShapesInThePixels();
    void anUnpluggedCameraGoesOffline();
    void aReplugResumesTheStreamByItself();
    void closingTheLiveTabGivesTheCameraUp();
    void theWindowCloses();

private:
    void click(QWidget *widget) const;
    void click(const char *part) const { click(window->part(part)); }
    void clickInPanel(const QByteArray &name) const { click(panel()->findChild<QWidget *>(name)); }
    void openGroup(const QByteArray &header, const QByteArray &group) const;
    void chooseTab(int index) const;
    void fitToOneHalf() const;
    bool nextFrames() const;
    void checkFile(const QString &path) const;
    QStringList told();

    QWidget *panel() const { return window->part("page_2"); }
    QWidget *devices() const { return window->part("page_1"); }
    ShowWidget *live() const { return window->page(0); }

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<ModalAnswers> answers;
    SetRecord sets;
    int marks = 0;
    bool isBroken = false;
    QString quickFile;
};

void TestGuiLive::initTestCase()
{
    static MessageWatch watch;
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication::setDoubleClickInterval(0);
    window = std::make_unique<MainWindow>(configuration);
    answers = std::make_unique<ModalAnswers>();
    QVERIFY(QDir(".").mkdir("quick"));
    (*window)->show();

    SimulatedCapture &camera = simulatedMicroscope();
    camera.setNoise(false);
    camera.setMotorSpeed(1e9);
    camera.attach({microscope});
}

void TestGuiLive::init()
{
    if (isBroken)
        QSKIP("A step before has failed.");
}

void TestGuiLive::cleanup()
{
    isBroken = isBroken || QTest::currentTestFailed();
    QVERIFY2(answers->allAnswered(), qPrintable(answers->seen().join('\n')));
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
}

void TestGuiLive::cleanupTestCase()
{
    window.reset();
    answers.reset();
}

// ---- The operator's hand

void TestGuiLive::click(QWidget *widget) const
{
    QVERIFY(widget);
    QTRY_VERIFY2(widget->isVisible() && widget->isEnabled(), qPrintable(widget->objectName()));
    // On the box of a check box, not on the empty room behind its text.
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier,
                      QPoint(qMin(8, widget->width() / 2), widget->height() / 2));
}

/// Opens a group of the panel, if need be, and brings it into sight.
void TestGuiLive::openGroup(const QByteArray &header, const QByteArray &group) const
{
    auto *content = panel()->findChild<QWidget *>(group);
    if (content->isHidden())
        clickInPanel(header);
    QVERIFY(content->isVisible());
    QCoreApplication::processEvents();
    panel()->findChild<QScrollArea *>()->ensureWidgetVisible(content);
}

void TestGuiLive::chooseTab(int index) const
{
    QTabBar *bar = window->tabs()->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(index).center());
    QCOMPARE(window->tabs()->currentIndex(), index);
}

/// Gives the window a size in which 960 x 540 remain for the live picture.
void TestGuiLive::fitToOneHalf() const
{
    const auto *area = live()->findChild<QWidget *>("widget");
    QVERIFY(eventually([&] {
        if (area->size() != QSize(960, 540))
            (*window)->resize((*window)->size() + QSize(960, 540) - area->size());
        return live()->viewWidth() == 960;
    }));
    QCOMPARE(live()->viewHeight(), 540.0);
}

bool TestGuiLive::nextFrames() const
{
    QSignalSpy frames((*window)->cameraThread(), &MyCamera::putpix);
    return eventually([&] { return frames.count() > 1; });
}

/// A stored frame: complete, of the frame's size, with the shapes in its pixels.
void TestGuiLive::checkFile(const QString &path) const
{
    QVERIFY(eventually([&] { return QImage(path).size() == frameSize; }));
    QVERIFY(carriesTheShapes(QImage(path)));
    QCOMPARE(rowsOf(live()), shapes);
}

/// All that the camera was told since the last call, in order. Two marks, in a parameter that
/// nobody sends, tell that nothing is on its way any more.
QStringList TestGuiLive::told()
{
    for (int i = 0; i < 2; ++i) {
        (*window)->cameraThread()->setCameraInfo(CameraParameter::WhiteBalanceV, ++marks);
        if (!eventually([this] { return sets.has(QString("26=%1").arg(marks)); }))
            return {"no mark"};
    }
    const QStringList all = sets.all();
    sets.clear();
    QStringList others;
    std::copy_if(all.begin(), all.end(), std::back_inserter(others),
                 [](const QString &set) { return !set.startsWith("26="); });
    return others;
}

// ---- The story

void TestGuiLive::aClickOnItsRowStartsTheCamera()
{
    click("deviceManager");
    QVERIFY(eventually([this] { return devices()->findChild<QRadioButton *>(); }));
    QCOMPARE(textOf(*devices(), "label"), QString("1"));
    QCOMPARE(textOf(*devices(), "label_2"), QString("Orvane_A"));
    QVERIFY(!window->part("configManager")->isEnabled());

    answers->press(QMessageBox::Ok);
    click(devices()->findChild<QRadioButton *>());
    QVERIFY(eventually([this] { return window->status() == "连接成功"; }));
    QCOMPARE(answers->seen(), QStringList("提醒|连接成功"));
    QCOMPARE(window->tabText(), QString("Orvane_A"));
    QCOMPARE((*window)->windowTitle(), QString("Orvane相机    190715    固件：2.15"));
    QCOMPARE(textOf(*window->get(), "statusLabel2"), QString("1920*1080"));
    QVERIFY(live()->isLive());
    QVERIFY(nextFrames());
    QVERIFY(!live()->findChild<VideoWidget *>()->content()->scaledFrame().isNull());
}

void TestGuiLive::aClickOnTheLivePictureFocusesThere()
{
    click("configManager");
    fitToOneHalf();
    openGroup("pushButton_2", "widget_2");
    clickInPanel("checkBox_4");  // shows the area
    clickInPanel("checkBox_14"); // a click picks it
    told();                      // what the loaded panel has sent back

    ViewMouse(live()).click({100, 100});               // 100 / 960 * 17 = 1.8, 100 / 540 * 15 = 2.8
    QCOMPARE(told(), QStringList({"39=1", "33=515"})); // 2 * 256 + 3
    QCOMPARE(textOf(*panel(), "label_5"), QString("2"));
    QCOMPARE(textOf(*panel(), "label_7"), QString("3"));
    QVERIFY(control<QCheckBox>(*panel(), "checkBox").isChecked());
    QCOMPARE(rowsOf(live()), QStringList());

    const auto area = [this] {
        for (const QGraphicsItem *item : sceneOf(live()).QGraphicsScene::items())
            if (const auto *rect = qgraphicsitem_cast<const QGraphicsRectItem *>(item))
                return rect->rect();
        return QRectF();
    };
    // 960 / 17 + 0.5 by 540 / 15 + 0.5 around the click
    QCOMPARE(area().height(), 36.5);
    QCOMPARE(area().top(), 81.75);
    QVERIFY(qAbs(area().width() - 56.9706) < 1e-4);
    QVERIFY(qAbs(area().left() - 71.5147) < 1e-4);
    // 960 / 5 + 0.5 by 540 / 5 + 0.5
    QTest::keyClick(&control<QComboBox>(*panel(), "comboBox"), Qt::Key_Down);
    QCOMPARE(area(), QRectF(3.75, 45.75, 192.5, 108.5));
    QCOMPARE(told(), QStringList("32=44"));
    clickInPanel("pushButton_9"); // puts the group back
    QCOMPARE(area(), QRectF());
    QVERIFY(!control<QCheckBox>(*panel(), "checkBox_14").isChecked());
    QCOMPARE(told(), QStringList("32=12"));
}

void TestGuiLive::shapesAreReadInFramePixelsAtAFitBelowOne()
{
    const ViewMouse mouse(live());
    click("line");
    // A measurement never runs under autofocus.
    QVERIFY(control<QCheckBox>(*panel(), "checkBox_3").isChecked());
    QCOMPARE(told().first(), QString("39=0"));
    mouse.click({100, 200});
    mouse.click({400, 200});
    click("rect");
    mouse.click({500, 100});
    // A rectangle measures itself when it is painted.
    mouse.move({700, 250});
    QVERIFY(nextFrames());
    mouse.click({700, 250});
    eventually([this] { return rowsOf(live()) == shapes; });
    QCOMPARE(rowsOf(live()), shapes);
    click("hand");

    // They lie over the moving picture.
    const auto *view = live()->findChild<QGraphicsView *>();
    QVERIFY(nextFrames());
    const QImage shown =
        (*window)->grab(QRect(view->mapTo(window->get(), QPoint()), QSize(960, 540))).toImage();
    QVERIFY(isReddish(shown.pixelColor(175, 200)));
    QVERIFY(isReddish(shown.pixelColor(500, 175)));
    QVERIFY(!isReddish(shown.pixelColor(175, 150)));
}

void TestGuiLive::everyControlOfThePanelReachesTheCamera_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArray>("group");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("key"); // or 0 for a click
    QTest::addColumn<QStringList>("sent");
    const auto row = [](const char *title, const char *header, const char *group, const char *name,
                        int key, const QStringList &sent) {
        QTest::newRow(title) << QByteArray(header) << QByteArray(group) << QByteArray(name) << key
                             << sent;
    };
    constexpr int none = 0;
    constexpr int end = Qt::Key_End;
    row("focus", "pushButton", "widget", "horizontalSlider", end, {"39=0", "28=400"});
    row("autofocus", "pushButton", "widget", "checkBox", none, {"39=1"});
    // The hand takes the position over that the camera has found, which is tested elsewhere.
    row("brightness", "pushButton_3", "widget_3", "horizontalSlider_4", end, {"10=100"});
    row("exposure by hand", "pushButton_3", "widget_3", "checkBox_6", none, {"32=4"});
    row("gain", "pushButton_3", "widget_3", "horizontalSlider_5", end, {"14=50"});
    row("shutter, less 14", "pushButton_3", "widget_3", "horizontalSlider_14", end, {"15=3"});
    row("white balance by hand", "pushButton_4", "widget_4", "checkBox_8", none, {"32=0"});
    row("red", "pushButton_4", "widget_4", "horizontalSlider_6", end, {"22=4096"});
    row("green", "pushButton_4", "widget_4", "horizontalSlider_7", end, {"35=4096"});
    row("blue, tenfold", "pushButton_4", "widget_4", "horizontalSlider_8", end, {"36=40960"});
    row("mirrored", "pushButton_5", "widget_5", "checkBox_9", none, {"32=2"});
    row("upside down too", "pushButton_5", "widget_5", "checkBox_10", none, {"32=3"});
    row("chroma", "pushButton_6", "widget_6", "horizontalSlider_12", end, {"13=99"});
    row("saturation", "pushButton_6", "widget_6", "horizontalSlider_13", end, {"12=99"});
    row("contrast", "pushButton_6", "widget_6", "horizontalSlider_9", end, {"11=100"});
    row("sharpness", "pushButton_6", "widget_6", "horizontalSlider_10", end, {"20=15"});
    row("zoom", "pushButton_6", "widget_6", "horizontalSlider_15", end, {"27=130"});
    row("zoom back", "pushButton_6", "widget_6", "horizontalSlider_15", Qt::Key_Home, {"27=1"});
    row("black and white", "pushButton_6", "widget_6", "checkBox_12", none, {"12=0"});
    row("in colour again", "pushButton_6", "widget_6", "checkBox_12", none, {"12=50"});
    row("white balance by itself", "pushButton_4", "widget_4", "checkBox_7", none, {"32=7"});
    row("exposure by itself", "pushButton_3", "widget_3", "checkBox_5", none, {"32=15"});
}

void TestGuiLive::everyControlOfThePanelReachesTheCamera()
{
    QFETCH(QByteArray, header);
    QFETCH(QByteArray, group);
    QFETCH(QByteArray, name);
    QFETCH(int, key);
    QFETCH(QStringList, sent);
    openGroup(header, group);
    if (key)
        QTest::keyClick(&control<QWidget>(*panel(), name), Qt::Key(key));
    else
        clickInPanel(name);
    QCOMPARE(told(), sent);
}

void TestGuiLive::saveAndMotorButtonsReachTheCamera()
{
    openGroup("pushButton_6", "widget_6");
    clickInPanel("pushButton_12");
    // The hand first: the camera was focusing by itself.
    const QStringList centred = told();
    QCOMPARE(centred.first(), QString("39=0"));
    QVERIFY(centred.contains("28=200"));
    QCOMPARE(simulatedMicroscope().focusPosition(), 200.0);

    answers->press(QMessageBox::Ok);
    clickInPanel("pushButton_14");
    QCOMPARE(answers->seen().last(), QString("提醒|保存成功"));
    QCOMPARE(told(), QStringList("20=20"));
    QCOMPARE(MyCamera::readCameraInfo().sharpness, 15);
}

void TestGuiLive::theWheelOverTheLivePictureMovesTheFocus()
{
    QWidget *viewport = live()->findChild<QGraphicsView *>()->viewport();
    const QPoint centre = viewport->rect().center();
    for (const int delta : {120, -120}) {
        QWheelEvent turn(centre, viewport->mapToGlobal(centre), {}, QPoint(0, delta), Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&turn);
        qApp->notify(viewport, &turn);
        QCOMPARE(told(), QStringList({"39=0", delta > 0 ? "28=201" : "28=200"}));
    }
}

void TestGuiLive::resolutionChangesInTheMiddleOfTheStream()
{
    QSignalSpy status((*window)->cameraThread(), &MyCamera::cameraStatusChange);
    auto &resolution = control<QComboBox>(*panel(), "comboBox_2");
    for (int step = 0; step < 3; ++step)
        QTest::keyClick(&resolution, Qt::Key_Down);
    QStringList sizes = told();
    QCOMPARE(sizes.mid(sizes.size() - 2), QStringList({"3=1280", "4=720"}));
    const auto shows = [this](QSize size) {
        return eventually(
            [&] { return (*window)->cameraThread()->currentPixmap().size() == size; });
    };
    QVERIFY(shows({1280, 720}));
    QTRY_COMPARE(textOf(*window->get(), "statusLabel2"), QString("1280*720"));
    for (int step = 0; step < 3; ++step)
        QTest::keyClick(&resolution, Qt::Key_Up);
    QVERIFY(shows(frameSize));
    QTRY_COMPARE(textOf(*window->get(), "statusLabel2"), QString("1920*1080"));
    QCOMPARE(status.count(), 0);
    sizes = told();
    QCOMPARE(sizes.mid(sizes.size() - 2), QStringList({"3=1920", "4=1080"}));
    fitToOneHalf();
    QCOMPARE(rowsOf(live()), shapes);
}

void TestGuiLive::quickSaveStoresADatedFrameWithTheShapes()
{
    click("captureBtn");
    QVERIFY(!(*window)->isEnabled());
    QTRY_VERIFY((*window)->isEnabled());
    QTRY_COMPARE(QDir("quick").entryList(QDir::Files).size(), 1);
    const QString name = QDir("quick").entryList(QDir::Files).first();
    QVERIFY2(QRegularExpression("^20\\d{6}_\\d{6}_\\d{3}\\.jpg$").match(name).hasMatch(),
             qPrintable(name));
    quickFile = window->directory.path("quick/" + name);
    checkFile(quickFile);
}

void TestGuiLive::aFrameIsSavedThroughTheDialog()
{
    answers->chooseFile(window->directory.path("live"));
    click("save_2");
    QCOMPARE(answers->seen().last(), QString("保存"));
    checkFile(window->directory.path("live.jpg"));
}

void TestGuiLive::aSnapshotOpensANewTab()
{
    click("capture2Btn");
    QVERIFY(eventually([this] { return window->tabs()->count() == 2; }));
    QCOMPARE(window->tabs()->currentIndex(), 1);
    QCOMPARE(window->tabText(), QString("Tab0*"));
    const ShowWidget *page = window->currentPage();
    QVERIFY(!page->isLive() && page->isModified());
    QCOMPARE(rowsOf(page), QStringList());
    QCOMPARE(pictureOf(page).size(), frameSize);
    QVERIFY(!isReddish(pictureOf(page).pixelColor(350, 400)));
    QCOMPARE(window->status(), QString("显示图片"));
    QCOMPARE(rowsOf(live()), shapes);
}

void TestGuiLive::theSnapshotIsMeasuredAndSaved()
{
    ShowWidget *page = window->currentPage();
    window->part<QComboBox>("zoom")->setCurrentText("50");
    QCoreApplication::processEvents();
    const ViewMouse mouse(page);
    click("line");
    mouse.click({200, 400});
    mouse.click({800, 400});
    click("rect");
    mouse.click({1000, 200});
    mouse.move({1400, 500});
    page->grab();
    mouse.click({1400, 500});
    QCOMPARE(rowsOf(page), shapes);
    answers->chooseFile(window->directory.path("snapshot.jpg"));
    click("save");
    QCOMPARE(window->tabText(), QString("snapshot.jpg"));
    QCOMPARE(rowsOf(page), QStringList());
}

void TestGuiLive::savedFilesComeBackWithTheirShapesInThePixels_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("quick save") << quickFile;
    QTest::newRow("live save") << window->directory.path("live.jpg");
    QTest::newRow("snapshot") << window->directory.path("snapshot.jpg");
}

void TestGuiLive::savedFilesComeBackWithTheirShapesInThePixels()
{
    QFETCH(QString, path);
    const int pages = window->tabs()->count();
    answers->chooseFile(path);
    click("open");
    QCOMPARE(window->tabs()->count(), pages + 1);
    QCOMPARE(window->tabText(), QFileInfo(path).fileName());
    const ShowWidget *page = window->currentPage();
    QCOMPARE(rowsOf(page), QStringList());
    QCOMPARE(pictureOf(page).size(), frameSize);
    QVERIFY(carriesTheShapes(pictureOf(page)));
}

void TestGuiLive::anUnpluggedCameraGoesOffline()
{
    click("deviceManager");
    chooseTab(0);
    answers->press(QMessageBox::Ok);
    simulatedMicroscope().unplug("usb-1");
    QVERIFY(eventually([this] { return window->status() == "断开连接"; }));
    QCOMPARE(answers->seen().last(), QString("提醒|断开连接"));
    QCOMPARE(textOf(*window->get(), "statusLabel2"), QString("0x0"));
    QVERIFY(eventually([this] { return textOf(*devices(), "label") == "离线"; }));
    QVERIFY(devices()->findChild<QRadioButton *>()->isChecked());
    for (const char *name : {"captureBtn", "capture2Btn", "configManager", "line", "save_2"})
        QVERIFY2(!window->part(name)->isEnabled(), name);
    QCOMPARE(rowsOf(live()), shapes);
}

void TestGuiLive::aReplugResumesTheStreamByItself()
{
    answers->press(QMessageBox::Ok);
    simulatedMicroscope().plugIn(microscope);
    QVERIFY(eventually([this] { return window->status() == "连接成功"; }));
    QVERIFY(eventually([this] { return textOf(*devices(), "label") == "1"; }));
    QVERIFY(devices()->findChild<QRadioButton *>()->isChecked());
    QCOMPARE(textOf(*window->get(), "statusLabel2"), QString("1920*1080"));
    QVERIFY(nextFrames());
    QCOMPARE(window->tabs()->count(), 5);
    QCOMPARE(window->tabs()->tabText(0), QString("Orvane_A"));
    fitToOneHalf();
    QCOMPARE(rowsOf(live()), shapes);
    QVERIFY(window->part("captureBtn")->isEnabled());
}

void TestGuiLive::closingTheLiveTabGivesTheCameraUp()
{
    answers->press(QMessageBox::Yes); // the shapes are not saved
    answers->press(QMessageBox::Ok);
    click(window->tabs()->tabBar()->tabButton(0, QTabBar::RightSide));
    QVERIFY(eventually([this] { return answers->allAnswered(); }));
    QCOMPARE(answers->seen().mid(answers->seen().size() - 2),
             QStringList({"提醒|修改尚未保存，确定要退出吗？", "提醒|断开连接"}));
    QVERIFY(eventually([this] { return !(*window)->cameraThread()->isRunning(); }));
    QCOMPARE(window->tabs()->count(), 4);
    QVERIFY(!devices()->findChild<QRadioButton *>()->isChecked());
    QCOMPARE(textOf(*window->get(), "statusLabel2"), QString("0x0"));
    QVERIFY(!simulatedMicroscope().isOpened());
}

void TestGuiLive::theWindowCloses()
{
    answers->press(QMessageBox::Yes);
    QVERIFY((*window)->close());
    QCOMPARE(answers->seen().last(), QString("提醒|是否确定要退出?"));
    QVERIFY(!(*window)->isVisible());
    window->leave();
}

QTEST_MAIN(TestGuiLive)
#include "test_gui_live.moc"
