#include "settings/inifile.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

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

} // namespace

QString safeIniFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return path;
    QFile file(path);
    if (!info.isFile() || info.size() > maximumBytes || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    file.close();
    // With its length: rubbish holds zeros, at which the other form of the call would stop.
    QString text = QString::fromLatin1(bytes.constData(), bytes.size());

    static const QRegularExpression foreign = foreignBracket();
    if (!text.contains(foreign))
        return path;
    QSaveFile safe(path);
    if (!safe.open(QIODevice::WriteOnly))
        return {};
    safe.write(text.replace(foreign, "\\1[").toLatin1());
    return safe.commit() ? path : QString();
}
