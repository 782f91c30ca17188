#pragma once

#include <QPushButton>

class QLabel;

/// A button with its icon above its caption: the caption stands in the lower third, wrapped.
class PushButton : public QPushButton
{
    Q_OBJECT
public:
    explicit PushButton(QWidget *parent = nullptr);
    explicit PushButton(const QString &text, QWidget *parent = nullptr);

    /// The caption. These two stand before the base's: the base's own text stays empty.
    QString text() const;
    void setText(const QString &text);

    /// Wide enough for the caption in one line.
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int captionHeight() const { return height() / 3; }

    QLabel *label;
};
