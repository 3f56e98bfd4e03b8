#include "KARMathAxis.h"
#include "KARMathAxis2D.h"
#include "KARMathCircle.h"
#include "KARMathDirection.h"
#include "KARMathLine.h"
#include "KARMathLine2D.h"
#include "KARMathPlane.h"
#include "KARMathPoint.h"
#include "KARMathPoint2D.h"
#include "KARMathVector.h"
#include "KARMathVector2D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

void ExpectNear(const KARMathVector& a, const KARMathVector& b, double tolerance = 1e-15)
{
    EXPECT_NEAR(a.GetX(), b.GetX(), tolerance);
    EXPECT_NEAR(a.GetY(), b.GetY(), tolerance);
    EXPECT_NEAR(a.GetZ(), b.GetZ(), tolerance);
}

} // namespace

TEST(MathVector, IsNullByDefault)
{
    EXPECT_EQ(KARMathVector(), KARMathVector(0.0, 0.0, 0.0));
    EXPECT_EQ(KARMathVector2D(), KARMathVector2D(0.0, 0.0));
}

TEST(MathVector, ComputesInConstantExpressions)
{
    constexpr KARMathVector x(1.0, 0.0, 0.0);
    constexpr KARMathVector y(0.0, 1.0, 0.0);
    static_assert(x.Cross(y) == KARMathVector(0.0, 0.0, 1.0));
    static_assert((2.0 * x - y * 3.0 + -x).Dot(x + y) == -2.0);
    constexpr KARMathVector2D u(3.0, 4.0);
    static_assert(u.SquareNorm() == 25.0 && u.Cross({0.0, 1.0}) == 3.0);
}

TEST(MathVector, GivesWhatWasSet)
{
    KARMathVector v;
    v.SetCoord(1.0, 2.0, 3.0);
    v.SetX(4.0);
    v.SetY(5.0);
    v.SetZ(6.0);
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    v.GetCoord(x, y, z);
    EXPECT_EQ(KARMathVector(x, y, z), KARMathVector(4.0, 5.0, 6.0));
    EXPECT_EQ(KARMathVector(v[0], v[1], v[2]), v);
    EXPECT_NE(v, KARMathVector(4.0, 5.0, 7.0));
}

TEST(MathVector, CrossFollowsTheRightHand)
{
    EXPECT_EQ(KARMathVector(1, 2, 3).Cross({4, 5, 6}), KARMathVector(-3, 6, -3));
    EXPECT_EQ(KARMathVector(4, 5, 6).Cross({1, 2, 3}), KARMathVector(3, -6, 3));
}

TEST(MathVector, CrossHasNoNegativeZero)
{
    const KARMathVector cross = KARMathVector(-1.0, 0.0, 0.0).Cross({0.0, 1.0, 0.0});
    EXPECT_FALSE(std::signbit(cross.GetX()));
    EXPECT_FALSE(std::signbit(cross.GetY()));
    EXPECT_EQ(cross.GetZ(), -1.0);
}

TEST(MathVector, NormDoesNotOverflowInBetween)
{
    EXPECT_EQ(KARMathVector(2.0, 3.0, 6.0).Norm(), 7.0);
    EXPECT_NEAR(KARMathVector(3e200, 4e200, 0.0).Norm(), 5e200, 1e185);
    EXPECT_EQ(KARMathVector2D(3.0, 4.0).Norm(), 5.0);
}

TEST(MathVector, NormalizeRefusesWhatHasNoLength)
{
    KARMathVector v(0.0, 3.0, 4.0);
    EXPECT_TRUE(v.Normalize());
    ExpectNear(v, {0.0, 0.6, 0.8});
    KARMathVector null;
    EXPECT_FALSE(null.Normalize());
    EXPECT_EQ(null, KARMathVector());
    KARMathVector endless(Infinity, 0.0, 0.0);
    EXPECT_FALSE(endless.Normalize());
    EXPECT_EQ(endless.GetX(), Infinity);
    KARMathVector2D planar;
    EXPECT_FALSE(planar.Normalize());
    planar.SetCoord(0.0, -2.0);
    EXPECT_TRUE(planar.Normalize());
    EXPECT_EQ(planar, KARMathVector2D(0.0, -1.0));
}

TEST(MathVector, NormalizeNeitherOverflowsNorUnderflows)
{
    for (const double size : {1e200, 1.7e308, 1e-200, 1e-310, 5e-324}) {
        KARMathVector v(size, -size, size);
        EXPECT_TRUE(v.Normalize()) << size;
        ExpectNear(v, KARMathVector(1.0, -1.0, 1.0) * (1.0 / std::sqrt(3.0)));
        KARMathVector2D planar(size, -size);
        EXPECT_TRUE(planar.Normalize()) << size;
        EXPECT_NEAR(planar.GetX(), std::numbers::sqrt2 / 2.0, 1e-15) << size;
        EXPECT_NEAR(planar.GetY(), -std::numbers::sqrt2 / 2.0, 1e-15) << size;
    }
    KARMathVector unknown(1.0, std::numeric_limits<double>::quiet_NaN(), 0.0);
    EXPECT_FALSE(unknown.Normalize());
    EXPECT_EQ(unknown.GetX(), 1.0);
}

TEST(MathVector, ScalingToUnityChangesNoRatio)
{
    const double huge = std::ldexp(1.0, 600);
    EXPECT_EQ(KARMathVector(1.5 * huge, -0.5 * huge, 0.0).ScaledToUnity(),
              KARMathVector(0.75, -0.25, 0.0));
    EXPECT_EQ(KARMathVector(0.0, 5e-324, -1e-323).ScaledToUnity(), KARMathVector(0.0, 0.25, -0.5));
    EXPECT_EQ(KARMathVector().ScaledToUnity(), KARMathVector());
    EXPECT_EQ(KARMathVector(1.0, Infinity, 0.0).ScaledToUnity(), KARMathVector(1.0, Infinity, 0.0));
}

TEST(MathPoint, DifferenceOfPointsIsTheVectorBetweenThem)
{
    constexpr KARMathPoint p(1.0, 2.0, 3.0);
    constexpr KARMathPoint q(4.0, 6.0, 3.0);
    static_assert(q - p == KARMathVector(3.0, 4.0, 0.0));
    static_assert(p + (q - p) == q && q - (q - p) == p);
    EXPECT_EQ(p.DistanceTo(q), 5.0);
    EXPECT_EQ(KARMathPoint2D(1.0, 1.0) - KARMathPoint2D(0.0, 3.0), KARMathVector2D(1.0, -2.0));
    EXPECT_EQ(KARMathPoint2D(1.0, 1.0).DistanceTo({4.0, 5.0}), 5.0);
}

TEST(MathDirection, KeepsTheTripleAsGiven)
{
    EXPECT_EQ(KARMathDirection(), KARMathVector(1.0, 0.0, 0.0));
    KARMathDirection direction(0.0, 0.0, 2.0);
    EXPECT_EQ(direction.GetZ(), 2.0);
    EXPECT_TRUE(direction.Normalize());
    EXPECT_EQ(direction, KARMathDirection(0.0, 0.0, 1.0));
}

TEST(MathLine, SettersKeepWhatTheyAreGiven)
{
    KARMathLine line;
    EXPECT_EQ(line.GetOrigin(), KARMathPoint());
    EXPECT_EQ(line.GetDirection(), KARMathVector(1.0, 0.0, 0.0));
    line.SetOrigin({1.0, 2.0, 3.0});
    line.SetDirection({0.0, 5.0, 0.0});
    EXPECT_EQ(line, KARMathLine({1.0, 2.0, 3.0}, {0.0, 5.0, 0.0}));

    KARMathLine2D planar;
    EXPECT_EQ(planar.GetDirection(), KARMathVector2D(1.0, 0.0));
    planar.SetOrigin({1.0, 2.0});
    planar.SetDirection({0.0, 3.0});
    EXPECT_EQ(planar, KARMathLine2D({1.0, 2.0}, {0.0, 3.0}));
}

TEST(MathAxis, IsTheWorldsByDefault)
{
    KARMathAxis axis;
    EXPECT_EQ(axis, KARMathAxis({}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}));
    axis.SetOrigin({1.0, 2.0, 3.0});
    axis.SetDirections({0.0, 0.0, 2.0}, {3.0, 0.0, 0.0}, {0.0, 4.0, 0.0});
    KARMathVector first;
    KARMathVector second;
    KARMathVector third;
    axis.GetDirections(first, second, third);
    EXPECT_EQ(axis, KARMathAxis(axis.GetOrigin(), first, second, third));
    EXPECT_EQ(axis.GetOrigin(), KARMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(third, KARMathVector(0.0, 4.0, 0.0));
    EXPECT_EQ(KARMathAxis2D(), KARMathAxis2D({}, {1.0, 0.0}, {0.0, 1.0}));
}

TEST(MathPlane, DirectionsFormARightHandedFrameWithTheNormal)
{
    const KARMathVector normals[] = {
        {0.0, 0.0, 1.0},     {0.0, 0.0, -1.0},  {1.0, 0.0, 0.0},     {-1.0, 0.0, 0.0},
        {0.0, 1.0, 0.0},     {0.0, -1.0, 0.0},  {1.0, 2.0, 3.0},     {-3.0, 2.0, -1e-9},
        {1e-160, 0.0, -1.0}, {1e-9, 1e-9, 1.0}, {0.3, -0.4, -1e-30}, {-5.0, -6.0, -7.0},
    };
    for (const KARMathVector& normal : normals) {
        SCOPED_TRACE(::testing::Message()
                     << normal.GetX() << ' ' << normal.GetY() << ' ' << normal.GetZ());
        KARMathVector unit = normal;
        ASSERT_TRUE(unit.Normalize());
        KARMathVector u;
        KARMathVector v;
        KARMathPlane({1.0, 1.0, 1.0}, normal).GetDirections(u, v);
        EXPECT_NEAR(u.Norm(), 1.0, 1e-15);
        EXPECT_NEAR(v.Norm(), 1.0, 1e-15);
        EXPECT_NEAR(u.Dot(v), 0.0, 1e-15);
        ExpectNear(u.Cross(v), unit);
    }
}

TEST(MathPlane, DirectionsOfTheWorldPlaneAreItsAxes)
{
    KARMathVector u;
    KARMathVector v;
    KARMathPlane().GetDirections(u, v);
    EXPECT_EQ(u, KARMathVector(1.0, 0.0, 0.0));
    EXPECT_EQ(v, KARMathVector(0.0, 1.0, 0.0));
    for (const double component : {u.GetY(), u.GetZ(), v.GetX(), v.GetZ()})
        EXPECT_FALSE(std::signbit(component));
}

TEST(MathPlane, NullNormalHasTheDirectionsOfTheWorldPlane)
{
    KARMathVector u;
    KARMathVector v;
    KARMathPlane({}, {0.0, 0.0, 0.0}).GetDirections(u, v);
    EXPECT_EQ(u.Cross(v), KARMathVector(0.0, 0.0, 1.0));
}

TEST(MathPlane, KeepsItsNormalAsGiven)
{
    KARMathPlane plane({1.0, 2.0, 3.0}, {0.0, 3.0, 0.0});
    EXPECT_EQ(plane.GetOrigin(), KARMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(plane.GetNormal(), KARMathVector(0.0, 3.0, 0.0));
    plane.SetOrigin({});
    plane.SetNormal({0.0, 0.0, 1.0});
    EXPECT_EQ(plane, KARMathPlane());
}

TEST(MathCircle, GivesWhatWasSet)
{
    KARMathCircle circle;
    EXPECT_EQ(circle.GetRadius(), 0.0);
    EXPECT_EQ(circle.GetNormal(), KARMathVector(0.0, 0.0, 1.0));
    circle.Set({1.0, 2.0, 3.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, 2.5, 1.0, 0.0);
    KARMathVector u;
    KARMathVector v;
    circle.GetDirections(u, v);
    EXPECT_EQ(u.Cross(v), KARMathVector(1.0, 0.0, 0.0));
    EXPECT_EQ(circle.GetCenter(), KARMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(circle.GetRadius(), 2.5);
    EXPECT_EQ(circle, KARMathCircle({1.0, 2.0, 3.0}, u, v, 2.5));
}

TEST(MathCircle, ParameterTurnsIntoAnAngleByScaleAndShift)
{
    const KARMathCircle circle({1.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, 2.0, 2.0,
                               std::numbers::pi / 2.0);
    ExpectNear(circle.Evaluate(0.0) - KARMathPoint(), {1.0, 2.0, 0.0});
    ExpectNear(circle.Evaluate(std::numbers::pi / 4.0) - KARMathPoint(), {-1.0, 0.0, 0.0});
}
