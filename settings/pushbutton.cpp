#include "settings/pushbutton.h"

#include <QLabel>
#include <QStyleOptionButton>
#include <QStylePainter>

PushButton::PushButton(QWidget *parent)
    : QPushButton(parent)
    , label(new QLabel(this))
{
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignCenter);
    label->setStyleSheet("color: #435165");
}

PushButton::PushButton(const QString &text, QWidget *parent)
    : PushButton(parent)
{
    setText(text);
}

QString PushButton::text() const { return label->text(); }

void PushButton::setText(const QString &text)
{
    label->setText(text);
    setAccessibleName(text);
    updateGeometry();
}

QSize PushButton::sizeHint() const
{
    constexpr int margins = 8;
    const int captionWidth = label->fontMetrics().horizontalAdvance(text()) + margins;
    return QPushButton::sizeHint().expandedTo({captionWidth, 0});
}

void PushButton::resizeEvent(QResizeEvent *event)
{
    QPushButton::resizeEvent(event);
    label->setGeometry(
        QRect(QPoint(0, height() - captionHeight()), QPoint(width() - 1, height() - 1)));
}

void PushButton::paintEvent(QPaintEvent *)
{
    QStyleOptionButton option;
    initStyleOption(&option);
    QStylePainter painter(this);
    painter.drawControl(QStyle::CE_PushButtonBevel, option);
    option.rect.setBottom(height() - captionHeight() - 1);
    painter.drawControl(QStyle::CE_PushButtonLabel, option);
}
