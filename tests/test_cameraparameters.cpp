#include "camera/capture.h"
#include "camera/controller.h"
#include "camera/mycamera.h"
#include "tests/support/eventually.h"
#include "tests/support/scriptedcapture.h"

#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <limits>

namespace {

constexpr int allTypes[] = {1,   2,    4,    8,    16,   32,    64,    128,  256,
                            512, 1024, 2048, 4096, 8192, 16384, 32768, 65536};

/// Lets the controller's thread wait at the first call that begins with a word.
class Gate
{
public:
    explicit Gate(const QString &start)
    {
        scriptedCapture().onCall([this, start](const QString &call) {
            if (call.startsWith(start) && !passed.exchange(true)) {
                reached.release();
                opened.acquire();
            }
        });
    }
    void waitUntilReached() { reached.acquire(); }
    void open() { opened.release(); }

private:
    std::atomic<bool> passed{false};
    QSemaphore reached;
    QSemaphore opened;
};

} // namespace

using Read = int (*)();
Q_DECLARE_METATYPE(Read)

class TestCameraParameters : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        scriptedCapture().reset();
        scriptedCapture().attach({{"Orvane_A", "usb-1"}});
        scriptedCapture().open(0, 700);
        scriptedCapture().forgetCalls();
    }

    // ---- Posting

    void typeSetsItsProperty_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("num");
        QTest::addColumn<QStringList>("calls");
        const auto row = [](const char *name, int type, int num, const QStringList &calls) {
            QTest::newRow(name) << type << num << calls;
        };
        row("brightness", 1, 56, {"set 10 56"});
        row("contrast", 2, 50, {"set 11 50"});
        row("chroma", 4, 99, {"set 13 99"});
        row("saturation", 8, 0, {"set 12 0"});
        row("focus turns autofocus off first", 16, 200, {"set 39 0", "set 28 200"});
        row("autofocus on", 32, 1, {"set 39 1"});
        row("autofocus off", 32, 0, {"set 39 0"});
        row("focus window", 64, 4367, {"set 33 4367"});
        row("resolution 0", 128, 0, {"set 3 1920", "set 4 1080"});
        row("resolution 1", 128, 1, {"set 3 4000", "set 4 3000"});
        row("resolution 2", 128, 2, {"set 3 3840", "set 4 2160"});
        row("resolution 3", 128, 3, {"set 3 1280", "set 4 720"});
        row("resolution 4", 128, 4, {"set 3 640", "set 4 480"});
        row("zoom", 256, 130, {"set 27 130"});
        row("red", 512, 668, {"set 22 668"});
        row("gain", 1024, 50, {"set 14 50"});
        row("sharpness", 2048, 15, {"set 20 15"});
        row("save to the camera", 2048, 20, {"set 20 20"});
        row("the balance that nobody sends", 4096, 7, {"set 26 7"});
        row("switches", 8192, 63, {"set 32 63"});
        row("green", 16384, 269, {"set 35 269"});
        row("blue", 32768, 5570, {"set 36 5570"});
        row("shutter", 65536, -14, {"set 15 -14"});
    }

    void typeSetsItsProperty()
    {
        QFETCH(int, type);
        QFETCH(int, num);
        QFETCH(QStringList, calls);
        Controller controller(1);
        controller.setEnabled(true);
        controller.setCameraInfo(type, num);
        QTRY_COMPARE(scriptedCapture().calls(), calls);
        QTRY_VERIFY(controller.isFinished());
    }

    void numberThatIsNoTypeIsIgnored_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("none") << 0;
        QTest::newRow("a combination of two") << 3;
        QTest::newRow("all") << 0x1ffff;
        QTest::newRow("the bit behind the last") << 0x20000;
        QTest::newRow("the sign") << std::numeric_limits<int>::min();
        QTest::newRow("minus one") << -1;
    }

    void numberThatIsNoTypeIsIgnored()
    {
        QFETCH(int, type);
        Controller controller(1);
        controller.setEnabled(true);
        controller.setCameraInfo(type, 5);
        QVERIFY(!controller.isRunning());
        // Nothing of it is left for a batch that follows.
        controller.setCameraInfo(1, 5);
        QTRY_VERIFY(controller.isFinished());
        QCOMPARE(scriptedCapture().calls(), QStringList({"set 10 5"}));
    }

    void batchIsAppliedInAFixedOrder()
    {
        Controller controller(1);
        // Disabled, it keeps what is posted.
        for (int i = 16; i >= 0; --i)
            controller.setCameraInfo(allTypes[i], 1);
        QTRY_VERIFY(!controller.isRunning());
        QCOMPARE(scriptedCapture().calls(), QStringList());
        controller.setEnabled(true);
        controller.setCameraInfo(1, 1);
        QTRY_VERIFY(!controller.isRunning());
        QCOMPARE(scriptedCapture().calls(),
                 QStringList({"set 10 1", "set 11 1", "set 13 1", "set 12 1", "set 39 0",
                              "set 28 1", "set 39 1", "set 3 4000", "set 4 3000", "set 27 1",
                              "set 33 1", "set 22 1", "set 14 1", "set 20 1", "set 26 1",
                              "set 32 1", "set 35 1", "set 36 1", "set 15 1"}));
    }

    void focusAndAutofocusTogetherLeaveAutofocusOn()
    {
        Controller controller(1);
        controller.setCameraInfo(32, 1);
        controller.setCameraInfo(16, 1);
        QTRY_VERIFY(!controller.isRunning());
        controller.setEnabled(true);
        controller.setCameraInfo(16, 1);
        QTRY_VERIFY(!controller.isRunning());
        QCOMPARE(scriptedCapture().calls(), QStringList({"set 39 0", "set 28 1", "set 39 1"}));
    }

    void draggedSliderWritesOneValueABatchAndTheLastIsTheFinalPosition()
    {
        Controller controller(1);
        controller.setEnabled(true);
        Gate gate("set 11");
        controller.setCameraInfo(2, 0);
        gate.waitUntilReached();
        for (int position = 1; position <= 100; ++position)
            controller.setCameraInfo(2, position);
        gate.open();
        QTRY_VERIFY(!controller.isRunning());
        QCOMPARE(scriptedCapture().calls(), QStringList({"set 11 0", "set 11 100"}));
    }

    void newerNumberReachesABatchAlreadyTakenAndGoesOutAgain()
    {
        Controller controller(1);
        Gate gate("set 10");
        controller.setCameraInfo(1, 1);
        controller.setCameraInfo(2, 1);
        QTRY_VERIFY(!controller.isRunning());
        controller.setEnabled(true);
        controller.setCameraInfo(1, 1);
        gate.waitUntilReached();
        controller.setCameraInfo(2, 77);
        gate.open();
        QTRY_VERIFY(!controller.isRunning());
        QCOMPARE(scriptedCapture().calls(), QStringList({"set 10 1", "set 11 77", "set 11 77"}));
    }

    void changePostedWhileClosedIsLost()
    {
        scriptedCapture().release();
        scriptedCapture().forgetCalls();
        Controller controller(1);
        controller.setEnabled(true);
        controller.setCameraInfo(1, 5);
        QVERIFY(!controller.isRunning());
        scriptedCapture().open(0, 700);
        controller.setCameraInfo(2, 6);
        QTRY_VERIFY(controller.isFinished());
        QCOMPARE(scriptedCapture().calls("set"), QStringList({"set 11 6"}));
    }

    void whatIsPendingAtTheCloseReachesTheNextDevice()
    {
        Controller controller(1);
        controller.setCameraInfo(1, 5);
        QTRY_VERIFY(!controller.isRunning());
        QCOMPARE(scriptedCapture().calls("set"), QStringList());
        scriptedCapture().release();
        scriptedCapture().open(0, 700);
        controller.setEnabled(true);
        controller.setCameraInfo(2, 6);
        QTRY_VERIFY(!controller.isRunning());
        QCOMPARE(scriptedCapture().calls("set"), QStringList({"set 10 5", "set 11 6"}));
    }

    void changePostedAtTheThreadsEndIsNotForgotten()
    {
        Controller controller(0);
        controller.setEnabled(true);
        for (int i = 0; i < 300; ++i) {
            controller.setCameraInfo(1, i);
            const QString applied = QStringLiteral("set 10 %1").arg(i);
            QVERIFY(eventually([&] { return scriptedCapture().lastCall() == applied; }));
        }
    }

    void refusedChangeIsLostSilently()
    {
        scriptedCapture().refuseSets(true);
        Controller controller(1);
        controller.setEnabled(true);
        for (int type : allTypes)
            controller.setCameraInfo(type, 1);
        QTRY_VERIFY(!controller.isRunning());
        scriptedCapture().refuseSets(false);
        controller.setCameraInfo(1, 9);
        QTRY_COMPARE(scriptedCapture().lastCall(), QString("set 10 9"));
    }

    // ---- Resolution

    void resolutionOutsideTheTableDoesNothing_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("before") << -1;
        QTest::newRow("behind") << 5;
        QTest::newRow("far behind") << std::numeric_limits<int>::max();
    }

    void resolutionOutsideTheTableDoesNothing()
    {
        QFETCH(int, index);
        Controller controller(1);
        controller.setEnabled(true);
        controller.setCameraInfo(128, index);
        QTRY_VERIFY(controller.isFinished());
        QCOMPARE(scriptedCapture().calls(), QStringList());
        QCOMPARE(controller.frameWidth(), 1920);
        QCOMPARE(controller.frameHeight(), 1080);
    }

    void resolutionIsToldOnTheControllersThread()
    {
        Controller controller(1);
        controller.setEnabled(true);
        QThread *teller = nullptr;
        QString text;
        connect(
            &controller, &Controller::resolutionChange, &controller,
            [&](const QString &size) {
                teller = QThread::currentThread();
                text = size;
            },
            Qt::DirectConnection);
        controller.setCameraInfo(128, 4);
        QVERIFY(controller.wait(5000));
        QCOMPARE(text, QString("640*480"));
        QCOMPARE(teller, static_cast<QThread *>(&controller));
        QCOMPARE(controller.frameWidth(), 640);
        QCOMPARE(controller.frameHeight(), 480);
    }

    void onlyTheFrameSizeExcludesAFrameRead()
    {
        // At each set, whether a frame could be read meanwhile.
        std::mutex mutex;
        QStringList held;
        scriptedCapture().onCall([&](const QString &call) {
            const bool free = cameraMutex.tryLock();
            if (free)
                cameraMutex.unlock();
            std::lock_guard<std::mutex> lock(mutex);
            held.append(call.section(' ', 1, 1) + (free ? " free" : " held"));
        });
        Controller controller(1);
        for (int type : allTypes)
            controller.setCameraInfo(type, 0);
        QTRY_VERIFY(!controller.isRunning());
        controller.setEnabled(true);
        controller.setCameraInfo(1, 0);
        QTRY_VERIFY(!controller.isRunning());
        std::lock_guard<std::mutex> lock(mutex);
        QCOMPARE(held.filter("held"), QStringList({"3 held", "4 held"}));
        QCOMPARE(held.filter("free").size(), 17);
    }

    // ---- Reading back

    void recordIsReadInAFixedOrder()
    {
        const int properties[] = {10, 11, 13, 12, 28, 39, 27, 22, 14, 20, 26, 32, 35, 36, 15};
        QStringList expected;
        for (int i = 0; i < 15; ++i) {
            scriptedCapture().setValue(properties[i], i + 1);
            expected.append(QStringLiteral("get %1").arg(properties[i]));
        }
        const CameraInfo info = MyCamera::readCameraInfo();
        QCOMPARE(scriptedCapture().calls(), expected);
        QVERIFY(info.valid);
        QCOMPARE(info.brightness, 1);
        QCOMPARE(info.contrast, 2);
        QCOMPARE(info.chroma, 3);
        QCOMPARE(info.saturation, 4);
        QCOMPARE(info.focus, 5);
        QCOMPARE(info.autoFocus, 6);
        QCOMPARE(info.resolution, -1);
        QCOMPARE(info.zoom, 7);
        QCOMPARE(info.red, 8);
        QCOMPARE(info.gain, 9);
        QCOMPARE(info.sharpness, 10);
        QCOMPARE(info.whiteBalanceV, 11);
        QCOMPARE(info.functionWord, 12);
        QCOMPARE(info.green, 13);
        QCOMPARE(info.blue, 14);
        QCOMPARE(info.shutter, 15);
    }

    void recordOfAClosedDeviceIsInvalid()
    {
        scriptedCapture().release();
        scriptedCapture().forgetCalls();
        scriptedCapture().setValue(10, 5);
        const CameraInfo info = MyCamera::readCameraInfo();
        QVERIFY(!info.valid);
        for (int value :
             {info.brightness, info.contrast, info.chroma, info.saturation, info.focus,
              info.autoFocus, info.resolution, info.zoom, info.red, info.gain, info.sharpness,
              info.whiteBalanceV, info.functionWord, info.green, info.blue, info.shutter})
            QCOMPARE(value, -1);
        QCOMPARE(scriptedCapture().calls(), QStringList());
    }

    void readingIsCutTowardZero_data()
    {
        QTest::addColumn<double>("answer");
        QTest::addColumn<int>("value");
        QTest::newRow("whole") << 12.0 << 12;
        QTest::newRow("positive") << 12.9 << 12;
        QTest::newRow("negative") << -12.9 << -12;
        QTest::newRow("between minus one and zero") << -0.5 << 0;
        QTest::newRow("largest") << 2147483647.5 << std::numeric_limits<int>::max();
        QTest::newRow("smallest") << -2147483648.0 << std::numeric_limits<int>::min();
        QTest::newRow("more than an int holds") << 1e300 << -1;
        QTest::newRow("infinite") << -std::numeric_limits<double>::infinity() << -1;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << -1;
    }

    void readingIsCutTowardZero()
    {
        QFETCH(double, answer);
        QFETCH(int, value);
        scriptedCapture().setValue(15, answer);
        QCOMPARE(MyCamera::currentExposure(), value);
        QCOMPARE(MyCamera::readCameraInfo().shutter, value);
    }

    void eachReadBackReadsItsProperty_data()
    {
        QTest::addColumn<int>("property");
        QTest::addColumn<Read>("read");
        QTest::newRow("focus") << 28 << Read(&MyCamera::currentFocus);
        QTest::newRow("gamma") << 22 << Read(&MyCamera::currentGamma);
        QTest::newRow("gain") << 14 << Read(&MyCamera::currentGain);
        QTest::newRow("zoom") << 27 << Read(&MyCamera::currentZoom);
        QTest::newRow("brightness") << 10 << Read(&MyCamera::currentBrightness);
        QTest::newRow("exposure") << 15 << Read(&MyCamera::currentExposure);
        QTest::newRow("iris") << 36 << Read(&MyCamera::currentIris);
        QTest::newRow("roll") << 35 << Read(&MyCamera::currentRoll);
    }

    void eachReadBackReadsItsProperty()
    {
        QFETCH(int, property);
        QFETCH(Read, read);
        scriptedCapture().setValue(property, 42);
        QCOMPARE(read(), 42);
        QCOMPARE(scriptedCapture().calls(), QStringList(QStringLiteral("get %1").arg(property)));
        scriptedCapture().release();
        QCOMPARE(read(), -1);
    }

    void parameterIsReadByItsType_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("property"); // -1: not known here
        const std::pair<int, int> known[] = {
            {1, 10},   {2, 11},    {4, 13},    {8, 12},    {16, 28},   {32, 39},    {256, 27},
            {512, 22}, {1024, 14}, {2048, 20}, {4096, 26}, {8192, 32}, {16384, 35}, {32768, 36}};
        for (const auto &[type, property] : known)
            QTest::newRow(qPrintable(QStringLiteral("type %1").arg(type))) << type << property;
        QTest::newRow("focus window is not known") << 64 << -1;
        QTest::newRow("resolution is not known") << 128 << -1;
        QTest::newRow("shutter is not known") << 65536 << -1;
        QTest::newRow("combination") << 3 << -1;
    }

    void parameterIsReadByItsType()
    {
        QFETCH(int, type);
        QFETCH(int, property);
        for (int i = 0; i < 50; ++i)
            scriptedCapture().setValue(i, 1000 + i);
        QCOMPARE(Controller::readParameter(type), property < 0 ? -1 : 1000 + property);
        scriptedCapture().release();
        QCOMPARE(Controller::readParameter(type), -1);
    }

    void readingAParameterHoldsTheMutexOfTheParameters()
    {
        bool free = true;
        scriptedCapture().onCall([&free](const QString &) {
            free = parameterMutex.tryLock();
            if (free)
                parameterMutex.unlock();
        });
        Controller::readParameter(1);
        QVERIFY(!free);
    }
};

QTEST_GUILESS_MAIN(TestCameraParameters)
#include "test_cameraparameters.moc"
