#include "QOBException.h"
#include "TestEntity.h"
#include "WorldDocumentTesting.h"

#include <cstdlib>

namespace {

using WorldReader = WorldDocument;

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

TEST_F(WorldReader, ListsAnEntityOnceThatListedItselfWhileItRead)
{
    WorldTestScript::Current().onRead = [&](KARMPEntity& e) {
        world->Add(QOBSharedHandle<KARMPSupport>(&e));
    };
    entity(registry(L"Supports"), L"TestSupport", L"S");
    EXPECT_EQ(read(), KARSuccess);
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), Identifiers{L"S"});
}

// Enters a class that has one object.
class SingleEntity : private KARMPGenericFactoryBase
{
public:
    SingleEntity() { Register("KARMPTestSingle", &Get); }

private:
    static QOBSharedHandle<KARMPEntity> Get()
    {
        static const auto single = TestOf<KARMPSupport>::create(L"first");
        return single;
    }
};

TEST_F(WorldReader, ListsAnEntityOnceThatTheFactoryGivesTwice)
{
    const SingleEntity single;
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"TestSingle", L"first");
    entity(supports, L"TestSingle", L"second");
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(2); // by the entity, which has its identifier before it reads
    EXPECT_EQ(world->Count<KARMPSupport>(), 1);
}

TEST_F(WorldReader, ListsManyEntitiesThatCanBeRemovedAndAreNotAddedAgain)
{
    constexpr int Count = 200;
    TestDeserializer& supports = registry(L"Supports");
    for (int number = 0; number < Count; ++number)
        entity(supports, L"TestSupport", std::to_wstring(1'000 + number));
    EXPECT_EQ(read(), KARSuccess);
    QOBSharedHandle<KARMPSupport> any;
    world->Get(Count / 2, any);
    EXPECT_EQ(world->Add(any), KARUnchanged);
    EXPECT_EQ(world->Remove(any), KARSuccess);
    EXPECT_EQ(world->Remove(any), KARUnchanged);
    EXPECT_EQ(world->Count<KARMPSupport>(), Count - 1);
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

TEST_F(WorldReader, LetsAnEntityReadTheElementOfAnUnknownClassThatHasItsIdentifier)
{
    Identifiers resolved;
    WorldTestScript::Current().onOther = [&](const std::wstring& reader, const KARMPEntity* other) {
        resolved.push_back(reader + L"->" + (other != nullptr ? IdentifierOf(*other) : L""));
    };
    entity(registry(L"Materials"), L"TestMaterial", L"M");
    TestDeserializer& supports = registry(L"Supports");
    entity(supports, L"TestSupport", L"same");
    entity(supports, L"Unknown", L"same").Reference(L"Other", L"M");
    EXPECT_EQ(read(), KARSuccess);
    // By the factory, when it is made, and by the entity, which has its identifier by then.
    ExpectReports(3);
    EXPECT_EQ(resolved, Identifiers{L"same->M"});
    EXPECT_EQ(identifiersIn<KARMPSupport>(*world), Identifiers{L"same"});
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

TEST_F(WorldReader, TakesAPositiveStatusOfAnEntityForNoFailure)
{
    entity(registry(L"Values"), L"Expression", L"E"); // without an equation
    EXPECT_EQ(read(), KARSuccess);
    ExpectReports(0);
    EXPECT_EQ(identifiersIn<KARMPValue>(*world), Identifiers{L"E"});
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
    EXPECT_EQ(IdentifierOf(*body), L"B");
    EXPECT_EQ(IdentifierOf(*time), L"V");
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
    EXPECT_EQ(IdentifierOf(*time), L"V");
}

TEST_F(WorldReader, ThrowsWhenAGlobalIsOfAnotherClass)
{
    entity(registry(L"Variables"), L"TestVariable", L"V");
    worldElement.Add(L"Globals").Reference(L"GlobalBody", L"V");
    EXPECT_THROW(read(), QOBEInvalidCast);
    EXPECT_EQ(world->Count<KARMPVariable>(), 1);
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
