#include "camera/camerasetwidget2.h"
#include "simulator/simulatedcapture.h"
#include "tests/support/panel.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QtTest>

#include <memory>

namespace {

/// What the camera answers when it is asked for its values.
struct ReadBacks
{
    int focus = 37;
    int brightness = 33;
    int gain = 21;
    int shutter = 2;
    int red = 1000;
    int green = 2000;
    int blue = 5570;
};

void openCamera(const ReadBacks &values)
{
    SimulatedCapture &camera = simulatedMicroscope();
    camera.open(0, cv::CAP_ANY);
    camera.setMotorSpeed(1e9);
    camera.set(cv::CAP_PROP_AUTOFOCUS, 0);
    camera.set(cv::CAP_PROP_FOCUS, values.focus);
    camera.set(cv::CAP_PROP_BRIGHTNESS, values.brightness);
    camera.set(cv::CAP_PROP_GAIN, values.gain);
    camera.set(cv::CAP_PROP_EXPOSURE, values.shutter);
    camera.set(cv::CAP_PROP_GAMMA, values.red);
    camera.set(cv::CAP_PROP_ROLL, values.green);
    camera.set(cv::CAP_PROP_IRIS, values.blue);
}

/// A record in automatic focus, exposure and white balance.
CameraInfo automaticRecord()
{
    CameraInfo info;
    info.valid = true;
    info.brightness = 15;
    info.contrast = 11;
    info.chroma = 12;
    info.saturation = 13;
    info.focus = 140;
    info.autoFocus = 1;
    info.zoom = 21;
    info.red = 18;
    info.gain = 16;
    info.sharpness = 7;
    info.functionWord = 4 + 8;
    info.green = 19;
    info.blue = 205;
    info.shutter = 3;
    return info;
}

QImage picture(const QIcon &icon) { return icon.pixmap(16).toImage(); }

} // namespace

class TestCameraSetWidget2 : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    // The form
    void everySlotFindsItsSignal();
    void slidersHaveTheirRangesAndStartAtTheirMinimum_data();
    void slidersHaveTheirRangesAndStartAtTheirMinimum();
    void textsComeInBothLanguages_data();
    void textsComeInBothLanguages();
    void listsOfTheBoxes();
    void retranslatingKeepsWhatIsSet();
    void modesExcludeEachOther_data();
    void modesExcludeEachOther();
    void placeholdersAreDisabledOrHiddenAndSendNothing();
    void prefersItsSize();
    void fitsTheSideStackInBothLanguages_data();
    void fitsTheSideStackInBothLanguages();

    // Groups
    void groupsStartClosed();
    void aHeaderOpensAndClosesItsGroup_data();
    void aHeaderOpensAndClosesItsGroup();
    void anyNumberOfGroupsMayBeOpen();

    // Plain sliders
    void aSliderShowsItsNumberAndSendsIt_data();
    void aSliderShowsItsNumberAndSendsIt();

    // Focus mode
    void manualFocusSnapsToTheCamerasPosition();
    void automaticFocusDisablesTheSlider();
    void movingTheFocusUnderAutofocusSwitchesToManualFirst();
    void inManualTheFocusIsSentAlone();
    void focusWithoutACameraFallsToZeroAndSendsWhatWasAsked();
    void focusReadBackDoesNotChangeAnEqualSlider();
    void middleButtonTogglesTheFocusMode();
    void setFocusManualDoesNothingInManual();
    void checkAutoFocusAndItsResetButton();
    void motorCentreIsSentOnceMore();
    void motorCentreUnderAutofocus();

    // Focus area
    void areaSizeIsSentBeforeItIsAnnounced();
    void focusFrameAndClickFocusAreAnnounced();
    void clickFocusCanBeSetByCode();
    void cellsAreShownAndNotSent();
    void resetOfTheFocusArea();

    // Exposure
    void automaticExposureTakesTheBrightness();
    void manualExposureTakesGainAndShutter();
    void aNegativeShutterReadsAsZeroAndIsSentBackAsTheShortest();
    void theShutterReadBackIsNotMapped();
    void functionWordTellsTheModeThatTheOperatorSees();
    void resetOfTheExposure();
    void eliminateReflectionEndsInAutomaticExposure();
    void manualExposureFirstUnchecksEliminateReflection();

    // White balance
    void automaticWhiteBalanceDisablesTheSliders();
    void manualWhiteBalanceTakesTheThreeGains();
    void blueReadBackIsATenthOnTheSlider_data();
    void blueReadBackIsATenthOnTheSlider();
    void resetOfTheWhiteBalance();

    // Flip and function
    void flipsAreSentOnEveryChange();
    void functionWordCollectsAllSwitches();
    void saturationZeroIsBlackAndWhite();
    void raisingTheSaturationLeavesBlackAndWhite();
    void blackAndWhiteSetsTheSaturation();
    void resolutionIsSentByItsIndex();
    void resetOfTheFunctions();
    void resetLeavesBlackAndWhite();
    void saveIsACommandBeyondTheSharpnessSlider();

    // Loading
    void loadingAnInvalidRecordDoesNothing();
    void loadingSendsBackWhatWasReadInThisOrder();
    void loadingManualModesReadsTheCameraAgain();
    void loadingEnablesTheFocusSliderUnlessAutofocusIsOn();
    void loadingNeverUnchecksFlipsAndReflection();
    void loadingSelectsTheSizeOfTheArea();
    void loadingSaturationZeroChecksBlackAndWhite();
    void loadingASaturationUnchecksBlackAndWhite();
    void loadingShowsTheGreenGainAsPictureQuality();
    void shutterAndResolutionAreNotLoaded();

private:
    QSlider &slider(const QString &suffix) const
    {
        return control<QSlider>(*panel, "horizontalSlider" + suffix);
    }
    QCheckBox &box(int number) const
    {
        return control<QCheckBox>(*panel,
                                  number == 1 ? "checkBox" : QString("checkBox_%1").arg(number));
    }
    QPushButton &button(int number) const
    {
        return control<QPushButton>(*panel, number == 1 ? "pushButton"
                                                        : QString("pushButton_%1").arg(number));
    }
    QComboBox &areaSize() const { return control<QComboBox>(*panel, "comboBox"); }
    /// What the panel said since the last call, in order: "type=num", "blink(click,big,frame)",
    /// "success".
    QString said() { return std::exchange(log, {}).join(' '); }

    std::unique_ptr<CameraSetWidget2> panel;
    QStringList log;
};

void TestCameraSetWidget2::initTestCase()
{
    // The size of a usual desktop; without a screen the toolkit takes a larger one.
    QFont font = QApplication::font();
    font.setPixelSize(12);
    QApplication::setFont(font);
}

void TestCameraSetWidget2::init()
{
    simulatedMicroscope().attach({{"Orvane_Simulated", "simulated:microscope"}});
    simulatedMicroscope().release();
    panel = std::make_unique<CameraSetWidget2>();
    log.clear();
    connect(panel.get(), &CameraSetWidget2::cameraInfoChange, this,
            [this](int type, int num) { log << QString("%1=%2").arg(type).arg(num); });
    connect(panel.get(), &CameraSetWidget2::blinkChange, this,
            [this](bool click, bool big, bool frame) {
                log << QString("blink(%1,%2,%3)").arg(click).arg(big).arg(frame);
            });
    connect(panel.get(), &CameraSetWidget2::showSuccess, this, [this] { log << "success"; });
}

void TestCameraSetWidget2::cleanup()
{
    panel.reset();
    simulatedMicroscope().release();
}

// ---- The form

void TestCameraSetWidget2::everySlotFindsItsSignal()
{
    const Complaints complaints;
    const CameraSetWidget2 built;
    QCOMPARE(complaints.heard(), QStringList());
}

void TestCameraSetWidget2::slidersHaveTheirRangesAndStartAtTheirMinimum_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("focus") << "" << 0 << 400 << true;
    QTest::newRow("cell, horizontal") << "_2" << 1 << 17 << false;
    QTest::newRow("cell, vertical") << "_3" << 1 << 15 << false;
    QTest::newRow("brightness") << "_4" << 0 << 100 << true;
    QTest::newRow("gain") << "_5" << 0 << 50 << true;
    QTest::newRow("shutter") << "_14" << 0 << 17 << true;
    QTest::newRow("red") << "_6" << 0 << 4096 << true;
    QTest::newRow("green") << "_7" << 0 << 4096 << true;
    QTest::newRow("blue") << "_8" << 0 << 4096 << true;
    QTest::newRow("chroma") << "_12" << 0 << 99 << true;
    QTest::newRow("saturation") << "_13" << 0 << 99 << true;
    QTest::newRow("contrast") << "_9" << 0 << 100 << true;
    QTest::newRow("sharpness") << "_10" << 0 << 15 << true;
    QTest::newRow("electronic zoom") << "_11" << 0 << 100 << false;
    QTest::newRow("zoom") << "_15" << 1 << 130 << true;
}

void TestCameraSetWidget2::slidersHaveTheirRangesAndStartAtTheirMinimum()
{
    QFETCH(QString, suffix);
    QFETCH(int, minimum);
    const QSlider &tested = slider(suffix);
    QCOMPARE(tested.minimum(), minimum);
    QTEST(tested.maximum(), "maximum");
    QCOMPARE(tested.value(), minimum);
    QTEST(tested.isEnabled(), "enabled");
    QCOMPARE(tested.orientation(), Qt::Horizontal);
}

void TestCameraSetWidget2::textsComeInBothLanguages_data()
{
    QTest::addColumn<QString>("chinese");
    QTest::addColumn<QString>("english");
    QTest::newRow("pushButton") << "聚焦模式"
                                << "Focus Mode";
    QTest::newRow("label") << "聚焦"
                           << "Focus";
    QTest::newRow("checkBox") << "自动"
                              << "Auto";
    QTest::newRow("checkBox_2") << "一键"
                                << "OneKey";
    QTest::newRow("checkBox_3") << "手动"
                                << "Hand";
    QTest::newRow("pushButton_8") << "重置"
                                  << "Reset";
    QTest::newRow("pushButton_2") << "聚焦区域"
                                  << "FocusArea";
    QTest::newRow("label_3") << "区域大小"
                             << "AreaSize";
    QTest::newRow("label_4") << "水平"
                             << "Horizontal";
    QTest::newRow("label_6") << "垂直"
                             << "Vertical";
    QTest::newRow("checkBox_4") << "对焦框"
                                << "FocusFrame";
    QTest::newRow("checkBox_14") << "点击聚焦"
                                 << "ClickFocus";
    QTest::newRow("pushButton_9") << "重置"
                                  << "Reset";
    QTest::newRow("pushButton_3") << "曝光"
                                  << "Exposure";
    QTest::newRow("label_8") << "亮度"
                             << "Brightness";
    QTest::newRow("label_10") << "增益"
                              << "Gain";
    QTest::newRow("label_29") << "快门"
                              << "Shutter";
    QTest::newRow("checkBox_5") << "自动"
                                << "Auto";
    QTest::newRow("checkBox_6") << "手动"
                                << "Hand";
    QTest::newRow("pushButton_10") << "重置"
                                   << "Reset";
    QTest::newRow("pushButton_4") << "白平衡"
                                  << "White Balance";
    QTest::newRow("label_12") << "红"
                              << "Red";
    QTest::newRow("label_14") << "绿"
                              << "Green";
    QTest::newRow("label_16") << "蓝"
                              << "Blue";
    QTest::newRow("checkBox_7") << "自动"
                                << "Auto";
    QTest::newRow("checkBox_8") << "手动"
                                << "Hand";
    QTest::newRow("pushButton_11") << "重置"
                                   << "Reset";
    QTest::newRow("pushButton_5") << "翻转"
                                  << "Flip";
    QTest::newRow("checkBox_9") << "水平"
                                << "Horizontal";
    QTest::newRow("checkBox_10") << "垂直"
                                 << "Vertical";
    QTest::newRow("pushButton_6") << "功能"
                                  << "Function";
    QTest::newRow("label_24") << "色度"
                              << "Chroma";
    QTest::newRow("label_27") << "饱和度"
                              << "Saturation";
    QTest::newRow("label_18") << "对比度"
                              << "Contrast";
    QTest::newRow("label_20") << "锐度"
                              << "Sharpness";
    QTest::newRow("label_22") << "电子放大"
                              << "Zoom";
    QTest::newRow("label_32") << "变倍"
                              << "Zoom";
    QTest::newRow("label_26") << "MJPG质量"
                              << "MJPG Quality";
    QTest::newRow("label_31") << "宽动态"
                              << "WideDynamic";
    QTest::newRow("label_34") << "分辨率"
                              << "Ratio";
    QTest::newRow("checkBox_11") << "50/60 HZ"
                                 << "50/60 HZ";
    QTest::newRow("checkBox_12") << "黑白"
                                 << "BlackAndWhite";
    QTest::newRow("checkBox_13") << "消除反光"
                                 << "EliminateReflection";
    QTest::newRow("pushButton_12") << "马达居中"
                                   << "Center";
    QTest::newRow("pushButton_14") << "保存"
                                   << "Save";
    QTest::newRow("pushButton_13") << "重置"
                                   << "Reset";
}

void TestCameraSetWidget2::textsComeInBothLanguages()
{
    const QString name = QTest::currentDataTag();
    QTEST(textOf(*panel, name), "chinese");
    const English english;
    panel->retranslate();
    QTEST(textOf(*panel, name), "english");
}

void TestCameraSetWidget2::listsOfTheBoxes()
{
    const auto items = [this](const QString &name) {
        const QComboBox &list = control<QComboBox>(*panel, name);
        QStringList texts;
        for (int i = 0; i < list.count(); ++i)
            texts << list.itemText(i);
        return texts;
    };
    const QStringList sizes = {"1920*1080", "4000*3000", "3840*2160", "1280*720", "640*480"};
    QCOMPARE(items("comboBox"), QStringList({"小", "大"}));
    QCOMPARE(items("comboBox_2"), sizes);
    const English english;
    panel->retranslate();
    QCOMPARE(items("comboBox"), QStringList({"Small", "Big"}));
    QCOMPARE(items("comboBox_2"), sizes);
}

void TestCameraSetWidget2::retranslatingKeepsWhatIsSet()
{
    areaSize().setCurrentIndex(1);
    slider("_9").setValue(77);
    button(1).click();
    said();
    const English english;
    panel->retranslate();
    QCOMPARE(areaSize().currentIndex(), 1);
    QCOMPARE(textOf(*panel, "label_19"), QString("77"));
    QVERIFY(!control<QWidget>(*panel, "widget").isHidden());
    QCOMPARE(said(), QString());
}

void TestCameraSetWidget2::modesExcludeEachOther_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("focus") << "buttonGroup" << QStringList{"checkBox", "checkBox_2", "checkBox_3"};
    QTest::newRow("exposure") << "buttonGroup_3" << QStringList{"checkBox_5", "checkBox_6"};
    QTest::newRow("white balance") << "buttonGroup_4" << QStringList{"checkBox_7", "checkBox_8"};
}

void TestCameraSetWidget2::modesExcludeEachOther()
{
    QFETCH(QString, group);
    const auto *boxes = panel->findChild<QButtonGroup *>(group);
    QVERIFY(boxes);
    QVERIFY(boxes->exclusive());
    QVERIFY(!boxes->checkedButton());
    QStringList names;
    for (const QAbstractButton *button : boxes->buttons())
        names << button->objectName();
    QTEST(names, "names");
}

void TestCameraSetWidget2::placeholdersAreDisabledOrHiddenAndSendNothing()
{
    auto &quality = control<QSpinBox>(*panel, "spinBox_2");
    auto &dynamic = control<QSpinBox>(*panel, "spinBox");
    QCOMPARE(quality.minimum(), 1);
    QCOMPARE(quality.maximum(), 5);
    QCOMPARE(dynamic.minimum(), 1);
    QCOMPARE(dynamic.maximum(), 3);
    QVERIFY(!quality.isEnabled());
    QVERIFY(!dynamic.isEnabled());
    QVERIFY(!box(2).isEnabled());
    QVERIFY(!box(11).isEnabled());
    for (const char *name : {"label_22", "horizontalSlider_11", "label_23", "checkBox_13"})
        QVERIFY2(control<QWidget>(*panel, name).isHidden(), name);

    quality.setValue(5);
    dynamic.setValue(3);
    box(2).setChecked(true);
    box(11).setChecked(true);
    slider("_11").setValue(50);
    QCOMPARE(said(), QString());
    QCOMPARE(textOf(*panel, "label_23"), QString("0"));
}

void TestCameraSetWidget2::prefersItsSize()
{
    QCOMPARE(panel->size(), QSize(400, 1412));
    QCOMPARE(panel->sizeHint(), QSize(400, 1412));
    const auto &area = control<QScrollArea>(*panel, "scrollArea");
    QCOMPARE(area.frameShape(), QFrame::NoFrame);
    QVERIFY(area.widgetResizable());
}

void TestCameraSetWidget2::fitsTheSideStackInBothLanguages_data()
{
    QTest::addColumn<bool>("english");
    QTest::newRow("Chinese") << false;
    QTest::newRow("English") << true;
}

void TestCameraSetWidget2::fitsTheSideStackInBothLanguages()
{
    QFETCH(bool, english);
    const auto translation = english ? std::make_unique<English>() : nullptr;
    panel->retranslate();
    for (int header = 1; header <= 6; ++header)
        button(header).click();
    panel->resize(210, 600);
    panel->show();
    QVERIFY(QTest::qWaitForWindowExposed(panel.get()));
    const auto &area = control<QScrollArea>(*panel, "scrollArea");
    QVERIFY(area.verticalScrollBar()->maximum() > 0);
    QCOMPARE(area.horizontalScrollBar()->maximum(), 0);
}

// ---- Groups

void TestCameraSetWidget2::groupsStartClosed()
{
    const QImage right = picture(QIcon(":/pic/arrow-right-normal.png"));
    QVERIFY(!right.isNull());
    for (const char *name : {"widget", "widget_2", "widget_3", "widget_4", "widget_5", "widget_6"})
        QVERIFY2(control<QWidget>(*panel, name).isHidden(), name);
    for (int header = 1; header <= 6; ++header)
        QCOMPARE(picture(button(header).icon()), right);
}

void TestCameraSetWidget2::aHeaderOpensAndClosesItsGroup_data()
{
    QTest::addColumn<int>("header");
    QTest::addColumn<QString>("group");
    QTest::newRow("focus mode") << 1 << "widget";
    QTest::newRow("focus area") << 2 << "widget_2";
    QTest::newRow("exposure") << 3 << "widget_3";
    QTest::newRow("white balance") << 4 << "widget_4";
    QTest::newRow("flip") << 5 << "widget_5";
    QTest::newRow("function") << 6 << "widget_6";
}

void TestCameraSetWidget2::aHeaderOpensAndClosesItsGroup()
{
    QFETCH(int, header);
    QFETCH(QString, group);
    const QImage right = picture(QIcon(":/pic/arrow-right-normal.png"));
    const QImage down = picture(QIcon(":/pic/arrow-down-normal.png"));
    QVERIFY(right != down);
    const QWidget &widget = control<QWidget>(*panel, group);
    button(header).click();
    QVERIFY(!widget.isHidden());
    QCOMPARE(picture(button(header).icon()), down);
    button(header).click();
    QVERIFY(widget.isHidden());
    QCOMPARE(picture(button(header).icon()), right);
    QCOMPARE(said(), QString());
}

void TestCameraSetWidget2::anyNumberOfGroupsMayBeOpen()
{
    button(1).click();
    button(4).click();
    QVERIFY(!control<QWidget>(*panel, "widget").isHidden());
    QVERIFY(!control<QWidget>(*panel, "widget_4").isHidden());
    QVERIFY(control<QWidget>(*panel, "widget_2").isHidden());
}

// ---- Plain sliders

void TestCameraSetWidget2::aSliderShowsItsNumberAndSendsIt_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("sent");
    QTest::newRow("brightness") << "_4" << 100 << "label_9"
                                << "1=100";
    QTest::newRow("gain") << "_5" << 50 << "label_11"
                          << "1024=50";
    QTest::newRow("shutter, longest") << "_14" << 17 << "label_30"
                                      << "65536=3";
    QTest::newRow("shutter, near the shortest") << "_14" << 1 << "label_30"
                                                << "65536=-13";
    QTest::newRow("red") << "_6" << 4096 << "label_13"
                         << "512=4096";
    QTest::newRow("green") << "_7" << 269 << "label_15"
                           << "16384=269";
    QTest::newRow("blue") << "_8" << 557 << "label_17"
                          << "32768=5570";
    QTest::newRow("blue, strongest") << "_8" << 4096 << "label_17"
                                     << "32768=40960";
    QTest::newRow("chroma") << "_12" << 99 << "label_25"
                            << "4=99";
    QTest::newRow("saturation") << "_13" << 99 << "label_28"
                                << "8=99";
    QTest::newRow("contrast") << "_9" << 100 << "label_19"
                              << "2=100";
    QTest::newRow("sharpness") << "_10" << 15 << "label_21"
                               << "2048=15";
    QTest::newRow("zoom") << "_15" << 130 << "label_33"
                          << "256=130";
}

void TestCameraSetWidget2::aSliderShowsItsNumberAndSendsIt()
{
    QFETCH(QString, suffix);
    QFETCH(int, value);
    QFETCH(QString, label);
    QString shownWhenSent;
    connect(panel.get(), &CameraSetWidget2::cameraInfoChange, this,
            [&] { shownWhenSent = textOf(*panel, label); });
    slider(suffix).setValue(value);
    QTEST(said(), "sent");
    QCOMPARE(shownWhenSent, QString::number(value));
}

// ---- Focus mode

void TestCameraSetWidget2::manualFocusSnapsToTheCamerasPosition()
{
    openCamera({});
    box(3).click();
    QCOMPARE(said(), QString("32=0 16=37"));
    QCOMPARE(slider("").value(), 37);
    QCOMPARE(textOf(*panel, "label_2"), QString("37"));
    QVERIFY(slider("").isEnabled());
}

void TestCameraSetWidget2::automaticFocusDisablesTheSlider()
{
    openCamera({});
    box(1).click();
    QCOMPARE(said(), QString("32=1"));
    QVERIFY(!slider("").isEnabled());
    box(3).click();
    QCOMPARE(said(), QString("32=0 16=37"));
    QVERIFY(!box(1).isChecked());
    QVERIFY(slider("").isEnabled());
}

void TestCameraSetWidget2::movingTheFocusUnderAutofocusSwitchesToManualFirst()
{
    openCamera({});
    box(1).click();
    said();
    panel->changeFocus(120);
    // Last of all the wanted position, though the slider stays where the camera was.
    QCOMPARE(said(), QString("32=0 16=37 16=120"));
    QVERIFY(box(3).isChecked());
    QVERIFY(!box(1).isChecked());
    QVERIFY(slider("").isEnabled());
    QCOMPARE(slider("").value(), 37);
    QCOMPARE(textOf(*panel, "label_2"), QString("37"));
}

void TestCameraSetWidget2::inManualTheFocusIsSentAlone()
{
    openCamera({});
    box(3).click();
    said();
    panel->setFocusValue(38);
    QCOMPARE(said(), QString("16=38"));
    panel->setFocusValue(38);
    QCOMPARE(said(), QString());
    panel->changeFocus(500);
    QCOMPARE(said(), QString("16=400"));
    QCOMPARE(slider("").value(), 400);
}

void TestCameraSetWidget2::focusWithoutACameraFallsToZeroAndSendsWhatWasAsked()
{
    panel->changeFocus(120);
    QCOMPARE(said(), QString("32=0 16=0 16=120"));
    QCOMPARE(slider("").value(), 0);
}

void TestCameraSetWidget2::focusReadBackDoesNotChangeAnEqualSlider()
{
    openCamera({});
    box(3).click();
    box(1).click();
    said();
    box(3).click();
    QCOMPARE(said(), QString("32=0"));
}

void TestCameraSetWidget2::middleButtonTogglesTheFocusMode()
{
    panel->toggleFocusMode(); // neither is checked yet
    QVERIFY(box(3).isChecked());
    panel->toggleFocusMode();
    QVERIFY(box(1).isChecked());
    panel->toggleFocusMode();
    QVERIFY(box(3).isChecked());
    QCOMPARE(said(), QString("32=0 32=1 32=0"));
}

void TestCameraSetWidget2::setFocusManualDoesNothingInManual()
{
    panel->setFocusManual();
    QCOMPARE(said(), QString("32=0"));
    panel->setFocusManual();
    QCOMPARE(said(), QString());
    panel->checkAutoFocus();
    panel->setFocusManual();
    QCOMPARE(said(), QString("32=1 32=0"));
}

void TestCameraSetWidget2::checkAutoFocusAndItsResetButton()
{
    panel->checkAutoFocus();
    QCOMPARE(said(), QString("32=1"));
    panel->setFocusManual();
    said();
    button(8).click();
    QCOMPARE(said(), QString("32=1"));
    QVERIFY(box(1).isChecked());
    button(8).click();
    QCOMPARE(said(), QString());
}

void TestCameraSetWidget2::motorCentreIsSentOnceMore()
{
    openCamera({});
    box(3).click();
    said();
    button(12).click();
    QCOMPARE(said(), QString("16=200 16=200"));
    button(12).click();
    QCOMPARE(said(), QString("16=200"));
    QCOMPARE(slider("").value(), 200);
}

void TestCameraSetWidget2::motorCentreUnderAutofocus()
{
    openCamera({});
    box(1).click();
    said();
    button(12).click();
    QCOMPARE(said(), QString("32=0 16=37 16=200 16=200"));
}

// ---- Focus area

void TestCameraSetWidget2::areaSizeIsSentBeforeItIsAnnounced()
{
    areaSize().setCurrentIndex(1);
    QCOMPARE(said(), QString("8192=32 blink(0,1,0)"));
    areaSize().setCurrentIndex(0);
    QCOMPARE(said(), QString("8192=0 blink(0,0,0)"));
}

void TestCameraSetWidget2::focusFrameAndClickFocusAreAnnounced()
{
    box(4).click();
    QCOMPARE(said(), QString("blink(0,0,1)"));
    box(14).click();
    QCOMPARE(said(), QString("blink(1,0,1)"));
    QVERIFY(panel->isClickFocus());
    areaSize().setCurrentIndex(1);
    QCOMPARE(said(), QString("8192=32 blink(1,1,1)"));
    box(4).click();
    QCOMPARE(said(), QString("blink(1,1,0)"));
    box(14).click();
    QCOMPARE(said(), QString("blink(0,1,0)"));
    QVERIFY(!panel->isClickFocus());
}

void TestCameraSetWidget2::clickFocusCanBeSetByCode()
{
    QVERIFY(!panel->isClickFocus());
    panel->setClickFocus(true);
    panel->setClickFocus(true);
    QVERIFY(box(14).isChecked());
    QVERIFY(panel->isClickFocus());
    panel->setClickFocus(false);
    QVERIFY(!panel->isClickFocus());
    QCOMPARE(said(), QString("blink(1,0,0) blink(0,0,0)"));
}

void TestCameraSetWidget2::cellsAreShownAndNotSent()
{
    panel->showCell(17, 15);
    QCOMPARE(slider("_2").value(), 17);
    QCOMPARE(slider("_3").value(), 15);
    QCOMPARE(textOf(*panel, "label_5"), QString("17"));
    QCOMPARE(textOf(*panel, "label_7"), QString("15"));
    panel->showCell(0, 99);
    QCOMPARE(slider("_2").value(), 1);
    QCOMPARE(slider("_3").value(), 15);
    QCOMPARE(said(), QString());
}

void TestCameraSetWidget2::resetOfTheFocusArea()
{
    areaSize().setCurrentIndex(1);
    box(4).click();
    box(14).click();
    said();
    button(9).click();
    QCOMPARE(said(), QString("8192=0 blink(1,0,1) blink(1,0,0) blink(0,0,0)"));
}

// ---- Exposure

void TestCameraSetWidget2::automaticExposureTakesTheBrightness()
{
    openCamera({});
    box(5).click();
    QCOMPARE(said(), QString("1=33 8192=8"));
    QCOMPARE(slider("_4").value(), 33);
    QVERIFY(slider("_4").isEnabled());
    QVERIFY(!slider("_5").isEnabled());
    QVERIFY(!slider("_14").isEnabled());
}

void TestCameraSetWidget2::manualExposureTakesGainAndShutter()
{
    openCamera({});
    box(5).click();
    said();
    box(6).click();
    QCOMPARE(said(), QString("1024=21 65536=-12 8192=0"));
    QVERIFY(!slider("_4").isEnabled());
    QVERIFY(slider("_5").isEnabled());
    QVERIFY(slider("_14").isEnabled());
}

void TestCameraSetWidget2::aNegativeShutterReadsAsZeroAndIsSentBackAsTheShortest()
{
    ReadBacks values;
    values.shutter = -6;
    openCamera(values);
    slider("_14").setValue(8);
    QCOMPARE(said(), QString("65536=-6"));
    box(6).click();
    QCOMPARE(said(), QString("1024=21 65536=-14 8192=0"));
    QCOMPARE(slider("_14").value(), 0);
}

void TestCameraSetWidget2::theShutterReadBackIsNotMapped()
{
    // What the camera calls 2 is shown as 2, and would be sent as -12.
    openCamera({});
    box(6).click();
    QCOMPARE(slider("_14").value(), 2);
    QCOMPARE(textOf(*panel, "label_30"), QString("2"));
}

void TestCameraSetWidget2::functionWordTellsTheModeThatTheOperatorSees()
{
    // Checked by code the partner must be off in the word as well.
    box(5).setChecked(true);
    box(7).setChecked(true);
    QCOMPARE(said(), QString("8192=8 8192=12"));
    box(6).setChecked(true);
    QCOMPARE(said(), QString("8192=4"));
    box(8).setChecked(true);
    QCOMPARE(said(), QString("8192=0"));
}

void TestCameraSetWidget2::resetOfTheExposure()
{
    openCamera({});
    box(6).click();
    said();
    button(10).click();
    QCOMPARE(said(), QString("1=33 8192=8 1=56 1024=0 65536=-13"));
    QVERIFY(box(5).isChecked());
}

void TestCameraSetWidget2::eliminateReflectionEndsInAutomaticExposure()
{
    openCamera({});
    box(6).click();
    said();
    box(13).setChecked(true);
    QCOMPARE(said(), QString("1=33 8192=24 8192=24"));
    QVERIFY(box(5).isChecked());
    QVERIFY(!box(6).isChecked());
    box(13).setChecked(false);
    QCOMPARE(said(), QString("8192=8"));
    QVERIFY(box(5).isChecked());
}

void TestCameraSetWidget2::manualExposureFirstUnchecksEliminateReflection()
{
    openCamera({});
    box(13).setChecked(true);
    said();
    box(6).click();
    QVERIFY(!box(13).isChecked());
    // Unchecking it puts the exposure back to automatic, so that a second click is needed.
    QCOMPARE(said(), QString("8192=8 8192=8 1024=21 65536=-12 8192=8"));
    QVERIFY(box(5).isChecked());
    box(6).click();
    QCOMPARE(said(), QString("8192=0"));
    QVERIFY(box(6).isChecked());
}

// ---- White balance

void TestCameraSetWidget2::automaticWhiteBalanceDisablesTheSliders()
{
    box(7).click();
    QCOMPARE(said(), QString("8192=4"));
    for (const char *suffix : {"_6", "_7", "_8"})
        QVERIFY(!slider(suffix).isEnabled());
}

void TestCameraSetWidget2::manualWhiteBalanceTakesTheThreeGains()
{
    openCamera({});
    box(7).click();
    said();
    box(8).click();
    QCOMPARE(said(), QString("512=1000 16384=2000 32768=5570 8192=0"));
    for (const char *suffix : {"_6", "_7", "_8"})
        QVERIFY(slider(suffix).isEnabled());
}

void TestCameraSetWidget2::blueReadBackIsATenthOnTheSlider_data()
{
    QTest::addColumn<int>("blue");
    QTest::addColumn<int>("shown");
    QTest::newRow("a multiple of ten") << 5570 << 557;
    QTest::newRow("cut to a whole number") << 5579 << 557;
    QTest::newRow("beyond the slider") << 99999 << 4096;
    QTest::newRow("negative") << -50 << 0;
}

void TestCameraSetWidget2::blueReadBackIsATenthOnTheSlider()
{
    QFETCH(int, blue);
    ReadBacks values;
    values.blue = blue;
    openCamera(values);
    box(8).click();
    QTEST(slider("_8").value(), "shown");
}

void TestCameraSetWidget2::resetOfTheWhiteBalance()
{
    ReadBacks values;
    values.blue = 3000;
    openCamera(values);
    box(8).click();
    said();
    button(11).click();
    QCOMPARE(said(), QString("8192=4 512=668 16384=269 32768=5570"));
    QVERIFY(!slider("_6").isEnabled());
}

// ---- Flip and function

void TestCameraSetWidget2::flipsAreSentOnEveryChange()
{
    box(9).click();
    box(10).click();
    box(9).click();
    box(10).click();
    QCOMPARE(said(), QString("8192=2 8192=3 8192=1 8192=0"));
}

void TestCameraSetWidget2::functionWordCollectsAllSwitches()
{
    box(10).click();
    box(9).click();
    box(7).click();
    box(5).click();
    areaSize().setCurrentIndex(1);
    said();
    box(13).setChecked(true);
    QCOMPARE(said(), QString("8192=63"));
}

void TestCameraSetWidget2::saturationZeroIsBlackAndWhite()
{
    slider("_13").setValue(30);
    said();
    slider("_13").setValue(0);
    QCOMPARE(said(), QString("8=0"));
    QVERIFY(box(12).isChecked());
}

void TestCameraSetWidget2::raisingTheSaturationLeavesBlackAndWhite()
{
    slider("_13").setValue(30);
    slider("_13").setValue(0);
    said();
    slider("_13").setValue(40);
    // Leaving it sets the slider to the neutral value; what was asked for is sent last.
    QCOMPARE(said(), QString("8=50 8=40"));
    QVERIFY(!box(12).isChecked());
    QCOMPARE(slider("_13").value(), 50);
    QCOMPARE(textOf(*panel, "label_28"), QString("50"));
    slider("_13").setValue(41);
    QCOMPARE(said(), QString("8=41"));
}

void TestCameraSetWidget2::blackAndWhiteSetsTheSaturation()
{
    slider("_13").setValue(30);
    said();
    box(12).click();
    QCOMPARE(said(), QString("8=0"));
    QVERIFY(box(12).isChecked());
    box(12).click();
    QCOMPARE(said(), QString("8=50"));
    QVERIFY(!box(12).isChecked());
    QCOMPARE(slider("_13").value(), 50);
}

void TestCameraSetWidget2::resolutionIsSentByItsIndex()
{
    auto &resolution = control<QComboBox>(*panel, "comboBox_2");
    for (const int index : {4, 1, 2, 3, 0})
        resolution.setCurrentIndex(index);
    QCOMPARE(said(), QString("128=4 128=1 128=2 128=3 128=0"));
}

void TestCameraSetWidget2::resetOfTheFunctions()
{
    control<QSpinBox>(*panel, "spinBox_2").setValue(5);
    slider("_15").setValue(60);
    box(9).click();
    said();
    button(13).click();
    QCOMPARE(said(), QString("2=50 4=50 8=50 2048=4"));
    QCOMPARE(control<QSpinBox>(*panel, "spinBox_2").value(), 1);
    // Zoom and flips have no reset.
    QCOMPARE(slider("_15").value(), 60);
    QVERIFY(box(9).isChecked());
}

void TestCameraSetWidget2::resetLeavesBlackAndWhite()
{
    box(12).click();
    said();
    button(13).click();
    QCOMPARE(said(), QString("2=50 4=50 8=50 2048=4"));
    QVERIFY(!box(12).isChecked());
    QCOMPARE(slider("_13").value(), 50);
}

void TestCameraSetWidget2::saveIsACommandBeyondTheSharpnessSlider()
{
    button(14).click();
    QCOMPARE(said(), QString("2048=20 success"));
    slider("_10").setValue(20);
    QCOMPARE(said(), QString("2048=15"));
}

// ---- Loading

void TestCameraSetWidget2::loadingAnInvalidRecordDoesNothing()
{
    CameraInfo info = automaticRecord();
    info.valid = false;
    panel->loadCameraInfo(info);
    QCOMPARE(said(), QString());
    QVERIFY(!box(1).isChecked());
}

void TestCameraSetWidget2::loadingSendsBackWhatWasReadInThisOrder()
{
    openCamera({});
    CameraInfo info = automaticRecord();
    info.functionWord = 1 + 2 + 4 + 8 + 16 + 32;
    panel->loadCameraInfo(info);
    QCOMPARE(said(), QString("2=11 4=12 8=13 "      // contrast, chroma, saturation
                             "32=0 16=37 16=140 "   // the focus passes through manual,
                             "32=1 "                // then takes the mode
                             "1=15 1024=16 2048=7 " // brightness, gain, sharpness
                             "512=18 16384=19 32768=200 256=21 "
                             "8192=1 8192=3 8192=7 " // flips, white balance
                             "1=33 8192=15 "         // exposure, with the brightness read back
                             "8192=31 "              // reflection
                             "8192=63 blink(0,1,0)"));
    QVERIFY(box(1).isChecked());
    QVERIFY(!slider("").isEnabled());
    for (const int number : {5, 7, 9, 10, 13})
        QVERIFY(box(number).isChecked());
    QVERIFY(!box(12).isChecked());
}

void TestCameraSetWidget2::loadingManualModesReadsTheCameraAgain()
{
    openCamera({});
    CameraInfo info = automaticRecord();
    info.autoFocus = 0;
    info.functionWord = 16;
    panel->loadCameraInfo(info);
    QCOMPARE(said(), QString("2=11 4=12 8=13 32=0 16=37 16=140 "
                             "1=15 1024=16 2048=7 512=18 16384=19 32768=200 256=21 "
                             "512=1000 16384=2000 32768=5570 8192=0 " // manual white balance
                             "1024=21 65536=-12 8192=0 "              // manual exposure
                             "1=33 8192=24 8192=24"));                // reflection: automatic again
    QVERIFY(box(3).isChecked());
    QVERIFY(box(8).isChecked());
    QVERIFY(box(5).isChecked());
}

void TestCameraSetWidget2::loadingEnablesTheFocusSliderUnlessAutofocusIsOn()
{
    CameraInfo info = automaticRecord();
    panel->loadCameraInfo(info);
    QVERIFY(!slider("").isEnabled());
    info.autoFocus = -1; // a camera that does not answer is taken for manual
    panel->loadCameraInfo(info);
    QVERIFY(box(3).isChecked());
    QVERIFY(slider("").isEnabled());
}

void TestCameraSetWidget2::loadingNeverUnchecksFlipsAndReflection()
{
    CameraInfo info = automaticRecord();
    info.functionWord = 1 + 2 + 4 + 8 + 16;
    panel->loadCameraInfo(info);
    info.functionWord = 4 + 8;
    panel->loadCameraInfo(info);
    QVERIFY(box(9).isChecked());
    QVERIFY(box(10).isChecked());
    QVERIFY(box(13).isChecked());
}

void TestCameraSetWidget2::loadingSelectsTheSizeOfTheArea()
{
    areaSize().setCurrentIndex(1);
    CameraInfo info = automaticRecord();
    panel->loadCameraInfo(info);
    QCOMPARE(areaSize().currentIndex(), 0);
    info.functionWord += FunctionWord::LargeFocusArea;
    panel->loadCameraInfo(info);
    QCOMPARE(areaSize().currentIndex(), 1);
}

void TestCameraSetWidget2::loadingSaturationZeroChecksBlackAndWhite()
{
    CameraInfo info = automaticRecord();
    info.saturation = 0; // where the slider stands already
    panel->loadCameraInfo(info);
    QVERIFY(box(12).isChecked());
    QVERIFY(!said().contains("8=50"));
}

void TestCameraSetWidget2::loadingASaturationUnchecksBlackAndWhite()
{
    box(12).click();
    said();
    panel->loadCameraInfo(automaticRecord());
    QVERIFY(!box(12).isChecked());
    QVERIFY(said().startsWith("2=11 4=12 8=50 8=13 "));
}

void TestCameraSetWidget2::loadingShowsTheGreenGainAsPictureQuality()
{
    CameraInfo info = automaticRecord();
    panel->loadCameraInfo(info);
    QCOMPARE(control<QSpinBox>(*panel, "spinBox_2").value(), 5);
    info.green = 3;
    panel->loadCameraInfo(info);
    QCOMPARE(control<QSpinBox>(*panel, "spinBox_2").value(), 3);
    info.green = 0;
    panel->loadCameraInfo(info);
    QCOMPARE(control<QSpinBox>(*panel, "spinBox_2").value(), 1);
}

void TestCameraSetWidget2::shutterAndResolutionAreNotLoaded()
{
    CameraInfo info = automaticRecord();
    info.shutter = 3;
    info.resolution = 4;
    slider("_14").setValue(9);
    control<QComboBox>(*panel, "comboBox_2").setCurrentIndex(2);
    panel->loadCameraInfo(info);
    QCOMPARE(slider("_14").value(), 9);
    QCOMPARE(control<QComboBox>(*panel, "comboBox_2").currentIndex(), 2);
}

QTEST_MAIN(TestCameraSetWidget2)
#include "test_camerasetwidget2.moc"
