#pragma once

#include "KARMathVector.h"

/// A point in space: a centre, an origin, a pole.
class KARMathPoint
{
public:
    /// The origin.
    constexpr KARMathPoint() = default;
    /// The point with these coordinates.
    constexpr KARMathPoint(double x, double y, double z) : m_x(x), m_y(y), m_z(z) {}

    /// First coordinate.
    constexpr double GetX() const { return m_x; }
    /// Second coordinate.
    constexpr double GetY() const { return m_y; }
    /// Third coordinate.
    constexpr double GetZ() const { return m_z; }
    /// Coordinate 0, 1 or 2; any other index gives the third.
    constexpr double operator[](int index) const
    {
        return index == 0 ? m_x : (index == 1 ? m_y : m_z);
    }
    /// Sets the first coordinate.
    constexpr void SetX(double x) { m_x = x; }
    /// Sets the second coordinate.
    constexpr void SetY(double y) { m_y = y; }
    /// Sets the third coordinate.
    constexpr void SetZ(double z) { m_z = z; }
    /// Sets all coordinates.
    constexpr void SetCoord(double x, double y, double z)
    {
        m_x = x;
        m_y = y;
        m_z = z;
    }
    /// Gives all coordinates.
    constexpr void GetCoord(double& x, double& y, double& z) const
    {
        x = m_x;
        y = m_y;
        z = m_z;
    }
    /// Distance to another point.
    double DistanceTo(const KARMathPoint& other) const { return (*this - other).Norm(); }

    /// Moves the point by a vector.
    constexpr KARMathPoint& operator+=(const KARMathVector& v) { return *this = *this + v; }
    constexpr KARMathPoint& operator-=(const KARMathVector& v) { return *this = *this - v; }

    friend constexpr KARMathVector operator-(const KARMathPoint& a, const KARMathPoint& b)
    {
        return {a.m_x - b.m_x, a.m_y - b.m_y, a.m_z - b.m_z};
    }
    friend constexpr KARMathPoint operator+(const KARMathPoint& p, const KARMathVector& v)
    {
        return {p.m_x + v.GetX(), p.m_y + v.GetY(), p.m_z + v.GetZ()};
    }
    friend constexpr KARMathPoint operator-(const KARMathPoint& p, const KARMathVector& v)
    {
        return {p.m_x - v.GetX(), p.m_y - v.GetY(), p.m_z - v.GetZ()};
    }
    friend constexpr bool operator==(const KARMathPoint& a, const KARMathPoint& b) = default;

private:
    double m_x = 0.0;
    double m_y = 0.0;
    double m_z = 0.0;
};
