#include "fusion/fusionwidget.h"
#include "fusion/picanalyse.h"
#include "tests/support/mainwindow.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"

#include <QDir>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QtTest>

namespace {

constexpr char doneBox[] = "提醒|融合完成";

/// A sweep of the window's: what was shown and sent until the completion message.
class Sweep
{
public:
    explicit Sweep(const MainWindow &target)
        : window(target)
        , progress(target.part("page_4")->findChild<QLineEdit *>("lineEdit_4"))
        , frames(target->findChild<PicAnalyse *>(), &QThread::finished)
    {}

    void run(FusionData data)
    {
        ModalAnswers answers;
        answers.expect([this](QWidget *box) {
            progressAtTheEnd = progress->text();
            static_cast<QDialog *>(box)->accept();
        });
        QObject context;
        QObject::connect(progress, &QLineEdit::textChanged, &context,
                         [this](const QString &text) { shown += text; });
        simulatedMicroscope().takeSets();
        window->startFusion(data);
        startWasEnabled = canStart();
        QTRY_COMPARE_WITH_TIMEOUT(answers.seen(), QStringList(doneBox), 20000);
        for (const auto &[property, value] : simulatedMicroscope().takeSets()) {
            if (property == cv::CAP_PROP_FOCUS)
                positions += int(value);
            else if (property == cv::CAP_PROP_AUTOFOCUS)
                autofocus += int(value);
        }
    }

    QPushButton *startButton() const
    {
        return window.part("page_4")->findChild<QPushButton *>("pushButton");
    }

    /// The panel itself is disabled while a picture is shown.
    bool canStart() const { return startButton()->isEnabledTo(window.part("page_4")); }

    const MainWindow &window;
    QLineEdit *progress;
    QSignalSpy frames;
    QStringList shown;
    QList<int> positions;
    QSet<int> autofocus;
    QString progressAtTheEnd;
    bool startWasEnabled = true;
};

} // namespace

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
    void thePanelStartsTheSweepWhereItsSliderStands();
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
void TestTavorinSweep::startCamera()
{
    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    emit window->part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_A", "a");
    QTRY_COMPARE(window->status(), QString("连接成功"));
    MyCamera *camera = (*window)->cameraThread();
    camera->setCameraInfo(CameraParameter::Resolution, 4);
    QTRY_COMPARE(camera->currentPixmap().size(), QSize(640, 480));
}

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
    Sweep sweep(*window);
    sweep.run({start, end, step, 100});
    QCOMPARE(sweep.positions, positions);
    QCOMPARE(sweep.frames.count(), frames);
    QCOMPARE(sweep.autofocus, QSet<int>{0});
    QVERIFY(!sweep.startWasEnabled);
    QVERIFY(sweep.canStart());
}

void TestTavorinSweep::progressCountsUpAndEndsAtZero()
{
    // The wait interval changes nothing.
    for (const int waitMs : {50, 10000}) {
        window->part("page_4")->findChild<QLineEdit *>("lineEdit_4")->setText("before");
        Sweep sweep(*window);
        sweep.run({0, 4, 2, waitMs});
        QCOMPARE(sweep.shown, QStringList({"0", "1", "2", "3", "0"}));
        QCOMPARE(sweep.progressAtTheEnd, QString("0"));
        QCOMPARE(sweep.frames.count(), 3);
    }
}

void TestTavorinSweep::theResultGrowsOnAPageOfItsOwn()
{
    startCamera();
    Sweep sweep(*window);
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
    Sweep sweep(*window);
    ModalAnswers answers;
    answers.press(QMessageBox::Yes);
    (*window)->startFusion({100, 160, 20, 100});
    QTRY_COMPARE(window->tabs()->count(), 2);
    const QPointer<ShowWidget> first = window->page(1);
    window->closeTab(1);
    QTRY_VERIFY(!first);
    QTRY_COMPARE(window->tabs()->count(), 2);
    const ShowWidget *second = window->page(1);
    answers.press(QMessageBox::Ok);
    QTRY_COMPARE_WITH_TIMEOUT(answers.seen().last(), QString(doneBox), 20000);
    QCOMPARE(window->tabs()->count(), 2);
    // With the running result so far.
    QCOMPARE(sceneOf(second).sceneRect(), QRectF(0, 0, 640, 480));
    QCOMPARE(sweep.frames.count(), 4);
}

void TestTavorinSweep::withoutACameraTheSweepRunsItsFullLength()
{
    Sweep sweep(*window);
    sweep.run({0, 4, 2, 100});
    QCOMPARE(sweep.frames.count(), 3);
    QCOMPARE(sweep.positions, QList<int>());
    QCOMPARE(window->tabs()->count(), 1);
}

void TestTavorinSweep::aSecondSweepGetsItsOwnPage()
{
    Sweep(*window).run({0, 0, 2, 100});
    Sweep second(*window);
    second.run({0, 0, 2, 100});
    QCOMPARE(window->tabs()->count(), 2);
    QCOMPARE(second.frames.count(), 1);
}

void TestTavorinSweep::thePanelStartsTheSweepWhereItsSliderStands()
{
    startCamera();
    QWidget *panel = window->part("page_4");
    panel->findChild<QSlider *>("horizontalSlider")->setValue(100);
    panel->findChild<QSlider *>("horizontalSlider_2")->setValue(130); // moved last: the start
    panel->findChild<QSpinBox *>("spinBox_3")->setValue(15);
    QTRY_COMPARE(MyCamera::currentFocus(), 130);
    simulatedMicroscope().takeSets();

    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    Sweep sweep(*window);
    sweep.startButton()->click();
    QVERIFY(!sweep.canStart());
    QTRY_COMPARE_WITH_TIMEOUT(answers.seen(), QStringList(doneBox), 20000);
    QCOMPARE(sweep.frames.count(), 3);
    QTRY_COMPARE(MyCamera::currentFocus(), 100);
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
        QVERIFY(QDir(".").mkdir("d:"));
        startCamera();
        Sweep(*window).run({0, 2, 2, 100});
        QCOMPARE(QDir("d:").entryList({"*.jpg"}).size(), debug ? 2 : 0);
    }
}

void TestTavorinSweep::theWindowClosesDuringASweep()
{
    startCamera();
    Sweep sweep(*window);
    (*window)->startFusion({0, 400, 1, 100});
    QTRY_VERIFY(sweep.frames.count() >= 1);
}

QTEST_MAIN(TestTavorinSweep)
#include "test_tavorin_sweep.moc"
