#pragma once

#include "KARMathPoint.h"

/// An axis system in space: an origin and three directions, a joint's frame for one.
class KARMathAxis
{
public:
    /// The world's axis system.
    constexpr KARMathAxis() = default;
    /// The axis system with these values, as given.
    constexpr KARMathAxis(const KARMathPoint& origin, const KARMathVector& first,
                          const KARMathVector& second, const KARMathVector& third)
        : m_origin(origin), m_first(first), m_second(second), m_third(third)
    {}

    /// Origin.
    constexpr const KARMathPoint& GetOrigin() const { return m_origin; }
    /// Sets the origin.
    constexpr void SetOrigin(const KARMathPoint& origin) { m_origin = origin; }
    /// First direction.
    constexpr const KARMathVector& GetFirstDirection() const { return m_first; }
    /// Second direction.
    constexpr const KARMathVector& GetSecondDirection() const { return m_second; }
    /// Third direction.
    constexpr const KARMathVector& GetThirdDirection() const { return m_third; }
    /// Gives the three directions.
    constexpr void GetDirections(KARMathVector& first, KARMathVector& second,
                                 KARMathVector& third) const
    {
        first = m_first;
        second = m_second;
        third = m_third;
    }
    /// Sets the three directions, as given.
    constexpr void SetDirections(const KARMathVector& first, const KARMathVector& second,
                                 const KARMathVector& third)
    {
        m_first = first;
        m_second = second;
        m_third = third;
    }

    friend constexpr bool operator==(const KARMathAxis& a, const KARMathAxis& b) = default;

private:
    KARMathPoint m_origin;
    KARMathVector m_first{1.0, 0.0, 0.0};
    KARMathVector m_second{0.0, 1.0, 0.0};
    KARMathVector m_third{0.0, 0.0, 1.0};
};
