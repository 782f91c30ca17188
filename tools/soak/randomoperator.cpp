#include "tools/soak/randomoperator.h"

#include "simulator/simulatedcapture.h"
#include "tools/soak/dice.h"
#include "tools/soak/hands.h"
#include "workbench/showwidget.h"
#include "workbench/tavorin.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QGraphicsView>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QRadioButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>

#include <iterator>

namespace {

constexpr int mostPages = 6;
constexpr int mostRows = 40;

} // namespace

RandomOperator::RandomOperator(Tavorin *tavorin, QStringList files)
    : window(tavorin)
    , pictures(std::move(files))
{}

void RandomOperator::act(Dice &dice)
{
    if (QWidget *top = dialog())
        answer(top, dice);
    else
        actOnWindow(dice);
}

void RandomOperator::begin(const QString &what)
{
    ++tally_[what];
    recent_.push_back(what);
    if (recent_.size() > 40)
        recent_.pop_front();
}

ShowWidget *RandomOperator::page() const
{
    return qobject_cast<ShowWidget *>(
        window->findChild<QTabWidget *>("tabWidget")->currentWidget());
}

QWidget *RandomOperator::canvas() const
{
    const ShowWidget *current = page();
    return current ? current->findChild<QGraphicsView *>()->viewport() : nullptr;
}

QString RandomOperator::text(Dice &dice) const
{
    static const QString texts[] = {"",
                                    "0",
                                    "1",
                                    "10",
                                    "-3",
                                    "250.5",
                                    "99999999999",
                                    "x",
                                    "焊盘 3",
                                    "1e400",
                                    "nan",
                                    "a,\"b\"\n;c",
                                    QString(300, QChar('w'))};
    return dice.one(texts);
}

void RandomOperator::actOnWindow(Dice &dice)
{
    struct Choice
    {
        int weight;
        const char *name;
        void (RandomOperator::*action)(Dice &);
    };
    static constexpr Choice choices[] = {
        {5000, "draw", &RandomOperator::drawOnPage},
        {1300, "choose a tool", &RandomOperator::chooseTool},
        {800, "use a control", &RandomOperator::useWindow},
        {600, "use a panel", &RandomOperator::usePanel},
        {400, "turn the wheel", &RandomOperator::turnWheel},
        {300, "press a key", &RandomOperator::pressKey},
        {300, "use the list", &RandomOperator::useList},
        {150, "switch the tab", &RandomOperator::switchTab},
        {50, "show a panel", &RandomOperator::showPanel},
        {50, "pick a camera", &RandomOperator::pickCamera},
        {30, "close a tab", &RandomOperator::closeTab},
        {20, "resize the window", &RandomOperator::resizeWindow},
        {15, "switch the language", &RandomOperator::switchLanguage},
        {10, "take a sweep", &RandomOperator::takeSweep},
        {10, "change the resolution", &RandomOperator::changeResolution},
        {5, "change the cable", &RandomOperator::changeCable},
        {5, "close the window", &RandomOperator::closeWindow},
    };
    int all = 0;
    for (const Choice &choice : choices)
        all += choice.weight;

    if (!window->isVisible())
        window->showMaximized();
    const ShowWidget *current = page();
    if (window->findChild<QTabWidget *>("tabWidget")->count() > mostPages) {
        begin("close a tab of too many");
        closeTab(dice);
        return;
    }
    if (current && current->findChild<QListWidget *>("listWidget")->count() > mostRows &&
        dice.oneIn(3)) {
        begin("thin out the list");
        useList(dice);
        return;
    }
    int drawn = dice.below(all);
    for (const Choice &choice : choices) {
        drawn -= choice.weight;
        if (drawn < 0) {
            begin(choice.name);
            (this->*choice.action)(dice);
            return;
        }
    }
}

void RandomOperator::drawOnPage(Dice &dice)
{
    QWidget *target = canvas();
    if (!target || !target->isEnabled())
        return;
    const QPoint pos = hands::placeOn(target, dice);
    switch (dice.below(12)) {
    case 0:
        hands::click(target, pos, Qt::RightButton);
        break;
    case 1:
        hands::click(target, pos, Qt::MiddleButton);
        break;
    case 2:
        hands::doubleClick(target, pos);
        break;
    case 3:
    case 4:
        hands::drag(target, {pos, hands::placeOn(target, dice), hands::placeOn(target, dice)});
        break;
    case 5:
        hands::move(target, pos);
        break;
    default:
        hands::move(target, pos);
        hands::click(target, pos);
        break;
    }
}

void RandomOperator::chooseTool(Dice &dice)
{
    static const char *const tools[] = {"hand",  "line", "hline",      "vline",      "par",  "ver",
                                        "angle", "rect", "arc",        "circle",     "ring", "poly",
                                        "text",  "cali", "two_circle", "line_circle"};
    push(window->findChild<QAbstractButton *>(dice.one(tools)));
}

void RandomOperator::turnWheel(Dice &dice)
{
    if (QWidget *target = canvas())
        hands::wheel(target, hands::placeOn(target, dice), dice.oneIn(2) ? 1 : -1,
                     dice.oneIn(3) ? Qt::ControlModifier : Qt::NoModifier);
}

void RandomOperator::pressKey(Dice &dice)
{
    static constexpr int keys[] = {Qt::Key_Escape, Qt::Key_Delete,   Qt::Key_Return, Qt::Key_Tab,
                                   Qt::Key_Space,  Qt::Key_PageDown, Qt::Key_Left,   Qt::Key_Up,
                                   Qt::Key_F10,    Qt::Key_Control,  Qt::Key_A};
    QWidget *target = QApplication::focusWidget();
    if (target && target->isEnabled())
        hands::key(target, dice.one(keys), dice.oneIn(4) ? Qt::ControlModifier : Qt::NoModifier);
}

void RandomOperator::useWindow(Dice &dice) { useControl(window, dice); }

void RandomOperator::usePanel(Dice &dice)
{
    // The rows of the device panel are for `pickCamera`: here they would end most pictures at once.
    QWidget *panel = window->findChild<QStackedWidget *>("stackedWidget")->currentWidget();
    if (panel->objectName() != "page_1")
        useControl(panel, dice);
}

void RandomOperator::showPanel(Dice &dice)
{
    static const char *const panels[] = {"configManager", "compose"};
    push(window->findChild<QAbstractButton *>(dice.one(panels)));
}

void RandomOperator::pickCamera(Dice &dice)
{
    push(window->findChild<QAbstractButton *>("deviceManager"));
    QList<QRadioButton *> rows =
        hands::usable<QRadioButton>(window->findChild<QWidget *>("page_1"));
    if (rows.isEmpty())
        return;
    QRadioButton *row = dice.one(rows);
    // Seldom gives one up that is in use.
    if (!row->isChecked() || dice.oneIn(10))
        hands::click(row, QPoint(8, row->height() / 2));
}

void RandomOperator::changeResolution(Dice &dice)
{
    auto *sizes = window->findChild<QWidget *>("page_2")->findChild<QComboBox *>("comboBox_2");
    if (sizes->isEnabled())
        sizes->setCurrentIndex(dice.below(sizes->count()));
}

/// A short one: the operator has other things to do.
void RandomOperator::takeSweep(Dice &dice)
{
    const auto *panel = window->findChild<QWidget *>("page_4");
    auto *step = panel->findChild<QSpinBox *>("spinBox_3");
    if (!step->isVisible() || !step->isEnabled())
        return;
    step->setValue(dice.between(40, 100));
    push(panel->findChild<QAbstractButton *>("pushButton"));
}

void RandomOperator::push(QAbstractButton *button)
{
    // A radio button and a box take clicks at the left.
    if (button->isVisible() && button->isEnabled())
        hands::click(button, QPoint(qMin(8, button->width() / 2), button->height() / 2));
}

/// Uses any control in sight below a widget, in a way of its kind.
void RandomOperator::useControl(QWidget *root, Dice &dice)
{
    QList<QWidget *> controls;
    const bool leavesCamera = dice.oneIn(20);
    for (QWidget *widget : hands::usable<QWidget>(root)) {
        const bool isControl =
            qobject_cast<QAbstractButton *>(widget) || qobject_cast<QAbstractSlider *>(widget) ||
            qobject_cast<QAbstractSpinBox *>(widget) || qobject_cast<QComboBox *>(widget) ||
            qobject_cast<QLineEdit *>(widget);
        const bool mayEndLive =
            qobject_cast<QRadioButton *>(widget) || widget->inherits("CloseButton");
        if (isControl && (leavesCamera || !mayEndLive))
            controls.append(widget);
    }
    if (controls.isEmpty())
        return;
    QWidget *control = dice.one(controls);
    begin(QString("use %1 %2 of %3")
              .arg(control->metaObject()->className(), control->objectName(),
                   control->parentWidget()->objectName()));
    if (auto *button = qobject_cast<QAbstractButton *>(control)) {
        push(button);
    } else if (auto *slider = qobject_cast<QAbstractSlider *>(control)) {
        static constexpr int keys[] = {Qt::Key_Home,     Qt::Key_End,  Qt::Key_PageUp,
                                       Qt::Key_PageDown, Qt::Key_Left, Qt::Key_Right,
                                       Qt::Key_Up,       Qt::Key_Down};
        if (dice.oneIn(2))
            hands::key(slider, dice.one(keys));
        else
            hands::drag(slider, {hands::placeOn(slider, dice), hands::placeOn(slider, dice)});
    } else if (qobject_cast<QComboBox *>(control)) {
        if (dice.oneIn(2))
            hands::key(control, dice.oneIn(2) ? Qt::Key_Up : Qt::Key_Down);
        else
            hands::click(control, QPoint(control->width() - 8, control->height() / 2));
    } else if (dice.oneIn(3)) {
        hands::key(control, dice.oneIn(2) ? Qt::Key_Up : Qt::Key_Down);
    } else {
        hands::type(control, text(dice));
    }
}

void RandomOperator::useList(Dice &dice)
{
    const ShowWidget *current = page();
    auto *list = current ? current->findChild<QListWidget *>("listWidget") : nullptr;
    if (!list || !list->isVisible() || list->count() == 0)
        return;
    list->setCurrentRow(dice.below(list->count()));
    const QPoint pos = list->visualItemRect(list->currentItem()).center();
    hands::click(list->viewport(), pos);
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, list->viewport()->mapToGlobal(pos));
    QApplication::sendEvent(list->viewport(), &event);
}

void RandomOperator::switchTab(Dice &dice)
{
    auto *tabs = window->findChild<QTabWidget *>("tabWidget");
    if (tabs->count() == 0)
        return;
    const QRect tab = tabs->tabBar()->tabRect(dice.below(tabs->count()));
    hands::click(tabs->tabBar(), tab.center());
}

void RandomOperator::closeTab(Dice &dice)
{
    auto *tabs = window->findChild<QTabWidget *>("tabWidget");
    if (tabs->count() == 0)
        return;
    const int tab = dice.below(tabs->count());
    // The live page stays longer than the others: much can be done with it only.
    if (!qobject_cast<ShowWidget *>(tabs->widget(tab))->isLive() || dice.oneIn(10))
        emit tabs->tabCloseRequested(tab);
}

void RandomOperator::switchLanguage(Dice &dice)
{
    window->findChild<QAction *>(dice.oneIn(2) ? "actionenglish" : "actionchinese")->trigger();
}

void RandomOperator::changeCable(Dice &dice)
{
    static const SimulatedCapture::Device devices[] = {
        {"Orvane_A", "usb-1"}, {"Orvane_B", "usb-2"}, {"Webcam", "usb-3"}};
    const SimulatedCapture::Device &device = dice.one(devices);
    switch (dice.below(6)) {
    case 0:
        simulatedMicroscope().failNextOpens(dice.between(1, 3));
        break;
    case 1:
        simulatedMicroscope().giveEmptyFrames(dice.between(1, 2));
        break;
    case 2:
    case 3:
        simulatedMicroscope().unplug(device.path);
        break;
    default:
        simulatedMicroscope().unplug(device.path);
        simulatedMicroscope().plugIn(device);
        break;
    }
}

void RandomOperator::resizeWindow(Dice &dice)
{
    window->resize(dice.between(300, 2000), dice.between(200, 1200));
}

void RandomOperator::closeWindow(Dice &) { window->close(); }
