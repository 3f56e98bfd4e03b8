#pragma once

#include "KARMath2x2Matrix.h"
#include "KARMathAxis2D.h"
#include "KARMathLine2D.h"
#include "KARMathPoint2D.h"

#include <cmath>

/// An affine transformation of the plane, x -> matrix * x + vector: a planar body's position.
class KARMathTransformation2D
{
public:
    /// How far a product of matrix coefficients may lie from what IsSimilitude asks, relative to
    /// the ratio's square.
    static constexpr double MatrixTolerance = 1e-12;
    /// How far a coefficient of the matrix may lie off in IsScaling, relative to the ratio: the
    /// rounding of a coefficient near 1.
    static constexpr double RoundingTolerance = 1e-15;
    /// How far target * inverse(start) may lie from the identity when start and target are the same
    /// position; see KARMathTransformation.
    static constexpr double ChangeTolerance = 1e-14;

    /// The identity.
    constexpr KARMathTransformation2D() = default;
    /// The transformation with this matrix and this vector.
    constexpr KARMathTransformation2D(const KARMath2x2Matrix& matrix, const KARMathVector2D& vector)
        : m_matrix(matrix), m_vector(vector)
    {}
    /// The translation by a vector.
    explicit constexpr KARMathTransformation2D(const KARMathVector2D& translation)
        : m_vector(translation)
    {}
    /// The rotation about a point by an angle in radians.
    static KARMathTransformation2D Rotation(const KARMathPoint2D& center, double angle)
    {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const KARMath2x2Matrix matrix({c, s}, {-s, c});
        const KARMathVector2D origin = center - KARMathPoint2D();
        return {matrix, origin - matrix * origin};
    }

    /// Linear part.
    constexpr const KARMath2x2Matrix& GetMatrix() const { return m_matrix; }
    /// Sets the linear part.
    constexpr void SetMatrix(const KARMath2x2Matrix& matrix) { m_matrix = matrix; }
    /// Translation part.
    constexpr const KARMathVector2D& GetVector() const { return m_vector; }
    /// Sets the translation part.
    constexpr void SetVector(const KARMathVector2D& vector) { m_vector = vector; }
    /// Fills six doubles: the matrix's first and second column, then the vector.
    constexpr void GetCoef(double* coefficients) const
    {
        m_matrix.GetFirstColumn().GetCoord(coefficients[0], coefficients[1]);
        m_matrix.GetSecondColumn().GetCoord(coefficients[2], coefficients[3]);
        m_vector.GetCoord(coefficients[4], coefficients[5]);
    }
    /// Takes six doubles in the order of GetCoef.
    constexpr void SetCoef(const double* coefficients)
    {
        const double* c = coefficients;
        m_matrix = {{c[0], c[1]}, {c[2], c[3]}};
        m_vector = {c[4], c[5]};
    }

    /// Gives the inverse; false, with the argument untouched, when the matrix has none.
    bool ComputeInverse(KARMathTransformation2D& inverse) const
    {
        KARMath2x2Matrix matrix;
        if (!m_matrix.ComputeInverse(matrix))
            return false;
        inverse = {matrix, -(matrix * m_vector)};
        return true;
    }
    /// True when the matrix keeps all angles, up to a reflection: a rotation times a ratio that is
    /// not 0.
    bool IsSimilitude() const
    {
        const KARMathVector2D& a = m_matrix.GetFirstColumn();
        const KARMathVector2D& b = m_matrix.GetSecondColumn();
        const double square = (a.SquareNorm() + b.SquareNorm()) / 2.0;
        return std::isfinite(square) && square > 0.0 &&
               std::abs(a.SquareNorm() - square) <= MatrixTolerance * square &&
               std::abs(a.Dot(b)) <= MatrixTolerance * square;
    }
    /// True when this scales all lengths from the origin, without a turn, and then gives the ratio,
    /// which is exactly 1.0 when it lies within rounding of it. A vector that is not null, however
    /// short, makes it none, so that a translation is never taken for the identity. False leaves
    /// the argument untouched.
    bool IsScaling(double& ratio) const
    {
        const double value = (m_matrix(0, 0) + m_matrix(1, 1)) / 2.0;
        if (!std::isfinite(value) || value == 0.0 || m_vector != KARMathVector2D() ||
            !IsNear(m_matrix, value * KARMath2x2Matrix::Identity(),
                    RoundingTolerance * std::abs(value)))
            return false;
        ratio = std::abs(value - 1.0) <= RoundingTolerance ? 1.0 : value;
        return true;
    }
    /// True when this, computed as target * inverse(start), is the identity but for the rounding of
    /// that computation, which grows with the coordinates of the two positions.
    bool IsNoChange(const KARMathTransformation2D& start,
                    const KARMathTransformation2D& target) const
    {
        const double size = std::fmax(start.m_vector.Norm(), target.m_vector.Norm());
        return IsNear(m_matrix, KARMath2x2Matrix::Identity(), ChangeTolerance) &&
               IsNear(m_vector, KARMathVector2D(), ChangeTolerance * size);
    }

    friend constexpr KARMathPoint2D operator*(const KARMathTransformation2D& t,
                                              const KARMathPoint2D& p)
    {
        return KARMathPoint2D() + (t.m_matrix * (p - KARMathPoint2D()) + t.m_vector);
    }
    /// A vector is turned and scaled, not moved.
    friend constexpr KARMathVector2D operator*(const KARMathTransformation2D& t,
                                               const KARMathVector2D& v)
    {
        return t.m_matrix * v;
    }
    friend constexpr KARMathLine2D operator*(const KARMathTransformation2D& t,
                                             const KARMathLine2D& line)
    {
        return {t * line.GetOrigin(), t.m_matrix * line.GetDirection()};
    }
    friend constexpr KARMathAxis2D operator*(const KARMathTransformation2D& t,
                                             const KARMathAxis2D& axis)
    {
        return {t * axis.GetOrigin(), t.m_matrix * axis.GetFirstDirection(),
                t.m_matrix * axis.GetSecondDirection()};
    }
    /// The transformation that applies b first, then a.
    friend constexpr KARMathTransformation2D operator*(const KARMathTransformation2D& a,
                                                       const KARMathTransformation2D& b)
    {
        return {a.m_matrix * b.m_matrix, a.m_matrix * b.m_vector + a.m_vector};
    }
    friend constexpr bool operator==(const KARMathTransformation2D& a,
                                     const KARMathTransformation2D& b) = default;

private:
    static bool IsNear(const KARMathVector2D& a, const KARMathVector2D& b, double tolerance)
    {
        const KARMathVector2D d = a - b;
        return std::abs(d.GetX()) <= tolerance && std::abs(d.GetY()) <= tolerance;
    }
    static bool IsNear(const KARMath2x2Matrix& a, const KARMath2x2Matrix& b, double tolerance)
    {
        return IsNear(a.GetFirstColumn(), b.GetFirstColumn(), tolerance) &&
               IsNear(a.GetSecondColumn(), b.GetSecondColumn(), tolerance);
    }

    KARMath2x2Matrix m_matrix = KARMath2x2Matrix::Identity();
    KARMathVector2D m_vector;
};
