#include "settings/crossdialog.h"

#include "ui_crossdialog.h"
#include "workbench/showwidget.h"

CrossDialog::CrossDialog(ShowWidget *shownPage, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::CrossDialog>())
    , page(shownPage)
{
    ui->setupUi(this);
    ui->spinBox->setValue(page->crossHorCount());
    ui->spinBox_2->setValue(page->crossVerCount());
}

CrossDialog::~CrossDialog() = default;

void CrossDialog::on_spinBox_valueChanged(int arg1) { page->setCrossHorCount(arg1); }

void CrossDialog::on_spinBox_2_valueChanged(int arg1) { page->setCrossVerCount(arg1); }

void CrossDialog::on_pushButton_clicked()
{
    // A hidden grid takes no counts, so that those entered meanwhile follow here.
    page->setCrossVisible(true);
    page->setCrossHorCount(ui->spinBox->value());
    page->setCrossVerCount(ui->spinBox_2->value());
}

void CrossDialog::on_pushButton_2_clicked() { page->setCrossVisible(false); }
