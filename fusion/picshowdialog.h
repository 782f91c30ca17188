#pragma once

#include <QDialog>

#include <memory>

class QPixmap;

namespace Ui {
class PicShowDialog;
}

/// Shows a picture and saves it. It stands ready; nothing opens it at present.
class PicShowDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param pixmap  not owned; outlives the dialog
    explicit PicShowDialog(QPixmap *pixmap, QWidget *parent = nullptr);
    ~PicShowDialog() override;

private slots:
    void on_pushButton_clicked();

private:
    std::unique_ptr<Ui::PicShowDialog> ui;
    QPixmap *pixmap;
};
