#include "KARMPCurve2D.h"
#include "KARCrvLimits.h"
#include "KARMPBody2D.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "ModelObject.h"
#include "StoredStreams.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

namespace {

class Curve2D : public KARMPTestFixture
{
protected:
    Curve2D() { curve->SetIdentifier(L"C1"); }

    StoredFactory factory{KARGeometricFactory::Create()};
    KARLineCurve* line = MakeLine(*factory);
    KARCrvLimits limits{KARCrvParam(-0.5), KARCrvParam(2.5)};
    QOBSharedHandle<KARMPCurve2D> curve = KARMPCurve2D::create(L"c");
    KARMPEntityTable entities;
};

TEST_F(Curve2D, HandsOutItsSegmentsAndIsSafeForThreadsWithoutAny)
{
    EXPECT_EQ(curve->GetCurveCount(), 0);
    EXPECT_EQ(curve->IsThreadSafe(), 1);
    EXPECT_EQ(curve->AddCurve(line, KARMPCurveOrientation::Negative, &limits), KARSuccess);
    EXPECT_EQ(curve->GetCurveCount(), 1);
    EXPECT_EQ(curve->IsThreadSafe(), 0);
    EXPECT_EQ(line->GetRefCount(), 2U);
    KARBaseUnknown* found = nullptr;
    auto orientation = KARMPCurveOrientation::Positive;
    void* foundLimits = nullptr;
    EXPECT_EQ(curve->GetCurve(0, found, orientation, foundLimits), KARSuccess);
    EXPECT_EQ(found, line);
    EXPECT_EQ(orientation, KARMPCurveOrientation::Negative);
    EXPECT_EQ(foundLimits, &limits);
    for (const int index : {-1, 1}) {
        found = line;
        foundLimits = &limits;
        EXPECT_EQ(curve->GetCurve(index, found, orientation, foundLimits), KARFailure);
        EXPECT_EQ(found, nullptr);
        EXPECT_EQ(foundLimits, nullptr);
        EXPECT_EQ(orientation, KARMPCurveOrientation::Negative);
    }
    EXPECT_EQ(curve->AddCurve(line, KARMPCurveOrientation::Positive, nullptr), KARFailure);
    EXPECT_EQ(curve->AddCurve(nullptr, KARMPCurveOrientation::Positive, &limits), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(curve->GetCurveCount(), 1);
}

/// A curve that counts none of its segments.
class UncountedCurve2D : public KARMPCurve2D
{
public:
    int GetCurveCount() const override { return 0; }
};

TEST_F(Curve2D, IsSafeForThreadsWhenItCountsNoSegments)
{
    const QOBSharedHandle<KARMPCurve2D> uncounted(new UncountedCurve2D);
    uncounted->AddCurve(line, KARMPCurveOrientation::Positive, &limits);
    EXPECT_EQ(uncounted->IsThreadSafe(), 1);
}

TEST_F(Curve2D, GivesBackItsReferencesAtItsEndAndLeavesTheLimitsToTheirOwner)
{
    ModelObject object;
    curve->AddCurve(&object, KARMPCurveOrientation::Positive, &limits);
    EXPECT_EQ(object.Held(), 1U);
    curve.detach();
    EXPECT_EQ(object.Held(), 0U);
}

TEST_F(Curve2D, CopySharesTheCurvesAndHasLimitsOfItsOwn)
{
    curve->AddCurve(line, KARMPCurveOrientation::Negative, &limits);
    {
        const auto copy = KARMPCurve2D::clone(curve, QOBDynamicObject::CopyDefault);
        EXPECT_EQ(line->GetRefCount(), 3U);
        KARBaseUnknown* found = nullptr;
        auto orientation = KARMPCurveOrientation::Positive;
        void* foundLimits = nullptr;
        EXPECT_EQ(copy->GetCurve(0, found, orientation, foundLimits), KARSuccess);
        EXPECT_EQ(found, line);
        EXPECT_EQ(orientation, KARMPCurveOrientation::Negative);
        EXPECT_NE(foundLimits, &limits);
    }
    EXPECT_EQ(line->GetRefCount(), 2U);
}

TEST_F(Curve2D, WritesItsBaseAloneAndReadsBackWithoutSegments)
{
    const auto body = KARMPBody2D::create(L"body");
    body->SetIdentifier(L"body");
    entities.Set(L"body", body);
    curve->SetBody(body);
    curve->AddCurve(line, KARMPCurveOrientation::Negative, &limits);
    TestSerializer root;
    EXPECT_EQ(curve->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    EXPECT_EQ(root.Child(0).GetId(), L"Curve2D");
    ASSERT_EQ(root.Child(0).GetElementCount(), 1U);
    EXPECT_EQ(root.Text(L"Curve2D/Body2D/@id"), L"body");
    const auto read = KARMPCurve2D::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_EQ(read->GetCurveCount(), 0);
    QOBSharedHandle<KARMPBody2D> found;
    EXPECT_EQ(read->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
}

TEST_F(Curve2D, NeedsItsElement)
{
    TestDeserializer nothing;
    nothing.Add(L"Curve");
    EXPECT_EQ(curve->Deserialize(&nothing, entities), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(curve->Serialize(nullptr), KARFailure);
    EXPECT_EQ(curve->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(2);
    TestSerializer full;
    full.FailCreation(1);
    EXPECT_EQ(curve->Serialize(&full), KARFailure);
    ExpectReports(2); // the node's and the curve's
}

#if defined(__GNUC__) && defined(__x86_64__)

TEST_F(Curve2D, HasItsOperationsBehindThoseOfPlanarGeometry)
{
    using Getter = KARStatus (KARMPGeometry2D::*)(QOBSharedHandle<KARMPBody2D>&) const;
    ExpectSlotsBehind(VirtualSlot(static_cast<Getter>(&KARMPGeometry2D::GetBody)),
                      {VirtualSlot(&KARMPCurve2D::AddCurve), VirtualSlot(&KARMPCurve2D::GetCurve),
                       VirtualSlot(&KARMPCurve2D::GetCurveCount)});
}

#endif

} // namespace
