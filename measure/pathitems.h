#pragma once

#include "measure/graphicsconnect.h"

#include <QPainterPath>
#include <QVector>

/// An arc; the shared ground of all shapes whose outline is a path rebuilt from the handles.
class GraphicsArc : public GraphicsConnect
{
public:
    using GraphicsConnect::GraphicsConnect;

    QRectF boundingRect() const final;
    QPainterPath shape() const final;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) final;

    void updatePoints() final;
    QPainterPath geometryPath() const final;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

protected:
    QVector<QPointF> handlePlaces() const final;
    /// Parks the label at a place in item coordinates.
    void anchorLabel(QPointF place);
    void setPath(const QPainterPath &outline);

    QVector<QPointF> localPoints; ///< the handles in item coordinates
    QPainterPath path;
};

/// The outlines whose label stands at their first handle.
class GraphicsOutline : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    bool paintExtra(QPainter *painter) override;
};

class GraphicsCir : public GraphicsOutline
{
public:
    using GraphicsOutline::GraphicsOutline;
    QVariant updateText() override;
};

class GraphicsRing : public GraphicsOutline
{
public:
    using GraphicsOutline::GraphicsOutline;
    QVariant updateText() override;

    void setRingDistance1(double distance);
    void setRingDistance2(double distance);
    double ringDistance1() const { return distance1; }
    double ringDistance2() const { return distance2; }

private:
    double distance1 = 0.0; ///< in the real unit of the calibration
    double distance2 = 0.0;
};

class GraphicsPoly : public GraphicsOutline
{
public:
    using GraphicsOutline::GraphicsOutline;
    QVariant updateText() override;
};

class GraphicsLCir : public GraphicsOutline
{
public:
    using GraphicsOutline::GraphicsOutline;
    QVariant updateText() override;
};

class GraphicsTCir : public GraphicsOutline
{
public:
    using GraphicsOutline::GraphicsOutline;
    QVariant updateText() override;
};

class GraphicsLText : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;
};

class GraphicsCCali : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

    double radius() const { return radius_; }

private:
    double radius_ = 0.0;
};
