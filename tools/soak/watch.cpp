#include "tools/soak/watch.h"

#include "measure/base.h"
#include "measure/mainscene.h"
#include "workbench/showwidget.h"
#include "workbench/tavorin.h"

#include <QGraphicsView>
#include <QImage>
#include <QListWidget>
#include <QMutex>
#include <QPainter>
#include <QTabWidget>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

QMutex warningsMutex;
QMap<QString, int> warnings;

char lastWords[256];

void crash(int number)
{
    // Only calls that are safe in a signal handler.
    const ssize_t ignored = write(STDERR_FILENO, lastWords, strlen(lastWords));
    static_cast<void>(ignored);
    signal(number, SIG_DFL);
    raise(number);
}

MainScene &sceneOf(const ShowWidget *page)
{
    return *static_cast<MainScene *>(page->findChild<QGraphicsView *>()->scene());
}

QString otherCount(const ShowWidget *page)
{
    const int rows = page->findChild<QListWidget *>("listWidget")->count();
    const int shapes = sceneOf(page).items().size();
    return rows == shapes ? QString() : QString("%1 rows and %2 shapes").arg(rows).arg(shapes);
}

/// For lists of the same length.
QString otherText(const ShowWidget *page)
{
    const auto *list = page->findChild<QListWidget *>("listWidget");
    const QList<Base *> &shapes = sceneOf(page).items();
    for (int row = 0; row < shapes.size(); ++row) {
        // A rectangle's row lags one change behind its label, as meant.
        if (shapes[row]->isType(7))
            continue;
        const QString shown = list->item(row)->text();
        const QString meant = shapes[row]->typeName() + '\n' + shapes[row]->textContent();
        if (shown != meant)
            return QString("row %1 tells \"%2\", its shape \"%3\"").arg(row).arg(shown, meant);
    }
    return {};
}

/// Has every shape painted, also those of a page that nobody sees.
void paint(MainScene &scene)
{
    QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    scene.render(&painter);
}

} // namespace

QString StepWatch::fault()
{
    constexpr int longestLag = 500;
    const auto *tabs = window->findChild<QTabWidget *>("tabWidget");
    QMap<const ShowWidget *, int> stillLagging;
    for (int tab = 0; tab < tabs->count(); ++tab) {
        const auto *page = qobject_cast<ShowWidget *>(tabs->widget(tab));
        QString found = otherCount(page);
        if (found.isEmpty() && !otherText(page).isEmpty()) {
            const int looks = lagging.value(page) + 1;
            stillLagging[page] = looks;
            if (looks > longestLag) {
                paint(sceneOf(page));
                found = otherText(page);
            }
        }
        if (!found.isEmpty())
            return QString("tab %1: %2").arg(tab).arg(found);
    }
    lagging = stillLagging;
    return {};
}

Warnings::Warnings()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtDebugMsg || type == QtInfoMsg)
            return;
        if (type == QtFatalMsg) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
            std::abort();
        }
        QMutexLocker lock(&warningsMutex);
        ++warnings[text];
    });
}

QMap<QString, int> Warnings::heard()
{
    QMutexLocker lock(&warningsMutex);
    return warnings;
}

HangWatch::HangWatch(std::chrono::seconds limit)
    : thread([this, limit] {
        // In looks, not by the clock: a stopped process does not hang.
        constexpr std::chrono::milliseconds pause(200);
        unsigned last = calls;
        for (int looks = 0; !over; ++looks) {
            std::this_thread::sleep_for(pause);
            if (calls != last) {
                last = calls;
                looks = 0;
            } else if (looks * pause > limit) {
                std::fputs("The window hangs.\n", stderr);
                std::abort();
            }
        }
    })
{}

HangWatch::~HangWatch()
{
    over = true;
    thread.join();
}

void setLastWords(const QString &line)
{
    static bool installed = false;
    if (!installed) {
        for (int number : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL})
            signal(number, crash);
        installed = true;
    }
    std::snprintf(lastWords, sizeof lastWords, "%s\n", line.toUtf8().left(250).constData());
}
