#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/graphicscross.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "settings/drawchangedialog.h"
#include "settings/settingsfiles.h"
#include "tests/support/modaldialog.h"
#include "tests/support/scenemouse.h"
#include "tests/support/workingdirectory.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPen>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTranslator>

#include <functional>
#include <memory>

namespace {

constexpr int shapeKind = 0;
constexpr int crossKind = 1;

/// A scene with a measured line and a crosshair of one line each way.
class Scene : public MainScene
{
public:
    Scene()
    {
        setSceneRect(0, 0, 400, 300);
        setDrawProperties({{LineWidth, 2},
                           {LineColor, QColor(Qt::red)},
                           {DrawCrossWidth, 2},
                           {DrawCrossColor, QColor(1, 2, 3)}});
        setDrawType(1);
        SceneMouse(*this).click({QPointF(50, 50), QPointF(150, 60)});
        setDrawType(0);
        setCrossHorCount(1);
        setCrossVerCount(1);
    }

    Base *line() const { return items().first(); }
    GraphicsCross *cross() const { return crossLines().first(); }
};

/// The dialog on the screen, with its controls by name.
struct Form
{
    DrawChangeDialog dialog;
    QSpinBox *width = dialog.findChild<QSpinBox *>("spinBox_2");
    QPushButton *colour = dialog.findChild<QPushButton *>("pushButton_2");
    QCheckBox *lock = dialog.findChild<QCheckBox *>("checkBox");
    QPushButton *remove = dialog.findChild<QPushButton *>("pushButton");

    Form(void *object, int kind)
        : dialog(object, kind)
    {
        dialog.show();
    }

    void choose(const QColor &wanted)
    {
        const NextDialog<QColorDialog> choice([&](QColorDialog *asking) {
            QCOMPARE(asking->currentColor(), QColor(Qt::white));
            QVERIFY(!asking->parentWidget());
            asking->setCurrentColor(wanted.isValid() ? wanted : QColor(Qt::green));
            wanted.isValid() ? asking->accept() : asking->reject();
        });
        colour->click();
        QVERIFY(choice.wasAsked());
    }
    void pressDelete(QMessageBox::StandardButton answer)
    {
        const NextDialog<QMessageBox> question([&](QMessageBox *asking) {
            QCOMPARE(asking->text(), QString::fromUtf8("确认要删除吗"));
            QCOMPARE(asking->parentWidget(), &dialog);
            QCOMPARE(asking->standardButtons(), QMessageBox::Yes | QMessageBox::No);
            asking->button(answer)->click();
        });
        remove->click();
        QVERIFY(question.wasAsked());
    }
};

/// What an operator does first when the dialog's object has gone, before closing it.
using Touch = std::function<void(Form &)>;
const Touch touches[] = {
    [](Form &f) { f.width->setValue(3); },
    [](Form &f) { f.lock->click(); },
    [](Form &f) { f.choose(QColor(10, 20, 30)); },
    [](Form &) {},
};

bool isMovable(const QGraphicsItem *item)
{
    return item->flags().testFlag(QGraphicsItem::ItemIsMovable);
}

} // namespace

class TestDrawChangeDialog : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<WorkingDirectory>(); }
    void cleanup() { directory.reset(); }

    void theFormShowsAShape();
    void theFormShowsACrosshairLine();
    void theWidthGoesToTheShape();
    void theWidthGoesToTheCrosshairLine();
    void aPenWiderThanThreeIsNarrowed();
    void theColourGoesToTheShape();
    void theColourGoesToTheCrosshairLine();
    void cancellingTheColourChangesNothing();
    void theLockHoldsTheShapeItsHandlesAndItsLabel();
    void aLockedCrosshairLineStaysWhereItIs();
    void theLockSurvivesInTheFile();
    void aShapeHasNoDeleteButton();
    void yesDeletesTheLineAndCloses();
    void noKeepsTheDialogOpen();
    void escapeKeepsTheDialogOpen();
    void anotherKindHasNoObjectAndCountsAsLocked();
    void aLineThatGoesAwayMeanwhileIsLeftAlone();
    void aShapeThatGoesAwayMeanwhileIsLeftAlone();
    void aSceneThatGoesAwayMeanwhileIsLeftAlone();
    void theFormInBothLanguages();

private:
    std::unique_ptr<WorkingDirectory> directory;
};

void TestDrawChangeDialog::theFormShowsAShape()
{
    Scene scene;
    Form f(scene.line(), shapeKind);
    QCOMPARE(f.width->value(), 2);
    QCOMPARE(f.colour->styleSheet(), QString("border: none; background-color: rgb(255,0,0)"));
    QVERIFY(!f.lock->isChecked());
    QCOMPARE(scene.line()->item()->pen().width(), 2);
}

void TestDrawChangeDialog::theFormShowsACrosshairLine()
{
    Scene scene;
    scene.cross()->setFlag(QGraphicsItem::ItemIsMovable, false);
    Form f(scene.cross(), crossKind);
    QCOMPARE(f.width->value(), 2);
    QCOMPARE(f.colour->styleSheet(), QString("border: none; background-color: rgb(1,2,3)"));
    QVERIFY(f.lock->isChecked());
    QVERIFY(f.remove->isVisible());
}

void TestDrawChangeDialog::theWidthGoesToTheShape()
{
    Scene scene;
    Form f(scene.line(), shapeKind);
    QTest::keyClick(f.width, Qt::Key_Up);
    QCOMPARE(scene.line()->item()->pen().width(), 3);
    QCOMPARE(scene.cross()->pen().width(), 2);
    QCOMPARE(f.width->minimum(), 1);
    QCOMPARE(f.width->maximum(), 3);
}

void TestDrawChangeDialog::theWidthGoesToTheCrosshairLine()
{
    Scene scene;
    Form f(scene.cross(), crossKind);
    QTest::keyClick(f.width, Qt::Key_Down);
    QCOMPARE(scene.cross()->pen().width(), 1);
    QCOMPARE(scene.cross()->pen().color(), QColor(1, 2, 3));
    QCOMPARE(scene.crossLines().last()->pen().width(), 2);
}

void TestDrawChangeDialog::aPenWiderThanThreeIsNarrowed()
{
    Scene scene;
    QPen pen = scene.cross()->pen();
    pen.setWidth(7);
    scene.cross()->setPen(pen);
    Form f(scene.cross(), crossKind);
    QCOMPARE(f.width->value(), 3);
    QCOMPARE(scene.cross()->pen().width(), 3);
}

void TestDrawChangeDialog::theColourGoesToTheShape()
{
    Scene scene;
    Form f(scene.line(), shapeKind);
    f.choose(QColor(10, 20, 30));
    QCOMPARE(scene.line()->item()->pen().color(), QColor(10, 20, 30));
    QCOMPARE(f.colour->styleSheet(), QString("border: none; background-color: rgb(10,20,30)"));
}

void TestDrawChangeDialog::theColourGoesToTheCrosshairLine()
{
    Scene scene;
    Form f(scene.cross(), crossKind);
    f.choose(QColor(10, 20, 30));
    QCOMPARE(scene.cross()->pen().color(), QColor(10, 20, 30));
    QCOMPARE(scene.cross()->pen().width(), 2);
    QCOMPARE(scene.crossLines().last()->pen().color(), QColor(1, 2, 3));
}

void TestDrawChangeDialog::cancellingTheColourChangesNothing()
{
    Scene scene;
    Form f(scene.line(), shapeKind);
    f.choose(QColor());
    QCOMPARE(scene.line()->item()->pen().color(), QColor(Qt::red));
    QCOMPARE(f.colour->styleSheet(), QString("border: none; background-color: rgb(255,0,0)"));
}

void TestDrawChangeDialog::theLockHoldsTheShapeItsHandlesAndItsLabel()
{
    Scene scene;
    Form f(scene.line(), shapeKind);
    for (const bool movable : {false, true}) {
        f.lock->click();
        QCOMPARE(isMovable(scene.line()->item()), movable);
        QCOMPARE(isMovable(scene.line()->text()), movable);
        for (const GraphicsPoint *point : scene.line()->points())
            QCOMPARE(isMovable(point), movable);
    }
    f.lock->click();
    QVERIFY(Form(scene.line(), shapeKind).lock->isChecked());
}

void TestDrawChangeDialog::aLockedCrosshairLineStaysWhereItIs()
{
    Scene scene;
    GraphicsCross *line = scene.cross(); // the horizontal one, at half of 300
    Form f(line, crossKind);
    f.lock->click();
    SceneMouse(scene).drag({20, 150}, {20, 200});
    QCOMPARE(line->pos(), QPointF(0, 150));
    f.lock->click();
    SceneMouse(scene).drag({20, 150}, {20, 200});
    QCOMPARE(line->pos(), QPointF(0, 200));
}

void TestDrawChangeDialog::theLockSurvivesInTheFile()
{
    Scene scene;
    {
        Form f(scene.cross(), crossKind);
        f.lock->click();
        f.width->setValue(3);
        f.choose(QColor(10, 20, 30));
    }
    scene.saveCross();
    const CrossRecords stored = readCrosses();
    QCOMPARE(stored.size(), 2);
    QVERIFY(stored[0].lock);
    QCOMPARE(stored[0].width, 3);
    QCOMPARE(stored[0].color, QColor(10, 20, 30));
    QVERIFY(!stored[1].lock);

    Scene restarted;
    restarted.loadCross();
    QVERIFY(!isMovable(restarted.cross()));
    QVERIFY(isMovable(restarted.crossLines().last()));
}

void TestDrawChangeDialog::aShapeHasNoDeleteButton()
{
    Scene scene;
    Form f(scene.line(), shapeKind);
    QVERIFY(!f.remove->isVisible());
}

void TestDrawChangeDialog::yesDeletesTheLineAndCloses()
{
    Scene scene;
    const int before = scene.QGraphicsScene::items().size();
    Form f(scene.cross(), crossKind);
    f.pressDelete(QMessageBox::Yes);
    QCOMPARE(f.dialog.result(), int(QDialog::Accepted));
    QVERIFY(!f.dialog.isVisible());
    QCOMPARE(scene.crossHorCount(), 0);
    QCOMPARE(scene.crossVerCount(), 1);
    QCOMPARE(scene.crossLines().size(), 1);
    QCOMPARE(scene.QGraphicsScene::items().size(), before - 1);
}

void TestDrawChangeDialog::noKeepsTheDialogOpen()
{
    Scene scene;
    Form f(scene.cross(), crossKind);
    f.pressDelete(QMessageBox::No);
    QVERIFY(f.dialog.isVisible());
    QCOMPARE(scene.crossLines().size(), 2);
}

void TestDrawChangeDialog::escapeKeepsTheDialogOpen()
{
    Scene scene;
    Form f(scene.cross(), crossKind);
    const NextDialog<QMessageBox> question(
        [](QMessageBox *asking) { QTest::keyClick(asking, Qt::Key_Escape); });
    f.remove->click();
    QVERIFY(question.wasAsked());
    QVERIFY(f.dialog.isVisible());
    QCOMPARE(scene.crossLines().size(), 2);
}

void TestDrawChangeDialog::anotherKindHasNoObjectAndCountsAsLocked()
{
    Form f(nullptr, 2);
    QVERIFY(f.lock->isChecked());
    f.lock->click();
    f.width->setValue(2);
    f.choose(QColor(10, 20, 30));
    QCOMPARE(f.colour->styleSheet(), QString("border: none; background-color: rgb(10,20,30)"));
}

void TestDrawChangeDialog::aLineThatGoesAwayMeanwhileIsLeftAlone()
{
    for (const Touch &touch : touches) {
        Scene scene;
        Form f(scene.cross(), crossKind);
        scene.setCrossHorCount(0);
        touch(f);
        QCOMPARE(scene.cross()->pen().width(), 2);
        f.pressDelete(QMessageBox::Yes);
        QVERIFY(!f.dialog.isVisible());
        QCOMPARE(scene.crossLines().size(), 1);
    }
}

void TestDrawChangeDialog::aShapeThatGoesAwayMeanwhileIsLeftAlone()
{
    for (const Touch &touch : touches) {
        Scene scene;
        Form f(scene.line(), shapeKind);
        scene.clearItems();
        touch(f);
        f.dialog.close();
        QVERIFY(scene.items().isEmpty());
    }
}

void TestDrawChangeDialog::aSceneThatGoesAwayMeanwhileIsLeftAlone()
{
    auto scene = std::make_unique<Scene>();
    Form shape(scene->line(), shapeKind);
    Form cross(scene->cross(), crossKind);
    scene.reset();
    for (Form *f : {&shape, &cross}) {
        f->width->setValue(3);
        f->lock->click();
    }
    cross.pressDelete(QMessageBox::Yes);
    QVERIFY(!cross.dialog.isVisible());
}

void TestDrawChangeDialog::theFormInBothLanguages()
{
    Scene scene;
    const auto texts = [&] {
        Form f(scene.cross(), crossKind);
        return QStringList{f.dialog.windowTitle(), f.dialog.findChild<QLabel *>("label_3")->text(),
                           f.dialog.findChild<QLabel *>("label_4")->text(), f.lock->text(),
                           f.remove->text()};
    };
    QCOMPARE(texts(), QStringList({"属性", "宽度", "颜色", "锁定", "删除"}));
    QTranslator english;
    QVERIFY(english.load(":/language_en.qm"));
    QCoreApplication::installTranslator(&english);
    QCOMPARE(texts(), QStringList({"Property", "Width", "Color", "Lock", "Delete"}));
    // The question stays Chinese.
    Form(scene.cross(), crossKind).pressDelete(QMessageBox::No);
}

int main(int argc, char **argv)
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication app(argc, argv);
    TestDrawChangeDialog test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_drawchangedialog.moc"
