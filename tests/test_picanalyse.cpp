#include "fusion/picanalyse.h"
#include "tests/support/drived.h"
#include "tests/support/focusstack.h"
#include "tests/support/literalfusion.h"
#include "tests/support/workingdirectory.h"

#include <opencv2/imgproc.hpp>

#include <QtTest>

#include <memory>
#include <sstream>

namespace {

using Outcome = FusionSweep::Outcome;

/// Upright edges of some contrast, eight pixels apart, 100 pixels long. Each adds 800 times its
/// contrast to the sum of the gradients: two columns of 100 pixels, four times the contrast each.
cv::Mat edges(int count, int contrast)
{
    cv::Mat picture(100, 8 * (count + 1), CV_8UC3, cv::Scalar::all(20));
    for (int i = 1; i <= count; i += 2)
        picture.colRange(8 * i, std::min(8 * i + 8, picture.cols))
            .setTo(cv::Scalar::all(20 + contrast));
    return picture;
}

cv::Mat flat(const cv::Mat &like) { return cv::Mat(like.size(), CV_8UC3, cv::Scalar::all(20)); }

QPixmap pixmap(const cv::Mat &frame)
{
    QImage image(frame.cols, frame.rows, QImage::Format_RGB32);
    cv::Mat pixels(frame.size(), CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
    cv::cvtColor(frame, pixels, cv::COLOR_BGR2BGRA);
    return QPixmap::fromImage(image);
}

QPixmap stackFrame(int index, int count = 6)
{
    static const cv::Mat surface = focusstack::surface({400, 300}, 21);
    return pixmap(focusstack::frame(surface, index, count));
}

/// Hands a frame over and waits for the end of its analysis.
QPixmap analysed(PicAnalyse &analysis, const QPixmap &frame)
{
    QObject onThisThread;
    bool ended = false;
    QObject::connect(&analysis, &QThread::finished, &onThisThread, [&ended] { ended = true; });
    analysis.setPix(frame);
    if (!QTest::qWaitFor([&ended] { return ended; }, 60000))
        qFatal("The analysis does not end");
    return analysis.pix();
}

} // namespace

class TestPicAnalyse : public QObject
{
    Q_OBJECT

private slots:
    void signalAndSlotStandInTheMetaObject();
    void firstFrameBecomesTheResultWithoutFusion();
    void identicalSecondFrameLeavesTheResult();
    void everyFrameGoesTheLiteralWay();
    void resetStartsANewSweep();

    void firstFrameHasNoSharpnessYet();
    void identicalFramesNeverCountAsDeclines();
    void fifthDeclineInARowIsSkipped();
    void equallySharpFrameResetsTheDeclines();
    void withoutTheGateNothingIsSkipped();
    void gainOfExactlyTwoIsRejected();

    void nullFrameIsNotAccepted();
    void nullFirstFrameIsFollowedByAnotherFirstFrame();
    void frameOfAnotherSizeIsNotAccepted();
    void pictureOfNineRowsIsNotFused();
    void sweepGoesOnAfterARefusedFrame();

    void sweepRefusesPicturesOfOtherKinds();

    void everyRunLeavesTheMotorItsTime();

    void debugFilesAreNumberedByFramesReceived();
    void failedDebugSaveIsIgnored();
    void withoutDebugSaveNothingIsWritten();
    void destructionInTheMiddleOfARunWaits();
};

void TestPicAnalyse::signalAndSlotStandInTheMetaObject()
{
    const QMetaObject &meta = PicAnalyse::staticMetaObject;
    QCOMPARE(meta.superClass()->className(), "QThread");
    const int signal = meta.indexOfSignal("tempPix(QPixmap,int)");
    const int slot = meta.indexOfSlot("anaFinished()");
    QVERIFY(signal >= meta.methodOffset());
    QVERIFY(slot >= meta.methodOffset());
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    PicAnalyse analysis;
    QVERIFY(QMetaObject::invokeMethod(&analysis, "anaFinished"));
}

void TestPicAnalyse::firstFrameBecomesTheResultWithoutFusion()
{
    PicAnalyse analysis;
    QVERIFY(analysis.pix().isNull());
    const QPixmap frame = stackFrame(0);
    QCOMPARE(analysed(analysis, frame).cacheKey(), frame.cacheKey());
}

void TestPicAnalyse::identicalSecondFrameLeavesTheResult()
{
    PicAnalyse analysis;
    const QPixmap frame = stackFrame(0);
    analysed(analysis, frame);
    QCOMPARE(analysed(analysis, frame.copy()).cacheKey(), frame.cacheKey());
}

void TestPicAnalyse::everyFrameGoesTheLiteralWay()
{
    PicAnalyse analysis;
    literal::Sweep expected;
    int accepted = 0;
    for (int i = 0; i < 6; ++i) {
        accepted += expected.add(stackFrame(i)) == literal::Outcome::Accepted;
        QCOMPARE(analysed(analysis, stackFrame(i)).toImage(), expected.pix().toImage());
    }
    QVERIFY(accepted > 0);
}

void TestPicAnalyse::resetStartsANewSweep()
{
    PicAnalyse analysis;
    analysed(analysis, stackFrame(0));
    analysed(analysis, stackFrame(1));
    analysis.reset();
    QVERIFY(analysis.pix().isNull());
    const QPixmap smaller = pixmap(edges(9, 100));
    QCOMPARE(analysed(analysis, smaller).cacheKey(), smaller.cacheKey());
    QCOMPARE(analysed(analysis, smaller).cacheKey(), smaller.cacheKey());
}

void TestPicAnalyse::firstFrameHasNoSharpnessYet()
{
    std::ostringstream times;
    FusionSweep sweep(times);
    cv::Mat frame = edges(25, 100);
    QCOMPARE(int(sweep.add(frame)), int(Outcome::First));
    QCOMPARE(sweep.frameSharpness(), 0.0);
    QCOMPARE(sweep.resultSharpness(), 2.0);
    QVERIFY(times.str().empty());
    frame = edges(25, 50);
    sweep.add(frame);
    QCOMPARE(sweep.frameSharpness(), 1.0);
    QVERIFY(!times.str().empty());
    sweep.reset();
    QVERIFY(sweep.isEmpty());
    QCOMPARE(sweep.frameSharpness(), 0.0);
}

void TestPicAnalyse::identicalFramesNeverCountAsDeclines()
{
    std::ostringstream times;
    FusionSweep sweep(times);
    for (int i = 0; i < 8; ++i) {
        cv::Mat frame = edges(25, 100);
        QCOMPARE(int(sweep.add(frame)), int(i == 0 ? Outcome::First : Outcome::Dropped));
    }
}

void TestPicAnalyse::fifthDeclineInARowIsSkipped()
{
    std::ostringstream times;
    FusionSweep sweep(times);
    const auto add = [&](int contrast) {
        cv::Mat frame = edges(25, contrast);
        return int(sweep.add(frame));
    };
    QCOMPARE(add(100), int(Outcome::First));
    for (int contrast : {95, 90, 85, 80})
        QCOMPARE(add(contrast), int(Outcome::Dropped));
    QCOMPARE(add(75), int(Outcome::Skipped));
    QCOMPARE(sweep.frameSharpness(), 1.5);
    QCOMPARE(add(70), int(Outcome::Skipped));
    QCOMPARE(sweep.frameSharpness(), 1.4);
    QCOMPARE(add(75), int(Outcome::Dropped)); // sharper than its predecessor: fused again
    for (int contrast : {70, 65, 60, 55})
        QCOMPARE(add(contrast), int(Outcome::Dropped));
    QCOMPARE(add(50), int(Outcome::Skipped));
}

void TestPicAnalyse::equallySharpFrameResetsTheDeclines()
{
    std::ostringstream times;
    FusionSweep sweep(times);
    for (int contrast : {100, 95, 90, 85, 80, 80, 75, 70, 65, 60}) {
        cv::Mat frame = edges(25, contrast);
        QVERIFY(sweep.add(frame) != Outcome::Skipped);
    }
    cv::Mat frame = edges(25, 55);
    QCOMPARE(int(sweep.add(frame)), int(Outcome::Skipped));
}

void TestPicAnalyse::withoutTheGateNothingIsSkipped()
{
    std::ostringstream times;
    FusionSweep sweep(times);
    sweep.setDeclineGate(false);
    for (int contrast = 100; contrast >= 60; contrast -= 5) {
        cv::Mat frame = edges(25, contrast);
        QVERIFY(sweep.add(frame) != Outcome::Skipped);
    }
}

void TestPicAnalyse::gainOfExactlyTwoIsRejected()
{
    // On a flat running result the frame wins everywhere, so the fused picture is the frame itself.
    std::ostringstream times;
    for (const bool more : {false, true}) {
        FusionSweep sweep(times);
        cv::Mat sharp = edges(25, 100); // 25 * 800 * 100
        if (more)
            sharp.col(12).setTo(cv::Scalar::all(121));
        const cv::Mat copy = sharp.clone();
        cv::Mat frame = flat(sharp);
        sweep.add(frame);
        QCOMPARE(int(sweep.add(sharp)), int(more ? Outcome::Accepted : Outcome::Dropped));
        QCOMPARE(sweep.resultSharpness() > 2.0, more);
        if (more)
            QCOMPARE(cv::norm(sweep.result(), copy, cv::NORM_INF), 0.0);
        else
            QCOMPARE(sweep.frameSharpness(), 2.0);
    }
}

void TestPicAnalyse::nullFrameIsNotAccepted()
{
    PicAnalyse analysis;
    const QPixmap first = stackFrame(0);
    analysed(analysis, first);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Frame 2 of the sweep is not fused: "));
    QCOMPARE(analysed(analysis, QPixmap()).cacheKey(), first.cacheKey());
}

void TestPicAnalyse::nullFirstFrameIsFollowedByAnotherFirstFrame()
{
    PicAnalyse analysis;
    QVERIFY(analysed(analysis, QPixmap()).isNull());
    const QPixmap frame = stackFrame(0);
    QCOMPARE(analysed(analysis, frame).cacheKey(), frame.cacheKey());
}

void TestPicAnalyse::frameOfAnotherSizeIsNotAccepted()
{
    PicAnalyse analysis;
    const QPixmap first = stackFrame(0);
    analysed(analysis, first);
    const QRegularExpression warning("^Frame \\d of the sweep is not fused: [^\n]*$");
    for (const QSize size : {QSize(401, 300), QSize(400, 299), QSize(100, 600)}) {
        QTest::ignoreMessage(QtWarningMsg, warning);
        QCOMPARE(analysed(analysis, first.scaled(size)).cacheKey(), first.cacheKey());
    }
}

void TestPicAnalyse::pictureOfNineRowsIsNotFused()
{
    PicAnalyse analysis;
    const QPixmap first = stackFrame(0).copy(0, 0, 400, 9);
    analysed(analysis, first);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Frame 2 of the sweep is not fused: "));
    QCOMPARE(analysed(analysis, stackFrame(1).copy(0, 0, 400, 9)).cacheKey(), first.cacheKey());
}

void TestPicAnalyse::sweepGoesOnAfterARefusedFrame()
{
    PicAnalyse analysis;
    literal::Sweep expected;
    for (int i = 0; i < 4; ++i) {
        if (i == 2) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Frame 3 of the sweep "));
            analysed(analysis, QPixmap());
        }
        expected.add(stackFrame(i));
        QCOMPARE(analysed(analysis, stackFrame(i)).toImage(), expected.pix().toImage());
    }
}

void TestPicAnalyse::sweepRefusesPicturesOfOtherKinds()
{
    std::ostringstream times;
    FusionSweep sweep(times);
    for (cv::Mat frame : {cv::Mat(), cv::Mat(0, 0, CV_8UC3), cv::Mat(25, 25, CV_8UC4)})
        QVERIFY_EXCEPTION_THROWN(sweep.add(frame), cv::Exception);
    QVERIFY(sweep.isEmpty());
}

void TestPicAnalyse::everyRunLeavesTheMotorItsTime()
{
    // First, dropped four times, skipped, refused: however little there is to do.
    PicAnalyse analysis;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Frame 7 of the sweep is not fused: "));
    for (int contrast : {100, 95, 90, 85, 80, 75, 0}) {
        const QPixmap frame = contrast > 0 ? pixmap(edges(25, contrast)) : QPixmap();
        QElapsedTimer timer;
        timer.start();
        analysed(analysis, frame);
        QVERIFY(timer.elapsed() >= 100);
    }
}

void TestPicAnalyse::debugFilesAreNumberedByFramesReceived()
{
    WorkingDirectory directory;
    DriveD drive("d:");
    if (!drive.exists())
        QSKIP("There is no drive D:");
    PicAnalyse analysis;
    analysis.setDebugSave(true);
    for (int contrast : {100, 95, 90, 85, 80, 75, 70})
        analysed(analysis, pixmap(edges(25, contrast)));
    const QStringList names = {"0.jpg", "1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg", "6.jpg"};
    QCOMPARE(drive.newFiles(), names);
    QCOMPARE(QImage("d:/6.jpg").size(), QSize(208, 100));

    analysis.reset();
    QVERIFY(QFile::remove("d:/0.jpg"));
    analysed(analysis, pixmap(edges(25, 100)));
    QVERIFY(QFile::exists("d:/0.jpg"));
}

void TestPicAnalyse::failedDebugSaveIsIgnored()
{
    WorkingDirectory directory;
    if (QDir("d:/").exists())
        QSKIP("There is a drive D:");
    PicAnalyse analysis;
    analysis.setDebugSave(true);
    const QPixmap frame = stackFrame(0);
    QCOMPARE(analysed(analysis, frame).cacheKey(), frame.cacheKey());
    QVERIFY(QDir().entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot).isEmpty());
}

void TestPicAnalyse::withoutDebugSaveNothingIsWritten()
{
    WorkingDirectory directory;
    DriveD drive("d:");
    PicAnalyse analysis;
    analysed(analysis, stackFrame(0));
    QVERIFY(drive.newFiles().isEmpty());
}

void TestPicAnalyse::destructionInTheMiddleOfARunWaits()
{
    auto owner = std::make_unique<QObject>();
    auto *analysis = new PicAnalyse(owner.get());
    analysed(*analysis, stackFrame(0));
    analysis->setPix(stackFrame(1));
    QVERIFY(analysis->isRunning());
    owner.reset();
}

QTEST_MAIN(TestPicAnalyse)
#include "test_picanalyse.moc"
