#pragma once

#include "fusion/fusiondata.h"
#include "settings/drawproperty.h"
#include "ui_tavorin.h"

#include <QMainWindow>

class MyCamera;
class PicAnalyse;
class ShowWidget;

/// The main window: holds what all pages share (tool, scale, unit, drawing settings), decides which
/// controls may be used, and routes events between the pages, the camera and the panels.
class Tavorin : public QMainWindow
{
    Q_OBJECT

public:
    explicit Tavorin(QWidget *parent = nullptr);
    /// Waits for the capture thread. The camera object itself lives to the end of the process.
    ~Tavorin() override;

    /// Brings the status text and the controls in line with the current page and the camera.
    void refreshControls();
    /// Gives a tool to every page.
    /// @param tool  0 is the hand, else the type number of the shape to draw
    void setDrawType(int tool);
    /// Wires a page, adds it as the current tab and gives it what all pages share. An empty title
    /// becomes the next "Tab0*", "Tab1*" and so on, and the page counts as modified.
    void addPage(ShowWidget *page, QString title);
    /// Asks for a file to save to and remembers its directory.
    /// @param path  receives the whole path; @param name its last part
    /// @returns whether a name was chosen
    bool askSaveName(QString &path, QString &name);
    /// Opens a picture page with a live frame when a snapshot was asked for.
    void openCapturedPage(const QPixmap &frame);

    /// For whoever drives the window from outside. It outlives the window.
    MyCamera *cameraThread() const { return camera; }

signals:
    /// Before every change of tool: a measurement never runs under autofocus.
    void setFocusManual();

public slots:
    // tavorin.cpp
    void on_leftHide_clicked();
    void on_deviceManager_clicked();
    void on_configManager_clicked();
    void on_compose_clicked();
    void on_motorManager_clicked();
    void on_split_clicked();
    void on_comAndSplit_clicked();
    void on_tabWidget_tabCloseRequested(int index);
    void on_tabWidget_currentChanged(int index);
    void closeEvent(QCloseEvent *event) override;

    // tavorin_camera.cpp
    void updateWindow();
    void cameraFirmwareVersionShow(double raw);
    void getpix(QPixmap *frame);
    void cameraStatusChange(bool connected);
    void cameraChange(int index, const QString &name, const QString &path);
    void cameraClose();
    void blinkArea(int x, int y);

    // tavorin_files.cpp
    void on_open_clicked();
    void on_save_clicked();
    void on_save_2_clicked();
    void on_captureBtn_clicked();
    void on_capture2Btn_clicked();
    void on_export_2_clicked();

    // tavorin_tools.cpp
    void on_hand_clicked();
    void on_line_clicked();
    void on_hline_clicked();
    void on_vline_clicked();
    void on_par_clicked();
    void on_ver_clicked();
    void on_angle_clicked();
    void on_rect_clicked();
    void on_arc_clicked();
    void on_circle_clicked();
    void on_ring_clicked();
    void on_poly_clicked();
    void on_line_circle_clicked();
    void on_ver_circle_clicked();
    void on_two_circle_clicked();
    void on_text_clicked();
    void on_cali_clicked();
    void on_cross_clicked();
    void on_redo_clicked();
    void on_settingBtn_clicked();
    void on_zoom_currentIndexChanged(const QString &text);
    void on_zoom_currentIndexChanged(int index);
    void on_comboBox_currentIndexChanged(int index);
    void on_comboBox_2_currentIndexChanged(const QString &text);
    void wheelAdd(bool down);
    void delItem();
    void delAllItem();
    void ltextEdit();
    void modified(ShowWidget *page);
    void DrawChange(DrawProperty key, const QVariant &value);
    void caliChange(const QVariant &value);
    void calibrateChange(double value);
    void caliOver(double length);
    void drawChangeProperty(void *item);
    void crossStatusChanged(void *item);
    void onCrossChangedTimeOut();
    void showSuccess();

    // tavorin_language.cpp
    void on_actionchinese_triggered();
    void on_actionenglish_triggered();

    // tavorin_sweep.cpp
    void startFusion(FusionData range);
    void fusionWork();
    void AnalyseOver();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;

private:
    void initWindow();
    void screenSize(int &width, int &height) const;
    void connectCamera();
    void connectPanels();
    void connectPage(ShowWidget *page);
    void connectLivePage(ShowWidget *page);
    void setControlsEnabled(bool cameraReady, bool canDraw, bool pageModified, bool pageHasItems,
                            bool cameraPanels);
    void showPanel(int index);
    void storeCross();
    void loadTranslation();
    void retranslate();

    /// All pages from the left.
    QList<ShowWidget *> pages() const;
    /// Null while there is no page.
    ShowWidget *currentPage() const;
    ShowWidget *addPicturePage(const QString &title);
    QString rememberDirectory(const QString &path);
    void chooseTool(int tool);
    bool isWithinSweep(int position) const;

    Ui::TavorinClass ui;
    MyCamera *camera; // never deleted: its discovery thread runs to the end of the process
    QMenu *pageMenu;  // shared by the lists of all pages
    FusionData sweep; // startPos is the next position to take
    int fusionFrameCount = 0;
    PicAnalyse *picAnalyse;
    ShowWidget *livePage = nullptr;
    ShowWidget *fusionPage = nullptr; // null outside a sweep and after that page was closed
    int currentTool = 0;
    DrawProperties drawProperties;
    bool snapshotPending = false; // the next frame opens a new picture page
    QString lastDirectory = "D:/";
    double pictureZoom = 1.0;
    double scale = 1.0; // micrometres per picture pixel
    int unit = 1;
    bool ctrlHeld = false;
    bool crossDirty = false; // the crosshair changed and is not stored yet
    int screenWidth = 0;
    int screenHeight = 0;
    QString baseTitle;
};
