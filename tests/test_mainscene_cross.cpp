#include "measure/base.h"
#include "measure/graphicscross.h"
#include "measure/mainscene.h"
#include "settings/settingsfiles.h"
#include "tests/support/scenemouse.h"
#include "tests/support/workingdirectory.h"

#include <QCursor>
#include <QPen>
#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr int vertical = 1;
constexpr int horizontal = 2;

/// A page of 600 x 400.
class PageScene : public MainScene
{
public:
    PageScene() { setSceneRect(0, 0, 600, 400); }
};

QList<QPointF> places(const MainScene &scene, int direction)
{
    QList<QPointF> found;
    for (const GraphicsCross *line : scene.crossLines()) {
        if (line->direction() == direction)
            found.append(line->pos());
    }
    return found;
}

void resize(MainScene &scene, double width, double height)
{
    scene.setViewScale(width, width);
    scene.setSceneRect(0, 0, width, height);
    scene.refreshItems();
}

CrossRecord row(int direct, QPointF pos)
{
    return {direct, 2, QColor(Qt::green), pos, false, true};
}

} // namespace

class TestMainSceneCross : public QObject
{
    Q_OBJECT

private slots:
    void threeHorizontalLinesQuarterTheHeight();
    void aSingleVerticalLineRunsThroughTheMiddle();
    void zeroRemovesAllLinesOfTheDirection();
    void aNegativeOrEqualCountChangesNothing();
    void aNewCountBuildsMovedLinesAnew();
    void countsAreIgnoredWhileHiddenAndAppliedAfterShow();
    void linesTakeTheirPenFromTheSettings();
    void settingsRenewThePensOfAllLines();
    void aLineMovesOnlyAcrossItself();
    void aLineStopsAtTheEdges_data();
    void aLineStopsAtTheEdges();
    void everyMoveIsAnnouncedWithNull();
    void doubleClickTellsTheLine();
    void aLineIsCaughtBesideItsPixels();
    void aLockedLineCannotBeDragged();
    void resizeFitsTheLines();
    void showAndHideMoveTheLinesByTheLastRatioOnceMore();
    void removingALineLowersItsCount();
    void clearingShapesLeavesTheLines();
    void linesGoWithTheirScene();

    void savedLinesComeBack();
    void fileHoldsPlacesOfTheUnscaledScene();
    void loadReplacesAllLines();
    void hiddenLinesInTheFileHideTheGridUntilShow();
    void theLastRowDecidesWhetherTheGridIsShown();
    void hostileRowsAreSurvived();
    void impossiblePlacesInTheFileComeToTheEdges_data();
    void impossiblePlacesInTheFileComeToTheEdges();
};

void TestMainSceneCross::threeHorizontalLinesQuarterTheHeight()
{
    PageScene scene;
    scene.setCrossHorCount(3);
    QCOMPARE(scene.crossHorCount(), 3);
    QCOMPARE(scene.crossVerCount(), 0);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 100}, {0, 200}, {0, 300}}));
    for (const GraphicsCross *line : scene.crossLines()) {
        QCOMPARE(line->line(), QLineF(0, 0, 600, 0));
        QCOMPARE(line->scene(), &scene);
        QCOMPARE(line->type(), 0x10004);
        QCOMPARE(line->cursor().shape(), Qt::SizeAllCursor);
    }
}

void TestMainSceneCross::aSingleVerticalLineRunsThroughTheMiddle()
{
    PageScene scene;
    scene.setCrossVerCount(1);
    QCOMPARE(places(scene, vertical), (QList<QPointF>{{300, 0}}));
    QCOMPARE(scene.crossLines().constFirst()->line(), QLineF(0, 0, 0, 400));
}

void TestMainSceneCross::zeroRemovesAllLinesOfTheDirection()
{
    PageScene scene;
    scene.setCrossHorCount(3);
    scene.setCrossVerCount(2);
    scene.setCrossHorCount(0);
    QCOMPARE(scene.crossHorCount(), 0);
    QCOMPARE(places(scene, horizontal), QList<QPointF>());
    QCOMPARE(places(scene, vertical), (QList<QPointF>{{200, 0}, {400, 0}}));
    QCOMPARE(scene.QGraphicsScene::items().size(), 2);
}

void TestMainSceneCross::aNegativeOrEqualCountChangesNothing()
{
    PageScene scene;
    scene.setCrossHorCount(1);
    scene.crossLines().constFirst()->setPos(0, 77);
    scene.setCrossHorCount(1);
    scene.setCrossHorCount(-1);
    QCOMPARE(scene.crossHorCount(), 1);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 77}}));
}

void TestMainSceneCross::aNewCountBuildsMovedLinesAnew()
{
    PageScene scene;
    scene.setCrossHorCount(1);
    scene.crossLines().constFirst()->setPos(0, 77);
    scene.setCrossHorCount(3);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 100}, {0, 200}, {0, 300}}));
}

void TestMainSceneCross::countsAreIgnoredWhileHiddenAndAppliedAfterShow()
{
    PageScene scene;
    QVERIFY(scene.crossVisible());
    scene.setCrossHorCount(1);
    scene.setCrossVisible(false);
    QVERIFY(!scene.crossLines().constFirst()->isVisible());
    scene.setCrossHorCount(3);
    scene.setCrossVerCount(3);
    QCOMPARE(scene.crossHorCount(), 1);
    QCOMPARE(scene.crossLines().size(), 1);
    scene.setCrossVisible(true);
    scene.setCrossHorCount(3);
    scene.setCrossVerCount(3);
    QCOMPARE(scene.crossLines().size(), 6);
    for (const GraphicsCross *line : scene.crossLines())
        QVERIFY(line->isVisible());
}

void TestMainSceneCross::linesTakeTheirPenFromTheSettings()
{
    PageScene scene;
    scene.setDrawProperties({{DrawCrossWidth, 2}, {DrawCrossColor, QColor(Qt::yellow)}});
    scene.setCrossHorCount(1);
    const QPen pen = scene.crossLines().constFirst()->pen();
    QCOMPARE(pen.width(), 2);
    QCOMPARE(pen.color(), QColor(Qt::yellow));
    QCOMPARE(pen.style(), Qt::SolidLine);
    QCOMPARE(pen.capStyle(), Qt::SquareCap);
    QCOMPARE(pen.joinStyle(), Qt::BevelJoin);
}

void TestMainSceneCross::settingsRenewThePensOfAllLines()
{
    PageScene scene;
    scene.setDrawProperties({{DrawCrossWidth, 2}, {DrawCrossColor, QColor(Qt::yellow)}});
    scene.setCrossHorCount(1);
    scene.setCrossVerCount(1);
    scene.setDrawProperty(DrawCrossWidth, 3);
    for (const GraphicsCross *line : scene.crossLines()) {
        QCOMPARE(line->pen().width(), 3);
        QCOMPARE(line->pen().color(), QColor(Qt::yellow));
    }
    scene.setDrawProperty(DrawCrossColor, QColor(Qt::red));
    for (const GraphicsCross *line : scene.crossLines()) {
        QCOMPARE(line->pen().width(), 3);
        QCOMPARE(line->pen().color(), QColor(Qt::red));
        QCOMPARE(line->pen().capStyle(), Qt::SquareCap);
    }
}

void TestMainSceneCross::aLineMovesOnlyAcrossItself()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setCrossHorCount(1);
    scene.setCrossVerCount(1);
    mouse.drag({50, 200}, {90, 260});
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 260}}));
    mouse.drag({300, 50}, {280, 90});
    QCOMPARE(places(scene, vertical), (QList<QPointF>{{280, 0}}));
}

void TestMainSceneCross::aLineStopsAtTheEdges_data()
{
    QTest::addColumn<QPointF>("wanted");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("before the scene") << QPointF(-5, -5) << 0.0 << 0.0;
    QTest::newRow("inside") << QPointF(70, 80) << 70.0 << 80.0;
    QTest::newRow("on the far edge is still inside") << QPointF(600, 400) << 600.0 << 400.0;
    QTest::newRow("behind the scene") << QPointF(700, 500) << 599.0 << 399.0;
    QTest::newRow("not a number") << QPointF(qQNaN(), qQNaN()) << 0.0 << 0.0;
}

void TestMainSceneCross::aLineStopsAtTheEdges()
{
    QFETCH(QPointF, wanted);
    QFETCH(double, x);
    QFETCH(double, y);
    PageScene scene;
    scene.setCrossHorCount(1);
    scene.setCrossVerCount(1);
    for (GraphicsCross *line : scene.crossLines())
        line->setPos(wanted);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, y}}));
    QCOMPARE(places(scene, vertical), (QList<QPointF>{{x, 0}}));
}

void TestMainSceneCross::everyMoveIsAnnouncedWithNull()
{
    PageScene scene;
    scene.setCrossHorCount(1);
    QSignalSpy changed(&scene, &MainScene::crossStatusChanged);
    scene.crossLines().constFirst()->setPos(0, 77);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].value<void *>(), nullptr);
}

void TestMainSceneCross::doubleClickTellsTheLine()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setCrossHorCount(1);
    QSignalSpy changed(&scene, &MainScene::crossStatusChanged);
    QSignalSpy shape(&scene, &MainScene::changeProperty);
    mouse.doubleClick({50, 200});
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].value<void *>(), static_cast<void *>(scene.crossLines().constFirst()));
    QCOMPARE(shape.size(), 0);
    scene.setDrawType(1); // with a tool nothing is asked
    mouse.doubleClick({50, 200});
    QCOMPARE(changed.size(), 1);
}

void TestMainSceneCross::aLineIsCaughtBesideItsPixels()
{
    PageScene scene;
    scene.setCrossHorCount(1);
    const GraphicsCross *line = scene.crossLines().constFirst();
    QVERIFY(line->contains({50, 1.5}));
    QVERIFY(!line->contains({50, 2.5}));
    QVERIFY(line->boundingRect().contains(line->shape().boundingRect()));
}

void TestMainSceneCross::aLockedLineCannotBeDragged()
{
    PageScene scene;
    scene.setCrossHorCount(1);
    scene.crossLines().constFirst()->setFlag(QGraphicsItem::ItemIsMovable, false);
    SceneMouse(scene).drag({50, 200}, {50, 260});
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 200}}));
}

void TestMainSceneCross::resizeFitsTheLines()
{
    PageScene scene;
    scene.setCrossHorCount(1);
    scene.setCrossVerCount(1);
    resize(scene, 300, 200);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 100}}));
    QCOMPARE(places(scene, vertical), (QList<QPointF>{{150, 0}}));
    QCOMPARE(scene.crossLines()[0]->line(), QLineF(0, 0, 300, 0));
    QCOMPARE(scene.crossLines()[1]->line(), QLineF(0, 0, 0, 200));
}

void TestMainSceneCross::showAndHideMoveTheLinesByTheLastRatioOnceMore()
{
    PageScene scene;
    scene.setCrossHorCount(1);
    resize(scene, 300, 200);
    scene.setCrossVisible(false);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 50}}));
    scene.setCrossVisible(true);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 25}}));
    resize(scene, 300, 200); // a ratio of 1
    scene.setCrossVisible(false);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 25}}));
}

void TestMainSceneCross::removingALineLowersItsCount()
{
    PageScene scene;
    scene.setCrossHorCount(3);
    scene.setCrossVerCount(2);
    scene.removeCross(scene.crossLines()[1]);
    QCOMPARE(scene.crossHorCount(), 2);
    QCOMPARE(scene.crossVerCount(), 2);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 100}, {0, 300}}));
    scene.removeCross(scene.crossLines().constLast());
    QCOMPARE(scene.crossVerCount(), 1);
    scene.removeCross(nullptr);
    QCOMPARE(scene.QGraphicsScene::items().size(), 3);
}

void TestMainSceneCross::clearingShapesLeavesTheLines()
{
    PageScene scene;
    scene.setCrossHorCount(2);
    scene.setDrawType(1);
    SceneMouse(scene).click({{10, 10}, {50, 50}});
    scene.clearItems();
    QCOMPARE(scene.QGraphicsScene::items().size(), 2);
}

void TestMainSceneCross::linesGoWithTheirScene()
{
    auto *scene = new PageScene;
    scene->setCrossHorCount(2);
    scene->setBlinkFlags(true, false, true);
    SceneMouse(*scene).click(QPointF(20, 20));
    scene->setBlinkFlags(false, false, true);
    scene->setDrawType(9);
    SceneMouse(*scene).click({{10, 10}, {50, 50}});
    delete scene; // the sanitizers tell what is left or gone twice
}

void TestMainSceneCross::savedLinesComeBack()
{
    const WorkingDirectory directory;
    PageScene scene;
    scene.setDrawProperties({{DrawCrossWidth, 3}, {DrawCrossColor, QColor(10, 20, 30)}});
    scene.setCrossHorCount(1);
    scene.setCrossVerCount(2);
    scene.crossLines()[0]->setPos(0, 77);
    scene.crossLines()[2]->setFlag(QGraphicsItem::ItemIsMovable, false);
    scene.saveCross();

    PageScene next;
    next.loadCross();
    QCOMPARE(next.crossHorCount(), 1);
    QCOMPARE(next.crossVerCount(), 2);
    QCOMPARE(places(next, horizontal), (QList<QPointF>{{0, 77}}));
    QCOMPARE(places(next, vertical), (QList<QPointF>{{200, 0}, {400, 0}}));
    QCOMPARE(next.crossLines()[0]->line(), QLineF(0, 0, 600, 0));
    QCOMPARE(next.crossLines()[1]->line(), QLineF(0, 0, 0, 400));
    QCOMPARE(next.crossLines()[0]->pen(),
             QPen(QColor(10, 20, 30), 3, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    QVERIFY(next.crossLines()[1]->flags() & QGraphicsItem::ItemIsMovable);
    QVERIFY(!(next.crossLines()[2]->flags() & QGraphicsItem::ItemIsMovable));
}

void TestMainSceneCross::fileHoldsPlacesOfTheUnscaledScene()
{
    const WorkingDirectory directory;
    PageScene scene;
    scene.setCrossHorCount(1);
    resize(scene, 300, 200);
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 100}}));
    scene.saveCross();
    QCOMPARE(readCrosses().constFirst().pos, QPointF(0, 200));
    scene.loadCross();
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, 100}}));
}

void TestMainSceneCross::loadReplacesAllLines()
{
    const WorkingDirectory directory;
    writeCrosses({row(vertical, {50, 0})});
    PageScene scene;
    scene.setCrossHorCount(3);
    scene.setCrossVerCount(3);
    scene.loadCross();
    QCOMPARE(scene.crossLines().size(), 1);
    QCOMPARE(scene.crossHorCount(), 0);
    QCOMPARE(scene.crossVerCount(), 1);
    QCOMPARE(places(scene, vertical), (QList<QPointF>{{50, 0}}));
    QCOMPARE(scene.QGraphicsScene::items().size(), 1);
    writeCrosses({});
    scene.loadCross();
    QVERIFY(scene.crossLines().isEmpty());
    QCOMPARE(scene.crossVerCount(), 0);
}

void TestMainSceneCross::hiddenLinesInTheFileHideTheGridUntilShow()
{
    const WorkingDirectory directory;
    CrossRecord hidden = row(horizontal, {0, 50});
    hidden.visible = false;
    writeCrosses({hidden});
    PageScene scene;
    scene.loadCross();
    QVERIFY(!scene.crossVisible());
    QVERIFY(!scene.crossLines().constFirst()->isVisible());
    scene.setCrossHorCount(3);
    QCOMPARE(scene.crossLines().size(), 1);
    scene.setCrossVisible(true);
    scene.setCrossHorCount(3);
    QCOMPARE(scene.crossLines().size(), 3);
}

void TestMainSceneCross::theLastRowDecidesWhetherTheGridIsShown()
{
    const WorkingDirectory directory;
    CrossRecord hidden = row(horizontal, {0, 50});
    hidden.visible = false;
    writeCrosses({hidden, row(vertical, {50, 0})});
    PageScene scene;
    scene.loadCross();
    QVERIFY(scene.crossVisible());
    QVERIFY(!scene.crossLines()[0]->isVisible());
}

void TestMainSceneCross::hostileRowsAreSurvived()
{
    const WorkingDirectory directory;
    directory.write("corss.ini", "[corss]\n"
                                 "1\\direct=7\n1\\width=-5\n1\\visible=true\n"
                                 "2\\direct=2\n2\\width=2147483647\n2\\color=pink elephant\n"
                                 "2\\pos=@Point(1e400 nan)\n2\\visible=true\n"
                                 "3\\direct=1\n3\\pos=rubbish\n3\\lock=maybe\n3\\visible=true\n"
                                 "size=4\n");
    PageScene scene;
    scene.loadCross();
    QCOMPARE(scene.crossHorCount(), 1);
    QCOMPARE(scene.crossVerCount(), 1);
    painted(scene);
    scene.setCrossVisible(true);
    scene.setCrossHorCount(2);
    scene.setCrossVerCount(0);
    painted(scene);
    scene.saveCross();
    QCOMPARE(readCrosses().size(), scene.crossLines().size());
}

void TestMainSceneCross::impossiblePlacesInTheFileComeToTheEdges_data()
{
    QTest::addColumn<QByteArray>("pos");
    QTest::addColumn<double>("x"); // of a vertical line in a scene of 600 x 400
    QTest::addColumn<double>("y"); // of a horizontal one
    // Two doubles each; the type number of a point stands before them.
    const auto point = [](const char *x, const char *y) {
        return QByteArray("@Variant(\\0\\0\\0\\x1a") + x + y + ")";
    };
    const char *const nan = R"(\x7f\xf8\0\0\0\0\0\0)";
    const char *const infinity = R"(\x7f\xf0\0\0\0\0\0\0)";
    const char *const minusInfinity = R"(\xff\xf0\0\0\0\0\0\0)";
    const char *const huge = R"(~7\xe4<\x88\0u\x9c)"; // 1e300
    const char *const tiny = R"(\0\0\0\0\0\0\0\x1)";
    QTest::newRow("not a number") << point(nan, nan) << 0.0 << 0.0;
    QTest::newRow("infinite") << point(infinity, infinity) << 599.0 << 399.0;
    QTest::newRow("infinite below") << point(minusInfinity, minusInfinity) << 0.0 << 0.0;
    QTest::newRow("huge") << point(huge, huge) << 599.0 << 399.0;
    QTest::newRow("mixed") << point(nan, infinity) << 0.0 << 399.0;
    QTest::newRow("next to nothing")
        << point(tiny, tiny) << 4.9406564584124654e-324 << 4.9406564584124654e-324;
    QTest::newRow("cut off") << QByteArray("@Variant(\\0\\0\\0\\x1a@)") << 0.0 << 0.0;
    QTest::newRow("a word") << QByteArray("middle") << 0.0 << 0.0;
    QTest::newRow("a number") << QByteArray("77") << 0.0 << 0.0;
    QTest::newRow("a point of whole numbers") << QByteArray("@Point(70 80)") << 70.0 << 80.0;
    QTest::newRow("a size") << QByteArray("@Size(70 80)") << 0.0 << 0.0;
    QTest::newRow("nothing") << QByteArray() << 0.0 << 0.0;
}

void TestMainSceneCross::impossiblePlacesInTheFileComeToTheEdges()
{
    QFETCH(QByteArray, pos);
    QFETCH(double, x);
    QFETCH(double, y);
    const WorkingDirectory directory;
    directory.write("corss.ini", "[corss]\n1\\direct=1\n1\\visible=true\n1\\pos=" + pos +
                                     "\n2\\direct=2\n2\\visible=true\n2\\pos=" + pos +
                                     "\nsize=2\n");
    PageScene scene;
    scene.loadCross();
    QCOMPARE(places(scene, vertical), (QList<QPointF>{{x, 0}}));
    QCOMPARE(places(scene, horizontal), (QList<QPointF>{{0, y}}));
    painted(scene);
    // What is stored from now on are places of this scene.
    scene.saveCross();
    QCOMPARE(readCrosses().value(0).pos, QPointF(x, 0));
    QCOMPARE(readCrosses().value(1).pos, QPointF(0, y));
    resize(scene, 300, 200);
    QVERIFY(scene.sceneRect().contains(scene.crossLines().at(0)->pos()));
}

QTEST_MAIN(TestMainSceneCross)
#include "test_mainscene_cross.moc"
