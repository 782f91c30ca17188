#include "camera/openglvideowidget.h"

#include <QPainter>

void OpenGLVideoWidget::setPixmap(const QPixmap &pixmap)
{
    frame = pixmap.scaled(size(), Qt::IgnoreAspectRatio, Qt::FastTransformation);
    update();
}

void OpenGLVideoWidget::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, frame);
}
