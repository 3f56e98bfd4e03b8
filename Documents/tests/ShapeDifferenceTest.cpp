// What two worlds differ in by the shapes that their streams hold.
#include "KAR3DMeshRep.h"
#include "KARBody.h"
#include "KARCrvLimits.h"
#include "KARGMKStream.h"
#include "KARIGMKObjectsSave.h"
#include "KARLineCurve.h"
#include "KARMP3DRep.h"
#include "KARMPCurve.h"
#include "KARMPShapeBody.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "KARMPWorldDifference.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

using namespace karmp::documents;

namespace {

using Bytes = std::vector<unsigned char>;

QOBSharedHandle<KARMPWorld> NewWorld()
{
    return KARMPWorld::create(QOBBasicWorld::create(L"World"));
}

/// A world with one entity of a class, which `fill` completes.
template <class Family, class T, class Fill>
QOBSharedHandle<KARMPWorld> WorldWith(Fill fill)
{
    const auto world = NewWorld();
    const auto entity = T::create(L"shape");
    entity->SetIdentifier(L"S1");
    fill(*entity);
    world->template Add<Family>(entity);
    return world;
}

QOBSharedHandle<KARMPWorld> WorldWithMesh(double x, std::uint32_t last = 2)
{
    return WorldWith<KARMPShape, KARMP3DRep>([&](KARMP3DRep& shape) {
        shape.Set3DRep(KAR3DMeshRep::CreateRep({{x, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, last}}));
    });
}

QOBSharedHandle<KARMPWorld> WorldWithBody(double x)
{
    return WorldWith<KARMPShape, KARMPShapeBody>([&](KARMPShapeBody& shape) {
        KARLineCurve* const line = KARLineCurve::Create(KARMathLine({x, 0, 0}, {1, 0, 0}), 0., 1.);
        KARBody* const body = KARBody::Create();
        body->AddVertex({x, 0, 0});
        body->AddVertex({1, 0, 0});
        body->AddEdge({line, 0, 1, 0, 1});
        shape.SetBody(body);
        line->Release();
        body->Release();
    });
}

QOBSharedHandle<KARMPWorld> WorldWithCurve(double x)
{
    return WorldWith<KARMPGeometry, KARMPCurve>([&](KARMPCurve& curve) {
        KARLineCurve* const line = KARLineCurve::Create(KARMathLine({x, 0, 0}, {1, 0, 0}), 0., 1.);
        curve.DeleteCurveLimitsAtEnd(true);
        curve.AddCurve(line, KARMPCurveOrientation::Positive, new KARCrvLimits);
        line->Release();
    });
}

std::vector<Difference> Between(const QOBSharedHandle<KARMPWorld>& before,
                                const QOBSharedHandle<KARMPWorld>& after, double floor = 0.0)
{
    DifferenceOptions options;
    options.floor = floor;
    return FindDifferences(*before, *after, options);
}

std::string TextOf(const karmp::Value& data)
{
    return std::holds_alternative<Bytes>(data) ? StreamText(std::get<Bytes>(data)) : "no stream";
}

void ExpectBegins(const std::string& text, const std::string& begin)
{
    EXPECT_EQ(text.substr(0, begin.size()), begin);
}

TEST(ShapeDifferences, AreToldAsWhatTheStreamsHold)
{
    const auto meshes = Between(WorldWithMesh(0), WorldWithMesh(0.5));
    ASSERT_EQ(meshes.size(), 1U);
    EXPECT_EQ(meshes[0].kind, DifferenceKind::Changed);
    EXPECT_EQ(meshes[0].item, L"stream");
    ExpectBegins(TextOf(meshes[0].oldValue), "a scene graph of 1 node with 1 triangle (");
    EXPECT_NE(TextOf(meshes[0].oldValue), TextOf(meshes[0].newValue));

    const auto bodies = Between(WorldWithBody(0), WorldWithBody(0.5));
    ASSERT_EQ(bodies.size(), 1U);
    ExpectBegins(TextOf(bodies[0].newValue), "a body of 0 faces and 1 edge (");

    const auto curves = Between(WorldWithCurve(0), WorldWithCurve(0.5));
    ASSERT_EQ(curves.size(), 1U);
    EXPECT_EQ(curves[0].item, L"CurveSegments/CurveSegment/CurveStream");
    ExpectBegins(TextOf(curves[0].newValue), "a curve (");
}

TEST(ShapeDifferences, AreNoneWithinWhatCountsAsEqual)
{
    const auto differences = [](const auto& make) {
        return std::array{
            Between(make(0.0), make(0.0)).size(), Between(make(0.0), make(1e-9), 1e-8).size(),
            Between(make(0.0), make(1e-9)).size(), Between(make(0.0), make(1e-7), 1e-8).size()};
    };
    constexpr std::array<std::size_t, 4> Expected{0, 0, 1, 1};
    EXPECT_EQ(differences([](double x) { return WorldWithMesh(x); }), Expected);
    EXPECT_EQ(differences(WorldWithBody), Expected);
    EXPECT_EQ(differences(WorldWithCurve), Expected);
}

TEST(ShapeDifferences, OfStructureAreToldWhateverCountsAsEqual)
{
    EXPECT_EQ(Between(WorldWithMesh(0, 2), WorldWithMesh(0, 1), 100.0).size(), 1U);
}

TEST(ShapeDifferences, OfAShapeThatOneWorldAloneHasAreTold)
{
    const auto without = WorldWith<KARMPShape, KARMPShapeBody>([](KARMPShapeBody&) {});
    EXPECT_EQ(Between(without, WorldWithBody(0)).size(), 1U);
    EXPECT_EQ(Between(without, without).size(), 0U);
}

TEST(StreamText, CountsTheBytesOfWhatIsNoShape)
{
    EXPECT_EQ(StreamText({}), "0 bytes");
    EXPECT_EQ(StreamText({1}), "1 byte");
    EXPECT_EQ(StreamText({1, 2, 3}), "3 bytes");
}

} // namespace
