#include "settings/settingsfiles.h"
#include "tests/support/workingdirectory.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <cstdio>

namespace {

constexpr int kills = 60;
constexpr const char *files[] = {"config.ini", "calibration.ini", "corss.ini"};

/// One of two states of each file. The lists differ in length and in every row.
void writeAll(bool second)
{
    CalibrationRecords calibrations;
    CrossRecords crosses;
    for (int i = 0; i < (second ? 60 : 40); ++i) {
        calibrations.append({second ? "bbb" : "a", double(i), second ? "mm" : "um", i * 0.1});
        crosses.append(
            {1 + second, 1 + second, second ? Qt::red : Qt::blue, QPointF(i, i), second, !second});
    }
    writeDrawSetting(QuickSavePath, QString(second ? 3000 : 5000, second ? 'b' : 'a'));
    writeCalibrations(calibrations);
    writeCrosses(crosses);
}

/// The program that is killed: tells each round with a line.
int writeForEver()
{
    for (bool second = false;; second = !second) {
        writeAll(second);
        std::puts("written");
        std::fflush(stdout);
    }
}

/// Starts it; what it leaves among the temporary files goes with the working directory.
void startWriter(QProcess &program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"TMPDIR", "TMP", "TEMP"})
        environment.insert(name, QDir::currentPath());
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(), {"write"});
}

} // namespace

class TestSettingsKill : public QObject
{
    Q_OBJECT

private slots:
    void aKillLeavesTheOldOrTheNewFile();
    void aLockWithoutAnOwnerHoldsNothingUp();
};

void TestSettingsKill::aKillLeavesTheOldOrTheNewFile()
{
    const WorkingDirectory directory;
    QMap<QString, QByteArrayList> states;
    for (const bool second : {true, false, true}) { // the first round leaves no older rows
        writeAll(second);
        for (const char *name : files)
            states[name] += directory.read(name);
    }
    QRandomGenerator random(1);
    for (int i = 0; i < kills; ++i) {
        QProcess program;
        startWriter(program);
        QVERIFY(program.waitForStarted());
        // It gets on, whatever its forerunner has left.
        if (i % 2 == 0)
            QVERIFY(program.waitForReadyRead(20000));
        QTest::qWait(random.bounded(60));
        program.kill();
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        for (const char *name : files)
            QVERIFY2(states[name].contains(directory.read(name)), name);
    }
}

void TestSettingsKill::aLockWithoutAnOwnerHoldsNothingUp()
{
    // What a killed program leaves that took a lock and could not sign it any more.
    const WorkingDirectory directory;
    for (const char *name : files)
        directory.write(QString(name) + ".lock", "");
    QProcess program;
    startWriter(program);
    QVERIFY(program.waitForReadyRead(20000));
    program.kill();
    QVERIFY(program.waitForFinished());
    for (const char *name : files)
        QVERIFY(!directory.read(name).isEmpty());
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == "write")
        return writeForEver();
    TestSettingsKill test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_settingskill.moc"
