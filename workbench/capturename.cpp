#include "workbench/capturename.h"

#include <QDir>

namespace {

constexpr int prefixLength = 7; // "capture"
constexpr int digits = 5;
constexpr int nameLength = prefixLength + digits + 4; // with ".jpg"
constexpr int numberOfNames = 100000;

} // namespace

QString nextCaptureName(const QString &directory)
{
    int next = 0;
    const QStringList names = QDir(directory).entryList({QStringLiteral("*.jpg")});
    for (const QString &name : names) {
        // The prefix is not compared: every name of this length counts.
        if (name.size() == nameLength)
            next = qMax(next, name.midRef(prefixLength, digits).toInt() + 1);
    }
    if (next >= numberOfNames)
        return {};
    return QStringLiteral("capture%1.jpg").arg(next, digits, 10, QLatin1Char('0'));
}
