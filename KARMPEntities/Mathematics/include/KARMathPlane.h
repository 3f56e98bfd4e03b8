#pragma once

#include "KARMathDirection.h"
#include "KARMathPoint.h"

#include <cmath>

/// A plane in space, given by a point and its normal.
class KARMathPlane
{
public:
    /// The plane through the origin with the normal (0, 0, 1).
    constexpr KARMathPlane() = default;
    /// The plane through a point with a normal, which is kept as given.
    constexpr KARMathPlane(const KARMathPoint& origin, const KARMathVector& normal)
        : m_origin(origin), m_normal(normal)
    {}

    /// A point of the plane.
    constexpr const KARMathPoint& GetOrigin() const { return m_origin; }
    /// The normal, as it was given.
    constexpr const KARMathDirection& GetNormal() const { return m_normal; }
    /// Sets the origin.
    constexpr void SetOrigin(const KARMathPoint& origin) { m_origin = origin; }
    /// Sets the normal, as given.
    constexpr void SetNormal(const KARMathVector& normal) { m_normal = normal; }

    /// Two unit directions of the plane at a right angle, first x second being the normal's
    /// direction. They depend on the normal only; a null or not finite normal counts as (0, 0, 1).
    void GetDirections(KARMathVector& first, KARMathVector& second) const
    {
        KARMathVector n = m_normal;
        if (!n.Normalize())
            n = KARMathVector(0.0, 0.0, 1.0);
        // The reference axis follows the sign of z, so that the divisor never comes near 0.
        const double sign = std::signbit(n.GetZ()) ? -1.0 : 1.0;
        const double a = -1.0 / (sign + n.GetZ());
        const double b = n.GetX() * n.GetY() * a;
        // Adding 0 turns a negative zero into a positive one.
        first = {1.0 + sign * n.GetX() * n.GetX() * a, sign * b + 0.0, -sign * n.GetX() + 0.0};
        second = {b + 0.0, sign + n.GetY() * n.GetY() * a, -n.GetY() + 0.0};
    }

    friend constexpr bool operator==(const KARMathPlane& a, const KARMathPlane& b) = default;

private:
    KARMathPoint m_origin;
    KARMathDirection m_normal{0.0, 0.0, 1.0};
};
