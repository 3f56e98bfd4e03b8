// The space that a picture takes up.
#pragma once

#include "KARMathPoint.h"
#include "KARMathVector.h"

#include <algorithm>
#include <cmath>

namespace karmp::tool {

/// A box along the axes that grows around points; empty at first.
class ViewBox
{
public:
    void Add(const KARMathPoint& point)
    {
        m_low = {std::min(m_low.GetX(), point.GetX()), std::min(m_low.GetY(), point.GetY()),
                 std::min(m_low.GetZ(), point.GetZ())};
        m_high = {std::max(m_high.GetX(), point.GetX()), std::max(m_high.GetY(), point.GetY()),
                  std::max(m_high.GetZ(), point.GetZ())};
    }
    bool IsEmpty() const { return m_low.GetX() > m_high.GetX(); }
    /// The corners of least and of greatest coordinates, of a box that is not empty.
    const KARMathPoint& Low() const { return m_low; }
    const KARMathPoint& High() const { return m_high; }
    /// The length from corner to corner; 0 of an empty box.
    double Diagonal() const { return IsEmpty() ? 0.0 : (m_high - m_low).Norm(); }

private:
    KARMathPoint m_low{HUGE_VAL, HUGE_VAL, HUGE_VAL};
    KARMathPoint m_high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
};

} // namespace karmp::tool
