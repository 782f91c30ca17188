#include "workbench/tavorin.h"

#include "camera/mycamera.h"
#include "workbench/messages.h"
#include "workbench/showwidget.h"

#include <QMessageBox>

void Tavorin::connectCamera()
{
    connect(camera, &MyCamera::putpix, this, &Tavorin::getpix);
    connect(camera, &MyCamera::cameraStatusChange, this, &Tavorin::cameraStatusChange);
    connect(camera, &MyCamera::resolutionChange, ui.statusLabel2, &QLabel::setText);
    connect(camera, &MyCamera::resolutionChange, this, &Tavorin::updateWindow);
    connect(camera, &MyCamera::sendCameraFirmwareVersion, this,
            &Tavorin::cameraFirmwareVersionShow);
}

void Tavorin::connectLivePage(ShowWidget *page)
{
    connect(ui.page_2, &CameraSetWidget2::blinkChange, page, &ShowWidget::blinkChange);
    connect(page, &ShowWidget::blinkArea, this, &Tavorin::blinkArea);
    connect(page, &ShowWidget::blinkArea, camera, &MyCamera::blinkArea);
    connect(page, &ShowWidget::crossStatusChanged, this, &Tavorin::crossStatusChanged);
}

void Tavorin::cameraChange(int index, const QString &name, const QString &path)
{
    ShowWidget *found = nullptr;
    for (ShowWidget *page : pages())
        if (!found && page->isLive())
            found = page;

    if (found) {
        ui.tabWidget->setCurrentWidget(found);
        ui.tabWidget->setTabText(ui.tabWidget->indexOf(found), name);
    } else {
        auto *page = new ShowWidget(pageMenu, true, ui.tabWidget);
        connectLivePage(page);
        page->setCamera(camera);
        addPage(page, name);
        livePage = page;
    }
    camera->cameraChange(index, path);
}

void Tavorin::cameraClose() { camera->closeCamera(); }

void Tavorin::cameraStatusChange(bool connected)
{
    ui.page_2->setEnabled(connected);
    ui.page_4->setEnabled(connected);
    if (connected) {
        for (ShowWidget *page : pages())
            page->adjustView();
        ui.page_2->setClickFocus(false);
        ui.page_2->loadCameraInfo(MyCamera::readCameraInfo());
    } else {
        emit setFocusManual();
        setDrawType(0);
        ui.hand->setChecked(true);
    }
    ui.save_2->setEnabled(connected);
    if (livePage)
        livePage->loadCross();
    QMessageBox::information(this, messages::notice,
                             connected ? messages::connected : messages::disconnected);
    refreshControls();
}

void Tavorin::getpix(QPixmap *frame)
{
    if (livePage)
        livePage->showFrame(frame);
    openCapturedPage(QPixmap(*frame));
}

void Tavorin::updateWindow()
{
    adjustSize();
    resize(screenWidth, screenHeight);
}

void Tavorin::cameraFirmwareVersionShow(double raw)
{
    const double version = (80.0 + raw) * 0.01 + 1.09;
    setWindowTitle(baseTitle + "    固件：" + QString::number(version));
}

void Tavorin::blinkArea(int x, int y)
{
    ui.page_2->checkAutoFocus();
    ui.page_2->showCell(x, y);
}
