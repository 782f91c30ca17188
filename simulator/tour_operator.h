#pragma once

#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QString>

#include <functional>
#include <stdexcept>

class QAbstractSlider;
class QComboBox;
class QGraphicsView;
class QRect;
class QWidget;

/// The hands and eyes of an operator: mouse and key events that take the way of real ones, through
/// the window to whatever lies under the pointer or has the focus. No wait is without a limit.
namespace tour {

/// A step of the tour could not be done; the text says why.
class Error : public std::runtime_error
{
public:
    explicit Error(const QString &why)
        : std::runtime_error(why.toStdString())
    {}
};

/// Tells of an error inside an event, which no exception may leave: the wait, click or key stroke
/// that is under way ends with it.
void fail(const QString &why);
/// @throws Error when one was told of since the last call
void throwFault();

void wait(int ms);
/// Runs events until the condition holds. @throws Error after the time
void waitUntil(const QString &what, const std::function<bool()> &condition, int limitMs = 20000);

/// A child by its object name. @throws Error when there is none
template<typename Widget>
Widget *find(const QObject *parent, const char *name)
{
    if (auto *widget = parent->findChild<Widget *>(name))
        return widget;
    throw Error(QString("there is no %1").arg(name));
}

// Each of these throws an Error when the widget cannot be reached with the pointer.

void click(QWidget *widget);
void clickOn(QWidget *widget, QPoint pos);
/// A click with the right button.
void contextClickOn(QWidget *widget, QPoint pos);
void pick(QComboBox *box, const QString &text);
/// Moves the handle with the keys.
void slideTo(QAbstractSlider *slider, int value);

void press(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// Replaces what stands in a field.
void type(QWidget *field, const QString &text);

// Places on a scene; what is out of sight is scrolled to first.

void moveTo(QGraphicsView *view, QPointF place);
void clickAt(QGraphicsView *view, QPointF place);
void doubleClickAt(QGraphicsView *view, QPointF place);
void drag(QGraphicsView *view, QPointF from, QPointF to);

} // namespace tour
