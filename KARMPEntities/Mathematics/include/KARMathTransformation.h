#pragma once

#include "KARMath3x3Matrix.h"
#include "KARMathAxis.h"
#include "KARMathLine.h"
#include "KARMathPoint.h"

#include <cmath>

/// An affine transformation of space, x -> matrix * x + vector: a body's position, a displacement.
class KARMathTransformation
{
public:
    /// How far a product of matrix coefficients may lie from what IsSimilitude and IsIsometry ask,
    /// relative to the ratio's square.
    static constexpr double MatrixTolerance = 1e-12;
    /// How far a coefficient of the matrix may lie from the identity's in IsIdentity: the rounding
    /// of a coefficient near 1.
    static constexpr double RoundingTolerance = 1e-15;
    /// How far target * inverse(start) may lie from the identity when start and target are the same
    /// position, relative to 1 in the matrix and to the positions' size in the vector: some ten
    /// times the rounding of the inverse and the product.
    static constexpr double ChangeTolerance = 1e-14;

    /// The identity.
    constexpr KARMathTransformation() = default;
    /// The transformation with this matrix and this vector.
    constexpr KARMathTransformation(const KARMath3x3Matrix& matrix, const KARMathVector& vector)
        : m_matrix(matrix), m_vector(vector)
    {}
    /// The translation by a vector.
    explicit constexpr KARMathTransformation(const KARMathVector& translation)
        : m_vector(translation)
    {}
    /// The transformation that takes the world's axis system to this one.
    explicit constexpr KARMathTransformation(const KARMathAxis& axis)
        : m_matrix(axis.GetFirstDirection(), axis.GetSecondDirection(), axis.GetThirdDirection()),
          m_vector(axis.GetOrigin() - KARMathPoint())
    {}

    /// The rotation about a line by an angle in radians; about a null or not finite direction it is
    /// the identity.
    static KARMathTransformation Rotation(const KARMathLine& line, double angle)
    {
        KARMathVector axis = line.GetDirection();
        if (!axis.Normalize())
            return {};
        const auto turn = [&](const KARMathVector& v) {
            return v * std::cos(angle) + axis.Cross(v) * std::sin(angle) +
                   axis * (axis.Dot(v) * (1.0 - std::cos(angle)));
        };
        const KARMath3x3Matrix matrix(turn({1.0, 0.0, 0.0}), turn({0.0, 1.0, 0.0}),
                                      turn({0.0, 0.0, 1.0}));
        const KARMathVector origin = line.GetOrigin() - KARMathPoint();
        return {matrix, origin - matrix * origin};
    }

    /// Linear part.
    constexpr const KARMath3x3Matrix& GetMatrix() const { return m_matrix; }
    /// Sets the linear part.
    constexpr void SetMatrix(const KARMath3x3Matrix& matrix) { m_matrix = matrix; }
    /// Translation part.
    constexpr const KARMathVector& GetVector() const { return m_vector; }
    /// Sets the translation part.
    constexpr void SetVector(const KARMathVector& vector) { m_vector = vector; }
    /// Fills twelve doubles: the matrix's first, second and third column, then the vector.
    constexpr void GetCoef(double* coefficients) const
    {
        for (int column = 0; column < 4; ++column) {
            const KARMathVector& v = column < 3 ? m_matrix.GetColumn(column) : m_vector;
            v.GetCoord(coefficients[3 * column], coefficients[3 * column + 1],
                       coefficients[3 * column + 2]);
        }
    }
    /// Takes twelve doubles in the order of GetCoef.
    constexpr void SetCoef(const double* coefficients)
    {
        const double* c = coefficients;
        m_matrix = {{c[0], c[1], c[2]}, {c[3], c[4], c[5]}, {c[6], c[7], c[8]}};
        m_vector = {c[9], c[10], c[11]};
    }

    /// Gives the inverse; false, with the argument untouched, when the matrix has none.
    bool ComputeInverse(KARMathTransformation& inverse) const
    {
        KARMath3x3Matrix matrix;
        if (!m_matrix.ComputeInverse(matrix))
            return false;
        inverse = {matrix, -(matrix * m_vector)};
        return true;
    }
    /// True when the matrix is the identity's within rounding and the vector is null: the test of a
    /// move that is given. Coefficients of the matrix are numbers and compare with 1. The
    /// vector is a length in units that are not known here, with no other length to compare it
    /// with, so any translation is a move, however short: a million short ones add up.
    bool IsIdentity() const
    {
        return IsNear(m_matrix, KARMath3x3Matrix::Identity(), RoundingTolerance) &&
               m_vector == KARMathVector();
    }
    /// True when this, computed as target * inverse(start), is the identity but for the rounding of
    /// that computation. Rounding grows with the coordinates of the two positions, so the vector
    /// compares with their size, in whatever units: near the origin the shortest translation is a
    /// change, at coordinates of 1e7 one of 1e-8 is not.
    bool IsNoChange(const KARMathTransformation& start, const KARMathTransformation& target) const
    {
        const double size = std::fmax(start.m_vector.Norm(), target.m_vector.Norm());
        return IsNear(m_matrix, KARMath3x3Matrix::Identity(), ChangeTolerance) &&
               IsNear(m_vector, KARMathVector(), ChangeTolerance * size);
    }
    /// True when the matrix keeps all angles, up to a reflection: a rotation times a ratio that is
    /// not 0, within 1e-12 of the ratio's square.
    bool IsSimilitude() const
    {
        const KARMath3x3Matrix gram = m_matrix.Transpose() * m_matrix;
        const double square = (gram(0, 0) + gram(1, 1) + gram(2, 2)) / 3.0;
        return std::isfinite(square) && square > 0.0 &&
               IsNear(gram, square * KARMath3x3Matrix::Identity(), MatrixTolerance * square);
    }
    /// True when this keeps all distances, up to a reflection: a similitude of ratio 1.
    bool IsIsometry() const
    {
        return IsNear(m_matrix.Transpose() * m_matrix, KARMath3x3Matrix::Identity(),
                      MatrixTolerance);
    }

    friend constexpr KARMathPoint operator*(const KARMathTransformation& t, const KARMathPoint& p)
    {
        return KARMathPoint() + (t.m_matrix * (p - KARMathPoint()) + t.m_vector);
    }
    /// A vector is turned and scaled, not moved.
    friend constexpr KARMathVector operator*(const KARMathTransformation& t, const KARMathVector& v)
    {
        return t.m_matrix * v;
    }
    friend constexpr KARMathLine operator*(const KARMathTransformation& t, const KARMathLine& line)
    {
        return {t * line.GetOrigin(), t.m_matrix * line.GetDirection()};
    }
    friend constexpr KARMathAxis operator*(const KARMathTransformation& t, const KARMathAxis& axis)
    {
        return {t * axis.GetOrigin(), t.m_matrix * axis.GetFirstDirection(),
                t.m_matrix * axis.GetSecondDirection(), t.m_matrix * axis.GetThirdDirection()};
    }
    /// The transformation that applies b first, then a.
    friend constexpr KARMathTransformation operator*(const KARMathTransformation& a,
                                                     const KARMathTransformation& b)
    {
        return {a.m_matrix * b.m_matrix, a.m_matrix * b.m_vector + a.m_vector};
    }
    friend constexpr bool operator==(const KARMathTransformation& a,
                                     const KARMathTransformation& b) = default;

private:
    static bool IsNear(const KARMathVector& a, const KARMathVector& b, double tolerance)
    {
        const KARMathVector d = a - b;
        return std::abs(d.GetX()) <= tolerance && std::abs(d.GetY()) <= tolerance &&
               std::abs(d.GetZ()) <= tolerance;
    }
    static bool IsNear(const KARMath3x3Matrix& a, const KARMath3x3Matrix& b, double tolerance)
    {
        return IsNear(a.GetFirstColumn(), b.GetFirstColumn(), tolerance) &&
               IsNear(a.GetSecondColumn(), b.GetSecondColumn(), tolerance) &&
               IsNear(a.GetThirdColumn(), b.GetThirdColumn(), tolerance);
    }

    KARMath3x3Matrix m_matrix = KARMath3x3Matrix::Identity();
    KARMathVector m_vector;
};
