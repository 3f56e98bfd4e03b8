#include "KARMPGeometry.h"
#include "ConcreteEntity.h"
#include "KARIMPGeometryLoader.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

/// A geometry that takes no links.
class RefusingGeometry : public ConcreteEntity<KARMPGeometry>
{
public:
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>&) override { return KARFailure; }
    KARStatus LinkToConstraint(const QOBSharedHandle<KARMPConstraint>&) override
    {
        return KARFailure;
    }
};

/// A geometry that has its links elsewhere and cannot give the first constraint.
class LendingGeometry : public ConcreteEntity<KARMPGeometry>
{
public:
    KARStatus GetBody(QOBSharedHandle<KARMPBody>& given) const override
    {
        given = body;
        return KARSuccess;
    }
    KARStatus GetLinkedConstraint(int index, QOBSharedHandle<KARMPConstraint>& given) const override
    {
        given = constraint;
        return index > 0 ? KARSuccess : KARFailure;
    }
    int GetLinkedConstraintCount() const override { return 2; }

    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPConstraint> constraint;
};

/// A geometry, a body and two constraints, linked as a test wants.
class Geometry : public KARMPTestFixture
{
protected:
    using Handle = QOBSharedHandle<KARMPGeometry>;
    using Body = QOBSharedHandle<KARMPBody>;
    using Constraint = QOBSharedHandle<KARMPConstraint>;

    Geometry()
    {
        entities.Set(L"body", body);
        entities.Set(L"first", first);
        entities.Set(L"second", second);
        body->SetIdentifier(L"body");
    }
    ~Geometry() override
    {
        geometry->orphanObject();
        body->orphanObject();
        first->orphanObject();
        second->orphanObject();
        TakeReports();
    }
    void LinkAll()
    {
        geometry->SetBody(body);
        body->AddGeometry(Handle(geometry));
        for (const Constraint& constraint : {first, second}) {
            geometry->LinkToConstraint(constraint);
            constraint->LinkToGeometry(Handle(geometry));
        }
    }

    LoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPGeometry>> geometry =
        ConcreteEntity<KARMPGeometry>::create(L"geometry");
    Body body = KARMPBody::create(L"body");
    Constraint first{ConcreteEntity<KARMPConstraint>::create(L"first")};
    Constraint second{ConcreteEntity<KARMPConstraint>::create(L"second")};
    KARMPEntityTable entities;
};

TEST_F(Geometry, HasOneBody)
{
    Body found = body;
    EXPECT_EQ(geometry->GetBody(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(geometry->SetBody(body), KARSuccess);
    EXPECT_EQ(body->GetGeometryCount(), 0) << "the other side is made by the body";
    EXPECT_EQ(geometry->SetBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
}

TEST_F(Geometry, LetsItsOwnBodyGoOnly)
{
    geometry->SetBody(body);
    const Body other = KARMPBody::create(L"other");
    EXPECT_EQ(geometry->RemoveBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->RemoveBody(other), KARUnchanged);
    Body found;
    EXPECT_EQ(geometry->GetBody(found), KARSuccess);
    EXPECT_EQ(geometry->RemoveBody(body), KARSuccess);
    EXPECT_EQ(geometry->GetBody(found), KARFailure);
    EXPECT_EQ(geometry->RemoveBody(body), KARUnchanged);
}

TEST_F(Geometry, ListsItsConstraints)
{
    EXPECT_EQ(geometry->LinkToConstraint({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->LinkToConstraint(first), KARSuccess);
    EXPECT_EQ(geometry->LinkToConstraint(second), KARSuccess);
    EXPECT_EQ(geometry->LinkToConstraint(first), KARUnchanged);
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 2);
    Constraint found;
    EXPECT_EQ(geometry->GetLinkedConstraint(1, found), KARSuccess);
    EXPECT_EQ(found, second);
    EXPECT_EQ(geometry->GetLinkedConstraint(2, found), KARFailure);
    EXPECT_FALSE(found);
    found = first;
    EXPECT_EQ(geometry->GetLinkedConstraint(-1, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(geometry->RemoveConstraint({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->RemoveConstraint(first), KARSuccess);
    EXPECT_EQ(geometry->RemoveConstraint(first), KARUnchanged);
    EXPECT_EQ(geometry->GetLinkedConstraint(0, found), KARSuccess);
    EXPECT_EQ(found, second);
}

TEST_F(Geometry, HandsOutItsLoader)
{
    KARIMPGeometryLoader* loader = nullptr;
    EXPECT_EQ(geometry->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    geometry->SetLoader(new RecordingLoader<KARIMPGeometryLoader>(record));
    EXPECT_EQ(geometry->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    geometry->failsToFetch = true;
    EXPECT_EQ(geometry->GetLoader(loader), KARFailure);
    EXPECT_EQ(loader, nullptr);
    ExpectReports(1);
    geometry.detach();
    geometry = ConcreteEntity<KARMPGeometry>::create(L"other");
    EXPECT_EQ(record.deleted, 1);
}

TEST_F(Geometry, TakesItselfFromBodyAndConstraints)
{
    LinkAll();
    EXPECT_EQ(geometry->RemoveParent(), KARSuccess);
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(first->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(second->GetLinkedGeometryCount(), 0);
    Body found;
    EXPECT_EQ(geometry->GetBody(found), KARFailure);
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 2);
}

TEST_F(Geometry, TakesItselfFromTheRestWhereOneDoesNotKnowIt)
{
    LinkAll();
    body->RemoveGeometry(Handle(geometry));
    first->RemoveGeometry(Handle(geometry));
    EXPECT_EQ(geometry->RemoveParent(), KARSuccess);
    EXPECT_EQ(second->GetLinkedGeometryCount(), 0);
}

TEST_F(Geometry, ClearsItsConstraintsButNotItsBody)
{
    LinkAll();
    geometry->ClearContainers();
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 0);
    Body found;
    EXPECT_EQ(geometry->GetBody(found), KARSuccess);
    first->RemoveGeometry(Handle(geometry));
    second->RemoveGeometry(Handle(geometry));
}

TEST_F(Geometry, IsLetGoByAllWhenOrphaned)
{
    LinkAll();
    geometry->orphanObject();
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(first->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(geometry->getReferenceCount(), 1U);
}

TEST_F(Geometry, CopiesNoLinks)
{
    LinkAll();
    const auto copy = geometry->copy();
    Body found;
    EXPECT_EQ(copy->GetBody(found), KARFailure);
    EXPECT_EQ(copy->GetLinkedConstraintCount(), 0);
}

TEST_F(Geometry, WritesItsLinks)
{
    LinkAll();
    TestSerializer root;
    EXPECT_EQ(geometry->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 2U);
    EXPECT_EQ(root.Child(0).GetId(), L"Body");
    EXPECT_EQ(root.Text(L"@id"), L"geometry");
    EXPECT_EQ(root.Text(L"Body/@id"), L"body");
    EXPECT_EQ(root.Text(L"Body/@name"), L"body");
    EXPECT_EQ(root.Count(L"Constraints/Constraint"), 2U);
    EXPECT_EQ(root.Text(L"Constraints/Constraint/@id"), L"first");
    EXPECT_EQ(root.Text(L"Constraints/Constraint[1]/@id"), L"second");
    EXPECT_EQ(root.Text(L"Constraints/Constraint[1]/@name"), L"second");
}

TEST_F(Geometry, WritesNoLinksThatItDoesNotHave)
{
    TestSerializer root;
    EXPECT_EQ(geometry->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
}

TEST_F(Geometry, WritesWhatItsOwnGettersGive)
{
    auto* const lending = new LendingGeometry;
    const Handle handle(lending);
    lending->body = body;
    lending->constraint = second;
    TestSerializer root;
    EXPECT_EQ(lending->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Body/@id"), L"body");
    EXPECT_EQ(root.Count(L"Constraints/Constraint"), 2U);
    EXPECT_TRUE(root.Flag(L"Constraints/Constraint/@id"));
    EXPECT_EQ(root.Text(L"Constraints/Constraint[1]/@id"), L"second");
}

TEST_F(Geometry, ReportsEachLinkThatItRefuses)
{
    LinkAll();
    TestSerializer root;
    geometry->Serialize(&root);
    const Handle refusing(new RefusingGeometry);
    EXPECT_EQ(refusing->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(3);
}

TEST_F(Geometry, ReadsItsLinks)
{
    LinkAll();
    TestSerializer root;
    geometry->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = ConcreteEntity<KARMPGeometry>::create(L"read");
        ExpectReports(0);
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ExpectReports(1); // it has an identifier already
        Body found;
        EXPECT_EQ(read->GetBody(found), KARSuccess);
        EXPECT_EQ(found, body);
        Constraint constraint;
        EXPECT_EQ(read->GetLinkedConstraintCount(), 2);
        EXPECT_EQ(read->GetLinkedConstraint(1, constraint), KARSuccess);
        EXPECT_EQ(constraint, second);
    }
}

TEST_F(Geometry, SkipsReferencesThatLeadNowhere)
{
    TestDeserializer root(L"Geometry");
    root.Attribute(L"id", L"geometry").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    root.Reference(L"Body", L"unknown");
    TestDeserializer& list = root.Add(L"Constraints");
    list.Reference(L"Constraint", L"null").Reference(L"Constraint", L"first");
    list.Add(L"Constraint");
    entities.Set(L"null", {});
    const auto read = ConcreteEntity<KARMPGeometry>::create(L"geometry");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2); // an identifier again, and the reference without "id"
    Body found;
    EXPECT_EQ(read->GetBody(found), KARFailure);
    EXPECT_EQ(read->GetLinkedConstraintCount(), 1);
}

TEST_F(Geometry, RefusesAReferenceToAnotherClass)
{
    TestDeserializer one(L"Geometry");
    one.Reference(L"Body", L"first");
    EXPECT_THROW(geometry->Deserialize(&one, entities), QOBEInvalidCast);
    TestDeserializer other(L"Geometry");
    other.Add(L"Constraints").Reference(L"Constraint", L"body");
    EXPECT_THROW(geometry->Deserialize(&other, entities), QOBEInvalidCast);
    TakeReports();
}

TEST_F(Geometry, HasNoUseForANullNode)
{
    EXPECT_EQ(geometry->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Geometry, WritesTheRestWhenAnAdditionFails)
{
    LinkAll();
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(geometry->Serialize(&root), KARSuccess);
            // The node reports, and so does the geometry.
            ExpectReports(failing == 0 ? 0 : 2);
            EXPECT_EQ(root.Has(L"Body"), failing != 1);
            const std::size_t lost = failing == 2 ? 2 : failing > 2 ? 1 : 0;
            EXPECT_EQ(root.Count(L"Constraints/Constraint"), 2 - lost);
        });
    EXPECT_EQ(creations, 4U);
}

} // namespace
