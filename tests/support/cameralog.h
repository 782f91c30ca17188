#pragma once

#include "camera/mycamera.h"

#include <QImage>
#include <QObject>
#include <QStringList>

#include <vector>

/// What a camera says, as it arrives on the GUI thread: "status true", "resolution 0x0",
/// "firmware 5", "detect usb-1,usb-2". Frames are kept apart.
class CameraLog : public QObject
{
public:
    explicit CameraLog(MyCamera &camera)
    {
        connect(&camera, &MyCamera::cameraStatusChange, this,
                [this](bool on) { said.append(on ? "status true" : "status false"); });
        connect(&camera, &MyCamera::resolutionChange, this,
                [this](const QString &text) { said.append("resolution " + text); });
        connect(&camera, &MyCamera::sendCameraFirmwareVersion, this,
                [this](double version) { said.append("firmware " + QString::number(version)); });
        connect(&camera, &MyCamera::detect, this,
                [this](const QStringList &, const QStringList &paths) {
                    said.append("detect " + paths.join(','));
                });
        connect(&camera, &MyCamera::putpix, this, [this](QPixmap *pixmap) {
            pointer = pixmap;
            frame = *pixmap;
            ++frames;
            if (keepColours)
                colours.push_back(colourOf(frame));
        });
        connect(&camera, &MyCamera::cappix, this,
                [this](const QPixmap &pixmap) { captured.push_back(colourOf(pixmap)); });
    }

    int count(const QString &text) const { return said.count(text); }

    /// Colour of the first pixel; transparent for a null picture.
    static QRgb colourOf(const QPixmap &pixmap)
    {
        return pixmap.isNull() ? QRgb(0) : pixmap.toImage().pixel(0, 0);
    }

    QStringList said;
    QPixmap *pointer = nullptr; ///< of the last frame
    QPixmap frame;              ///< the last frame
    int frames = 0;
    bool keepColours = false;
    std::vector<QRgb> colours;  ///< of each frame, on demand
    std::vector<QRgb> captured; ///< of each frame that came by `cappix`
};
