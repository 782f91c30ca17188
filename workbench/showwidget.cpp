#include "workbench/showwidget.h"

#include "camera/mycamera.h"
#include "measure/base.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "ui_showwidget.h"
#include "workbench/graphicsview.h"
#include "workbench/pictureview.h"
#include "workbench/videowidget.h"

#include <QMenu>
#include <QWheelEvent>

#include <utility>

namespace {

QString rowText(const Base *record)
{
    return record->typeName() + QLatin1Char('\n') + record->textContent();
}

} // namespace

ShowWidget::ShowWidget(QMenu *pageMenu, bool isLivePage, QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::ShowWidget>())
    , menu(pageMenu)
    , live(isLivePage)
{
    ui->setupUi(this);
    video = new VideoWidget(this);
    createView();
    scene = std::make_unique<MainScene>();
    connectScene();
    if (auto *pictureView = qobject_cast<PictureView *>(view))
        pictureView->setMainScene(scene.get());
    else
        view->setScene(scene.get());
    setTabOrder(view, ui->listWidget);
    setTabOrder(ui->listWidget, ui->pushButton);
    ui->listWidget->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(ui->listWidget, &QWidget::customContextMenuRequested, this, &ShowWidget::menuRequest);
    frameTurn.setSingleShot(true);
    connect(&frameTurn, &QTimer::timeout, this, &ShowWidget::showHeldFrame);
}

ShowWidget::~ShowWidget()
{
    // Records that die with the scene have nothing more to tell a page that is going.
    scene->disconnect(this);
}

void ShowWidget::createView()
{
    if (live) {
        // On the label, so that the view lies over the moving picture and scrolls with it.
        view = new OverlayView(video->content());
    } else {
        view = new PictureView(video);
        // Around the picture the page's own background shows.
        video->viewport()->setAutoFillBackground(false);
        video->content()->setAutoFillBackground(false);
    }
    view->setStyleSheet(QStringLiteral("border: none; background: transparent;"));
}

void ShowWidget::connectScene()
{
    MainScene *const from = scene.get();
    connect(from, &MainScene::itemInsert, this, &ShowWidget::itemInsert);
    connect(from, &MainScene::itemUpdate, this, &ShowWidget::itemUpdate);
    connect(from, &MainScene::caliOver, this, &ShowWidget::caliOver);
    connect(from, &MainScene::ltextEdit, this, &ShowWidget::ltextEdit);
    connect(from, &MainScene::blinkArea, this, &ShowWidget::blinkArea);
    connect(from, &MainScene::changeProperty, this, &ShowWidget::changeProperty);
    connect(from, &MainScene::crossStatusChanged, this, &ShowWidget::crossStatusChanged);
    connect(from, &MainScene::clearDrawType, this, &ShowWidget::clearDrawType);
    if (auto *overlay = qobject_cast<OverlayView *>(view))
        connect(from, &MainScene::changed, overlay, &OverlayView::sceneChanged);
}

void ShowWidget::setModified(bool modified)
{
    if (modified_ == modified)
        return;
    modified_ = modified;
    if (modified)
        emit this->modified(this);
}

bool ShowWidget::hasFile() const { return live || !fileName.isEmpty(); }

bool ShowWidget::hasItems() const { return ui->listWidget->count() > 0; }

void ShowWidget::setCamera(MyCamera *newCamera)
{
    trackChanges = true;
    camera = newCamera;
    connect(camera, &MyCamera::cappix, this, &ShowWidget::cappix);
    live = true;
}

void ShowWidget::showFrame(const QPixmap *frame)
{
    // Frames that come faster than they can be shown must not keep the event loop from all else.
    if (frameTurn.isActive()) {
        heldFrame = *frame;
        return;
    }
    video->setPixmap(*frame);
    frameTurn.start(0);
}

void ShowWidget::showHeldFrame()
{
    if (heldFrame.isNull())
        return;
    const QPixmap frame = std::exchange(heldFrame, QPixmap());
    showFrame(&frame);
}

void ShowWidget::setPicture(const QPixmap &newPicture)
{
    picture = newPicture;
    trackChanges = true;
    live = false;
    adjustView();
}

void ShowWidget::setDrawProperties(const DrawProperties &properties)
{
    scene->setDrawProperties(properties);
    view->setRenderHint(QPainter::Antialiasing, properties.value(Antialiasing).toBool());
}

void ShowWidget::setDrawProperty(DrawProperty key, const QVariant &value)
{
    scene->setDrawProperty(key, value);
    if (key == Antialiasing)
        view->setRenderHint(QPainter::Antialiasing, value.toBool());
}

void ShowWidget::setDrawType(int type) { scene->setDrawType(type); }

void ShowWidget::setScale(double newScale)
{
    scale = newScale;
    scene->setScale(newScale);
}

void ShowWidget::setUnit(int unit) { scene->setUnit(unit); }

void ShowWidget::setItemText(const QString &text) { scene->setItemText(text); }

// The three deletions count as changes even before changes are tracked.

void ShowWidget::deleteCurrentItem()
{
    const int row = ui->listWidget->currentRow();
    if (row == -1)
        return;
    delete ui->listWidget->takeItem(row);
    scene->removeItemAt(row);
    setModified(true);
}

void ShowWidget::deleteAllItems()
{
    ui->listWidget->clear();
    scene->clearItems();
    setModified(true);
}

void ShowWidget::undoLastItem()
{
    if (!hasItems())
        return;
    const int last = ui->listWidget->count() - 1;
    delete ui->listWidget->takeItem(last);
    scene->removeItemAt(last);
    setModified(true);
}

void ShowWidget::saveCross() const { scene->saveCross(); }

void ShowWidget::loadCross() { scene->loadCross(); }

int ShowWidget::crossHorCount() const { return scene->crossHorCount(); }

int ShowWidget::crossVerCount() const { return scene->crossVerCount(); }

bool ShowWidget::crossVisible() const { return scene->crossVisible(); }

void ShowWidget::setCrossHorCount(int count) { scene->setCrossHorCount(count); }

void ShowWidget::setCrossVerCount(int count) { scene->setCrossVerCount(count); }

void ShowWidget::setCrossVisible(bool visible) { scene->setCrossVisible(visible); }

void ShowWidget::retranslate() { ui->retranslateUi(this); }

void ShowWidget::blinkChange(bool clickFocus, bool coarseGrid, bool showBlinkRect)
{
    scene->setBlinkFlags(clickFocus, coarseGrid, showBlinkRect);
}

void ShowWidget::itemInsert(Base *record)
{
    ui->listWidget->addItem(rowText(record));
    if (trackChanges)
        setModified(true);
}

void ShowWidget::itemUpdate(Base *record)
{
    QListWidgetItem *const row = ui->listWidget->item(scene->itemIndex(record));
    if (!row)
        return;
    // A move that changes no number is no edit.
    const QString text = rowText(record);
    if (row->text() == text)
        return;
    row->setText(text);
    if (trackChanges)
        setModified(true);
}

void ShowWidget::menuRequest(QPoint pos)
{
    if (!ui->listWidget->selectedItems().isEmpty())
        menu->exec(ui->listWidget->mapToGlobal(pos));
}

void ShowWidget::on_pushButton_clicked()
{
    const bool show = ui->listWidget->isHidden();
    ui->label_2->setVisible(show);
    ui->listWidget->setVisible(show);
    // The layout gives the room away on the next turn of the event loop.
    QTimer::singleShot(0, this, &ShowWidget::adjustView);
}

void ShowWidget::wheelEvent(QWheelEvent *event)
{
    emit wheelAdd(event->angleDelta().y() < 1);
    event->ignore();
}
