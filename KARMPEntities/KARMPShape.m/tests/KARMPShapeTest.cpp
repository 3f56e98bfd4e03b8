#include "KARMPShape.h"
#include "ConcreteEntity.h"
#include "KARIMPShapeLoader.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

/// A shape and two bodies, linked as a test wants.
class Shape : public KARMPTestFixture
{
protected:
    using Handle = QOBSharedHandle<KARMPShape>;
    using Body = QOBSharedHandle<KARMPBody>;

    Shape()
    {
        first->SetIdentifier(L"first");
        second->SetIdentifier(L"second");
        entities.Set(L"first", first);
        entities.Set(L"second", second);
    }
    ~Shape() override
    {
        shape->orphanObject();
        first->orphanObject();
        second->orphanObject();
    }
    void LinkAll()
    {
        for (const Body& body : {first, second}) {
            shape->LinkToBody(body);
            body->LinkToShape(Handle(shape));
        }
    }

    LoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPShape>> shape = ConcreteEntity<KARMPShape>::create(L"s");
    Body first = KARMPBody::create(L"first");
    Body second = KARMPBody::create(L"second");
    KARMPEntityTable entities;
};

TEST_F(Shape, ListsItsBodies)
{
    EXPECT_EQ(shape->LinkToBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->LinkToBody(first), KARSuccess);
    EXPECT_EQ(shape->LinkToBody(second), KARSuccess);
    EXPECT_EQ(shape->LinkToBody(first), KARUnchanged);
    EXPECT_EQ(shape->GetLinkedBodyCount(), 2);
    EXPECT_EQ(first->GetLinkedShapeCount(), 0) << "the other side is made by the body";
    Body found;
    EXPECT_EQ(shape->GetLinkedBody(1, found), KARSuccess);
    EXPECT_EQ(found, second);
    EXPECT_EQ(shape->GetLinkedBody(2, found), KARFailure);
    EXPECT_FALSE(found);
    found = first;
    EXPECT_EQ(shape->GetLinkedBody(-1, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(shape->RemoveBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->RemoveBody(first), KARSuccess);
    EXPECT_EQ(shape->RemoveBody(first), KARUnchanged);
    EXPECT_EQ(shape->GetLinkedBodyCount(), 1);
}

/// A shape that counts fewer bodies than it has.
class ShyShape : public KARMPShape
{
public:
    int GetLinkedBodyCount() const override { return 1; }
};

TEST_F(Shape, HandsOutNoBodyBeyondItsCount)
{
    const Handle shy(new ShyShape);
    shy->LinkToBody(first);
    shy->LinkToBody(second);
    Body found = first;
    EXPECT_EQ(shy->GetLinkedBody(1, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(shy->GetLinkedBody(0, found), KARSuccess);
    TestSerializer root;
    shy->Serialize(&root);
    EXPECT_EQ(root.Count(L"Bodies/Body"), 1U);
}

TEST_F(Shape, HandsOutItsLoader)
{
    KARIMPShapeLoader* loader = nullptr;
    EXPECT_EQ(shape->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    shape->SetLoader(new RecordingLoader<KARIMPShapeLoader>(record));
    EXPECT_EQ(shape->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    shape->failsToFetch = true;
    EXPECT_EQ(shape->GetLoader(loader), KARFailure);
    ExpectReports(1);
}

TEST_F(Shape, IsLetGoByItsBodiesWhenOrphaned)
{
    LinkAll();
    EXPECT_EQ(shape->RemoveParent(), KARSuccess);
    EXPECT_EQ(first->GetLinkedShapeCount(), 0);
    EXPECT_EQ(second->GetLinkedShapeCount(), 0);
    EXPECT_EQ(shape->GetLinkedBodyCount(), 2);
    shape->orphanObject();
    EXPECT_EQ(shape->GetLinkedBodyCount(), 0);
}

TEST_F(Shape, CopiesNoBodies)
{
    shape->LinkToBody(first);
    EXPECT_EQ(shape->copy()->GetLinkedBodyCount(), 0);
}

TEST_F(Shape, WritesAndReadsItsBodies)
{
    LinkAll();
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    EXPECT_EQ(root.Count(L"Bodies/Body"), 2U);
    EXPECT_EQ(root.Text(L"Bodies/Body/@id"), L"first");
    EXPECT_EQ(root.Text(L"Bodies/Body[1]/@name"), L"second");
    const auto tree = TestDeserializer::From(root);
    const Handle read(ConcreteEntity<KARMPShape>::create(L"read"));
    EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
    ExpectReports(1); // it has an identifier already
    Body found;
    EXPECT_EQ(read->GetLinkedBody(1, found), KARSuccess);
    EXPECT_EQ(found, second);
}

/// A shape that takes no bodies.
class RefusingShape : public KARMPShape
{
public:
    KARStatus LinkToBody(const QOBSharedHandle<KARMPBody>&) override { return KARFailure; }
};

TEST_F(Shape, ReportsEachBodyThatItRefusesToRead)
{
    LinkAll();
    TestSerializer root;
    shape->Serialize(&root);
    const Handle refusing(new RefusingShape);
    EXPECT_EQ(refusing->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(refusing->GetLinkedBodyCount(), 0);
}

TEST_F(Shape, WritesNoBodiesThatItDoesNotHave)
{
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
}

TEST_F(Shape, SkipsBodiesThatAreUnknownAndRefusesOtherClasses)
{
    TestDeserializer root(L"S");
    root.Attribute(L"id", L"s").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    TestDeserializer& list = root.Add(L"Bodies");
    list.Reference(L"Body", L"unknown").Reference(L"Body", L"second");
    EXPECT_EQ(shape->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1); // it has an identifier already
    EXPECT_EQ(shape->GetLinkedBodyCount(), 1);
    entities.Set(L"unknown", KARMPPoint::create(L"p"));
    EXPECT_THROW(shape->Deserialize(&root, entities), QOBEInvalidCast);
    TakeReports();
}

TEST_F(Shape, HasNoUseForANullNode)
{
    EXPECT_EQ(shape->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Shape, SucceedsWhenAnAdditionFails)
{
    LinkAll();
    EXPECT_EQ(ForEachFailedCreation(L"R2018.1",
                                    [this](TestSerializer& root, std::size_t failing) {
                                        EXPECT_EQ(shape->Serialize(&root), KARSuccess);
                                        EXPECT_EQ(TakeReports() > 0, failing != 0);
                                    }),
              3U);
}

} // namespace
