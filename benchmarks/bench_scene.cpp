// Measuring on a page full of shapes, against the same work on an empty or smaller page in the same
// run: a mouse move while a shape is placed, the burn-in, opening a document of shapes.

#include "measure/mainscene.h"
#include "workbench/showwidget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QGraphicsView>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

constexpr int pageWidth = 4000;
constexpr int pageHeight = 3000;

double processorSeconds() { return double(std::clock()) / CLOCKS_PER_SEC; }

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

const DrawProperties &properties()
{
    static const DrawProperties values{{PointWidth, 1},     {PointColor, QColor(Qt::red)},
                                       {LineWidth, 2},      {LineColor, QColor(Qt::blue)},
                                       {TextSize, 20},      {TextColor, QColor(Qt::red)},
                                       {Antialiasing, true}};
    return values;
}

enum class Ground { Covered, Free };

/// A document of shapes of all fourteen kinds, each some 60 pixels wide, spread over the page, but
/// on request not where the benchmark draws.
QByteArray document(int count, Ground ground)
{
    const int types[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 14, 15};
    const int handles[] = {2, 2, 2, 3, 3, 4, 2, 3, 3, 3, 5, 4, 6, 2};
    const QPointF places[] = {{0, 20}, {30, 0}, {60, 25}, {40, 60}, {20, 45}, {55, 50}};
    const int columns = 40;
    const int rows = (count + columns - 1) / columns;
    QByteArray json = "[";
    for (int i = 0; i < count; ++i) {
        const QPointF corner(20 + (i % columns) * (pageWidth - 40.0) / columns,
                             20 + (i / columns) * (pageHeight - 120.0) / rows);
        const QRectF freeGround(500, 150, 700, 600);
        if (ground == Ground::Free && freeGround.contains(corner))
            continue;
        QByteArray points;
        for (int k = 0; k < handles[i % 14]; ++k) {
            const QPointF place = corner + places[k];
            points += QString("{\"x\":%1,\"y\":%2},").arg(place.x()).arg(place.y()).toUtf8();
        }
        points.chop(1);
        json += "{\"text\":\"note\",\"type\":" + QByteArray::number(types[i % 14]) +
                ",\"point\":[" + points + "]},";
    }
    if (count > 0)
        json.chop(1);
    return json + "]";
}

/// A picture page of the program.
class Page
{
public:
    explicit Page(int shapes, Ground ground = Ground::Covered)
    {
        QPixmap picture(pageWidth, pageHeight);
        picture.fill(QColor(120, 130, 140));
        page.setDrawProperties(properties());
        page.setScale(1.0);
        page.setUnit(1);
        page.setPicture(picture);
        page.resize(1800, 900);
        page.show();
        QApplication::processEvents();
        if (shapes > 0)
            load(shapes, ground);
        settle();
    }

    void load(int shapes, Ground ground = Ground::Covered)
    {
        scene.loadJson(document(shapes, ground));
    }

    void settle()
    {
        for (int i = 0; i < 5; ++i)
            QApplication::processEvents();
    }

    /// A mouse move over the view and the painting that follows.
    void moveTo(QPoint place)
    {
        QMouseEvent move(QEvent::MouseMove, place, view->viewport()->mapToGlobal(place),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &move);
        QApplication::processEvents();
    }

    void press(QPoint place)
    {
        QMouseEvent press(QEvent::MouseButtonPress, place, view->viewport()->mapToGlobal(place),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &press);
    }

private:
    QMenu menu;
    ShowWidget page{&menu, false};

public:
    QGraphicsView *const view = page.findChild<QGraphicsView *>();
    MainScene &scene = *static_cast<MainScene *>(view->scene());
};

/// Processor time of a mouse move, in seconds.
double moveSeconds(Page &page)
{
    constexpr int moves = 200;
    page.scene.setDrawType(0);
    page.scene.setDrawType(9);
    page.press({800, 400});
    page.moveTo({860, 400});
    page.press({860, 400});
    const double begin = processorSeconds();
    for (int i = 0; i < moves; ++i)
        page.moveTo({830 + i % 20, 450 - i % 15});
    return (processorSeconds() - begin) / moves;
}

void benchMoves(Ground ground)
{
    Page empty(0);
    Page full(1000, ground);
    std::vector<double> base;
    std::vector<double> loaded;
    for (int round = 0; round < 25; ++round) {
        base.push_back(moveSeconds(empty));
        loaded.push_back(moveSeconds(full));
    }
    std::printf("mouse move while placing %s: empty page %.0f us, %d shapes %.0f us, ratio %.2f   "
                "wanted: at most 1.3\n",
                ground == Ground::Free ? "on free ground" : "among shapes", median(base) * 1e6,
                full.scene.items().size(), median(loaded) * 1e6, median(loaded) / median(base));
}

double burnInSeconds(const MainScene &scene)
{
    QImage picture(pageWidth, pageHeight, QImage::Format_RGB32);
    picture.fill(Qt::white);
    const double begin = processorSeconds();
    scene.renderItems(&picture);
    return processorSeconds() - begin;
}

void benchBurnIn()
{
    Page quarter(250);
    Page whole(1000);
    std::vector<double> base;
    std::vector<double> loaded;
    for (int round = 0; round < 15; ++round) {
        base.push_back(burnInSeconds(quarter.scene));
        loaded.push_back(burnInSeconds(whole.scene));
    }
    std::printf("burn-in into 4000 x 3000: 250 shapes %.1f ms, 1000 shapes %.1f ms, ratio %.2f   "
                "wanted: 4\n",
                median(base) * 1e3, median(loaded) * 1e3, median(loaded) / median(base));
}

struct Opening
{
    double seconds;
    double longestGap; ///< between two turns of a timer of the window
};

Opening open(int shapes)
{
    Page page(0);
    QTimer heartbeat;
    QElapsedTimer sinceBeat;
    double longest = 0;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceBeat.nsecsElapsed() * 1e-9);
        sinceBeat.start();
    });
    heartbeat.start(0);
    sinceBeat.start();
    const double begin = processorSeconds();
    page.load(shapes);
    page.settle();
    return {processorSeconds() - begin, longest};
}

void benchOpening()
{
    std::vector<double> base;
    std::vector<double> loaded;
    double longest = 0;
    for (int round = 0; round < 5; ++round) {
        base.push_back(open(1250).seconds);
        const Opening opening = open(5000);
        loaded.push_back(opening.seconds);
        longest = std::max(longest, opening.longestGap);
    }
    std::printf("opening shapes: 1250 in %.0f ms, 5000 in %.0f ms, ratio %.2f   wanted: 4; "
                "longest wait of the window %.0f ms\n",
                median(base) * 1e3, median(loaded) * 1e3, median(loaded) / median(base),
                longest * 1e3);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    benchMoves(Ground::Free);
    benchMoves(Ground::Covered);
    benchBurnIn();
    benchOpening();
}
