#pragma once

#include "settings/settingsrecords.h"

#include <QComboBox>

class AccountItem;
class QListWidget;

/// Picks the calibration in force. Its rows are the calibrations of the settings file, which it
/// keeps current; no row is in force until the operator picks one.
class CaliBrateComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit CaliBrateComboBox(QWidget *parent = nullptr);

    /// Appends a row, which is not put in force.
    /// @param save  store all rows in the file
    void addItem(const CalibrationRecord &record, bool save);
    /// The calibrations of all rows, in row order.
    CalibrationRecords records() const;

signals:
    /// The scale in force, in micrometres per pixel; 1.0 when it is none.
    void calibrateChange(double scale);

public slots:
    void showAccount(AccountItem *item);
    void removeAccount(AccountItem *item);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    AccountItem *row(int index) const;
    int rowOf(const AccountItem *item) const;

    QListWidget *listWidget;
    QLineEdit *editor;
};
