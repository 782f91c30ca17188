// What an operator sees and reaches: no text is cut off in either language, every control is met by
// the Tab key, and the one that has the focus shows it.

#include "calibration/calibrationwidget.h"
#include "camera/camerasetwidget.h"
#include "camera/elidedlabel.h"
#include "fusion/picshowdialog.h"
#include "measure/base.h"
#include "measure/graphicscross.h"
#include "settings/crossdialog.h"
#include "settings/drawchangedialog.h"
#include "settings/drawsettingdialog.h"
#include "settings/selectbutton.h"
#include "tests/support/mainwindow.h"
#include "tests/support/modalanswers.h"
#include "tests/support/panel.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabBar>
#include <QtTest>

#include <functional>

namespace {

const char *const cameraHeaders[] = {"pushButton",   "pushButton_2", "pushButton_3",
                                     "pushButton_4", "pushButton_5", "pushButton_6"};

/// Name of a widget for people: the unnamed ones by their class.
QString nameOf(const QWidget *widget)
{
    return widget->objectName().isEmpty() ? widget->metaObject()->className()
                                          : widget->objectName();
}

int widest(const QWidget *widget, const QStringList &texts)
{
    int width = 0;
    for (const QString &text : texts)
        width = qMax(width, widget->fontMetrics().size(Qt::TextShowMnemonic, text).width());
    return width;
}

/// How many pixels of width the widget's texts lack; none or fewer when all is there.
int lackingWidth(const QWidget *widget)
{
    if (auto *label = qobject_cast<const QLabel *>(widget)) {
        const bool isShortened = label->inherits("ElidedLabel") || label->wordWrap();
        return isShortened ? 0 : widest(label, label->text().split('\n')) - label->width();
    }
    if (auto *combo = qobject_cast<const QComboBox *>(widget)) {
        QStringList items;
        for (int i = 0; i < combo->count() && !combo->isEditable(); ++i)
            items << combo->itemText(i);
        constexpr int frameAndArrow = 26;
        return widest(combo, items) + frameAndArrow - combo->width();
    }
    if (auto *spin = qobject_cast<const QSpinBox *>(widget)) {
        const auto *edit = spin->findChild<QLineEdit *>();
        const QStringList ends{QString::number(spin->minimum()), QString::number(spin->maximum())};
        constexpr int innerMargins = 4;
        return widest(edit, ends) + innerMargins - edit->width();
    }
    if (auto *button = qobject_cast<const QAbstractButton *>(widget)) {
        if (button->inherits("PushButton") || button->text().isEmpty())
            return 0; // its label tells
        const bool hasBox = qobject_cast<const QCheckBox *>(button) != nullptr;
        const int beside = hasBox ? 22 : button->icon().isNull() ? 6 : 26;
        return widest(button, {button->text()}) + beside - button->width();
    }
    if (auto *group = qobject_cast<const QGroupBox *>(widget))
        return widest(group, {group->title()}) - group->width();
    return 0;
}

/// Every visible widget whose text does not fit, with what it lacks.
QStringList cutOff(const QWidget &parent)
{
    QStringList found;
    for (const QWidget *widget : parent.findChildren<QWidget *>()) {
        if (!widget->isVisibleTo(&parent))
            continue;
        const int lacking = lackingWidth(widget);
        if (lacking > 0)
            found << QString("%1 lacks %2").arg(nameOf(widget)).arg(lacking);
    }
    return found;
}

/// Whether the Tab key can bring the focus to a widget.
bool takesTab(const QWidget *widget)
{
    return widget->isVisible() && widget->isEnabled() && !widget->focusProxy() &&
           (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
}

/// A turn through a window by the Tab key.
struct TabWalk
{
    QList<QWidget *> met;
    QStringList invisible; ///< had the focus without a pixel telling it
};

TabWalk walk(QWidget &window)
{
    TabWalk result;
    for (int i = 0; i < 200; ++i) {
        QWidget *from = QApplication::focusWidget();
        QTest::keyClick(from ? from : &window, Qt::Key_Tab);
        QWidget *widget = QApplication::focusWidget();
        if (!widget || result.met.contains(widget))
            break;
        result.met << widget;
        QCoreApplication::processEvents();
        const QRect place(widget->mapTo(&window, QPoint()), widget->size());
        const QImage focused = window.grab(place).toImage();
        widget->clearFocus();
        // A default button is lit all the time: the return key reaches it from everywhere.
        const auto *button = qobject_cast<QPushButton *>(widget);
        const bool isDefault = button && button->isDefault();
        if (!isDefault && focused == window.grab(place).toImage())
            result.invisible << nameOf(widget);
        widget->setFocus(Qt::TabFocusReason);
    }
    return result;
}

QStringList namesOf(const QList<QWidget *> &widgets)
{
    QStringList names;
    for (const QWidget *widget : widgets)
        names << nameOf(widget);
    return names;
}

/// Those that Tab should reach and did not. After the walk, when exclusive groups of buttons have
/// agreed on the one that stands for them.
QStringList unmet(const QWidget &window, const QList<QWidget *> &met)
{
    QStringList names;
    for (QWidget *widget : window.findChildren<QWidget *>())
        if (takesTab(widget) && !met.contains(widget))
            names << nameOf(widget);
    return names;
}

/// The six groups of the camera panel, opened.
void openAllGroups(const MainWindow &window)
{
    for (const char *header : cameraHeaders)
        window.part("page_2")->findChild<QPushButton *>(header)->click();
}

using DialogMaker = std::function<QDialog *(const MainWindow &)>;

} // namespace

Q_DECLARE_METATYPE(DialogMaker)

class TestFace : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void noTextOfTheWindowIsCutOff_data();
    void noTextOfTheWindowIsCutOff();
    void noTextOfADialogIsCutOff_data();
    void noTextOfADialogIsCutOff();
    void noTextOfTheBasicPanelIsCutOff_data();
    void noTextOfTheBasicPanelIsCutOff();
    void theLastLineOfAChosenRowIsShown_data();
    void theLastLineOfAChosenRowIsShown();

    void tabMeetsEveryControlOfTheWindow();
    void tabMeetsEveryControlOfThePanels();
    void tabMeetsEveryControlOfADialog_data();
    void tabMeetsEveryControlOfADialog();
    void arrowsChooseAmongTheTools();
    void theCornerMenuOpensByKey();

private:
    /// Connects the simulated microscope through the device panel.
    static void showWithPanelOpen(const MainWindow &window, ModalAnswers &answers);
    static void addDialogs();
};

void TestFace::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    // The size of a usual desktop; without a screen the toolkit takes a larger one.
    QFont font = QApplication::font();
    font.setPixelSize(12);
    QApplication::setFont(font);
}

void TestFace::cleanup() { simulatedMicroscope().attach({}); }

/// The window with a camera connected and every group of its panel open.
void TestFace::showWithPanelOpen(const MainWindow &window, ModalAnswers &answers)
{
    window->show();
    answers.press(QMessageBox::Ok);
    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    window.click("deviceManager");
    QTRY_VERIFY(window.part("page_1")->findChild<QRadioButton *>());
    window.part("page_1")->findChild<QRadioButton *>()->click();
    QTRY_VERIFY(window.part("configManager")->isEnabled());
    QTRY_VERIFY(answers.allAnswered());
    window.click("configManager");
    openAllGroups(window);
}

// ---- Texts

void TestFace::noTextOfTheWindowIsCutOff_data()
{
    QTest::addColumn<bool>("english");
    QTest::newRow("Chinese") << false;
    QTest::newRow("English") << true;
}

void TestFace::noTextOfTheWindowIsCutOff()
{
    QFETCH(bool, english);
    ModalAnswers answers;
    MainWindow window;
    showWithPanelOpen(window, answers);
    // In the other language first, at whose widths everything has been laid out by then.
    english ? window->on_actionchinese_triggered() : window->on_actionenglish_triggered();
    QCoreApplication::processEvents();
    english ? window->on_actionenglish_triggered() : window->on_actionchinese_triggered();

    for (const char *panel : {"deviceManager", "configManager", "compose"}) {
        window.click(panel);
        QCoreApplication::processEvents();
        QCOMPARE(cutOff(*window.get()).join(", "), QString());
        QCOMPARE(window.part("stackedWidget")->width(), 210);
    }
    window.addPicture("page");
    QCoreApplication::processEvents();
    QCOMPARE(cutOff(*window.get()).join(", "), QString());
    window->on_actionchinese_triggered();
}

void TestFace::addDialogs()
{
    QTest::addColumn<bool>("english");
    QTest::addColumn<DialogMaker>("make");
    const QList<QPair<const char *, DialogMaker>> makers{
        {"drawing settings",
         [](const MainWindow &) -> QDialog * { return new DrawSettingDialog(); }},
        {"property of a shape",
         [](const MainWindow &window) -> QDialog * {
             sceneOf(window.currentPage())
                 .loadJson(R"([{"type":1,"point":[{"x":1,"y":1},{"x":9,"y":9}]}])");
             return new DrawChangeDialog(sceneOf(window.currentPage()).items().first(), 0);
         }},
        {"property of a crosshair line",
         [](const MainWindow &window) -> QDialog * {
             window.currentPage()->setCrossHorCount(1);
             return new DrawChangeDialog(sceneOf(window.currentPage()).crossLines().first(), 1);
         }},
        {"crosshair",
         [](const MainWindow &window) -> QDialog * {
             return new CrossDialog(window.currentPage());
         }},
        {"calibration",
         [](const MainWindow &) -> QDialog * {
             auto *dialog = new CalibrationWidget(1234.56, {});
             dialog->findChild<QLineEdit *>("lineEdit_2")->setText("98765");
             dialog->findChild<QPushButton *>("pushButton")->click(); // the warning
             return dialog;
         }},
        {"picture",
         [](const MainWindow &) -> QDialog * {
             static QPixmap picture(40, 30);
             return new PicShowDialog(&picture);
         }},
    };
    for (const auto &maker : makers)
        for (const bool english : {false, true})
            QTest::newRow(QByteArray(maker.first) + (english ? ", English" : ", Chinese"))
                << english << maker.second;
}

void TestFace::noTextOfADialogIsCutOff_data() { addDialogs(); }

void TestFace::noTextOfADialogIsCutOff()
{
    QFETCH(bool, english);
    QFETCH(DialogMaker, make);
    MainWindow window;
    window.addPicture("page");
    const auto translation = english ? std::make_unique<English>() : nullptr;
    const std::unique_ptr<QDialog> dialog(make(window));
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    QCOMPARE(cutOff(*dialog).join(", "), QString());
}

void TestFace::noTextOfTheBasicPanelIsCutOff_data() { noTextOfTheWindowIsCutOff_data(); }

void TestFace::noTextOfTheBasicPanelIsCutOff()
{
    QFETCH(bool, english);
    const auto translation = english ? std::make_unique<English>() : nullptr;
    CameraSetWidget panel;
    panel.resize(210, 600);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QCOMPARE(cutOff(panel).join(", "), QString());
}

void TestFace::theLastLineOfAChosenRowIsShown_data()
{
    QTest::addColumn<int>("points");
    for (const int points : {8, 9, 10, 11, 12})
        QTest::addRow("%d points", points) << points;
}

void TestFace::theLastLineOfAChosenRowIsShown()
{
    QFETCH(int, points);
    MainWindow window;
    window->show();
    window.addPicture("page");
    sceneOf(window.currentPage())
        .loadJson(R"([{"type":7,"point":[{"x":10,"y":10},{"x":90,"y":70}]}])");
    auto *list = window.currentPage()->findChild<QListWidget *>();
    QFont font = list->font();
    font.setPointSize(points);
    list->setFont(font);
    QTRY_COMPARE(list->item(0)->text().count('\n'), 4);
    QCoreApplication::processEvents();
    const QRect row = list->visualItemRect(list->item(0));
    const QRect lastLine(row.left() + 4, row.bottom() - 14, row.width() - 8, 12);
    const auto ink = [&] {
        const QImage image = list->viewport()->grab(lastLine).toImage();
        int dark = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                dark += image.pixelColor(x, y).lightness() < 140;
        return dark;
    };
    const int plain = ink();
    QVERIFY(plain > 50);
    list->setCurrentRow(0);
    QCoreApplication::processEvents();
    QVERIFY2(ink() >= plain, qPrintable(QString::number(ink())));
}

// ---- Keys

void TestFace::tabMeetsEveryControlOfTheWindow()
{
    MainWindow window;
    window->show();
    window.addPicture("page");
    sceneOf(window.currentPage())
        .loadJson(R"([{"type":1,"point":[{"x":10,"y":10},{"x":90,"y":70}]}])");
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    window.part("open")->setFocus(Qt::TabFocusReason);
    const TabWalk tabs = walk(*window.get());
    QCOMPARE(unmet(*window.get(), tabs.met).join(", "), QString());
    // The picture has no frame.
    QCOMPARE(tabs.invisible.join(", "), QString("PictureView"));
    // As they stand, from the left and from above. One button stands for all that exclude each
    // other; the arrows lead on from it.
    QCOMPARE(namesOf(tabs.met).join(' '),
             QString("save settingBtn zoom capture2Btn export_2 cali QPushButton calibrateCombo "
                     "comboBox_2 cross leftHide deviceManager qt_tabwidget_tabbar PictureView "
                     "listWidget pushButton open"));
}

void TestFace::tabMeetsEveryControlOfThePanels()
{
    ModalAnswers answers;
    MainWindow window;
    showWithPanelOpen(window, answers);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    for (const char *panel : {"deviceManager", "configManager", "compose"}) {
        window.click(panel);
        QCoreApplication::processEvents();
        window.part("open")->setFocus(Qt::TabFocusReason);
        const TabWalk tabs = walk(*window.get());
        QCOMPARE(unmet(*window.get(), tabs.met).join(", "), QString());
        // The picture has no frame, and the list is empty.
        QCOMPARE(tabs.invisible.join(", "), QString("OverlayView, listWidget"));
    }
}

void TestFace::tabMeetsEveryControlOfADialog_data() { addDialogs(); }

void TestFace::tabMeetsEveryControlOfADialog()
{
    QFETCH(DialogMaker, make);
    MainWindow window;
    window.addPicture("page");
    const std::unique_ptr<QDialog> dialog(make(window));
    dialog->show();
    dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    const TabWalk tabs = walk(*dialog);
    QVERIFY(!tabs.met.isEmpty());
    QCOMPARE(unmet(*dialog, tabs.met).join(", "), QString());
    QCOMPARE(tabs.invisible.join(", "), QString());
}

void TestFace::arrowsChooseAmongTheTools()
{
    MainWindow window;
    window->show();
    window.addPicture("page");
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    window.part("hand")->setFocus(Qt::TabFocusReason);
    const auto chosenBy = [&](Qt::Key key, int times) {
        QStringList chosen;
        for (int i = 0; i < times; ++i) {
            QTest::keyClick(QApplication::focusWidget(), key);
            chosen
                << window->findChild<QButtonGroup *>("buttonGroup")->checkedButton()->objectName();
        }
        return chosen.join(' ');
    };
    QCOMPARE(chosenBy(Qt::Key_Right, 14),
             QString("line hline vline par ver angle rect arc circle ring poly line_circle "
                     "two_circle text"));
    QCOMPARE(sceneOf(window.currentPage()).drawType(), 15);
    QCOMPARE(chosenBy(Qt::Key_Left, 15),
             QString("two_circle line_circle poly ring circle arc rect angle ver par vline hline "
                     "line hand cali"));
    QCOMPARE(sceneOf(window.currentPage()).drawType(), 17);
}

void TestFace::theCornerMenuOpensByKey()
{
    MainWindow window;
    window->show();
    window.addPicture("page");
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    ModalAnswers answers;
    answers.choose("line");
    auto *corner = window.part("cali")->findChild<QPushButton *>();
    QVERIFY(takesTab(corner));
    corner->setFocus(Qt::TabFocusReason);
    QTest::keyClick(corner, Qt::Key_Space);
    QVERIFY(answers.allAnswered());
    QCOMPARE(window.part<SelectButton>("cali")->data().toInt(), 16);
}

QTEST_MAIN(TestFace)
#include "test_face.moc"
