#include "measure/geometry.h"

#include <QtTest>

#include <cmath>

class TestGeometry : public QObject
{
    Q_OBJECT

private slots:
    void circleRunsThroughThreePoints();
    void degenerateCircleHasRadiusMinusOneAboutTheOrigin_data();
    void degenerateCircleHasRadiusMinusOneAboutTheOrigin();
    void degenerateMeansASmallAreaNotASmallDistance();
    void notANumberIsNoDegenerateCircle();
    void footOfAPerpendicular_data();
    void footOfAPerpendicular();
    void footOnALineWithoutLengthIsNotANumber();
    void parallelIsCentredOnItsPoint();
    void parallelDistanceIsThatOfTheMiddles_data();
    void parallelDistanceIsThatOfTheMiddles();
    void offsetSegment_data();
    void offsetSegment();
    void offsetOfASegmentWithoutLengthIsNotDrawable();
    void arcSweepRunsThroughTheSecondPoint_data();
    void arcSweepRunsThroughTheSecondPoint();
    void arcOfThreePointsNearZeroDegreesWraps();
    void arcBoxIsOneUnitShortOfTheDiameter();
    void arcOfAnInfiniteCircleIsEmpty();
    void lengthOfAnEnormousPathIsThatOfTheToolkit();
    void areaDoesNotDependOnTheDirection();
    void areaBelowThreeVerticesIsNothing();
    void arrowHeadKeepsItsLength_data();
    void arrowHeadKeepsItsLength();
    void ticksCrossTheEndsAtRightAngles_data();
    void ticksCrossTheEndsAtRightAngles();
    void endNearAnIntersectionComparesXAlone_data();
    void endNearAnIntersectionComparesXAlone();
    void endNearAFootComparesXAlone_data();
    void endNearAFootComparesXAlone();
    void handlesAndCrossLinesClampDifferently_data();
    void handlesAndCrossLinesClampDifferently();
    void fuzzyCompare_data();
    void fuzzyCompare();
    void absentMeansAllCoordinatesNearZero();
};

namespace {

const double notANumber = std::nan("");
const double infinity = HUGE_VAL;

bool near(QPointF a, QPointF b) { return QLineF(a, b).length() < 1e-9; }
bool near(const QLineF &a, const QLineF &b) { return near(a.p1(), b.p1()) && near(a.p2(), b.p2()); }

} // namespace

void TestGeometry::circleRunsThroughThreePoints()
{
    double radius = 0;
    QCOMPARE(circleFromPoints({0, 0}, {2, 0}, {0, 2}, radius), QPointF(1, 1));
    QCOMPARE(radius, 1.4142135623730951);
    QCOMPARE(circleFromPoints({600, 400}, {500, 300}, {400, 400}, radius), QPointF(500, 400));
    QCOMPARE(radius, 100.0);
}

void TestGeometry::degenerateCircleHasRadiusMinusOneAboutTheOrigin_data()
{
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<QPointF>("c");
    QTest::newRow("collinear") << QPointF(1, 1) << QPointF(2, 2) << QPointF(3, 3);
    QTest::newRow("collinear and level") << QPointF(10, 7) << QPointF(90, 7) << QPointF(50, 7);
    QTest::newRow("three equal") << QPointF(4, 5) << QPointF(4, 5) << QPointF(4, 5);
    QTest::newRow("two equal") << QPointF(4, 5) << QPointF(4, 5) << QPointF(9, 9);
    QTest::newRow("very close together") << QPointF(5, 5) << QPointF(5.001, 5) << QPointF(5, 5.001);
}

void TestGeometry::degenerateCircleHasRadiusMinusOneAboutTheOrigin()
{
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QFETCH(QPointF, c);
    double radius = 0;
    QCOMPARE(circleFromPoints(a, b, c, radius), QPointF(0, 0));
    QCOMPARE(radius, -1.0);
}

void TestGeometry::degenerateMeansASmallAreaNotASmallDistance()
{
    double radius = 0;
    // A determinant of 1e-6 although the points lie hundreds of units apart.
    circleFromPoints({0, 0}, {1000, 0}, {500, 1e-9}, radius);
    QCOMPARE(radius, -1.0);
    // One of 1.6e-5 although they lie close together.
    circleFromPoints({0, 0}, {0.004, 0}, {0, 0.004}, radius);
    QVERIFY(std::abs(radius - 0.0028284271247461) < 1e-12);
}

void TestGeometry::notANumberIsNoDegenerateCircle()
{
    double radius = 0;
    circleFromPoints({notANumber, 0}, {2, 0}, {0, 2}, radius);
    QVERIFY(std::isnan(radius));
}

void TestGeometry::footOfAPerpendicular_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<QPointF>("foot");
    QTest::newRow("between the ends")
        << QPointF(3, 5) << QPointF(0, 0) << QPointF(10, 0) << QPointF(3, 0);
    QTest::newRow("beyond an end")
        << QPointF(15, -5) << QPointF(0, 0) << QPointF(10, 0) << QPointF(15, 0);
    QTest::newRow("on a slanting line")
        << QPointF(0, 4) << QPointF(0, 0) << QPointF(4, 4) << QPointF(2, 2);
    QTest::newRow("on the line itself")
        << QPointF(7, 7) << QPointF(0, 0) << QPointF(4, 4) << QPointF(7, 7);
}

void TestGeometry::footOfAPerpendicular()
{
    QFETCH(QPointF, point);
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QTEST(::footOfPerpendicular(point, a, b), "foot");
}

void TestGeometry::footOnALineWithoutLengthIsNotANumber()
{
    const QPointF foot = footOfPerpendicular({3, 5}, {1, 1}, {1, 1});
    QVERIFY(std::isnan(foot.x()) && std::isnan(foot.y()));
}

void TestGeometry::parallelIsCentredOnItsPoint()
{
    QCOMPARE(parallelThrough({0, 0}, {10, 0}, {5, 8}), QLineF(0, 8, 10, 8));
    QCOMPARE(parallelThrough({0, 0}, {6, 8}, {13, 4}), QLineF(10, 0, 16, 8));
}

void TestGeometry::parallelDistanceIsThatOfTheMiddles_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<double>("distance");
    QTest::newRow("on the perpendicular through the middle") << QPointF(5, 3) << 3.0;
    QTest::newRow("off the perpendicular") << QPointF(9, 3) << 5.0;
    QTest::newRow("on the base line's extension") << QPointF(15, 0) << 10.0;
}

void TestGeometry::parallelDistanceIsThatOfTheMiddles()
{
    QFETCH(QPointF, point);
    const QLineF base(0, 0, 10, 0);
    QPointF foot;
    QTEST(parallelDistance(base, parallelThrough(base.p1(), base.p2(), point), foot), "distance");
    QCOMPARE(foot, point);
}

void TestGeometry::offsetSegment_data()
{
    QTest::addColumn<QLineF>("segment");
    QTest::addColumn<double>("distance");
    QTest::addColumn<QLineF>("offset");
    QTest::newRow("left to right, positive: below")
        << QLineF(0, 0, 10, 0) << 3.0 << QLineF(0, 3, 10, 3);
    QTest::newRow("left to right, negative: above")
        << QLineF(0, 0, 10, 0) << -3.0 << QLineF(0, -3, 10, -3);
    QTest::newRow("right to left: above") << QLineF(10, 0, 0, 0) << 3.0 << QLineF(10, -3, 0, -3);
    QTest::newRow("downwards: left") << QLineF(5, 0, 5, 10) << 2.0 << QLineF(3, 0, 3, 10);
    QTest::newRow("slanting") << QLineF(0, 0, 3, 4) << 5.0 << QLineF(-4, 3, -1, 7);
}

void TestGeometry::offsetSegment()
{
    QFETCH(QLineF, segment);
    QFETCH(double, distance);
    QFETCH(QLineF, offset);
    QVERIFY(near(::offsetSegment(segment, distance), offset));
}

void TestGeometry::offsetOfASegmentWithoutLengthIsNotDrawable()
{
    QVERIFY(!isDrawable(::offsetSegment(QLineF(4, 4, 4, 4), 3)));
    QVERIFY(isDrawable(QLineF(0, 0, 0, 1e-6)));
    QVERIFY(!isDrawable(QLineF(0, 0, 0, 0)));
    QVERIFY(!isDrawable(QLineF(0, 0, infinity, 0)));
}

void TestGeometry::arcSweepRunsThroughTheSecondPoint_data()
{
    // Angles run counter-clockwise on the screen: (10, -10) stands at 45 degrees of the origin.
    QTest::addColumn<QPointF>("p0");
    QTest::addColumn<QPointF>("p1");
    QTest::addColumn<QPointF>("p2");
    QTest::addColumn<bool>("wraps");
    QTest::addColumn<bool>("fromThird");
    QTest::addColumn<double>("startAngle");
    QTest::addColumn<double>("sweep");
    const QPointF at0(10, 0), at45(10, -10), at90(0, -10), at180(-10, 0), at270(0, 10),
        at315(10, 10);
    QTest::newRow("rising") << at45 << at90 << at180 << false << false << 45.0 << 135.0;
    QTest::newRow("falling") << at180 << at90 << at45 << false << true << 45.0 << 135.0;
    QTest::newRow("wrapping, third above first, second smallest")
        << at45 << at0 << at315 << true << true << 315.0 << 90.0;
    QTest::newRow("wrapping, third above first, second largest")
        << at0 << at315 << at270 << true << true << 270.0 << 90.0;
    QTest::newRow("wrapping, third below first")
        << at315 << at0 << at45 << true << false << 315.0 << 90.0;
    QTest::newRow("a tie does not wrap")
        << at45 << at45 << at180 << false << false << 45.0 << 135.0;
    QTest::newRow("no sweep at all") << at90 << at90 << at90 << false << true << 90.0 << 0.0;
}

void TestGeometry::arcSweepRunsThroughTheSecondPoint()
{
    QFETCH(QPointF, p0);
    QFETCH(QPointF, p1);
    QFETCH(QPointF, p2);
    QFETCH(bool, fromThird);
    QFETCH(double, startAngle);
    QFETCH(double, sweep);
    const ArcSweep arc = arcSweep({0, 0}, p0, p1, p2);
    QTEST(arc.wraps, "wraps");
    QCOMPARE(arc.fromThird, fromThird);
    QCOMPARE(arc.start, fromThird ? p2 : p0);
    QVERIFY(std::abs(arc.startAngle - startAngle) < 1e-9);
    QVERIFY(std::abs(arc.sweep - sweep) < 1e-9);
}

void TestGeometry::arcOfThreePointsNearZeroDegreesWraps()
{
    const QPointF at350(98.480775301220802, 17.364817766693033);
    const QPointF at10(98.480775301220802, -17.364817766693033);
    const QPointF at30(86.602540378443865, -50.0);
    const ArcSweep arc = arcSweep({0, 0}, at350, at10, at30);
    QVERIFY(arc.wraps);
    QCOMPARE(arc.start, at350);
    QVERIFY(std::abs(arc.startAngle - 350) < 1e-9);
    QVERIFY(std::abs(arc.sweep - 40) < 1e-9);
}

void TestGeometry::arcBoxIsOneUnitShortOfTheDiameter()
{
    const ArcSweep arc = arcSweep({0, 0}, {10, 0}, {8, -6}, {0, -10});
    const QPainterPath path = arcPath({0, 0}, 10, arc, arc.start);
    // The box has its corner at (-10, -10) and sides of 19: its ellipse begins at (9, -0.5).
    QCOMPARE(QPointF(path.elementAt(0)), QPointF(10, 0));
    QVERIFY(near(QPointF(path.elementAt(1)), QPointF(9, -0.5)));
    QVERIFY(near(path.currentPosition(), QPointF(-0.5, -10)));
}

void TestGeometry::arcOfAnInfiniteCircleIsEmpty()
{
    const ArcSweep arc = arcSweep({0, 0}, {10, 0}, {8, -6}, {0, -10});
    QVERIFY(arcPath({0, 0}, infinity, arc, arc.start).isEmpty());
    QVERIFY(arcPath({notANumber, 0}, 10, arc, arc.start).isEmpty());
    QVERIFY(arcPath({0, 0}, 10, arc, {0, notANumber}).isEmpty());
}

void TestGeometry::lengthOfAnEnormousPathIsThatOfTheToolkit()
{
    QPainterPath line;
    line.lineTo(300, 400);
    QCOMPARE(pathLength(line), 500.0);
    line.lineTo(300 + 3e15, 400 + 4e15);
    QCOMPARE(pathLength(line), 5e15 + 500);

    // The toolkit's curves make an ellipse 1.00014 times as long as the circle.
    QPainterPath ellipse;
    ellipse.addEllipse(QPointF(0, 0), 5e16, 5e16);
    QVERIFY(std::abs(pathLength(ellipse) / 5e16 - 6.28407) < 1e-5);
}

void TestGeometry::areaDoesNotDependOnTheDirection()
{
    QCOMPARE(polygonArea({{0, 0}, {10, 0}, {10, 20}, {0, 20}}), 200.0);
    QCOMPARE(polygonArea({{0, 20}, {10, 20}, {10, 0}, {0, 0}}), 200.0);
    QCOMPARE(polygonArea({{100, 100}, {200, 100}, {200, 300}}), 10000.0);
}

void TestGeometry::areaBelowThreeVerticesIsNothing()
{
    QCOMPARE(polygonArea({}), 0.0);
    QCOMPARE(polygonArea({{5, 5}}), 0.0);
    QCOMPARE(polygonArea({{5, 5}, {9, 2}}), 0.0);
}

void TestGeometry::arrowHeadKeepsItsLength_data()
{
    QTest::addColumn<QPointF>("tail");
    QTest::addColumn<QPointF>("tip");
    QTest::addColumn<QPointF>("first");
    QTest::addColumn<QPointF>("second");
    // 20 sin 60 is 17.32, 20 cos 60 is 10.
    QTest::newRow("to the right") << QPointF(0, 0) << QPointF(100, 0)
                                  << QPointF(82.679491924311229, -10)
                                  << QPointF(82.679491924311229, 10);
    QTest::newRow("ten times as long")
        << QPointF(-900, 0) << QPointF(100, 0) << QPointF(82.679491924311229, -10)
        << QPointF(82.679491924311229, 10);
    QTest::newRow("down") << QPointF(0, 0) << QPointF(0, 50) << QPointF(10, 32.679491924311229)
                          << QPointF(-10, 32.679491924311229);
}

void TestGeometry::arrowHeadKeepsItsLength()
{
    QFETCH(QPointF, tail);
    QFETCH(QPointF, tip);
    QFETCH(QPointF, first);
    QFETCH(QPointF, second);
    const ArrowHead head = arrowHead(tail, tip);
    QVERIFY(near(head.first, first));
    QVERIFY(near(head.second, second));
}

void TestGeometry::ticksCrossTheEndsAtRightAngles_data()
{
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<QLineF>("first");
    QTest::addColumn<QLineF>("second");
    QTest::newRow("level") << QPointF(0, 0) << QPointF(50, 0) << QLineF(0, -100, 0, 100)
                           << QLineF(50, -100, 50, 100);
    QTest::newRow("upright") << QPointF(0, 0) << QPointF(0, 50) << QLineF(100, 0, -100, 0)
                             << QLineF(100, 50, -100, 50);
    QTest::newRow("slanting") << QPointF(0, 0) << QPointF(3, 4) << QLineF(80, -60, -80, 60)
                              << QLineF(83, -56, -77, 64);
    QTest::newRow("slanting, drawn backwards")
        << QPointF(3, 4) << QPointF(0, 0) << QLineF(83, -56, -77, 64) << QLineF(80, -60, -80, 60);
}

void TestGeometry::ticksCrossTheEndsAtRightAngles()
{
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QFETCH(QLineF, first);
    QFETCH(QLineF, second);
    const TickPair ticks = tickPair(a, b);
    QVERIFY(near(ticks.first, first));
    QVERIFY(near(ticks.second, second));
}

void TestGeometry::endNearAnIntersectionComparesXAlone_data()
{
    QTest::addColumn<QLineF>("segment");
    QTest::addColumn<QPointF>("crossing");
    QTest::addColumn<QPointF>("end");
    const QLineF rightwards(0, 0, 10, 0), leftwards(10, 0, 0, 0), upright(5, 0, 5, 100);
    QTest::newRow("left of a rightward one") << rightwards << QPointF(-5, 0) << QPointF(0, 0);
    QTest::newRow("right of a rightward one") << rightwards << QPointF(20, 0) << QPointF(10, 0);
    QTest::newRow("left of a leftward one") << leftwards << QPointF(-5, 0) << QPointF(0, 0);
    QTest::newRow("right of a leftward one") << leftwards << QPointF(20, 0) << QPointF(10, 0);
    // An upright segment gives its second or its first end, the nearer one or not.
    QTest::newRow("left of an upright one") << upright << QPointF(0, -50) << QPointF(5, 100);
    QTest::newRow("right of an upright one") << upright << QPointF(9, 150) << QPointF(5, 0);
    QTest::newRow("on an upright one's line") << upright << QPointF(5, 150) << QPointF(5, 0);
}

void TestGeometry::endNearAnIntersectionComparesXAlone()
{
    QFETCH(QLineF, segment);
    QFETCH(QPointF, crossing);
    QTEST(endNearIntersection(segment, crossing), "end");
}

void TestGeometry::endNearAFootComparesXAlone_data()
{
    QTest::addColumn<QLineF>("segment");
    QTest::addColumn<QPointF>("foot");
    QTest::addColumn<QPointF>("end");
    QTest::newRow("beyond the second") << QLineF(0, 0, 10, 0) << QPointF(12, 0) << QPointF(10, 0);
    QTest::newRow("beyond the first") << QLineF(0, 0, 10, 0) << QPointF(-3, 0) << QPointF(0, 0);
    QTest::newRow("in the middle") << QLineF(0, 0, 10, 0) << QPointF(5, 0) << QPointF(10, 0);
    QTest::newRow("upright: the second, the nearer one or not")
        << QLineF(5, 0, 5, 100) << QPointF(5, -20) << QPointF(5, 100);
}

void TestGeometry::endNearAFootComparesXAlone()
{
    QFETCH(QLineF, segment);
    QFETCH(QPointF, foot);
    QTEST(endNearFoot(segment, foot), "end");
}

void TestGeometry::handlesAndCrossLinesClampDifferently_data()
{
    QTest::addColumn<QPointF>("pos");
    QTest::addColumn<QPointF>("handle");
    QTest::addColumn<QPointF>("cross");
    QTest::newRow("inside") << QPointF(30, 40) << QPointF(30, 40) << QPointF(30, 40);
    QTest::newRow("just inside the near edges")
        << QPointF(0.5, 0.25) << QPointF(0.5, 0.25) << QPointF(0.5, 0.25);
    QTest::newRow("left above") << QPointF(-3, -4) << QPointF(0, 0) << QPointF(0, 0);
    QTest::newRow("right below") << QPointF(1200, 900) << QPointF(1000, 800) << QPointF(999, 799);
    QTest::newRow("on the far edges")
        << QPointF(1000, 800) << QPointF(1000, 800) << QPointF(999, 799);
    QTest::newRow("just inside the far edges")
        << QPointF(999.5, 799.5) << QPointF(999.5, 799.5) << QPointF(999.5, 799.5);
    QTest::newRow("nowhere") << QPointF(notANumber, notANumber) << QPointF(0, 0) << QPointF(0, 0);
    QTest::newRow("infinitely far")
        << QPointF(infinity, -infinity) << QPointF(1000, 0) << QPointF(999, 0);
}

void TestGeometry::handlesAndCrossLinesClampDifferently()
{
    QFETCH(QPointF, pos);
    QTEST(clampHandle(pos, {1000, 800}), "handle");
    QTEST(clampCross(pos, {1000, 800}), "cross");
}

void TestGeometry::fuzzyCompare_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<bool>("equal");
    QTest::newRow("the same") << 5.0 << 5.0 << true;
    QTest::newRow("within a relative 1e-12") << 1000.0 << 1000.0000000005 << true;
    QTest::newRow("beyond a relative 1e-12") << 1000.0 << 1000.000000002 << false;
    QTest::newRow("zero and next to it") << 0.0 << 1e-12 << true;
    QTest::newRow("zero and not next to it") << 2e-12 << 0.0 << false;
    QTest::newRow("two small ones are relative too") << 1e-13 << 2e-13 << false;
    QTest::newRow("the two zeros") << 0.0 << -0.0 << true;
    QTest::newRow("not a number, twice") << notANumber << notANumber << true;
    QTest::newRow("not a number, once") << notANumber << 1.0 << false;
    QTest::newRow("infinity, twice") << infinity << infinity << true;
    QTest::newRow("infinity, once") << infinity << 1.0 << false;
}

void TestGeometry::fuzzyCompare()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QTEST(fuzzyEqual(a, b), "equal");
    QTEST(fuzzyEqual(QPointF(a, 1), QPointF(b, 1)), "equal");
    QTEST(fuzzyEqual(QLineF(1, 1, 1, a), QLineF(1, 1, 1, b)), "equal");
}

void TestGeometry::absentMeansAllCoordinatesNearZero()
{
    QVERIFY(isAbsent(QPointF(1e-12, -1e-12)));
    QVERIFY(!isAbsent(QPointF(0, 2e-12)));
    QVERIFY(!isAbsent(QPointF(notANumber, 0)));
    QVERIFY(isAbsent(QLineF(0, 0, 0, 0)));
    QVERIFY(!isAbsent(QLineF(0, 0, 0, 1)));
}

QTEST_APPLESS_MAIN(TestGeometry)
#include "test_geometry.moc"
