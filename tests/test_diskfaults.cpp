#include "settings/settingsfiles.h"
#include "tests/support/diskfaults.h"
#include "tests/support/workingdirectory.h"
#include "workbench/picturefile.h"

#include <QTest>

#include <memory>

namespace {

constexpr const char *files[] = {"config.ini", "calibration.ini", "corss.ini"};

/// One setting in each file.
void writeAll(const QString &text)
{
    writeFilePath(text);
    writeDrawSetting(QuickSavePath, text);
    writeCalibrations({{text, 1.0, "mm", 2.0}, {text, 3.0, "um", 4.0}});
    writeCrosses({{1, text.size(), Qt::red, {5.0, 0.0}, true, true}, {}});
}

} // namespace

/// Disks that take no writes: nothing is reported, and the old files stay whole.
class TestDiskFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { directory.reset(); }

    void aFullDiskLeavesTheOldFilesWhole();
    void afterAFullDiskWritesGoOn();
    void onAFullDiskAHarmlessFileCanBeRead();
    void aFullDiskLeavesAHostileFileUnreadButWhole();
    void aReadOnlyFolderLeavesTheOldFilesWhole();
    void inAnEmptyReadOnlyFolderNothingIsWritten();
    void aVanishedFolderIsAnEmptyOne();
    void aFullDiskLeavesTheOldPictureWhole();

private:
    QByteArrayList contents() const;
    QStringList names() const { return QDir().entryList(QDir::Files | QDir::Hidden); }

    std::unique_ptr<WorkingDirectory> directory;
    QByteArrayList before;
};

void TestDiskFaults::init()
{
    directory = std::make_unique<WorkingDirectory>();
    writeAll("old");
    before = contents();
}

QByteArrayList TestDiskFaults::contents() const
{
    QByteArrayList bytes;
    for (const char *name : files)
        bytes += directory->read(name);
    return bytes;
}

void TestDiskFaults::aFullDiskLeavesTheOldFilesWhole()
{
    // Full at once, in the middle of the lock, in the middle of the file.
    for (int bytes = 0; bytes < 300; bytes += 7) {
        {
            const FullDisk full(bytes);
            writeAll(QString(1000, 'x'));
        }
        QCOMPARE(contents(), before);
        QCOMPARE(names(), QStringList({"calibration.ini", "config.ini", "corss.ini"}));
    }
    QCOMPARE(readFilePath(), QString("old"));
    QCOMPARE(readCalibrations().size(), 2);
    QCOMPARE(readCrosses().size(), 2);
}

void TestDiskFaults::afterAFullDiskWritesGoOn()
{
    {
        const FullDisk full(20);
        writeAll("new");
    }
    writeAll("new");
    QCOMPARE(readFilePath(), QString("new"));
    QCOMPARE(readCalibrations().value(1).name, QString("new"));
    QCOMPARE(readCrosses().value(0).width, 3);
}

void TestDiskFaults::onAFullDiskAHarmlessFileCanBeRead()
{
    const FullDisk full(0);
    QCOMPARE(readFilePath(), QString("old"));
    QCOMPARE(readCalibrations().value(1).real, 4.0);
    QCOMPARE(readCrosses().value(0).pos, QPointF(5.0, 0.0));
}

void TestDiskFaults::aFullDiskLeavesAHostileFileUnreadButWhole()
{
    // It cannot be made safe, so it is not opened.
    const QByteArray hostile = "[draw]\nLineColor=@Variant(\\0\\0\\0\\x9\\xff\\xff\\xff\\xff)\n"
                               "LineWidth=2\n";
    directory->write("config.ini", hostile);
    {
        const FullDisk full(10);
        writeDrawSetting(LineWidth, 3);
        QVERIFY(!readDrawSettings()[LineWidth].isValid());
    }
    QCOMPARE(directory->read("config.ini"), hostile);
    QCOMPARE(readDrawSettings()[LineWidth].toInt(), 2);
}

void TestDiskFaults::aReadOnlyFolderLeavesTheOldFilesWhole()
{
    {
        const ReadOnlyFolder folder(QDir::currentPath());
        QVERIFY(!QFile("probe").open(QIODevice::WriteOnly));
        writeAll("new");
        QCOMPARE(readFilePath(), QString("old"));
        QCOMPARE(readCalibrations().size(), 2);
    }
    QCOMPARE(contents(), before);
    QCOMPARE(names(), QStringList({"calibration.ini", "config.ini", "corss.ini"}));
}

void TestDiskFaults::inAnEmptyReadOnlyFolderNothingIsWritten()
{
    for (const char *name : files)
        QFile::remove(name);
    {
        const ReadOnlyFolder folder(QDir::currentPath());
        writeAll("new");
        QCOMPARE(readDrawSettings()[QuickSavePath].toString(), QString("D:/"));
    }
    QCOMPARE(names(), QStringList());
}

void TestDiskFaults::aVanishedFolderIsAnEmptyOne()
{
    QDir().mkdir("stick");
    QDir::setCurrent("stick");
    writeAll("stick");
    QDir(directory->path("stick")).removeRecursively();
    writeAll("new");
    QCOMPARE(readFilePath(), QString());
    QCOMPARE(readDrawSettings().size(), 14);
    QVERIFY(readCalibrations().isEmpty());
    QVERIFY(readCrosses().isEmpty());

    QDir::setCurrent(directory->path("."));
    QCOMPARE(contents(), before);
}

void TestDiskFaults::aFullDiskLeavesTheOldPictureWhole()
{
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QVERIFY(writePicture(picture, "picture.jpg", 100, 0.0));
    const QByteArray old = directory->read("picture.jpg");
    picture.fill(Qt::black);
    for (int bytes = 0; bytes < 600; bytes += 50) {
        {
            const FullDisk full(bytes);
            QVERIFY(!writePicture(picture, "picture.jpg", 100, 0.0));
        }
        QCOMPARE(directory->read("picture.jpg"), old);
    }
    QVERIFY(writePicture(picture, "picture.jpg", 100, 0.0));
    QCOMPARE(QImage("picture.jpg").pixelColor(5, 5), QColor(Qt::black));
}

QTEST_GUILESS_MAIN(TestDiskFaults)
#include "test_diskfaults.moc"
