#pragma once

#include "workbench/showwidget.h"

#include <QGraphicsView>
#include <QMouseEvent>
#include <QtTest>

/// The operator's mouse over the view of a page; places are in picture pixels.
class ViewMouse
{
public:
    explicit ViewMouse(const ShowWidget *page)
        : view(page->findChild<QGraphicsView *>())
    {}

    void move(QPointF place, Qt::MouseButtons buttons = Qt::NoButton) const
    {
        const QPoint pos = view->mapFromScene(place);
        QMouseEvent event(QEvent::MouseMove, pos, view->viewport()->mapToGlobal(pos), Qt::NoButton,
                          buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(view->viewport(), &event);
    }
    void click(QPointF place, Qt::MouseButton button = Qt::LeftButton) const
    {
        move(place);
        QTest::mouseClick(view->viewport(), button, Qt::NoModifier, view->mapFromScene(place));
    }
    void doubleClick(QPointF place) const
    {
        click(place);
        const QPoint pos = view->mapFromScene(place);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
    }
    void drag(QPointF from, QPointF to) const
    {
        move(from);
        QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                          view->mapFromScene(from));
        move((from + to) / 2, Qt::LeftButton);
        move(to, Qt::LeftButton);
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                            view->mapFromScene(to));
    }

private:
    QGraphicsView *view;
};
