#pragma once

#include "camera/cameradetect.h"
#include "camera/cameraparameters.h"
#include "camera/controller.h"
#include "camera/pause.h"

#include <QMetaType>
#include <QPixmap>
#include <QThread>

#include <atomic>
#include <mutex>

/// How long the camera's threads rest, in milliseconds. Only tests shorten them.
struct CameraPeriods
{
    int retryMs = 1000; ///< between two attempts to open the device
    int batchMs = 40;   ///< between two batches of parameters
    int pollMs = 1000;  ///< between two listings of the devices
};

/// The thread that owns the live picture: it opens the camera, reads frames as fast as the device
/// gives them and hands each to the GUI. Created once, on the GUI thread.
class MyCamera : public QThread
{
    Q_OBJECT

public:
    /// Starts watching the device list at once; the capture waits for the first `cameraChange`.
    explicit MyCamera(CameraPeriods periods = {}, QObject *parent = nullptr);
    /// Ends the camera's threads.
    ~MyCamera() override;

    /// The device is open and set up.
    bool isOpen() const { return controller.isEnabled(); }
    /// The size asked for, never the one that the device reports.
    int frameWidth() const { return controller.frameWidth(); }
    int frameHeight() const { return controller.frameHeight(); }
    /// The newest frame; null before the first. GUI thread only.
    QPixmap currentPixmap() const;

    // Read-backs from the device, on whose answer they block; -1 when it is not open.
    static CameraInfo readCameraInfo();
    static int currentFocus();
    static int currentGamma();
    static int currentGain();
    static int currentZoom();
    static int currentBrightness();
    static int currentExposure();
    static int currentIris();
    static int currentRoll();

signals:
    /// A copy of one frame, once per `requestCapture`.
    void cappix(QPixmap pixmap);
    /// Once per frame. The receiver copies what is pointed at, on the GUI thread and at once.
    void putpix(QPixmap *pixmap);
    /// True when the device is open and set up, false when it is closed.
    void cameraStatusChange(bool connected);
    /// "1920*1080" while connected, "0x0" when closed.
    void resolutionChange(QString text);
    /// The list of attached devices changed.
    void detect(QStringList names, QStringList paths);
    /// What keeps each of the listed devices from being opened; empty texts where nothing does.
    void accessChange(QStringList faults);
    /// The raw firmware number, read when the device opens.
    void sendCameraFirmwareVersion(double version);

public slots:
    /// Takes another camera into use.
    /// @param index  its position in the device list
    /// @param path   its device path, watched from now on
    void cameraChange(int index, const QString &path);
    /// Posts a change of a parameter, see CameraParameter.
    void setCameraInfo(int type, int num);
    /// Puts the focus window on a cell.
    void blinkArea(int x, int y);
    /// Has the next frame delivered through `cappix` too.
    void requestCapture();
    /// Gives the camera up: it is not reopened by itself any more.
    void closeCamera();
    /// Lets the thread end; the device is still watched.
    void stopCapture();
    /// Brings the capture back while the camera in use is attached.
    void restartIfStopped();

protected:
    void run() override;

private:
    bool openDevice();
    bool openWithRetries();
    void closeDevice();
    void releaseDevice();
    void streamFrames();
    void deliver(QPixmap pixmap);
    void takeNewestFrame();
    void startCapture();
    void clearRunFlag();

    Controller controller;
    CameraDetect detector;
    std::atomic<bool> captureFlag{false};
    std::atomic<bool> runFlag{true};
    std::atomic<bool> restartFlag{false};
    std::atomic<int> cameraIndex{0};
    QPixmap currentFrame; // GUI thread; putpix points at it

    mutable std::mutex newestMutex;
    QPixmap newestFrame; // on its way to currentFrame; guarded by newestMutex
    Pause pause;
    const int retryPeriodMs;
};

Q_DECLARE_METATYPE(QPixmap *)
