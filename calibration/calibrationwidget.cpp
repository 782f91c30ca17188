#include "calibration/calibrationwidget.h"

#include "ui_calibrationwidget.h"

#include <QIntValidator>

#include <algorithm>

namespace {

/// The units of the form, in micrometres.
double micrometres(const QString &unit)
{
    if (unit == "mm")
        return 1000.0;
    return unit == "mil" ? 25.4 : 1.0;
}

} // namespace

CalibrationWidget::CalibrationWidget(double measured, const CalibrationRecords &stored,
                                     QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::CalibrationWidget>())
    , pixels(measured)
    , existing(stored)
{
    ui->setupUi(this);
    // Digits alone: a point that parts thousands in the operator's country would be read as
    // another.
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    auto *wholeNumbers = new QIntValidator(0, 100000, this);
    wholeNumbers->setLocale(plain);
    ui->lineEdit_2->setValidator(wholeNumbers);
    ui->label_6->setText(QString::number(pixels, 'g', 6) + " pixel");
    ui->label_8->hide();
}

CalibrationWidget::~CalibrationWidget() = default;

CalibrationRecord CalibrationWidget::record() const
{
    const QString unit = ui->comboBox->currentText();
    const double length = ui->lineEdit_2->text().toDouble();
    return {ui->lineEdit->text(), length, unit, length / pixels * micrometres(unit)};
}

void CalibrationWidget::on_lineEdit_2_textChanged(const QString &arg1)
{
    showRatio(arg1, ui->comboBox->currentText());
}

void CalibrationWidget::on_comboBox_currentIndexChanged(const QString &arg1)
{
    showRatio(ui->lineEdit_2->text(), arg1);
}

void CalibrationWidget::on_pushButton_clicked()
{
    // Both warnings stay Chinese in every language.
    const CalibrationRecord entry = record();
    if (entry.name.isEmpty() || entry.length == 0.0)
        warn(QStringLiteral("标定参数不能为空"));
    else if (isStored(entry))
        warn(QStringLiteral("该标定已存在"));
    else
        accept();
}

void CalibrationWidget::showRatio(const QString &length, const QString &unit)
{
    // The unit as it stands: only the record's scale is in micrometres.
    const double ratio = length.toDouble() / pixels;
    ui->label_7->setText(QString::number(ratio, 'g', 6) + " " + unit + "/pixel");
}

void CalibrationWidget::warn(const QString &text)
{
    ui->label_8->setText(text);
    ui->label_8->setVisible(true);
}

bool CalibrationWidget::isStored(const CalibrationRecord &entry) const
{
    // The scale is not compared: the same length on other pixels is still the same calibration.
    return std::any_of(existing.begin(), existing.end(), [&](const CalibrationRecord &record) {
        return record.name == entry.name && record.length == entry.length &&
               record.unit == entry.unit;
    });
}
