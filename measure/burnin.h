#pragma once

class Base;
class QPainter;

/// Paints a finished shape and its label in picture pixels, anew from its record. Widths of pens
/// and sizes of letters stay as they are. Parts whose handles are missing are left out.
/// @param scale  picture pixels per scene unit
void burnIn(QPainter &painter, const Base &record, double scale);
