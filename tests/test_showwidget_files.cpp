#include "measure/base.h"
#include "tests/support/jfifdensity.h"
#include "tests/support/shownpage.h"
#include "tests/support/workingdirectory.h"
#include "workbench/picturefile.h"

#include <QDataStream>
#include <QThread>
#include <QtTest>

/// How pictures come onto a page and leave it.
class TestShowWidgetFiles : public QObject
{
    Q_OBJECT

private slots:
    void openedFileIsAPicturePage();
    void unreadableFileLeavesAPageWithoutAPicture_data();
    void unreadableFileLeavesAPageWithoutAPicture();
    void changesAreTrackedSoonAfterOpening();
    void trailerBringsShapesWithoutAChange();
    void trailerOnABrokenPictureStillBringsItsShapes();
    void plainEndingsBringNoShapes_data();
    void plainEndingsBringNoShapes();
    void slowTrailerStillMarksNothing();
    void shapesThatAreFirstPaintedLaterMarkNothing_data();
    void shapesThatAreFirstPaintedLaterMarkNothing();
    void theWindowGetsItsTurnsWhileThousandsOfShapesLoad();
    void pageMayCloseWhileItsTrailerLoads();
    void pageMayCloseBeforeItsTrailerLoads();
    void shapesMayGoWhileATrailerLoads();

    void savedShapesAreInThePixelsAndOffThePage();
    void savingTwiceKeepsTheFile();
    void emptyPathSavesUnderTheKnownName();
    void pageWithoutAFileTakesTheNextCaptureName();
    void savingLeavesTheModifiedFlag();
    void failedSaveStillTakesTheShapes();
    void savedPictureCarriesTheCalibration();
    void withoutACalibrationNoScaleIsSaved();

    void viewIsSavedAsJpegOfItsSize_data();
    void viewIsSavedAsJpegOfItsSize();
    void savedViewLeavesThePageAsItIs();
    void savedViewShowsTheShapes();
    void savedViewCarriesTheZoomedScale();

    void csvHasOneRecordAShape();
    void csvDoesNotEscapeQuotes();
    void csvOfAnEmptyPageIsEmpty();
    void csvIntoAnAbsentDirectoryIsSurvived();
    void capturesOfAPicturePageDoNothing();
};

namespace {

const QByteArray lineAndText = R"([{"point":[{"x":10,"y":20},{"x":110,"y":20}],"type":1},)"
                               R"({"point":[{"x":5,"y":5},{"x":50,"y":50}],"text":"note",)"
                               R"("type":15}])";

QByteArray trailer(const QByteArray &json, qint32 magic = 0x001FF8D8)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << json << qint32(json.size()) << magic;
    return bytes;
}

/// A PNG file, which allows to compare pixels, with something behind it.
void writePng(const QString &path, const QByteArray &behind = {}, QSize size = {300, 200})
{
    plainPicture(size.width(), size.height()).save(path, "png");
    QFile file(path);
    QVERIFY(file.open(QIODevice::Append));
    file.write(behind);
}

QByteArray manyLines(int count)
{
    QByteArray json = "[";
    for (int i = 0; i < count; ++i) {
        json += i ? "," : "";
        json += R"({"point":[{"x":10,"y":20},{"x":110,"y":20}],"type":1})";
    }
    return json + "]";
}

/// Draws a line, which marks the page as soon as its changes count.
bool isModifiedByALine(ShownPage &shown)
{
    shown.drawLine({10, 40}, {110, 40});
    return shown.page.isModified();
}

} // namespace

void TestShowWidgetFiles::openedFileIsAPicturePage()
{
    const WorkingDirectory directory;
    writePng("a.png");
    ShownPage shown;
    shown.page.openFile("a.png");
    QVERIFY(!shown.page.isLive());
    QVERIFY(shown.page.hasFile());
    QVERIFY(!shown.page.isModified());
    QCOMPARE(shown.scene.sceneRect(), QRectF(0, 0, 300, 200));
}

void TestShowWidgetFiles::unreadableFileLeavesAPageWithoutAPicture_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("rubbish") << QByteArray(1000, '\xaa');
    QTest::newRow("the first bytes of a JPEG") << QByteArray::fromHex("ffd8ffe000104a464946");
}

void TestShowWidgetFiles::unreadableFileLeavesAPageWithoutAPicture()
{
    QFETCH(QByteArray, bytes);
    const WorkingDirectory directory;
    directory.write("a.jpg", bytes);
    ShownPage shown;
    shown.page.show();
    shown.page.openFile("a.jpg");
    QVERIFY(shown.page.hasFile());
    QCOMPARE(shown.scene.backgroundBrush().style(), Qt::NoBrush);
    QCOMPARE(shown.view->geometry(), QRect(0, 0, 500, 400));
    ShownPage absent;
    absent.page.openFile("absent.jpg");
    QVERIFY(absent.page.hasFile());
}

void TestShowWidgetFiles::changesAreTrackedSoonAfterOpening()
{
    const WorkingDirectory directory;
    writePng("a.png");
    ShownPage shown;
    shown.page.openFile("a.png");
    shown.drawLine({10, 20}, {110, 20});
    QVERIFY(!shown.page.isModified());
    QTRY_VERIFY(isModifiedByALine(shown));
}

void TestShowWidgetFiles::trailerBringsShapesWithoutAChange()
{
    const WorkingDirectory directory;
    writePng("a.png", trailer(lineAndText));
    ShownPage shown;
    shown.page.show();
    shown.page.openFile("a.png");
    QCOMPARE(shown.list->count(), 0); // the page reaches its size first
    QTRY_COMPARE(shown.rows(), QStringList({"Line\nLen = 100px", "LText\nnote"}));
    QTest::qWait(100);
    QVERIFY(!shown.page.isModified());
    QCOMPARE(shown.scene.items().size(), 2);
    QTRY_VERIFY(isModifiedByALine(shown));
}

void TestShowWidgetFiles::trailerOnABrokenPictureStillBringsItsShapes()
{
    const WorkingDirectory directory;
    directory.write("a.jpg", "no picture" + trailer(lineAndText));
    ShownPage shown;
    shown.page.show();
    shown.page.openFile("a.jpg");
    QTRY_COMPARE(shown.list->count(), 2);
    QCOMPARE(shown.scene.backgroundBrush().style(), Qt::NoBrush);
}

void TestShowWidgetFiles::plainEndingsBringNoShapes_data()
{
    QTest::addColumn<QByteArray>("behind");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("another magic number") << trailer(lineAndText, 0x001FF8D9);
    QTest::newRow("a length of 2") << trailer("[]");
    QTest::newRow("the magic number alone") << QByteArray::fromHex("001ff8d8");
    QTest::newRow("no array") << trailer("{\"type\":1}");
}

void TestShowWidgetFiles::plainEndingsBringNoShapes()
{
    QFETCH(QByteArray, behind);
    const WorkingDirectory directory;
    writePng("a.png", behind);
    ShownPage shown;
    shown.page.show();
    shown.page.openFile("a.png");
    QTest::qWait(100);
    QCOMPARE(shown.list->count(), 0);
    QTRY_VERIFY(isModifiedByALine(shown));
}

void TestShowWidgetFiles::slowTrailerStillMarksNothing()
{
    const WorkingDirectory directory;
    writePng("a.png", trailer(manyLines(20)));
    ShownPage shown;
    shown.page.show();
    shown.page.openFile("a.png");
    // The first shape takes so long that the delay is over while the load still runs.
    bool first = true;
    connect(&shown.scene, &MainScene::itemInsert, this, [&first] {
        if (std::exchange(first, false))
            QThread::msleep(80);
    });
    QTRY_COMPARE(shown.list->count(), 20);
    QVERIFY(!shown.page.isModified());
    QTest::qWait(10);
    QVERIFY(!shown.page.isModified());
    QTRY_VERIFY(isModifiedByALine(shown));
}

void TestShowWidgetFiles::shapesThatAreFirstPaintedLaterMarkNothing_data()
{
    QTest::addColumn<bool>("visible");
    QTest::newRow("the delay is over before a text is painted") << true;
    QTest::newRow("the page is shown after the load") << false;
}

void TestShowWidgetFiles::shapesThatAreFirstPaintedLaterMarkNothing()
{
    QFETCH(bool, visible);
    const WorkingDirectory directory;
    const QByteArray shapes =
        R"([{"type":7,"point":[{"x":10,"y":10},{"x":40,"y":30}]},)"
        R"({"type":6,"point":[{"x":10,"y":100},{"x":110,"y":100},{"x":10,"y":150},)"
        R"({"x":10,"y":50}]},{"type":15,"text":"note","point":[{"x":5,"y":5},{"x":50,"y":50}]}])";
    writePng("a.png", trailer(shapes));
    ShownPage shown;
    shown.page.setVisible(visible);
    // Three shapes that outlast the delay.
    connect(&shown.scene, &MainScene::itemInsert, this, [] { QThread::msleep(30); });
    shown.page.openFile("a.png");
    QTRY_COMPARE(shown.list->count(), 3);
    QTest::qWait(60);
    const QStringList rows{"Rect\nWid = 30px\nHei = 20px\nCLen = 100px\nArea = 600px",
                           "Ang\nAng = 90°", "LText\nnote"};
    QCOMPARE(shown.rows(), rows);
    shown.page.show();
    shown.page.grab();
    QCOMPARE(shown.rows(), rows);
    QVERIFY(!shown.page.isModified());
}

void TestShowWidgetFiles::theWindowGetsItsTurnsWhileThousandsOfShapesLoad()
{
    const WorkingDirectory directory;
    writePng("a.png", trailer(manyLines(5000)));
    ShownPage shown;
    shown.page.show();
    shown.page.openFile("a.png");
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] { turns += shown.list->count() < 5000; });
    timer.start(0);
    QTRY_COMPARE_WITH_TIMEOUT(shown.list->count(), 5000, 60000);
    QVERIFY2(turns >= 3, qPrintable(QString::number(turns)));
    QCOMPARE(shown.scene.items().size(), 5000);
    QVERIFY(!shown.page.isModified());
}

void TestShowWidgetFiles::pageMayCloseWhileItsTrailerLoads()
{
    const WorkingDirectory directory;
    writePng("a.png", trailer(manyLines(200)));
    QMenu menu;
    QPointer<ShowWidget> page = new ShowWidget(&menu, false);
    auto *scene = qobject_cast<MainScene *>(page->findChild<GraphicsView *>()->scene());
    int inserted = 0;
    connect(scene, &MainScene::itemInsert, this, [&] {
        if (++inserted == 5)
            QTimer::singleShot(0, page, [&page] { delete page; });
    });
    page->show();
    page->openFile("a.png");
    QTRY_VERIFY(!page);
    QVERIFY(inserted < 200);
}

void TestShowWidgetFiles::pageMayCloseBeforeItsTrailerLoads()
{
    const WorkingDirectory directory;
    writePng("a.png", trailer(lineAndText));
    {
        ShownPage shown;
        shown.page.openFile("a.png");
    }
    QTest::qWait(100);
}

void TestShowWidgetFiles::shapesMayGoWhileATrailerLoads()
{
    const WorkingDirectory directory;
    writePng("a.png", trailer(manyLines(50)));
    ShownPage shown;
    shown.page.show();
    int inserted = 0;
    connect(&shown.scene, &MainScene::itemInsert, this, [&] {
        if (++inserted == 20)
            QTimer::singleShot(0, &shown.page, &ShowWidget::deleteAllItems);
    });
    shown.page.openFile("a.png");
    QTRY_COMPARE(inserted, 50);
    QTest::qWait(60);
    QCOMPARE(shown.list->count(), shown.scene.items().size());
    QVERIFY(shown.page.isModified());
}

void TestShowWidgetFiles::savedShapesAreInThePixelsAndOffThePage()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.page.setDrawProperties({{LineColor, QColor(Qt::red)}, {LineWidth, 3}});
    shown.drawLine({10, 120}, {210, 120});
    shown.page.savePicture(directory.path("saved.png"));
    QVERIFY(shown.page.hasFile());
    QCOMPARE(shown.list->count(), 0);
    QVERIFY(shown.scene.items().isEmpty());
    // Burned in on the page, too.
    QCOMPARE(shown.scene.backgroundBrush().texture().toImage().pixelColor(50, 120),
             QColor(Qt::red));

    ShownPage again;
    again.page.show();
    again.page.openFile(directory.path("saved.png"));
    QTest::qWait(60);
    QCOMPARE(again.list->count(), 0);
    const QImage pixels = again.scene.backgroundBrush().texture().toImage();
    QCOMPARE(pixels.size(), QSize(300, 200));
    QCOMPARE(pixels.pixelColor(50, 120), QColor(Qt::red));
    QCOMPARE(pixels.pixelColor(50, 110), QColor(Qt::white));
    QCOMPARE(pixels.pixelColor(230, 120), QColor(Qt::white));
}

void TestShowWidgetFiles::savingTwiceKeepsTheFile()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.page.savePicture(directory.path("first.png"));
    shown.page.savePicture(directory.path("second.png"));
    shown.page.setDrawProperties({{LineColor, QColor(Qt::red)}, {LineWidth, 3}});
    shown.drawLine({10, 120}, {210, 120});
    shown.page.savePicture({});
    QCOMPARE(QImage("first.png").pixelColor(50, 120), QColor(Qt::white));
    QCOMPARE(QImage("second.png").pixelColor(50, 120), QColor(Qt::red));
}

void TestShowWidgetFiles::emptyPathSavesUnderTheKnownName()
{
    const WorkingDirectory directory;
    writePng("a.png");
    ShownPage shown;
    shown.page.openFile(directory.path("a.png"));
    shown.page.setDrawProperties({{LineColor, QColor(Qt::red)}, {LineWidth, 3}});
    shown.drawLine({10, 120}, {210, 120});
    shown.page.savePicture({});
    QCOMPARE(QImage("a.png").pixelColor(50, 120), QColor(Qt::red));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList{"a.png"});
}

void TestShowWidgetFiles::pageWithoutAFileTakesTheNextCaptureName()
{
    const WorkingDirectory directory;
    directory.write("capture00007.jpg", "x");
    ShownPage shown;
    shown.page.setPicture(plainPicture(30, 20));
    QVERIFY(!shown.page.hasFile());
    shown.page.savePicture({});
    QVERIFY(shown.page.hasFile());
    QCOMPARE(QImage("capture00008.jpg").size(), QSize(30, 20));
}

void TestShowWidgetFiles::savingLeavesTheModifiedFlag()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.page.savePicture(directory.path("a.png"));
    QVERIFY(shown.page.isModified());
    shown.page.setModified(false);
    shown.page.savePicture(directory.path("a.png"));
    QVERIFY(!shown.page.isModified());
}

void TestShowWidgetFiles::failedSaveStillTakesTheShapes()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    for (const char *name : {"gone/a.jpg", "no extension", "a.xyz"}) {
        shown.drawLine({10, 20}, {110, 20});
        shown.page.savePicture(directory.path(name));
        QCOMPARE(shown.list->count(), 0);
        QVERIFY(shown.scene.items().isEmpty());
    }
    QCOMPARE(QDir().entryList(QDir::Files), QStringList());
    // Nor does a page without a picture mind.
    ShownPage empty;
    empty.drawLine({10, 20}, {110, 20});
    empty.page.savePicture(directory.path("a.jpg"));
    QCOMPARE(empty.list->count(), 0);
    QCOMPARE(QDir().entryList(QDir::Files), QStringList());
}

void TestShowWidgetFiles::savedPictureCarriesTheCalibration()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(30, 20));
    shown.page.setScale(10.0);
    shown.page.savePicture(directory.path("a.jpg"));
    // 10 um a pixel: 1000 pixels a centimetre.
    QCOMPARE(jfifDensity(directory.read("a.jpg")), QByteArray("0203e803e8"));
    shown.page.savePicture(directory.path("a.png"));
    QCOMPARE(QImage("a.png").dotsPerMeterX(), 100000);
    QCOMPARE(QImage("a.png").dotsPerMeterY(), 100000);
}

void TestShowWidgetFiles::withoutACalibrationNoScaleIsSaved()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(30, 20));
    for (const double scale : {1.0, 0.0, -5.0, qQNaN(), qInf()}) {
        shown.page.setScale(scale);
        shown.page.savePicture(directory.path("a.jpg"));
        QCOMPARE(jfifDensity(directory.read("a.jpg")), QByteArray("0000010001"));
        shown.page.savePicture(directory.path("a.png"));
        QVERIFY(!directory.read("a.png").contains("pHYs"));
    }
}

void TestShowWidgetFiles::viewIsSavedAsJpegOfItsSize_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<QSize>("saved"); // of an area of 500 x 400

    QTest::newRow("without scroll bars") << QSize(200, 100) << true << QSize(200, 100);
    QTest::newRow("the relaxed horizontal bar is not left out")
        << QSize(600, 300) << true << QSize(500, 300);
    QTest::newRow("the vertical bar is left out") << QSize(300, 600) << true << QSize(282, 400);
    QTest::newRow("of both bars only the vertical one is left out")
        << QSize(600, 600) << true << QSize(482, 400);
    QTest::newRow("both are left out before they were ever shown")
        << QSize(600, 600) << false << QSize(482, 382);
}

void TestShowWidgetFiles::viewIsSavedAsJpegOfItsSize()
{
    QFETCH(QSize, picture);
    QFETCH(bool, visible);
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.show();
    shown.page.setVisible(visible);
    shown.page.setPicture(plainPicture(picture.width(), picture.height()));
    shown.page.saveViewport(directory.path("view.png"));
    QVERIFY(directory.read("view.png").startsWith("\xff\xd8\xff")); // whatever the extension
    QTEST(QImage("view.png").size(), "saved");
}

void TestShowWidgetFiles::savedViewLeavesThePageAsItIs()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.page.setModified(false);
    shown.page.saveViewport(directory.path("view.jpg"));
    QCOMPARE(shown.list->count(), 1);
    QVERIFY(!shown.page.isModified());
    QVERIFY(!shown.page.hasFile());
    shown.page.saveViewport(directory.path("gone/view.jpg"));
}

void TestShowWidgetFiles::savedViewShowsTheShapes()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.page.setDrawProperties({{LineColor, QColor(Qt::blue)}, {LineWidth, 3}});
    shown.page.setZoom(0.5);
    shown.drawLine({20, 160}, {280, 160});
    shown.page.saveViewport(directory.path("view.jpg"));
    const QImage image("view.jpg");
    QCOMPARE(image.size(), QSize(150, 100));
    const QColor onTheLine = image.pixelColor(35, 80);
    QVERIFY(onTheLine.blue() > onTheLine.red() + 50);
    QVERIFY(image.pixelColor(35, 60).red() > 240);
}

void TestShowWidgetFiles::savedViewCarriesTheZoomedScale()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.page.setZoom(0.5);
    shown.page.saveViewport(directory.path("view.jpg"));
    QCOMPARE(jfifDensity(directory.read("view.jpg")), QByteArray("0000010001"));
    shown.page.setScale(10.0);
    shown.page.saveViewport(directory.path("view.jpg"));
    // A pixel of the view shows 20 um: 500 a centimetre.
    QCOMPARE(jfifDensity(directory.read("view.jpg")), QByteArray("0201f401f4"));
}

void TestShowWidgetFiles::csvHasOneRecordAShape()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.page.setDrawType(7);
    shown.mouse.click({{100, 100}, {130, 140}});
    painted(shown.scene);
    shown.page.setDrawType(6);
    shown.mouse.click({{200, 100}, {250, 100}, {200, 150}, {200, 100.5}});
    painted(shown.scene);
    shown.page.exportCsv(directory.path("a.csv"));
    const QString expected = "1,Line,\"Len = 100px\"\n"
                             "2,Rect,\"Wid = 30px\nHei = 40px\nCLen = 140px\nArea = 1200px\"\n"
                             "3,Ang,\"Ang = 90°\"\n";
    QCOMPARE(QString::fromLocal8Bit(directory.read("a.csv")), expected);
}

void TestShowWidgetFiles::csvDoesNotEscapeQuotes()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.page.setDrawType(15);
    shown.mouse.click({{50, 50}, {90, 80}});
    shown.page.setItemText("a \"b\", c");
    shown.page.exportCsv(directory.path("a.csv"));
    QCOMPARE(directory.read("a.csv").trimmed(), QByteArray("1,LText,\"a \"b\", c\""));
}

void TestShowWidgetFiles::csvOfAnEmptyPageIsEmpty()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.exportCsv(directory.path("a.csv"));
    QVERIFY(QFile::exists("a.csv"));
    QCOMPARE(directory.read("a.csv"), QByteArray());
}

void TestShowWidgetFiles::csvIntoAnAbsentDirectoryIsSurvived()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.page.exportCsv(directory.path("gone/a.csv"));
    QVERIFY(!QFile::exists("gone/a.csv"));
}

void TestShowWidgetFiles::capturesOfAPicturePageDoNothing()
{
    const WorkingDirectory directory;
    ShownPage shown;
    shown.page.setPicture(plainPicture(30, 20));
    shown.page.captureTo(directory.path("a.jpg"));
    QTest::qWait(0);
    QCOMPARE(QDir().entryList(QDir::Files), QStringList());
}

QTEST_MAIN(TestShowWidgetFiles)
#include "test_showwidget_files.moc"
