#include "AllocationCounter.h"
#include "KARMPElementRecords.h"
#include "KARMPEntityTable.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARMPTestFixture.h"
#include "KARMPVersions.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestEntity.h"
#include "TestSerializer.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>

namespace {

/// An entity with every kind of content that the base writes.
class EntityTree : public KARMPTestFixture
{
protected:
    EntityTree()
    {
        entity->SetIdentifier(L"E1");
        entity->SetID("caf\xC3\xA9");
        parameter->SetIdentifier(L"P1");
        state->SetIdentifier(L"S1");
        output->SetIdentifier(L"O1");
        element->SetIdentifier(L"A1");
        entity->AddParameter(parameter);
        entity->AddState(state);
        entity->AddOutput(output);
        entity->AddAggregatedElement(element);
        entities.Set(L"P1", parameter);
        entities.Set(L"S1", state);
        entities.Set(L"O1", output);
        entities.Set(L"A1", element);
    }
    ~EntityTree() override
    {
        entity->orphanObject();
        read->orphanObject();
    }

    QOBSharedHandle<TestEntity> entity = TestEntity::create(L"crank");
    QOBSharedHandle<KARMPParameter> parameter = KARMPParameter::create(L"p");
    QOBSharedHandle<KARMPState> state = KARMPState::create(L"s");
    QOBSharedHandle<KARMPOutput> output = KARMPOutput::create(L"o");
    QOBSharedHandle<TestEntity> element = TestEntity::create(L"a");
    QOBSharedHandle<TestEntity> read = TestEntity::create(L"");
    KARMPEntityTable entities;
};

TEST_F(EntityTree, WritesItsContentInOrder)
{
    TestSerializer root;
    EXPECT_EQ(entity->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetAttributeCount(), 4U);
    EXPECT_EQ(root.GetAttributeId(0), L"id");
    EXPECT_EQ(root.GetAttributeId(1), L"name");
    EXPECT_EQ(root.GetAttributeId(2), L"isActive");
    EXPECT_EQ(root.GetAttributeId(3), L"entityID");
    EXPECT_EQ(root.Text(L"@id"), L"E1");
    EXPECT_EQ(root.Text(L"@name"), L"crank");
    EXPECT_EQ(root.Text(L"@isActive"), L"yes");
    EXPECT_EQ(root.Text(L"@entityID"), L"caf\u00E9");

    ASSERT_EQ(root.GetElementCount(), 3U);
    EXPECT_EQ(root.Child(0).GetId(), L"Parameters");
    EXPECT_EQ(root.Child(1).GetId(), L"States");
    EXPECT_EQ(root.Child(2).GetId(), L"AggregatedElements");
    EXPECT_EQ(root.Text(L"Parameters/Parameter/@id"), L"P1");
    EXPECT_EQ(root.Text(L"Parameters/Parameter/@name"), L"p");
    EXPECT_EQ(root.Text(L"States/State/@id"), L"S1");
    EXPECT_EQ(root.Text(L"AggregatedElements/Element/@id"), L"A1");
    EXPECT_EQ(root.Text(L"AggregatedElements/Element/@name"), L"a");
}

TEST_F(EntityTree, WritesNoContainerForAnEmptyListAndNoEmptyEntityId)
{
    TestSerializer root;
    EXPECT_EQ(element->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_FALSE(root.Has(L"@entityID"));
}

TEST_F(EntityTree, WritesActivityFromVersionR2017_1)
{
    entity->Deactivate();
    for (const wchar_t* version : {L"", L"R2016.1", L"R2017.0"}) {
        TestSerializer below(version);
        entity->Serialize(&below);
        EXPECT_FALSE(below.Has(L"@isActive"));
    }
    TestSerializer at(L"R2017.1");
    entity->Serialize(&at);
    EXPECT_EQ(at.Text(L"@isActive"), L"no");
}

TEST_F(EntityTree, ReadsActivityFromVersionR2017_1)
{
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"no");
    root.SetVersion(L"R2017.0");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_TRUE(read->IsActive());
    const auto second = TestEntity::create(L"");
    root.SetVersion(L"R2017.1");
    EXPECT_EQ(second->Deserialize(&root, entities), KARSuccess);
    EXPECT_FALSE(second->IsActive());
}

TEST_F(EntityTree, ReadsBackWhatItWroteInEitherForm)
{
    entity->Deactivate();
    TestSerializer written;
    entity->Serialize(&written);
    for (const bool asText : {false, true}) {
        const auto copy = TestEntity::create(L"");
        const auto tree = TestDeserializer::From(written, {.asText = asText});
        EXPECT_EQ(copy->Deserialize(tree.get(), entities), KARSuccess);
        std::wstring identifier;
        copy->GetIdentifier(identifier);
        EXPECT_EQ(identifier, L"E1");
        EXPECT_EQ(copy->getEntityName(), L"crank");
        EXPECT_FALSE(copy->IsActive());
        EXPECT_EQ(copy->GetID(), "caf\xC3\xA9");
        EXPECT_EQ(copy->GetParameterCount(), 1);
        EXPECT_EQ(copy->GetStateCount(), 1);
        EXPECT_EQ(copy->GetOutputCount(), 0);
        QOBSharedHandle<KARMPEntity> handle;
        EXPECT_EQ(copy->GetAggregatedElement(0, handle), KARSuccess);
        EXPECT_EQ(handle, element);
        EXPECT_EQ(element->GetParentEntity(handle), KARSuccess);
        EXPECT_EQ(handle, copy);
        copy->orphanObject();
    }
}

TEST_F(EntityTree, TellsAnAttachedLoaderOfAReadActivity)
{
    LoaderRecord record;
    const auto loader = std::make_unique<RecordingEntityLoader>(record);
    read->SetLoader(loader.get());
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"no");
    read->Deserialize(&root, entities);
    EXPECT_EQ(record.calls, std::vector<std::string>{"OnDeactivate"});
    EXPECT_FALSE(read->IsActive());
    root.Attribute(L"isActive", L"yes");
    read->Deserialize(&root, entities);
    ExpectReports(1); // of the identifier, which is there by then
    EXPECT_EQ(record.calls, (std::vector<std::string>{"OnDeactivate", "OnActivate"}));
    EXPECT_TRUE(read->IsActive());
    read->SetLoader(nullptr);
    EXPECT_EQ(record.deleted, 0);
}

TEST_F(EntityTree, IgnoresAnyOtherWordOfActivity)
{
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"No");
    read->Deserialize(&root, entities);
    EXPECT_TRUE(read->IsActive());
}

TEST_F(EntityTree, ReportsEachMissingRequiredAttributeAndKeepsTheValue)
{
    TestDeserializer root(L"TestEntity");
    read->setEntityName(L"kept");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(read->getEntityName(), L"kept");
    EXPECT_TRUE(read->IsActive());
    EXPECT_TRUE(read->GetID().IsEmpty());
    EXPECT_EQ(read->SetIdentifier(L"still free"), KARSuccess);
}

TEST_F(EntityTree, KeepsAnIdentifierThatIsThereAlready)
{
    std::wstring before;
    read->GetIdentifier(before);
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1);
    std::wstring after;
    read->GetIdentifier(after);
    EXPECT_EQ(after, before);
}

TEST_F(EntityTree, DropsUnknownAndNullTargetsInSilence)
{
    entities.Set(L"null", {});
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    root.Add(L"Parameters")
        .Reference(L"Parameter", L"nobody")
        .Reference(L"Parameter", L"null")
        .Reference(L"Parameter", L"P1");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(read->GetParameterCount(), 1);
}

TEST_F(EntityTree, ReportsAReferenceWithoutIdAndGoesOn)
{
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    auto& states = root.Add(L"States");
    states.Add(L"State");
    states.Reference(L"State", L"S1").Reference(L"State", L"S1");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(read->GetStateCount(), 1);
}

TEST_F(EntityTree, ThrowsForAReferenceToAnotherClass)
{
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    root.Add(L"States").Reference(L"State", L"P1");
    EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
}

TEST_F(EntityTree, DoesNothingWithoutANode)
{
    EXPECT_EQ(entity->Serialize(nullptr), KARSuccess);
    EXPECT_EQ(entity->Deserialize(nullptr, entities), KARSuccess);
}

TEST_F(EntityTree, ReportsEveryFailedAdditionAndStillSucceeds)
{
    const std::size_t creations =
        ForEachFailedCreation(karmp::CurrentVersion, [this](TestSerializer& root, auto failing) {
            EXPECT_EQ(entity->Serialize(&root), KARSuccess);
            EXPECT_EQ(TakeReports() > 0, failing != 0);
            EXPECT_EQ(root.Text(L"@id"), L"E1");
        });
    EXPECT_EQ(creations, 6U);
}

TEST_F(EntityTree, GoesOnPastAFailedAdditionWithTheNextEntryAndTheNextList)
{
    const auto second = KARMPParameter::create(L"q");
    second->SetIdentifier(L"P2");
    entity->AddParameter(second);
    // A list that cannot be added takes its entries along.
    const auto written = [this](std::size_t failing) {
        TestSerializer root;
        root.FailCreation(failing);
        entity->Serialize(&root);
        TakeReports();
        return std::vector<std::size_t>{root.GetElementCount(), root.Count(L"Parameters/Parameter"),
                                        root.Count(L"States/State"),
                                        root.Count(L"AggregatedElements/Element")};
    };
    EXPECT_EQ(written(0), (std::vector<std::size_t>{3, 2, 1, 1}));
    EXPECT_EQ(written(1), (std::vector<std::size_t>{2, 0, 1, 1}));
    EXPECT_EQ(written(2), (std::vector<std::size_t>{3, 1, 1, 1}));
    EXPECT_EQ(written(3), (std::vector<std::size_t>{3, 1, 1, 1}));
    EXPECT_EQ(written(4), (std::vector<std::size_t>{2, 2, 0, 1}));
    EXPECT_EQ(written(5), (std::vector<std::size_t>{3, 2, 0, 1}));
    EXPECT_EQ(written(6), (std::vector<std::size_t>{2, 2, 1, 0}));
    EXPECT_EQ(written(7), (std::vector<std::size_t>{3, 2, 1, 0}));

    TestSerializer root;
    root.FailCreation(2);
    entity->Serialize(&root);
    TakeReports();
    EXPECT_EQ(root.Text(L"Parameters/Parameter/@id"), L"P2");
}

// An entity whose class decides on its activity itself.
class Restless : public KARMPEntity
{
public:
    bool IsActive() const override { return false; }
    KARStatus Activate() override
    {
        calls.emplace_back("Activate");
        return KARFailure;
    }
    KARStatus Deactivate() override
    {
        calls.emplace_back("Deactivate");
        return KARFailure;
    }

    std::vector<std::string> calls;
};

TEST_F(EntityTree, LeavesActivityToItsClass)
{
    const QOBSharedHandle<Restless> restless(new Restless);
    TestSerializer written;
    restless->Serialize(&written);
    EXPECT_EQ(written.Text(L"@isActive"), L"no");

    const QOBSharedHandle<Restless> reader(new Restless);
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    EXPECT_EQ(reader->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(reader->calls, std::vector<std::string>{"Activate"});
    root.Attribute(L"isActive", L"no");
    EXPECT_EQ(reader->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1); // of the identifier, which is there by then
    EXPECT_EQ(reader->calls, (std::vector<std::string>{"Activate", "Deactivate"}));
}

TEST_F(EntityTree, LeavesTheIdentifierOutWhenThereIsNoMemoryForIt)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    TestSerializer root;
    {
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        EXPECT_EQ(read->Serialize(&root), KARSuccess);
    }
    EXPECT_GE(TakeReports(), 2U); // where it is made and where it is written
    EXPECT_FALSE(root.Has(L"@id"));
    EXPECT_TRUE(root.Has(L"@name"));
    EXPECT_TRUE(root.Has(L"@isActive"));
}

TEST_F(EntityTree, SurvivesEachItemMissing)
{
    TestSerializer written;
    entity->Serialize(&written);
    ForEachMissingItem(written, {}, [this](TestDeserializer& root, const std::wstring&) {
        const auto copy = TestEntity::create(L"");
        EXPECT_EQ(copy->Deserialize(&root, entities), KARSuccess);
        copy->orphanObject();
        TakeReports();
    });
}

TEST_F(EntityTree, ReadsNoOutputsWithoutTheVariable)
{
    TestDeserializer root(L"TestEntity");
    root.Attribute(L"id", L"E2").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    root.Add(L"Outputs").Reference(L"Output", L"O1");
    read->Deserialize(&root, entities);
    EXPECT_EQ(read->GetOutputCount(), 0);
}

class EntityTreeProcess : public EntityTree
{};

TEST_F(EntityTreeProcess, WritesOutputsOnceTheVariableIsSetAndKeepsToThat)
{
    TestSerializer first;
    entity->Serialize(&first);
    EXPECT_EQ(first.Text(L"Outputs/Output/@id"), L"O1");
    EXPECT_EQ(first.Child(2).GetId(), L"Outputs");
    ::unsetenv("MOT_DUMP_OUTPUTS");
    TestSerializer second;
    entity->Serialize(&second);
    EXPECT_TRUE(second.Has(L"Outputs"));

    // Reading looks the variable up on every call.
    const auto tree = TestDeserializer::From(first);
    read->Deserialize(tree.get(), entities);
    EXPECT_EQ(read->GetOutputCount(), 0);
    ::setenv("MOT_DUMP_OUTPUTS", "", 1);
    const auto other = TestEntity::create(L"");
    other->Deserialize(tree.get(), entities);
    EXPECT_EQ(other->GetOutputCount(), 1);
    other->orphanObject();
}

TEST_F(EntityTreeProcess, LeavesNamesOutButWritesTheAttribute)
{
    TestSerializer root;
    entity->Serialize(&root);
    EXPECT_EQ(root.Text(L"@name"), L"");
    EXPECT_FALSE(root.Has(L"Parameters/Parameter/@name"));
    EXPECT_TRUE(root.Has(L"Parameters/Parameter/@id"));
    ::unsetenv("NO_MP_NAME_FOR_SERIALIZATION");
    TestSerializer second;
    entity->Serialize(&second);
    EXPECT_EQ(second.Text(L"@name"), L"");

    read->setEntityName(L"former");
    const auto tree = TestDeserializer::From(root);
    read->Deserialize(tree.get(), entities);
    EXPECT_EQ(read->getEntityName(), L"");
}

TEST_F(EntityTreeProcess, DecidesOnNamesOfEntitiesAndOfReferencesEachAtItsFirst)
{
    ::unsetenv("NO_MP_NAME_FOR_SERIALIZATION");
    EXPECT_TRUE(KARMPSerializer::SerializeName());
    ::setenv("NO_MP_NAME_FOR_SERIALIZATION", "1", 1);
    TestSerializer root;
    entity->Serialize(&root);
    EXPECT_EQ(root.Text(L"@name"), L"");
    EXPECT_TRUE(root.Has(L"Parameters/Parameter/@name"));
}

TEST(EntityTable, FindsReplacesAndOrdersByIdentifier)
{
    KARMPEntityTable table;
    const auto first = TestEntity::create(L"first");
    const auto second = TestEntity::create(L"second");
    EXPECT_TRUE(table.Set(L"9", first));
    EXPECT_TRUE(table.Set(L"10", first));
    EXPECT_TRUE(table.Set(L"1", {}));
    EXPECT_FALSE(table.Set(L"9", second));
    EXPECT_EQ(table.Size(), 3U);
    ASSERT_NE(table.Find(L"9"), nullptr);
    EXPECT_EQ(*table.Find(L"9"), second);
    EXPECT_FALSE(*table.Find(L"1"));
    EXPECT_EQ(table.Find(L"2"), nullptr);
    std::vector<std::wstring> order;
    for (const auto* entry : table.InOrder())
        order.push_back(entry->Identifier());
    EXPECT_EQ(order, (std::vector<std::wstring>{L"1", L"10", L"9"}));
}

TEST(EntityTable, HoldsWhatTheMapHeldThatItWasMadeOf)
{
    const auto first = TestEntity::create(L"first");
    const auto second = TestEntity::create(L"second");
    const std::map<std::wstring, QOBSharedHandle<KARMPEntity>> map{
        {L"9", first}, {L"10", second}, {L"\x2603", first}, {L"1", nullptr}};
    const KARMPEntityTable table = map;
    ASSERT_EQ(table.Size(), map.size());
    auto expected = map.begin();
    for (const auto* entry : table.InOrder()) {
        EXPECT_EQ(entry->Identifier(), expected->first);
        EXPECT_EQ(entry->Entity(), expected->second);
        ++expected;
    }
    for (const auto& [identifier, entity] : map) {
        ASSERT_NE(table.Find(identifier), nullptr);
        EXPECT_EQ(*table.Find(identifier), entity);
    }
    EXPECT_EQ(table.Find(L"2"), nullptr);
}

TEST(EntityTable, FindsByNumberWhatIsFoundByText)
{
    const auto first = TestEntity::create(L"first");
    const auto second = TestEntity::create(L"second");
    const karmp::DocumentRecords document;
    KARMPEntityTable table;
    EXPECT_FALSE(table.UsesNumbersOf(&document));
    EXPECT_FALSE(table.UsesNumbersOf(nullptr));
    table.UseNumbers(document, 4);
    EXPECT_TRUE(table.UsesNumbersOf(&document));
    table.Enter(1, "one", first);
    EXPECT_EQ(table.Find(0U), nullptr);
    EXPECT_EQ(*table.Find(1U), first);
    EXPECT_EQ(*table.Find(L"one"), first);
    table.Enter(2, "two", first);
    EXPECT_EQ(*table.Find(L"two"), first);
    EXPECT_EQ(table.Size(), 2U);
}

TEST(EntityTable, ReplacesWhatWasEnteredWithAndWithoutANumber)
{
    const auto first = TestEntity::create(L"first");
    const auto second = TestEntity::create(L"second");
    const karmp::DocumentRecords document;
    KARMPEntityTable table;
    table.UseNumbers(document, 3);
    table.Enter(0, "zero", first);
    table.Enter(L"zero", second);
    EXPECT_EQ(*table.Find(0U), second);
    table.Enter(L"one", first);
    table.Enter(1, "one", second);
    EXPECT_EQ(*table.Find(1U), second);
    EXPECT_EQ(*table.Find(L"one"), second);
    table.Enter(0, "zero", first);
    EXPECT_EQ(*table.Find(L"zero"), first);
    EXPECT_EQ(table.Size(), 2U);
}

TEST_F(EntityTree, ResolvesReferencesByAnOrderedMap)
{
    TestSerializer root;
    entity->Serialize(&root);
    const std::map<std::wstring, QOBSharedHandle<KARMPEntity>> map{{L"P1", parameter}};
    const auto tree = TestDeserializer::From(root);
    EXPECT_EQ(read->Deserialize(tree.get(), map), KARSuccess);
    QOBSharedHandle<KARMPParameter> found;
    EXPECT_EQ(read->GetParameter(0, found), KARSuccess);
    EXPECT_EQ(found, parameter);
    EXPECT_EQ(read->GetStateCount(), 0);
}

TEST(EntityTable, TellsTextsOfEachLengthApartByAnyCharacter)
{
    KARMPEntityTable table;
    std::size_t count = 0;
    for (std::size_t length = 0; length < 20; ++length) {
        EXPECT_TRUE(table.Set(std::wstring(length, L'a'), TestEntity::create(L"")));
        ++count;
        for (std::size_t index = 0; index < length; ++index) {
            std::wstring other(length, L'a');
            other[index] = L'\x2603';
            const auto entity = TestEntity::create(L"");
            EXPECT_EQ(table.Find(other), nullptr);
            EXPECT_TRUE(table.Set(other, entity));
            ASSERT_NE(table.Find(other), nullptr);
            EXPECT_EQ(*table.Find(other), entity);
            ++count;
        }
    }
    EXPECT_EQ(table.Find(std::wstring_view()), table.Find(L""));
    EXPECT_EQ(table.Size(), count);
}

TEST(EntityTable, NarrowAndWideTextsAreOneIdentifier)
{
    KARMPEntityTable table;
    for (const std::string& text :
         {std::string(), std::string("id7"), std::string("id-01234567"), std::string(100, 'x')}) {
        const std::wstring wide(text.begin(), text.end());
        karmp::ReadText narrow;
        narrow.Refer(karmp::AsciiText{text.c_str()});
        karmp::ReadText referred;
        referred.Refer(wide);
        EXPECT_EQ(table.Find(narrow), nullptr);
        const auto first = TestEntity::create(L"");
        EXPECT_EQ(table.Enter(narrow, first).Identifier(), wide);
        ASSERT_NE(table.Find(wide), nullptr);
        EXPECT_EQ(*table.Find(wide), first);
        EXPECT_EQ(table.Find(narrow), table.Find(wide));
        EXPECT_EQ(table.Find(referred), table.Find(wide));
        const auto second = TestEntity::create(L"");
        EXPECT_FALSE(table.Set(wide, second));
        EXPECT_EQ(table.Enter(referred, second).Entity(), second);
        EXPECT_EQ(*table.Find(narrow), second);
    }
    EXPECT_EQ(table.Size(), 4U);
    // What a wide text hides in the upper bits of its characters tells it apart.
    EXPECT_EQ(table.Find(L"id\x137"), nullptr);
}

TEST(EntityTable, ManyEntriesAreFoundAndInTheOrderOfAnyIdentifiers)
{
    KARMPEntityTable table;
    std::vector<std::wstring> identifiers{L"",
                                          L"id",
                                          L"id\x100"
                                          L"b",
                                          L"id\x200"
                                          L"a",
                                          L"id\xFF",
                                          std::wstring(L"id\0b", 4),
                                          std::wstring(L"id\0a", 4),
                                          L"id-12345678b",
                                          L"id-12345678a",
                                          L"id-1234567"};
    identifiers.push_back(L"id" + std::wstring(1, static_cast<wchar_t>(-1)) + L"z");
    for (int number = 0; number < 5000; ++number)
        identifiers.push_back(L"id" + std::to_wstring(number * 7919 % 5000));
    for (const std::wstring& identifier : identifiers)
        EXPECT_TRUE(table.Set(identifier, {}));
    for (const std::wstring& identifier : identifiers)
        EXPECT_NE(table.Find(identifier), nullptr);
    EXPECT_EQ(table.Find(L"id5000"), nullptr);
    const auto withStart = [&identifiers](const KARMPEntityTable& some, std::size_t first) {
        std::vector<std::wstring> order;
        for (const auto* entry : some.InOrder())
            order.push_back(entry->Identifier());
        std::vector<std::wstring> expected(identifiers.begin() + static_cast<std::ptrdiff_t>(first),
                                           identifiers.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(order, expected);
    };
    withStart(table, 0);
    // The same where all begin alike.
    KARMPEntityTable alike;
    for (std::size_t index = 1; index < identifiers.size(); ++index)
        alike.Set(identifiers[index], {});
    withStart(alike, 1);
}

} // namespace
