#pragma once

#include <memory>

class Base;
class GraphicsConnect;
class GraphicsText;
class MainScene;

enum AxisLock { Free = 0, KeepX = 1, KeepY = 2 };

/// Unit of a new record that stands for "the scene's".
constexpr int SceneUnit = -1;

/// All that distinguishes one kind of record from another.
struct ShapeRow
{
    const char *name = nullptr; ///< null: no shape has this number
    AxisLock axisLock = Free;
    int unit = SceneUnit;
    int fullAbove = 0; ///< full when the handles exceed this number
    Base *(*makeRecord)(MainScene *scene, int unit, int axisLock) = nullptr;
    GraphicsConnect *(*makeItem)(Base *record, GraphicsText *text, MainScene *scene) = nullptr;
};

/// Row of a type number 1 to 17; an empty row for 13 and for any number outside.
const ShapeRow &shapeRow(int type);

/// A new record of a type in its scene, or null where no shape has the number.
/// @param sceneUnit  unit code for the shapes that take the scene's
Base *makeShape(int type, MainScene *scene, int sceneUnit);
