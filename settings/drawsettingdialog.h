#pragma once

#include "settings/drawproperty.h"

#include <QDialog>

#include <memory>

class QPushButton;

namespace Ui {
class DrawSettingDialog;
}

/// Edits the settings of everything that is drawn from now on. Each change is in ./config.ini and
/// announced at once: there is nothing to accept or to cancel.
class DrawSettingDialog : public QDialog
{
    Q_OBJECT

public:
    explicit DrawSettingDialog(QWidget *parent = nullptr);
    ~DrawSettingDialog() override;

signals:
    void drawChange(DrawProperty key, QVariant value);

private slots:
    void on_spinBox_valueChanged(int arg1);
    void on_pushButton_clicked();
    void on_spinBox_2_valueChanged(int arg1);
    void on_pushButton_2_clicked();
    void on_spinBox_3_valueChanged(int arg1);
    void on_pushButton_3_clicked();
    void on_checkBox_clicked(bool checked);
    void on_pushButton_4_clicked();
    void on_spinBox_4_valueChanged(int arg1);
    void on_pushButton_5_clicked();
    void on_doubleSpinBox_valueChanged(double arg1);
    void on_doubleSpinBox_2_valueChanged(double arg1);
    void on_doubleSpinBox_3_valueChanged(double arg1);
    void on_doubleSpinBox_4_valueChanged(double arg1);

private:
    void store(DrawProperty key, const QVariant &value);
    void chooseColour(QPushButton *button, DrawProperty key);

    std::unique_ptr<Ui::DrawSettingDialog> ui;
};
