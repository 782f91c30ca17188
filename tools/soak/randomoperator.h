#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <deque>

class Dice;
class QAbstractButton;
class QFileDialog;
class QWidget;
class ShowWidget;
class Tavorin;

/// Someone at the program who does anything that can be done with it, one action at a time: on the
/// window, in whatever dialog or menu is open, and at the cable of the camera.
class RandomOperator
{
public:
    /// @param pictures  files that the operator may open
    RandomOperator(Tavorin *window, QStringList pictures);

    /// Does the action that the dice tell. Returns after the dialogs that it brings up.
    void act(Dice &dice);
    /// Agrees to the dialog or menu that is open.
    void agree();
    /// What is on top of the window and has to be answered first, or null.
    static QWidget *dialog();
    /// What was begun last, in order.
    const std::deque<QString> &recent() const { return recent_; }
    /// How often each thing was done.
    const QMap<QString, int> &tally() const { return tally_; }

private:
    void actOnWindow(Dice &dice);
    void answer(QWidget *dialog, Dice &dice);
    void answerMenu(QWidget *menu, Dice &dice);
    void answerFile(QFileDialog *files, Dice &dice);

    void drawOnPage(Dice &dice);
    void chooseTool(Dice &dice);
    void useWindow(Dice &dice);
    void usePanel(Dice &dice);
    void showPanel(Dice &dice);
    void pickCamera(Dice &dice);
    void changeResolution(Dice &dice);
    void takeSweep(Dice &dice);
    void useControl(QWidget *root, Dice &dice);
    void useList(Dice &dice);
    void pressKey(Dice &dice);
    void turnWheel(Dice &dice);
    void switchTab(Dice &dice);
    void closeTab(Dice &dice);
    void switchLanguage(Dice &dice);
    void changeCable(Dice &dice);
    void resizeWindow(Dice &dice);
    void closeWindow(Dice &dice);

    static void push(QAbstractButton *button);
    void begin(const QString &what);
    ShowWidget *page() const;
    QWidget *canvas() const;
    QString text(Dice &dice) const;

    Tavorin *window;
    QStringList pictures;
    std::deque<QString> recent_;
    QMap<QString, int> tally_;
};
