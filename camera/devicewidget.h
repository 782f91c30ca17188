#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

#include <memory>

class DeviceInfoWidget;

namespace Ui {
class DeviceWidget;
}

/// The panel from which the operator picks the camera: a row for each attached camera of the
/// maker's own line, and one for a selected camera that has gone away. Rebuilt on every change of
/// the list.
class DeviceWidget : public QWidget
{
    Q_OBJECT

public:
    explicit DeviceWidget(QWidget *parent = nullptr);
    ~DeviceWidget() override;

    /// Gives up the camera in use.
    void closeCurrent();
    void retranslateRows();

signals:
    void cameraWork(int index, QString name, QString path);
    void cameraClose();

public slots:
    void deviceChange(const QStringList &names, const QStringList &paths);
    void onCameraWork(int index, const QString &name, const QString &path);
    void onCameraClose(DeviceInfoWidget *row);
    /// @param faults  for each device of the list, what keeps it from being opened, or nothing
    void accessChange(const QStringList &faults);

private:
    DeviceInfoWidget *addRow(int number, int index, const QString &name, const QString &path,
                             bool online);

    std::unique_ptr<Ui::DeviceWidget> ui;
    QList<DeviceInfoWidget *> rows; // in display order
};
