#pragma once

#include "tests/support/system.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

/// A fresh, empty working directory for as long as the object lives.
class WorkingDirectory
{
public:
    WorkingDirectory() { QDir::setCurrent(directory.path()); }
    ~WorkingDirectory() { QDir::setCurrent(before); }
    Q_DISABLE_COPY(WorkingDirectory)

    QString path(const QString &name) const { return directory.filePath(name); }

    /// The bytes of a file in the directory, or an empty array. Where the system ends the lines of
    /// settings and lists with CR and LF, they end with LF alone here; where it keeps the keys of a
    /// settings file in the order they were written in, they are sorted as on the others.
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QByteArray bytes = file.readAll();
        if (!onWindows())
            return bytes;
        if (name.endsWith(QLatin1String(".csv")))
            return QByteArray(bytes).replace("\r\n", "\n");
        return name.endsWith(QLatin1String(".ini"))
                   ? sorted(QByteArray(bytes).replace("\r\n", "\n"))
                   : bytes;
    }

    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }

private:
    /// Sections and the keys in each by name.
    static QByteArray sorted(const QByteArray &settings)
    {
        QMap<QByteArray, QMap<QByteArray, QByteArray>> sections;
        QByteArray section;
        for (const QByteArray &line : settings.split('\n')) {
            if (line.startsWith('['))
                section = line;
            else if (!line.isEmpty())
                sections[section][line.left(line.indexOf('='))] = line;
        }
        QByteArray text;
        for (auto it = sections.cbegin(); it != sections.cend(); ++it) {
            text += text.isEmpty() ? it.key() : '\n' + it.key();
            text += '\n' + it->values().join('\n') + '\n';
        }
        return text;
    }

    QString before = QDir::currentPath();
    QTemporaryDir directory;
};
