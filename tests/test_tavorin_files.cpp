#include "measure/base.h"
#include "settings/settingsfiles.h"
#include "tests/support/drived.h"
#include "tests/support/mainwindow.h"
#include "tests/support/messagewatch.h"
#include "tests/support/modalanswers.h"
#include "tests/support/scenemouse.h"

#include <QComboBox>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr char connectedBox[] = "提醒|连接成功";

/// Red lines 3 pixels wide.
constexpr char redLines[] = "[draw]\nPointWidth=1\nPointColor=#ff0000\nLineWidth=3\n"
                            "LineColor=#ff0000\nTextSize=13\nTextColor=#ff0000\n";

void drawLine(ShowWidget *page, QPointF from, QPointF to)
{
    sceneOf(page).setDrawType(1);
    SceneMouse(sceneOf(page)).click({from, to});
    sceneOf(page).setDrawType(0);
}

/// Opens a picture through the dialog.
ShowWidget *openPicture(const MainWindow &window, ModalAnswers &answers, const QString &path)
{
    answers.chooseFile(path);
    window.click("open");
    return window.currentPage();
}

/// The live page of a simulated camera that streams.
ShowWidget *startCamera(const MainWindow &window, ModalAnswers &answers)
{
    simulatedMicroscope().setNoise(false);
    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    answers.press(QMessageBox::Ok);
    emit window.part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_A", "a");
    ShowWidget *live = window.currentPage();
    [&] {
        QTRY_COMPARE(window.status(), QString("连接成功"));
        QTRY_VERIFY(!window->cameraThread()->currentPixmap().isNull());
    }();
    return live;
}

bool isReddish(QColor colour)
{
    return colour.red() > 180 && colour.green() < 90 && colour.blue() < 90;
}

} // namespace

class TestTavorinFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    // Open
    void openingMakesAPageWithTheFilesName();
    void theOpenDialogOffersThreeFormats();
    void theOpenDialogStartsInTheStoredDirectory();
    void cancellingOpensNothing();
    void aFileOpenedTwiceGetsTwoPages();
    void aFileThatIsNoPictureGetsAnEmptyPage();

    // Save
    void savingAKnownFileTakesTheStarOff();
    void aSavedPageComesBackWithItsShapesInThePixels();
    void savingAnUntitledPageGivesItTheChosenName();
    void aNameWithoutAnExtensionBecomesAJpeg();
    void anExistingFileIsNotOverwrittenUnasked();
    void cancellingTheSaveChangesNothing();
    void savingWithoutChangesOnlyDisablesTheButton();
    void aFailedSaveStillTakesTheStarOff();
    void savingRemembersTheDirectory();
    void controlSOnAPictureSavesThePicture();
    void controlSOnTheLivePageSavesAFrame();

    // Live frames
    void aSavedFrameCarriesTheShapesWhichStayOnThePage();
    void theLaterOfTwoRequestsCounts();
    void quickSaveStoresADatedFrame();
    void quickSaveOnAPictureDoesNothing();
    void aSnapshotOpensAPageWithoutShapes();
    void aSnapshotWaitsForItsFrame();
    void freezeDoesNothing();

    // View and list
    void theViewIsSavedAsItIsSeen();
    void exportingWithoutAPageIsTold();
    void exportingWithoutAShapeIsTold();
    void exportingWritesARecordPerShape();
    void exportingLeavesTheDirectoryAlone();

    // Fixed paths of Windows
    void quickSaveWithoutASettingGoesToTheDriveD();
    void quickSaveToAMissingDriveStoresNothingAndSaysNothing();
    void theExportDialogStartsAtTheDriveDOrWhereItCan();
    void theOpenDialogStartsAtARememberedDriveOrWhereItCan();

    // Names in other alphabets
    void chineseNamesOpenSaveAndExport();
    void chineseQuickSaveFolderIsReadFromTheSettings();
};

void TestTavorinFiles::initTestCase()
{
    static MessageWatch watch;
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void TestTavorinFiles::init() { simulatedMicroscope().attach({}); }

void TestTavorinFiles::cleanup()
{
    QVERIFY2(MessageWatch::complaints().isEmpty(),
             qPrintable(MessageWatch::complaints().join('\n')));
}

// ---- Open

void TestTavorinFiles::openingMakesAPageWithTheFilesName()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = openPicture(window, answers, window.writePicture("chip.png"));
    QCOMPARE(answers.seen(), QStringList("打开"));
    QVERIFY(page && !page->isLive());
    QCOMPARE(window.tabText(), QString("chip.png"));
    QVERIFY(page->hasFile());
    QVERIFY(!page->isModified());
    QCOMPARE(window.status(), QString("显示图片"));
    QCOMPARE(sceneOf(page).sceneRect(), QRectF(0, 0, 64, 48));
    QCOMPARE(readFilePath(), window.directory.path(".").chopped(1));
    // The wheel zooms it.
    emit page->wheelAdd(true);
    QCOMPARE(page->zoomFactor(), 0.75);
}

void TestTavorinFiles::theOpenDialogOffersThreeFormats()
{
    MainWindow window;
    ModalAnswers answers;
    QStringList filters;
    answers.expect([&](QWidget *dialog) {
        filters = qobject_cast<QFileDialog *>(dialog)->nameFilters();
        static_cast<QDialog *>(dialog)->reject();
    });
    window.click("open");
    // Blanks alone: the toolkit's own dialog would take "*.bmp;" for a name.
    QCOMPARE(filters, QStringList("*.bmp *.jpg *.png"));
}

void TestTavorinFiles::theOpenDialogStartsInTheStoredDirectory()
{
    WorkingDirectory elsewhere;
    MainWindow window("[base]\nfilePath=" + elsewhere.path(".").chopped(1).toUtf8() + "\n");
    ModalAnswers answers;
    QString directory;
    const auto look = [&](QWidget *dialog) {
        directory = qobject_cast<QFileDialog *>(dialog)->directory().path();
        static_cast<QDialog *>(dialog)->reject();
    };
    answers.expect(look);
    window.click("open");
    QCOMPARE(directory + "/", elsewhere.path(".").chopped(1));

    // The next dialog starts where the last file was taken from.
    openPicture(window, answers, window.writePicture("a.png"));
    answers.expect(look);
    window.click("open");
    QCOMPARE(directory + "/", window.directory.path(".").chopped(1));
}

void TestTavorinFiles::cancellingOpensNothing()
{
    MainWindow window;
    ModalAnswers answers;
    answers.cancel();
    window.click("open");
    QCOMPARE(window.tabs()->count(), 0);
    QVERIFY(!QFile::exists("config.ini"));
}

void TestTavorinFiles::aFileOpenedTwiceGetsTwoPages()
{
    MainWindow window;
    ModalAnswers answers;
    const QString path = window.writePicture("chip.jpg");
    openPicture(window, answers, path);
    openPicture(window, answers, path);
    QCOMPARE(window.tabs()->count(), 2);
    QCOMPARE(window.tabs()->tabText(0), QString("chip.jpg"));
    QCOMPARE(window.tabs()->tabText(1), QString("chip.jpg"));
}

void TestTavorinFiles::aFileThatIsNoPictureGetsAnEmptyPage()
{
    MainWindow window;
    ModalAnswers answers;
    window.directory.write("fake.jpg", "no picture at all");
    ShowWidget *page = openPicture(window, answers, window.directory.path("fake.jpg"));
    QCOMPARE(window.tabText(), QString("fake.jpg"));
    QVERIFY(page->hasFile());
}

// ---- Save

void TestTavorinFiles::savingAKnownFileTakesTheStarOff()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = openPicture(window, answers, window.writePicture("chip.png"));
    page->setModified(true);
    QCOMPARE(window.tabText(), QString("chip.png*"));
    window.click("save");
    QCOMPARE(window.tabText(), QString("chip.png"));
    QVERIFY(!page->isModified());
    QVERIFY(!window.part("save")->isEnabled());
    QCOMPARE(answers.seen(), QStringList("打开"));
}

void TestTavorinFiles::aSavedPageComesBackWithItsShapesInThePixels()
{
    MainWindow window(redLines);
    ModalAnswers answers;
    const QString path = window.writePicture("chip.png", QSize(200, 100));
    ShowWidget *page = openPicture(window, answers, path);
    drawLine(page, QPointF(20, 50), QPointF(180, 50));
    page->setModified(true);
    window.click("save");
    // Saved shapes are spent.
    QCOMPARE(rowsOf(page), QStringList());

    QVERIFY(isReddish(QImage(path).pixelColor(60, 50)));
    QCOMPARE(QImage(path).pixelColor(60, 90), QColor(Qt::white));
    page = openPicture(window, answers, path);
    QCOMPARE(rowsOf(page), QStringList());
}

void TestTavorinFiles::savingAnUntitledPageGivesItTheChosenName()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("");
    QVERIFY(window.tabText().endsWith("*"));
    answers.chooseFile(window.directory.path("a.jpg"));
    window.click("save");
    QCOMPARE(answers.seen(), QStringList("保存"));
    QCOMPARE(window.tabText(), QString("a.jpg"));
    QVERIFY(!page->isModified());
    QVERIFY(page->hasFile());
    QCOMPARE(QImage("a.jpg").size(), QSize(640, 480));
}

void TestTavorinFiles::aNameWithoutAnExtensionBecomesAJpeg()
{
    MainWindow window;
    ModalAnswers answers;
    window.addPicture("");
    answers.chooseFile(window.directory.path("chip"));
    window.click("save");
    QCOMPARE(window.tabText(), QString("chip.jpg"));
    QVERIFY(window.directory.read("chip.jpg").startsWith("\xff\xd8\xff"));
}

void TestTavorinFiles::anExistingFileIsNotOverwrittenUnasked()
{
    MainWindow window;
    ModalAnswers answers;
    window.directory.write("chip.jpg", "precious");
    window.addPicture("");
    answers.chooseFile(window.directory.path("chip"));
    answers.press(QMessageBox::No);
    answers.cancel();
    window.click("save");
    QVERIFY(answers.allAnswered());
    QCOMPARE(window.directory.read("chip.jpg"), QByteArray("precious"));
    QVERIFY(window.currentPage()->isModified());
}

void TestTavorinFiles::cancellingTheSaveChangesNothing()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("");
    window->refreshControls();
    const QString title = window.tabText();
    answers.cancel();
    window.click("save");
    QCOMPARE(window.tabText(), title);
    QVERIFY(page->isModified());
    QVERIFY(window.part("save")->isEnabled());
    QVERIFY(QDir(".").entryList(QDir::Files).isEmpty());
}

void TestTavorinFiles::savingWithoutChangesOnlyDisablesTheButton()
{
    MainWindow window;
    ModalAnswers answers;
    const QString path = window.writePicture("chip.png");
    openPicture(window, answers, path);
    const QByteArray before = window.directory.read("chip.png");
    window.part("save")->setEnabled(true);
    window->on_save_clicked();
    QVERIFY(!window.part("save")->isEnabled());
    QCOMPARE(window.tabText(), QString("chip.png"));
    QCOMPARE(window.directory.read("chip.png"), before);
    QCOMPARE(answers.seen().size(), 1);
}

void TestTavorinFiles::aFailedSaveStillTakesTheStarOff()
{
    MainWindow window;
    ModalAnswers answers;
    QVERIFY(QDir(".").mkdir("gone"));
    QImage(64, 48, QImage::Format_RGB32).save("gone/chip.png");
    ShowWidget *page = openPicture(window, answers, window.directory.path("gone/chip.png"));
    QVERIFY(QDir("gone").removeRecursively());
    page->setModified(true);
    window.click("save");
    QCOMPARE(window.tabText(), QString("chip.png"));
    QVERIFY(!page->isModified());
    QVERIFY(!QFile::exists("gone/chip.png"));
    QCOMPARE(answers.seen(), QStringList("打开"));
}

void TestTavorinFiles::savingRemembersTheDirectory()
{
    MainWindow window;
    ModalAnswers answers;
    QVERIFY(QDir(".").mkdir("sub"));
    window.addPicture("");
    answers.chooseFile(window.directory.path("sub/chip.jpg"));
    window.click("save");
    QCOMPARE(readFilePath(), window.directory.path("sub/"));
    QString path;
    QString name;
    answers.expect([&](QWidget *dialog) {
        QCOMPARE(qobject_cast<QFileDialog *>(dialog)->directory().path(),
                 window.directory.path("sub"));
        QCOMPARE(qobject_cast<QFileDialog *>(dialog)->nameFilters(), QStringList("*.jpg"));
        static_cast<QDialog *>(dialog)->reject();
    });
    QVERIFY(!window->askSaveName(path, name));
    answers.chooseFile(window.directory.path("other.jpg"));
    QVERIFY(window->askSaveName(path, name));
    QCOMPARE(path, window.directory.path("other.jpg"));
    QCOMPARE(name, QString("other.jpg"));
}

void TestTavorinFiles::controlSOnAPictureSavesThePicture()
{
    MainWindow window;
    ModalAnswers answers;
    window->show();
    window.addDeadCamera();
    ShowWidget *page = window.addPicture("");
    window->refreshControls();
    QApplication::setActiveWindow(window.get());
    answers.chooseFile(window.directory.path("a.jpg"));
    QTest::keyClick(window.get(), Qt::Key_S, Qt::ControlModifier);
    QTRY_COMPARE(answers.seen(), QStringList("保存"));
    QTRY_VERIFY(!page->isModified());
    QCOMPARE(window.tabText(), QString("a.jpg"));
    // The other handler sees that its button is hidden.
    window->on_save_2_clicked();
    QCOMPARE(answers.seen().size(), 1);
}

void TestTavorinFiles::controlSOnTheLivePageSavesAFrame()
{
    MainWindow window;
    ModalAnswers answers;
    window->show();
    ShowWidget *picture = window.addPicture("");
    startCamera(window, answers);
    QApplication::setActiveWindow(window.get());
    answers.chooseFile(window.directory.path("frame.jpg"));
    QTest::keyClick(window.get(), Qt::Key_S, Qt::ControlModifier);
    QTRY_COMPARE(answers.seen(), QStringList({connectedBox, "保存"}));
    QTRY_COMPARE(QImage("frame.jpg").size(), QSize(1920, 1080));
    window->on_save_clicked();
    QCOMPARE(answers.seen().size(), 2);
    QVERIFY(picture->isModified());
}

// ---- Live frames

void TestTavorinFiles::aSavedFrameCarriesTheShapesWhichStayOnThePage()
{
    MainWindow window(redLines);
    ModalAnswers answers;
    window->show();
    ShowWidget *live = startCamera(window, answers);
    window.part<QComboBox>("comboBox")->setCurrentIndex(3); // a scene pixel is a frame pixel
    drawLine(live, QPointF(300, 200), QPointF(900, 200));
    answers.chooseFile(window.directory.path("frame.jpg"));
    window.click("save_2");
    QTRY_COMPARE(QImage("frame.jpg").size(), QSize(1920, 1080));
    QVERIFY(isReddish(QImage("frame.jpg").pixelColor(450, 200)));
    QVERIFY(!isReddish(QImage("frame.jpg").pixelColor(450, 230)));
    QCOMPARE(rowsOf(live), QStringList("Line\nLen = 600px"));
}

void TestTavorinFiles::theLaterOfTwoRequestsCounts()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *live = startCamera(window, answers);
    // No frame comes in between: the event loop does not run.
    live->captureTo(window.directory.path("first.jpg"));
    live->captureTo(window.directory.path("second.jpg"));
    QTRY_VERIFY(!QImage("second.jpg").isNull());
    QVERIFY(!QFile::exists("first.jpg"));
}

void TestTavorinFiles::quickSaveStoresADatedFrame()
{
    MainWindow window("[draw]\nQuickSavePath=quick\n");
    ModalAnswers answers;
    QVERIFY(QDir(".").mkdir("quick"));
    startCamera(window, answers);
    window.click("captureBtn");
    // The wait cursor is all that the operator gets to see.
    QVERIFY(QApplication::overrideCursor());
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QVERIFY(!window->isEnabled());
    QTRY_VERIFY(window->isEnabled());
    QVERIFY(!QApplication::overrideCursor());
    QTRY_COMPARE(QDir("quick").entryList(QDir::Files).size(), 1);
    const QString name = QDir("quick").entryList(QDir::Files).first();
    QVERIFY2(QRegularExpression("^20\\d{6}_\\d{6}_\\d{3}\\.jpg$").match(name).hasMatch(),
             qPrintable(name));
    QTRY_COMPARE(QImage("quick/" + name).size(), QSize(1920, 1080));
    QCOMPARE(answers.seen(), QStringList(connectedBox));
}

void TestTavorinFiles::quickSaveOnAPictureDoesNothing()
{
    MainWindow window("[draw]\nQuickSavePath=.\n");
    window.addPicture("picture");
    window->on_captureBtn_clicked();
    QVERIFY(!QApplication::overrideCursor());
    QVERIFY(window->isEnabled());
    QCOMPARE(QDir(".").entryList(QDir::Files), QStringList("config.ini"));
}

void TestTavorinFiles::aSnapshotOpensAPageWithoutShapes()
{
    MainWindow window;
    ModalAnswers answers;
    window->show();
    ShowWidget *live = startCamera(window, answers);
    drawLine(live, QPointF(30, 20), QPointF(90, 20));
    window.click("capture2Btn");
    QTRY_COMPARE(window.tabs()->count(), 2);
    ShowWidget *page = window.currentPage();
    QVERIFY(page != live && !page->isLive());
    QVERIFY(QRegularExpression("^Tab\\d+\\*$").match(window.tabText()).hasMatch());
    QVERIFY(page->isModified());
    QVERIFY(!page->hasFile());
    QCOMPARE(rowsOf(page), QStringList());
    QCOMPARE(rowsOf(live).size(), 1);
    QCOMPARE(sceneOf(page).sceneRect(), QRectF(0, 0, 1920, 1080));
    emit page->wheelAdd(true);
    QCOMPARE(page->zoomFactor(), 0.75);
    // One click, one page.
    QSignalSpy frames(window->cameraThread(), &MyCamera::putpix);
    QTRY_VERIFY(frames.count() > 2);
    QCOMPARE(window.tabs()->count(), 2);
}

void TestTavorinFiles::aSnapshotWaitsForItsFrame()
{
    MainWindow window;
    QPixmap frame(32, 24);
    frame.fill(Qt::green);
    window->getpix(&frame); // a late frame without any page
    window.addDeadCamera();
    window->getpix(&frame);
    QCOMPARE(window.tabs()->count(), 1);
    window->on_capture2Btn_clicked();
    QCOMPARE(window.tabs()->count(), 1);
    window->getpix(&frame);
    window->getpix(&frame);
    QCOMPARE(window.tabs()->count(), 2);
    QCOMPARE(sceneOf(window.currentPage()).sceneRect(), QRectF(0, 0, 32, 24));
}

void TestTavorinFiles::freezeDoesNothing()
{
    MainWindow window;
    ModalAnswers answers;
    startCamera(window, answers);
    window.click("freezeBtn");
    QVERIFY(window->cameraThread()->isRunning());
    QCOMPARE(window.tabs()->count(), 1);
}

// ---- View and list

void TestTavorinFiles::theViewIsSavedAsItIsSeen()
{
    MainWindow window(redLines);
    ModalAnswers answers;
    window->show();
    ShowWidget *page = openPicture(window, answers, window.writePicture("a.png", QSize(200, 100)));
    drawLine(page, QPointF(20, 50), QPointF(180, 50));
    window.part<QComboBox>("zoom")->setCurrentText("200");
    const QString title = window.tabText();
    answers.chooseFile(window.directory.path("view.jpg"));
    window.click("capture2Btn");
    // Twice as large, with the line where it is seen.
    const QImage image("view.jpg");
    QCOMPARE(image.size(), QSize(400, 200));
    QVERIFY(isReddish(image.pixelColor(120, 100)));
    QCOMPARE(window.tabText(), title);
    QCOMPARE(rowsOf(page).size(), 1);
    answers.cancel();
    window.click("capture2Btn");
    QVERIFY(answers.allAnswered());
}

void TestTavorinFiles::exportingWithoutAPageIsTold()
{
    MainWindow window;
    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    window.click("export_2");
    QCOMPARE(answers.seen(), QStringList("提醒|当前没有页面"));
}

void TestTavorinFiles::exportingWithoutAShapeIsTold()
{
    MainWindow window;
    ModalAnswers answers;
    window.addPicture("page");
    answers.press(QMessageBox::Ok);
    window.click("export_2");
    QCOMPARE(answers.seen(), QStringList("提醒|当前没有图元"));
}

void TestTavorinFiles::exportingWritesARecordPerShape()
{
    MainWindow window;
    ModalAnswers answers;
    ShowWidget *page = window.addPicture("page");
    drawLine(page, QPointF(10, 10), QPointF(110, 10));
    drawLine(page, QPointF(10, 30), QPointF(60, 30));
    answers.chooseFile(window.directory.path("list.csv"));
    window.click("export_2");
    QCOMPARE(answers.seen(), QStringList("保存"));
    QCOMPARE(window.directory.read("list.csv"),
             QByteArray("1,Line,\"Len = 100px\"\n2,Line,\"Len = 50px\"\n"));
    answers.cancel();
    window.click("export_2");
    QCOMPARE(answers.seen().size(), 2);
}

void TestTavorinFiles::exportingLeavesTheDirectoryAlone()
{
    MainWindow window("[base]\nfilePath=elsewhere/\n");
    ModalAnswers answers;
    drawLine(window.addPicture("page"), QPointF(10, 10), QPointF(110, 10));
    answers.chooseFile(window.directory.path("list.csv"));
    window.click("export_2");
    QVERIFY(QFile::exists("list.csv"));
    QCOMPARE(readFilePath(), QString("elsewhere/"));
}

// ---- Fixed paths of Windows

void TestTavorinFiles::quickSaveWithoutASettingGoesToTheDriveD()
{
    MainWindow window;
    ModalAnswers answers;
    DriveD drive("D:");
    if (!drive.exists())
        QSKIP("There is no drive D:");
    startCamera(window, answers);
    window.click("captureBtn");
    QTRY_COMPARE(drive.newFiles().size(), 1);
    const QString name = drive.path(drive.newFiles().first());
    QTRY_COMPARE(QImage(name).size(), QSize(1920, 1080));
    QTRY_VERIFY(window->isEnabled());
}

void TestTavorinFiles::quickSaveToAMissingDriveStoresNothingAndSaysNothing()
{
    MainWindow window;
    ModalAnswers answers;
    if (QDir("D:/").exists())
        QSKIP("There is a drive D:");
    ShowWidget *live = startCamera(window, answers);
    QSignalSpy frames(window->cameraThread(), &MyCamera::cappix);
    window.click("captureBtn");
    QTRY_COMPARE(frames.size(), 1);
    QTRY_VERIFY(window->isEnabled());
    QCOMPARE(window.currentPage(), live);
    QCOMPARE(answers.seen(), QStringList(connectedBox));
    QVERIFY(QDir().entryList({"*.jpg", "D:*"}).isEmpty());
}

void TestTavorinFiles::theExportDialogStartsAtTheDriveDOrWhereItCan()
{
    MainWindow window;
    ModalAnswers answers;
    drawLine(window.addPicture("page"), QPointF(10, 10), QPointF(110, 10));
    QDir directory;
    QString typed = "?";
    answers.expect([&](QWidget *widget) {
        directory = qobject_cast<QFileDialog *>(widget)->directory();
        typed = widget->findChild<QLineEdit *>("fileNameEdit")->text();
        static_cast<QDialog *>(widget)->reject();
    });
    window.click("export_2");
    QVERIFY2(directory.exists(), qPrintable(directory.path()));
    QCOMPARE(typed, QString());
    if (QDir("d:/").exists())
        QCOMPARE(directory.absolutePath().toLower(), QString("d:/"));
}

void TestTavorinFiles::theOpenDialogStartsAtARememberedDriveOrWhereItCan()
{
    MainWindow window("[base]\nfilePath=D:/\n");
    ModalAnswers answers;
    QDir directory;
    answers.expect([&](QWidget *widget) {
        directory = qobject_cast<QFileDialog *>(widget)->directory();
        static_cast<QDialog *>(widget)->reject();
    });
    window.click("open");
    QVERIFY2(directory.exists(), qPrintable(directory.path()));
    if (QDir("D:/").exists())
        QCOMPARE(directory.absolutePath(), QString("D:/"));
    QCOMPARE(readFilePath(), QString("D:/"));
}

// ---- Names in other alphabets

void TestTavorinFiles::chineseNamesOpenSaveAndExport()
{
    MainWindow window(redLines);
    ModalAnswers answers;
    QVERIFY(QDir().mkdir("显微 图片"));
    ShowWidget *page =
        openPicture(window, answers, window.writePicture("显微 图片/芯片.jpg", QSize(200, 100)));
    QCOMPARE(window.tabText(), QString("芯片.jpg"));
    QCOMPARE(sceneOf(page).sceneRect(), QRectF(0, 0, 200, 100));
    QCOMPARE(readFilePath(), window.directory.path("显微 图片/"));

    drawLine(page, QPointF(20, 50), QPointF(180, 50));
    page->setModified(true);
    QCOMPARE(window.tabText(), QString("芯片.jpg*"));
    window.click("save");
    QCOMPARE(window.tabText(), QString("芯片.jpg"));
    QVERIFY(isReddish(QImage("显微 图片/芯片.jpg").pixelColor(100, 50)));

    drawLine(page, QPointF(20, 30), QPointF(180, 30));
    answers.chooseFile(window.directory.path("显微 图片/列表 é.csv"));
    window.click("export_2");
    QCOMPARE(window.directory.read("显微 图片/列表 é.csv").simplified(),
             QByteArray("1,Line,\"Len = 160px\""));

    ShowWidget *untitled = window.addPicture("page");
    drawLine(untitled, QPointF(20, 50), QPointF(180, 50));
    untitled->setModified(true);
    answers.chooseFile(window.directory.path("显微 图片/测量"));
    window.click("save");
    QCOMPARE(window.tabText(), QString("测量.jpg"));
    QCOMPARE(QImage("显微 图片/测量.jpg").size(), QSize(640, 480));
    QVERIFY(answers.allAnswered());
}

void TestTavorinFiles::chineseQuickSaveFolderIsReadFromTheSettings()
{
    MainWindow window("[draw]\nQuickSavePath=\\x5feb\\x5b58\n");
    ModalAnswers answers;
    QVERIFY(QDir().mkdir("快存"));
    startCamera(window, answers);
    window.click("captureBtn");
    QTRY_COMPARE(QDir("快存").entryList({"*.jpg"}, QDir::Files).size(), 1);
    QTRY_VERIFY(window->isEnabled());
}

QTEST_MAIN(TestTavorinFiles)
#include "test_tavorin_files.moc"
