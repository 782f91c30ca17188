#pragma once

#include "measure/mainscene.h"
#include "tests/support/scenemouse.h"
#include "workbench/graphicsview.h"
#include "workbench/showwidget.h"
#include "workbench/videowidget.h"

#include <QListWidget>
#include <QMenu>
#include <QSignalSpy>

/// A page on the screen with what a test looks at inside it. Its list takes 200 of the width and
/// the strip beside it 6, so the area of the picture is 206 narrower than the page.
class ShownPage
{
public:
    explicit ShownPage(bool live = false, QSize size = {706, 400})
        : page(&menu, live)
        , area(page.findChild<QWidget *>("widget"))
        , video(page.findChild<VideoWidget *>())
        , view(page.findChild<GraphicsView *>())
        , list(page.findChild<QListWidget *>("listWidget"))
        , scene(*qobject_cast<MainScene *>(view->scene()))
        , mouse(scene)
        , modified(&page, &ShowWidget::modified)
    {
        page.resize(size);
    }

    void drawLine(QPointF from, QPointF to)
    {
        page.setDrawType(1);
        mouse.click({from, to});
        page.setDrawType(0);
    }

    QStringList rows() const
    {
        QStringList texts;
        for (int row = 0; row < list->count(); ++row)
            texts << list->item(row)->text();
        return texts;
    }

    QMenu menu;
    ShowWidget page;
    QWidget *area;
    VideoWidget *video;
    GraphicsView *view;
    QListWidget *list;
    MainScene &scene;
    SceneMouse mouse;
    QSignalSpy modified;
};

inline QPixmap plainPicture(int width, int height, const QColor &colour = Qt::white)
{
    QPixmap picture(width, height);
    picture.fill(colour);
    return picture;
}
