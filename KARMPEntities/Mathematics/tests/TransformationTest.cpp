#include "KARMath2x2Matrix.h"
#include "KARMath3x3Matrix.h"
#include "KARMathTransformation.h"
#include "KARMathTransformation2D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

constexpr double HalfTurn = std::numbers::pi;

KARMathTransformation RandomPosition(std::mt19937& generator, double size)
{
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    const KARMathLine line({size * unit(generator), size * unit(generator), 0.0},
                           {unit(generator), unit(generator), unit(generator)});
    KARMathTransformation t = KARMathTransformation::Rotation(line, HalfTurn * unit(generator));
    t.SetVector(t.GetVector() + KARMathVector(size * unit(generator), size * unit(generator),
                                              size * unit(generator)));
    return t;
}

} // namespace

TEST(Math3x3Matrix, IsNullByDefault)
{
    constexpr KARMath3x3Matrix matrix;
    static_assert(matrix.GetFirstColumn() == KARMathVector() &&
                  matrix.GetThirdColumn() == KARMathVector());
    static_assert(KARMath3x3Matrix::Identity().Determinant() == 1.0);
    EXPECT_EQ(KARMath2x2Matrix(), KARMath2x2Matrix({0.0, 0.0}, {0.0, 0.0}));
}

TEST(Math3x3Matrix, ColumnsAreWhatWasSet)
{
    KARMath3x3Matrix m;
    m.SetFirstColumn({1, 2, 3});
    m.SetSecondColumn({4, 5, 6});
    m.SetThirdColumn({7, 8, 9});
    EXPECT_EQ(m, KARMath3x3Matrix({1, 2, 3}, {4, 5, 6}, {7, 8, 9}));
    EXPECT_EQ(m.GetSecondColumn(), KARMathVector(4, 5, 6));
    EXPECT_EQ(m(2, 0), 3.0);
    EXPECT_EQ(m(0, 2), 7.0);
    m.SetColumn(1, {0, 0, 0});
    EXPECT_EQ(m.GetColumn(1), KARMathVector());
    KARMathVector a;
    KARMathVector b;
    KARMathVector c;
    m.GetColumns(a, b, c);
    EXPECT_EQ(KARMath3x3Matrix(a, b, c), m);
    m.SetColumns(c, b, a);
    EXPECT_EQ(m.GetFirstColumn(), c);
}

TEST(Math3x3Matrix, ProductTransposeAndDeterminantFollowTheColumnConvention)
{
    constexpr KARMath3x3Matrix a({1, 2, 3}, {0, 1, 4}, {5, 6, 0});
    static_assert(a.Transpose() == KARMath3x3Matrix({1, 0, 5}, {2, 1, 6}, {3, 4, 0}));
    static_assert(a.Determinant() == 1.0);
    static_assert(a * KARMathVector(1, 2, 3) == KARMathVector(16, 22, 11));
    static_assert(a * KARMath3x3Matrix({1, 2, 3}, {0, 0, 0}, {0, 1, 0}) ==
                  KARMath3x3Matrix({16, 22, 11}, {0, 0, 0}, {0, 1, 4}));
    static_assert(a - a == KARMath3x3Matrix() && a + a == 2.0 * a);
}

TEST(Math3x3Matrix, InverseTimesMatrixIsTheIdentity)
{
    const KARMath3x3Matrix a({1, 2, 3}, {0, 1, 4}, {5, 6, 0});
    KARMath3x3Matrix inverse;
    ASSERT_TRUE(a.ComputeInverse(inverse));
    EXPECT_EQ(inverse, KARMath3x3Matrix({-24, 18, 5}, {20, -15, -4}, {-5, 4, 1}));
    EXPECT_EQ(inverse * a, KARMath3x3Matrix::Identity());
}

TEST(Math3x3Matrix, SmallScaleIsNotTakenForSingular)
{
    KARMath3x3Matrix inverse;
    ASSERT_TRUE((1e-30 * KARMath3x3Matrix::Identity()).ComputeInverse(inverse));
    EXPECT_NEAR(inverse(1, 1), 1e30, 1e15);
}

TEST(Math3x3Matrix, SingularMatrixLeavesTheArgumentAlone)
{
    KARMath3x3Matrix inverse = KARMath3x3Matrix::Identity();
    EXPECT_FALSE(KARMath3x3Matrix().ComputeInverse(inverse));
    EXPECT_FALSE(KARMath3x3Matrix({1, 2, 3}, {4, 5, 6}, {7, 8, 9}).ComputeInverse(inverse));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(KARMath3x3Matrix({nan, 0, 0}, {0, 1, 0}, {0, 0, 1}).ComputeInverse(inverse));
    EXPECT_EQ(inverse, KARMath3x3Matrix::Identity());
}

TEST(Math2x2Matrix, InverseProductAndTransposeAgree)
{
    constexpr KARMath2x2Matrix a({2, 1}, {5, 3});
    static_assert(a.Determinant() == 1.0);
    static_assert(a.Transpose() == KARMath2x2Matrix({2, 5}, {1, 3}));
    static_assert(a * KARMathVector2D(1, 1) == KARMathVector2D(7, 4));
    KARMath2x2Matrix inverse;
    ASSERT_TRUE(a.ComputeInverse(inverse));
    EXPECT_EQ(inverse, KARMath2x2Matrix({3, -1}, {-5, 2}));
    EXPECT_EQ(a * inverse, KARMath2x2Matrix::Identity());
    EXPECT_FALSE(KARMath2x2Matrix({1, 2}, {2, 4}).ComputeInverse(inverse));
    EXPECT_EQ(inverse(1, 1), 2.0);
    KARMath2x2Matrix set;
    set.SetColumns({2, 1}, {0, 0});
    set.SetColumn(1, {5, 3});
    EXPECT_EQ(set, a);
}

TEST(MathTransformation, IsTheIdentityByDefault)
{
    constexpr KARMathTransformation identity;
    static_assert(identity.GetMatrix() == KARMath3x3Matrix::Identity());
    static_assert(identity.GetVector() == KARMathVector());
    EXPECT_TRUE(identity.IsIdentity());
}

TEST(MathTransformation, CoefficientsAreTheThreeDirectionsAndTheOrigin)
{
    const KARMathTransformation t({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {10, 11, 12});
    double coefficients[12];
    t.GetCoef(coefficients);
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(coefficients[i], i + 1.0);
    KARMathTransformation copy;
    copy.SetCoef(coefficients);
    EXPECT_EQ(copy, t);
}

TEST(MathTransformation, ProductAppliesTheSecondFactorFirst)
{
    const KARMathTransformation shift(KARMathVector(1, 0, 0));
    const KARMathTransformation turn({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}, {});
    const KARMathPoint p(1, 0, 0);
    EXPECT_EQ((shift * turn) * p, KARMathPoint(1, 1, 0));
    EXPECT_EQ((turn * shift) * p, KARMathPoint(0, 2, 0));
    EXPECT_EQ((turn * shift) * p, turn * (shift * p));
}

TEST(MathTransformation, VectorsTurnAndPointsMove)
{
    const KARMathTransformation t({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}, {1, 2, 3});
    EXPECT_EQ(t * KARMathVector(1, 0, 0), KARMathVector(0, 1, 0));
    EXPECT_EQ(t * KARMathPoint(1, 0, 0), KARMathPoint(1, 3, 3));
    EXPECT_EQ(t * KARMathLine({1, 0, 0}, {1, 0, 0}), KARMathLine({1, 3, 3}, {0, 1, 0}));
}

TEST(MathTransformation, MovesTheWorldsAxisSystemToItsOwn)
{
    const KARMathAxis axis({1, 2, 3}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
    const KARMathTransformation t(axis);
    EXPECT_EQ(t * KARMathAxis(), axis);
    KARMathTransformation inverse;
    ASSERT_TRUE(t.ComputeInverse(inverse));
    EXPECT_EQ(inverse * axis, KARMathAxis());
}

TEST(MathTransformation, RotationTurnsAboutItsLine)
{
    const KARMathLine line({1, 0, 0}, {0, 0, 2});
    const KARMathPoint p =
        KARMathTransformation::Rotation(line, HalfTurn / 2) * KARMathPoint(2, 0, 5);
    EXPECT_NEAR(p.DistanceTo({1, 1, 5}), 0.0, 1e-15);
    EXPECT_TRUE(KARMathTransformation::Rotation({{1, 0, 0}, {0, 0, 0}}, 1.0).IsIdentity());
}

TEST(MathTransformation, InverseUndoes)
{
    std::mt19937 generator(7);
    for (int i = 0; i < 100; ++i) {
        const KARMathTransformation t = RandomPosition(generator, 100.0);
        KARMathTransformation inverse;
        ASSERT_TRUE(t.ComputeInverse(inverse));
        const KARMathPoint p(3, -4, 5);
        EXPECT_NEAR((inverse * (t * p)).DistanceTo(p), 0.0, 1e-12);
    }
}

TEST(MathTransformation, SingularHasNoInverse)
{
    const KARMathTransformation flat({{1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {1, 2, 3});
    KARMathTransformation inverse(KARMathVector(9, 9, 9));
    EXPECT_FALSE(flat.ComputeInverse(inverse));
    EXPECT_EQ(inverse.GetVector(), KARMathVector(9, 9, 9));
}

TEST(MathTransformation, PositionTimesItsOwnInverseIsNoChangeInAnyUnits)
{
    std::mt19937 generator(11);
    for (const double size : {1e-9, 1.0, 1000.0, 1e6, 1e12}) {
        for (int i = 0; i < 1000; ++i) {
            const KARMathTransformation t = RandomPosition(generator, size);
            KARMathTransformation inverse;
            ASSERT_TRUE(t.ComputeInverse(inverse));
            EXPECT_TRUE((t * inverse).IsNoChange(t, t));
            EXPECT_TRUE(t.IsIsometry());
        }
    }
}

TEST(MathTransformation, SmallChangeIsOneRelativeToThePositions)
{
    const auto change = [](const KARMathTransformation& start, const KARMathTransformation& move) {
        const KARMathTransformation target = move * start;
        KARMathTransformation inverse;
        EXPECT_TRUE(start.ComputeInverse(inverse));
        return !(target * inverse).IsNoChange(start, target);
    };
    const KARMathTransformation near(KARMathVector(0, 0, 1));
    const KARMathTransformation far(KARMathVector(0, 0, 1e7));
    for (const double length : {1e-300, 9e-10, 1e-6})
        EXPECT_TRUE(change({}, KARMathTransformation(KARMathVector(0, 0, length)))) << length;
    EXPECT_TRUE(change(near, KARMathTransformation(KARMathVector(0, 0, 9e-10))));
    EXPECT_TRUE(change(far, KARMathTransformation(KARMathVector(0, 0, 1e-6))));
    EXPECT_FALSE(change(far, KARMathTransformation(KARMathVector(0, 0, 1e-8))));
    EXPECT_TRUE(change(near, KARMathTransformation::Rotation(KARMathLine(), 1e-11)));
    EXPECT_FALSE(change({}, {}));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(change({}, KARMathTransformation(KARMathVector(nan, 0, 0))));
}

TEST(MathTransformation, SmallMoveIsNotTheIdentity)
{
    for (const double length : {1e-8, 9e-10, 1e-300})
        EXPECT_FALSE(KARMathTransformation(KARMathVector(0, 0, length)).IsIdentity()) << length;
    EXPECT_FALSE(KARMathTransformation::Rotation(KARMathLine(), 1e-11).IsIdentity());
    EXPECT_FALSE(KARMathTransformation::Rotation(KARMathLine(), 2e-15).IsIdentity());
    KARMath3x3Matrix rounded = KARMath3x3Matrix::Identity();
    rounded.SetColumn(0, {1.0 - 1e-16, 5e-16, -5e-16});
    EXPECT_TRUE(KARMathTransformation(rounded, KARMathVector(0, -0.0, 0)).IsIdentity());
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(KARMathTransformation(KARMathVector(nan, 0, 0)).IsIdentity());
}

TEST(MathTransformation, SimilitudeKeepsAnglesAndIsometryLengthsToo)
{
    const KARMathTransformation turn = KARMathTransformation::Rotation({{}, {1, 2, 3}}, 1.0);
    const KARMathTransformation grow(3.0 * KARMath3x3Matrix::Identity(), {1, 1, 1});
    EXPECT_TRUE((grow * turn).IsSimilitude());
    EXPECT_FALSE((grow * turn).IsIsometry());
    const KARMathTransformation shear({{1, 0, 0}, {1, 1, 0}, {0, 0, 1}}, {});
    EXPECT_FALSE(shear.IsSimilitude());
    EXPECT_FALSE(KARMathTransformation(KARMath3x3Matrix(), KARMathVector()).IsSimilitude());
}

TEST(MathTransformation2D, IsTheIdentityByDefault)
{
    const KARMathTransformation2D identity;
    double ratio = 0.0;
    EXPECT_TRUE(identity.IsSimilitude());
    EXPECT_TRUE(identity.IsScaling(ratio));
    EXPECT_EQ(ratio, 1.0);
}

TEST(MathTransformation2D, CoefficientsAreTheTwoDirectionsAndTheOrigin)
{
    const KARMathTransformation2D t({{1, 2}, {3, 4}}, {5, 6});
    double coefficients[6];
    t.GetCoef(coefficients);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(coefficients[i], i + 1.0);
    KARMathTransformation2D copy;
    copy.SetCoef(coefficients);
    EXPECT_EQ(copy, t);
}

TEST(MathTransformation2D, ProductAppliesTheSecondFactorFirst)
{
    const KARMathTransformation2D shift(KARMathVector2D(1, 0));
    const KARMathTransformation2D turn({{0, 1}, {-1, 0}}, {});
    EXPECT_EQ((shift * turn) * KARMathPoint2D(1, 0), KARMathPoint2D(1, 1));
    EXPECT_EQ((turn * shift) * KARMathPoint2D(1, 0), KARMathPoint2D(0, 2));
    EXPECT_EQ(turn * KARMathVector2D(1, 0), KARMathVector2D(0, 1));
    EXPECT_EQ(shift * KARMathLine2D(), KARMathLine2D({1, 0}, {1, 0}));
    EXPECT_EQ(turn * KARMathAxis2D(), KARMathAxis2D({}, {0, 1}, {-1, 0}));
}

TEST(MathTransformation2D, PositionTimesItsOwnInverseIsNoChangeInAnyUnits)
{
    std::mt19937 generator(13);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (const double size : {1e-9, 1.0, 1e6, 1e12}) {
        for (int i = 0; i < 1000; ++i) {
            KARMathTransformation2D t = KARMathTransformation2D::Rotation(
                {size * unit(generator), size * unit(generator)}, HalfTurn * unit(generator));
            t.SetVector(t.GetVector() + KARMathVector2D(size * unit(generator), 0.0));
            KARMathTransformation2D inverse;
            ASSERT_TRUE(t.ComputeInverse(inverse));
            EXPECT_TRUE((t * inverse).IsNoChange(t, t));
            EXPECT_TRUE((t * inverse).IsSimilitude());
        }
    }
}

TEST(MathTransformation2D, SmallChangeIsOneRelativeToThePositions)
{
    const auto change = [](const KARMathTransformation2D& start,
                           const KARMathTransformation2D& move) {
        const KARMathTransformation2D target = move * start;
        KARMathTransformation2D inverse;
        EXPECT_TRUE(start.ComputeInverse(inverse));
        return !(target * inverse).IsNoChange(start, target);
    };
    const KARMathTransformation2D far(KARMathVector2D(0, 1e7));
    EXPECT_TRUE(change({}, KARMathTransformation2D(KARMathVector2D(0, 1e-300))));
    EXPECT_TRUE(change(far, KARMathTransformation2D(KARMathVector2D(0, 1e-6))));
    EXPECT_FALSE(change(far, KARMathTransformation2D(KARMathVector2D(0, 1e-8))));
    EXPECT_TRUE(change({}, KARMathTransformation2D::Rotation({}, 1e-11)));
    EXPECT_FALSE(change({}, {}));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(change({}, KARMathTransformation2D(KARMathVector2D(nan, 0))));
}

TEST(MathTransformation2D, ScalingFromTheOriginTellsItsRatio)
{
    double ratio = 0.0;
    EXPECT_TRUE(KARMathTransformation2D(2.0 * KARMath2x2Matrix::Identity(), {}).IsScaling(ratio));
    EXPECT_EQ(ratio, 2.0);
    EXPECT_TRUE(KARMathTransformation2D::Rotation({}, HalfTurn).IsScaling(ratio));
    EXPECT_NEAR(ratio, -1.0, 1e-15);
    const KARMath2x2Matrix rounded({1.0 - 1e-16, 5e-16}, {-5e-16, 1.0});
    EXPECT_TRUE(KARMathTransformation2D(rounded, {0.0, -0.0}).IsScaling(ratio));
    EXPECT_EQ(ratio, 1.0);
}

TEST(MathTransformation2D, TurnsTranslationsShearsAndScalingsFromElsewhereAreNoScalings)
{
    double ratio = 9.0;
    EXPECT_FALSE(KARMathTransformation2D::Rotation({}, 2e-15).IsScaling(ratio));
    EXPECT_FALSE(KARMathTransformation2D(KARMathVector2D(0, 1e-300)).IsScaling(ratio));
    EXPECT_FALSE(
        KARMathTransformation2D(2.0 * KARMath2x2Matrix::Identity(), {5, 6}).IsScaling(ratio));
    EXPECT_FALSE(KARMathTransformation2D({{1, 0}, {1, 1}}, {}).IsScaling(ratio));
    EXPECT_FALSE(KARMathTransformation2D(KARMath2x2Matrix(), {}).IsScaling(ratio));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(KARMathTransformation2D(KARMathVector2D(nan, 0)).IsScaling(ratio));
    EXPECT_EQ(ratio, 9.0);
}

TEST(MathTransformation2D, SimilitudeKeepsAngles)
{
    EXPECT_TRUE(KARMathTransformation2D::Rotation({3, 4}, 0.1).IsSimilitude());
    EXPECT_TRUE(KARMathTransformation2D({{0, 2}, {2, 0}}, {}).IsSimilitude());
    EXPECT_FALSE(KARMathTransformation2D({{1, 0}, {0, 2}}, {}).IsSimilitude());
    EXPECT_FALSE(KARMathTransformation2D({{1, 0}, {1, 1}}, {}).IsSimilitude());
}
