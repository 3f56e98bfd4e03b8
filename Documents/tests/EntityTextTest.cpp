// Entities are written by the lists of their contents, without nodes, or by their own operations as
// nodes: both give the same bytes and the same failed checks.
#include "EnvironmentVariable.h"
#include "ExtractionTesting.h"
#include "FilledWorld.h"
#include "KARMPConstraintParameter.h"
#include "KARMPDocumentWriter.h"
#include "KARMPDocuments.h"
#include "KARMPEntities.h"
#include "KARMPStreamedTree.h"
#include "KARMPTestFixture.h"
#include "KARMPWrittenClasses.h"
#include "KARMPXmlRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace karmp::documents {

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

/// Notes the failed checks and keeps them from listeners around it.
class Reports final : private KARMPFailedCheckListener
{
public:
    std::vector<std::pair<std::string, int>> told;

private:
    void OnFailedCheck(const char* file, int line) override { told.emplace_back(file, line); }
};

/// Compares the links that are told of an entity with what its items give.
class LinkObserver final : public EntityObserver
{
public:
    void Note(const KARMPEntity& entity, const WrittenLinks* links) override
    {
        if (links == nullptr)
            return;
        using Link = std::pair<const Item*, const KARMPEntity*>;
        // Those of records are told as well.
        const auto items = LinkItemsOf(entity.getClassInfo());
        std::vector<Link> told;
        for (const WrittenLink& link : *links)
            if (std::any_of(items.begin(), items.end(),
                            [&](const ItemInfo* item) { return item->written == link.item; }))
                told.emplace_back(link.item, link.target);
        std::vector<Link> held;
        ForEachTarget(entity,
                      [&](const ItemInfo& item, const QOBSharedHandle<KARMPEntity>& target) {
                          if (item.IsWrittenFor(entity))
                              held.emplace_back(item.written, target.get());
                      });
        std::sort(told.begin(), told.end());
        std::sort(held.begin(), held.end());
        EXPECT_EQ(told, held) << entity.getClassInfo().getName();
        linkCount += told.size();
    }

    std::size_t linkCount = 0;
};

SaveOptions OptionsOf(std::wstring_view version, Doubles doubles)
{
    SaveOptions options;
    options.version = version;
    options.doubles = doubles;
    options.check = false;
    return options;
}

std::string TextOf(const Diagnostics& diagnostics)
{
    std::string text;
    for (const Diagnostic& item : diagnostics.items)
        text += Format(item) + '\n';
    return text;
}

class EntityTexts : public KARMPTestFixture
{
protected:
    /// Expects the same of both, and gives the text.
    static std::string ExpectSame(const QOBSharedHandle<KARMPWorld>& world,
                                  std::wstring_view version = CurrentVersion,
                                  Doubles doubles = Doubles::Snapped)
    {
        std::string text;
        Diagnostics diagnostics;
        Messages messages(diagnostics, {}, 1);
        const Limits limits;
        const Reports told;
        {
            StreamedTree tree(version, doubles, text, limits, messages);
            EXPECT_EQ(world->Serialize(&tree.Root()), KARSuccess);
            EXPECT_TRUE(tree.Finish());
        }
        KARMPDocumentWriter nodes(version, doubles);
        const Reports toldOfNodes;
        EXPECT_EQ(world->Serialize(&nodes), KARSuccess);
        std::string rendered;
        EXPECT_TRUE(nodes.RenderXml(rendered).items.empty());
        EXPECT_TRUE(text == rendered) << Difference(text, rendered);
        EXPECT_EQ(told.told, toldOfNodes.told);
        return text;
    }

    static std::string Difference(const std::string& text, const std::string& rendered)
    {
        const auto at = std::mismatch(text.begin(), text.end(), rendered.begin(), rendered.end());
        const auto offset = static_cast<std::size_t>(at.first - text.begin());
        const std::size_t from = offset - std::min<std::size_t>(offset, 200);
        return text.substr(from, 300) + "\n--- as nodes:\n" + rendered.substr(from, 300);
    }

    static std::vector<std::filesystem::path> Documents()
    {
        std::vector<std::filesystem::path> paths{KARMP_EVERY_CLASS};
        for (const auto& entry : std::filesystem::directory_iterator(KARMP_EXAMPLE_DOCUMENTS))
            paths.push_back(entry.path());
        return paths;
    }

    const QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"Model");
    const QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(m_basicWorld);

    template <class Family, class T>
    QOBSharedHandle<T> File(const QOBSharedHandle<T>& entity, const std::wstring& identifier)
    {
        entity->SetIdentifier(identifier);
        m_basicWorld->addLogicalChild(entity);
        m_world->Add<Family>(entity);
        return entity;
    }
    QOBSharedHandle<KARMPBody> AddBody(const std::wstring& name)
    {
        return File<KARMPBody>(KARMPBody::create(name), name);
    }
};

/// A body of a caller, whose element holds more; it writes some of it out of order.
class OwnBody : public KARMPBody
{
public:
    static QOBSharedHandle<KARMPBody> Make(const std::wstring& name)
    {
        auto* const body = new OwnBody;
        body->setEntityName(name);
        return QOBSharedHandle<KARMPBody>(body);
    }
    KARStatus Serialize(KARMPSerializer* serializer) const override
    {
        KARMPSerializer* first = nullptr;
        serializer->AddElement(L"First", first);
        const KARStatus status = KARMPBody::Serialize(serializer);
        KARMPSerializer* later = nullptr;
        first->AddElement(L"Later", later, 1.5);
        serializer->AddAttribute(getEntityName(), true);
        return status;
    }
};

/// A parameter that writes itself in its own way.
class OwnParameter : public KARMPConstraintParameter
{
public:
    OwnParameter() { SetInitialized(true); }
    KARStatus Serialize(KARMPSerializer* serializer) const override
    {
        serializer->AddAttribute(L"own", 1);
        return KARMPConstraintParameter::Serialize(serializer);
    }
};

} // namespace

TEST_F(EntityTexts, AreThoseOfNodesForEveryClassAtEveryVersion)
{
    const EnvironmentVariable outputs("MOT_DUMP_OUTPUTS", "1");
    for (const Filling filling : {Filling::Full, Filling::Nothing}) {
        for (const std::string& name : MadeClasses()) {
            SCOPED_TRACE(name);
            const FilledWorld filled(name, filling);
            for (const std::wstring_view version : KnownVersions())
                for (const Doubles doubles : {Doubles::Snapped, Doubles::Exact})
                    ExpectSame(filled.world, version, doubles);
        }
    }
}

TEST_F(EntityTexts, AreThoseOfNodesForEveryDocument)
{
    for (const std::filesystem::path& path : Documents()) {
        SCOPED_TRACE(path.string());
        const LoadResult loaded = LoadFile(path);
        ASSERT_TRUE(loaded.world);
        for (const std::wstring_view version : KnownVersions())
            ExpectSame(loaded.world, version);
    }
}

// The check of a save relies on it.
TEST_F(EntityTexts, TellTheLinksOfTheirEntitiesAtEveryVersion)
{
    const EnvironmentVariable outputs("MOT_DUMP_OUTPUTS", "1");
    LinkObserver observer;
    for (const std::string& name : MadeClasses()) {
        const FilledWorld filled(name, Filling::Full);
        for (const std::wstring_view version : KnownVersions()) {
            SCOPED_TRACE(name + " at " + std::string(version.begin(), version.end()));
            std::string text;
            const Limits limits;
            Diagnostics diagnostics;
            Messages messages(diagnostics, {}, limits.diagnostics);
            StreamedTree tree(version, Doubles::Snapped, text, limits, messages);
            tree.Observe(observer);
            const Reports unheard;
            EXPECT_FALSE(KARFailed(filled.world->Serialize(&tree.Root())));
        }
    }
    EXPECT_GT(observer.linkCount, 1000U);
}

// The others have code of their own or write nothing.
TEST_F(EntityTexts, AreWrittenForNearlyAllClasses)
{
    WrittenClasses classes;
    std::vector<std::string> others;
    for (const std::string& name : MadeClasses()) {
        const FilledWorld filled(name, Filling::Nothing);
        if (classes.ContentOf(*filled.entity, CurrentVersion) == nullptr)
            others.push_back(name);
    }
    EXPECT_EQ(others, (std::vector<std::string>{"KARMPCurve", "KARMPDiagnostic", "KARMPExpression",
                                                "KARMPLinearEquation", "KARMPScrew",
                                                "KARMPSketchFunction", "KARMPSpatialForceActuator",
                                                "KARMPSpatialForceActuator2D", "KARMPSurface"}));
}

TEST_F(EntityTexts, HoldNumbersOfEverySize)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> digits(-1.0, 1.0);
    std::uniform_int_distribution<int> exponents(-16, 20);
    std::vector<double> numbers{0.0,     -0.0,    1.0,       -1.0,        0.1,      1e-12,
                                5e-13,   4.9e-13, 1e-3,      9.99e-4,     999.0,    1000.0,
                                999.999, 1e300,   123456789, 0.1 + 0.2,   1.0 / 3,  1e15,
                                1e16,    1e22,    1e-4,      0.000999999, 999.9999, -1e-3};
    for (int digit = 2; digit < 10; ++digit)
        numbers.push_back(digit * 1e-4);
    for (int count = 0; count < 5000; ++count)
        numbers.push_back(digits(random) * std::pow(10.0, exponents(random)));
    for (int count = 0; count < 5000; ++count)
        numbers.push_back(std::round(digits(random) * 1e6) / 1e6);
    for (std::size_t number = 0; number < numbers.size(); number += 2) {
        const auto point = KARMPPoint::create(L"p");
        point->SetPoint(KARMathPoint(numbers[number], numbers[number + 1], -numbers[number]));
        File<KARMPGeometry>(point, std::to_wstring(number));
    }
    ExpectSame(m_world);
    ExpectSame(m_world, CurrentVersion, Doubles::Exact);
    const EnvironmentVariable precise("SERIALIZATION_PRECISION", "1");
    ExpectSame(m_world);
}

TEST_F(EntityTexts, HoldTextsOfEveryKind)
{
    const std::wstring texts[] = {L"",
                                  L" ",
                                  L"plain text of a name",
                                  L" a blank before",
                                  L"a blank behind ",
                                  L"a & b <c> \"d\" \\ \\x{5C}",
                                  L"seven",
                                  L"sixteen letters!",
                                  L"seventeen letters",
                                  std::wstring(500, L'x'),
                                  std::wstring(40, L'x') + L"\u00E9",
                                  L"\x7F\x80 and a line\nend",
                                  L"\U0001F600 \uFFFE",
                                  L"0123456789abcde\u0100",
                                  L"0123456789abcde\U00010041"};
    int number = 0;
    for (const std::wstring& text : texts) {
        const auto body = AddBody(text + std::to_wstring(++number));
        body->setEntityName(text);
        const auto point = File<KARMPGeometry>(KARMPPoint::create(text), text + L" point");
        point->SetBody(body);
        body->AddGeometry(point);
    }
    ExpectSame(m_world);
}

TEST_F(EntityTexts, TakeWhatACallersClassWritesAmongThem)
{
    const auto first = AddBody(L"first");
    for (const wchar_t* const name : {L"own", L"other"})
        File<KARMPBody>(OwnBody::Make(name), name);
    AddBody(L"last");
    const std::string text = ExpectSame(m_world);
    EXPECT_NE(text.find("<Bodies own=\"true\" other=\"true\">"), std::string::npos) << text;
    EXPECT_NE(text.find("<First><Later>1.5</Later></First>"), std::string::npos) << text;
}

TEST_F(EntityTexts, LeaveParametersToTheirOwnOperations)
{
    const auto constraint = File<KARMPConstraint>(KARMPCoincidence::create(L"c"), L"c");
    EXPECT_EQ(ExpectSame(m_world).find("ConstraintParameters"), std::string::npos);
    constraint->AddConstraintParameter(new OwnParameter);
    EXPECT_NE(ExpectSame(m_world).find("<ConstraintParameters own=\"1\">"), std::string::npos);
}

TEST_F(EntityTexts, AttributesComeBeforeWhatWasWrittenBefore)
{
    const auto body = AddBody(L"body");
    for (int number = 0; number < 3; ++number) {
        const auto parameter =
            File<KARMPAttribute>(KARMPParameter::create(L"p"), L"p" + std::to_wstring(number));
        body->AddParameter(parameter);
    }
    EXPECT_NE(ExpectSame(m_world).find("is_fixed=\"no\">\n    <Parameters>"), std::string::npos);
}

TEST_F(EntityTexts, FailedChecksAreToldOnceEach)
{
    const auto joint = File<KARMPJoint>(KARMPRevolute::create(L"joint"), L"joint");
    const auto spring = File<KARMPConnector>(KARMPLinearSpring::create(L"spring"), L"spring");
    const auto curve = File<KARMPGeometry>(KARMPCurve::create(L"curve"), L"curve");
    const auto value = File<KARMPValue>(KARMPConstant::create(L"value"), L"value");
    ExpectSame(m_world);
    const Reports told;
    ExpectSame(m_world);
    KARMPDocumentWriter nodes;
    ASSERT_EQ(m_world->Serialize(&nodes), KARSuccess);
    EXPECT_FALSE(told.told.empty());
}

TEST_F(EntityTexts, ALimitIsExceededAsByNodes)
{
    for (int count = 0; count < 3; ++count)
        AddBody(L"body" + std::to_wstring(count));
    KARMPDocumentWriter nodes;
    ASSERT_EQ(m_world->Serialize(&nodes), KARSuccess);
    SaveOptions options = OptionsOf(CurrentVersion, Doubles::Snapped);
    const auto expectSame = [&] {
        std::string rendered;
        std::string text;
        EXPECT_EQ(TextOf(SaveText(m_world, text, options)),
                  TextOf(nodes.RenderXml(rendered, options.limits)));
        EXPECT_EQ(text, rendered);
    };
    for (options.limits.depth = 0; options.limits.depth < 40; ++options.limits.depth)
        expectSame();
    options.limits = Limits();
    for (options.limits.nameLength = 0; options.limits.nameLength < 70; ++options.limits.nameLength)
        expectSame();
    options.limits = Limits();
    std::string whole;
    EXPECT_FALSE(SaveText(m_world, whole, options).HasErrors());
    for (const std::size_t size : {whole.size() - 1, whole.size()}) {
        options.limits.bytes = size;
        expectSame();
    }
}

TEST_F(EntityTexts, NumbersThatAreNotFiniteAreToldOfWithTheirPaths)
{
    const auto fill = [](KARMPBody& body) {
        body.SetMass(Infinity);
        body.SetCenterOfGravity(KARMathPoint(0.5, std::nan(""), 0.25));
        KARMathTransformation position;
        position.SetVector(KARMathVector(0, 0, -Infinity));
        body.SetPosition(position, 0);
    };
    // What a caller's class writes are nodes.
    class AsNodes : public KARMPBody
    {};
    AddBody(L"first");
    fill(*AddBody(L"body"));
    SaveOptions options;
    std::string text;
    const std::string told = TextOf(SaveText(m_world, text, options));
    EXPECT_NE(told.find("Body \"body\" [body]: \"Mass\" is infinite"), std::string::npos) << told;
    EXPECT_NE(told.find("/KARMPDocument/World/Bodies/Body[3]/Weight/Mass"), std::string::npos);
    EXPECT_NE(told.find("/Bodies/Body[3]/Weight/COG/Py"), std::string::npos) << told;
    EXPECT_NE(told.find("/Bodies/Body[3]/Position/Translation/Vz"), std::string::npos) << told;
    QOBSharedHandle<KARMPBody> body;
    m_world->Get(2, body);
    m_world->Remove<KARMPBody>(body);
    const QOBSharedHandle<KARMPBody> nodes(new AsNodes);
    nodes->setEntityName(L"body");
    fill(*File<KARMPBody>(nodes, L"body"));
    EXPECT_EQ(TextOf(SaveText(m_world, text, options)), told);
}

// Sets what can be set of an entity's numbers to some that are not finite, and counts those items.
int SetNotFinite(KARMPEntity& entity)
{
    int count = 0;
    for (const ItemInfo& item : ItemsOf(entity.getClassInfo())) {
        Value value = item.Get(entity);
        if (auto* const number = std::get_if<double>(&value))
            *number = -Infinity;
        else if (auto* const numbers = std::get_if<NumberArray>(&value))
            for (std::size_t index = 0; index < numbers->size(); ++index)
                (*numbers)[index] = index % 3 == 0 ? Infinity : index % 3 == 1 ? std::nan("") : 0.5;
        else
            continue;
        count += KARFailed(item.Set(entity, value)) ? 0 : 1;
    }
    return count;
}

TEST_F(EntityTexts, NumbersThatAreNotFiniteAreToldOfAsByNodes)
{
    const EnvironmentVariable outputs("MOT_DUMP_OUTPUTS", "1");
    int count = 0;
    std::size_t toldCount = 0;
    for (const std::string& name : MadeClasses()) {
        SCOPED_TRACE(name);
        const FilledWorld filled(name, Filling::Full);
        const Reports unheard;
        count += SetNotFinite(*filled.entity);
        SaveOptions options;
        options.allowLosses = true;
        std::string text;
        Diagnostics told = SaveText(filled.world, text, options);
        std::erase_if(told.items,
                      [](const Diagnostic& item) { return item.code != Code::NotFinite; });

        KARMPDocumentWriter nodes;
        EXPECT_EQ(filled.world->Serialize(&nodes), KARSuccess);
        std::string rendered;
        Diagnostics failures;
        Diagnostics toldOfNodes;
        Messages messages(failures, {}, 1);
        Messages numbers(toldOfNodes, {}, options.limits.diagnostics);
        EXPECT_TRUE(XmlRenderer(rendered, options.limits, messages, &numbers).Render(nodes));
        EXPECT_EQ(text, rendered);
        EXPECT_EQ(TextOf(told), TextOf(toldOfNodes));
        toldCount += told.items.size();
    }
    EXPECT_GT(count, 0);
    EXPECT_GT(toldCount, static_cast<std::size_t>(count)) << "most are arrays";
}

TEST(PathWithinEntity, CountsTheElementsOfANameBeforeAndBehind)
{
    // The value ends at the mark.
    const auto path = [](std::string text) {
        const std::size_t mark = text.find('^');
        text.erase(mark, 1);
        return PathWithin(text, mark);
    };
    EXPECT_EQ(path("<E><N>inf^</N></E>"), "/N");
    EXPECT_EQ(path("<E><N>inf^</N><M>1</M><N>1</N></E>"), "/N[1]");
    EXPECT_EQ(path("<E><N/><N>inf^</N></E>"), "/N[2]");
    EXPECT_EQ(path("<E><N a=\"1\"/><G><N>inf^</N></G><N>1</N></E>"), "/G/N");
    EXPECT_EQ(path("<E><G><N>inf^</N></G><G><N>1</N><N>2</N></G></E>"), "/G[1]/N");
    EXPECT_EQ(path("<E><G><N>1</N><N>2</N></G><G><N>inf^</N></G></E>"), "/G[2]/N");
    EXPECT_EQ(path("<E><G><F><N>inf^</N></F></G><H><F/><F/></H></E>"), "/G/F/N");
    EXPECT_EQ(path("<E a=\"inf^\" b=\"1\"><N>1</N></E>"), "/@a");
    EXPECT_EQ(path("<E a=\"1\"><N b=\"2\" c=\"inf^\"/><N/></E>"), "/N[1]/@c");
}

} // namespace karmp::documents
