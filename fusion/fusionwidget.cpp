#include "fusion/fusionwidget.h"

#include "camera/mycamera.h"
#include "ui_fusionwidget.h"

#include <cstdlib>

FusionWidget::FusionWidget(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::FusionWidget>())
{
    ui->setupUi(this);
    setAttribute(Qt::WA_StyledBackground);
}

FusionWidget::~FusionWidget() = default;

void FusionWidget::setSliders(int value)
{
    ui->horizontalSlider->setValue(value);
    ui->horizontalSlider_2->setValue(value);
}

void FusionWidget::setStartEnabled(bool enabled)
{
    ui->pushButton->setEnabled(enabled);
    setProgress(0);
}

void FusionWidget::setProgress(int value) { ui->lineEdit_4->setText(QString::number(value)); }

void FusionWidget::retranslate() { ui->retranslateUi(this); }

void FusionWidget::on_horizontalSlider_valueChanged(int value)
{
    lastMovedEnd = 0;
    ui->lineEdit_2->setText(QString::number(value));
    emit changeFocus(value);
    updateCaptureNum();
}

void FusionWidget::on_horizontalSlider_2_valueChanged(int value)
{
    lastMovedEnd = 1;
    ui->lineEdit_3->setText(QString::number(value));
    emit changeFocus(value);
    updateCaptureNum();
}

void FusionWidget::on_spinBox_3_valueChanged(int /*arg1*/) { updateCaptureNum(); }

void FusionWidget::on_pushButton_2_clicked()
{
    ui->horizontalSlider->setValue(MyCamera::currentFocus());
}

void FusionWidget::on_pushButton_3_clicked()
{
    ui->horizontalSlider_2->setValue(MyCamera::currentFocus());
}

void FusionWidget::on_pushButton_clicked()
{
    // The sweep begins at the end that was moved last: the focus already stands there.
    const bool fromStart = lastMovedEnd == 0;
    const QSlider *first = fromStart ? ui->horizontalSlider : ui->horizontalSlider_2;
    const QSlider *last = fromStart ? ui->horizontalSlider_2 : ui->horizontalSlider;
    FusionData sweep;
    sweep.startPos = first->value();
    sweep.endPos = last->value();
    sweep.step = ui->spinBox_3->value();
    if (sweep.startPos > sweep.endPos)
        sweep.step = -sweep.step;
    sweep.waitMs = ui->spinBox_4->value();
    emit startFusion(sweep);
}

void FusionWidget::updateCaptureNum()
{
    // Counts the rest of the range as a position of its own; the sweep takes one frame fewer then.
    const int range = std::abs(ui->lineEdit_2->text().toInt() - ui->lineEdit_3->text().toInt());
    const int interval = ui->spinBox_3->value();
    ui->lineEdit->setText(QString::number(1 + (range + interval - 1) / interval));
}
