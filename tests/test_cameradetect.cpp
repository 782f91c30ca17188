#include "camera/cameradetect.h"
#include "camera/videodevices.h"
#include "camera/videodevices_dshow.h"
#include "tests/support/scriptedcapture.h"

#include <QtTest>

namespace {

const ScriptedDevice first = {"Orvane_A", "usb-1"};
const ScriptedDevice second = {"Orvane_B", "usb-2"};

/// A detector and what it said, as it arrived on the GUI thread.
struct Watch
{
    Watch()
    {
        QObject::connect(&detector, &CameraDetect::detect, &context,
                         [this](const QStringList &names, const QStringList &paths) {
                             lists.append(names.join(',') + '|' + paths.join(','));
                         });
        QObject::connect(&detector, &CameraDetect::accessChange, &context,
                         [this](const QStringList &said) { faults.append(said.join('|')); });
        QObject::connect(&detector, &CameraDetect::alive, &context, [this] { ++alives; });
    }

    /// Waits for some more passes over the list.
    void passes(int count)
    {
        for (int i = 0; i < count; ++i)
            QTest::qWait(1);
    }

    QObject context;
    QStringList lists;
    QStringList faults;
    int alives = 0;
    CameraDetect detector{1};
};

} // namespace

class TestCameraDetect : public QObject
{
    Q_OBJECT

private slots:
    void init() { scriptedCapture().reset(); }

    void firstPassWithoutDevicesIsSilent()
    {
        Watch watch;
        watch.detector.start();
        watch.passes(20);
        QCOMPARE(watch.lists, QStringList());
    }

    void firstPassWithADeviceTellsIt()
    {
        scriptedCapture().attach({first});
        Watch watch;
        watch.detector.start();
        QTRY_COMPARE(watch.lists, QStringList({"Orvane_A|usb-1"}));
    }

    void pluggingAndUnpluggingChangeTheList()
    {
        Watch watch;
        watch.detector.start();
        scriptedCapture().attach({first});
        QTRY_COMPARE(watch.lists.size(), 1);
        scriptedCapture().attach({});
        QTRY_COMPARE(watch.lists, QStringList({"Orvane_A|usb-1", "|"}));
    }

    void secondIdenticalCameraIsAChange()
    {
        scriptedCapture().attach({{"Orvane_A", "usb-1"}});
        Watch watch;
        watch.detector.start();
        QTRY_COMPARE(watch.lists.size(), 1);
        scriptedCapture().attach({{"Orvane_A", "usb-1"}, {"Orvane_A", "usb-2"}});
        QTRY_COMPARE(watch.lists.value(1), QString("Orvane_A,Orvane_A|usb-1,usb-2"));
    }

    void nameAloneIsNoChange()
    {
        scriptedCapture().attach({{"Orvane_A", "usb-1"}});
        Watch watch;
        watch.detector.start();
        QTRY_COMPARE(watch.lists.size(), 1);
        scriptedCapture().attach({{"Orvane_Z", "usb-1"}});
        watch.passes(20);
        QCOMPARE(watch.lists.size(), 1);
    }

    void orderAloneIsAChange()
    {
        scriptedCapture().attach({first, second});
        Watch watch;
        watch.detector.start();
        QTRY_COMPARE(watch.lists.size(), 1);
        scriptedCapture().attach({second, first});
        QTRY_COMPARE(watch.lists.value(1), QString("Orvane_B,Orvane_A|usb-2,usb-1"));
    }

    void faultsFollowTheListAndTheirOwnChanges()
    {
        scriptedCapture().attach({first, {"Orvane_B", "usb-2", "no right"}});
        Watch watch;
        watch.detector.start();
        QTRY_COMPARE(watch.faults, QStringList({"|no right"}));
        watch.passes(20);
        QCOMPARE(watch.faults.size(), 1);

        scriptedCapture().attach({first, second});
        QTRY_COMPARE(watch.faults, QStringList({"|no right", "|"}));
        QCOMPARE(watch.lists.size(), 1);

        scriptedCapture().attach({{"Orvane_B", "usb-2", "no right"}});
        QTRY_COMPARE(watch.faults.value(2), QString("no right"));
        QCOMPARE(watch.lists.size(), 2);
    }

    void pathsDifferByCase()
    {
        scriptedCapture().attach({{"Orvane_A", "usb-a"}});
        Watch watch;
        watch.detector.setWatchedPath("USB-A");
        watch.detector.start();
        QTRY_COMPARE(watch.lists.size(), 1);
        scriptedCapture().attach({{"Orvane_A", "Usb-a"}});
        QTRY_COMPARE(watch.lists.size(), 2);
        QCOMPARE(watch.alives, 0);
    }

    void aliveComesEveryPeriodWhileTheCameraInUseIsListed()
    {
        scriptedCapture().attach({first, second});
        Watch watch;
        watch.detector.setWatchedPath("usb-2");
        watch.detector.start();
        QTRY_VERIFY(watch.alives >= 5);
    }

    void aliveStopsWhileTheCameraIsGoneAndWhenNoneIsWanted()
    {
        scriptedCapture().attach({first});
        Watch watch;
        watch.detector.setWatchedPath("usb-1");
        watch.detector.start();
        QTRY_VERIFY(watch.alives > 0);

        scriptedCapture().attach({});
        QTRY_COMPARE(watch.lists.size(), 2);
        watch.passes(3);
        const int whenGone = watch.alives;
        watch.passes(20);
        QCOMPARE(watch.alives, whenGone);

        scriptedCapture().attach({first});
        QTRY_VERIFY(watch.alives > whenGone);

        watch.detector.setWatchedPath("");
        watch.passes(3);
        const int whenUnwanted = watch.alives;
        watch.passes(20);
        QCOMPARE(watch.alives, whenUnwanted);
    }

    void deviceWithoutAPathIsListedButNeverTheCameraInUse()
    {
        scriptedCapture().attach({{"", ""}});
        Watch watch;
        watch.detector.start();
        QTRY_COMPARE(watch.lists, QStringList({"|"}));
        watch.passes(10);
        QCOMPARE(watch.alives, 0);
    }

    void fiftyDevicesKeepTheirOrder()
    {
        std::vector<ScriptedDevice> devices;
        QStringList expected;
        for (int i = 0; i < 50; ++i) {
            devices.push_back({"Orvane_", "usb-" + std::to_string(99 - i)});
            expected.append(QStringLiteral("usb-%1").arg(99 - i));
        }
        scriptedCapture().attach(devices);
        Watch watch;
        watch.detector.start();
        QTRY_COMPARE(watch.lists.value(0).section('|', 1).split(','), expected);
    }

    void namesAreDecodedFromUtf8()
    {
        scriptedCapture().attach({{"Orvane_\xe6\x98\xbe\xe5\xbe\xae\xe9\x95\x9c", "usb-1"},
                                  {"\xff\xfe", "usb-2"},
                                  {std::string(300, 'n'), "usb-3"}});
        QStringList names;
        QStringList paths;
        QCOMPARE(listVideoDevices(names, paths), 3);
        QCOMPARE(names.value(0), QStringLiteral("Orvane_显微镜"));
        QCOMPARE(names.value(1), QString(2, QChar::ReplacementCharacter));
        QCOMPARE(names.value(2), QString(300, 'n'));
        QCOMPARE(paths, QStringList({"usb-1", "usb-2", "usb-3"}));
    }

    void destructionCutsTheRestShort()
    {
        scriptedCapture().attach({first});
        QStringList lists;
        {
            QObject context;
            CameraDetect detector(3600 * 1000);
            connect(&detector, &CameraDetect::detect, &context,
                    [&lists](const QStringList &names) { lists.append(names); });
            detector.start();
            QTRY_COMPARE(lists.size(), 1);
        }
        // Reached at all, an hour early.
        QCOMPARE(lists, QStringList({"Orvane_A"}));
    }

    // ---- Text of the DirectShow walk

    void wideNamePasses_data()
    {
        QTest::addColumn<QString>("wide");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("plain") << "Orvane_1" << QByteArray("Orvane_1");
        QTest::newRow("empty") << "" << QByteArray();
        QTest::newRow("255 characters pass whole") << QString(255, 'a') << QByteArray(255, 'a');
        QTest::newRow("256 lose the last") << QString(255, 'a') + 'b' << QByteArray(255, 'a');
        QTest::newRow("300 are cut") << QString(300, 'c') << QByteArray(255, 'c');
        QTest::newRow("low bytes of another alphabet")
            << QStringLiteral("微") << QByteArray("\xae");
        QTest::newRow("a low byte of zero ends it") << QStringLiteral("a一b") << QByteArray("a");
    }

    void wideNamePasses()
    {
        QFETCH(QString, wide);
        const std::u16string text = wide.toStdU16String();
        const std::string bytes = lowBytes(text.c_str());
        QTEST(QByteArray(bytes.data(), int(bytes.size())), "bytes");
    }

    void deviceWithoutAReadablePathIsSkippedAndTheIndexesBehindItMoveUp()
    {
        std::vector<std::string> names;
        std::vector<std::string> paths;
        QVERIFY(appendDevice(u"A", u"path-a", names, paths));
        QVERIFY(!appendDevice<char16_t>(u"B", nullptr, names, paths));
        QVERIFY(!appendDevice<char16_t>(nullptr, u"path-c", names, paths));
        QVERIFY(appendDevice(u"D", u"path-d", names, paths));
        QCOMPARE(names, (std::vector<std::string>{"A", "D"}));
        QCOMPARE(paths, (std::vector<std::string>{"path-a", "path-d"}));
    }
};

QTEST_GUILESS_MAIN(TestCameraDetect)
#include "test_cameradetect.moc"
