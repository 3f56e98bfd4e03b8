#pragma once

#include "KARMathPoint.h"

#include <cmath>

/// A circle in space, with the parametrisation of its angle.
class KARMathCircle
{
public:
    /// The circle of radius 0 about the origin, with the directions (1, 0, 0) and (0, 1, 0).
    constexpr KARMathCircle() = default;
    /// The circle that Set makes of the same values.
    constexpr KARMathCircle(const KARMathPoint& center, const KARMathVector& first,
                            const KARMathVector& second, double radius, double scale = 1.0,
                            double shift = 0.0)
    {
        Set(center, first, second, radius, scale, shift);
    }

    /// Sets all values, as given: the two unit directions of the circle's plane, and the angle
    /// that belongs to a parameter t, which is scale * t + shift, in radians.
    constexpr void Set(const KARMathPoint& center, const KARMathVector& first,
                       const KARMathVector& second, double radius, double scale, double shift)
    {
        m_center = center;
        m_first = first;
        m_second = second;
        m_radius = radius;
        m_scale = scale;
        m_shift = shift;
    }

    /// Centre.
    constexpr const KARMathPoint& GetCenter() const { return m_center; }
    /// Radius.
    constexpr double GetRadius() const { return m_radius; }
    /// The two directions, as they were given.
    constexpr void GetDirections(KARMathVector& first, KARMathVector& second) const
    {
        first = m_first;
        second = m_second;
    }
    /// First direction x second direction.
    constexpr KARMathVector GetNormal() const { return m_first.Cross(m_second); }
    /// Factor of the parameter in the angle.
    constexpr double GetScale() const { return m_scale; }
    /// Constant part of the angle, in radians.
    constexpr double GetShift() const { return m_shift; }
    /// The point at a parameter.
    KARMathPoint Evaluate(double parameter) const
    {
        const double angle = m_scale * parameter + m_shift;
        return m_center + m_first * (m_radius * std::cos(angle)) +
               m_second * (m_radius * std::sin(angle));
    }

    friend constexpr bool operator==(const KARMathCircle& a, const KARMathCircle& b) = default;

private:
    KARMathPoint m_center;
    KARMathVector m_first{1.0, 0.0, 0.0};
    KARMathVector m_second{0.0, 1.0, 0.0};
    double m_radius = 0.0;
    double m_scale = 1.0;
    double m_shift = 0.0;
};
