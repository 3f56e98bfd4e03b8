#include "WorldDocumentTesting.h"

#include <cstdlib>

namespace {

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

// A support whose writing gives 1.
class PartialSupport final : public TestOf<KARMPSupport>
{
public:
    KARStatus Serialize(KARMPSerializer* serializer) const override
    {
        EXPECT_EQ(TestOf::Serialize(serializer), KARSuccess);
        return KARUnchanged;
    }
};

using WorldWriter = WorldDocument;

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
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
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
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    EXPECT_EQ(ChildrenOf(*written.Find(L"World/Globals")),
              (Identifiers{L"GlobalBody", L"GlobalAxisSystem", L"GlobalTime"}));
    EXPECT_EQ(written.Text(L"World/Globals/GlobalBody/@id"), IdentifierOf(*body));
    EXPECT_EQ(written.Text(L"World/Globals/GlobalBody/@name"), L"GlobalBody");
    EXPECT_EQ(written.Text(L"World/Globals/GlobalAxisSystem/@name"), L"GlobalAxisSystem");
    EXPECT_EQ(written.Text(L"World/Globals/GlobalTime/@name"), L"GlobalTime");
    EXPECT_EQ(written.Text(L"World/Bodies/Body/@id"), IdentifierOf(*body));
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
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
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

TEST_F(WorldWriter, TakesAPositiveStatusOfAnEntityForNoFailure)
{
    world->Add(QOBSharedHandle<KARMPSupport>(new PartialSupport));
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    ExpectReports(0);
    EXPECT_EQ(written.Count(L"World/Supports/TestSupport"), 1U);
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

} // namespace
