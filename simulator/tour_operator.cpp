#include "simulator/tour_operator.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QApplication>
#include <QComboBox>
#include <QGraphicsView>
#include <QScrollArea>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace tour {

namespace {

QString fault;

/// Shows a position of a widget, which may lie in scroll areas.
void scrollTo(QWidget *widget, QPoint pos)
{
    for (QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
        auto *area = qobject_cast<QScrollArea *>(parent);
        if (area && area->widget()->isAncestorOf(widget)) {
            const QPoint inside = widget->mapTo(area->widget(), pos);
            area->ensureVisible(inside.x(), inside.y());
        }
    }
}

/// A mouse event at a position of a widget, which must be the one that lies there.
void mouse(QTest::MouseAction action, QWidget *widget, QPoint pos,
           Qt::MouseButton button = Qt::LeftButton)
{
    throwFault();
    const QString name = widget->objectName() + ' ' + widget->metaObject()->className();
    if (!widget->isVisible() || !widget->isEnabled())
        throw Error(name + " cannot be used");
    QWidget *top = widget->window();
    const QPoint inside = widget->mapTo(top, pos);
    const QWidget *hit = top->childAt(inside);
    if (widget != top && hit != widget && !(hit && widget->isAncestorOf(hit)))
        throw Error(name + " is out of reach");
    QTest::mouseEvent(action, top->windowHandle(), button, Qt::NoModifier, inside);
    QCoreApplication::processEvents();
    throwFault();
}

void activate(QWidget *widget)
{
    QWidget *top = widget->window();
    top->activateWindow();
    waitUntil("the window has the keyboard", [=] { return top->isActiveWindow(); });
}

/// The view's position of a place, which is then in sight.
QPoint show(QGraphicsView *view, QPointF place)
{
    view->ensureVisible(QRectF(place, QSizeF(1, 1)), 80, 80);
    const QPoint pos = view->mapFromScene(place);
    scrollTo(view->viewport(), pos);
    return pos;
}

void mouseAt(QTest::MouseAction action, QGraphicsView *view, QPointF place)
{
    mouse(action, view->viewport(), show(view, place));
}

} // namespace

void fail(const QString &why)
{
    if (fault.isEmpty())
        fault = why;
}

void throwFault()
{
    if (!fault.isEmpty())
        throw Error(std::exchange(fault, QString()));
}

void wait(int ms)
{
    QTest::qWait(ms);
    throwFault();
}

void waitUntil(const QString &what, const std::function<bool()> &condition, int limitMs)
{
    const bool done = QTest::qWaitFor([&] { return !fault.isEmpty() || condition(); }, limitMs);
    throwFault();
    if (!done)
        throw Error("waited in vain until " + what);
}

void click(QWidget *widget) { clickOn(widget, widget->rect().center()); }

void clickOn(QWidget *widget, QPoint pos)
{
    scrollTo(widget, pos);
    mouse(QTest::MouseMove, widget, pos);
    mouse(QTest::MouseClick, widget, pos);
}

void contextClickOn(QWidget *widget, QPoint pos)
{
    scrollTo(widget, pos);
    mouse(QTest::MouseMove, widget, pos);
    // The press brings up the menu and returns when that is gone; the finger is up long before.
    QTimer::singleShot(50, widget, [=] {
        QTest::mouseEvent(QTest::MouseRelease, widget->window()->windowHandle(), Qt::RightButton,
                          Qt::NoModifier, widget->mapTo(widget->window(), pos));
    });
    mouse(QTest::MousePress, widget, pos, Qt::RightButton);
}

void pick(QComboBox *box, const QString &text)
{
    const int row = box->findText(text);
    if (row < 0)
        throw Error(box->objectName() + " does not offer " + text);
    click(box);
    QAbstractItemView *list = box->view();
    waitUntil("the list opens", [=] { return list->isVisible(); });
    // A list takes no release that may still belong to the click that opened it.
    wait(QApplication::doubleClickInterval() + 50);
    const QModelIndex index = box->model()->index(row, box->modelColumn());
    list->scrollTo(index);
    const QRect seen = list->visualRect(index) & list->viewport()->rect();
    clickOn(list->viewport(), seen.center());
    waitUntil(text + " is chosen", [=] { return box->currentIndex() == row; });
}

void slideTo(QAbstractSlider *slider, int value)
{
    scrollTo(slider, slider->rect().center());
    slider->setFocus(Qt::MouseFocusReason);
    const auto go = [&](int step, Qt::Key back, Qt::Key on) {
        while (qAbs(value - slider->value()) >= step) {
            const int before = slider->value();
            press(slider, value > before ? on : back);
            if (slider->value() == before)
                throw Error(slider->objectName() + " does not move");
        }
    };
    go(slider->pageStep(), Qt::Key_PageDown, Qt::Key_PageUp);
    go(slider->singleStep(), Qt::Key_Left, Qt::Key_Right);
}

void press(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    throwFault();
    activate(widget);
    QTest::keyClick(widget->window()->windowHandle(), key, modifiers);
    QCoreApplication::processEvents();
    throwFault();
}

void type(QWidget *field, const QString &text)
{
    click(field);
    press(field, Qt::Key_A, Qt::ControlModifier);
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, field->window()->windowHandle(), Qt::Key_unknown,
                            QString(letter), Qt::NoModifier);
    throwFault();
}

void moveTo(QGraphicsView *view, QPointF place) { mouseAt(QTest::MouseMove, view, place); }

void clickAt(QGraphicsView *view, QPointF place)
{
    moveTo(view, place);
    mouseAt(QTest::MouseClick, view, place);
}

void doubleClickAt(QGraphicsView *view, QPointF place)
{
    moveTo(view, place);
    mouseAt(QTest::MouseDClick, view, place);
}

void drag(QGraphicsView *view, QPointF from, QPointF to)
{
    moveTo(view, from);
    mouseAt(QTest::MousePress, view, from);
    moveTo(view, (from + to) / 2);
    moveTo(view, to);
    mouseAt(QTest::MouseRelease, view, to);
}

} // namespace tour
