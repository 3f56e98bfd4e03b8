#include "KARMPShape2D.h"
#include "ConcreteEntity.h"
#include "KARIMPShape2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

namespace {

/// A planar shape, two planar bodies and a spatial one.
class Shape2D : public KARMPTestFixture
{
protected:
    using Handle = QOBSharedHandle<KARMPShape2D>;
    using Body = QOBSharedHandle<KARMPBody2D>;
    using SpatialBody = QOBSharedHandle<KARMPBody>;

    Shape2D()
    {
        first->SetIdentifier(L"first");
        second->SetIdentifier(L"second");
        spatial->SetIdentifier(L"spatial");
        entities.Set(L"first", first);
        entities.Set(L"second", second);
        entities.Set(L"spatial", spatial);
    }
    ~Shape2D() override
    {
        shape->orphanObject();
        first->orphanObject();
        second->orphanObject();
        spatial->orphanObject();
    }
    void LinkAll()
    {
        for (const Body& body : {first, second}) {
            shape->LinkToBody(body);
            body->LinkToShape(Handle(shape));
        }
    }

    LoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPShape2D>> shape =
        ConcreteEntity<KARMPShape2D>::create(L"s");
    Body first = KARMPBody2D::create(L"first");
    Body second = KARMPBody2D::create(L"second");
    SpatialBody spatial = KARMPBody::create(L"spatial");
    KARMPEntityTable entities;
};

TEST_F(Shape2D, ListsItsPlanarBodies)
{
    EXPECT_EQ(shape->LinkToBody(Body()), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->LinkToBody(first), KARSuccess);
    EXPECT_EQ(shape->LinkToBody(second), KARSuccess);
    EXPECT_EQ(shape->LinkToBody(first), KARUnchanged);
    EXPECT_EQ(shape->GetLinkedBodyCount(), 2);
    EXPECT_EQ(first->GetLinkedShapeCount(), 0) << "the other side is made by the body";
    Body found;
    EXPECT_EQ(shape->GetLinkedBody(1, found), KARSuccess);
    EXPECT_EQ(found, second);
    for (const int outside : {-1, 2}) {
        found = first;
        EXPECT_EQ(shape->GetLinkedBody(outside, found), KARFailure);
        EXPECT_FALSE(found);
    }
    EXPECT_EQ(shape->RemoveBody(Body()), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->RemoveBody(first), KARSuccess);
    EXPECT_EQ(shape->RemoveBody(first), KARUnchanged);
    EXPECT_EQ(shape->GetLinkedBodyCount(), 1);
}

TEST_F(Shape2D, CountsItsOwnBodiesAlsoAsAnyShape)
{
    const KARMPShape& base = *shape;
    shape->LinkToBody(spatial);
    EXPECT_EQ(base.GetLinkedBodyCount(), 0);
    SpatialBody found = spatial;
    EXPECT_EQ(base.GetLinkedBody(0, found), KARFailure);
    EXPECT_FALSE(found);
    shape->LinkToBody(first);
    EXPECT_EQ(base.GetLinkedBodyCount(), 1);
    EXPECT_EQ(shape->RemoveBody(spatial), KARSuccess);
    EXPECT_EQ(shape->GetLinkedBodyCount(), 1);
}

/// A shape that counts fewer bodies than it has.
class ShyShape2D : public KARMPShape2D
{
public:
    int GetLinkedBodyCount() const override { return 1; }
};

TEST_F(Shape2D, HandsOutNoBodyBeyondItsCount)
{
    const Handle shy(new ShyShape2D);
    shy->LinkToBody(first);
    shy->LinkToBody(second);
    Body found = first;
    EXPECT_EQ(shy->GetLinkedBody(1, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(shy->GetLinkedBody(0, found), KARSuccess);
    TestSerializer root;
    shy->Serialize(&root);
    EXPECT_EQ(root.Count(L"Bodies/Body2D"), 1U);
}

TEST_F(Shape2D, HandsOutItsPlanarLoader)
{
    KARIMPShape2DLoader* loader = nullptr;
    EXPECT_EQ(shape->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    shape->SetLoader(new RecordingLoader<KARIMPShape2DLoader>(record));
    EXPECT_EQ(shape->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    KARIMPShapeLoader* spatialLoader = nullptr;
    EXPECT_EQ(shape->GetLoader(spatialLoader), KARSuccess);
    EXPECT_EQ(spatialLoader, loader);
    shape->failsToFetch = true;
    EXPECT_EQ(shape->GetLoader(loader), KARFailure);
    ExpectReports(1);
}

TEST_F(Shape2D, IsLetGoByItsBodiesWhenOrphaned)
{
    LinkAll();
    shape->LinkToBody(spatial);
    EXPECT_EQ(shape->RemoveParent(), KARSuccess);
    EXPECT_EQ(first->GetLinkedShapeCount(), 0);
    EXPECT_EQ(second->GetLinkedShapeCount(), 0);
    EXPECT_EQ(shape->GetLinkedBodyCount(), 2);
    const unsigned int held = spatial->getReferenceCount();
    shape->orphanObject();
    EXPECT_EQ(shape->GetLinkedBodyCount(), 0);
    EXPECT_EQ(spatial->getReferenceCount(), held - 1);
}

TEST_F(Shape2D, CopiesNoBodies)
{
    shape->LinkToBody(first);
    EXPECT_EQ(shape->copy()->GetLinkedBodyCount(), 0);
}

TEST_F(Shape2D, WritesAndReadsItsPlanarBodiesAlone)
{
    LinkAll();
    shape->LinkToBody(spatial);
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    EXPECT_EQ(root.Child(0).GetElementCount(), 2U);
    EXPECT_EQ(root.Text(L"Bodies/Body2D/@id"), L"first");
    EXPECT_EQ(root.Text(L"Bodies/Body2D[1]/@name"), L"second");
    const auto tree = TestDeserializer::From(root);
    const Handle read(ConcreteEntity<KARMPShape2D>::create(L"read"));
    EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
    ExpectReports(1); // it has an identifier already
    Body found;
    EXPECT_EQ(read->GetLinkedBody(1, found), KARSuccess);
    EXPECT_EQ(found, second);
}

TEST_F(Shape2D, WritesNoBodiesThatItDoesNotHave)
{
    shape->LinkToBody(spatial);
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
}

TEST_F(Shape2D, SkipsBodiesThatAreUnknownAndRefusesSpatialOnes)
{
    TestDeserializer root(L"S");
    root.Attribute(L"id", L"s").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    root.Add(L"Bodies").Reference(L"Body2D", L"unknown").Reference(L"Body2D", L"second");
    EXPECT_EQ(shape->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1); // it has an identifier already
    EXPECT_EQ(shape->GetLinkedBodyCount(), 1);
    entities.Set(L"unknown", spatial);
    EXPECT_THROW(shape->Deserialize(&root, entities), QOBEInvalidCast);
    TakeReports();
}

TEST_F(Shape2D, HasNoUseForANullNode)
{
    EXPECT_EQ(shape->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

#if defined(__GNUC__)

using Shape2DBody = QOBSharedHandle<KARMPBody2D>;

TEST_F(Shape2D, HasItsOperationsBehindThoseOfAShape)
{
    using C = KARMPShape2D;
    ExpectSlotsBehind(
        VirtualSlot(&KARMPShape::GetLinkedBodyCount),
        {VirtualSlot(static_cast<KARStatus (C::*)(KARIMPShape2DLoader*&) const>(&C::GetLoader)),
         VirtualSlot(static_cast<KARStatus (C::*)(const Shape2DBody&)>(&C::LinkToBody)),
         VirtualSlot(static_cast<KARStatus (C::*)(int, Shape2DBody&) const>(&C::GetLinkedBody))});
}

#endif

} // namespace
