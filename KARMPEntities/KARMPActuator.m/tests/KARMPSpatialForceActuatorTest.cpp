#include "KARMPSpatialForceActuator.h"
#include "ConcreteEntity.h"
#include "KARMPBody.h"
#include "KARMPConstant.h"
#include "KARMPEntityTable.h"
#include "KARMPExpression.h"
#include "KARMPString.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "QOBException.h"
#include "RecordingActuatorLoaders.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Calls = std::vector<std::string>;
using Quantity = KARMPPhysicalQuantity;

TestDeserializer& Plain(TestDeserializer& root)
{
    return root.Add(L"SpatialForceActuator")
        .Attribute(L"id", L"r")
        .Attribute(L"name", L"r")
        .Attribute(L"isActive", L"yes");
}

template <class T>
QOBSharedHandle<T> Identified(const wchar_t* identifier)
{
    const QOBSharedHandle<T> entity = T::create(identifier);
    entity->SetIdentifier(identifier);
    return entity;
}

/// A force that cannot tell whether it is in a world.
class LostForce : public KARMPSpatialForceActuator
{
public:
    KARStatus IsInWorld(bool&) const override { return KARUnexpected; }
};

/// A force on a body, with a loader, in a world, and a body that is turned by a quarter about z.
class SpatialForceActuator : public KARMPTestFixture
{
protected:
    using Components = KARMPSpatialForceActuator::Components;
    using Body = QOBSharedHandle<KARMPBody>;

    SpatialForceActuator()
    {
        basicWorld->addLogicalChild(actuator);
        actuator->SetLoader(loader);
        turned->SetPosition(Quarter(), 0);
        body->SetPosition(KARMathTransformation(KARMathVector(1.0, 2.0, 3.0)), 0);
        for (std::size_t i = 0; i < 3; ++i) {
            const auto constant = KARMPConstant::create(L"k");
            constant->SetIdentifier(L"k" + std::to_wstring(i));
            constant->SetPhysicalQuantity(Quantity::Force);
            constant->SetValue(static_cast<double>(i + 1), KARString());
            values[i] = constant;
            entities.Set(L"k" + std::to_wstring(i), values[i]);
        }
        entities.Set(L"b", body);
    }
    ~SpatialForceActuator() override
    {
        loader->force = {};
        loader->torque = {};
        loader->body = nullptr;
    }
    /// Turns x to y and moves by (10, 0, 0).
    static KARMathTransformation Quarter()
    {
        return {{{0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}, {10.0, 0.0, 0.0}};
    }
    KARMathVector Force() const
    {
        KARMathVector force;
        EXPECT_EQ(actuator->GetForce(force), KARSuccess);
        return force;
    }
    Components Own() const
    {
        Components own;
        EXPECT_EQ(actuator->GetForce(own, Body()), KARSuccess);
        return own;
    }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    LoaderRecord record;
    KARMPEntityTable entities;
    const Body body = Identified<KARMPBody>(L"b");
    const Body turned = Identified<KARMPBody>(L"t");
    Components values;
    QOBSharedHandle<ConcreteEntity<KARMPSpatialForceActuator>> actuator =
        ConcreteEntity<KARMPSpatialForceActuator>::create(L"a");
    RecordingSpatialForceActuatorLoader* loader = new RecordingSpatialForceActuatorLoader(record);
};

TEST_F(SpatialForceActuator, MakesConstantsOfAVectorInItsWorld)
{
    EXPECT_EQ(actuator->SetForce(KARMathVector(1.0, 2.0, 3.0)), KARSuccess);
    EXPECT_EQ(actuator->SetTorque(KARMathVector(4.0, 5.0, 6.0)), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"SetForce", "SetTorque"}));
    EXPECT_EQ(world->Count<KARMPValue>(), 6);
    EXPECT_EQ(Force(), KARMathVector(1.0, 2.0, 3.0));
    KARMathVector torque;
    EXPECT_EQ(actuator->GetTorque(torque), KARSuccess);
    EXPECT_EQ(torque, KARMathVector(4.0, 5.0, 6.0));
    EXPECT_EQ(loader->force, Own());
    Quantity::Enum quantity = {};
    loader->force[0]->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, Quantity::Force);
    loader->torque[2]->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, Quantity::Torque);
}

TEST_F(SpatialForceActuator, ReportsEachConstantThatIsNotMadeWhole)
{
    const QOBSharedHandle<KARMPSpatialForceActuator> lost(new LostForce);
    EXPECT_EQ(lost->SetForce(KARMathVector(1.0, 2.0, 3.0)), KARSuccess);
    ExpectReports(6); // the search of the world and the actuator, of each component
    EXPECT_EQ(lost->SetTorque(KARMathVector(4.0, 5.0, 6.0)), KARSuccess);
    ExpectReports(6);
    KARMathVector force;
    EXPECT_EQ(lost->GetForce(force), KARSuccess);
    EXPECT_EQ(force, KARMathVector(1.0, 2.0, 3.0));
}

TEST_F(SpatialForceActuator, StoresValuesAsTheyAreWithoutABody)
{
    EXPECT_EQ(actuator->SetForce(values, Body()), KARSuccess);
    EXPECT_EQ(Own(), values);
    EXPECT_EQ(loader->force, values);
    EXPECT_EQ(actuator->SetTorque(values, Body()), KARSuccess);
    Components torque;
    EXPECT_EQ(actuator->GetTorque(torque, Body()), KARSuccess);
    EXPECT_EQ(torque, values);
    EXPECT_EQ(loader->torque, values);
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
}

TEST_F(SpatialForceActuator, WithANullValueChangesNothingButTellsItsLoader)
{
    actuator->SetForce(values, Body());
    for (const Body& frame : {Body(), turned}) {
        for (std::size_t missing = 0; missing < 3; ++missing) {
            record.calls.clear();
            Components given = values;
            given[missing] = nullptr;
            EXPECT_EQ(actuator->SetForce(given, frame), KARSuccess);
            ExpectReports(1);
            EXPECT_EQ(record.calls, Calls{"SetForce"});
            EXPECT_EQ(loader->force, values);
            EXPECT_EQ(Own(), values);
            EXPECT_EQ(Force(), KARMathVector(1.0, 2.0, 3.0));
        }
    }
}

TEST_F(SpatialForceActuator, TurnsNumbersIntoItsOwnConstants)
{
    actuator->SetForce(KARMathVector(7.0, 8.0, 9.0));
    const Components own = Own();
    EXPECT_EQ(actuator->SetForce(values, turned), KARSuccess);
    EXPECT_EQ(Own(), own);
    EXPECT_EQ(loader->force, own);
    EXPECT_EQ(Force(), KARMathVector(-2.0, 1.0, 3.0));
    EXPECT_EQ(world->Count<KARMPValue>(), 3);
    double number = 0.0;
    QOBSharedHandle<KARMPConstant>(values[0])->GetValue(number);
    EXPECT_EQ(number, 1.0) << "what was given stays";
}

TEST_F(SpatialForceActuator, MakesConstantsForTurnedNumbersThatItHasNoneFor)
{
    values[1]->SetPhysicalQuantity(Quantity::Torque);
    EXPECT_EQ(actuator->SetForce(values, turned), KARSuccess);
    EXPECT_EQ(Force(), KARMathVector(-2.0, 1.0, 3.0));
    EXPECT_EQ(world->Count<KARMPValue>(), 3);
    const Components own = Own();
    Quantity::Enum quantity = {};
    own[1]->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, Quantity::Torque);
    // An expression of its own is replaced.
    Components mixed = values;
    mixed[0] = KARMPExpression::create(L"e");
    actuator->SetForce(mixed, Body());
    EXPECT_EQ(actuator->SetForce(own, turned), KARSuccess);
    EXPECT_NE(Own()[0], mixed[0]);
    EXPECT_EQ(Own()[1], values[1]);
    EXPECT_EQ(Force(), KARMathVector(-1.0, -2.0, 3.0));
}

TEST_F(SpatialForceActuator, StoresExpressionsAsTheyAreWhateverTheBody)
{
    values[2] = KARMPExpression::create(L"e");
    EXPECT_EQ(actuator->SetForce(values, turned), KARSuccess);
    EXPECT_EQ(Own(), values);
}

TEST_F(SpatialForceActuator, CannotTurnWhatIsNoNumber)
{
    actuator->SetForce(values, Body());
    Components given = values;
    given[1] = KARMPString::create(L"s");
    record.calls.clear();
    EXPECT_EQ(actuator->SetForce(given, turned), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(Own(), values);
    EXPECT_EQ(record.calls, Calls{"SetForce"});
    EXPECT_EQ(actuator->SetForce(given, Body()), KARSuccess);
    EXPECT_EQ(Own(), given);
}

TEST_F(SpatialForceActuator, GivesItsNumbersInTheAxesOfABody)
{
    actuator->SetForce(KARMathVector(1.0, 2.0, 3.0));
    const Components own = Own();
    Components given;
    EXPECT_EQ(actuator->GetForce(given, turned), KARSuccess);
    const double expected[] = {2.0, -1.0, 3.0};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NE(given[i], own[i]);
        double number = 0.0;
        ASSERT_TRUE(given[i].isDerivedFrom(KARMPConstant::ClassInfo()));
        QOBSharedHandle<KARMPConstant>(given[i])->GetValue(number);
        EXPECT_EQ(number, expected[i]);
        Quantity::Enum quantity = {};
        given[i]->GetPhysicalQuantity(quantity);
        EXPECT_EQ(quantity, Quantity::Force);
    }
    EXPECT_EQ(Force(), KARMathVector(1.0, 2.0, 3.0));
    EXPECT_EQ(Own(), own);
    EXPECT_EQ(world->Count<KARMPValue>(), 3) << "the new ones stand in no world";
    values[0] = KARMPExpression::create(L"e");
    actuator->SetForce(values, Body());
    EXPECT_EQ(actuator->GetForce(given, turned), KARSuccess);
    EXPECT_EQ(given, values) << "not all are numbers";
}

TEST_F(SpatialForceActuator, TakesAPositionWithoutAnInverseForTheIdentity)
{
    const Body flat = Identified<KARMPBody>(L"flat");
    flat->SetPosition({{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 0.0}}, {}}, 0);
    TakeReports();
    actuator->SetForce(values, Body());
    Components given;
    EXPECT_EQ(actuator->GetForce(given, flat), KARSuccess);
    ExpectReports(1);
    double number = 0.0;
    QOBSharedHandle<KARMPConstant>(given[2])->GetValue(number);
    EXPECT_EQ(number, 3.0);
}

TEST_F(SpatialForceActuator, HasNoVectorWithoutThreeNumbers)
{
    KARMathVector force(1.0, 1.0, 1.0);
    EXPECT_EQ(actuator->GetForce(force), KARFailure);
    EXPECT_EQ(force, KARMathVector());
    ExpectReports(4);
    values[1] = KARMPExpression::create(L"e");
    actuator->SetTorque(values, Body());
    EXPECT_EQ(actuator->GetTorque(force), KARFailure);
    EXPECT_EQ(force, KARMathVector(1.0, 0.0, 3.0));
    ExpectReports(2);
    Components given = values;
    EXPECT_EQ(actuator->GetForce(given, turned), KARSuccess);
    EXPECT_EQ(given, Components());
}

TEST_F(SpatialForceActuator, RecordsWhereItsBodyStands)
{
    Body found = turned;
    EXPECT_EQ(actuator->GetBody(found), KARSuccess);
    EXPECT_FALSE(found);
    EXPECT_EQ(actuator->SetBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(actuator->SetBody(body), KARSuccess);
    EXPECT_EQ(record.calls, Calls{"SetBody"});
    EXPECT_EQ(loader->body, body);
    EXPECT_EQ(actuator->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);

    // Set again, the position is not recorded anew.
    actuator->SetApplicationPoint({1.0, 0.0, 0.0}, Body());
    body->SetPosition(KARMathTransformation(KARMathVector(1.0, 2.0, 10.0)), 0);
    record.calls.clear();
    EXPECT_EQ(actuator->SetBody(body), KARUnchanged);
    EXPECT_TRUE(record.calls.empty());
    KARMathPoint point;
    EXPECT_EQ(actuator->GetApplicationPoint(point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint(1.0, 0.0, 7.0));
}

TEST_F(SpatialForceActuator, HasAnApplicationPointThatFollowsItsBody)
{
    KARMathPoint point(9.0, 9.0, 9.0);
    EXPECT_EQ(actuator->SetApplicationPoint({2.0, 2.0, 3.0}, Body()), KARSuccess);
    EXPECT_EQ(loader->point, KARMathPoint(2.0, 2.0, 3.0));
    EXPECT_EQ(actuator->GetApplicationPoint(point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint(9.0, 9.0, 9.0)) << "without a body";
    actuator->SetBody(body);
    EXPECT_EQ(actuator->GetApplicationPoint(point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint(2.0, 2.0, 3.0));
    // The point is (1, 0, 0) from the body's origin.
    body->SetPosition(Quarter(), 0);
    EXPECT_EQ(actuator->GetApplicationPoint(point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint(10.0, 1.0, 0.0));
}

TEST_F(SpatialForceActuator, TakesAPointInTheAxesOfABody)
{
    EXPECT_EQ(actuator->SetApplicationPoint({1.0, 0.0, 0.0}, turned), KARSuccess);
    EXPECT_EQ(loader->point, KARMathPoint(10.0, 1.0, 0.0));
    actuator->SetBody(body);
    EXPECT_EQ(actuator->SetApplicationPoint({1.0, 0.0, 0.0}, turned), KARSuccess);
    EXPECT_EQ(loader->point, KARMathPoint(9.0, -1.0, -3.0));
}

TEST_F(SpatialForceActuator, KeepsWhatItsLoaderRefuses)
{
    record.answer = KARUnchanged;
    EXPECT_EQ(actuator->SetForce(values, Body()), KARSuccess);
    record.answer = KARUnexpected;
    EXPECT_EQ(actuator->SetForce(values, Body()), KARFailure);
    EXPECT_EQ(actuator->SetTorque(values, Body()), KARFailure);
    EXPECT_EQ(actuator->SetBody(body), KARFailure);
    EXPECT_EQ(actuator->SetApplicationPoint({1.0, 1.0, 1.0}, Body()), KARFailure);
    ExpectReports(4);
    Body found;
    actuator->GetBody(found);
    EXPECT_EQ(found, body);
    KARMathPoint point;
    actuator->GetApplicationPoint(point);
    EXPECT_EQ(point, KARMathPoint(1.0, 1.0, 1.0));
    actuator->failsToFetch = true;
    EXPECT_EQ(actuator->SetForce(values, Body()), KARFailure);
    ExpectReports(2);
}

TEST_F(SpatialForceActuator, FailsWithTheLoaderOfAPlanarOne)
{
    const auto other = KARMPSpatialForceActuator::create(L"o");
    other->SetLoader(new RecordingSpatialForceActuator2DLoader(record));
    EXPECT_EQ(other->SetForce(values, Body()), KARFailure);
    EXPECT_EQ(other->SetTorque(values, Body()), KARFailure);
    EXPECT_EQ(other->SetBody(body), KARFailure);
    EXPECT_EQ(other->SetApplicationPoint({1.0, 1.0, 1.0}, Body()), KARFailure);
    ExpectReports(4);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(SpatialForceActuator, WithoutALoaderStoresAlone)
{
    const auto bare = KARMPSpatialForceActuator::create(L"bare");
    bare->SetLoader(new RecordingEntityLoader(record));
    KARIMPSpatialForceActuatorLoader* own = nullptr;
    EXPECT_EQ(bare->GetLoader(own), KARSuccess);
    EXPECT_EQ(own, nullptr);
    EXPECT_EQ(bare->SetForce(values, Body()), KARSuccess);
    EXPECT_EQ(bare->SetTorque(KARMathVector(1.0, 1.0, 1.0)), KARSuccess);
    EXPECT_EQ(bare->SetBody(body), KARSuccess);
    EXPECT_EQ(bare->SetApplicationPoint({1.0, 1.0, 1.0}, Body()), KARSuccess);
    EXPECT_EQ(world->Count<KARMPValue>(), 0) << "it stands in no world";
}

TEST_F(SpatialForceActuator, CopiesPointFlagAndReferenceAlone)
{
    actuator->SetForce(values, Body());
    actuator->SetTorque(values, Body());
    actuator->SetBody(body);
    actuator->SetApplicationPoint({1.0, 2.0, 3.0}, Body());
    actuator->SetIsInLocalFrame(true);
    const auto copy = actuator->copy();
    Components given = values;
    copy->GetForce(given, Body());
    EXPECT_EQ(given, Components());
    copy->GetTorque(given, Body());
    EXPECT_EQ(given, Components());
    Body found = body;
    copy->GetBody(found);
    EXPECT_FALSE(found);
    bool isLocal = false;
    EXPECT_EQ(copy->IsInLocalFrame(isLocal), KARSuccess);
    EXPECT_TRUE(isLocal);
    // Relative to the copied reference, a point in the body's axes is where it was.
    auto* copied = new RecordingSpatialForceActuatorLoader(record);
    copy->SetLoader(copied);
    copy->SetApplicationPoint({1.0, 2.0, 3.0}, body);
    EXPECT_EQ(copied->point, KARMathPoint(1.0, 2.0, 3.0));
}

TEST_F(SpatialForceActuator, ComesBackFromADocument)
{
    actuator->SetForce(values, Body());
    actuator->SetTorque({values[2], values[1], values[0]}, Body());
    actuator->SetIsInLocalFrame(true);
    actuator->SetApplicationPoint({4.0, 5.0, 6.0}, Body());
    actuator->SetBody(body);
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"SpatialForceActuator");
    const wchar_t* const names[] = {L"Force", L"Torque", L"IsInLocalFrame", L"ApplicationPoint",
                                    L"Body"};
    ASSERT_EQ(element.GetElementCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(element.Child(i).GetId(), names[i]);
    EXPECT_EQ(element.Text(L"Force/Vy/@id"), L"k1");
    EXPECT_EQ(element.Text(L"Torque/Vx/@name"), L"k");
    EXPECT_TRUE(element.Flag(L"IsInLocalFrame"));
    EXPECT_EQ(element.Number(L"ApplicationPoint/Py"), 5.0);
    EXPECT_EQ(element.Text(L"Body/@id"), L"b");

    for (const bool asText : {false, true}) {
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        const auto read = ConcreteEntity<KARMPSpatialForceActuator>::create(L"");
        record.calls.clear();
        auto* told = new RecordingSpatialForceActuatorLoader(record);
        read->SetLoader(told);
        EXPECT_EQ(read->KARMPSpatialForceActuator::Deserialize(tree.get(), entities), KARSuccess);
        TakeReports();
        EXPECT_EQ(record.calls, (Calls{"SetForce", "SetTorque", "SetApplicationPoint", "SetBody"}));
        EXPECT_EQ(told->force, values);
        EXPECT_EQ(told->torque[0], values[2]);
        EXPECT_EQ(told->body, body);
        KARMathPoint point;
        EXPECT_EQ(read->GetApplicationPoint(point), KARSuccess);
        EXPECT_EQ(point, KARMathPoint(4.0, 5.0, 6.0));
        bool isLocal = false;
        read->IsInLocalFrame(isLocal);
        EXPECT_TRUE(isLocal);
        told->force = {};
        told->torque = {};
        told->body = nullptr;
    }
}

TEST_F(SpatialForceActuator, ReadsValuesAndPointAsTheyAreAlthoughItHasABody)
{
    actuator->SetForce(values, Body());
    actuator->SetTorque({values[2], values[1], values[0]}, Body());
    actuator->SetApplicationPoint({4.0, 5.0, 6.0}, Body());
    TestSerializer root;
    actuator->Serialize(&root);
    const auto read = KARMPSpatialForceActuator::create(L"");
    auto* told = new RecordingSpatialForceActuatorLoader(record);
    read->SetLoader(told);
    read->SetBody(body);
    body->SetPosition(Quarter(), 0);
    record.calls.clear();
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"SetForce", "SetTorque", "SetApplicationPoint"}));
    EXPECT_EQ(told->force, values);
    EXPECT_EQ(told->torque, (Components{values[2], values[1], values[0]}));
    EXPECT_EQ(told->point, KARMathPoint(4.0, 5.0, 6.0));
    told->force = {};
    told->torque = {};
    told->body = nullptr;
}

TEST_F(SpatialForceActuator, ReportsALoaderThatRefusesWhatIsRead)
{
    actuator->SetForce(values, Body());
    actuator->SetTorque(values, Body());
    actuator->SetBody(body);
    TestSerializer root;
    actuator->Serialize(&root);
    const auto read = KARMPSpatialForceActuator::create(L"");
    read->SetLoader(new RecordingSpatialForceActuatorLoader(record));
    record.answer = KARFailure;
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(8); // the setter and the reader, of force, torque, point and body
    Components given;
    read->GetForce(given, Body());
    EXPECT_EQ(given, values);
}

TEST_F(SpatialForceActuator, WritesForceAndTorqueEmptyWithoutValues)
{
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    ASSERT_EQ(element.GetElementCount(), 4U);
    EXPECT_EQ(element.Child(0).GetElementCount(), 0U);
    EXPECT_EQ(element.Child(1).GetElementCount(), 0U);
    const auto read = KARMPSpatialForceActuator::create(L"");
    read->SetForce(values, Body());
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    Components given;
    read->GetForce(given, Body());
    EXPECT_EQ(given, values);
}

TEST_F(SpatialForceActuator, ReportsWhatIsMissingAndKeepsIt)
{
    actuator->SetForce(values, Body());
    actuator->SetIsInLocalFrame(true);
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    EXPECT_EQ(actuator->Deserialize(&root, entities), KARSuccess);
    ExpectReports(3);
    element.Add(L"Force").Add(L"Vx").Attribute(L"id", L"k1");
    element.Add(L"Body").Attribute(L"id", L"nobody");
    EXPECT_EQ(actuator->Deserialize(&root, entities), KARSuccess);
    ExpectReports(4);
    EXPECT_EQ(Own(), values) << "a force of one component is none";
    bool isLocal = false;
    actuator->IsInLocalFrame(isLocal);
    EXPECT_TRUE(isLocal);
    element.Add(L"ApplicationPoint").Leaf(L"Py", 5.0);
    actuator->Deserialize(&root, entities);
    ExpectReports(5);
    actuator->SetBody(body);
    KARMathPoint point;
    actuator->GetApplicationPoint(point);
    EXPECT_EQ(point, KARMathPoint(0.0, 5.0, 0.0));
}

TEST_F(SpatialForceActuator, ThrowsForAForceThatIsNoValue)
{
    TestDeserializer root;
    Plain(root).Add(L"Force").Add(L"Vx").Attribute(L"id", L"b");
    EXPECT_THROW(actuator->Deserialize(&root, entities), QOBEInvalidCast);
    // The actuator has an identifier already.
    ExpectReports(1);
}

TEST_F(SpatialForceActuator, FailsWithoutANodeOrItsElement)
{
    EXPECT_EQ(actuator->Serialize(nullptr), KARFailure);
    EXPECT_EQ(actuator->Deserialize(nullptr, entities), KARFailure);
    const TestDeserializer empty;
    EXPECT_EQ(actuator->Deserialize(&empty, entities), KARFailure);
    ExpectReports(3);
}

TEST_F(SpatialForceActuator, OutlivesItsWorldInAHandle)
{
    actuator->SetForce(KARMathVector(1.0, 2.0, 3.0));
    world->Add<KARMPActuator>(actuator);
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_TRUE(actuator->isOrphaned());
    EXPECT_EQ(Force(), KARMathVector(1.0, 2.0, 3.0));
}

} // namespace
