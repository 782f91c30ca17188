#include "fusion/pictureconversion.h"
#include "fusion/sharpness.h"
#include "simulator/optics.h"
#include "tests/support/drived.h"
#include "tests/support/messagewatch.h"
#include "tests/support/windowsweep.h"

#include <opencv2/imgproc.hpp>

#include <QAction>
#include <QBuffer>
#include <QSlider>
#include <QSpinBox>

namespace {

constexpr char keepFrames[] = "[base]\nisDebug=true\n";

/// The operator at the sweep's panel: mouse and keyboard only.
class PanelOperator
{
public:
    explicit PanelOperator(const MainWindow &window)
        : panel(window.part("page_4"))
    {
        QTest::mouseClick(window.part("compose"), Qt::LeftButton);
    }

    void moveTo(const char *name, int position) const
    {
        auto *slider = panel->findChild<QSlider *>(name);
        const auto key = [&] { return position > slider->value() ? Qt::Key_Right : Qt::Key_Left; };
        // Where it stands already it counts as moved once it has been away.
        if (slider->value() == position)
            QTest::keyClick(slider, position > 0 ? Qt::Key_Left : Qt::Key_Right);
        while (slider->value() != position)
            QTest::keyClick(slider, key());
    }
    void setInterval(int interval) const
    {
        auto *box = panel->findChild<QSpinBox *>("spinBox_3");
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, QString::number(interval));
        QTest::keyClick(box, Qt::Key_Return);
    }
    QString count() const { return panel->findChild<QLineEdit *>("lineEdit")->text(); }
    void start() const
    {
        QTest::mouseClick(panel->findChild<QPushButton *>("pushButton"), Qt::LeftButton);
    }

private:
    QWidget *panel;
};

/// What the debug switch keeps of a frame that the camera takes at a focus position.
QByteArray fileOfFrame(double position)
{
    static const Optics lens({640, 480});
    QBuffer file;
    QPixmap::fromImage(cvMatToQImage(lens.render(position))).save(&file, "jpg");
    return file.data();
}

/// The focus position at which a frame was taken, if the motor rested at a whole one.
int positionOf(const QByteArray &frame)
{
    for (int position = 0; position <= 400; ++position)
        if (fileOfFrame(position) == frame)
            return position;
    return -1;
}

} // namespace

/// Sweeps on the real window and the simulated microscope, started at the panel.
class TestGuiSweep : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void sweepsStartedAtThePanel_data();
    void sweepsStartedAtThePanel();
    void theMessageStaysChineseInEnglish();
    void everyFrameIsTakenInFocusAtItsPosition_data();
    void everyFrameIsTakenInFocusAtItsPosition();
    void theResultIsSharpEverywhere();

private:
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<DriveD> driveD; // gets the frames
};

void TestGuiSweep::initTestCase() { static MessageWatch watch; }

void TestGuiSweep::init()
{
    window = std::make_unique<MainWindow>(keepFrames);
    driveD = std::make_unique<DriveD>("d:");
    simulatedMicroscope().setNoise(false);
    (*window)->show();
}

void TestGuiSweep::cleanup()
{
    window.reset();
    driveD.reset();
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
}

void TestGuiSweep::sweepsStartedAtThePanel_data()
{
    QTest::addColumn<int>("startPos");
    QTest::addColumn<int>("endPos");
    QTest::addColumn<bool>("endMovedLast");
    QTest::addColumn<int>("interval");
    QTest::addColumn<QString>("count");
    QTest::addColumn<QList<int>>("positions");
    QTest::addColumn<QStringList>("progress");
    const QStringList threeFrames = {"0", "1", "2", "3", "0"};
    QTest::newRow("upward, start moved last")
        << 0 << 10 << false << 5 << "3" << QList<int>{0, 5, 10} << threeFrames;
    // The panel counts the rest of the range, the sweep leaves it out.
    QTest::newRow("upward, not a multiple of the interval")
        << 0 << 11 << false << 5 << "4" << QList<int>{0, 5, 10} << threeFrames;
    QTest::newRow("upward, end moved last to the lower value")
        << 70 << 40 << true << 15 << "3" << QList<int>{40, 55, 70} << threeFrames;
    QTest::newRow("downward, end moved last to the higher value")
        << 100 << 130 << true << 15 << "3" << QList<int>{130, 115, 100} << threeFrames;
    QTest::newRow("downward, start moved last to the higher value")
        << 11 << 0 << false << 5 << "4" << QList<int>{11, 6, 1} << threeFrames;
    QTest::newRow("equal ends") << 20 << 20 << false << 5 << "1" << QList<int>{20, 25}
                                << QStringList{"0", "1", "0"};
    QTest::newRow("interval above the range")
        << 20 << 30 << false << 99 << "2" << QList<int>{20, 119} << QStringList{"0", "1", "0"};
}

void TestGuiSweep::sweepsStartedAtThePanel()
{
    QFETCH(int, startPos);
    QFETCH(int, endPos);
    QFETCH(bool, endMovedLast);
    QFETCH(int, interval);
    QFETCH(QList<int>, positions);
    QFETCH(QStringList, progress);
    streamFromCamera(*window, 4, QSize(640, 480));
    simulatedMicroscope().set(cv::CAP_PROP_AUTOFOCUS, 1);
    simulatedMicroscope().setMotorSpeed(1e6);

    const PanelOperator panel(*window);
    if (!endMovedLast)
        panel.moveTo("horizontalSlider_2", endPos);
    panel.moveTo("horizontalSlider", startPos);
    if (endMovedLast)
        panel.moveTo("horizontalSlider_2", endPos);
    panel.setInterval(interval);
    QTEST(panel.count(), "count");
    QTRY_COMPARE(MyCamera::currentFocus(), positions.first());

    WindowSweep sweep(*window);
    sweep.progress->setText("before");
    QTest::qWait(100); // what the sliders posted has been sent
    sweep.run([&] { panel.start(); });
    QVERIFY(!sweep.startWasEnabled);
    QCOMPARE(sweep.positions, positions);
    QCOMPARE(sweep.autofocus, QSet<int>{0});
    QCOMPARE(sweep.shown, progress);
    QCOMPARE(sweep.frames, progress.size() - 2);

    // The page, the message, the state afterwards.
    QCOMPARE(sweep.answers.seen(), QStringList("提醒|融合完成"));
    QCOMPARE(sweep.buttonsAtTheEnd, 1);
    QVERIFY(sweep.canStart());
    QCOMPARE(window->tabs()->count(), 2);
    QCOMPARE(window->tabs()->currentIndex(), 1);
    QVERIFY(QRegularExpression("^Tab\\d+\\*$").match(window->tabText()).hasMatch());
    QVERIFY(window->currentPage()->isModified() && !window->currentPage()->isLive());
    QVERIFY(window->part("save")->isEnabled());
    QCOMPARE(window->status(), QString("显示图片"));
    QCOMPARE(sweep.result().size(), QSize(640, 480));
    QTRY_COMPARE(MyCamera::currentFocus(), positions.last());
    QCOMPARE(int(simulatedMicroscope().get(cv::CAP_PROP_AUTOFOCUS)), 0);
}

void TestGuiSweep::theMessageStaysChineseInEnglish()
{
    (*window)->findChild<QAction *>("actionenglish")->trigger();
    streamFromCamera(*window, 4, QSize(640, 480));
    const PanelOperator panel(*window);
    WindowSweep sweep(*window);
    QCOMPARE(sweep.startButton->text(), QString("Start"));
    sweep.run([&] { panel.start(); });
    QCOMPARE(sweep.answers.seen(), QStringList("提醒|融合完成"));
}

void TestGuiSweep::everyFrameIsTakenInFocusAtItsPosition_data()
{
    QTest::addColumn<int>("startPos");
    QTest::addColumn<int>("endPos");
    QTest::addColumn<int>("step");
    QTest::newRow("upward") << 120 << 340 << 20;
    QTest::newRow("downward") << 340 << 120 << -20;
}

void TestGuiSweep::everyFrameIsTakenInFocusAtItsPosition()
{
    QFETCH(int, startPos);
    QFETCH(int, endPos);
    QFETCH(int, step);
    streamFromCamera(*window, 4, QSize(640, 480));
    simulatedMicroscope().setMotorSpeed(1000); // 20 ms from one position to the next
    simulatedMicroscope().setFrameInterval(std::chrono::milliseconds(10));

    const PanelOperator panel(*window);
    panel.moveTo("horizontalSlider_2", endPos);
    panel.moveTo("horizontalSlider", startPos);
    panel.setInterval(20);
    WindowSweep sweep(*window);
    sweep.run([&] { panel.start(); });

    QCOMPARE(sweep.frames, 12);
    for (int i = 0; i < 12; ++i) {
        const int position = startPos + i * step;
        QFile file(driveD->path(QString("%1.jpg").arg(i)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray frame = file.readAll();
        if (frame != fileOfFrame(position))
            QCOMPARE(positionOf(frame), position);
    }
}

void TestGuiSweep::theResultIsSharpEverywhere()
{
    streamFromCamera(*window, 0, QSize(1920, 1080));
    const PanelOperator panel(*window);
    panel.moveTo("horizontalSlider_2", 160);
    panel.moveTo("horizontalSlider", 340);
    panel.setInterval(20);
    WindowSweep sweep(*window);
    sweep.run([&] { panel.start(); });
    QCOMPARE(sweep.frames, 10);
    QImage result = sweep.result();
    const cv::Mat fused = qImageToCvMat(result);

    const Optics lens({1920, 1080});
    std::vector<cv::Mat> frames;
    double bestOfFrames = 0;
    for (int position = 340; position >= 160; position -= 20) {
        frames.push_back(lens.render(position));
        bestOfFrames = std::max(bestOfFrames, cv::PSNR(lens.allInFocus(), frames.back()));
    }
    const double psnr = cv::PSNR(lens.allInFocus(), fused);
    qInfo("PSNR of the result %.2f dB, of the best frame %.2f dB", psnr, bestOfFrames);
    QVERIFY(psnr > bestOfFrames + 6.0);

    // No frame shows any place clearly better than the result does.
    for (int y = 0; y < 1080; y += 120) {
        for (int x = 0; x < 1920; x += 120) {
            const cv::Rect block(x, y, 120, 120);
            for (const cv::Mat &frame : frames)
                QVERIFY(sharpness(fused(block)) >= 0.9 * sharpness(frame(block)));
        }
    }
    for (const cv::Mat &frame : frames)
        QVERIFY(sharpness(fused) > 1.1 * sharpness(frame));
}

QTEST_MAIN(TestGuiSweep)
#include "test_gui_sweep.moc"
