#include "workbench/tavorin.h"

#include "settings/settingsfiles.h"
#include "workbench/messages.h"
#include "workbench/showwidget.h"

#include <QDateTime>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QTimer>

namespace {

/// The three patterns in the form that the dialog understands: the native Windows dialog splits at
/// semicolons, every other one at blanks alone and would take "*.bmp;" for a name.
QString pictureFilter(const QFileDialog &dialog)
{
    const bool isNative = !dialog.layout();
    return isNative && QGuiApplication::platformName() == "windows" ? "*.bmp; *.jpg; *.png"
                                                                    : "*.bmp *.jpg *.png";
}

/// The whole path that the operator chose, with "/" between its parts, or an empty string.
QString chosenFile(QFileDialog &dialog)
{
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace

/// Takes a chosen file's directory for the next dialogs.
/// @returns the file's name
QString Tavorin::rememberDirectory(const QString &path)
{
    QString name = path.split('/').last();
    lastDirectory = path.chopped(name.size());
    writeFilePath(lastDirectory);
    return name;
}

void Tavorin::on_open_clicked()
{
    QFileDialog dialog(this, messages::open, lastDirectory);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(pictureFilter(dialog));
    const QString path = chosenFile(dialog);
    if (path.isEmpty())
        return;
    addPicturePage(rememberDirectory(path))->openFile(path);
    refreshControls();
}

bool Tavorin::askSaveName(QString &path, QString &name)
{
    QFileDialog dialog(this, messages::save, lastDirectory, "*.jpg");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // Without an extension no format is known, and nothing would be saved.
    dialog.setDefaultSuffix("jpg");
    path = chosenFile(dialog);
    if (path.isEmpty())
        return false;
    name = rememberDirectory(path);
    return true;
}

void Tavorin::on_save_clicked()
{
    // Both save buttons have the same shortcut.
    if (ui.save->isHidden())
        return;
    ShowWidget *page = currentPage();
    if (page && page->isModified()) {
        QString path;
        QString name;
        if (!page->hasFile() && !askSaveName(path, name))
            return;
        page->savePicture(path);
        const int tab = ui.tabWidget->indexOf(page);
        if (name.isEmpty())
            name = ui.tabWidget->tabText(tab).chopped(1); // the star
        ui.tabWidget->setTabText(tab, name);
        page->setModified(false);
    }
    ui.save->setEnabled(false);
}

void Tavorin::on_save_2_clicked()
{
    if (ui.save_2->isHidden())
        return;
    QString path;
    QString name;
    if (askSaveName(path, name))
        currentPage()->captureTo(path);
}

void Tavorin::on_captureBtn_clicked()
{
    ShowWidget *page = currentPage();
    if (!page || !page->isLive())
        return;
    const QString stamp = QDateTime::currentDateTime().toString("yyyyMMdd_hhmmss_zzz");
    page->captureTo(drawProperties.value(QuickSavePath).toString() + "/" + stamp + ".jpg");

    QApplication::setOverrideCursor(Qt::WaitCursor);
    setEnabled(false);
    QTimer::singleShot(500, this, [this] {
        QApplication::restoreOverrideCursor();
        setEnabled(true);
    });
}

void Tavorin::on_capture2Btn_clicked()
{
    ShowWidget *page = currentPage();
    if (!page)
        return;
    if (page->isLive()) {
        snapshotPending = true;
        return;
    }
    QString path;
    QString name;
    if (askSaveName(path, name))
        page->saveViewport(path);
}

void Tavorin::openCapturedPage(const QPixmap &frame)
{
    if (!snapshotPending)
        return;
    snapshotPending = false;
    addPicturePage(QString())->setPicture(frame);
}

void Tavorin::on_export_2_clicked()
{
    ShowWidget *page = currentPage();
    if (!page) {
        QMessageBox::information(this, messages::notice, messages::noPage);
        return;
    }
    if (!page->hasItems()) {
        QMessageBox::information(this, messages::notice, messages::noItems);
        return;
    }
    // A directory of its own, which lastDirectory neither sets nor learns from.
    const QString path = QFileDialog::getSaveFileName(this, messages::save, "d:/", "*.csv");
    if (!path.isEmpty())
        page->exportCsv(path);
}
