#include "KARMPGeometry2D.h"
#include "ConcreteEntity.h"
#include "KARIMPGeometry2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPConstraint.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "PlanarKindTraits.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

namespace {

/// A planar geometry that has its planar body elsewhere and takes none.
class LendingGeometry2D : public ConcreteEntity<KARMPGeometry2D>
{
public:
    KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>&) override { return KARFailure; }
    KARStatus GetBody(QOBSharedHandle<KARMPBody2D>& given) const override
    {
        given = body;
        return KARSuccess;
    }

    QOBSharedHandle<KARMPBody2D> body;
};

/// A planar geometry, two bodies, a sketch and two constraints, linked as a test wants.
class Geometry2D : public KARMPTestFixture
{
protected:
    using Handle = QOBSharedHandle<KARMPGeometry2D>;
    using Body = QOBSharedHandle<KARMPBody>;
    using Body2D = QOBSharedHandle<KARMPBody2D>;
    using Sketch = QOBSharedHandle<KARMPSketch>;
    using Constraint = QOBSharedHandle<KARMPConstraint>;

    Geometry2D()
    {
        entities.Set(L"body", body);
        entities.Set(L"spatial", spatial);
        entities.Set(L"sketch", sketch);
        entities.Set(L"first", first);
        entities.Set(L"second", second);
        body->SetIdentifier(L"body");
        spatial->SetIdentifier(L"spatial");
        sketch->SetIdentifier(L"sketch");
    }
    ~Geometry2D() override
    {
        geometry->orphanObject();
        for (const QOBSharedHandle<KARMPEntity>& entity :
             {QOBSharedHandle<KARMPEntity>(body), QOBSharedHandle<KARMPEntity>(spatial),
              QOBSharedHandle<KARMPEntity>(first), QOBSharedHandle<KARMPEntity>(second)})
            entity->orphanObject();
        TakeReports();
    }
    void LinkAll()
    {
        geometry->SetBody(body);
        body->AddGeometry(Handle(geometry));
        geometry->SetSketch(sketch);
        for (const Constraint& constraint : {first, second}) {
            geometry->LinkToConstraint(constraint);
            constraint->LinkToGeometry(Handle(geometry));
        }
    }

    LoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPGeometry2D>> geometry =
        ConcreteEntity<KARMPGeometry2D>::create(L"geometry");
    Body2D body = KARMPBody2D::create(L"body");
    Body spatial = KARMPBody::create(L"spatial");
    Sketch sketch = KARMPSketch::create(L"sketch");
    Constraint first{ConcreteEntity<KARMPConstraint>::create(L"first")};
    Constraint second{ConcreteEntity<KARMPConstraint>::create(L"second")};
    KARMPEntityTable entities;
};

TEST_F(Geometry2D, HasOnePlanarBody)
{
    Body2D found = body;
    EXPECT_EQ(geometry->GetBody(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(geometry->SetBody(body), KARSuccess);
    EXPECT_EQ(body->GetGeometryCount(), 0) << "the other side is made by the body";
    EXPECT_EQ(geometry->SetBody(Body2D()), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
    EXPECT_EQ(geometry->RemoveBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->RemoveBody(KARMPBody2D::create(L"other")), KARUnchanged);
    EXPECT_EQ(geometry->RemoveBody(body), KARSuccess);
    EXPECT_EQ(geometry->RemoveBody(body), KARUnchanged);
}

TEST_F(Geometry2D, HasABodyInSpaceApartFromItsPlanarOne)
{
    EXPECT_EQ(geometry->SetBody(body), KARSuccess);
    Body found;
    EXPECT_EQ(geometry->GetBody(found), KARFailure);
    EXPECT_EQ(geometry->SetBody(spatial), KARSuccess);
    EXPECT_EQ(geometry->GetBody(found), KARSuccess);
    EXPECT_EQ(found, spatial);
    Body2D planar;
    EXPECT_EQ(geometry->GetBody(planar), KARSuccess);
    EXPECT_EQ(planar, body);
    // By a handle of the base, a planar body is one in space as well.
    EXPECT_EQ(geometry->SetBody(Body(body)), KARSuccess);
    EXPECT_EQ(geometry->RemoveBody(body), KARSuccess);
    EXPECT_EQ(geometry->GetBody(found), KARSuccess);
    EXPECT_EQ(found, Body(body));
    EXPECT_EQ(geometry->KARMPGeometry::RemoveBody(found), KARSuccess);
}

TEST_F(Geometry2D, HasOneSketch)
{
    Sketch found = sketch;
    EXPECT_EQ(geometry->GetSketch(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(geometry->SetSketch(sketch), KARSuccess);
    EXPECT_EQ(geometry->SetSketch({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->GetSketch(found), KARSuccess);
    EXPECT_EQ(found, sketch);
}

TEST_F(Geometry2D, ListsItsConstraintsForTheBaseToo)
{
    KARMPGeometry& base = *geometry;
    EXPECT_EQ(base.LinkToConstraint({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(base.LinkToConstraint(first), KARSuccess);
    EXPECT_EQ(geometry->LinkToConstraint(second), KARSuccess);
    EXPECT_EQ(geometry->LinkToConstraint(first), KARUnchanged);
    EXPECT_EQ(base.GetLinkedConstraintCount(), 2);
    Constraint found;
    EXPECT_EQ(base.GetLinkedConstraint(1, found), KARSuccess);
    EXPECT_EQ(found, second);
    EXPECT_EQ(geometry->GetLinkedConstraint(2, found), KARFailure);
    EXPECT_FALSE(found);
    // What takes a constraint out is not virtual: the base looks into its own list.
    EXPECT_EQ(base.RemoveConstraint(first), KARUnchanged);
    EXPECT_EQ(geometry->RemoveConstraint({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->RemoveConstraint(first), KARSuccess);
    EXPECT_EQ(geometry->RemoveConstraint(first), KARUnchanged);
    EXPECT_EQ(base.GetLinkedConstraintCount(), 1);
    EXPECT_EQ(geometry->KARMPGeometry::GetLinkedConstraintCount(), 0);
}

TEST_F(Geometry2D, HandsOutItsPlanarLoader)
{
    KARIMPGeometry2DLoader* loader = nullptr;
    EXPECT_EQ(geometry->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    geometry->SetLoader(new RecordingLoader<KARIMPGeometry2DLoader>(record));
    EXPECT_EQ(geometry->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    KARIMPGeometryLoader* spatialLoader = nullptr;
    EXPECT_EQ(geometry->GetLoader(spatialLoader), KARSuccess);
    EXPECT_EQ(spatialLoader, loader);
    geometry->failsToFetch = true;
    EXPECT_EQ(geometry->GetLoader(loader), KARFailure);
    EXPECT_EQ(loader, nullptr);
    ExpectReports(1);
    geometry.detach();
    geometry = ConcreteEntity<KARMPGeometry2D>::create(L"other");
    EXPECT_EQ(record.deleted, 1);
}

TEST_F(Geometry2D, TakesItselfFromPlanarBodyAndConstraintsButNotFromTheSketch)
{
    LinkAll();
    geometry->SetBody(spatial);
    spatial->AddGeometry(QOBSharedHandle<KARMPGeometry>(geometry));
    EXPECT_EQ(geometry->RemoveParent(), KARSuccess);
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(first->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(second->GetLinkedGeometryCount(), 0);
    Body2D found;
    EXPECT_EQ(geometry->GetBody(found), KARFailure);
    Sketch foundSketch;
    EXPECT_EQ(geometry->GetSketch(foundSketch), KARSuccess);
    EXPECT_EQ(spatial->GetGeometryCount(), 1);
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 2);
}

TEST_F(Geometry2D, ClearsItsConstraintsButNeitherBodyNorSketch)
{
    LinkAll();
    geometry->ClearContainers();
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 0);
    Body2D found;
    EXPECT_EQ(geometry->GetBody(found), KARSuccess);
    Sketch foundSketch;
    EXPECT_EQ(geometry->GetSketch(foundSketch), KARSuccess);
    first->RemoveGeometry(Handle(geometry));
    second->RemoveGeometry(Handle(geometry));
}

TEST_F(Geometry2D, IsLetGoByAllWhenOrphaned)
{
    LinkAll();
    geometry->orphanObject();
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(first->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(geometry->getReferenceCount(), 1U);
}

TEST_F(Geometry2D, StaysWithAConstraintThatIsOrphanedUntilItIsItself)
{
    LinkAll();
    first->orphanObject();
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 2) << "the constraint knows the base only";
    geometry->orphanObject();
    EXPECT_EQ(geometry->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(first->getReferenceCount(), 2U) << "the handle here and the table's";
}

TEST_F(Geometry2D, CopiesNoLinks)
{
    LinkAll();
    const auto copy = geometry->copy();
    Body2D found;
    EXPECT_EQ(copy->GetBody(found), KARFailure);
    Sketch foundSketch;
    EXPECT_EQ(copy->GetSketch(foundSketch), KARFailure);
    EXPECT_EQ(copy->GetLinkedConstraintCount(), 0);
}

TEST_F(Geometry2D, WritesItsLinksBehindThoseOfTheBase)
{
    LinkAll();
    geometry->SetBody(spatial);
    TestSerializer root;
    EXPECT_EQ(geometry->Serialize(&root), KARSuccess);
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < root.GetElementCount(); ++i)
        names.emplace_back(root.Child(i).GetId());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Body", L"Constraints", L"Body2D", L"Sketch"}));
    EXPECT_EQ(root.Text(L"Body/@id"), L"spatial");
    EXPECT_EQ(root.Text(L"Constraints/Constraint[1]/@id"), L"second");
    EXPECT_EQ(root.Text(L"Body2D/@id"), L"body");
    EXPECT_EQ(root.Text(L"Body2D/@name"), L"body");
    EXPECT_EQ(root.Text(L"Sketch/@id"), L"sketch");
    EXPECT_EQ(root.Text(L"Sketch/@name"), L"sketch");
}

TEST_F(Geometry2D, WritesNoLinksThatItDoesNotHave)
{
    TestSerializer root;
    EXPECT_EQ(geometry->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
}

TEST_F(Geometry2D, WritesThePlanarBodyThatItsOwnGetterGivesAndReportsOneThatItRefuses)
{
    auto* const lending = new LendingGeometry2D;
    const Handle handle(lending);
    lending->body = body;
    TestSerializer root;
    EXPECT_EQ(lending->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Body2D/@id"), L"body");
    const Handle refusing(new LendingGeometry2D);
    EXPECT_EQ(refusing->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(1);
}

TEST_F(Geometry2D, ReadsItsLinks)
{
    LinkAll();
    geometry->SetBody(spatial);
    TestSerializer root;
    geometry->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = ConcreteEntity<KARMPGeometry2D>::create(L"read");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ExpectReports(1); // it has an identifier already
        Body2D found;
        EXPECT_EQ(read->GetBody(found), KARSuccess);
        EXPECT_EQ(found, body);
        Body foundSpatial;
        EXPECT_EQ(read->GetBody(foundSpatial), KARSuccess);
        EXPECT_EQ(foundSpatial, spatial);
        Sketch foundSketch;
        EXPECT_EQ(read->GetSketch(foundSketch), KARSuccess);
        EXPECT_EQ(foundSketch, sketch);
        Constraint constraint;
        EXPECT_EQ(read->GetLinkedConstraintCount(), 2);
        EXPECT_EQ(read->GetLinkedConstraint(1, constraint), KARSuccess);
        EXPECT_EQ(constraint, second);
        EXPECT_EQ(read->KARMPGeometry::GetLinkedConstraintCount(), 0);
    }
}

TEST_F(Geometry2D, SkipsReferencesThatLeadNowhereAndRefusesAnotherClass)
{
    TestDeserializer root(L"Geometry2D");
    root.Attribute(L"id", L"geometry").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    root.Reference(L"Body2D", L"unknown").Reference(L"Sketch", L"unknown");
    const auto read = ConcreteEntity<KARMPGeometry2D>::create(L"geometry");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1); // an identifier again
    Body2D found;
    EXPECT_EQ(read->GetBody(found), KARFailure);
    TestDeserializer one(L"Geometry2D");
    one.Reference(L"Body2D", L"spatial");
    EXPECT_THROW(geometry->Deserialize(&one, entities), QOBEInvalidCast);
    TestDeserializer other(L"Geometry2D");
    other.Reference(L"Sketch", L"body");
    EXPECT_THROW(geometry->Deserialize(&other, entities), QOBEInvalidCast);
    TakeReports();
}

TEST_F(Geometry2D, HasNoUseForANullNode)
{
    EXPECT_EQ(geometry->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(geometry->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Geometry2D, SketchIsCarriedByABodyInSpace)
{
    EXPECT_EQ(sketch->SetBody(spatial), KARSuccess);
    EXPECT_EQ(spatial->AddGeometry(sketch), KARSuccess);
    TestSerializer root;
    EXPECT_EQ(sketch->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Sketch/Body/@id"), L"spatial");
    sketch->orphanObject();
    EXPECT_EQ(spatial->GetGeometryCount(), 0);
}

TEST_F(Geometry2D, SketchReadsItsNormalAsAUnitVectorAndALineItsDirectionAsItStands)
{
    TestDeserializer plane(L"Sketch");
    plane.Attribute(L"id", L"s").Attribute(L"name", L"s").Attribute(L"isActive", L"yes");
    plane.Add(L"Coordinates")
        .Leaf(L"Ox", 1.0)
        .Leaf(L"Oy", 2.0)
        .Leaf(L"Oz", 3.0)
        .Leaf(L"Nx", 0.0)
        .Leaf(L"Ny", 3.0)
        .Leaf(L"Nz", 0.0);
    const auto readSketch = KARMPSketch::create(L"");
    EXPECT_EQ(readSketch->Deserialize(&plane, entities), KARSuccess);
    EXPECT_EQ(Get(*readSketch, &KARMPSketch::GetPlane),
              KARMathPlane({1.0, 2.0, 3.0}, {0.0, 1.0, 0.0}));
    for (const double length : {0.0, 3.0}) {
        TestDeserializer line(L"Line2D");
        line.Attribute(L"id", L"l").Attribute(L"name", L"l").Attribute(L"isActive", L"yes");
        line.Add(L"Coordinates")
            .Leaf(L"Ox", 1.0)
            .Leaf(L"Oy", 2.0)
            .Leaf(L"Dx", length)
            .Leaf(L"Dy", 0.0);
        const auto readLine = KARMPLine2D::create(L"");
        EXPECT_EQ(readLine->Deserialize(&line, entities), KARSuccess);
        EXPECT_EQ(Get(*readLine, &KARMPLine2D::GetLine), KARMathLine2D({1.0, 2.0}, {length, 0.0}));
    }
}

#if defined(__GNUC__) && defined(__x86_64__)

/// Reaches the overloads of a planar geometry.
struct PlanarSlots : KARMPCircle2D
{
    static VirtualSlots Slots()
    {
        using Loader = KARStatus (KARMPGeometry2D::*)(KARIMPGeometry2DLoader*&) const;
        using Setter = KARStatus (KARMPGeometry2D::*)(const QOBSharedHandle<KARMPBody2D>&);
        using Getter = KARStatus (KARMPGeometry2D::*)(QOBSharedHandle<KARMPBody2D>&) const;
        return {VirtualSlot(static_cast<Loader>(&KARMPGeometry2D::GetLoader)),
                VirtualSlot(static_cast<Setter>(&KARMPGeometry2D::SetBody)),
                VirtualSlot(static_cast<Getter>(&KARMPGeometry2D::GetBody)),
                VirtualSlot(&KARMPCircle2D::SetPoint),
                VirtualSlot(&KARMPCircle2D::GetPoint),
                VirtualSlot(&KARMPCircle2D::SetRadius),
                VirtualSlot(&KARMPCircle2D::GetRadius)};
    }
};

TEST_F(Geometry2D, HasItsOperationsBehindThoseOfTheBaseAndThenThoseOfTheKind)
{
    ExpectSlotsBehind(VirtualSlot(&KARMPGeometry::GetLinkedConstraintCount), PlanarSlots::Slots());
}

#endif

} // namespace
