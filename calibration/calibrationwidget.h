#pragma once

#include "settings/settingsrecords.h"

#include <QDialog>

#include <memory>

namespace Ui {
class CalibrationWidget;
}

/// Asks how long a measured feature is in reality and makes a named scale of the answer.
class CalibrationWidget : public QDialog
{
    Q_OBJECT

public:
    /// @param pixels    measured length in picture pixels; not checked, 0 gives an infinite scale
    /// @param existing  the stored calibrations, none of which may be entered again
    CalibrationWidget(double pixels, const CalibrationRecords &existing, QWidget *parent = nullptr);
    ~CalibrationWidget() override;

    /// What was entered; to be asked after the dialog was accepted.
    CalibrationRecord record() const;

private slots:
    void on_lineEdit_2_textChanged(const QString &arg1);
    void on_comboBox_currentIndexChanged(const QString &arg1);
    void on_pushButton_clicked();

private:
    void showRatio(const QString &length, const QString &unit);
    void warn(const QString &text);
    bool isStored(const CalibrationRecord &entry) const;

    std::unique_ptr<Ui::CalibrationWidget> ui;
    double pixels;
    CalibrationRecords existing;
};
