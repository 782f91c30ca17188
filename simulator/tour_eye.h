#pragma once

#include <QImage>
#include <QPointF>

namespace tour {

/// Where the edge near a place lies in a picture, as the eye sees it: at the steepest change of
/// brightness within three pixels.
/// @param guess   in pixels; (0, 0) is the corner of the first pixel, not its middle
/// @param across  unit vector at right angles to the edge
/// @throws Error when there is no edge to be seen
QPointF edgeNear(const QImage &picture, QPointF guess, QPointF across);

} // namespace tour
