#include "settings/colourbutton.h"

#include <QColorDialog>

QString colourSheet(const QColor &colour)
{
    return QString("background-color: rgb(%1,%2,%3)")
        .arg(colour.red())
        .arg(colour.green())
        .arg(colour.blue());
}

QColor askForColour() { return QColorDialog::getColor(Qt::white, nullptr, QString()); }
