#include "StoredSamples.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace samples;

/// A tetrahedron of straight edges; its faces' surfaces are one plane, which is not looked at.
KARBody* Tetrahedron(KARGeometricFactory& factory)
{
    KARBody* body = factory.Make<KARBody>();
    for (const KARMathPoint& point : {KARMathPoint(0, 0, 0), KARMathPoint(1, 0, 0),
                                      KARMathPoint(0, 1, 0), KARMathPoint(0, 0, 1)})
        body->AddVertex(point);
    constexpr int Ends[6][2] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
    for (const auto& ends : Ends) {
        const KARMathPoint& start = body->GetVertices()[static_cast<std::size_t>(ends[0])];
        const KARMathPoint& end = body->GetVertices()[static_cast<std::size_t>(ends[1])];
        auto* line = factory.Make<KARLineCurve>(KARMathLine(start, end - start), 0.0, 1.0);
        body->AddEdge({line, 0.0, 1.0, ends[0], ends[1]});
    }
    KARPlaneSurface* plane = Plane(factory);
    body->AddFace({plane, false, {{{1, false}, {3, true}, {0, true}}}});
    body->AddFace({plane, false, {{{0, false}, {4, false}, {2, true}}}});
    body->AddFace({plane, false, {{{2, false}, {5, true}, {1, true}}}});
    return body;
}

class PlainUnknown final : public KARCountedUnknown
{};

} // namespace

TEST(StoredObject, AnswersForItsClassAndItsBases)
{
    const FactoryPointer factory = NewFactory();
    KARBaseUnknown* circle = Circle(*factory);
    EXPECT_EQ(KAROmxQI<KARCircleArc>(circle), circle);
    EXPECT_EQ(KAROmxQI<KAREllipseArc>(circle), circle);
    EXPECT_EQ(KAROmxQI<KARCurve>(circle), circle);
    EXPECT_EQ(KAROmxQI<KARIGMKObject>(circle), circle);
    EXPECT_EQ(KAROmxQI<KARSurface>(circle), nullptr);
    EXPECT_EQ(KAROmxQI<KARBody>(circle), nullptr);
    EXPECT_EQ(KARSysDynamicCast<KARIGMKObject>(circle), circle);

    KARBaseUnknown* moved = Moved(*factory, Plane(*factory));
    EXPECT_EQ(KAROmxQI(moved, KARLinearTransfoSurface::ClassId()), moved);
    EXPECT_EQ(KAROmxQI<KARSurface>(moved), moved);
    EXPECT_EQ(KAROmxQI<KARPlaneSurface>(moved), nullptr);
}

TEST(StoredObject, OutlivesItsFactoryWhenHeld)
{
    FactoryPointer factory = NewFactory();
    KARLineCurve* line = Line(*factory);
    EXPECT_EQ(line->GetRefCount(), 1U);
    EXPECT_EQ(factory->GetObjectCount(), 1);
    line->AddRef();
    factory.reset();
    EXPECT_EQ(line->GetRefCount(), 1U);
    EXPECT_EQ(line->EvalPoint(0.0), KARMathPoint(1, 2, 3));
    EXPECT_EQ(line->Release(), 0U);
}

TEST(StoredObject, FactoryMakesNothingOfRefusedArguments)
{
    const FactoryPointer factory = NewFactory();
    EXPECT_EQ(factory->Make<KARPolylineCurve>(std::vector<KARMathPoint>{}), nullptr);
    EXPECT_EQ(factory->GetObjectCount(), 0);
}

TEST(StoredObjectList, CountsItsEntriesFromOneAndTakesZeroForTheFirst)
{
    const FactoryPointer factory = NewFactory();
    KARListPtrKARIGMKObject list;
    EXPECT_EQ(list[0], nullptr);
    EXPECT_EQ(list[1], nullptr);
    KARLineCurve* line = Line(*factory);
    KARCircleArc* circle = Circle(*factory);
    list.Append(line);
    list.Append(circle);
    EXPECT_EQ(list.Size(), 2);
    EXPECT_EQ(list[0], line);
    EXPECT_EQ(list[1], line);
    EXPECT_EQ(list[2], circle);
    EXPECT_EQ(list[3], nullptr);
    EXPECT_EQ(list[-1], nullptr);
    EXPECT_EQ(list[std::numeric_limits<int>::min()], nullptr);
    EXPECT_EQ(line->GetRefCount(), 1U);
    list.RemoveAll();
    EXPECT_EQ(list.Size(), 0);
}

TEST(StoredObjectList, TakesWhatIsNoStoredObjectForNull)
{
    PlainUnknown* plain = new PlainUnknown;
    KARListPtrKARIGMKObject list;
    list.Append(plain);
    list.Append(nullptr);
    EXPECT_EQ(list.Size(), 2);
    EXPECT_EQ(list[1], nullptr);
    EXPECT_EQ(list[2], nullptr);
    plain->Release();
}

TEST(StoredBody, IsClosedWhenEachEdgeIsRunThroughInBothSenses)
{
    const FactoryPointer factory = NewFactory();
    KARBody* body = Tetrahedron(*factory);
    EXPECT_EQ(body->GetFaces().size(), 3U);
    EXPECT_FALSE(body->IsClosed());
    EXPECT_EQ(
        body->AddFace({body->GetFaces()[0].surface, false, {{{3, false}, {5, false}, {4, true}}}}),
        3);
    EXPECT_TRUE(body->IsClosed());
    EXPECT_TRUE(Lens(*factory)->IsClosed());
    EXPECT_FALSE(factory->Make<KARBody>()->IsClosed());
}

TEST(StoredBody, RefusesWhatDoesNotHangTogether)
{
    const FactoryPointer factory = NewFactory();
    KARBody* body = Tetrahedron(*factory);
    KARCurve* curve = body->GetEdges()[0].curve;
    KARSurface* surface = body->GetFaces()[0].surface;
    const unsigned int curveCount = curve->GetRefCount();
    const unsigned int surfaceCount = surface->GetRefCount();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(body->AddVertex({0, nan, 0}), -1);
    EXPECT_EQ(body->AddEdge({nullptr, 0, 1, 0, 1}), -1);
    EXPECT_EQ(body->AddEdge({curve, 1, 0, 0, 1}), -1);
    EXPECT_EQ(body->AddEdge({curve, 0, nan, 0, 1}), -1);
    EXPECT_EQ(body->AddEdge({curve, 0, 1, -1, 1}), -1);
    EXPECT_EQ(body->AddEdge({curve, 0, 1, 0, 4}), -1);
    EXPECT_EQ(body->AddFace({nullptr, false, {}}), -1);
    EXPECT_EQ(body->AddFace({surface, false, {{}}}), -1);
    EXPECT_EQ(body->AddFace({surface, false, {{{6, false}}}}), -1);
    EXPECT_EQ(body->AddFace({surface, false, {{{-1, false}}}}), -1);
    EXPECT_EQ(body->AddFace({surface, false, {{{0, false}, {1, false}}}}), -1);
    EXPECT_EQ(body->AddFace({surface, false, {{{0, false}}}}), -1);
    EXPECT_EQ(body->GetVertices().size(), 4U);
    EXPECT_EQ(body->GetEdges().size(), 6U);
    EXPECT_EQ(body->GetFaces().size(), 3U);
    EXPECT_EQ(curve->GetRefCount(), curveCount);
    EXPECT_EQ(surface->GetRefCount(), surfaceCount);
}

TEST(StoredBody, HoldsItsCurvesAndSurfaces)
{
    KARLineCurve* line = KARLineCurve::Create({{}, {1, 0, 0}}, 0, 1);
    KARPlaneSurface* plane = KARPlaneSurface::Create({}, {1, 0, 0}, {0, 1, 0}, {0, 1, 0, 1});
    KARBody* body = KARBody::Create();
    body->AddVertex({0, 0, 0});
    EXPECT_EQ(body->AddEdge({line, 0, 1, 0, 0}), 0);
    EXPECT_EQ(body->AddFace({plane, false, {}}), 0);
    EXPECT_EQ(line->GetRefCount(), 2U);
    EXPECT_EQ(plane->GetRefCount(), 2U);
    body->Release();
    EXPECT_EQ(line->GetRefCount(), 1U);
    EXPECT_EQ(plane->GetRefCount(), 1U);
    line->Release();
    plane->Release();
}
