#include "simulator/tour_dialogs.h"

#include "simulator/tour_operator.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <deque>
#include <vector>

namespace tour {

namespace {

constexpr int lookMs = 30;
constexpr int seeingMs = 150; // until it is drawn, and a hand has moved
constexpr int closingMs = 5000;

struct Expected
{
    QString what;
    std::function<void(QWidget *)> answer;
};

std::deque<Expected> expected;

/// A dialog or menu whose turn has come; the clock runs from the end of its answer.
struct Open
{
    QPointer<QWidget> widget;
    QString what;
    QElapsedTimer answered;
};

std::vector<Open> open; // a dialog over its parent behind it

QWidget *topmost()
{
    if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget()))
        return menu;
    return QApplication::activeModalWidget();
}

QString describe(const QWidget *widget)
{
    const auto *box = qobject_cast<const QMessageBox *>(widget);
    return box ? box->windowTitle() + ": " + box->text()
               : widget->windowTitle() + ' ' + widget->metaObject()->className();
}

void dismiss(QWidget *widget, const QString &why)
{
    fail(why);
    if (auto *dialog = qobject_cast<QDialog *>(widget))
        dialog->reject();
    else
        widget->close();
}

void forgetClosed()
{
    const auto isClosed = [](const Open &entry) {
        return !entry.widget || !entry.widget->isVisible();
    };
    open.erase(std::remove_if(open.begin(), open.end(), isClosed), open.end());
}

/// Finds the entry of something that came up. @returns null for what has none yet
Open *entryOf(const QWidget *widget)
{
    for (Open &entry : open)
        if (entry.widget == widget)
            return &entry;
    return nullptr;
}

void answer(QWidget *widget)
{
    if (expected.empty()) {
        dismiss(widget, "nobody expected " + describe(widget));
        return;
    }
    const Expected next = std::move(expected.front());
    expected.pop_front();
    open.push_back({widget, next.what, {}});
    try {
        widget->activateWindow();
        wait(seeingMs);
        next.answer(widget);
    } catch (const Error &error) {
        if (QWidget *still = topmost())
            dismiss(still, next.what + ": " + error.what());
        else
            fail(next.what + ": " + error.what());
    }
    // The answer may have brought up others, which are gone by now.
    if (Open *entry = entryOf(widget))
        entry->answered.start();
}

void look()
{
    // Armed anew first: an answer may bring up the next dialog and wait for it.
    QTimer::singleShot(lookMs, look);
    forgetClosed();
    QWidget *widget = topmost();
    if (!widget || !widget->isVisible())
        return;
    const Open *entry = entryOf(widget);
    if (!entry)
        answer(widget);
    else if (entry->answered.isValid() && entry->answered.hasExpired(closingMs))
        dismiss(widget, entry->what + " stays open");
}

void expect(const QString &what, std::function<void(QWidget *)> answer)
{
    static const bool isLooking = [] {
        QTimer::singleShot(lookMs, look);
        return true;
    }();
    Q_UNUSED(isLooking);
    forgetClosed(); // a menu comes up again as the same widget
    expected.push_back({what, std::move(answer)});
}

template<class Kind>
Kind *as(QWidget *widget)
{
    if (auto *kind = qobject_cast<Kind *>(widget))
        return kind;
    throw Error("came up instead: " + describe(widget));
}

} // namespace

void expectDialog(const QString &what, std::function<void(QDialog *)> answer)
{
    expect(what, [answer = std::move(answer)](QWidget *widget) { answer(as<QDialog>(widget)); });
}

void expectMessage(const QString &what, const std::function<void()> &look)
{
    expect(what, [=](QWidget *widget) {
        auto *box = as<QMessageBox>(widget);
        if (look)
            look();
        click(box->buttons().constFirst());
    });
}

void expectQuestion(const QString &what)
{
    expect(what, [](QWidget *widget) { click(as<QMessageBox>(widget)->button(QMessageBox::Yes)); });
}

void expectFileDialog(const QString &path, const std::function<void()> &look)
{
    expect("the dialog for " + path, [=](QWidget *widget) {
        auto *name = find<QLineEdit>(as<QFileDialog>(widget), "fileNameEdit");
        type(name, path);
        if (look)
            look();
        press(name, Qt::Key_Return);
    });
}

void expectMenu(const QString &entry, const std::function<void()> &look)
{
    expect("the menu with " + entry, [=](QWidget *widget) {
        auto *menu = as<QMenu>(widget);
        if (look)
            look();
        for (QAction *action : menu->actions())
            if (action->text() == entry) {
                clickOn(menu, menu->actionGeometry(action).center());
                return;
            }
        throw Error("the menu has no " + entry);
    });
}

void dialogsDone(int limitMs)
{
    const QString what = expected.empty() ? "the last dialog is gone" : expected.front().what;
    waitUntil(
        what, [] { return expected.empty() && !topmost(); }, limitMs);
}

} // namespace tour
