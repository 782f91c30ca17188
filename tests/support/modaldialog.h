#pragma once

#include <QApplication>
#include <QTimer>

#include <functional>

/// Runs the answer on the modal dialog that comes up next, when it is of the class Dialog. Then
/// closes whatever is still open, so that a test fails rather than hangs.
template<class Dialog>
class NextDialog
{
public:
    explicit NextDialog(std::function<void(Dialog *)> answer)
    {
        timer.setInterval(0);
        QObject::connect(&timer, &QTimer::timeout, [this, answer] {
            QWidget *modal = QApplication::activeModalWidget();
            if (!modal)
                return;
            timer.stop();
            auto *dialog = qobject_cast<Dialog *>(modal);
            asked = dialog;
            if (dialog)
                answer(dialog);
            if (modal->isVisible())
                modal->close();
        });
        timer.start();
    }

    bool wasAsked() const { return asked; }

private:
    QTimer timer;
    bool asked = false;
};
