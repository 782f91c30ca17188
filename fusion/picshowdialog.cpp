#include "fusion/picshowdialog.h"

#include "ui_picshowdialog.h"

#include <QFileDialog>

PicShowDialog::PicShowDialog(QPixmap *pixmap_, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::PicShowDialog>())
    , pixmap(pixmap_)
{
    ui->setupUi(this);
    ui->label->setPixmap(*pixmap);
}

PicShowDialog::~PicShowDialog() = default;

void PicShowDialog::on_pushButton_clicked()
{
    const QString name = QFileDialog::getSaveFileName();
    if (!name.isEmpty())
        pixmap->save(name);
}
