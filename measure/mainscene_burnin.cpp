#include "measure/burnin.h"
#include "measure/mainscene.h"

#include <QPainter>

// Not the scene is rendered: handles, crosshair lines, the focus area and the shape under
// construction stay out of the picture.
void MainScene::renderItems(QPaintDevice *device) const
{
    QPainter painter(device);
    for (const Base *record : items_)
        burnIn(painter, *record, imageScale_);
}
