#pragma once

#include <QDialog>

#include <memory>

class ShowWidget;

namespace Ui {
class CrossDialog;
}

/// Sets how many lines the crosshair grid of a page has, and shows or hides it.
class CrossDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CrossDialog(ShowWidget *page, QWidget *parent = nullptr);
    ~CrossDialog() override;

private slots:
    void on_spinBox_valueChanged(int arg1);
    void on_spinBox_2_valueChanged(int arg1);
    void on_pushButton_clicked();
    void on_pushButton_2_clicked();

private:
    std::unique_ptr<Ui::CrossDialog> ui;
    ShowWidget *page;
};
