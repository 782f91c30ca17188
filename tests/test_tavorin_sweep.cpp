#include "fusion/pictureconversion.h"
#include "fusion/sharpness.h"
#include "tests/support/drived.h"
#include "tests/support/messagewatch.h"
#include "tests/support/quiet.h"
#include "tests/support/windowsweep.h"

#include <QSlider>
#include <QSpinBox>

using Fault = std::function<void(const MainWindow &)>;
Q_DECLARE_METATYPE(Fault)

class TestTavorinSweep : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aSweepVisitsItsPositions_data();
    void aSweepVisitsItsPositions();
    void progressCountsUpAndEndsAtZero();
    void theResultGrowsOnAPageOfItsOwn();
    void aResultPageThatWasClosedComesAgain();
    void withoutACameraTheSweepRunsItsFullLength();
    void aSecondSweepGetsItsOwnPage();
    void aSliderMovedMeanwhileSendsTheFocusElsewhere();
    void noFaultEndsASweep_data();
    void noFaultEndsASweep();
    void thePanelOpensAtTheCamerasFocus();
    void theDebugSwitchKeepsTheFrames();
    void theWindowClosesDuringASweep();

private:
    void startCamera();

    std::unique_ptr<MainWindow> window;
};

void TestTavorinSweep::initTestCase() { static MessageWatch watch; }

void TestTavorinSweep::init()
{
    window = std::make_unique<MainWindow>();
    simulatedMicroscope().setNoise(false);
    simulatedMicroscope().setMotorSpeed(1e6);
}

void TestTavorinSweep::cleanup()
{
    window.reset();
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
}

/// A camera that streams small frames, which are fused quickly.
void TestTavorinSweep::startCamera() { streamFromCamera(*window, 4, QSize(640, 480)); }

void TestTavorinSweep::aSweepVisitsItsPositions_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<int>("step");
    QTest::addColumn<QList<int>>("positions");
    QTest::addColumn<int>("frames");
    QTest::newRow("upwards") << 0 << 10 << 5 << QList<int>{0, 5, 10} << 3;
    QTest::newRow("not a multiple of the step") << 0 << 11 << 5 << QList<int>{0, 5, 10} << 3;
    QTest::newRow("downwards") << 10 << 0 << -5 << QList<int>{10, 5, 0} << 3;
    QTest::newRow("one position, and a command one step beyond")
        << 7 << 7 << 2 << QList<int>{7, 9} << 1;
    QTest::newRow("interval above the range") << 0 << 3 << 10 << QList<int>{0, 10} << 1;
    QTest::newRow("no step") << 5 << 9 << 0 << QList<int>{5, 5} << 1;
    QTest::newRow("end on the wrong side") << 5 << 0 << 2 << QList<int>{5, 7} << 1;
}

void TestTavorinSweep::aSweepVisitsItsPositions()
{
    QFETCH(int, start);
    QFETCH(int, end);
    QFETCH(int, step);
    QFETCH(QList<int>, positions);
    QFETCH(int, frames);
    startCamera();
    WindowSweep sweep(*window);
    sweep.run({start, end, step, 100});
    QCOMPARE(sweep.positions, positions);
    QCOMPARE(sweep.frames, frames);
    QCOMPARE(sweep.autofocus, QSet<int>{0});
    QVERIFY(!sweep.startWasEnabled);
    QVERIFY(sweep.canStart());
}

void TestTavorinSweep::progressCountsUpAndEndsAtZero()
{
    // The wait interval changes nothing.
    for (const int waitMs : {50, 10000}) {
        window->part("page_4")->findChild<QLineEdit *>("lineEdit_4")->setText("before");
        WindowSweep sweep(*window);
        sweep.run({0, 4, 2, waitMs});
        QCOMPARE(sweep.shown, QStringList({"0", "1", "2", "3", "0"}));
        QCOMPARE(sweep.progressAtTheEnd, QString("0"));
        QCOMPARE(sweep.frames, 3);
    }
}

void TestTavorinSweep::theResultGrowsOnAPageOfItsOwn()
{
    startCamera();
    WindowSweep sweep(*window);
    sweep.run({100, 140, 20, 100});
    QCOMPARE(window->tabs()->count(), 2);
    const ShowWidget *page = window->currentPage();
    QVERIFY(!page->isLive());
    QVERIFY(page->isModified());
    QVERIFY(window->tabText().startsWith("Tab") && window->tabText().endsWith("*"));
    QCOMPARE(sceneOf(page).sceneRect(), QRectF(0, 0, 640, 480));
    QCOMPARE(window->status(), QString("显示图片"));
    emit window->currentPage()->wheelAdd(true);
    QCOMPARE(page->zoomFactor(), 0.75);
}

void TestTavorinSweep::aResultPageThatWasClosedComesAgain()
{
    startCamera();
    WindowSweep sweep(*window);
    const ShowWidget *second = nullptr;
    sweep.run(
        [this] {
            (*window)->startFusion({100, 160, 20, 100});
        },
        [&] {
            QTRY_COMPARE(window->tabs()->count(), 2);
            const QPointer<ShowWidget> first = window->page(1);
            window->closeTab(1);
            QTRY_VERIFY(!first);
            QTRY_COMPARE(window->tabs()->count(), 2);
            second = window->page(1);
        });
    QCOMPARE(window->tabs()->count(), 2);
    QCOMPARE(window->page(1), second);
    // With the running result so far.
    QCOMPARE(sweep.result().size(), QSize(640, 480));
    QCOMPARE(sweep.frames, 4);
}

void TestTavorinSweep::withoutACameraTheSweepRunsItsFullLength()
{
    WindowSweep sweep(*window);
    sweep.run({0, 4, 2, 100});
    QCOMPARE(sweep.frames, 3);
    QCOMPARE(sweep.positions, QList<int>());
    QCOMPARE(window->tabs()->count(), 1);
}

void TestTavorinSweep::aSecondSweepGetsItsOwnPage()
{
    WindowSweep(*window).run({0, 0, 2, 100});
    WindowSweep second(*window);
    second.run({0, 0, 2, 100});
    QCOMPARE(window->tabs()->count(), 2);
    QCOMPARE(second.frames, 1);
}

void TestTavorinSweep::aSliderMovedMeanwhileSendsTheFocusElsewhere()
{
    startCamera();
    WindowSweep sweep(*window);
    sweep.run(
        [this] {
            (*window)->startFusion({100, 140, 20, 100});
        },
        [&] {
            QTRY_COMPARE(MyCamera::currentFocus(), 100);
            sweep.panel->findChild<QSlider *>("horizontalSlider")->setValue(333);
        });
    QCOMPARE(sweep.positions, QList<int>({100, 333, 120, 140}));
    QCOMPARE(sweep.frames, 3);
}

void TestTavorinSweep::noFaultEndsASweep_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("resolution change") << Fault([](const MainWindow &at) {
        at->cameraThread()->setCameraInfo(CameraParameter::Resolution, 3);
    }) << true;
    QTest::newRow("unplugged") << Fault([](const MainWindow &) {
        simulatedMicroscope().unplug("a");
    }) << false;
    QTest::newRow("unplugged and plugged in again") << Fault([](const MainWindow &) {
        simulatedMicroscope().unplug("a");
        simulatedMicroscope().plugIn({"Orvane_A", "a"});
    }) << false;
    QTest::newRow("empty frame") << Fault([](const MainWindow &) {
        simulatedMicroscope().giveEmptyFrames(1);
    }) << false;
    QTest::newRow("live page closed")
        << Fault([](const MainWindow &at) { at.closeTab(0); }) << false;
}

void TestTavorinSweep::noFaultEndsASweep()
{
    QFETCH(Fault, fault);
    QFETCH(bool, isTold);
    const auto sharpnessOf = [](QImage picture) { return sharpness(qImageToCvMat(picture)); };
    startCamera();
    const Quiet quiet;
    WindowSweep sweep(*window);
    double before = 0;
    sweep.run(
        [this] {
            (*window)->startFusion({100, 350, 10, 100});
        },
        [&] {
            QTRY_VERIFY(sweep.frames >= 2);
            before = sharpnessOf(sweep.result());
            fault(*window);
        });
    QCOMPARE(sweep.frames, 26);
    QCOMPARE(sweep.progressAtTheEnd, QString("0"));
    QVERIFY(sweep.canStart());
    // A frame may still have been added, but nothing is lost.
    QCOMPARE(sweep.result().size(), QSize(640, 480));
    QVERIFY(before > 0 && sharpnessOf(sweep.result()) >= before);
    const auto told = quiet.messages().filter(QRegularExpression("^Frame \\d+ of the sweep"));
    QCOMPARE(!told.isEmpty(), isTold);
}

void TestTavorinSweep::thePanelOpensAtTheCamerasFocus()
{
    startCamera();
    (*window)->cameraThread()->setCameraInfo(CameraParameter::Focus, 120);
    QTRY_COMPARE(MyCamera::currentFocus(), 120);
    window->click("leftHide");
    window->click("compose");
    QWidget *panel = window->part("page_4");
    QVERIFY(panel->isVisibleTo(window->get()));
    QCOMPARE(panel->findChild<QSlider *>("horizontalSlider")->value(), 120);
    QCOMPARE(panel->findChild<QSlider *>("horizontalSlider_2")->value(), 120);
    QCOMPARE(panel->findChild<QLineEdit *>("lineEdit")->text(), QString("1"));
}

void TestTavorinSweep::theDebugSwitchKeepsTheFrames()
{
    for (const bool debug : {false, true}) {
        window.reset();
        window = std::make_unique<MainWindow>(debug ? "[base]\nisDebug=true\n" : "");
        const DriveD drive("d:");
        startCamera();
        WindowSweep(*window).run({0, 2, 2, 100});
        QCOMPARE(drive.newFiles().size(), debug ? 2 : 0);
    }
}

void TestTavorinSweep::theWindowClosesDuringASweep()
{
    startCamera();
    WindowSweep sweep(*window);
    (*window)->startFusion({0, 400, 1, 100});
    QTRY_VERIFY(sweep.frames >= 1);
}

QTEST_MAIN(TestTavorinSweep)
#include "test_tavorin_sweep.moc"
