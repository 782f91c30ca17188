#include "simulator/tour.h"

#include "camera/mycamera.h"
#include "fusion/pictureconversion.h"
#include "fusion/sharpness.h"
#include "settings/settingsfiles.h"
#include "simulator/optics.h"
#include "simulator/specimen.h"
#include "simulator/tour_dialogs.h"
#include "simulator/tour_operator.h"
#include "workbench/tavorin.h"
#include "workbench/videowidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGraphicsView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>

#include <cmath>
#include <fstream>
#include <iostream>
#include <utility>

using namespace tour;

namespace {

/// Focus at which the middle of the board is sharp.
constexpr int boardFocus = 200;
constexpr double micrometresPerPixel = specimen::fieldWidth / 1920;

/// Positions of the sweep, from above the highest part down: the way on which most frames are
/// sharper than the one before.
constexpr int sweepFrom = 350;
constexpr int sweepTo = 130;
constexpr int sweepStep = 20;
constexpr int sweepLimitMs = 240000;

/// Waits until the focus motor rests. @returns where
int restingFocus()
{
    int last = -1;
    waitUntil("autofocus has settled", [&] {
        const int before = last;
        last = MyCamera::currentFocus();
        wait(400);
        return last == before;
    });
    return last;
}

/// Sends standard output to a file for as long as it lives.
class StandardOutputTo
{
public:
    explicit StandardOutputTo(const QString &file)
        : stream(file.toStdString())
        , before(std::cout.rdbuf(stream.rdbuf()))
    {}
    ~StandardOutputTo() { std::cout.rdbuf(before); }
    Q_DISABLE_COPY(StandardOutputTo)

private:
    std::ofstream stream;
    std::streambuf *before;
};

double sharpnessOf(const QImage &picture)
{
    QImage pixels = picture.convertToFormat(QImage::Format_RGB32);
    return sharpness(qImageToCvMat(pixels));
}

double meanBrightness(const QImage &picture)
{
    QImage pixels = picture.convertToFormat(QImage::Format_RGB32);
    const cv::Scalar mean = cv::mean(qImageToCvMat(pixels));
    return (mean[0] + mean[1] + mean[2]) / 3;
}

} // namespace

void Tour::waitForFrames() const
{
    const auto *live = find<ShowLabel>(page(), "");
    qint64 last = live->scaledFrame().cacheKey();
    int frames = 0;
    waitUntil("frames come", [&] {
        const qint64 now = live->scaledFrame().cacheKey();
        frames += now != std::exchange(last, now) ? 1 : 0;
        return frames >= 3; // two may be on their way
    });
}

void Tour::waitForFocus(int position) const
{
    waitUntil(QString("the motor stands at %1").arg(position),
              [=] { return MyCamera::currentFocus() == position; });
    waitForFrames();
}

void Tour::chooseCamera()
{
    click(find<QPushButton>(&window, "deviceManager"));
    waitUntil("the camera is listed",
              [&] { return window.findChild<QRadioButton *>("radioButton") != nullptr; });
    wait(100); // the list is laid out
    shoot("devices");
    expectMessage("the camera is connected", [this] { shoot("connected"); });
    auto *button = find<QRadioButton>(&window, "radioButton");
    clickOn(button, QPoint(8, button->height() / 2));
    dialogsDone();
    waitUntil("the size is known",
              [&] { return find<QLabel>(&window, "statusLabel2")->text() == "1920*1080"; });
    waitUntil("a picture comes", [&] { return !picture().isNull(); });
    shoot("live");
}

void Tour::setThePicture()
{
    click(find<QPushButton>(&window, "configManager"));
    auto *panel = find<QWidget>(&window, "page_2");
    click(find<QPushButton>(panel, "pushButton"));
    click(find<QPushButton>(panel, "pushButton_3"));

    const double before = meanBrightness(picture());
    click(find<QCheckBox>(panel, "checkBox_6"));
    slideTo(find<QSlider>(panel, "horizontalSlider_14"), 6);
    waitUntil("the picture is darker", [&] { return meanBrightness(picture()) < 0.5 * before; });
    slideTo(find<QSlider>(panel, "horizontalSlider_14"), 8);
    waitUntil("the picture is as bright as before",
              [&] { return std::abs(meanBrightness(picture()) / before - 1.0) < 0.05; });

    click(find<QCheckBox>(panel, "checkBox"));
    report(QString("    autofocus finds %1").arg(restingFocus()));
    click(find<QCheckBox>(panel, "checkBox_3"));
    slideTo(find<QSlider>(panel, "horizontalSlider"), boardFocus);
    waitForFocus(boardFocus);
    shoot("picture");
    shoot(panel, "picture_panel");
}

/// Autofocus on the cell that the operator clicks: the top of the chip, high above the board.
void Tour::focusOnAPart()
{
    auto *panel = find<QWidget>(&window, "page_2");
    click(find<QPushButton>(panel, "pushButton_3"));
    click(find<QPushButton>(panel, "pushButton_2"));
    auto *frame = find<QCheckBox>(panel, "checkBox_4");
    click(frame);
    click(find<QCheckBox>(panel, "checkBox_14"));
    const specimen::Block &chip = specimen::blocks()[0];
    const cv::Point2d text = chip.area.tl() + cv::Point2d(900, 850);
    clickAt(view(), onScene({{text.x, text.y}, {}}));
    const int focus = restingFocus();
    report(QString("    the chip lies at %1, autofocus finds %2").arg(chip.height).arg(focus));
    if (std::abs(focus - chip.height) > 10)
        throw Error("the focus is not on the chip");
    shoot("focus_area");
    click(find<QCheckBox>(panel, "checkBox_14"));
    click(frame);
    click(find<QPushButton>(panel, "pushButton_2"));
    click(find<QCheckBox>(panel, "checkBox_3"));
    slideTo(find<QSlider>(panel, "horizontalSlider"), boardFocus);
    waitForFocus(boardFocus);
}

void Tour::calibrate()
{
    // One frame pixel to one screen pixel.
    auto *fit = tool<QComboBox>("comboBox");
    pick(fit, "100%");
    waitForFrames();
    calibrateWith("circle", largeRing(), "1mm", 1, "calibration_circle");
    calibrateWith("line", rulerEnds(), "6mm", 6, "calibration");
    pick(tool<QComboBox>("comboBox_2"), "mm");
    pick(fit, fit->itemText(0));
}

/// Draws a shape of calibration, names its length, and puts the scale in force.
/// @param millimetres  the true length, or diameter
void Tour::calibrateWith(const char *shape, const QVector<Place> &places, const QString &name,
                         int millimetres, const QString &shot)
{
    auto *button = tool<QPushButton>("cali");
    auto *corner = find<QPushButton>(button, "");
    expectMenu(shape);
    clickOn(corner, corner->rect().bottomRight() - QPoint(2, 2));
    dialogsDone();
    clickOn(button, QPoint(8, 8));

    expectDialog("the scale", [&](QDialog *dialog) {
        type(find<QLineEdit>(dialog, "lineEdit"), name);
        type(find<QLineEdit>(dialog, "lineEdit_2"), QString::number(millimetres));
        pick(find<QComboBox>(dialog, "comboBox"), "mm");
        shoot(shot);
        click(find<QPushButton>(dialog, "pushButton"));
    });
    for (const Place &place : places)
        clickAt(view(), sight(place));
    dialogsDone();
    clickTool("hand");

    auto *box = tool<QComboBox>("calibrateCombo");
    auto *rows = qobject_cast<QListWidget *>(box->view());
    click(box);
    waitUntil("the scales are listed", [=] { return rows->isVisible(); });
    clickOn(rows->itemWidget(rows->item(rows->count() - 1)), QPoint(20, 8));
    waitUntil("the scale is in force", [=] { return box->currentText().startsWith(name); });

    const CalibrationRecord record = readCalibrations().constLast();
    report(QString("    %1: true %2 um a pixel, measured %3")
               .arg(shape)
               .arg(micrometresPerPixel)
               .arg(record.real));
    const double micrometres = millimetres * 1000.0;
    const double pixelsOff = micrometres / record.real - micrometres / micrometresPerPixel;
    if (std::abs(pixelsOff) > 1 + 1e-6)
        throw Error("the length is off by more than a pixel");
}

void Tour::measureLive()
{
    const cv::Rect2d pad = specimen::pads()[6];
    clickTool("rect");
    clickAt(view(), onScene({{pad.x, pad.y}, {}}));
    clickAt(view(), onScene({{pad.br().x, pad.br().y}, {}}));
    clickTool("hand");
    wait(100); // it is painted
    shoot("measure_live");

    makeFile("live.jpg", [&] { press(&window, Qt::Key_S, Qt::ControlModifier); });
    const QStringList before = folder.entryList({"*.jpg"});
    press(&window, Qt::Key_Q, Qt::ControlModifier);
    QStringList now;
    waitUntil("the quick save is there", [&] {
        folder.refresh();
        now = folder.entryList({"*.jpg"});
        return now.size() > before.size() && window.isEnabled();
    });
    for (const QString &name : before)
        now.removeAll(name);
    waitForFile(path(now.constFirst()));

    expectMenu("删除所有");
    const QListWidget *rows = list();
    const QPoint row = rows->visualItemRect(rows->item(0)).center();
    clickOn(rows->viewport(), row);
    expectQuestion("whether to delete all");
    contextClickOn(rows->viewport(), row);
    dialogsDone();
    if (rows->count() != 0)
        throw Error("the shape is still listed");
}

void Tour::layACrosshair()
{
    showTab(0);
    const auto command = [&](const std::function<void(QDialog *)> &work) {
        expectDialog("the crosshair", [=](QDialog *dialog) {
            work(dialog);
            press(dialog, Qt::Key_Escape);
        });
        clickTool("cross");
        dialogsDone();
    };
    command([&](QDialog *dialog) {
        type(find<QSpinBox>(dialog, "spinBox"), "3");
        type(find<QSpinBox>(dialog, "spinBox_2"), "5");
        click(find<QPushButton>(dialog, "pushButton"));
        shoot("crosshair_dialog");
    });
    waitForFile(path("corss.ini"));
    shoot("crosshair");
    command([](QDialog *dialog) { click(find<QPushButton>(dialog, "pushButton_2")); });
}

void Tour::sweepTheFocus()
{
    // The frame that a single focus position can give at best.
    const Optics lens({1920, 1080});
    const int best = int(lens.sharpestFocus({{}, lens.size()}));
    click(find<QPushButton>(&window, "configManager"));
    slideTo(find<QSlider>(find<QWidget>(&window, "page_2"), "horizontalSlider"), best);
    waitForFocus(best);
    makeFile("single.jpg", [&] { press(&window, Qt::Key_S, Qt::ControlModifier); });

    click(find<QPushButton>(&window, "compose"));
    auto *panel = find<QWidget>(&window, "page_4");
    // It begins at the end that was moved last.
    slideTo(find<QSlider>(panel, "horizontalSlider_2"), sweepTo);
    slideTo(find<QSlider>(panel, "horizontalSlider"), sweepFrom);
    type(find<QSpinBox>(panel, "spinBox_3"), QString::number(sweepStep));
    shoot("sweep_panel");

    const int pages = tabs()->count();
    expectMessage("the sweep is over", [this] { shoot("sweep_done"); });
    // The fusion tells its running times on standard output, without line ends.
    const StandardOutputTo times(path("sweep_times.txt"));
    click(find<QPushButton>(panel, "pushButton"));
    const auto *progress = find<QLineEdit>(panel, "lineEdit_4");
    constexpr int frames = (sweepFrom - sweepTo) / sweepStep + 1;
    waitUntil(
        "half of the frames are fused", [=] { return progress->text().toInt() >= frames / 2; },
        sweepLimitMs);
    shoot("sweep_running");
    dialogsDone(sweepLimitMs);
    if (tabs()->count() != pages + 1)
        throw Error("the sweep made no page");

    makeFile("fused.jpg", [&] { press(&window, Qt::Key_S, Qt::ControlModifier); });
    shoot("fused");
    const double single = sharpnessOf(load("single.jpg"));
    const double fused = sharpnessOf(load("fused.jpg"));
    report(QString("    %1 frames; sharpness of one frame at its best focus, %2: %3; fused: %4; "
                   "gain %5")
               .arg(frames)
               .arg(best)
               .arg(single, 0, 'f', 2)
               .arg(fused, 0, 'f', 2)
               .arg(fused / single, 0, 'f', 2));
    if (fused <= single)
        throw Error("the fused picture is no sharper than a single frame");
}
