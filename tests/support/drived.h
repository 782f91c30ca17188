#pragma once

#include <QDir>

/// Where the program's fixed paths "D:/" and "d:/" lead: the drive itself where the system has
/// drives, elsewhere a folder of that name in the working directory, which is made here.
class DriveD
{
public:
    /// @param spelling  as the path under test writes it, "D:" or "d:"
    explicit DriveD(const QString &spelling)
        : root(spelling + "/")
    {
        if (!hasDrives())
            QDir().mkdir(spelling);
    }
    ~DriveD() { removeNew(); }
    Q_DISABLE_COPY(DriveD)

    static bool hasDrives() { return QDir::isAbsolutePath("D:/"); }

    bool exists() const { return QDir(root).exists(); }
    QString path(const QString &name) const { return root + name; }

    /// The files that came since, by name.
    QStringList newFiles() const
    {
        QStringList names = files();
        for (const QString &name : before)
            names.removeOne(name);
        return names;
    }

    void removeNew() const
    {
        for (const QString &name : newFiles())
            QFile::remove(path(name));
    }

private:
    QStringList files() const { return QDir(root).entryList(QDir::Files, QDir::Name); }

    QString root;
    QStringList before = files();
};
