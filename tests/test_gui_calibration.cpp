#include "calibration/accountitem.h"
#include "measure/base.h"
#include "measure/graphicscross.h"
#include "measure/graphicstext.h"
#include "tests/support/jfifdensity.h"
#include "tests/support/mainwindow.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"
#include "tests/support/viewmouse.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

namespace {

constexpr char configuration[] = "[draw]\nPointWidth=1\nPointColor=#ff0000\nLineWidth=1\n"
                                 "LineColor=#ff0000\nTextSize=13\nTextColor=#ff0000\n"
                                 "DrawCrossWidth=1\nDrawCrossColor=#00ff00\n"
                                 "QuickSavePath=quick\n";

void click(QWidget *widget)
{
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, widget->rect().center());
}

/// The text of the only shape of this kind.
QString readout(const ShowWidget *page, const QString &name)
{
    for (const Base *record : sceneOf(page).items()) {
        if (record->typeName() == name)
            return record->text()->toPlainText();
    }
    return {};
}

} // namespace

/// Calibrations and crosshair grids on the real window, by mouse, keyboard and dialogs alone.
class TestGuiCalibration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theSampleRulerMakesTwoScalesThatAreReadInEveryUnit();
    void everySavedPictureCarriesTheScaleInForce();
    void aGridOnTheLivePageSurvivesARestart();

    void theTabIsClosedWhileItsShapesLoad();
    void anotherFileIsOpenedWhileShapesLoad();
    void everyShapeIsDeletedWhileTheyLoad();

private:
    ShowWidget *openSampleBoard();
    void useTool(const char *button, const QVector<QPointF> &clicks);
    void nameTheScale(const QString &name, const QString &length, const QString &unit);
    AccountItem *rowOfTheDropDown(int index);
    void pickCalibration(int index);
    void compareReadouts(const QString &unit, const QString &line, const QString &rect,
                         const QStringList &circle, double circumference);
    QByteArrayList densitiesOfAllKinds();
    ShowWidget *connectCamera();
    int openDuringALoad(const std::function<void()> &meanwhile);

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<ModalAnswers> answers;
};

void TestGuiCalibration::initTestCase()
{
    static MessageWatch watch;
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    // A double click is told apart from two clicks by the test itself.
    QApplication::setDoubleClickInterval(0);
}

void TestGuiCalibration::init()
{
    window = std::make_unique<MainWindow>(configuration);
    answers = std::make_unique<ModalAnswers>();
    (*window)->show();
}

void TestGuiCalibration::cleanup()
{
    QVERIFY2(answers->allAnswered(), qPrintable(answers->seen().join('\n')));
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
    answers.reset();
    window.reset();
}

// ---- Calibration

/// At a zoom of 50, so that the whole board is in view and each even picture pixel a screen pixel.
ShowWidget *TestGuiCalibration::openSampleBoard()
{
    answers->chooseFile(SOURCE_DIR "/samples/board.jpg");
    click(window->part("open"));
    window->part<QComboBox>("zoom")->setCurrentText("50");
    QCoreApplication::processEvents();
    return window->currentPage();
}

void TestGuiCalibration::useTool(const char *button, const QVector<QPointF> &clicks)
{
    const ViewMouse mouse(window->currentPage());
    click(window->part(button));
    for (const QPointF &place : clicks)
        mouse.click(place);
    window->currentPage()->grab(); // a rectangle measures itself when it is painted
}

/// Fills the calibration dialog in when it comes up.
void TestGuiCalibration::nameTheScale(const QString &name, const QString &length,
                                      const QString &unit)
{
    answers->expect([=](QWidget *dialog) {
        QTest::keyClicks(dialog->findChild<QLineEdit *>("lineEdit"), name);
        QTest::keyClicks(dialog->findChild<QLineEdit *>("lineEdit_2"), length);
        auto *units = dialog->findChild<QComboBox *>("comboBox");
        while (units->currentText() != unit && units->currentIndex() + 1 < units->count())
            QTest::keyClick(units, Qt::Key_Down);
        click(dialog->findChild<QPushButton *>("pushButton"));
    });
}

AccountItem *TestGuiCalibration::rowOfTheDropDown(int index)
{
    auto *box = window->part<QComboBox>("calibrateCombo");
    if (!box->view()->isVisible())
        click(box->lineEdit());
    const auto *list = static_cast<QListWidget *>(box->view());
    return static_cast<AccountItem *>(list->itemWidget(list->item(index)));
}

void TestGuiCalibration::pickCalibration(int index)
{
    click(rowOfTheDropDown(index)->findChild<QLabel *>());
}

void TestGuiCalibration::compareReadouts(const QString &unit, const QString &line,
                                         const QString &rect, const QStringList &circle,
                                         double circumference)
{
    window->part<QComboBox>("comboBox_2")->setCurrentText(unit);
    const ShowWidget *page = window->currentPage();
    QCOMPARE(readout(page, "Line"), line);
    QCOMPARE(readout(page, "Rect"), rect);
    const QStringList lines = readout(page, "Cir").split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0], circle[0]);
    QCOMPARE(lines[2], circle[1]);
    // Taken along the curves, which are a little longer than the circle.
    QVERIFY(lines[1].startsWith("CLen = ") && lines[1].endsWith(unit));
    const double length = lines[1].mid(7).chopped(unit.size()).toDouble();
    QVERIFY2(length >= circumference * 0.99999 && length < circumference * 1.001,
             qPrintable(lines[1]));
    QCOMPARE(rowsOf(page),
             QStringList({"Line\n" + line, "Rect\n" + rect, "Cir\n" + lines.join('\n')}));
}

void TestGuiCalibration::theSampleRulerMakesTwoScalesThatAreReadInEveryUnit()
{
    ShowWidget *page = openSampleBoard();
    auto *box = window->part<QComboBox>("calibrateCombo");

    // Right after start the button stands for the circle. From tick 0 to tick 6 are 1200 pixels; as
    // 3000 um they are 2.5 um a pixel.
    nameTheScale("C3", "3000", "um");
    useTool("cali", {{360, 1000}, {960, 400}, {1560, 1000}});
    // The line from tick 0 to tick 1: 200 pixels, 1 mm, 5 um a pixel.
    answers->choose("line");
    click(window->part("cali")->findChild<QPushButton *>());
    nameTheScale("L1", "1", "mm");
    useTool("cali", {{360, 1000}, {560, 1000}});
    QCOMPARE(QString::fromUtf8(window->directory.read("calibration.ini")),
             QString("[calibrate]\n"
                     "1\\length=3000\n1\\name=C3\n1\\real=2.5\n1\\unit=um\n"
                     "2\\length=1\n2\\name=L1\n2\\real=5\n2\\unit=mm\n"
                     "size=2\n"));
    QCOMPARE(box->lineEdit()->text(), QString());

    useTool("line", {{400, 300}, {700, 700}});                  // 300 and 400: 500
    useTool("rect", {{800, 200}, {1000, 280}});                 // 200 by 80
    useTool("circle", {{1300, 400}, {1200, 300}, {1100, 400}}); // radius 100
    click(window->part("hand"));
    page->grab();
    compareReadouts("um", "Len = 500um", "Wid = 200um\nHei = 80um\nCLen = 560um\nArea = 16000um",
                    {"R = 100um", "Area = 31415.9um"}, 628.3185);

    pickCalibration(1);
    QCOMPARE(box->lineEdit()->text(), QString("L1, 1mm"));
    QVERIFY(!box->view()->isVisible());
    compareReadouts("um", "Len = 2500um",
                    "Wid = 1000um\nHei = 400um\nCLen = 2800um\nArea = 80000um",
                    {"R = 500um", "Area = 157080um"}, 3141.593);
    compareReadouts("mm", "Len = 2.5mm", "Wid = 1mm\nHei = 0.4mm\nCLen = 2.8mm\nArea = 0.08mm",
                    {"R = 0.5mm", "Area = 0.15708mm"}, 3.141593);
    compareReadouts("mil", "Len = 98.4252mil",
                    "Wid = 39.3701mil\nHei = 15.748mil\nCLen = 110.236mil\nArea = 124mil",
                    {"R = 19.685mil", "Area = 243.474mil"}, 123.6847);

    pickCalibration(0);
    QCOMPARE(box->lineEdit()->text(), QString("C3, 3000um"));
    compareReadouts("um", "Len = 1250um", "Wid = 500um\nHei = 200um\nCLen = 1400um\nArea = 40000um",
                    {"R = 250um", "Area = 78539.8um"}, 1570.796);
    compareReadouts("mm", "Len = 1.25mm", "Wid = 0.5mm\nHei = 0.2mm\nCLen = 1.4mm\nArea = 0.04mm",
                    {"R = 0.25mm", "Area = 0.0785398mm"}, 1.570796);
    compareReadouts("mil", "Len = 49.2126mil",
                    "Wid = 19.685mil\nHei = 7.87402mil\nCLen = 55.1181mil\nArea = 62.0001mil",
                    {"R = 9.84252mil", "Area = 121.737mil"}, 61.84236);

    // Deleting the other row puts this one out of force too.
    click(rowOfTheDropDown(1)->findChild<QPushButton *>());
    QCOMPARE(box->lineEdit()->text(), QString());
    QCOMPARE(box->count(), 1);
    compareReadouts("um", "Len = 500um", "Wid = 200um\nHei = 80um\nCLen = 560um\nArea = 16000um",
                    {"R = 100um", "Area = 31415.9um"}, 628.3185);
    QCOMPARE(QString::fromUtf8(window->directory.read("calibration.ini")),
             QString("[calibrate]\n"
                     "1\\length=3000\n1\\name=C3\n1\\real=2.5\n1\\unit=um\n"
                     "2\\length=1\n2\\name=L1\n2\\real=5\n2\\unit=mm\n"
                     "size=1\n"));
    box->hidePopup();

    window->restart();
    (*window)->show();
    openSampleBoard();
    box = window->part<QComboBox>("calibrateCombo");
    QCOMPARE(box->count(), 1);
    QCOMPARE(box->lineEdit()->text(), QString());
    QCOMPARE(rowOfTheDropDown(0)->text(), QString("C3, 3000um"));
    box->hidePopup();
    useTool("line", {{400, 300}, {700, 700}});
    QCOMPARE(readout(window->currentPage(), "Line"), QString("Len = 500px"));
    window->part<QComboBox>("comboBox_2")->setCurrentText("um");
    QCOMPARE(readout(window->currentPage(), "Line"), QString("Len = 500um"));
    pickCalibration(0);
    QCOMPARE(readout(window->currentPage(), "Line"), QString("Len = 1250um"));
}

/// The densities of a quick save, a live save, a saved view and a saved snapshot.
QByteArrayList TestGuiCalibration::densitiesOfAllKinds()
{
    const auto density = [this](const QString &name) {
        return jfifDensity(window->directory.read(name));
    };
    window->tabs()->setCurrentIndex(0);
    QDir quick("quick");
    click(window->part("captureBtn"));
    [&] { QTRY_COMPARE(quick.entryList(QDir::Files).size(), 1); }();
    const QString quickName = "quick/" + quick.entryList(QDir::Files).first();
    [&] { QTRY_VERIFY((*window)->isEnabled()); }();

    answers->chooseFile(window->directory.path("live.jpg"));
    click(window->part("save_2"));
    [&] { QTRY_VERIFY(!density("live.jpg").isEmpty()); }();

    click(window->part("capture2Btn"));
    [&] { QTRY_COMPARE(window->tabs()->count(), 2); }();
    window->part<QComboBox>("zoom")->setCurrentText("50");
    answers->chooseFile(window->directory.path("view.jpg"));
    click(window->part("capture2Btn"));
    answers->chooseFile(window->directory.path("snapshot.jpg"));
    click(window->part("save"));
    window->closeTab(1);

    const QByteArrayList densities{density(quickName), density("live.jpg"), density("view.jpg"),
                                   density("snapshot.jpg")};
    for (const QString &name :
         {quickName, QString("live.jpg"), QString("view.jpg"), QString("snapshot.jpg")})
        QFile::remove(name);
    return densities;
}

void TestGuiCalibration::everySavedPictureCarriesTheScaleInForce()
{
    window->directory.write("calibration.ini", "[calibrate]\n1\\length=1\n1\\name=L1\n1\\real=5\n"
                                               "1\\unit=mm\nsize=1\n");
    QVERIFY(QDir().mkdir("quick"));
    window->restart();
    (*window)->show();
    connectCamera();
    const QByteArray none = "0000010001";
    QCOMPARE(densitiesOfAllKinds(), QByteArrayList({none, none, none, none}));
    pickCalibration(0);
    // 5 um a pixel are 2000 pixels a centimetre; at half the size 1000.
    QCOMPARE(densitiesOfAllKinds(),
             QByteArrayList({"0207d007d0", "0207d007d0", "0203e803e8", "0207d007d0"}));
    click(rowOfTheDropDown(0)->findChild<QPushButton *>());
    QCOMPARE(densitiesOfAllKinds(), QByteArrayList({none, none, none, none}));
}

// ---- Crosshair

/// The live page of the simulated microscope at half the size of its frames.
ShowWidget *TestGuiCalibration::connectCamera()
{
    answers->press(QMessageBox::Ok);
    if (simulatedMicroscope().devices().empty())
        simulatedMicroscope().plugIn({"Orvane_A", "a"});
    emit window->part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_A", "a");
    ShowWidget *live = window->currentPage();
    const int tooHigh = live->findChild<QWidget *>("widget")->height() - 540;
    (*window)->setFixedSize(1580, (*window)->height() - tooHigh);
    const int seen = answers->seen().size();
    [&] { QTRY_VERIFY(answers->seen().size() > seen); }();
    [&] { QTRY_COMPARE(window->status(), QString("连接成功")); }();
    return live;
}

void TestGuiCalibration::aGridOnTheLivePageSurvivesARestart()
{
    ShowWidget *live = connectCamera();
    QCOMPARE(sceneOf(live).sceneRect(), QRectF(0, 0, 960, 540));

    answers->expect([](QWidget *dialog) {
        auto *horizontal = dialog->findChild<QSpinBox *>("spinBox");
        auto *vertical = dialog->findChild<QSpinBox *>("spinBox_2");
        for (int i = 0; i < 2; ++i)
            QTest::keyClick(horizontal, Qt::Key_Up);
        QTest::keyClick(vertical, Qt::Key_Up);
        static_cast<QDialog *>(dialog)->reject();
    });
    click(window->part("cross"));
    const QList<GraphicsCross *> lines = sceneOf(live).crossLines();
    QCOMPARE(lines.size(), 3);

    // The upper line from 180 to 135, the right half of the picture beside the vertical one.
    const ViewMouse mouse(live);
    mouse.drag({100, 180}, {130, 135});
    // The vertical one becomes red and 3 wide, then it is locked and stays where it is.
    answers->expect([](QWidget *dialog) {
        for (int i = 0; i < 2; ++i)
            QTest::keyClick(dialog->findChild<QSpinBox *>("spinBox_2"), Qt::Key_Up);
        click(dialog->findChild<QPushButton *>("pushButton_2"));
        dialog->findChild<QCheckBox *>("checkBox")->click();
        static_cast<QDialog *>(dialog)->reject();
    });
    answers->expect([](QWidget *dialog) {
        auto *colours = qobject_cast<QColorDialog *>(dialog);
        colours->setCurrentColor(QColor(255, 0, 0));
        colours->accept();
    });
    mouse.doubleClick({480, 50});
    mouse.drag({480, 50}, {600, 50});

    // 135 is 2^7 * 1.0546875, 360 is 2^8 * 1.40625, 480 is 2^8 * 1.875.
    const QString stored =
        R"([corss]
1\color=@Variant(\0\0\0\x43\x1\xff\xff\0\0\xff\xff\0\0\0\0)
1\direct=2
1\lock=false
1\pos=@Variant(\0\0\0\x1a\0\0\0\0\0\0\0\0@`\xe0\0\0\0\0\0)
1\visible=true
1\width=1
2\color=@Variant(\0\0\0\x43\x1\xff\xff\0\0\xff\xff\0\0\0\0)
2\direct=2
2\lock=false
2\pos=@Variant(\0\0\0\x1a\0\0\0\0\0\0\0\0@v\x80\0\0\0\0\0)
2\visible=true
2\width=1
3\color=@Variant(\0\0\0\x43\x1\xff\xff\xff\xff\0\0\0\0\0\0)
3\direct=1
3\lock=true
3\pos=@Variant(\0\0\0\x1a@~\0\0\0\0\0\0\0\0\0\0\0\0\0\0)
3\visible=true
3\width=3
size=3
)";
    const auto file = [this] { return QString::fromLatin1(window->directory.read("corss.ini")); };
    QTRY_COMPARE(file(), stored);

    answers->press(QMessageBox::Yes);
    (*window)->close();
    window->restart();
    (*window)->show();
    live = connectCamera();
    QTRY_COMPARE(sceneOf(live).crossLines().size(), 3);
    const QVector<QPointF> places = {{0, 135}, {0, 360}, {480, 0}};
    for (int i = 0; i < 3; ++i) {
        const GraphicsCross *line = sceneOf(live).crossLines()[i];
        QCOMPARE(line->pos(), places[i]);
        QCOMPARE(line->pen().color(), i == 2 ? QColor(255, 0, 0) : QColor(0, 255, 0));
        QCOMPARE(line->pen().width(), i == 2 ? 3 : 1);
        QCOMPARE(bool(line->flags() & QGraphicsItem::ItemIsMovable), i != 2);
    }
    // Whatever was stored meanwhile is the same.
    (*window)->onCrossChangedTimeOut();
    QCOMPARE(file(), stored);

    // Hidden on the one, hidden after the next start.
    answers->expect([](QWidget *dialog) {
        click(dialog->findChild<QPushButton *>("pushButton_2"));
        static_cast<QDialog *>(dialog)->reject();
    });
    click(window->part("cross"));
    QTRY_COMPARE(file(), QString(stored).replace("visible=true", "visible=false"));
    window->restart();
    (*window)->show();
    live = connectCamera();
    QTRY_COMPARE(sceneOf(live).crossLines().size(), 3);
    QVERIFY(!sceneOf(live).crossVisible());
}

// ---- Shapes that come with a picture

/// Opens a picture with 200 lines; the work is done in the middle of their load.
/// @returns how many lines came
int TestGuiCalibration::openDuringALoad(const std::function<void()> &meanwhile)
{
    QByteArray json;
    for (int i = 0; i < 200; ++i)
        json += QString(R"(,{"type":1,"point":[{"x":1,"y":%1},{"x":60,"y":%1}]})").arg(i).toUtf8();
    json[0] = '[';
    json += ']';
    const QString path = window->writePicture("shapes.png", QSize(400, 300));
    QFile file(path);
    file.open(QIODevice::Append);
    QDataStream stream(&file);
    stream << json << qint32(json.size()) << qint32(0x001FF8D8);
    file.close();

    answers->chooseFile(path);
    click(window->part("open"));
    int inserted = 0;
    connect(&sceneOf(window->currentPage()), &MainScene::itemInsert, this, [&] {
        if (++inserted == 5)
            QTimer::singleShot(0, window->get(), meanwhile);
    });
    [&] { QTRY_VERIFY(inserted >= 5); }();
    QTest::qWait(100); // the rest of the load and what is tracked after it
    return inserted;
}

void TestGuiCalibration::theTabIsClosedWhileItsShapesLoad()
{
    QVERIFY(openDuringALoad([this] { window->closeTab(0); }) < 200);
    QCOMPARE(window->tabs()->count(), 0);
    QCOMPARE(window->status(), QString("断开连接"));
}

void TestGuiCalibration::anotherFileIsOpenedWhileShapesLoad()
{
    const QString other = window->writePicture("other.png");
    openDuringALoad([&] {
        answers->chooseFile(other);
        click(window->part("open"));
    });
    QTRY_COMPARE(window->tabs()->count(), 2);
    QTRY_COMPARE(sceneOf(window->page(0)).items().size(), 200);
    QCOMPARE(rowsOf(window->page(0)).size(), 200);
    QCOMPARE(rowsOf(window->page(1)), QStringList());
    QVERIFY(!window->page(0)->isModified());
}

void TestGuiCalibration::everyShapeIsDeletedWhileTheyLoad()
{
    openDuringALoad([this] {
        click(window->part("circle"));
        answers->press(QMessageBox::Yes);
        (*window)->delAllItem();
    });
    const ShowWidget *page = window->currentPage();
    QTRY_COMPARE(rowsOf(page).size(), sceneOf(page).items().size());
    QVERIFY(sceneOf(page).items().size() < 200);
    QCOMPARE(sceneOf(page).drawType(), 9);
}

QTEST_MAIN(TestGuiCalibration)
#include "test_gui_calibration.moc"
