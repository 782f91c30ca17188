#pragma once

#include "measure/base.h"
#include "measure/graphicsconnect.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "measure/readout.h"
#include "measure/shapetable.h"
#include "tests/support/scenemouse.h"

#include <QImage>
#include <QVector>

#include <memory>
#include <vector>

/// A scene of 1000 by 800 with shapes placed as by clicks, painted on demand.
class ShapeScene
{
public:
    ShapeScene()
    {
        scene.setSceneRect(0, 0, 1000, 800);
        QObject::connect(&scene, &MainScene::itemUpdate, &scene, [this] { ++updates; });
    }
    Q_DISABLE_COPY(ShapeScene)

    /// A finished shape: every click but the first moves the last handle before it adds one.
    Base *place(int type, const QVector<QPointF> &clicks, int unit = Unit::Pixel,
                double calibration = 1.0)
    {
        Base *record = begin(type, unit);
        for (int i = 0; i < clicks.size(); ++i) {
            if (i > 0)
                record->moveLastPoint(clicks[i]);
            if (i == 0 || i + 1 < clicks.size())
                record->addPoint(clicks[i], calibration);
        }
        return record;
    }

    /// A record without handles.
    Base *begin(int type, int unit = Unit::Pixel)
    {
        records.emplace_back(makeShape(type, &scene, unit));
        return records.back().get();
    }

    /// One paint of the whole scene onto white.
    QImage paint() { return painted(scene); }

    void removeAll() { records.clear(); }

    MainScene scene;
    int updates = 0; // announcements by itemUpdate

private:
    std::vector<std::unique_ptr<Base>> records;
};

/// The item of a shape in its own class.
template<class Item>
Item *itemOf(const Base *record)
{
    return static_cast<Item *>(record->item());
}
