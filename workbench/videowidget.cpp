#include "workbench/videowidget.h"

#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

void ShowLabel::setPixmap(const QPixmap &frame)
{
    // In device pixels, so that the picture stays sharp on a screen of high density.
    const qreal ratio = devicePixelRatioF();
    scaled = frame.scaled(size() * ratio, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    // A frame of the label's own size is shared with the sender: telling it what it knows copies
    // it.
    if (scaled.devicePixelRatio() != ratio)
        scaled.setDevicePixelRatio(ratio);
    // Nothing behind a frame needs painting.
    setAttribute(Qt::WA_OpaquePaintEvent, !scaled.isNull() && !scaled.hasAlpha());
    update();
}

void ShowLabel::resizeEvent(QResizeEvent *event)
{
    // The frame keeps its size until the next one: the rest shows what is behind.
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    QLabel::resizeEvent(event);
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
