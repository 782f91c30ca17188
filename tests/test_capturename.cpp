#include "tests/support/workingdirectory.h"
#include "workbench/capturename.h"

#include <QtTest>

class TestCaptureName : public QObject
{
    Q_OBJECT

private slots:
    void emptyDirectoryStartsAtZero();
    void absentDirectoryStartsAtZero();
    void nextNumberFollowsTheNames_data();
    void nextNumberFollowsTheNames();
};

void TestCaptureName::emptyDirectoryStartsAtZero()
{
    const WorkingDirectory directory;
    QCOMPARE(nextCaptureName(QDir::currentPath()), QString("capture00000.jpg"));
}

void TestCaptureName::absentDirectoryStartsAtZero()
{
    QCOMPARE(nextCaptureName("/no/such/directory"), QString("capture00000.jpg"));
}

void TestCaptureName::nextNumberFollowsTheNames_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("next");

    QTest::newRow("one digit") << QStringList{"capture00000.jpg"} << "capture00001.jpg";
    QTest::newRow("two digits") << QStringList{"capture00009.jpg"} << "capture00010.jpg";
    QTest::newRow("three digits") << QStringList{"capture00099.jpg"} << "capture00100.jpg";
    QTest::newRow("four digits") << QStringList{"capture00999.jpg"} << "capture01000.jpg";
    QTest::newRow("five digits") << QStringList{"capture09999.jpg"} << "capture10000.jpg";
    QTest::newRow("six digits leave no name") << QStringList{"capture99999.jpg"} << "";
    QTest::newRow("gaps are not filled")
        << QStringList{"capture00001.jpg", "capture00007.jpg"} << "capture00008.jpg";
    QTest::newRow("a name of 15 characters does not count")
        << QStringList{"capture00007.jpg", "holiday2019.jpg"} << "capture00008.jpg";
    QTest::newRow("a name of 17 characters does not count")
        << QStringList{"capture000009.jpg"} << "capture00000.jpg";
    QTest::newRow("the first seven characters are not compared")
        << QStringList{"abcdefg00120.jpg"} << "capture00121.jpg";
    QTest::newRow("no number counts as zero")
        << QStringList{"capturesomed.jpg"} << "capture00001.jpg";
    QTest::newRow("other formats do not count")
        << QStringList{"capture00004.png"} << "capture00000.jpg";
}

void TestCaptureName::nextNumberFollowsTheNames()
{
    QFETCH(QStringList, names);
    const WorkingDirectory directory;
    for (const QString &name : names)
        directory.write(name, "x");
    QTEST(nextCaptureName(QDir::currentPath()), "next");
}

QTEST_GUILESS_MAIN(TestCaptureName)
#include "test_capturename.moc"
