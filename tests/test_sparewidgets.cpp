// The widgets that stand ready and that no window creates: the basic camera panel, the video widget
// on OpenGL, the picture dialog.

#include "camera/camerasetwidget.h"
#include "camera/openglvideowidget.h"
#include "fusion/picshowdialog.h"
#include "simulator/simulatedcapture.h"
#include "tests/support/panel.h"
#include "tests/support/workingdirectory.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

void openCamera(int focus)
{
    SimulatedCapture &camera = simulatedMicroscope();
    camera.open(0, cv::CAP_ANY);
    camera.setMotorSpeed(1e9);
    camera.set(cv::CAP_PROP_AUTOFOCUS, 0);
    camera.set(cv::CAP_PROP_FOCUS, focus);
}

CameraSetWidget::Values record()
{
    CameraSetWidget::Values values;
    values.valid = true;
    values.brightness = 11;
    values.contrast = 12;
    values.hue = 13;
    values.saturation = 14;
    values.focus = 150;
    values.autoFocus = 0;
    return values;
}

/// The video widget, painting into a picture: no OpenGL is needed to see what it draws.
class PaintedVideo : public OpenGLVideoWidget
{
public:
    /// What a paint leaves of a white widget.
    QImage painted()
    {
        QPaintEvent event(rect());
        canvas.fill(Qt::white);
        paintEvent(&event);
        return canvas;
    }

protected:
    QPaintDevice *redirected(QPoint *offset) const override
    {
        *offset = QPoint();
        return &canvas;
    }

private:
    mutable QImage canvas{8, 6, QImage::Format_RGB32};
};

/// Left half red, right half blue.
QPixmap twoHalves(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    for (int y = 0; y < size.height(); ++y)
        for (int x = size.width() / 2; x < size.width(); ++x)
            image.setPixelColor(x, y, Qt::blue);
    return QPixmap::fromImage(image);
}

/// Answers the next file dialog once it is open. An empty name cancels it.
void answerSaveDialog(const QString &name)
{
    auto *look = new QTimer(qApp);
    QObject::connect(look, &QTimer::timeout, look, [look, name] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        look->deleteLater();
        if (name.isEmpty()) {
            dialog->reject();
            return;
        }
        dialog->selectFile(name);
        dialog->findChild<QLineEdit *>("fileNameEdit")->setText(name);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    look->start(5);
}

} // namespace

class TestSpareWidgets : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    void init()
    {
        simulatedMicroscope().release();
        panel = std::make_unique<CameraSetWidget>();
        log.clear();
        connect(panel.get(), &CameraSetWidget::cameraInfoChange, this,
                [this](int type, int num) { log << QString("%1=%2").arg(type).arg(num); });
        connect(panel.get(), &CameraSetWidget::blinkChange, this,
                [this](bool on) { log << QString("blink(%1)").arg(on); });
    }

    void cleanup()
    {
        panel.reset();
        simulatedMicroscope().release();
    }

    // ---- The basic camera panel

    void everySlotFindsItsSignal()
    {
        const Complaints complaints;
        QPixmap picture(4, 4);
        const CameraSetWidget built;
        const PicShowDialog dialog(&picture);
        QCOMPARE(complaints.heard(), QStringList());
    }

    void basicSlidersShowTheirNumberAndSendIt_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("sent");
        QTest::newRow("brightness") << "_4" << 100 << "lineEdit"
                                    << "checkBox"
                                    << "1=100";
        QTest::newRow("contrast") << "_3" << 100 << "lineEdit_13"
                                  << "checkBox_13"
                                  << "2=100";
        QTest::newRow("hue") << "_5" << 100 << "lineEdit_14"
                             << "checkBox_14"
                             << "4=100";
        QTest::newRow("saturation") << "_2" << 100 << "lineEdit_15"
                                    << "checkBox_15"
                                    << "8=100";
        QTest::newRow("focus") << "" << 400 << "lineEdit_2"
                               << "checkBox_2"
                               << "16=400";
    }

    void basicSlidersShowTheirNumberAndSendIt()
    {
        QFETCH(QString, suffix);
        QFETCH(QString, field);
        QFETCH(QString, box);
        QFETCH(int, maximum);
        QCOMPARE(slider(suffix).minimum(), 0);
        QCOMPARE(slider(suffix).maximum(), maximum);
        QCOMPARE(slider(suffix).value(), 0);
        QCOMPARE(slider(suffix).orientation(), Qt::Horizontal);
        QVERIFY(control<QLineEdit>(*panel, field).isReadOnly());
        // Only the focus can be automatic.
        QCOMPARE(control<QCheckBox>(*panel, box).isEnabled(), box == "checkBox_2");
        slider(suffix).setValue(maximum);
        QTEST(said(), "sent");
        QCOMPARE(textOf(*panel, field), QString::number(maximum));
    }

    void basicTextsComeInBothLanguages_data()
    {
        QTest::addColumn<QString>("chinese");
        QTest::addColumn<QString>("english");
        QTest::newRow("label_21") << "自动"
                                  << "Auto";
        QTest::newRow("label") << "亮度(B)"
                               << "Brightness(B)";
        QTest::newRow("label_2") << "对比度(C)"
                                 << "Constrast(C)";
        QTest::newRow("label_3") << "色调(H)"
                                 << "Hue(H)";
        QTest::newRow("label_4") << "饱和度(S)"
                                 << "Saturation(S)";
        QTest::newRow("label_5") << "焦点(F)"
                                 << "Focus(F)";
        QTest::newRow("label_6") << "分辨率"
                                 << "Ratio";
        QTest::newRow("checkBox_3") << "消除反光"
                                    << "EliminateReflection";
        QTest::newRow("checkBox_4") << "点击聚焦"
                                    << "ClickFocus";
        QTest::newRow("defaultBtn") << "默认值(D)"
                                    << "Default(D)";
    }

    void basicTextsComeInBothLanguages()
    {
        const QString name = QTest::currentDataTag();
        QTEST(textOf(*panel, name), "chinese");
        const English english;
        QTEST(textOf(CameraSetWidget(), name), "english");
    }

    void basicPanelScrolls()
    {
        const auto &area = control<QScrollArea>(*panel, "scrollArea");
        QVERIFY(area.isAncestorOf(&slider("")));
    }

    void basicResolutionIsSentByItsIndex()
    {
        auto &resolution = control<QComboBox>(*panel, "comboBox");
        const QStringList sizes = {"1920*1080", "4000*3000", "3840*2160", "1280*720", "640*480"};
        for (int i = 0; i < 5; ++i)
            QCOMPARE(resolution.itemText(i), sizes.at(i));
        QCOMPARE(resolution.count(), 5);
        for (const int index : {4, 3, 2, 1, 0})
            resolution.setCurrentIndex(index);
        QCOMPARE(said(), QString("128=4 128=3 128=2 128=1 128=0"));
    }

    void antiReflectionTravelsAsZoom()
    {
        box(3).click();
        box(3).click();
        panel->setEliminateReflection(true);
        panel->setEliminateReflection(true);
        QCOMPARE(said(), QString("256=99 256=98 256=99"));
    }

    void clickFocusIsStoredAndAnnounced()
    {
        QVERIFY(!panel->isClickFocus());
        box(4).click();
        QVERIFY(panel->isClickFocus());
        box(4).click();
        QVERIFY(!panel->isClickFocus());
        QCOMPARE(said(), QString("blink(1) blink(0)"));
    }

    void autofocusDisablesTheFocusSlider()
    {
        openCamera(37);
        box(2).click();
        QCOMPARE(said(), QString("32=1"));
        QVERIFY(!slider("").isEnabled());
    }

    void leavingAutofocusSnapsToTheCamerasFocus()
    {
        openCamera(37);
        panel->toggleAutoFocus();
        said();
        panel->toggleAutoFocus();
        QCOMPARE(said(), QString("32=0 16=37"));
        QVERIFY(slider("").isEnabled());
        QCOMPARE(slider("").value(), 37);
    }

    void leavingAutofocusWithoutACameraFallsToZero()
    {
        panel->setFocusValue(90);
        panel->toggleAutoFocus();
        said();
        panel->toggleAutoFocus();
        QCOMPARE(said(), QString("32=0 16=0"));
        QCOMPARE(slider("").value(), 0);
    }

    void movingTheFocusByCodeUnchecksAutofocusFirst()
    {
        openCamera(37);
        panel->toggleAutoFocus();
        said();
        panel->setFocusValue(120);
        QCOMPARE(said(), QString("32=0 16=37 16=120"));
        QVERIFY(!box(2).isChecked());
    }

    void defaultsAreFiftyEverywhereAlsoForTheFocus()
    {
        openCamera(37);
        box(2).click();
        box(3).click();
        said();
        control<QPushButton>(*panel, "defaultBtn").click();
        QCOMPARE(said(), QString("32=0 16=37 256=98 8=50 2=50 1=50 4=50 16=50"));
        QCOMPARE(slider("").value(), 50);
    }

    void loadingFillsTheSliders()
    {
        panel->load(record());
        QCOMPARE(slider("_4").value(), 11);
        QCOMPARE(slider("_3").value(), 12);
        QCOMPARE(slider("_5").value(), 13);
        QCOMPARE(slider("_2").value(), 14);
        QCOMPARE(slider("").value(), 150);
        QVERIFY(!box(2).isChecked());
        QVERIFY(slider("").isEnabled());
    }

    void loadingAnInvalidRecordDoesNothing()
    {
        CameraSetWidget::Values values = record();
        values.valid = false;
        panel->load(values);
        QCOMPARE(said(), QString());
        QCOMPARE(slider("_4").value(), 0);
    }

    void loadingAutofocusChecksTheSwitch()
    {
        CameraSetWidget::Values values = record();
        values.autoFocus = 1;
        panel->load(values);
        QVERIFY(box(2).isChecked());
        QVERIFY(box(2).isEnabled());
        QVERIFY(!slider("").isEnabled());
    }

    void aCameraWithoutAutofocusDisablesTheSwitch()
    {
        CameraSetWidget::Values values = record();
        values.autoFocus = -1;
        panel->load(values);
        QVERIFY(!box(2).isEnabled());
        QVERIFY(!box(2).isChecked());
        QVERIFY(slider("").isEnabled());
    }

    void enablingAllControlsLeavesTheFocusSliderToAutofocus()
    {
        panel->setControlsEnabled(false);
        for (const char *name : controls)
            QVERIFY2(!control<QWidget>(*panel, name).isEnabled(), name);
        QVERIFY(!slider("").isEnabled());
        panel->setControlsEnabled(true);
        for (const char *name : controls)
            QVERIFY2(control<QWidget>(*panel, name).isEnabled(), name);
        QVERIFY(slider("").isEnabled());

        panel->toggleAutoFocus();
        panel->setControlsEnabled(false);
        panel->setControlsEnabled(true);
        QVERIFY(!slider("").isEnabled());
    }

    // ---- The video widget

    void aFrameIsStretchedToTheWidget()
    {
        PaintedVideo video;
        video.resize(8, 6);
        video.setPixmap(twoHalves({40, 40}));
        const QImage shown = video.painted();
        // The aspect ratio is not kept, and no colour is mixed at the edge.
        for (const QPoint &place : {QPoint(0, 0), QPoint(0, 5), QPoint(3, 0), QPoint(3, 5)})
            QCOMPARE(shown.pixelColor(place), QColor(Qt::red));
        for (const QPoint &place : {QPoint(4, 0), QPoint(4, 5), QPoint(7, 0), QPoint(7, 5)})
            QCOMPARE(shown.pixelColor(place), QColor(Qt::blue));
    }

    void aFrameKeepsTheSizeThatTheWidgetHadThen()
    {
        PaintedVideo video;
        video.resize(4, 3);
        video.setPixmap(twoHalves({40, 40}));
        video.resize(8, 6);
        const QImage shown = video.painted();
        QCOMPARE(shown.pixelColor(3, 2), QColor(Qt::blue));
        QCOMPARE(shown.pixelColor(4, 2), QColor(Qt::white));
        QCOMPARE(shown.pixelColor(3, 3), QColor(Qt::white));
    }

    void aFrameForAWidgetWithoutASizePaintsNothing()
    {
        PaintedVideo video;
        video.resize(0, 0);
        video.setPixmap(twoHalves({40, 40}));
        video.resize(8, 6);
        QCOMPARE(video.painted().pixelColor(0, 0), QColor(Qt::white));
        video.setPixmap(twoHalves({40, 40}));
        QCOMPARE(video.painted().pixelColor(0, 0), QColor(Qt::red));
    }

    void aNullFramePaintsNothing()
    {
        PaintedVideo video;
        video.resize(8, 6);
        video.setPixmap(QPixmap());
        QCOMPARE(video.painted().pixelColor(0, 0), QColor(Qt::white));
    }

    // ---- The picture dialog

    void dialogShowsThePicture()
    {
        QPixmap picture = twoHalves({40, 20});
        const PicShowDialog dialog(&picture);
        const auto &label = control<QLabel>(dialog, "label");
        QCOMPARE(label.pixmap(Qt::ReturnByValue).toImage(), picture.toImage());
        QVERIFY(label.hasScaledContents());
        QCOMPARE(label.maximumSize(), QSize(922, 651));
        QCOMPARE(dialog.size(), QSize(900, 600));
        QCOMPARE(dialog.maximumSize(), QSize(922, 651));
        QCOMPARE(dialog.windowTitle(), QString("Dialog"));
    }

    void dialogSpeaksTheLanguageInWhichItWasBuilt()
    {
        QPixmap picture = twoHalves({4, 2});
        QCOMPARE(textOf(PicShowDialog(&picture), "pushButton"), QString("另存为"));
        const English english;
        const PicShowDialog dialog(&picture);
        QCOMPARE(textOf(dialog, "pushButton"), QString("SaveAs"));
        QCOMPARE(dialog.windowTitle(), QString("Dialog"));
    }

    void dialogSavesThePictureAsTheSuffixSays()
    {
        const WorkingDirectory directory;
        QPixmap picture = twoHalves({40, 20});
        const PicShowDialog dialog(&picture);
        answerSaveDialog(directory.path("fused.png"));
        control<QPushButton>(dialog, "pushButton").click();
        QVERIFY(directory.read("fused.png").startsWith("\x89PNG"));
        QCOMPARE(QImage(directory.path("fused.png")).size(), QSize(40, 20));
        answerSaveDialog(directory.path("fused.bmp"));
        control<QPushButton>(dialog, "pushButton").click();
        QVERIFY(directory.read("fused.bmp").startsWith("BM"));
    }

    void aCancelledSaveLeavesNoFileAndNoMessage()
    {
        const WorkingDirectory directory;
        QPixmap picture = twoHalves({40, 20});
        const PicShowDialog dialog(&picture);
        answerSaveDialog(QString());
        control<QPushButton>(dialog, "pushButton").click();
        QCOMPARE(QDir().entryList(QDir::Files), QStringList());
        QVERIFY(!QApplication::activeModalWidget());
    }

    void aSaveThatFailsSaysNothing()
    {
        const WorkingDirectory directory;
        QPixmap picture = twoHalves({40, 20});
        const PicShowDialog dialog(&picture);
        answerSaveDialog(directory.path("no suffix"));
        control<QPushButton>(dialog, "pushButton").click();
        QVERIFY(!QApplication::activeModalWidget());
    }

private:
    QSlider &slider(const QString &suffix) const
    {
        return control<QSlider>(*panel, "horizontalSlider" + suffix);
    }
    QCheckBox &box(int number) const
    {
        return control<QCheckBox>(*panel, QString("checkBox_%1").arg(number));
    }
    /// What the panel said since the last call, in order.
    QString said() { return std::exchange(log, {}).join(' '); }

    static constexpr const char *controls[] = {
        "horizontalSlider_2", "horizontalSlider_3", "horizontalSlider_4", "horizontalSlider_5",
        "lineEdit",           "lineEdit_2",         "lineEdit_13",        "lineEdit_14",
        "lineEdit_15",        "checkBox",           "checkBox_2",         "checkBox_3",
        "checkBox_4",         "checkBox_13",        "checkBox_14",        "checkBox_15",
        "comboBox",           "defaultBtn"};

    std::unique_ptr<CameraSetWidget> panel;
    QStringList log;
};

QTEST_MAIN(TestSpareWidgets)
#include "test_sparewidgets.moc"
