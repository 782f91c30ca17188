#pragma once

#include "measure/base.h"

/// A record is its type number; the shape table tells the rest.
template<int Type>
class Shape : public Base
{
public:
    using Base::Base;
    int type() const override { return Type; }
};

class Line : public Shape<1>
{
public:
    using Shape::Shape;
};
class HLine : public Shape<2>
{
public:
    using Shape::Shape;
};
class VLine : public Shape<3>
{
public:
    using Shape::Shape;
};
class Par : public Shape<4>
{
public:
    using Shape::Shape;
};
class Ver : public Shape<5>
{
public:
    using Shape::Shape;
};
class Ang : public Shape<6>
{
public:
    using Shape::Shape;
};
class Rect : public Shape<7>
{
public:
    using Shape::Shape;
};
class Arc : public Shape<8>
{
public:
    using Shape::Shape;
};
class Cir : public Shape<9>
{
public:
    using Shape::Shape;
};
class Ring : public Shape<10>
{
public:
    using Shape::Shape;
};
class Poly : public Shape<11>
{
public:
    using Shape::Shape;
};
class LCir : public Shape<12>
{
public:
    using Shape::Shape;
};
class TCir : public Shape<14>
{
public:
    using Shape::Shape;
};
class LText : public Shape<15>
{
public:
    using Shape::Shape;
};
class LCali : public Shape<16>
{
public:
    using Shape::Shape;
};
class CCali : public Shape<17>
{
public:
    using Shape::Shape;
};
