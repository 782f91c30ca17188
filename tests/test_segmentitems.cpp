#include "measure/geometry.h"
#include "measure/segmentitems.h"
#include "tests/support/quiet.h"
#include "tests/support/shapescene.h"

#include <QtTest>

using Points = QVector<QPointF>;
Q_DECLARE_METATYPE(Points)

class TestSegmentItems : public QObject
{
    Q_OBJECT

private slots:
    void readouts_data();
    void readouts();
    void rectangleDrawnLeftwardsKeepsItsSigns();
    void parallelOnTheBaseLineHasADistance();

    void segments_data();
    void segments();
    void boundsAreTenLarger_data();
    void boundsAreTenLarger();
    void labelAnchors_data();
    void labelAnchors();
    void selectedShapeLeadsItsHandles_data();
    void selectedShapeLeadsItsHandles();

    void changeIsAnnouncedOnce();
    void movedFirstSegmentOfAnAngleLeavesTheLabel();
    void baseStretchedAlongItselfLeavesTheLabelOfAPerpendicular();
    void baseMovedUnderAParallelRefreshesTheLabel();
    void listOfARectangleLagsOneChangeBehindTheLabel();

    void distancesMakeOffsetSegments_data();
    void distancesMakeOffsetSegments();
    void smallDistanceMakesNoSegment();
    void distanceBackAtZeroLeavesTheSegmentStanding();
    void offsetSegmentsFollowTheHandles();
    void distanceIsAnnouncedWhenItChangesSomething();
    void thirdSegmentIsNotClickableWithoutTheSecond();
    void movedShapeIsFoundAtItsNewPlace_data();
    void movedShapeIsFoundAtItsNewPlace();

    void perpendicularBeyondAnEndIsProlonged();
    void perpendicularOnTheSegmentIsNot();
    void segmentsThatWouldMeetAreProlonged();
    void crossingSegmentsAreNot();
    void parallelSegmentsHaveNoIntersectionAndNoDashes();

    void calibrationMeasureHasTicks();
    void calibrationMeasureFollowsItsEnd();
    void calibrationMeasureOfOnePointStaysAsItWas();
    void calibrationMeasureAnnouncesNothing();
    void operationsWithoutAReadout();
    void paintExtraTellsWhetherThePartIsThere();

    void rectangleAtTheOriginLeadsItsHandles();
    void degenerateShapesAreQuietAndComeToRest_data();
    void degenerateShapesAreQuietAndComeToRest();
    void shapesUnderConstructionComeToRest_data();
    void shapesUnderConstructionComeToRest();
};

namespace {

const QColor ink(255, 0, 0);

/// Number of pixels of the shapes' ink on a straight way.
int inkOn(const QImage &image, QPoint from, QPoint to)
{
    const QPoint step((to.x() > from.x()) - (to.x() < from.x()),
                      (to.y() > from.y()) - (to.y() < from.y()));
    int count = 0;
    for (QPoint at = from; at != to; at += step)
        count += image.pixelColor(at) == ink;
    return count;
}

Base *placeInInk(ShapeScene &shapes, int type, const Points &clicks)
{
    Base *record = shapes.place(type, clicks);
    record->setLineColor(ink);
    return record;
}

} // namespace

void TestSegmentItems::readouts_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QString>("text");
    QTest::newRow("Line") << 1 << Points{{100, 100}, {400, 500}} << "Len = 500px";
    QTest::newRow("HLine") << 2 << Points{{100, 100}, {300, 150}} << "Len = 200px";
    QTest::newRow("VLine") << 3 << Points{{100, 100}, {150, 350}} << "Len = 250px";
    QTest::newRow("Par") << 4 << Points{{100, 100}, {300, 100}, {230, 140}}
                         << "Len = 200px\nDis = 50px";
    QTest::newRow("Ver") << 5 << Points{{100, 100}, {300, 100}, {230, 140}}
                         << "Len = 200px\nDis = 40px";
    QTest::newRow("Ang, second segment downwards")
        << 6 << Points{{100, 100}, {200, 100}, {100, 200}, {100, 300}}
        << QString::fromUtf8("Ang = 270°");
    QTest::newRow("Ang, second segment upwards")
        << 6 << Points{{100, 100}, {200, 100}, {100, 300}, {100, 200}}
        << QString::fromUtf8("Ang = 90°");
    QTest::newRow("Rect") << 7 << Points{{100, 100}, {300, 150}}
                          << "Wid = 200px\nHei = 50px\nCLen = 500px\nArea = 10000px";
    QTest::newRow("LCali") << 16 << Points{{100, 100}, {300, 150}} << "";
}

void TestSegmentItems::readouts()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    ShapeScene shapes;
    const Base *record = shapes.place(type, clicks);
    shapes.paint();
    QTEST(record->textContent(), "text");
}

void TestSegmentItems::rectangleDrawnLeftwardsKeepsItsSigns()
{
    ShapeScene shapes;
    const Base *record = shapes.place(7, {{300, 100}, {100, 150}});
    shapes.paint();
    QCOMPARE(record->textContent(),
             QString("Wid = -200px\nHei = 50px\nCLen = -300px\nArea = 10000px"));
}

void TestSegmentItems::parallelOnTheBaseLineHasADistance()
{
    ShapeScene shapes;
    const Base *record = shapes.place(4, {{100, 100}, {200, 100}, {350, 100}});
    QCOMPARE(record->textContent(), QString("Len = 100px\nDis = 200px"));
}

void TestSegmentItems::segments_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QLineF>("a");
    QTest::addColumn<QLineF>("b");
    QTest::newRow("Line") << 1 << Points{{100, 100}, {400, 500}} << QLineF(100, 100, 400, 500)
                          << QLineF();
    QTest::newRow("Par") << 4 << Points{{100, 100}, {300, 100}, {230, 140}}
                         << QLineF(100, 100, 300, 100) << QLineF(130, 140, 330, 140);
    QTest::newRow("Ver") << 5 << Points{{100, 100}, {300, 100}, {230, 140}}
                         << QLineF(100, 100, 300, 100) << QLineF(230, 140, 230, 100);
    QTest::newRow("Ang") << 6 << Points{{100, 100}, {200, 100}, {100, 200}, {100, 300}}
                         << QLineF(100, 100, 200, 100) << QLineF(100, 200, 100, 300);
    QTest::newRow("Ang with three points") << 6 << Points{{100, 100}, {200, 100}, {100, 200}}
                                           << QLineF(100, 100, 200, 100) << QLineF();
    QTest::newRow("Ver with two points")
        << 5 << Points{{100, 100}, {300, 100}} << QLineF(100, 100, 300, 100) << QLineF();
}

void TestSegmentItems::segments()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    QFETCH(QLineF, a);
    QFETCH(QLineF, b);
    ShapeScene shapes;
    const auto *item = itemOf<GraphicsLine>(shapes.place(type, clicks));
    QCOMPARE(item->lineA(), a);
    QCOMPARE(item->lineB(), b);
    QVERIFY(isAbsent(item->lineC()));
    QCOMPARE(item->geometryPath().elementCount(), isAbsent(b) ? 2 : 4);
}

void TestSegmentItems::boundsAreTenLarger_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QRectF>("bounds");
    QTest::newRow("Line") << 1 << Points{{400, 100}, {100, 500}} << QRectF(90, 90, 320, 420);
    QTest::newRow("Par") << 4 << Points{{100, 100}, {300, 100}, {230, 140}}
                         << QRectF(90, 90, 250, 60);
    QTest::newRow("Ang, with the intersection")
        << 6 << Points{{300, 300}, {200, 300}, {100, 200}, {100, 100}} << QRectF(90, 90, 220, 220);
    QTest::newRow("Ang, with the intersection beyond both")
        << 6 << Points{{100, 100}, {200, 100}, {210, 20}, {230, 60}} << QRectF(90, 10, 170, 100);
    QTest::newRow("Ang without one") << 6 << Points{{300, 300}, {200, 300}, {300, 200}, {200, 200}}
                                     << QRectF(190, 190, 120, 120);
    QTest::newRow("Rect from bottom right to top left")
        << 7 << Points{{300, 200}, {100, 150}} << QRectF(90, 140, 220, 70);
    QTest::newRow("LCali") << 16 << Points{{300, 200}, {500, 200}} << QRectF(290, 90, 220, 220);
}

void TestSegmentItems::boundsAreTenLarger()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    ShapeScene shapes;
    QTEST(shapes.place(type, clicks)->item()->boundingRect(), "bounds");
}

void TestSegmentItems::labelAnchors_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QPointF>("anchor");
    QTest::newRow("Line") << 1 << Points{{400, 100}, {100, 500}} << QPointF(250, 300);
    QTest::newRow("Ver") << 5 << Points{{100, 100}, {300, 100}, {230, 140}} << QPointF(200, 100);
    QTest::newRow("Ang") << 6 << Points{{100, 100}, {200, 100}, {100, 200}, {100, 300}}
                         << QPointF(150, 100);
    QTest::newRow("Rect") << 7 << Points{{300, 200}, {100, 150}} << QPointF(200, 175);
    QTest::newRow("LCali: in the middle of its first tick")
        << 16 << Points{{300, 200}, {500, 200}} << QPointF(300, 200);
}

void TestSegmentItems::labelAnchors()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    ShapeScene shapes;
    const Base *record = shapes.place(type, clicks);
    shapes.paint();
    QTEST(record->text()->pos(), "anchor");
}

void TestSegmentItems::selectedShapeLeadsItsHandles_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::newRow("Line") << 1 << Points{{400, 100}, {100, 500}};
    QTest::newRow("HLine") << 2 << Points{{400, 100}, {100, 100}};
    QTest::newRow("Par") << 4 << Points{{100, 100}, {300, 100}, {230, 140}};
    QTest::newRow("Ver") << 5 << Points{{100, 100}, {300, 100}, {230, 140}};
    QTest::newRow("Ang") << 6 << Points{{100, 100}, {200, 100}, {100, 200}, {100, 300}};
    QTest::newRow("Rect") << 7 << Points{{300, 200}, {100, 150}};
}

void TestSegmentItems::selectedShapeLeadsItsHandles()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    ShapeScene shapes;
    const Base *record = shapes.place(type, clicks);
    shapes.paint();
    const QString text = record->textContent();
    record->item()->setSelected(true);
    record->item()->setPos(35, 45);
    shapes.paint();
    for (int i = 0; i < clicks.size(); ++i)
        QCOMPARE(record->points()[i]->pos(), clicks[i] + QPointF(35, 45));
    QCOMPARE(record->textContent(), text);
}

void TestSegmentItems::changeIsAnnouncedOnce()
{
    for (int type : {1, 4, 5, 6, 7}) {
        ShapeScene shapes;
        Base *record = shapes.place(type, {{100, 100}, {200, 100}, {100, 200}, {100, 300}});
        shapes.paint();
        shapes.updates = 0;
        record->moveLastPoint({133, 333});
        QCOMPARE(shapes.updates, 1);
        record->moveLastPoint({133, 333});
        shapes.paint();
        QCOMPARE(shapes.updates, 1);
    }
}

void TestSegmentItems::movedFirstSegmentOfAnAngleLeavesTheLabel()
{
    ShapeScene shapes;
    Base *record = shapes.place(6, {{100, 100}, {200, 100}, {100, 300}, {100, 200}});
    QCOMPARE(record->textContent(), QString::fromUtf8("Ang = 90°"));
    record->points()[1]->setPos(200, 0);
    shapes.paint();
    QCOMPARE(record->textContent(), QString::fromUtf8("Ang = 90°"));
    record->points()[3]->setPos(100, 250);
    shapes.paint();
    QCOMPARE(record->textContent(), QString::fromUtf8("Ang = 45°"));
}

void TestSegmentItems::baseStretchedAlongItselfLeavesTheLabelOfAPerpendicular()
{
    ShapeScene shapes;
    Base *record = shapes.place(5, {{100, 100}, {300, 100}, {230, 140}});
    record->points()[1]->setPos(500, 100);
    shapes.paint();
    QCOMPARE(itemOf<GraphicsLine>(record)->lineA(), QLineF(100, 100, 500, 100));
    QCOMPARE(record->textContent(), QString("Len = 200px\nDis = 40px"));
    record->points()[2]->setPos(230, 150);
    shapes.paint();
    QCOMPARE(record->textContent(), QString("Len = 400px\nDis = 50px"));
}

void TestSegmentItems::baseMovedUnderAParallelRefreshesTheLabel()
{
    ShapeScene shapes;
    Base *record = shapes.place(4, {{100, 100}, {300, 100}, {230, 140}});
    record->points()[1]->setPos(500, 100);
    shapes.paint();
    QCOMPARE(itemOf<GraphicsLine>(record)->lineB(), QLineF(30, 140, 430, 140));
    QCOMPARE(record->textContent(), QString("Len = 400px\nDis = 80.6226px"));
}

void TestSegmentItems::listOfARectangleLagsOneChangeBehindTheLabel()
{
    ShapeScene shapes;
    Base *record = shapes.place(7, {{100, 100}, {300, 150}});
    shapes.paint();
    QString listed;
    connect(&shapes.scene, &MainScene::itemUpdate, this,
            [&](Base *updated) { listed = updated->textContent(); });
    record->moveLastPoint({200, 150});
    shapes.paint();
    QCOMPARE(listed, QString("Wid = 200px\nHei = 50px\nCLen = 500px\nArea = 10000px"));
    QCOMPARE(record->textContent(),
             QString("Wid = 100px\nHei = 50px\nCLen = 300px\nArea = 5000px"));
}

void TestSegmentItems::distancesMakeOffsetSegments_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QLineF>("b");
    QTest::addColumn<QLineF>("c");
    // Distances of 1 and -2 at 0.05 um per pixel, under a line of 100 units.
    QTest::newRow("px") << 1 << QLineF() << QLineF();
    QTest::newRow("mm") << 3 << QLineF(100, 20100, 200, 20100) << QLineF(100, -39900, 200, -39900);
    QTest::newRow("um") << 4 << QLineF(100, 120, 200, 120) << QLineF(100, 60, 200, 60);
    QTest::newRow("mil") << 5 << QLineF(100, 608, 200, 608) << QLineF(100, -916, 200, -916);
}

void TestSegmentItems::distancesMakeOffsetSegments()
{
    QFETCH(int, unit);
    QFETCH(QLineF, b);
    QFETCH(QLineF, c);
    for (int type : {1, 2}) {
        ShapeScene shapes;
        Base *record = shapes.place(type, {{100, 100}, {200, 100}}, unit, 0.05);
        record->setLineDistance1(1.0);
        record->setLineDistance2(-2.0);
        const auto *line = itemOf<GraphicsLine>(record);
        QVERIFY(QLineF(line->lineB().p1(), b.p1()).length() < 1e-6);
        QVERIFY(QLineF(line->lineB().p2(), b.p2()).length() < 1e-6);
        QVERIFY(QLineF(line->lineC().p1(), c.p1()).length() < 1e-6);
        QVERIFY(QLineF(line->lineC().p2(), c.p2()).length() < 1e-6);
    }
}

void TestSegmentItems::smallDistanceMakesNoSegment()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}}, Unit::Micrometre);
    const auto *line = itemOf<GraphicsLine>(record);
    record->setLineDistance1(0.09);
    record->setLineDistance2(-0.09);
    QVERIFY(isAbsent(line->lineB()));
    QVERIFY(isAbsent(line->lineC()));
    record->setLineDistance1(0.1);
    QCOMPARE(line->lineB(), QLineF(100, 100.1, 200, 100.1));
    QVERIFY(isAbsent(line->lineC()));
}

void TestSegmentItems::distanceBackAtZeroLeavesTheSegmentStanding()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}}, Unit::Micrometre);
    const auto *line = itemOf<GraphicsLine>(record);
    record->setLineDistance1(20.0);
    record->setLineDistance1(0.0);
    record->moveLastPoint({400, 100});
    shapes.paint();
    QCOMPARE(line->lineB(), QLineF(100, 120, 200, 120));
    // The other distance does not rebuild it either.
    record->setLineDistance2(50.0);
    QCOMPARE(line->lineB(), QLineF(100, 120, 200, 120));
    QCOMPARE(line->lineC(), QLineF(100, 150, 400, 150));
}

void TestSegmentItems::offsetSegmentsFollowTheHandles()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}}, Unit::Micrometre);
    record->setLineDistance1(20.0);
    record->moveLastPoint({100, 300});
    QCOMPARE(itemOf<GraphicsLine>(record)->lineB(), QLineF(80, 100, 80, 300));
    QCOMPARE(record->textContent(), QString("Len = 200um"));
}

void TestSegmentItems::distanceIsAnnouncedWhenItChangesSomething()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}}, Unit::Micrometre);
    shapes.updates = 0;
    record->setLineDistance1(20.0);
    QCOMPARE(shapes.updates, 1);
    record->setLineDistance2(30.0);
    QCOMPARE(shapes.updates, 2);
    record->setLineDistance2(30.0);
    shapes.paint();
    QCOMPARE(shapes.updates, 2);
}

void TestSegmentItems::thirdSegmentIsNotClickableWithoutTheSecond()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}}, Unit::Micrometre);
    record->setLineColor(ink);
    record->setLineDistance2(50.0);
    QVERIFY(!record->item()->shape().contains(QPointF(150, 150)));
    // It is drawn, though.
    QCOMPARE(inkOn(shapes.paint(), {110, 150}, {190, 150}), 80);
    record->setLineDistance1(20.0);
    QVERIFY(record->item()->shape().contains(QPointF(150, 120)));
    QVERIFY(record->item()->shape().contains(QPointF(150, 150)));
}

void TestSegmentItems::movedShapeIsFoundAtItsNewPlace_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    QTest::addColumn<QPointF>("before");
    QTest::addColumn<QPointF>("end");
    QTest::addColumn<QPointF>("after");
    QTest::newRow("Line") << 1 << Points{{100, 100}, {200, 100}} << QPointF(150, 100)
                          << QPointF(100, 700) << QPointF(100, 600);
    QTest::newRow("Ver") << 5 << Points{{100, 100}, {300, 100}, {200, 150}} << QPointF(200, 130)
                         << QPointF(900, 700) << QPointF(900, 600);
    QTest::newRow("Ang") << 6 << Points{{100, 100}, {200, 100}, {100, 150}, {100, 250}}
                         << QPointF(100, 200) << QPointF(900, 150) << QPointF(800, 150);
    QTest::newRow("Rect") << 7 << Points{{100, 100}, {200, 200}} << QPointF(150, 200)
                          << QPointF(900, 700) << QPointF(500, 700);
}

void TestSegmentItems::movedShapeIsFoundAtItsNewPlace()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    QFETCH(QPointF, before);
    QFETCH(QPointF, end);
    QFETCH(QPointF, after);
    ShapeScene shapes;
    const QGraphicsScene &scene = shapes.scene;
    Base *record = shapes.place(type, clicks);
    QVERIFY(scene.items(before).contains(record->item()));
    record->moveLastPoint(end);
    QVERIFY(scene.items(after).contains(record->item()));
    QVERIFY(!scene.items(before).contains(record->item()));
}

void TestSegmentItems::perpendicularBeyondAnEndIsProlonged()
{
    ShapeScene shapes;
    placeInInk(shapes, 5, {{300, 300}, {400, 300}, {600, 400}});
    placeInInk(shapes, 5, {{400, 500}, {300, 500}, {100, 600}});
    const QImage image = shapes.paint();
    // Dashed: four pixels in six, out of reach of the handles.
    const int right = inkOn(image, {410, 300}, {590, 300});
    const int left = inkOn(image, {290, 500}, {110, 500});
    QVERIFY2(right >= 117 && right <= 123, qPrintable(QString::number(right)));
    QVERIFY2(left >= 117 && left <= 123, qPrintable(QString::number(left)));
}

void TestSegmentItems::perpendicularOnTheSegmentIsNot()
{
    ShapeScene shapes;
    placeInInk(shapes, 5, {{300, 300}, {500, 300}, {400, 400}});
    const QImage image = shapes.paint();
    QCOMPARE(inkOn(image, {510, 300}, {800, 300}), 0);
    QCOMPARE(inkOn(image, {290, 300}, {0, 300}), 0);
    QCOMPARE(inkOn(image, {400, 310}, {400, 390}), 80);
}

void TestSegmentItems::segmentsThatWouldMeetAreProlonged()
{
    ShapeScene shapes;
    placeInInk(shapes, 6, {{500, 300}, {400, 300}, {200, 600}, {200, 500}});
    const QImage image = shapes.paint();
    // From the intersection at (200, 300): to the nearer end of the first segment ...
    const int level = inkOn(image, {210, 300}, {390, 300});
    QVERIFY2(level >= 117 && level <= 123, qPrintable(QString::number(level)));
    // ... and of the second, an upright one, to its first end, along itself.
    const int upright = inkOn(image, {200, 310}, {200, 490});
    QVERIFY2(upright >= 117 && upright <= 123, qPrintable(QString::number(upright)));
}

void TestSegmentItems::crossingSegmentsAreNot()
{
    ShapeScene shapes;
    placeInInk(shapes, 6, {{300, 300}, {500, 300}, {400, 200}, {400, 400}});
    const QImage image = shapes.paint();
    QCOMPARE(inkOn(image, {290, 300}, {0, 300}), 0);
    QCOMPARE(inkOn(image, {510, 300}, {900, 300}), 0);
    QCOMPARE(inkOn(image, {400, 190}, {400, 0}), 0);
    QCOMPARE(inkOn(image, {400, 410}, {400, 700}), 0);
}

void TestSegmentItems::parallelSegmentsHaveNoIntersectionAndNoDashes()
{
    ShapeScene shapes;
    const Base *record = placeInInk(shapes, 6, {{300, 300}, {400, 300}, {300, 500}, {400, 500}});
    QCOMPARE(record->item()->extraPoint(), QPointF(0, 0));
    QCOMPARE(record->textContent(), QString::fromUtf8("Ang = 0°"));
    const QImage image = shapes.paint();
    QCOMPARE(inkOn(image, {290, 300}, {0, 300}), 0);
    QCOMPARE(inkOn(image, {410, 300}, {900, 300}), 0);
    QCOMPARE(inkOn(image, {410, 500}, {900, 500}), 0);
}

void TestSegmentItems::calibrationMeasureHasTicks()
{
    ShapeScene shapes;
    const Base *record = placeInInk(shapes, 16, {{300, 300}, {500, 300}});
    const auto *measure = itemOf<GraphicsLCali>(record);
    QCOMPARE(measure->measureA(), QPointF(300, 300));
    QCOMPARE(measure->measureB(), QPointF(500, 300));
    QCOMPARE(measure->lineA(), QLineF(300, 200, 300, 400));
    QCOMPARE(measure->lineB(), QLineF(500, 200, 500, 400));
    const QImage image = shapes.paint();
    QCOMPARE(inkOn(image, {310, 300}, {490, 300}), 180);
    QCOMPARE(inkOn(image, {300, 310}, {300, 390}), 80);
    QCOMPARE(inkOn(image, {500, 290}, {500, 210}), 80);
}

void TestSegmentItems::calibrationMeasureFollowsItsEnd()
{
    ShapeScene shapes;
    Base *record = shapes.place(16, {{300, 300}, {500, 300}});
    shapes.paint();
    record->moveLastPoint({600, 300});
    shapes.paint();
    const auto *measure = itemOf<GraphicsLCali>(record);
    QCOMPARE(measure->measureB(), QPointF(600, 300));
    QCOMPARE(measure->lineB(), QLineF(600, 200, 600, 400));
}

void TestSegmentItems::calibrationMeasureOfOnePointStaysAsItWas()
{
    ShapeScene shapes;
    Base *record = shapes.begin(16);
    const auto measured = [record] { return itemOf<GraphicsLCali>(record)->measureB(); };
    record->addPoint({300, 300}, 1);
    shapes.paint();
    QCOMPARE(measured(), QPointF(0, 0));
    record->moveLastPoint({500, 300});
    QCOMPARE(measured(), QPointF(500, 300));
    record->moveLastPoint({300, 300});
    QCOMPARE(measured(), QPointF(500, 300));
}

void TestSegmentItems::calibrationMeasureAnnouncesNothing()
{
    ShapeScene shapes;
    shapes.place(16, {{300, 300}, {500, 300}});
    shapes.paint();
    QCOMPARE(shapes.updates, 0);
}

void TestSegmentItems::operationsWithoutAReadout()
{
    ShapeScene shapes;
    QCOMPARE(shapes.place(7, {{1, 1}, {9, 9}})->item()->updateText(), QVariant(QRectF()));
    QVERIFY(!shapes.place(16, {{1, 1}, {9, 9}})->item()->updateText().isValid());
}

void TestSegmentItems::paintExtraTellsWhetherThePartIsThere()
{
    ShapeScene shapes;
    QImage image(10, 10, QImage::Format_RGB32);
    QPainter painter(&image);
    const Points clicks{{100, 100}, {200, 100}, {100, 200}, {100, 300}};
    for (int type : {4, 5, 6}) {
        Base *record = shapes.begin(type);
        record->addPoint({100, 100}, 1);
        QVERIFY(!record->item()->paintExtra(&painter));
        QVERIFY(shapes.place(type, clicks)->item()->paintExtra(&painter));
    }
    QVERIFY(shapes.place(1, clicks)->item()->paintExtra(&painter));
    QVERIFY(shapes.place(16, clicks)->item()->paintExtra(&painter));
}

void TestSegmentItems::rectangleAtTheOriginLeadsItsHandles()
{
    ShapeScene shapes;
    const Base *record = shapes.place(7, {{0, 0}, {100, 50}});
    record->item()->setSelected(true);
    record->item()->setPos(10, 20);
    QCOMPARE(record->points()[0]->pos(), QPointF(10, 20));
    QCOMPARE(record->points()[1]->pos(), QPointF(110, 70));
}

void TestSegmentItems::degenerateShapesAreQuietAndComeToRest_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Points>("clicks");
    const Points same{{300, 300}, {300, 300}, {300, 300}, {300, 300}};
    const Points origin{{0, 0}, {0, 0}, {0, 0}, {0, 0}};
    const Points level{{100, 300}, {200, 300}, {300, 300}, {400, 300}};
    const Points baseOfOnePoint{{300, 300}, {300, 300}, {500, 400}, {600, 700}};
    const Points almostParallel{{0, 100}, {1000, 100}, {0, 200}, {1000, 200.00000000001}};
    const Points nowhere{{qQNaN(), 100}, {200, qQNaN()}, {qInf(), -qInf()}, {1e300, -1e300}};
    for (int type : {1, 2, 3, 4, 5, 6, 7, 16}) {
        const auto row = [type](const char *name, const Points &clicks) {
            QTest::addRow("type %d, %s", type, name) << type << clicks;
        };
        row("one place", same);
        row("all at the origin", origin);
        row("on one line", level);
        row("a base of one point", baseOfOnePoint);
        row("almost parallel", almostParallel);
        row("nowhere", nowhere);
    }
}

void TestSegmentItems::degenerateShapesAreQuietAndComeToRest()
{
    QFETCH(int, type);
    QFETCH(Points, clicks);
    const Quiet quiet;
    ShapeScene shapes;
    Base *record = shapes.place(type, clicks, Unit::Micrometre);
    record->setLineDistance1(20.0);
    record->setLineDistance2(qInf());
    shapes.paint();
    shapes.updates = 0;
    shapes.paint();
    QCOMPARE(shapes.updates, 0);
    const QRectF bounds = record->item()->boundingRect();
    QVERIFY(bounds.isValid());
    QVERIFY(QRectF(-1e6, -1e6, 2e6, 2e6).contains(bounds));
    record->item()->shape().contains(QPointF(300, 300));
    record->item()->setSelected(true);
    record->item()->setPos(10, 10);
    shapes.paint();
    QCOMPARE(quiet.messages(), QStringList());
}

void TestSegmentItems::shapesUnderConstructionComeToRest_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("Par") << 4;
    QTest::newRow("Ver") << 5;
    QTest::newRow("Ang") << 6;
}

void TestSegmentItems::shapesUnderConstructionComeToRest()
{
    QFETCH(int, type);
    ShapeScene shapes;
    Base *record = shapes.begin(type);
    record->addPoint({100, 100}, 1.0);
    record->moveLastPoint({200, 150});
    shapes.paint();
    QVERIFY(shapes.updates > 0);
    shapes.updates = 0;
    shapes.paint();
    QCOMPARE(shapes.updates, 0);
}

QTEST_MAIN(TestSegmentItems)
#include "test_segmentitems.moc"
