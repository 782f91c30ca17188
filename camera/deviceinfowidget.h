#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class DeviceInfoWidget;
}

/// A row of the device panel: one attached camera, or the selected one that has gone away.
class DeviceInfoWidget : public QWidget
{
    Q_OBJECT

public:
    explicit DeviceInfoWidget(QWidget *parent = nullptr);
    ~DeviceInfoWidget() override;

    /// @param number  running number of the row, from 1; an offline row shows a text in its place
    /// @param index   position in the list of all devices
    void setInfo(int number, int index, const QString &name, const QString &path, bool online);
    bool isChecked() const;
    void setChecked(bool checked);
    QString name() const;
    QString path() const;
    int deviceIndex() const { return index; }
    /// Marks a device that cannot be opened. The row's texts stay what they are: it turns pale, and
    /// its tooltip tells the reason.
    /// @param fault  what the system says; empty when nothing is wrong
    void setFault(const QString &fault);
    /// The button's caption is empty in every language; an offline text keeps its own.
    void retranslate();

signals:
    void cameraWork(int index, QString name, QString path);
    /// @param row  this row when it was dismissed, else null
    void cameraClose(DeviceInfoWidget *row);

private slots:
    void on_radioButton_clicked();

private:
    std::unique_ptr<Ui::DeviceInfoWidget> ui;
    bool online = false;
    int index = 0;
};
