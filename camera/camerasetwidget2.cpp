#include "camera/camerasetwidget2.h"

#include "camera/mycamera.h"
#include "ui_camerasetwidget2.h"

using namespace CameraParameter;

namespace {

/// The shutter slider runs from 0, the camera's shutter from here.
constexpr int shutterOrigin = -14;
/// The camera holds the blue gain in tenths of what the slider shows.
constexpr int blueFactor = 10;
/// Saturation of a picture that comes back from black and white.
constexpr int neutralSaturation = 50;

} // namespace

CameraSetWidget2::CameraSetWidget2(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::CameraSetWidget2>())
{
    ui->setupUi(this);
    for (QWidget *group :
         {ui->widget, ui->widget_2, ui->widget_3, ui->widget_4, ui->widget_5, ui->widget_6})
        group->hide();
    ui->label_22->hide();
    ui->horizontalSlider_11->hide();
    ui->label_23->hide();
    ui->checkBox_13->hide();
}

CameraSetWidget2::~CameraSetWidget2() = default;

void CameraSetWidget2::loadCameraInfo(const CameraInfo &info)
{
    if (!info.valid)
        return;
    const auto has = [&](int bit) { return (info.functionWord & bit) != 0; };

    ui->horizontalSlider_9->setValue(info.contrast);
    ui->horizontalSlider_12->setValue(info.chroma);
    ui->horizontalSlider_13->setValue(info.saturation);
    ui->horizontalSlider->setValue(info.focus);

    const bool isAutomatic = info.autoFocus == 1;
    (isAutomatic ? ui->checkBox : ui->checkBox_3)->setChecked(true);
    ui->horizontalSlider->setEnabled(!isAutomatic);

    ui->horizontalSlider_4->setValue(info.brightness);
    ui->horizontalSlider_5->setValue(info.gain);
    ui->horizontalSlider_10->setValue(info.sharpness);
    ui->horizontalSlider_6->setValue(info.red);
    ui->horizontalSlider_7->setValue(info.green);
    ui->horizontalSlider_8->setValue(info.blue / blueFactor);

    // The picture quality box shows the green gain, cut to its range; it has no effect.
    ui->spinBox_2->setValue(info.green);

    ui->horizontalSlider_15->setValue(info.zoom);

    // Flips and reflection are only ever checked here: a cleared bit leaves their box as it was.
    if (has(FunctionWord::FlipVertical))
        ui->checkBox_10->setChecked(true);
    if (has(FunctionWord::FlipHorizontal))
        ui->checkBox_9->setChecked(true);
    (has(FunctionWord::AutoWhiteBalance) ? ui->checkBox_7 : ui->checkBox_8)->setChecked(true);
    (has(FunctionWord::AutoExposure) ? ui->checkBox_5 : ui->checkBox_6)->setChecked(true);
    if (has(FunctionWord::EliminateReflection))
        ui->checkBox_13->setChecked(true);
    ui->comboBox->setCurrentIndex(has(FunctionWord::LargeFocusArea) ? 1 : 0);

    ui->checkBox_12->setChecked(info.saturation == 0);
}

void CameraSetWidget2::toggleFocusMode()
{
    (ui->checkBox_3->isChecked() ? ui->checkBox : ui->checkBox_3)->setChecked(true);
}

void CameraSetWidget2::checkAutoFocus() { ui->checkBox->setChecked(true); }

void CameraSetWidget2::setClickFocus(bool on) { ui->checkBox_14->setChecked(on); }

void CameraSetWidget2::showCell(int x, int y)
{
    ui->horizontalSlider_2->setValue(x);
    ui->horizontalSlider_3->setValue(y);
}

void CameraSetWidget2::retranslate() { ui->retranslateUi(this); }

void CameraSetWidget2::changeFocus(int value) { ui->horizontalSlider->setValue(value); }

void CameraSetWidget2::setFocusManual()
{
    if (!ui->checkBox_3->isChecked())
        ui->checkBox_3->setChecked(true);
}

// Group headers

void CameraSetWidget2::on_pushButton_clicked() { toggleGroup(ui->pushButton, ui->widget); }

void CameraSetWidget2::on_pushButton_2_clicked() { toggleGroup(ui->pushButton_2, ui->widget_2); }

void CameraSetWidget2::on_pushButton_3_clicked() { toggleGroup(ui->pushButton_3, ui->widget_3); }

void CameraSetWidget2::on_pushButton_4_clicked() { toggleGroup(ui->pushButton_4, ui->widget_4); }

void CameraSetWidget2::on_pushButton_5_clicked() { toggleGroup(ui->pushButton_5, ui->widget_5); }

void CameraSetWidget2::on_pushButton_6_clicked() { toggleGroup(ui->pushButton_6, ui->widget_6); }

// Focus mode and focus area

void CameraSetWidget2::on_horizontalSlider_valueChanged(int value)
{
    showNumber(ui->label_2, value);
    ui->checkBox_3->setChecked(true);
    send(Focus, value);
}

void CameraSetWidget2::on_checkBox_toggled(bool checked)
{
    if (!checked)
        return;
    send(AutoFocus, 1);
    ui->horizontalSlider->setEnabled(false);
}

void CameraSetWidget2::on_checkBox_3_toggled(bool checked)
{
    if (!checked)
        return;
    send(AutoFocus, 0);
    ui->horizontalSlider->setEnabled(true);
    ui->horizontalSlider->setValue(MyCamera::currentFocus());
}

void CameraSetWidget2::on_pushButton_8_clicked() { ui->checkBox->setChecked(true); }

void CameraSetWidget2::on_comboBox_currentIndexChanged(int /*index*/)
{
    sendFunctionWord();
    emitBlinkChange();
}

void CameraSetWidget2::on_horizontalSlider_2_valueChanged(int value)
{
    showNumber(ui->label_5, value);
}

void CameraSetWidget2::on_horizontalSlider_3_valueChanged(int value)
{
    showNumber(ui->label_7, value);
}

void CameraSetWidget2::on_checkBox_4_stateChanged(int /*state*/) { emitBlinkChange(); }

void CameraSetWidget2::on_checkBox_14_stateChanged(int state)
{
    clickFocus = state == Qt::Checked;
    emitBlinkChange();
}

void CameraSetWidget2::on_pushButton_9_clicked()
{
    ui->comboBox->setCurrentIndex(0);
    ui->checkBox_4->setChecked(false);
    ui->checkBox_14->setChecked(false);
}

// Exposure

void CameraSetWidget2::on_horizontalSlider_4_valueChanged(int value)
{
    showNumber(ui->label_9, value);
    send(Brightness, value);
}

void CameraSetWidget2::on_horizontalSlider_5_valueChanged(int value)
{
    showNumber(ui->label_11, value);
    send(Gain, value);
}

void CameraSetWidget2::on_horizontalSlider_14_valueChanged(int value)
{
    showNumber(ui->label_30, value);
    send(Shutter, value + shutterOrigin);
}

void CameraSetWidget2::on_checkBox_5_toggled(bool checked)
{
    if (!checked)
        return;
    ui->horizontalSlider_4->setValue(MyCamera::currentBrightness());
    ui->horizontalSlider_4->setEnabled(true);
    ui->horizontalSlider_5->setEnabled(false);
    ui->horizontalSlider_14->setEnabled(false);
    sendFunctionWord();
}

void CameraSetWidget2::on_checkBox_6_toggled(bool checked)
{
    if (!checked)
        return;
    if (ui->checkBox_13->isChecked())
        ui->checkBox_13->setChecked(false);
    ui->horizontalSlider_5->setValue(MyCamera::currentGain());
    // The raw shutter lands on the slider unmapped, though the slider sends its value less 14.
    ui->horizontalSlider_14->setValue(MyCamera::currentExposure());
    ui->horizontalSlider_4->setEnabled(false);
    ui->horizontalSlider_5->setEnabled(true);
    ui->horizontalSlider_14->setEnabled(true);
    sendFunctionWord();
}

void CameraSetWidget2::on_pushButton_10_clicked()
{
    ui->checkBox_5->setChecked(true);
    ui->horizontalSlider_4->setValue(56);
    ui->horizontalSlider_5->setValue(0);
    ui->horizontalSlider_14->setValue(1);
}

// White balance

void CameraSetWidget2::on_horizontalSlider_6_valueChanged(int value)
{
    showNumber(ui->label_13, value);
    send(Red, value);
}

void CameraSetWidget2::on_horizontalSlider_7_valueChanged(int value)
{
    showNumber(ui->label_15, value);
    send(Green, value);
}

void CameraSetWidget2::on_horizontalSlider_8_valueChanged(int value)
{
    showNumber(ui->label_17, value);
    send(Blue, value * blueFactor);
}

void CameraSetWidget2::on_checkBox_7_toggled(bool checked)
{
    if (!checked)
        return;
    for (QSlider *slider : {ui->horizontalSlider_6, ui->horizontalSlider_7, ui->horizontalSlider_8})
        slider->setEnabled(false);
    sendFunctionWord();
}

void CameraSetWidget2::on_checkBox_8_toggled(bool checked)
{
    if (!checked)
        return;
    ui->horizontalSlider_6->setValue(MyCamera::currentGamma());
    ui->horizontalSlider_7->setValue(MyCamera::currentRoll());
    ui->horizontalSlider_8->setValue(MyCamera::currentIris() / blueFactor);
    for (QSlider *slider : {ui->horizontalSlider_6, ui->horizontalSlider_7, ui->horizontalSlider_8})
        slider->setEnabled(true);
    sendFunctionWord();
}

void CameraSetWidget2::on_pushButton_11_clicked()
{
    ui->checkBox_7->setChecked(true);
    ui->horizontalSlider_6->setValue(668);
    ui->horizontalSlider_7->setValue(269);
    ui->horizontalSlider_8->setValue(557);
}

// Flip and function

void CameraSetWidget2::on_checkBox_9_stateChanged(int /*state*/) { sendFunctionWord(); }

void CameraSetWidget2::on_checkBox_10_stateChanged(int /*state*/) { sendFunctionWord(); }

void CameraSetWidget2::on_horizontalSlider_12_valueChanged(int value)
{
    showNumber(ui->label_25, value);
    send(Chroma, value);
}

void CameraSetWidget2::on_horizontalSlider_13_valueChanged(int value)
{
    showNumber(ui->label_28, value);
    ui->checkBox_12->setChecked(value == 0);
    send(Saturation, value);
}

void CameraSetWidget2::on_horizontalSlider_9_valueChanged(int value)
{
    showNumber(ui->label_19, value);
    send(Contrast, value);
}

void CameraSetWidget2::on_horizontalSlider_10_valueChanged(int value)
{
    showNumber(ui->label_21, value);
    send(Sharpness, value);
}

void CameraSetWidget2::on_horizontalSlider_15_valueChanged(int value)
{
    showNumber(ui->label_33, value);
    send(Zoom, value);
}

void CameraSetWidget2::on_comboBox_2_currentIndexChanged(int index) { send(Resolution, index); }

void CameraSetWidget2::on_checkBox_12_stateChanged(int state)
{
    ui->horizontalSlider_13->setValue(state == Qt::Checked ? 0 : neutralSaturation);
}

void CameraSetWidget2::on_checkBox_13_stateChanged(int /*state*/)
{
    // The exclusive group keeps the box checked, so that exposure ends up automatic.
    ui->checkBox_5->setChecked(true);
    ui->checkBox_5->setChecked(false);
    sendFunctionWord();
}

void CameraSetWidget2::on_pushButton_12_clicked()
{
    ui->horizontalSlider->setValue(MotorCentre);
    send(Focus, MotorCentre);
}

// Bottom row

void CameraSetWidget2::on_pushButton_13_clicked()
{
    ui->horizontalSlider_9->setValue(50);
    ui->horizontalSlider_12->setValue(50);
    ui->horizontalSlider_13->setValue(50);
    ui->horizontalSlider_10->setValue(4);
    ui->spinBox_2->setValue(1);
    ui->checkBox_12->setChecked(false);
}

void CameraSetWidget2::on_pushButton_14_clicked()
{
    send(Sharpness, SaveToCamera);
    emit showSuccess();
}

// Controls without a function

void CameraSetWidget2::on_horizontalSlider_11_valueChanged(int /*value*/) {}
void CameraSetWidget2::on_spinBox_valueChanged(int /*value*/) {}
void CameraSetWidget2::on_spinBox_2_valueChanged(int /*value*/) {}
void CameraSetWidget2::on_checkBox_11_stateChanged(int /*state*/) {}

// Helpers

void CameraSetWidget2::toggleGroup(QPushButton *header, QWidget *group)
{
    const bool show = group->isHidden();
    group->setVisible(show);
    header->setIcon(QIcon(show ? QStringLiteral(":/pic/arrow-down-normal.png")
                               : QStringLiteral(":/pic/arrow-right-normal.png")));
}

void CameraSetWidget2::showNumber(QLabel *label, int value)
{
    label->setText(QString::number(value));
}

void CameraSetWidget2::sendFunctionWord() { send(FunctionSwitches, functionWord()); }

int CameraSetWidget2::functionWord() const
{
    int word = 0;
    if (ui->comboBox->currentIndex() != 0)
        word |= FunctionWord::LargeFocusArea;
    if (ui->checkBox_13->isChecked())
        word |= FunctionWord::EliminateReflection;
    if (ui->checkBox_5->isChecked())
        word |= FunctionWord::AutoExposure;
    if (ui->checkBox_7->isChecked())
        word |= FunctionWord::AutoWhiteBalance;
    if (ui->checkBox_9->isChecked())
        word |= FunctionWord::FlipHorizontal;
    if (ui->checkBox_10->isChecked())
        word |= FunctionWord::FlipVertical;
    return word;
}

void CameraSetWidget2::emitBlinkChange()
{
    emit blinkChange(clickFocus, ui->comboBox->currentIndex() != 0, ui->checkBox_4->isChecked());
}
