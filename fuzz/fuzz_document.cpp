#include "measure/base.h"
#include "measure/graphicspoint.h"
#include "measure/mainscene.h"

#include <QApplication>
#include <QPainter>

#include <cstdint>
#include <cstdlib>

namespace {

void startApplication()
{
    static int count = 1;
    static char name[] = "fuzz_document";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication application(count, arguments);
}

void paint(MainScene &scene)
{
    QImage screen(80, 60, QImage::Format_RGB32);
    QPainter painter(&screen);
    scene.render(&painter);
}

} // namespace

/// A document with these bytes, on a page of 400 x 300 pixels: loaded, painted, measured in another
/// unit, burnt in, written. Every handle stands inside the page.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    startApplication();
    MainScene scene;
    scene.setSceneRect(0, 0, 400, 300);
    scene.setUnit(3);
    scene.setDrawProperties({{RingDistance1, 0.01}, {LineDistance1, 0.02}});
    scene.loadJson(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    for (const Base *record : scene.items()) {
        for (const GraphicsPoint *point : record->points()) {
            if (!scene.sceneRect().contains(point->pos()))
                std::abort();
        }
    }
    if (!scene.items().isEmpty()) {
        paint(scene);
        scene.setUnit(5);
        scene.setDrawProperty(RingDistance1, 0.5);
        scene.setDrawProperty(LineDistance1, 0.5);
        paint(scene);
        QImage picture(80, 60, QImage::Format_RGB32);
        scene.renderItems(&picture);
        scene.removeItemAt(0);
    }
    MainScene second;
    second.setSceneRect(0, 0, 400, 300);
    second.loadJson(scene.toJson());
    if (second.items().size() != scene.items().size())
        std::abort();
    return 0;
}
