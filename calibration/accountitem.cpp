#include "calibration/accountitem.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

AccountItem::AccountItem(const CalibrationRecord &record, QWidget *parent)
    : QWidget(parent)
    , label(new QLabel(this))
    , deleteButton(new QPushButton(this))
    , record_(record)
    , text_(record.name + ", " + QString::number(record.length, 'g', 6) + record.unit)
{
    setFixedWidth(120);
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet("AccountItem:hover { background-color: #dcdce6; }");

    label->setText(text_);
    label->setTextFormat(Qt::PlainText);
    label->setIndent(4);
    setToolTip(text_);

    const QPixmap mark(":/pic/del.png");
    deleteButton->setIcon(mark.scaled(16, 16, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    deleteButton->setIconSize({16, 16});
    deleteButton->setStyleSheet("border: none;");
    connect(deleteButton, SIGNAL(clicked()), this, SLOT(removeAccount()));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(label);
    layout->addStretch();
    layout->addWidget(deleteButton);
}

void AccountItem::removeAccount() { emit removeAccount(this); }

void AccountItem::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        pressed = true;
}

void AccountItem::mouseReleaseEvent(QMouseEvent *)
{
    // Whichever button is released: the press alone asks for the left one.
    if (pressed) {
        emit showAccount(this);
        pressed = false;
    }
}
