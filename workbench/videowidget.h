#pragma once

#include <QLabel>
#include <QPixmap>
#include <QScrollArea>

/// Paints the frame of the live picture, stretched to its own size.
class ShowLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

    /// Scales the frame to the label's own current size, whatever its proportions, and keeps the
    /// result. A label of no size keeps a null pixmap and paints nothing until the next frame.
    void setPixmap(const QPixmap &frame);
    const QPixmap &scaledFrame() const { return scaled; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QPixmap scaled;
};

/// Scroll area over the live picture.
class VideoWidget : public QScrollArea
{
    Q_OBJECT

public:
    explicit VideoWidget(QWidget *parent = nullptr);

    void setPixmap(const QPixmap &frame);
    /// Resizes the content and decides which scroll bars show.
    void setContentSize(int width, int height);
    ShowLabel *content() const { return label; }

protected:
    /// The wheel never scrolls: it sets the focus or the zoom of the window.
    void wheelEvent(QWheelEvent *event) override;

private:
    ShowLabel *label;
};
