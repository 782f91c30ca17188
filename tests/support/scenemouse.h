#pragma once

#include <QCoreApplication>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QImage>
#include <QPainter>

/// A mouse over a scene: sends it the events that a view would.
class SceneMouse
{
public:
    explicit SceneMouse(QGraphicsScene &target)
        : scene(target)
    {}

    void press(QPointF pos, Qt::MouseButton button = Qt::LeftButton)
    {
        down = button;
        downPos = pos;
        send(QEvent::GraphicsSceneMousePress, pos, button);
    }
    void move(QPointF pos) { send(QEvent::GraphicsSceneMouseMove, pos, Qt::NoButton); }
    void release(QPointF pos, Qt::MouseButton button = Qt::LeftButton)
    {
        down = Qt::NoButton;
        send(QEvent::GraphicsSceneMouseRelease, pos, button);
    }
    void doubleClick(QPointF pos, Qt::MouseButton button = Qt::LeftButton)
    {
        down = button;
        downPos = pos;
        send(QEvent::GraphicsSceneMouseDoubleClick, pos, button);
        release(pos, button);
    }

    /// Goes there, presses and releases.
    void click(QPointF pos, Qt::MouseButton button = Qt::LeftButton)
    {
        move(pos);
        press(pos, button);
        release(pos, button);
    }
    void click(std::initializer_list<QPointF> places)
    {
        for (QPointF pos : places)
            click(pos);
    }
    void drag(QPointF from, QPointF to)
    {
        press(from);
        move(to);
        release(to);
    }

private:
    void send(QEvent::Type type, QPointF pos, Qt::MouseButton button)
    {
        QGraphicsSceneMouseEvent event(type);
        event.setScenePos(pos);
        event.setLastScenePos(last);
        event.setScreenPos(pos.toPoint());
        event.setLastScreenPos(last.toPoint());
        event.setButton(button);
        event.setButtons(down);
        if (down != Qt::NoButton) {
            event.setButtonDownScenePos(down, downPos);
            event.setButtonDownScreenPos(down, downPos.toPoint());
        }
        last = pos;
        QCoreApplication::sendEvent(&scene, &event);
    }

    QGraphicsScene &scene;
    Qt::MouseButton down = Qt::NoButton;
    QPointF downPos;
    QPointF last;
};

/// Lets every item of a scene paint once, which is when geometry and handles meet.
inline QImage painted(QGraphicsScene &scene)
{
    QImage image(scene.sceneRect().size().toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene.render(&painter);
    return image;
}
