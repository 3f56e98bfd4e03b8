// Planar entities where spatial ones stand: in the registries, under the observer, in world-wide
// operations, in documents and at the end of a world.
#include "ConcreteEntity.h"
#include "KARMPBody2D.h"
#include "KARMPCircle2D.h"
#include "KARMPCoincidence.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPJointKinds.h"
#include "KARMPLine2D.h"
#include "KARMPObserver.h"
#include "KARMPSketch.h"
#include "KARMPUserDefined2D.h"
#include "RecordingBodyLoader.h"
#include "WorldDocumentTesting.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

/// A planar mechanism: two bodies in a sketch with geometry, a joint, a sensor and a constraint,
/// linked on both sides, and a body of the tree.
class PlanarWorld : public WorldDocument
{
protected:
    using Body2D = QOBSharedHandle<KARMPBody2D>;

    PlanarWorld()
    {
        for (const auto& body : {crank, rod}) {
            Add<KARMPBody>(body);
            body->SetSketch(sketch);
            body->LinkToJoint(joint);
            joint->LinkToBody(body, KARMPBodyOrientation::Out);
        }
        crank->AddImpactedChildBody(rod);
        rod->AddImpactedChildBody(crank);
        crank->AddBody(rod);
        ground->AddGeometry(sketch);
        sketch->SetBody(ground);
        circle->SetSketch(sketch);
        circle->SetBody(crank);
        crank->AddGeometry(circle);
        circle->LinkToConstraint(constraint);
        constraint->LinkToGeometry(circle);
        joint->AddConstraint(constraint);
        crank->SetDisplacementSensor(sensor);
        sensor->SetBody(crank);
        Add<KARMPBody>(ground);
        Add<KARMPGeometry>(sketch);
        Add<KARMPGeometry>(circle);
        Add<KARMPJoint>(joint);
        Add<KARMPSensor>(sensor);
        Add<KARMPConstraint>(constraint);
    }
    template <class Family, class T>
    void Add(const QOBSharedHandle<T>& entity)
    {
        // Entities are filed by their identifiers, behind the global ones, when they are read.
        entity->SetIdentifier(L"x" + std::to_wstring(all.size()));
        EXPECT_EQ(world->Add(QOBSharedHandle<Family>(entity)), KARSuccess);
        basicWorld->addLogicalChild(entity);
        all.emplace_back(entity);
    }

    Body2D crank = KARMPBody2D::create(L"crank");
    Body2D rod = KARMPBody2D::create(L"rod");
    QOBSharedHandle<KARMPBody> ground = KARMPBody::create(L"ground");
    QOBSharedHandle<KARMPSketch> sketch = KARMPSketch::create(L"sketch");
    QOBSharedHandle<KARMPCircle2D> circle = KARMPCircle2D::create(L"circle");
    QOBSharedHandle<KARMPUserDefined2D> joint = KARMPUserDefined2D::create(L"joint");
    QOBSharedHandle<KARMPDisplacementSensor2D> sensor =
        KARMPDisplacementSensor2D::create(L"sensor");
    QOBSharedHandle<KARMPCoincidence> constraint = KARMPCoincidence::create(L"constraint");
    std::vector<QOBSharedHandle<KARMPEntity>> all;
};

TEST_F(PlanarWorld, ListsPlanarEntitiesInTheRegistriesOfTheirFamilies)
{
    EXPECT_EQ(world->GetBodyCount(), 4) << "with the global one";
    QOBSharedHandle<KARMPBody> found;
    EXPECT_EQ(world->Get(1, found), KARSuccess);
    EXPECT_EQ(found, crank);
    EXPECT_EQ(Body2D(found), crank);
    EXPECT_EQ(world->Count<KARMPGeometry>(), 3);
    EXPECT_EQ(world->Count<KARMPJoint>(), 1);
}

TEST_F(PlanarWorld, ObserverHearsOfPlanarMovesAndOfThoseInSpace)
{
    const auto observer = KARMPObserver::create();
    observer->Subscribe(world);
    rod->Update3DPosition({}, false);
    ASSERT_EQ(observer->GetMovingBodyCount(KARMPObserver::SinceSubscribe), 1U);
    rod->RemoveBody(crank);
    crank->UpdatePosition(KARMathTransformation2D(KARMathVector2D(1.0, 0.0)), true);
    ASSERT_EQ(observer->GetMovingBodyCount(KARMPObserver::SinceSubscribe), 2U);
    QOBSharedHandle<KARMPBody> moved;
    observer->GetMovingBody(1, moved, KARMPObserver::SinceSubscribe);
    EXPECT_EQ(moved, crank);
    rod->AddImpactedChildBody(crank);
}

TEST_F(PlanarWorld, FixingFreeBodiesGoesByTheFlagOfTheBase)
{
    Body2DLoaderRecord record;
    crank->SetLoader(new RecordingBody2DLoader(record));
    crank->Fix2D();
    record.calls.clear();
    EXPECT_EQ(world->FixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(world->UnfixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(record.calls, (std::vector<std::string>{"HoldBody", "ReleaseBody"}));
    EXPECT_TRUE(world->IsWeighted());
    KARMPBody& base = *crank;
    base.Fix();
    record.calls.clear();
    world->FixAllFreeBodies();
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(PlanarWorld, StandsInForABodyInSpaceInASpatialJoint)
{
    const auto revolute = KARMPRevolute::create(L"revolute");
    Add<KARMPJoint>(revolute);
    const QOBSharedHandle<KARMPBody> base(crank);
    EXPECT_EQ(revolute->LinkToBody(base, KARMPBodyOrientation::In), KARSuccess);
    EXPECT_EQ(base->LinkToJoint(revolute), KARSuccess);
    EXPECT_EQ(base->GetLinkedJointCount(), 1);
    EXPECT_EQ(crank->GetLinkedJointCount(), 1);
    revolute->orphanObject();
    EXPECT_EQ(base->GetLinkedJointCount(), 0);
    EXPECT_EQ(crank->GetLinkedJointCount(), 1);
}

TEST_F(PlanarWorld, WritesTheSameAgainAfterReading)
{
    crank->SetPosition(KARMathTransformation2D::Rotation({1.0, 2.0}, 0.5));
    crank->SetVelocity({0.0, -1.0}, 0.0);
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    EXPECT_EQ(other->Deserialize(TestDeserializer::From(written).get()), KARSuccess);
    TestSerializer again;
    EXPECT_EQ(other->Serialize(&again), KARSuccess);
    EXPECT_EQ(again.Dump(), written.Dump());
}

TEST_F(PlanarWorld, EndsInAnyOrder)
{
    using Counted = ConcreteEntity<KARMPBody2D>;
    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        const int before = Counted::Alive();
        {
            std::vector<QOBSharedHandle<KARMPEntity>> entities;
            const auto keep = [&entities](const auto& entity) {
                entities.emplace_back(entity);
                return entity;
            };
            const auto first = keep(Counted::create(L"first"));
            const auto second = keep(Counted::create(L"second"));
            const auto inSpace = keep(KARMPBody::create(L"in space"));
            const auto plane = keep(KARMPSketch::create(L"plane"));
            const auto line = keep(KARMPLine2D::create(L"line"));
            const auto link = keep(KARMPUserDefined2D::create(L"link"));
            const auto measure = keep(KARMPDisplacementSensor2D::create(L"measure"));
            const auto condition = keep(KARMPCoincidence::create(L"condition"));
            for (const auto& body : {first, second}) {
                body->SetSketch(plane);
                body->AddGeometry(line);
                body->LinkToJoint(link);
                link->LinkToBody(body, KARMPBodyOrientation::In);
                body->AddImpactedChildBody(first);
                body->AddImpactedChildBody(second);
                body->KARMPBody::AddImpactedChildBody(first);
                body->KARMPBody::AddImpactedChildBody(inSpace);
                body->SetDisplacementSensor(measure);
                body->KARMPBody::AddGeometry(plane);
                body->KARMPBody::LinkToJoint(link);
            }
            inSpace->AddGeometry(line);
            inSpace->AddImpactedChildBody(first);
            line->SetBody(inSpace);
            line->SetBody(Body2D(first));
            line->SetSketch(plane);
            plane->SetBody(inSpace);
            line->LinkToConstraint(condition);
            condition->LinkToGeometry(line);
            link->AddConstraint(condition);
            measure->SetBody(first);
            inSpace->AddBody(first);
            first->AddBody(second);
            std::shuffle(entities.begin(), entities.end(), random);
            for (const QOBSharedHandle<KARMPEntity>& entity : entities)
                entity->orphanObject();
            TakeReports();
        }
        EXPECT_EQ(Counted::Alive(), before);
    }
}

} // namespace
