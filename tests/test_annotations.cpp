#include "measure/annotationtrailer.h"
#include "measure/base.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "measure/pathitems.h"
#include "measure/segmentitems.h"
#include "tests/support/scenemouse.h"
#include "tests/support/workingdirectory.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

Q_DECLARE_METATYPE(Base *)

namespace {

// A trailer is: length, document, length, magic number; all big-endian.
const QByteArray magic = QByteArray::fromHex("001ff8d8");

QByteArray bigEndian(qint32 value)
{
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(char(quint32(value) >> shift));
    return bytes;
}

QByteArray trailer(const QByteArray &json)
{
    return bigEndian(json.size()) + json + bigEndian(json.size()) + magic;
}

QByteArray readBack(const QByteArray &file)
{
    const WorkingDirectory directory;
    directory.write("picture.jpg", file);
    return readAnnotationTrailer("picture.jpg");
}

/// A picture page of 400 x 300 pixels.
class PageScene : public MainScene
{
public:
    PageScene() { setSceneRect(0, 0, 400, 300); }
};

QList<QPointF> handles(const Base *record)
{
    QList<QPointF> places;
    for (const GraphicsPoint *point : record->points())
        places.append(point->pos());
    return places;
}

/// Runs the work when the event queue is pumped next.
template<class Work>
void later(QObject *context, Work work)
{
    QMetaObject::invokeMethod(context, work, Qt::QueuedConnection);
}

const QByteArray threeLines = R"([{"type":1,"point":[{"x":10,"y":10},{"x":60,"y":10}]},
                                  {"type":1,"point":[{"x":10,"y":20},{"x":70,"y":20}]},
                                  {"type":1,"point":[{"x":10,"y":30},{"x":80,"y":30}]}])";

} // namespace

class TestAnnotations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Base *>(); }

    // the trailer
    void trailerIsFoundAtTheEndOfAPicture();
    void plainPicturesHaveNone_data();
    void plainPicturesHaveNone();
    void lengthsThatDisagree_data();
    void lengthsThatDisagree();
    void documentOfMoreThan128MegabytesIsNotRead();
    void everyTruncationIsSurvived();

    // writing
    void exampleOfTheFormatIsWrittenToTheLetter();
    void coordinatesAreWrittenInPicturePixels();
    void shapeUnderConstructionIsNotWritten();
    void emptySceneWritesAnEmptyArray();
    void draggedShapeIsWrittenWhereItsHandlesAre();

    // reading
    void writtenPageReadsBackTheSame();
    void coordinatesAreTakenAsSceneUnits();
    void angleComesBackWithItsHandlesAndReading();
    void polygonComesBackWithAllItsVertices_data();
    void polygonComesBackWithAllItsVertices();
    void textComesBackOnTextShapesOnly();
    void firstPointAnnouncesTheShapeBeforeItIsInTheList();
    void rectangleIsAnnouncedOnceItIsPainted();
    void shapesTakeThePropertiesOfThePage();
    void distancesWaitForTheNextSetting();
    void labelsDoNotTakeTheImageScale();
    void surplusPointsMoveTheLastHandle_data();
    void surplusPointsMoveTheLastHandle();
    void calibrationShapesStayInTheList();
    void emptyArrayYieldsNothingAndKeepsTheTool();
    void whatIsNoShapeIsPassedOver_data();
    void whatIsNoShapeIsPassedOver();
    void missingKeysReadAsZero();
    void hostileNumbersAreSurvived();
    void everyTruncationOfADocumentIsSurvived();
    void aMillionPointsAreSurvived();

    // while events run
    void eventsRunAfterEveryShape();
    void toolIsTheSameDuringAndAfterTheLoad();
    void toolChosenMeanwhileStays();
    void pressesMeanwhileAreNotServed();
    void shapeDeletedMeanwhileIsGivenUp();
    void deletedShapeIsNotAnnounced();
    void allShapesDeletedMeanwhile();
    void sceneDeletedMeanwhile();
    void secondDocumentWaitsForTheFirst();
    void documentsOfTwoScenesLoadWithinEachOther();
    void everyShapeIsAnnouncedHoweverLongTheEventsTake();
};

void TestAnnotations::trailerIsFoundAtTheEndOfAPicture()
{
    QCOMPARE(readBack("\xff\xd8 a picture \xff\xd9" + trailer("[1,2]")), QByteArray("[1,2]"));
    QCOMPARE(readBack(trailer("[1]")), QByteArray("[1]")); // nothing before it
    QCOMPARE(readBack(QByteArray("jpeg") + QByteArray::fromHex("00000003"
                                                               "5b315d"
                                                               "00000003"
                                                               "001ff8d8")),
             QByteArray("[1]"));
}

void TestAnnotations::plainPicturesHaveNone_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("shorter than the number") << QByteArray("\x1f\xf8\xd8");
    QTest::newRow("the number alone") << magic;
    QTest::newRow("length and number alone") << bigEndian(3) + magic;
    QTest::newRow("no number") << QByteArray("an ordinary picture with nothing behind it");
    QTest::newRow("number in the other byte order")
        << bigEndian(3) + "[1]" + bigEndian(3) + QByteArray::fromHex("d8f81f00");
    QTest::newRow("length 2") << "picture" + bigEndian(2) + "[]" + bigEndian(2) + magic;
    QTest::newRow("length 0") << "picture" + bigEndian(0) + bigEndian(0) + magic;
    QTest::newRow("negative length") << "picture" + bigEndian(3) + "[1]" + bigEndian(-1) + magic;
    QTest::newRow("most negative length")
        << "picture" + bigEndian(3) + "[1]" + bigEndian(std::numeric_limits<int>::min()) + magic;
    QTest::newRow("largest length")
        << "picture" + bigEndian(3) + "[1]" + bigEndian(std::numeric_limits<int>::max()) + magic;
    QTest::newRow("one byte before the file's start")
        << bigEndian(3) + "[1]" + bigEndian(4) + magic;
}

void TestAnnotations::plainPicturesHaveNone()
{
    QFETCH(QByteArray, file);
    QCOMPARE(readBack(file), QByteArray());
    QCOMPARE(readAnnotationTrailer("no such file"), QByteArray());
    QCOMPARE(readAnnotationTrailer("."), QByteArray());
}

// The length in front of the document is the one that counts for the reading.
void TestAnnotations::lengthsThatDisagree_data()
{
    QTest::addColumn<qint32>("inFront");
    QTest::addColumn<QByteArray>("read");
    QTest::newRow("shorter in front") << 3 << QByteArray("[1,");
    QTest::newRow("zero in front") << 0 << QByteArray();
    QTest::newRow("a null array in front") << -1 << QByteArray();
    QTest::newRow("longer in front takes the trailer's end in")
        << 13 << "[1,2]" + bigEndian(5) + magic;
    QTest::newRow("longer than the file") << 14 << QByteArray();
    QTest::newRow("two gigabytes") << std::numeric_limits<int>::max() << QByteArray();
    QTest::newRow("four gigabytes") << -2 << QByteArray();
}

void TestAnnotations::lengthsThatDisagree()
{
    QFETCH(qint32, inFront);
    QFETCH(QByteArray, read);
    QCOMPARE(readBack("picture" + bigEndian(inFront) + "[1,2]" + bigEndian(5) + magic), read);
}

void TestAnnotations::documentOfMoreThan128MegabytesIsNotRead()
{
    const WorkingDirectory directory;
    const qint32 length = 128 * 1024 * 1024 + 1;
    QFile file("picture.jpg"); // of a hole, which takes no room on most disks
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(4 + length));
    file.write(bigEndian(length));
    QVERIFY(file.seek(4 + length));
    file.write(bigEndian(length) + magic);
    file.close();
    QCOMPARE(readAnnotationTrailer("picture.jpg").size(), 0);
}

void TestAnnotations::everyTruncationIsSurvived()
{
    const QByteArray file = "picture" + trailer(threeLines);
    for (int size = 0; size < file.size(); ++size)
        QCOMPARE(readBack(file.left(size)), QByteArray());
    // Cut at the front the trailer is whole until its own first byte goes.
    for (int cut = 0; cut <= 7; ++cut)
        QCOMPARE(readBack(file.mid(cut)), threeLines);
    for (int cut = 8; cut < file.size(); ++cut)
        QCOMPARE(readBack(file.mid(cut)), QByteArray());
}

void TestAnnotations::exampleOfTheFormatIsWrittenToTheLetter()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 20}, {110, 20}});
    scene.setDrawType(15);
    mouse.click({{5, 5}, {50, 50}});
    scene.setItemText("note");
    QCOMPARE(scene.toJson(),
             QByteArray(R"([{"point":[{"x":10,"y":20},{"x":110,"y":20}],"type":1},)"
                        R"({"point":[{"x":5,"y":5},{"x":50,"y":50}],"text":"note","type":15}])"));
}

void TestAnnotations::coordinatesAreWrittenInPicturePixels()
{
    PageScene scene;
    scene.setViewScale(400, 1000);
    scene.setDrawType(1);
    SceneMouse(scene).click({{10, 20}, {110, 21}});
    QCOMPARE(scene.toJson(),
             QByteArray(R"([{"point":[{"x":25,"y":50},{"x":275,"y":52.5}],"type":1}])"));
}

void TestAnnotations::shapeUnderConstructionIsNotWritten()
{
    PageScene scene;
    scene.setDrawType(9);
    SceneMouse(scene).click({{10, 20}, {110, 20}});
    QCOMPARE(scene.toJson(), QByteArray("[]"));
}

void TestAnnotations::emptySceneWritesAnEmptyArray()
{
    const PageScene scene;
    QCOMPARE(scene.toJson(), QByteArray("[]"));
}

void TestAnnotations::draggedShapeIsWrittenWhereItsHandlesAre()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(1);
    mouse.click({{10, 20}, {110, 20}});
    scene.setDrawType(0);
    painted(scene);
    mouse.drag({60, 20}, {70, 50});
    painted(scene);
    QCOMPARE(scene.toJson(),
             QByteArray(R"([{"point":[{"x":20,"y":50},{"x":120,"y":50}],"type":1}])"));
}

void TestAnnotations::writtenPageReadsBackTheSame()
{
    PageScene scene;
    SceneMouse mouse(scene);
    // Every kind from the same clicks; what a shape does not need begins nothing but a line.
    for (int tool : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 14, 15}) {
        scene.setDrawType(tool);
        for (QPointF pos : {QPointF(20, 150), QPointF(60, 111), QPointF(104.5, 150),
                            QPointF(200, 150), QPointF(250, 103), QPointF(300, 150)}) {
            if (scene.items().isEmpty() || scene.items().last()->type() != tool)
                mouse.click(pos);
        }
    }
    scene.setItemText("two\nlines, \"quoted\" \u00b5");
    scene.setDrawType(11);
    mouse.click({{20, 20}, {60, 20}, {60, 60}, {20, 60}});
    mouse.doubleClick({20, 60});
    QCOMPARE(scene.items().size(), 14);
    const QByteArray json = scene.toJson();

    PageScene next;
    next.loadJson(json);
    QCOMPARE(next.items().size(), 14);
    for (int i = 0; i < 14; ++i) {
        QCOMPARE(next.items()[i]->type(), scene.items()[i]->type());
        QCOMPARE(handles(next.items()[i]), handles(scene.items()[i]));
    }
    QCOMPARE(next.items()[12]->textContent(), QString("two\nlines, \"quoted\" \u00b5"));
    QCOMPARE(next.toJson(), json);
}

void TestAnnotations::coordinatesAreTakenAsSceneUnits()
{
    PageScene scene;
    scene.setViewScale(400, 800);
    scene.loadJson(threeLines);
    QCOMPARE(handles(scene.items()[0]), (QList<QPointF>{{10, 10}, {60, 10}}));
}

void TestAnnotations::angleComesBackWithItsHandlesAndReading()
{
    PageScene scene;
    scene.loadJson(R"([{"type":6,"point":[{"x":10,"y":100},{"x":110,"y":100},
                                          {"x":10,"y":150},{"x":10,"y":50}]}])");
    QCOMPARE(scene.items().size(), 1);
    const Base *angle = scene.items().constFirst();
    QCOMPARE(handles(angle), (QList<QPointF>{{10, 100}, {110, 100}, {10, 150}, {10, 50}}));
    painted(scene);
    QCOMPARE(angle->textContent(), QString("Ang = 90°"));
}

void TestAnnotations::polygonComesBackWithAllItsVertices_data()
{
    QTest::addColumn<int>("vertices");
    QTest::newRow("three") << 3;
    QTest::newRow("seven") << 7;
    QTest::newRow("ten") << 10;
}

void TestAnnotations::polygonComesBackWithAllItsVertices()
{
    QFETCH(int, vertices);
    QByteArray points;
    QList<QPointF> places;
    for (int i = 0; i < vertices; ++i) {
        places.append(QPointF(10 + 20 * i, 10 + i * i));
        points += QString(R"({"x":%1,"y":%2},)").arg(10 + 20 * i).arg(10 + i * i).toUtf8();
    }
    points.chop(1);
    PageScene scene;
    scene.loadJson(R"([{"type":11,"point":[)" + points + "]}]");
    QCOMPARE(handles(scene.items().constFirst()), places);
    painted(scene);
    QVERIFY(scene.items().constFirst()->textContent().startsWith("CLen = "));
}

void TestAnnotations::textComesBackOnTextShapesOnly()
{
    PageScene scene;
    scene.setUnit(1);
    scene.loadJson(R"([{"type":15,"text":"crack","point":[{"x":1,"y":2},{"x":30,"y":40}]},
                       {"type":1,"text":"crack","point":[{"x":0,"y":0},{"x":30,"y":40}]},
                       {"type":15,"point":[{"x":1,"y":2},{"x":30,"y":40}]}])");
    QCOMPARE(scene.items()[0]->textContent(), QString("crack"));
    QCOMPARE(scene.items()[1]->textContent(), QString("Len = 50px"));
    QCOMPARE(scene.items()[2]->textContent(), QString());
}

void TestAnnotations::firstPointAnnouncesTheShapeBeforeItIsInTheList()
{
    PageScene scene;
    QSignalSpy edit(&scene, &MainScene::ltextEdit);
    QStringList story;
    connect(&scene, &MainScene::itemInsert, this, [&](Base *record) {
        story << QString("insert %1 %2 handles %3")
                     .arg(record->typeName())
                     .arg(record->pointCount())
                     .arg(scene.itemIndex(record));
    });
    connect(&scene, &MainScene::itemUpdate, this, [&](Base *record) {
        story << QString("update %1 %2 handles %3")
                     .arg(record->typeName())
                     .arg(record->pointCount())
                     .arg(scene.itemIndex(record));
    });
    scene.loadJson(R"([{"type":9,"point":[{"x":10,"y":50}]},
                       {"type":15,"text":"a","point":[{"x":10,"y":50}]}])");
    // The text is full with its first point: announced, then moved there once more.
    QCOMPARE(story, (QStringList{"insert Cir 2 handles -1", "insert LText 2 handles -1",
                                 "update LText 2 handles 1", "update LText 2 handles 1"}));
    QCOMPARE(edit.size(), 0);
}

// Its read-out is computed when it is painted.
void TestAnnotations::rectangleIsAnnouncedOnceItIsPainted()
{
    PageScene scene;
    scene.setUnit(1);
    QString row;
    connect(&scene, &MainScene::itemUpdate, this,
            [&](Base *record) { row = record->textContent(); });
    // Stands in for the view that paints while events run.
    connect(&scene, &QGraphicsScene::changed, this, [&] { painted(scene); });
    scene.loadJson(R"([{"type":7,"point":[{"x":10,"y":10},{"x":40,"y":30}]}])");
    QCOMPARE(row, QString("Wid = 30px\nHei = 20px\nCLen = 100px\nArea = 600px"));
}

void TestAnnotations::shapesTakeThePropertiesOfThePage()
{
    PageScene scene;
    scene.setDrawProperties({{LineWidth, 3}, {LineColor, QColor(Qt::blue)}, {TextSize, 20}});
    scene.setUnit(4);
    scene.setScale(2.0);
    scene.loadJson(threeLines);
    const Base *line = scene.items()[0];
    QCOMPARE(line->item()->pen().width(), 3);
    QCOMPARE(line->item()->pen().color(), QColor(Qt::blue));
    QCOMPARE(line->text()->font().pixelSize(), 20);
    QCOMPARE(line->textContent(), QString("Len = 100um"));
}

void TestAnnotations::distancesWaitForTheNextSetting()
{
    PageScene scene;
    scene.setUnit(4);
    scene.setDrawProperties({{LineDistance1, 20.0}, {RingDistance1, 10.0}});
    scene.loadJson(R"([{"type":1,"point":[{"x":10,"y":10},{"x":60,"y":10}]},
        {"type":10,"point":[{"x":110,"y":150},{"x":150,"y":110},{"x":190,"y":150}]}])");
    const auto *line = static_cast<GraphicsLine *>(scene.items()[0]->item());
    const auto *ring = static_cast<GraphicsRing *>(scene.items()[1]->item());
    QCOMPARE(line->lineB(), QLineF());
    QCOMPARE(ring->ringDistance1(), 0.0);
    QCOMPARE(ring->ringDistance2(), 0.0);
    scene.setDrawProperty(LineDistance1, 20.0);
    scene.setDrawProperty(RingDistance1, 10.0);
    QCOMPARE(line->lineB(), QLineF(10, 30, 60, 30));
    QCOMPARE(ring->ringDistance1(), 10.0);
}

void TestAnnotations::labelsDoNotTakeTheImageScale()
{
    PageScene scene;
    scene.setUnit(1);
    scene.setViewScale(400, 800);
    scene.loadJson(threeLines);
    QCOMPARE(scene.items()[0]->textContent(), QString("Len = 50px"));
}

void TestAnnotations::surplusPointsMoveTheLastHandle_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QList<QPointF>>("places");
    QTest::newRow("line") << 1 << (QList<QPointF>{{10, 50}, {200, 150}});
    QTest::newRow("circle") << 9 << (QList<QPointF>{{10, 50}, {50, 10}, {200, 150}});
    QTest::newRow("horizontal line") << 2 << (QList<QPointF>{{10, 50}, {200, 50}});
}

void TestAnnotations::surplusPointsMoveTheLastHandle()
{
    QFETCH(int, type);
    QFETCH(QList<QPointF>, places);
    PageScene scene;
    scene.loadJson(R"([{"point":[{"x":10,"y":50},{"x":50,"y":10},{"x":90,"y":50},{"x":1,"y":1},
                                 {"x":2,"y":2},{"x":200,"y":150}],"type":)" +
                   QByteArray::number(type) + "}]");
    QCOMPARE(handles(scene.items().constFirst()), places);
}

void TestAnnotations::calibrationShapesStayInTheList()
{
    PageScene scene;
    QSignalSpy over(&scene, &MainScene::caliOver);
    scene.loadJson(R"([{"type":16,"point":[{"x":10,"y":50},{"x":50,"y":10}]},
                       {"type":17,"point":[{"x":10,"y":50},{"x":50,"y":10},{"x":90,"y":50}]}])");
    QCOMPARE(scene.items().size(), 2);
    QCOMPARE(scene.items()[0]->typeName(), QString("LCali"));
    QCOMPARE(scene.items()[1]->typeName(), QString("CCali"));
    QCOMPARE(over.size(), 0);
    painted(scene);
    QImage picture(400, 300, QImage::Format_RGB32);
    picture.fill(Qt::white);
    const QImage before = picture;
    scene.renderItems(&picture);
    QCOMPARE(picture, before);
}

void TestAnnotations::emptyArrayYieldsNothingAndKeepsTheTool()
{
    PageScene scene;
    scene.setDrawType(9);
    QSignalSpy inserted(&scene, &MainScene::itemInsert);
    scene.loadJson("[]");
    QCOMPARE(inserted.size(), 0);
    QVERIFY(scene.items().isEmpty());
    QCOMPARE(scene.drawType(), 9);
}

void TestAnnotations::whatIsNoShapeIsPassedOver_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("rubbish") << QByteArray("\x89PNG\r\n");
    QTest::newRow("an object") << QByteArray(R"({"type":1})");
    QTest::newRow("a number") << QByteArray("17");
    QTest::newRow("unfinished") << threeLines.left(60);
    QTest::newRow("other types as elements") << QByteArray("[1,null,\"a\",[],[[{}]],true,{}]");
    QTest::newRow("the hand") << QByteArray(R"([{"type":0,"point":[{"x":1,"y":1}]}])");
    QTest::newRow("the hole") << QByteArray(R"([{"type":13,"point":[{"x":1,"y":1}]}])");
    QTest::newRow("above") << QByteArray(R"([{"type":18,"point":[{"x":1,"y":1}]}])");
    QTest::newRow("below") << QByteArray(R"([{"type":-1,"point":[{"x":1,"y":1}]}])");
    QTest::newRow("huge") << QByteArray(R"([{"type":1e300,"point":[{"x":1,"y":1}]}])");
    QTest::newRow("a fraction") << QByteArray(R"([{"type":1.5,"point":[{"x":1,"y":1}]}])");
    QTest::newRow("a text") << QByteArray(R"([{"type":"1","point":[{"x":1,"y":1}]}])");
    QTest::newRow("no points") << QByteArray(R"([{"type":1}])");
    QTest::newRow("an empty list of points") << QByteArray(R"([{"type":15,"point":[]}])");
    QTest::newRow("points that are none") << QByteArray(R"([{"type":1,"point":{"x":1}}])");
    QTest::newRow("deeply nested") << QByteArray(5000, '[') + QByteArray(5000, ']');
}

void TestAnnotations::whatIsNoShapeIsPassedOver()
{
    QFETCH(QByteArray, json);
    PageScene scene;
    scene.loadJson(json);
    QVERIFY(scene.items().isEmpty());
    QCOMPARE(scene.QGraphicsScene::items().size(), 0);
}

void TestAnnotations::missingKeysReadAsZero()
{
    PageScene scene;
    scene.loadJson(R"([{"type":1,"point":[{"x":5},{"y":6}]},{"type":1,"point":[7,"a"]}])");
    QCOMPARE(handles(scene.items()[0]), (QList<QPointF>{{5, 0}, {0, 6}}));
    QCOMPARE(handles(scene.items()[1]), (QList<QPointF>{{0, 0}, {0, 0}}));
}

void TestAnnotations::hostileNumbersAreSurvived()
{
    PageScene scene;
    QByteArray shapes;
    for (int type = -2; type < 20; ++type) {
        shapes += R"({"point":[{"x":1e300,"y":-1e300},{"x":1e-300,"y":9e307},{"x":-0.0,"y":1e308},
                    {"x":1e400,"y":-1e400},{"x":399.999999,"y":1e-15},{"x":1,"y":1}],"type":)" +
                  QByteArray::number(type) + "},";
        shapes += R"({"point":[{"x":7,"y":7},{"x":7,"y":7},{"x":7,"y":7},{"x":7,"y":7},
                    {"x":7,"y":7},{"x":7,"y":7}],"type":)" +
                  QByteArray::number(type) + "},";
    }
    shapes.chop(1);
    scene.loadJson("[" + shapes + "]");
    painted(scene);
    for (const Base *record : scene.items()) {
        for (QPointF place : handles(record))
            QVERIFY(scene.sceneRect().contains(place));
    }
    QImage picture(400, 300, QImage::Format_RGB32);
    scene.renderItems(&picture);
}

void TestAnnotations::everyTruncationOfADocumentIsSurvived()
{
    for (int size = 0; size < threeLines.size(); ++size) {
        PageScene scene;
        scene.loadJson(threeLines.left(size));
        QVERIFY(scene.items().isEmpty());
    }
}

void TestAnnotations::aMillionPointsAreSurvived()
{
    QByteArray points;
    for (int i = 0; i < 1000000; ++i)
        points += R"({"x":9,"y":9},)";
    PageScene scene;
    scene.loadJson(R"([{"type":14,"point":[)" + points + R"({"x":30,"y":40}]},)" +
                   R"({"type":1,"point":[)" + points + R"({"x":30,"y":40}]}])");
    QCOMPARE(scene.items().size(), 2);
    QCOMPARE(scene.items()[0]->pointCount(), 6);
    QCOMPARE(handles(scene.items()[0]).last(), QPointF(30, 40));
    QCOMPARE(handles(scene.items()[1]), (QList<QPointF>{{9, 9}, {30, 40}}));
}

void TestAnnotations::eventsRunAfterEveryShape()
{
    PageScene scene;
    QList<int> counts;
    connect(&scene, &MainScene::itemInsert, this,
            [&] { later(&scene, [&] { counts.append(scene.items().size()); }); });
    scene.loadJson(threeLines);
    QCOMPARE(counts, (QList<int>{1, 2, 3}));
}

void TestAnnotations::toolIsTheSameDuringAndAfterTheLoad()
{
    PageScene scene;
    scene.setDrawType(9);
    SceneMouse(scene).click({{10, 50}, {50, 10}});
    const Base *circle = scene.current();
    QList<int> tools;
    connect(&scene, &MainScene::itemInsert, this,
            [&] { later(&scene, [&] { tools.append(scene.drawType()); }); });
    scene.loadJson(threeLines);
    QCOMPARE(tools, (QList<int>{9, 9, 9}));
    QCOMPARE(scene.drawType(), 9);
    QCOMPARE(scene.current(), circle);
    QCOMPARE(handles(circle), (QList<QPointF>{{10, 50}, {50, 10}, {50, 10}}));
}

void TestAnnotations::toolChosenMeanwhileStays()
{
    PageScene scene;
    scene.setDrawType(9);
    SceneMouse(scene).click({{10, 50}, {50, 10}});
    later(&scene, [&] { scene.setDrawType(7); });
    scene.loadJson(threeLines);
    QCOMPARE(scene.drawType(), 7);
    QCOMPARE(scene.current(), nullptr);
    QCOMPARE(scene.items().size(), 3);
}

void TestAnnotations::pressesMeanwhileAreNotServed()
{
    PageScene scene;
    SceneMouse mouse(scene);
    scene.setDrawType(9);
    mouse.click({{10, 50}, {50, 10}});
    const Base *circle = scene.current();
    QSignalSpy cleared(&scene, &MainScene::clearDrawType);
    later(&scene, [&] {
        mouse.press({200, 200});
        mouse.release({200, 200});
        mouse.press({200, 200}, Qt::RightButton);
        mouse.doubleClick({200, 200});
    });
    scene.loadJson(threeLines);
    QCOMPARE(scene.items().size(), 3);
    QCOMPARE(scene.current(), circle);
    QCOMPARE(circle->pointCount(), 3);
    QCOMPARE(cleared.size(), 0);
    mouse.click({200, 200}); // served again
    mouse.click({{100, 100}, {200, 100}});
    QCOMPARE(scene.items().size(), 4);
}

void TestAnnotations::shapeDeletedMeanwhileIsGivenUp()
{
    PageScene scene;
    int inserted = 0;
    connect(&scene, &MainScene::itemInsert, this, [&] {
        if (++inserted == 2)
            later(&scene, [&] { scene.removeItemAt(1); });
    });
    scene.loadJson(threeLines);
    QCOMPARE(scene.items().size(), 2);
    QCOMPARE(handles(scene.items()[0]), (QList<QPointF>{{10, 10}, {60, 10}}));
    QCOMPARE(handles(scene.items()[1]), (QList<QPointF>{{10, 30}, {80, 30}}));
}

void TestAnnotations::deletedShapeIsNotAnnounced()
{
    PageScene scene;
    QList<int> announced;
    connect(&scene, &MainScene::itemUpdate, this, [&](Base *record) {
        announced.append(scene.itemIndex(record));
        // When its last point has come, and its announcement waits.
        if (announced.size() == 1)
            later(&scene, [&] { scene.removeItemAt(0); });
    });
    scene.loadJson(threeLines);
    QCOMPARE(scene.items().size(), 2);
    QVERIFY(announced.size() > 2);
    QVERIFY(!announced.contains(-1));
}

void TestAnnotations::allShapesDeletedMeanwhile()
{
    PageScene scene;
    connect(&scene, &MainScene::itemInsert, this,
            [&] { later(&scene, [&] { scene.clearItems(); }); });
    scene.loadJson(R"([{"type":11,"point":[{"x":1,"y":1},{"x":9,"y":9},{"x":9,"y":1}]},
                       {"type":15,"text":"a","point":[{"x":1,"y":1},{"x":9,"y":9}]},
                       {"type":7,"point":[{"x":1,"y":1},{"x":9,"y":9}]}])");
    QVERIFY(scene.items().isEmpty());
    QCOMPARE(scene.QGraphicsScene::items().size(), 0);
}

void TestAnnotations::sceneDeletedMeanwhile()
{
    auto *scene = new PageScene;
    QPointer<MainScene> alive(scene);
    int inserted = 0;
    connect(scene, &MainScene::itemInsert, this, [&] {
        if (++inserted == 2)
            later(this, [&] { delete alive; });
    });
    scene->loadJson(threeLines);
    QVERIFY(!alive);
    QCOMPARE(inserted, 2);
}

void TestAnnotations::secondDocumentWaitsForTheFirst()
{
    PageScene scene;
    later(&scene, [&] {
        scene.loadJson(R"([{"type":9,"point":[{"x":10,"y":50},{"x":50,"y":10},{"x":90,"y":50}]}])");
        QCOMPARE(scene.items().size(), 1);
    });
    scene.loadJson(threeLines);
    QCOMPARE(scene.items().size(), 4);
    QCOMPARE(scene.items()[3]->typeName(), QString("Cir"));
    QCOMPARE(scene.items()[3]->pointCount(), 3);
}

void TestAnnotations::documentsOfTwoScenesLoadWithinEachOther()
{
    PageScene first;
    PageScene second;
    later(&second, [&] { second.loadJson(threeLines); });
    first.loadJson(threeLines);
    QCOMPARE(first.items().size(), 3);
    QCOMPARE(second.items().size(), 3);
    QCOMPARE(second.toJson(), first.toJson());
}

// Once events have cost a while they no longer run after every shape.
void TestAnnotations::everyShapeIsAnnouncedHoweverLongTheEventsTake()
{
    PageScene scene;
    QSet<Base *> announced;
    connect(&scene, &MainScene::itemUpdate, this, [&](Base *record) { announced.insert(record); });
    later(&scene, [] { QTest::qSleep(150); }); // the events that cost a while
    QByteArray json = "[";
    for (int i = 0; i < 300; ++i)
        json += R"({"type":7,"point":[{"x":10,"y":10},{"x":60,"y":70}]},)";
    json.chop(1);
    scene.loadJson(json + "]");
    QCOMPARE(scene.items().size(), 300);
    for (Base *record : scene.items())
        QVERIFY(announced.contains(record));
}

QTEST_MAIN(TestAnnotations)
#include "test_annotations.moc"
