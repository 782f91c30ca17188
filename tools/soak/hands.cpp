#include "tools/soak/hands.h"

#include "tools/soak/dice.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWheelEvent>

namespace {

void mouse(const QPointer<QWidget> &widget, QEvent::Type type, QPoint pos, Qt::MouseButton button,
           Qt::MouseButtons held, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    if (!widget || !widget->isEnabled())
        return;
    QMouseEvent event(type, pos, widget->mapToGlobal(pos), button, held, modifiers);
    QApplication::sendEvent(widget, &event);
}

} // namespace

void hands::click(QWidget *widget, QPoint pos, Qt::MouseButton button,
                  Qt::KeyboardModifiers modifiers)
{
    const QPointer<QWidget> target(widget);
    mouse(target, QEvent::MouseButtonPress, pos, button, button, modifiers);
    mouse(target, QEvent::MouseButtonRelease, pos, button, Qt::NoButton, modifiers);
}

void hands::doubleClick(QWidget *widget, QPoint pos)
{
    const QPointer<QWidget> target(widget);
    click(target, pos);
    mouse(target, QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton);
    mouse(target, QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton);
}

void hands::drag(QWidget *widget, const QList<QPoint> &places)
{
    const QPointer<QWidget> target(widget);
    mouse(target, QEvent::MouseButtonPress, places.first(), Qt::LeftButton, Qt::LeftButton);
    for (QPoint pos : places)
        mouse(target, QEvent::MouseMove, pos, Qt::NoButton, Qt::LeftButton);
    mouse(target, QEvent::MouseButtonRelease, places.last(), Qt::LeftButton, Qt::NoButton);
}

void hands::move(QWidget *widget, QPoint pos)
{
    mouse(widget, QEvent::MouseMove, pos, Qt::NoButton, Qt::NoButton);
}

void hands::wheel(QWidget *widget, QPoint pos, int steps, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(pos, widget->mapToGlobal(pos), QPoint(), QPoint(0, 120 * steps), Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

void hands::key(QWidget *widget, int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    const QPointer<QWidget> target(widget);
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(target, &press);
    if (!target)
        return;
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QApplication::sendEvent(target, &release);
}

void hands::type(QWidget *widget, const QString &text)
{
    const QPointer<QWidget> target(widget);
    key(target, Qt::Key_A, Qt::ControlModifier);
    for (QChar letter : text)
        if (target)
            key(target, 0, Qt::NoModifier, letter);
    if (target)
        key(target, Qt::Key_Tab);
}

QPoint hands::placeOn(const QWidget *widget, Dice &dice)
{
    const QRect area = widget->visibleRegion().boundingRect();
    return area.topLeft() + QPoint(dice.below(area.width()), dice.below(area.height()));
}
