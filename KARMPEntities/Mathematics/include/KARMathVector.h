#pragma once

#include "KARPlatformExport.h"

#include <cmath>

/// A free vector in space: a translation, a velocity, a force.
class KARMathVector
{
public:
    /// The null vector.
    constexpr KARMathVector() = default;
    /// The vector with these components.
    constexpr KARMathVector(double x, double y, double z) : m_x(x), m_y(y), m_z(z) {}

    /// First component.
    constexpr double GetX() const { return m_x; }
    /// Second component.
    constexpr double GetY() const { return m_y; }
    /// Third component.
    constexpr double GetZ() const { return m_z; }
    /// Component 0, 1 or 2; any other index gives the third.
    constexpr double operator[](int index) const
    {
        return index == 0 ? m_x : (index == 1 ? m_y : m_z);
    }
    /// Sets the first component.
    constexpr void SetX(double x) { m_x = x; }
    /// Sets the second component.
    constexpr void SetY(double y) { m_y = y; }
    /// Sets the third component.
    constexpr void SetZ(double z) { m_z = z; }
    /// Sets all components, as given.
    constexpr void SetCoord(double x, double y, double z)
    {
        m_x = x;
        m_y = y;
        m_z = z;
    }
    /// Gives all components.
    constexpr void GetCoord(double& x, double& y, double& z) const
    {
        x = m_x;
        y = m_y;
        z = m_z;
    }

    /// Scalar product.
    constexpr double Dot(const KARMathVector& other) const
    {
        return m_x * other.m_x + m_y * other.m_y + m_z * other.m_z;
    }
    /// Vector product, this one first; a null component is never a negative zero.
    constexpr KARMathVector Cross(const KARMathVector& other) const
    {
        return {m_y * other.m_z - m_z * other.m_y + 0.0, m_z * other.m_x - m_x * other.m_z + 0.0,
                m_x * other.m_y - m_y * other.m_x + 0.0};
    }
    /// Sum of the squares of the components.
    constexpr double SquareNorm() const { return Dot(*this); }
    /// Length, without overflow in between.
    double Norm() const { return std::hypot(m_x, m_y, m_z); }
    /// This vector times the power of two that brings its largest component between 1/2 and 1, so
    /// that squares neither overflow nor underflow; a null vector or one that is not finite stays.
    KARMathVector ScaledToUnity() const
    {
        const double largest = std::fmax(std::abs(m_x), std::fmax(std::abs(m_y), std::abs(m_z)));
        if (!std::isfinite(largest) || largest == 0.0)
            return *this;
        int exponent = 0;
        std::frexp(largest, &exponent);
        return {std::ldexp(m_x, -exponent), std::ldexp(m_y, -exponent), std::ldexp(m_z, -exponent)};
    }
    /// Scales to length 1; false, with nothing changed, when the length is 0 or a component is not
    /// finite.
    bool Normalize()
    {
        KARMathVector scaled = *this;
        double norm = Norm();
        if (!std::isnormal(norm)) {
            scaled = ScaledToUnity();
            norm = scaled.Norm();
        }
        if (!std::isnormal(norm))
            return false;
        *this = {scaled.m_x / norm, scaled.m_y / norm, scaled.m_z / norm};
        return true;
    }

    /// Adds, subtracts and scales in place.
    constexpr KARMathVector& operator+=(const KARMathVector& other)
    {
        return *this = *this + other;
    }
    constexpr KARMathVector& operator-=(const KARMathVector& other)
    {
        return *this = *this - other;
    }
    constexpr KARMathVector& operator*=(double factor) { return *this = *this * factor; }

    friend constexpr KARMathVector operator+(const KARMathVector& a, const KARMathVector& b)
    {
        return {a.m_x + b.m_x, a.m_y + b.m_y, a.m_z + b.m_z};
    }
    friend constexpr KARMathVector operator-(const KARMathVector& a, const KARMathVector& b)
    {
        return {a.m_x - b.m_x, a.m_y - b.m_y, a.m_z - b.m_z};
    }
    friend constexpr KARMathVector operator-(const KARMathVector& a)
    {
        return {-a.m_x, -a.m_y, -a.m_z};
    }
    friend constexpr KARMathVector operator*(const KARMathVector& a, double factor)
    {
        return {a.m_x * factor, a.m_y * factor, a.m_z * factor};
    }
    friend constexpr KARMathVector operator*(double factor, const KARMathVector& a)
    {
        return a * factor;
    }
    friend constexpr bool operator==(const KARMathVector& a, const KARMathVector& b) = default;

private:
    double m_x = 0.0;
    double m_y = 0.0;
    double m_z = 0.0;
};
