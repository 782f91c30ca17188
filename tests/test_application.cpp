#include "workbench/application.h"

#include <QtTest>

class TestApplication : public QObject
{
    Q_OBJECT

private slots:
    void preparesForScreensOfAnyDensity();
    void noDialogHasAHelpButton();
};

void TestApplication::preparesForScreensOfAnyDensity()
{
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling));
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
    QCOMPARE(QGuiApplication::highDpiScaleFactorRoundingPolicy(),
             Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void TestApplication::noDialogHasAHelpButton()
{
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_DisableWindowContextHelpButton));
}

int main(int argc, char *argv[])
{
    prepareApplication();
    TestApplication test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_application.moc"
