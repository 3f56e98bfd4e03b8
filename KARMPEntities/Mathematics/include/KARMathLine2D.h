#pragma once

#include "KARMathPoint2D.h"

/// A straight line in the plane.
class KARMathLine2D
{
public:
    /// The line through the origin along (1, 0).
    constexpr KARMathLine2D() = default;
    /// The line through a point along a direction, which is kept as given.
    constexpr KARMathLine2D(const KARMathPoint2D& origin, const KARMathVector2D& direction)
        : m_origin(origin), m_direction(direction)
    {}

    /// A point of the line.
    constexpr const KARMathPoint2D& GetOrigin() const { return m_origin; }
    /// The direction, as it was given.
    constexpr const KARMathVector2D& GetDirection() const { return m_direction; }
    /// Sets the origin.
    constexpr void SetOrigin(const KARMathPoint2D& origin) { m_origin = origin; }
    /// Sets the direction, as given.
    constexpr void SetDirection(const KARMathVector2D& direction) { m_direction = direction; }

    friend constexpr bool operator==(const KARMathLine2D& a, const KARMathLine2D& b) = default;

private:
    KARMathPoint2D m_origin;
    KARMathVector2D m_direction{1.0, 0.0};
};
