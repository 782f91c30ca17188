#include "simulator/tour.h"

#include "measure/base.h"
#include "measure/graphicstext.h"
#include "measure/mainscene.h"
#include "simulator/specimen.h"
#include "simulator/tour_dialogs.h"
#include "simulator/tour_operator.h"
#include "workbench/tavorin.h"

#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QFile>
#include <QGraphicsView>
#include <QLineEdit>
#include <QListWidget>
#include <QPolygonF>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTabWidget>

#include <cmath>

using namespace tour;

namespace {

constexpr char arrowText[] = "pad 8";

} // namespace

void Tour::takeASnapshot()
{
    const int before = tabs()->count();
    clickTool("capture2Btn");
    waitUntil("the snapshot opens", [&] { return tabs()->count() == before + 1; });
    click(find<QPushButton>(&window, "leftHide")); // more room for the picture
    wait(200);                                     // its layout
    shoot("snapshot");
}

void Tour::changeDrawSettings()
{
    expectDialog("the drawing settings", [this](QDialog *dialog) {
        type(find<QSpinBox>(dialog, "spinBox_3"), "15");
        type(find<QDoubleSpinBox>(dialog, "doubleSpinBox"), QString::number(ringDistance));
        shoot("settings");
        shoot(dialog, "settings_dialog");
        press(dialog, Qt::Key_Escape);
    });
    clickTool("settingBtn");
    dialogsDone();
}

void Tour::measureEverything()
{
    report(QString("    %1%2%3%4%5")
               .arg("tool", -13)
               .arg("feature", -24)
               .arg("true", 10)
               .arg("measured", 12)
               .arg("difference", 12));
    int wrong = 0;
    for (const MeasureGroup &group : measureGroups())
        wrong += measureGroup(group);
    clickTool("hand");
    pick(tool<QComboBox>("zoom"), "75");
    shoot("measured");
    if (wrong > 0)
        throw Error(QString("%1 measures are off by more than a pixel").arg(wrong));
}

/// @returns how many values are off
int Tour::measureGroup(const MeasureGroup &group)
{
    pick(tool<QComboBox>("zoom"), group.zoom);
    QPolygonF spread;
    for (const Measure &measure : group.measures) {
        for (const Place &place : measure.places)
            spread.append(onScene(place));
        spread.append(onScene({measure.places.constFirst().at + measure.labelShift, {}}));
    }
    const QPointF middle = spread.boundingRect().center();
    view()->centerOn(middle);

    int wrong = 0;
    for (const Measure &measure : group.measures) {
        draw(measure);
        if (!measure.labelShift.isNull())
            dragLabel(measure.labelShift);
        if (measure.value && !isRight(measure))
            ++wrong;
    }
    clickTool("line"); // lets go of the label that was dragged last
    clickTool("hand");
    view()->centerOn(middle);
    shoot(QString("measure_") + group.name);
    return wrong;
}

/// Prints a row of the table on the newest shape.
bool Tour::isRight(const Measure &measure) const
{
    const double value = valueIn(list()->item(list()->count() - 1)->text(), measure.value);
    const double off = value - measure.truth;
    const bool isRight = std::abs(off) <= measure.tolerance;
    report(QString("    %1%2%3%4%5%6")
               .arg(measure.tool, -13)
               .arg(measure.feature, -24)
               .arg(measure.truth, 10, 'f', 4)
               .arg(value, 12, 'f', 4)
               .arg(off, 12, 'f', 4)
               .arg(isRight ? "" : "  OFF"));
    return isRight;
}

void Tour::draw(const Measure &measure)
{
    const int before = list()->count();
    const bool isText = qstrcmp(measure.tool, "text") == 0;
    if (isText)
        expectDialog("the arrow's text", [](QDialog *dialog) {
            auto *field = find<QLineEdit>(dialog, "");
            type(field, arrowText);
            press(field, Qt::Key_Return);
        });
    clickTool(measure.tool);
    const int last = measure.places.size() - 1;
    for (int i = 0; i <= last; ++i) {
        const QPointF place = sight(measure.places[i]);
        if (i == last && qstrcmp(measure.tool, "poly") == 0)
            doubleClickAt(view(), place);
        else
            clickAt(view(), place);
    }
    dialogsDone();
    if (list()->count() != before + 1)
        throw Error(QString("%1 made no shape").arg(measure.tool));
}

/// Drags the label of the newest shape.
/// @param shift  in micrometres
void Tour::dragLabel(QPointF shift)
{
    clickTool("hand");
    wait(50); // it is painted
    const auto *scene = qobject_cast<MainScene *>(view()->scene());
    const GraphicsText *label = scene->items().constLast()->text();
    const QPointF grip = label->sceneBoundingRect().topLeft() + QPointF(15, 12);
    const QPointF before = label->pos();
    drag(view(), grip, grip + shift * scene->width() / specimen::fieldWidth);
    if (label->pos() == before)
        throw Error("the label stays where it is");
}

/// Makes the line over the ruler thick and yellow.
void Tour::changeOneShape()
{
    expectDialog("the properties of the shape", [this](QDialog *dialog) {
        type(find<QSpinBox>(dialog, "spinBox_2"), "3");
        expectDialog("the colour", [](QDialog *colours) {
            // The only field that is not the inside of a number box, which has a name.
            type(find<QLineEdit>(colours, ""), "#ffd21f");
            press(colours, Qt::Key_Return);
        });
        click(find<QPushButton>(dialog, "pushButton_2"));
        shoot("properties");
        press(dialog, Qt::Key_Escape);
    });
    const Measure &line = measureGroups().constLast().measures.constFirst();
    const QPointF start = onScene(line.places.constFirst());
    const QPointF end = onScene(line.places.constLast());
    doubleClickAt(view(), start + (end - start) / 4);
    dialogsDone();
    clickAt(view(), onScene({{0, 2600}, {}})); // beside every shape
    shoot("changed_shape");
}

void Tour::saveAndExport()
{
    makeFile(
        "view.jpg", [&] { clickTool("capture2Btn"); }, "save_dialog");
    makeFile("measures.csv", [&] { clickTool("export_2"); });
    QFile csv(path("measures.csv"));
    csv.open(QIODevice::ReadOnly);
    const auto records = QString::fromUtf8(csv.readAll()).count(QRegularExpression("(^|\n)\\d+,"));
    report(QString("    %1 records").arg(records));
    if (records != 14)
        throw Error("the list does not hold fourteen shapes");

    makeFile("measured.jpg", [&] { press(&window, Qt::Key_S, Qt::ControlModifier); });
    if (list()->count() != 0)
        throw Error("the saved shapes are still on the page");
}

void Tour::openAgain()
{
    const int before = tabs()->count();
    expectFileDialog(path("measured.jpg"), [this] { shoot("open"); });
    press(&window, Qt::Key_O, Qt::ControlModifier);
    dialogsDone();
    waitUntil("the picture opens", [&] { return tabs()->count() == before + 1; });
    wait(200); // its layout
    shoot("opened");
    const QImage opened = load("measured.jpg");
    if (picture().size() != opened.size())
        throw Error("the page does not show the picture");
    // In dots per metre, to a hundredth.
    const double scale = 1e6 / opened.dotsPerMeterX();
    report(QString("    the picture tells its scale: %1 um a pixel").arg(scale));
}
