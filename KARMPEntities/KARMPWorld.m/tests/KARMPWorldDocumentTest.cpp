#include "KARMPWorldDocument.h"
#include "KARMPAxisSystem.h"
#include "ModelObject.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestEntity.h"
#include "TestSerializer.h"
#include "WorldTesting.h"

#include <cstdlib>

namespace {

class WorldDocument : public WorldFixture
{
protected:
    template <class T>
    QOBSharedHandle<T> add(const std::wstring& identifier)
    {
        const auto entity = TestOf<T>::create(identifier);
        EXPECT_EQ(world->Add(entity), KARSuccess);
        return entity;
    }
    // A registry's element of a document that is being made.
    TestDeserializer& registry(std::wstring_view name) { return worldElement.Add(name); }
    static TestDeserializer& entity(TestDeserializer& registry, std::wstring_view element,
                                    std::wstring_view identifier)
    {
        return registry.Add(element)
            .Attribute(L"id", identifier)
            .Attribute(L"name", L"")
            .Attribute(L"isActive", L"yes");
    }
    KARStatus read() { return world->Deserialize(&document); }

    const WorldTestClasses classes;
    TestSerializer written;
    TestDeserializer document;
    TestDeserializer& worldElement = document.Add(L"World");
};

// A serializer that notes what each of its elements held each time its children were complete.
class CompletionNoter final : public KARMPSerializer
{
public:
    explicit CompletionNoter(std::vector<std::wstring>& notes) : m_notes(notes) {}
    KARStatus Render(std::wstring& /*text*/) const override { return KARFailure; }
    KARStatus Save(const char* /*path*/) const override { return KARFailure; }
    void ChildrenComplete() override
    {
        m_notes.push_back(std::wstring(GetId()) + L' ' + std::to_wstring(GetElementCount()));
    }

private:
    KARMPSerializer* CreateChildElement() override { return new CompletionNoter(m_notes); }

    std::vector<std::wstring>& m_notes;
};

using WorldWriter = WorldDocument;
using WorldReader = WorldDocument;
using WorldRoundTrip = WorldDocument;

std::vector<std::wstring> ChildrenOf(const TestSerializer& element)
{
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < element.GetElementCount(); ++i)
        names.emplace_back(element.Child(i).GetId());
    return names;
}

TEST_F(WorldWriter, FailsWithoutASerializer)
{
    EXPECT_EQ(world->Serialize(nullptr), KARFailure);
}

TEST_F(WorldWriter, WritesAFrameAndThreeRegistriesForANewWorld)
{
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    EXPECT_EQ(ChildrenOf(written), Identifiers{L"World"});
    const TestSerializer& element = written.Child(0);
    EXPECT_EQ(ChildrenOf(element), (Identifiers{L"Origin", L"Size", L"Gravity", L"Globals",
                                                L"Bodies", L"Geometries", L"Variables"}));
    ASSERT_EQ(element.GetAttributeCount(), 2U);
    EXPECT_EQ(element.GetAttributeId(0), L"linear_tolerance");
    EXPECT_EQ(element.GetAttributeValued(0), 0.001);
    EXPECT_EQ(element.GetAttributeId(1), L"angular_tolerance");
    EXPECT_EQ(element.GetAttributeValued(1), 1e-09);
    EXPECT_EQ(ChildrenOf(element.Child(4)), Identifiers{L"Body"});
    EXPECT_EQ(ChildrenOf(element.Child(5)), Identifiers{L"AxisSystem"});
    EXPECT_EQ(ChildrenOf(element.Child(6)), Identifiers{L"Variable"});
}

TEST_F(WorldWriter, TellsWhenTheElementsAreComplete)
{
    add<KARMPBody>(L"a");
    add<KARMPBody>(L"b");
    WorldTestScript::Current().failing = L"a";
    std::vector<std::wstring> notes;
    CompletionNoter root(notes);
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(notes, (Identifiers{L"World 4", L"Bodies 1", L"Bodies 2", L"Bodies 3", L"World 5",
                                  L"Geometries 1", L"World 6", L"Variables 1", L"World 7"}));
}

TEST_F(WorldWriter, WritesTheSettings)
{
    world->SetOrigin({1, 2, 3});
    world->SetSize(4, 5, 6);
    world->SetGravity({7, 8, 9});
    world->Serialize(&written);
    const TestSerializer& element = written.Child(0);
    EXPECT_EQ(ChildrenOf(element.Child(0)), (Identifiers{L"Ox", L"Oy", L"Oz"}));
    EXPECT_EQ(ChildrenOf(element.Child(1)), (Identifiers{L"SizeX", L"SizeY", L"SizeZ"}));
    EXPECT_EQ(ChildrenOf(element.Child(2)), (Identifiers{L"Gx", L"Gy", L"Gz"}));
    double expected = 0;
    for (std::size_t group = 0; group < 3; ++group)
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_EQ(element.Child(group).Child(i).GetValued(), ++expected);
}

TEST_F(WorldWriter, NamesTheGlobals)
{
    QOBSharedHandle<KARMPBody> body;
    world->GetGlobalBody(body);
    world->Serialize(&written);
    EXPECT_EQ(ChildrenOf(*written.Find(L"World/Globals")),
              (Identifiers{L"GlobalBody", L"GlobalAxisSystem", L"GlobalTime"}));
    EXPECT_EQ(written.Text(L"World/Globals/GlobalBody/@id"), identifierOf(*body));
    EXPECT_EQ(written.Text(L"World/Globals/GlobalBody/@name"), L"GlobalBody");
    EXPECT_EQ(written.Text(L"World/Globals/GlobalAxisSystem/@name"), L"GlobalAxisSystem");
    EXPECT_EQ(written.Text(L"World/Globals/GlobalTime/@name"), L"GlobalTime");
    EXPECT_EQ(written.Text(L"World/Bodies/Body/@id"), identifierOf(*body));
}

TEST_F(WorldWriter, LeavesAGlobalThatIsNullWithoutAttributes)
{
    world->SetGlobalAxisSystem(nullptr);
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(written.Count(L"World/Globals/GlobalAxisSystem"), 1U);
    EXPECT_FALSE(written.Has(L"World/Globals/GlobalAxisSystem/@id"));
    EXPECT_TRUE(written.Has(L"World/Globals/GlobalTime/@id"));
}

TEST_F(WorldWriter, WritesTheRegistriesInTheOrderOfTheDocument)
{
    world->EmptyWorld();
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        add<T>(kar::ToWide(T::ClassName()));
    });
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    const std::vector<std::pair<std::wstring, std::wstring>> expected{
        {L"Bodies", L"Body"},
        {L"Shapes", L"Shape"},
        {L"Joints", L"Joint"},
        {L"Constraints", L"Constraint"},
        {L"Geometries", L"Geometry"},
        {L"Variables", L"Variable"},
        {L"Values", L"Value"},
        {L"Actuators", L"Actuator"},
        {L"Sensors", L"Sensor"},
        {L"Materials", L"Material"},
        {L"Connectors", L"Connector"},
        {L"Interactions", L"Interaction"},
        {L"Attributes", L"Attribute"},
        {L"Supports", L"Support"},
        {L"DebugEntities", L"DebugEntity"},
        {L"InitialConditions", L"InitialCondition"},
        {L"AnalysisCases", L"AnalysisCase"},
        {L"AnalysisSteps", L"AnalysisStep"},
        {L"GenericEntities", L"GenericEntity"},
    };
    const TestSerializer& element = written.Child(0);
    constexpr std::size_t First = 4;
    ASSERT_EQ(element.GetElementCount(), First + expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const TestSerializer& registry = element.Child(First + i);
        EXPECT_EQ(registry.GetId(), expected[i].first);
        EXPECT_EQ(ChildrenOf(registry), Identifiers{L"Test" + expected[i].second});
        EXPECT_EQ(registry.Child(0).GetAttributeValues(0), L"KARMP" + expected[i].second);
    }
}

TEST_F(WorldWriter, WritesTheEntitiesInTheOrderOfTheirRegistry)
{
    for (const wchar_t* identifier : {L"z", L"a", L"m"})
        add<KARMPSupport>(identifier);
    const auto twice = TestOf<KARMPSupport>::create(L"twice");
    world->Add(twice);
    world->Add(WorldTestKey::Make(), KARBaseUnknown_var(), twice);
    world->Serialize(&written);
    const TestSerializer* supports = written.Find(L"World/Supports");
    Identifiers identifiers;
    for (std::size_t i = 0; i < supports->GetElementCount(); ++i)
        identifiers.emplace_back(supports->Child(i).GetAttributeValues(0));
    EXPECT_EQ(identifiers, (Identifiers{L"z", L"a", L"m", L"twice", L"twice"}));
}

TEST_F(WorldWriter, ReportsAnEntityThatFailsAndWritesTheOthers)
{
    for (const wchar_t* identifier : {L"a", L"b", L"c"})
        add<KARMPSupport>(identifier);
    WorldTestScript::Current().failing = L"b";
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    ExpectReports(1);
    EXPECT_TRUE(written.Has(L"World/Supports/TestSupport[2]/@id"));
}

// The tree reports a node that it cannot create, and once more when the node was to have a value.
TEST_F(WorldWriter, GoesOnWhenAnElementOfTheFrameCannotBeAdded)
{
    world->EmptyWorld();
    const std::vector<std::pair<std::wstring, std::size_t>> reports{
        {L"World", 1},
        {L"World/Origin", 1},
        {L"World/Origin/Ox", 2},
        {L"World/Origin/Oy", 2},
        {L"World/Origin/Oz", 2},
        {L"World/Size", 1},
        {L"World/Size/SizeX", 2},
        {L"World/Size/SizeY", 2},
        {L"World/Size/SizeZ", 2},
        {L"World/Gravity", 1},
        {L"World/Gravity/Gx", 2},
        {L"World/Gravity/Gy", 2},
        {L"World/Gravity/Gz", 2},
        {L"World/Globals", 2},
        {L"World/Globals/GlobalBody", 2},
        {L"World/Globals/GlobalAxisSystem", 2},
        {L"World/Globals/GlobalTime", 2},
        {L"World/Supports", 2},
        {L"World/Supports/TestSupport", 3},
    };
    add<KARMPSupport>(L"S");
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(world->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
            std::size_t expected = 0;
            if (failing > 0 && failing <= reports.size()) {
                SCOPED_TRACE(failing);
                EXPECT_FALSE(root.Has(reports[failing - 1].first));
                expected = reports[failing - 1].second;
                if (failing > 1)
                    EXPECT_EQ(root.Has(L"World/Supports"), failing != 18);
            }
            ExpectReports(expected);
        });
    EXPECT_EQ(creations, reports.size());
}

TEST_F(WorldReader, FailsWithoutADocumentAndTouchesNothing)
{
    EXPECT_EQ(world->Deserialize(nullptr), KARFailure);
    EXPECT_EQ(world->GetBodyCount(), 1);
}

TEST_F(WorldReader, FailsWithoutAWorldButHasDroppedItsGlobals)
{
    TestDeserializer empty;
    EXPECT_EQ(world->Deserialize(&empty), KARFailure);
    EXPECT_EQ(world->GetBodyCount(), 0);
    EXPECT_EQ(world->Count<KARMPGeometry>(), 0);
    EXPECT_EQ(world->Count<KARMPVariable>(), 0);
    QOBSharedHandle<KARMPBody> body;
    world->GetGlobalBody(body);
    EXPECT_TRUE(body);
}

TEST_F(WorldReader, ReportsAGlobalTimeThatIsNull)
{
    world->SetGlobalBody(nullptr);
    world->SetGlobalAxisSystem(nullptr);
    world->SetGlobalTime(nullptr);
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(1);
}

TEST_F(WorldReader, KeepsTheSettingsThatTheDocumentDoesNotTell)
{
    world->SetLinearTolerance(1);
    world->SetAngularTolerance(2);
    world->SetOrigin({1, 2, 3});
    world->SetSize(4, 5, 6);
    world->SetGravity({7, 8, 9});
    EXPECT_EQ(read(), KARSuccess);
    EXPECT_EQ(world->GetLinearTolerance(), 1);
    EXPECT_EQ(world->GetAngularTolerance(), 2);
    KARMathPoint origin;
    world->GetOrigin(origin);
    EXPECT_EQ(origin, KARMathPoint(1, 2, 3));
    double x = 0;
    double y = 0;
    double z = 0;
    world->GetSize(x, y, z);
    EXPECT_EQ((std::array{x, y, z}), (std::array{4.0, 5.0, 6.0}));
    KARMathVector gravity;
    world->GetGravity(gravity);
    EXPECT_EQ(gravity, KARMathVector(7, 8, 9));
}

TEST_F(WorldReader, TakesAMissingComponentAsZero)
{
    world->SetOrigin({1, 2, 3});
    world->SetSize(4, 5, 6);
    world->SetGravity({7, 8, 9});
    worldElement.Add(L"Origin").Leaf(L"Ox", 10.0).Leaf(L"Oy", 20.0);
    worldElement.Add(L"Size").Leaf(L"SizeY", 50.0);
    worldElement.Add(L"Gravity");
    EXPECT_EQ(read(), KARSuccess);
    KARMathPoint origin;
    world->GetOrigin(origin);
    EXPECT_EQ(origin, KARMathPoint(10, 20, 0));
    double x = 0;
    double y = 0;
    double z = 0;
    world->GetSize(x, y, z);
    EXPECT_EQ((std::array{x, y, z}), (std::array{0.0, 50.0, 0.0}));
    KARMathVector gravity;
    world->GetGravity(gravity);
    EXPECT_EQ(gravity, KARMathVector());
}

TEST_F(WorldReader, FilesEveryFamilyByTheClassOfTheEntity)
{
    // The place in the document does not matter: all stand among the joints.
    TestDeserializer& joints = registry(L"Joints");
    karmp::Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        entity(joints, TestOf<T>::Element(), kar::ToWide(T::ClassName()));
    });
    EXPECT_EQ(read(), KARSuccess);
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        EXPECT_EQ(identifiersIn<T>(*world), Identifiers{kar::ToWide(T::ClassName())});
    });
    EXPECT_EQ(basicWorld->getLogicalChildCount(), 19U);
}

TEST_F(WorldReader, ReadsEveryRegistryOfTheDocument)
{
    karmp::ForEachRegistryElement([this](auto element) {
        using T = typename decltype(element)::Type;
        entity(registry(element.name), TestOf<T>::Element(), kar::ToWide(T::ClassName()));
    });
    EXPECT_EQ(read(), KARSuccess);
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        EXPECT_EQ(identifiersIn<T>(*world), Identifiers{kar::ToWide(T::ClassName())});
    });
}

TEST_F(WorldReader, DropsAnEntityOfNoFamily)
{
    class Loose : public TestEntity
    {
    public:
        Loose() = default;
    };
    const KARMPGenericFactory<Loose> factory("KARMPTestLoose");
    entity(registry(L"Bodies"), L"TestLoose", L"L");
    EXPECT_EQ(read(), KARSuccess);
    karmp::Families::ForEach(
        [this](auto family) { EXPECT_EQ(world->Count<typename decltype(family)::Type>(), 0); });
    EXPECT_EQ(basicWorld->getLogicalChildCount(), 1U);
}

TEST_F(WorldReader, FilesInTheOrderOfTheIdentifiersAsTexts)
{
    TestDeserializer& supports = registry(L"Supports");
    for (const wchar_t* identifier : {L"9", L"10", L"b", L"B", L""})
        entity(supports, L"TestSupport", identifier);
    EXPECT_EQ(read(), KARSuccess);
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), (Identifiers{L"", L"10", L"9", L"B", L"b"}));
}

// Two kinds of element in one registry: by name they stand in another order than in the document.
TEST_F(WorldReader, CreatesAndReadsARegistryByElementName)
{
    Identifiers order;
    WorldTestScript::Current().onRead = [&](KARMPEntity& e) {
        order.push_back(kar::ToWide(e.getClassName()));
    };
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"TestSupport", L"1");
    entity(supports, L"TestAttribute", L"2");
    EXPECT_EQ(read(), KARSuccess);
    EXPECT_EQ(order, (Identifiers{L"KARMPAttribute", L"KARMPSupport"}));
}

TEST_F(WorldReader, PlacesAllEntitiesBeforeAnyReadsAndListsThemAfterwards)
{
    int reads = 0;
    WorldTestScript::Current().onRead = [&](KARMPEntity& e) {
        ++reads;
        QOBSharedHandle<KARMPWorld> found;
        EXPECT_EQ(e.GetWorld(found), KARSuccess);
        EXPECT_EQ(found, world);
        EXPECT_EQ(basicWorld->getLogicalChildCount(), 2U);
        EXPECT_EQ(world->Count<KARMPSupport>() + world->Count<KARMPMaterial>(), 0);
    };
    entity(registry(L"Materials"), L"TestMaterial", L"M");
    entity(registry(L"Supports"), L"TestSupport", L"S");
    EXPECT_EQ(read(), KARSuccess);
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(world->Count<KARMPSupport>() + world->Count<KARMPMaterial>(), 2);
}

TEST_F(WorldReader, ResolvesReferencesToWhateverPlaceOfTheDocument)
{
    Identifiers resolved;
    WorldTestScript::Current().onOther = [&](const std::wstring& reader, const KARMPEntity* other) {
        resolved.push_back(reader + L"->" +
                           (other != nullptr ? kar::ToWide(other->getClassName()) : L"nothing"));
    };
    TestDeserializer& materials = registry(L"Materials");
    entity(materials, L"TestMaterial", L"M1").Reference(L"Other", L"S1");
    entity(materials, L"TestMaterial", L"M2").Reference(L"Other", L"M2");
    entity(registry(L"Supports"), L"TestSupport", L"S1").Reference(L"Other", L"unknown");
    entity(registry(L"Supports"), L"TestSupport", L"S2");
    EXPECT_EQ(read(), KARSuccess);
    // Of two registries of one kind the first is read.
    EXPECT_EQ(resolved, (Identifiers{L"M1->KARMPSupport", L"M2->KARMPMaterial", L"S1->nothing"}));
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), Identifiers{L"S1"});
}

TEST_F(WorldReader, GivesNoKeys)
{
    entity(registry(L"Supports"), L"TestSupport", L"S");
    read();
    QOBSharedHandle<KARMPSupport> support;
    EXPECT_EQ(world->Get(0, support), KARSuccess);
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(world->GetKeys(support, first, second), KARUnchanged);
}

TEST_F(WorldReader, AddsToWhatTheWorldListsAndKeepsTheRest)
{
    add<KARMPSupport>(L"old");
    entity(registry(L"Supports"), L"TestSupport", L"new");
    read();
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), (Identifiers{L"old", L"new"}));
}

TEST_F(WorldReader, SkipsAnEntityWithoutAnIdentifier)
{
    TestDeserializer& supports = registry(L"Supports");
    supports.Add(L"TestSupport");
    entity(supports, L"TestSupport", L"S");
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(2); // when it is made and when it is read
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), Identifiers{L"S"});
    EXPECT_EQ(basicWorld->getLogicalChildCount(), 1U);
}

TEST_F(WorldReader, SkipsAnEntityOfAnUnknownClass)
{
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"Unknown", L"U");
    entity(supports, L"TestSupport", L"S");
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(3); // by the factory, when it is made and when it is read
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), Identifiers{L"S"});
}

TEST_F(WorldReader, LetsTheLaterOfTwoEntitiesWithOneIdentifierReadBothElements)
{
    Identifiers order;
    WorldTestScript::Current().onRead = [&](KARMPEntity& e) {
        order.push_back(kar::ToWide(e.getClassName()));
    };
    entity(registry(L"Materials"), L"TestMaterial", L"same");
    entity(registry(L"Supports"), L"TestSupport", L"same");
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(1); // by the entity, which has its identifier when it reads the second element
    EXPECT_EQ(order, (Identifiers{L"KARMPSupport", L"KARMPSupport"}));
    EXPECT_EQ(world->Count<KARMPMaterial>(), 0);
    EXPECT_EQ(world->Count<KARMPSupport>(), 1);
    EXPECT_EQ(basicWorld->getLogicalChildCount(), 2U);
}

TEST_F(WorldReader, ReportsAnEntityThatFailsToReadAndFilesItAllTheSame)
{
    WorldTestScript::Current().failing = L"a";
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"TestSupport", L"a");
    entity(supports, L"TestSupport", L"b");
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), (Identifiers{L"a", L"b"}));
}

TEST_F(WorldReader, ReportsEntitiesThatCannotBePlaced)
{
    const auto unbound = KARMPWorld::create(nullptr);
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"TestSupport", L"a");
    entity(supports, L"TestSupport", L"b");
    EXPECT_EQ(unbound->Deserialize(&document), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(unbound->Count<KARMPSupport>(), 2);
}

TEST_F(WorldReader, TakesItsGlobalsFromTheDocument)
{
    QOBSharedHandle<KARMPAxisSystem> former;
    world->GetGlobalAxisSystem(former);
    entity(registry(L"Bodies"), L"TestBody", L"B");
    entity(registry(L"Variables"), L"TestVariable", L"V");
    worldElement.Add(L"Globals")
        .Reference(L"GlobalBody", L"B")
        .Reference(L"GlobalAxisSystem", L"unknown")
        .Reference(L"GlobalTime", L"V");
    EXPECT_EQ(read(), KARSuccess);
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    QOBSharedHandle<KARMPVariable> time;
    world->GetGlobalBody(body);
    world->GetGlobalAxisSystem(axisSystem);
    world->GetGlobalTime(time);
    EXPECT_EQ(identifierOf(*body), L"B");
    EXPECT_EQ(identifierOf(*time), L"V");
    EXPECT_EQ(axisSystem, former);
    EXPECT_EQ(world->Count<KARMPGeometry>(), 0);
}

TEST_F(WorldReader, ReportsAGlobalWithoutAnIdentifierAndReadsTheOthers)
{
    QOBSharedHandle<KARMPBody> former;
    world->GetGlobalBody(former);
    entity(registry(L"Variables"), L"TestVariable", L"V");
    TestDeserializer& globals = worldElement.Add(L"Globals");
    globals.Add(L"GlobalBody");
    globals.Reference(L"GlobalTime", L"V");
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(1);
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPVariable> time;
    world->GetGlobalBody(body);
    world->GetGlobalTime(time);
    EXPECT_EQ(body, former);
    EXPECT_EQ(identifierOf(*time), L"V");
}

TEST_F(WorldReader, ThrowsWhenAGlobalIsOfAnotherClass)
{
    entity(registry(L"Variables"), L"TestVariable", L"V");
    worldElement.Add(L"Globals").Reference(L"GlobalBody", L"V");
    EXPECT_THROW(read(), QOBEInvalidCast);
    EXPECT_EQ(world->Count<KARMPVariable>(), 1);
}

TEST_F(WorldRoundTrip, GivesANewWorldTheGlobalsThatWereRead)
{
    world->Serialize(&written);
    for (const bool asText : {false, true}) {
        const auto otherBasic = QOBBasicWorld::create(L"other");
        const auto other = KARMPWorld::create(otherBasic);
        QOBSharedHandle<KARMPBody> first;
        QOBSharedHandle<KARMPAxisSystem> firstAxisSystem;
        other->GetGlobalBody(first);
        other->GetGlobalAxisSystem(firstAxisSystem);
        const auto tree = TestDeserializer::From(written, {.asText = asText});
        EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);

        EXPECT_EQ(other->GetBodyCount(), 1);
        EXPECT_EQ(other->Count<KARMPGeometry>(), 1);
        EXPECT_EQ(other->Count<KARMPVariable>(), 1);
        QOBSharedHandle<KARMPBody> global;
        QOBSharedHandle<KARMPBody> listed;
        other->GetGlobalBody(global);
        other->Get(0, listed);
        EXPECT_EQ(global, listed);
        EXPECT_NE(global, first);
        EXPECT_TRUE(otherBasic->hasLogicalChild(global));
        QOBSharedHandle<KARMPAxisSystem> axisSystem;
        other->GetGlobalAxisSystem(axisSystem);
        EXPECT_NE(axisSystem, firstAxisSystem);
        EXPECT_EQ(global->GetGeometryCount(), 1);
        EXPECT_TRUE(global->IsFixed());
        QOBSharedHandle<KARMPVariable> time;
        other->GetGlobalTime(time);
        EXPECT_EQ(time->getEntityName(), L"GlobalTime");
    }
}

TEST_F(WorldRoundTrip, WritesTheSameAgain)
{
    world->SetLinearTolerance(0.25);
    world->SetAngularTolerance(0.5);
    world->SetOrigin({1, 2, 3});
    world->SetSize(4, 5, 6);
    world->SetGravity({7, 8, 9});
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        add<T>(L"x" + kar::ToWide(T::ClassName()));
    });
    world->Serialize(&written);
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    const auto tree = TestDeserializer::From(written);
    EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);
    TestSerializer again;
    EXPECT_EQ(other->Serialize(&again), KARSuccess);
    EXPECT_EQ(again.Dump(), written.Dump());
}

TEST_F(WorldRoundTrip, KeepsWhatNoDocumentHolds)
{
    QOBSharedHandle<KARMPBody> ground = TestOf<KARMPBody>::create(L"ground");
    ModelObject loader;
    world->SetGroundBody(ground);
    world->SetLengthUnit(KARMPUnit::Inch);
    world->SetLoader(&loader, 5);
    world->GetEntityId();
    for (const wchar_t* identifier : {L"a", L"b", L"c"})
        entity(registry(L"Supports"), L"TestSupport", identifier);
    read();
    QOBSharedHandle<KARMPBody> body;
    world->GetGroundBody(body);
    EXPECT_EQ(body, ground);
    KARMPUnit::Enum unit{};
    world->GetLengthUnit(unit);
    EXPECT_EQ(unit, KARMPUnit::Inch);
    KARBaseUnknown* got = nullptr;
    int kind = 0;
    EXPECT_EQ(world->GetLoader(got, kind), KARSuccess);
    EXPECT_EQ(kind, 5);
    EXPECT_EQ(world->GetEntityId(), 4U);
}

// Quadratic work would show here.
TEST_F(WorldRoundTrip, StaysFastWhenTheWorldIsLarge)
{
    constexpr int Entities = 20'000;
    for (int i = 0; i < Entities; ++i)
        add<KARMPSupport>(std::to_wstring(i));
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    const auto tree = TestDeserializer::From(written);
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);
    EXPECT_EQ(other->Count<KARMPSupport>(), Entities);
}

using WorldWriterProcess = WorldDocument;

TEST_F(WorldWriterProcess, NamesNoGlobalsWhereReferencesBearNoNames)
{
    ASSERT_NE(std::getenv("NO_MP_NAME_FOR_SERIALIZATION"), nullptr);
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    for (const wchar_t* global : {L"GlobalBody", L"GlobalAxisSystem", L"GlobalTime"}) {
        const std::wstring path = L"World/Globals/" + std::wstring(global);
        EXPECT_TRUE(written.Has(path + L"/@id"));
        EXPECT_FALSE(written.Has(path + L"/@name"));
    }
    // An entity's own name is there all the same, and empty.
    ASSERT_TRUE(written.Has(L"World/Bodies/Body/@name"));
    EXPECT_EQ(written.Text(L"World/Bodies/Body/@name"), L"");
}

using WorldReaderProcess = WorldDocument;

TEST_F(WorldReaderProcess, FilesInTheOrderOfTheDocumentWhenTheVariableIsSet)
{
    ASSERT_NE(std::getenv("ORDERED_DESERIALIZATION"), nullptr);
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"TestSupport", L"9");
    entity(supports, L"TestAttribute", L"a");
    entity(supports, L"TestSupport", L"10");
    entity(supports, L"TestAttribute", L"A");
    entity(registry(L"Bodies"), L"TestSupport", L"B");
    EXPECT_EQ(read(), KARSuccess);
    // Bodies come before supports.
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), (Identifiers{L"B", L"9", L"10"}));
    EXPECT_EQ(identifiersIn<KARMPAttribute>(*world), (Identifiers{L"a", L"A"}));
}

// Two kinds of element of one family: by name they stand in another order than in the document.
TEST_F(WorldReaderProcess, FilesTheElementsOfARegistryAcrossTheirNames)
{
    ASSERT_NE(std::getenv("ORDERED_DESERIALIZATION"), nullptr);
    const KARMPGenericFactory<TestOf<KARMPSupport>> factory("KARMPTestBase");
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"TestSupport", L"9");
    entity(supports, L"TestBase", L"8");
    entity(supports, L"TestSupport", L"7");
    EXPECT_EQ(read(), KARSuccess);
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), (Identifiers{L"9", L"8", L"7"}));
}

TEST_F(WorldReaderProcess, SkipsWhatIsDamagedInTheOrderOfTheDocument)
{
    ASSERT_NE(std::getenv("ORDERED_DESERIALIZATION"), nullptr);
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"Unknown", L"U");
    entity(supports, L"TestSupport", L"same");
    entity(supports, L"TestSupport", L"same");
    entity(supports, L"TestSupport", L"a");
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(4);
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), (Identifiers{L"same", L"a"}));

    supports.Add(L"TestSupport");
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    EXPECT_EQ(other->Deserialize(&document), KARSuccess);
    ExpectReports(7); // when it is made, when it is read and when it is filed
    EXPECT_EQ(other->Count<KARMPSupport>(), 2);
}

} // namespace
