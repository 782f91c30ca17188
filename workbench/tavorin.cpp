#include "workbench/tavorin.h"

#include "camera/mycamera.h"
#include "fusion/picanalyse.h"
#include "settings/settingsfiles.h"
#include "workbench/messages.h"
#include "workbench/showwidget.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>
#include <QTimer>

namespace {

int tabCounter = 0; // of the process: the number of the next page without a title

bool askYesNo(QWidget *parent, const QString &question)
{
    return QMessageBox::question(parent, messages::notice, question,
                                 QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

} // namespace

Tavorin::Tavorin(QWidget *parent)
    : QMainWindow(parent)
{
    ui.setupUi(this);

    pageMenu = new QMenu(this);
    connect(pageMenu->addAction(messages::deleteItem), &QAction::triggered, this,
            &Tavorin::delItem);
    connect(pageMenu->addAction(messages::deleteAllItems), &QAction::triggered, this,
            &Tavorin::delAllItem);

    ui.ver_circle->hide();
    ui.freezeBtn->hide();
    ui.redo->hide();
    ui.split->hide();
    ui.motorManager->hide();
    ui.comAndSplit->hide();

    auto *languages = new QActionGroup(this);
    languages->addAction(ui.actionchinese);
    languages->addAction(ui.actionenglish);
    ui.actionchinese->setChecked(true);

    camera = new MyCamera;
    connectCamera();
    picAnalyse = new PicAnalyse(this);
    connect(picAnalyse, &QThread::finished, this, &Tavorin::AnalyseOver);

    ui.comboBox->hide();
    ui.save_2->hide();
    screenSize(screenWidth, screenHeight);
    baseTitle = windowTitle();
    initWindow();
}

Tavorin::~Tavorin()
{
    camera->stopCapture();
    camera->wait();
}

void Tavorin::initWindow()
{
    drawProperties = readDrawSettings();
    picAnalyse->setDebugSave(readIsDebug());
    lastDirectory = readFilePath();
    connectPanels();

    ui.cali->addItem(QIcon(":/pic/1.png"), "line", 16);
    ui.cali->addItem(QIcon(":/pic/10.png"), "circle", 17);
    connect(ui.cali, &SelectButton::selectChange, this, &Tavorin::caliChange);

    loadTranslation();
    ui.stackedWidget->setCurrentIndex(0);
    ui.stackedWidget->hide();
    refreshControls();

    auto *crossTimer = new QTimer; // runs to the end of the process
    connect(crossTimer, &QTimer::timeout, this, &Tavorin::onCrossChangedTimeOut);
    crossTimer->start(1000);
}

void Tavorin::screenSize(int &width, int &height) const
{
    const QSize size = screen()->geometry().size();
    width = size.width();
    height = size.height();
}

void Tavorin::connectPanels()
{
    connect(ui.page_4, &FusionWidget::startFusion, this, &Tavorin::startFusion);
    connect(ui.page_4, &FusionWidget::changeFocus, ui.page_2, &CameraSetWidget2::changeFocus);
    connect(ui.calibrateCombo, &CaliBrateComboBox::calibrateChange, this,
            &Tavorin::calibrateChange);
    connect(ui.page_2, &CameraSetWidget2::cameraInfoChange, camera, &MyCamera::setCameraInfo);
    connect(ui.page_2, &CameraSetWidget2::showSuccess, this, &Tavorin::showSuccess);
    connect(camera, &MyCamera::detect, ui.page_1, &DeviceWidget::deviceChange);
    connect(camera, &MyCamera::accessChange, ui.page_1, &DeviceWidget::accessChange);
    connect(ui.page_1, &DeviceWidget::cameraWork, this, &Tavorin::cameraChange);
    connect(ui.page_1, &DeviceWidget::cameraClose, this, &Tavorin::cameraClose);
    connect(this, &Tavorin::setFocusManual, ui.page_2, &CameraSetWidget2::setFocusManual);
}

void Tavorin::connectPage(ShowWidget *page)
{
    connect(page, &ShowWidget::caliOver, this, &Tavorin::caliOver);
    connect(page, &ShowWidget::modified, this, &Tavorin::modified);
    connect(page, &ShowWidget::ltextEdit, this, &Tavorin::ltextEdit);
    connect(page, &ShowWidget::changeProperty, this, &Tavorin::drawChangeProperty);
    connect(page, &ShowWidget::clearDrawType, ui.hand, &QPushButton::click);
}

QList<ShowWidget *> Tavorin::pages() const
{
    QList<ShowWidget *> result;
    for (int i = 0; i < ui.tabWidget->count(); ++i)
        result.append(qobject_cast<ShowWidget *>(ui.tabWidget->widget(i)));
    return result;
}

ShowWidget *Tavorin::currentPage() const
{
    return qobject_cast<ShowWidget *>(ui.tabWidget->currentWidget());
}

void Tavorin::addPage(ShowWidget *page, QString title)
{
    if (title.isEmpty()) {
        title = QString("Tab%1*").arg(tabCounter++);
        page->setModified(true);
    }
    connectPage(page);
    ui.tabWidget->addTab(page, title);
    ui.tabWidget->setCurrentWidget(page);
    page->setDrawProperties(drawProperties);
    page->setDrawType(currentTool);
    page->setScale(scale);
    page->setUnit(unit);
}

ShowWidget *Tavorin::addPicturePage(const QString &title)
{
    auto *page = new ShowWidget(pageMenu, false, ui.tabWidget);
    addPage(page, title);
    connect(page, &ShowWidget::wheelAdd, this, &Tavorin::wheelAdd);
    return page;
}

void Tavorin::refreshControls()
{
    const ShowWidget *page = currentPage();
    if (!page) {
        ui.statusLabel1->setText(messages::disconnected);
        setControlsEnabled(false, false, false, false, false);
        return;
    }
    const bool cameraReady = page->isLive() && camera->isOpen();
    if (!page->isLive())
        ui.statusLabel1->setText(messages::showingPicture);
    else
        ui.statusLabel1->setText(cameraReady ? messages::connected : messages::disconnected);
    setControlsEnabled(cameraReady, cameraReady || !page->isLive(), page->isModified(),
                       page->hasItems(), cameraReady);
}

void Tavorin::setControlsEnabled(bool cameraReady, bool canDraw, bool pageModified,
                                 bool pageHasItems, bool cameraPanels)
{
    ui.captureBtn->setEnabled(cameraReady);
    ui.configManager->setEnabled(cameraReady);
    ui.compose->setEnabled(cameraReady);
    ui.zoom->setHidden(cameraReady);
    ui.comboBox->setVisible(cameraReady);
    ui.cross->setEnabled(canDraw);
    for (QAbstractButton *button : ui.buttonGroup->buttons())
        button->setEnabled(canDraw);
    ui.capture2Btn->setEnabled(canDraw);
    ui.save->setEnabled(pageModified);
    ui.redo->setEnabled(pageHasItems);
    ui.page_2->setEnabled(cameraPanels);
    ui.page_4->setEnabled(cameraPanels);
}

void Tavorin::showPanel(int index)
{
    ui.stackedWidget->setCurrentIndex(index);
    ui.stackedWidget->show();
    ui.leftHide->setChecked(true);
}

void Tavorin::on_leftHide_clicked()
{
    ui.stackedWidget->setVisible(ui.stackedWidget->isHidden());
    ui.leftHide->setChecked(!ui.stackedWidget->isHidden());
    for (ShowWidget *page : pages())
        page->adjustView();
}

void Tavorin::on_deviceManager_clicked() { showPanel(0); }

void Tavorin::on_configManager_clicked()
{
    showPanel(1);
    ui.page_2->loadCameraInfo(MyCamera::readCameraInfo());
}

void Tavorin::on_compose_clicked()
{
    showPanel(2);
    ui.page_4->setSliders(MyCamera::readCameraInfo().focus);
}

// The buttons of these three are hidden: there is no motor panel and no stitching.
void Tavorin::on_motorManager_clicked() {}
void Tavorin::on_split_clicked() {}
void Tavorin::on_comAndSplit_clicked() {}

void Tavorin::on_tabWidget_currentChanged(int index)
{
    const ShowWidget *page = index < 0 ? nullptr : currentPage();
    const bool live = page && page->isLive();
    if (live) {
        ui.hand->setChecked(true);
        emit setFocusManual();
        setDrawType(0);
    } else if (page) {
        ui.zoom->setCurrentText(QString::number(page->zoomFactor() * 100));
    }
    ui.save->setHidden(live);
    ui.save_2->setVisible(live);
    if (page)
        refreshControls();
}

void Tavorin::on_tabWidget_tabCloseRequested(int index)
{
    // The prompt runs an event loop in which pages may come and go.
    const QPointer<ShowWidget> page = qobject_cast<ShowWidget *>(ui.tabWidget->widget(index));
    if (page && page->isModified() && !askYesNo(this, messages::confirmClosePage))
        return;
    if (!page)
        return;
    if (page == fusionPage)
        fusionPage = nullptr;
    if (page->isLive()) {
        storeCross();
        livePage = nullptr;
        ui.page_1->closeCurrent();
    }
    ui.tabWidget->removeTab(ui.tabWidget->indexOf(page));
    refreshControls();
    page->deleteLater();
}

void Tavorin::closeEvent(QCloseEvent *event)
{
    for (const ShowWidget *page : pages()) {
        if (page->isModified()) {
            // The crosshair is not stored on this path.
            event->setAccepted(askYesNo(this, messages::confirmQuitUnsaved));
            return;
        }
    }
    event->setAccepted(askYesNo(this, messages::confirmQuit));
    // Also after a refusal.
    storeCross();
}

void Tavorin::storeCross()
{
    if (!crossDirty || !livePage)
        return;
    crossDirty = false;
    livePage->saveCross();
}

void Tavorin::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton)
        ui.page_2->toggleFocusMode();
    QMainWindow::mousePressEvent(event);
}

void Tavorin::wheelEvent(QWheelEvent *event)
{
    ShowWidget *page = currentPage();
    if (!page || !page->isLive())
        return;
    const bool up = event->angleDelta().y() > 0;
    if (ctrlHeld)
        page->stepLiveZoom(up);
    else
        ui.page_2->setFocusValue(MyCamera::readCameraInfo().focus + (up ? 1 : -1));
}

void Tavorin::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Control)
        ctrlHeld = true;
    QMainWindow::keyPressEvent(event);
}

void Tavorin::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Control)
        ctrlHeld = false;
    QMainWindow::keyReleaseEvent(event);
}
