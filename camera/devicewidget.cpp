#include "camera/devicewidget.h"

#include "camera/deviceinfowidget.h"
#include "ui_devicewidget.h"

namespace {

/// Cameras whose friendly name begins so are offered to the operator.
const QLatin1String namePrefix("Orvane_");

} // namespace

DeviceWidget::DeviceWidget(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DeviceWidget>())
{
    ui->setupUi(this);
    setAttribute(Qt::WA_StyledBackground);
    ui->pushButton->hide();
}

DeviceWidget::~DeviceWidget() = default;

void DeviceWidget::deviceChange(const QStringList &names, const QStringList &paths)
{
    QString selectedName;
    QString selectedPath;
    for (DeviceInfoWidget *row : qAsConst(rows)) {
        if (row->isChecked()) {
            selectedName = row->name();
            selectedPath = row->path();
        }
        row->hide();
        row->deleteLater();
    }
    rows.clear();

    int number = 0;
    int index = 0;
    for (const QString &path : paths) {
        const QString name = names.value(index);
        if (name.startsWith(namePrefix)) {
            DeviceInfoWidget *row = addRow(++number, index, name, path, true);
            if (!path.isEmpty() && path == selectedPath) {
                emit cameraWork(index, name, path);
                row->setChecked(true);
                selectedPath.clear();
            }
        }
        // Devices that get no row count too: the index is the one that opens the camera.
        ++index;
    }
    if (!selectedPath.isEmpty())
        addRow(number, index, selectedName, selectedPath, false);
}

DeviceInfoWidget *DeviceWidget::addRow(int number, int index, const QString &name,
                                       const QString &path, bool online)
{
    auto *row = new DeviceInfoWidget;
    connect(row, &DeviceInfoWidget::cameraWork, this, &DeviceWidget::onCameraWork);
    connect(row, &DeviceInfoWidget::cameraClose, this, &DeviceWidget::onCameraClose);
    row->setInfo(number, index, name, path, online);
    ui->verticalLayout->addWidget(row);
    rows.append(row);
    return row;
}

void DeviceWidget::onCameraWork(int index, const QString &name, const QString &path)
{
    // A position in this list is compared with a device index: behind a device that has no row, the
    // clicked row itself is unchecked although its camera starts.
    for (int i = 0; i < rows.size(); ++i)
        if (i != index && rows.at(i)->isChecked())
            rows.at(i)->setChecked(false);
    emit cameraWork(index, name, path);
}

void DeviceWidget::onCameraClose(DeviceInfoWidget *row)
{
    rows.removeOne(row);
    emit cameraClose();
}

void DeviceWidget::accessChange(const QStringList &faults)
{
    for (DeviceInfoWidget *row : qAsConst(rows))
        row->setFault(faults.value(row->deviceIndex()));
}

void DeviceWidget::closeCurrent()
{
    for (DeviceInfoWidget *row : qAsConst(rows))
        if (row->isChecked()) {
            row->setChecked(false);
            emit cameraClose();
            return;
        }
}

void DeviceWidget::retranslateRows()
{
    for (DeviceInfoWidget *row : qAsConst(rows))
        row->retranslate();
}
