#include "StoredSamples.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace samples;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// The derivatives must be what the points say.
void ExpectDerivativesFitThePoints(const KARSurface& surface)
{
    const KARSurLimits limits = surface.GetLimits();
    constexpr double Step = 1e-6;
    for (const double share : {0.2, 0.4, 0.7}) {
        const double u = limits.uLow + share * (limits.uHigh - limits.uLow);
        const double v = limits.vLow + (1.0 - share) * (limits.vHigh - limits.vLow);
        KARMathPoint point;
        KARMathVector alongU;
        KARMathVector alongV;
        surface.Evaluate(u, v, point, alongU, alongV);
        const KARMathVector slopeU =
            (surface.EvalPoint(u + Step, v) - surface.EvalPoint(u - Step, v)) * (0.5 / Step);
        const KARMathVector slopeV =
            (surface.EvalPoint(u, v + Step) - surface.EvalPoint(u, v - Step)) * (0.5 / Step);
        EXPECT_LE((alongU - slopeU).Norm(), 1e-6);
        EXPECT_LE((alongV - slopeV).Norm(), 1e-6);
    }
}

} // namespace

TEST(StoredSurface, PlaneSpansItsDirections)
{
    const FactoryPointer factory = NewFactory();
    const KARPlaneSurface* plane = Plane(*factory);
    EXPECT_EQ(plane->EvalPoint(2.0, -3.0), KARMathPoint(2, -3, 1));
    KARMathVector normal;
    EXPECT_TRUE(plane->EvalNormal(0, 0, normal));
    EXPECT_EQ(normal, KARMathVector(0, 0, 1));
    EXPECT_EQ(plane->GetLimits().vLow, -2.0);
}

TEST(StoredSurface, CylinderStandsOffItsAxisByItsRadius)
{
    const FactoryPointer factory = NewFactory();
    const KARCylinderSurface* cylinder = Cylinder(*factory);
    EXPECT_LE(cylinder->EvalPoint(0, 0).DistanceTo({3, 0, 0}), 1e-15);
    EXPECT_LE(cylinder->EvalPoint(Pi / 2, 4).DistanceTo({1, 2, 4}), 1e-15);
    KARMathVector normal;
    EXPECT_TRUE(cylinder->EvalNormal(Pi, 1, normal));
    EXPECT_LE((normal - KARMathVector(-1, 0, 0)).Norm(), 1e-15);
    ExpectDerivativesFitThePoints(*cylinder);
}

TEST(StoredSurface, RationalSplineIsAnExactCylinder)
{
    const FactoryPointer factory = NewFactory();
    const KARNurbsSurface* surface = QuarterCylinder(*factory);
    for (int i = 0; i <= 10; ++i) {
        const KARMathPoint p = surface->EvalPoint(i / 10.0, i / 5.0);
        EXPECT_NEAR(std::hypot(p.GetX(), p.GetY()), 1.0, 1e-15);
        EXPECT_NEAR(p.GetZ(), i / 5.0, 1e-15);
        KARMathVector normal;
        EXPECT_TRUE(surface->EvalNormal(i / 10.0, i / 5.0, normal));
        EXPECT_LE((normal - KARMathVector(p.GetX(), p.GetY(), 0)).Norm(), 1e-14);
    }
    const KARSurLimits limits = surface->GetLimits();
    EXPECT_EQ(limits.uHigh, 1.0);
    EXPECT_EQ(limits.vHigh, 2.0);
    ExpectDerivativesFitThePoints(*surface);
    EXPECT_EQ(surface->EvalPoint(-9, 9), KARMathPoint(1, 0, 2));
}

TEST(StoredSurface, SplineWithSeveralSpansIsSmooth)
{
    const FactoryPointer factory = NewFactory();
    std::vector<KARMathPoint> poles;
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 4; ++j)
            poles.emplace_back(i, j, i * j % 3);
    const auto* surface =
        factory->Make<KARNurbsSurface>(KARSplineBasis{2, {0, 0, 0, 1, 3, 4, 4, 4}},
                                       KARSplineBasis{2, {0, 1, 2, 3, 4, 5, 6}}, poles);
    ASSERT_NE(surface, nullptr);
    ExpectDerivativesFitThePoints(*surface);
}

TEST(StoredSurface, TransformedSurfaceIsTheOtherOneMoved)
{
    const FactoryPointer factory = NewFactory();
    KARCylinderSurface* cylinder = Cylinder(*factory);
    const KARLinearTransfoSurface* moved = Moved(*factory, cylinder);
    EXPECT_EQ(moved->GetTransformedSurface(), cylinder);
    EXPECT_EQ(moved->EvalPoint(0.3, 2.0),
              moved->GetTransformation() * cylinder->EvalPoint(0.3, 2.0));
    EXPECT_EQ(moved->GetLimits().uHigh, cylinder->GetLimits().uHigh);
    ExpectDerivativesFitThePoints(*moved);
}

TEST(StoredSurface, TransformedSurfaceHoldsTheOtherOne)
{
    KARPlaneSurface* plane = KARPlaneSurface::Create({}, {1, 0, 0}, {0, 1, 0}, {0, 1, 0, 1});
    KARLinearTransfoSurface* moved = KARLinearTransfoSurface::Create(plane, {});
    EXPECT_EQ(plane->GetRefCount(), 2U);
    plane->Release();
    EXPECT_EQ(moved->EvalPoint(1, 1), KARMathPoint(1, 1, 0));
    plane->AddRef();
    moved->Release();
    EXPECT_EQ(plane->GetRefCount(), 1U);
    plane->Release();
}

TEST(StoredSurface, TransformedSurfacesStandOnlySoHigh)
{
    const FactoryPointer factory = NewFactory();
    KARSurface* top = Plane(*factory);
    for (int i = 0; i < KARLinearTransfoSurface::MaximumDepth; ++i) {
        top = Moved(*factory, top);
        ASSERT_NE(top, nullptr);
        EXPECT_EQ(top->GetDepth(), i + 1);
    }
    EXPECT_EQ(KARLinearTransfoSurface::Create(top, {}), nullptr);
}

TEST(StoredSurface, RefusesWhatMakesNone)
{
    const KARMathVector x(1, 0, 0);
    const KARMathVector y(0, 1, 0);
    const KARSurLimits unit{0, 1, 0, 1};
    EXPECT_EQ(KARPlaneSurface::Create({}, x, x, unit), nullptr);
    EXPECT_EQ(KARPlaneSurface::Create({0, NaN, 0}, x, y, unit), nullptr);
    EXPECT_EQ(KARPlaneSurface::Create({}, x, y, {0, 1, 1, 0}), nullptr);
    EXPECT_EQ(KARCylinderSurface::Create({}, x, y, -1, unit), nullptr);
    EXPECT_EQ(KARCylinderSurface::Create({}, x, y, 1, {0, 7, 0, 1}), nullptr);
    const std::vector<KARMathPoint> poles{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}};
    const KARSplineBasis linear{1, {0, 0, 1, 1}};
    EXPECT_EQ(KARNurbsSurface::Create(linear, {1, {0, 0, 1}}, poles), nullptr);
    EXPECT_EQ(KARNurbsSurface::Create({0, {}}, linear, poles), nullptr);
    EXPECT_EQ(KARNurbsSurface::Create(linear, linear, {{0, 0, 0}}), nullptr);
    EXPECT_EQ(KARNurbsSurface::Create(linear, linear, poles, {1, 1, 1, 0}), nullptr);
    const FactoryPointer factory = NewFactory();
    KARPlaneSurface* plane = Plane(*factory);
    EXPECT_EQ(KARLinearTransfoSurface::Create(nullptr, {}), nullptr);
    EXPECT_EQ(KARLinearTransfoSurface::Create(plane, {KARMath3x3Matrix(), {}}), nullptr);
    EXPECT_EQ(
        KARLinearTransfoSurface::Create(plane, KARMathTransformation(KARMathVector(NaN, 0, 0))),
        nullptr);
    EXPECT_EQ(plane->GetRefCount(), 1U);
}
