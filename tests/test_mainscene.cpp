#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "measure/pathitems.h"
#include "measure/segmentitems.h"
#include "tests/support/scenemouse.h"

#include <QGraphicsRectItem>
#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(Base *)

namespace {

// What SceneMouse asks of a scene is a picture page of 400 x 300 pixels.
class PageScene : public MainScene
{
public:
    PageScene() { setSceneRect(0, 0, 400, 300); }
};

DrawProperties someProperties()
{
    return {{PointWidth, 2}, {PointColor, QColor(Qt::red)},
            {LineWidth, 3},  {LineColor, QColor(Qt::blue)},
            {TextSize, 20},  {TextColor, QColor(Qt::green)}};
}

QList<QPointF> handles(const Base *record)
{
    QList<QPointF> places;
    for (const GraphicsPoint *point : record->points())
        places.append(point->pos());
    return places;
}

/// The rectangle that marks the focus area, or null.
QGraphicsRectItem *focusRect(const MainScene &scene)
{
    for (QGraphicsItem *item : scene.QGraphicsScene::items()) {
        if (auto *rect = qgraphicsitem_cast<QGraphicsRectItem *>(item))
            return rect;
    }
    return nullptr;
}

int itemsInScene(const MainScene &scene) { return scene.QGraphicsScene::items().size(); }

} // namespace

class TestMainScene : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Base *>(); }

    // tools and records
    void everyToolMakesItsRecord_data();
    void everyToolMakesItsRecord();
    void numbersWithoutAShapeMakeNoRecord_data();
    void numbersWithoutAShapeMakeNoRecord();
    void recordsTakeTheSixProperties();
    void missingPropertiesCountAsNothing();
    void sameToolAgainKeepsTheShapeUnderConstruction();
    void anotherToolDropsTheShapeUnderConstructionAndTheSelection();
    void everySceneDropsItsOwnShapeUnderConstruction();

    // the click machine
    void twoClicksMakeALine();
    void theToolStaysSetForTheNextShape();
    void aFinishedShapeIsAnnouncedBeforeItIsInTheList();
    void secondPressOnTheSamePlaceIsRefused();
    void aMoveBeforeThePressDecidesWhereTheHandleStays();
    void aMoveWithoutAShapeUnderConstructionReachesNoItem();
    void pressesWithAToolNeverReachTheItems();
    void toolThirteenDoesNothing();
    void rightPressDropsTheShapeAndASecondOneLeavesTheTool();
    void rightPressWithTheHandLeavesTheToolToo();
    void otherButtonsAreLeftToTheWindow();
    void doubleClickEndsAPolygonWithItsVertices();
    void threeVerticesMakeAPolygon();
    void doubleClickBelowThreeVerticesDropsThePolygon();
    void tenthClickEndsAPolygon();
    void hiddenShapeUnderConstructionShowsWhenItIsFinished();
    void doubleClickOnOtherShapesAddsNoPoint();
    void textIsReadyForEditingWhenItIsInTheList();
    void calibrationToolsReportTheirLength();
    void calibrationListenerMayChangeTheTool();
    void textListenerMayChangeTheTool();
    void newShapesTakeScaleUnitAndDistances();
    void theHandSelectsAndDrags();
    void doubleClickWithTheHandAsksForProperties();
    void doubleClickOnAHandleOrLabelAsksForNothing();

    // the list
    void removingAndClearingEmitsNothing();
    void indexOfAStrangerIsMinusOne();
    void itemTextGoesToTheLastRecord();
    void deletingWhileAShapeIsUnderConstruction();
    void thousandsOfClicks();
    void deletingAfterDraggingLeavesNothingBehind();

    // properties, scale and unit
    void propertyReachesFinishedShapesOnly();
    void settingsWithoutAShapeChangeNoRecord();
    void replacingThePropertiesLeavesRecordsAsTheyAre();
    void scaleReformatsEveryShape();
    void unitReformatsAllButAnglesAndTexts();
    void scaleMovesTheParallelsOfALine();

    // focus mode
    void focusClickTellsTheCell_data();
    void focusClickTellsTheCell();
    void focusClickBesideTheSceneShowsNoFrame();
    void focusClickLeavesTheShapeUnderConstruction();
    void focusClickIsPickedWithAnyTool();
    void doubleClickInFocusModeLeavesTheShapeUnderConstruction();
    void rightPressInFocusModeActsAsElsewhere();
    void coarseGridChangesTheRectangleAlone();
    void focusRectangleStaysInTheScene_data();
    void focusRectangleStaysInTheScene();
    void focusRectangleWaitsForAClickAndGoesWhenHidden();
    void focusClickOnAnEmptySceneTellsNothing();

    // the live page's size
    void resizeCarriesShapesOver();
    void resizeCarriesAMovedLabelOver();
    void resizeCarriesTheShapeUnderConstruction();
    void lockedCoordinateStaysWhereItWas();
    void resizeCarriesTheFocusRectangle();
    void resizeFromOrToNothingKeepsShapesInPlace();
};

void TestMainScene::everyToolMakesItsRecord_data()
{
    QTest::addColumn<int>("tool");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("unit");

    QTest::newRow("line") << 1 << "Line" << 3;
    QTest::newRow("horizontal line") << 2 << "HLine" << 3;
    QTest::newRow("vertical line") << 3 << "VLine" << 3;
    QTest::newRow("parallel") << 4 << "Par" << 3;
    QTest::newRow("perpendicular") << 5 << "Ver" << 3;
    QTest::newRow("angle is always in degrees") << 6 << "Ang" << 2;
    QTest::newRow("rectangle") << 7 << "Rect" << 3;
    QTest::newRow("arc") << 8 << "Arc" << 3;
    QTest::newRow("circle") << 9 << "Cir" << 3;
    QTest::newRow("ring") << 10 << "Ring" << 3;
    QTest::newRow("polygon") << 11 << "Poly" << 3;
    QTest::newRow("circle with line") << 12 << "LCir" << 3;
    QTest::newRow("two circles") << 14 << "TCir" << 3;
    QTest::newRow("text has no unit") << 15 << "LText" << 0;
    QTest::newRow("calibration line") << 16 << "LCali" << 3;
    QTest::newRow("calibration circle") << 17 << "CCali" << 3;
}

void TestMainScene::everyToolMakesItsRecord()
{
    QFETCH(int, tool);
    QFETCH(QString, name);
    QFETCH(int, unit);

    PageScene scene;
    scene.setUnit(3);
    scene.setDrawType(tool);
    const QScopedPointer<Base> record(scene.createRecord());
    QVERIFY(record);
    QCOMPARE(record->type(), tool);
    QCOMPARE(record->typeName(), name);
    QCOMPARE(record->unit(), unit);
    QCOMPARE(record->pointCount(), 0);
}

void TestMainScene::numbersWithoutAShapeMakeNoRecord_data()
{
    QTest::addColumn<int>("tool");
    QTest::newRow("hand") << 0;
    QTest::newRow("the hole") << 13;
    QTest::newRow("above the last") << 18;
    QTest::newRow("far above") << std::numeric_limits<int>::max();
    QTest::newRow("negative") << -1;
    QTest::newRow("far below") << std::numeric_limits<int>::min();
}

void TestMainScene::numbersWithoutAShapeMakeNoRecord()
{
    QFETCH(int, tool);
    PageScene scene;
    scene.setDrawType(tool);
    QCOMPARE(scene.createRecord(), nullptr);
}

void TestMainScene::recordsTakeTheSixProperties()
{
    PageScene scene;
    scene.setDrawProperties(someProperties());
    scene.setDrawType(1);
    SceneMouse(scene).click({{10, 10}, {60, 10}});

    const Base *line = scene.items().constFirst();
    QCOMPARE(line->points()[0]->pen().width(), 2);
    QCOMPARE(line->points()[1]->pen().color(), QColor(Qt::red));
    QCOMPARE(line->item()->pen().width(), 3);
    QCOMPARE(line->item()->pen().color(), QColor(Qt::blue));
    QCOMPARE(line->text()->font().pixelSize(), 20);
    QCOMPARE(line->text()->defaultTextColor(), QColor(Qt::green));
}

void TestMainScene::missingPropertiesCountAsNothing()
{
    PageScene scene;
    scene.setDrawType(1);
    SceneMouse(scene).click({{10, 10}, {60, 10}});

    const Base *line = scene.items().constFirst();
    QCOMPARE(line->points()[0]->pen().width(), 1);
    QCOMPARE(line->item()->pen().width(), 1);
    QCOMPARE(line->item()->pen().color(), QColor(Qt::black));
    QCOMPARE(line->text()->font().pixelSize(), 13);
}

void TestMainScene::sameToolAgainKeepsTheShapeUnderConstruction()
{
    PageScene scene;
    scene.setDrawType(9);
    SceneMouse(scene).click({{10, 10}, {60, 10}});
    const Base *circle = scene.current();
    QVERIFY(circle);
    scene.setDrawType(9);
    QCOMPARE(scene.current(), circle);
    QCOMPARE(scene.drawType(), 9);
}

void TestMainScene::anotherToolDropsTheShapeUnderConstructionAndTheSelection()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {60, 10}});
    scene.items().constFirst()->item()->setSelected(true);
    scene.items().constFirst()->points()[0]->setSelected(true);
    scene.setDrawType(9);
    QVERIFY(scene.selectedItems().isEmpty());

    mouse.click({{100, 100}, {160, 100}});
    QCOMPARE(itemsInScene(scene), 4 + 5); // two handles, label, line; three handles, label, circle
    QSignalSpy inserted(&scene, &MainScene::itemInsert);
    QSignalSpy updated(&scene, &MainScene::itemUpdate);
    scene.setDrawType(0);
    QCOMPARE(scene.current(), nullptr);
    QCOMPARE(itemsInScene(scene), 4);
    QCOMPARE(inserted.size() + updated.size(), 0);
}

void TestMainScene::everySceneDropsItsOwnShapeUnderConstruction()
{
    PageScene first;
    PageScene second;
    for (MainScene *scene : {static_cast<MainScene *>(&first), static_cast<MainScene *>(&second)}) {
        scene->setDrawType(1);
        SceneMouse(*scene).click(QPointF(10, 10));
        QVERIFY(scene->current());
    }
    for (MainScene *scene : {static_cast<MainScene *>(&first), static_cast<MainScene *>(&second)})
        scene->setDrawType(7);
    QCOMPARE(first.current(), nullptr);
    QCOMPARE(second.current(), nullptr);
}

void TestMainScene::twoClicksMakeALine()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setUnit(1);
    scene.setDrawType(1);
    mouse.press({20, 30});
    QVERIFY(scene.current());
    QCOMPARE(handles(scene.current()), (QList<QPointF>{{20, 30}, {20, 30}}));
    mouse.release({20, 30});
    mouse.move({50, 70});
    QCOMPARE(handles(scene.current()), (QList<QPointF>{{20, 30}, {50, 70}}));
    QCOMPARE(scene.current()->textContent(), QString("Len = 50px"));
    QVERIFY(scene.items().isEmpty());
    mouse.press({50, 70});
    QCOMPARE(scene.current(), nullptr);
    QCOMPARE(scene.items().size(), 1);
    QCOMPARE(handles(scene.items().constFirst()), (QList<QPointF>{{20, 30}, {50, 70}}));
    QCOMPARE(scene.items().constFirst()->textContent(), QString("Len = 50px"));
}

void TestMainScene::theToolStaysSetForTheNextShape()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(7);
    mouse.click({{20, 30}, {50, 70}, {100, 100}, {150, 120}});
    QCOMPARE(scene.drawType(), 7);
    QCOMPARE(scene.items().size(), 2);
    QCOMPARE(scene.current(), nullptr);
}

void TestMainScene::aFinishedShapeIsAnnouncedBeforeItIsInTheList()
{
    PageScene scene;
    scene.setDrawType(1);
    QList<int> indices;
    const Base *announced = nullptr;
    connect(&scene, &MainScene::itemInsert, this, [&](Base *record) {
        announced = record;
        indices.append(scene.itemIndex(record));
    });
    SceneMouse(scene).click({{10, 10}, {60, 10}});
    QCOMPARE(indices, QList<int>{-1});
    QCOMPARE(announced, scene.items().constFirst());
}

void TestMainScene::secondPressOnTheSamePlaceIsRefused()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.press({20, 30});
    mouse.release({20, 30});
    mouse.press({20, 30});
    mouse.release({20, 30});
    QVERIFY(scene.items().isEmpty());
    QCOMPARE(scene.current()->pointCount(), 2);
    mouse.move({21, 30});
    mouse.press({21, 30});
    QCOMPARE(scene.items().size(), 1);
}

// The press finds the moving point where the last move left it.
void TestMainScene::aMoveBeforeThePressDecidesWhereTheHandleStays()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(9);
    mouse.press({20, 30});
    mouse.move({50, 70});
    mouse.press({55, 75});
    QCOMPARE(handles(scene.current()), (QList<QPointF>{{20, 30}, {50, 70}, {55, 75}}));
    mouse.move({90, 30});
    mouse.press({200, 200});
    QCOMPARE(handles(scene.items().constFirst()), (QList<QPointF>{{20, 30}, {50, 70}, {90, 30}}));
}

void TestMainScene::aMoveWithoutAShapeUnderConstructionReachesNoItem()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {60, 10}});
    scene.setDrawType(0);
    mouse.press({60, 10}); // on the second handle
    scene.setDrawType(1);
    mouse.move({90, 90});
    QCOMPARE(handles(scene.items().constFirst()), (QList<QPointF>{{10, 10}, {60, 10}}));
    mouse.release({90, 90});
}

void TestMainScene::pressesWithAToolNeverReachTheItems()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {60, 10}});
    mouse.drag({60, 10}, {90, 90});
    QVERIFY(scene.selectedItems().isEmpty());
    QCOMPARE(handles(scene.items().constFirst()), (QList<QPointF>{{10, 10}, {60, 10}}));
    QCOMPARE(handles(scene.current()), (QList<QPointF>{{60, 10}, {90, 90}}));
}

void TestMainScene::toolThirteenDoesNothing()
{
    PageScene scene;
    SceneMouse mouse(scene);
    QSignalSpy cleared(&scene, &MainScene::clearDrawType);
    scene.setDrawType(13);
    mouse.click({{10, 10}, {60, 10}, {70, 70}});
    QCOMPARE(scene.current(), nullptr);
    QVERIFY(scene.items().isEmpty());
    QCOMPARE(itemsInScene(scene), 0);
    mouse.click({60, 10}, Qt::RightButton);
    QCOMPARE(cleared.size(), 1);
}

void TestMainScene::rightPressDropsTheShapeAndASecondOneLeavesTheTool()
{
    PageScene scene;
    SceneMouse mouse(scene);
    QSignalSpy cleared(&scene, &MainScene::clearDrawType);
    scene.setDrawType(9);
    mouse.click({{10, 10}, {60, 10}});
    mouse.click({70, 70}, Qt::RightButton);
    QCOMPARE(scene.current(), nullptr);
    QCOMPARE(itemsInScene(scene), 0);
    QCOMPARE(scene.drawType(), 9);
    QCOMPARE(cleared.size(), 0);
    mouse.click({70, 70}, Qt::RightButton);
    QCOMPARE(cleared.size(), 1);
    QCOMPARE(scene.drawType(), 9); // the window sets the hand
}

void TestMainScene::rightPressWithTheHandLeavesTheToolToo()
{
    PageScene scene;
    QSignalSpy cleared(&scene, &MainScene::clearDrawType);
    SceneMouse(scene).click({70, 70}, Qt::RightButton);
    QCOMPARE(cleared.size(), 1);
}

void TestMainScene::otherButtonsAreLeftToTheWindow()
{
    PageScene scene;
    for (int tool : {0, 1}) {
        scene.setDrawType(tool);
        QGraphicsSceneMouseEvent event(QEvent::GraphicsSceneMousePress);
        event.setButton(Qt::MiddleButton);
        event.setButtons(Qt::MiddleButton);
        event.setScenePos({10, 10});
        event.ignore();
        QCoreApplication::sendEvent(&scene, &event);
        QVERIFY(!event.isAccepted());
        QCOMPARE(scene.current(), nullptr);
    }
}

void TestMainScene::doubleClickEndsAPolygonWithItsVertices()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setUnit(1);
    scene.setDrawType(11);
    mouse.click({{10, 10}, {110, 10}, {110, 60}});
    mouse.click({10, 60}); // first press of the double click
    mouse.doubleClick({10, 60});
    QCOMPARE(scene.current(), nullptr);
    QCOMPARE(scene.items().size(), 1);
    QCOMPARE(handles(scene.items().constFirst()),
             (QList<QPointF>{{10, 10}, {110, 10}, {110, 60}, {10, 60}}));
    painted(scene);
    QCOMPARE(scene.items().constFirst()->textContent(), QString("CLen = 300px\nArea = 5000px"));
}

void TestMainScene::threeVerticesMakeAPolygon()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(11);
    mouse.click({{10, 10}, {110, 10}, {110, 60}});
    mouse.doubleClick({110, 60});
    QCOMPARE(scene.items().size(), 1);
    QCOMPARE(handles(scene.items().constFirst()), (QList<QPointF>{{10, 10}, {110, 10}, {110, 60}}));
}

void TestMainScene::doubleClickBelowThreeVerticesDropsThePolygon()
{
    PageScene scene;
    SceneMouse mouse(scene);
    QSignalSpy inserted(&scene, &MainScene::itemInsert);
    scene.setDrawType(11);
    mouse.click({{10, 10}, {110, 10}});
    QCOMPARE(scene.current()->pointCount(), 3);
    mouse.doubleClick({110, 10});
    QCOMPARE(scene.current(), nullptr);
    QCOMPARE(itemsInScene(scene), 0);
    QCOMPARE(inserted.size(), 0);
}

void TestMainScene::tenthClickEndsAPolygon()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(11);
    for (int i = 0; i < 9; ++i)
        mouse.click({10.0 + 20 * i, 10.0 + i * i});
    QVERIFY(scene.items().isEmpty());
    mouse.click({100, 200});
    QCOMPARE(scene.items().size(), 1);
    QCOMPARE(scene.items().constFirst()->pointCount(), 10);
    QCOMPARE(handles(scene.items().constFirst()).last(), QPointF(100, 200));
}

void TestMainScene::hiddenShapeUnderConstructionShowsWhenItIsFinished()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setCurrentHidden(true);
    scene.setDrawType(1);
    mouse.click({10, 10});
    QVERIFY(itemsInScene(scene) > 0);
    for (const QGraphicsItem *item : scene.QGraphicsScene::items())
        QVERIFY(!item->isVisible());
    mouse.click({110, 10});
    QCOMPARE(scene.items().size(), 1);
    for (const QGraphicsItem *item : scene.QGraphicsScene::items())
        QVERIFY(item->isVisible());
    scene.setDrawType(9);
    mouse.click({50, 50});
    scene.setCurrentHidden(false);
    for (const QGraphicsItem *item : scene.QGraphicsScene::items())
        QVERIFY(item->isVisible());
}

void TestMainScene::doubleClickOnOtherShapesAddsNoPoint()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(9);
    mouse.click({{10, 10}, {110, 10}});
    mouse.doubleClick({200, 200});
    QCOMPARE(scene.current()->pointCount(), 3);
    QVERIFY(scene.items().isEmpty());
}

void TestMainScene::textIsReadyForEditingWhenItIsInTheList()
{
    PageScene scene;
    QList<int> counts;
    connect(&scene, &MainScene::ltextEdit, this, [&] { counts.append(scene.items().size()); });
    scene.setDrawType(15);
    SceneMouse(scene).click({{10, 10}, {60, 10}});
    QCOMPARE(counts, QList<int>{1});
    QCOMPARE(scene.items().constFirst()->textContent(), QString("..."));
    scene.setDrawType(1);
    SceneMouse(scene).click({{10, 10}, {60, 10}});
    QCOMPARE(counts, QList<int>{1});
}

void TestMainScene::calibrationToolsReportTheirLength()
{
    PageScene scene;
    SceneMouse mouse(scene);
    QSignalSpy over(&scene, &MainScene::caliOver);
    QSignalSpy inserted(&scene, &MainScene::itemInsert);
    scene.setDrawType(16);
    mouse.click({{10, 10}, {40, 50}});
    QCOMPARE(over.takeFirst().constFirst().toDouble(), 50.0);
    scene.setDrawType(17);
    mouse.click({{10, 50}, {50, 10}, {90, 50}}); // centre (50, 50), radius 40
    QCOMPARE(over.takeFirst().constFirst().toDouble(), 80.0);
    QCOMPARE(inserted.size(), 0);
    QCOMPARE(scene.current(), nullptr);
    QVERIFY(scene.items().isEmpty());
    QCOMPARE(itemsInScene(scene), 0);
}

void TestMainScene::calibrationListenerMayChangeTheTool()
{
    PageScene scene;
    connect(&scene, &MainScene::caliOver, this, [&] { scene.setDrawType(0); });
    scene.setDrawType(16);
    SceneMouse(scene).click({{10, 10}, {40, 50}});
    QCOMPARE(scene.current(), nullptr);
    QCOMPARE(itemsInScene(scene), 0);
}

void TestMainScene::textListenerMayChangeTheTool()
{
    PageScene scene;
    connect(&scene, &MainScene::ltextEdit, this, [&] { scene.setDrawType(0); });
    scene.setDrawType(15);
    SceneMouse(scene).click({{10, 10}, {40, 50}});
    QCOMPARE(scene.items().size(), 1);
    QCOMPARE(scene.items().constFirst()->pointCount(), 2);
}

void TestMainScene::newShapesTakeScaleUnitAndDistances()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setViewScale(400, 800); // two picture pixels in a scene unit
    scene.setScale(5.0);
    scene.setUnit(3);
    scene.setDrawProperties({{RingDistance1, 0.1}, {LineDistance1, 0.2}});
    scene.setDrawType(1);
    mouse.click({{100, 100}, {200, 100}});
    const Base *line = scene.items().constFirst();
    // 100 units are 200 pixels of 5 um.
    QCOMPARE(line->textContent(), QString("Len = 1mm"));
    // 0.2 mm are 40 pixels, 20 units; no second distance, no third segment.
    const auto *segments = static_cast<GraphicsLine *>(line->item());
    QCOMPARE(segments->lineB(), QLineF(100, 120, 200, 120));
    QCOMPARE(segments->lineC(), QLineF());

    scene.setDrawType(10);
    mouse.click({{10, 50}, {50, 10}, {90, 50}});
    const auto *ring = static_cast<GraphicsRing *>(scene.items().constLast()->item());
    QCOMPARE(ring->ringDistance1(), 0.1);
    QCOMPARE(ring->ringDistance2(), 0.0);
}

void TestMainScene::theHandSelectsAndDrags()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setUnit(1);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {60, 10}});
    scene.setDrawType(0);
    mouse.drag({60, 10}, {110, 10});
    painted(scene);
    const Base *line = scene.items().constFirst();
    QCOMPARE(handles(line), (QList<QPointF>{{10, 10}, {110, 10}}));
    QCOMPARE(line->textContent(), QString("Len = 100px"));

    mouse.drag({80, 10}, {90, 40}); // the line itself
    painted(scene);
    QVERIFY(line->item()->isSelected());
    QCOMPARE(handles(line), (QList<QPointF>{{20, 40}, {120, 40}}));
    QCOMPARE(line->item()->pos(), QPointF(10, 30));
}

void TestMainScene::doubleClickWithTheHandAsksForProperties()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {110, 10}});
    QSignalSpy asked(&scene, &MainScene::changeProperty);
    mouse.click({60, 10}, Qt::RightButton);
    scene.setDrawType(0);
    mouse.click({60, 10});
    mouse.doubleClick({60, 10});
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.constFirst().constFirst().value<void *>(),
             static_cast<void *>(scene.items().constFirst()->item()));
    mouse.click({200, 200}); // nothing there
    mouse.doubleClick({200, 200});
    QCOMPARE(asked.size(), 1);
}

void TestMainScene::doubleClickOnAHandleOrLabelAsksForNothing()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setUnit(1);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {210, 10}});
    scene.setDrawType(0);
    painted(scene);
    QSignalSpy asked(&scene, &MainScene::changeProperty);
    QSignalSpy askedForLine(&scene, &MainScene::crossStatusChanged);
    mouse.click({210, 10});
    mouse.doubleClick({210, 10});
    QVERIFY(scene.items().constFirst()->points()[1]->isSelected());
    const QPointF label = scene.items().constFirst()->text()->sceneBoundingRect().center();
    mouse.click(label);
    mouse.doubleClick(label);
    QVERIFY(scene.items().constFirst()->text()->isSelected());
    QCOMPARE(asked.size() + askedForLine.size(), 0);
}

void TestMainScene::removingAndClearingEmitsNothing()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    for (int y : {10, 20, 30, 40})
        mouse.click({{10.0, double(y)}, {110.0, double(y)}});
    const QList<Base *> records = scene.items();
    QSignalSpy inserted(&scene, &MainScene::itemInsert);
    QSignalSpy updated(&scene, &MainScene::itemUpdate);
    scene.removeItemAt(1);
    QCOMPARE(scene.items(), (QList<Base *>{records[0], records[2], records[3]}));
    QCOMPARE(itemsInScene(scene), 12);
    scene.removeItemAt(3);
    scene.removeItemAt(-1);
    QCOMPARE(scene.items().size(), 3);
    scene.clearItems();
    QVERIFY(scene.items().isEmpty());
    QCOMPARE(itemsInScene(scene), 0);
    QCOMPARE(inserted.size() + updated.size(), 0);
}

void TestMainScene::indexOfAStrangerIsMinusOne()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {110, 10}, {10, 20}, {110, 20}, {10, 30}});
    QCOMPARE(scene.itemIndex(scene.items()[0]), 0);
    QCOMPARE(scene.itemIndex(scene.items()[1]), 1);
    QCOMPARE(scene.itemIndex(scene.current()), -1);
    QCOMPARE(scene.itemIndex(nullptr), -1);
}

void TestMainScene::itemTextGoesToTheLastRecord()
{
    PageScene scene;
    scene.setItemText("nobody"); // an empty list has no last record
    scene.setDrawType(15);
    SceneMouse(scene).click({{10, 10}, {110, 10}, {10, 20}, {110, 20}});
    scene.setItemText("crack");
    QCOMPARE(scene.items()[0]->textContent(), QString("..."));
    QCOMPARE(scene.items()[1]->textContent(), QString("crack"));
}

void TestMainScene::deletingWhileAShapeIsUnderConstruction()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(14);
    mouse.click({{10, 50}, {50, 10}, {90, 50}, {110, 150}, {150, 110}, {190, 150}});
    mouse.click({{10, 50}, {50, 10}});
    scene.clearItems();
    QVERIFY(scene.current());
    painted(scene);
    mouse.click({{90, 50}, {110, 150}, {150, 110}});
    mouse.click({190, 150});
    QCOMPARE(scene.items().size(), 1);
    scene.removeItemAt(0);
    QCOMPARE(itemsInScene(scene), 0);
}

void TestMainScene::thousandsOfClicks()
{
    PageScene scene;
    SceneMouse mouse(scene);
    uint state = 1;
    const auto next = [&state](uint below) {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) % below;
    };
    for (int i = 0; i < 5000; ++i) {
        // Few places, so that points coincide and lie on one line; some outside the scene.
        const QPointF pos(20.0 * next(24) - 20.0, 20.0 * next(18) - 20.0);
        switch (next(12)) {
        case 0:
            scene.setDrawType(int(next(20)) - 1);
            break;
        case 1:
            mouse.click(pos, Qt::RightButton);
            break;
        case 2:
            mouse.doubleClick(pos);
            break;
        case 3:
            scene.removeItemAt(int(next(20)));
            break;
        case 4:
            mouse.drag(pos, pos + QPointF(30, 30));
            break;
        default:
            mouse.click(pos);
        }
        if (i % 500 == 0)
            painted(scene);
        if (scene.items().size() > 40)
            scene.clearItems();
    }
    scene.setDrawType(0);
    scene.clearItems();
    QCOMPARE(itemsInScene(scene), 0);
}

// The scene's index forgets an item by the box that the item tells it.
void TestMainScene::deletingAfterDraggingLeavesNothingBehind()
{
    PageScene scene;
    SceneMouse mouse(scene);
    for (int tool : {1, 4, 5, 6, 7, 8, 9, 10, 11, 12, 14, 15}) {
        scene.setDrawType(tool);
        mouse.click({{10, 50}, {50, 10}, {90, 50}, {110, 150}, {150, 110}, {190, 150}});
        if (tool == 11)
            mouse.doubleClick({190, 150});
        scene.setDrawType(0);
        painted(scene);
        QCoreApplication::processEvents();
        Base *record = scene.items().constLast();
        record->points()[0]->setPos(390, 290);
        painted(scene);
        record->points()[0]->setPos(12, 12);
        painted(scene);
        record->item()->setSelected(true);
        record->item()->setPos(30, 30);
        scene.clearItems();
        painted(scene);
        QCOMPARE(itemsInScene(scene), 0);
    }
}

void TestMainScene::propertyReachesFinishedShapesOnly()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {110, 10}, {10, 20}});
    const Base *line = scene.items().constFirst();
    scene.setDrawProperty(PointWidth, 3);
    scene.setDrawProperty(PointColor, QColor(Qt::red));
    scene.setDrawProperty(LineWidth, 2);
    scene.setDrawProperty(LineColor, QColor(Qt::blue));
    scene.setDrawProperty(TextSize, 30);
    scene.setDrawProperty(TextColor, QColor(Qt::green));
    QCOMPARE(line->points()[0]->pen().width(), 3);
    QCOMPARE(line->points()[0]->pen().color(), QColor(Qt::red));
    QCOMPARE(line->item()->pen().width(), 2);
    QCOMPARE(line->item()->pen().color(), QColor(Qt::blue));
    QCOMPARE(line->text()->font().pixelSize(), 30);
    QCOMPARE(line->text()->defaultTextColor(), QColor(Qt::green));

    // The shape under construction keeps what it began with; the next shape takes the new values.
    QCOMPARE(scene.current()->item()->pen().width(), 1);
    mouse.click({{110, 20}, {10, 30}, {110, 30}});
    QCOMPARE(scene.items()[1]->item()->pen().width(), 1);
    QCOMPARE(scene.items()[2]->item()->pen().width(), 2);
}

void TestMainScene::settingsWithoutAShapeChangeNoRecord()
{
    PageScene scene;
    scene.setDrawProperties(someProperties());
    scene.setDrawType(1);
    SceneMouse(scene).click({{10, 10}, {110, 10}});
    scene.setDrawProperty(Antialiasing, true);
    scene.setDrawProperty(QuickSavePath, "D:/");
    scene.setDrawProperty(DrawCrossWidth, 1);
    scene.setDrawProperty(DrawCrossColor, QColor(Qt::yellow));
    scene.setDrawProperty(DrawProperty(14), 1);
    scene.setDrawProperty(DrawProperty(-1), 1);
    const Base *line = scene.items().constFirst();
    QCOMPARE(line->item()->pen().width(), 3);
    QCOMPARE(line->item()->pen().color(), QColor(Qt::blue));
    QCOMPARE(line->points()[0]->pen().width(), 2);
}

void TestMainScene::replacingThePropertiesLeavesRecordsAsTheyAre()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {110, 10}});
    scene.setDrawProperties(someProperties());
    QCOMPARE(scene.items()[0]->item()->pen().width(), 1);
    mouse.click({{10, 20}, {110, 20}});
    QCOMPARE(scene.items()[1]->item()->pen().width(), 3);
}

void TestMainScene::scaleReformatsEveryShape()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setUnit(4);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {110, 10}});
    scene.setDrawType(15);
    mouse.click({{10, 50}, {110, 50}});
    scene.setItemText("crack");
    QCOMPARE(scene.items()[0]->textContent(), QString("Len = 100um"));
    QSignalSpy updated(&scene, &MainScene::itemUpdate);
    scene.setScale(2.5);
    QCOMPARE(scene.items()[0]->textContent(), QString("Len = 250um"));
    QCOMPARE(scene.items()[1]->textContent(), QString("crack"));
    QCOMPARE(updated.size(), 2);
    QCOMPARE(updated[0][0].value<Base *>(), scene.items()[0]);
    QCOMPARE(updated[1][0].value<Base *>(), scene.items()[1]);
}

void TestMainScene::unitReformatsAllButAnglesAndTexts()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setScale(2.0);
    scene.setUnit(3);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {137, 10}});
    scene.setDrawType(6);
    mouse.click({{10, 100}, {110, 100}, {10, 50}, {10, 150}});
    scene.setDrawType(15);
    mouse.click({{10, 50}, {110, 50}});
    scene.setItemText("crack");
    const QString angle = scene.items()[1]->textContent();
    QCOMPARE(angle, QString("Ang = 270°"));
    QCOMPARE(scene.items()[0]->textContent(), QString("Len = 0.254mm"));
    QSignalSpy updated(&scene, &MainScene::itemUpdate);
    scene.setUnit(5);
    QCOMPARE(scene.items()[0]->textContent(), QString("Len = 10mil"));
    QCOMPARE(scene.items()[1]->textContent(), angle);
    QCOMPARE(scene.items()[2]->textContent(), QString("crack"));
    QCOMPARE(updated.size(), 3);
    scene.setDrawType(1);
    mouse.click({{10, 10}, {137, 10}});
    QCOMPARE(scene.items()[3]->unit(), 5);
}

void TestMainScene::scaleMovesTheParallelsOfALine()
{
    PageScene scene;
    scene.setUnit(4);
    scene.setDrawProperties({{LineDistance1, 20.0}, {RingDistance1, 10.0}});
    scene.setDrawType(1);
    SceneMouse(scene).click({{10, 10}, {110, 10}});
    const auto *line = static_cast<GraphicsLine *>(scene.items()[0]->item());
    QCOMPARE(line->lineB(), QLineF(10, 30, 110, 30));
    scene.setScale(2.0);
    QCOMPARE(line->lineB(), QLineF(10, 20, 110, 20));
    scene.setUnit(3); // 20 mm are far outside: 10000 pixels
    QCOMPARE(line->lineB(), QLineF(10, 10010, 110, 10010));

    scene.setUnit(4);
    scene.setDrawType(10);
    SceneMouse(scene).click({{110, 150}, {150, 110}, {190, 150}}); // radius 40
    const Base *ring = scene.items()[1];
    QVERIFY(ring->textContent().contains("R2 = 70um")); // (40 - 10 / 2) pixels of 2 um
    scene.setScale(4.0);
    QVERIFY(ring->textContent().contains("R2 = 150um")); // (40 - 10 / 4) pixels of 4 um
}

void TestMainScene::focusClickTellsTheCell_data()
{
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<bool>("coarse");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("row");
    // A scene of 340 x 300: cells of 20 x 20.
    QTest::newRow("first cell") << QPointF(0, 0) << false << 1 << 1;
    QTest::newRow("inside") << QPointF(50, 130) << false << 3 << 7;
    QTest::newRow("on a border counts to the next") << QPointF(40, 60) << false << 3 << 4;
    QTest::newRow("last cell") << QPointF(339.9, 299.9) << false << 17 << 15;
    QTest::newRow("the far edge lies outside") << QPointF(340, 300) << false << 18 << 16;
    QTest::newRow("the coarse grid tells the fine cell") << QPointF(50, 130) << true << 3 << 7;
}

void TestMainScene::focusClickTellsTheCell()
{
    QFETCH(QPointF, place);
    QFETCH(bool, coarse);
    QFETCH(int, column);
    QFETCH(int, row);

    MainScene scene;
    scene.setSceneRect(0, 0, 340, 300);
    scene.setBlinkFlags(true, coarse, false);
    QSignalSpy picked(&scene, &MainScene::blinkArea);
    SceneMouse(scene).click(place);
    QCOMPARE(picked.size(), 1);
    QCOMPARE(picked[0][0].toInt(), column);
    QCOMPARE(picked[0][1].toInt(), row);
}

void TestMainScene::focusClickBesideTheSceneShowsNoFrame()
{
    MainScene scene;
    scene.setSceneRect(0, 0, 340, 300);
    scene.setBlinkFlags(true, false, true);
    SceneMouse mouse(scene);
    mouse.click({50, -1});
    mouse.click({-1, 50});
    QVERIFY(!focusRect(scene));
    mouse.click({50, 50});
    QVERIFY(focusRect(scene));
}

void TestMainScene::focusClickLeavesTheShapeUnderConstruction()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(9);
    mouse.click({{10, 10}, {60, 10}});
    const Base *circle = scene.current();
    scene.setBlinkFlags(true, false, true);
    mouse.press({100, 100});
    mouse.release({100, 100});
    QCOMPARE(scene.current(), circle);
    QCOMPARE(circle->pointCount(), 3);
    scene.setBlinkFlags(false, false, false);
    mouse.click({80, 60});
    QCOMPARE(scene.items().size(), 1);
}

void TestMainScene::focusClickIsPickedWithAnyTool()
{
    PageScene scene;
    QSignalSpy picked(&scene, &MainScene::blinkArea);
    scene.setBlinkFlags(true, false, false);
    for (int tool : {0, 1, 13, 16}) {
        scene.setDrawType(tool);
        SceneMouse(scene).click(QPointF(100, 100));
        QCOMPARE(scene.current(), nullptr);
    }
    QCOMPARE(picked.size(), 4);
}

void TestMainScene::doubleClickInFocusModeLeavesTheShapeUnderConstruction()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(11);
    mouse.click({{10, 10}, {60, 10}, {60, 60}});
    scene.setBlinkFlags(true, false, true);
    mouse.click({100, 100});
    mouse.doubleClick({100, 100});
    QVERIFY(scene.current());
    QCOMPARE(scene.current()->pointCount(), 4);
}

void TestMainScene::rightPressInFocusModeActsAsElsewhere()
{
    PageScene scene;
    SceneMouse mouse(scene);
    QSignalSpy cleared(&scene, &MainScene::clearDrawType);
    scene.setDrawType(9);
    mouse.click({{10, 10}, {60, 10}});
    scene.setBlinkFlags(true, false, true);
    mouse.click({100, 100}, Qt::RightButton);
    QCOMPARE(scene.current(), nullptr);
    mouse.click({100, 100}, Qt::RightButton);
    QCOMPARE(cleared.size(), 1);
}

void TestMainScene::coarseGridChangesTheRectangleAlone()
{
    MainScene scene;
    scene.setSceneRect(0, 0, 340, 300);
    scene.setBlinkFlags(true, false, true);
    SceneMouse(scene).click(QPointF(170, 150));
    // 340 / 17 + 0.5 by 300 / 15 + 0.5 around the click
    QCOMPARE(focusRect(scene)->rect(), QRectF(159.75, 139.75, 20.5, 20.5));
    QCOMPARE(focusRect(scene)->pen().color(), QColor(Qt::gray));
    scene.setBlinkFlags(true, true, true);
    // 340 / 5 + 0.5 by 300 / 5 + 0.5
    QCOMPARE(focusRect(scene)->rect(), QRectF(135.75, 119.75, 68.5, 60.5));
}

void TestMainScene::focusRectangleStaysInTheScene_data()
{
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<QPointF>("corner");
    QTest::newRow("top left") << QPointF(0, 0) << QPointF(0, 0);
    QTest::newRow("bottom right") << QPointF(340, 300) << QPointF(319.5, 279.5);
    QTest::newRow("right edge") << QPointF(335, 150) << QPointF(319.5, 139.75);
}

void TestMainScene::focusRectangleStaysInTheScene()
{
    QFETCH(QPointF, place);
    QFETCH(QPointF, corner);
    MainScene scene;
    scene.setSceneRect(0, 0, 340, 300);
    scene.setBlinkFlags(true, false, true);
    SceneMouse(scene).click(place);
    QCOMPARE(focusRect(scene)->rect().topLeft(), corner);
}

void TestMainScene::focusRectangleWaitsForAClickAndGoesWhenHidden()
{
    PageScene scene;
    scene.setBlinkFlags(true, false, true);
    QCOMPARE(focusRect(scene), nullptr);
    SceneMouse(scene).click(QPointF(100, 100));
    QVERIFY(focusRect(scene));
    scene.setBlinkFlags(true, false, false);
    QCOMPARE(focusRect(scene), nullptr);
    scene.setBlinkFlags(false, false, true); // the last click is known
    QVERIFY(focusRect(scene));
}

void TestMainScene::focusClickOnAnEmptySceneTellsNothing()
{
    MainScene scene;
    QSignalSpy picked(&scene, &MainScene::blinkArea);
    scene.setBlinkFlags(true, false, true);
    SceneMouse(scene).click(QPointF(10, 10));
    QCOMPARE(picked.size(), 0);
}

void TestMainScene::resizeCarriesShapesOver()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setViewScale(400, 1600);
    scene.setUnit(1);
    scene.setDrawType(7);
    mouse.click({{40, 60}, {140, 110}});
    scene.setDrawType(9);
    mouse.click({{10, 50}, {50, 10}, {90, 50}});
    scene.setViewScale(200, 1600);
    scene.setSceneRect(0, 0, 200, 150);
    scene.refreshItems();
    QCOMPARE(scene.imageScale(), 8.0);
    QCOMPARE(handles(scene.items()[0]), (QList<QPointF>{{20, 30}, {70, 55}}));
    QCOMPARE(handles(scene.items()[1]), (QList<QPointF>{{5, 25}, {25, 5}, {45, 25}}));
    QCOMPARE(static_cast<GraphicsRect *>(scene.items()[0]->item())->rect(), QRectF(20, 30, 50, 25));
    painted(scene);
    // The picture's pixels are the same as before: 100 units of 4, then 50 of 8.
    QCOMPARE(scene.items()[0]->textContent(),
             QString("Wid = 400px\nHei = 200px\nCLen = 1200px\nArea = 80000px"));
    QVERIFY(scene.items()[1]->textContent().startsWith("R = 160px\n"));
    // The label stands at the rectangle's centre.
    QCOMPARE(scene.items()[0]->text()->pos(), QPointF(45, 42.5));
}

void TestMainScene::resizeCarriesAMovedLabelOver()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setViewScale(400, 1600);
    scene.setDrawType(7);
    mouse.click({{40, 60}, {140, 110}});
    painted(scene);
    GraphicsText *label = scene.items()[0]->text();
    QCOMPARE(label->pos(), QPointF(90, 85));
    label->setSelected(true);
    label->setPos(120, 105);
    label->setSelected(false);
    scene.setViewScale(200, 1600);
    scene.setSceneRect(0, 0, 200, 150);
    scene.refreshItems();
    // The rectangle's centre and half the way that the label was moved.
    QCOMPARE(label->pos(), QPointF(45 + 15, 42.5 + 10));
    painted(scene);
    QCOMPARE(label->pos(), QPointF(45 + 15, 42.5 + 10));
}

void TestMainScene::resizeCarriesTheShapeUnderConstruction()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(9);
    mouse.click({{40, 60}, {140, 110}});
    mouse.move({80, 20});
    scene.setViewScale(800, 800);
    scene.setSceneRect(0, 0, 800, 600);
    scene.refreshItems();
    QCOMPARE(handles(scene.current()), (QList<QPointF>{{80, 120}, {280, 220}, {160, 40}}));
}

// A handle's locked coordinate is read from where the handle was made.
void TestMainScene::lockedCoordinateStaysWhereItWas()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(2);
    mouse.click({{40, 60}, {140, 110}});
    scene.setDrawType(3);
    mouse.click({{40, 60}, {140, 110}});
    scene.setViewScale(800, 800);
    scene.setSceneRect(0, 0, 800, 600);
    scene.refreshItems();
    QCOMPARE(handles(scene.items()[0]), (QList<QPointF>{{80, 60}, {280, 60}}));
    QCOMPARE(handles(scene.items()[1]), (QList<QPointF>{{40, 120}, {40, 220}}));
}

void TestMainScene::resizeCarriesTheFocusRectangle()
{
    MainScene scene;
    scene.setSceneRect(0, 0, 340, 300);
    scene.setBlinkFlags(true, false, true);
    SceneMouse(scene).click(QPointF(170, 150));
    scene.setViewScale(680, 680);
    scene.setSceneRect(0, 0, 680, 600);
    scene.refreshItems();
    // Around (340, 300): 680 / 17 + 0.5 by 600 / 15 + 0.5
    QCOMPARE(focusRect(scene)->rect(), QRectF(319.75, 279.75, 40.5, 40.5));
}

void TestMainScene::resizeFromOrToNothingKeepsShapesInPlace()
{
    MainScene scene;
    scene.setViewScale(400, 800); // the first layout of a live page finds no rectangle
    scene.setSceneRect(0, 0, 400, 300);
    scene.refreshItems();
    QCOMPARE(scene.imageScale(), 2.0);
    scene.setDrawType(1);
    SceneMouse(scene).click({{40, 60}, {140, 110}});
    scene.setViewScale(0, 800);
    scene.refreshItems();
    QCOMPARE(scene.imageScale(), 2.0);
    QCOMPARE(handles(scene.items()[0]), (QList<QPointF>{{40, 60}, {140, 110}}));
}

QTEST_MAIN(TestMainScene)
#include "test_mainscene.moc"
