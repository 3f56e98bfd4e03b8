#pragma once

#include "KARMathVector2D.h"

/// A point in the plane.
class KARMathPoint2D
{
public:
    /// The origin.
    constexpr KARMathPoint2D() = default;
    /// The point with these coordinates.
    constexpr KARMathPoint2D(double x, double y) : m_x(x), m_y(y) {}

    /// First coordinate.
    constexpr double GetX() const { return m_x; }
    /// Second coordinate.
    constexpr double GetY() const { return m_y; }
    /// Coordinate 0 or 1; any other index gives the second.
    constexpr double operator[](int index) const { return index == 0 ? m_x : m_y; }
    /// Sets the first coordinate.
    constexpr void SetX(double x) { m_x = x; }
    /// Sets the second coordinate.
    constexpr void SetY(double y) { m_y = y; }
    /// Sets both coordinates.
    constexpr void SetCoord(double x, double y)
    {
        m_x = x;
        m_y = y;
    }
    /// Gives both coordinates.
    constexpr void GetCoord(double& x, double& y) const
    {
        x = m_x;
        y = m_y;
    }
    /// Distance to another point.
    double DistanceTo(const KARMathPoint2D& other) const { return (*this - other).Norm(); }

    /// Moves the point by a vector.
    constexpr KARMathPoint2D& operator+=(const KARMathVector2D& v) { return *this = *this + v; }
    constexpr KARMathPoint2D& operator-=(const KARMathVector2D& v) { return *this = *this - v; }

    friend constexpr KARMathVector2D operator-(const KARMathPoint2D& a, const KARMathPoint2D& b)
    {
        return {a.m_x - b.m_x, a.m_y - b.m_y};
    }
    friend constexpr KARMathPoint2D operator+(const KARMathPoint2D& p, const KARMathVector2D& v)
    {
        return {p.m_x + v.GetX(), p.m_y + v.GetY()};
    }
    friend constexpr KARMathPoint2D operator-(const KARMathPoint2D& p, const KARMathVector2D& v)
    {
        return {p.m_x - v.GetX(), p.m_y - v.GetY()};
    }
    friend constexpr bool operator==(const KARMathPoint2D& a, const KARMathPoint2D& b) = default;

private:
    double m_x = 0.0;
    double m_y = 0.0;
};
