#pragma once

#include "measure/graphicsconnect.h"

#include <QLineF>

/// A segment with up to two offset parallels; the shared ground of all shapes made of segments.
class GraphicsLine : public GraphicsConnect
{
public:
    using GraphicsConnect::GraphicsConnect;

    QRectF boundingRect() const final;
    QPainterPath shape() const final;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) final;

    void updatePoints() override;
    QPainterPath geometryPath() const final;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

    void setLineDistance1(double distance);
    void setLineDistance2(double distance);

    /// Segments in item coordinates; an all-zero one is absent.
    QLineF lineA() const { return lineA_; }
    QLineF lineB() const { return lineB_; }
    QLineF lineC() const { return lineC_; }

protected:
    QVector<QPointF> handlePlaces() const override;
    /// Puts another segment in a segment's place. @returns false when it is the same one
    bool replace(QLineF &line, const QLineF &with);

    QLineF lineA_;
    QLineF lineB_;
    QLineF lineC_;
    double distance1 = 0.0; ///< in the real unit of the calibration
    double distance2 = 0.0;
};

class GraphicsHLine : public GraphicsLine
{
public:
    using GraphicsLine::GraphicsLine;
};

class GraphicsVLine : public GraphicsLine
{
public:
    using GraphicsLine::GraphicsLine;
};

class GraphicsPar : public GraphicsLine
{
public:
    using GraphicsLine::GraphicsLine;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

protected:
    QVector<QPointF> handlePlaces() const override;

private:
    QPointF foot;
};

class GraphicsVer : public GraphicsLine
{
public:
    using GraphicsLine::GraphicsLine;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

protected:
    QVector<QPointF> handlePlaces() const override;
};

class GraphicsAng : public GraphicsLine
{
public:
    using GraphicsLine::GraphicsLine;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;
    QPointF extraPoint() const override;

protected:
    QVector<QPointF> handlePlaces() const override;
};

class GraphicsLCali : public GraphicsLine
{
public:
    using GraphicsLine::GraphicsLine;
    void updatePoints() override;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

    QPointF measureA() const { return measureA_; }
    QPointF measureB() const { return measureB_; }

private:
    QPointF measureA_;
    QPointF measureB_;
};

class GraphicsRect : public GraphicsConnect
{
public:
    using GraphicsConnect::GraphicsConnect;

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    void updatePoints() override;
    QPainterPath geometryPath() const override;
    QVariant updateText() override;
    bool paintExtra(QPainter *painter) override;

    /// Not normalised: width and height run from the first handle to the second.
    QRectF rect() const { return rect_; }

protected:
    QVector<QPointF> handlePlaces() const override;

private:
    QRectF rect_;
};
