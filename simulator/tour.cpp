#include "simulator/tour.h"

#include "simulator/specimen.h"
#include "simulator/tour_dialogs.h"
#include "simulator/tour_eye.h"
#include "simulator/tour_operator.h"
#include "workbench/tavorin.h"
#include "workbench/videowidget.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

using namespace tour;

namespace {

/// Ends the program when a step hangs where none of its own limits can notice.
class Watchdog
{
public:
    Watchdog()
        : thread([this] { watch(); })
    {}
    ~Watchdog()
    {
        startStep(0);
        thread.join();
    }
    Q_DISABLE_COPY(Watchdog)

    /// @param number  of the step, its exit code; 0 ends the watch
    void startStep(int number)
    {
        const std::lock_guard lock(mutex);
        step = number;
        changed.notify_all();
    }

private:
    static constexpr std::chrono::minutes limit{6};

    void watch()
    {
        std::unique_lock lock(mutex);
        while (step != 0) {
            const int watched = step;
            if (!changed.wait_for(lock, limit, [&] { return step != watched; })) {
                std::printf("FAILED: it hangs.\n");
                std::fflush(stdout);
                std::_Exit(watched);
            }
        }
    }

    std::mutex mutex; // guards the step
    std::condition_variable changed;
    int step = -1; // none yet
    std::thread thread;
};

struct LanguageFace
{
    const char *entry; ///< of the menu
    const char *open;  ///< what the button for opening files says of itself
};

LanguageFace faceOf(TourLanguage language)
{
    return language == TourLanguage::English ? LanguageFace{"English", "Open"}
                                             : LanguageFace{"中文", "打开"};
}

} // namespace

Tour::Tour(Tavorin &mainWindow, const QString &place, TourLanguage chosen)
    : window(mainWindow)
    , folder(place)
    , language(chosen)
{}

int Tour::run()
{
    struct Step
    {
        const char *title;
        void (Tour::*work)();
    };
    const Step steps[] = {{"choose the language", &Tour::chooseLanguage},
                          {"choose the camera", &Tour::chooseCamera},
                          {"set the picture", &Tour::setThePicture},
                          {"focus on a part", &Tour::focusOnAPart},
                          {"calibrate on the stage ruler", &Tour::calibrate},
                          {"measure on the live picture", &Tour::measureLive},
                          {"take a snapshot", &Tour::takeASnapshot},
                          {"change the drawing settings", &Tour::changeDrawSettings},
                          {"measure with every shape", &Tour::measureEverything},
                          {"change one shape", &Tour::changeOneShape},
                          {"save and export", &Tour::saveAndExport},
                          {"open what was saved", &Tour::openAgain},
                          {"lay a crosshair grid", &Tour::layACrosshair},
                          {"sweep the focus", &Tour::sweepTheFocus},
                          {"switch the language", &Tour::switchTheLanguage},
                          {"close the window", &Tour::closeTheWindow}};
    Watchdog watchdog;
    int number = 0;
    for (const Step &step : steps) {
        watchdog.startStep(++number);
        std::printf("[%2d/%d] %s\n", number, int(std::size(steps)), step.title);
        std::fflush(stdout);
        try {
            (this->*step.work)();
            dialogsDone();
        } catch (const std::exception &error) {
            report(QString("FAILED: ") + error.what());
            screen().save(path("failed.png"));
            return number;
        }
    }
    report("Everything was done, and every measure is right.");
    return 0;
}

void Tour::switchTo(TourLanguage wanted, const QString &shot)
{
    const LanguageFace face = faceOf(wanted);
    auto *bar = window.menuBar();
    expectMenu(face.entry, [=] {
        if (!shot.isEmpty())
            shoot(shot);
    });
    clickOn(bar, bar->actionGeometry(bar->actions().constFirst()).center());
    dialogsDone();
    waitUntil(QString("the window speaks ") + face.entry,
              [&] { return tool<QPushButton>("open")->toolTip() == face.open; });
}

void Tour::chooseLanguage()
{
    switchTo(TourLanguage::English);
    if (language != TourLanguage::English)
        switchTo(language);
    shoot("start");
}

/// With every panel and page open, and back.
void Tour::switchTheLanguage()
{
    const bool isEnglish = language == TourLanguage::English;
    switchTo(isEnglish ? TourLanguage::Chinese : TourLanguage::English, "language");
    shoot("other_language");
    switchTo(language);
}

void Tour::closeTheWindow()
{
    expectQuestion("whether to quit without saving");
    window.close();
    if (window.isVisible())
        throw Error("the window is still there");
}

QPointF Tour::sight(const Place &place) const
{
    const QPointF guess = onScene(place);
    if (place.across.isNull())
        return guess;
    const QImage seen = picture();
    const double zoom = seen.width() / view()->sceneRect().width();
    return edgeNear(seen, guess * zoom, place.across) / zoom;
}

void Tour::makeFile(const QString &name, const std::function<void()> &command, const QString &shot)
{
    expectFileDialog(path(name), [=] {
        if (!shot.isEmpty())
            shoot(shot);
    });
    command();
    dialogsDone();
    waitForFile(path(name));
}

void Tour::waitForFile(const QString &file) const
{
    waitUntil(file + " is written", [&] { return QFileInfo(file).size() > 0; });
    report("    " + QFileInfo(file).fileName());
}

QImage Tour::load(const QString &name) const
{
    QImage image;
    waitUntil(name + " can be read", [&] { return image.load(path(name)); });
    return image;
}

void Tour::report(const QString &line) const
{
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

QPixmap Tour::screen() const
{
    const QRect area = window.geometry();
    if (QSysInfo::kernelType() != QLatin1String("winnt"))
        return window.screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    // There the desktop shows black where the windows are: each paints itself once more.
    QPixmap picture = window.grab();
    QPainter painter(&picture);
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget != &window)
            painter.drawPixmap(widget->geometry().topLeft() - area.topLeft(), widget->grab());
    return picture;
}

void Tour::shoot(const QString &name) const
{
    wait(200); // it is drawn
    if (!screen().save(path(name + ".png")))
        throw Error("cannot write the screenshot " + name);
}

void Tour::shoot(QWidget *widget, const QString &name) const
{
    if (!widget->grab().save(path(name + ".png")))
        throw Error("cannot write the picture " + name);
}

template<typename Widget>
Widget *Tour::tool(const char *name) const
{
    // The panels have objects of the same names.
    auto *row = window.centralWidget()->findChild<QWidget *>("widget", Qt::FindDirectChildrenOnly);
    return find<Widget>(row, name);
}
template QComboBox *Tour::tool(const char *) const;
template QPushButton *Tour::tool(const char *) const;

void Tour::clickTool(const char *name) const { click(tool<QPushButton>(name)); }

QTabWidget *Tour::tabs() const { return find<QTabWidget>(&window, "tabWidget"); }

void Tour::showTab(int index) const
{
    QTabBar *bar = tabs()->tabBar();
    // Beside the middle, where no button for closing is.
    clickOn(bar, bar->tabRect(index).center() - QPoint(10, 0));
    waitUntil("the page is shown", [&] { return tabs()->currentIndex() == index; });
    wait(100);
}

QWidget *Tour::page() const
{
    if (QWidget *current = tabs()->currentWidget())
        return current;
    throw Error("there is no page");
}

QGraphicsView *Tour::view() const
{
    if (auto *found = page()->findChild<QGraphicsView *>())
        return found;
    throw Error("the page has no view");
}

QListWidget *Tour::list() const { return find<QListWidget>(page(), "listWidget"); }

QImage Tour::picture() const
{
    if (const auto *live = page()->findChild<ShowLabel *>()) {
        if (!live->scaledFrame().isNull())
            return live->scaledFrame().toImage();
    }
    return view()->scene()->backgroundBrush().textureImage();
}

QPointF Tour::onScene(const Place &place) const
{
    // The scene shows the whole field, larger or smaller.
    const QRectF scene = view()->sceneRect();
    return scene.center() + place.at * scene.width() / specimen::fieldWidth;
}
