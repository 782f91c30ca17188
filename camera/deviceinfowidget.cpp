#include "camera/deviceinfowidget.h"

#include "ui_deviceinfowidget.h"

#include <QStyle>

DeviceInfoWidget::DeviceInfoWidget(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DeviceInfoWidget>())
{
    ui->setupUi(this);
    setAttribute(Qt::WA_StyledBackground);
    // The path is stored here and never seen.
    ui->label_3->hide();
}

DeviceInfoWidget::~DeviceInfoWidget() = default;

void DeviceInfoWidget::setInfo(int number, int index_, const QString &name, const QString &path,
                               bool online_)
{
    online = online_;
    index = index_;
    ui->label_2->setText(name);
    ui->label_2->setToolTip(name);
    ui->label_3->setText(path);
    if (online) {
        ui->label->setText(QString::number(number));
    } else {
        ui->label->setText(tr("离线"));
        ui->radioButton->setChecked(true);
    }
}

void DeviceInfoWidget::setFault(const QString &fault)
{
    ui->label_2->setToolTip(fault.isEmpty() ? name() : name() + '\n' + fault);
    setProperty("refused", !fault.isEmpty());
    // A style sheet looks at a property once, when the widget is polished.
    for (QWidget *part : {static_cast<QWidget *>(this), static_cast<QWidget *>(ui->label),
                          static_cast<QWidget *>(ui->label_2)}) {
        style()->unpolish(part);
        style()->polish(part);
    }
}

bool DeviceInfoWidget::isChecked() const { return ui->radioButton->isChecked(); }

void DeviceInfoWidget::setChecked(bool checked) { ui->radioButton->setChecked(checked); }

QString DeviceInfoWidget::name() const { return ui->label_2->text(); }

QString DeviceInfoWidget::path() const { return ui->label_3->text(); }

void DeviceInfoWidget::retranslate() { ui->radioButton->setText(QString()); }

void DeviceInfoWidget::on_radioButton_clicked()
{
    if (!online) {
        emit cameraClose(this);
        deleteLater();
    } else if (isChecked()) {
        emit cameraWork(index, name(), path());
    } else {
        emit cameraClose(nullptr);
    }
}
