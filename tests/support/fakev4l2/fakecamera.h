#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// The folder of the fake V4L2 cameras of this process; README.md tells what lies in it.
class FakeV4l2
{
public:
    FakeV4l2();
    QString path(const QString &name) const { return directory.filePath(name); }

    /// Nodes as the kernel makes them for a camera that is plugged in: one that captures, and
    /// behind it one for metadata. Both take the lowest numbers that nobody has or holds.
    /// @param cameraName  its folder, see FakeCamera
    /// @param place  where it sits on its bus, for instance "usb1/1-2"
    /// @returns the number of the capture node
    int plug(const QString &cameraName, const QString &place, const QByteArray &friendlyName);
    /// Takes the nodes of a plugged camera away.
    void unplug(const QString &cameraName);

    /// How many descriptors of cameras are open.
    int heldDescriptors() const;

private:
    int freeNumber() const;

    QTemporaryDir directory;
};

/// A camera, plugged in or not.
class FakeCamera
{
public:
    /// A camera with all the controls of the parameter table, in its units.
    FakeCamera(FakeV4l2 &system, const QString &name);

    /// Gives it frames of a size, all of one colour.
    void addFrames(QSize size, int blue, int green, int red);
    /// One of "stall", "busy", "broken", "empty", "refuse".
    void setMisbehaving(const QString &how, bool on);
    void removeControl(const QString &name);
    void setControl(const QString &name, int value);
    int control(const QString &name) const;
    /// What was asked of it, in order: "MJPG 1920x1080", "gain 5".
    QStringList log() const;
    void forgetLog();

private:
    QStringList controls() const;
    void writeControls(const QStringList &lines);
    QString path(const QString &name) const { return folder + '/' + name; }

    QString folder;
};
