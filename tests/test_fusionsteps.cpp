#include "fusion/fuseframes.h"
#include "fusion/fusionsweep.h"
#include "fusion/gradientmagnitude.h"
#include "fusion/guidedweights.h"
#include "fusion/pictureconversion.h"
#include "fusion/reconstruction.h"
#include "fusion/rowbands.h"
#include "fusion/saliency.h"
#include "fusion/sharpness.h"
#include "tests/support/focusstack.h"
#include "tests/support/literalfusion.h"

#include <opencv2/imgproc.hpp>
#include <opencv2/ximgproc.hpp>

#include <QtTest>

#include <cstring>
#include <limits>
#include <sstream>

namespace {

/// The first difference between two pictures, byte by byte, or an empty text.
QByteArray difference(const cv::Mat &actual, const cv::Mat &expected)
{
    if (actual.type() != expected.type() || actual.size() != expected.size())
        return "another type or size";
    for (int y = 0; y < actual.rows; ++y) {
        if (std::memcmp(actual.ptr(y), expected.ptr(y), actual.cols * actual.elemSize()) == 0)
            continue;
        for (int x = 0; x < actual.cols; ++x) {
            if (std::memcmp(actual.ptr(y, x), expected.ptr(y, x), actual.elemSize()) != 0)
                return "differs at column " + QByteArray::number(x) + ", row " +
                       QByteArray::number(y);
        }
    }
    return {};
}

#define COMPARE_PICTURES(actual, expected) QCOMPARE(difference(actual, expected), QByteArray())

cv::Mat noise(cv::Size size, unsigned seed)
{
    cv::Mat picture(size, CV_8UC3);
    cv::RNG(seed).fill(picture, cv::RNG::UNIFORM, 0, 256);
    return picture;
}

cv::Mat stripes(cv::Size size, int period, bool upright)
{
    cv::Mat picture(size, CV_8UC3);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            picture.at<cv::Vec3b>(y, x) =
                cv::Vec3b::all(uchar((upright ? x : y) % period < period / 2 ? 0 : 255));
    return picture;
}

using Pair = std::array<cv::Mat, 2>;

cv::Mat fused(const Pair &frames, int mode = 1)
{
    FusionBuffers buffers;
    std::ostringstream times;
    cv::Mat out;
    fuseFrames(frames, out, mode, buffers, times);
    return out;
}

cv::Mat literallyFused(const Pair &frames, int mode = 1, literal::Trace *trace = nullptr)
{
    cv::Mat out;
    literal::fuseFrames({frames[0], frames[1]}, out, mode, trace);
    return out;
}

/// A whole picture of a step, put together from bands as the fusion does.
/// @param step  returns some rows of it
template<typename Step>
cv::Mat banded(cv::Size size, const Step &step)
{
    cv::Mat whole(size, CV_32F);
    forEachBand<SaliencyBuffers>(size.height, [&](cv::Range rows, SaliencyBuffers &band) {
        step(rows, band).copyTo(whole.rowRange(rows));
    });
    return whole;
}

cv::Mat logGrayOf(const cv::Mat &frame)
{
    return banded(frame.size(), [&](cv::Range rows, SaliencyBuffers &band) {
        logGray(frame, rows, band);
        return band.levels;
    });
}

cv::Mat gradientOf(const cv::Mat &frame)
{
    cv::Mat gradient(frame.size(), CV_32F);
    return banded(frame.size(), [&](cv::Range rows, SaliencyBuffers &band) {
        gradientMap(frame, rows, gradient, band);
        return gradient.rowRange(rows);
    });
}

cv::Mat maximumOf(const cv::Mat &gradient)
{
    return banded(gradient.size(), [&](cv::Range rows, SaliencyBuffers &band) {
        maxFilter(gradient, rows, band.gray, 5);
        return band.gray;
    });
}

cv::Mat saliencyOf(const cv::Mat &gradient)
{
    return banded(gradient.size(), [&](cv::Range rows, SaliencyBuffers &band) {
        return saliency(gradient, rows, band.gray);
    });
}

cv::Mat padded(const cv::Mat &picture)
{
    cv::Mat result;
    createPadded(result, picture.size(), picture.type());
    picture.copyTo(result);
    return result;
}

/// The weights of a frame.
/// @param selection  1 where the frame is chosen, `CV_32F`
cv::Mat weightsOf(const cv::Mat &guide, const cv::Mat &selection, bool firstFrame,
                  GuidedWeights::Filter filter)
{
    cv::Mat chosen = selection > 0.5;
    if (firstFrame)
        chosen = ~chosen;
    GuidedWeights weights(padded(guide), padded(chosen), firstFrame, filter);
    cv::Mat result = padded(guide);
    std::vector<BlockKind> kinds(size_t(blocksFor(guide.cols)));
    for (int y = 0; y < guide.rows; ++y) {
        float *row = result.ptr<float>(y);
        weights.next(row, kinds.data());
        for (int x = 0; x < guide.cols; ++x) {
            const BlockKind kind = kinds[size_t(x / blockSize)];
            if (kind != BlockKind::Mixed && row[x] != (kind == BlockKind::AllOne ? 1.0f : 0.0f))
                qFatal("A block of weights is of another kind than told");
        }
    }
    return result.clone();
}

using Floats = std::vector<float>;

/// The two rows of weights after stage norm, at most a block of them.
std::array<Floats, 2> normalised(Floats first, Floats second, int mode)
{
    const size_t count = first.size();
    const BlockKind kind = BlockKind::Mixed;
    first.resize(blockSize, 1.0f);
    second.resize(blockSize, 1.0f);
    normaliseWeights({first.data(), second.data()}, {&kind, &kind}, int(count), mode);
    first.resize(count);
    second.resize(count);
    return {first, second};
}

} // namespace

Q_DECLARE_METATYPE(cv::Mat)

/// Every step against its literal version, to the last bit.
class TestFusionSteps : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { cv::setNumThreads(-1); }

    void blackIsZeroAndWhiteIs150OnTheLogarithmicScale();
    void outerRingOfTheGradientStaysUnfiltered();
    void pictureOfAtMostTenRowsOrColumnsIsCopiedByTheMaximumFilter_data();
    void pictureOfAtMostTenRowsOrColumnsIsCopiedByTheMaximumFilter();
    void fewerThanTenRowsMakeTheLibraryThrow();
    void windowMaximumOfTheOracleKeepsItsRules();
    void sharpnessCountsGradientsInMillions();
    void equalSaliencyGoesToTheFirstFrame();
    void flatFramesGoToTheFirstFrame();
    void weightsAboveOneAreClampedAndTheSumIsDividedOut();
    void negativeWeightsStay();
    void sumOfZeroIsNotGuarded();
    void secondModeClampsWithoutDividing();
    void otherModesLeaveTheWeights();
    void resultIsRoundedAndSaturated();
    void constantBlocksAreTakenFromTheirFrame();
    void differentSizesAreRefused();
    void otherKindsOfPicturesAreRefused();
    void timingLinesComeInTheirOrderWithoutLineEnds();

    void everyStepIsTheLiteralOne_data();
    void everyStepIsTheLiteralOne();
    void streamedWeightsAreTheLibrarysOnAnyGuide_data();
    void streamedWeightsAreTheLibrarysOnAnyGuide();
    void streamedFilterIsChosenHere();
    void gradientIsOnePassHere();
    void blocksFarFromAnEdgeOfTheSelectionAreToldAsConstant();
    void smallPicturesOfEverySizeFuseLiterally_data();
    void smallPicturesOfEverySizeFuseLiterally();
    void picturesOfTooFewRowsHaveTheirSharpnessAndGradient();
    void buffersOfAnotherSizeDoNoHarm();
    void everyModeFusesLiterally_data();
    void everyModeFusesLiterally();
    void picturesFuseLiterally_data();
    void picturesFuseLiterally();
    void resultMayTakeAFramesPlace();
    void longSweepGoesTheLiteralWay();
};

void TestFusionSteps::blackIsZeroAndWhiteIs150OnTheLogarithmicScale()
{
    cv::Mat frame(1, 2, CV_8UC3, cv::Scalar::all(0));
    frame.at<cv::Vec3b>(0, 1) = cv::Vec3b(255, 255, 255);
    const cv::Mat levels = logGrayOf(frame);
    QCOMPARE(levels.at<float>(0, 0), 0.0f);
    QVERIFY(std::abs(levels.at<float>(0, 1) - 150.0f) < 1e-4f);
}

void TestFusionSteps::outerRingOfTheGradientStaysUnfiltered()
{
    cv::Mat gradient = cv::Mat::zeros(20, 20, CV_32F);
    gradient.at<float>(2, 2) = 7.0f;
    gradient.at<float>(10, 10) = 3.0f;
    const cv::Mat maxima = maximumOf(gradient);
    QCOMPARE(maxima.at<float>(2, 2), 7.0f);
    QCOMPARE(maxima.at<float>(2, 3), 0.0f);
    QCOMPARE(maxima.at<float>(4, 10), 0.0f);
    QCOMPARE(maxima.at<float>(5, 5), 7.0f);
    QCOMPARE(maxima.at<float>(7, 8), 3.0f);
    QCOMPARE(maxima.at<float>(14, 14), 3.0f);
    QCOMPARE(maxima.at<float>(15, 14), 0.0f);
}

void TestFusionSteps::pictureOfAtMostTenRowsOrColumnsIsCopiedByTheMaximumFilter_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("rows");
    QTest::newRow("ten rows") << 30 << 10;
    QTest::newRow("ten columns") << 10 << 30;
    QTest::newRow("one column") << 1 << 30;
}

void TestFusionSteps::pictureOfAtMostTenRowsOrColumnsIsCopiedByTheMaximumFilter()
{
    QFETCH(int, columns);
    QFETCH(int, rows);
    cv::Mat gradient(rows, columns, CV_32F);
    cv::RNG(5).fill(gradient, cv::RNG::UNIFORM, 0.0, 100.0);
    COMPARE_PICTURES(maximumOf(gradient), gradient);
    cv::Mat expected;
    literal::maxFilter(gradient, expected, 5);
    COMPARE_PICTURES(expected, gradient);
}

void TestFusionSteps::fewerThanTenRowsMakeTheLibraryThrow()
{
    for (int rows = 1; rows <= 9; ++rows) {
        const cv::Size size(20, rows);
        const Pair frames = {noise(size, 1), noise(size, 2)};
        QVERIFY_EXCEPTION_THROWN(literallyFused(frames), cv::Exception);
        QVERIFY_EXCEPTION_THROWN(fused(frames), cv::Exception);
    }
    const Pair frames = {noise({20, 10}, 1), noise({20, 10}, 2)};
    COMPARE_PICTURES(fused(frames), literallyFused(frames));
}

void TestFusionSteps::windowMaximumOfTheOracleKeepsItsRules()
{
    QVERIFY(literal::slidingMax({1, 2}, 3).empty());
    QCOMPARE(literal::slidingMax({1, 3, 2}, 3), Floats({3}));
    QCOMPARE(literal::slidingMax({5, 1, 2, 2, 0, 0}, 3), Floats({5, 2, 2, 2}));
    QCOMPARE(literal::slidingMax({0, 0, 0, 4}, 2), Floats({0, 0, 4}));
}

void TestFusionSteps::sharpnessCountsGradientsInMillions()
{
    QCOMPARE(sharpness(cv::Mat(30, 40, CV_8UC3, cv::Scalar(9, 9, 9))), 0.0);
    // A step of 100 levels down the middle: two columns of 10 rows with |gx| = 4 * 100.
    cv::Mat step(10, 20, CV_8UC3, cv::Scalar::all(50));
    step.colRange(10, 20).setTo(cv::Scalar::all(150));
    QCOMPARE(sharpness(step), 0.008);
    QVERIFY_EXCEPTION_THROWN(sharpness(cv::Mat()), cv::Exception);
}

void TestFusionSteps::equalSaliencyGoesToTheFirstFrame()
{
    cv::Mat first = noise({40, 40}, 3);
    cv::Mat second = 255 - first; // another picture
    cv::Mat same = first.clone();
    COMPARE_PICTURES(fused({first, same}), first);
    literal::Trace trace;
    literallyFused({first, same}, 1, &trace);
    QCOMPARE(cv::countNonZero(trace.selection[1]), 0);
    QVERIFY(!difference(fused({first, second}), first).isEmpty());
}

void TestFusionSteps::flatFramesGoToTheFirstFrame()
{
    const cv::Mat dark(40, 40, CV_8UC3, cv::Scalar::all(10));
    const cv::Mat bright(40, 40, CV_8UC3, cv::Scalar::all(200));
    COMPARE_PICTURES(fused({dark, bright}), dark);
    COMPARE_PICTURES(fused({bright, dark}), bright);
}

void TestFusionSteps::weightsAboveOneAreClampedAndTheSumIsDividedOut()
{
    const auto weights = normalised({1.5f, 0.25f, 0.5f}, {1.0f, 0.25f, 1.5f}, 1);
    QCOMPARE(weights[0], Floats({0.5f, 0.5f, 0.5f / 1.5f}));
    QCOMPARE(weights[1], Floats({0.5f, 0.5f, 1.0f / 1.5f}));
}

void TestFusionSteps::negativeWeightsStay()
{
    const auto weights = normalised({-0.5f}, {1.0f}, 1);
    QCOMPARE(weights[0], Floats({-1.0f}));
    QCOMPARE(weights[1], Floats({2.0f}));
}

void TestFusionSteps::sumOfZeroIsNotGuarded()
{
    const auto weights = normalised({-1.0f, 0.0f}, {1.0f, 0.0f}, 1);
    QVERIFY(std::isinf(weights[0][0]) && weights[0][0] < 0);
    QVERIFY(std::isinf(weights[1][0]) && weights[1][0] > 0);
    QVERIFY(std::isnan(weights[0][1]) && std::isnan(weights[1][1]));
}

void TestFusionSteps::secondModeClampsWithoutDividing()
{
    const auto weights = normalised({1.5f, 0.25f}, {0.5f, 0.25f}, 2);
    QCOMPARE(weights[0], Floats({1.0f, 0.25f}));
    QCOMPARE(weights[1], Floats({0.5f, 0.25f}));
}

void TestFusionSteps::otherModesLeaveTheWeights()
{
    const auto weights = normalised({1.5f}, {0.5f}, 0);
    QCOMPARE(weights[0], Floats({1.5f}));
    QCOMPARE(weights[1], Floats({0.5f}));
}

void TestFusionSteps::resultIsRoundedAndSaturated()
{
    const int count = 17; // a vector and one pixel more
    const BlockKind mixed[] = {BlockKind::Mixed, BlockKind::Mixed};
    std::vector<uchar> a(3 * count, 200), b(3 * count, 100), out(3 * count);
    const auto sum = [&](float wa, float wb) {
        const std::vector<float> first(count, wa), second(count, wb);
        reconstruct({a.data(), b.data()}, {first.data(), second.data()}, {mixed, mixed}, out.data(),
                    count);
        return std::count(out.begin(), out.end(), out[0]) == 3 * count ? int(out[0]) : -1;
    };
    QCOMPARE(sum(0.5f, 0.5f), 150);
    QCOMPARE(sum(0.5f, 0.006f), 101);
    QCOMPARE(sum(2.0f, 1.0f), 255);
    QCOMPARE(sum(-1.0f, 0.5f), 0);
    QCOMPARE(sum(0.5f, 0.005f), 100); // half a level goes to the even one
    QCOMPARE(sum(std::numeric_limits<float>::quiet_NaN(), 1.0f), 0);
}

void TestFusionSteps::constantBlocksAreTakenFromTheirFrame()
{
    constexpr auto zero = BlockKind::AllZero, one = BlockKind::AllOne, mixed = BlockKind::Mixed;
    const std::vector<BlockKind> first = {one, one, zero, one, mixed, zero, zero, mixed, one};
    const std::vector<BlockKind> second = {zero, zero, one, zero, zero, mixed, one, mixed, zero};
    // The weights count in blocks that are not constant in both frames alone.
    const std::vector<int> expected = {200, 200, 100, 200, 150, 150, 100, 150, 200};
    const int count = int(first.size()) * blockSize - 3;
    const std::vector<uchar> a(size_t(3 * count), 200), b(size_t(3 * count), 100);
    const std::vector<float> half(first.size() * blockSize, 0.5f);
    std::vector<uchar> out(size_t(3 * count));
    reconstruct({a.data(), b.data()}, {half.data(), half.data()}, {first.data(), second.data()},
                out.data(), count);
    for (int i = 0; i < 3 * count; ++i)
        QCOMPARE(int(out[size_t(i)]), expected[size_t(i / (3 * blockSize))]);

    std::vector<float> left(half.size(), 1.5f), right(half.size(), 0.5f);
    normaliseWeights({left.data(), right.data()}, {first.data(), second.data()}, count, 2);
    const std::vector<float> clamped = {1.5f, 1.5f, 1.5f, 1.5f, 1.0f, 1.0f, 1.5f, 1.0f, 1.5f};
    for (int i = 0; i < count; ++i)
        QCOMPARE(left[size_t(i)], clamped[size_t(i / blockSize)]);
}

void TestFusionSteps::differentSizesAreRefused()
{
    const cv::Mat small = noise({30, 30}, 1);
    for (const cv::Size size : {cv::Size(30, 31), cv::Size(31, 30), cv::Size(20, 20)}) {
        QVERIFY_EXCEPTION_THROWN(fused({small, noise(size, 2)}), cv::Exception);
        QVERIFY_EXCEPTION_THROWN(fused({noise(size, 2), small}), cv::Exception);
    }
    QVERIFY_EXCEPTION_THROWN(fused({small, cv::Mat()}), cv::Exception);
}

void TestFusionSteps::otherKindsOfPicturesAreRefused()
{
    const cv::Mat picture = noise({30, 30}, 1);
    for (const int type : {CV_8UC1, CV_8UC4, CV_16UC3, CV_32FC3}) {
        const cv::Mat other(30, 30, type, cv::Scalar::all(7));
        QVERIFY_EXCEPTION_THROWN(fused({picture, other}), cv::Exception);
        QVERIFY_EXCEPTION_THROWN(fused({other, picture}), cv::Exception);
    }
}

void TestFusionSteps::timingLinesComeInTheirOrderWithoutLineEnds()
{
    // The right half of the second frame has all the detail.
    cv::Mat first(64, 64, CV_8UC3, cv::Scalar::all(90));
    cv::Mat second = first.clone();
    noise({32, 64}, 8).copyTo(second.colRange(32, 64));
    literal::Trace trace;
    literallyFused({first, second}, 1, &trace);
    const int won = cv::countNonZero(trace.selection[1]);

    FusionBuffers buffers;
    std::ostringstream times;
    cv::Mat out;
    fuseFrames({first, second}, out, 1, buffers, times);
    const QRegularExpression lines(QStringLiteral(
        "^S-running time (\\S+) sec\\.P-running time (\\S+) sec\\.P-running time (\\S+) 像素"
        "Wbd-running time (\\S+) sec\\.norm-running time (\\S+) sec\\."
        "lastF-running time (\\S+) sec\\.$"));
    const auto match = lines.match(QString::fromStdString(times.str()));
    QVERIFY2(match.hasMatch(), times.str().c_str());
    QCOMPARE(match.captured(3), QString::number(won));
    for (int i : {1, 2, 4, 5, 6}) {
        bool ok = false;
        QVERIFY(match.captured(i).toDouble(&ok) >= 0.0);
        QVERIFY(ok);
    }
}

void TestFusionSteps::everyStepIsTheLiteralOne_data()
{
    QTest::addColumn<cv::Mat>("first");
    QTest::addColumn<cv::Mat>("second");
    for (const cv::Size size :
         {cv::Size(10, 10), cv::Size(1, 129), cv::Size(37, 11), cv::Size(40, 63), cv::Size(33, 64),
          cv::Size(65, 65), cv::Size(31, 127), cv::Size(637, 479)}) {
        const QByteArray text =
            QByteArray::number(size.width) + " x " + QByteArray::number(size.height);
        const cv::Mat surface = focusstack::surface(size, 4);
        QTest::newRow("focus stack " + text)
            << focusstack::frame(surface, 1, 3) << focusstack::frame(surface, 2, 3);
        QTest::newRow("noise " + text) << noise(size, 6) << noise(size, 7);
    }
}

void TestFusionSteps::everyStepIsTheLiteralOne()
{
    QFETCH(cv::Mat, first);
    QFETCH(cv::Mat, second);
    const Pair frames = {first, second};
    literal::Trace trace;
    const cv::Mat expected = literallyFused(frames, 1, &trace);
    for (size_t i = 0; i < 2; ++i) {
        QCOMPARE(sharpness(frames[i]), literal::sharpness(frames[i]));
        COMPARE_PICTURES(logGrayOf(frames[i]), trace.logGray[i]);
        COMPARE_PICTURES(gradientOf(frames[i]), trace.gradient[i]);
        COMPARE_PICTURES(maximumOf(trace.gradient[i]), trace.maximum[i]);
        COMPARE_PICTURES(saliencyOf(trace.gradient[i]), trace.saliency[i]);
        for (const auto filter : {GuidedWeights::Filter::Streamed, GuidedWeights::Filter::Library})
            COMPARE_PICTURES(weightsOf(trace.gradient[i], trace.selection[i], i == 0, filter),
                             trace.guided[i]);
    }
    FusionBuffers buffers;
    std::ostringstream times;
    cv::Mat out;
    fuseFrames(frames, out, 1, buffers, times);
    COMPARE_PICTURES(buffers.selection, cv::Mat(trace.selection[1] > 0.5));
    COMPARE_PICTURES(out, expected);
}

void TestFusionSteps::streamedWeightsAreTheLibrarysOnAnyGuide_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("spread");
    QTest::newRow("faint") << 0.0 << 0.01;
    QTest::newRow("usual") << 0.0 << 80.0;
    QTest::newRow("strong") << 0.0 << 1200.0;
    QTest::newRow("constant") << 600.0 << 0.0;
    // The variance is lost in rounding: weights that are not numbers spread to the right and down.
    QTest::newRow("strong and even") << 1100.0 << 0.5;
    QTest::newRow("strong and nearly constant") << 900.0 << 0.001;
}

void TestFusionSteps::streamedWeightsAreTheLibrarysOnAnyGuide()
{
    QFETCH(double, level);
    QFETCH(double, spread);
    const cv::Size size(301, 150);
    cv::Mat guide(size, CV_32F);
    cv::RNG(1).fill(guide, cv::RNG::UNIFORM, level, level + spread);
    if (spread == 0.0)
        guide.setTo(level);
    cv::Mat selection = cv::Mat::zeros(size, CV_32F);
    cv::circle(selection, {100, 70}, 40, cv::Scalar(1.0), cv::FILLED);
    selection.colRange(250, 301).setTo(1.0);
    cv::Mat expected;
    cv::ximgproc::guidedFilter(guide, selection, expected, 7, 0.06502499999999999);
    for (const bool firstFrame : {true, false})
        COMPARE_PICTURES(weightsOf(guide, selection, firstFrame, GuidedWeights::Filter::Streamed),
                         expected);
}

void TestFusionSteps::streamedFilterIsChosenHere()
{
    if (QSysInfo::buildCpuArchitecture() != "x86_64")
        QSKIP("On another processor the library's filter may be the right choice");
    QCOMPARE(GuidedWeights::exactFilter(), GuidedWeights::Filter::Streamed);
}

void TestFusionSteps::gradientIsOnePassHere()
{
    if (QSysInfo::buildCpuArchitecture() != "x86_64")
        QSKIP("On another processor the library's gradient may be the right choice");
    QVERIFY(isGradientOnePass());
}

void TestFusionSteps::blocksFarFromAnEdgeOfTheSelectionAreToldAsConstant()
{
    const cv::Size size(20 * blockSize, 80);
    cv::Mat guide(size, CV_32F);
    cv::RNG(1).fill(guide, cv::RNG::UNIFORM, 0.0, 80.0);
    cv::Mat chosen = cv::Mat::zeros(size, CV_8U);
    chosen.colRange(10 * blockSize, size.width).setTo(255);
    GuidedWeights weights(padded(guide), padded(chosen), false, GuidedWeights::Filter::Streamed);
    std::vector<float> row(size_t(size.width));
    std::vector<BlockKind> kinds(20);
    // Each of two windows of 15 pixels reaches a block further to each side of the edge.
    std::vector<BlockKind> expected(20, BlockKind::Mixed);
    std::fill(expected.begin(), expected.begin() + 8, BlockKind::AllZero);
    std::fill(expected.begin() + 12, expected.end(), BlockKind::AllOne);
    for (int y = 0; y < 60; ++y) {
        weights.next(row.data(), kinds.data());
        if (y >= 30)
            QVERIFY2(kinds == expected, qPrintable(QString("row %1").arg(y)));
    }
}

void TestFusionSteps::smallPicturesOfEverySizeFuseLiterally_data()
{
    QTest::addColumn<int>("rows");
    for (int rows = 10; rows <= 40; ++rows)
        QTest::newRow(QByteArray::number(rows) + " rows") << rows;
}

void TestFusionSteps::smallPicturesOfEverySizeFuseLiterally()
{
    QFETCH(int, rows);
    for (int columns = 1; columns <= 40; ++columns) {
        const cv::Size size(columns, rows);
        const cv::Mat surface = focusstack::surface(size, unsigned(columns));
        const cv::Mat flat(size, CV_8UC3, cv::Scalar(40, 90, 160));
        const Pair pairs[] = {{focusstack::frame(surface, 0, 3), focusstack::frame(surface, 1, 3)},
                              {flat, noise(size, unsigned(columns))},
                              {stripes(size, 6, true), stripes(size, 4, false)}};
        for (const Pair &frames : pairs) {
            const cv::Mat expected = literallyFused(frames);
            for (int threads : {1, 2}) {
                cv::setNumThreads(threads);
                COMPARE_PICTURES(fused(frames), expected);
                QCOMPARE(sharpness(frames[1]), literal::sharpness(frames[1]));
            }
        }
    }
}

void TestFusionSteps::picturesOfTooFewRowsHaveTheirSharpnessAndGradient()
{
    for (int rows = 1; rows <= 9; ++rows) {
        for (int columns = 1; columns <= 40; ++columns) {
            const cv::Mat frame = noise({columns, rows}, unsigned(columns));
            QCOMPARE(sharpness(frame), literal::sharpness(frame));
            cv::Mat levels(frame.size(), CV_32F), gx, gy, expected;
            cv::RNG(unsigned(rows)).fill(levels, cv::RNG::UNIFORM, 0.0, 150.0);
            cv::Sobel(levels, gx, CV_32F, 1, 0);
            cv::Sobel(levels, gy, CV_32F, 0, 1);
            cv::add(cv::abs(gx), cv::abs(gy), expected);
            cv::Mat actual(frame.size(), CV_32F);
            gradientMagnitude(levels, {0, rows}, actual);
            COMPARE_PICTURES(actual, expected);
        }
    }
}

void TestFusionSteps::buffersOfAnotherSizeDoNoHarm()
{
    FusionBuffers buffers;
    std::ostringstream times;
    cv::Mat out;
    for (const cv::Size size : {cv::Size(70, 50), cv::Size(33, 90), cv::Size(70, 50)}) {
        const Pair frames = {noise(size, 1), focusstack::surface(size, 2)};
        fuseFrames(frames, out, 1, buffers, times);
        COMPARE_PICTURES(out, literallyFused(frames));
    }
}

void TestFusionSteps::everyModeFusesLiterally_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("clamped and divided") << 1;
    QTest::newRow("clamped") << 2;
    QTest::newRow("as filtered") << 0;
}

void TestFusionSteps::everyModeFusesLiterally()
{
    QFETCH(int, mode);
    const cv::Mat surface = focusstack::surface({90, 80}, 11);
    const Pair frames = {focusstack::frame(surface, 0, 2), focusstack::frame(surface, 1, 2)};
    COMPARE_PICTURES(fused(frames, mode), literallyFused(frames, mode));
}

void TestFusionSteps::picturesFuseLiterally_data()
{
    QTest::addColumn<cv::Mat>("first");
    QTest::addColumn<cv::Mat>("second");
    const cv::Size size(637, 479);
    const cv::Mat flat(size, CV_8UC3, cv::Scalar(40, 90, 160));
    const cv::Mat surface = focusstack::surface(size, 12);
    const cv::Mat near = focusstack::frame(surface, 1, 4);
    const cv::Mat far = focusstack::frame(surface, 2, 4);
    cv::Mat patched = flat.clone();
    near(cv::Rect(200, 100, 150, 170)).copyTo(patched(cv::Rect(200, 100, 150, 170)));

    QTest::newRow("focus stack") << near << far;
    QTest::newRow("focus stack, other order") << far << near;
    QTest::newRow("noise") << noise(size, 1) << noise(size, 2);
    QTest::newRow("flat") << flat << flat;
    QTest::newRow("flat under noise") << flat << noise(size, 3);
    QTest::newRow("noise under flat") << noise(size, 3) << flat;
    QTest::newRow("patch on flat") << flat << patched;
    QTest::newRow("patch under flat") << patched << flat;
    QTest::newRow("black under patch") << cv::Mat(size, CV_8UC3, cv::Scalar()) << patched;
    QTest::newRow("upright stripes under the same shifted")
        << stripes(size, 4, true) << stripes(size, 6, true);
    QTest::newRow("upright on level stripes") << stripes(size, 4, false) << stripes(size, 4, true);
    QTest::newRow("stripes under noise") << stripes(size, 8, true) << noise(size, 4);
    QTest::newRow("stripes under focus stack") << stripes(size, 2, false) << near;
    QTest::newRow("one different pixel") << near << [&] {
        cv::Mat changed = near.clone();
        changed.at<cv::Vec3b>(240, 320) = cv::Vec3b(255, 0, 255);
        return changed;
    }();
    const cv::Mat large = focusstack::surface({1920, 1080}, 13);
    QTest::newRow("full frame") << focusstack::frame(large, 2, 6) << focusstack::frame(large, 3, 6);
    QTest::newRow("full frame, flat under noise")
        << cv::Mat(large.size(), CV_8UC3, cv::Scalar::all(70)) << noise(large.size(), 5);
    QTest::newRow("full frame, stripes under focus stack")
        << stripes(large.size(), 10, true) << focusstack::frame(large, 3, 6);
}

void TestFusionSteps::picturesFuseLiterally()
{
    QFETCH(cv::Mat, first);
    QFETCH(cv::Mat, second);
    const cv::Mat expected = literallyFused({first, second});
    for (int threads : {1, 2}) {
        cv::setNumThreads(threads);
        const cv::Mat out = fused({first, second});
        COMPARE_PICTURES(out, expected);
        QCOMPARE(sharpness(out), literal::sharpness(expected));
    }
}

void TestFusionSteps::resultMayTakeAFramesPlace()
{
    const cv::Mat surface = focusstack::surface({150, 140}, 14);
    const Pair frames = {focusstack::frame(surface, 0, 2), focusstack::frame(surface, 1, 2)};
    const cv::Mat expected = literallyFused(frames);
    for (size_t place : {0, 1}) {
        Pair working = {frames[0].clone(), frames[1].clone()};
        FusionBuffers buffers;
        std::ostringstream times;
        fuseFrames(working, working[place], 1, buffers, times);
        COMPARE_PICTURES(working[place], expected);
        COMPARE_PICTURES(working[1 - place], frames[1 - place]);
    }
}

void TestFusionSteps::longSweepGoesTheLiteralWay()
{
    const int count = 7;
    const cv::Mat surface = focusstack::surface({480, 360}, 15);
    std::ostringstream times;
    FusionSweep sweep(times);
    literal::Sweep expected;
    int accepted = 0;
    for (int i = 0; i < count; ++i) {
        cv::Mat frame = focusstack::frame(surface, i, count);
        QImage image(frame.cols, frame.rows, QImage::Format_RGB32);
        cv::Mat pixels(frame.size(), CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
        cv::cvtColor(frame, pixels, cv::COLOR_BGR2BGRA);
        const literal::Outcome wanted = expected.add(QPixmap::fromImage(image));
        QCOMPARE(int(sweep.add(frame)), int(wanted));
        accepted += wanted == literal::Outcome::Accepted;
        QCOMPARE(sweep.frameSharpness(), expected.lastSharpness);
        QImage running = expected.pix().toImage();
        COMPARE_PICTURES(sweep.result(), qImageToCvMat(running));
    }
    QVERIFY(accepted > 1);
}

QTEST_MAIN(TestFusionSteps)
#include "test_fusionsteps.moc"
