#include "fusion/picanalyse.h"

#include "fusion/pictureconversion.h"

#include <opencv2/imgproc.hpp>

#include <QElapsedTimer>
#include <QtDebug>

#include <iostream>

namespace {

/// What the motor is given to settle on its next position.
constexpr qint64 settlingMs = 100;

/// The pixels of a pixmap in BGR order. Reads them where they are: `qImageToCvMat` would detach
/// the image from its pixmap first, which copies it.
void toFrame(const QPixmap &pixmap, cv::Mat &frame)
{
    QImage image = pixmap.toImage();
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied: {
        const cv::Mat pixels(image.height(), image.width(), CV_8UC4,
                             const_cast<uchar *>(image.constBits()), size_t(image.bytesPerLine()));
        cv::cvtColor(pixels, frame, cv::COLOR_BGRA2BGR);
        break;
    }
    default:
        frame = qImageToCvMat(image).clone();
    }
}

/// Gives a pixmap the pixels of a frame, whose order it keeps, unlike `cvMatToQImage`. The pixmap's
/// memory is used again unless somebody else still shows it.
void toPixmap(const cv::Mat &frame, QPixmap &pixmap)
{
    QImage image = pixmap.toImage();
    pixmap = QPixmap();
    const QSize size(frame.cols, frame.rows);
    if (!image.isDetached() || image.size() != size || image.format() != QImage::Format_RGB32)
        image = QImage(size, QImage::Format_RGB32);
    CV_Assert(!image.isNull());
    cv::Mat pixels(frame.size(), CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
    cv::cvtColor(frame, pixels, cv::COLOR_BGR2BGRA);
    pixmap = QPixmap::fromImage(std::move(image));
}

} // namespace

PicAnalyse::PicAnalyse(QObject *parent)
    : QThread(parent)
    , sweep(std::cout)
{}

PicAnalyse::~PicAnalyse() { wait(); }

void PicAnalyse::setPix(const QPixmap &pix)
{
    framePix = pix;
    start(QThread::InheritPriority);
}

QPixmap PicAnalyse::pix() const { return resultPix; }

void PicAnalyse::reset()
{
    resultPix = QPixmap();
    frameCount = 0;
    sweep.reset();
    frame.release();
}

void PicAnalyse::setDebugSave(bool save) { debugSave = save; }

void PicAnalyse::anaFinished() {}

void PicAnalyse::run()
{
    // The drive letter is part of the path: elsewhere the save fails and nothing is written.
    if (debugSave)
        framePix.save(QStringLiteral("d:/%1.jpg").arg(frameCount));
    ++frameCount;
    if (resultPix.isNull()) {
        msleep(static_cast<unsigned long>(settlingMs));
        resultPix = framePix;
        sweep.reset();
        return;
    }
    QElapsedTimer sinceStart;
    sinceStart.start();
    FusionSweep::Outcome outcome = FusionSweep::Outcome::Dropped;
    try {
        outcome = fuse();
    } catch (const std::exception &e) {
        qWarning("Frame %d of the sweep is not fused: %s", frameCount,
                 QByteArray(e.what()).simplified().constData());
    }
    // A fast fusion must not take the settling time away.
    const qint64 spent = outcome == FusionSweep::Outcome::Skipped ? 0 : sinceStart.elapsed();
    if (spent < settlingMs)
        msleep(static_cast<unsigned long>(settlingMs - spent));
}

FusionSweep::Outcome PicAnalyse::fuse()
{
    if (sweep.isEmpty()) {
        toFrame(resultPix, frame);
        sweep.add(frame);
    }
    toFrame(framePix, frame);
    const FusionSweep::Outcome outcome = sweep.add(frame);
    if (outcome == FusionSweep::Outcome::Accepted)
        toPixmap(sweep.result(), resultPix);
    return outcome;
}
