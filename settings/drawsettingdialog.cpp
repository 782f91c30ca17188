#include "settings/drawsettingdialog.h"

#include "settings/colourbutton.h"
#include "settings/settingsfiles.h"
#include "ui_drawsettingdialog.h"

#include <QFileDialog>

namespace {

/// Shows a stored number. The control clamps it, and its slot stores what it shows.
template<class Box, class Number>
void showNumber(Box *box, const QVariant &stored, Number number)
{
    box->setValue(number);
    // A control that stood at the limit already has not changed and stays silent.
    if (stored.isValid() && (number < box->minimum() || number > box->maximum()))
        emit box->valueChanged(box->value());
}

} // namespace

DrawSettingDialog::DrawSettingDialog(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::DrawSettingDialog>())
{
    ui->setupUi(this);
    setAutoFillBackground(true);

    const DrawProperties stored = readDrawSettings();
    const auto showInt = [&](QSpinBox *box, DrawProperty key) {
        showNumber(box, stored[key], stored[key].toInt());
    };
    const auto showDouble = [&](QDoubleSpinBox *box, DrawProperty key) {
        const double number = stored[key].toDouble();
        showNumber(box, stored[key], qIsNaN(number) ? 0.0 : number);
    };
    const auto showColour = [&](QPushButton *button, DrawProperty key) {
        button->setStyleSheet(colourSheet(stored[key].value<QColor>()));
    };
    showInt(ui->spinBox, PointWidth);
    showInt(ui->spinBox_2, LineWidth);
    showInt(ui->spinBox_3, TextSize);
    showInt(ui->spinBox_4, DrawCrossWidth);
    showColour(ui->pushButton, PointColor);
    showColour(ui->pushButton_2, LineColor);
    showColour(ui->pushButton_3, TextColor);
    showColour(ui->pushButton_5, DrawCrossColor);
    ui->checkBox->setChecked(stored[Antialiasing].toBool());
    ui->lineEdit->setText(stored[QuickSavePath].toString());
    showDouble(ui->doubleSpinBox, RingDistance1);
    showDouble(ui->doubleSpinBox_2, RingDistance2);
    showDouble(ui->doubleSpinBox_3, LineDistance1);
    showDouble(ui->doubleSpinBox_4, LineDistance2);
}

DrawSettingDialog::~DrawSettingDialog() = default;

void DrawSettingDialog::on_spinBox_valueChanged(int arg1) { store(PointWidth, arg1); }
void DrawSettingDialog::on_spinBox_2_valueChanged(int arg1) { store(LineWidth, arg1); }
void DrawSettingDialog::on_spinBox_3_valueChanged(int arg1) { store(TextSize, arg1); }
void DrawSettingDialog::on_spinBox_4_valueChanged(int arg1) { store(DrawCrossWidth, arg1); }

void DrawSettingDialog::on_pushButton_clicked() { chooseColour(ui->pushButton, PointColor); }
void DrawSettingDialog::on_pushButton_2_clicked() { chooseColour(ui->pushButton_2, LineColor); }
void DrawSettingDialog::on_pushButton_3_clicked() { chooseColour(ui->pushButton_3, TextColor); }
void DrawSettingDialog::on_pushButton_5_clicked()
{
    chooseColour(ui->pushButton_5, DrawCrossColor);
}

void DrawSettingDialog::on_checkBox_clicked(bool checked) { store(Antialiasing, checked); }

void DrawSettingDialog::on_pushButton_4_clicked()
{
    const QString path = QFileDialog::getExistingDirectory(this, tr("选择"), ui->lineEdit->text(),
                                                           QFileDialog::ShowDirsOnly);
    if (path.isEmpty())
        return;
    writeDrawSetting(QuickSavePath, path);
    ui->lineEdit->setText(path);
    emit drawChange(QuickSavePath, path);
}

void DrawSettingDialog::on_doubleSpinBox_valueChanged(double arg1) { store(RingDistance1, arg1); }
void DrawSettingDialog::on_doubleSpinBox_2_valueChanged(double arg1) { store(RingDistance2, arg1); }
void DrawSettingDialog::on_doubleSpinBox_3_valueChanged(double arg1) { store(LineDistance1, arg1); }
void DrawSettingDialog::on_doubleSpinBox_4_valueChanged(double arg1) { store(LineDistance2, arg1); }

void DrawSettingDialog::store(DrawProperty key, const QVariant &value)
{
    writeDrawSetting(key, value);
    emit drawChange(key, value);
}

void DrawSettingDialog::chooseColour(QPushButton *button, DrawProperty key)
{
    const QColor colour = askForColour();
    if (!colour.isValid())
        return;
    button->setStyleSheet(colourSheet(colour));
    store(key, colour);
    QPalette palette = button->palette();
    palette.setBrush(QPalette::All, QPalette::Button, QBrush(colour, Qt::SolidPattern));
    button->setPalette(palette);
}
