// Puts the numbers of a drawing together.
#pragma once

#include "ViewScene.h"

#include <cmath>

namespace karmp::tool {

/// Collects the numbers of a drawing.
class Pen
{
public:
    Pen(ViewDrawing& drawing, ViewKind kind) : m_drawing(drawing) { m_drawing.kind = kind; }

    Pen& Add(double number)
    {
        m_drawing.numbers.push_back(number);
        return *this;
    }
    template <class Triple>
    Pen& Add(const Triple& triple)
    {
        return Add(triple.GetX()).Add(triple.GetY()).Add(triple.GetZ());
    }
    // A null direction makes the drawing invalid.
    Pen& AddDirection(KARMathVector direction)
    {
        return direction.Normalize() ? Add(direction) : Add(std::nan(""));
    }
    // So does a length that is none.
    Pen& AddLength(double length) { return Add(length > 0.0 ? length : std::nan("")); }

private:
    ViewDrawing& m_drawing;
};

} // namespace karmp::tool
