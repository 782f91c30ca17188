#pragma once

#include "measure/graphicsconnect.h"

#include <QPainterPath>

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
    QList<QPointF> localPoints; ///< the handles in item coordinates
    QPainterPath path;
};

class GraphicsCir : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;
};

class GraphicsRing : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

    void setRingDistance1(double distance);
    void setRingDistance2(double distance);
    double ringDistance1() const { return distance1; }
    double ringDistance2() const { return distance2; }

private:
    double distance1 = 0.0; ///< in the real unit of the calibration
    double distance2 = 0.0;
};

class GraphicsPoly : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;
};

class GraphicsLCir : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;
};

class GraphicsTCir : public GraphicsArc
{
public:
    using GraphicsArc::GraphicsArc;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;
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
