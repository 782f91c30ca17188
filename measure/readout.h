#pragma once

#include <QList>
#include <QString>

/// One line of a label.
struct ReadoutValue
{
    QString format;     ///< "Len = %1%2": %1 the number, %2 the unit; with its own line end if any
    double value = 0.0; ///< in scene units, square scene units or degrees
    bool isArea = false;
    bool isAngle = false; ///< degrees whatever the unit
};

using Readout = QList<ReadoutValue>;

/// Unit codes of a read-out, as the records, the labels and the unit box use them.
namespace Unit {
enum Code { Text = 0, Pixel = 1, Degree = 2, Millimetre = 3, Micrometre = 4, Mil = 5 };
}

/// One line "name = %1%2" without a line end.
ReadoutValue length(const QString &name, double value);
ReadoutValue area(const QString &name, double value);
ReadoutValue angle(const QString &name, double degrees);

/// The value with a line end behind it.
ReadoutValue endLine(ReadoutValue value);

/// Puts a line end behind every value but the last.
Readout lines(Readout values);

/// The text of one value: general form with six significant digits, the suffix right behind it.
/// Areas take the calibration once and the image scale squared, with the plain length suffix.
/// @param unit         unit code; text and unknown codes give an empty string
/// @param calibration  micrometres per picture pixel
/// @param imageScale   picture pixels per scene unit
QString formatReadout(const ReadoutValue &value, int unit, double calibration, double imageScale);

/// A real length in scene units; 0 unless the unit is mm, um or mil.
double lengthInScene(double length, int unit, double calibration, double imageScale);
