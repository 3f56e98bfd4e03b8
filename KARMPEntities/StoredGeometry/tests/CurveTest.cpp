#include "KARCrvLimits.h"
#include "StoredSamples.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

namespace {

using namespace samples;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

void ExpectPoint(const KARCurve& curve, double parameter, const KARMathPoint& expected,
                 double tolerance = 1e-15)
{
    EXPECT_LE(curve.EvalPoint(parameter).DistanceTo(expected), tolerance) << "at " << parameter;
}

void ExpectTangent(const KARCurve& curve, double parameter, const KARMathVector& expected,
                   double tolerance = 1e-15)
{
    EXPECT_LE((curve.EvalTangent(parameter) - expected).Norm(), tolerance) << "at " << parameter;
}

/// The tangent must be what the points say.
void ExpectTangentIsTheDerivative(const KARCurve& curve)
{
    double low = 0.0;
    double high = 0.0;
    curve.GetLimits(low, high);
    const double step = 1e-6 * (high - low);
    for (const double share : {0.1, 0.3, 0.45, 0.7, 0.9}) {
        const double t = low + share * (high - low);
        const KARMathVector slope =
            (curve.EvalPoint(t + step) - curve.EvalPoint(t - step)) * (0.5 / step);
        ExpectTangent(curve, t, slope, 1e-6);
    }
}

/// As an owner does who knows nothing of the class; apart, so that no compiler sees both ends.
[[gnu::noinline]] void FreeUntyped(void* memory)
{
    std::free(memory);
}

} // namespace

TEST(StoredCurve, LineRunsAlongItsDirection)
{
    const FactoryPointer factory = NewFactory();
    const KARLineCurve* line = Line(*factory);
    ExpectPoint(*line, 0.0, {1, 2, 3});
    ExpectPoint(*line, 2.0, {1, 6, 3});
    ExpectPoint(*line, 100.0, {1, 202, 3});
    ExpectTangent(*line, 1.0, {0, 2, 0});
    double low = 0.0;
    double high = 0.0;
    line->GetLimits(low, high);
    EXPECT_EQ(low, -1.0);
    EXPECT_EQ(high, 4.0);
}

TEST(StoredCurve, CircleTurnsFromTheFirstDirectionToTheSecond)
{
    const FactoryPointer factory = NewFactory();
    const KARCircleArc* circle = Circle(*factory);
    EXPECT_EQ(circle->GetRadius(), 2.0);
    ExpectPoint(*circle, 0.0, {3, 1, 0});
    ExpectPoint(*circle, Pi / 2, {1, 1, 2});
    ExpectTangent(*circle, 0.0, {0, 0, 2});
    ExpectTangent(*circle, Pi, {0, 0, -2});
}

TEST(StoredCurve, EllipseHasARadiusAlongEachDirection)
{
    const FactoryPointer factory = NewFactory();
    const KAREllipseArc* ellipse = Ellipse(*factory);
    ExpectPoint(*ellipse, 0.0, {0, 3, 5});
    ExpectPoint(*ellipse, Pi / 2, {0, 0, 6.5});
    ExpectTangentIsTheDerivative(*ellipse);
}

TEST(StoredCurve, PolylineGoesThroughItsPointsAndStaysAtItsEnds)
{
    const FactoryPointer factory = NewFactory();
    const KARPolylineCurve* polyline = Polyline(*factory);
    for (std::size_t i = 0; i < polyline->GetPoints().size(); ++i)
        EXPECT_EQ(polyline->EvalPoint(static_cast<double>(i)), polyline->GetPoints()[i]);
    ExpectPoint(*polyline, 1.5, {2, 1.5, 0});
    ExpectTangent(*polyline, 1.5, {0, 3, 0});
    EXPECT_EQ(polyline->EvalPoint(-5.0), KARMathPoint(0, 0, 0));
    EXPECT_EQ(polyline->EvalPoint(1e300), KARMathPoint(2, 3, 4));
    EXPECT_EQ(polyline->EvalPoint(NaN), KARMathPoint(0, 0, 0));
}

TEST(StoredCurve, RationalSplineIsAnExactCircle)
{
    const FactoryPointer factory = NewFactory();
    const KARNurbsCurve* arc = QuarterCircle(*factory);
    for (int i = 0; i <= 20; ++i) {
        const KARMathPoint p = arc->EvalPoint(i / 20.0);
        EXPECT_NEAR(p.DistanceTo({}), 1.0, 1e-15);
        EXPECT_NEAR((p - KARMathPoint()).Dot(arc->EvalTangent(i / 20.0)), 0.0, 1e-15);
    }
    ExpectPoint(*arc, 0.5, {std::numbers::sqrt2 / 2, std::numbers::sqrt2 / 2, 0});
    ExpectTangent(*arc, 0.0, {0, std::numbers::sqrt2, 0});
    ExpectTangentIsTheDerivative(*arc);
}

TEST(StoredCurve, SplineOfOneSpanIsABezierCurve)
{
    const FactoryPointer factory = NewFactory();
    const auto* cubic = factory->Make<KARNurbsCurve>(
        3, std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1},
        std::vector<KARMathPoint>{{0, 0, 0}, {1, 2, 0}, {3, 3, 1}, {4, 0, 2}});
    ASSERT_NE(cubic, nullptr);
    ExpectPoint(*cubic, 0.0, {0, 0, 0});
    ExpectPoint(*cubic, 0.5, {2.0, 1.875, 0.625});
    ExpectPoint(*cubic, 1.0, {4, 0, 2});
    ExpectTangent(*cubic, 0.0, {3, 6, 0});
    ExpectTangent(*cubic, 1.0, {3, -9, 3});
}

TEST(StoredCurve, SplineIsContinuousOverItsInnerKnots)
{
    const FactoryPointer factory = NewFactory();
    const auto* spline = factory->Make<KARNurbsCurve>(
        2, std::vector<double>{-1, 0, 1, 2, 4, 4, 7, 9},
        std::vector<KARMathPoint>{{0, 0, 0}, {1, 2, 0}, {3, 3, 1}, {4, 0, 2}, {6, 1, 1}},
        std::vector<double>{1, 2, 0.5, 1, 3});
    ASSERT_NE(spline, nullptr);
    double low = 0.0;
    double high = 0.0;
    spline->GetLimits(low, high);
    EXPECT_EQ(low, 1.0);
    EXPECT_EQ(high, 4.0);
    EXPECT_LE(spline->EvalPoint(2.0).DistanceTo(spline->EvalPoint(std::nextafter(2.0, 0.0))),
              1e-14);
    EXPECT_LE((spline->EvalTangent(2.0) - spline->EvalTangent(std::nextafter(2.0, 0.0))).Norm(),
              1e-13);
    ExpectTangentIsTheDerivative(*spline);
}

TEST(StoredCurve, SplineStaysAtItsEnds)
{
    const FactoryPointer factory = NewFactory();
    const KARNurbsCurve* arc = QuarterCircle(*factory);
    EXPECT_EQ(arc->EvalPoint(-1.0), KARMathPoint(1, 0, 0));
    EXPECT_EQ(arc->EvalPoint(Infinity), KARMathPoint(0, 1, 0));
    EXPECT_EQ(arc->EvalPoint(NaN), KARMathPoint(1, 0, 0));
}

TEST(StoredCurve, ParameterKeepsItsNumberAndTellsItsPiece)
{
    const FactoryPointer factory = NewFactory();
    EXPECT_EQ(Line(*factory)->CreateParam(77.0), KARCrvParam(77.0));
    EXPECT_EQ(Polyline(*factory)->CreateParam(2.5), KARCrvParam(2.5, 2));
    EXPECT_EQ(Polyline(*factory)->CreateParam(9.0), KARCrvParam(9.0, 2));
    const auto* spline =
        factory->Make<KARNurbsCurve>(1, std::vector<double>{0, 0, 1, 2, 2},
                                     std::vector<KARMathPoint>{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    EXPECT_EQ(spline->CreateParam(0.5), KARCrvParam(0.5, 0));
    EXPECT_EQ(spline->CreateParam(1.0), KARCrvParam(1.0, 1));
    EXPECT_EQ(spline->CreateParam(-3.0), KARCrvParam(-3.0, 0));
}

TEST(StoredCurve, ArcsAndLinesRefuseWhatMakesNone)
{
    const KARMathVector x(1, 0, 0);
    const KARMathVector y(0, 1, 0);
    EXPECT_EQ(KARLineCurve::Create({{}, {0, 0, 0}}, 0, 1), nullptr);
    EXPECT_EQ(KARLineCurve::Create({{NaN, 0, 0}, x}, 0, 1), nullptr);
    EXPECT_EQ(KARLineCurve::Create({{}, {0, Infinity, 0}}, 0, 1), nullptr);
    EXPECT_EQ(KARLineCurve::Create({{}, x}, 1, 1), nullptr);
    EXPECT_EQ(KARLineCurve::Create({{}, x}, 0, Infinity), nullptr);
    EXPECT_EQ(KARLineCurve::Create({{}, x}, NaN, 1), nullptr);
    EXPECT_EQ(KARCircleArc::Create({}, x, x, 1, 0, 1), nullptr);
    EXPECT_EQ(KARCircleArc::Create({}, x, 2.0 * y, 1, 0, 1), nullptr);
    EXPECT_EQ(KARCircleArc::Create({}, x, y, 0, 0, 1), nullptr);
    EXPECT_EQ(KARCircleArc::Create({}, x, y, 1, 0, 6.3), nullptr);
    EXPECT_EQ(KAREllipseArc::Create({}, x, y, 1, -1, 0, 1), nullptr);
    EXPECT_EQ(KAREllipseArc::Create({}, x, {NaN, 1, 0}, 1, 1, 0, 1), nullptr);
    EXPECT_EQ(KARPolylineCurve::Create({{0, 0, 0}}), nullptr);
    EXPECT_EQ(KARPolylineCurve::Create({{0, 0, 0}, {0, NaN, 0}}), nullptr);
}

TEST(StoredCurve, SplineRefusesKnotsPolesAndWeightsThatMakeNone)
{
    const std::vector<KARMathPoint> poles{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    const std::vector<double> knots{0, 0, 0, 1, 1, 1};
    const auto refused = [](int degree, std::vector<double> k, std::vector<KARMathPoint> p,
                            std::vector<double> w = {}) {
        return KARNurbsCurve::Create(degree, std::move(k), std::move(p), std::move(w)) == nullptr;
    };
    EXPECT_TRUE(refused(0, knots, poles));
    EXPECT_TRUE(refused(-1, knots, poles));
    EXPECT_TRUE(refused(std::numeric_limits<int>::max(), knots, poles));
    EXPECT_TRUE(refused(1, knots, poles));
    EXPECT_TRUE(refused(2, {}, {}));
    EXPECT_TRUE(refused(2, {0, 0, 0, 1, 1}, poles));
    EXPECT_TRUE(refused(2, {0, 0, 0, 0, 0, 0}, poles));
    EXPECT_TRUE(refused(2, {0, 0, 0, 1, 1, NaN}, poles));
    EXPECT_TRUE(refused(2, {0, 0, 0, NaN, 1, 1}, poles));
    EXPECT_TRUE(refused(2, {0, 0, 1, 0, 1, 1}, poles));
    EXPECT_TRUE(refused(2, {0, 0, 0, 1, 1, Infinity}, poles));
    EXPECT_TRUE(refused(1, {0, 0, 1, 1, 1, 2, 2}, {{}, {}, {}, {}, {}}));
    EXPECT_TRUE(refused(2, knots, {{0, 0, 0}, {1, 0, 0}, {1, Infinity, 0}}));
    EXPECT_TRUE(refused(2, knots, {{0, 0, 0}, {1, 0, 0}}));
    EXPECT_TRUE(refused(2, knots, poles, {1, 1}));
    EXPECT_TRUE(refused(2, knots, poles, {1, 0, 1}));
    EXPECT_TRUE(refused(2, knots, poles, {1, -1, 1}));
    EXPECT_TRUE(refused(2, knots, poles, {1, NaN, 1}));
}

TEST(StoredCurve, SplineOfTheHighestDegreeIsEvaluated)
{
    constexpr std::size_t Order = KARNurbsCurve::MaximumDegree + 1;
    std::vector<double> knots(Order, 0.0);
    knots.resize(2 * Order, 1.0);
    std::vector<KARMathPoint> poles;
    for (std::size_t i = 0; i < Order; ++i)
        poles.emplace_back(static_cast<double>(i), 0, 0);
    const FactoryPointer factory = NewFactory();
    const auto* spline = factory->Make<KARNurbsCurve>(KARNurbsCurve::MaximumDegree, knots, poles);
    ASSERT_NE(spline, nullptr);
    // Poles at even distances make an even motion.
    ExpectPoint(*spline, 0.25, {0.25 * (Order - 1), 0, 0}, 1e-13);
    ExpectTangent(*spline, 0.8, {Order - 1.0, 0, 0}, 1e-11);
}

TEST(CurveLimits, GivesItsExtremities)
{
    const KARCrvLimits limits(KARCrvParam(0.5, 1), KARCrvParam(2.0, 3), 1);
    double low = 0.0;
    double high = 0.0;
    limits.GetExtremities(low, high);
    EXPECT_EQ(low, 0.5);
    EXPECT_EQ(high, 2.0);
    KARCrvParam first;
    KARCrvParam second;
    limits.GetExtremities(first, second);
    EXPECT_EQ(first, KARCrvParam(0.5, 1));
    EXPECT_EQ(second, KARCrvParam(2.0, 3));
    EXPECT_TRUE(limits.IsValid());
}

TEST(CurveLimits, VerificationFindsABadRangeAndKeepsIt)
{
    const KARCrvLimits reversed(KARCrvParam(2.0), KARCrvParam(1.0), 1);
    EXPECT_FALSE(reversed.IsValid());
    double low = 0.0;
    double high = 0.0;
    reversed.GetExtremities(low, high);
    EXPECT_EQ(low, 2.0);
    EXPECT_EQ(high, 1.0);
    EXPECT_FALSE(KARCrvLimits(KARCrvParam(NaN), KARCrvParam(1.0), 1).IsValid());
    EXPECT_TRUE(KARCrvLimits(KARCrvParam(2.0), KARCrvParam(1.0), 0).IsValid());
    EXPECT_TRUE(KARCrvLimits(KARCrvParam(1.0), KARCrvParam(1.0), 1).IsValid());
}

TEST(CurveLimits, MayBeFreedAsAnUntypedPointer)
{
    void* limits = new KARCrvLimits(KARCrvParam(0.0), KARCrvParam(1.0), 1);
    FreeUntyped(limits);
    delete new KARCrvLimits;
}
