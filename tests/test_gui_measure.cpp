#include "measure/base.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "tests/support/mainwindow.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"
#include "tests/support/viewmouse.h"

#include <QComboBox>
#include <QtTest>

namespace {

constexpr char configuration[] = "[draw]\nPointWidth=1\nPointColor=#ff0000\nLineWidth=3\n"
                                 "LineColor=#ff0000\nTextSize=13\nTextColor=#ff0000\n"
                                 "Antialiasing=true\n";

/// What one tool draws with a few clicks, at a zoom of 100.
struct Drawing
{
    const char *name;   // as the list shows it
    const char *button; // of the tool bar
    QVector<QPointF> clicks;
    QString readout;  // in pixels
    QPoint onOutline; // a place that the shape's line covers
};

const QVector<Drawing> &drawings()
{
    static const QVector<Drawing> all = {
        // A right triangle of 300 and 400.
        {"Line", "line", {{50, 50}, {350, 450}}, "Len = 500px", {125, 150}},
        // The second click lies 30 lower and does not tilt it.
        {"HLine", "hline", {{50, 100}, {250, 130}}, "Len = 200px", {100, 100}},
        {"VLine", "vline", {{400, 50}, {420, 250}}, "Len = 200px", {400, 100}},
        {"Par", "par", {{100, 300}, {300, 300}, {200, 340}}, "Len = 200px\nDis = 40px", {150, 340}},
        {"Ver", "ver", {{100, 400}, {300, 400}, {200, 460}}, "Len = 200px\nDis = 60px", {200, 430}},
        {"Ang", "angle", {{500, 300}, {600, 300}, {500, 310}, {500, 210}}, "Ang = 90°", {530, 300}},
        {"Rect",
         "rect",
         {{650, 50}, {750, 130}},
         "Wid = 100px\nHei = 80px\nCLen = 360px\nArea = 8000px",
         {650, 100}},
        // Half a circle of radius 50, which is drawn one pixel short: 49.5 pi along its curves, and
        // the step of 1.118 from the first point to where they begin.
        {"Arc",
         "arc",
         {{650, 400}, {600, 350}, {550, 400}},
         "CLen = 180°\nLen = 156.711px\nR = 50px",
         {600, 350}},
        // 2500 pi within; the outline is taken along its curves, 0.05 % above 100 pi.
        {"Cir",
         "circle",
         {{350, 200}, {300, 150}, {250, 200}},
         "R = 50px\nCLen = 314.33px\nArea = 7853.98px",
         {250, 200}},
        {"Ring",
         "ring",
         {{500, 500}, {450, 450}, {400, 500}},
         "R1 = 50px\nCLen1 = 314.159px\nArea1 = 7853.98px\n",
         {400, 500}},
        // Legs of 100 and 60, a hypotenuse of 116.619. The last click is a double click.
        {"Poly",
         "poly",
         {{50, 500}, {150, 500}, {150, 560}},
         "CLen = 276.619px\nArea = 3000px",
         {100, 500}},
        {"LCir",
         "line_circle",
         {{730, 200}, {700, 170}, {670, 200}, {700, 260}},
         "R = 30px\nCLen = 188.496px\nArea = 2827.43px\nLen = 60px",
         {700, 240}},
        {"TCir",
         "two_circle",
         {{130, 200}, {100, 170}, {70, 200}, {120, 280}, {100, 260}, {80, 280}},
         "R1 = 30px\nCLen1 = 188.496px\nArea1 = 2827.43px\n"
         "R2 = 20px\nCLen2 = 125.664px\nArea2 = 1256.64px\nDis = 80px",
         {100, 240}},
        {"LText", "text", {{600, 500}, {650, 520}}, "pad 7", {620, 508}},
    };
    return all;
}

bool isReddish(QColor colour)
{
    return colour.red() > 180 && colour.green() < 110 && colour.blue() < 110;
}

} // namespace

/// The main job on the real window, by mouse, keyboard and dialogs alone.
class TestGuiMeasure : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void everyShapeIsDrawnAndRead();
    void theCalibrationToolsReportTheirLength();
    void shapesAreExportedByteForByte();
    void shapesAreBurntIntoTheSavedPicture();
    void anUntitledPictureIsSavedThroughTheDialog();
    void aHandleIsDragged();
    void aShapeIsDragged();
    void aLabelIsDragged();
    void shapesAreDeletedFromTheList();
    void zoomingKeepsPlacesAndNumbers();
    void aRightClickDropsTheShapeAndThenTheTool();
    void deletingWhileAShapeIsUnderConstruction();
    void aThousandClicksInARow();

private:
    ShowWidget *openSpecimen();
    void draw(const ShowWidget *page, const Drawing &drawing);
    void drawAll(ShowWidget *page);
    ShowWidget *openWithALine();

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<ModalAnswers> answers;
};

void TestGuiMeasure::initTestCase()
{
    static MessageWatch watch;
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    // A double click is told apart from two clicks by the test itself.
    QApplication::setDoubleClickInterval(0);
}

void TestGuiMeasure::init()
{
    window = std::make_unique<MainWindow>(configuration);
    answers = std::make_unique<ModalAnswers>();
    (*window)->show();
}

void TestGuiMeasure::cleanup()
{
    QVERIFY2(answers->allAnswered(), qPrintable(answers->seen().join('\n')));
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
    answers.reset();
    window.reset();
}

/// Opens a white picture of 800 x 600 through the dialog.
ShowWidget *TestGuiMeasure::openSpecimen()
{
    answers->chooseFile(window->writePicture("specimen.png", QSize(800, 600)));
    window->click("open");
    QTest::qWait(100); // a page takes changes for edits only some time after it opened
    return window->currentPage();
}

void TestGuiMeasure::draw(const ShowWidget *page, const Drawing &drawing)
{
    const ViewMouse mouse(page);
    window->click(drawing.button);
    for (const QPointF &place : drawing.clicks) {
        // The operator sees every step; a rectangle measures itself when it is painted.
        mouse.move(place);
        page->findChild<QGraphicsView *>()->viewport()->repaint();
        if (drawing.button == QLatin1String("poly") && place == drawing.clicks.last())
            mouse.doubleClick(place);
        else
            mouse.click(place);
    }
}

void TestGuiMeasure::drawAll(ShowWidget *page)
{
    answers->enterText("pad 7");
    for (const Drawing &drawing : drawings())
        draw(page, drawing);
    page->grab(); // paints every shape once
}

/// A page with one line from (100, 100) to (300, 100), and the hand.
ShowWidget *TestGuiMeasure::openWithALine()
{
    ShowWidget *page = openSpecimen();
    draw(page, {"Line", "line", {{100, 100}, {300, 100}}, "Len = 200px", {}});
    window->click("hand");
    page->grab();
    return page;
}

void TestGuiMeasure::everyShapeIsDrawnAndRead()
{
    ShowWidget *page = openSpecimen();
    drawAll(page);
    const QStringList rows = rowsOf(page);
    QCOMPARE(rows.size(), 14);
    for (int i = 0; i < rows.size(); ++i) {
        const Drawing &drawing = drawings()[i];
        QCOMPARE(sceneOf(page).items()[i]->text()->toPlainText(), drawing.readout);
        QCOMPARE(rows[i], drawing.name + QString("\n") + drawing.readout);
    }
    QCOMPARE(window->tabText(), QString("specimen.png*"));
    QVERIFY(window->part("save")->isEnabled());
}

void TestGuiMeasure::theCalibrationToolsReportTheirLength()
{
    const ShowWidget *page = openSpecimen();
    QString pixels;
    const auto read = [&](QWidget *dialog) {
        pixels = dialog->findChild<QLabel *>("label_6")->text();
        static_cast<QDialog *>(dialog)->reject();
    };
    answers->expect(read);
    // Right after start the button stands for the circle.
    draw(page, {"CCali", "cali", {{350, 200}, {300, 150}, {250, 200}}, "", {}});
    QCOMPARE(pixels, QString("100 pixel"));

    answers->choose("line");
    window->part("cali")->findChild<QPushButton *>()->click(); // the corner
    answers->expect(read);
    draw(page, {"LCali", "cali", {{20, 30}, {92, 126}}, "", {}});
    QCOMPARE(pixels, QString("120 pixel")); // 72 and 96
    QCOMPARE(rowsOf(page), QStringList());
    QCOMPARE(window->tabText(), QString("specimen.png"));
}

void TestGuiMeasure::shapesAreExportedByteForByte()
{
    ShowWidget *page = openSpecimen();
    drawAll(page);
    answers->chooseFile(window->directory.path("list.csv"));
    window->click("export_2");
    QCOMPARE(QString::fromLocal8Bit(window->directory.read("list.csv")),
             QString("1,Line,\"Len = 500px\"\n"
                     "2,HLine,\"Len = 200px\"\n"
                     "3,VLine,\"Len = 200px\"\n"
                     "4,Par,\"Len = 200px\nDis = 40px\"\n"
                     "5,Ver,\"Len = 200px\nDis = 60px\"\n"
                     "6,Ang,\"Ang = 90°\"\n"
                     "7,Rect,\"Wid = 100px\nHei = 80px\nCLen = 360px\nArea = 8000px\"\n"
                     "8,Arc,\"CLen = 180°\nLen = 156.711px\nR = 50px\"\n"
                     "9,Cir,\"R = 50px\nCLen = 314.33px\nArea = 7853.98px\"\n"
                     "10,Ring,\"R1 = 50px\nCLen1 = 314.159px\nArea1 = 7853.98px\n\"\n"
                     "11,Poly,\"CLen = 276.619px\nArea = 3000px\"\n"
                     "12,LCir,\"R = 30px\nCLen = 188.496px\nArea = 2827.43px\nLen = 60px\"\n"
                     "13,TCir,\"R1 = 30px\nCLen1 = 188.496px\nArea1 = 2827.43px\nR2 = 20px\n"
                     "CLen2 = 125.664px\nArea2 = 1256.64px\nDis = 80px\"\n"
                     "14,LText,\"pad 7\"\n"));
}

void TestGuiMeasure::shapesAreBurntIntoTheSavedPicture()
{
    ShowWidget *page = openSpecimen();
    drawAll(page);
    window->click("save");
    QCOMPARE(rowsOf(page), QStringList());
    QCOMPARE(window->tabText(), QString("specimen.png"));

    answers->chooseFile(window->directory.path("specimen.png"));
    window->click("open");
    QCOMPARE(window->tabs()->count(), 2);
    QCOMPARE(rowsOf(window->currentPage()), QStringList());
    const QImage saved("specimen.png");
    QCOMPARE(saved.size(), QSize(800, 600));
    for (const Drawing &drawing : drawings())
        QVERIFY2(isReddish(saved.pixelColor(drawing.onOutline)), drawing.name);
    QCOMPARE(saved.pixelColor(780, 580), QColor(Qt::white));
}

void TestGuiMeasure::anUntitledPictureIsSavedThroughTheDialog()
{
    // A snapshot of the live picture has no file.
    window->addDeadCamera();
    (*window)->on_capture2Btn_clicked();
    QPixmap frame(800, 600);
    frame.fill(Qt::white);
    (*window)->getpix(&frame);
    QCoreApplication::processEvents();
    const ShowWidget *page = window->currentPage();
    draw(page, drawings()[0]);
    (*window)->refreshControls();
    answers->chooseFile(window->directory.path("shot.png"));
    window->click("save");
    QCOMPARE(window->tabText(), QString("shot.png"));

    answers->chooseFile(window->directory.path("shot.png"));
    window->click("open");
    QCOMPARE(rowsOf(window->currentPage()), QStringList());
    QVERIFY(isReddish(QImage("shot.png").pixelColor(125, 150)));
}

void TestGuiMeasure::aHandleIsDragged()
{
    ShowWidget *page = openWithALine();
    ViewMouse(page).drag(QPointF(300, 100), QPointF(400, 500)); // 300 and 400
    page->grab();
    QCOMPARE(rowsOf(page), QStringList("Line\nLen = 500px"));
    const Base *line = sceneOf(page).items().first();
    QCOMPARE(line->points()[1]->pos(), QPointF(400, 500));
    QCOMPARE(line->points()[0]->pos(), QPointF(100, 100));
}

void TestGuiMeasure::aShapeIsDragged()
{
    ShowWidget *page = openWithALine();
    page->setModified(false);
    ViewMouse(page).drag(QPointF(150, 100), QPointF(190, 180));
    page->grab();
    const Base *line = sceneOf(page).items().first();
    QCOMPARE(line->points()[0]->pos(), QPointF(140, 180));
    QCOMPARE(line->points()[1]->pos(), QPointF(340, 180));
    QCOMPARE(rowsOf(page), QStringList("Line\nLen = 200px"));
    // No number has changed.
    QVERIFY(!page->isModified());
}

void TestGuiMeasure::aLabelIsDragged()
{
    ShowWidget *page = openWithALine();
    const Base *line = sceneOf(page).items().first();
    const QPointF before = line->text()->pos();
    const QPointF grip = line->text()->sceneBoundingRect().center();
    ViewMouse(page).drag(grip, grip + QPointF(30, 60));
    page->grab();
    QCOMPARE(line->text()->pos() - before, QPointF(30, 60));
    QCOMPARE(line->points()[0]->pos(), QPointF(100, 100));
    // It keeps its distance when the shape moves on.
    ViewMouse(page).click(QPointF(700, 500));
    ViewMouse(page).drag(QPointF(150, 100), QPointF(150, 200));
    ViewMouse(page).click(QPointF(700, 500));
    page->grab();
    QCOMPARE(line->text()->pos() - before, QPointF(30, 160));
}

void TestGuiMeasure::shapesAreDeletedFromTheList()
{
    ShowWidget *page = openSpecimen();
    for (int i = 0; i < 3; ++i)
        draw(page, drawings()[i]);
    auto *list = page->findChild<QListWidget *>();
    const QPoint second = list->visualItemRect(list->item(1)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, second);
    answers->choose("删除");
    answers->press(QMessageBox::Yes);
    emit list->customContextMenuRequested(second);
    QCOMPARE(rowsOf(page), QStringList({"Line\nLen = 500px", "VLine\nLen = 200px"}));
    QCOMPARE(sceneOf(page).items().size(), 2);
    QCOMPARE(sceneOf(page).items()[1]->typeName(), QString("VLine"));

    answers->choose("删除所有");
    answers->press(QMessageBox::Yes);
    emit list->customContextMenuRequested(QPoint(5, 5));
    QCOMPARE(rowsOf(page), QStringList());
    QVERIFY(sceneOf(page).items().isEmpty());
}

void TestGuiMeasure::zoomingKeepsPlacesAndNumbers()
{
    ShowWidget *page = openSpecimen();
    for (const char *zoom : {"50", "200"}) {
        window->part<QComboBox>("zoom")->setCurrentText(zoom);
        QCoreApplication::processEvents();
        draw(page, {"Line", "line", {{100, 100}, {300, 100}}, "", {}});
        window->click("hand");
    }
    QCOMPARE(rowsOf(page), QStringList({"Line\nLen = 200px", "Line\nLen = 200px"}));
}

void TestGuiMeasure::aRightClickDropsTheShapeAndThenTheTool()
{
    ShowWidget *page = openSpecimen();
    window->click("rect");
    const ViewMouse mouse(page);
    mouse.click(QPointF(100, 100));
    mouse.move(QPointF(200, 200));
    QVERIFY(sceneOf(page).current());
    mouse.click(QPointF(200, 200), Qt::RightButton);
    QVERIFY(!sceneOf(page).current());
    QVERIFY(window->part<QAbstractButton>("rect")->isChecked());
    mouse.click(QPointF(200, 200), Qt::RightButton);
    QVERIFY(window->part<QAbstractButton>("hand")->isChecked());
    QCOMPARE(rowsOf(page), QStringList());
}

void TestGuiMeasure::deletingWhileAShapeIsUnderConstruction()
{
    ShowWidget *page = openSpecimen();
    draw(page, drawings()[0]);
    window->click("circle");
    const ViewMouse mouse(page);
    mouse.click(QPointF(350, 200));
    mouse.click(QPointF(300, 150));
    answers->press(QMessageBox::Yes);
    (*window)->delAllItem();
    QCOMPARE(rowsOf(page), QStringList());
    mouse.click(QPointF(250, 200));
    QCOMPARE(rowsOf(page), QStringList("Cir\nR = 50px\nCLen = 314.33px\nArea = 7853.98px"));
    // And closing the page while one is under construction.
    mouse.click(QPointF(350, 200));
    answers->press(QMessageBox::Yes);
    window->closeTab(0);
    QCOMPARE(window->tabs()->count(), 0);
}

void TestGuiMeasure::aThousandClicksInARow()
{
    ShowWidget *page = openSpecimen();
    window->click("line");
    const ViewMouse mouse(page);
    for (int i = 0; i < 1000; ++i)
        mouse.click(QPointF(10 + 7 * i % 780, 10 + 11 * i % 580));
    QCOMPARE(rowsOf(page).size(), 500);
    QCOMPARE(sceneOf(page).items().size(), 500);
    answers->press(QMessageBox::Yes);
    (*window)->delAllItem();
    QCOMPARE(sceneOf(page).items().size(), 0);
}

QTEST_MAIN(TestGuiMeasure)
#include "test_gui_measure.moc"
