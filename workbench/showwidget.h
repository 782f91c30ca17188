#pragma once

#include "settings/drawproperty.h"

#include <QPixmap>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <memory>

class Base;
class GraphicsView;
class MainScene;
class MyCamera;
class QMenu;
class VideoWidget;

namespace Ui {
class ShowWidget;
}

/// One tab: a picture with its measurements. The live page shows the camera, a picture page one
/// still picture. Row i of the list at its side is record i of its scene.
class ShowWidget : public QWidget
{
    Q_OBJECT

public:
    /// @param pageMenu  the context menu that all pages share; it must outlive the page
    ShowWidget(QMenu *pageMenu, bool isLivePage, QWidget *parent = nullptr);
    ~ShowWidget() override;

    bool isLive() const { return live; }
    bool isModified() const { return modified_; }
    void setModified(bool modified);
    /// A save needs no dialog: true on the live page too.
    bool hasFile() const;
    bool hasItems() const;
    /// Makes this the live page of a camera, which must outlive it.
    void setCamera(MyCamera *camera);
    /// Shows a frame, which is copied at once. Of several that come within one turn of the event
    /// loop it shows the first and the newest.
    void showFrame(const QPixmap *frame);
    void setPicture(const QPixmap &picture);
    /// Zoom of a picture page, in view pixels per picture pixel; the live page has its own.
    void setZoom(double zoom);
    double zoomFactor() const { return pictureScale; }
    /// How the live picture fits: 0 the window, 1 its width, 2 its height, 3 not at all.
    void setFitMode(int index);
    void stepLiveZoom(bool up);
    /// Lays out picture, view and scene for the size of the page and its zoom.
    void adjustView();
    /// Size of the live picture on the screen.
    double viewWidth() const;
    double viewHeight() const;

    void setDrawProperties(const DrawProperties &properties);
    void setDrawProperty(DrawProperty key, const QVariant &value);
    /// 0 is the hand, else the type number of the shape to draw.
    void setDrawType(int type);
    /// @param scale  micrometres per picture pixel, 1.0 while no calibration is in force
    void setScale(double scale);
    void setUnit(int unit);
    /// New text of the shape that was added last.
    void setItemText(const QString &text);
    void deleteCurrentItem();
    void deleteAllItems();
    void undoLastItem();

    void saveCross() const;
    void loadCross();
    int crossHorCount() const;
    int crossVerCount() const;
    bool crossVisible() const;
    void setCrossHorCount(int count);
    void setCrossVerCount(int count);
    void setCrossVisible(bool visible);

    void retranslate();

    /// Shows a picture file and the shapes that it carries in a trailer. A file that cannot be read
    /// leaves a page without a picture.
    void openFile(const QString &path);
    /// Burns the shapes into the picture, saves it and takes them off the page. The path becomes
    /// the page's file; without any, the first free capture name of the working directory does.
    void savePicture(const QString &path);
    /// Saves a JPEG of what the view shows, one view pixel to one pixel.
    void saveViewport(const QString &path);
    /// Stores the next frame of the camera with the shapes burned in; live page only.
    void captureTo(const QString &path);
    /// Writes number, type name and read-outs of each shape.
    void exportCsv(const QString &path) const;

signals:
    void wheelAdd(bool down);
    void caliOver(double length);
    /// The first change since the page was opened or saved.
    void modified(ShowWidget *page);
    void ltextEdit();
    void blinkArea(int x, int y);
    void changeProperty(void *item);
    void crossStatusChanged(void *line);
    void clearDrawType();

public slots:
    void blinkChange(bool clickFocus, bool coarseGrid, bool showBlinkRect);
    void itemInsert(Base *record);
    void itemUpdate(Base *record);
    void menuRequest(QPoint pos);
    void cappix(QPixmap frame);
    void resizeEvent(QResizeEvent *event) override;
    void on_pushButton_clicked();

protected:
    void wheelEvent(QWheelEvent *event) override;

private:
    void createView();
    void connectScene();
    void showHeldFrame();

    // showwidget_layout.cpp
    double fitScale() const;
    void fitTo(int areaLength, int frameLength);
    void adjustLiveView();
    void adjustPictureView();

    // showwidget_files.cpp
    void loadAnnotations(const QByteArray &json);
    void settleRows();
    void passOpeningStep();
    double dotsPerMetre() const;

    std::unique_ptr<Ui::ShowWidget> ui;
    GraphicsView *view = nullptr;
    std::unique_ptr<MainScene> scene;
    VideoWidget *video = nullptr;
    MyCamera *camera = nullptr;
    QMenu *menu;
    QPixmap picture;
    bool live;
    double pictureScale = 1.0;
    double liveZoom = -1.0; // not yet computed
    double lastFit = -1.0;
    bool followFit = false;
    QString fileName;
    QString capturePath;
    bool modified_ = false;
    bool trackChanges = false;
    double scale = 1.0;
    int openingSteps = 0; // of openFile, still to come before changes are tracked
    QTimer frameTurn;     // runs from a frame until the event loop has served all else
    QPixmap heldFrame;    // the newest that came meanwhile
};
