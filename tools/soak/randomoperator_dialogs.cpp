#include "tools/soak/dice.h"
#include "tools/soak/hands.h"
#include "tools/soak/randomoperator.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>

namespace {

/// The part of a widget that takes its clicks.
QWidget *face(QWidget *widget)
{
    auto *area = qobject_cast<QAbstractScrollArea *>(widget);
    return area ? area->viewport() : widget;
}

} // namespace

QWidget *RandomOperator::dialog()
{
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup;
    return QApplication::activeModalWidget();
}

void RandomOperator::answer(QWidget *top, Dice &dice)
{
    if (qobject_cast<QMenu *>(top) || top->windowType() == Qt::Popup) {
        begin(QString("answer ") + top->metaObject()->className());
        answerMenu(top, dice);
    } else if (auto *files = qobject_cast<QFileDialog *>(top)) {
        begin(QString("answer the dialog %1").arg(files->windowTitle()));
        answerFile(files, dice);
    } else if (auto *dialog = qobject_cast<QDialog *>(top); dialog && dice.oneIn(4)) {
        begin(QString("leave ") + dialog->metaObject()->className());
        dialog->reject();
    } else if (auto *input = qobject_cast<QInputDialog *>(top)) {
        begin("enter a text");
        input->setTextValue(text(dice));
        input->accept();
    } else if (auto *colours = qobject_cast<QColorDialog *>(top)) {
        begin("choose a colour");
        colours->setCurrentColor(QRgb(dice.below(0x1000000)));
        colours->accept();
    } else {
        useControl(top, dice);
    }
}

void RandomOperator::answerMenu(QWidget *top, Dice &dice)
{
    auto *menu = qobject_cast<QMenu *>(top);
    if (dice.oneIn(4)) {
        hands::key(top, Qt::Key_Escape);
        if (top == QApplication::activePopupWidget())
            top->close();
    } else if (menu && !menu->actions().isEmpty()) {
        menu->setActiveAction(menu->actions().at(dice.below(menu->actions().size())));
        hands::key(menu, Qt::Key_Return);
    } else {
        QList<QWidget *> parts = hands::usable<QWidget>(top);
        if (parts.isEmpty()) {
            top->close();
            return;
        }
        QWidget *part = face(dice.one(parts));
        hands::click(part, hands::placeOn(part, dice));
    }
}

void RandomOperator::answerFile(QFileDialog *files, Dice &dice)
{
    if (dice.oneIn(4)) {
        files->reject();
        return;
    }
    // Stored pictures stay as they are; what is saved has other names.
    static const QString saved[] = {"a.jpg", "b", "c.png", "lost/d.jpg", "list.csv", "图.jpg"};
    static const QString folders[] = {"quick", "lost", "."};
    const bool opens = files->acceptMode() == QFileDialog::AcceptOpen;
    QString name;
    if (files->fileMode() == QFileDialog::Directory)
        name = QDir::current().absoluteFilePath(dice.one(folders));
    else if (opens && !dice.oneIn(4))
        name = dice.one(pictures);
    else
        name = QDir::current().absoluteFilePath(dice.one(saved));
    if (auto *edit = files->findChild<QLineEdit *>("fileNameEdit"))
        edit->setText(name);
    QMetaObject::invokeMethod(files, "accept");
}

void RandomOperator::agree()
{
    QWidget *top = dialog();
    if (!top)
        return;
    begin(QString("agree to ") + top->metaObject()->className());
    if (auto *box = qobject_cast<QMessageBox *>(top)) {
        if (QAbstractButton *yes = box->button(QMessageBox::Yes))
            yes->click();
        else
            box->accept();
    } else if (auto *other = qobject_cast<QDialog *>(top)) {
        other->reject();
    } else {
        top->close();
    }
}
