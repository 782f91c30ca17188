#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/mainscene.h"
#include "tests/support/scenemouse.h"

#include <QApplication>
#include <QtTest>

#include <functional>

namespace {

using Drawing = std::function<void(QPainter &)>;

// Half transparent, so that a line that is painted twice shows.
const QColor lineColour(0, 0, 255, 120);
const QColor textColour(200, 30, 30);
constexpr int lineWidth = 3;
constexpr int textPixels = 16;

/// A picture page of 400 x 300 pixels.
class PageScene : public MainScene
{
public:
    PageScene()
    {
        setSceneRect(0, 0, 400, 300);
        setUnit(1);
        setDrawProperties({{LineWidth, lineWidth},
                           {LineColor, lineColour},
                           {TextSize, textPixels},
                           {TextColor, textColour}});
    }

    /// Draws a shape with the mouse and lets it paint once.
    Base *draw(int tool, std::initializer_list<QPointF> clicks)
    {
        SceneMouse mouse(*this);
        setDrawType(tool);
        mouse.click(clicks);
        if (tool == 11)
            mouse.doubleClick(*(clicks.end() - 1));
        setDrawType(0);
        painted(*this);
        return items().last();
    }
};

QImage emptyPicture(QSize size = {400, 300})
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    return picture;
}

QImage burnt(const MainScene &scene, QSize size = {400, 300})
{
    QImage picture = emptyPicture(size);
    scene.renderItems(&picture);
    return picture;
}

/// A shape by plain painter calls, with its words at a place in the picture.
QImage drawn(const Drawing &drawing, QPointF labelPlace, const QString &words,
             QSize size = {400, 300})
{
    QImage picture = emptyPicture(size);
    QPainter painter(&picture);
    painter.setPen(QPen(lineColour, lineWidth));
    drawing(painter);
    QFont font = QApplication::font();
    font.setPixelSize(textPixels);
    painter.setFont(font);
    painter.setPen(textColour);
    painter.drawText(QRectF(labelPlace, QSizeF(300, 300)), 0x2000, words);
    return picture;
}

void drawDashed(QPainter &painter, QPointF from, QPointF to)
{
    painter.setPen(QPen(lineColour, lineWidth, Qt::DashLine));
    painter.drawLine(from, to);
}

} // namespace

class TestBurnIn : public QObject
{
    Q_OBJECT

private slots:
    void aPageWithoutShapesLeavesThePicture();
    void line();
    void horizontalLine();
    void verticalLine();
    void parallelsOfALine();
    void thirdSegmentIsDrawnWithoutASecond();
    void parallel();
    void perpendicular();
    void dashesOfAPerpendicularLieOnItsBaseToo();
    void crossingAngle();
    void dashesOfAnAngleReachItsIntersection();
    void parallelAngleHasNoDashes();
    void rectangle();
    void rectangleDrawnBackwards();
    void arcFromTheFirstPoint();
    void arcFromTheThirdPointGetsAChordFromTheSecond();
    void wrappingArcsHaveNoChord();
    void circle();
    void degenerateCircleShowsAtTheOrigin();
    void ringWithItsInnerCircles();
    void innerCirclesOfARingAreNotGuarded();
    void polygon();
    void circleWithLine();
    void twoCircles();
    void textWithItsArrow();

    void liveShapesAreScaledAndPensAreNot();
    void distancesOfARingAreNotScaled();
    void draggedSegmentsAreDrawnWhereTheyAre();
    void draggedPathsAreDisplacedOnceMore();
    void onlyFinishedShapesAreDrawn();
    void shapesAreDrawnInTheirOrder();
    void unfinishedRecordsSkipWhatTheyLack_data();
    void unfinishedRecordsSkipWhatTheyLack();
    void hostileGeometryIsSurvived();
};

void TestBurnIn::aPageWithoutShapesLeavesThePicture()
{
    QCOMPARE(burnt(PageScene()), emptyPicture());
}

void TestBurnIn::line()
{
    PageScene scene;
    scene.draw(1, {{20, 30}, {50, 70}});
    QCOMPARE(burnt(scene),
             drawn([](QPainter &p) { p.drawLine(20, 30, 50, 70); }, {39, 54}, "Len = 50px"));
}

void TestBurnIn::horizontalLine()
{
    PageScene scene;
    scene.draw(2, {{20, 30}, {120, 90}});
    QCOMPARE(burnt(scene),
             drawn([](QPainter &p) { p.drawLine(20, 30, 120, 30); }, {74, 34}, "Len = 100px"));
}

void TestBurnIn::verticalLine()
{
    PageScene scene;
    scene.draw(3, {{20, 30}, {60, 130}});
    QCOMPARE(burnt(scene),
             drawn([](QPainter &p) { p.drawLine(20, 30, 20, 130); }, {24, 84}, "Len = 100px"));
}

void TestBurnIn::parallelsOfALine()
{
    PageScene scene;
    scene.setUnit(4);
    scene.setDrawProperty(LineDistance1, 20.0);
    scene.setDrawProperty(LineDistance2, -30.0);
    scene.draw(1, {{100, 100}, {200, 100}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(100, 120, 200, 120);
        p.drawLine(100, 70, 200, 70);
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Len = 100um"));
}

// Unlike the outline that a click has to meet.
void TestBurnIn::thirdSegmentIsDrawnWithoutASecond()
{
    PageScene scene;
    scene.setUnit(4);
    scene.setDrawProperty(LineDistance2, 30.0);
    scene.draw(1, {{100, 100}, {200, 100}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(100, 130, 200, 130);
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Len = 100um"));
}

void TestBurnIn::parallel()
{
    PageScene scene;
    scene.draw(4, {{100, 100}, {200, 100}, {150, 160}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(100, 160, 200, 160);
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Len = 100px\nDis = 60px"));
}

void TestBurnIn::perpendicular()
{
    PageScene scene;
    scene.draw(5, {{100, 100}, {200, 100}, {250, 40}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(250, 40, 250, 100);
        drawDashed(p, {200, 100}, {250, 100});
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Len = 100px\nDis = 60px"));
}

void TestBurnIn::dashesOfAPerpendicularLieOnItsBaseToo()
{
    PageScene scene;
    scene.draw(5, {{100, 100}, {200, 100}, {120, 40}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(120, 40, 120, 100);
        drawDashed(p, {100, 100}, {120, 100});
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Len = 100px\nDis = 60px"));
}

void TestBurnIn::crossingAngle()
{
    PageScene scene;
    scene.draw(6, {{100, 100}, {200, 100}, {150, 50}, {150, 150}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(150, 50, 150, 150);
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Ang = 270°"));
}

void TestBurnIn::dashesOfAnAngleReachItsIntersection()
{
    PageScene scene;
    scene.draw(6, {{100, 100}, {200, 100}, {250, 50}, {250, 20}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(250, 50, 250, 20);
        drawDashed(p, {250, 100}, {200, 100});
        drawDashed(p, {250, 100}, {250, 50});
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Ang = 90°"));
}

void TestBurnIn::parallelAngleHasNoDashes()
{
    PageScene scene;
    scene.draw(6, {{100, 100}, {200, 100}, {300, 150}, {220, 150}});
    const auto lines = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(300, 150, 220, 150);
    };
    QCOMPARE(burnt(scene), drawn(lines, {154, 104}, "Ang = 180°"));
}

void TestBurnIn::rectangle()
{
    PageScene scene;
    scene.draw(7, {{40, 60}, {140, 110}});
    QCOMPARE(burnt(scene), drawn([](QPainter &p) { p.drawRect(40, 60, 100, 50); }, {94, 89},
                                 "Wid = 100px\nHei = 50px\nCLen = 300px\nArea = 5000px"));
}

void TestBurnIn::rectangleDrawnBackwards()
{
    PageScene scene;
    scene.draw(7, {{140, 110}, {40, 60}});
    QCOMPARE(burnt(scene), drawn([](QPainter &p) { p.drawRect(140, 110, -100, -50); }, {94, 89},
                                 "Wid = -100px\nHei = -50px\nCLen = -300px\nArea = 5000px"));
}

// Centre (200, 150), radius 50. The box of an arc is one unit short of the diameter.
void TestBurnIn::arcFromTheFirstPoint()
{
    PageScene scene;
    const Base *arc = scene.draw(8, {{250, 150}, {200, 100}, {150, 150}}); // 0, 90, 180 degrees
    const auto path = [](QPainter &p) {
        QPainterPath outline({250, 150});
        outline.arcTo(150, 100, 99, 99, 0, 180);
        p.drawPath(outline);
    };
    QCOMPARE(burnt(scene), drawn(path, {204, 104}, arc->textContent()));
}

void TestBurnIn::arcFromTheThirdPointGetsAChordFromTheSecond()
{
    PageScene scene;
    const Base *arc = scene.draw(8, {{150, 150}, {200, 100}, {250, 150}}); // 180, 90, 0 degrees
    const auto path = [](QPainter &p) {
        QPainterPath outline({200, 100});
        outline.arcTo(150, 100, 99, 99, 0, 180);
        p.drawPath(outline);
    };
    QCOMPARE(burnt(scene), drawn(path, {204, 104}, arc->textContent()));
}

void TestBurnIn::wrappingArcsHaveNoChord()
{
    {
        PageScene scene;
        const Base *arc = scene.draw(8, {{200, 200}, {250, 150}, {200, 100}}); // 270, 0, 90
        const auto path = [](QPainter &p) {
            QPainterPath outline({200, 200});
            outline.arcTo(150, 100, 99, 99, 270, 180);
            p.drawPath(outline);
        };
        QCOMPARE(burnt(scene), drawn(path, {254, 154}, arc->textContent()));
    }
    {
        PageScene scene;
        const Base *arc = scene.draw(8, {{200, 100}, {250, 150}, {200, 200}}); // 90, 0, 270
        const auto path = [](QPainter &p) {
            QPainterPath outline({200, 200});
            outline.arcTo(150, 100, 99, 99, 270, 180);
            p.drawPath(outline);
        };
        QCOMPARE(burnt(scene), drawn(path, {254, 154}, arc->textContent()));
    }
    {
        // The second point has the largest angle, the third a lower one than the first.
        PageScene scene;
        const Base *arc = scene.draw(8, {{200, 100}, {150, 150}, {250, 150}}); // 90, 180, 0
        const auto path = [](QPainter &p) {
            QPainterPath outline({200, 100});
            outline.arcTo(150, 100, 99, 99, 90, 270);
            p.drawPath(outline);
        };
        QCOMPARE(burnt(scene), drawn(path, {154, 154}, arc->textContent()));
    }
}

void TestBurnIn::circle()
{
    PageScene scene;
    const Base *circle = scene.draw(9, {{150, 150}, {200, 100}, {250, 150}});
    QCOMPARE(burnt(scene), drawn([](QPainter &p) { p.drawEllipse(QPointF(200, 150), 50, 50); },
                                 {154, 154}, circle->textContent()));
}

void TestBurnIn::degenerateCircleShowsAtTheOrigin()
{
    PageScene scene;
    const Base *circle = scene.draw(9, {{100, 100}, {150, 100}, {200, 100}});
    QVERIFY(circle->textContent().startsWith("R = -1px"));
    QCOMPARE(burnt(scene), drawn([](QPainter &p) { p.drawEllipse(QPointF(0, 0), -1, -1); },
                                 {104, 104}, circle->textContent()));
}

void TestBurnIn::ringWithItsInnerCircles()
{
    PageScene scene;
    scene.setUnit(4);
    scene.setScale(2.0);
    scene.setDrawProperty(RingDistance1, 20.0); // 10 pixels
    scene.setDrawProperty(RingDistance2, 30.0); // 15 pixels
    const Base *ring = scene.draw(10, {{150, 150}, {200, 100}, {250, 150}});
    const auto circles = [](QPainter &p) {
        for (double radius : {50, 40, 35})
            p.drawEllipse(QPointF(200, 150), radius, radius);
    };
    QCOMPARE(burnt(scene), drawn(circles, {154, 154}, ring->textContent()));
}

void TestBurnIn::innerCirclesOfARingAreNotGuarded()
{
    PageScene scene;
    scene.setUnit(4);
    scene.setDrawProperty(RingDistance1, 60.0); // beyond the centre
    const Base *ring = scene.draw(10, {{150, 150}, {200, 100}, {250, 150}});
    const auto circles = [](QPainter &p) {
        for (double radius : {50, -10, 50}) // no second distance: the outer circle once more
            p.drawEllipse(QPointF(200, 150), radius, radius);
    };
    QCOMPARE(burnt(scene), drawn(circles, {154, 154}, ring->textContent()));
}

void TestBurnIn::polygon()
{
    PageScene scene;
    scene.draw(11, {{40, 60}, {140, 60}, {140, 110}, {40, 110}});
    const auto lines = [](QPainter &p) {
        p.drawLine(40, 60, 140, 60);
        p.drawLine(140, 60, 140, 110);
        p.drawLine(140, 110, 40, 110);
        p.drawLine(40, 110, 40, 60);
    };
    QCOMPARE(burnt(scene), drawn(lines, {44, 64}, "CLen = 300px\nArea = 5000px"));
}

void TestBurnIn::circleWithLine()
{
    PageScene scene;
    const Base *shape = scene.draw(12, {{150, 150}, {200, 100}, {250, 150}, {300, 150}});
    const auto parts = [](QPainter &p) {
        p.drawEllipse(QPointF(200, 150), 50, 50);
        p.drawLine(200, 150, 300, 150);
    };
    QCOMPARE(burnt(scene), drawn(parts, {154, 154}, shape->textContent()));
}

void TestBurnIn::twoCircles()
{
    PageScene scene;
    const Base *shape =
        scene.draw(14, {{150, 150}, {200, 100}, {250, 150}, {290, 80}, {310, 60}, {330, 80}});
    const auto parts = [](QPainter &p) {
        p.drawEllipse(QPointF(200, 150), 50, 50);
        p.drawEllipse(QPointF(310, 80), 20, 20);
        p.drawLine(200, 150, 310, 80);
    };
    QCOMPARE(burnt(scene), drawn(parts, {154, 154}, shape->textContent()));
}

void TestBurnIn::textWithItsArrow()
{
    PageScene scene;
    scene.draw(15, {{100, 100}, {200, 100}});
    scene.setItemText("crack");
    // Wings of 20 at 60 degrees: 20 sin 60 back, 20 cos 60 to each side.
    const auto arrow = [](QPainter &p) {
        p.drawLine(100, 100, 200, 100);
        p.drawLine(QPointF(182.67949192431124, 90), QPointF(200, 100));
        p.drawLine(QPointF(182.67949192431124, 110), QPointF(200, 100));
    };
    QCOMPARE(burnt(scene), drawn(arrow, {154, 104}, "crack"));
}

void TestBurnIn::liveShapesAreScaledAndPensAreNot()
{
    PageScene scene;
    scene.setViewScale(400, 800);
    scene.draw(1, {{20, 30}, {120, 30}});
    QCOMPARE(burnt(scene, {800, 600}), drawn([](QPainter &p) { p.drawLine(40, 60, 240, 60); },
                                             {148, 68}, "Len = 200px", {800, 600}));

    PageScene second;
    second.setViewScale(400, 800);
    const Base *text = second.draw(15, {{100, 100}, {200, 100}});
    const auto arrow = [](QPainter &p) {
        p.drawLine(200, 200, 400, 200);
        p.drawLine(QPointF(382.67949192431124, 190), QPointF(400, 200));
        p.drawLine(QPointF(382.67949192431124, 210), QPointF(400, 200));
    };
    QCOMPARE(burnt(second, {800, 600}), drawn(arrow, {308, 208}, text->textContent(), {800, 600}));
}

void TestBurnIn::distancesOfARingAreNotScaled()
{
    PageScene scene;
    scene.setViewScale(400, 800);
    scene.setUnit(4);
    scene.setDrawProperty(RingDistance1, 20.0); // 20 pixels, 10 units
    scene.setDrawProperty(RingDistance2, 40.0); // 40 pixels, 20 units
    const Base *ring = scene.draw(10, {{150, 150}, {200, 100}, {250, 150}});
    const auto circles = [](QPainter &p) {
        for (double radius : {100, 90, 80})
            p.drawEllipse(QPointF(400, 300), radius, radius);
    };
    QCOMPARE(burnt(scene, {800, 600}), drawn(circles, {308, 308}, ring->textContent(), {800, 600}));
}

void TestBurnIn::draggedSegmentsAreDrawnWhereTheyAre()
{
    PageScene scene;
    const Base *line = scene.draw(1, {{100, 100}, {200, 100}});
    SceneMouse(scene).drag({150, 100}, {160, 120});
    painted(scene);
    QCOMPARE(line->item()->pos(), QPointF(10, 20));
    // The label's displacement is added once more.
    QCOMPARE(burnt(scene),
             drawn([](QPainter &p) { p.drawLine(110, 120, 210, 120); }, {174, 144}, "Len = 100px"));

    PageScene second;
    second.draw(7, {{40, 60}, {140, 110}});
    SceneMouse(second).drag({40, 80}, {50, 100});
    painted(second);
    QCOMPARE(burnt(second), drawn([](QPainter &p) { p.drawRect(50, 80, 100, 50); }, {114, 129},
                                  second.items()[0]->textContent()));
}

void TestBurnIn::draggedPathsAreDisplacedOnceMore()
{
    PageScene scene;
    const Base *circle = scene.draw(9, {{150, 150}, {200, 100}, {250, 150}});
    SceneMouse(scene).drag({200, 200}, {210, 220});
    painted(scene);
    QCOMPARE(circle->item()->pos(), QPointF(10, 20));
    // The handles stand 10 and 20 farther, and that is added again.
    QCOMPARE(burnt(scene), drawn([](QPainter &p) { p.drawEllipse(QPointF(220, 190), 50, 50); },
                                 {174, 194}, circle->textContent()));
}

void TestBurnIn::onlyFinishedShapesAreDrawn()
{
    PageScene scene;
    scene.draw(1, {{20, 30}, {50, 70}});
    scene.setCrossHorCount(3);
    scene.setBlinkFlags(true, false, true);
    SceneMouse(scene).click(QPointF(200, 200));
    scene.setBlinkFlags(false, false, true);
    scene.setDrawType(9);
    SceneMouse(scene).click({{150, 150}, {200, 100}});
    QCOMPARE(burnt(scene),
             drawn([](QPainter &p) { p.drawLine(20, 30, 50, 70); }, {39, 54}, "Len = 50px"));
}

void TestBurnIn::shapesAreDrawnInTheirOrder()
{
    PageScene scene;
    scene.setDrawProperty(LineColor, QColor(Qt::red));
    scene.draw(1, {{100, 100}, {200, 100}});
    scene.setDrawProperty(TextColor, QColor(Qt::white));
    scene.setDrawType(1);
    scene.draw(1, {{100, 100}, {200, 100}});
    scene.items()[0]->setLineColor(QColor(Qt::green));
    QCOMPARE(burnt(scene).pixelColor(120, 100), QColor(Qt::red));
    scene.removeItemAt(1);
    QCOMPARE(burnt(scene).pixelColor(120, 100), QColor(Qt::green));
}

// Only a document can bring such records.
void TestBurnIn::unfinishedRecordsSkipWhatTheyLack_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("points");
    for (int type = 1; type <= 17; ++type) {
        for (int points = 1; points <= 6 && type != 13; ++points)
            QTest::addRow("type %d with %d points", type, points) << type << points;
    }
}

void TestBurnIn::unfinishedRecordsSkipWhatTheyLack()
{
    QFETCH(int, type);
    QFETCH(int, points);
    const QStringList places{R"({"x":150,"y":150})", R"({"x":200,"y":100})", R"({"x":250,"y":150})",
                             R"({"x":290,"y":80})",  R"({"x":310,"y":60})",  R"({"x":330,"y":80})"};
    PageScene scene;
    scene.loadJson(QString(R"([{"type":%1,"point":[%2]}])")
                       .arg(type)
                       .arg(QStringList(places.mid(0, points)).join(','))
                       .toUtf8());
    QCOMPARE(scene.items().size(), 1);
    painted(scene);
    // The second circle of the two needs all six handles, the lines and circles their own.
    const QImage picture = burnt(scene);
    const auto touched = [&picture](int x, int y) { return picture.pixel(x, y) != 0xffffffff; };
    if (type >= 8 && type <= 14 && type != 11)
        QCOMPARE(touched(200, 100), points >= 3);
    if (type == 12 && points <= 4)
        QCOMPARE(touched(223, 132), points == 4);
    if (type == 14)
        QCOMPARE(touched(330, 80), points == 6);
    if (type <= 7 && type != 4)
        QVERIFY(points == 1 || touched(150, 150));
    if (type >= 16)
        QCOMPARE(picture, emptyPicture());
}

void TestBurnIn::hostileGeometryIsSurvived()
{
    PageScene scene;
    scene.setUnit(5);
    scene.setScale(1e-300);
    scene.setDrawProperty(RingDistance1, 1e300);
    scene.setDrawProperty(LineDistance1, 1e300);
    scene.draw(1, {{10, 10}, {110, 10}});
    scene.draw(10, {{150, 150}, {200, 100}, {250, 150}});
    scene.draw(5, {{100, 100}, {100.0000001, 100}, {100, 150}});
    scene.draw(6, {{0, 0}, {400, 0}, {0, 100}, {400, 100.0000000001}});
    scene.draw(9, {{0, 0}, {200, 1e-7}, {400, 0}});
    scene.loadJson(R"([{"type":5,"point":[{"x":7,"y":7},{"x":7,"y":7},{"x":9,"y":9}]},
                       {"type":1,"point":[{"x":7,"y":7},{"x":7,"y":7}]},
                       {"type":6,"point":[{"x":7,"y":7},{"x":7,"y":7},{"x":9,"y":9},{"x":9,"y":9}]},
                       {"type":15,"point":[{"x":7,"y":7},{"x":7,"y":7}]}])");
    painted(scene);
    for (double pictureWidth : {400.0, 1e-300, 1e300, 0.0}) {
        scene.setViewScale(400, pictureWidth);
        burnt(scene);
    }
}

QTEST_MAIN(TestBurnIn)
#include "test_burnin.moc"
