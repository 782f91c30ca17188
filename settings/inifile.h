#pragma once

#include <QSettings>
#include <QTemporaryDir>

#include <memory>

/// One of the settings files, for as long as it is read or changed.
///
/// The toolkit works on a copy among the temporary files, for two reasons.
///
/// It builds any type that an "@Variant(...)" in an INI file names, containers with a length of the
/// file's choosing and nested without end included: one line of rubbish can end the program. Of
/// such values the program writes colours and points alone, so in every other one the bracket is
/// replaced in the copy, and it reads as plain text.
///
/// And when the disk is full it takes a file that it could only write in part for a whole one and
/// puts it in the place of the old one.
class IniFile
{
public:
    enum Purpose { Read, Change };

    /// An absent file is an empty one. So is, for good, anything but a file of at most 16 MiB.
    IniFile(const QString &path, Purpose purpose);

    QSettings *operator->() const { return settings.get(); }
    QSettings &operator*() const { return *settings; }

    /// Puts the changed copy in the place of the file, which a kill or a failed write leaves as it
    /// was. To be called last.
    void store();

private:
    QString path;
    bool isReplaceable = false;
    QTemporaryDir folder;
    std::unique_ptr<QSettings> settings; // on a file in the folder
};
