#include "settings/drawchangedialog.h"

#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/graphicscross.h"
#include "measure/mainscene.h"
#include "settings/colourbutton.h"
#include "ui_drawchangedialog.h"

#include <QMessageBox>
#include <QPen>

#include <utility>

DrawChangeDialog::DrawChangeDialog(void *object, int kind, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::DrawChangeDialog>())
{
    ui->setupUi(this);
    QPen pen;
    bool isMovable = false;
    if (kind == 0) {
        shape = static_cast<Base *>(object);
        scene = qobject_cast<MainScene *>(shape->item()->scene());
        pen = shape->item()->pen();
        isMovable = shape->item()->flags().testFlag(QGraphicsItem::ItemIsMovable);
        ui->pushButton->hide();
    } else if (kind == 1) {
        cross = static_cast<GraphicsCross *>(object);
        scene = cross->mainScene();
        pen = cross->pen();
        isMovable = cross->flags().testFlag(QGraphicsItem::ItemIsMovable);
    }
    ui->spinBox_2->setValue(pen.width());
    showColour(pen.color());
    ui->checkBox->setChecked(!isMovable);
}

DrawChangeDialog::~DrawChangeDialog() = default;

void DrawChangeDialog::on_spinBox_2_valueChanged(int arg1)
{
    forgetIfGone();
    if (shape)
        shape->setLineWidth(arg1);
    if (cross) {
        QPen pen = cross->pen();
        pen.setWidth(arg1);
        cross->setPen(pen);
    }
}

void DrawChangeDialog::on_pushButton_2_clicked()
{
    const QColor colour = askForColour();
    if (!colour.isValid())
        return;
    showColour(colour);
    forgetIfGone();
    if (shape)
        shape->setLineColor(colour);
    if (cross) {
        QPen pen = cross->pen();
        pen.setColor(colour);
        cross->setPen(pen);
    }
}

void DrawChangeDialog::on_checkBox_clicked(bool checked)
{
    forgetIfGone();
    if (shape)
        shape->item()->setHandlesMovable(!checked);
    if (cross)
        cross->setFlag(QGraphicsItem::ItemIsMovable, !checked);
}

void DrawChangeDialog::on_pushButton_clicked()
{
    // The question stays Chinese in every language.
    const auto answer = QMessageBox::question(this, QString(), QStringLiteral("确认要删除吗"));
    if (answer == QMessageBox::No)
        return;
    forgetIfGone();
    if (cross)
        scene->removeCross(std::exchange(cross, nullptr));
    accept();
}

/// The scene can lose its items while the dialog runs: a camera that goes away rebuilds the grid.
void DrawChangeDialog::forgetIfGone()
{
    bool hasShape = false;
    bool hasCross = false;
    const QList<QGraphicsItem *> items =
        scene ? scene->QGraphicsScene::items() : QList<QGraphicsItem *>();
    for (QGraphicsItem *item : items) {
        const auto *connect = qgraphicsitem_cast<GraphicsConnect *>(item);
        hasShape = hasShape || (connect && connect->record() == shape);
        hasCross = hasCross || item == cross;
    }
    shape = hasShape ? shape : nullptr;
    cross = hasCross ? cross : nullptr;
}

void DrawChangeDialog::showColour(const QColor &colour)
{
    ui->pushButton_2->setStyleSheet("border: none; " + colourSheet(colour));
}
