// What the geometries become in a page, and which frames they give to joints.
#include "ViewGeometry.h"

#include "KARMPEntities.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace karmp::tool {

namespace {

using Numbers = std::vector<double>;

template <class Geometry, class... Setters>
std::optional<ViewDrawing> DrawingOf(Setters... setters)
{
    const auto geometry = Geometry::create(L"g");
    (setters(*geometry), ...);
    return DrawGeometry(*geometry);
}

template <class Drawing>
void ExpectDrawn(const Drawing& drawing, ViewKind kind, const Numbers& numbers)
{
    ASSERT_TRUE(drawing);
    EXPECT_EQ(drawing->kind, kind);
    ASSERT_EQ(drawing->numbers.size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i)
        EXPECT_NEAR(drawing->numbers[i], numbers[i], 1e-12) << i;
}

TEST(ViewGeometry, DrawsPointsLinesPlanesAndAxesWithUnitDirections)
{
    ExpectDrawn(DrawingOf<KARMPPoint>([](auto& g) {
                    g.SetPoint({1, 2, 3});
                }),
                ViewKind::Point, {1, 2, 3});
    ExpectDrawn(DrawingOf<KARMPLine>([](auto& g) {
                    g.SetLine({{1, 2, 3}, {0, 4, 0}});
                }),
                ViewKind::Line, {1, 2, 3, 0, 1, 0});
    ExpectDrawn(DrawingOf<KARMPPlane>([](auto& g) {
                    g.SetPlane({{1, 2, 3}, {0, 0, -2}});
                }),
                ViewKind::Plane, {1, 2, 3, 0, 0, -1});
    ExpectDrawn(DrawingOf<KARMPAxisSystem>([](auto& g) {
                    g.SetAxisSystem({{1, 2, 3}, {2, 0, 0}, {0, 3, 0}, {0, 0, 4}});
                }),
                ViewKind::Axes, {1, 2, 3, 1, 0, 0, 0, 1, 0, 0, 0, 1});
}

TEST(ViewGeometry, DrawsCirclesAndEllipsesByTheirHalfAxes)
{
    ExpectDrawn(DrawingOf<KARMPCircle>([](auto& g) {
                    g.SetCircle({{1, 2, 3}, {0, 1, 0}, {0, 0, 1}, 5});
                }),
                ViewKind::Ellipse, {1, 2, 3, 0, 5, 0, 0, 0, 5});
    ExpectDrawn(DrawingOf<KARMPEllipse>([](auto& g) {
                    g.SetCenter({1, 2, 3});
                    g.SetMajorDirection({2, 0, 0});
                    g.SetNormal({0, 0, 1});
                    g.SetMajorRadius(4);
                    g.SetMinorRadius(3);
                }),
                ViewKind::Ellipse, {1, 2, 3, 4, 0, 0, 0, 3, 0});
}

TEST(ViewGeometry, DrawsACirlineByItsCurvature)
{
    const auto frame = [](auto& g) {
        g.SetCenter({1, 2, 3});
        g.SetMajorDirection({0, 2, 0});
        g.SetNormal({1, 0, 0});
    };
    ExpectDrawn(DrawingOf<KARMPCirline>(frame, [](auto& g) { g.SetCurvature(-0.25); }),
                ViewKind::Ellipse, {1, 2, 3, 0, 4, 0, 0, 0, 4});
    ExpectDrawn(DrawingOf<KARMPCirline>(frame), ViewKind::Line, {1, 2, 3, 0, 1, 0});
}

TEST(ViewGeometry, DrawsBranchesOfHyperbolasAndParabolasAroundTheirVertex)
{
    const auto frame = [](auto& g) {
        g.SetMajorDirection({1, 0, 0});
        g.SetNormal({0, 0, 1});
    };
    const auto hyperbola = DrawingOf<KARMPHyperbola>(frame, [](auto& g) {
        g.SetMajorRadius(2);
        g.SetMinorRadius(3);
    });
    ASSERT_TRUE(hyperbola);
    ASSERT_EQ(hyperbola->kind, ViewKind::Curve);
    const auto& h = hyperbola->numbers;
    for (std::size_t i = 0; i < h.size(); i += 3)
        EXPECT_NEAR(h[i] * h[i] / 4 - h[i + 1] * h[i + 1] / 9, 1.0, 1e-9);

    const auto parabola = DrawingOf<KARMPParabola>(frame, [](auto& g) { g.SetCurvature(0.5); });
    ASSERT_TRUE(parabola);
    const auto& p = parabola->numbers;
    ASSERT_EQ(p.size(), 49U * 3U);
    for (std::size_t i = 0; i < p.size(); i += 3)
        EXPECT_NEAR(p[i], 0.25 * p[i + 1] * p[i + 1], 1e-9);
    EXPECT_NEAR(p[1], -4.0, 1e-12);
    EXPECT_FALSE(DrawingOf<KARMPParabola>(frame)) << "without a curvature it has no end";
}

TEST(ViewGeometry, DrawsSolids)
{
    ExpectDrawn(DrawingOf<KARMPSphere>([](auto& g) {
                    g.SetCenter({1, 2, 3});
                    g.SetRadius(4);
                }),
                ViewKind::Sphere, {1, 2, 3, 4});
    ExpectDrawn(DrawingOf<KARMPCylinder>([](auto& g) {
                    g.SetOrigin({1, 2, 3});
                    g.SetAxis({0, 0, 2});
                    g.SetRadius(4);
                }),
                ViewKind::Cylinder, {1, 2, 3, 0, 0, 1, 4});
    ExpectDrawn(DrawingOf<KARMPCone>([](auto& g) {
                    g.SetOrigin({1, 2, 3});
                    g.SetAxis({0, 2, 0});
                    g.SetAngle(0.5);
                }),
                ViewKind::Cone, {1, 2, 3, 0, 1, 0, 0.5});
    ExpectDrawn(DrawingOf<KARMPTorus>([](auto& g) {
                    g.SetCenter({1, 2, 3});
                    g.SetNormal({0, 0, 3});
                    g.SetMajorRadius(4);
                    g.SetMinorRadius(1);
                }),
                ViewKind::Torus, {1, 2, 3, 0, 0, 1, 4, 1});
}

TEST(ViewGeometry, DrawsACyliconeAsACylinderOrAConeFromItsApex)
{
    const auto frame = [](auto& g) {
        g.SetOrigin({0, 0, 1});
        g.SetAxis({0, 0, 2});
        g.SetRadius(2);
    };
    ExpectDrawn(DrawingOf<KARMPCylicone>(frame), ViewKind::Cylinder, {0, 0, 1, 0, 0, 1, 2});
    const double angle = std::atan(0.5);
    ExpectDrawn(DrawingOf<KARMPCylicone>(
                    frame, [&](auto& g) { g.SetAngle(angle); }),
                ViewKind::Cone, {0, 0, -3, 0, 0, 1, angle});
    ExpectDrawn(DrawingOf<KARMPCylicone>(frame, [&](auto& g) { g.SetAngle(-angle); }),
                ViewKind::Cone, {0, 0, 5, 0, 0, -1, angle});
}

TEST(ViewGeometry, DrawsNothingThatIsNotFiniteOrDegenerate)
{
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double bad : {std::nan(""), infinite, -infinite, 1e300}) {
        EXPECT_FALSE(DrawingOf<KARMPPoint>([&](auto& g) { g.SetPoint({0, bad, 0}); })) << bad;
        EXPECT_FALSE(IsDrawable(bad));
        EXPECT_FALSE(IsDrawable(KARMathTransformation(KARMathVector(0, 0, bad))));
    }
    EXPECT_FALSE(DrawingOf<KARMPLine>([](auto& g) { g.SetLine({{}, {0, 0, 0}}); }));
    EXPECT_FALSE(DrawingOf<KARMPSphere>([](auto& g) { g.SetRadius(-1); }));
    EXPECT_FALSE(DrawingOf<KARMPSphere>());
    EXPECT_FALSE(DrawingOf<KARMPEllipse>([](auto& g) {
        g.SetMajorDirection({1, 0, 0});
        g.SetNormal({1, 0, 0});
        g.SetMajorRadius(2);
        g.SetMinorRadius(1);
    }));
    EXPECT_FALSE(DrawingOf<KARMPCurve>());
}

TEST(ViewGeometry, DrawsNumbersUpToALimitInEachPlace)
{
    EXPECT_TRUE(IsDrawable(-1e15));
    EXPECT_FALSE(IsDrawable(1.001e15));
    const double bad = std::nan("");
    EXPECT_TRUE(IsDrawable(KARMathPoint(1, 2, 3)));
    for (const KARMathPoint& point :
         {KARMathPoint(bad, 0, 0), KARMathPoint(0, bad, 0), KARMathPoint(0, 0, bad)})
        EXPECT_FALSE(IsDrawable(point));
    EXPECT_FALSE(
        IsDrawable(KARMathTransformation(KARMath3x3Matrix({bad, 0, 0}, {0, 1, 0}, {0, 0, 1}), {})));
}

TEST(ViewGeometry, DrawsConesThatAreNeitherALineNorAPlane)
{
    const auto cone = [](double angle) {
        return DrawingOf<KARMPCone>([angle](auto& g) {
            g.SetAxis({0, 2, 0});
            g.SetAngle(angle);
        });
    };
    ExpectDrawn(cone(-0.5), ViewKind::Cone, {0, 0, 0, 0, 1, 0, 0.5});
    EXPECT_TRUE(cone(1.569));
    for (const double angle : {0.0, 1.571, -1.571, 3.0})
        EXPECT_FALSE(cone(angle)) << angle;
}

TEST(ViewGeometry, DrawsASketchAsItsPlane)
{
    ExpectDrawn(DrawingOf<KARMPSketch>([](auto& g) {
                    g.SetPlane({{1, 2, 3}, {0, 0, -2}});
                }),
                ViewKind::Plane, {1, 2, 3, 0, 0, -1});
}

// A quarter of a circle in two pieces, the second one backwards.
TEST(ViewGeometry, SamplesTheSegmentsOfACurveWithinTheirLimits)
{
    const auto curve = KARMPCurve::create(L"c");
    KARGeometricFactory* const factory = KARGeometricFactory::Create();
    auto* const line = factory->Make<KARLineCurve>(KARMathLine({0, 0, 0}, {1, 0, 0}), 0.0, 10.0);
    auto* const corners = factory->Make<KARPolylineCurve>(
        std::vector<KARMathPoint>{{5, 4, 0}, {5, 2, 0}, {3, 2, 0}, {2, 0, 0}});
    KARCrvLimits part(KARCrvParam(1.0), KARCrvParam(2.0));
    KARCrvLimits whole(KARCrvParam(0.0), KARCrvParam(3.0));
    curve->AddCurve(line, KARMPCurveOrientation::Positive, &part);
    curve->AddCurve(corners, KARMPCurveOrientation::Negative, &whole);
    ExpectDrawn(DrawGeometry(*curve), ViewKind::Curve,
                {1, 0, 0, 2, 0, 0, 2, 0, 0, 3, 2, 0, 5, 2, 0, 5, 4, 0});
    factory->Release();
}

TEST(ViewGeometry, DrawsSurfacesAsMeshes)
{
    const auto surface = KARMPSurface::create(L"s");
    KARGeometricFactory* const factory = KARGeometricFactory::Create();
    surface->SetSurface(
        factory->Make<KARPlaneSurface>(KARMathPoint(1, 2, 3), KARMathVector(1, 0, 0),
                                       KARMathVector(0, 1, 0), KARSurLimits{0, 2, 0, 4}));
    const auto drawing = DrawGeometry(*surface);
    ExpectDrawn(drawing, ViewKind::Mesh, {1, 2, 3, 1, 6, 3, 3, 2, 3, 3, 6, 3});
    EXPECT_EQ(drawing->triangles, (std::vector<std::uint32_t>{0, 2, 1, 1, 2, 3}));
    factory->Release();
}

TEST(ViewGeometry, DrawsPlanarGeometryInThePlaneOfItsBody)
{
    ExpectDrawn(DrawingOf<KARMPPoint2D>([](auto& g) {
                    g.SetPoint({1, 2});
                }),
                ViewKind::Point, {1, 2, 0});
    ExpectDrawn(DrawingOf<KARMPLine2D>([](auto& g) {
                    g.SetLine({{1, 2}, {0, 4}});
                }),
                ViewKind::Line, {1, 2, 0, 0, 1, 0});
    ExpectDrawn(DrawingOf<KARMPCircle2D>([](auto& g) {
                    g.SetPoint({1, 2});
                    g.SetRadius(3);
                }),
                ViewKind::Ellipse, {1, 2, 0, 3, 0, 0, 0, 3, 0});
    const auto curve = KARMPCurve2D::create(L"c");
    KARGeometricFactory* const factory = KARGeometricFactory::Create();
    KARCrvLimits whole(KARCrvParam(0.0), KARCrvParam(1.0));
    curve->AddCurve(
        factory->Make<KARPolylineCurve>(std::vector<KARMathPoint>{{5, 4, 0}, {5, 2, 0}}),
        KARMPCurveOrientation::Positive, &whole);
    ExpectDrawn(DrawGeometry(*curve), ViewKind::Curve, {5, 4, 0, 5, 2, 0});
    factory->Release();
}

TEST(ViewGeometry, GivesJointsTheFrameOfAnAxisSystemOrOfADirection)
{
    const auto axes = DrawingOf<KARMPAxisSystem>([](auto& g) {
        g.SetAxisSystem({{1, 2, 3}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}});
    });
    EXPECT_EQ(FrameOf(*axes), KARMathAxis({1, 2, 3}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}));
    const auto circle = DrawingOf<KARMPCircle>([](auto& g) {
        g.SetCircle({{1, 2, 3}, {0, 1, 0}, {0, 0, 1}, 5});
    });
    EXPECT_TRUE(HasDirection(*circle));
    EXPECT_EQ(FrameOf(*circle).GetThirdDirection(), KARMathVector(1, 0, 0));
    EXPECT_EQ(FrameOf(*circle).GetOrigin(), KARMathPoint(1, 2, 3));
    const KARMathVector third =
        FrameOf(*circle).GetFirstDirection().Cross(FrameOf(*circle).GetSecondDirection());
    EXPECT_NEAR((third - KARMathVector(1, 0, 0)).Norm(), 0.0, 1e-15);
    const auto point = DrawingOf<KARMPPoint>([](auto& g) { g.SetPoint({1, 2, 3}); });
    EXPECT_FALSE(HasDirection(*point));
    for (const ViewKind kind : {ViewKind::Sphere, ViewKind::Curve, ViewKind::Mesh})
        EXPECT_FALSE(HasDirection({kind, -1, {}, {}}));
    EXPECT_EQ(FrameOf(*point), KARMathAxis({1, 2, 3}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
}

} // namespace

} // namespace karmp::tool
