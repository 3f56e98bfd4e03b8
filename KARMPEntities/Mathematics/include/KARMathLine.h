#pragma once

#include "KARMathDirection.h"
#include "KARMathPoint.h"

/// A straight line in space: a joint's axis, a drag line.
class KARMathLine
{
public:
    /// The line through the origin along (1, 0, 0).
    constexpr KARMathLine() = default;
    /// The line through a point along a direction, which is kept as given.
    constexpr KARMathLine(const KARMathPoint& origin, const KARMathVector& direction)
        : m_origin(origin), m_direction(direction)
    {}

    /// A point of the line.
    constexpr const KARMathPoint& GetOrigin() const { return m_origin; }
    /// The direction, as it was given.
    constexpr const KARMathDirection& GetDirection() const { return m_direction; }
    /// Sets the origin.
    constexpr void SetOrigin(const KARMathPoint& origin) { m_origin = origin; }
    /// Sets the direction, as given.
    constexpr void SetDirection(const KARMathVector& direction) { m_direction = direction; }

    friend constexpr bool operator==(const KARMathLine& a, const KARMathLine& b) = default;

private:
    KARMathPoint m_origin;
    KARMathDirection m_direction;
};
