// Takes a picture of everything that an operator sees: the window, its panels, its menus and every
// dialog, in both languages. tavorin_portraits <folder> <sample picture>
// QT_SCALE_FACTOR tells for which density; the names of pictures beyond 1 carry it.

#include "calibration/calibratecombobox.h"
#include "calibration/calibrationwidget.h"
#include "camera/camerasetwidget.h"
#include "camera/camerasetwidget2.h"
#include "camera/devicewidget.h"
#include "camera/mycamera.h"
#include "fusion/fusionwidget.h"
#include "fusion/picshowdialog.h"
#include "measure/base.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "settings/crossdialog.h"
#include "settings/drawchangedialog.h"
#include "settings/drawsettingdialog.h"
#include "settings/selectbutton.h"
#include "settings/settingsfiles.h"
#include "simulator/simulatedcapture.h"
#include "workbench/application.h"
#include "workbench/showwidget.h"
#include "workbench/tavorin.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QEventLoop>
#include <QGraphicsView>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>

namespace {

/// Shapes on the sample picture, which has 5 micrometres a pixel: pads, holes, traces, the ruler.
const char shapes[] = R"([
    {"type":7,"point":[{"x":119.5,"y":139.5},{"x":179.5,"y":279.5}]},
    {"type":1,"point":[{"x":359.5,"y":1015},{"x":1159.5,"y":1015}]},
    {"type":4,"point":[{"x":1400,"y":640},{"x":1860,"y":640},{"x":1630,"y":680}]},
    {"type":6,"point":[{"x":1520,"y":240},{"x":1600,"y":160},{"x":1519,"y":240},{"x":1400,"y":240}]},
    {"type":9,"point":[{"x":1739.5,"y":99.5},{"x":1799.5,"y":159.5},{"x":1739.5,"y":219.5}]},
    {"type":14,"point":[{"x":189.5,"y":679.5},{"x":239.5,"y":629.5},{"x":289.5,"y":679.5},
                        {"x":439.5,"y":679.5},{"x":479.5,"y":639.5},{"x":519.5,"y":679.5}]},
    {"type":15,"text":"gap","point":[{"x":1010,"y":620},{"x":960,"y":710}]}
])";

/// Where their labels are dragged to, so that none hides what it measures.
const QPointF labels[] = {{112, 290},  {690, 1020}, {1560, 690}, {1370, 265},
                          {1650, 270}, {290, 780},  {1020, 600}};

constexpr QSize windowSize(1600, 900);

/// A copy of a picture without its grain, which would make the pictures of it heavy.
/// @returns its path in the working directory, or an empty string
QString withoutGrain(const QString &path)
{
    const cv::Mat grainy = cv::imread(path.toStdString());
    if (grainy.empty())
        return {};
    cv::Mat smooth;
    cv::medianBlur(grainy, smooth, 5);
    cv::medianBlur(smooth, smooth, 5);
    return cv::imwrite("smooth.png", smooth) ? QString("smooth.png") : QString();
}

void letEventsRun(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Ends the program when what the pictures need does not come about.
void waitFor(const char *what, const std::function<bool()> &condition)
{
    for (int round = 0; round < 200; ++round) {
        if (condition())
            return;
        letEventsRun(50);
    }
    std::fprintf(stderr, "tavorin_portraits: still waiting for %s\n", what);
    std::exit(1);
}

template<class Widget>
Widget &part(const QWidget &parent, const char *name)
{
    auto *found = parent.findChild<Widget *>(name);
    if (!found)
        qFatal("there is no %s", name);
    return *found;
}

/// One round through everything, in the language that is on.
class Studio
{
public:
    Studio(Tavorin &sitter, const QDir &target, const QString &samplePicture)
        : window(sitter)
        , folder(target)
        , sample(samplePicture)
        , smooth(withoutGrain(sample))
    {}

    void takeAll()
    {
        window.resize(windowSize);
        take(window, "window-empty");
        takePicturePage();
        takeLivePage();
        takeDevices();
        takeMenu(part<QMenu>(window, "menu"), "menu-language");
        takeSpareWidgets();
    }

private:
    void take(QWidget &sitter, const QString &name, const QRect &area = QRect(0, 0, -1, -1))
    {
        letEventsRun(100);
        const qreal ratio = sitter.devicePixelRatioF();
        const QString density = ratio > 1 ? QString("@%1x").arg(ratio) : QString();
        const QString path = folder.filePath(name + density + ".png");
        if (!sitter.grab(area).save(path)) {
            std::fprintf(stderr, "tavorin_portraits: cannot write %s\n", qPrintable(path));
            std::exit(1);
        }
    }

    void takeShown(QWidget &&sitter, const QString &name) { takeShown(sitter, name); }
    void takeShown(QWidget &sitter, const QString &name)
    {
        sitter.show();
        take(sitter, name);
        sitter.hide();
    }

    /// Takes the box that the call brings up and waits for, then closes it.
    void takeModal(const QString &name, const std::function<void()> &call)
    {
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &window, [this, name, &look] {
            QWidget *box = QApplication::activeModalWidget();
            if (!box)
                return;
            look.stop();
            take(*box, name);
            box->close();
        });
        look.start(50);
        call();
    }

    ShowWidget &page() const
    {
        return *qobject_cast<ShowWidget *>(part<QTabWidget>(window, "tabWidget").currentWidget());
    }
    MainScene &scene() const
    {
        return *qobject_cast<MainScene *>(page().findChild<QGraphicsView *>()->scene());
    }

    QMenu &pageMenu() const
    {
        return *window.findChild<QMenu *>(QString(), Qt::FindDirectChildrenOnly);
    }

    void takePicturePage()
    {
        window.resize(windowSize);
        auto *opened = new ShowWidget(&pageMenu(), false, &part<QTabWidget>(window, "tabWidget"));
        window.addPage(opened, QFileInfo(sample).fileName());
        opened->openFile(smooth);
        window.refreshControls();
        part<QComboBox>(window, "zoom").setCurrentText("67");
        part<QComboBox>(window, "comboBox_2").setCurrentText("mm");
        window.calibrateChange(5.0);
        letEventsRun(200);
        scene().loadJson(shapes);
        letEventsRun(100);
        for (size_t i = 0; i < std::size(labels); ++i) {
            GraphicsText *label = scene().items().at(int(i))->text();
            label->setSelected(true);
            label->setPos(labels[i]);
            label->setSelected(false);
        }
        opened->findChild<QListWidget *>("listWidget")->setCurrentRow(0);
        part<QPushButton>(window, "rect").click();
        take(window, "window");

        DrawChangeDialog shape(scene().items().first(), 0, &window);
        takeShown(shape, "property-shape");
        opened->setCrossHorCount(1);
        DrawChangeDialog line(scene().crossLines().first(), 1, &window);
        takeShown(line, "property-line");
        takeShown(CrossDialog(opened, &window), "crosshair");
        takeShown(DrawSettingDialog(), "draw-settings");
        takeCalibration();
        takeModal("text", [this] { window.ltextEdit(); });
        takeModal("question", [this] { window.close(); });
        takeToolMenus();

        QPixmap picture(smooth);
        takeShown(PicShowDialog(&picture, &window), "picture");

        window.calibrateChange(1.0);
        part<QComboBox>(window, "comboBox_2").setCurrentText("pix");
        opened->setModified(false);
        window.on_tabWidget_tabCloseRequested(0);
    }

    void takeCalibration()
    {
        CalibrationWidget dialog(800.25, readCalibrations(), &window);
        part<QLineEdit>(dialog, "lineEdit").setText("4x");
        part<QLineEdit>(dialog, "lineEdit_2").setText("4");
        takeShown(dialog, "calibration");
        dialog.show();
        part<QLineEdit>(dialog, "lineEdit").clear();
        part<QPushButton>(dialog, "pushButton").click();
        take(dialog, "calibration-warning");
    }

    void takeLivePage()
    {
        simulatedMicroscope().attach({{"Orvane_M1", "usb-1"}});
        part<QPushButton>(window, "deviceManager").click();
        waitFor("the camera's row", [this] { return window.findChild<QRadioButton *>(); });
        takeModal("message", [this] {
            window.findChild<QRadioButton *>()->click();
            waitFor("the connection",
                    [this] { return part<QPushButton>(window, "configManager").isEnabled(); });
        });
        waitFor("a frame", [this] { return !window.cameraThread()->currentPixmap().isNull(); });

        part<QPushButton>(window, "configManager").click();
        auto &panel = part<CameraSetWidget2>(window, "page_2");
        panel.setFocusValue(200);
        takeCameraPanel(panel);
        part<QPushButton>(panel, "pushButton").click();
        part<QPushButton>(panel, "pushButton_3").click();
        window.resize(windowSize); // a camera's resolution makes it fill the screen
        letEventsRun(1500);        // the motor
        take(window, "window-live");
        part<QPushButton>(panel, "pushButton").click();
        part<QPushButton>(panel, "pushButton_3").click();

        part<QPushButton>(window, "compose").click();
        auto &sweep = part<FusionWidget>(window, "page_4");
        part<QSlider>(sweep, "horizontalSlider_2").setValue(340);
        part<QSlider>(sweep, "horizontalSlider").setValue(180);
        sweep.setProgress(0);
        take(sweep, "sweep", QRect(0, 0, sweep.width(), sweep.layout()->minimumSize().height()));

        QTimer closing;
        QObject::connect(&closing, &QTimer::timeout, [] {
            if (QWidget *box = QApplication::activeModalWidget())
                box->close();
        });
        closing.start(50);
        window.on_tabWidget_tabCloseRequested(0);
        waitFor("the camera's end", [this] { return !window.cameraThread()->isRunning(); });
        letEventsRun(300);
        simulatedMicroscope().attach({});
        letEventsRun(1500);
        part<QWidget>(window, "stackedWidget").hide();
    }

    /// Each group alone, from its header down.
    void takeCameraPanel(CameraSetWidget2 &panel)
    {
        static const struct
        {
            const char *header;
            const char *group;
            const char *name;
        } groups[] = {{"pushButton", "widget", "camera-focus"},
                      {"pushButton_2", "widget_2", "camera-area"},
                      {"pushButton_3", "widget_3", "camera-exposure"},
                      {"pushButton_4", "widget_4", "camera-white-balance"},
                      {"pushButton_5", "widget_5", "camera-flip"},
                      {"pushButton_6", "widget_6", "camera-function"}};
        auto &contents = part<QWidget>(panel, "scrollAreaWidgetContents");
        for (const auto &group : groups) {
            auto &header = part<QPushButton>(panel, group.header);
            header.click();
            letEventsRun(50);
            take(contents, group.name,
                 header.geometry() | part<QWidget>(panel, group.group).geometry());
            header.click();
        }
        letEventsRun(50);
        take(contents, "camera-closed",
             QRect(0, 0, contents.width(), part<QPushButton>(panel, "pushButton_14").y() + 36));
    }

    void takeDevices()
    {
        DeviceWidget devices;
        devices.resize(210, 0);
        devices.deviceChange({"Orvane_M1"}, {"usb-1"});
        devices.findChild<QRadioButton *>()->setChecked(true);
        devices.deviceChange({"Orvane_M2", "Orvane_M200 long working distance"},
                             {"usb-2", "usb-3"});
        devices.show();
        letEventsRun(50);
        devices.resize(210, part<QWidget>(devices, "scrollAreaWidgetContents").sizeHint().height());
        take(devices, "devices");
    }

    void takeMenu(QMenu &menu, const QString &name)
    {
        menu.popup(window.mapToGlobal(QPoint(40, 40)));
        take(menu, name);
        menu.close();
    }

    void takeToolMenus()
    {
        auto &calibrations = part<CaliBrateComboBox>(window, "calibrateCombo");
        calibrations.showPopup();
        take(*calibrations.view()->window(), "menu-calibrations");
        calibrations.hidePopup();
        takeMenu(*part<QWidget>(window, "cali").findChild<QMenu *>(), "menu-calibration-tool");
        takeMenu(pageMenu(), "menu-page");
    }

    void takeSpareWidgets() { takeShown(CameraSetWidget(), "camera-basic"); }

    Tavorin &window;
    QDir folder;
    QString sample;
    QString smooth;
};

} // namespace

int main(int argc, char *argv[])
{
    prepareApplication();
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("tavorin_portraits <folder> <sample picture>\n", stderr);
        return 2;
    }
    const QDir folder(arguments.at(1));

    writeCalibrations({{"4x", 4, "mm", 5.0}, {"10x", 1000, "um", 2.0}, {"20x", 100, "mil", 1.0}});
    simulatedMicroscope().setNoise(false);
    simulatedMicroscope().attach({});
    Tavorin window;
    window.resize(windowSize);
    window.show();
    for (const QString language : {"zh", "en"}) {
        window.findChild<QAction *>(language == "zh" ? "actionchinese" : "actionenglish")
            ->trigger();
        folder.mkpath(language);
        Studio(window, folder.filePath(language), arguments.at(2)).takeAll();
    }
    std::exit(0); // the program's own prompt would ask for a Yes
}
