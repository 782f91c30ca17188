#include "workbench/tavorin.h"

#include "calibration/calibrationwidget.h"
#include "camera/mycamera.h"
#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "settings/crossdialog.h"
#include "settings/drawchangedialog.h"
#include "settings/drawsettingdialog.h"
#include "workbench/messages.h"
#include "workbench/showwidget.h"

#include <QInputDialog>
#include <QMessageBox>

void Tavorin::setDrawType(int tool)
{
    for (ShowWidget *page : pages())
        page->setDrawType(tool);
    currentTool = tool;
}

void Tavorin::chooseTool(int tool)
{
    emit setFocusManual();
    setDrawType(tool);
}

void Tavorin::on_hand_clicked() { chooseTool(0); }
void Tavorin::on_line_clicked() { chooseTool(1); }
void Tavorin::on_hline_clicked() { chooseTool(2); }
void Tavorin::on_vline_clicked() { chooseTool(3); }
void Tavorin::on_par_clicked() { chooseTool(4); }
void Tavorin::on_ver_clicked() { chooseTool(5); }
void Tavorin::on_angle_clicked() { chooseTool(6); }
void Tavorin::on_rect_clicked() { chooseTool(7); }
void Tavorin::on_arc_clicked() { chooseTool(8); }
void Tavorin::on_circle_clicked() { chooseTool(9); }
void Tavorin::on_ring_clicked() { chooseTool(10); }
void Tavorin::on_poly_clicked() { chooseTool(11); }
void Tavorin::on_line_circle_clicked() { chooseTool(12); }
void Tavorin::on_ver_circle_clicked() { chooseTool(13); } // draws nothing; its button is hidden
void Tavorin::on_two_circle_clicked() { chooseTool(14); }
void Tavorin::on_text_clicked() { chooseTool(15); }
void Tavorin::on_cali_clicked() { chooseTool(ui.cali->data().toInt()); }

void Tavorin::caliChange(const QVariant &value)
{
    // The focus mode stays: the click on the button itself has set it.
    if (ui.cali->isChecked())
        setDrawType(value.toInt());
}

void Tavorin::calibrateChange(double value)
{
    for (ShowWidget *page : pages())
        page->setScale(value);
    scale = value;
}

void Tavorin::caliOver(double length)
{
    const ShowWidget *page = currentPage();
    // On the live page the scene measures in widget pixels.
    const double pixels =
        page && page->isLive() ? length * camera->frameWidth() / page->viewWidth() : length;
    CalibrationWidget dialog(pixels, ui.calibrateCombo->records(), this);
    if (dialog.exec() == QDialog::Accepted)
        ui.calibrateCombo->addItem(dialog.record(), true);
}

void Tavorin::on_comboBox_2_currentIndexChanged(const QString &text)
{
    static const QMap<QString, int> codes{{"pix", 1}, {"mm", 3}, {"um", 4}, {"mil", 5}};
    unit = codes.value(text, unit);
    for (ShowWidget *page : pages())
        page->setUnit(unit);
}

void Tavorin::on_zoom_currentIndexChanged(const QString &text)
{
    pictureZoom = text.toDouble() / 100;
    ShowWidget *page = currentPage();
    if (page && !page->isLive())
        page->setZoom(pictureZoom);
}

// The text of the entry decides.
void Tavorin::on_zoom_currentIndexChanged(int) {}

void Tavorin::on_comboBox_currentIndexChanged(int index)
{
    ShowWidget *page = currentPage();
    if (page && page->isLive())
        page->setFitMode(index);
}

void Tavorin::wheelAdd(bool down)
{
    const int index = ui.zoom->currentIndex();
    if (down && index != 0)
        ui.zoom->setCurrentIndex(index - 1);
    if (!down && index != ui.zoom->count() - 1)
        ui.zoom->setCurrentIndex(index + 1);
}

// Takes the last shape off the page, whatever the button's name says. There is no history.
void Tavorin::on_redo_clicked()
{
    if (ShowWidget *page = currentPage())
        page->undoLastItem();
    refreshControls();
}

void Tavorin::delItem()
{
    if (QMessageBox::question(this, QString(), messages::confirmDelete) == QMessageBox::No)
        return;
    if (ShowWidget *page = currentPage())
        page->deleteCurrentItem();
}

void Tavorin::delAllItem()
{
    if (QMessageBox::question(this, QString(), messages::confirmDeleteAll) == QMessageBox::No)
        return;
    if (ShowWidget *page = currentPage())
        page->deleteAllItems();
}

void Tavorin::modified(ShowWidget *page)
{
    // The live page never has a star.
    if (page->isLive())
        return;
    ui.save->setEnabled(true);
    ui.redo->setEnabled(true);
    const int tab = ui.tabWidget->indexOf(page);
    if (tab >= 0)
        ui.tabWidget->setTabText(tab, ui.tabWidget->tabText(tab) + "*");
}

void Tavorin::ltextEdit()
{
    const QString text = QInputDialog::getText(this, QString(), QString());
    ShowWidget *page = currentPage();
    if (!text.isEmpty() && page)
        page->setItemText(text);
}

void Tavorin::drawChangeProperty(void *item)
{
    // The scene knows items, the dialog edits records.
    DrawChangeDialog dialog(static_cast<GraphicsConnect *>(item)->record(), 0, this);
    dialog.exec();
}

void Tavorin::crossStatusChanged(void *item)
{
    // Null tells that a line was moved.
    if (item) {
        DrawChangeDialog dialog(item, 1, this);
        dialog.exec();
    }
    crossDirty = true;
}

void Tavorin::on_cross_clicked()
{
    CrossDialog dialog(currentPage(), this);
    dialog.exec();
    crossDirty = true;
}

void Tavorin::onCrossChangedTimeOut() { storeCross(); }

void Tavorin::on_settingBtn_clicked()
{
    DrawSettingDialog dialog;
    connect(&dialog, &DrawSettingDialog::drawChange, this, &Tavorin::DrawChange);
    dialog.exec();
}

void Tavorin::DrawChange(DrawProperty key, const QVariant &value)
{
    for (ShowWidget *page : pages())
        page->setDrawProperty(key, value);
    drawProperties.insert(key, value);
}

void Tavorin::showSuccess()
{
    QMessageBox::information(this, messages::notice, messages::saveSuccess);
}
