#include "simulator/simulatedcapture.h"
#include "simulator/specimen.h"

#include <opencv2/imgproc.hpp>

#include <QtTest>

namespace {

double sharpnessOf(const cv::Mat &picture)
{
    cv::Mat gray, edges;
    cv::cvtColor(picture, gray, cv::COLOR_BGR2GRAY);
    cv::Laplacian(gray, edges, CV_32F);
    return cv::norm(edges, cv::NORM_L1) / edges.total();
}

cv::Mat frameOf(SimulatedCapture &capture)
{
    cv::Mat frame;
    capture >> frame;
    return frame;
}

/// The part of a 1280 x 720 picture that shows an area of the specimen (7.5 micrometres a pixel).
cv::Mat partOf(const cv::Mat &frame, const cv::Rect2d &area)
{
    return frame(
        cv::Rect(cv::Point(area.tl() / 7.5 + cv::Point2d(640, 360)), cv::Size(area.size() / 7.5)));
}

} // namespace

class TestSimulatedCapture : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void opensOnlyWhatIsAttached();
    void failsAsManyOpensAsAsked();
    void givesFramesOfTheSizeThatWasSet();
    void theWidthAloneOnlyStores();
    void tellsTheFirmwareThroughTheTiltProperty();
    void recordsEverySetInOrder();
    void eachPartIsSharpestAtItsHeight_data();
    void eachPartIsSharpestAtItsHeight();
    void atItsFocusAPartIsExactlyTheSpecimen();
    void theMotorNeedsTimeToMove();
    void focusIsRefusedUnderAutofocus();
    void autofocusFindsTheHeightUnderTheWindow();
    void everySettingChangesThePicture_data();
    void everySettingChangesThePicture();
    void theWordFlipsThePicture();
    void aMonochromePictureHasNoColour();
    void unpluggingEndsTheStreamAndPropertiesReadMinusOne();
    void theRulerTicksLieWhereTheTableSays();
    void padsAndHolesAreAsLargeAsTheTableSays();

private:
    void focusAt(double position);

    std::unique_ptr<SimulatedCapture> capture;
};

void TestSimulatedCapture::init()
{
    capture = std::make_unique<SimulatedCapture>();
    capture->setNoise(false);
    capture->setFrameInterval(std::chrono::microseconds(0));
    capture->setMotorSpeed(1e9);
    QVERIFY(capture->open(0, cv::CAP_ANY));
    capture->set(cv::CAP_PROP_FRAME_WIDTH, 1280);
    capture->set(cv::CAP_PROP_FRAME_HEIGHT, 720);
    capture->takeSets();
}

void TestSimulatedCapture::focusAt(double position)
{
    capture->set(cv::CAP_PROP_AUTOFOCUS, 0);
    QVERIFY(capture->set(cv::CAP_PROP_FOCUS, position));
    QTRY_COMPARE(capture->focusPosition(), position);
}

void TestSimulatedCapture::opensOnlyWhatIsAttached()
{
    QVERIFY(!capture->open(1, cv::CAP_ANY));
    QVERIFY(!capture->isOpened());
    capture->plugIn({"Orvane_Second", "simulated:second"});
    QVERIFY(capture->open(1, cv::CAP_ANY));
    capture->release();
    QVERIFY(!capture->isOpened());
    QVERIFY(frameOf(*capture).empty());
}

void TestSimulatedCapture::failsAsManyOpensAsAsked()
{
    capture->failNextOpens(2);
    QVERIFY(!capture->open(0, cv::CAP_ANY));
    QVERIFY(!capture->open(0, cv::CAP_ANY));
    QVERIFY(capture->open(0, cv::CAP_ANY));
}

void TestSimulatedCapture::givesFramesOfTheSizeThatWasSet()
{
    QCOMPARE(frameOf(*capture).size(), cv::Size(1280, 720));
    capture->set(cv::CAP_PROP_FRAME_WIDTH, 640);
    capture->set(cv::CAP_PROP_FRAME_HEIGHT, 480);
    QCOMPARE(frameOf(*capture).size(), cv::Size(640, 480));
    QCOMPARE(frameOf(*capture).type(), CV_8UC3);
}

void TestSimulatedCapture::theWidthAloneOnlyStores()
{
    capture->set(cv::CAP_PROP_FRAME_WIDTH, 640);
    QCOMPARE(frameOf(*capture).size(), cv::Size(1280, 720));
}

void TestSimulatedCapture::tellsTheFirmwareThroughTheTiltProperty()
{
    QCOMPARE(capture->get(cv::CAP_PROP_TILT), 26.0);
}

void TestSimulatedCapture::recordsEverySetInOrder()
{
    capture->set(cv::CAP_PROP_BRIGHTNESS, 70);
    capture->set(cv::CAP_PROP_SHARPNESS, 20);
    const std::vector<std::pair<int, double>> expected{{10, 70.0}, {20, 20.0}};
    QVERIFY(capture->takeSets() == expected);
    QVERIFY(capture->takeSets().empty());
    QCOMPARE(capture->get(cv::CAP_PROP_SHARPNESS), 4.0); // 20 is a command, no sharpness
}

void TestSimulatedCapture::eachPartIsSharpestAtItsHeight_data()
{
    QTest::addColumn<int>("block");
    QTest::addColumn<double>("height");
    QTest::newRow("chip") << 0 << 290.0;
    QTest::newRow("inductor") << 1 << 340.0;
    QTest::newRow("recess") << 2 << 120.0;
}

void TestSimulatedCapture::eachPartIsSharpestAtItsHeight()
{
    QFETCH(int, block);
    QFETCH(double, height);
    const cv::Rect2d area = specimen::blocks()[block].area;
    focusAt(height);
    const double sharp = sharpnessOf(partOf(frameOf(*capture), area));
    for (double away : {-80.0, -30.0, 30.0, 60.0}) {
        focusAt(height + away);
        QVERIFY(sharpnessOf(partOf(frameOf(*capture), area)) < sharp * 0.9);
    }
}

void TestSimulatedCapture::atItsFocusAPartIsExactlyTheSpecimen()
{
    focusAt(290);
    const cv::Rect2d chip = specimen::blocks()[0].area;
    const cv::Mat expected = partOf(specimen::draw({1280, 720}, 7.5), chip);
    QCOMPARE(cv::norm(partOf(frameOf(*capture), chip), expected, cv::NORM_INF), 0.0);
}

void TestSimulatedCapture::theMotorNeedsTimeToMove()
{
    focusAt(100);
    capture->setMotorSpeed(0);
    capture->set(cv::CAP_PROP_FOCUS, 300);
    QCOMPARE(capture->get(cv::CAP_PROP_FOCUS), 100.0);
}

void TestSimulatedCapture::focusIsRefusedUnderAutofocus()
{
    capture->set(cv::CAP_PROP_AUTOFOCUS, 1);
    QVERIFY(!capture->set(cv::CAP_PROP_FOCUS, 20));
}

void TestSimulatedCapture::autofocusFindsTheHeightUnderTheWindow()
{
    focusAt(20);
    capture->set(cv::CAP_PROP_PAN, (8 << 8) + 5); // the chip's lettering
    capture->set(cv::CAP_PROP_AUTOFOCUS, 1);
    QTRY_VERIFY(std::abs(capture->get(cv::CAP_PROP_FOCUS) - 290) <= 4);
    capture->set(cv::CAP_PROP_PAN, (15 << 8) + 7); // the inductor's
    QTRY_VERIFY(std::abs(capture->get(cv::CAP_PROP_FOCUS) - 340) <= 4);
}

void TestSimulatedCapture::everySettingChangesThePicture_data()
{
    QTest::addColumn<int>("property");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("functions");
    QTest::newRow("brightness under automatic exposure") << 10 << 80 << 12;
    QTest::newRow("contrast") << 11 << 80 << 12;
    QTest::newRow("saturation") << 12 << 10 << 12;
    QTest::newRow("hue") << 13 << 80 << 12;
    QTest::newRow("gain by hand") << 14 << 20 << 4;
    QTest::newRow("exposure by hand") << 15 << -7 << 4;
    QTest::newRow("sharpness") << 20 << 15 << 12;
    QTest::newRow("zoom") << 27 << 65 << 12;
    QTest::newRow("red by hand") << 22 << 1200 << 8;
    QTest::newRow("green by hand") << 35 << 500 << 8;
    QTest::newRow("blue by hand") << 36 << 9000 << 8;
}

void TestSimulatedCapture::everySettingChangesThePicture()
{
    QFETCH(int, property);
    QFETCH(int, value);
    QFETCH(int, functions);
    capture->set(cv::CAP_PROP_BACKLIGHT, functions);
    const cv::Mat before = frameOf(*capture);
    QVERIFY(capture->set(property, value));
    QCOMPARE(capture->get(property), double(value));
    QVERIFY(cv::norm(frameOf(*capture), before, cv::NORM_INF) > 10);
}

void TestSimulatedCapture::theWordFlipsThePicture()
{
    const cv::Mat upright = frameOf(*capture);
    capture->set(cv::CAP_PROP_BACKLIGHT, 12 + 3);
    cv::Mat turned;
    cv::rotate(frameOf(*capture), turned, cv::ROTATE_180);
    QCOMPARE(cv::norm(turned, upright, cv::NORM_INF), 0.0);
}

void TestSimulatedCapture::aMonochromePictureHasNoColour()
{
    capture->set(cv::CAP_PROP_SATURATION, 0);
    cv::Mat channels[3];
    cv::split(frameOf(*capture), channels);
    QCOMPARE(cv::norm(channels[0], channels[1], cv::NORM_INF), 0.0);
    QCOMPARE(cv::norm(channels[0], channels[2], cv::NORM_INF), 0.0);
}

void TestSimulatedCapture::unpluggingEndsTheStreamAndPropertiesReadMinusOne()
{
    QVERIFY(!frameOf(*capture).empty());
    capture->unplug("simulated:microscope");
    QVERIFY(frameOf(*capture).empty());
    QVERIFY(capture->isOpened()); // as a real device does, until it is released
    QCOMPARE(capture->get(cv::CAP_PROP_FOCUS), -1.0);
    QVERIFY(!capture->set(cv::CAP_PROP_CONTRAST, 10));
}

void TestSimulatedCapture::theRulerTicksLieWhereTheTableSays()
{
    // 5 micrometres a pixel: ticks 20 pixels apart and 4 wide, the first centred on x = 360.
    const cv::Mat picture = specimen::draw({1920, 1080}, 5);
    const int row = 540 + 2250 / 5;
    for (int tick = 0; tick <= 60; ++tick) {
        const int x = 360 + 20 * tick;
        QVERIFY(picture.at<cv::Vec3b>(row, x)[2] > 180);
        QVERIFY(picture.at<cv::Vec3b>(row, x - 1)[2] > 180);
        if (tick < 60)
            QVERIFY(picture.at<cv::Vec3b>(row, x + 10)[2] < 120);
    }
}

/// How much of an area the inner colour covers, in pixels: the brightness between the mean of two
/// places that have one colour alone.
static double coveredArea(const cv::Mat &picture, const cv::Rect &area, const cv::Rect &inside,
                          const cv::Rect &outside)
{
    const auto brightness = [&](const cv::Rect &part) { return cv::mean(picture(part))[2]; };
    return (brightness(area) - brightness(outside)) / (brightness(inside) - brightness(outside)) *
           area.area();
}

void TestSimulatedCapture::padsAndHolesAreAsLargeAsTheTableSays()
{
    // 5 micrometres a pixel. The first pad is 60 wide and 140 high, from (120, 140) on.
    const cv::Mat picture = specimen::draw({1920, 1080}, 5);
    const cv::Rect soldermask(80, 100, 30, 200);
    const double width =
        coveredArea(picture, {100, 150, 100, 100}, {130, 150, 40, 100}, soldermask) / 100;
    QVERIFY2(std::abs(width - 60) < 0.2, qPrintable(QString::number(width)));
    const double height =
        coveredArea(picture, {130, 110, 40, 190}, {130, 150, 40, 120}, soldermask) / 40;
    QVERIFY2(std::abs(height - 140) < 0.5, qPrintable(QString::number(height)));
    // The left hole has a radius of 50, around (240, 680), in copper up to 90.
    const double hole =
        coveredArea(picture, {180, 620, 120, 120}, {215, 655, 50, 50}, {160, 670, 25, 20});
    QVERIFY2(std::abs(hole - 7854) < 40, qPrintable(QString::number(hole)));
}

QTEST_GUILESS_MAIN(TestSimulatedCapture)
#include "test_simulatedcapture.moc"
