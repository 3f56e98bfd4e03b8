#pragma once

#include "KARPlatformExport.h"

/// A parameter of a curve: the number, and the piece of the curve that it lies on.
class KARCrvParam
{
public:
    /// The parameter 0 on the first piece.
    constexpr KARCrvParam() = default;
    /// A parameter on a piece, counted from 0.
    constexpr explicit KARCrvParam(double value, int piece = 0) : m_value(value), m_piece(piece) {}

    /// The number.
    constexpr double GetValue() const { return m_value; }
    /// Index of the piece: the segment of a polyline, the knot span of a spline, else 0.
    constexpr int GetPiece() const { return m_piece; }

    friend constexpr bool operator==(const KARCrvParam& a, const KARCrvParam& b) = default;

private:
    double m_value = 0.0;
    int m_piece = 0;
};
