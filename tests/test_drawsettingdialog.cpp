#include "settings/drawsettingdialog.h"
#include "settings/settingsfiles.h"
#include "tests/support/modaldialog.h"
#include "tests/support/workingdirectory.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QTranslator>

#include <memory>

namespace {

/// The dialog on the screen and what it announces.
struct Form
{
    DrawSettingDialog dialog;
    QSignalSpy changes{&dialog, &DrawSettingDialog::drawChange};

    Form() { dialog.show(); }

    template<class Control>
    Control *control(const QString &name) const
    {
        return dialog.findChild<Control *>(name);
    }
    QPushButton *button(const QString &name) const { return control<QPushButton>(name); }
};

} // namespace

class TestDrawSettingDialog : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<WorkingDirectory>(); }
    void cleanup() { directory.reset(); }

    void withoutAFileTheLowerLimitsAreShown();
    void withoutAFileOpeningStoresNothing();
    void storedValuesAreShown();
    void valuesOutsideTheRangeAreClampedInTheFileToo_data();
    void valuesOutsideTheRangeAreClampedInTheFileToo();
    void aValueThatIsNoColourShowsBlack();
    void aDistanceThatIsNoNumberShowsZero();
    void rangesAndSteps_data();
    void rangesAndSteps();
    void aSpinBoxStoresAndAnnounces_data();
    void aSpinBoxStoresAndAnnounces();
    void aDoubleSpinBoxStoresAndAnnounces_data();
    void aDoubleSpinBoxStoresAndAnnounces();
    void spacingsOfLinesMayBeNegativeAndThoseOfRingsMayNot();
    void theCheckBoxStoresAndAnnouncesOnClicksAlone();
    void aColourButtonStoresAndAnnounces_data();
    void aColourButtonStoresAndAnnounces();
    void theColourDialogStartsWithWhite();
    void cancellingTheColourChangesNothing();
    void theSaveDirectoryIsChosenInADialog();
    void cancellingTheDirectoryChangesNothing();
    void thePathCannotBeTyped();
    void theStyleOfThePathButton();
    void aChangeIsInTheFileAtOnce();
    void theEnterKeyOpensNothing();
    void theFormInChinese();
    void theFormInEnglish();

private:
    std::unique_ptr<WorkingDirectory> directory;
};

void TestDrawSettingDialog::withoutAFileTheLowerLimitsAreShown()
{
    Form f;
    for (const char *name : {"spinBox", "spinBox_2", "spinBox_4"})
        QCOMPARE(f.control<QSpinBox>(name)->value(), 1);
    QCOMPARE(f.control<QSpinBox>("spinBox_3")->value(), 13);
    for (const char *name : {"pushButton", "pushButton_2", "pushButton_3", "pushButton_5"})
        QCOMPARE(f.button(name)->styleSheet(), QString("background-color: rgb(0,0,0)"));
    QCOMPARE(f.control<QLineEdit>("lineEdit")->text(), QString("D:/"));
    QVERIFY(!f.control<QCheckBox>("checkBox")->isChecked());
    for (const char *name :
         {"doubleSpinBox", "doubleSpinBox_2", "doubleSpinBox_3", "doubleSpinBox_4"})
        QCOMPARE(f.control<QDoubleSpinBox>(name)->value(), 0.0);
    QVERIFY(f.dialog.autoFillBackground());
}

void TestDrawSettingDialog::withoutAFileOpeningStoresNothing()
{
    Form f;
    QVERIFY(!QFile::exists("config.ini"));
}

void TestDrawSettingDialog::storedValuesAreShown()
{
    writeDrawSetting(PointWidth, 2);
    writeDrawSetting(PointColor, QColor(1, 2, 3));
    writeDrawSetting(LineWidth, 3);
    writeDrawSetting(LineColor, QColor(4, 5, 6));
    writeDrawSetting(TextSize, 20);
    writeDrawSetting(TextColor, QColor(7, 8, 9));
    writeDrawSetting(Antialiasing, true);
    writeDrawSetting(QuickSavePath, "E:/pictures");
    writeDrawSetting(DrawCrossWidth, 2);
    writeDrawSetting(DrawCrossColor, QColor(250, 251, 252));
    writeDrawSetting(RingDistance1, 1.25);
    writeDrawSetting(RingDistance2, 2.5);
    writeDrawSetting(LineDistance1, -3.75);
    writeDrawSetting(LineDistance2, 99.99);
    const QByteArray file = directory->read("config.ini");

    Form f;
    QCOMPARE(f.control<QSpinBox>("spinBox")->value(), 2);
    QCOMPARE(f.button("pushButton")->styleSheet(), QString("background-color: rgb(1,2,3)"));
    QCOMPARE(f.control<QSpinBox>("spinBox_2")->value(), 3);
    QCOMPARE(f.button("pushButton_2")->styleSheet(), QString("background-color: rgb(4,5,6)"));
    QCOMPARE(f.control<QSpinBox>("spinBox_3")->value(), 20);
    QCOMPARE(f.button("pushButton_3")->styleSheet(), QString("background-color: rgb(7,8,9)"));
    QVERIFY(f.control<QCheckBox>("checkBox")->isChecked());
    QCOMPARE(f.control<QLineEdit>("lineEdit")->text(), QString("E:/pictures"));
    QCOMPARE(f.control<QSpinBox>("spinBox_4")->value(), 2);
    QCOMPARE(f.button("pushButton_5")->styleSheet(), QString("background-color: rgb(250,251,252)"));
    QCOMPARE(f.control<QDoubleSpinBox>("doubleSpinBox")->value(), 1.25);
    QCOMPARE(f.control<QDoubleSpinBox>("doubleSpinBox_2")->value(), 2.5);
    QCOMPARE(f.control<QDoubleSpinBox>("doubleSpinBox_3")->value(), -3.75);
    QCOMPARE(f.control<QDoubleSpinBox>("doubleSpinBox_4")->value(), 99.99);
    QCOMPARE(directory->read("config.ini"), file);
}

void TestDrawSettingDialog::valuesOutsideTheRangeAreClampedInTheFileToo_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("text too large") << QByteArray("TextSize=40") << QByteArray("TextSize=32");
    QTest::newRow("text too small") << QByteArray("TextSize=5") << QByteArray("TextSize=13");
    QTest::newRow("width too large") << QByteArray("LineWidth=9") << QByteArray("LineWidth=3");
    QTest::newRow("width of none") << QByteArray("LineWidth=0") << QByteArray("LineWidth=1");
    QTest::newRow("width no number") << QByteArray("LineWidth=wide") << QByteArray("LineWidth=1");
    QTest::newRow("ring below zero")
        << QByteArray("RingDistance1=-5.25") << QByteArray("RingDistance1=0");
    QTest::newRow("ring too far") << QByteArray("RingDistance2=1e300")
                                  << QByteArray("RingDistance2=99.99");
    QTest::newRow("line too far below")
        << QByteArray("LineDistance1=-100") << QByteArray("LineDistance1=-99.99");
    QTest::newRow("line without end")
        << QByteArray("LineDistance2=inf") << QByteArray("LineDistance2=99.99");
}

void TestDrawSettingDialog::valuesOutsideTheRangeAreClampedInTheFileToo()
{
    QFETCH(QByteArray, stored);
    QFETCH(QByteArray, expected);
    directory->write("config.ini", "[draw]\n" + stored + "\n");
    Form f;
    QCOMPARE(directory->read("config.ini"), "[draw]\n" + expected + "\n");
}

void TestDrawSettingDialog::aValueThatIsNoColourShowsBlack()
{
    directory->write("config.ini", "[draw]\nPointColor=nonsense\nLineColor=@Variant(\\0\n");
    Form f;
    QCOMPARE(f.button("pushButton")->styleSheet(), QString("background-color: rgb(0,0,0)"));
    QCOMPARE(f.button("pushButton_2")->styleSheet(), QString("background-color: rgb(0,0,0)"));
}

void TestDrawSettingDialog::aDistanceThatIsNoNumberShowsZero()
{
    directory->write("config.ini", "[draw]\nLineDistance1=nan\nRingDistance1=far\n");
    Form f;
    QCOMPARE(f.control<QDoubleSpinBox>("doubleSpinBox_3")->value(), 0.0);
    QCOMPARE(f.control<QDoubleSpinBox>("doubleSpinBox")->value(), 0.0);
}

void TestDrawSettingDialog::rangesAndSteps_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("lowest");
    QTest::addColumn<double>("highest");
    QTest::addColumn<double>("step");
    QTest::newRow("points") << "spinBox" << 1.0 << 3.0 << 1.0;
    QTest::newRow("lines") << "spinBox_2" << 1.0 << 3.0 << 1.0;
    QTest::newRow("text") << "spinBox_3" << 13.0 << 32.0 << 1.0;
    QTest::newRow("crosshair") << "spinBox_4" << 1.0 << 3.0 << 1.0;
    QTest::newRow("first of rings") << "doubleSpinBox" << 0.0 << 99.99 << 0.01;
    QTest::newRow("second of rings") << "doubleSpinBox_2" << 0.0 << 99.99 << 0.01;
    QTest::newRow("first of lines") << "doubleSpinBox_3" << -99.99 << 99.99 << 0.01;
    QTest::newRow("second of lines") << "doubleSpinBox_4" << -99.99 << 99.99 << 0.01;
}

void TestDrawSettingDialog::rangesAndSteps()
{
    QFETCH(QString, name);
    Form f;
    const auto *control = f.control<QAbstractSpinBox>(name);
    QTEST(control->property("minimum").toDouble(), "lowest");
    QTEST(control->property("maximum").toDouble(), "highest");
    QTEST(control->property("singleStep").toDouble(), "step");
}

void TestDrawSettingDialog::aSpinBoxStoresAndAnnounces_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("value");
    QTest::newRow("points") << "spinBox" << int(PointWidth) << 2;
    QTest::newRow("lines") << "spinBox_2" << int(LineWidth) << 2;
    QTest::newRow("text") << "spinBox_3" << int(TextSize) << 14;
    QTest::newRow("crosshair") << "spinBox_4" << int(DrawCrossWidth) << 2;
}

void TestDrawSettingDialog::aSpinBoxStoresAndAnnounces()
{
    QFETCH(QString, name);
    QFETCH(int, key);
    QFETCH(int, value);
    Form f;
    QTest::keyClick(f.control<QSpinBox>(name), Qt::Key_Up);
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(int(f.changes[0][0].value<DrawProperty>()), key);
    QCOMPARE(f.changes[0][1].value<QVariant>(), QVariant(value));
    QCOMPARE(readDrawSettings()[DrawProperty(key)].toInt(), value);
}

void TestDrawSettingDialog::aDoubleSpinBoxStoresAndAnnounces_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("key");
    QTest::newRow("first of rings") << "doubleSpinBox" << int(RingDistance1);
    QTest::newRow("second of rings") << "doubleSpinBox_2" << int(RingDistance2);
    QTest::newRow("first of lines") << "doubleSpinBox_3" << int(LineDistance1);
    QTest::newRow("second of lines") << "doubleSpinBox_4" << int(LineDistance2);
}

void TestDrawSettingDialog::aDoubleSpinBoxStoresAndAnnounces()
{
    QFETCH(QString, name);
    QFETCH(int, key);
    Form f;
    QTest::keyClick(f.control<QDoubleSpinBox>(name), Qt::Key_Up);
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(int(f.changes[0][0].value<DrawProperty>()), key);
    QCOMPARE(f.changes[0][1].value<QVariant>(), QVariant(0.01));
    QCOMPARE(readDrawSettings()[DrawProperty(key)].toDouble(), 0.01);
}

void TestDrawSettingDialog::spacingsOfLinesMayBeNegativeAndThoseOfRingsMayNot()
{
    Form f;
    f.control<QDoubleSpinBox>("doubleSpinBox_3")->setValue(-5.25);
    QCOMPARE(readDrawSettings()[LineDistance1].toDouble(), -5.25);
    auto *ring = f.control<QDoubleSpinBox>("doubleSpinBox");
    ring->setValue(-5.25);
    QCOMPARE(ring->value(), 0.0);
    QVERIFY(!readDrawSettings()[RingDistance1].isValid());
}

void TestDrawSettingDialog::theCheckBoxStoresAndAnnouncesOnClicksAlone()
{
    Form f;
    auto *box = f.control<QCheckBox>("checkBox");
    box->setChecked(true);
    QCOMPARE(f.changes.count(), 0);
    box->click();
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(f.changes[0][0].value<DrawProperty>(), Antialiasing);
    QCOMPARE(f.changes[0][1].value<QVariant>(), QVariant(false));
    box->click();
    QCOMPARE(f.changes[1][1].value<QVariant>(), QVariant(true));
    QCOMPARE(directory->read("config.ini"), QByteArray("[draw]\nAntialiasing=true\n"));
}

void TestDrawSettingDialog::aColourButtonStoresAndAnnounces_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("key");
    QTest::newRow("points") << "pushButton" << int(PointColor);
    QTest::newRow("lines") << "pushButton_2" << int(LineColor);
    QTest::newRow("text") << "pushButton_3" << int(TextColor);
    QTest::newRow("crosshair") << "pushButton_5" << int(DrawCrossColor);
}

void TestDrawSettingDialog::aColourButtonStoresAndAnnounces()
{
    QFETCH(QString, name);
    QFETCH(int, key);
    Form f;
    const NextDialog<QColorDialog> choice([](QColorDialog *dialog) {
        dialog->setCurrentColor(QColor(10, 200, 30));
        dialog->accept();
    });
    f.button(name)->click();
    QVERIFY(choice.wasAsked());
    QCOMPARE(f.button(name)->styleSheet(), QString("background-color: rgb(10,200,30)"));
    const QBrush brush = f.button(name)->palette().brush(QPalette::Disabled, QPalette::Button);
    QCOMPARE(brush, QBrush(QColor(10, 200, 30), Qt::SolidPattern));
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(int(f.changes[0][0].value<DrawProperty>()), key);
    QCOMPARE(f.changes[0][1].value<QVariant>(), QVariant(QColor(10, 200, 30)));
    QCOMPARE(readDrawSettings()[DrawProperty(key)], QVariant(QColor(10, 200, 30)));
}

void TestDrawSettingDialog::theColourDialogStartsWithWhite()
{
    writeDrawSetting(PointColor, QColor(Qt::red));
    Form f;
    const NextDialog<QColorDialog> choice([](QColorDialog *dialog) {
        QCOMPARE(dialog->currentColor(), QColor(Qt::white));
        QVERIFY(!dialog->parentWidget());
        dialog->reject();
    });
    f.button("pushButton")->click();
    QVERIFY(choice.wasAsked());
}

void TestDrawSettingDialog::cancellingTheColourChangesNothing()
{
    writeDrawSetting(PointColor, QColor(Qt::red));
    const QByteArray file = directory->read("config.ini");
    Form f;
    const NextDialog<QColorDialog> choice([](QColorDialog *dialog) {
        dialog->setCurrentColor(Qt::green);
        dialog->reject();
    });
    f.button("pushButton")->click();
    QVERIFY(choice.wasAsked());
    QCOMPARE(f.button("pushButton")->styleSheet(), QString("background-color: rgb(255,0,0)"));
    QCOMPARE(f.changes.count(), 0);
    QCOMPARE(directory->read("config.ini"), file);
}

void TestDrawSettingDialog::theSaveDirectoryIsChosenInADialog()
{
    QDir().mkdir("here");
    QDir().mkdir("there");
    const QString here = QDir("here").absolutePath();
    const QString there = QDir("there").absolutePath();
    writeDrawSetting(QuickSavePath, here);
    Form f;
    const NextDialog<QFileDialog> choice([&](QFileDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QString::fromUtf8("选择"));
        QCOMPARE(dialog->parentWidget(), &f.dialog);
        QCOMPARE(dialog->directory().absolutePath(), here);
        QVERIFY(dialog->testOption(QFileDialog::ShowDirsOnly));
        dialog->findChild<QLineEdit *>("fileNameEdit")->setText(there);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    f.button("pushButton_4")->click();
    QVERIFY(choice.wasAsked());
    QCOMPARE(f.control<QLineEdit>("lineEdit")->text(), there);
    QCOMPARE(f.changes.count(), 1);
    QCOMPARE(f.changes[0][0].value<DrawProperty>(), QuickSavePath);
    QCOMPARE(f.changes[0][1].value<QVariant>(), QVariant(there));
    QCOMPARE(readDrawSettings()[QuickSavePath], QVariant(there));
}

void TestDrawSettingDialog::cancellingTheDirectoryChangesNothing()
{
    Form f;
    const NextDialog<QFileDialog> choice([](QFileDialog *dialog) { dialog->reject(); });
    f.button("pushButton_4")->click();
    QVERIFY(choice.wasAsked());
    QCOMPARE(f.control<QLineEdit>("lineEdit")->text(), QString("D:/"));
    QCOMPARE(f.changes.count(), 0);
    QVERIFY(!QFile::exists("config.ini"));
}

void TestDrawSettingDialog::thePathCannotBeTyped()
{
    Form f;
    QVERIFY(!f.control<QLineEdit>("lineEdit")->isEnabled());
}

void TestDrawSettingDialog::theStyleOfThePathButton()
{
    Form f;
    QCOMPARE(f.button("pushButton_4")->text(), QString("..."));
    QCOMPARE(f.button("pushButton_4")->styleSheet(),
             QString("QPushButton { border: none; background-color: lightgray; }\n"
                     "QPushButton:hover { #78aafa }\n"
                     "QPushButton:pressed { #4678c8 }"));
}

void TestDrawSettingDialog::aChangeIsInTheFileAtOnce()
{
    Form f;
    f.control<QSpinBox>("spinBox_3")->setValue(20);
    QCOMPARE(directory->read("config.ini"), QByteArray("[draw]\nTextSize=20\n"));
    f.control<QSpinBox>("spinBox_3")->setValue(21);
    QCOMPARE(directory->read("config.ini"), QByteArray("[draw]\nTextSize=21\n"));
}

void TestDrawSettingDialog::theEnterKeyOpensNothing()
{
    Form f;
    const NextDialog<QDialog> any([](QDialog *dialog) { dialog->reject(); });
    QTest::keyClick(f.control<QSpinBox>("spinBox"), Qt::Key_Return);
    QVERIFY(!any.wasAsked());
    QVERIFY(f.dialog.isVisible());
}

namespace {

QStringList captions(const Form &f)
{
    QStringList captions = {f.dialog.windowTitle()};
    for (const char *name : {"groupBox", "groupBox_2", "groupBox_3", "groupBox_4"})
        captions += f.control<QGroupBox>(name)->title();
    for (int i = 1; i <= 13; ++i)
        captions += f.control<QLabel>(i == 1 ? "label" : QString("label_%1").arg(i))->text();
    return captions << f.control<QCheckBox>("checkBox")->text();
}

} // namespace

void TestDrawSettingDialog::theFormInChinese()
{
    const QStringList expected = {"绘制设置",       "绘制线配置",   "十字线配置",
                                  "同心圆间距配置", "直线间距配置", "点粗",
                                  "点颜色",         "线宽",         "线颜色",
                                  "字体大小",       "字体颜色",     "十字线宽",
                                  "十字线颜色",     "间距1",        "间距2",
                                  "间距1",          "间距2",        "快速保存路径设置",
                                  "反走样"};
    QCOMPARE(captions(Form()), expected);
}

void TestDrawSettingDialog::theFormInEnglish()
{
    QTranslator english;
    QVERIFY(english.load(":/language_en.qm"));
    QCoreApplication::installTranslator(&english);
    // The spacings have no English.
    const QStringList expected = {"DrawSetting",     "DrawingLineConfiguration",
                                  "CrossLineConfig", "同心圆间距配置",
                                  "直线间距配置",    "PointWidth:",
                                  "PointColor:",     "LineWidth:",
                                  "LineColor:",      "FontSize:",
                                  "FontColor:",      "CrossWidth",
                                  "CrossColor",      "间距1",
                                  "间距2",           "间距1",
                                  "间距2",           "QuickSavePath",
                                  "Antialiasing"};
    QCOMPARE(captions(Form()), expected);
}

int main(int argc, char **argv)
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication app(argc, argv);
    TestDrawSettingDialog test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_drawsettingdialog.moc"
