#include "measure/graphicscross.h"
#include "measure/mainscene.h"
#include "settings/crossdialog.h"
#include "settings/settingsfiles.h"
#include "tests/support/workingdirectory.h"
#include "workbench/showwidget.h"

#include <QGraphicsView>
#include <QLabel>
#include <QMenu>
#include <QPen>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTranslator>

#include <memory>

namespace {

/// A page whose scene is 800 x 400, and the dialog on it.
struct Fixture
{
    QMenu menu;
    ShowWidget page{&menu, false};
    MainScene *scene = qobject_cast<MainScene *>(page.findChild<QGraphicsView *>()->scene());

    Fixture()
    {
        page.setDrawProperties({{DrawCrossWidth, 2}, {DrawCrossColor, QColor(1, 2, 3)}});
        QPixmap picture(800, 400);
        picture.fill(Qt::white);
        page.setPicture(picture);
        QCOMPARE(scene->sceneRect().size(), QSizeF(800, 400));
    }

    /// Places of the lines of a direction, across themselves.
    QList<double> lines(int direction) const
    {
        QList<double> places;
        for (const GraphicsCross *line : scene->crossLines()) {
            if (line->direction() == direction)
                places.append(direction == 2 ? line->y() : line->x());
        }
        return places;
    }
    QList<double> horizontal() const { return lines(2); }
    QList<double> vertical() const { return lines(1); }
};

struct Form
{
    CrossDialog dialog;
    QSpinBox *horizontal = dialog.findChild<QSpinBox *>("spinBox");
    QSpinBox *vertical = dialog.findChild<QSpinBox *>("spinBox_2");
    QPushButton *show = dialog.findChild<QPushButton *>("pushButton");
    QPushButton *hide = dialog.findChild<QPushButton *>("pushButton_2");

    explicit Form(ShowWidget &page)
        : dialog(&page)
    {
        dialog.show();
    }
};

using Places = QList<double>;

} // namespace

class TestCrossDialog : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<WorkingDirectory>(); }
    void cleanup() { directory.reset(); }

    void theFormShowsThePagesCounts();
    void openingOnAnEmptyGridMakesNoLines();
    void rangesOfTheCounts();
    void theLinesDivideThePictureEvenly();
    void aCountOfZeroRemovesTheLinesOfThatDirectionAlone();
    void hideTakesNoCountsAndShowAppliesThem();
    void aHiddenGridFromTheFileWaitsForShow();
    void theEnterKeyPressesNoButton();
    void theFormInBothLanguages();

private:
    std::unique_ptr<WorkingDirectory> directory;
};

void TestCrossDialog::theFormShowsThePagesCounts()
{
    Fixture f;
    f.page.setCrossHorCount(4);
    f.page.setCrossVerCount(7);
    const QList<GraphicsCross *> before = f.scene->crossLines();
    Form form(f.page);
    QCOMPARE(form.horizontal->value(), 4);
    QCOMPARE(form.vertical->value(), 7);
    QCOMPARE(f.scene->crossLines(), before);
}

void TestCrossDialog::openingOnAnEmptyGridMakesNoLines()
{
    Fixture f;
    Form form(f.page);
    QCOMPARE(form.horizontal->value(), 0);
    QCOMPARE(form.vertical->value(), 0);
    QVERIFY(f.scene->crossLines().isEmpty());
}

void TestCrossDialog::rangesOfTheCounts()
{
    Fixture f;
    Form form(f.page);
    for (const QSpinBox *box : {form.horizontal, form.vertical}) {
        QCOMPARE(box->minimum(), 0);
        QCOMPARE(box->maximum(), 20);
    }
}

void TestCrossDialog::theLinesDivideThePictureEvenly()
{
    Fixture f;
    Form form(f.page);
    form.horizontal->setValue(3);
    form.vertical->setValue(1);
    QCOMPARE(f.horizontal(), Places({100, 200, 300}));
    QCOMPARE(f.vertical(), Places({400}));
    const GraphicsCross *line = f.scene->crossLines().first();
    QCOMPARE(line->line(), QLineF(0, 0, 800, 0));
    QCOMPARE(line->pen().width(), 2);
    QCOMPARE(line->pen().color(), QColor(1, 2, 3));
    QCOMPARE(f.scene->crossLines().last()->line(), QLineF(0, 0, 0, 400));
}

void TestCrossDialog::aCountOfZeroRemovesTheLinesOfThatDirectionAlone()
{
    Fixture f;
    Form form(f.page);
    form.horizontal->setValue(3);
    form.vertical->setValue(1);
    form.horizontal->setValue(0);
    QCOMPARE(f.horizontal(), Places());
    QCOMPARE(f.vertical(), Places({400}));
}

void TestCrossDialog::hideTakesNoCountsAndShowAppliesThem()
{
    Fixture f;
    Form form(f.page);
    form.horizontal->setValue(1);
    form.hide->click();
    QVERIFY(!f.page.crossVisible());
    QVERIFY(!f.scene->crossLines().first()->isVisible());
    form.horizontal->setValue(3);
    form.vertical->setValue(1);
    QCOMPARE(f.horizontal(), Places({200}));
    QCOMPARE(f.vertical(), Places());

    form.show->click();
    QVERIFY(f.page.crossVisible());
    QCOMPARE(f.horizontal(), Places({100, 200, 300}));
    QCOMPARE(f.vertical(), Places({400}));
    for (const GraphicsCross *line : f.scene->crossLines())
        QVERIFY(line->isVisible());
}

void TestCrossDialog::aHiddenGridFromTheFileWaitsForShow()
{
    writeCrosses({{2, 1, QColor(Qt::red), {0, 50}, false, false}});
    Fixture f;
    f.page.loadCross();
    QVERIFY(!f.page.crossVisible());
    Form form(f.page);
    QCOMPARE(form.horizontal->value(), 1);
    form.horizontal->setValue(3);
    QCOMPARE(f.horizontal(), Places({50}));
    form.show->click();
    QCOMPARE(f.horizontal(), Places({100, 200, 300}));
}

void TestCrossDialog::theEnterKeyPressesNoButton()
{
    Fixture f;
    Form form(f.page);
    form.horizontal->setValue(1);
    form.hide->click();
    QTest::keyClick(form.horizontal, Qt::Key_Return);
    QVERIFY(!f.page.crossVisible());
    QVERIFY(form.dialog.isVisible());
}

void TestCrossDialog::theFormInBothLanguages()
{
    Fixture f;
    const auto texts = [&] {
        Form form(f.page);
        return QStringList{form.dialog.windowTitle(),
                           form.dialog.findChild<QLabel *>("label")->text(),
                           form.dialog.findChild<QLabel *>("label_2")->text(), form.show->text(),
                           form.hide->text()};
    };
    QCOMPARE(texts(), QStringList({"十字线", "横向数量：", "纵向数量：", "显示", "隐藏"}));
    QTranslator english;
    QVERIFY(english.load(":/language_en.qm"));
    QCoreApplication::installTranslator(&english);
    QCOMPARE(texts(), QStringList({"Corss", "HorNum:", "VerNum:", "Show", "Hide"}));
}

QTEST_MAIN(TestCrossDialog)
#include "test_crossdialog.moc"
