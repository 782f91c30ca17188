#pragma once

#include <QOpenGLWidget>
#include <QPixmap>

/// Shows live frames through OpenGL, as an alternative to the scrolling label. It stands ready; no
/// page creates it.
class OpenGLVideoWidget : public QOpenGLWidget
{
    Q_OBJECT

public:
    using QOpenGLWidget::QOpenGLWidget;

    /// Stretches the frame to the widget's present size and shows it.
    void setPixmap(const QPixmap &pixmap);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPixmap frame;
};
