#pragma once

#include <QString>

/// The disk is full behind so many bytes of every file, for as long as the object lives.
class FullDisk
{
public:
    explicit FullDisk(int bytes);
    ~FullDisk();
    Q_DISABLE_COPY(FullDisk)

private:
    unsigned long long before;
};

/// Nobody may write in the folder, not even an administrator, for as long as the object lives.
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(const QString &path);
    ~ReadOnlyFolder();
    Q_DISABLE_COPY(ReadOnlyFolder)

private:
    QString folder;
    bool wasRoot;
};
