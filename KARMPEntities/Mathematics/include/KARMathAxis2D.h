#pragma once

#include "KARMathPoint2D.h"

/// An axis system in the plane: an origin and two directions.
class KARMathAxis2D
{
public:
    /// The plane's own axis system.
    constexpr KARMathAxis2D() = default;
    /// The axis system with these values, as given.
    constexpr KARMathAxis2D(const KARMathPoint2D& origin, const KARMathVector2D& first,
                            const KARMathVector2D& second)
        : m_origin(origin), m_first(first), m_second(second)
    {}

    /// Origin.
    constexpr const KARMathPoint2D& GetOrigin() const { return m_origin; }
    /// Sets the origin.
    constexpr void SetOrigin(const KARMathPoint2D& origin) { m_origin = origin; }
    /// First direction.
    constexpr const KARMathVector2D& GetFirstDirection() const { return m_first; }
    /// Second direction.
    constexpr const KARMathVector2D& GetSecondDirection() const { return m_second; }
    /// Gives both directions.
    constexpr void GetDirections(KARMathVector2D& first, KARMathVector2D& second) const
    {
        first = m_first;
        second = m_second;
    }
    /// Sets both directions, as given.
    constexpr void SetDirections(const KARMathVector2D& first, const KARMathVector2D& second)
    {
        m_first = first;
        m_second = second;
    }

    friend constexpr bool operator==(const KARMathAxis2D& a, const KARMathAxis2D& b) = default;

private:
    KARMathPoint2D m_origin;
    KARMathVector2D m_first{1.0, 0.0};
    KARMathVector2D m_second{0.0, 1.0};
};
