#include "camera/capture.h"
#include "camera/enumeratevideodevices.h"
#include "camera/mycamera.h"
#include "camera/v4l2capture.h"
#include "camera/videodevices.h"
#include "camera/videodevices_v4l2.h"
#include "tests/support/cameralog.h"
#include "tests/support/eventually.h"
#include "tests/support/fakev4l2/fakecamera.h"
#include "tests/support/processload.h"

#include <QtTest>

#include <opencv2/core/utils/logger.hpp>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

#include <unistd.h>

namespace {

const QSize full(1920, 1080);
const QSize small(640, 480);

/// Rests short enough for tests.
constexpr CameraPeriods quick = {5, 1, 2};

/// JPEG keeps a colour nearly.
bool looksLike(QRgb colour, int red, int green, int blue)
{
    const auto close = [](int a, int b) { return std::abs(a - b) <= 4; };
    return close(qRed(colour), red) && close(qGreen(colour), green) && close(qBlue(colour), blue);
}

} // namespace

class TestV4l2Capture : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Refusals are what is tested.
        cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    }

    void init()
    {
        system = std::make_unique<FakeV4l2>();
        microscope = std::make_unique<FakeCamera>(*system, "microscope");
        microscope->addFrames(full, 40, 80, 160);
        microscope->addFrames(small, 160, 80, 40);
    }

    void cleanup()
    {
        sharedCapture.release();
        QCOMPARE(system->heldDescriptors(), 0);
    }

    // ---- Discovery

    void metadataNodesAreLeftOutAndPositionNOpensDeviceN()
    {
        FakeCamera second(*system, "second");
        second.addFrames(small, 0, 0, 255);
        QCOMPARE(system->plug("microscope", "usb1/1-2", "Orvane_A"), 0);
        QCOMPARE(system->plug("second", "usb1/1-3", "Orvane_A"), 2);
        QCOMPARE(listed(), QStringList({"Orvane_A devices/usb1/1-2", "Orvane_A devices/usb1/1-3"}));

        QVERIFY(sharedCapture.open(1, captureBackend));
        QVERIFY(looksLike(firstPixel(), 255, 0, 0));
        QVERIFY(sharedCapture.open(0, captureBackend));
        QVERIFY(looksLike(firstPixel(), 40, 80, 160));
        QVERIFY(!sharedCapture.open(2, captureBackend));
        QVERIFY(!sharedCapture.isOpened());
        QVERIFY(!sharedCapture.open(-1, captureBackend));
    }

    void positionsHaveNoGapWhereNodeNumbersDo()
    {
        FakeCamera webcam(*system, "webcam");
        system->plug("webcam", "usb1/1-1", "Webcam");
        QCOMPARE(system->plug("microscope", "usb1/1-2", "Orvane_A"), 2);
        system->unplug("webcam");
        QCOMPARE(listed(), QStringList({"Orvane_A devices/usb1/1-2"}));
        QVERIFY(sharedCapture.open(0, captureBackend));
        QVERIFY(looksLike(firstPixel(), 40, 80, 160));
    }

    void pathSurvivesAReplugUnderAnotherNumber()
    {
        FakeCamera webcam(*system, "webcam");
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        const QStringList before = listed();
        system->unplug("microscope");
        system->plug("webcam", "usb1/1-1", "Webcam");
        QCOMPARE(system->plug("microscope", "usb1/1-2", "Orvane_A"), 2);
        QCOMPARE(listed(), QStringList({"Webcam devices/usb1/1-1"}) + before);
    }

    void nodesAreOrderedByNumberNotByText()
    {
        FakeCamera webcam(*system, "webcam");
        QStringList expected;
        for (int i = 0; i < 12; ++i) {
            const QString place = QStringLiteral("usb%1/1").arg(9 + i);
            system->plug("webcam", place, "Webcam");
            expected.append("Webcam devices/" + place);
        }
        QCOMPARE(listed(), expected);
    }

    void namesOfAnyAlphabetAndLengthPass()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_\xe6\x98\xbe\xe5\xbe\xae");
        system->plug("microscope", "usb1/1-3", QByteArray(300, 'n'));
        QCOMPARE(listed(), QStringList({QStringLiteral("Orvane_显微 devices/usb1/1-2"),
                                        QString(300, 'n') + " devices/usb1/1-3"}));
    }

    void nodeWithoutAPlaceOrANameIsSkippedAndTheRestStillOpensByPosition()
    {
        FakeCamera webcam(*system, "webcam");
        system->plug("webcam", "usb1/1-1", "Placeless");
        system->plug("webcam", "usb1/1-4", "Nameless");
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        QFile::remove(system->path("class/video0/device"));
        QFile::remove(system->path("class/video2/name"));
        QDir().mkpath(system->path("class/video"));
        QDir().mkpath(system->path("class/video9x"));
        QDir().mkpath(system->path("class/v4l-touch0"));
        QDir().mkpath(system->path("class/video99999999999"));
        QCOMPARE(listed(), QStringList({"Orvane_A devices/usb1/1-2"}));
        QVERIFY(sharedCapture.open(0, captureBackend));
        QVERIFY(looksLike(firstPixel(), 40, 80, 160));
    }

    void systemWithoutVideoHasNoDevices()
    {
        QVERIFY(listCaptureNodes("/nowhere").empty());
        QDir(system->path("class")).removeRecursively();
        QCOMPARE(listed(), QStringList());
    }

    void whoMayNotOpenADeviceIsToldTheReason()
    {
        const QString file = system->path("device file");
        QCOMPARE(QString::fromStdString(accessFault(file.toStdString())),
                 file + ": No such file or directory");
        QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        QCOMPARE(accessFault(file.toStdString()), std::string());
    }

    void aDeviceFileOfOthersIsRefused()
    {
        if (geteuid() == 0)
            QSKIP("The superuser may open any device.");
        const QString file = system->path("device file");
        QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner));
        QCOMPARE(QString::fromStdString(accessFault(file.toStdString())),
                 file + ": Permission denied");
    }

    void aDeviceThatIsNotListedHasNoFault()
    {
        QCOMPARE(videoDeviceFault("/devices/nowhere"), std::string());
    }

    // ---- Streaming

    void microscopeStreamsMjpgInTheSizeAskedFor()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        MyCamera camera(quick);
        CameraLog log(camera);
        camera.cameraChange(0, place("usb1/1-2"));
        QTRY_VERIFY(log.frames > 2);
        QCOMPARE(log.frame.size(), full);
        QVERIFY(looksLike(CameraLog::colourOf(log.frame), 160, 80, 40));
        QCOMPARE(microscope->log().filter("MJPG").last(), QString("MJPG 1920x1080"));
        QVERIFY(log.said.contains("firmware 7"));

        camera.setCameraInfo(CameraParameter::Resolution, 4);
        QTRY_COMPARE(log.frame.size(), small);
        QVERIFY(looksLike(CameraLog::colourOf(log.frame), 40, 80, 160));
        QCOMPARE(log.count("status false"), 0);
        QCOMPARE(log.count("resolution 640*480"), 1);
    }

    void unpluggedMicroscopeComesBackUnderItsOldNumber()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        MyCamera camera(quick);
        CameraLog log(camera);
        camera.cameraChange(0, place("usb1/1-2"));
        QTRY_VERIFY(log.frames > 0);
        system->unplug("microscope");
        QTRY_COMPARE(log.count("resolution 0x0"), 1);
        QTRY_VERIFY(!camera.isRunning());
        // Released at once; otherwise the kernel would give it another node.
        QCOMPARE(system->heldDescriptors(), 0);
        const int before = log.frames;
        QCOMPARE(system->plug("microscope", "usb1/1-2", "Orvane_A"), 0);
        QTRY_VERIFY(log.frames > before);
        QCOMPARE(log.count("status true"), 2);
    }

    void badFrameIsAnEmptyFrame_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("no bytes") << "empty";
        QTest::newRow("none within the time") << "stall";
    }

    void badFrameIsAnEmptyFrame()
    {
        QFETCH(QString, how);
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        QVERIFY(sharedCapture.open(0, captureBackend));
        cv::Mat frame;
        sharedCapture >> frame;
        QVERIFY(!frame.empty());
        microscope->setMisbehaving(how, true);
        // The library may have a good frame or two in hand.
        QVERIFY(eventually([&frame] {
            sharedCapture >> frame;
            return frame.empty();
        }));
        QVERIFY(sharedCapture.isOpened());
    }

    void bytesThatAreNoPictureDoNoHarm()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        microscope->setMisbehaving("broken", true);
        QVERIFY(sharedCapture.open(0, captureBackend));
        cv::Mat frame;
        for (int i = 0; i < 5; ++i)
            sharedCapture >> frame;
        microscope->setMisbehaving("broken", false);
        for (int i = 0; i < 5; ++i)
            sharedCapture >> frame;
        QCOMPARE(frame.size(), cv::Size(640, 480));
    }

    void busyMicroscopeIsOpenedOnceItIsFree()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        microscope->setMisbehaving("busy", true);
        MyCamera camera(quick);
        CameraLog log(camera);
        camera.cameraChange(0, place("usb1/1-2"));
        QTest::qWait(100);
        QCOMPARE(log.frames, 0);
        microscope->setMisbehaving("busy", false);
        QTRY_VERIFY(log.frames > 0);
    }

    void stalledMicroscopeLetsTheCaptureEndWithinThreeSeconds()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        microscope->setMisbehaving("stall", true);
        MyCamera camera(quick);
        CameraLog log(camera);
        camera.cameraChange(0, place("usb1/1-2"));
        QTRY_VERIFY(camera.isOpen());
        camera.stopCapture();
        QVERIFY(camera.wait(3000));
    }

    // ---- The parameter table at the kernel's controls

    void parameterReachesItsControl_data()
    {
        QTest::addColumn<int>("property");
        QTest::addColumn<double>("value");
        QTest::addColumn<QStringList>("log");
        const auto row = [](const char *name, int property, double value, const QStringList &log) {
            QTest::newRow(name) << property << value << log;
        };
        row("brightness", 10, 77, {"brightness 77"});
        row("contrast", 11, 33, {"contrast 33"});
        row("chroma", 13, 99, {"hue 99"});
        row("saturation", 12, 0, {"saturation 0"});
        row("focus while the camera focuses", 28, 250, {"focus 250"});
        row("autofocus", 39, 0, {"focus_auto 0"});
        row("focus window", 33, 4367, {"pan 4367"});
        row("zoom", 27, 130, {"zoom 130"});
        row("red", 22, 4096, {"gamma 4096"});
        row("gain", 14, 50, {"gain 50"});
        row("sharpness", 20, 15, {"sharpness 15"});
        row("save to the camera", 20, 20, {"sharpness 20"});
        row("the balance that nobody sends", 26, 9, {"red_balance 9"});
        row("switches, all automatic", 32, 12,
            {"backlight 12", "exposure_auto 3", "auto_white_balance 1"});
        row("switches, all by hand", 32, 51,
            {"backlight 51", "exposure_auto 1", "auto_white_balance 0"});
        row("switches, exposure automatic", 32, 8,
            {"backlight 8", "exposure_auto 3", "auto_white_balance 0"});
        row("switches, white balance automatic", 32, 4,
            {"backlight 4", "exposure_auto 1", "auto_white_balance 1"});
        row("green", 35, 300, {"roll 300"});
        row("blue", 36, 40960, {"iris 40960"});
        row("shutter, shortest", 15, -14, {"exposure 1"});
        row("shutter, 1/64 s", 15, -6, {"exposure 156"});
        row("shutter, longest", 15, 3, {"exposure 80000"});
    }

    void parameterReachesItsControl()
    {
        QFETCH(int, property);
        QFETCH(double, value);
        QFETCH(QStringList, log);
        open();
        sharedCapture.set(property, value);
        QCOMPARE(microscope->log(), log);
    }

    void parameterReadsBack_data()
    {
        QTest::addColumn<int>("property");
        QTest::addColumn<double>("value");
        QTest::newRow("brightness") << 10 << 56.0;
        QTest::newRow("contrast") << 11 << 50.0;
        QTest::newRow("chroma") << 13 << 50.0;
        QTest::newRow("saturation") << 12 << 50.0;
        QTest::newRow("focus") << 28 << 200.0;
        QTest::newRow("autofocus") << 39 << 1.0;
        QTest::newRow("zoom") << 27 << 1.0;
        QTest::newRow("red") << 22 << 668.0;
        QTest::newRow("gain") << 14 << 0.0;
        QTest::newRow("sharpness") << 20 << 4.0;
        QTest::newRow("the balance that nobody sends") << 26 << 3.0;
        QTest::newRow("switches") << 32 << 12.0;
        QTest::newRow("green") << 35 << 269.0;
        QTest::newRow("blue") << 36 << 5570.0;
        QTest::newRow("shutter, 156 units") << 15 << -6.0;
        QTest::newRow("firmware") << 34 << 7.0;
    }

    void parameterReadsBack()
    {
        QFETCH(int, property);
        open();
        QTEST(sharedCapture.get(property), "value");
    }

    void focusByHandIsTakenOnlyOnceAutofocusIsOff()
    {
        open();
        QVERIFY(!sharedCapture.set(cv::CAP_PROP_FOCUS, 300));
        QVERIFY(sharedCapture.set(cv::CAP_PROP_AUTOFOCUS, 0));
        QVERIFY(sharedCapture.set(cv::CAP_PROP_FOCUS, 300));
        QCOMPARE(microscope->control("focus"), 300);
    }

    void shutterIsTakenOnceTheSwitchesSayByHand()
    {
        open();
        QVERIFY(!sharedCapture.set(cv::CAP_PROP_EXPOSURE, -3));
        sharedCapture.set(cv::CAP_PROP_BACKLIGHT, 0);
        QVERIFY(sharedCapture.set(cv::CAP_PROP_EXPOSURE, -3));
        QCOMPARE(microscope->control("exposure"), 1250);
        QCOMPARE(sharedCapture.get(cv::CAP_PROP_EXPOSURE), -3.0);
    }

    void whatTheDeviceLacksStaysSilent()
    {
        for (const char *name : {"roll", "iris", "zoom", "exposure", "tilt"})
            microscope->removeControl(name);
        open();
        for (int property : {cv::CAP_PROP_ROLL, cv::CAP_PROP_IRIS, cv::CAP_PROP_ZOOM,
                             cv::CAP_PROP_EXPOSURE, cv::CAP_PROP_TILT}) {
            QVERIFY(!sharedCapture.set(property, 1));
            QCOMPARE(sharedCapture.get(property), -1.0);
        }
        QCOMPARE(readFirmwareVersion(), -1.0);
        QCOMPARE(microscope->log(), QStringList());
    }

    void cameraThatRefusesEverySetStillStreams()
    {
        microscope->setMisbehaving("refuse", true);
        open();
        for (int property : {10, 11, 12, 13, 14, 15, 20, 22, 26, 27, 28, 32, 33, 35, 36, 39})
            QVERIFY(!sharedCapture.set(property, 1));
        QVERIFY(looksLike(firstPixel(), 40, 80, 160));
    }

    void unpluggedDeviceStaysOpenAndAnswersMinusOne()
    {
        open();
        QVERIFY(looksLike(firstPixel(), 40, 80, 160));
        system->unplug("microscope");
        cv::Mat frame;
        sharedCapture >> frame;
        QVERIFY(frame.empty());
        QVERIFY(sharedCapture.isOpened());
        QCOMPARE(sharedCapture.get(cv::CAP_PROP_FOCUS), -1.0);
        QCOMPARE(sharedCapture.get(cv::CAP_PROP_ROLL), -1.0);
        QVERIFY(!sharedCapture.set(cv::CAP_PROP_FOCUS, 5));
    }

    void closedDeviceAnswersMinusOne()
    {
        sharedCapture.release();
        cv::Mat frame;
        sharedCapture >> frame;
        QVERIFY(frame.empty());
        QCOMPARE(sharedCapture.get(cv::CAP_PROP_FOCUS), -1.0);
        QCOMPARE(sharedCapture.get(cv::CAP_PROP_ROLL), -1.0);
        QVERIFY(!sharedCapture.set(cv::CAP_PROP_GAIN, 5));
        QVERIFY(!sharedCapture.set(cv::CAP_PROP_ROLL, 5));
        QVERIFY(!sharedCapture.set(cv::CAP_PROP_BACKLIGHT, 5));
    }

    void readingBackWhileTheDeviceOpensAndClosesIsSafe()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        std::atomic<bool> over{false};
        std::thread panel([&over] {
            while (!over) {
                const CameraInfo info = readCameraRecord();
                Q_UNUSED(info)
                sharedCapture.set(cv::CAP_PROP_GAIN, 5);
                sharedCapture.set(cv::CAP_PROP_FRAME_WIDTH, 640);
                sharedCapture.set(cv::CAP_PROP_FRAME_HEIGHT, 480);
            }
        });
        cv::Mat frame;
        bool allOpened = true;
        for (int i = 0; i < 20; ++i) {
            allOpened &= sharedCapture.open(0, captureBackend);
            sharedCapture >> frame;
            sharedCapture.release();
        }
        over = true;
        panel.join();
        QVERIFY(allOpened);
    }

    void shutterConvertsToTheKernelsUnits_data()
    {
        QTest::addColumn<double>("log2Seconds");
        QTest::addColumn<int>("units");
        QTest::addColumn<double>("back");
        QTest::newRow("below the shortest") << -40.0 << 1 << -13.0;
        QTest::newRow("-14 rounds to one unit") << -14.0 << 1 << -13.0;
        QTest::newRow("-13") << -13.0 << 1 << -13.0;
        QTest::newRow("-12") << -12.0 << 2 << -12.0;
        QTest::newRow("-6") << -6.0 << 156 << -6.0;
        QTest::newRow("one second") << 0.0 << 10000 << 0.0;
        QTest::newRow("eight seconds") << 3.0 << 80000 << 3.0;
        QTest::newRow("beyond all") << 1000.0 << 2147483647 << 18.0;
    }

    void shutterConvertsToTheKernelsUnits()
    {
        QFETCH(double, log2Seconds);
        QFETCH(int, units);
        QFETCH(double, back);
        QCOMPARE(exposureUnits(log2Seconds), units);
        QCOMPARE(exposureLog2Seconds(units), back);
    }

    void noExposureTimeReadsMinusOne()
    {
        QCOMPARE(exposureLog2Seconds(-1), -1.0);
        QCOMPARE(exposureLog2Seconds(0), -1.0);
    }

    // ---- Endurance

    void fiftyReplugsLeaveNothingBehind()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        MyCamera camera(quick);
        CameraLog log(camera);
        camera.cameraChange(0, place("usb1/1-2"));
        ProcessLoad afterTheTenth;
        ProcessLoad afterAll;
        for (int cycle = 1; cycle <= 50; ++cycle) {
            const int before = log.frames;
            QVERIFY(eventually([&] { return camera.isOpen() && log.frames > before; }));
            system->unplug("microscope");
            QVERIFY(eventually([&] { return !camera.isRunning(); }));
            QCOMPARE(system->heldDescriptors(), 0);
            if (cycle == 10)
                afterTheTenth = ProcessLoad::atRest();
            if (cycle == 50)
                afterAll = ProcessLoad::atRest();
            QCOMPARE(system->plug("microscope", "usb1/1-2", "Orvane_A"), 0);
            log.said.clear();
        }
        // OpenCV keeps some 850 bytes for each thread that ever converted a coloured frame.
        QVERIFY2(afterAll.standsWhere(afterTheTenth, 40 * 1024 + 64 * 1024),
                 qPrintable(afterTheTenth.text() + " became " + afterAll.text()));
    }

private:
    /// The microscope alone, open.
    void open()
    {
        system->plug("microscope", "usb1/1-2", "Orvane_A");
        QVERIFY(sharedCapture.open(0, captureBackend));
        microscope->forgetLog();
    }

    QString place(const QString &onTheBus) const
    {
        return QFileInfo(system->path("devices/" + onTheBus)).canonicalFilePath();
    }

    /// Names and paths, the latter below the folder of the fake devices.
    QStringList listed() const
    {
        QStringList names;
        QStringList paths;
        if (listVideoDevices(names, paths) != names.size() || names.size() != paths.size())
            return {"lists of different lengths"};
        const QString folder = QFileInfo(system->path(".")).canonicalFilePath() + '/';
        for (int i = 0; i < names.size(); ++i)
            names[i] += ' ' + QString(paths[i]).remove(folder);
        return names;
    }

    static QRgb firstPixel()
    {
        cv::Mat frame;
        sharedCapture >> frame;
        if (frame.empty())
            return 0;
        const cv::Vec3b pixel = frame.at<cv::Vec3b>(0, 0);
        return qRgb(pixel[2], pixel[1], pixel[0]);
    }

    std::unique_ptr<FakeV4l2> system;
    std::unique_ptr<FakeCamera> microscope;
};

QTEST_MAIN(TestV4l2Capture)
#include "test_v4l2capture.moc"
