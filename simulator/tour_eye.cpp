#include "simulator/tour_eye.h"

#include "simulator/tour_operator.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tour {

namespace {

constexpr double reach = 3.0;
constexpr double step = 0.125;
constexpr int halfLength = 3;       // of the piece of the edge that is looked at, in pixels
constexpr double leastChange = 8.0; // grey levels a pixel

/// Brightness between pixels, 0 to 255.
double greyAt(const QImage &picture, QPointF place)
{
    const QPointF inside = place - QPointF(0.5, 0.5);
    const int x = qBound(0, int(std::floor(inside.x())), picture.width() - 2);
    const int y = qBound(0, int(std::floor(inside.y())), picture.height() - 2);
    const double fx = inside.x() - x;
    const double fy = inside.y() - y;
    const auto grey = [&](int column, int row) { return qGray(picture.pixel(column, row)); };
    return (1 - fy) * ((1 - fx) * grey(x, y) + fx * grey(x + 1, y)) +
           fy * ((1 - fx) * grey(x, y + 1) + fx * grey(x + 1, y + 1));
}

/// Mean over a piece of the line through a place at right angles to `across`.
double greyOfLine(const QImage &picture, QPointF place, QPointF across)
{
    const QPointF along(-across.y(), across.x());
    double sum = 0;
    for (int i = -halfLength; i <= halfLength; ++i)
        sum += greyAt(picture, place + i * along);
    return sum / (2 * halfLength + 1);
}

} // namespace

QPointF edgeNear(const QImage &picture, QPointF guess, QPointF across)
{
    constexpr int samples = int(2 * reach / step) + 1;
    std::array<double, samples> changes;
    const auto distance = [](int i) { return i * step - reach; };
    for (int i = 0; i < samples; ++i) {
        const QPointF place = guess + distance(i) * across;
        changes[i] = std::abs(greyOfLine(picture, place + across / 2, across) -
                              greyOfLine(picture, place - across / 2, across));
    }
    const double steepest = *std::max_element(changes.begin(), changes.end());
    if (steepest < leastChange)
        throw Error(QString("no edge to be seen at %1, %2").arg(guess.x()).arg(guess.y()));

    double weights = 0;
    double moments = 0;
    for (int i = 0; i < samples; ++i) {
        // The slope decides, the grain beside it does not.
        const double weight = std::max(0.0, changes[i] - steepest / 8);
        weights += weight;
        moments += weight * distance(i);
    }
    return guess + moments / weights * across;
}

} // namespace tour
