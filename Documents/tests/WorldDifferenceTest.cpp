// What differs between two worlds.
#include "KARMPBody.h"
#include "KARMPBushing.h"
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

using Kinds = std::vector<DifferenceKind>;
using Handle = QOBSharedHandle<KARMPEntity>;

/// A world to be built by hand. Entities have their names as identifiers, behind a prefix.
class Built
{
public:
    explicit Built(std::wstring prefix = {}) : m_prefix(std::move(prefix)) {}

    template <class T>
    QOBSharedHandle<T> Add(const std::wstring& name, const std::wstring& identifier)
    {
        const auto entity = T::create(name);
        entity->SetIdentifier(m_prefix + identifier);
        m_basicWorld->addLogicalChild(entity);
        Families::AnyOf([&](auto family) {
            using F = typename decltype(family)::Type;
            if constexpr (std::is_base_of_v<F, T>)
                return world->Add<F>(QOBSharedHandle<F>(entity)) == KARSuccess;
            else
                return false;
        });
        return entity;
    }
    template <class T>
    QOBSharedHandle<T> Add(const std::wstring& name)
    {
        return Add<T>(name, name);
    }
    /// A joint that two bodies know.
    QOBSharedHandle<KARMPJoint> Join(const std::wstring& name, const std::wstring& identifier,
                                     const QOBSharedHandle<KARMPBody>& parent,
                                     const QOBSharedHandle<KARMPBody>& child)
    {
        const auto joint = Add<KARMPRevolute>(name, identifier);
        joint->LinkToBody(parent, KARMPBodyOrientation::Out);
        joint->LinkToBody(child, KARMPBodyOrientation::In);
        parent->LinkToJoint(joint);
        child->LinkToJoint(joint);
        return joint;
    }
    QOBSharedHandle<KARMPBody> Ground() const
    {
        QOBSharedHandle<KARMPBody> ground;
        world->GetGlobalBody(ground);
        return ground;
    }

private:
    std::wstring m_prefix;
    QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"basic");

public:
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(m_basicWorld);
};

class WorldDifference : public KARMPTestFixture
{
protected:
    std::vector<Difference> Compare(const DifferenceOptions& options = {}) const
    {
        return FindDifferences(*first.world, *second.world, options);
    }
    Kinds KindsOf(const std::vector<Difference>& differences) const
    {
        Kinds kinds;
        for (const Difference& difference : differences)
            kinds.push_back(difference.kind);
        return kinds;
    }
    Kinds CompareKinds(const DifferenceOptions& options = {}) const
    {
        return KindsOf(Compare(options));
    }
    template <class T>
    std::pair<QOBSharedHandle<T>, QOBSharedHandle<T>> AddBoth(const std::wstring& name)
    {
        return {first.Add<T>(name), second.Add<T>(name)};
    }

    Built first;
    Built second;
};

KARMathTransformation At(double x)
{
    KARMathTransformation position;
    position.SetVector({x, 0.0, 0.0});
    return position;
}

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

/// Two worlds whose identifiers have nothing in common.
class SeparateWorlds : public WorldDifference
{
protected:
    SeparateWorlds()
    {
        first = Built(L"a");
        second = Built(L"b");
    }

    /// A chain of bodies from the ground, all of one name, whose last one has a mass.
    static void AddChain(Built& built, const std::wstring& identifier, int length, double mass)
    {
        auto last = built.Ground();
        for (int i = 0; i < length; ++i) {
            const std::wstring link = identifier + std::to_wstring(i);
            const auto body = built.Add<KARMPBody>(L"", L"B" + link);
            built.Join(L"", L"J" + link, last, body);
            last = body;
        }
        last->SetMass(mass);
    }
};

TEST_F(SeparateWorlds, AreMatchedByNames)
{
    first.Join(L"A", L"1", first.Ground(), first.Add<KARMPBody>(L"Rod", L"2"));
    second.Join(L"A", L"3", second.Ground(), second.Add<KARMPBody>(L"Rod", L"4"));
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(SeparateWorlds, TellEqualNamesApartByTheirLinks)
{
    AddChain(first, L"x", 3, 1.0);
    AddChain(first, L"y", 4, 2.0);
    AddChain(first, L"z", 4, 3.0);
    AddChain(second, L"u", 4, 3.0);
    AddChain(second, L"v", 3, 1.0);
    AddChain(second, L"w", 4, 2.0);
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(SeparateWorlds, TellEqualContentApartByFartherLinks)
{
    for (const int length : {3, 4, 6, 9})
        AddChain(first, L"x" + std::to_wstring(length), length, 0.0);
    for (const int length : {6, 9, 3, 4})
        AddChain(second, L"x" + std::to_wstring(length), length, 0.0);
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(SeparateWorlds, HeedLinksBeforeContent)
{
    const auto add = [](Built& built, const std::wstring& name, double one, double two) {
        const auto body = built.Add<KARMPBody>(name);
        for (const double x : {one, two}) {
            const auto point = built.Add<KARMPPoint>(L"", name + std::to_wstring(x));
            point->SetPoint({x, 0.0, 0.0});
            point->SetBody(body);
            body->AddGeometry(point);
        }
    };
    add(first, L"Rod", 1.0, 2.0);
    add(first, L"Crank", 3.0, 4.0);
    add(second, L"Rod", 3.0, 2.0);
    add(second, L"Crank", 1.0, 4.0);
    const auto differences = Compare();
    EXPECT_EQ(differences.size(), 2U);
    for (const Difference& difference : differences)
        EXPECT_EQ(difference.item, L"Coordinates/Origin");
}

TEST_F(SeparateWorlds, MatchWhatIsAlikeInAnyOrder)
{
    for (const wchar_t* const identifier : {L"x", L"y", L"z"}) {
        AddChain(first, identifier, 5, 1.0);
        AddChain(second, identifier, 5, 1.0);
        first.Add<KARMPBody>(L"", identifier);
        second.Add<KARMPBody>(L"", identifier);
    }
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(SeparateWorlds, TellWhatIsLinkedToNothingApartByItsContent)
{
    for (int i = 0; i < 20; ++i) {
        first.Add<KARMPBody>(L"", std::to_wstring(i))->SetMass(i);
        second.Add<KARMPBody>(L"", std::to_wstring(i))->SetMass((i * 7 + 3) % 20);
    }
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(SeparateWorlds, TellWhatIsLinkedToNothingApartWithinATolerance)
{
    for (int i = 0; i < 20; ++i) {
        const auto body = first.Add<KARMPBody>(L"", std::to_wstring(i));
        body->SetMass(i + 1.0);
        body->SetPosition(At(1.0), 0);
        const auto other = second.Add<KARMPBody>(L"", std::to_wstring(i));
        const double mass = (i * 7 + 3) % 20 + 1.0;
        other->SetMass(mass * (1.0 + 1e-10));
        other->SetPosition(At(1.0 + i * 1e-13), 0);
    }
    EXPECT_EQ(CompareKinds({.tolerance = 1e-9}), Kinds());
}

TEST_F(SeparateWorlds, TellAChangeWithinEqualNamesOnce)
{
    AddChain(first, L"x", 3, 1.0);
    AddChain(first, L"y", 4, 2.0);
    AddChain(second, L"u", 4, 2.5);
    AddChain(second, L"v", 3, 1.0);
    EXPECT_EQ(CompareKinds(), Kinds{DifferenceKind::Changed});
}

TEST_F(SeparateWorlds, TellAnEntityLessAmongEqualNames)
{
    AddChain(first, L"x", 3, 1.0);
    AddChain(second, L"u", 3, 1.0);
    const auto spare = first.Add<KARMPBody>(L"", L"spare");
    const auto joint = first.Join(L"", L"spare joint", first.Ground(), spare);
    spare->SetMass(7.0);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences), (Kinds{DifferenceKind::Removed, DifferenceKind::Removed}));
    EXPECT_EQ(differences[0].before.get(), spare.get());
    EXPECT_EQ(differences[1].before.get(), joint.get());
}

TEST_F(SeparateWorlds, HaveTheSameGlobalEntitiesWhateverTheirNames)
{
    QOBSharedHandle<KARMPVariable> time;
    second.world->GetGlobalTime(time);
    time->setEntityName(L"t");
    time->SetValue(2.0);
    EXPECT_EQ(CompareKinds(), (Kinds{DifferenceKind::Renamed, DifferenceKind::Changed}));
}

TEST_F(SeparateWorlds, MatchChangedEntitiesOfOneNameWhereOneWasAdded)
{
    for (const double mass : {1.0, 2.0})
        first.Add<KARMPBody>(L"Rod", std::to_wstring(mass))->SetMass(mass);
    for (const double mass : {9.0, 2.5, 1.5})
        second.Add<KARMPBody>(L"Rod", std::to_wstring(mass))->SetMass(mass);
    const auto differences = Compare();
    ASSERT_EQ(KindsOf(differences),
              (Kinds{DifferenceKind::Changed, DifferenceKind::Changed, DifferenceKind::Added}));
    EXPECT_EQ(differences[0].oldValue, Value(1.0));
    EXPECT_EQ(differences[0].newValue, Value(1.5));
}

TEST_F(SeparateWorlds, TellAnotherNameByTheLinks)
{
    first.Join(L"A", L"1", first.Ground(), first.Add<KARMPBody>(L"Rod", L"2"));
    const auto link = second.Add<KARMPBody>(L"Link", L"4");
    second.Join(L"A", L"3", second.Ground(), link);
    EXPECT_EQ(CompareKinds(), Kinds{DifferenceKind::Renamed});
    link->SetMass(2.0);
    EXPECT_EQ(CompareKinds(), (Kinds{DifferenceKind::Renamed, DifferenceKind::Changed}));
}

} // namespace

} // namespace karmp::documents
