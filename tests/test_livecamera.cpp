// The simulated microscope behind the real threads and the real panels, wired as the window does.

#include "camera/camerasetwidget2.h"
#include "camera/deviceinfowidget.h"
#include "camera/devicewidget.h"
#include "simulator/simulatedcapture.h"
#include "tests/support/cameralog.h"
#include "tests/support/eventually.h"
#include "tests/support/panel.h"
#include "tests/support/processload.h"
#include "tests/support/setrecord.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QtTest>

namespace {

const SimulatedCapture::Device microscope = {"Orvane_A", "usb-1"};
const SimulatedCapture::Device second = {"Orvane_B", "usb-2"};
const SimulatedCapture::Device webcam = {"Webcam", "usb-9"};

/// A camera with the panels that go with it.
struct Station
{
    explicit Station(int batchMs = 1)
        : camera({1, batchMs, 5})
        , log(camera)
    {
        QObject::connect(&camera, &MyCamera::detect, &devices, &DeviceWidget::deviceChange);
        QObject::connect(&devices, &DeviceWidget::cameraWork, &camera,
                         [this](int index, const QString &, const QString &path) {
                             camera.cameraChange(index, path);
                         });
        QObject::connect(&devices, &DeviceWidget::cameraClose, &camera, &MyCamera::closeCamera);
        QObject::connect(&panel, &CameraSetWidget2::cameraInfoChange, &camera,
                         &MyCamera::setCameraInfo);
    }

    QList<DeviceInfoWidget *> rows()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return devices.findChildren<DeviceInfoWidget *>();
    }

    void click(int row) { control<QRadioButton>(*rows().at(row), "radioButton").click(); }

    /// Picks the only camera and waits for its picture.
    bool pickTheCamera()
    {
        if (!QTest::qWaitFor([this] { return rows().size() == 1; }))
            return false;
        click(0);
        return nextFrames();
    }

    bool nextFrames()
    {
        const int before = log.frames;
        return QTest::qWaitFor([this, before] { return log.frames > before + 1; }, 20000);
    }

    MyCamera camera;
    CameraLog log;
    SetRecord sets;
    DeviceWidget devices;
    CameraSetWidget2 panel;
};

} // namespace

class TestLiveCamera : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        SimulatedCapture &device = simulatedMicroscope();
        device.release();
        device.attach({microscope});
        device.failNextOpens(0);
        device.giveEmptyFrames(0);
        device.setNoise(false);
        device.setFrameInterval(std::chrono::milliseconds(15));
        device.setMotorSpeed(1e9);
        // It keeps its settings from test to test.
        device.open(0, cv::CAP_ANY);
        device.set(cv::CAP_PROP_BACKLIGHT, 0);
        device.set(cv::CAP_PROP_AUTOFOCUS, 0);
        device.set(cv::CAP_PROP_SATURATION, 50);
        device.release();
    }

    // ---- Coming and going

    void aPickedCameraShowsItsPictureAndItsFirmware()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        QCOMPARE(station.log.said, QStringList({"detect usb-1", "firmware 26", "status true",
                                                "resolution 1920*1080"}));
        QCOMPARE(station.log.frame.size(), QSize(1920, 1080));
        QCOMPARE(station.sets.all(), QStringList({"6=1196444237", "3=1920", "4=1080"}));
        QVERIFY(station.camera.isOpen());
    }

    void anUnpluggedCameraGoesOfflineAndComesBackByItself()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.log.said.clear();
        simulatedMicroscope().unplug("usb-1");
        QTRY_COMPARE(station.log.said.size(), 3);
        QVERIFY(station.log.said.contains("status false"));
        QVERIFY(station.log.said.contains("resolution 0x0"));
        QVERIFY(station.log.said.contains("detect "));
        QCOMPARE(textOf(*station.rows().at(0), "label"), QString("离线"));
        QTRY_VERIFY(!station.camera.isRunning());
        QVERIFY(!station.camera.isOpen());

        // Another device has taken its place meanwhile: it is opened at its new one.
        station.log.said.clear();
        simulatedMicroscope().attach({webcam, microscope});
        QVERIFY(station.nextFrames());
        QVERIFY(station.log.said.contains("status true"));
        QCOMPARE(station.rows().size(), 1);
        QCOMPARE(textOf(*station.rows().at(0), "label"), QString("1"));
    }

    void aDismissedOfflineCameraIsGivenUp()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        simulatedMicroscope().unplug("usb-1");
        QTRY_VERIFY(station.log.said.contains("detect "));
        station.click(0);
        QVERIFY(station.rows().isEmpty());
        QTRY_VERIFY(!station.camera.isRunning());
        simulatedMicroscope().plugIn(microscope);
        QTRY_COMPARE(station.log.count("detect usb-1"), 2);
        // A later pass than the one that saw it come back.
        simulatedMicroscope().plugIn(webcam);
        QTRY_VERIFY(station.log.said.contains("detect usb-1,usb-9"));
        QVERIFY(!station.camera.isRunning());
        QVERIFY(!station.rows().at(0)->isChecked());
    }

    void aSecondClickClosesTheCamera()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.click(0);
        QTRY_VERIFY(!station.camera.isRunning());
        QTRY_VERIFY(station.log.said.endsWith("resolution 0x0"));
        QVERIFY(!simulatedMicroscope().isOpened());
    }

    void aSecondCameraTakesOverWithoutEndingTheThread()
    {
        simulatedMicroscope().attach({microscope, second});
        Station station;
        QTRY_COMPARE(station.rows().size(), 2);
        int ends = 0;
        connect(&station.camera, &QThread::finished, &station.log, [&ends] { ++ends; });
        station.click(0);
        QVERIFY(station.nextFrames());
        station.log.said.clear();
        station.click(1);
        QTRY_COMPARE(station.log.said, QStringList({"status false", "resolution 0x0", "firmware 26",
                                                    "status true", "resolution 1920*1080"}));
        QVERIFY(station.nextFrames());
        QVERIFY(!station.rows().at(0)->isChecked());
        QVERIFY(station.rows().at(1)->isChecked());
        QCOMPARE(ends, 0);
    }

    void theCameraInUseIsReopenedWhenItsPlaceInTheListChanges()
    {
        simulatedMicroscope().attach({microscope, second});
        Station station;
        QTRY_COMPARE(station.rows().size(), 2);
        station.click(1);
        QVERIFY(station.nextFrames());
        station.log.said.clear();
        simulatedMicroscope().unplug("usb-1");
        QTRY_COMPARE(station.log.said,
                     QStringList({"detect usb-2", "status false", "resolution 0x0", "firmware 26",
                                  "status true", "resolution 1920*1080"}));
        QCOMPARE(station.rows().size(), 1);
        QVERIFY(station.rows().at(0)->isChecked());
    }

    void anEmptyFrameHealsByItself()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.log.said.clear();
        simulatedMicroscope().giveEmptyFrames(1);
        QTRY_COMPARE(station.log.said, QStringList({"status false", "resolution 0x0", "firmware 26",
                                                    "status true", "resolution 1920*1080"}));
        QVERIFY(station.nextFrames());
    }

    void aCameraThatRefusesAtFirstIsOpenedInTheEnd()
    {
        simulatedMicroscope().failNextOpens(5);
        Station station;
        QVERIFY(station.pickTheCamera());
        QCOMPARE(station.log.count("status true"), 1);
        QCOMPARE(station.log.count("status false"), 0);
    }

    void fiveHundredReplugsLeaveNothingBehind()
    {
        SimulatedCapture &device = simulatedMicroscope();
        device.setFrameInterval(std::chrono::milliseconds(1));
        Station station;
        QVERIFY(station.pickTheCamera());
        station.camera.setCameraInfo(CameraParameter::Resolution, 4);
        QVERIFY(eventually([&] { return station.log.frame.size() == QSize(640, 480); }));
        const auto rowSays = [&station](const QString &text) {
            const QList<DeviceInfoWidget *> rows = station.rows();
            return rows.size() == 1 && textOf(*rows.first(), "label") == text;
        };
        ProcessLoad afterTheTenth;
        ProcessLoad afterAll;
        for (int cycle = 1; cycle <= 500; ++cycle) {
            const int before = station.log.frames;
            QVERIFY(eventually([&] { return station.log.frames > before && rowSays("1"); }));
            station.panel.changeFocus(cycle % 400);
            device.unplug("usb-1");
            QVERIFY(eventually([&] { return !station.camera.isRunning() && rowSays("离线"); }));
            if (cycle == 10)
                afterTheTenth = ProcessLoad::atRest();
            if (cycle == 500)
                afterAll = ProcessLoad::atRest();
            // The test's own memory.
            station.log.said.clear();
            station.sets.clear();
            device.plugIn(microscope);
        }
        // OpenCV keeps some 850 bytes for each thread that ever converted a coloured frame.
        QVERIFY2(afterAll.standsWhere(afterTheTenth, 490 * 850 + 64 * 1024),
                 qPrintable(afterTheTenth.text() + " became " + afterAll.text()));
    }

    // ---- Parameters

    void everyParameterReachesTheDevice_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("num");
        QTest::addColumn<QStringList>("sets");
        QTest::newRow("brightness") << 0x1 << 56 << QStringList{"10=56"};
        QTest::newRow("contrast") << 0x2 << 50 << QStringList{"11=50"};
        QTest::newRow("chroma") << 0x4 << 99 << QStringList{"13=99"};
        QTest::newRow("saturation") << 0x8 << 0 << QStringList{"12=0"};
        QTest::newRow("focus, autofocus off first") << 0x10 << 200 << QStringList{"39=0", "28=200"};
        QTest::newRow("autofocus") << 0x20 << 1 << QStringList{"39=1"};
        QTest::newRow("focus window") << 0x40 << 4367 << QStringList{"33=4367"};
        QTest::newRow("resolution, by its index") << 0x80 << 4 << QStringList{"3=640", "4=480"};
        QTest::newRow("zoom") << 0x100 << 99 << QStringList{"27=99"};
        QTest::newRow("red") << 0x200 << 668 << QStringList{"22=668"};
        QTest::newRow("gain") << 0x400 << 50 << QStringList{"14=50"};
        QTest::newRow("sharpness") << 0x800 << 15 << QStringList{"20=15"};
        QTest::newRow("white balance V") << 0x1000 << 7 << QStringList{"26=7"};
        QTest::newRow("function word") << 0x2000 << 63 << QStringList{"32=63"};
        QTest::newRow("green") << 0x4000 << 269 << QStringList{"35=269"};
        QTest::newRow("blue") << 0x8000 << 5570 << QStringList{"36=5570"};
        QTest::newRow("shutter") << 0x10000 << -14 << QStringList{"15=-14"};
        QTest::newRow("no such resolution") << 0x80 << 5 << QStringList{};
        QTest::newRow("no such type") << 0x20000 << 1 << QStringList{};
        QTest::newRow("two types at once") << 0x3 << 1 << QStringList{};
    }

    void everyParameterReachesTheDevice()
    {
        QFETCH(int, type);
        QFETCH(int, num);
        QFETCH(QStringList, sets);
        Station station;
        QVERIFY(station.pickTheCamera());
        station.sets.clear();
        station.camera.setCameraInfo(type, num);
        QTRY_VERIFY(station.sets.all().size() >= sets.size());
        // Whatever else it had caused would stand before this one.
        station.camera.setCameraInfo(0x2, 42);
        QTRY_VERIFY(station.sets.has("11=42"));
        QCOMPARE(station.sets.all(), sets + QStringList{"11=42"});
    }

    void aBatchIsAppliedInItsFixedOrder()
    {
        Station station(1000);
        QVERIFY(station.pickTheCamera());
        station.sets.clear();
        station.camera.setCameraInfo(0x2, 1); // the thread rests after this one
        QTRY_COMPARE(station.sets.all(), QStringList{"11=1"});
        for (int type = 0x10000; type != 0; type >>= 1) {
            station.camera.setCameraInfo(type, 3);
            station.camera.setCameraInfo(type, 4); // the newest number counts
        }
        station.sets.clear();
        QTRY_COMPARE(station.sets.all(),
                     QStringList({"10=4", "11=4", "13=4", "12=4", "39=0", "28=4", "39=4", "3=640",
                                  "4=480", "27=4", "33=4", "22=4", "14=4", "20=4", "26=4", "32=4",
                                  "35=4", "36=4", "15=4"}));
    }

    void whatWasSetIsReadBack()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.sets.clear();
        const std::pair<int, int> changes[] = {
            {0x1, 61},    {0x2, 62},     {0x4, 63},    {0x8, 64},  {0x10, 365},
            {0x100, 66},  {0x200, 67},   {0x400, 48},  {0x800, 9}, {0x1000, 70},
            {0x4000, 72}, {0x8000, 730}, {0x10000, -6}};
        for (const auto &[type, num] : changes)
            station.camera.setCameraInfo(type, num);
        QTRY_VERIFY(station.sets.has("15=-6"));
        const CameraInfo info = MyCamera::readCameraInfo();
        QVERIFY(info.valid);
        QCOMPARE(info.brightness, 61);
        QCOMPARE(info.contrast, 62);
        QCOMPARE(info.chroma, 63);
        QCOMPARE(info.saturation, 64);
        QCOMPARE(info.focus, 365);
        QCOMPARE(info.autoFocus, 0);
        QCOMPARE(info.resolution, -1);
        QCOMPARE(info.zoom, 66);
        QCOMPARE(info.red, 67);
        QCOMPARE(info.gain, 48);
        QCOMPARE(info.sharpness, 9);
        QCOMPARE(info.whiteBalanceV, 70);
        QCOMPARE(info.functionWord, 0);
        QCOMPARE(info.green, 72);
        QCOMPARE(info.blue, 730);
        QCOMPARE(info.shutter, -6);
        QCOMPARE(MyCamera::currentBrightness(), 61);
        QCOMPARE(MyCamera::currentFocus(), 365);
        QCOMPARE(MyCamera::currentZoom(), 66);
        QCOMPARE(MyCamera::currentGamma(), 67);
        QCOMPARE(MyCamera::currentGain(), 48);
        QCOMPARE(MyCamera::currentRoll(), 72);
        QCOMPARE(MyCamera::currentIris(), 730);
        QCOMPARE(MyCamera::currentExposure(), -6);
    }

    void resolutionChangesWithoutEndingTheStreamAndSurvivesAReplug()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.log.said.clear();
        control<QComboBox>(station.panel, "comboBox_2").setCurrentIndex(4);
        QTRY_COMPARE(station.log.frame.size(), QSize(640, 480));
        QCOMPARE(station.log.said, QStringList({"resolution 640*480"}));
        QCOMPARE(station.camera.frameWidth(), 640);
        QCOMPARE(station.camera.frameHeight(), 480);

        simulatedMicroscope().unplug("usb-1");
        QTRY_VERIFY(station.log.said.contains("resolution 0x0"));
        QTRY_VERIFY(!station.camera.isRunning());
        station.sets.clear();
        simulatedMicroscope().plugIn(microscope);
        QVERIFY(station.nextFrames());
        QCOMPARE(station.sets.all(), QStringList({"6=1196444237", "3=640", "4=480"}));
        QCOMPARE(station.log.frame.size(), QSize(640, 480));
        QVERIFY(station.log.said.endsWith("resolution 640*480"));
    }

    void aChangeWhileClosedIsLost()
    {
        Station station;
        station.camera.setCameraInfo(0x2, 13);
        QVERIFY(station.pickTheCamera());
        station.camera.setCameraInfo(0x1, 14);
        QTRY_VERIFY(station.sets.has("10=14"));
        QVERIFY(!station.sets.has("11=13"));
    }

    // ---- The panel

    void theLoadedPanelShowsTheCameraAndSendsItBack()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        SimulatedCapture &device = simulatedMicroscope();
        device.set(cv::CAP_PROP_CONTRAST, 44);
        device.set(cv::CAP_PROP_AUTOFOCUS, 0);
        device.set(cv::CAP_PROP_FOCUS, 123);
        device.set(cv::CAP_PROP_IRIS, 5570);
        device.set(cv::CAP_PROP_BACKLIGHT, 4 + 8);
        station.sets.clear();
        station.panel.loadCameraInfo(MyCamera::readCameraInfo());
        QCOMPARE(textOf(station.panel, "label_19"), QString("44"));
        QCOMPARE(textOf(station.panel, "label_2"), QString("123"));
        QCOMPARE(textOf(station.panel, "label_17"), QString("557"));
        QVERIFY(control<QCheckBox>(station.panel, "checkBox_3").isChecked());
        QVERIFY(control<QCheckBox>(station.panel, "checkBox_5").isChecked());
        QVERIFY(control<QCheckBox>(station.panel, "checkBox_7").isChecked());
        QTRY_VERIFY(station.sets.has("32=12"));
        QVERIFY(station.sets.has("11=44"));
        QVERIFY(station.sets.has("28=123"));
        QVERIFY(station.sets.has("36=5570"));
    }

    void aDraggedSliderIsThinnedAndEndsWhereItWasLeft()
    {
        Station station(200);
        QVERIFY(station.pickTheCamera());
        station.sets.clear();
        auto &contrast = control<QSlider>(station.panel, "horizontalSlider_9");
        for (int value = 1; value <= 100; ++value)
            contrast.setValue(value);
        QTRY_VERIFY(station.sets.has("11=100"));
        QVERIFY(station.sets.all().size() < 50);
        QCOMPARE(station.sets.all().last(), QString("11=100"));
    }

    void saveLeavesTheSharpnessAsItWas()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.sets.clear();
        control<QSlider>(station.panel, "horizontalSlider_10").setValue(6);
        QTRY_VERIFY(station.sets.has("20=6"));
        control<QPushButton>(station.panel, "pushButton_14").click();
        QTRY_VERIFY(station.sets.has("20=20"));
        QCOMPARE(MyCamera::readCameraInfo().sharpness, 6);
    }

    void focusUnderAutofocusEndsAtTheWantedPosition()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.panel.checkAutoFocus();
        QTRY_VERIFY(station.sets.has("39=1"));
        station.panel.changeFocus(77);
        QTRY_COMPARE(simulatedMicroscope().focusPosition(), 77.0);
        QCOMPARE(MyCamera::readCameraInfo().autoFocus, 0);
    }

    void clickFocusMovesTheMotorByItself()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        station.panel.changeFocus(400);
        QTRY_COMPARE(simulatedMicroscope().focusPosition(), 400.0);
        station.sets.clear();
        station.camera.blinkArea(17, 15);
        station.panel.checkAutoFocus();
        QTRY_VERIFY(station.sets.has("33=4367"));
        QTRY_VERIFY(station.sets.has("39=1"));
        QTRY_VERIFY(simulatedMicroscope().focusPosition() < 399);
    }

    void blackAndWhiteTakesTheColourOutOfThePicture()
    {
        Station station;
        QVERIFY(station.pickTheCamera());
        const auto isGrey = [&station] {
            const QImage image = station.log.frame.toImage().scaled(160, 90);
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    if (!qIsGray(image.pixel(x, y)))
                        return false;
            return true;
        };
        control<QSlider>(station.panel, "horizontalSlider_13").setValue(60);
        QTRY_VERIFY(!isGrey());
        control<QCheckBox>(station.panel, "checkBox_12").click();
        QTRY_VERIFY(isGrey());
        control<QCheckBox>(station.panel, "checkBox_12").click();
        QTRY_VERIFY(!isGrey());
    }
};

QTEST_MAIN(TestLiveCamera)
#include "test_livecamera.moc"
