// What must hold for any points: agreement with formulas other than those of the code, and that
// nothing depends on where a shape lies and how it is turned. Every round has its own seed.

#include "measure/geometry.h"
#include "tests/support/shapescene.h"

#include <QRegularExpression>
#include <QTransform>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr int rounds = 500;
constexpr double pi = 3.141592653589793;

/// Seeded places on a scene of 1000 x 800.
class Places
{
public:
    explicit Places(unsigned seed)
        : engine(seed)
    {}

    double number(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(engine);
    }
    QPointF point() { return {number(50, 950), number(50, 750)}; }
    QVector<QPointF> points(int count)
    {
        QVector<QPointF> all;
        while (all.size() < count)
            all << point();
        return all;
    }

private:
    std::mt19937 engine;
};

QTransform turnedAndMoved(Places &places)
{
    QTransform motion;
    motion.translate(places.number(-500, 500), places.number(-500, 500));
    motion.rotateRadians(places.number(0, 2 * pi));
    return motion;
}

double distance(QPointF a, QPointF b) { return std::hypot(b.x() - a.x(), b.y() - a.y()); }

/// Twice the signed area of a triangle.
double cross(QPointF a, QPointF b, QPointF c)
{
    return (b.x() - a.x()) * (c.y() - a.y()) - (b.y() - a.y()) * (c.x() - a.x());
}

/// Circumradius by the sides and the area.
double circumradius(QPointF a, QPointF b, QPointF c)
{
    return distance(a, b) * distance(b, c) * distance(c, a) / (2 * std::abs(cross(a, b, c)));
}

/// Circumcentre by weights of the corners: the sines of twice the angles.
QPointF circumcentre(QPointF a, QPointF b, QPointF c)
{
    const auto weight = [](QPointF corner, QPointF p, QPointF q) {
        const double angle =
            std::atan2(std::abs(cross(corner, p, q)), QPointF::dotProduct(p - corner, q - corner));
        return std::sin(2 * angle);
    };
    const double u = weight(a, b, c);
    const double v = weight(b, c, a);
    const double w = weight(c, a, b);
    return (u * a + v * b + w * c) / (u + v + w);
}

/// Degrees counter-clockwise on the screen, 0 to under 360.
double direction(QPointF from, QPointF to)
{
    const double degrees = std::atan2(from.y() - to.y(), to.x() - from.x()) * 180 / pi;
    return degrees < 0 ? degrees + 360 : degrees;
}

double turn(double from, double to) { return to < from ? to + 360 - from : to - from; }

/// Degrees of the arc from the first to the third point that runs through the second.
double sweepThrough(QPointF centre, QPointF first, QPointF second, QPointF third)
{
    const double toSecond = turn(direction(centre, first), direction(centre, second));
    const double toThird = turn(direction(centre, first), direction(centre, third));
    return toSecond < toThird ? toThird : 360 - toThird;
}

/// Area by the trapezoids under the edges.
double trapezoidArea(const QVector<QPointF> &corners)
{
    double sum = 0;
    for (int i = 0; i < corners.size(); ++i) {
        const QPointF &a = corners[i];
        const QPointF &b = corners[(i + 1) % corners.size()];
        sum += (b.x() - a.x()) * (a.y() + b.y()) / 2;
    }
    return std::abs(sum);
}

double perimeter(const QVector<QPointF> &corners)
{
    double sum = 0;
    for (int i = 0; i < corners.size(); ++i)
        sum += distance(corners[i], corners[(i + 1) % corners.size()]);
    return sum;
}

bool close(double a, double b, double tolerance) { return std::abs(a - b) <= tolerance; }

/// One line of a label as the test expects it.
struct Expected
{
    QString name;
    double value;            // in scene units, square scene units or degrees
    char kind;               // 'l'ength, 'a'rea, 'd'egrees
    double tolerance = 5e-6; // relative: half of the sixth digit
};

struct RealUnit
{
    int code;
    QString suffix;
    double length; // of one unit, in micrometres; 0 for pixels
    double area;
};

const QVector<RealUnit> &realUnits()
{
    static const QVector<RealUnit> units = {
        {1, "px", 0, 0}, {3, "mm", 1000, 1e6}, {4, "um", 1, 1}, {5, "mil", 25.4, 645.16}};
    return units;
}

struct Scales
{
    RealUnit unit;
    double calibration;
    double imageScale;

    double shown(const Expected &line) const
    {
        if (line.kind == 'd')
            return line.value;
        const double inPicture = line.value * imageScale * (line.kind == 'a' ? imageScale : 1.0);
        if (unit.code == 1)
            return inPicture;
        return inPicture * calibration / (line.kind == 'a' ? unit.area : unit.length);
    }
};

/// @returns what is wrong with a label, or nothing
QString complaint(const QString &label, const QVector<Expected> &expected, const Scales &scales)
{
    const QStringList lines = label.split('\n', Qt::SkipEmptyParts);
    if (lines.size() != expected.size())
        return "other lines: " + label;
    for (int i = 0; i < lines.size(); ++i) {
        const QRegularExpression form("^(\\w+) = (-?[0-9.e+-]+)(\\D*)$");
        const auto match = form.match(lines[i]);
        const QString suffix = expected[i].kind == 'd' ? QString("°") : scales.unit.suffix;
        const double wanted = scales.shown(expected[i]);
        const double read = match.captured(2).toDouble();
        if (match.captured(1) != expected[i].name || match.captured(3) != suffix ||
            !close(read, wanted, std::abs(wanted) * expected[i].tolerance + 1e-9))
            return QString("%1 instead of %2 = %3%4")
                .arg(lines[i], expected[i].name)
                .arg(wanted, 0, 'g', 12)
                .arg(suffix);
    }
    return {};
}

using Formula = QVector<Expected> (*)(const QVector<QPointF> &);

QVector<Expected> circleLines(double radius, const QString &number = {})
{
    return {{"R" + number, radius, 'l'},
            {"CLen" + number, 2 * pi * radius, 'l'},
            {"Area" + number, pi * radius * radius, 'a'}};
}

struct ShapeFormula
{
    const char *name;
    int type;
    int clicks;
    bool turns; ///< reads the same when it is turned
    Formula formula;
};

const QVector<ShapeFormula> &formulas()
{
    using P = const QVector<QPointF> &;
    using E = QVector<Expected>;
    // A path's own length follows its curves to some thousandths.
    constexpr double curves = 1.5e-3;
    constexpr double arcs = 5e-3;
    static const QVector<ShapeFormula> all = {
        {"line", 1, 2, true,
         [](P p) {
             return E{{"Len", distance(p[0], p[1]), 'l'}};
         }},
        {"horizontal line", 2, 2, false,
         [](P p) {
             return E{{"Len", std::abs(p[1].x() - p[0].x()), 'l'}};
         }},
        {"vertical line", 3, 2, false,
         [](P p) {
             return E{{"Len", std::abs(p[1].y() - p[0].y()), 'l'}};
         }},
        {"parallel", 4, 3, true,
         [](P p) {
             return E{{"Len", distance(p[0], p[1]), 'l'},
                      {"Dis", distance((p[0] + p[1]) / 2, p[2]), 'l'}};
         }},
        {"perpendicular", 5, 3, true,
         [](P p) {
             return E{{"Len", distance(p[0], p[1]), 'l'},
                      {"Dis", std::abs(cross(p[0], p[1], p[2])) / distance(p[0], p[1]), 'l', 1e-5}};
         }},
        {"angle", 6, 4, true,
         [](P p) {
             return E{{"Ang", turn(direction(p[0], p[1]), direction(p[2], p[3])), 'd'}};
         }},
        {"rectangle", 7, 2, false,
         [](P p) {
             const double w = p[1].x() - p[0].x();
             const double h = p[1].y() - p[0].y();
             return E{{"Wid", w, 'l'},
                      {"Hei", h, 'l'},
                      {"CLen", w + w + h + h, 'l', 1e-5},
                      {"Area", std::abs(w) * std::abs(h), 'a'}};
         }},
        {"arc", 8, 3, false,
         [](P p) {
             const double r = circumradius(p[0], p[1], p[2]);
             const QPointF centre = circumcentre(p[0], p[1], p[2]);
             const double sweep = sweepThrough(centre, p[0], p[1], p[2]);
             // The drawn arc is half a unit narrower about a centre half a unit to the upper left;
             // its outline begins with the step from the shape's point to it.
             const bool fromFirst =
                 turn(direction(centre, p[0]), direction(centre, p[1])) < sweep &&
                 close(turn(direction(centre, p[0]), direction(centre, p[2])), sweep, 1e-6);
             const QPointF start = fromFirst ? p[0] : p[2];
             const QPointF drawn = centre - QPointF(0.5, 0.5) + (start - centre) * ((r - 0.5) / r);
             return E{{"CLen", sweep, 'd', 1e-5},
                      {"Len", (r - 0.5) * sweep * pi / 180 + distance(start, drawn), 'l', arcs},
                      {"R", r, 'l', 1e-5}};
         }},
        {"circle", 9, 3, true,
         [](P p) {
             E lines = circleLines(circumradius(p[0], p[1], p[2]));
             lines[1].tolerance = curves;
             return lines;
         }},
        {"ring", 10, 3, true, [](P p) { return circleLines(circumradius(p[0], p[1], p[2]), "1"); }},
        {"polygon", 11, 6, true,
         [](P p) {
             return E{{"CLen", perimeter(p), 'l'}, {"Area", trapezoidArea(p), 'a', 1e-5}};
         }},
        {"circle with line", 12, 4, true,
         [](P p) {
             E lines = circleLines(circumradius(p[0], p[1], p[2]));
             lines << Expected{"Len", distance(circumcentre(p[0], p[1], p[2]), p[3]), 'l', 1e-5};
             return lines;
         }},
        {"two circles", 14, 6, true,
         [](P p) {
             E lines = circleLines(circumradius(p[0], p[1], p[2]), "1");
             lines += circleLines(circumradius(p[3], p[4], p[5]), "2");
             lines << Expected{
                 "Dis", distance(circumcentre(p[0], p[1], p[2]), circumcentre(p[3], p[4], p[5])),
                 'l', 1e-5};
             return lines;
         }},
    };
    return all;
}

/// Whether three points make a circle that no rounding spoils.
bool isRound(QPointF a, QPointF b, QPointF c) { return circumradius(a, b, c) < 1e4; }

bool isFit(const ShapeFormula &shape, const QVector<QPointF> &p)
{
    const bool hasCircle = shape.type >= 8 && shape.type != 11;
    return (!hasCircle || isRound(p[0], p[1], p[2])) &&
           (shape.type != 14 || isRound(p[3], p[4], p[5]));
}

/// A shape as the mouse would place it: the last click of a polygon is a double one.
Base *placed(ShapeScene &scene, int type, const QVector<QPointF> &clicks, const Scales &scales)
{
    Base *record = scene.begin(type, scales.unit.code);
    for (int i = 0; i < clicks.size(); ++i) {
        if (i > 0)
            record->moveLastPoint(clicks[i]);
        if (i == 0 || i + 1 < clicks.size())
            record->addPoint(clicks[i], scales.calibration);
        record->setImageScale(scales.imageScale);
    }
    // Whatever was read before the picture's scale was known is read anew.
    record->setScale(scales.calibration);
    scene.paint();
    return record;
}

} // namespace

class TestGeometryProperties : public QObject
{
    Q_OBJECT

private slots:
    void circleAgreesWithSidesAndArea();
    void circleOfAlmostCollinearPoints();
    void circleMovesAndTurnsWithItsPoints();
    void footIsTheNearestPlaceOnTheLine();
    void parallelKeepsLengthAndDirection();
    void offsetSegmentIsAtItsDistance();
    void sweepRunsThroughTheSecondPoint();
    void sweepIsTheSameWhereverTheArcLies();
    void areaAgreesWithTrapezoids();
    void areaIsTheSameWhereverThePolygonLies();
    void arrowHeadTurnsWithItsShaft();
    void ticksTurnWithTheirMeasure();
    void clampedPlacesStayWhereTheyAre();
    void readoutsAgreeWithFormulas_data();
    void readoutsAgreeWithFormulas();
    void readoutsAreTheSameWhereverTheShapeLies_data();
    void readoutsAreTheSameWhereverTheShapeLies();
    void innerCirclesOfARingAreNarrowerByTheirDistances();
};

void TestGeometryProperties::circleAgreesWithSidesAndArea()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QVector<QPointF> p = places.points(3);
        if (!isRound(p[0], p[1], p[2]))
            continue;
        double radius = 0;
        const QPointF centre = circleFromPoints(p[0], p[1], p[2], radius);
        const double wanted = circumradius(p[0], p[1], p[2]);
        QVERIFY2(close(radius, wanted, wanted * 1e-8), qPrintable(QString::number(round)));
        for (const QPointF &point : p)
            QVERIFY(close(distance(centre, point), radius, radius * 1e-8));
        QVERIFY(distance(centre, circumcentre(p[0], p[1], p[2])) < radius * 1e-7);
        // The order of the points does not count.
        double other = 0;
        QVERIFY(distance(centre, circleFromPoints(p[2], p[0], p[1], other)) < radius * 1e-7);
        QVERIFY(close(other, radius, radius * 1e-8));
    }
}

void TestGeometryProperties::circleOfAlmostCollinearPoints()
{
    int degenerate = 0;
    int round = 0;
    for (double lift = 1.0; lift > 1e-12; lift /= 3, ++round) {
        // A chord of 80 with the third point over its middle.
        Places places(round);
        const QPointF corner = places.point().toPoint();
        const QPointF a = corner;
        const QPointF b = corner + QPointF(80, 0);
        const QPointF c = corner + QPointF(40, lift);
        const double height = c.y() - corner.y(); // as far as the coordinates hold it
        double radius = 0;
        const QPointF centre = circleFromPoints(a, b, c, radius);
        if (80 * height < 1e-5) {
            ++degenerate;
            QCOMPARE(radius, -1.0);
            QCOMPARE(centre, QPointF());
            continue;
        }
        const double wanted = (1600 + height * height) / (2 * height);
        // What the squares of coordinates of some hundreds lose, over the determinant.
        QVERIFY2(close(radius, wanted, wanted * (1e-9 + 1e-8 / height)),
                 qPrintable(QString::number(lift)));
    }
    QVERIFY(degenerate > 5);
    QVERIFY(round - degenerate > 10);
}

void TestGeometryProperties::circleMovesAndTurnsWithItsPoints()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QVector<QPointF> p = places.points(3);
        if (!isRound(p[0], p[1], p[2]))
            continue;
        const QTransform motion = turnedAndMoved(places);
        double radius = 0;
        double moved = 0;
        const QPointF centre = circleFromPoints(p[0], p[1], p[2], radius);
        const QPointF movedCentre =
            circleFromPoints(motion.map(p[0]), motion.map(p[1]), motion.map(p[2]), moved);
        QVERIFY(close(moved, radius, radius * 1e-7));
        QVERIFY(distance(movedCentre, motion.map(centre)) < radius * 1e-6);
    }
}

void TestGeometryProperties::footIsTheNearestPlaceOnTheLine()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QVector<QPointF> p = places.points(3);
        const double length = distance(p[1], p[2]);
        if (length < 1)
            continue;
        const QPointF foot = footOfPerpendicular(p[0], p[1], p[2]);
        QVERIFY(std::abs(cross(p[1], p[2], foot)) / length < 1e-8);
        QVERIFY(std::abs(QPointF::dotProduct(p[0] - foot, p[2] - p[1])) / length < 1e-8);
        QVERIFY(close(distance(p[0], foot), std::abs(cross(p[1], p[2], p[0])) / length, 1e-8));
        const QTransform motion = turnedAndMoved(places);
        QVERIFY(distance(footOfPerpendicular(motion.map(p[0]), motion.map(p[1]), motion.map(p[2])),
                         motion.map(foot)) < 1e-7);
    }
}

void TestGeometryProperties::parallelKeepsLengthAndDirection()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QVector<QPointF> p = places.points(3);
        const QLineF parallel = parallelThrough(p[0], p[1], p[2]);
        QVERIFY(distance(parallel.p2() - parallel.p1(), p[1] - p[0]) < 1e-9);
        QVERIFY(distance((parallel.p1() + parallel.p2()) / 2, p[2]) < 1e-9);
        QPointF foot;
        const double told = parallelDistance({p[0], p[1]}, parallel, foot);
        QVERIFY(close(told, distance((p[0] + p[1]) / 2, p[2]), 1e-8));
        QVERIFY(distance(foot, p[2]) < 1e-8);
    }
}

void TestGeometryProperties::offsetSegmentIsAtItsDistance()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QVector<QPointF> p = places.points(2);
        const double length = distance(p[0], p[1]);
        if (length < 1)
            continue;
        const double wanted = places.number(-200, 200);
        const QLineF offset = offsetSegment({p[0], p[1]}, wanted);
        // Signed: below a segment that runs to the right.
        QVERIFY(close(cross(p[0], p[1], offset.p1()) / length, wanted, 1e-8));
        QVERIFY(close(cross(p[0], p[1], offset.p2()) / length, wanted, 1e-8));
        QVERIFY(distance(offset.p2() - offset.p1(), p[1] - p[0]) < 1e-9);
        QVERIFY(close(distance(offset.p1(), p[0]), std::abs(wanted), 1e-8));
    }
}

void TestGeometryProperties::sweepRunsThroughTheSecondPoint()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QPointF centre = places.point();
        const QVector<QPointF> p = places.points(3);
        const ArcSweep arc = arcSweep(centre, p[0], p[1], p[2]);
        QVERIFY(close(arc.sweep, sweepThrough(centre, p[0], p[1], p[2]), 1e-9));
        QVERIFY(arc.sweep >= 0 && arc.sweep < 360);
        QVERIFY(turn(arc.startAngle, direction(centre, p[1])) <= arc.sweep + 1e-9);
        QCOMPARE(arc.start, arc.fromThird ? p[2] : p[0]);
        QVERIFY(close(arc.startAngle, direction(centre, arc.start), 1e-9));
    }
}

void TestGeometryProperties::sweepIsTheSameWhereverTheArcLies()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QPointF centre = places.point();
        const QVector<QPointF> p = places.points(3);
        const QTransform motion = turnedAndMoved(places);
        const double sweep = arcSweep(centre, p[0], p[1], p[2]).sweep;
        QVERIFY(
            close(arcSweep(motion.map(centre), motion.map(p[0]), motion.map(p[1]), motion.map(p[2]))
                      .sweep,
                  sweep, 1e-8));
        QVERIFY(close(arcSweep(centre, p[2], p[1], p[0]).sweep, sweep, 1e-9));
    }
}

void TestGeometryProperties::areaAgreesWithTrapezoids()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        QVector<QPointF> p = places.points(3 + round % 8);
        const double wanted = trapezoidArea(p);
        QVERIFY(close(polygonArea(p), wanted, 1e-6));
        std::reverse(p.begin(), p.end());
        QVERIFY(close(polygonArea(p), wanted, 1e-6));
        std::rotate(p.begin(), p.begin() + 1, p.end());
        QVERIFY(close(polygonArea(p), wanted, 1e-6));
    }
}

void TestGeometryProperties::areaIsTheSameWhereverThePolygonLies()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        QVector<QPointF> p = places.points(3 + round % 8);
        const double area = polygonArea(p);
        const QTransform motion = turnedAndMoved(places);
        for (QPointF &corner : p)
            corner = motion.map(corner);
        QVERIFY(close(polygonArea(p), area, 1e-6));
    }
}

void TestGeometryProperties::arrowHeadTurnsWithItsShaft()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QVector<QPointF> p = places.points(2);
        const ArrowHead head = arrowHead(p[0], p[1]);
        for (const QPointF &wing : {head.first, head.second}) {
            QVERIFY(close(distance(wing, p[1]), 20, 1e-9));
            const double angle = std::atan2(std::abs(cross(p[1], p[0], wing)),
                                            QPointF::dotProduct(p[0] - p[1], wing - p[1]));
            QVERIFY(close(angle, pi / 6, 1e-9));
        }
        // One on each side.
        QVERIFY(cross(p[0], p[1], head.first) * cross(p[0], p[1], head.second) < 0);
    }
}

void TestGeometryProperties::ticksTurnWithTheirMeasure()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QVector<QPointF> p = places.points(2);
        const TickPair ticks = tickPair(p[0], p[1]);
        const QLineF both[] = {ticks.first, ticks.second};
        for (int i = 0; i < 2; ++i) {
            QVERIFY(close(distance(both[i].p1(), both[i].p2()), 200, 1e-8));
            QVERIFY(distance((both[i].p1() + both[i].p2()) / 2, p[i]) < 1e-8);
            QVERIFY(std::abs(QPointF::dotProduct(both[i].p2() - both[i].p1(), p[1] - p[0])) < 1e-6);
        }
    }
}

void TestGeometryProperties::clampedPlacesStayWhereTheyAre()
{
    for (int round = 0; round < rounds; ++round) {
        Places places(round);
        const QSizeF scene(places.number(1, 1000), places.number(1, 800));
        const QPointF wild(places.number(-2000, 2000), places.number(-2000, 2000));
        const QPointF handle = clampHandle(wild, scene);
        QCOMPARE(clampHandle(handle, scene), handle);
        QVERIFY(QRectF(QPointF(), scene).contains(handle));
        const QPointF line = clampCross(wild, scene);
        QCOMPARE(clampCross(line, scene), line);
    }
}

void TestGeometryProperties::readoutsAgreeWithFormulas_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < formulas().size(); ++i)
        QTest::newRow(formulas()[i].name) << i;
}

void TestGeometryProperties::readoutsAgreeWithFormulas()
{
    QFETCH(int, index);
    const ShapeFormula &shape = formulas()[index];
    for (int round = 0; round < 40; ++round) {
        Places places(1000 + round);
        const QVector<QPointF> clicks = places.points(shape.clicks);
        if (!isFit(shape, clicks))
            continue;
        const Scales scales{realUnits()[round % 4], places.number(0.1, 20), places.number(0.5, 4)};
        ShapeScene scene;
        // Anything but a change of the values leaves a label as it is: the image scale comes first.
        const Base *record = placed(scene, shape.type, clicks, scales);
        const QString wrong = complaint(record->textContent(), shape.formula(clicks), scales);
        QVERIFY2(wrong.isEmpty(), qPrintable(QString("round %1: %2").arg(round).arg(wrong)));
    }
}

void TestGeometryProperties::readoutsAreTheSameWhereverTheShapeLies_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < formulas().size(); ++i) {
        if (formulas()[i].turns)
            QTest::newRow(formulas()[i].name) << i;
    }
}

void TestGeometryProperties::readoutsAreTheSameWhereverTheShapeLies()
{
    QFETCH(int, index);
    const ShapeFormula &shape = formulas()[index];
    for (int round = 0; round < 40; ++round) {
        Places places(2000 + round);
        QVector<QPointF> clicks;
        for (int i = 0; i < shape.clicks; ++i)
            clicks << QPointF(places.number(-200, 200), places.number(-200, 200));
        if (!isFit(shape, clicks))
            continue;
        // Turned about the middle of the scene, in which it stays.
        const double degrees = places.number(0, 360);
        QVector<QPointF> turned;
        for (QPointF &click : clicks) {
            turned << QTransform().translate(500, 400).rotate(degrees).map(click);
            click = QTransform().translate(450, 350).map(click);
        }
        const Scales scales{realUnits()[0], 1.0, 1.0};
        ShapeScene scene;
        const QVector<Expected> wanted = shape.formula(clicks);
        for (const QVector<QPointF> &where : {clicks, turned}) {
            const Base *record = placed(scene, shape.type, where, scales);
            const QString wrong = complaint(record->textContent(), wanted, scales);
            QVERIFY2(wrong.isEmpty(), qPrintable(QString("round %1: %2").arg(round).arg(wrong)));
        }
    }
}

void TestGeometryProperties::innerCirclesOfARingAreNarrowerByTheirDistances()
{
    for (int round = 0; round < 40; ++round) {
        Places places(3000 + round);
        const QVector<QPointF> clicks = places.points(3);
        const double r = circumradius(clicks[0], clicks[1], clicks[2]);
        if (r > 1e4)
            continue;
        const Scales scales{realUnits()[1 + round % 3], places.number(0.1, 20), 1.0};
        const double toReal = scales.calibration / scales.unit.length;
        const double inner[] = {r * places.number(0.3, 0.9), r * places.number(0.3, 0.9)};
        ShapeScene scene;
        Base *ring = placed(scene, 10, clicks, scales);
        ring->setRingDistance1((r - inner[0]) * toReal);
        ring->setRingDistance2((r - inner[1]) * toReal);
        QVector<Expected> wanted = circleLines(r, "1");
        wanted += circleLines(inner[0], "2");
        wanted += circleLines(inner[1], "3");
        for (Expected &line : wanted)
            line.tolerance = 1e-5;
        const QString wrong = complaint(ring->textContent(), wanted, scales);
        QVERIFY2(wrong.isEmpty(), qPrintable(QString("round %1: %2").arg(round).arg(wrong)));
    }
}

QTEST_MAIN(TestGeometryProperties)
#include "test_geometryproperties.moc"
