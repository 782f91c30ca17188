#include "settings/drawproperty.h"

#include <iterator>

namespace {

constexpr const char *names[] = {
    "PointWidth",    "PointColor",    "LineWidth",     "LineColor",      "TextSize",
    "TextColor",     "Antialiasing",  "QuickSavePath", "DrawCrossWidth", "DrawCrossColor",
    "RingDistance1", "RingDistance2", "LineDistance1", "LineDistance2",
};
static_assert(std::size(names) == drawPropertyCount);
static_assert(LineDistance2 + 1 == drawPropertyCount);

} // namespace

const char *drawPropertyName(DrawProperty key)
{
    return key >= 0 && key < drawPropertyCount ? names[key] : nullptr;
}
