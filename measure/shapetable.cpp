#include "measure/shapetable.h"

#include "measure/pathitems.h"
#include "measure/readout.h"
#include "measure/segmentitems.h"
#include "measure/shapes.h"

namespace {

template<class Record>
Base *record(MainScene *scene, int unit, int axisLock)
{
    return new Record(scene, unit, axisLock);
}

template<class Item>
GraphicsConnect *item(Base *record, GraphicsText *text, MainScene *scene)
{
    return new Item(record, text, scene, nullptr);
}

// Index = type number. Tool 13 exists, a shape for it does not.
constexpr ShapeRow table[] = {
    {},
    {"Line", Free, SceneUnit, 1, record<Line>, item<GraphicsLine>},
    {"HLine", KeepY, SceneUnit, 1, record<HLine>, item<GraphicsHLine>},
    {"VLine", KeepX, SceneUnit, 1, record<VLine>, item<GraphicsVLine>},
    {"Par", Free, SceneUnit, 2, record<Par>, item<GraphicsPar>},
    {"Ver", Free, SceneUnit, 2, record<Ver>, item<GraphicsVer>},
    {"Ang", Free, Unit::Degree, 3, record<Ang>, item<GraphicsAng>},
    {"Rect", Free, SceneUnit, 1, record<Rect>, item<GraphicsRect>},
    {"Arc", Free, SceneUnit, 2, record<Arc>, item<GraphicsArc>},
    {"Cir", Free, SceneUnit, 2, record<Cir>, item<GraphicsCir>},
    {"Ring", Free, SceneUnit, 2, record<Ring>, item<GraphicsRing>},
    {"Poly", Free, SceneUnit, 9, record<Poly>, item<GraphicsPoly>},
    {"LCir", Free, SceneUnit, 3, record<LCir>, item<GraphicsLCir>},
    {},
    {"TCir", Free, SceneUnit, 5, record<TCir>, item<GraphicsTCir>},
    {"LText", Free, Unit::Text, 1, record<LText>, item<GraphicsLText>},
    {"LCali", Free, SceneUnit, 1, record<LCali>, item<GraphicsLCali>},
    {"CCali", Free, SceneUnit, 2, record<CCali>, item<GraphicsCCali>},
};
constexpr int rowCount = sizeof(table) / sizeof(table[0]);
static_assert(rowCount == 18, "one row per tool number");

} // namespace

const ShapeRow &shapeRow(int type) { return table[type >= 0 && type < rowCount ? type : 0]; }

Base *makeShape(int type, MainScene *scene, int sceneUnit)
{
    const ShapeRow &row = shapeRow(type);
    if (!row.makeRecord)
        return nullptr;
    return row.makeRecord(scene, row.unit == SceneUnit ? sceneUnit : row.unit, row.axisLock);
}
