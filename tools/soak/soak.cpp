#include "simulator/simulatedcapture.h"
#include "tests/support/processload.h"
#include "tests/support/workingdirectory.h"
#include "tools/soak/dice.h"
#include "tools/soak/randomoperator.h"
#include "tools/soak/watch.h"
#include "workbench/tavorin.h"

#include "calibration/accountitem.h"
#include "camera/cameraparameters.h"
#include "camera/mycamera.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPixmapCache>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include <cstdio>
#include <vector>

#include <malloc.h>

namespace {

constexpr quint64 actionsBetweenRests = 5000;
/// At rest a few frames and pictures may still be held, now more, now fewer of them. What counts is
/// the least that the heap comes down to: over the last third of a run it may be this much above
/// that of the first third, the warm-up. The toolkit's caches of style sheets take 2 to 3 MB, a
/// leak of 64 bytes an action takes more in a long run.
constexpr std::size_t heapSlack = 8u << 20;

void say(const QString &line) { std::fprintf(stderr, "%s\n", line.toUtf8().constData()); }

std::size_t residentKiB()
{
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toULongLong() * 4;
}

/// One run: so many random actions on the window, and in between rests at which the process is
/// weighed.
class Soak : public QObject
{
public:
    Soak(Tavorin *tavorin, const QStringList &pictures, quint64 seedNumber, quint64 actionCount)
        : window(tavorin)
        , hand(tavorin, pictures)
        , stepWatch(tavorin)
        , seed(seedNumber)
        , actions(actionCount)
    {
        clock.start();
        arm();
    }

private:
    void arm() { QTimer::singleShot(0, this, &Soak::turn); }

    void turn()
    {
        // Armed anew first: an action may run a dialog, in which the next actions happen.
        arm();
        watch.call();
        if (resting) {
            hand.agree();
        } else if (depth == 0 && (done >= actions || done >= nextRest)) {
            rest();
        } else if (done < actions || RandomOperator::dialog()) {
            // What is open at the end is still answered, with further actions.
            step();
        }
    }

    void step()
    {
        // An action that only pumps events is not cut into without end.
        QWidget *top = RandomOperator::dialog();
        if (depth > 0 && (!top || depth >= 8) && (top == outer || depth >= 8))
            return;
        const quint64 number = done++;
        setLastWords(
            QString("Crash at action %1 of scripts/soak %2 %3").arg(number).arg(actions).arg(seed));
        QWidget *before = outer;
        outer = top;
        ++depth;
        Dice dice(seed, number);
        hand.act(dice);
        --depth;
        outer = before;
        check();
    }

    void check()
    {
        const QString fault = stepWatch.fault();
        if (!fault.isEmpty())
            fail(fault);
    }

    void fail(const QString &fault)
    {
        say(QString("FAIL before action %1: %2; done last:").arg(done).arg(fault));
        for (const QString &line : hand.recent())
            say("  " + line);
        say(QString("Again with: scripts/soak %1 %2").arg(actions).arg(seed));
        std::_Exit(1);
    }

    /// Brings the program to what it was at the start, and weighs it.
    void rest()
    {
        resting = true;
        ++depth;
        simulatedMicroscope().failNextOpens(0);
        simulatedMicroscope().giveEmptyFrames(0);
        simulatedMicroscope().attach({{"Orvane_A", "usb-1"}, {"Orvane_B", "usb-2"}});
        auto *tabs = window->findChild<QTabWidget *>("tabWidget");
        const auto *sweepPanel = window->findChild<QWidget *>("page_4");
        const auto isSweeping = [sweepPanel] {
            return !sweepPanel->findChild<QWidget *>("pushButton")->isEnabledTo(sweepPanel);
        };
        QElapsedTimer waited;
        waited.start();
        const auto pumpWhile = [&](auto condition) {
            while (condition()) {
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                if (waited.hasExpired(600000))
                    fail("the program does not come to rest");
            }
        };
        pumpWhile(isSweeping);
        showSmallFrames(pumpWhile, isSweeping);
        while (tabs->count() > 0)
            window->on_tabWidget_tabCloseRequested(0);
        window->cameraClose();
        pumpWhile([this] { return window->cameraThread()->isRunning(); });
        for (AccountItem *account : window->findChildren<AccountItem *>())
            account->findChild<QPushButton *>()->click();
        window->findChild<QAction *>("actionchinese")->trigger();
        QElapsedTimer still;
        still.start();
        // The device list is compared once a second, file dialogs end their threads by and by.
        pumpWhile([&] { return !still.hasExpired(1500) || RandomOperator::dialog(); });
        tidyFiles();
        weigh();
        nextRest = done + actionsBetweenRests;
        --depth;
        resting = false;
        if (done >= actions)
            finish();
    }

    /// Has the camera give a few frames of its first size and takes a sweep of one of them: the
    /// last frame of either stays in memory.
    template<typename PumpWhile, typename IsSweeping>
    void showSmallFrames(PumpWhile pumpWhile, IsSweeping isSweeping)
    {
        MyCamera *camera = window->cameraThread();
        window->cameraChange(0, "Orvane_A", "usb-1");
        pumpWhile([camera] { return !camera->isOpen(); });
        camera->setCameraInfo(CameraParameter::Resolution, 0);
        pumpWhile([camera] { return camera->frameWidth() != 1920; });
        int frames = 0;
        QObject counter;
        connect(camera, &MyCamera::putpix, &counter, [&frames] { ++frames; });
        pumpWhile([&frames] { return frames < 5; });
        window->startFusion({200, 200, 1, 0});
        pumpWhile(isSweeping);
    }

    static void tidyFiles()
    {
        for (const char *folder : {".", "quick"}) {
            QDir directory(folder);
            for (const QString &name : directory.entryList({"*.jpg", "*.csv", "b", "c.png"}))
                if (!name.startsWith("stored"))
                    directory.remove(name);
        }
    }

    void weigh()
    {
        // The pages that were closed here wait for the return to the main loop.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QPixmapCache::clear();
        malloc_trim(0);
        const ProcessLoad load = ProcessLoad::atRest();
        const int objects = window->findChildren<QObject *>().size();
        say(QString("%1 actions, %2 s: %3, %4 MiB resident, %5 objects in the window")
                .arg(done)
                .arg(clock.elapsed() / 1000)
                .arg(load.text())
                .arg(residentKiB() / 1024)
                .arg(objects));
        loads.push_back(load);
    }

    /// The least of each over the rests from one on to before another.
    ProcessLoad leastLoad(std::size_t from, std::size_t to) const
    {
        ProcessLoad least = loads.at(from);
        for (std::size_t i = from; i < to; ++i) {
            least.threads = qMin(least.threads, loads[i].threads);
            least.descriptors = qMin(least.descriptors, loads[i].descriptors);
            least.heapBytes = qMin(least.heapBytes, loads[i].heapBytes);
        }
        return least;
    }

    void checkLoads()
    {
        // Of a shorter run one third would be a rest or two.
        if (loads.size() < 10)
            return;
        // The first rest comes before anything was done.
        const std::size_t third = (loads.size() - 1) / 3;
        const ProcessLoad first = leastLoad(1, 1 + third);
        const ProcessLoad last = leastLoad(loads.size() - third, loads.size());
        say(QString("at least, first third: %1; last third: %2").arg(first.text(), last.text()));
        if (!last.standsWhere(first, heapSlack))
            fail("it holds more and more");
    }

    void finish()
    {
        checkLoads();
        const QMap<QString, int> &tally = hand.tally();
        for (auto what = tally.begin(); what != tally.end(); ++what)
            say(QString("%1 times: %2").arg(what.value(), 6).arg(what.key()));
        const QMap<QString, int> warnings = Warnings::heard();
        for (auto warning = warnings.begin(); warning != warnings.end(); ++warning)
            say(QString("warning, %1 times: %2").arg(warning.value()).arg(warning.key()));
        say(QString("%1 actions with seed %2 done: list and scene in step at each.")
                .arg(done)
                .arg(seed));
        QCoreApplication::exit(0);
    }

    Tavorin *window;
    RandomOperator hand;
    StepWatch stepWatch;
    quint64 seed;
    quint64 actions;
    quint64 done = 0;
    quint64 nextRest = 0;
    int depth = 0;
    QWidget *outer = nullptr;
    bool resting = false;
    std::vector<ProcessLoad> loads; // at each rest
    QElapsedTimer clock;
    HangWatch watch{std::chrono::seconds(120)};
};

} // namespace

int main(int argc, char *argv[])
{
    const WorkingDirectory directory;
    // The toolkit's file dialog keeps a file of its own.
    qputenv("XDG_CONFIG_HOME", directory.path("toolkit").toLocal8Bit());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QCommandLineParser parser;
    parser.setApplicationDescription("Random operation of the window on the simulated microscope.");
    parser.addHelpOption();
    parser.addPositionalArgument("actions", "how many");
    parser.addPositionalArgument("seed", "which run");
    parser.process(application);
    const quint64 actions = parser.positionalArguments().value(0, "200000").toULongLong();
    const quint64 seed = parser.positionalArguments().value(1, "1").toULongLong();

    const Warnings warnings;
    QDir().mkdir("quick");
    QFile::copy(SOURCE_DIR "/packaging/config.ini", "config.ini");
    const QStringList pictures = {directory.path("stored_small.png"), directory.path("stored.jpg"),
                                  directory.path("stored_broken.jpg"), directory.path("gone.bmp")};
    QImage small(320, 200, QImage::Format_RGB32);
    small.fill(Qt::darkCyan);
    small.save(pictures[0]);
    QFile::copy(SOURCE_DIR "/samples/board_annotated.jpg", pictures[1]);
    directory.write("stored_broken.jpg", "\xff\xd8\xff\xe0 no picture");

    simulatedMicroscope().attach({{"Orvane_A", "usb-1"}, {"Orvane_B", "usb-2"}});
    simulatedMicroscope().setFrameInterval(std::chrono::milliseconds(100));
    int result = 0;
    {
        Tavorin window;
        window.showMaximized();
        Soak soak(&window, pictures, seed, actions);
        result = QApplication::exec();
    }
    return result;
}
