#pragma once

#include <QList>
#include <QPoint>
#include <QWidget>

class Dice;

/// The hands of the random operator. An event may run a dialog or end the widget that it goes to,
/// so every operation looks after each event whether its widget is still there.
namespace hands {

void click(QWidget *widget, QPoint pos, Qt::MouseButton button = Qt::LeftButton,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier);
void doubleClick(QWidget *widget, QPoint pos);
/// Presses at the first place, moves over the others, releases at the last.
void drag(QWidget *widget, const QList<QPoint> &places);
void move(QWidget *widget, QPoint pos);
void wheel(QWidget *widget, QPoint pos, int steps, Qt::KeyboardModifiers modifiers);
void key(QWidget *widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
         const QString &text = QString());
void type(QWidget *widget, const QString &text);

/// A place on the part of a widget that is in sight; (0, 0) when none is.
QPoint placeOn(const QWidget *widget, Dice &dice);

/// The descendants of a class that an operator can use: in sight and enabled.
template<typename Widget>
QList<Widget *> usable(const QWidget *parent)
{
    QList<Widget *> found;
    for (Widget *widget : parent->findChildren<Widget *>())
        if (widget->isVisible() && widget->isEnabled() && widget->window() == parent->window() &&
            !widget->visibleRegion().isEmpty())
            found.append(widget);
    return found;
}

} // namespace hands
