#include "workbench/tavorin.h"

#include "camera/mycamera.h"
#include "fusion/picanalyse.h"
#include "workbench/messages.h"
#include "workbench/showwidget.h"

#include <QMessageBox>
#include <QTimer>

void Tavorin::startFusion(FusionData range)
{
    ui.page_4->setStartEnabled(false);
    sweep = range;
    camera->setCameraInfo(CameraParameter::AutoFocus, 0);
    camera->setCameraInfo(CameraParameter::Focus, sweep.startPos);
    // The way to the first position may be long; from then on the analysis gives the motor its
    // time.
    QTimer::singleShot(500, this, &Tavorin::fusionWork);
}

void Tavorin::fusionWork()
{
    picAnalyse->setPix(camera->currentPixmap());
    ui.page_4->setProgress(fusionFrameCount);
    ++fusionFrameCount;
    sweep.startPos += sweep.step;
    // Without a look at the range: the motor may go one step beyond it.
    camera->setCameraInfo(CameraParameter::Focus, sweep.startPos);
}

void Tavorin::AnalyseOver()
{
    if (!fusionPage)
        fusionPage = addPicturePage(QString());
    fusionPage->setPicture(picAnalyse->pix());
    ui.page_4->setProgress(fusionFrameCount);
    ++fusionFrameCount;

    if (isWithinSweep(sweep.startPos)) {
        picAnalyse->setPix(camera->currentPixmap());
        sweep.startPos += sweep.step;
        if (isWithinSweep(sweep.startPos))
            camera->setCameraInfo(CameraParameter::Focus, sweep.startPos);
        return;
    }

    picAnalyse->reset();
    fusionPage = nullptr;
    fusionFrameCount = 0;
    ui.page_4->setStartEnabled(true);
    refreshControls();
    QMessageBox::information(this, messages::notice, messages::fusionDone);
}

bool Tavorin::isWithinSweep(int position) const
{
    if (sweep.step > 0)
        return position <= sweep.endPos;
    return sweep.step < 0 && position >= sweep.endPos;
}
