#pragma once

#include "KARMathVector.h"

#include <cmath>

/// A free vector in the plane.
class KARMathVector2D
{
public:
    /// The null vector.
    constexpr KARMathVector2D() = default;
    /// The vector with these components.
    constexpr KARMathVector2D(double x, double y) : m_x(x), m_y(y) {}

    /// First component.
    constexpr double GetX() const { return m_x; }
    /// Second component.
    constexpr double GetY() const { return m_y; }
    /// Component 0 or 1; any other index gives the second.
    constexpr double operator[](int index) const { return index == 0 ? m_x : m_y; }
    /// Sets the first component.
    constexpr void SetX(double x) { m_x = x; }
    /// Sets the second component.
    constexpr void SetY(double y) { m_y = y; }
    /// Sets both components.
    constexpr void SetCoord(double x, double y)
    {
        m_x = x;
        m_y = y;
    }
    /// Gives both components.
    constexpr void GetCoord(double& x, double& y) const
    {
        x = m_x;
        y = m_y;
    }

    /// Scalar product.
    constexpr double Dot(const KARMathVector2D& other) const
    {
        return m_x * other.m_x + m_y * other.m_y;
    }
    /// The third component of the vector product, this one first.
    constexpr double Cross(const KARMathVector2D& other) const
    {
        return m_x * other.m_y - m_y * other.m_x;
    }
    /// Sum of the squares of the components.
    constexpr double SquareNorm() const { return Dot(*this); }
    /// Length, without overflow in between.
    double Norm() const { return std::hypot(m_x, m_y); }
    /// Scales to length 1; false, with nothing changed, when the length is 0 or a component is not
    /// finite.
    bool Normalize()
    {
        const double norm = Norm();
        if (std::isnormal(norm)) {
            *this = {m_x / norm, m_y / norm};
            return true;
        }
        KARMathVector unit(m_x, m_y, 0.0);
        if (!unit.Normalize())
            return false;
        *this = {unit.GetX(), unit.GetY()};
        return true;
    }

    /// Adds, subtracts and scales in place.
    constexpr KARMathVector2D& operator+=(const KARMathVector2D& other)
    {
        return *this = *this + other;
    }
    constexpr KARMathVector2D& operator-=(const KARMathVector2D& other)
    {
        return *this = *this - other;
    }
    constexpr KARMathVector2D& operator*=(double factor) { return *this = *this * factor; }

    friend constexpr KARMathVector2D operator+(const KARMathVector2D& a, const KARMathVector2D& b)
    {
        return {a.m_x + b.m_x, a.m_y + b.m_y};
    }
    friend constexpr KARMathVector2D operator-(const KARMathVector2D& a, const KARMathVector2D& b)
    {
        return {a.m_x - b.m_x, a.m_y - b.m_y};
    }
    friend constexpr KARMathVector2D operator-(const KARMathVector2D& a)
    {
        return {-a.m_x, -a.m_y};
    }
    friend constexpr KARMathVector2D operator*(const KARMathVector2D& a, double factor)
    {
        return {a.m_x * factor, a.m_y * factor};
    }
    friend constexpr KARMathVector2D operator*(double factor, const KARMathVector2D& a)
    {
        return a * factor;
    }
    friend constexpr bool operator==(const KARMathVector2D& a, const KARMathVector2D& b) = default;

private:
    double m_x = 0.0;
    double m_y = 0.0;
};
