#include "camera/mycamera.h"
#include "measure/base.h"
#include "measure/mainscene.h"
#include "workbench/graphicsview.h"
#include "workbench/showwidget.h"

#include <QApplication>
#include <QFile>
#include <QImageReader>
#include <QListWidget>
#include <QMenu>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

void startApplication()
{
    static int count = 1;
    static char name[] = "fuzz_picture";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication application(count, arguments);
}

QString store(const uint8_t *data, size_t size)
{
    static const QTemporaryDir folder;
    QFile file(folder.filePath("picture.jpg"));
    if (file.open(QIODevice::WriteOnly))
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    return file.fileName();
}

/// A size that the program would open, but that only costs time here.
bool isLarge(const QString &path)
{
    const QSize size = QImageReader(path).size();
    return qint64(size.width()) * size.height() > (1 << 18);
}

} // namespace

/// A picture file with these bytes, opened on a page: its header, its pixels and its trailer. List
/// and scene agree, and nothing of it counts as a change.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    startApplication();
    const QString path = store(data, size);
    if (isLarge(path))
        return 0;
    static QMenu menu;
    ShowWidget page(&menu, false);
    page.resize(406, 150);
    page.openFile(path);
    QCoreApplication::processEvents(); // the trailer waits for its turn; every shape is painted
    const auto *scene = static_cast<MainScene *>(page.findChild<GraphicsView *>()->scene());
    if (page.findChild<QListWidget *>()->count() != scene->items().size() || page.isModified())
        std::abort();
    return 0;
}
