#include "camera/controller.h"

#include "camera/capture.h"

#include <QMutexLocker>

QMutex parameterMutex;

Controller::Controller(int batchPeriod, QObject *parent)
    : QThread(parent)
    , batchPeriodMs(batchPeriod)
{
    // A change may be posted between the thread's last look and its end. It must not wait for the
    // next one.
    connect(this, &QThread::finished, this, [this] {
        if (hasWork())
            startIfNeeded();
    });
}

Controller::~Controller()
{
    setEnabled(false);
    wait();
}

void Controller::setCameraInfo(int type, int num)
{
    const int index = cameraParameterIndex(type);
    if (index < 0 || !sharedCapture.isOpened())
        return;
    {
        QMutexLocker lock(&parameterMutex);
        pendingMask.fetch_or(quint32(type), std::memory_order_relaxed);
        values[size_t(index)].store(num, std::memory_order_relaxed);
    }
    startIfNeeded();
}

int Controller::readParameter(int type)
{
    QMutexLocker lock(&parameterMutex);
    const int index = cameraParameterIndex(type);
    // The shutter is read with the whole record only.
    if (index < 0 || !cameraParameters[size_t(index)].field || type == CameraParameter::Shutter)
        return -1;
    return readCameraProperty(cameraParameters[size_t(index)].property);
}

void Controller::startIfNeeded()
{
    if (!isRunning())
        start(InheritPriority);
}

bool Controller::hasWork() const
{
    return isEnabled() && pendingMask.load(std::memory_order_relaxed) != 0;
}

void Controller::run()
{
    while (hasWork()) {
        applyPending();
        msleep(static_cast<unsigned long>(batchPeriodMs));
    }
}

void Controller::applyPending()
{
    quint32 mask = 0;
    {
        QMutexLocker lock(&parameterMutex);
        mask = pendingMask.exchange(0, std::memory_order_relaxed);
    }
    // The numbers are read with no lock: one posted since goes out early, and again next time.
    for (size_t i = 0; i < cameraParameters.size(); ++i)
        if (mask & quint32(cameraParameters[i].type))
            apply(cameraParameters[i], values[i].load(std::memory_order_relaxed));
}

void Controller::apply(const CameraParameterRow &row, int num)
{
    // A frame size is two properties, and changing it restarts the stream.
    if (row.type == CameraParameter::Resolution) {
        if (num < 0 || num >= int(resolutionTable.size()))
            return;
        const QSize size = resolutionTable[size_t(num)];
        QMutexLocker lock(&cameraMutex);
        applyResolution(size.width(), size.height());
        return;
    }
    // The motor obeys only while the camera does not focus by itself.
    if (row.type == CameraParameter::Focus)
        sharedCapture.set(cv::CAP_PROP_AUTOFOCUS, 0.0);
    sharedCapture.set(row.property, double(num));
}

void Controller::applyResolution(int width, int height)
{
    frameWidth_.store(width, std::memory_order_relaxed);
    frameHeight_.store(height, std::memory_order_relaxed);
    sharedCapture.set(cv::CAP_PROP_FRAME_WIDTH, width);
    sharedCapture.set(cv::CAP_PROP_FRAME_HEIGHT, height);
    emit resolutionChange(QStringLiteral("%1*%2").arg(width).arg(height));
}
