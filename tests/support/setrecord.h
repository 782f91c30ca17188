#pragma once

#include "simulator/simulatedcapture.h"

#include <QStringList>

/// What the simulated microscope was told since the record was made or cleared: "property=value",
/// in order.
class SetRecord
{
public:
    SetRecord() { clear(); }
    void clear()
    {
        simulatedMicroscope().takeSets();
        texts.clear();
    }
    const QStringList &all()
    {
        for (const auto &[property, value] : simulatedMicroscope().takeSets())
            texts << QString("%1=%2").arg(property).arg(value, 0, 'f', 0);
        return texts;
    }
    bool has(const QString &text) { return all().contains(text); }

private:
    QStringList texts;
};
