#include "simulator/tour_dialogs.h"
#include "simulator/tour_eye.h"
#include "simulator/tour_measures.h"
#include "simulator/tour_operator.h"

#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

/// What the work fails with, or an empty string.
QString faultOf(const std::function<void()> &work)
{
    try {
        work();
    } catch (const tour::Error &error) {
        return error.what();
    }
    return QString();
}

/// White from a column on, which it covers in part; black before it.
QImage edgeAt(double column)
{
    QImage picture(40, 20, QImage::Format_RGB32);
    for (int x = 0; x < picture.width(); ++x) {
        const int grey = qRound(255 * qBound(0.0, x + 1 - column, 1.0));
        for (int y = 0; y < picture.height(); ++y)
            picture.setPixel(x, y, qRgb(grey, grey, grey));
    }
    return picture;
}

} // namespace

/// The operator of the tour: nothing that goes wrong stays unnoticed, and nothing hangs.
class TestTour : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void anExpectedMessageIsAnswered();
    void anUnexpectedMessageFailsTheClickThatBroughtIt();
    void aDialogThatDoesNotComeIsTold();
    void aDialogThatStaysOpenIsTold();
    void anErrorInAnAnswerReachesTheStep();
    void whatIsCoveredCannotBeClicked();
    void whatIsDisabledCannotBeClicked();
    void typingReplacesWhatStandsInAField();
    void aSliderStopsOnItsValue();
    void aWaitHasALimit();
    void theEyeFindsAnEdgeBetweenPixels();
    void theEyeToldOfNoEdgeFindsNone();
    void valuesAreReadFromTheirLine();
    void everyToolIsInTheTable();

private:
    std::unique_ptr<QWidget> window;
    QPushButton *button = nullptr;
};

void TestTour::initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

void TestTour::init()
{
    window = std::make_unique<QWidget>();
    window->resize(300, 200);
    button = new QPushButton("ask", window.get());
    button->setGeometry(20, 20, 80, 30);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void TestTour::cleanup() { window.reset(); }

void TestTour::anExpectedMessageIsAnswered()
{
    int answers = 0;
    connect(button, &QPushButton::clicked, window.get(), [&] {
        answers += QMessageBox::information(window.get(), "note", "done") == QMessageBox::Ok;
    });
    tour::expectMessage("the note");
    tour::click(button);
    tour::dialogsDone();
    QCOMPARE(answers, 1);
}

void TestTour::anUnexpectedMessageFailsTheClickThatBroughtIt()
{
    connect(button, &QPushButton::clicked, window.get(),
            [&] { QMessageBox::information(window.get(), "note", "surprise"); });
    QCOMPARE(faultOf([&] { tour::click(button); }), QString("nobody expected note: surprise"));
    QVERIFY(!QApplication::activeModalWidget());
}

void TestTour::aDialogThatDoesNotComeIsTold()
{
    tour::expectMessage("the note");
    QCOMPARE(faultOf([] { tour::dialogsDone(50); }), QString("waited in vain until the note"));
    QMessageBox::information(window.get(), "note", "late"); // takes the expectation
}

void TestTour::aDialogThatStaysOpenIsTold()
{
    connect(button, &QPushButton::clicked, window.get(), [&] { QDialog(window.get()).exec(); });
    tour::expectDialog("the dialog", [](QDialog *) {});
    QCOMPARE(faultOf([&] { tour::click(button); }), QString("the dialog stays open"));
}

void TestTour::anErrorInAnAnswerReachesTheStep()
{
    connect(button, &QPushButton::clicked, window.get(), [&] { QDialog(window.get()).exec(); });
    tour::expectDialog("the dialog",
                       [](QDialog *dialog) { tour::find<QLineEdit>(dialog, "name"); });
    QCOMPARE(faultOf([&] { tour::click(button); }), QString("the dialog: there is no name"));
    QVERIFY(!QApplication::activeModalWidget());
}

void TestTour::whatIsCoveredCannotBeClicked()
{
    QWidget cover(window.get());
    cover.setGeometry(0, 0, 300, 200);
    cover.show();
    QVERIFY(faultOf([&] { tour::click(button); }).endsWith("is out of reach"));
}

void TestTour::whatIsDisabledCannotBeClicked()
{
    button->setEnabled(false);
    QVERIFY(faultOf([&] { tour::click(button); }).endsWith("cannot be used"));
}

void TestTour::typingReplacesWhatStandsInAField()
{
    QLineEdit field("before", window.get());
    field.setGeometry(20, 80, 200, 30);
    field.show();
    tour::type(&field, "d:/after 1.jpg");
    QCOMPARE(field.text(), QString("d:/after 1.jpg"));
}

void TestTour::aSliderStopsOnItsValue()
{
    QSlider slider(Qt::Horizontal, window.get());
    slider.setGeometry(20, 80, 200, 30);
    slider.setRange(0, 400);
    slider.show();
    tour::slideTo(&slider, 237);
    QCOMPARE(slider.value(), 237);
    tour::slideTo(&slider, 14);
    QCOMPARE(slider.value(), 14);
}

void TestTour::aWaitHasALimit()
{
    QCOMPARE(faultOf([] {
                 tour::waitUntil(
                     "pigs fly", [] { return false; }, 20);
             }),
             QString("waited in vain until pigs fly"));
}

void TestTour::theEyeFindsAnEdgeBetweenPixels()
{
    const QPointF found = tour::edgeNear(edgeAt(20.25), QPointF(19, 10), QPointF(1, 0));
    QVERIFY2(std::abs(found.x() - 20.25) < 0.1, qPrintable(QString::number(found.x())));
    QCOMPARE(found.y(), 10.0);
}

void TestTour::theEyeToldOfNoEdgeFindsNone()
{
    QVERIFY(faultOf([] {
                tour::edgeNear(edgeAt(20), QPointF(8, 10), QPointF(1, 0));
            }).startsWith("no edge"));
}

void TestTour::valuesAreReadFromTheirLine()
{
    const QString label = "Ring\nR1 = 0.5mm\nCLen1 = 3.14159mm\nArea1 = 1.5e-05mm\nR = -2px";
    QCOMPARE(tour::valueIn(label, "R1"), 0.5);
    QCOMPARE(tour::valueIn(label, "Area1"), 1.5e-5);
    QCOMPARE(tour::valueIn(label, "R"), -2.0);
    QVERIFY(!faultOf([&] { tour::valueIn(label, "R2"); }).isEmpty());
}

void TestTour::everyToolIsInTheTable()
{
    QStringList tools;
    for (const tour::MeasureGroup &group : tour::measureGroups())
        for (const tour::Measure &measure : group.measures)
            tools += measure.tool;
    tools.sort();
    QCOMPARE(tools, QStringList({"angle", "arc", "circle", "hline", "line", "line_circle", "par",
                                 "poly", "rect", "ring", "text", "two_circle", "ver", "vline"}));
}

QTEST_MAIN(TestTour)
#include "test_tour.moc"
