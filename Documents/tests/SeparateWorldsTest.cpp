// What differs between worlds that were made separately, so that identifiers tell nothing.
#include "BuiltWorlds.h"
#include "KARMPAxisSystem.h"
#include "KARMPPoint.h"
#include "KARMPVariable.h"

#include <array>
#include <set>
#include <utility>
#include <variant>

namespace karmp::documents {

namespace {

/// Two worlds whose identifiers have nothing in common.
class SeparateWorlds : public WorldDifference
{
protected:
    SeparateWorlds()
    {
        first = Built(L"a");
        second = Built(L"b");
    }

    /// Bodies without names, each at the place of its number in the order of making.
    template <class PlaceOf>
    static std::vector<QOBSharedHandle<KARMPBody>> AddBodies(Built& built, std::size_t count,
                                                             PlaceOf placeOf)
    {
        std::vector<QOBSharedHandle<KARMPBody>> bodies(count);
        for (std::size_t i = 0; i < count; ++i)
            bodies[placeOf(i)] = built.Add<KARMPBody>(L"", L"B" + std::to_wstring(i));
        return bodies;
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

// The globals of documents have the same identifiers, whoever has made them.
TEST_F(SeparateWorlds, TellAnotherNameByTheLinksWhereOnlyGlobalsHaveTheirIdentifiers)
{
    for (const Built* const built : {&first, &second}) {
        QOBSharedHandle<KARMPAxisSystem> axes;
        QOBSharedHandle<KARMPVariable> time;
        built->world->GetGlobalAxisSystem(axes);
        built->world->GetGlobalTime(time);
        built->Ground()->SetIdentifier(L"GlobalBody");
        axes->SetIdentifier(L"GlobalAxisSystem");
        time->SetIdentifier(L"GlobalTime");
    }
    first.Join(L"A", L"1", first.Ground(), first.Add<KARMPBody>(L"Rod", L"2"));
    second.Join(L"A", L"3", second.Ground(), second.Add<KARMPBody>(L"Link", L"4"));
    EXPECT_EQ(CompareKinds(), Kinds{DifferenceKind::Renamed});
}

TEST_F(SeparateWorlds, TellWhatHasNoNameApartByContentWhereAnEntityIsLacking)
{
    constexpr int count = 8;
    constexpr int lacking = 4;
    for (Built* const built : {&first, &second}) {
        QOBSharedHandle<KARMPBody> last;
        for (int i = 0; i < count; ++i) {
            if (built == &second && i == lacking) {
                last = nullptr;
                continue;
            }
            const auto body = built->Add<KARMPBody>(L"", L"B" + std::to_wstring(i));
            body->SetMass(i + 1.0);
            if (last)
                built->Join(L"", L"J" + std::to_wstring(i), last, body);
            last = body;
        }
    }
    const auto differences = Compare();
    EXPECT_EQ(KindsOf(differences), Kinds(3, DifferenceKind::Removed)) << TextOf(differences);
}

TEST_F(SeparateWorlds, MatchManyChangedEntitiesOfOneNeighbour)
{
    constexpr std::size_t count = 20;
    for (Built* const built : {&first, &second}) {
        const auto hub = built->Add<KARMPBody>(L"Hub");
        const std::size_t more = built == &first ? 0 : 1;
        for (std::size_t i = 0; i < count + more; ++i) {
            const auto body = built->Add<KARMPBody>(L"", std::to_wstring(i));
            body->SetMass(static_cast<double>(i) + (more > 0 ? 0.5 : 0.0));
            hub->AddImpactedChildBody(body);
        }
    }
    Kinds expected(count, DifferenceKind::Changed);
    expected.insert(expected.begin(), DifferenceKind::LinkGained);
    expected.push_back(DifferenceKind::Added);
    EXPECT_EQ(CompareKinds(), expected);
}

TEST_F(SeparateWorlds, MatchChangedEntitiesWhateverTheirOrder)
{
    const auto compare = [](const std::vector<double>& masses, const std::vector<double>& others) {
        std::array<Built, 2> built{Built(L"a"), Built(L"b")};
        for (std::size_t side = 0; side < 2; ++side) {
            const auto hub = built[side].Add<KARMPBody>(L"Hub");
            for (const double mass : side == 0 ? masses : others) {
                const auto body = built[side].Add<KARMPBody>(L"", std::to_wstring(mass));
                body->SetMass(mass);
                hub->AddImpactedChildBody(body);
            }
        }
        std::set<std::pair<double, double>> changes;
        for (const Difference& difference : FindDifferences(*built[0].world, *built[1].world))
            if (difference.kind == DifferenceKind::Changed)
                changes.emplace(std::get<double>(difference.oldValue),
                                std::get<double>(difference.newValue));
        EXPECT_EQ(changes.size(), masses.size());
        return changes;
    };
    const auto expected = compare({1.0, 2.0, 3.0}, {5.0, 6.0, 7.0, 8.0});
    EXPECT_EQ(compare({3.0, 1.0, 2.0}, {7.0, 8.0, 6.0, 5.0}), expected);
    EXPECT_EQ(compare({2.0, 3.0, 1.0}, {8.0, 5.0, 7.0, 6.0}), expected);
}

/// Numbers that stand in another order in the second world.
constexpr std::size_t Shuffled(std::size_t number, std::size_t count)
{
    return (number * 7 + 3) % count;
}

// Only the parents and children of joints tell the ends of a chain apart.
TEST_F(SeparateWorlds, AreEqualWhereAlikeBodiesMakeAChain)
{
    constexpr std::size_t count = 60;
    for (Built* const built : {&first, &second}) {
        const auto placeOf = [&](std::size_t number, std::size_t last) {
            return built == &first ? number : last - number;
        };
        std::vector<QOBSharedHandle<KARMPBody>> bodies(count);
        for (std::size_t i = 0; i < count; ++i)
            bodies[placeOf(i, count - 1)] =
                built->Add<KARMPBody>(L"Link", L"B" + std::to_wstring(i));
        for (std::size_t i = 0; i + 1 < count; ++i) {
            const std::size_t place = placeOf(i, count - 2);
            built->Join(L"Pin", L"J" + std::to_wstring(i), bodies[place], bodies[place + 1]);
        }
    }
    EXPECT_EQ(CompareKinds(), Kinds());
}

TEST_F(SeparateWorlds, AreEqualWhereAlikeBodiesMakeARing)
{
    constexpr std::size_t count = 60;
    for (Built* const built : {&first, &second}) {
        const auto placeOf = [&](std::size_t number) {
            return built == &first ? number : Shuffled(number, count);
        };
        const auto bodies = AddBodies(*built, count, placeOf);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t place = placeOf(i);
            built->Join(L"", L"J" + std::to_wstring(i), bodies[place], bodies[(place + 1) % count]);
        }
    }
    EXPECT_EQ(CompareKinds(), Kinds());
}

// The grid and its mirror image are one, so that nothing but a choice tells rows from columns.
TEST_F(SeparateWorlds, AreEqualWhereAlikeBodiesMakeAGrid)
{
    constexpr std::size_t width = 12;
    constexpr std::size_t count = width * width;
    for (Built* const built : {&first, &second}) {
        const auto placeOf = [&](std::size_t number) {
            return built == &first ? number : Shuffled(number, count);
        };
        const auto bodies = AddBodies(*built, count, placeOf);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t place = placeOf(i);
            const std::wstring number = std::to_wstring(i);
            if (place % width + 1 < width)
                built->Join(L"", L"R" + number, bodies[place], bodies[place + 1]);
            if (place + width < count)
                built->Join(L"", L"C" + number, bodies[place], bodies[place + width]);
        }
    }
    EXPECT_EQ(CompareKinds(), Kinds());
}

} // namespace

} // namespace karmp::documents
