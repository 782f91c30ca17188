#include "tests/support/fakev4l2/fakecamera.h"

#include <opencv2/imgcodecs.hpp>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <linux/videodev2.h>

#include <algorithm>
#include <cstdio>

namespace {

QByteArray readWhole(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeWhole(const QString &path, const QByteArray &bytes)
{
    // Renamed into place: the camera may be reading it.
    QFile file(path + ".new");
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    file.write(bytes);
    file.close();
    std::rename(QFile::encodeName(path + ".new").constData(), QFile::encodeName(path).constData());
}

QStringList lines(const QByteArray &text)
{
    return QString::fromUtf8(text).split('\n', Qt::SkipEmptyParts);
}

QString node(int number) { return QStringLiteral("video%1").arg(number); }

struct ControlRow
{
    const char *name;
    unsigned id;
    int minimum;
    int maximum;
    int value;
};

constexpr ControlRow controlRows[] = {
    {"brightness", V4L2_CID_BRIGHTNESS, 0, 100, 56},
    {"contrast", V4L2_CID_CONTRAST, 0, 100, 50},
    {"saturation", V4L2_CID_SATURATION, 0, 99, 50},
    {"hue", V4L2_CID_HUE, 0, 99, 50},
    {"auto_white_balance", V4L2_CID_AUTO_WHITE_BALANCE, 0, 1, 1},
    {"red_balance", V4L2_CID_RED_BALANCE, 0, 100, 3},
    {"gamma", V4L2_CID_GAMMA, 0, 4096, 668},
    {"gain", V4L2_CID_GAIN, 0, 50, 0},
    {"sharpness", V4L2_CID_SHARPNESS, 0, 20, 4},
    {"backlight", V4L2_CID_BACKLIGHT_COMPENSATION, 0, 63, 12},
    {"exposure_auto", V4L2_CID_EXPOSURE_AUTO, 0, 3, 3},
    {"exposure", V4L2_CID_EXPOSURE_ABSOLUTE, 1, 80000, 156},
    {"pan", V4L2_CID_PAN_ABSOLUTE, 0, 65535, 0},
    {"tilt", V4L2_CID_TILT_ABSOLUTE, -1000, 1000, 7},
    {"focus", V4L2_CID_FOCUS_ABSOLUTE, 0, 400, 200},
    {"focus_auto", V4L2_CID_FOCUS_AUTO, 0, 1, 1},
    {"zoom", V4L2_CID_ZOOM_ABSOLUTE, 1, 130, 1},
    {"iris", V4L2_CID_IRIS_ABSOLUTE, 0, 40960, 5570},
    {"roll", 0xf, 0, 4096, 269}, // no V4L2 control
};

} // namespace

FakeV4l2::FakeV4l2()
{
    QDir folder(directory.path());
    for (const char *name : {"class", "devices", "dev", "held", "cameras"})
        folder.mkpath(name);
    qputenv("FAKE_V4L2_ROOT", QFile::encodeName(directory.path()));
}

int FakeV4l2::freeNumber() const
{
    int number = 0;
    while (!QDir(path("held")).entryList({node(number) + ".*"}).isEmpty() ||
           QDir(path("dev")).entryList(QDir::AllEntries | QDir::System).contains(node(number)))
        ++number;
    return number;
}

int FakeV4l2::plug(const QString &cameraName, const QString &place, const QByteArray &friendlyName)
{
    const QString device = path("devices/" + place);
    const auto addNode = [&](const QByteArray &index) {
        const int number = freeNumber();
        const QString folder = device + "/video4linux/" + node(number);
        QDir().mkpath(folder);
        writeWhole(folder + "/name", friendlyName + '\n');
        writeWhole(folder + "/index", index + '\n');
        QFile::link(device, folder + "/device");
        QFile::link(path("cameras/" + cameraName), path("dev/" + node(number)));
        QFile::link(folder, path("class/" + node(number)));
        return number;
    };
    const int capture = addNode("0");
    addNode("1");
    return capture;
}

void FakeV4l2::unplug(const QString &cameraName)
{
    const QString camera = path("cameras/" + cameraName);
    const QDir nodes(path("dev"));
    for (const QString &name : nodes.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (QFile::symLinkTarget(nodes.filePath(name)) != camera)
            continue;
        QFile::remove(nodes.filePath(name));
        const QString folder = QFile::symLinkTarget(path("class/" + name));
        QFile::remove(path("class/" + name));
        QDir(folder).removeRecursively();
    }
}

int FakeV4l2::heldDescriptors() const
{
    return int(QDir(path("held")).entryList(QDir::Files).size());
}

FakeCamera::FakeCamera(FakeV4l2 &system, const QString &name)
    : folder(system.path("cameras/" + name))
{
    QDir().mkpath(folder);
    QStringList rows;
    for (const ControlRow &row : controlRows)
        rows.append(QStringLiteral("%1 %2 %3 %4 %5")
                        .arg(row.name)
                        .arg(row.id, 0, 16)
                        .arg(row.minimum)
                        .arg(row.maximum)
                        .arg(row.value));
    writeControls(rows);
}

void FakeCamera::addFrames(QSize size, int blue, int green, int red)
{
    const cv::Mat picture(size.height(), size.width(), CV_8UC3, cv::Scalar(blue, green, red));
    std::vector<uchar> jpeg;
    cv::imencode(".jpg", picture, jpeg);
    writeWhole(path(QStringLiteral("%1x%2.jpg").arg(size.width()).arg(size.height())),
               QByteArray(reinterpret_cast<const char *>(jpeg.data()), int(jpeg.size())));
}

void FakeCamera::setMisbehaving(const QString &how, bool on)
{
    if (on)
        writeWhole(path(how), QByteArray());
    else
        QFile::remove(path(how));
}

QStringList FakeCamera::controls() const { return lines(readWhole(path("controls"))); }

void FakeCamera::writeControls(const QStringList &rows)
{
    writeWhole(path("controls"), rows.join('\n').toUtf8() + '\n');
}

void FakeCamera::removeControl(const QString &name)
{
    QStringList rows = controls();
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&](const QString &row) { return row.startsWith(name + ' '); }),
               rows.end());
    writeControls(rows);
}

void FakeCamera::setControl(const QString &name, int value)
{
    QStringList rows = controls();
    for (QString &row : rows)
        if (row.startsWith(name + ' '))
            row = row.section(' ', 0, 3) + QStringLiteral(" %1").arg(value);
    writeControls(rows);
}

int FakeCamera::control(const QString &name) const
{
    const QStringList row = controls().filter(QRegularExpression('^' + name + ' '));
    return row.isEmpty() ? -1 : row.first().section(' ', 4).toInt();
}

QStringList FakeCamera::log() const { return lines(readWhole(path("log"))); }

void FakeCamera::forgetLog() { QFile::remove(path("log")); }
