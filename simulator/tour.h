#pragma once

#include "simulator/tour_measures.h"

#include <QDir>
#include <QImage>
#include <QPointF>
#include <QString>

#include <functional>

class QGraphicsView;
class QListWidget;
class QTabWidget;
class QWidget;
class Tavorin;

enum class TourLanguage { Chinese, English };

/// A visit to the whole program: the main window, driven by an operator's events against the
/// simulated microscope. Prints what was measured beside what the specimen truly has, and leaves
/// pictures, a list and screenshots in a folder.
class Tour
{
public:
    /// @param folder    exists; receives all files
    /// @param language  of the window throughout
    Tour(Tavorin &window, const QString &folder, TourLanguage language);

    /// @returns 0, or the number of the step that failed, from 1
    int run();

private:
    // The steps, in tour_live.cpp
    void chooseLanguage();
    void chooseCamera();
    void setThePicture();
    void focusOnAPart();
    void calibrate();
    void measureLive();
    void layACrosshair();
    void sweepTheFocus();

    // in tour_pictures.cpp
    void takeASnapshot();
    void changeDrawSettings();
    void measureEverything();
    void changeOneShape();
    void saveAndExport();
    void openAgain();

    // in tour.cpp
    void switchTheLanguage();
    void closeTheWindow();

    void switchTo(TourLanguage wanted, const QString &shot = QString());
    void calibrateWith(const char *shape, const QVector<tour::Place> &places, const QString &name,
                       int millimetres, const QString &shot);
    int measureGroup(const tour::MeasureGroup &group);
    bool isRight(const tour::Measure &measure) const;
    void draw(const tour::Measure &measure);
    void dragLabel(QPointF shift);
    /// Gives a command that asks for a file name, and waits for the file.
    void makeFile(const QString &name, const std::function<void()> &command,
                  const QString &shot = QString());
    /// Waits for frames that were taken after the call.
    void waitForFrames() const;
    void waitForFocus(int position) const;
    void waitForFile(const QString &file) const;
    QString path(const QString &name) const { return folder.filePath(name); }
    QImage load(const QString &name) const;

    void report(const QString &line) const;
    /// The window with all that lies over it.
    QPixmap screen() const;
    /// Writes what the screen shows.
    void shoot(const QString &name) const;
    /// Writes a picture of one widget.
    void shoot(QWidget *widget, const QString &name) const;

    /// A control of the tool bar.
    template<typename Widget>
    Widget *tool(const char *name) const;
    void clickTool(const char *name) const;
    QTabWidget *tabs() const;
    void showTab(int index) const;
    QWidget *page() const;
    QGraphicsView *view() const;
    QListWidget *list() const;
    /// What the page shows, without the shapes.
    QImage picture() const;
    QPointF onScene(const tour::Place &place) const;
    /// Where the place is seen to lie on the scene.
    QPointF sight(const tour::Place &place) const;

    Tavorin &window;
    QDir folder;
    TourLanguage language;
};
