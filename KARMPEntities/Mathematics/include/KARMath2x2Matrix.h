#pragma once

#include "KARMathVector2D.h"

#include <cmath>

/// A 2 x 2 matrix of two columns: a planar inertia, the linear part of a planar transformation.
class KARMath2x2Matrix
{
public:
    /// The null matrix.
    constexpr KARMath2x2Matrix() = default;
    /// The matrix with these columns.
    constexpr KARMath2x2Matrix(const KARMathVector2D& first, const KARMathVector2D& second)
        : m_first(first), m_second(second)
    {}
    /// The identity matrix.
    static constexpr KARMath2x2Matrix Identity() { return {{1.0, 0.0}, {0.0, 1.0}}; }

    /// First column.
    constexpr const KARMathVector2D& GetFirstColumn() const { return m_first; }
    /// Second column.
    constexpr const KARMathVector2D& GetSecondColumn() const { return m_second; }
    /// Column 0 or 1; any other index gives the second.
    constexpr const KARMathVector2D& GetColumn(int index) const
    {
        return index == 0 ? m_first : m_second;
    }
    /// Gives both columns.
    constexpr void GetColumns(KARMathVector2D& first, KARMathVector2D& second) const
    {
        first = m_first;
        second = m_second;
    }
    /// Sets the first column.
    constexpr void SetFirstColumn(const KARMathVector2D& column) { m_first = column; }
    /// Sets the second column.
    constexpr void SetSecondColumn(const KARMathVector2D& column) { m_second = column; }
    /// Sets column 0 or 1; any other index sets the second.
    constexpr void SetColumn(int index, const KARMathVector2D& column)
    {
        (index == 0 ? m_first : m_second) = column;
    }
    /// Sets both columns.
    constexpr void SetColumns(const KARMathVector2D& first, const KARMathVector2D& second)
    {
        *this = {first, second};
    }
    /// The coefficient in a row and a column, each 0 or 1.
    constexpr double operator()(int row, int column) const { return GetColumn(column)[row]; }

    /// Determinant.
    constexpr double Determinant() const { return m_first.Cross(m_second); }
    /// The matrix with rows and columns exchanged.
    constexpr KARMath2x2Matrix Transpose() const
    {
        return {{m_first.GetX(), m_second.GetX()}, {m_first.GetY(), m_second.GetY()}};
    }
    /// Gives the inverse; false, with the argument untouched, when there is none: a coefficient
    /// that is not finite, or a determinant within 1e-12 of 0 relative to the columns' lengths.
    bool ComputeInverse(KARMath2x2Matrix& inverse) const
    {
        const double size = m_first.Norm() * m_second.Norm();
        const double determinant = Determinant();
        if (!std::isfinite(size) || size == 0.0 || std::abs(determinant) <= 1e-12 * size)
            return false;
        const double scale = 1.0 / determinant;
        if (!std::isfinite(scale))
            return false;
        inverse = {{m_second.GetY() * scale, -m_first.GetY() * scale},
                   {-m_second.GetX() * scale, m_first.GetX() * scale}};
        return true;
    }

    friend constexpr KARMathVector2D operator*(const KARMath2x2Matrix& m, const KARMathVector2D& v)
    {
        return m.m_first * v.GetX() + m.m_second * v.GetY();
    }
    friend constexpr KARMath2x2Matrix operator*(const KARMath2x2Matrix& a,
                                                const KARMath2x2Matrix& b)
    {
        return {a * b.m_first, a * b.m_second};
    }
    friend constexpr KARMath2x2Matrix operator*(double factor, const KARMath2x2Matrix& m)
    {
        return {m.m_first * factor, m.m_second * factor};
    }
    friend constexpr KARMath2x2Matrix operator+(const KARMath2x2Matrix& a,
                                                const KARMath2x2Matrix& b)
    {
        return {a.m_first + b.m_first, a.m_second + b.m_second};
    }
    friend constexpr KARMath2x2Matrix operator-(const KARMath2x2Matrix& a,
                                                const KARMath2x2Matrix& b)
    {
        return a + -1.0 * b;
    }
    friend constexpr bool operator==(const KARMath2x2Matrix& a,
                                     const KARMath2x2Matrix& b) = default;

private:
    KARMathVector2D m_first;
    KARMathVector2D m_second;
};
