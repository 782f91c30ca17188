#include "workbench/videowidget.h"

#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

void ShowLabel::setPixmap(const QPixmap &frame)
{
    // In device pixels, so that the picture stays sharp on a screen of high density.
    const qreal ratio = devicePixelRatioF();
    scaled = frame.scaled(size() * ratio, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    scaled.setDevicePixelRatio(ratio);
    update();
}

void ShowLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, scaled);
    painter.end();
}

VideoWidget::VideoWidget(QWidget *parent)
    : QScrollArea(parent)
    , label(new ShowLabel)
{
    setStyleSheet(QStringLiteral("border: none;"));
    setFocusPolicy(Qt::NoFocus); // the view over it takes the keys
    setWidget(label);
}

void VideoWidget::setPixmap(const QPixmap &frame) { label->setPixmap(frame); }

void VideoWidget::setContentSize(int contentWidth, int contentHeight)
{
    setHorizontalScrollBarPolicy(width() >= contentWidth ? Qt::ScrollBarAlwaysOff
                                                         : Qt::ScrollBarAlwaysOn);
    setVerticalScrollBarPolicy(contentHeight <= height() ? Qt::ScrollBarAlwaysOff
                                                         : Qt::ScrollBarAlwaysOn);
    // Both scroll bars relax the horizontal policy; the vertical one keeps its setting.
    if (horizontalScrollBar()->isVisible())
        setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    if (verticalScrollBar()->isVisible())
        setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    label->resize(contentWidth, contentHeight);
}

void VideoWidget::wheelEvent(QWheelEvent *event) { event->ignore(); }
