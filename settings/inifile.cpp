#include "settings/inifile.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>

namespace {

constexpr qint64 maximumBytes = 16 * 1024 * 1024;

/// A pattern of the word, however the escapes of an INI file spell its characters.
QString spelled(const QString &word)
{
    // What the toolkit skips between two characters: quotes with the blanks behind them, escaped
    // line ends, unknown escapes, and the bytes beyond ASCII that may make up a byte order mark.
    const QString skipped =
        R"((?:"[ \t]*|\\x(?![0-9a-fA-F])|\\[^abfnrtvx"?'\\0-7][\r\n]*|[\x80-\xff])*+)";
    QString pattern;
    for (const QChar c : word)
        pattern += QString(R"((?:%1|\\x[0-9a-fA-F]*(?i:%2)|\\[0-7]*%3))")
                       .arg(QRegularExpression::escape(c))
                       .arg(c.unicode(), 2, 16)
                       .arg(c.unicode(), 0, 8) +
                   skipped;
    return pattern;
}

/// The opening bracket of a value that the toolkit would build and the program never wrote.
QRegularExpression foreignBracket()
{
    const QString bracket = R"((?:\(|\\x[0-9a-fA-F]*28|\\[0-7]*50))";
    // The type numbers of QColor, with one of its six forms, and of QPointF as QSettings spells
    // them.
    const QString ours = R"((?!\\0\\0\\0\\x(?:43\\(?:0|x[1-5])|1a)(?![0-9a-fA-F])))";
    return QRegularExpression("(" + spelled("@") + "(?:" + spelled("Variant") + "|" +
                              spelled("DateTime") + "))" + bracket + ours);
}

/// The bytes without what must not reach the toolkit.
QByteArray madeSafe(const QByteArray &bytes)
{
    static const QRegularExpression foreign = foreignBracket();
    // With its length: rubbish holds zeros, at which the other form of the call would stop.
    QString text = QString::fromLatin1(bytes.constData(), bytes.size());
    return text.contains(foreign) ? text.replace(foreign, "\\1[").toLatin1() : bytes;
}

/// Whether a file has a line for each key. Values hold no line ends, so that what is cut off is
/// short of a line or of the last one's end.
bool isWhole(const QByteArray &bytes, QStringList keys)
{
    // A key of a section without a name is written like one of no section, and may share its line.
    for (QString &key : keys)
        if (key.lastIndexOf('/') == 0)
            key.remove(0, 1);
    keys.removeDuplicates();
    const QByteArrayList lines = bytes.split('\n');
    const auto isKey = [](const QByteArray &line) {
        return !line.trimmed().isEmpty() && !line.startsWith('[');
    };
    return lines.last().isEmpty() &&
           std::count_if(lines.begin(), lines.end(), isKey) >= keys.size();
}

bool write(QFileDevice &file, const QByteArray &bytes)
{
    // The end of a QSaveFile does not tell whether its buffer could be written.
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace

IniFile::IniFile(const QString &fileName, Purpose purpose)
    : path(fileName)
{
    const QFileInfo info(path);
    QFile original(path);
    QByteArray bytes;
    if (info.exists()) {
        if (!info.isFile() || info.size() > maximumBytes || !original.open(QIODevice::ReadOnly)) {
            settings = std::make_unique<QSettings>(QString(), QSettings::IniFormat);
            return;
        }
        bytes = original.readAll();
    }
    const QByteArray safe = madeSafe(bytes);
    QFile copy(folder.filePath("copy.ini"));
    isReplaceable = write(copy, safe);
    QString opened = copy.fileName();
    if (!isReplaceable) // no room for a copy, but a harmless file can still be read
        opened = purpose == Read && safe == bytes ? path : QString();
    settings = std::make_unique<QSettings>(opened, QSettings::IniFormat);
}

void IniFile::store()
{
    if (!isReplaceable)
        return;
    isReplaceable = false;
    const QStringList keys = settings->allKeys();
    QFile copy(settings->fileName());
    settings.reset(); // writes it
    if (!copy.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = copy.readAll();
    QSaveFile file(path);
    if (isWhole(bytes, keys) && write(file, bytes))
        file.commit();
}
