#include "measure/geometry.h"
#include "measure/segmentitems.h"
#include "tests/support/shapescene.h"

#include <QCursor>
#include <QGraphicsView>
#include <QTextCursor>
#include <QtTest>

/// What handles, labels and items of every shape have in common.
class TestShapeItems : public QObject
{
    Q_OBJECT

private slots:
    void itemsTellTheirKind();
    void itemsAreMovableAndSelectable();

    void outlineIsHitInABand_data();
    void outlineIsHitInABand();
    void invisiblePenIsHitOnThePathItself();
    void insideOfAClosedShapeIsNotHit_data();
    void insideOfAClosedShapeIsNotHit();
    void hitBandFollowsThePen();

    void handleIsADiscAroundItsPlace();
    void handleStaysInTheScene();
    void handleOfALevelLineKeepsItsY();
    void fixedCoordinateIsNotTouchedByOtherMoves();
    void handleOfASelectedShapeMovesWithIt();
    void draggedHandleUpdatesItsShapeOneStepBehind();

    void shapeStopsAtTheEdges_data();
    void shapeStopsAtTheEdges();
    void fastDragStopsAtTheEdgeToo();
    void shapeNextToAnEdgeSlidesAlongIt();
    void draggedAgainGoesOnFromThere();
    void shapeKeepsItsPlaceWhenItIsUnselectedBeforeThePaint();
    void shapeMovedWithoutBeingSelectedLeavesItsHandles();
    void draggedLevelLineTakesItsHandlesAlong();
    void draggedShapeKeepsItsLocalGeometry();
    void shapeAndHandleDragTogether();
    void selectionDrawsNothingOnAShape();

    void labelFollowsTheAnchor();
    void draggedLabelKeepsItsDisplacement();
    void selectedLabelStaysWhereItIs();
    void firstMoveOfALabelIsNoDisplacement();
    void scaledLabel();

    void doubleClickEditsAFreeText();
    void doubleClickLeavesAReadoutAlone();
    void blankTextBecomesThreeDots();

    void lockHoldsItemHandlesAndLabel();
    void penChangesRepaint();
    void boundsAreLimited();
    void farExtensionKeepsItsDashes_data();
    void farExtensionKeepsItsDashes();
    void extensionToNowhereIsNotDrawn();
};

namespace {

/// Moves an item as the mouse does: selected.
void drag(QGraphicsItem *item, QPointF by)
{
    item->setSelected(true);
    item->setPos(item->pos() + by);
}

QVector<QPointF> handlesOf(const Base *record)
{
    QVector<QPointF> places;
    for (const GraphicsPoint *point : record->points())
        places << point->pos();
    return places;
}

} // namespace

void TestShapeItems::itemsTellTheirKind()
{
    ShapeScene shapes;
    for (int type : {1, 7, 8, 15}) {
        const Base *record = shapes.place(type, {{10, 10}, {90, 20}, {50, 60}});
        QCOMPARE(record->item()->type(), 65537);
        QCOMPARE(record->points()[0]->type(), 65538);
        QCOMPARE(record->text()->type(), 65539);
    }
}

void TestShapeItems::itemsAreMovableAndSelectable()
{
    ShapeScene shapes;
    const Base *record = shapes.place(1, {{10, 10}, {90, 20}});
    const auto flags = QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable |
                       QGraphicsItem::ItemSendsGeometryChanges;
    QCOMPARE(record->item()->flags(), flags);
    QCOMPARE(record->points()[0]->flags(), flags);
    QCOMPARE(record->text()->flags() & flags, flags);
    QCOMPARE(record->item()->cursor().shape(), Qt::SizeAllCursor);
    QCOMPARE(record->points()[0]->cursor().shape(), Qt::SizeAllCursor);
}

void TestShapeItems::outlineIsHitInABand_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("halfBand");
    QTest::newRow("hairline") << 0.0 << 2.0;
    QTest::newRow("width 1: 4 wide") << 1.0 << 2.0;
    QTest::newRow("width 1.5: 4.5 wide") << 1.5 << 2.25;
    QTest::newRow("width 2: 5 wide") << 2.0 << 2.5;
    QTest::newRow("width 3: 6 wide") << 3.0 << 3.0;
}

void TestShapeItems::outlineIsHitInABand()
{
    QFETCH(double, width);
    QFETCH(double, halfBand);
    QPainterPath path(QPointF(100, 100));
    path.lineTo(200, 100);
    const QPainterPath band = strokeOf(path, QPen(Qt::red, width));
    QVERIFY(band.contains(QPointF(150, 100 + halfBand - 0.1)));
    QVERIFY(band.contains(QPointF(150, 100 - halfBand + 0.1)));
    QVERIFY(!band.contains(QPointF(150, 100 + halfBand + 0.1)));
    QVERIFY(!band.contains(QPointF(150, 100 - halfBand - 0.1)));
}

void TestShapeItems::invisiblePenIsHitOnThePathItself()
{
    QPainterPath path;
    path.addRect(10, 10, 50, 50);
    QCOMPARE(strokeOf(path, QPen(Qt::NoPen)), path);
    QCOMPARE(strokeOf(QPainterPath(), QPen(Qt::red, 3)), QPainterPath());
}

void TestShapeItems::insideOfAClosedShapeIsNotHit_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVector<QPointF>>("clicks");
    QTest::addColumn<QPointF>("outline");
    QTest::addColumn<QPointF>("inside");
    const QVector<QPointF> onCircle{{600, 400}, {500, 500}, {400, 400}};
    QTest::newRow("rectangle") << 7 << QVector<QPointF>{{100, 100}, {300, 200}} << QPointF(200, 101)
                               << QPointF(200, 150);
    QTest::newRow("circle") << 9 << onCircle << QPointF(500, 301) << QPointF(500, 400);
    QTest::newRow("polygon") << 11 << QVector<QPointF>{{100, 100}, {300, 100}, {300, 300}}
                             << QPointF(200, 200) << QPointF(250, 150);
}

void TestShapeItems::insideOfAClosedShapeIsNotHit()
{
    QFETCH(int, type);
    QFETCH(QVector<QPointF>, clicks);
    QFETCH(QPointF, outline);
    QFETCH(QPointF, inside);
    ShapeScene shapes;
    const QGraphicsItem *item = shapes.place(type, clicks)->item();
    QVERIFY(item->shape().contains(outline));
    QVERIFY(!item->shape().contains(inside));
}

void TestShapeItems::hitBandFollowsThePen()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}});
    QVERIFY(!record->item()->shape().contains(QPointF(150, 102.5)));
    record->setLineWidth(3);
    QVERIFY(record->item()->shape().contains(QPointF(150, 102.5)));
}

void TestShapeItems::handleIsADiscAroundItsPlace()
{
    ShapeScene shapes;
    GraphicsPoint *handle = shapes.place(1, {{100, 100}, {200, 100}})->points()[0];
    QCOMPARE(handle->rect(), QRectF(-7, -7, 15, 15));
    QVERIFY(handle->shape().contains(QPointF(7, 0)));
    QVERIFY(!handle->shape().contains(QPointF(7, 7)));
}

void TestShapeItems::handleStaysInTheScene()
{
    ShapeScene shapes;
    GraphicsPoint *handle = shapes.place(1, {{100, 100}, {200, 100}})->points()[1];
    handle->setPos(1200, -50);
    QCOMPARE(handle->pos(), QPointF(1000, 0));
    handle->setPos(-1, 900);
    QCOMPARE(handle->pos(), QPointF(0, 800));
    handle->setPos(1000, 800);
    QCOMPARE(handle->pos(), QPointF(1000, 800));
    handle->setPos(qQNaN(), qInf());
    QCOMPARE(handle->pos(), QPointF(0, 800));
}

void TestShapeItems::handleOfALevelLineKeepsItsY()
{
    ShapeScene shapes;
    GraphicsPoint *handle = shapes.place(2, {{100, 70}, {200, 70}})->points()[1];
    handle->setPos(1500, 300);
    QCOMPARE(handle->pos(), QPointF(1000, 70));
    handle->setPos(-20, -300);
    QCOMPARE(handle->pos(), QPointF(0, 70));
}

void TestShapeItems::fixedCoordinateIsNotTouchedByOtherMoves()
{
    ShapeScene shapes;
    Base *record = shapes.place(3, {{100, 70}, {100, 300}});
    record->points()[1]->setPos(400, 350);
    record->moveLastPoint({500, 360});
    QCOMPARE(record->points()[1]->pos(), QPointF(100, 360));
}

void TestShapeItems::handleOfASelectedShapeMovesWithIt()
{
    ShapeScene shapes;
    Base *record = shapes.place(3, {{100, 70}, {100, 300}});
    drag(record->item(), {40, 20});
    shapes.paint();
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{140, 90}, {140, 320}}));
    // The new x is the one that is kept from now on.
    record->item()->setSelected(false);
    record->points()[1]->setPos(700, 400);
    QCOMPARE(record->points()[1]->pos(), QPointF(140, 400));
}

void TestShapeItems::draggedHandleUpdatesItsShapeOneStepBehind()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}});
    const auto *line = itemOf<GraphicsLine>(record);
    drag(record->points()[1], {50, 0});
    QCOMPARE(line->lineA(), QLineF(100, 100, 200, 100));
    drag(record->points()[1], {50, 0});
    QCOMPARE(line->lineA(), QLineF(100, 100, 250, 100));
    shapes.paint();
    QCOMPARE(line->lineA(), QLineF(100, 100, 300, 100));
    QCOMPARE(record->textContent(), QString("Len = 200px"));
}

void TestShapeItems::shapeStopsAtTheEdges_data()
{
    QTest::addColumn<QPointF>("by");
    QTest::addColumn<QVector<QPointF>>("handles");
    // Of a line from (100, 300) to (250, 200).
    QTest::newRow("within") << QPointF(-60, 40) << QVector<QPointF>{{40, 340}, {190, 240}};
    QTest::newRow("left") << QPointF(-400, 10) << QVector<QPointF>{{0, 310}, {150, 210}};
    QTest::newRow("above") << QPointF(10, -400) << QVector<QPointF>{{110, 100}, {260, 0}};
    QTest::newRow("right") << QPointF(4000, 0) << QVector<QPointF>{{850, 300}, {1000, 200}};
    QTest::newRow("below") << QPointF(0, 4000) << QVector<QPointF>{{100, 800}, {250, 700}};
    QTest::newRow("left below") << QPointF(-9000, 9000) << QVector<QPointF>{{0, 800}, {150, 700}};
}

void TestShapeItems::shapeStopsAtTheEdges()
{
    QFETCH(QPointF, by);
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {250, 200}});
    shapes.paint();
    drag(record->item(), by);
    shapes.paint();
    QTEST(handlesOf(record), "handles");
}

void TestShapeItems::fastDragStopsAtTheEdgeToo()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {250, 200}});
    // Several moves before the next paint.
    for (int i = 0; i < 10; ++i)
        drag(record->item(), {-30, 0});
    shapes.paint();
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{0, 300}, {150, 200}}));
    QCOMPARE(record->item()->pos(), QPointF(-100, 0));
}

void TestShapeItems::shapeNextToAnEdgeSlidesAlongIt()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{0.5, 50}, {100.5, 200}});
    drag(record->item(), {0, -60});
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{0.5, 0}, {100.5, 150}}));
    Base *level = shapes.place(1, {{50, 0.5}, {200, 100.5}});
    drag(level->item(), {-60, 0});
    QCOMPARE(handlesOf(level), (QVector<QPointF>{{0, 0.5}, {150, 100.5}}));
}

void TestShapeItems::draggedAgainGoesOnFromThere()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}});
    drag(record->item(), {30, 40});
    drag(record->item(), {5, 6});
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{135, 146}, {235, 146}}));
    // By more than the way back to the edge.
    drag(record->item(), {-200, -200});
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{0, 0}, {100, 0}}));
}

void TestShapeItems::shapeKeepsItsPlaceWhenItIsUnselectedBeforeThePaint()
{
    ShapeScene shapes;
    Base *record = shapes.place(9, {{600, 400}, {500, 500}, {400, 400}});
    drag(record->item(), {50, 60});
    record->item()->setSelected(false);
    shapes.paint();
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{650, 460}, {550, 560}, {450, 460}}));
}

void TestShapeItems::shapeMovedWithoutBeingSelectedLeavesItsHandles()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 100}, {200, 100}});
    record->item()->setPos(30, 40);
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{100, 100}, {200, 100}}));
}

void TestShapeItems::draggedLevelLineTakesItsHandlesAlong()
{
    ShapeScene shapes;
    Base *record = shapes.place(2, {{100, 70}, {200, 70}});
    drag(record->item(), {10, 33});
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{110, 103}, {210, 103}}));
}

void TestShapeItems::draggedShapeKeepsItsLocalGeometry()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {250, 200}});
    drag(record->item(), {40, 50});
    record->item()->setSelected(false);
    shapes.paint();
    QCOMPARE(record->item()->pos(), QPointF(40, 50));
    QCOMPARE(itemOf<GraphicsLine>(record)->lineA(), QLineF(100, 300, 250, 200));
    // From here the handles lead again.
    record->points()[0]->setPos(40, 350);
    shapes.paint();
    QCOMPARE(itemOf<GraphicsLine>(record)->lineA(), QLineF(0, 300, 250, 200));
}

void TestShapeItems::shapeAndHandleDragTogether()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {250, 200}});
    record->points()[0]->setSelected(true);
    for (int i = 0; i < 3; ++i) {
        drag(record->item(), {10, 0});
        record->points()[0]->setPos(100 + 10 * (i + 1), 300);
        shapes.paint();
    }
    QCOMPARE(handlesOf(record), (QVector<QPointF>{{130, 300}, {280, 200}}));
    QCOMPARE(record->textContent(), QString("Len = 180.278px"));
}

void TestShapeItems::selectionDrawsNothingOnAShape()
{
    ShapeScene shapes;
    Base *record = shapes.place(9, {{600, 400}, {500, 500}, {400, 400}});
    shapes.paint();
    const QImage before = shapes.paint();
    record->item()->setSelected(true);
    QCOMPARE(shapes.paint(), before);
}

void TestShapeItems::labelFollowsTheAnchor()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {300, 200}});
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(200, 250));
    record->points()[0]->setPos(200, 400);
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(250, 300));
}

void TestShapeItems::draggedLabelKeepsItsDisplacement()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {300, 200}});
    shapes.paint();
    for (int i = 0; i < 3; ++i)
        drag(record->text(), {10, 0});
    record->text()->setSelected(false);
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(230, 250));
    record->points()[0]->setPos(200, 400);
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(280, 300));
}

void TestShapeItems::selectedLabelStaysWhereItIs()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {300, 200}});
    shapes.paint();
    record->text()->setSelected(true);
    record->points()[0]->setPos(200, 400);
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(200, 250));
    record->text()->setSelected(false);
    shapes.paint();
    QCOMPARE(record->text()->pos(), QPointF(250, 300));
}

void TestShapeItems::firstMoveOfALabelIsNoDisplacement()
{
    GraphicsText label(1, Unit::Pixel, nullptr);
    drag(&label, {70, 80});
    drag(&label, {5, 6});
    label.setSelected(false);
    label.setAnchor({0, 0});
    QCOMPARE(label.pos(), QPointF(5, 6));
}

void TestShapeItems::scaledLabel()
{
    GraphicsText label(1, Unit::Pixel, nullptr);
    label.setAnchor({70, 80});
    drag(&label, {5, 6});
    label.scaleBy(2);
    QCOMPARE(label.pos(), QPointF(150, 172));
    drag(&label, {1, 1});
    label.setSelected(false);
    label.setAnchor({100, 100});
    QCOMPARE(label.pos(), QPointF(111, 113));
}

void TestShapeItems::doubleClickEditsAFreeText()
{
    ShapeScene shapes;
    GraphicsText *label = shapes.place(15, {{100, 300}, {300, 200}})->text();
    QGraphicsView view(&shapes.scene);
    view.show();
    view.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    shapes.paint();
    SceneMouse(shapes.scene).doubleClick(label->sceneBoundingRect().center());
    QCOMPARE(label->textInteractionFlags(), Qt::TextInteractionFlags(0x13));
    QVERIFY(label->hasFocus());

    label->setPlainText("via");
    QTextCursor cursor = label->textCursor();
    cursor.select(QTextCursor::Document);
    label->setTextCursor(cursor);
    label->clearFocus();
    QCOMPARE(label->textInteractionFlags(), Qt::TextInteractionFlags(Qt::NoTextInteraction));
    QCOMPARE(label->toPlainText(), QString("via"));
    QVERIFY(!label->textCursor().hasSelection());
}

void TestShapeItems::doubleClickLeavesAReadoutAlone()
{
    ShapeScene shapes;
    GraphicsText *label = shapes.place(1, {{100, 300}, {300, 200}})->text();
    shapes.paint();
    SceneMouse(shapes.scene).doubleClick(label->sceneBoundingRect().center());
    QCOMPARE(label->textInteractionFlags(), Qt::TextInteractionFlags(Qt::NoTextInteraction));
}

void TestShapeItems::blankTextBecomesThreeDots()
{
    ShapeScene shapes;
    GraphicsText *label = shapes.place(15, {{100, 300}, {300, 200}})->text();
    QGraphicsView view(&shapes.scene);
    view.show();
    view.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    shapes.paint();
    SceneMouse(shapes.scene).doubleClick(label->sceneBoundingRect().center());
    QTest::keyClick(view.viewport(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(view.viewport(), "   ");
    QCOMPARE(label->toPlainText(), QString("   "));
    label->clearFocus();
    QCOMPARE(label->toPlainText(), QString("..."));
}

void TestShapeItems::lockHoldsItemHandlesAndLabel()
{
    ShapeScene shapes;
    Base *record = shapes.place(4, {{100, 300}, {300, 200}, {500, 600}});
    QList<QGraphicsItem *> items{record->item(), record->text()};
    for (GraphicsPoint *point : record->points())
        items << point;
    record->item()->setHandlesMovable(false);
    for (const QGraphicsItem *item : items)
        QVERIFY(!(item->flags() & QGraphicsItem::ItemIsMovable));
    record->item()->setHandlesMovable(true);
    for (const QGraphicsItem *item : items)
        QVERIFY(item->flags() & QGraphicsItem::ItemIsMovable);
}

void TestShapeItems::penChangesRepaint()
{
    ShapeScene shapes;
    Base *record = shapes.place(1, {{100, 300}, {300, 300}});
    QSignalSpy changes(&shapes.scene, &QGraphicsScene::changed);
    QTRY_VERIFY(!changes.isEmpty());
    changes.clear();
    record->item()->setPenColor(Qt::red);
    QTRY_VERIFY(!changes.isEmpty());
    changes.clear();
    record->item()->setPenWidth(3);
    QTRY_VERIFY(!changes.isEmpty());
    QCOMPARE(record->item()->pen().color(), QColor(Qt::red));
    QCOMPARE(record->item()->pen().width(), 3);
}

void TestShapeItems::boundsAreLimited()
{
    QCOMPARE(withMargin({100, 200, 30, 40}), QRectF(90, 190, 50, 60));
    QCOMPARE(withMargin({5, 5, 0, 0}), QRectF(-5, -5, 20, 20));
    QCOMPARE(withMargin({-1e16, 100, 2e16, 50}), QRectF(-1e6, 90, 2e6, 70));
}

void TestShapeItems::farExtensionKeepsItsDashes_data()
{
    QTest::addColumn<double>("from");
    QTest::newRow("one thousand units") << 1000.0;
    QTest::newRow("a hundred million and 600 units") << 100000600.0;
    QTest::newRow("ten to the fifteenth units") << 1e15;
}

void TestShapeItems::farExtensionKeepsItsDashes()
{
    QFETCH(double, from);
    QImage image(200, 9, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        drawExtension(&painter, QPen(Qt::black, 2), {from, 4}, {0, 4});
    }
    // Dashes of 8 and square caps of 1 at both ends, gaps of the 2 that are left.
    int dark = 0;
    for (int x = 10; x < 190; ++x)
        dark += qGray(image.pixel(x, 4)) < 128;
    QVERIFY2(dark > 140 && dark < 155, qPrintable(QString::number(dark)));
}

void TestShapeItems::extensionToNowhereIsNotDrawn()
{
    QImage image(50, 50, QImage::Format_RGB32);
    image.fill(Qt::white);
    const QImage before = image;
    {
        QPainter painter(&image);
        for (double nowhere : {qQNaN(), qInf()}) {
            drawExtension(&painter, QPen(Qt::black, 2), {nowhere, 4}, {0, 4});
            drawExtension(&painter, QPen(Qt::black, 2), {0, 4}, {20, nowhere});
        }
    }
    QCOMPARE(image, before);
}

QTEST_MAIN(TestShapeItems)
#include "test_shapeitems.moc"
