#include "measure/pathitems.h"
#include "tests/support/quiet.h"
#include "tests/support/shapescene.h"

#include <QtTest>

#include <cmath>

using Points = QVector<QPointF>;
Q_DECLARE_METATYPE(Points)

class TestPathItems : public QObject
{
    Q_OBJECT

private slots:
    void readouts_data();
    void readouts();
    void arcReadsItsSweepInDegreesInEveryUnit();
    void arcLengthIsThatOfThePath();
    void circumferenceOfACircleIsThatOfThePath();

    void ringHasACircleForEachDistance_data();
    void ringHasACircleForEachDistance();
    void ringInPixelsHasOneCircle();
    void ringFollowsScaleAndUnit();
    void distanceIsAnnounced();

    void paths_data();
    void paths();
    void pathsNeedTheirHandles_data();
    void pathsNeedTheirHandles();
    void secondCircleWaitsUntilItsLastHandlesPart();
    void collinearCircleShowsAboutTheOrigin();
    void arrowHeadIsPartOfTheOutline();
    void calibrationCircleKeepsItsRadius();

    void labelAnchors_data();
    void labelAnchors();
    void selectedShapeLeadsItsHandles_data();
    void selectedShapeLeadsItsHandles();
    void boundsAreTenLarger();
    void nothingIsDrawnBeforeThePathExists();
    void outlinesAlwaysHaveTheirExtraPart();
    void changeIsAnnouncedOnce();
    void textArrowAnnouncesEveryPaint();
    void missingPointsLeaveThePathAsItWas();
    void newHandleRebuildsThePathAtThePaint();

    void degenerateShapesAreQuietAndComeToRest_data();
    void degenerateShapesAreQuietAndComeToRest();
    void enormousCirclesAreBounded();
};

namespace {

// Radius 100 about (500, 400), radius 50 about (800, 400).
const Points circle{{600, 400}, {500, 500}, {400, 400}};
const Points twoCircles{{600, 400}, {500, 500}, {400, 400}, {850, 400}, {800, 450}, {750, 400}};
const Points quarter{{600, 400}, {560, 320}, {500, 300}};

/// The number behind a name in a label.
double numberOf(const QString &text, const QString &name)
{
    const QRegularExpression line("^" + name + " = ([-0-9.e+]+)",
                                  QRegularExpression::MultilineOption);
    return line.match(text).captured(1).toDouble();
}

/// How often an outline is begun anew.
int pieces(const QPainterPath &path)
{
    int count = 0;
    for (int i = 0; i < path.elementCount(); ++i)
        count += path.elementAt(i).isMoveTo();
    return count;
}

} // namespace

void TestPathItems::readouts_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QString>("text");
    QTest::newRow("Ring") << 10 << circle << "R1 = 100px\nCLen1 = 628.319px\nArea1 = 31415.9px\n";
    QTest::newRow("Poly, two points")
        << 11 << Points{{100, 100}, {200, 100}} << "CLen = 200px\nArea = 0px";
    QTest::newRow("Poly, a triangle")
        << 11 << Points{{100, 100}, {200, 100}, {200, 300}} << "CLen = 523.607px\nArea = 10000px";
    QTest::newRow("Poly, the triangle the other way round")
        << 11 << Points{{200, 300}, {200, 100}, {100, 100}} << "CLen = 523.607px\nArea = 10000px";
    QTest::newRow("LCir, circle alone")
        << 12 << circle << "R = 100px\nCLen = 628.319px\nArea = 31415.9px";
    QTest::newRow("LCir") << 12 << Points(circle) + Points{{500, 650}}
                          << "R = 100px\nCLen = 628.319px\nArea = 31415.9px\nLen = 250px";
    QTest::newRow("TCir, one circle")
        << 14 << circle << "R1 = 100px\nCLen1 = 628.319px\nArea1 = 31415.9px";
    QTest::newRow("TCir") << 14 << twoCircles
                          << "R1 = 100px\nCLen1 = 628.319px\nArea1 = 31415.9px\n"
                             "R2 = 50px\nCLen2 = 314.159px\nArea2 = 7853.98px\nDis = 300px";
    QTest::newRow("LText") << 15 << Points{{100, 100}, {200, 200}} << "...";
    QTest::newRow("CCali") << 17 << circle << "";
}

void TestPathItems::readouts()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    ShapeScene shapes;
    const Base *record = shapes.place(type, clicks);
    QTEST(record->textContent(), "text");
    shapes.paint();
    QTEST(record->textContent(), "text");
}

void TestPathItems::arcReadsItsSweepInDegreesInEveryUnit()
{
    ShapeScene shapes;
    Base *record = shapes.place(8, quarter, Unit::Pixel, 5);
    const QString sweep = QString::fromUtf8("CLen = 90°\nLen = ");
    for (int unit : {Unit::Pixel, Unit::Millimetre, Unit::Micrometre, Unit::Mil}) {
        record->setUnit(unit);
        QVERIFY(record->textContent().startsWith(sweep));
    }
    record->setUnit(Unit::Millimetre);
    QVERIFY(record->textContent().endsWith("\nR = 0.5mm"));
}

void TestPathItems::arcLengthIsThatOfThePath()
{
    ShapeScene shapes;
    const QString text = shapes.place(8, quarter)->textContent();
    // A quarter of radius 99.5, half the short box's side, and the step of 1.1 to its start.
    QVERIFY(std::abs(numberOf(text, "Len") - 157.41) < 0.1);
    QVERIFY(text.endsWith("\nR = 100px"));
}

void TestPathItems::circumferenceOfACircleIsThatOfThePath()
{
    ShapeScene shapes;
    const QString text = shapes.place(9, circle)->textContent();
    // 2 pi r is 628.319: the path's curves come near that only.
    const double circumference = numberOf(text, "CLen");
    QVERIFY(std::abs(circumference - 628.319) < 0.5);
    QVERIFY(circumference != 628.319);
    QVERIFY(text.startsWith("R = 100px\nCLen = "));
    QVERIFY(text.endsWith("px\nArea = 31415.9px"));
}

void TestPathItems::ringHasACircleForEachDistance_data()
{
    QTest::addColumn<double>("distance1");
    QTest::addColumn<double>("distance2");
    QTest::addColumn<QString>("innerText");
    QTest::addColumn<int>("circles");
    const QString second = "R2 = 80um\nCLen2 = 502.655um\nArea2 = 20106.2um\n";
    const QString third = "R3 = 50um\nCLen3 = 314.159um\nArea3 = 7853.98um";
    QTest::newRow("both") << 20.0 << 50.0 << second + third << 3;
    QTest::newRow("first, label ends with a line end") << 20.0 << 0.0 << second << 2;
    QTest::newRow("second alone") << 0.0 << 50.0 << third << 2;
    QTest::newRow("none") << 0.0 << 0.0 << "" << 1;
    QTest::newRow("as large as the radius") << 100.0 << 100.0 << "" << 1;
    QTest::newRow("larger than the radius") << 150.0 << 50.0 << third << 2;
    QTest::newRow("within a pixel of the centre")
        << 0.0 << 99.5 << "R3 = 0.5um\nCLen3 = 3.14159um\nArea3 = 0.785398um" << 2;
    QTest::newRow("negative") << -20.0 << -50.0 << "" << 1;
    QTest::newRow("not a number") << std::nan("") << double(HUGE_VAL) << "" << 1;
}

void TestPathItems::ringHasACircleForEachDistance()
{
    QFETCH(double, distance1);
    QFETCH(double, distance2);
    QFETCH(QString, innerText);
    QFETCH(int, circles);
    ShapeScene shapes;
    Base *record = shapes.place(10, circle, Unit::Micrometre);
    record->setRingDistance1(distance1);
    record->setRingDistance2(distance2);
    QCOMPARE(record->textContent(),
             "R1 = 100um\nCLen1 = 628.319um\nArea1 = 31415.9um\n" + innerText);
    QCOMPARE(pieces(record->item()->geometryPath()), circles);
}

void TestPathItems::ringInPixelsHasOneCircle()
{
    ShapeScene shapes;
    Base *record = shapes.place(10, circle, Unit::Pixel);
    record->setRingDistance1(20.0);
    QCOMPARE(pieces(record->item()->geometryPath()), 1);
}

void TestPathItems::ringFollowsScaleAndUnit()
{
    ShapeScene shapes;
    Base *record = shapes.place(10, circle, Unit::Pixel);
    record->setRingDistance1(20.0);
    record->setUnit(Unit::Micrometre);
    record->setScale(2);
    // The label alone has changed so far.
    QCOMPARE(record->textContent(), QString("R1 = 200um\nCLen1 = 1256.64um\nArea1 = 62831.9um\n"));
    record->item()->recompute();
    QCOMPARE(record->textContent(), QString("R1 = 200um\nCLen1 = 1256.64um\nArea1 = 62831.9um\n"
                                            "R2 = 180um\nCLen2 = 1130.97um\nArea2 = 50893.8um\n"));
}

void TestPathItems::distanceIsAnnounced()
{
    ShapeScene shapes;
    Base *record = shapes.place(10, circle, Unit::Micrometre);
    shapes.updates = 0;
    record->setRingDistance1(20.0);
    record->setRingDistance2(30.0);
    QCOMPARE(shapes.updates, 2);
}

void TestPathItems::paths_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QRectF>("box");
    QTest::addColumn<int>("count");
    QTest::newRow("Arc") << 8 << quarter << QRectF(499.5, 300, 100.5, 100) << 1;
    QTest::newRow("Cir") << 9 << circle << QRectF(400, 300, 200, 200) << 1;
    QTest::newRow("Ring") << 10 << circle << QRectF(400, 300, 200, 200) << 1;
    QTest::newRow("Poly") << 11 << Points{{100, 100}, {200, 100}, {200, 300}}
                          << QRectF(100, 100, 100, 200) << 1;
    QTest::newRow("LCir") << 12 << Points(circle) + Points{{500, 650}} << QRectF(400, 300, 200, 350)
                          << 2;
    QTest::newRow("TCir") << 14 << twoCircles << QRectF(400, 300, 450, 200) << 3;
    QTest::newRow("LText") << 15 << Points{{100, 400}, {300, 400}} << QRectF(100, 390, 200, 20)
                           << 2;
    QTest::newRow("CCali") << 17 << circle << QRectF(400, 300, 200, 200) << 1;
}

void TestPathItems::paths()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    QFETCH(QRectF, box);
    ShapeScene shapes;
    const QPainterPath path = shapes.place(type, clicks)->item()->geometryPath();
    const QRectF bounds = path.boundingRect();
    QVERIFY(std::abs(bounds.left() - box.left()) < 0.01);
    QVERIFY(std::abs(bounds.top() - box.top()) < 0.01);
    QVERIFY(std::abs(bounds.right() - box.right()) < 0.01);
    QVERIFY(std::abs(bounds.bottom() - box.bottom()) < 0.01);
    QTEST(pieces(path), "count");
}

void TestPathItems::pathsNeedTheirHandles_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("needed");
    QTest::newRow("Arc") << 8 << 3;
    QTest::newRow("Cir") << 9 << 3;
    QTest::newRow("Ring") << 10 << 3;
    QTest::newRow("Poly") << 11 << 2;
    QTest::newRow("LCir") << 12 << 3;
    QTest::newRow("TCir") << 14 << 3;
    QTest::newRow("LText") << 15 << 2;
    QTest::newRow("CCali") << 17 << 3;
}

void TestPathItems::pathsNeedTheirHandles()
{
    QFETCH(int, type);
    QFETCH(int, needed);
    ShapeScene shapes;
    Base *record = shapes.begin(type);
    record->addPoint({600, 400}, 1);
    record->moveLastPoint({500, 500});
    QCOMPARE(record->item()->geometryPath().isEmpty(), needed > 2);
    QCOMPARE(record->item()->updateText(), QVariant(needed <= 2));
    record->addPoint({500, 500}, 1);
    record->moveLastPoint({400, 400});
    QVERIFY(!record->item()->geometryPath().isEmpty());
    QCOMPARE(record->item()->updateText(), QVariant(true));
}

void TestPathItems::secondCircleWaitsUntilItsLastHandlesPart()
{
    ShapeScene shapes;
    Base *record = shapes.begin(14);
    record->addPoint(twoCircles[0], 1);
    for (int i = 1; i < 5; ++i) {
        record->moveLastPoint(twoCircles[i]);
        record->addPoint(twoCircles[i], 1);
    }
    shapes.paint();
    QCOMPARE(record->pointCount(), 6);
    QCOMPARE(record->textContent(), QString("R1 = 100px\nCLen1 = 628.319px\nArea1 = 31415.9px"));
    QCOMPARE(pieces(record->item()->geometryPath()), 1);
    record->moveLastPoint(twoCircles[5]);
    QVERIFY(record->textContent().endsWith("\nDis = 300px"));
    QCOMPARE(pieces(record->item()->geometryPath()), 3);
}

void TestPathItems::collinearCircleShowsAboutTheOrigin()
{
    ShapeScene shapes;
    Base *record = shapes.place(9, {{100, 100}, {200, 200}, {300, 300}}, Unit::Micrometre, 5);
    QCOMPARE(record->item()->geometryPath().boundingRect(), QRectF(-1, -1, 2, 2));
    QVERIFY(record->textContent().startsWith("R = -5um\n"));
    QVERIFY(record->textContent().endsWith("\nArea = 15.708um"));
    shapes.paint();
    QCOMPARE(record->points()[0]->pos(), QPointF(100, 100));
    QCOMPARE(record->text()->pos(), QPointF(100, 100));
}

void TestPathItems::arrowHeadIsPartOfTheOutline()
{
    ShapeScene shapes;
    const QPainterPath path = shapes.place(15, {{100, 400}, {300, 400}})->item()->geometryPath();
    QCOMPARE(path.elementCount(), 5);
    QCOMPARE(QPointF(path.elementAt(0)), QPointF(100, 400));
    QCOMPARE(QPointF(path.elementAt(1)), QPointF(300, 400));
    QVERIFY(QLineF(path.elementAt(2), {282.67949192431124, 390}).length() < 1e-9);
    QCOMPARE(QPointF(path.elementAt(3)), QPointF(300, 400));
    QVERIFY(QLineF(path.elementAt(4), {282.67949192431124, 410}).length() < 1e-9);
}

void TestPathItems::calibrationCircleKeepsItsRadius()
{
    ShapeScene shapes;
    const Base *record = shapes.place(17, circle);
    QCOMPARE(itemOf<GraphicsCCali>(record)->radius(), 100.0);
    shapes.paint();
    // Its empty label is never placed.
    QCOMPARE(record->text()->pos(), QPointF(0, -500));
}

void TestPathItems::labelAnchors_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QPointF>("anchor");
    QTest::newRow("Arc: second point") << 8 << quarter << QPointF(560, 320);
    QTest::newRow("Cir: first point") << 9 << circle << QPointF(600, 400);
    QTest::newRow("Ring: first point") << 10 << circle << QPointF(600, 400);
    QTest::newRow("Poly: first point")
        << 11 << Points{{100, 150}, {200, 100}, {200, 300}} << QPointF(100, 150);
    QTest::newRow("LCir: first point")
        << 12 << Points(circle) + Points{{500, 650}} << QPointF(600, 400);
    QTest::newRow("TCir: first point") << 14 << twoCircles << QPointF(600, 400);
    QTest::newRow("LText: in the middle")
        << 15 << Points{{100, 400}, {300, 500}} << QPointF(200, 450);
}

void TestPathItems::labelAnchors()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    ShapeScene shapes;
    const Base *record = shapes.place(type, clicks);
    shapes.paint();
    QTEST(record->text()->pos(), "anchor");
    record->item()->setSelected(true);
    record->item()->setPos(20, 30);
    shapes.paint();
    QFETCH(QPointF, anchor);
    QCOMPARE(record->text()->pos(), anchor + QPointF(20, 30));
}

void TestPathItems::selectedShapeLeadsItsHandles_data() { paths_data(); }

void TestPathItems::selectedShapeLeadsItsHandles()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    ShapeScene shapes;
    const Base *record = shapes.place(type, clicks);
    shapes.paint();
    const QPainterPath path = record->item()->geometryPath();
    record->item()->setSelected(true);
    record->item()->setPos(35, 45);
    shapes.paint();
    record->item()->setSelected(false);
    shapes.paint();
    for (int i = 0; i < clicks.size(); ++i)
        QCOMPARE(record->points()[i]->pos(), clicks[i] + QPointF(35, 45));
    QCOMPARE(record->item()->geometryPath(), path);
}

void TestPathItems::boundsAreTenLarger()
{
    ShapeScene shapes;
    const QRectF bounds = shapes.place(9, circle)->item()->boundingRect();
    QCOMPARE(bounds, QRectF(390, 290, 220, 220));
}

void TestPathItems::nothingIsDrawnBeforeThePathExists()
{
    ShapeScene shapes;
    Base *record = shapes.begin(9);
    record->addPoint({600, 400}, 1);
    record->moveLastPoint({500, 500});
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(0, -500));
    QCOMPARE(record->item()->shape(), QPainterPath());
}

void TestPathItems::outlinesAlwaysHaveTheirExtraPart()
{
    ShapeScene shapes;
    QImage image(10, 10, QImage::Format_RGB32);
    QPainter painter(&image);
    for (int type : {9, 10, 11, 15})
        QVERIFY(shapes.place(type, circle)->item()->paintExtra(&painter));
}

void TestPathItems::changeIsAnnouncedOnce()
{
    for (int type : {8, 9, 10, 11, 12, 14}) {
        ShapeScene shapes;
        Base *record = shapes.place(type, circle);
        shapes.paint();
        shapes.updates = 0;
        record->moveLastPoint({420, 333});
        QCOMPARE(shapes.updates, 1);
        record->moveLastPoint({420, 333});
        shapes.paint();
        QCOMPARE(shapes.updates, 1);
    }
}

void TestPathItems::textArrowAnnouncesEveryPaint()
{
    ShapeScene shapes;
    shapes.place(15, {{100, 400}, {300, 400}});
    shapes.paint();
    shapes.updates = 0;
    shapes.paint();
    shapes.paint();
    QCOMPARE(shapes.updates, 2);
}

void TestPathItems::missingPointsLeaveThePathAsItWas()
{
    ShapeScene shapes;
    Base *record = shapes.place(9, circle);
    const QPainterPath path = record->item()->geometryPath();
    record->removeLastPoint();
    shapes.paint();
    QCOMPARE(record->item()->geometryPath(), path);
}

void TestPathItems::newHandleRebuildsThePathAtThePaint()
{
    ShapeScene shapes;
    Base *record = shapes.place(11, {{100, 100}, {200, 100}});
    record->addPoint({200, 300}, 1);
    QCOMPARE(record->textContent(), QString("CLen = 200px\nArea = 0px"));
    shapes.paint();
    QCOMPARE(record->textContent(), QString("CLen = 523.607px\nArea = 10000px"));
}

void TestPathItems::degenerateShapesAreQuietAndComeToRest_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    const auto six = [](const Points &points) { return points + points; };
    const Points same{{300, 300}, {300, 300}, {300, 300}};
    const Points origin{{0, 0}, {0, 0}, {0, 0}};
    const Points level{{100, 300}, {200, 300}, {300, 300}};
    const Points closeTogether{{300, 300}, {300.001, 300}, {300, 300.001}};
    const Points almostLevel{{0, 300}, {500, 300.0000001}, {1000, 300}};
    const Points nowhere{{qQNaN(), 100}, {qInf(), -qInf()}, {1e300, -1e300}};
    for (int type : {8, 9, 10, 11, 12, 14, 17}) {
        const auto row = [type](const char *name, const Points &clicks) {
            QTest::addRow("type %d, %s", type, name) << type << clicks;
        };
        row("one place", six(same));
        row("all at the origin", six(origin));
        row("on one line", six(level));
        row("very close together", six(closeTogether));
        row("almost on one line", six(almostLevel));
        row("nowhere", six(nowhere));
    }
}

void TestPathItems::degenerateShapesAreQuietAndComeToRest()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    const Quiet quiet;
    ShapeScene shapes;
    Base *record = shapes.place(type,
                                clicks.mid(0, type == 14   ? 6
                                              : type == 12 ? 4
                                                           : 3),
                                Unit::Micrometre);
    record->setRingDistance1(20.0);
    record->setRingDistance2(qInf());
    shapes.paint();
    shapes.updates = 0;
    shapes.paint();
    QCOMPARE(shapes.updates, 0);
    QVERIFY(QRectF(-1e6, -1e6, 2e6, 2e6).contains(record->item()->boundingRect()));
    record->item()->shape().contains(QPointF(300, 300));
    record->item()->setSelected(true);
    record->item()->setPos(10, 10);
    shapes.paint();
    QCOMPARE(quiet.messages(), QStringList());
}

void TestPathItems::enormousCirclesAreBounded()
{
    ShapeScene shapes;
    // A determinant of 1e-4 and a radius of some 10^12.
    Base *record = shapes.place(9, {{0, 300}, {500, 300.0000001}, {1000, 300}});
    QVERIFY(numberOf(record->textContent(), "R") > 1e12);
    QCOMPARE(record->item()->boundingRect().width(), 2e6);
    // Its outline runs through the scene like a line.
    record->setLineColor(QColor(Qt::red));
    record->setLineWidth(3);
    const QImage image = shapes.paint();
    QCOMPARE(image.pixelColor(250, 300), QColor(Qt::red));
    QCOMPARE(image.pixelColor(250, 400), QColor(Qt::white));
}

QTEST_MAIN(TestPathItems)
#include "test_pathitems.moc"
