#include "measure/base.h"
#include "measure/mainscene.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>

#include <memory>
#include <utility>

// The shapes as a JSON document.

namespace {

/// Runs the queued events during a long work. At first whenever it is asked to; once that has cost
/// a while, no turn comes before the work has gone on for as long as the last one took. So events,
/// which paint more shapes each time, get no more than half of the time.
class EventPump
{
public:
    bool isDue() const { return spentMs < 100 || sinceRun.elapsed() >= lastMs; }

    void run()
    {
        QElapsedTimer clock;
        clock.start();
        QCoreApplication::processEvents();
        lastMs = clock.elapsed();
        spentMs += lastMs;
        sinceRun.start();
    }

private:
    QElapsedTimer sinceRun;
    qint64 lastMs = 0;
    qint64 spentMs = 0;
};

} // namespace

QByteArray MainScene::toJson() const
{
    QJsonArray shapes;
    for (const Base *record : items_)
        shapes.append(record->toJson(imageScale_));
    return QJsonDocument(shapes).toJson(QJsonDocument::Compact);
}

/// One run of loadJson.
class MainScene::ShapeLoader
{
public:
    explicit ShapeLoader(MainScene *target)
        : scene(target)
    {}

    void load(const QJsonArray &shapes)
    {
        for (const QJsonValue &shape : shapes) {
            loadShape(shape.toObject());
            if (!scene)
                return;
        }
        if (!unannounced.isEmpty())
            runEvents();
    }

private:
    void loadShape(const QJsonObject &shape);
    bool pump(Base *record);
    void runEvents();

    QPointer<MainScene> scene;
    EventPump events;
    QList<Base *> unannounced; // their labels are final once the scene has been painted
};

void MainScene::ShapeLoader::loadShape(const QJsonObject &shape)
{
    std::unique_ptr<Base> created(scene->makeRecord(shape["type"].toInt(0)));
    Base *record = created.get();
    if (!record)
        return;
    const QJsonArray points = shape["point"].toArray();
    for (int i = 0; i < points.size(); ++i) {
        const QJsonObject point = points[i].toObject();
        const QPointF pos(point["x"].toDouble(0.0), point["y"].toDouble(0.0));
        // The first point has made two handles; the second is for the moving one.
        if (i == 1)
            record->moveLastPoint(pos);
        else
            record->addPoint(pos, scene->scale);
        if (i == 0) {
            emit scene->itemInsert(record);
            scene->items_.append(created.release());
            if (!pump(record))
                return;
        }
        if (record->isFull()) {
            if (record->pointCount() == 2) {
                unannounced.append(record);
                if (!pump(record))
                    return;
            }
            record->moveLastPoint(pos);
            // Surplus points only move the last handle: the last of them decides.
            if (i > 0 && i < points.size() - 1)
                i = points.size() - 2;
        }
    }
    if (record->isType(15))
        record->setTextContent(shape["text"].toString());
}

/// Lets queued events run if it is time to.
/// @returns whether the record is still there afterwards
bool MainScene::ShapeLoader::pump(Base *record)
{
    if (events.isDue())
        runEvents();
    return scene && scene->itemIndex(record) >= 0;
}

void MainScene::ShapeLoader::runEvents()
{
    events.run();
    const QList<Base *> records = std::exchange(unannounced, {});
    for (Base *record : records) {
        if (scene && scene->itemIndex(record) >= 0)
            emit scene->itemUpdate(record);
    }
}

void MainScene::loadJson(const QByteArray &json)
{
    loads.append(json);
    if (loads.size() > 1)
        return;
    const QPointer<MainScene> alive(this);
    while (!loads.isEmpty()) {
        ShapeLoader(this).load(QJsonDocument::fromJson(loads.constFirst()).array());
        if (!alive)
            return;
        loads.removeFirst();
    }
}
