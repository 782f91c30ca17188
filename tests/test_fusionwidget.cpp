#include "fusion/fusionwidget.h"
#include "simulator/simulatedcapture.h"
#include "tests/support/panel.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QtTest>

#include <memory>

class TestFusionWidget : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        simulatedMicroscope().release();
        panel = std::make_unique<FusionWidget>();
        log.clear();
        connect(panel.get(), &FusionWidget::changeFocus, this,
                [this](int value) { log << QString("focus %1").arg(value); });
        connect(panel.get(), &FusionWidget::startFusion, this, [this](FusionData sweep) {
            log << QString("sweep %1 to %2 by %3, wait %4")
                       .arg(sweep.startPos)
                       .arg(sweep.endPos)
                       .arg(sweep.step)
                       .arg(sweep.waitMs);
        });
    }

    void cleanup()
    {
        panel.reset();
        simulatedMicroscope().release();
    }

    // ---- The form

    void everySlotFindsItsSignal()
    {
        const Complaints complaints;
        const FusionWidget built;
        QCOMPARE(complaints.heard(), QStringList());
    }

    void textsComeInBothLanguages_data()
    {
        QTest::addColumn<QString>("chinese");
        QTest::addColumn<QString>("english");
        QTest::newRow("label_5") << "起始位置(F)"
                                 << "StartPos";
        QTest::newRow("pushButton_2") << "设置起点"
                                      << "SetStart";
        QTest::newRow("label_6") << "终止位置(F)"
                                 << "EndPos";
        QTest::newRow("pushButton_3") << "设置终点"
                                      << "SetEnd";
        QTest::newRow("label_3") << "抓取间隔"
                                 << "CapInterval";
        QTest::newRow("label_4") << "抓取等待间隔(ms)"
                                 << "WaitInterval(ms)";
        QTest::newRow("label_2") << "抓拍张数:"
                                 << "CaptureNum:";
        QTest::newRow("label") << "当前进度:"
                               << "CurrentProgress";
        QTest::newRow("pushButton") << "开始"
                                    << "Start";
    }

    void textsComeInBothLanguages()
    {
        const QString name = QTest::currentDataTag();
        QTEST(textOf(*panel, name), "chinese");
        const English english;
        panel->retranslate();
        QTEST(textOf(*panel, name), "english");
    }

    void slidersCoverTheFocusRangeInSinglePages()
    {
        for (const char *name : {"horizontalSlider", "horizontalSlider_2"}) {
            const QSlider &tested = control<QSlider>(*panel, name);
            QCOMPARE(tested.minimum(), 0);
            QCOMPARE(tested.maximum(), 400);
            QCOMPARE(tested.pageStep(), 1);
            QCOMPARE(tested.value(), 0);
            QCOMPARE(tested.orientation(), Qt::Horizontal);
        }
    }

    void intervalsHaveTheirRanges()
    {
        const auto &step = control<QSpinBox>(*panel, "spinBox_3");
        QCOMPARE(step.minimum(), 1);
        QCOMPARE(step.maximum(), 99);
        QCOMPARE(step.singleStep(), 1);
        QCOMPARE(step.value(), 2);
        QCOMPARE(step.maximumWidth(), 65);
        const auto &wait = control<QSpinBox>(*panel, "spinBox_4");
        QCOMPARE(wait.minimum(), 50);
        QCOMPARE(wait.maximum(), 10000);
        QCOMPARE(wait.singleStep(), 50);
        QCOMPARE(wait.value(), 100);
        QCOMPARE(wait.maximumWidth(), 65);
    }

    void fieldsAreForReadingOnly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<int>("maximumWidth");
        QTest::newRow("lineEdit_2") << "" << true << 30;
        QTest::newRow("lineEdit_3") << "" << true << 30;
        QTest::newRow("lineEdit") << "1" << true << 65;
        QTest::newRow("lineEdit_4") << "" << false << 65;
    }

    void fieldsAreForReadingOnly()
    {
        const auto &field = control<QLineEdit>(*panel, QTest::currentDataTag());
        QVERIFY(!field.isEnabled());
        QTEST(field.text(), "text");
        QTEST(field.isReadOnly(), "readOnly");
        QTEST(field.maximumWidth(), "maximumWidth");
    }

    void minimumSizes()
    {
        QCOMPARE(control<QLabel>(*panel, "label_5").minimumWidth(), 70);
        QCOMPARE(control<QLabel>(*panel, "label_6").minimumWidth(), 70);
        QCOMPARE(control<QLabel>(*panel, "label_3").minimumWidth(), 110);
        QCOMPARE(control<QLabel>(*panel, "label_4").minimumWidth(), 110);
        QCOMPARE(button("_2").minimumSize(), QSize(60, 20));
        QCOMPARE(button("_3").minimumSize(), QSize(60, 20));
        QCOMPARE(button("").minimumSize(), QSize(80, 20));
    }

    void retranslatingKeepsTheNumbers()
    {
        panel->setSliders(10);
        start().setValue(20);
        panel->setProgress(3);
        said();
        const English english;
        panel->retranslate();
        QCOMPARE(shown("_2"), QString("20"));
        QCOMPARE(shown("_3"), QString("10"));
        QCOMPARE(shown(""), QString("6"));
        QCOMPARE(shown("_4"), QString("3"));
        QCOMPARE(said(), QString());
    }

    // ---- Sliders and their numbers

    void movingAnEndShowsItAndSendsTheFocusThere()
    {
        start().setValue(120);
        QCOMPARE(shown("_2"), QString("120"));
        QCOMPARE(said(), QString("focus 120"));
        end().setValue(400);
        QCOMPARE(shown("_3"), QString("400"));
        QCOMPARE(said(), QString("focus 400"));
    }

    void bothEndsStartWhereTheCameraIs()
    {
        panel->setSliders(120);
        QCOMPARE(start().value(), 120);
        QCOMPARE(end().value(), 120);
        QCOMPARE(shown(""), QString("1"));
        QCOMPARE(said(), QString("focus 120, focus 120"));
        panel->setSliders(120);
        QCOMPARE(said(), QString());
    }

    void settingAnEndTakesTheCamerasFocus()
    {
        SimulatedCapture &camera = simulatedMicroscope();
        camera.open(0, cv::CAP_ANY);
        camera.setMotorSpeed(1e9);
        camera.set(cv::CAP_PROP_AUTOFOCUS, 0);
        camera.set(cv::CAP_PROP_FOCUS, 37);
        button("_2").click();
        QCOMPARE(start().value(), 37);
        camera.set(cv::CAP_PROP_FOCUS, 210);
        button("_3").click();
        QCOMPARE(end().value(), 210);
        QCOMPARE(start().value(), 37);
        QCOMPARE(said(), QString("focus 37, focus 210"));
    }

    void settingAnEndWithoutACameraFallsToZero()
    {
        panel->setSliders(50);
        said();
        button("_2").click();
        button("_3").click();
        QCOMPARE(start().value(), 0);
        QCOMPARE(end().value(), 0);
        QCOMPARE(said(), QString("focus 0, focus 0"));
    }

    // ---- The count

    void captureCount_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<int>("interval");
        QTest::addColumn<QString>("count");
        QTest::newRow("equal ends") << 30 << 30 << 5 << "1";
        QTest::newRow("a multiple of the interval") << 0 << 10 << 5 << "3";
        QTest::newRow("a rest counts as one more") << 0 << 11 << 5 << "4";
        QTest::newRow("one short of a multiple") << 0 << 9 << 5 << "3";
        QTest::newRow("downward") << 11 << 0 << 5 << "4";
        QTest::newRow("interval greater than the range") << 10 << 15 << 99 << "2";
        QTest::newRow("interval greater than the range, downward") << 15 << 10 << 99 << "2";
        QTest::newRow("the whole range, one by one") << 0 << 400 << 1 << "401";
        QTest::newRow("the smallest range") << 0 << 1 << 2 << "2";
    }

    void captureCount()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(int, interval);
        start().setValue(from);
        end().setValue(to);
        control<QSpinBox>(*panel, "spinBox_3").setValue(interval);
        QTEST(shown(""), "count");
    }

    void anEndNeverMovedCountsAsZero()
    {
        end().setValue(10);
        QCOMPARE(shown("_2"), QString());
        QCOMPARE(shown(""), QString("6"));
    }

    void theIntervalAloneChangesTheCount()
    {
        end().setValue(12);
        said();
        control<QSpinBox>(*panel, "spinBox_3").setValue(4);
        QCOMPARE(shown(""), QString("4"));
        QCOMPARE(said(), QString());
    }

    // ---- The sweep

    void aSweepBeginsAtTheEndMovedLast_data()
    {
        QTest::addColumn<int>("startPos");
        QTest::addColumn<int>("endPos");
        QTest::addColumn<bool>("endMovedLast");
        QTest::addColumn<QString>("sweep");
        QTest::newRow("start moved last, upward") << 10 << 50 << false << "10 to 50 by 2";
        QTest::newRow("start moved last, downward") << 90 << 50 << false << "90 to 50 by -2";
        QTest::newRow("end moved last to the lower value") << 90 << 50 << true << "50 to 90 by 2";
        QTest::newRow("end moved last to the higher value") << 10 << 50 << true << "50 to 10 by -2";
        QTest::newRow("equal ends") << 50 << 50 << false << "50 to 50 by 2";
    }

    void aSweepBeginsAtTheEndMovedLast()
    {
        QFETCH(int, startPos);
        QFETCH(int, endPos);
        QFETCH(bool, endMovedLast);
        QFETCH(QString, sweep);
        if (endMovedLast) {
            start().setValue(startPos);
            end().setValue(endPos);
        } else {
            end().setValue(endPos);
            start().setValue(startPos);
        }
        said();
        button("").click();
        QCOMPARE(said(), "sweep " + sweep + ", wait 100");
    }

    void aFreshPanelSweepsOneFrame()
    {
        button("").click();
        QCOMPARE(said(), QString("sweep 0 to 0 by 2, wait 100"));
    }

    void theIntervalIsNegatedOnTheWayDown()
    {
        control<QSpinBox>(*panel, "spinBox_3").setValue(99);
        start().setValue(400);
        said();
        button("").click();
        QCOMPARE(said(), QString("sweep 400 to 0 by -99, wait 100"));
    }

    void theWaitIntervalOnlyTravelsAlong()
    {
        end().setValue(40);
        said();
        control<QSpinBox>(*panel, "spinBox_4").setValue(10000);
        QCOMPARE(shown(""), QString("21"));
        button("").click();
        QCOMPARE(said(), QString("sweep 40 to 0 by -2, wait 10000"));
    }

    void startIsDisabledDuringASweepAndProgressReadsZero()
    {
        panel->setProgress(7);
        panel->setStartEnabled(false);
        QVERIFY(!button("").isEnabled());
        QCOMPARE(shown("_4"), QString("0"));
        panel->setProgress(12);
        QCOMPARE(shown("_4"), QString("12"));
        // All else stays live.
        QVERIFY(start().isEnabled());
        QVERIFY(button("_2").isEnabled());
        panel->setStartEnabled(true);
        QVERIFY(button("").isEnabled());
        QCOMPARE(shown("_4"), QString("0"));
    }

private:
    QSlider &start() const { return control<QSlider>(*panel, "horizontalSlider"); }
    QSlider &end() const { return control<QSlider>(*panel, "horizontalSlider_2"); }
    QPushButton &button(const QString &suffix) const
    {
        return control<QPushButton>(*panel, "pushButton" + suffix);
    }
    QString shown(const QString &suffix) const { return textOf(*panel, "lineEdit" + suffix); }
    /// What the panel said since the last call, in order.
    QString said() { return std::exchange(log, {}).join(", "); }

    std::unique_ptr<FusionWidget> panel;
    QStringList log;
};

QTEST_MAIN(TestFusionWidget)
#include "test_fusionwidget.moc"
