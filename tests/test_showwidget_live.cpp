#include "camera/mycamera.h"
#include "measure/base.h"
#include "measure/graphicscross.h"
#include "measure/graphicspoint.h"
#include "settings/settingsfiles.h"
#include "simulator/simulatedcapture.h"
#include "tests/support/jfifdensity.h"
#include "tests/support/shownpage.h"
#include "tests/support/workingdirectory.h"

#include <QPushButton>
#include <QScrollBar>
#include <QtTest>

/// The live page: how the moving picture fits and what lies over it.
class TestShowWidgetLive : public QObject
{
    Q_OBJECT

private slots:
    void newLivePageStandsWithoutACamera();
    void cameraMakesTheLivePage();
    void firstLayoutStartsAtTheFit_data();
    void firstLayoutStartsAtTheFit();
    void firstLayoutKeepsARatioOfOne();
    void fitFollowsTheArea();
    void ownZoomStaysWhenTheAreaShrinks();
    void ownZoomIsTakenBackByALargerFit();
    void stepBelowTheFitIsTakenBack();
    void stepsAreThreeHundredths();
    void liveZoomEndsAtOne();
    void fitModes_data();
    void fitModes();
    void fitToAWiderAreaIsOne();
    void fitModesOfAPicturePageDoNothing();
    void zoomOfThePicturePagesDoesNothing();
    void largePictureShowsBothScrollBars();
    void pageWithoutRoomKeepsItsShapes();

    void frameFillsTheLabel();
    void ofManyFramesInOneTurnTheNewestIsShownLast();
    void shapesLieOverTheFrame();
    void shapesAndCrosshairFollowTheZoom();
    void readoutsAreInFramePixels();
    void hidingTheListRefitsThePicture();
    void wheelAndMiddlePressReachTheWindow();

    void captureBurnsTheShapesIn();
    void withoutACalibrationACaptureCarriesNoScale();
    void savedViewCarriesTheScaleOfTheLiveZoom();
    void laterCaptureReplacesTheEarlierPath();
    void captureOfTheRunningCameraIsStored();
    void savingALivePageAsksForAFrameOnly();
    void crosshairOfTheLivePageSurvives();
};

namespace {

/// A live page with a camera of 1920 x 1080 that delivers nothing by itself.
class LivePage : public ShownPage
{
public:
    /// @param areaSize  of the part that the picture has
    explicit LivePage(QSize areaSize)
        : ShownPage(true, areaSize + QSize(206, 0))
        , camera({1000, 40, 1000})
    {
        page.setCamera(&camera);
        page.show();
    }

    QSize pictureSize() const { return video->content()->size(); }

    MyCamera camera;
};

QPixmap blackFrame() { return plainPicture(1920, 1080, Qt::black); }

} // namespace

void TestShowWidgetLive::newLivePageStandsWithoutACamera()
{
    ShownPage shown(true);
    QVERIFY(shown.page.isLive());
    QVERIFY(shown.page.hasFile());
    QCOMPARE(shown.view->parent(), shown.video->content());
    shown.page.show();
    shown.page.resize(500, 300);
    shown.page.setFitMode(1);
    QCOMPARE(shown.page.zoomFactor(), 1.0);
}

void TestShowWidgetLive::cameraMakesTheLivePage()
{
    MyCamera camera;
    ShownPage shown;
    shown.page.setCamera(&camera);
    QVERIFY(shown.page.isLive());
    shown.drawLine({10, 20}, {110, 20});
    QVERIFY(shown.page.isModified()); // changes are tracked at once
}

void TestShowWidgetLive::firstLayoutStartsAtTheFit_data()
{
    QTest::addColumn<QSize>("area");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QRect>("video");

    QTest::newRow("half") << QSize(960, 540) << QSize(960, 540) << QRect(0, 0, 960, 540);
    QTest::newRow("width decides, centred downwards")
        << QSize(960, 641) << QSize(960, 540) << QRect(0, 50, 960, 540);
    QTest::newRow("height decides, centred across")
        << QSize(1001, 540) << QSize(960, 540) << QRect(20, 0, 960, 540);
    QTest::newRow("as large as the frame")
        << QSize(1920, 1080) << QSize(1920, 1080) << QRect(0, 0, 1920, 1080);
    QTest::newRow("larger than the frame: its own size, centred")
        << QSize(2000, 1200) << QSize(1920, 1080) << QRect(40, 60, 1920, 1080);
}

void TestShowWidgetLive::firstLayoutStartsAtTheFit()
{
    QFETCH(QSize, area);
    LivePage live(area);
    QCOMPARE(live.area->size(), area);
    QTEST(live.pictureSize(), "picture");
    QTEST(live.video->geometry(), "video");
    QFETCH(QSize, picture);
    QCOMPARE(live.view->geometry(), QRect(QPoint(), picture));
    QCOMPARE(live.scene.sceneRect(), QRectF(QPointF(), picture));
    QCOMPARE(live.page.viewWidth(), double(picture.width()));
    QCOMPARE(live.page.viewHeight(), double(picture.height()));
    QCOMPARE(live.scene.imageScale(), 1920.0 / picture.width());
}

void TestShowWidgetLive::firstLayoutKeepsARatioOfOne()
{
    // The scene has no width before it that the new one could be related to.
    const WorkingDirectory directory;
    writeCrosses({{2, 1, Qt::red, {0, 100}, false, true}});
    LivePage live({960, 540});
    live.page.loadCross();
    QCOMPARE(live.scene.crossLines().at(0)->pos(), QPointF(0, 100));
}

void TestShowWidgetLive::fitFollowsTheArea()
{
    LivePage live({960, 540});
    live.page.resize(480 + 206, 540);
    QTRY_COMPARE(live.pictureSize(), QSize(480, 270));
    QCOMPARE(live.video->geometry(), QRect(0, 135, 480, 270));
    live.page.resize(960 + 206, 540);
    QTRY_COMPARE(live.pictureSize(), QSize(960, 540));
}

void TestShowWidgetLive::ownZoomStaysWhenTheAreaShrinks()
{
    LivePage live({960, 540});
    live.page.setFitMode(3);
    QCOMPARE(live.pictureSize(), QSize(1920, 1080));
    live.page.resize(480 + 206, 540);
    QTRY_COMPARE(live.video->geometry(), QRect(0, 0, 480, 540));
    QCOMPARE(live.pictureSize(), QSize(1920, 1080));
}

void TestShowWidgetLive::ownZoomIsTakenBackByALargerFit()
{
    LivePage live({480, 270});
    live.page.stepLiveZoom(true); // 0.28
    QCOMPARE(live.pictureSize(), QSize(537, 302));
    live.page.resize(960 + 206, 540);
    QTRY_COMPARE(live.pictureSize(), QSize(960, 540));
    // From here on it follows again.
    live.page.resize(480 + 206, 270);
    QTRY_COMPARE(live.pictureSize(), QSize(480, 270));
}

void TestShowWidgetLive::stepBelowTheFitIsTakenBack()
{
    LivePage live({960, 540});
    live.page.stepLiveZoom(false);
    QCOMPARE(live.pictureSize(), QSize(960, 540));
    // The fit is still followed.
    live.page.resize(480 + 206, 270);
    QTRY_COMPARE(live.pictureSize(), QSize(480, 270));
}

void TestShowWidgetLive::stepsAreThreeHundredths()
{
    LivePage live({960, 540});
    live.page.stepLiveZoom(true);
    QCOMPARE(live.pictureSize(), QSize(1017, 572)); // 0.53: 1017.6, 572.4
    live.page.stepLiveZoom(true);
    QCOMPARE(live.pictureSize(), QSize(1075, 604)); // 0.56: 1075.2, 604.8
    live.page.stepLiveZoom(false);
    QCOMPARE(live.pictureSize(), QSize(1017, 572));
}

void TestShowWidgetLive::liveZoomEndsAtOne()
{
    LivePage live({960, 540});
    for (int step = 0; step < 40; ++step)
        live.page.stepLiveZoom(true);
    QCOMPARE(live.pictureSize(), QSize(1920, 1080));
    live.page.stepLiveZoom(false); // 0.97
    QCOMPARE(live.pictureSize(), QSize(1862, 1047));
}

void TestShowWidgetLive::fitModes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QSize>("picture");    // in an area of 480 x 540
    QTest::addColumn<QSize>("afterwards"); // when that has become 384 x 540

    QTest::newRow("window") << 0 << QSize(480, 270) << QSize(384, 216);
    QTest::newRow("width, which is the fit here") << 1 << QSize(480, 270) << QSize(384, 216);
    QTest::newRow("height") << 2 << QSize(960, 540) << QSize(960, 540);
    QTest::newRow("not at all") << 3 << QSize(1920, 1080) << QSize(1920, 1080);
    QTest::newRow("others lay out only") << 7 << QSize(537, 302) << QSize(537, 302);
}

void TestShowWidgetLive::fitModes()
{
    QFETCH(int, mode);
    LivePage live({480, 540});
    live.page.stepLiveZoom(true);
    QCOMPARE(live.pictureSize(), QSize(537, 302));
    live.page.setFitMode(mode);
    QTEST(live.pictureSize(), "picture");
    live.page.resize(384 + 206, 540);
    QTRY_COMPARE(live.area->width(), 384);
    QTEST(live.pictureSize(), "afterwards");
}

void TestShowWidgetLive::fitToAWiderAreaIsOne()
{
    LivePage live({2000, 540});
    live.page.setFitMode(1);
    QCOMPARE(live.pictureSize(), QSize(1920, 1080));
    QCOMPARE(live.video->geometry(), QRect(40, 0, 1920, 540));
    live.page.setFitMode(2);
    QCOMPARE(live.pictureSize(), QSize(960, 540));
}

void TestShowWidgetLive::fitModesOfAPicturePageDoNothing()
{
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(100, 100));
    for (int mode = 0; mode < 4; ++mode)
        shown.page.setFitMode(mode);
    QCOMPARE(shown.view->geometry(), QRect(200, 150, 100, 100));
    QCOMPARE(shown.page.zoomFactor(), 1.0);
}

void TestShowWidgetLive::zoomOfThePicturePagesDoesNothing()
{
    LivePage live({960, 540});
    live.page.setZoom(3.0);
    QCOMPARE(live.page.zoomFactor(), 1.0);
    QCOMPARE(live.pictureSize(), QSize(960, 540));
    QCOMPARE(live.view->transform(), QTransform());
}

void TestShowWidgetLive::largePictureShowsBothScrollBars()
{
    LivePage live({960, 540});
    live.page.setFitMode(3);
    // Both scroll bars act on the horizontal policy.
    QCOMPARE(live.video->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(live.video->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QTRY_VERIFY(live.video->horizontalScrollBar()->isVisible());
    QVERIFY(live.video->verticalScrollBar()->isVisible());
    QCOMPARE(live.video->geometry(), QRect(0, 0, 960, 540));
    // The view scrolls with the picture.
    live.video->verticalScrollBar()->setValue(100);
    QCOMPARE(live.view->mapTo(live.video, QPoint()), QPoint(0, -100));
}

void TestShowWidgetLive::pageWithoutRoomKeepsItsShapes()
{
    LivePage live({960, 540});
    live.drawLine({96, 54}, {192, 54});
    live.page.resize(1166, 0);
    QCoreApplication::processEvents();
    live.page.resize(1166, 540);
    QTRY_COMPARE(live.pictureSize(), QSize(960, 540));
    QCOMPARE(live.scene.items().at(0)->points().at(0)->pos(), QPointF(96, 54));
    QCOMPARE(live.scene.items().at(0)->points().at(1)->pos(), QPointF(192, 54));
}

void TestShowWidgetLive::frameFillsTheLabel()
{
    LivePage live({960, 540});
    QPixmap frame(1280, 1024); // of other proportions than asked for
    frame.fill(Qt::green);
    live.page.showFrame(&frame);
    const qreal ratio = live.page.devicePixelRatioF();
    QCOMPARE(live.video->content()->scaledFrame().size(), (QSizeF(960, 540) * ratio).toSize());
    const QImage grabbed = live.page.grab({0, 0, 960, 540}).toImage();
    QCOMPARE(grabbed.pixelColor(0, 0), QColor(Qt::green));
    QCOMPARE(grabbed.pixelColor(grabbed.width() - 1, grabbed.height() - 1), QColor(Qt::green));
}

void TestShowWidgetLive::ofManyFramesInOneTurnTheNewestIsShownLast()
{
    LivePage live({960, 540});
    const auto shown = [&live] {
        return live.video->content()->scaledFrame().toImage().pixelColor(0, 0);
    };
    for (const auto colour : {Qt::red, Qt::green, Qt::blue}) {
        const QPixmap frame = plainPicture(64, 48, colour);
        live.page.showFrame(&frame);
        QCOMPARE(shown(), QColor(Qt::red)); // at once, and no other in this turn
    }
    QCoreApplication::processEvents();
    QCOMPARE(shown(), QColor(Qt::blue));
    QCoreApplication::processEvents();
    // A later one is shown at once again.
    const QPixmap frame = plainPicture(64, 48, Qt::green);
    live.page.showFrame(&frame);
    QCOMPARE(shown(), QColor(Qt::green));
}

void TestShowWidgetLive::shapesLieOverTheFrame()
{
    LivePage live({960, 540});
    live.page.setDrawProperties({{LineColor, QColor(Qt::red)}, {LineWidth, 3}});
    live.drawLine({100, 300}, {400, 300});
    const auto colourAt = [&live](int x, int y) {
        QCoreApplication::processEvents();
        return live.page.grab({x, y, 1, 1}).toImage().pixelColor(0, 0);
    };
    for (const QColor &colour : {QColor(Qt::green), QColor(Qt::blue)}) {
        const QPixmap frame = plainPicture(1920, 1080, colour);
        live.page.showFrame(&frame);
        QCOMPARE(colourAt(150, 300), QColor(Qt::red));
        QCOMPARE(colourAt(150, 250), colour);
    }
    live.page.deleteAllItems();
    QCOMPARE(colourAt(150, 300), QColor(Qt::blue));
}

void TestShowWidgetLive::shapesAndCrosshairFollowTheZoom()
{
    LivePage live({960, 540});
    live.drawLine({100, 300}, {400, 300});
    live.page.setCrossHorCount(1);
    live.page.setFitMode(3);
    const Base *line = live.scene.items().at(0);
    QCOMPARE(line->points().at(0)->pos(), QPointF(200, 600));
    QCOMPARE(line->points().at(1)->pos(), QPointF(800, 600));
    QCOMPARE(live.scene.crossLines().at(0)->pos(), QPointF(0, 540));
    live.page.setFitMode(0);
    QCOMPARE(line->points().at(0)->pos(), QPointF(100, 300));
    QCOMPARE(live.scene.crossLines().at(0)->pos(), QPointF(0, 270));
}

void TestShowWidgetLive::readoutsAreInFramePixels()
{
    LivePage live({960, 540});
    live.drawLine({100, 300}, {400, 300});
    QCOMPARE(live.rows(), QStringList{"Line\nLen = 600px"});
    live.page.setModified(false);
    live.page.setFitMode(3);
    QCOMPARE(live.rows(), QStringList{"Line\nLen = 600px"});
}

void TestShowWidgetLive::hidingTheListRefitsThePicture()
{
    LivePage live({960, 800});
    QTest::mouseClick(live.page.findChild<QPushButton *>("pushButton"), Qt::LeftButton);
    QTRY_COMPARE(live.pictureSize().width(), 1160);
    QCOMPARE(live.pictureSize().height(), 652); // 1080 * 1160 / 1920 = 652.5
}

void TestShowWidgetLive::wheelAndMiddlePressReachTheWindow()
{
    struct Window : QWidget
    {
        void wheelEvent(QWheelEvent *) override { ++wheels; }
        void mousePressEvent(QMouseEvent *event) override { button = event->button(); }
        int wheels = 0;
        Qt::MouseButton button = Qt::NoButton;
    };
    MyCamera camera;
    QMenu menu;
    Window window;
    auto *page = new ShowWidget(&menu, true, &window);
    page->setCamera(&camera);
    window.resize(1166, 540);
    page->resize(1166, 540);
    window.show();
    page->setFitMode(3); // the area could scroll now
    auto *view = page->findChild<GraphicsView *>();
    auto *video = page->findChild<VideoWidget *>();
    const QPoint centre(480, 270);
    QWheelEvent turn(centre, view->viewport()->mapToGlobal(centre), {}, QPoint(0, -120),
                     Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&turn);
    qApp->notify(view->viewport(), &turn);
    QCOMPARE(window.wheels, 1);
    QCOMPARE(video->verticalScrollBar()->value(), 0);
    QTest::mouseClick(view->viewport(), Qt::MiddleButton, {}, centre);
    QCOMPARE(window.button, Qt::MiddleButton);
}

void TestShowWidgetLive::captureBurnsTheShapesIn()
{
    const WorkingDirectory directory;
    LivePage live({960, 540});
    live.page.setDrawProperties({{LineColor, QColor(Qt::red)}, {LineWidth, 3}});
    live.page.setScale(10.0);
    live.drawLine({100, 300}, {400, 300});
    live.page.captureTo(directory.path("shot.png"));
    emit live.camera.cappix(blackFrame());
    const QImage shot("shot.png");
    QCOMPARE(shot.size(), QSize(1920, 1080));
    QCOMPARE(shot.pixelColor(300, 600), QColor(Qt::red)); // twice as far in the frame
    QCOMPARE(shot.pixelColor(300, 500), QColor(Qt::black));
    QCOMPARE(shot.dotsPerMeterX(), 100000);
    // They stay on the page.
    QCOMPARE(live.list->count(), 1);
    QCOMPARE(live.scene.items().size(), 1);
}

void TestShowWidgetLive::withoutACalibrationACaptureCarriesNoScale()
{
    const WorkingDirectory directory;
    LivePage live({960, 540});
    live.page.captureTo(directory.path("shot.jpg"));
    emit live.camera.cappix(blackFrame());
    QCOMPARE(jfifDensity(directory.read("shot.jpg")), QByteArray("0000010001"));
}

void TestShowWidgetLive::savedViewCarriesTheScaleOfTheLiveZoom()
{
    const WorkingDirectory directory;
    LivePage live({960, 540});
    live.page.saveViewport(directory.path("view.jpg"));
    QCOMPARE(jfifDensity(directory.read("view.jpg")), QByteArray("0000010001"));
    live.page.setScale(10.0);
    live.page.saveViewport(directory.path("view.jpg"));
    // A pixel of the view shows two of the frame, 20 um: 500 a centimetre.
    QCOMPARE(jfifDensity(directory.read("view.jpg")), QByteArray("0201f401f4"));
}

void TestShowWidgetLive::laterCaptureReplacesTheEarlierPath()
{
    const WorkingDirectory directory;
    LivePage live({960, 540});
    live.page.captureTo(directory.path("first.png"));
    live.page.captureTo(directory.path("second.png"));
    emit live.camera.cappix(blackFrame());
    QVERIFY(!QFile::exists("first.png"));
    QVERIFY(QFile::exists("second.png"));
}

void TestShowWidgetLive::captureOfTheRunningCameraIsStored()
{
    const WorkingDirectory directory;
    simulatedMicroscope().attach({{"Orvane_A", "usb-1"}});
    {
        LivePage live({960, 540});
        connect(&live.camera, &MyCamera::putpix, &live.page, &ShowWidget::showFrame);
        live.camera.cameraChange(0, "usb-1");
        QTRY_VERIFY(!live.video->content()->scaledFrame().isNull());
        live.page.captureTo(directory.path("shot.jpg"));
        QTRY_VERIFY(QFile::exists("shot.jpg"));
        QCOMPARE(QImage("shot.jpg").size(), QSize(1920, 1080));
        live.camera.closeCamera();
        QVERIFY(live.camera.wait(5000));
    }
    simulatedMicroscope().attach({});
}

void TestShowWidgetLive::savingALivePageAsksForAFrameOnly()
{
    const WorkingDirectory directory;
    simulatedMicroscope().attach({{"Orvane_A", "usb-1"}});
    {
        LivePage live({960, 540});
        live.drawLine({100, 300}, {400, 300});
        QSignalSpy cappix(&live.camera, &MyCamera::cappix);
        live.camera.cameraChange(0, "usb-1");
        live.page.savePicture(directory.path("a.jpg"));
        QTRY_COMPARE(cappix.size(), 1);
        QCOMPARE(QDir().entryList(QDir::Files), QStringList()); // no path was given for captures
        QCOMPARE(live.list->count(), 1);
        live.camera.closeCamera();
        QVERIFY(live.camera.wait(5000));
    }
    simulatedMicroscope().attach({});
}

void TestShowWidgetLive::crosshairOfTheLivePageSurvives()
{
    const WorkingDirectory directory;
    {
        LivePage live({960, 540});
        live.page.setCrossVerCount(1);
        live.scene.crossLines().at(0)->setPos(300, 0);
        live.page.saveCross();
    }
    LivePage live({960, 540});
    live.page.loadCross();
    QCOMPARE(live.page.crossVerCount(), 1);
    QCOMPARE(live.page.crossHorCount(), 0);
    QCOMPARE(live.scene.crossLines().at(0)->pos(), QPointF(300, 0));
}

QTEST_MAIN(TestShowWidgetLive)
#include "test_showwidget_live.moc"
