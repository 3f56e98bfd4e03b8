// What differs between two worlds.
#include "BuiltWorlds.h"
#include "KARMPBody.h"
#include "KARMPBushing.h"
#include "KARMPCollisionSensor.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPJointKinds.h"
#include "KARMPLinearEquation.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARMPWorldDifference.h"
#include "KARMPWorldFamilies.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <limits>

namespace karmp::documents {

namespace {

TEST_F(WorldDifference, IsNothingBetweenNewWorlds)
{
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(WorldDifference, TellsEachSettingOfTheWorld)
{
    second.world->SetLinearTolerance(0.5);
    second.world->SetAngularTolerance(0.5);
    second.world->SetOrigin({1.0, 2.0, 3.0});
    second.world->SetSize(1.0, 2.0, 3.0);
    second.world->SetGravity({0.0, 0.0, -9.81});
    second.world->SetLengthUnit(KARMPUnit::Meter);
    second.world->SetGroundBody(second.Ground());
    std::vector<std::wstring> items;
    const auto differences = Compare();
    for (const Difference& difference : differences) {
        EXPECT_EQ(difference.kind, DifferenceKind::Setting);
        items.push_back(difference.item);
    }
    EXPECT_EQ(items,
              (std::vector<std::wstring>{L"linear_tolerance", L"angular_tolerance", L"Origin",
                                         L"Size", L"Gravity", L"LengthUnit", L"GroundBody"}));
    ASSERT_EQ(differences.size(), 7U);
    EXPECT_EQ(differences[4].newValue, Value(NumberArray{0.0, 0.0, -9.81}));
}

TEST_F(WorldDifference, TellsAnotherGlobalEntity)
{
    const auto [before, after] = AddBoth<KARMPBody>(L"Frame");
    second.world->SetGlobalBody(after);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::Setting});
    EXPECT_EQ(differences[0].item, L"GlobalBody");
    EXPECT_EQ(differences[0].newValue, Value(Handle(after)));
}

TEST_F(WorldDifference, TellsWhatOneWorldAloneHolds)
{
    const auto old = first.Add<KARMPBody>(L"Old");
    const auto added = second.Add<KARMPPoint>(L"New");
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), (Kinds{DifferenceKind::Removed, DifferenceKind::Added}));
    EXPECT_EQ(differences[0].before.get(), old.get());
    EXPECT_FALSE(differences[0].after);
    EXPECT_FALSE(differences[1].before);
    EXPECT_EQ(differences[1].after.get(), added.get());
}

TEST_F(WorldDifference, TellsAnotherNameOfTheSameIdentifier)
{
    first.Add<KARMPBody>(L"Rod", L"K1");
    second.Add<KARMPBody>(L"Link", L"K1");
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::Renamed});
    EXPECT_EQ(differences[0].oldValue, Value(std::wstring(L"Rod")));
    EXPECT_EQ(differences[0].newValue, Value(std::wstring(L"Link")));
}

TEST_F(WorldDifference, OfAPositionAloneIsAMove)
{
    const auto [before, after] = AddBoth<KARMPBody>(L"Rod");
    after->SetPosition(At(2.0), 0);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::Moved});
    EXPECT_EQ(differences[0].item, L"Position");
    EXPECT_EQ(differences[0].quantity, KARMPPhysicalQuantity::Length);
    EXPECT_EQ(std::get<NumberArray>(differences[0].newValue)[0], 2.0);
}

TEST_F(WorldDifference, OfTheClassIsOneChange)
{
    const auto body = first.Add<KARMPBody>(L"Rod");
    first.Join(L"A", L"A", first.Ground(), body);
    const auto other = second.Add<KARMPBody>(L"Rod");
    const auto joint = second.Add<KARMPPrismatic>(L"A");
    joint->LinkToBody(second.Ground(), KARMPBodyOrientation::Out);
    joint->LinkToBody(other, KARMPBodyOrientation::In);
    second.Ground()->LinkToJoint(joint);
    other->LinkToJoint(joint);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(differences[0].item, L"class");
    EXPECT_EQ(differences[0].newValue, Value(std::wstring(L"KARMPPrismatic")));
}

TEST_F(WorldDifference, OfClassAndNameIsThatOfTwoEntities)
{
    first.Add<KARMPRevolute>(L"A", L"K1");
    second.Add<KARMPPrismatic>(L"B", L"K1");
    EXPECT_EQ(CompareKinds(), (Kinds{DifferenceKind::Removed, DifferenceKind::Added}));
}

TEST_F(WorldDifference, TellsALinkOnceAtTheEndThatHoldsItInOrder)
{
    const auto [rod, otherRod] = AddBoth<KARMPBody>(L"Rod");
    const auto [crank, otherCrank] = AddBoth<KARMPBody>(L"Crank");
    const auto joint = first.Join(L"A", L"A", first.Ground(), rod);
    second.Join(L"A", L"A", second.Ground(), otherRod);
    joint->LinkToBody(crank, KARMPBodyOrientation::In);
    crank->LinkToJoint(joint);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::LinkLost});
    EXPECT_EQ(differences[0].before.get(), joint.get());
    EXPECT_EQ(differences[0].item, L"Bodies");
    EXPECT_EQ(differences[0].target.get(), crank.get());
}

TEST_F(WorldDifference, TellsALinkThatOneEndAloneHasLost)
{
    const auto [rod, otherRod] = AddBoth<KARMPBody>(L"Rod");
    first.Join(L"A", L"A", first.Ground(), rod);
    const auto joint = second.Join(L"A", L"A", second.Ground(), otherRod);
    otherRod->RemoveJoint(joint);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::LinkLost});
    EXPECT_EQ(differences[0].before.get(), rod.get());
    EXPECT_EQ(differences[0].item, L"Joints");
}

TEST_F(WorldDifference, OfASingleReferenceIsOneChange)
{
    const auto [rod, otherRod] = AddBoth<KARMPBody>(L"Rod");
    const auto [crank, otherCrank] = AddBoth<KARMPBody>(L"Crank");
    const auto [point, otherPoint] = AddBoth<KARMPPoint>(L"P");
    rod->AddGeometry(point);
    point->SetBody(rod);
    otherCrank->AddGeometry(otherPoint);
    otherPoint->SetBody(otherCrank);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(differences[0].item, L"Body");
    EXPECT_EQ(differences[0].oldValue, Value(Handle(rod)));
    EXPECT_EQ(differences[0].newValue, Value(Handle(otherCrank)));
}

TEST_F(WorldDifference, TellsALinkThatBothEndsHoldAloneOnce)
{
    AddBoth<KARMPBody>(L"Rod");
    const auto body = second.Add<KARMPBody>(L"Crank");
    first.Add<KARMPBody>(L"Crank");
    const auto [before, after] = AddBoth<KARMPDisplacementSensor>(L"S");
    after->SetBody(body);
    body->SetDisplacementSensor(after);
    EXPECT_EQ(CompareKinds(), Kinds{DifferenceKind::LinkGained});
}

TEST_F(WorldDifference, TellsTheLinksOfAnAddedEntityByItAlone)
{
    const auto [rod, otherRod] = AddBoth<KARMPBody>(L"Rod");
    second.Join(L"A", L"A", second.Ground(), otherRod);
    EXPECT_EQ(CompareKinds(), Kinds{DifferenceKind::Added});
    const auto lone = second.Add<KARMPRevolute>(L"Lone");
    otherRod->LinkToJoint(lone);
    EXPECT_EQ(CompareKinds(),
              (Kinds{DifferenceKind::LinkGained, DifferenceKind::Added, DifferenceKind::Added}));
}

/// Links both bodies to a connector, and the connector to them.
void Connect(const QOBSharedHandle<KARMPConnector>& connector,
             const QOBSharedHandle<KARMPBody>& from, const QOBSharedHandle<KARMPBody>& to)
{
    connector->SetFirstBody(from);
    connector->SetSecondBody(to);
    from->LinkToConnector(connector);
    to->LinkToConnector(connector);
}

TEST_F(WorldDifference, TellsTheBodiesOfAConnectorByItAlone)
{
    const auto [rod, otherRod] = AddBoth<KARMPBody>(L"Rod");
    const auto [crank, otherCrank] = AddBoth<KARMPBody>(L"Crank");
    const auto [bushing, otherBushing] = AddBoth<KARMPBushing>(L"Bushing");
    Connect(bushing, first.Ground(), rod);
    Connect(otherBushing, second.Ground(), otherCrank);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(differences[0].item, L"SecondBody");
    Connect(second.Add<KARMPBushing>(L"Added"), otherRod, otherCrank);
    EXPECT_EQ(CompareKinds(), (Kinds{DifferenceKind::Changed, DifferenceKind::Added}));
}

TEST_F(WorldDifference, TellsTheOrderAndTheWordsOfAJointsBodies)
{
    const auto [rod, otherRod] = AddBoth<KARMPBody>(L"Rod");
    const auto [joint, otherJoint] = AddBoth<KARMPRevolute>(L"A");
    joint->LinkToBody(first.Ground(), KARMPBodyOrientation::Out);
    joint->LinkToBody(rod, KARMPBodyOrientation::In);
    otherJoint->LinkToBody(otherRod, KARMPBodyOrientation::Out);
    otherJoint->LinkToBody(second.Ground(), KARMPBodyOrientation::Out);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), (Kinds{DifferenceKind::Changed, DifferenceKind::Reordered}));
    EXPECT_EQ(differences[0].item, L"Bodies/bodyOrientation");
    EXPECT_EQ(differences[0].target.get(), rod.get());
    EXPECT_EQ(differences[0].oldValue, Value(std::wstring(L"In")));
    EXPECT_EQ(differences[0].newValue, Value(std::wstring(L"Out")));
    EXPECT_EQ(differences[1].item, L"Bodies");
}

TEST_F(WorldDifference, IsNothingForListsWithoutAnOrder)
{
    const auto [rod, otherRod] = AddBoth<KARMPBody>(L"Rod");
    const auto [one, otherOne] = AddBoth<KARMPPoint>(L"P");
    const auto [two, otherTwo] = AddBoth<KARMPPoint>(L"Q");
    rod->AddGeometry(one);
    rod->AddGeometry(two);
    otherRod->AddGeometry(otherTwo);
    otherRod->AddGeometry(otherOne);
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(WorldDifference, TellsTheTermsOfAnEquationOneByOne)
{
    const auto [before, after] = AddBoth<KARMPLinearEquation>(L"E");
    for (const double coefficient : {1.0, 2.0, 3.0}) {
        before->AddLinearTerm(coefficient);
        after->AddLinearTerm(coefficient == 2.0 ? 2.5 : coefficient);
    }
    after->AddLinearTerm(4.0);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), (Kinds{DifferenceKind::Changed, DifferenceKind::Changed}));
    EXPECT_EQ(differences[0].item, L"LinearTermDataContainer/LinearTerm[2]/LinearTermValue");
    EXPECT_EQ(differences[0].oldValue, Value(2.0));
    EXPECT_EQ(differences[0].newValue, Value(2.5));
    EXPECT_EQ(differences[1].item, L"LinearTermDataContainer/LinearTerm[4]");
    EXPECT_EQ(differences[1].oldValue, Value());
}

TEST_F(WorldDifference, OfAnEntryThatWasAddedBeforeOthersIsOne)
{
    const auto rods = AddBoth<KARMPBody>(L"Rod");
    const auto sensors = AddBoth<KARMPCollisionSensor>(L"Sensor");
    const auto record = [](const QOBSharedHandle<KARMPCollisionSensor>& sensor,
                           const QOBSharedHandle<KARMPBody>& rod,
                           const std::vector<double>& depths) {
        std::vector<KARMPContactGeometryData> contacts;
        for (const double depth : depths)
            contacts.push_back({rod, rod, {}, {}, depth, {}, {}});
        sensor->SetContactGeometryData(contacts);
    };
    record(sensors.first, rods.first, {1.0, 2.0, 3.0});
    record(sensors.second, rods.second, {1.0, 9.0, 8.0, 2.0, 3.0});
    const std::wstring list = L"ContactGeometryDataContainer/ContactGeometryData";
    const auto added = Compare();
    ASSERT_EQ(KindsOf(added), Kinds(2, DifferenceKind::Changed));
    EXPECT_EQ(added[0].item, list + L"[2]");
    EXPECT_EQ(added[0].oldValue, Value());
    EXPECT_EQ(added[1].item, list + L"[3]");
    const auto removed = FindDifferences(*second.world, *first.world);
    ASSERT_EQ(KindsOf(removed), Kinds(2, DifferenceKind::Changed));
    EXPECT_EQ(removed[0].item, list + L"[2]");
    EXPECT_EQ(removed[0].newValue, Value());
}

TEST_F(WorldDifference, OfNumbersIsRelativeToTheGreaterOneAboveAFloor)
{
    const auto [before, after] = AddBoth<KARMPBody>(L"Rod");
    before->SetMass(1000.0);
    after->SetMass(1000.5);
    EXPECT_EQ(CompareKinds({.tolerance = 1e-3}), Kinds());
    EXPECT_EQ(CompareKinds({.tolerance = 1e-4}), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(CompareKinds({.floor = 0.5}), Kinds());
    EXPECT_EQ(CompareKinds({.floor = 0.25}), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(CompareKinds(), Kinds{DifferenceKind::Changed});
}

TEST_F(WorldDifference, OfLargeAndInfiniteNumbersIsNoLessThanItIs)
{
    constexpr double large = 1.5e308;
    const auto [before, after] = AddBoth<KARMPBody>(L"Rod");
    const auto compare = [&](double one, double other, const DifferenceOptions& options) {
        before->SetCenterOfGravity({one, large, 0.0});
        after->SetCenterOfGravity({other, large, 0.0});
        return CompareKinds(options);
    };
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(compare(infinity, 1.0, {.tolerance = 1.9}), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(compare(infinity, -infinity, {.tolerance = 1.9}), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(compare(infinity, infinity, {}), Kinds());
    EXPECT_EQ(compare(large, -large, {.tolerance = 1.9}), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(compare(large, -large, {.tolerance = 2.0}), Kinds());
}

TEST_F(WorldDifference, MeasuresANumberOfAVectorByTheWholeVector)
{
    const auto [before, after] = AddBoth<KARMPBody>(L"Rod");
    before->SetCenterOfGravity({1000.0, 0.0, 0.0});
    after->SetCenterOfGravity({1000.0, 1e-4, 0.0});
    EXPECT_EQ(CompareKinds({.tolerance = 1e-6}), Kinds());
    EXPECT_EQ(CompareKinds({.tolerance = 1e-8}), Kinds{DifferenceKind::Changed});
}

TEST_F(WorldDifference, MeasuresARotationApartFromTheTranslation)
{
    const auto [before, after] = AddBoth<KARMPBody>(L"Rod");
    before->SetPosition(At(1e6), 0);
    KARMathTransformation turned = At(1e6);
    turned.SetMatrix(KARMath3x3Matrix({1.0, 1e-3, 0.0}, {-1e-3, 1.0, 0.0}, {0.0, 0.0, 1.0}));
    after->SetPosition(turned, 0);
    EXPECT_EQ(CompareKinds({.tolerance = 1e-6}), Kinds{DifferenceKind::Moved});
}

TEST_F(WorldDifference, IsNothingBetweenANaNAndANaN)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto [before, after] = AddBoth<KARMPBody>(L"Rod");
    before->SetMass(nan);
    after->SetMass(-nan);
    EXPECT_EQ(CompareKinds(), Kinds());
    after->SetMass(1.0);
    EXPECT_EQ(CompareKinds({.tolerance = 1.0}), Kinds{DifferenceKind::Changed});
    before->SetMass(infinity);
    EXPECT_EQ(CompareKinds({.tolerance = 1.0}), Kinds{DifferenceKind::Changed});
    after->SetMass(infinity);
    EXPECT_EQ(CompareKinds(), Kinds());
    before->SetMass(0.0);
    after->SetMass(-0.0);
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(WorldDifference, MatchesByNameWhatHasADoubledIdentifier)
{
    const auto body = first.Add<KARMPBody>(L"Rod", L"K1");
    first.Add<KARMPBody>(L"Crank", L"K1");
    second.Add<KARMPBody>(L"Crank", L"K1");
    second.Add<KARMPBody>(L"Rod", L"K1")->SetMass(2.0);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), Kinds{DifferenceKind::Changed});
    EXPECT_EQ(differences[0].before.get(), body.get());
    EXPECT_EQ(differences[0].item, L"Weight/Mass");
}

TEST_F(WorldDifference, MatchesWhatSharesMostLinks)
{
    std::vector<QOBSharedHandle<KARMPBody>> bodies;
    for (const wchar_t* const name : {L"A", L"B", L"C", L"D", L"E"})
        bodies.push_back(AddBoth<KARMPBody>(name).first);
    const auto other = [this](int index) {
        QOBSharedHandle<KARMPBody> body;
        second.world->Get<KARMPBody>(index + 1, body);
        return body;
    };
    const auto one = first.Join(L"", L"1", bodies[0], bodies[2]);
    first.Join(L"", L"2", bodies[1], bodies[2]);
    second.Join(L"", L"3", other(1), other(3));
    second.Join(L"", L"4", other(0), other(3));
    const auto differences = Compare();
    const Kinds lostAndGained{DifferenceKind::LinkLost, DifferenceKind::LinkGained,
                              DifferenceKind::LinkLost, DifferenceKind::LinkGained};
    ASSERT_EQ(KindsOf(differences), lostAndGained);
    EXPECT_EQ(differences[0].before.get(), one.get());
    EXPECT_EQ(differences[0].target.get(), bodies[2].get());
    EXPECT_EQ(differences[1].target.get(), other(3).get());
}

TEST_F(WorldDifference, ByNameLeavesIdentifiersAside)
{
    first.Add<KARMPBody>(L"Rod", L"K1");
    first.Add<KARMPBody>(L"Crank", L"K2");
    second.Add<KARMPBody>(L"Rod", L"K2");
    second.Add<KARMPBody>(L"Crank", L"K1");
    EXPECT_EQ(CompareKinds(), (Kinds{DifferenceKind::Renamed, DifferenceKind::Renamed}));
    EXPECT_EQ(CompareKinds({.byIdentifier = false}), Kinds());
}

} // namespace

} // namespace karmp::documents
