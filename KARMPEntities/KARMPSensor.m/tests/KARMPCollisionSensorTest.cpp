#include "KARMPCollisionSensor.h"
#include "AllocationCounter.h"
#include "ConcreteEntity.h"
#include "KARIMPCollisionSensorLoader.h"
#include "KARMPBody.h"
#include "KARMPCollisionLayer.h"
#include "KARMPCollisionRule.h"
#include "KARMPEntityTable.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingSensorLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <array>
#include <cmath>

namespace {

using Geometry = KARMPContactGeometryData;
using Force = KARMPContactForceData;
using Body = QOBSharedHandle<KARMPBody>;
using Sensor = QOBSharedHandle<KARMPCollisionSensor>;

using Loader = RecordingSensorLoaderOf<KARIMPCollisionSensorLoader>;

/// A sensor on a rule, and two bodies.
class CollisionSensor : public KARMPTestFixture
{
protected:
    CollisionSensor()
    {
        Enter(L"first", first);
        Enter(L"second", second);
        Enter(L"rule", rule);
    }
    void Enter(const wchar_t* identifier, const QOBSharedHandle<KARMPEntity>& entity)
    {
        entity->SetIdentifier(identifier);
        entities.Set(identifier, entity);
    }
    static void FillGeometry(Geometry& data, const Body& one, const Body& other, double number)
    {
        data.firstBody = one;
        data.secondBody = other;
        data.firstContactPoint = {number, number + 1.0, number + 2.0};
        data.secondContactPoint = {number + 3.0, number + 4.0, number + 5.0};
        data.penetrationDepth = number + 6.0;
        data.firstNormalVector = {number + 7.0, number + 8.0, number + 9.0};
        data.secondNormalVector = {number + 10.0, number + 11.0, number + 12.0};
    }
    /// Data whose numbers count from `number` in steps of 1.
    static Geometry GeometryOf(const Body& one, const Body& other, double number)
    {
        Geometry data;
        FillGeometry(data, one, other, number);
        return data;
    }
    static Force ForceOf(const Body& one, const Body& other, double number)
    {
        Force data;
        FillGeometry(data, one, other, number);
        number += 13.0;
        for (const auto member : Forces) {
            data.*member = {number, number + 1.0, number + 2.0};
            number += 3.0;
        }
        return data;
    }
    static void ExpectGeometry(const Geometry& data, const Body& one, const Body& other,
                               double number)
    {
        EXPECT_EQ(data.firstBody, one);
        EXPECT_EQ(data.secondBody, other);
        EXPECT_EQ(data.firstContactPoint, KARMathPoint(number, number + 1.0, number + 2.0));
        EXPECT_EQ(data.secondContactPoint, KARMathPoint(number + 3.0, number + 4.0, number + 5.0));
        EXPECT_EQ(data.penetrationDepth, number + 6.0);
        EXPECT_EQ(data.firstNormalVector, KARMathVector(number + 7.0, number + 8.0, number + 9.0));
        EXPECT_EQ(data.secondNormalVector,
                  KARMathVector(number + 10.0, number + 11.0, number + 12.0));
    }
    static void ExpectForce(const Force& data, const Body& one, const Body& other, double number)
    {
        ExpectGeometry(data, one, other, number);
        number += 13.0;
        for (const auto member : Forces) {
            EXPECT_EQ(data.*member, KARMathVector(number, number + 1.0, number + 2.0));
            number += 3.0;
        }
    }
    static Geometry GeometryAt(const KARMPCollisionSensor& one, int index)
    {
        Geometry data;
        EXPECT_EQ(one.GetContactGeometryData(index, data), KARSuccess);
        return data;
    }
    static Force ForceAt(const KARMPCollisionSensor& one, int index)
    {
        Force data;
        EXPECT_EQ(one.GetContactForceData(index, data), KARSuccess);
        return data;
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(L"CollisionSensor")
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    static constexpr std::array Forces{&Force::firstContactForce,  &Force::secondContactForce,
                                       &Force::firstContactTorque, &Force::secondContactTorque,
                                       &Force::firstNormalForce,   &Force::secondNormalForce,
                                       &Force::firstFrictionForce, &Force::secondFrictionForce};

    SensorLoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPCollisionSensor>> sensor =
        ConcreteEntity<KARMPCollisionSensor>::create(L"s");
    QOBSharedHandle<KARMPCollisionRule> rule = KARMPCollisionRule::create(L"rule");
    Body first = KARMPBody::create(L"first");
    Body second = KARMPBody::create(L"second");
    KARMPEntityTable entities;
};

TEST_F(CollisionSensor, HasOneInteraction)
{
    QOBSharedHandle<KARMPInteraction> found = rule;
    EXPECT_EQ(sensor->GetInteraction(found), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(found);
    EXPECT_EQ(sensor->SetInteraction(rule), KARSuccess);
    EXPECT_EQ(sensor->SetInteraction({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(sensor->GetInteraction(found), KARSuccess);
    EXPECT_EQ(found, rule);
}

TEST_F(CollisionSensor, SeesItsInteractionAsARule)
{
    QOBSharedHandle<KARMPCollisionRule> found = rule;
    EXPECT_EQ(sensor->GetCollisionRule(found), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(found);
    EXPECT_EQ(sensor->SetCollisionRule({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(sensor->SetCollisionRule(rule), KARSuccess);
    EXPECT_EQ(sensor->GetCollisionRule(found), KARSuccess);
    EXPECT_EQ(found, rule);
    QOBSharedHandle<KARMPInteraction> interaction;
    EXPECT_EQ(sensor->GetInteraction(interaction), KARSuccess);
    EXPECT_EQ(interaction, rule);
    sensor->SetInteraction(KARMPCollisionLayer::create(L"layer"));
    EXPECT_EQ(sensor->GetCollisionRule(found), KARFailure);
    EXPECT_FALSE(found);
    ExpectReports(0);
}

TEST_F(CollisionSensor, KeepsTheFirstDataOfAPair)
{
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(first, second, 1.0)), KARSuccess);
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(first, second, 2.0)), KARUnchanged);
    EXPECT_EQ(sensor->GetContactGeometryDataCount(), 1);
    EXPECT_EQ(sensor->GetContactCount(), 1);
    ExpectGeometry(GeometryAt(*sensor, 0), first, second, 1.0);
}

TEST_F(CollisionSensor, CountsAPairForBothKindsOfDataTogether)
{
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(first, second, 1.0)), KARSuccess);
    EXPECT_EQ(sensor->AddContactForceData(ForceOf(first, second, 1.0)), KARUnchanged);
    EXPECT_EQ(sensor->GetContactForceDataCount(), 0);
    EXPECT_EQ(sensor->AddContactForceData(ForceOf(second, first, 2.0)), KARSuccess);
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(second, first, 3.0)), KARUnchanged);
    EXPECT_EQ(sensor->GetContactGeometryDataCount(), 1);
    EXPECT_EQ(sensor->GetContactForceDataCount(), 1);
    EXPECT_EQ(sensor->GetContactCount(), 2);
    ExpectForce(ForceAt(*sensor, 0), second, first, 2.0);
}

TEST_F(CollisionSensor, TakesAPairInBothOrdersForTwo)
{
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(first, second, 1.0)), KARSuccess);
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(second, first, 2.0)), KARSuccess);
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(first, first, 3.0)), KARSuccess);
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(second, first, 4.0)), KARUnchanged);
    EXPECT_EQ(sensor->GetContactCount(), 3);
    const KARMPCollisionSensor::ContactPairs pairs(sensor->ContactDataBegin(),
                                                   sensor->ContactDataEnd());
    EXPECT_EQ(pairs, (KARMPCollisionSensor::ContactPairs{
                         {first, second}, {second, first}, {first, first}}));
}

TEST_F(CollisionSensor, RefusesAContactWithoutBothBodies)
{
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf({}, second, 1.0)), KARFailure);
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(first, {}, 1.0)), KARFailure);
    EXPECT_EQ(sensor->AddContactForceData(ForceOf({}, second, 1.0)), KARFailure);
    EXPECT_EQ(sensor->AddContactForceData(ForceOf(first, {}, 1.0)), KARFailure);
    ExpectReports(4);
    EXPECT_EQ(sensor->GetContactCount(), 0);
    EXPECT_EQ(sensor->GetContactGeometryDataCount(), 0);
    EXPECT_EQ(sensor->GetContactForceDataCount(), 0);
}

TEST_F(CollisionSensor, EntersAPairAlone)
{
    EXPECT_EQ(sensor->AddContactData({first, second}), KARSuccess);
    EXPECT_EQ(sensor->AddContactData({first, second}), KARUnchanged);
    EXPECT_EQ(sensor->GetContactCount(), 1);
    EXPECT_EQ(sensor->AddContactGeometryData(GeometryOf(first, second, 1.0)), KARUnchanged);
}

TEST_F(CollisionSensor, ReplacesItsDataAndLeavesThePairs)
{
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    EXPECT_EQ(sensor->SetContactGeometryData(
                  {GeometryOf(second, first, 2.0), GeometryOf(second, first, 3.0)}),
              KARSuccess);
    EXPECT_EQ(sensor->SetContactForceData({ForceOf(first, second, 4.0)}), KARSuccess);
    EXPECT_EQ(sensor->GetContactGeometryDataCount(), 2);
    ExpectGeometry(GeometryAt(*sensor, 1), second, first, 3.0);
    ExpectForce(ForceAt(*sensor, 0), first, second, 4.0);
    EXPECT_EQ(sensor->GetContactCount(), 1);
    EXPECT_EQ(sensor->SetContactGeometryData({}), KARSuccess);
    EXPECT_EQ(sensor->GetContactGeometryDataCount(), 0);
}

TEST_F(CollisionSensor, GivesNoDataOutsideItsLists)
{
    sensor->SetContactGeometryData({GeometryOf(first, second, 1.0)});
    sensor->SetContactForceData({ForceOf(first, second, 2.0)});
    Geometry geometry = GeometryOf(second, first, 5.0);
    Force force = ForceOf(second, first, 6.0);
    for (const int index : {-1, 1}) {
        EXPECT_EQ(sensor->GetContactGeometryData(index, geometry), KARFailure);
        EXPECT_EQ(sensor->GetContactForceData(index, force), KARFailure);
    }
    ExpectGeometry(geometry, second, first, 5.0);
    ExpectForce(force, second, first, 6.0);
    ExpectReports(0);
}

TEST_F(CollisionSensor, ForgetsItsContactsWhenResetAndKeepsItsInteraction)
{
    sensor->SetLoader(new Loader(record));
    sensor->SetInteraction(rule);
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    sensor->AddContactForceData(ForceOf(second, first, 1.0));
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    EXPECT_EQ(sensor->GetContactCount(), 0);
    EXPECT_EQ(sensor->GetContactGeometryDataCount(), 0);
    EXPECT_EQ(sensor->GetContactForceDataCount(), 0);
    EXPECT_EQ(sensor->ContactDataBegin(), sensor->ContactDataEnd());
    QOBSharedHandle<KARMPInteraction> found;
    EXPECT_EQ(sensor->GetInteraction(found), KARSuccess);
    EXPECT_EQ(found, rule);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(sensor->AddContactForceData(ForceOf(first, second, 1.0)), KARSuccess);
}

TEST_F(CollisionSensor, HasItsLoaderAddContacts)
{
    record.measure = [this] { sensor->AddContactForceData(ForceOf(first, second, 1.0)); };
    sensor->SetLoader(new Loader(record));
    KARIMPCollisionSensorLoader* loader = nullptr;
    EXPECT_EQ(sensor->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_EQ(record.calls, std::vector<std::string>{"Update"});
    EXPECT_EQ(sensor->GetContactCount(), 1);
    record.answer = KARUnchanged;
    EXPECT_EQ(sensor->Update(), KARSuccess);
    record.answer = KARUnexpected;
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    sensor->failsToFetch = true;
    EXPECT_EQ(sensor->Update(), KARFailure);
    EXPECT_GE(TakeReports(), 1U);
}

TEST_F(CollisionSensor, FailsToUpdateWithoutALoaderOfItsOwnUnlessInactive)
{
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(record.calls.empty());
    sensor->Deactivate();
    EXPECT_EQ(sensor->Update(), KARUnchanged);
}

TEST_F(CollisionSensor, CopiesNeitherInteractionNorContacts)
{
    sensor->SetInteraction(rule);
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    sensor->SetContactForceData({ForceOf(first, second, 2.0)});
    const auto copy = sensor->copy();
    QOBSharedHandle<KARMPInteraction> found;
    EXPECT_EQ(copy->GetInteraction(found), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(copy->GetContactCount(), 0);
    EXPECT_EQ(copy->GetContactGeometryDataCount(), 0);
    EXPECT_EQ(copy->GetContactForceDataCount(), 0);
}

TEST_F(CollisionSensor, KeepsADestroyedBodyForAsLongAsAContactOfIt)
{
    const auto counted = first->getReferenceCount();
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    Body handle = first;
    KARMPBody::destroy(handle);
    EXPECT_TRUE(first->isOrphaned());
    EXPECT_EQ(GeometryAt(*sensor, 0).firstBody, first);
    EXPECT_EQ(sensor->GetContactCount(), 1);
    sensor->Reset();
    EXPECT_EQ(first->getReferenceCount(), counted);
}

TEST_F(CollisionSensor, WritesItsContactsInOrder)
{
    sensor->SetCollisionRule(rule);
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    sensor->AddContactForceData(ForceOf(second, first, 20.0));
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"CollisionSensor");
    ASSERT_EQ(element.GetElementCount(), 3U);
    EXPECT_EQ(element.Text(L"CollisionRule/@id"), L"rule");
    EXPECT_EQ(element.Text(L"CollisionRule/@name"), L"rule");
    EXPECT_EQ(element.Child(1).GetId(), L"ContactGeometryDataContainer");
    EXPECT_EQ(element.Child(2).GetId(), L"ContactForceDataContainer");
    const std::array names{L"FirstBody",          L"SecondBody",          L"FirstContactPoint",
                           L"SecondContactPoint", L"PenetrationDepth",    L"FirstNormalVector",
                           L"SecondNormalVector", L"FirstContactForce",   L"SecondContactForce",
                           L"FirstContactTorque", L"SecondContactTorque", L"FirstNormalForce",
                           L"SecondNormalForce",  L"FirstFrictionForce",  L"SecondFrictionForce"};
    const TestSerializer& force = element.Child(2).Child(0);
    EXPECT_EQ(force.GetId(), L"ContactForceData");
    ASSERT_EQ(force.GetElementCount(), names.size());
    for (std::size_t index = 0; index < names.size(); ++index)
        EXPECT_EQ(force.Child(index).GetId(), names[index]);
    EXPECT_EQ(force.Text(L"FirstBody/@id"), L"second");
    EXPECT_EQ(force.Text(L"SecondBody/@name"), L"first");
    EXPECT_EQ(force.Number(L"SecondFrictionForce/Vz"), 56.0);
    const TestSerializer& geometry = element.Child(1).Child(0);
    EXPECT_EQ(geometry.GetId(), L"ContactGeometryData");
    ASSERT_EQ(geometry.GetElementCount(), 7U);
    for (std::size_t index = 0; index < 7; ++index)
        EXPECT_EQ(geometry.Child(index).GetId(), names[index]);
    EXPECT_EQ(geometry.Number(L"FirstContactPoint/Px"), 1.0);
    EXPECT_EQ(geometry.Number(L"SecondContactPoint/Pz"), 6.0);
    EXPECT_EQ(geometry.Number(L"PenetrationDepth"), 7.0);
    EXPECT_EQ(geometry.Number(L"SecondNormalVector/Vy"), 12.0);
}

TEST_F(CollisionSensor, WritesEmptyContainersAndNoRuleThatItDoesNotHave)
{
    for (const bool hasLayer : {false, true}) {
        if (hasLayer)
            sensor->SetInteraction(KARMPCollisionLayer::create(L"layer"));
        TestSerializer root;
        EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
        EXPECT_FALSE(root.Has(L"CollisionSensor/CollisionRule"));
        ASSERT_EQ(root.Child(0).GetElementCount(), 2U);
        EXPECT_EQ(root.Child(0).Child(0).GetElementCount(), 0U);
        EXPECT_EQ(root.Child(0).Child(1).GetElementCount(), 0U);
    }
    ExpectReports(0);
}

TEST_F(CollisionSensor, WritesABodyThatIsNotThereWithoutAttributes)
{
    sensor->SetContactGeometryData({GeometryOf({}, second, 1.0)});
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    ExpectReports(1);
    const std::wstring data = L"CollisionSensor/ContactGeometryDataContainer/ContactGeometryData";
    EXPECT_TRUE(root.Has(data + L"/FirstBody"));
    EXPECT_FALSE(root.Has(data + L"/FirstBody/@id"));
    EXPECT_EQ(root.Text(data + L"/SecondBody/@id"), L"second");
}

TEST_F(CollisionSensor, ReadsBackWhatItWroteInEitherForm)
{
    sensor->SetCollisionRule(rule);
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    sensor->AddContactGeometryData(GeometryOf(first, first, 2.0));
    sensor->AddContactForceData(ForceOf(second, first, 3.0));
    TestSerializer root;
    sensor->Serialize(&root);
    for (const bool asText : {false, true}) {
        const Sensor read = KARMPCollisionSensor::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        QOBSharedHandle<KARMPCollisionRule> found;
        EXPECT_EQ(read->GetCollisionRule(found), KARSuccess);
        EXPECT_EQ(found, rule);
        ASSERT_EQ(read->GetContactGeometryDataCount(), 2);
        ExpectGeometry(GeometryAt(*read, 0), first, second, 1.0);
        ExpectGeometry(GeometryAt(*read, 1), first, first, 2.0);
        ASSERT_EQ(read->GetContactForceDataCount(), 1);
        ExpectForce(ForceAt(*read, 0), second, first, 3.0);
        EXPECT_EQ(read->GetContactCount(), 3);
    }
}

TEST_F(CollisionSensor, ReadsAllDataThatWasSetAndCountsEachPairOnce)
{
    sensor->SetContactGeometryData(
        {GeometryOf(first, second, 1.0), GeometryOf(first, second, 2.0)});
    sensor->SetContactForceData({ForceOf(first, second, 3.0)});
    TestSerializer root;
    sensor->Serialize(&root);
    const Sensor read = KARMPCollisionSensor::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ASSERT_EQ(read->GetContactGeometryDataCount(), 2);
    ExpectGeometry(GeometryAt(*read, 1), first, second, 2.0);
    ASSERT_EQ(read->GetContactForceDataCount(), 1);
    EXPECT_EQ(read->GetContactCount(), 1);
}

TEST_F(CollisionSensor, LeavesOutAContactWithoutBothBodiesWhenRead)
{
    sensor->SetContactGeometryData(
        {GeometryOf(first, second, 1.0), GeometryOf(second, first, 2.0)});
    sensor->SetContactForceData({ForceOf(first, second, 3.0)});
    TestSerializer root;
    sensor->Serialize(&root);
    KARMPEntityTable others;
    others.Set(L"first", first);
    others.Set(L"second", nullptr);
    const Sensor read = KARMPCollisionSensor::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), others), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(read->GetContactGeometryDataCount(), 0);
    EXPECT_EQ(read->GetContactForceDataCount(), 0);
    EXPECT_EQ(read->GetContactCount(), 0);
}

TEST_F(CollisionSensor, ReportsWhatIsMissingAndKeepsIt)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    element.Reference(L"CollisionRule", L"unknown");
    element.Add(L"ContactGeometryDataContainer")
        .Add(L"ContactGeometryData")
        .Reference(L"FirstBody", L"first")
        .Reference(L"SecondBody", L"second")
        .Add(L"FirstContactPoint")
        .Leaf(L"Px", 2.0);
    const Sensor read = KARMPCollisionSensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    // Two coordinates, four other items of the contact, and the container of forces.
    ExpectReports(7);
    EXPECT_EQ(read->GetContactCount(), 1);
    EXPECT_EQ(GeometryAt(*read, 0).firstContactPoint, KARMathPoint(2.0, 0.0, 0.0));
    QOBSharedHandle<KARMPInteraction> none;
    EXPECT_EQ(read->GetInteraction(none), KARFailure);
    ExpectReports(1);
}

TEST_F(CollisionSensor, RefusesARuleOrABodyOfAnotherClass)
{
    sensor->SetCollisionRule(rule);
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    TestSerializer root;
    sensor->Serialize(&root);
    const auto tree = TestDeserializer::From(root);
    for (const wchar_t* id : {L"rule", L"second"}) {
        const QOBSharedHandle<KARMPEntity> former = *entities.Find(std::wstring_view(id));
        entities.Set(id, KARMPPoint::create(L"p"));
        const Sensor read = KARMPCollisionSensor::create(L"");
        EXPECT_THROW(read->Deserialize(tree.get(), entities), QOBEInvalidCast);
        entities.Set(id, former);
    }
    ExpectReports(0);
}

TEST_F(CollisionSensor, FailsWithoutItsElement)
{
    TestDeserializer root;
    EXPECT_EQ(sensor->Deserialize(&root, entities), KARFailure);
    EXPECT_EQ(sensor->Deserialize(nullptr, entities), KARFailure);
    EXPECT_EQ(sensor->Serialize(nullptr), KARFailure);
    ExpectReports(3);
}

TEST_F(CollisionSensor, FailsWhenRuleOrContainerCannotBeAdded)
{
    sensor->SetCollisionRule(rule);
    sensor->AddContactGeometryData(GeometryOf(first, second, 1.0));
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            const KARStatus status = sensor->Serialize(&root);
            const bool counts = failing >= 1 && (failing <= 3 || failing == 24);
            EXPECT_EQ(status, counts ? KARFailure : KARSuccess) << failing;
            EXPECT_EQ(TakeReports() > 0, failing != 0);
        });
    EXPECT_EQ(creations, 24U);
}

/// Bodies of which any two make a pair.
std::vector<Body> MakeBodies(int contacts)
{
    const int count = static_cast<int>(std::ceil(std::sqrt(contacts)));
    std::vector<Body> bodies;
    for (int index = 0; index < count; ++index)
        bodies.push_back(KARMPBody::create(L""));
    return bodies;
}

struct Cost
{
    double allocations = 0.0;
    double bytes = 0.0;
};

/// What a contact costs on average when so many of different pairs are added.
Cost CostOfAContact(int contacts)
{
    const std::vector<Body> bodies = MakeBodies(contacts);
    const Sensor sensor = KARMPCollisionSensor::create(L"");
    Geometry data;
    const AllocationCounter counter;
    for (int index = 0; index < contacts; ++index) {
        const auto number = static_cast<std::size_t>(index);
        data.firstBody = bodies[number / bodies.size()];
        data.secondBody = bodies[number % bodies.size()];
        EXPECT_EQ(sensor->AddContactGeometryData(data), KARSuccess);
    }
    EXPECT_EQ(sensor->GetContactCount(), contacts);
    return {static_cast<double>(counter.Count()) / contacts,
            static_cast<double>(counter.Bytes()) / contacts};
}

TEST_F(CollisionSensor, NeedsTheSameMemoryForAContactHoweverManyThereAre)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot count allocations";
    const Cost few = CostOfAContact(4'096);
    const Cost many = CostOfAContact(65'536);
    EXPECT_LT(many.allocations, 1.01) << "one node of the set each";
    EXPECT_LT(many.bytes, 1.1 * few.bytes);
    EXPECT_LT(many.bytes, 3.0 * (sizeof(Geometry) + 64));
}

TEST_F(CollisionSensor, KeepsItsMemoryForTheNextStep)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot count allocations";
    const std::vector<Body> bodies = MakeBodies(1'024);
    const auto step = [&] {
        for (const Body& one : bodies)
            for (const Body& other : bodies)
                sensor->AddContactGeometryData(GeometryOf(one, other, 1.0));
    };
    step();
    sensor->Reset();
    const AllocationCounter counter;
    step();
    EXPECT_EQ(counter.Count(), 1'024U) << "the nodes of the set alone";
}

TEST_F(CollisionSensor, StaysConsistentWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot count allocations";
    for (std::size_t failing = 1; failing <= 2; ++failing) {
        const Sensor one = KARMPCollisionSensor::create(L"");
        const Geometry data = GeometryOf(first, second, 1.0);
        {
            AllocationCounter counter;
            counter.FailAllocation(failing);
            EXPECT_THROW(one->AddContactGeometryData(data), std::bad_alloc);
        }
        EXPECT_EQ(one->GetContactCount(), 0);
        EXPECT_EQ(one->AddContactGeometryData(data), KARSuccess);
        EXPECT_EQ(one->GetContactGeometryDataCount(), 1);
    }
}

} // namespace
