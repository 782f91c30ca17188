#include "camera/capture.h"
#include "camera/mycamera.h"
#include "tests/support/cameralog.h"
#include "tests/support/eventually.h"
#include "tests/support/processload.h"
#include "tests/support/scriptedcapture.h"

#include <QtTest>

#include <atomic>

namespace {

const ScriptedDevice microscope = {"Orvane_A", "usb-1"};
const ScriptedDevice other = {"Orvane_B", "usb-2"};

constexpr int hourMs = 3600 * 1000;

CameraPeriods quick() { return {1, 1, 1}; }

struct NothingAttached
{
    NothingAttached() { scriptedCapture().attach({}); }
};

/// A camera that looked for devices once, saw none and does not look again within a test: nothing
/// brings a stopped capture back. By then the microscope is attached, and the other camera.
class UnwatchedCamera : private NothingAttached, public MyCamera
{
public:
    explicit UnwatchedCamera(int retryMs = 1)
        : MyCamera({retryMs, 1, hourMs})
    {
        eventually([] { return scriptedCapture().listings() > 0; });
        scriptedCapture().attach({microscope, other});
    }
};

cv::Mat colour(int blue, int green, int red)
{
    return cv::Mat(4, 6, CV_8UC3, cv::Scalar(blue, green, red));
}

const QStringList opening = {"open 0 700", "set 6 1196444237", "set 3 1920", "set 4 1080",
                             "get 34"};

} // namespace

class TestMyCamera : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        scriptedCapture().reset();
        scriptedCapture().attach({microscope});
        scriptedCapture().setValue(34, 5);
    }

    void restsOfTheProgram()
    {
        QCOMPARE(CameraPeriods().retryMs, 1000);
        QCOMPARE(CameraPeriods().batchMs, 40);
        QCOMPARE(CameraPeriods().pollMs, 1000);
    }

    // ---- Watching

    void tellsOfADeviceThatCannotBeOpened()
    {
        MyCamera camera(quick());
        QSignalSpy access(&camera, &MyCamera::accessChange);
        scriptedCapture().attach({{"Orvane_A", "usb-1", "no right"}});
        QTRY_VERIFY(access.size() > 0 &&
                    access.last()[0].toStringList() == QStringList("no right"));
    }

    // ---- Opening

    void constructionWatchesTheDevicesButLeavesTheCaptureAlone()
    {
        MyCamera camera(quick());
        CameraLog log(camera);
        QTRY_COMPARE(log.said, QStringList({"detect usb-1"}));
        QVERIFY(!camera.isRunning());
        QVERIFY(!camera.isOpen());
        QCOMPARE(camera.frameWidth(), 1920);
        QCOMPARE(camera.frameHeight(), 1080);
        QVERIFY(camera.currentPixmap().isNull());
        QCOMPARE(scriptedCapture().calls(), QStringList());
    }

    void openingSetsTheFormatAndReadsTheFirmwareInThisOrder()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        QCOMPARE(scriptedCapture().calls(), opening);
        QCOMPARE(log.said, QStringList({"firmware 5", "status true", "resolution 1920*1080"}));
        QVERIFY(camera.isOpen());
    }

    void deviceIsOpenedByItsPositionInTheList()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(1, "usb-2");
        QTRY_VERIFY(log.frames > 0);
        QCOMPARE(scriptedCapture().calls("open"), QStringList({"open 1 700"}));
    }

    void sevenFailedAttemptsEndInSilence()
    {
        scriptedCapture().failNextOpens(100);
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(camera.isFinished());
        QCoreApplication::processEvents();
        QCOMPARE(log.said, QStringList());
        QCOMPARE(scriptedCapture().calls().count("open 0 700"), 7);
        QCOMPARE(scriptedCapture().calls().size(), 7);
        QVERIFY(!camera.isOpen());
    }

    void seventhAttemptMayStillSucceed()
    {
        scriptedCapture().failNextOpens(6);
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        QCOMPARE(scriptedCapture().calls("open").size(), 7);
    }

    void retriesGoOnWhileTheCameraInUseIsListed()
    {
        scriptedCapture().failNextOpens(20);
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        QCOMPARE(scriptedCapture().calls("open").size(), 21);
    }

    void runFlagFallingDuringTheFirstOpenLeavesTheDeviceOpen()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        scriptedCapture().onCall([&camera](const QString &call) {
            if (call.startsWith("open"))
                camera.stopCapture();
        });
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(camera.isFinished());
        QCOMPARE(scriptedCapture().calls(), QStringList({"open 0 700"}));
        QVERIFY(sharedCapture.isOpened());
        QVERIFY(!camera.isOpen());
        QCoreApplication::processEvents();
        QCOMPARE(log.said, QStringList());
    }

    void runFlagFallingDuringAReopenReleasesTheDevice()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        scriptedCapture().onCall([&camera](const QString &call) {
            if (call.startsWith("open"))
                camera.stopCapture();
        });
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(camera.isFinished());
        QVERIFY(!sharedCapture.isOpened());
        QCOMPARE(scriptedCapture().calls().mid(5),
                 QStringList({"release", "open 0 700", "release"}));
        QTRY_COMPARE(log.count("status false"), 2);
    }

    // ---- Frames

    void frameComesInItsOwnColours()
    {
        scriptedCapture().giveFrames({colour(10, 20, 200)});
        scriptedCapture().stall(true);
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_COMPARE(log.frames, 1);
        QCOMPARE(log.frame.size(), QSize(6, 4));
        QCOMPARE(CameraLog::colourOf(log.frame), qRgb(200, 20, 10));
        QCOMPARE(CameraLog::colourOf(camera.currentPixmap()), qRgb(200, 20, 10));
        camera.stopCapture();
        scriptedCapture().stall(false);
    }

    void pointerIsTheSameForEachFrame()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        const QPixmap *first = log.pointer;
        const int before = log.frames;
        QTRY_VERIFY(log.frames > before + 2);
        QCOMPARE(log.pointer, first);
    }

    void aSlowGuiSeesTheNewestFrameEachTime()
    {
        scriptedCapture().stall(true);
        scriptedCapture().giveFrames({colour(0, 0, 1), colour(0, 0, 2), colour(0, 0, 3)});
        UnwatchedCamera camera;
        CameraLog log(camera);
        log.keepColours = true;
        // Counted on the capture thread; this thread serves no event meanwhile.
        std::atomic<int> sent{0};
        connect(
            &camera, &MyCamera::putpix, &camera, [&sent](QPixmap *) { ++sent; },
            Qt::DirectConnection);
        camera.cameraChange(0, "usb-1");
        while (sent < 3)
            QThread::yieldCurrentThread();
        QCOMPARE(CameraLog::colourOf(camera.currentPixmap()), qRgb(3, 0, 0));
        QTRY_COMPARE(log.frames, 3);
        QCOMPARE(log.colours, (std::vector<QRgb>{qRgb(3, 0, 0), qRgb(3, 0, 0), qRgb(3, 0, 0)}));
        camera.stopCapture();
        scriptedCapture().stall(false);
    }

    void framesOfOtherKindsPass()
    {
        scriptedCapture().stall(true);
        scriptedCapture().giveFrames({cv::Mat(3, 5, CV_8UC1, cv::Scalar(7)),
                                      cv::Mat(1, 1, CV_8UC3, cv::Scalar(1, 2, 3)),
                                      cv::Mat(2, 2, CV_8UC4, cv::Scalar(1, 2, 3, 255)),
                                      cv::Mat(2, 2, CV_32FC1, cv::Scalar(0)),
                                      cv::Mat(2, 2, CV_16UC3, cv::Scalar(0)), colour(9, 8, 7)});
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_COMPARE(log.frames, 6);
        QCOMPARE(CameraLog::colourOf(log.frame), qRgb(7, 8, 9));
        camera.stopCapture();
        scriptedCapture().stall(false);
    }

    void captureDeliversOneFrame()
    {
        scriptedCapture().stall(true);
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        camera.requestCapture();
        scriptedCapture().giveFrames({colour(0, 0, 1), colour(0, 0, 2)});
        QTRY_COMPARE(log.frames, 2);
        QCOMPARE(log.captured, (std::vector<QRgb>{qRgb(1, 0, 0)}));
        camera.stopCapture();
        scriptedCapture().stall(false);
    }

    void captureAskedForWithoutFramesWaitsForTheNextAndAnEmptyFrameDoesNotTakeIt()
    {
        scriptedCapture().giveFrames({cv::Mat(), colour(0, 0, 8)});
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.requestCapture();
        camera.cameraChange(0, "usb-1");
        QTRY_COMPARE(log.captured, (std::vector<QRgb>{qRgb(8, 0, 0)}));
        QCOMPARE(log.count("status false"), 1);
    }

    // ---- Losing and finding the device

    void emptyFrameClosesTheDeviceAndEndsTheThread()
    {
        scriptedCapture().giveFrames({colour(1, 1, 1), cv::Mat()});
        UnwatchedCamera camera;
        CameraLog log(camera);
        QTest::ignoreMessage(QtDebugMsg, "empty frame");
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(camera.isFinished());
        QTRY_COMPARE(log.said.mid(3), QStringList({"status false", "resolution 0x0"}));
        QCOMPARE(scriptedCapture().calls(), opening + QStringList({"release"}));
        QVERIFY(!camera.isOpen());
        QCOMPARE(log.frames, 1);
    }

    void hiccupHealsByItself()
    {
        scriptedCapture().giveFrames({colour(1, 1, 1), cv::Mat()});
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_COMPARE(log.count("status true"), 2);
        QTRY_VERIFY(camera.isOpen());
    }

    void unpluggedCameraResumesWhenItReturns()
    {
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        scriptedCapture().attach({});
        QTRY_VERIFY(!camera.isRunning());
        QTRY_VERIFY(log.said.contains("detect "));
        QTRY_COMPARE(log.said.filter("resolution").last(), QString("resolution 0x0"));
        const int before = log.frames;
        scriptedCapture().attach({microscope});
        QTRY_VERIFY(log.frames > before);
        QCOMPARE(log.count("status true"), 2);
        QTRY_COMPARE(log.said.filter("resolution").last(), QString("resolution 1920*1080"));
    }

    void closedCameraIsNotReopenedByAReplug()
    {
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        camera.closeCamera();
        QTRY_VERIFY(!camera.isRunning());
        scriptedCapture().attach({});
        QTRY_COMPARE(log.count("detect "), 1);
        scriptedCapture().attach({microscope});
        QTRY_COMPARE(log.count("detect usb-1"), 2);
        QTest::qWait(30);
        QVERIFY(!camera.isRunning());
        QCOMPARE(log.count("status true"), 1);
        QCOMPARE(scriptedCapture().calls("open").size(), 1);
    }

    void signOfLifeFromBeforeTheCloseDoesNotReopen()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        camera.closeCamera();
        QTRY_VERIFY(!camera.isRunning());
        camera.restartIfStopped();
        QVERIFY(!camera.isRunning());
    }

    void closingTheCameraWhileNothingRunsStillGivesItUp()
    {
        scriptedCapture().failNextOpens(7);
        UnwatchedCamera camera;
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(camera.isFinished());
        camera.closeCamera();
        camera.restartIfStopped();
        QVERIFY(!camera.isRunning());
    }

    void stoppedCaptureKeepsTheCameraWatched()
    {
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        camera.stopCapture();
        QTRY_COMPARE(log.count("status true"), 2);
    }

    void restartDoesNothingWhileTheThreadRuns()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        camera.restartIfStopped();
        const int before = log.frames;
        QTRY_VERIFY(log.frames > before + 2);
        QCOMPARE(scriptedCapture().calls("open").size(), 1);
    }

    // ---- Changing the device

    void changeWhileStreamingSwitchesWithoutEndingTheThread()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        QSignalSpy finished(&camera, &QThread::finished);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        log.said.clear();
        camera.cameraChange(1, "usb-2");
        QTRY_VERIFY(log.said.contains("resolution 1920*1080"));
        QCOMPARE(log.said, QStringList({"status false", "resolution 0x0", "firmware 5",
                                        "status true", "resolution 1920*1080"}));
        QCOMPARE(scriptedCapture().calls("open"), QStringList({"open 0 700", "open 1 700"}));
        QVERIFY(camera.isRunning());
        QCOMPARE(finished.size(), 0);
    }

    void failedReopenTellsTheCloseTwice()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.said.contains("resolution 1920*1080"));
        log.said.clear();
        scriptedCapture().failNextOpens(7);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(camera.isFinished());
        QTRY_COMPARE(log.said, QStringList({"status false", "resolution 0x0", "status false",
                                            "resolution 0x0"}));
    }

    void changeDuringTheEndOfTheThreadReopensOnceMoreAfterTheFirstFrame()
    {
        scriptedCapture().giveFrames({colour(1, 1, 1), cv::Mat()});
        MyCamera camera(quick());
        CameraLog log(camera);
        // The release on the way out: the thread still counts as running.
        std::atomic<bool> changed{false};
        scriptedCapture().onCall([&](const QString &call) {
            if (call == "release" && !changed.exchange(true))
                camera.cameraChange(0, "usb-1");
        });
        camera.cameraChange(0, "usb-1");
        QTRY_COMPARE(log.count("status true"), 3);
        QTRY_VERIFY(log.frames >= 3);
        QTest::qWait(20);
        QCOMPARE(log.count("status true"), 3);
        QCOMPARE(scriptedCapture().calls("open").size(), 3);
    }

    void resolutionSurvivesAReconnect()
    {
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        camera.setCameraInfo(CameraParameter::Resolution, 3);
        QTRY_COMPARE(log.count("resolution 1280*720"), 1);
        QCOMPARE(camera.frameWidth(), 1280);
        QCOMPARE(camera.frameHeight(), 720);
        scriptedCapture().attach({});
        QTRY_VERIFY(!camera.isRunning());
        scriptedCapture().forgetCalls();
        scriptedCapture().attach({microscope});
        QTRY_COMPARE(log.count("resolution 1280*720"), 2);
        QCOMPARE(scriptedCapture().calls("set").mid(1), QStringList({"set 3 1280", "set 4 720"}));
    }

    void changingTheResolutionDoesNotStopTheStream()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 0);
        camera.setCameraInfo(CameraParameter::Resolution, 4);
        QTRY_COMPARE(log.count("resolution 640*480"), 1);
        const int before = log.frames;
        QTRY_VERIFY(log.frames > before + 2);
        QCOMPARE(log.count("status true"), 1);
        QCOMPARE(log.count("status false"), 0);
    }

    void clickFocusSendsTheCell()
    {
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(camera.isOpen());
        camera.blinkArea(17, 15);
        QTRY_COMPARE(scriptedCapture().calls("set 33"), QStringList({"set 33 4367"}));
    }

    void cameraThatRefusesEverySetStillStreams()
    {
        scriptedCapture().refuseSets(true);
        UnwatchedCamera camera;
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(log.frames > 3);
        QVERIFY(camera.isOpen());
    }

    void deviceMayDieAtEachStepOfOpening_data()
    {
        QTest::addColumn<QString>("step");
        for (const QString &step : opening)
            QTest::newRow(qPrintable(step)) << step;
    }

    void deviceMayDieAtEachStepOfOpening()
    {
        QFETCH(QString, step);
        MyCamera camera(quick());
        CameraLog log(camera);
        std::atomic<bool> died{false};
        scriptedCapture().onCall([&](const QString &call) {
            if (call == step && !died.exchange(true))
                scriptedCapture().attach({});
        });
        camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(died);
        QTRY_VERIFY(!camera.isRunning());
        QCOMPARE(log.frames, 0);
        scriptedCapture().attach({microscope});
        QTRY_VERIFY(log.frames > 0);
    }

    // ---- Ending

    void captureEndsInEveryState_data()
    {
        QTest::addColumn<int>("failingOpens");
        QTest::addColumn<bool>("stalls");
        QTest::addColumn<bool>("restarts");
        QTest::newRow("opening, an hour before the next attempt") << 100 << false << false;
        QTest::newRow("streaming") << 0 << false << false;
        QTest::newRow("stalled") << 0 << true << false;
        QTest::newRow("restarting, an hour before the next attempt") << 0 << false << true;
    }

    void captureEndsInEveryState()
    {
        QFETCH(int, failingOpens);
        QFETCH(bool, stalls);
        QFETCH(bool, restarts);
        scriptedCapture().failNextOpens(failingOpens);
        scriptedCapture().stall(stalls, 50);
        UnwatchedCamera camera(hourMs);
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        QTRY_COMPARE(scriptedCapture().calls("open").size(), 1);
        if (restarts) {
            QTRY_VERIFY(log.frames > 0);
            scriptedCapture().failNextOpens(100);
            camera.cameraChange(0, "usb-1");
            QTRY_COMPARE(scriptedCapture().calls("open").size(), 2);
        }
        camera.stopCapture();
        QVERIFY(camera.wait(3000));
    }

    void cameraMayBeDestroyedInEveryState_data()
    {
        QTest::addColumn<int>("failingOpens");
        QTest::addColumn<bool>("started");
        QTest::newRow("idle") << 0 << false;
        QTest::newRow("opening") << 100 << true;
        QTest::newRow("streaming") << 0 << true;
    }

    void cameraMayBeDestroyedInEveryState()
    {
        QFETCH(int, failingOpens);
        QFETCH(bool, started);
        scriptedCapture().failNextOpens(failingOpens);
        const int before = ProcessLoad::now().threads;
        {
            MyCamera camera;
            if (started) {
                camera.cameraChange(0, "usb-1");
                QTRY_VERIFY(!scriptedCapture().calls("open").isEmpty());
                camera.setCameraInfo(CameraParameter::Gain, 1);
            }
        }
        QTRY_VERIFY(ProcessLoad::now().threads <= before);
    }

    // ---- Endurance

    void fiveHundredReplugsLeaveNothingBehind()
    {
        // One channel: OpenCV keeps some 850 bytes for each thread that ever ran one of its
        // parallel loops, as the conversion of a coloured frame does.
        scriptedCapture().showEndlessly(cv::Mat(48, 64, CV_8UC1, cv::Scalar(128)));
        MyCamera camera(quick());
        CameraLog log(camera);
        camera.cameraChange(0, "usb-1");
        ProcessLoad afterTheTenth;
        ProcessLoad afterAll;
        for (int cycle = 1; cycle <= 500; ++cycle) {
            const int before = log.frames;
            QVERIFY(eventually([&] {
                return camera.isOpen() && log.frames > before && log.said.contains("detect usb-1");
            }));
            camera.setCameraInfo(CameraParameter::Brightness, cycle % 100);
            scriptedCapture().attach({});
            QVERIFY(eventually([&] { return !camera.isRunning(); }));
            QVERIFY(eventually([&] { return log.said.contains("detect "); }));
            if (cycle == 10)
                afterTheTenth = ProcessLoad::atRest();
            if (cycle == 500)
                afterAll = ProcessLoad::atRest();
            // The test's own memory.
            log.said.clear();
            scriptedCapture().forgetCalls();
            scriptedCapture().attach({microscope});
        }
        QVERIFY2(afterAll.standsWhere(afterTheTenth, 64 * 1024),
                 qPrintable(afterTheTenth.text() + " became " + afterAll.text()));
    }
};

QTEST_MAIN(TestMyCamera)
#include "test_mycamera.moc"
