#pragma once

#include <QMetaType>

/// A focus sweep as the operator set it up.
struct FusionData
{
    int startPos = 0; ///< first focus position; while a sweep runs, the next one to take
    int endPos = 0;   ///< last focus position, inclusive
    int step = 0;     ///< signed distance between positions, negative on the way down
    int waitMs = 0;   ///< the panel's wait interval; the sweep does not read it
};
Q_DECLARE_METATYPE(FusionData)
