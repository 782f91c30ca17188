#include "tests/support/system.h"
#include "workbench/graphicsview.h"
#include "workbench/videowidget.h"

#include <QGraphicsRectItem>
#include <QPainter>
#include <QScrollBar>
#include <QtTest>

/// The area under the live picture and the two kinds of view that lie over pictures.
class TestVideoWidget : public QObject
{
    Q_OBJECT

private slots:
    void contentSizeDecidesTheScrollBars_data();
    void contentSizeDecidesTheScrollBars();
    void hiddenAreaKeepsBothPolicies();
    void frameIsStretchedNeverLetterboxed();
    void labelOfNoSizePaintsNothingUntilTheNextFrame();
    void frameKeepsItsSizeWhenTheLabelGrows();
    void frameIsScaledInDevicePixels();
    void frameOfAsManyPixelsIsShownUnchanged();
    void frameOfTheLabelsSizeIsNotCopied();
    void everyFrameIsPainted();
    void nothingBehindAFrameIsPainted();
    void wheelOverAScrollableAreaReachesTheWindow();
    void middlePressReachesTheWindow();
    void leftPressOnTheViewStaysThere();
    void keysStayWithTheView();

    void overlayLetsThePictureThrough();
    void overlayPaintsWhatAPlainViewPaints_data();
    void overlayPaintsWhatAPlainViewPaints();
    void framesPaintNoItem();
    void aChangePaintsTheTouchedItemsOnly();
    void manyChangesAtOncePaintAll();
    void overlayFollowsItsSizeAndHints();
};

namespace {

/// Counts how often it is painted.
class CountingItem : public QGraphicsRectItem
{
public:
    using QGraphicsRectItem::QGraphicsRectItem;

    int paints = 0;

protected:
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override
    {
        ++paints;
        QGraphicsRectItem::paint(painter, option, widget);
    }
};

/// Stands for the window: records what reaches it.
class Window : public QWidget
{
public:
    int wheels = 0;
    QList<Qt::MouseButton> presses;

protected:
    void wheelEvent(QWheelEvent *) override { ++wheels; }
    void mousePressEvent(QMouseEvent *event) override { presses << event->button(); }
};

/// Counts how often a widget is painted.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) { widget->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

/// A live picture of 120 x 80 in red with a view over it.
class LivePicture
{
public:
    LivePicture()
    {
        window.resize(120, 80);
        video = new VideoWidget(&window);
        video->setGeometry(0, 0, 120, 80);
        view = new OverlayView(video->content());
        view->setStyleSheet("border: none; background: transparent;");
        view->setGeometry(0, 0, 120, 80);
        QObject::connect(&scene, &QGraphicsScene::changed, view, &OverlayView::sceneChanged);
        view->setScene(&scene);
        scene.setSceneRect(0, 0, 120, 80);
        video->setContentSize(120, 80);
        window.show();
        showFrame(Qt::red);
    }

    void showFrame(const QColor &colour)
    {
        QPixmap frame(240, 160);
        frame.fill(colour);
        video->setPixmap(frame);
        QTest::qWait(0); // the scene announces its changes on the next turn
        QCoreApplication::processEvents();
    }

    CountingItem *addItem(const QRectF &rect, const QColor &colour)
    {
        auto *item = new CountingItem(rect);
        item->setBrush(colour);
        item->setPen(Qt::NoPen);
        scene.addItem(item);
        return item;
    }

    QColor colourAt(int x, int y)
    {
        const QImage image = window.grab().toImage();
        const qreal ratio = image.devicePixelRatio();
        return image.pixelColor(int(x * ratio), int(y * ratio));
    }

    QGraphicsScene scene;
    Window window;
    VideoWidget *video;
    OverlayView *view;
};

void sendWheel(QWidget *widget)
{
    const QPoint centre = widget->rect().center();
    QWheelEvent event(centre, widget->mapToGlobal(centre), {}, QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget, &event); // as from the operator, who turns it once for all widgets above
}

} // namespace

void TestVideoWidget::contentSizeDecidesTheScrollBars_data()
{
    QTest::addColumn<QSize>("content");
    QTest::addColumn<Qt::ScrollBarPolicy>("horizontal");
    QTest::addColumn<Qt::ScrollBarPolicy>("vertical");
    QTest::addColumn<bool>("horizontalShows");
    QTest::addColumn<bool>("verticalShows");

    QTest::newRow("content as large as the area")
        << QSize(300, 200) << Qt::ScrollBarAlwaysOff << Qt::ScrollBarAlwaysOff << false << false;
    QTest::newRow("a wide one") << QSize(400, 150) << Qt::ScrollBarAsNeeded
                                << Qt::ScrollBarAlwaysOff << true << false;
    QTest::newRow("a high one relaxes the horizontal policy and keeps the vertical one")
        << QSize(200, 400) << Qt::ScrollBarAsNeeded << Qt::ScrollBarAlwaysOn << false << true;
    QTest::newRow("one larger in both directions")
        << QSize(400, 400) << Qt::ScrollBarAsNeeded << Qt::ScrollBarAlwaysOn << true << true;
}

void TestVideoWidget::contentSizeDecidesTheScrollBars()
{
    QFETCH(QSize, content);
    VideoWidget video;
    video.resize(300, 200);
    video.show();
    video.setContentSize(content.width(), content.height());
    QTEST(video.horizontalScrollBarPolicy(), "horizontal");
    QTEST(video.verticalScrollBarPolicy(), "vertical");
    QCOMPARE(video.content()->size(), content);
    QFETCH(bool, horizontalShows);
    QFETCH(bool, verticalShows);
    QTRY_COMPARE(video.horizontalScrollBar()->isVisible(), horizontalShows);
    QCOMPARE(video.verticalScrollBar()->isVisible(), verticalShows);
}

void TestVideoWidget::hiddenAreaKeepsBothPolicies()
{
    VideoWidget video;
    video.resize(300, 200);
    video.setContentSize(400, 400);
    QCOMPARE(video.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QCOMPARE(video.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
}

void TestVideoWidget::frameIsStretchedNeverLetterboxed()
{
    QImage frame(2, 1, QImage::Format_RGB32);
    frame.setPixelColor(0, 0, Qt::red);
    frame.setPixelColor(1, 0, Qt::blue);
    VideoWidget video;
    video.resize(40, 60);
    video.setContentSize(40, 60);
    video.setPixmap(QPixmap::fromImage(frame));
    const QImage shown = video.content()->scaledFrame().toImage();
    const int right = shown.width() - 1;
    const int bottom = shown.height() - 1;
    QCOMPARE(shown.pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(0, bottom), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(right, 0), QColor(Qt::blue));
    QCOMPARE(shown.pixelColor(right, bottom), QColor(Qt::blue));
}

void TestVideoWidget::labelOfNoSizePaintsNothingUntilTheNextFrame()
{
    QPixmap frame(20, 10);
    frame.fill(Qt::red);
    VideoWidget video;
    video.resize(20, 10);
    video.show();
    video.setContentSize(0, 0);
    video.setPixmap(frame);
    QVERIFY(video.content()->scaledFrame().isNull());
    video.setContentSize(20, 10);
    QVERIFY(video.grab().toImage().pixelColor(10, 5) != QColor(Qt::red));
    video.setPixmap(frame);
    QCOMPARE(video.grab().toImage().pixelColor(10, 5), QColor(Qt::red));
}

void TestVideoWidget::frameKeepsItsSizeWhenTheLabelGrows()
{
    QPixmap frame(20, 10);
    frame.fill(Qt::red);
    ShowLabel label;
    label.resize(20, 10);
    label.setPixmap(frame);
    label.resize(40, 20);
    const QImage shown = label.grab().toImage();
    QCOMPARE(shown.pixelColor(0, 0), QColor(Qt::red));
    QVERIFY(shown.pixelColor(shown.width() - 1, shown.height() - 1) != QColor(Qt::red));
}

void TestVideoWidget::frameIsScaledInDevicePixels()
{
    const QMap<qreal, QSize> sizes{{1.0, {100, 60}}, {1.5, {150, 90}}, {2.0, {200, 120}}};
    QPixmap frame(200, 120);
    frame.fill(Qt::red);
    ShowLabel label;
    label.resize(100, 60);
    label.setPixmap(frame);
    const qreal ratio = label.devicePixelRatioF();
    QVERIFY(sizes.contains(ratio));
    QCOMPARE(label.scaledFrame().size(), sizes.value(ratio));
    QCOMPARE(label.scaledFrame().devicePixelRatio(), ratio);
}

void TestVideoWidget::frameOfAsManyPixelsIsShownUnchanged()
{
    ShowLabel label;
    label.resize(40, 20);
    QImage frame(QSizeF(label.size() * label.devicePixelRatioF()).toSize(), QImage::Format_RGB32);
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            frame.setPixelColor(x, y, QColor(x, y, (x + y) % 2 * 255));
    }
    label.setPixmap(QPixmap::fromImage(frame));
    QImage shown = label.grab().toImage().convertToFormat(QImage::Format_RGB32);
    shown.setDevicePixelRatio(1.0);
    QCOMPARE(shown, frame);
}

void TestVideoWidget::frameOfTheLabelsSizeIsNotCopied()
{
    ShowLabel label;
    label.resize(40, 20);
    QPixmap frame(QSizeF(label.size() * label.devicePixelRatioF()).toSize());
    frame.setDevicePixelRatio(label.devicePixelRatioF());
    label.setPixmap(frame);
    QCOMPARE(label.scaledFrame().cacheKey(), frame.cacheKey());
}

void TestVideoWidget::everyFrameIsPainted()
{
    LivePicture live;
    PaintCounter paints(live.video->content());
    for (int frame = 1; frame <= 3; ++frame) {
        live.showFrame(Qt::blue);
        QCOMPARE(paints.count, frame);
    }
}

void TestVideoWidget::nothingBehindAFrameIsPainted()
{
    ShowLabel label;
    label.resize(40, 20);
    QVERIFY(!label.testAttribute(Qt::WA_OpaquePaintEvent));
    QPixmap frame(80, 60);
    frame.fill(Qt::red);
    label.setPixmap(frame);
    QVERIFY(label.testAttribute(Qt::WA_OpaquePaintEvent));
    // The frame keeps its size until the next one.
    label.resize(50, 20);
    label.grab();
    QVERIFY(!label.testAttribute(Qt::WA_OpaquePaintEvent));
    label.setPixmap(frame);
    QVERIFY(label.testAttribute(Qt::WA_OpaquePaintEvent));
    frame.fill(Qt::transparent);
    label.setPixmap(frame);
    QVERIFY(!label.testAttribute(Qt::WA_OpaquePaintEvent));
    label.setPixmap(QPixmap());
    QVERIFY(!label.testAttribute(Qt::WA_OpaquePaintEvent));
}

void TestVideoWidget::wheelOverAScrollableAreaReachesTheWindow()
{
    LivePicture live;
    live.video->setContentSize(400, 400);
    live.view->setGeometry(0, 0, 400, 400);
    sendWheel(live.view->viewport());
    QCOMPARE(live.window.wheels, 1);
    QCOMPARE(live.video->verticalScrollBar()->value(), 0);
}

void TestVideoWidget::middlePressReachesTheWindow()
{
    LivePicture live;
    // Something movable takes any button otherwise.
    live.addItem({0, 0, 120, 80}, Qt::green)->setFlag(QGraphicsItem::ItemIsMovable);
    QTest::mouseClick(live.view->viewport(), Qt::MiddleButton);
    QCOMPARE(live.window.presses, QList<Qt::MouseButton>{Qt::MiddleButton});
    // The second press of a double click counts like any other.
    QTest::mouseDClick(live.view->viewport(), Qt::MiddleButton);
    QCOMPARE(live.window.presses.size(), 2);
}

void TestVideoWidget::leftPressOnTheViewStaysThere()
{
    LivePicture live;
    live.addItem({0, 0, 120, 80}, Qt::green)->setFlag(QGraphicsItem::ItemIsMovable);
    QTest::mouseClick(live.view->viewport(), Qt::LeftButton);
    QVERIFY(live.window.presses.isEmpty());
}

void TestVideoWidget::keysStayWithTheView()
{
    const LivePicture live;
    QCOMPARE(live.video->focusPolicy(), Qt::NoFocus);
    QVERIFY(live.view->focusPolicy() & Qt::ClickFocus);
}

void TestVideoWidget::overlayLetsThePictureThrough()
{
    LivePicture live;
    live.addItem({10, 10, 20, 20}, Qt::green);
    live.showFrame(Qt::blue);
    QCOMPARE(live.colourAt(20, 20), QColor(Qt::green));
    QCOMPARE(live.colourAt(60, 40), QColor(Qt::blue));
    live.showFrame(Qt::yellow);
    QCOMPARE(live.colourAt(20, 20), QColor(Qt::green));
    QCOMPARE(live.colourAt(60, 40), QColor(Qt::yellow));
}

void TestVideoWidget::overlayPaintsWhatAPlainViewPaints_data()
{
    QTest::addColumn<int>("step");
    QTest::newRow("as it was") << 0;
    QTest::newRow("moved") << 1;
    QTest::newRow("hidden") << 2;
    QTest::newRow("removed") << 3;
    QTest::newRow("recoloured") << 4;
    QTest::newRow("with antialiasing") << 5;
    QTest::newRow("raised") << 6;
    QTest::newRow("translucent") << 7;
}

void TestVideoWidget::overlayPaintsWhatAPlainViewPaints()
{
    QFETCH(int, step);
    LivePicture live;
    live.scene.addEllipse(30, 10, 61, 43, QPen(Qt::green, 3));
    // Windows corrects the brightness of text on opaque ground alone.
    if (!onWindows())
        live.scene.addText("Len = 100px")->setPos(20, 30);
    CountingItem *item = live.addItem({50, 20, 30, 30}, Qt::cyan);
    item->setZValue(-1);
    live.showFrame(Qt::blue);
    switch (step) {
    case 1:
        item->setPos(-20.5, 13);
        break;
    case 2:
        item->hide();
        break;
    case 3:
        delete item;
        break;
    case 4:
        item->setBrush(Qt::magenta);
        break;
    case 5:
        live.view->setRenderHint(QPainter::Antialiasing);
        break;
    case 6:
        item->setZValue(1);
        break;
    case 7:
        item->setOpacity(0.5);
        break;
    default:
        break;
    }
    live.showFrame(Qt::blue);
    const QImage cached = live.window.grab().toImage();

    // The same again with the toolkit's own painting.
    GraphicsView plain(live.video->content());
    plain.setStyleSheet("border: none; background: transparent;");
    plain.setGeometry(0, 0, 120, 80);
    plain.setRenderHints(live.view->renderHints());
    plain.setScene(&live.scene);
    live.view->hide();
    plain.show();
    QCOMPARE(cached, live.window.grab().toImage());
}

void TestVideoWidget::framesPaintNoItem()
{
    LivePicture live;
    CountingItem *item = live.addItem({10, 10, 20, 20}, Qt::green);
    live.showFrame(Qt::blue);
    const int before = item->paints;
    QVERIFY(before > 0);
    for (int frame = 0; frame < 10; ++frame)
        live.showFrame(Qt::yellow);
    QCOMPARE(item->paints, before);
}

void TestVideoWidget::aChangePaintsTheTouchedItemsOnly()
{
    LivePicture live;
    CountingItem *moved = live.addItem({10, 10, 20, 20}, Qt::green);
    CountingItem *far = live.addItem({80, 50, 20, 20}, Qt::green);
    live.showFrame(Qt::blue);
    const int movedBefore = moved->paints;
    const int farBefore = far->paints;
    moved->setPos(5, 5);
    live.showFrame(Qt::blue);
    QVERIFY(moved->paints > movedBefore);
    QCOMPARE(far->paints, farBefore);
}

void TestVideoWidget::manyChangesAtOncePaintAll()
{
    LivePicture live;
    QList<CountingItem *> items;
    for (int i = 0; i < 100; ++i)
        items << live.addItem({double(i), 0, 1, 5}, Qt::green);
    live.showFrame(Qt::blue);
    for (CountingItem *item : qAsConst(items))
        item->setPos(0, 40);
    live.showFrame(Qt::blue);
    for (int x = 0; x < 100; ++x) {
        QCOMPARE(live.colourAt(x, 2), QColor(Qt::blue));
        QCOMPARE(live.colourAt(x, 42), QColor(Qt::green));
    }
}

void TestVideoWidget::overlayFollowsItsSizeAndHints()
{
    LivePicture live;
    live.window.resize(300, 200);
    live.addItem({150, 100, 20, 20}, Qt::green);
    live.video->setGeometry(0, 0, 240, 160);
    live.video->setContentSize(240, 160);
    live.view->setGeometry(0, 0, 240, 160);
    live.scene.setSceneRect(0, 0, 240, 160);
    live.showFrame(Qt::blue);
    QCOMPARE(live.colourAt(160, 110), QColor(Qt::green));
    QCOMPARE(live.colourAt(200, 110), QColor(Qt::blue));
}

QTEST_MAIN(TestVideoWidget)
#include "test_videowidget.moc"
