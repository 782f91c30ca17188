#pragma once

#include "camera/devicewidget.h"
#include "camera/mycamera.h"
#include "measure/mainscene.h"
#include "tests/support/workingdirectory.h"
#include "workbench/showwidget.h"
#include "workbench/tavorin.h"

#include <QAbstractButton>
#include <QGraphicsView>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QTabWidget>

#include <memory>

inline MainScene &sceneOf(const ShowWidget *page)
{
    return *static_cast<MainScene *>(page->findChild<QGraphicsView *>()->scene());
}

/// The texts of a page's list, row by row.
inline QStringList rowsOf(const ShowWidget *page)
{
    const auto *list = page->findChild<QListWidget *>();
    QStringList rows;
    for (int i = 0; i < list->count(); ++i)
        rows += list->item(i)->text();
    return rows;
}

/// The main window in a fresh working directory, with whichever cameras the test links.
class TavorinWindow
{
public:
    /// @param configuration  what ./config.ini holds; without any there is no such file
    explicit TavorinWindow(const QByteArray &configuration = QByteArray())
    {
        if (!configuration.isEmpty())
            directory.write("config.ini", configuration);
        start();
    }
    ~TavorinWindow() { leave(); }
    Q_DISABLE_COPY(TavorinWindow)

    /// Destroys the window, as leaving `main` does.
    void leave() { window.reset(); }

    /// Ends the program and starts it once more in the same directory.
    void restart()
    {
        leave();
        camera.reset();
        start();
    }

    Tavorin *operator->() const { return window.get(); }
    Tavorin *get() const { return window.get(); }

    /// A part of the form. The panels have objects of the same names, so these come last.
    template<class T = QWidget>
    T *part(const char *name) const
    {
        auto *row =
            window->centralWidget()->findChild<QWidget *>("widget", Qt::FindDirectChildrenOnly);
        T *found = row->findChild<T *>(name, Qt::FindDirectChildrenOnly);
        if (!found)
            found = window->findChild<T *>(name);
        if (!found)
            qFatal("The form has no %s", name);
        return found;
    }

    QTabWidget *tabs() const { return part<QTabWidget>("tabWidget"); }
    ShowWidget *page(int index) const { return qobject_cast<ShowWidget *>(tabs()->widget(index)); }
    ShowWidget *currentPage() const { return page(tabs()->currentIndex()); }
    QString tabText() const { return tabs()->tabText(tabs()->currentIndex()); }
    QString status() const { return part<QLabel>("statusLabel1")->text(); }
    void click(const char *name) const { part<QAbstractButton>(name)->click(); }
    void closeTab(int index) const { window->on_tabWidget_tabCloseRequested(index); }

    /// A picture page with a white picture of this size and no file.
    ShowWidget *addPicture(const QString &title, QSize size = QSize(640, 480)) const
    {
        auto *page = new ShowWidget(menu(), false, tabs());
        window->addPage(page, title);
        QPixmap picture(size);
        picture.fill(Qt::white);
        page->setPicture(picture);
        QObject::connect(page, &ShowWidget::wheelAdd, window.get(), &Tavorin::wheelAdd);
        return page;
    }
    QMenu *menu() const
    {
        return window->findChild<QMenu *>(QString(), Qt::FindDirectChildrenOnly);
    }

    /// The live page of a camera that is not attached: it never opens.
    ShowWidget *addDeadCamera() const
    {
        emit part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_gone", "nowhere");
        return currentPage();
    }

    /// Saves a picture of one colour in the working directory.
    QString writePicture(const QString &name, QSize size = QSize(64, 48),
                         QColor colour = Qt::white) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        image.save(directory.path(name), nullptr, 100);
        return directory.path(name);
    }

    WorkingDirectory directory;

private:
    void start()
    {
        window = std::make_unique<Tavorin>();
        camera.reset(window->cameraThread());
    }

    std::unique_ptr<MyCamera> camera; // goes after the window, which does not delete it
    std::unique_ptr<Tavorin> window;
};
