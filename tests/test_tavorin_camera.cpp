// The real window with cameras that follow a script: it can be left in every state of the camera,
// and no camera, however odd, does it harm.

#include "tests/support/eventually.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"
#include "tests/support/panel.h"
#include "tests/support/scriptedcapture.h"
#include "tests/support/tavorinwindow.h"
#include "workbench/videowidget.h"

#include <QComboBox>
#include <QRadioButton>
#include <QSemaphore>
#include <QSlider>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>

namespace {

const ScriptedDevice microscope = {"Orvane_A", "usb-1"};
const ScriptedDevice other = {"Orvane_B", "usb-2"};

/// Looks whether something ends within a time. If it does not, the camera is let go, so that the
/// test can fail rather than hang.
class Watchdog
{
public:
    explicit Watchdog(int limitMs)
        : thread([this, limitMs] {
            late = !ended.tryAcquire(1, limitMs);
            if (late)
                scriptedCapture().attach({});
        })
    {}
    ~Watchdog() { inTime(); }
    Q_DISABLE_COPY(Watchdog)

    /// It has ended: whether that was within the time.
    bool inTime()
    {
        ended.release();
        if (thread.joinable())
            thread.join();
        return !late;
    }

private:
    QSemaphore ended;
    bool late = false;
    std::thread thread;
};

} // namespace

class TestTavorinCamera : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theWindowClosesInEveryStateOfTheCamera_data();
    void theWindowClosesInEveryStateOfTheCamera();
    void aCameraFasterThanTheWindowLeavesItAlive();

    void devicesWithoutANameOrAPathDoNoHarm();
    void aLongNameInAnotherAlphabetFitsEverywhere();
    void fiftyDevicesFitThePanel();
    void aListInAnotherOrderKeepsTheCamera();
    void aCameraThatRefusesEverySetIsShown();
    void framesOfOtherKindsAreShownAndSaved_data();
    void framesOfOtherKindsAreShownAndSaved();
    void withoutFramesRequestsWait();
    void aDeviceThatDiesWhileItOpensIsFoundAgain_data();
    void aDeviceThatDiesWhileItOpensIsFoundAgain();

private:
    void pick(int index, const ScriptedDevice &device) const;
    bool isConnected() const { return window->status() == "连接成功"; }
    bool isShown() const;
    QList<QRadioButton *> buttons() const;
    QStringList rowTexts(const QString &label) const;
    bool waitForRows(int count) const;

    std::unique_ptr<TavorinWindow> window;
    std::unique_ptr<ModalAnswers> answers; // closes the notes of the camera's coming and going
};

void TestTavorinCamera::initTestCase()
{
    static MessageWatch watch;
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void TestTavorinCamera::init()
{
    scriptedCapture().reset();
    window = std::make_unique<TavorinWindow>();
    answers = std::make_unique<ModalAnswers>();
    (*window)->show();
    window->click("deviceManager");
}

void TestTavorinCamera::cleanup()
{
    window.reset();
    answers.reset();
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
}

/// Starts a camera as the panel does, without the wait for the next look at the devices.
void TestTavorinCamera::pick(int index, const ScriptedDevice &device) const
{
    emit window->part<DeviceWidget>("page_1")->cameraWork(
        index, QString::fromStdString(device.name), QString::fromStdString(device.path));
}

/// Whether the live page shows a picture.
bool TestTavorinCamera::isShown() const
{
    const auto *video = window->page(0)->findChild<VideoWidget *>();
    return !video->content()->scaledFrame().isNull();
}

/// Of the rows of the device panel, from above.
QList<QRadioButton *> TestTavorinCamera::buttons() const
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents(); // the layout
    QList<QRadioButton *> found = window->part("page_1")->findChildren<QRadioButton *>();
    std::sort(found.begin(), found.end(), [](const QWidget *a, const QWidget *b) {
        return a->mapToGlobal(QPoint()).y() < b->mapToGlobal(QPoint()).y();
    });
    return found;
}

/// What a label of each row of the device panel says, from above.
QStringList TestTavorinCamera::rowTexts(const QString &label) const
{
    QStringList texts;
    for (const QRadioButton *button : buttons())
        texts += textOf(*button->parentWidget(), label);
    return texts;
}

bool TestTavorinCamera::waitForRows(int count) const
{
    return eventually([&] { return buttons().size() == count; });
}

// ---- Leaving

void TestTavorinCamera::theWindowClosesInEveryStateOfTheCamera_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"none picked", "opening", "streaming", "restarting", "stalled",
                              "stalled at the first frame", "unplugged", "given up"})
        QTest::newRow(state) << QString(state);
}

void TestTavorinCamera::theWindowClosesInEveryStateOfTheCamera()
{
    QFETCH(QString, state);
    ScriptedCapture &camera = scriptedCapture();
    const auto opens = [&camera](int count) {
        return eventually([&] { return camera.calls("open").size() == count; });
    };
    camera.attach({microscope});
    if (state == "opening")
        camera.failNextOpens(100);
    if (state == "stalled at the first frame")
        camera.stall(true);
    if (state != "none picked") {
        pick(0, microscope);
        QVERIFY(opens(1));
    }
    if (state == "stalled at the first frame") {
        QVERIFY(eventually([&] { return isConnected() && camera.isWaiting(); }));
    } else if (state != "none picked" && state != "opening") {
        QVERIFY(eventually([this] { return isConnected() && isShown(); }));
    }
    if (state == "restarting") {
        camera.failNextOpens(100);
        pick(0, microscope);
        QVERIFY(opens(2));
        QVERIFY(eventually([this] { return !isConnected(); }));
    } else if (state == "stalled") {
        camera.stall(true);
        QVERIFY(eventually([&] { return camera.isWaiting(); }));
    } else if (state == "unplugged") {
        camera.attach({});
        QVERIFY(eventually([this] { return !isConnected(); }));
    } else if (state == "given up") {
        emit window->part<DeviceWidget>("page_1")->cameraClose();
        QVERIFY(eventually([this] { return !isConnected(); }));
    }

    answers->press(QMessageBox::Yes);
    Watchdog watchdog(3000);
    QVERIFY2((*window)->close(), qPrintable(answers->seen().join('\n')));
    window->leave();
    QVERIFY(watchdog.inTime());
}

void TestTavorinCamera::aCameraFasterThanTheWindowLeavesItAlive()
{
    // A frame a millisecond, each to be blown up to the full size of the label.
    scriptedCapture().showEndlessly(cv::Mat(4, 6, CV_8UC3, cv::Scalar(1, 2, 3)));
    scriptedCapture().attach({microscope});
    pick(0, microscope);
    QVERIFY(eventually([this] { return isConnected(); }));
    window->page(0)->setFitMode(3);
    QCOMPARE(window->page(0)->viewWidth(), 1920.0);
    int turns = 0;
    QTimer clock;
    connect(&clock, &QTimer::timeout, window->get(), [&turns] { ++turns; });
    clock.start(0);
    QTRY_VERIFY(turns > 50);
    QVERIFY(isShown());
}

// ---- Odd cameras

void TestTavorinCamera::devicesWithoutANameOrAPathDoNoHarm()
{
    scriptedCapture().attach({{"", "usb-1"}, {"", ""}, {"Orvane_A", ""}});
    QVERIFY(waitForRows(1));
    buttons().first()->click();
    QVERIFY(eventually([this] { return isConnected() && isShown(); }));
    QCOMPARE(scriptedCapture().calls("open"), QStringList("open 2 700"));
    QCOMPARE(window->tabText(), QString("Orvane_A"));
    // Without a path it cannot be told from others, so nothing takes it up again.
    scriptedCapture().attach({});
    QVERIFY(eventually([this] { return !isConnected(); }));
    QVERIFY(waitForRows(0));
}

void TestTavorinCamera::aLongNameInAnotherAlphabetFitsEverywhere()
{
    pick(0, microscope);
    scriptedCapture().attach({microscope});
    QVERIFY(eventually([this] { return isConnected(); }));
    const QSize before = (*window)->minimumSizeHint();
    const QString name = "Orvane_" + QString(293, QChar(0x663e));
    scriptedCapture().attach({{name.toStdString(), std::string(300, 'p')}});
    QVERIFY(eventually([&] { return rowTexts("label_2") == QStringList(name); }));
    buttons().first()->click();
    QVERIFY(eventually([&] { return isConnected() && window->tabText() == name; }));
    QCOMPARE((*window)->minimumSizeHint(), before);
    // Its close button stays in reach.
    const QTabBar *bar = window->tabs()->tabBar();
    QVERIFY(bar->tabRect(0).width() <= bar->width());
}

void TestTavorinCamera::fiftyDevicesFitThePanel()
{
    const QSize before = (*window)->size();
    std::vector<ScriptedDevice> devices;
    for (int i = 1; i <= 50; ++i)
        devices.push_back({"Orvane_" + std::to_string(i), "usb-" + std::to_string(i)});
    scriptedCapture().attach(devices);
    QVERIFY(waitForRows(50));
    QCOMPARE((*window)->size(), before);
    buttons().at(36)->click();
    QVERIFY(eventually([this] { return isConnected() && isShown(); }));
    QCOMPARE(window->tabText(), QString("Orvane_37"));
    QCOMPARE(scriptedCapture().calls("open"), QStringList("open 36 700"));
    for (int row = 0; row < 50; ++row)
        QCOMPARE(buttons().at(row)->isChecked(), row == 36);
}

void TestTavorinCamera::aListInAnotherOrderKeepsTheCamera()
{
    scriptedCapture().attach({microscope, other});
    QVERIFY(waitForRows(2));
    buttons().first()->click();
    QVERIFY(eventually([this] { return isConnected() && isShown(); }));
    scriptedCapture().attach({other, microscope});
    QVERIFY(eventually([] { return scriptedCapture().calls("open").size() == 2; }));
    QCOMPARE(scriptedCapture().calls("open").last(), QString("open 1 700"));
    QVERIFY(eventually([this] { return isConnected() && buttons().last()->isChecked(); }));
    QVERIFY(!buttons().first()->isChecked());
    QCOMPARE(window->tabs()->count(), 1);
    QCOMPARE(window->tabText(), QString("Orvane_A"));
}

void TestTavorinCamera::aCameraThatRefusesEverySetIsShown()
{
    scriptedCapture().refuseSets(true);
    scriptedCapture().attach({microscope});
    pick(0, microscope);
    QVERIFY(eventually([this] { return isConnected() && isShown(); }));
    window->click("configManager");
    auto &contrast = control<QSlider>(*window->part("page_2"), "horizontalSlider_9");
    contrast.setValue(50);
    QVERIFY(eventually([] { return scriptedCapture().calls().contains("set 11 50"); }));
    QCOMPARE(contrast.value(), 50);
    QVERIFY(isConnected());
}

void TestTavorinCamera::framesOfOtherKindsAreShownAndSaved_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("type");
    QTest::newRow("smaller than asked for") << QSize(640, 480) << CV_8UC3;
    QTest::newRow("larger") << QSize(2048, 1536) << CV_8UC3;
    QTest::newRow("a single pixel") << QSize(1, 1) << CV_8UC3;
    QTest::newRow("a column") << QSize(1, 3000) << CV_8UC3;
    QTest::newRow("one channel") << QSize(1920, 1080) << CV_8UC1;
    QTest::newRow("four channels") << QSize(1920, 1080) << CV_8UC4;
}

void TestTavorinCamera::framesOfOtherKindsAreShownAndSaved()
{
    QFETCH(QSize, size);
    QFETCH(int, type);
    scriptedCapture().showEndlessly(
        cv::Mat(size.height(), size.width(), type, cv::Scalar(200, 200, 200, 255)));
    scriptedCapture().attach({microscope});
    pick(0, microscope);
    QVERIFY(eventually([this] { return isConnected() && isShown(); }));
    const VideoWidget *video = window->page(0)->findChild<VideoWidget *>();
    QVERIFY(eventually(
        [&] { return video->content()->scaledFrame().size() == video->content()->size(); }));
    window->page(0)->captureTo("shot.png");
    QVERIFY(eventually([&] { return QImage("shot.png").size() == size; }));
    QCOMPARE(QImage("shot.png").pixelColor(0, 0), QColor(200, 200, 200));
}

void TestTavorinCamera::withoutFramesRequestsWait()
{
    scriptedCapture().stall(true, 100000);
    scriptedCapture().attach({microscope});
    pick(0, microscope);
    QVERIFY(eventually([this] { return isConnected(); }));
    window->page(0)->captureTo("shot.png");
    window->click("capture2Btn");
    QVERIFY(eventually([] { return scriptedCapture().isWaiting(); }));
    QVERIFY(!isShown());
    QCOMPARE(window->tabs()->count(), 1);
    scriptedCapture().stall(false);
    QVERIFY(eventually([this] { return window->tabs()->count() == 2; }));
    QVERIFY(eventually([] { return !QImage("shot.png").isNull(); }));
}

void TestTavorinCamera::aDeviceThatDiesWhileItOpensIsFoundAgain_data()
{
    QTest::addColumn<QString>("step");
    for (const char *step :
         {"open 0 700", "set 6 1196444237", "set 3 1920", "set 4 1080", "get 34"})
        QTest::newRow(step) << QString(step);
}

void TestTavorinCamera::aDeviceThatDiesWhileItOpensIsFoundAgain()
{
    QFETCH(QString, step);
    // The camera still calls when the test has ended.
    const auto died = std::make_shared<std::atomic<bool>>(false);
    scriptedCapture().onCall([died, step](const QString &call) {
        if (call == step && !died->exchange(true))
            scriptedCapture().attach({});
    });
    scriptedCapture().attach({microscope});
    QVERIFY(waitForRows(1));
    buttons().first()->click();
    QVERIFY(eventually([&] { return *died && !isConnected(); }));
    QVERIFY(eventually([this] { return rowTexts("label") == QStringList("离线"); }));
    scriptedCapture().attach({microscope});
    QVERIFY(eventually([this] { return isConnected() && isShown(); }));
    QVERIFY(buttons().first()->isChecked());
}

QTEST_MAIN(TestTavorinCamera)
#include "test_tavorin_camera.moc"
