#pragma once

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <deque>
#include <functional>

/// Answers the modal dialogs and menus that the code under test brings up and waits for. Each that
/// appears goes to the next answer in line and is written down; one that nobody expected is closed.
class ModalAnswers : public QObject
{
public:
    using Answer = std::function<void(QWidget *)>;

    ModalAnswers() { look(); }

    /// What came up, in order: "title|text" of a message box, the window title of a dialog, "menu".
    const QStringList &seen() const { return seen_; }
    /// Everything came up that was expected, and nothing else.
    bool allAnswered() const { return answers.empty() && !unexpected; }

    void expect(Answer answer) { answers.push_back(std::move(answer)); }

    void press(QMessageBox::StandardButton button)
    {
        expect([button](QWidget *widget) {
            auto *box = qobject_cast<QMessageBox *>(widget);
            if (box && box->button(button))
                box->button(button)->click();
        });
    }

    /// Types a file name into a file dialog and takes it.
    void chooseFile(const QString &path)
    {
        expect([path](QWidget *widget) {
            auto *edit = widget->findChild<QLineEdit *>("fileNameEdit");
            if (!edit)
                return;
            edit->setText(path);
            QMetaObject::invokeMethod(widget, "accept");
        });
    }

    /// Types a text into an input dialog and takes it.
    void enterText(const QString &text)
    {
        expect([text](QWidget *widget) {
            if (auto *dialog = qobject_cast<QInputDialog *>(widget)) {
                dialog->setTextValue(text);
                dialog->accept();
            }
        });
    }

    void cancel()
    {
        expect([](QWidget *widget) { dismiss(widget); });
    }

    /// Chooses the action with this text from a menu.
    void choose(const QString &text)
    {
        expect([text](QWidget *widget) {
            for (QAction *action : widget->actions())
                if (action->text() == text) {
                    widget->close();
                    action->trigger();
                    return;
                }
        });
    }

private:
    static void dismiss(QWidget *widget)
    {
        if (auto *dialog = qobject_cast<QDialog *>(widget))
            dialog->reject();
        else
            widget->close();
    }

    static QString describe(QWidget *widget)
    {
        if (auto *box = qobject_cast<QMessageBox *>(widget))
            return box->windowTitle() + "|" + box->text();
        return qobject_cast<QMenu *>(widget) ? QString("menu") : widget->windowTitle();
    }

    void look()
    {
        // Armed anew first: an answer may bring up the next dialog and wait for it.
        QTimer::singleShot(5, this, [this] { look(); });
        QWidget *widget = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!widget)
            widget = QApplication::activeModalWidget();
        if (!widget)
            return;
        seen_ += describe(widget);
        if (answers.empty()) {
            unexpected = true;
            dismiss(widget);
            return;
        }
        const Answer answer = std::move(answers.front());
        answers.pop_front();
        answer(widget);
    }

    std::deque<Answer> answers;
    QStringList seen_;
    bool unexpected = false;
};
