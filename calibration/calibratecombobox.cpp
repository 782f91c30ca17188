#include "calibration/calibratecombobox.h"

#include "calibration/accountitem.h"
#include "settings/settingsfiles.h"

#include <QEvent>
#include <QLineEdit>
#include <QListWidget>

CaliBrateComboBox::CaliBrateComboBox(QWidget *parent)
    : QComboBox(parent)
    , listWidget(new QListWidget)
    , editor(new QLineEdit)
{
    editor->setReadOnly(true);
    setModel(listWidget->model());
    setView(listWidget);
    setLineEdit(editor);
    const CalibrationRecords stored = readCalibrations();
    for (const CalibrationRecord &record : stored)
        addItem(record, false);

    editor->installEventFilter(this);
    // Picked with the keys or the wheel, or beside the row's widget.
    connect(this, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { showAccount(row(index)); });
}

void CaliBrateComboBox::addItem(const CalibrationRecord &record, bool save)
{
    auto *account = new AccountItem(record);
    connect(account, SIGNAL(showAccount(AccountItem *)), this, SLOT(showAccount(AccountItem *)));
    connect(account, SIGNAL(removeAccount(AccountItem *)), this,
            SLOT(removeAccount(AccountItem *)));

    auto *item = new QListWidgetItem;
    item->setSizeHint(account->sizeHint().expandedTo({0, 24}));
    listWidget->addItem(item);
    listWidget->setItemWidget(item, account);
    if (listWidget->count() == 1)
        setCurrentIndex(-1); // the base made the first row current

    if (save)
        writeCalibrations(records());
}

CalibrationRecords CaliBrateComboBox::records() const
{
    CalibrationRecords records;
    for (int i = 0; i < listWidget->count(); ++i)
        records.append(row(i)->record());
    return records;
}

void CaliBrateComboBox::showAccount(AccountItem *item)
{
    emit calibrateChange(item->scale());
    setCurrentIndex(rowOf(item)); // its row is lit when the list opens again
    editor->setText(item->text());
    hidePopup();
}

void CaliBrateComboBox::removeAccount(AccountItem *item)
{
    const int index = rowOf(item);
    if (index >= 0) {
        // Also when another row was in force: the operator picks again.
        emit calibrateChange(1.0);
        editor->clear();
        delete listWidget->takeItem(index);
        item->deleteLater();
        setCurrentIndex(-1);
    }
    writeCalibrations(records());
    if (listWidget->count() == 0)
        hidePopup();
}

bool CaliBrateComboBox::eventFilter(QObject *object, QEvent *event)
{
    // The text cannot be edited, so a click on it opens the list like one on the arrow.
    if (object == editor && event->type() == QEvent::MouseButtonRelease)
        showPopup();
    return QComboBox::eventFilter(object, event);
}

AccountItem *CaliBrateComboBox::row(int index) const
{
    return qobject_cast<AccountItem *>(listWidget->itemWidget(listWidget->item(index)));
}

int CaliBrateComboBox::rowOf(const AccountItem *item) const
{
    for (int i = 0; i < listWidget->count(); ++i) {
        if (row(i) == item)
            return i;
    }
    return -1;
}
