#include "fusion/fusionsweep.h"
#include "tests/support/focusstack.h"
#include "tests/support/workingdirectory.h"

#include <opencv2/imgcodecs.hpp>

#include <QProcess>
#include <QtTest>

#include <optional>
#include <ostream>

namespace {

struct Run
{
    int code = -1;
    QString out;
    QString errors;
};

Run fuse(const QStringList &arguments)
{
    QProcess process;
    process.start(TAVORIN_FUSE, arguments);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    // Windows ends lines with CR and LF.
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()).remove('\r'),
            QString::fromUtf8(process.readAllStandardError()).remove('\r')};
}

cv::Mat frame(int index)
{
    static const cv::Mat surface = focusstack::surface({300, 240}, 31);
    return focusstack::frame(surface, index, 4);
}

/// Writes the pictures 0.png to 3.png.
QStringList writeStack()
{
    QStringList names;
    for (int i = 0; i < 4; ++i) {
        names << QString("%1.png").arg(i);
        cv::imwrite(names.last().toStdString(), frame(i));
    }
    return names;
}

/// Upright edges of some contrast, eight pixels apart.
void writeEdges(const QString &name, int contrast)
{
    cv::Mat picture(100, 208, CV_8UC3, cv::Scalar::all(20));
    for (int x = 8; x < 208; x += 16)
        picture.colRange(x, x + 8).setTo(cv::Scalar::all(20 + contrast));
    cv::imwrite(name.toStdString(), picture);
}

bool isSame(const cv::Mat &a, const cv::Mat &b)
{
    return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0.0;
}

} // namespace

class TestTavorinFuse : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory.emplace(); }
    void cleanup() { directory.reset(); }

    void fusesByTheStepsOfTheSweep();
    void tellsEachPictureWithSharpnessAndFate();
    void skipsAfterFourDeclinesUnlessTold();
    void quietTellsNothing();
    void readsEveryFormat_data();
    void readsEveryFormat();
    void writesEveryFormat_data();
    void writesEveryFormat();
    void onePictureIsItsOwnResult();
    void foreignNamesWork();

    void wrongUseHasItsCode_data();
    void wrongUseHasItsCode();
    void missingPictureIsRefused();
    void brokenPicturesAreRefused_data();
    void brokenPicturesAreRefused();
    void mixedSizesAreRefused();
    void existingResultIsRefusedWithoutForce();
    void resultInNoFolderIsNotWritten();
    void resultTooLargeForItsFormatIsNotWritten();
    void tooFewRowsAreRefused();
    void failureLeavesNothingBehind();
    void killLeavesNothingBehind();

    void helpNamesEveryOptionOfTheManPage();

private:
    std::optional<WorkingDirectory> directory;
};

void TestTavorinFuse::fusesByTheStepsOfTheSweep()
{
    const Run run = fuse(writeStack() << "-o"
                                      << "result.png");
    QCOMPARE(run.code, 0);
    QVERIFY(run.errors.isEmpty());

    std::ostream nowhere(nullptr);
    FusionSweep sweep(nowhere);
    for (int i = 0; i < 4; ++i) {
        cv::Mat next = frame(i);
        sweep.add(next);
    }
    QVERIFY(isSame(cv::imread("result.png"), sweep.result()));
    QVERIFY(!isSame(cv::imread("result.png"), frame(0)));
}

void TestTavorinFuse::tellsEachPictureWithSharpnessAndFate()
{
    writeEdges("sharp.png", 100); // 25 edges of 100 rows, 800 levels a row
    writeEdges("soft.png", 50);
    cv::imwrite("flat.png", cv::Mat(100, 208, CV_8UC3, cv::Scalar::all(20)));
    const Run run = fuse({"soft.png", "sharp.png", "flat.png", "-o", "result.png"});
    QCOMPARE(run.out, QString("soft.png  sharpness 1.000000  first\n"
                              "sharp.png  sharpness 2.000000  fused and dropped\n"
                              "flat.png  sharpness 0.000000  fused and dropped\n"));
    QCOMPARE(run.code, 0);
    QVERIFY(fuse(writeStack() << "-o"
                              << "other.png")
                .out.contains("  fused and accepted\n"));
}

void TestTavorinFuse::skipsAfterFourDeclinesUnlessTold()
{
    QStringList names;
    for (int contrast : {100, 90, 80, 70, 60, 50}) {
        names << QString("%1.png").arg(contrast);
        writeEdges(names.last(), contrast);
    }
    const Run run = fuse(QStringList(names) << "-o"
                                            << "result.png");
    QCOMPARE(run.out.count("fused and dropped"), 4);
    QVERIFY(run.out.endsWith("50.png  sharpness 1.000000  skipped\n"));
    const Run all = fuse(QStringList(names) << "--all"
                                            << "-o"
                                            << "all.png");
    QCOMPARE(all.out.count("fused and dropped"), 5);
}

void TestTavorinFuse::quietTellsNothing()
{
    const Run run = fuse(writeStack() << "--quiet"
                                      << "-o"
                                      << "result.png");
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.isEmpty());
    QVERIFY(run.errors.isEmpty());
    QVERIFY(QFile::exists("result.png"));
}

void TestTavorinFuse::readsEveryFormat_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char *suffix : {"bmp", "jpg", "png", "tif"})
        QTest::newRow(suffix) << suffix;
}

void TestTavorinFuse::readsEveryFormat()
{
    QFETCH(QString, suffix);
    const QString name = "picture." + suffix;
    if (!cv::haveImageWriter(name.toStdString()))
        QSKIP("This build of the library has no codec for it.");
    QVERIFY(cv::imwrite(name.toStdString(), frame(1)));
    QCOMPARE(fuse({name, "-o", "result.png"}).code, 0);
    QVERIFY(isSame(cv::imread("result.png"), cv::imread(name.toStdString())));
}

void TestTavorinFuse::writesEveryFormat_data() { readsEveryFormat_data(); }

void TestTavorinFuse::writesEveryFormat()
{
    QFETCH(QString, suffix);
    const QString name = "result." + suffix;
    if (!cv::haveImageWriter(name.toStdString()))
        QSKIP("This build of the library has no codec for it.");
    cv::imwrite("picture.png", frame(1));
    QCOMPARE(fuse({"picture.png", "-o", name}).code, 0);
    const cv::Mat result = cv::imread(name.toStdString());
    QCOMPARE(result.size(), cv::Size(300, 240));
    if (suffix != "jpg")
        QVERIFY(isSame(result, frame(1)));
}

void TestTavorinFuse::onePictureIsItsOwnResult()
{
    cv::imwrite("picture.png", frame(2));
    QCOMPARE(fuse({"picture.png", "-o", "result.png"}).code, 0);
    QVERIFY(isSame(cv::imread("result.png"), frame(2)));
}

void TestTavorinFuse::foreignNamesWork()
{
    cv::imwrite("picture.png", frame(0));
    QVERIFY(QFile::rename("picture.png", QString::fromUtf8("景深 1.png")));
    const Run run = fuse({QString::fromUtf8("景深 1.png"), "-o", QString::fromUtf8("融合.png")});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.startsWith(QString::fromUtf8("景深 1.png  ")));
    QVERIFY(QFile::exists(QString::fromUtf8("融合.png")));
}

void TestTavorinFuse::wrongUseHasItsCode_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("no result") << QStringList({"0.png"});
    QTest::newRow("no pictures") << QStringList({"-o", "result.png"});
    QTest::newRow("unknown option") << QStringList({"--sharpen", "0.png", "-o", "result.png"});
    QTest::newRow("unknown suffix") << QStringList({"0.png", "-o", "result.xyz"});
    QTest::newRow("no suffix") << QStringList({"0.png", "-o", "result"});
}

void TestTavorinFuse::wrongUseHasItsCode()
{
    QFETCH(QStringList, arguments);
    writeStack();
    const Run run = fuse(arguments);
    QCOMPARE(run.code, 1);
    QVERIFY(!run.errors.isEmpty());
}

void TestTavorinFuse::missingPictureIsRefused()
{
    const Run run = fuse(writeStack() << "none.png"
                                      << "-o"
                                      << "result.png");
    QCOMPARE(run.code, 2);
    QCOMPARE(run.errors, QString("tavorin_fuse: none.png: no such file\n"));
    QVERIFY2(run.out.isEmpty(), "found out before the work");
    QVERIFY(!QFile::exists("result.png"));
}

void TestTavorinFuse::brokenPicturesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no picture at all");
    QTest::newRow("head only") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    // A bitmap that says it is 2^31 - 1 pixels wide and high.
    QTest::newRow("absurd size") << QByteArray(
        "BM\x36\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\xff\xff\xff\x7f\xff\xff\xff\x7f"
        "\x01\0\x18\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0",
        54);
}

void TestTavorinFuse::brokenPicturesAreRefused()
{
    QFETCH(QByteArray, bytes);
    directory->write("broken.png", bytes);
    const Run run = fuse({"broken.png", "-o", "result.png"});
    QCOMPARE(run.code, 2);
    QVERIFY(run.errors.contains("tavorin_fuse: broken.png: not a picture that can be read\n"));
    QVERIFY(!QFile::exists("result.png"));
}

void TestTavorinFuse::mixedSizesAreRefused()
{
    cv::imwrite("small.png", frame(0)(cv::Rect(0, 0, 100, 50)));
    const Run run = fuse(writeStack() << "small.png"
                                      << "-o"
                                      << "result.png");
    QCOMPARE(run.code, 3);
    QCOMPARE(run.errors, QString("tavorin_fuse: small.png: is 100 x 50, the pictures before it "
                                 "are 300 x 240\n"));
    QVERIFY(!QFile::exists("result.png"));
}

void TestTavorinFuse::existingResultIsRefusedWithoutForce()
{
    directory->write("result.png", "precious");
    const QStringList arguments = writeStack() << "-o"
                                               << "result.png";
    const Run run = fuse(arguments);
    QCOMPARE(run.code, 4);
    QCOMPARE(run.errors, QString("tavorin_fuse: result.png: exists already, see option --force\n"));
    QCOMPARE(directory->read("result.png"), QByteArray("precious"));
    QCOMPARE(fuse(QStringList(arguments) << "--force").code, 0);
    QCOMPARE(cv::imread("result.png").size(), cv::Size(300, 240));
}

void TestTavorinFuse::resultInNoFolderIsNotWritten()
{
    const Run run = fuse(writeStack() << "-o"
                                      << "nowhere/result.png");
    QCOMPARE(run.code, 5);
    QVERIFY(run.errors.startsWith("tavorin_fuse: nowhere/result.png: "));
}

void TestTavorinFuse::resultTooLargeForItsFormatIsNotWritten()
{
    cv::imwrite("wide.bmp", cv::Mat(12, 70000, CV_8UC3, cv::Scalar::all(90)));
    const Run run = fuse({"wide.bmp", "-o", "result.jpg"});
    QCOMPARE(run.code, 5);
    QCOMPARE(run.errors, QString("tavorin_fuse: result.jpg: its format cannot hold a picture of "
                                 "70000 x 12\n"));
    QVERIFY(!QFile::exists("result.jpg"));
    QCOMPARE(fuse({"wide.bmp", "-o", "result.png"}).code, 0);
}

void TestTavorinFuse::tooFewRowsAreRefused()
{
    cv::imwrite("a.png", frame(0).rowRange(0, 9));
    cv::imwrite("b.png", frame(1).rowRange(0, 9));
    const Run run = fuse({"a.png", "b.png", "-o", "result.png"});
    QCOMPARE(run.code, 6);
    QCOMPARE(run.errors, QString("tavorin_fuse: b.png: cannot be fused, 300 x 9 is too small\n"));
}

void TestTavorinFuse::failureLeavesNothingBehind()
{
    const QStringList names = writeStack();
    directory->write("broken.png", "no picture at all");
    directory->write("result.png", "precious");
    QCOMPARE(fuse(QStringList(names) << "broken.png"
                                     << "--force"
                                     << "-o"
                                     << "result.png")
                 .code,
             2);
    QCOMPARE(directory->read("result.png"), QByteArray("precious"));
    QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden, QDir::Name), QStringList(names)
                                                                           << "broken.png"
                                                                           << "result.png");
}

void TestTavorinFuse::killLeavesNothingBehind()
{
    const QStringList stack = writeStack();
    QStringList pictures;
    for (int i = 0; i < 50; ++i)
        pictures += stack;
    directory->write("result.png", "precious");
    const QStringList before = QDir().entryList(QDir::Files | QDir::Hidden);
    QProcess process;
    process.start(TAVORIN_FUSE, QStringList(pictures) << "--force"
                                                      << "-o"
                                                      << "result.png");
    QVERIFY(process.waitForReadyRead(60000)); // in the middle of the work
    process.kill();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(directory->read("result.png"), QByteArray("precious"));
    QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden), before);
}

void TestTavorinFuse::helpNamesEveryOptionOfTheManPage()
{
    const Run run = fuse({"--help"});
    QCOMPARE(run.code, 0);
    QFile page(MAN_PAGE);
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QString manual = QString::fromUtf8(page.readAll()).remove('\\');
    for (const char *option : {"--output", "--all", "--force", "--quiet", "--help", "--version"}) {
        QVERIFY2(run.out.contains(option), option);
        QVERIFY2(manual.contains(option), option);
    }
    for (int code = 0; code <= 6; ++code) {
        QVERIFY(manual.contains(QString("\n.B %1\n").arg(code)));
        QVERIFY(run.out.contains(QRegularExpression(QString("\\b%1 \\w").arg(code))));
    }
    QVERIFY(fuse({"--version"}).out.startsWith("tavorin_fuse "));
}

QTEST_GUILESS_MAIN(TestTavorinFuse)
#include "test_tavorin_fuse.moc"
