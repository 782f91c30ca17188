#include "camera/camerasetwidget.h"

#include "camera/mycamera.h"
#include "ui_camerasetwidget.h"

using namespace CameraParameter;

namespace {

/// Anti-reflection travels as two zoom values beyond use.
constexpr int reflectionOff = 98;
constexpr int reflectionOn = 99;

} // namespace

CameraSetWidget::CameraSetWidget(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::CameraSetWidget>())
{
    ui->setupUi(this);
}

CameraSetWidget::~CameraSetWidget() = default;

void CameraSetWidget::load(const Values &values)
{
    if (!values.valid)
        return;
    ui->horizontalSlider_4->setValue(values.brightness);
    ui->horizontalSlider_3->setValue(values.contrast);
    ui->horizontalSlider_5->setValue(values.hue);
    ui->horizontalSlider_2->setValue(values.saturation);
    ui->horizontalSlider->setValue(values.focus);

    const bool isAutomatic = values.autoFocus == 1;
    if (values.autoFocus == -1)
        ui->checkBox_2->setEnabled(false);
    ui->checkBox_2->setChecked(isAutomatic);
    ui->horizontalSlider->setEnabled(!isAutomatic);
}

void CameraSetWidget::setControlsEnabled(bool enabled)
{
    for (QWidget *control : std::initializer_list<QWidget *>{
             ui->horizontalSlider_4, ui->horizontalSlider_3, ui->horizontalSlider_5,
             ui->horizontalSlider_2, ui->lineEdit, ui->lineEdit_13, ui->lineEdit_14,
             ui->lineEdit_15, ui->lineEdit_2, ui->checkBox, ui->checkBox_13, ui->checkBox_14,
             ui->checkBox_15, ui->checkBox_2, ui->checkBox_3, ui->checkBox_4, ui->comboBox,
             ui->defaultBtn})
        control->setEnabled(enabled);
    ui->horizontalSlider->setEnabled(enabled && !ui->checkBox_2->isChecked());
}

void CameraSetWidget::setFocusValue(int value) { ui->horizontalSlider->setValue(value); }

void CameraSetWidget::toggleAutoFocus() { ui->checkBox_2->toggle(); }

void CameraSetWidget::setEliminateReflection(bool on) { ui->checkBox_3->setChecked(on); }

void CameraSetWidget::on_defaultBtn_clicked()
{
    ui->checkBox_2->setChecked(false);
    ui->checkBox_3->setChecked(false);
    // The focus too goes to 50, far from the motor's centre.
    for (QSlider *slider : {ui->horizontalSlider_2, ui->horizontalSlider_3, ui->horizontalSlider_4,
                            ui->horizontalSlider_5, ui->horizontalSlider})
        slider->setValue(50);
}

void CameraSetWidget::on_horizontalSlider_4_valueChanged(int value)
{
    showNumber(ui->lineEdit, value);
    send(Brightness, value);
}

void CameraSetWidget::on_horizontalSlider_3_valueChanged(int value)
{
    showNumber(ui->lineEdit_13, value);
    send(Contrast, value);
}

void CameraSetWidget::on_horizontalSlider_5_valueChanged(int value)
{
    showNumber(ui->lineEdit_14, value);
    send(Chroma, value);
}

void CameraSetWidget::on_horizontalSlider_2_valueChanged(int value)
{
    showNumber(ui->lineEdit_15, value);
    send(Saturation, value);
}

void CameraSetWidget::on_horizontalSlider_valueChanged(int value)
{
    showNumber(ui->lineEdit_2, value);
    ui->checkBox_2->setChecked(false);
    send(Focus, value);
}

void CameraSetWidget::on_checkBox_2_stateChanged(int state)
{
    const bool isAutomatic = state != Qt::Unchecked;
    send(AutoFocus, isAutomatic ? 1 : 0);
    ui->horizontalSlider->setEnabled(!isAutomatic);
    if (!isAutomatic)
        ui->horizontalSlider->setValue(MyCamera::currentFocus());
}

void CameraSetWidget::on_comboBox_currentIndexChanged(int index) { send(Resolution, index); }

void CameraSetWidget::on_checkBox_3_stateChanged(int state)
{
    send(Zoom, state == Qt::Checked ? reflectionOn : reflectionOff);
}

void CameraSetWidget::on_checkBox_4_stateChanged(int state)
{
    clickFocus = state == Qt::Checked;
    emit blinkChange(clickFocus);
}

void CameraSetWidget::showNumber(QLineEdit *field, int value)
{
    field->setText(QString::number(value));
}
