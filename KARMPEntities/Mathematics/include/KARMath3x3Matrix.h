#pragma once

#include "KARMathVector.h"

#include <cmath>

/// A 3 x 3 matrix of three columns: an inertia, the linear part of a transformation.
class KARMath3x3Matrix
{
public:
    /// The null matrix.
    constexpr KARMath3x3Matrix() = default;
    /// The matrix with these columns.
    constexpr KARMath3x3Matrix(const KARMathVector& first, const KARMathVector& second,
                               const KARMathVector& third)
        : m_columns{first, second, third}
    {}
    /// The identity matrix.
    static constexpr KARMath3x3Matrix Identity()
    {
        return {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    }

    /// First column.
    constexpr const KARMathVector& GetFirstColumn() const { return m_columns[0]; }
    /// Second column.
    constexpr const KARMathVector& GetSecondColumn() const { return m_columns[1]; }
    /// Third column.
    constexpr const KARMathVector& GetThirdColumn() const { return m_columns[2]; }
    /// Column 0, 1 or 2; any other index gives the third.
    constexpr const KARMathVector& GetColumn(int index) const
    {
        return m_columns[index == 0 || index == 1 ? index : 2];
    }
    /// Gives the three columns.
    constexpr void GetColumns(KARMathVector& first, KARMathVector& second,
                              KARMathVector& third) const
    {
        first = m_columns[0];
        second = m_columns[1];
        third = m_columns[2];
    }
    /// Sets the first column.
    constexpr void SetFirstColumn(const KARMathVector& column) { m_columns[0] = column; }
    /// Sets the second column.
    constexpr void SetSecondColumn(const KARMathVector& column) { m_columns[1] = column; }
    /// Sets the third column.
    constexpr void SetThirdColumn(const KARMathVector& column) { m_columns[2] = column; }
    /// Sets column 0, 1 or 2; any other index sets the third.
    constexpr void SetColumn(int index, const KARMathVector& column)
    {
        m_columns[index == 0 || index == 1 ? index : 2] = column;
    }
    /// Sets the three columns.
    constexpr void SetColumns(const KARMathVector& first, const KARMathVector& second,
                              const KARMathVector& third)
    {
        *this = {first, second, third};
    }
    /// The coefficient in a row and a column, each 0, 1 or 2.
    constexpr double operator()(int row, int column) const { return GetColumn(column)[row]; }

    /// Determinant.
    constexpr double Determinant() const
    {
        return m_columns[0].Dot(m_columns[1].Cross(m_columns[2]));
    }
    /// The matrix with rows and columns exchanged.
    constexpr KARMath3x3Matrix Transpose() const { return {Row(0), Row(1), Row(2)}; }
    /// Gives the inverse; false, with the argument untouched, when there is none: a coefficient
    /// that is not finite, or a determinant within 1e-12 of 0 relative to the columns' lengths.
    bool ComputeInverse(KARMath3x3Matrix& inverse) const
    {
        const auto& [a, b, c] = m_columns;
        const double determinant = Determinant();
        const double size = a.Norm() * b.Norm() * c.Norm();
        if (!std::isfinite(size) || size == 0.0 || std::abs(determinant) <= 1e-12 * size)
            return false;
        const double scale = 1.0 / determinant;
        if (!std::isfinite(scale))
            return false;
        inverse = KARMath3x3Matrix(b.Cross(c) * scale, c.Cross(a) * scale, a.Cross(b) * scale)
                      .Transpose();
        return true;
    }

    friend constexpr KARMathVector operator*(const KARMath3x3Matrix& m, const KARMathVector& v)
    {
        return m.m_columns[0] * v.GetX() + m.m_columns[1] * v.GetY() + m.m_columns[2] * v.GetZ();
    }
    friend constexpr KARMath3x3Matrix operator*(const KARMath3x3Matrix& a,
                                                const KARMath3x3Matrix& b)
    {
        return {a * b.m_columns[0], a * b.m_columns[1], a * b.m_columns[2]};
    }
    friend constexpr KARMath3x3Matrix operator*(double factor, const KARMath3x3Matrix& m)
    {
        return {m.m_columns[0] * factor, m.m_columns[1] * factor, m.m_columns[2] * factor};
    }
    friend constexpr KARMath3x3Matrix operator+(const KARMath3x3Matrix& a,
                                                const KARMath3x3Matrix& b)
    {
        return {a.m_columns[0] + b.m_columns[0], a.m_columns[1] + b.m_columns[1],
                a.m_columns[2] + b.m_columns[2]};
    }
    friend constexpr KARMath3x3Matrix operator-(const KARMath3x3Matrix& a,
                                                const KARMath3x3Matrix& b)
    {
        return a + -1.0 * b;
    }
    friend constexpr bool operator==(const KARMath3x3Matrix& a,
                                     const KARMath3x3Matrix& b) = default;

private:
    constexpr KARMathVector Row(int row) const
    {
        return {m_columns[0][row], m_columns[1][row], m_columns[2][row]};
    }

    KARMathVector m_columns[3];
};
