#pragma once

#include "settings/settingsrecords.h"

#include <QWidget>

class QLabel;
class QPushButton;

/// A row of the calibration drop-down: the calibration's text and a button that deletes it.
class AccountItem : public QWidget
{
    Q_OBJECT

public:
    explicit AccountItem(const CalibrationRecord &record, QWidget *parent = nullptr);

    /// Name, length and unit, as the row and the box show them.
    QString text() const { return text_; }
    /// Micrometres per pixel.
    double scale() const { return record_.real; }
    CalibrationRecord record() const { return record_; }

signals:
    void removeAccount(AccountItem *item);
    void showAccount(AccountItem *item);

public slots:
    void removeAccount();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool pressed = false;
    QLabel *label;
    QPushButton *deleteButton;
    CalibrationRecord record_;
    QString text_;
};
