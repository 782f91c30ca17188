#include "measure/readout.h"

#include <QChar>

namespace {

/// How a unit shows a value in scene units.
struct UnitRow
{
    const char *suffix;
    bool inPicture;     ///< in picture pixels, not scene units
    bool calibrated;    ///< the calibration counts
    double micrometres; ///< in one unit
    double squareMicrometres;
};

// Index = unit code.
constexpr UnitRow units[] = {
    {"", false, false, 1.0, 1.0}, // free text
    {"px", true, false, 1.0, 1.0},         {"\u00b0", false, false, 1.0, 1.0},
    {"mm", true, true, 1000.0, 1000000.0}, {"um", true, true, 1.0, 1.0},
    {"mil", true, true, 25.4, 645.16},
};

QString fill(const QString &format, double number, const char *suffix)
{
    return format.arg(number, 0, 'g', -1, QChar(' ')).arg(QString::fromUtf8(suffix));
}

ReadoutValue named(const QString &name, double value, bool isArea, bool isAngle)
{
    return {name + QLatin1String(" = %1%2"), value, isArea, isAngle};
}

} // namespace

ReadoutValue length(const QString &name, double value) { return named(name, value, false, false); }

ReadoutValue area(const QString &name, double value) { return named(name, value, true, false); }

ReadoutValue angle(const QString &name, double degrees)
{
    return named(name, degrees, false, true);
}

ReadoutValue endLine(ReadoutValue value)
{
    value.format += QLatin1Char('\n');
    return value;
}

Readout lines(Readout values)
{
    for (int i = 0; i + 1 < values.size(); ++i)
        values[i] = endLine(values[i]);
    return values;
}

QString formatReadout(const ReadoutValue &value, int unit, double calibration, double imageScale)
{
    if (value.isAngle)
        return fill(value.format, value.value, units[Unit::Degree].suffix);
    if (unit < Unit::Pixel || unit > Unit::Mil)
        return {};

    const UnitRow &row = units[unit];
    double number = value.value;
    // An area takes the calibration once, not squared.
    if (row.calibrated)
        number *= calibration;
    if (row.inPicture)
        number *= imageScale;
    if (row.inPicture && value.isArea)
        number *= imageScale;
    number /= value.isArea ? row.squareMicrometres : row.micrometres;
    return fill(value.format, number, row.suffix);
}

double lengthInScene(double length, int unit, double calibration, double imageScale)
{
    if (unit < Unit::Text || unit > Unit::Mil || !units[unit].calibrated)
        return 0.0;
    return length * units[unit].micrometres / imageScale / calibration;
}
