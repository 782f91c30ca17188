#include "measure/shapes.h"

#include "tests/support/shapescene.h"

#include <QFont>
#include <QJsonArray>
#include <QtTest>

class TestRecords : public QObject
{
    Q_OBJECT

private slots:
    void tableOfShapes_data();
    void tableOfShapes();
    void numbersWithoutAShapeMakeNoRecord_data();
    void numbersWithoutAShapeMakeNoRecord();
    void isTypeKnowsItsNumberAlone();
    void emptyRecordHoldsNothing();
    void firstClickMakesTwoHandlesALabelAndAnItem();
    void furtherClicksMakeOneHandleEach();
    void fullRecordRefusesPoints();
    void movingTheLastPointOfAnEmptyRecordDoesNothing();
    void movingTheLastPointLeavesTheOthers();
    void lockedAxes_data();
    void lockedAxes();
    void removedPointLeavesBothLists();
    void recordWithoutHandlesBearsEverything();
    void distinctMeansTheLastHandleStandsAlone();
    void completeMeansFullAndDistinct();
    void angleAndTextKeepTheirUnit();
    void unitReachesTheLabel();
    void scaleReachesTheLabel();
    void handlesTakeTheirPropertiesAndZ();
    void widthsAndSizesAreClampedOnTheirWayOnly_data();
    void widthsAndSizesAreClampedOnTheirWayOnly();
    void colours_data();
    void colours();
    void propertiesReachLaterHandles();
    void newLabelIsParkedOutOfSight();
    void distancesReachTheirTypesAlone();
    void jsonHoldsTypePointsAndFreeText();
    void deletedRecordLeavesAnEmptyScene();
    void deletedRecordMayBeSelectedAndEdited();
    void textContent();
};

void TestRecords::tableOfShapes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("axisLock");
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("clicks");
    const int scenes = 4; // um
    const auto row = [](int type, const char *name, int axisLock, int unit, int clicks) {
        QTest::newRow(qPrintable(QString::number(type)))
            << QString(name) << axisLock << unit << clicks;
    };
    row(1, "Line", 0, scenes, 2);
    row(2, "HLine", 2, scenes, 2);
    row(3, "VLine", 1, scenes, 2);
    row(4, "Par", 0, scenes, 3);
    row(5, "Ver", 0, scenes, 3);
    row(6, "Ang", 0, 2, 4);
    row(7, "Rect", 0, scenes, 2);
    row(8, "Arc", 0, scenes, 3);
    row(9, "Cir", 0, scenes, 3);
    row(10, "Ring", 0, scenes, 3);
    row(11, "Poly", 0, scenes, 10);
    row(12, "LCir", 0, scenes, 4);
    row(14, "TCir", 0, scenes, 6);
    row(15, "LText", 0, 0, 2);
    row(16, "LCali", 0, scenes, 2);
    row(17, "CCali", 0, scenes, 3);
}

void TestRecords::tableOfShapes()
{
    QFETCH(int, clicks);
    const int type = QString(QTest::currentDataTag()).toInt();
    ShapeScene shapes;
    Base *record = shapes.begin(type, Unit::Micrometre);
    QCOMPARE(record->type(), type);
    QTEST(record->typeName(), "name");
    QTEST(record->unit(), "unit");
    QTEST(int(shapeRow(type).axisLock), "axisLock");

    // The click that finds it full ends the shape: before, it holds a handle for each.
    for (int click = 1; click < clicks; ++click) {
        QVERIFY(!record->isFull());
        record->addPoint({100.0 * click, 10.0 * click * click}, 1);
    }
    QVERIFY(record->isFull());
    QCOMPARE(record->pointCount(), clicks);
}

void TestRecords::numbersWithoutAShapeMakeNoRecord_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("the hand") << 0;
    QTest::newRow("the hole") << 13;
    QTest::newRow("above the last") << 18;
    QTest::newRow("far above") << 2147483647;
    QTest::newRow("negative") << -1;
}

void TestRecords::numbersWithoutAShapeMakeNoRecord()
{
    QFETCH(int, type);
    MainScene scene;
    QVERIFY(!makeShape(type, &scene, 1));
    QVERIFY(!shapeRow(type).name);
}

void TestRecords::isTypeKnowsItsNumberAlone()
{
    ShapeScene shapes;
    const Base *ring = shapes.begin(10);
    for (int type = -1; type < 20; ++type)
        QCOMPARE(ring->isType(type), type == 10);
    QVERIFY(dynamic_cast<const Ring *>(ring));
}

void TestRecords::emptyRecordHoldsNothing()
{
    ShapeScene shapes;
    const Base *record = shapes.begin(1);
    QCOMPARE(record->pointCount(), 0);
    QVERIFY(!record->text());
    QVERIFY(!record->item());
    QVERIFY(shapes.scene.QGraphicsScene::items().isEmpty());
    QVERIFY(record->pointsDistinct());
    QCOMPARE(record->textContent(), QString());
}

void TestRecords::firstClickMakesTwoHandlesALabelAndAnItem()
{
    ShapeScene shapes;
    Base *record = shapes.begin(6);
    record->addPoint({30, 40}, 1);
    QCOMPARE(record->pointCount(), 2);
    QCOMPARE(record->points()[0]->pos(), QPointF(30, 40));
    QCOMPARE(record->points()[1]->pos(), QPointF(30, 40));
    QCOMPARE(record->item()->record(), record);
    QCOMPARE(shapes.scene.QGraphicsScene::items().size(), 4);
    for (QGraphicsItem *item : shapes.scene.QGraphicsScene::items())
        QVERIFY(!item->parentItem());
}

void TestRecords::furtherClicksMakeOneHandleEach()
{
    ShapeScene shapes;
    Base *record = shapes.begin(6);
    record->addPoint({30, 40}, 1);
    const GraphicsText *label = record->text();
    const GraphicsConnect *item = record->item();
    record->addPoint({60, 70}, 1);
    QCOMPARE(record->pointCount(), 3);
    QCOMPARE(record->points()[2]->pos(), QPointF(60, 70));
    QCOMPARE(record->text(), label);
    QCOMPARE(record->item(), item);
}

void TestRecords::fullRecordRefusesPoints()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{10, 10}, {90, 10}});
    record->addPoint({500, 500}, 1);
    QCOMPARE(record->pointCount(), 2);
    QCOMPARE(record->points()[1]->pos(), QPointF(90, 10));
    QCOMPARE(shapes.scene.QGraphicsScene::items().size(), 4);
}

void TestRecords::movingTheLastPointOfAnEmptyRecordDoesNothing()
{
    ShapeScene shapes;
    Base *record = shapes.begin(1);
    record->moveLastPoint({10, 10});
    QCOMPARE(record->pointCount(), 0);
}

void TestRecords::movingTheLastPointLeavesTheOthers()
{
    ShapeScene shapes;
    Base *record = shapes.place(4, {{10, 10}, {90, 10}, {50, 60}});
    record->moveLastPoint({55, 70});
    QCOMPARE(record->points()[0]->pos(), QPointF(10, 10));
    QCOMPARE(record->points()[1]->pos(), QPointF(90, 10));
    QCOMPARE(record->points()[2]->pos(), QPointF(55, 70));
}

void TestRecords::lockedAxes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QPointF>("second");
    QTest::newRow("free") << 1 << QPointF(200, 300);
    QTest::newRow("keeps its y") << 2 << QPointF(200, 50);
    QTest::newRow("keeps its x") << 3 << QPointF(100, 300);
}

void TestRecords::lockedAxes()
{
    QFETCH(int, type);
    ShapeScene shapes;
    const Base *record = shapes.place(type, {{100, 50}, {200, 300}});
    QCOMPARE(record->points()[0]->pos(), QPointF(100, 50));
    QTEST(record->points()[1]->pos(), "second");
}

void TestRecords::removedPointLeavesBothLists()
{
    ShapeScene shapes;
    Base *record = shapes.place(11, {{100, 100}, {200, 100}, {200, 200}, {100, 200}});
    QCOMPARE(record->pointCount(), 4);
    record->removeLastPoint();
    QCOMPARE(record->pointCount(), 3);
    QCOMPARE(shapes.scene.QGraphicsScene::items().size(), 5);
    shapes.paint();
    // The triangle that is left, in the item's list too.
    QCOMPARE(record->textContent(), QString("CLen = 341.421px\nArea = 5000px"));
    record->item()->setHandlesMovable(false);
}

void TestRecords::recordWithoutHandlesBearsEverything()
{
    for (int type = 1; type <= 17; ++type) {
        if (type == 13)
            continue;
        ShapeScene shapes;
        Base *record = shapes.place(type, {{100, 100}, {200, 120}});
        shapes.paint();
        while (record->pointCount() > 0) {
            record->removeLastPoint();
            shapes.paint();
            record->item()->setSelected(true);
            shapes.paint();
            record->item()->setSelected(false);
        }
        record->removeLastPoint();
        record->moveLastPoint({10, 10});
        record->item()->updatePoints();
        record->item()->recompute();
        QVERIFY(record->pointsDistinct());
        QVERIFY(!record->isComplete());
        record->addPoint({50, 50}, 1);
        shapes.paint();
        QCOMPARE(record->pointCount(), 1);
    }
}

void TestRecords::distinctMeansTheLastHandleStandsAlone()
{
    ShapeScene shapes;
    Base *record = shapes.begin(6);
    record->addPoint({10, 10}, 1);
    QVERIFY(!record->pointsDistinct());
    record->moveLastPoint({90, 10});
    QVERIFY(record->pointsDistinct());
    record->addPoint({90, 10}, 1);
    QVERIFY(!record->pointsDistinct());
    record->moveLastPoint({10, 10});
    QVERIFY(!record->pointsDistinct());
    record->moveLastPoint({50, 80});
    QVERIFY(record->pointsDistinct());
}

void TestRecords::completeMeansFullAndDistinct()
{
    ShapeScene shapes;
    Base *record = shapes.begin(4);
    record->addPoint({10, 10}, 1);
    record->moveLastPoint({90, 10});
    QVERIFY(!record->isComplete());
    record->addPoint({90, 10}, 1);
    QVERIFY(!record->isComplete());
    record->moveLastPoint({50, 50});
    QVERIFY(record->isComplete());
}

void TestRecords::angleAndTextKeepTheirUnit()
{
    ShapeScene shapes;
    Base *angle = shapes.place(6, {{100, 100}, {200, 100}, {100, 300}, {100, 200}});
    Base *text = shapes.place(15, {{10, 10}, {90, 10}});
    for (int unit : {Unit::Millimetre, Unit::Mil, Unit::Pixel}) {
        angle->setUnit(unit);
        text->setUnit(unit);
        QCOMPARE(angle->unit(), int(Unit::Degree));
        QCOMPARE(angle->textContent(), QString::fromUtf8("Ang = 90°"));
        QCOMPARE(text->unit(), int(Unit::Text));
        QCOMPARE(text->textContent(), QString("..."));
    }
}

void TestRecords::unitReachesTheLabel()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {400, 500}}, Unit::Pixel, 2);
    record->setUnit(Unit::Millimetre);
    QCOMPARE(record->unit(), int(Unit::Millimetre));
    QCOMPARE(record->textContent(), QString("Len = 1mm"));
    shapes.begin(1)->setUnit(Unit::Mil);
}

void TestRecords::scaleReachesTheLabel()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {400, 500}}, Unit::Micrometre);
    record->setScale(3);
    QCOMPARE(record->textContent(), QString("Len = 1500um"));
    record->setImageScale(2);
    QCOMPARE(record->textContent(), QString("Len = 1500um"));
    record->setScale(3);
    QCOMPARE(record->textContent(), QString("Len = 3000um"));
    shapes.begin(1)->setScale(3);
    shapes.begin(1)->setImageScale(3);
}

void TestRecords::handlesTakeTheirPropertiesAndZ()
{
    ShapeScene shapes;
    Base *record = shapes.begin(1);
    record->setPointWidth(2);
    record->setPointColor(QColor(Qt::green));
    record->addPoint({10, 10}, 1);
    for (const GraphicsPoint *point : record->points()) {
        QCOMPARE(point->pen().width(), 2);
        QCOMPARE(point->pen().color(), QColor(Qt::green));
        QCOMPARE(point->zValue(), 100.0);
    }
}

void TestRecords::widthsAndSizesAreClampedOnTheirWayOnly_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("textSize");
    QTest::newRow("none") << QVariant() << 1 << 13;
    QTest::newRow("no number") << QVariant("thick") << 1 << 13;
    QTest::newRow("negative") << QVariant(-5) << 1 << 13;
    QTest::newRow("in range for lines") << QVariant(2) << 2 << 13;
    QTest::newRow("text of a number") << QVariant("3") << 3 << 13;
    QTest::newRow("seven") << QVariant(7) << 3 << 13;
    QTest::newRow("in range for text") << QVariant(20) << 3 << 20;
    QTest::newRow("fifty") << QVariant(50) << 3 << 32;
    QTest::newRow("enormous") << QVariant(2147483647) << 3 << 32;
}

void TestRecords::widthsAndSizesAreClampedOnTheirWayOnly()
{
    QFETCH(QVariant, value);
    ShapeScene shapes;
    Base *record = shapes.place(1, {{10, 10}, {90, 10}});
    record->setPointWidth(value);
    record->setLineWidth(value);
    record->setTextSize(value);
    QTEST(record->points()[0]->pen().width(), "width");
    QTEST(record->item()->pen().width(), "width");
    QTEST(record->text()->font().pixelSize(), "textSize");
    QCOMPARE(record->pointWidth(), value);
    QCOMPARE(record->lineWidth(), value);
    QCOMPARE(record->textSize(), value);
}

void TestRecords::colours_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("none") << QVariant() << QColor(Qt::black);
    QTest::newRow("a colour") << QVariant(QColor(10, 20, 30)) << QColor(10, 20, 30);
    QTest::newRow("a name") << QVariant("#ff8000") << QColor(255, 128, 0);
    QTest::newRow("no colour") << QVariant("rubbish") << QColor();
    QTest::newRow("an invalid colour") << QVariant(QColor()) << QColor();
}

void TestRecords::colours()
{
    QFETCH(QVariant, value);
    QFETCH(QColor, colour);
    ShapeScene shapes;
    Base *record = shapes.place(1, {{10, 10}, {90, 10}});
    record->setPointColor(value);
    record->setLineColor(value);
    record->setTextColor(value);
    QCOMPARE(record->points()[0]->pen().color().rgb(), colour.rgb());
    QCOMPARE(record->item()->pen().color().rgb(), colour.rgb());
    QCOMPARE(record->text()->defaultTextColor().rgb(), colour.rgb());
}

void TestRecords::propertiesReachLaterHandles()
{
    ShapeScene shapes;
    Base *record = shapes.begin(11);
    record->setPointWidth(7);
    record->setLineWidth(7);
    record->setLineColor(QColor(Qt::red));
    record->setTextSize(50);
    record->setTextColor(QColor(Qt::blue));
    record->addPoint({10, 10}, 1);
    record->addPoint({90, 10}, 1);
    record->setPointColor(QColor(Qt::cyan));
    record->addPoint({90, 90}, 1);
    QCOMPARE(record->points()[3]->pen().width(), 3);
    QCOMPARE(record->points()[3]->pen().color(), QColor(Qt::cyan));
    QCOMPARE(record->item()->pen().width(), 3);
    QCOMPARE(record->item()->pen().color(), QColor(Qt::red));
    QCOMPARE(record->text()->font().pixelSize(), 32);
    QCOMPARE(record->text()->defaultTextColor(), QColor(Qt::blue));
}

void TestRecords::newLabelIsParkedOutOfSight()
{
    ShapeScene shapes;
    Base *record = shapes.begin(1);
    record->addPoint({100, 100}, 1);
    QCOMPARE(record->text()->pos(), QPointF(0, -500));
    record->moveLastPoint({300, 200});
    QCOMPARE(record->text()->pos(), QPointF(0, -500));
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(200, 150));
}

void TestRecords::distancesReachTheirTypesAlone()
{
    for (int type = 1; type <= 17; ++type) {
        if (type == 13)
            continue;
        ShapeScene shapes;
        Base *record = shapes.begin(type, Unit::Micrometre);
        record->setRingDistance1(1.0); // no item yet
        record->setLineDistance1(1.0);
        record->addPoint({600, 400}, 1);
        record->moveLastPoint({500, 500});
        record->addPoint({400, 400}, 1);
        record->item()->updatePoints();
        const QPainterPath before = record->item()->geometryPath();

        record->setRingDistance1(20.0);
        QCOMPARE(record->item()->geometryPath() != before, type == 10);
        const QPainterPath between = record->item()->geometryPath();
        record->setLineDistance1(20.0);
        QCOMPARE(record->item()->geometryPath() != between, type <= 3);
    }
}

void TestRecords::jsonHoldsTypePointsAndFreeText()
{
    ShapeScene shapes;
    Base *line = shapes.place(1, {{10, 20}, {110, 20}});
    QCOMPARE(line->toJson(2),
             (QJsonObject{{"type", 1},
                          {"point", QJsonArray{QJsonObject{{"x", 20}, {"y", 40}},
                                               QJsonObject{{"x", 220}, {"y", 40}}}}}));
    Base *text = shapes.place(15, {{5, 5}, {50, 50}});
    text->setTextContent("note");
    QCOMPARE(text->toJson(1), (QJsonObject{{"type", 15},
                                           {"point", QJsonArray{QJsonObject{{"x", 5}, {"y", 5}},
                                                                QJsonObject{{"x", 50}, {"y", 50}}}},
                                           {"text", "note"}}));
    QVERIFY(shapes.begin(1)->toJson(1)["point"].toArray().isEmpty());
}

void TestRecords::deletedRecordLeavesAnEmptyScene()
{
    ShapeScene shapes;
    for (int type = 1; type <= 17; ++type) {
        if (type != 13)
            shapes.place(type, {{100, 100}, {200, 120}, {150, 300}});
    }
    shapes.paint();
    shapes.removeAll();
    QVERIFY(shapes.scene.QGraphicsScene::items().isEmpty());
    shapes.paint();
}

void TestRecords::deletedRecordMayBeSelectedAndEdited()
{
    ShapeScene shapes;
    Base *record = shapes.place(15, {{100, 100}, {200, 120}});
    shapes.paint();
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&shapes.scene, &activate);
    record->item()->setSelected(true);
    record->points()[0]->setSelected(true);
    record->text()->setSelected(true);
    record->text()->setTextInteractionFlags(Qt::TextEditorInteraction);
    record->text()->setFocus();
    QVERIFY(record->text()->hasFocus());
    shapes.updates = 0;
    shapes.removeAll();
    QVERIFY(shapes.scene.QGraphicsScene::items().isEmpty());
    QVERIFY(shapes.scene.selectedItems().isEmpty());
    QCOMPARE(shapes.updates, 0);
    shapes.paint();
}

void TestRecords::textContent()
{
    ShapeScene shapes;
    Base *empty = shapes.begin(15);
    empty->setTextContent("lost");
    QCOMPARE(empty->textContent(), QString());
    Base *record = shapes.place(15, {{100, 100}, {200, 120}});
    record->setTextContent("via\nhole");
    QCOMPARE(record->textContent(), QString("via\nhole"));
}

QTEST_MAIN(TestRecords)
#include "test_records.moc"
