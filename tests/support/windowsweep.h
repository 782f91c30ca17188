#pragma once

#include "fusion/fusiondata.h"
#include "fusion/picanalyse.h"
#include "tests/support/mainwindow.h"
#include "tests/support/modalanswers.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QtTest>

/// Picks a simulated camera and waits for its frames.
/// @param resolution  index of the resolution list; 4 gives 640 x 480, which is fused quickly
inline void streamFromCamera(const MainWindow &window, int resolution, QSize size)
{
    ModalAnswers answers;
    answers.press(QMessageBox::Ok);
    simulatedMicroscope().plugIn({"Orvane_A", "a"});
    emit window.part<DeviceWidget>("page_1")->cameraWork(0, "Orvane_A", "a");
    QTRY_COMPARE(window.status(), QString("连接成功"));
    MyCamera *camera = window->cameraThread();
    camera->setCameraInfo(CameraParameter::Resolution, resolution);
    QTRY_COMPARE_WITH_TIMEOUT(camera->currentPixmap().size(), size, 20000);
}

/// A sweep of the window's: what was shown and sent until the completion message.
class WindowSweep
{
public:
    explicit WindowSweep(const MainWindow &target)
        : window(target)
        , panel(target.part("page_4"))
        , progress(panel->findChild<QLineEdit *>("lineEdit_4"))
        , startButton(panel->findChild<QPushButton *>("pushButton"))
    {
        // Counted on this thread; a signal spy would count on the other one.
        QObject::connect(target->findChild<PicAnalyse *>(), &QThread::finished, &context,
                         [this] { ++frames; });
        QObject::connect(progress, &QLineEdit::textChanged, &context,
                         [this](const QString &text) { shown += text; });
        acceptEveryBox();
    }

    void run(FusionData data)
    {
        run([&] { window->startFusion(data); });
    }

    /// Starts a sweep and follows it to its end.
    /// @param meanwhile  called after the start
    void run(
        const std::function<void()> &start, const std::function<void()> &meanwhile = [] {})
    {
        shown.clear();
        simulatedMicroscope().takeSets();
        start();
        startWasEnabled = canStart();
        meanwhile();
        QTRY_VERIFY_WITH_TIMEOUT(isDone, 200000);
        for (const auto &[property, value] : simulatedMicroscope().takeSets()) {
            if (property == cv::CAP_PROP_FOCUS)
                positions += int(value);
            else if (property == cv::CAP_PROP_AUTOFOCUS)
                autofocus += int(value);
        }
    }

    /// The panel itself is disabled while a picture is shown.
    bool canStart() const { return startButton->isEnabledTo(panel); }

    /// The picture on the page that came last.
    QImage result() const
    {
        const ShowWidget *page = window.page(window.tabs()->count() - 1);
        return sceneOf(page).backgroundBrush().texture().toImage();
    }

    const MainWindow &window;
    QWidget *panel;
    QLineEdit *progress;
    QPushButton *startButton;
    int frames = 0; ///< analysed so far
    ModalAnswers answers;
    QStringList shown;
    QList<int> positions;
    QSet<int> autofocus;
    bool startWasEnabled = true;
    bool isDone = false;
    int buttonsAtTheEnd = 0;
    QString progressAtTheEnd;

private:
    QObject context;

    /// The boxes that tell of the camera, the question about a page and, as the last one, the
    /// completion message.
    void acceptEveryBox()
    {
        answers.expect([this](QWidget *widget) {
            auto *box = static_cast<QMessageBox *>(widget);
            if (box->windowTitle() == "提醒" && box->text() == "融合完成") {
                isDone = true;
                progressAtTheEnd = progress->text();
                buttonsAtTheEnd = box->buttons().size();
            } else {
                acceptEveryBox();
            }
            box->buttons().first()->click();
        });
    }
};
