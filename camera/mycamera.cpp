#include "camera/mycamera.h"

#include "camera/capture.h"
#include "fusion/pictureconversion.h"

#include <QDebug>
#include <QMutexLocker>

#include <utility>

QMutex cameraMutex;

namespace {

constexpr int openAttempts = 7;
constexpr std::memory_order relaxed = std::memory_order_relaxed;

} // namespace

MyCamera::MyCamera(CameraPeriods periods, QObject *parent)
    : QThread(parent)
    , controller(periods.batchMs)
    , detector(periods.pollMs)
    , retryPeriodMs(periods.retryMs)
{
    connect(&controller, &Controller::resolutionChange, this, &MyCamera::resolutionChange);
    connect(&detector, &CameraDetect::detect, this, &MyCamera::detect);
    connect(&detector, &CameraDetect::accessChange, this, &MyCamera::accessChange);
    connect(&detector, &CameraDetect::alive, this, &MyCamera::restartIfStopped);
    // The first of all receivers, so that the others find the newest frame behind the pointer.
    connect(this, &MyCamera::putpix, this, &MyCamera::takeNewestFrame);
    detector.start(InheritPriority);
}

MyCamera::~MyCamera()
{
    stopCapture();
    wait();
}

// ---- GUI thread

void MyCamera::cameraChange(int index, const QString &path)
{
    cameraIndex.store(index, relaxed);
    detector.setWatchedPath(path);
    if (isRunning())
        restartFlag.store(true, relaxed);
    else
        startCapture();
}

void MyCamera::setCameraInfo(int type, int num) { controller.setCameraInfo(type, num); }

void MyCamera::blinkArea(int x, int y) { setCameraInfo(CameraParameter::FocusWindow, x * 256 + y); }

void MyCamera::requestCapture() { captureFlag.store(true, relaxed); }

void MyCamera::closeCamera()
{
    if (isRunning())
        clearRunFlag();
    detector.setWatchedPath(QString());
}

void MyCamera::stopCapture() { clearRunFlag(); }

void MyCamera::restartIfStopped()
{
    // Queued: the camera may have been given up since.
    if (!isRunning() && !detector.watchedPath().isEmpty())
        startCapture();
}

void MyCamera::startCapture()
{
    runFlag.store(true, relaxed);
    start(InheritPriority);
}

void MyCamera::clearRunFlag()
{
    runFlag.store(false, relaxed);
    pause.cut();
}

QPixmap MyCamera::currentPixmap() const
{
    std::lock_guard<std::mutex> lock(newestMutex);
    return newestFrame.isNull() ? currentFrame : newestFrame;
}

void MyCamera::takeNewestFrame()
{
    QPixmap frame;
    {
        std::lock_guard<std::mutex> lock(newestMutex);
        frame.swap(newestFrame);
    }
    if (!frame.isNull())
        currentFrame.swap(frame);
}

CameraInfo MyCamera::readCameraInfo() { return readCameraRecord(); }
int MyCamera::currentFocus() { return readCameraProperty(cv::CAP_PROP_FOCUS); }
int MyCamera::currentGamma() { return readCameraProperty(cv::CAP_PROP_GAMMA); }
int MyCamera::currentGain() { return readCameraProperty(cv::CAP_PROP_GAIN); }
int MyCamera::currentZoom() { return readCameraProperty(cv::CAP_PROP_ZOOM); }
int MyCamera::currentBrightness() { return readCameraProperty(cv::CAP_PROP_BRIGHTNESS); }
int MyCamera::currentExposure() { return readCameraProperty(cv::CAP_PROP_EXPOSURE); }
int MyCamera::currentIris() { return readCameraProperty(cv::CAP_PROP_IRIS); }
int MyCamera::currentRoll() { return readCameraProperty(cv::CAP_PROP_ROLL); }

// ---- Capture thread

void MyCamera::run()
{
    if (!openDevice())
        return;
    streamFrames();
    closeDevice();
}

void MyCamera::streamFrames()
{
    cv::Mat mat;
    while (runFlag.load(relaxed)) {
        {
            QMutexLocker lock(&cameraMutex);
            sharedCapture >> mat;
        }
        if (mat.empty()) {
            qDebug("empty frame");
            return;
        }
        deliver(QPixmap::fromImage(cvMatToQImage(mat)));
        if (restartFlag.exchange(false, relaxed)) {
            closeDevice();
            if (!openDevice())
                return;
        }
    }
}

void MyCamera::deliver(QPixmap pixmap)
{
    if (captureFlag.exchange(false, relaxed))
        emit cappix(pixmap);
    {
        std::lock_guard<std::mutex> lock(newestMutex);
        newestFrame.swap(pixmap);
    }
    emit putpix(&currentFrame);
}

bool MyCamera::openDevice()
{
    // A device opened while the run flag fell stays open: whoever opens or closes next releases it.
    if (!openWithRetries() || !runFlag.load(relaxed))
        return false;
    sharedCapture.set(cv::CAP_PROP_FOURCC, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'));
    sharedCapture.set(cv::CAP_PROP_FRAME_WIDTH, frameWidth());
    sharedCapture.set(cv::CAP_PROP_FRAME_HEIGHT, frameHeight());
    emit sendCameraFirmwareVersion(readFirmwareVersion());
    emit cameraStatusChange(true);
    emit resolutionChange(QStringLiteral("%1*%2").arg(frameWidth()).arg(frameHeight()));
    controller.setEnabled(true);
    return true;
}

bool MyCamera::openWithRetries()
{
    for (int attempt = 0; attempt < openAttempts; ++attempt) {
        if (!runFlag.load(relaxed))
            return false;
        if (sharedCapture.open(cameraIndex.load(relaxed), captureBackend))
            return true;
        pause.rest(retryPeriodMs, [this] { return !runFlag.load(relaxed); });
        releaseDevice();
    }
    return false;
}

void MyCamera::closeDevice()
{
    emit cameraStatusChange(false);
    // Not the "*" of a connected camera.
    emit resolutionChange(QStringLiteral("0x0"));
    controller.setEnabled(false);
    releaseDevice();
}

void MyCamera::releaseDevice()
{
    QMutexLocker lock(&cameraMutex);
    if (sharedCapture.isOpened())
        sharedCapture.release();
}
