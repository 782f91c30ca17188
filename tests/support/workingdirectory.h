#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A fresh, empty working directory for as long as the object lives.
class WorkingDirectory
{
public:
    WorkingDirectory() { QDir::setCurrent(directory.path()); }
    ~WorkingDirectory() { QDir::setCurrent(before); }
    Q_DISABLE_COPY(WorkingDirectory)

    QString path(const QString &name) const { return directory.filePath(name); }

    /// The bytes of a file in the directory, or an empty array.
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }

private:
    QString before = QDir::currentPath();
    QTemporaryDir directory;
};
