#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "tests/support/shownpage.h"
#include "tests/support/system.h"
#include "workbench/pictureview.h"

#include <QBackingStore>
#include <QScrollBar>
#include <QtTest>

#include <functional>

namespace {

/// A finished thing on the page that counts its paints.
class CountingItem : public QGraphicsRectItem
{
public:
    using QGraphicsRectItem::QGraphicsRectItem;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override
    {
        ++paints;
        QGraphicsRectItem::paint(painter, option, widget);
    }
    int paints = 0;
};

/// A patterned picture, so that a layer in a wrong place shows.
QPixmap pattern(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 5 % 256, y * 7 % 256, (x + y) % 256));
    }
    return QPixmap::fromImage(image);
}

/// The largest difference of two pictures in any channel.
int difference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return 255;
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor first = a.pixelColor(x, y);
            const QColor second = b.pixelColor(x, y);
            largest = std::max({largest, std::abs(first.red() - second.red()),
                                std::abs(first.green() - second.green()),
                                std::abs(first.blue() - second.blue())});
        }
    }
    return largest;
}

/// A page on the screen with finished shapes on it and a circle under construction among them.
class PageAtWork : public ShownPage
{
public:
    PageAtWork()
    {
        page.setDrawProperties({{PointWidth, 2},
                                {PointColor, QColor(Qt::yellow)},
                                {LineWidth, 3},
                                {LineColor, QColor(0, 0, 255)},
                                {TextSize, 16},
                                {TextColor, QColor(200, 30, 30)},
                                {Antialiasing, true}});
        page.setPicture(pattern(500, 400));
        page.show();
        settle();
        drawLine({60, 60}, {160, 110});
        drawLine({100, 150}, {220, 60});
        drawLine({240, 200}, {320, 160});
    }

    void beginCircle()
    {
        page.setDrawType(9);
        mouse.click({{80, 80}, {140, 60}});
        mouse.move({150, 120});
        settle();
    }

    void settle()
    {
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }

    /// What stands on the screen.
    QImage shot()
    {
        settle();
        const QPoint corner = view->viewport()->mapTo(&page, QPoint());
        const qreal ratio = page.devicePixelRatioF();
        QImage window = *dynamic_cast<QImage *>(page.backingStore()->paintDevice());
        window.setDevicePixelRatio(1.0);
        return window
            .copy(QRect(corner * ratio, (QSizeF(view->viewport()->size()) * ratio).toSize()))
            .convertToFormat(QImage::Format_RGB32);
    }

    /// The same by the toolkit's own painting.
    QImage plainShot()
    {
        GraphicsView plain;
        plain.setFrameShape(QFrame::NoFrame);
        plain.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        plain.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        plain.resize(view->viewport()->size());
        plain.setRenderHints(view->renderHints());
        plain.setScene(&scene);
        plain.setTransform(view->transform());
        plain.horizontalScrollBar()->setValue(view->horizontalScrollBar()->value());
        plain.verticalScrollBar()->setValue(view->verticalScrollBar()->value());
        const bool hidden = scene.isCurrentHidden();
        scene.setCurrentHidden(false);
        const QImage image = plain.grab().toImage().convertToFormat(QImage::Format_RGB32);
        scene.setCurrentHidden(hidden);
        return image;
    }
};

// An edge that is smoothed in parts, or in a layer first, is rounded differently. Windows corrects
// the brightness of text on opaque ground alone.
const int rounding = onWindows() ? 64 : 8;

/// How far the screen is from what it shows when all of it is painted anew.
int leftBehind(PageAtWork &at)
{
    const QImage shot = at.shot();
    at.view->viewport()->update();
    return difference(shot, at.shot());
}

using Change = std::function<void(PageAtWork &)>;

} // namespace

Q_DECLARE_METATYPE(Change)

class TestPictureView : public QObject
{
    Q_OBJECT

private slots:
    void showsWhatThePlainViewShows_data();
    void showsWhatThePlainViewShows();
    void aMovePaintsTheShapeUnderConstructionAlone();
    void handlesOfFinishedShapesLieOverTheShapeUnderConstruction();
    void theShapeUnderConstructionIsPartOfASavedView();
    void aFinishedShapeIsPaintedByTheScene();
    void aPageWithoutAPictureShowsTheShapeUnderConstruction();
    void aDragLeavesNothingBehind_data();
    void aDragLeavesNothingBehind();
};

void TestPictureView::showsWhatThePlainViewShows_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, const Change &change) { QTest::newRow(name) << change; };
    row("as it was", [](PageAtWork &) {});
    row("moved", [](PageAtWork &at) { at.mouse.move({220, 150}); });
    row("label moved by half a pixel", [](PageAtWork &at) {
        at.page.setDrawType(1);
        at.mouse.click(QPointF(100, 120));
        at.mouse.move({300, 120});
        at.settle();
        at.mouse.move({301, 120});
    });
    row("rectangle", [](PageAtWork &at) {
        at.page.setDrawType(7);
        at.mouse.click(QPointF(100, 120));
        at.mouse.move({300, 220});
        at.settle();
        at.mouse.move({300, 221});
    });
    row("moved far away", [](PageAtWork &at) { at.mouse.move({480, 390}); });
    row("moved twice", [](PageAtWork &at) {
        at.mouse.move({30, 30});
        at.settle();
        at.mouse.move({170, 130});
    });
    row("finished", [](PageAtWork &at) { at.mouse.click(QPointF(150, 120)); });
    row("finished and the next begun", [](PageAtWork &at) {
        at.mouse.click({{150, 120}, {200, 200}});
        at.mouse.move({260, 230});
    });
    row("given up", [](PageAtWork &at) { at.mouse.click({150, 120}, Qt::RightButton); });
    row("given up for another tool", [](PageAtWork &at) { at.page.setDrawType(7); });
    row("colour", [](PageAtWork &at) { at.page.setDrawProperty(LineColor, QColor(Qt::green)); });
    row("text size", [](PageAtWork &at) { at.page.setDrawProperty(TextSize, 28); });
    row("handles", [](PageAtWork &at) { at.page.setDrawProperty(PointColor, QColor(Qt::red)); });
    row("unit", [](PageAtWork &at) { at.page.setUnit(4); });
    row("unit and a move", [](PageAtWork &at) {
        at.page.setUnit(4);
        at.mouse.move({130, 100});
    });
    row("calibration", [](PageAtWork &at) {
        at.page.setUnit(4);
        at.settle();
        at.page.setScale(2.5);
    });
    row("shape deleted", [](PageAtWork &at) {
        at.list->setCurrentRow(1);
        at.page.deleteCurrentItem();
    });
    row("all deleted", [](PageAtWork &at) { at.page.deleteAllItems(); });
    row("undone", [](PageAtWork &at) { at.page.undoLastItem(); });
    row("shapes loaded", [](PageAtWork &at) {
        at.scene.loadJson(R"([{"type":7,"point":[{"x":90,"y":70},{"x":180,"y":130}]}])");
    });
    row("label edited", [](PageAtWork &at) { at.page.setItemText("crack"); });
    row("selected", [](PageAtWork &at) { at.scene.items()[0]->points()[0]->setSelected(true); });
    row("zoomed in", [](PageAtWork &at) { at.page.setZoom(2.0); });
    row("zoomed in and moved", [](PageAtWork &at) {
        at.page.setZoom(2.0);
        at.settle();
        at.mouse.move({120, 100});
    });
    row("scrolled", [](PageAtWork &at) {
        at.page.setZoom(2.0);
        at.settle();
        at.view->horizontalScrollBar()->setValue(40);
        at.view->verticalScrollBar()->setValue(30);
    });
    row("zoomed out", [](PageAtWork &at) { at.page.setZoom(0.6); });
    row("resized", [](PageAtWork &at) { at.page.resize(500, 300); });
    row("another picture", [](PageAtWork &at) { at.page.setPicture(plainPicture(500, 400)); });
    // A little of it: the plain view has no grid behind its picture.
    row("a picture that lets the page through", [](PageAtWork &at) {
        QPixmap picture(500, 400);
        picture.fill(QColor(0, 200, 0, 220));
        at.page.setPicture(picture);
    });
    row("edges not smoothed", [](PageAtWork &at) { at.page.setDrawProperty(Antialiasing, false); });
    row("language", [](PageAtWork &at) { at.page.retranslate(); });
}

void TestPictureView::showsWhatThePlainViewShows()
{
    QFETCH(Change, change);
    PageAtWork at;
    at.beginCircle();
    // The layers are in use before the change and after it.
    at.mouse.move({145, 115});
    at.settle();
    change(at);
    const QImage shot = at.shot();
    const QImage plain = at.plainShot();
    const int found = difference(shot, plain);
    QVERIFY2(found <= rounding, qPrintable(QString("differs by %1").arg(found)));
}

void TestPictureView::aMovePaintsTheShapeUnderConstructionAlone()
{
    PageAtWork at;
    auto *item = new CountingItem(70, 70, 60, 30); // where the circle lies
    at.scene.addItem(item);
    at.beginCircle();
    const int before = item->paints;
    QVERIFY(before > 0);
    for (int i = 0; i < 10; ++i) {
        at.mouse.move(QPointF(150 + i, 120));
        at.settle();
    }
    QCOMPARE(item->paints, before);
    // Neither does a click that adds a handle.
    at.mouse.move({150, 130});
    at.page.setDrawType(12);
    at.mouse.click({{80, 80}, {140, 60}});
    at.settle();
    const int begun = item->paints;
    at.mouse.click(QPointF(150, 120));
    at.mouse.move({200, 120});
    at.settle();
    QCOMPARE(item->paints, begun);
    item->setBrush(Qt::cyan);
    at.settle();
    QVERIFY(item->paints > begun);
    QVERIFY(difference(at.shot(), at.plainShot()) <= rounding);
}

void TestPictureView::handlesOfFinishedShapesLieOverTheShapeUnderConstruction()
{
    PageAtWork at;
    // Thick yellow over blue: the handle at (160, 110) of the first line.
    at.page.setDrawProperty(PointWidth, 3);
    at.page.setDrawType(1);
    at.mouse.click(QPointF(100, 117));
    at.mouse.move({300, 117});
    at.settle();
    at.mouse.move({301, 117});
    const QImage shot = at.shot();
    QVERIFY(difference(shot, at.plainShot()) <= rounding);
    const QPoint onBoth =
        at.view->mapFromScene(QPointF(160, 118)) * at.view->viewport()->devicePixelRatioF();
    QVERIFY(shot.pixelColor(onBoth).red() > 200);
}

void TestPictureView::theShapeUnderConstructionIsPartOfASavedView()
{
    PageAtWork at;
    at.beginCircle();
    const QImage shot = at.shot();
    QVERIFY(difference(at.view->viewport()->grab().toImage(), shot) <= rounding);
}

void TestPictureView::aFinishedShapeIsPaintedByTheScene()
{
    PageAtWork at;
    at.beginCircle();
    QVERIFY(!at.scene.current()->item()->isVisible());
    at.mouse.click(QPointF(150, 120));
    const Base *circle = at.scene.items().last();
    QVERIFY(circle->item()->isVisible());
    QVERIFY(circle->text()->isVisible());
    for (const GraphicsPoint *point : circle->points())
        QVERIFY(point->isVisible());
    QCOMPARE(at.view->viewportUpdateMode(), QGraphicsView::MinimalViewportUpdate);
}

void TestPictureView::aPageWithoutAPictureShowsTheShapeUnderConstruction()
{
    ShownPage at;
    at.page.setDrawProperties({{LineWidth, 3}, {LineColor, QColor(Qt::red)}});
    at.page.show();
    QCoreApplication::processEvents();
    at.page.setDrawType(1);
    at.mouse.click(QPointF(20, 50));
    at.mouse.move({220, 50});
    QCoreApplication::processEvents();
    at.mouse.move({200, 50});
    QCoreApplication::processEvents();
    const QImage image = at.view->viewport()->grab().toImage();
    const QPoint onTheLine = at.view->mapFromScene(QPointF(100, 50)) * image.devicePixelRatio();
    QCOMPARE(image.pixelColor(onTheLine), QColor(Qt::red));
}

void TestPictureView::aDragLeavesNothingBehind_data()
{
    QTest::addColumn<double>("zoom");
    QTest::addColumn<QString>("grip");
    for (const double zoom : {0.75, 1.0, 1.5, 2.0}) {
        for (const char *grip : {"label", "shape", "handle"})
            QTest::addRow("%s at %g", grip, zoom) << zoom << grip;
    }
}

void TestPictureView::aDragLeavesNothingBehind()
{
    QFETCH(double, zoom);
    QFETCH(QString, grip);
    PageAtWork at;
    at.page.setZoom(zoom);
    at.view->horizontalScrollBar()->setValue(0);
    at.view->verticalScrollBar()->setValue(0);
    at.beginCircle();
    at.page.setDrawType(0); // gives it up
    at.settle();
    const Base &line = *at.scene.items().constLast();
    const QPointF handle = line.points().constFirst()->pos();
    QPointF from = handle;
    if (grip == "label")
        from = line.text()->pos() + QPointF(12, 10);
    else if (grip == "shape")
        from = line.item()->sceneBoundingRect().center();
    const QGraphicsItem *moving =
        grip == "label" ? static_cast<QGraphicsItem *>(line.text()) : line.points().constFirst();
    const QPointF before = moving->pos();
    const QPointF shift(22.4, -13.7);
    at.mouse.press(from);
    at.settle();
    for (int step = 1; step <= 4; ++step) {
        at.mouse.move(from + shift * step);
        const int left = leftBehind(at);
        QVERIFY2(left <= rounding, qPrintable(QString("step %1: %2").arg(step).arg(left)));
    }
    QVERIFY(moving->pos() != before);
    at.mouse.release(from + shift * 4);
    at.page.setDrawType(1);
    at.page.setDrawType(0);
    QVERIFY(leftBehind(at) <= rounding);
}

QTEST_MAIN(TestPictureView)
#include "test_pictureview.moc"
