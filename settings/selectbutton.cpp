#include "settings/selectbutton.h"

#include <QAction>
#include <QMenu>
#include <QPolygon>
#include <QRegion>

SelectButton::SelectButton(QWidget *parent)
    : QPushButton(parent)
    , cornerButton(new QPushButton(this))
    , menu(new QMenu(this))
{
    cornerButton->setStyleSheet("QPushButton { border: none; background-color: #f3a41b;}");
    connect(cornerButton, &QPushButton::clicked, this, &SelectButton::menuShow);
}

void SelectButton::addItem(const QIcon &icon, const QString &text, const QVariant &data)
{
    auto *action = new QAction(icon, text, this);
    action->setData(data);
    connect(action, &QAction::triggered, this, &SelectButton::actionTrigged);
    menu->addAction(action);
    choose(icon, data);
}

void SelectButton::menuShow() { menu->exec(mapToGlobal(QPoint(0, height()))); }

void SelectButton::actionTrigged()
{
    const auto *action = qobject_cast<QAction *>(sender());
    if (!action)
        return;
    choose(action->icon(), action->data());
    emit selectChange(data_);
}

void SelectButton::resizeEvent(QResizeEvent *event)
{
    QPushButton::resizeEvent(event);
    const int d = qMin(width(), height()) / 3;
    cornerButton->setGeometry(
        QRect(QPoint(width() - d - 1, height() - d - 1), QPoint(width() - 2, height() - 2)));
    cornerButton->setMask(QRegion(QPolygon({QPoint(d, 0), QPoint(0, d), QPoint(d, d)})));
}

void SelectButton::choose(const QIcon &icon, const QVariant &data)
{
    data_ = data;
    setIcon(icon);
}
