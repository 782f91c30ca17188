#pragma once

#include "fusion/fusionsweep.h"

#include <opencv2/core.hpp>

#include <QPixmap>
#include <QThread>

/// Fuses the frames of a focus sweep, one after the other, into one picture that is sharp
/// everywhere.
///
/// The thread is started once per frame, does one step and ends; `finished` tells that the step is
/// done. Between `setPix` and `finished` no operation may be called. A frame that the library
/// refuses (another size than the running result, a null picture, fewer than 10 rows) counts as not
/// accepted: one warning tells it, and the running result stays as it was.
class PicAnalyse : public QThread
{
    Q_OBJECT

public:
    explicit PicAnalyse(QObject *parent = nullptr);
    /// Waits for a step that is under way.
    ~PicAnalyse() override;

    /// Hands over the next frame of the sweep and starts the step.
    void setPix(const QPixmap &pix);
    /// The running result; null before the first frame of a sweep has been analysed.
    QPixmap pix() const;
    /// Forgets the sweep: the next frame is the first of a new one.
    void reset();
    /// With true every frame handed in is also written to a numbered file.
    void setDebugSave(bool save);

signals:
    void tempPix(const QPixmap &pix, int number);

public slots:
    void anaFinished();

protected:
    void run() override;

private:
    FusionSweep::Outcome fuse();

    QPixmap framePix;
    QPixmap resultPix;     ///< the running result; its pixels also stand in `sweep`
    qint32 frameCount = 0; ///< frames received since the last reset, skipped ones too
    FusionSweep sweep;
    bool debugSave = false;
    cv::Mat frame; ///< the newest frame's pixels, kept as a buffer
};
