#include "KARMPInteraction.h"
#include "EnvironmentVariable.h"
#include "InteractionTesting.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPPoint.h"

namespace {

class Interaction : public InteractionTesting<KARMPInteraction>
{
protected:
    void AddAll()
    {
        for (const Body& body : {first, second, third})
            EXPECT_EQ(interaction->AddCollidable(body), KARSuccess);
    }
};

TEST_F(Interaction, HasNoCollidablesAndReactsAtFirst)
{
    EXPECT_EQ(interaction->GetCollidableCount(), 0);
    EXPECT_EQ(interaction->GetRuleType(), KARMPCollisionRuleType::CollisionReaction);
    EXPECT_EQ(static_cast<int>(interaction->GetRuleType()), 1);
}

TEST_F(Interaction, ListsAnEntityOnceInTheOrderOfAdding)
{
    AddAll();
    EXPECT_EQ(interaction->AddCollidable(second), KARUnchanged);
    ExpectCollidables(*interaction, {first, second, third});
    EXPECT_EQ(interaction->AddCollidable({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(interaction->GetCollidableCount(), 3);
}

TEST_F(Interaction, TakesOutWhatIsListed)
{
    AddAll();
    EXPECT_EQ(interaction->RemoveCollidable(second), KARSuccess);
    EXPECT_EQ(interaction->RemoveCollidable(second), KARUnchanged);
    ExpectCollidables(*interaction, {first, third});
    EXPECT_EQ(interaction->RemoveCollidable({}), KARFailure);
    ExpectReports(1);
}

TEST_F(Interaction, GivesNothingOutsideItsList)
{
    AddAll();
    for (const int index : {-1, 3, 1000}) {
        Entity found(first);
        EXPECT_EQ(interaction->GetCollidable(index, found), KARFailure);
        EXPECT_FALSE(found);
        EXPECT_EQ(interaction->SetCollidable(index, first), KARFailure);
        QOBSharedVector<KARMPEntity> all{first};
        EXPECT_EQ(interaction->GetEntities(index, all), KARFailure);
        EXPECT_EQ(all.size(), 1U);
    }
    ExpectCollidables(*interaction, {first, second, third});
    ExpectReports(0);
}

TEST_F(Interaction, ReplacesAnEntryByAnyHandle)
{
    AddAll();
    EXPECT_EQ(interaction->SetCollidable(0, third), KARSuccess);
    ExpectCollidables(*interaction, {third, second, third});
    EXPECT_EQ(interaction->SetCollidable(1, {}), KARSuccess);
    ExpectCollidables(*interaction, {third, nullptr, third});
    EXPECT_EQ(interaction->SetCollidable(2, {}), KARSuccess);
    ExpectCollidables(*interaction, {third, nullptr, nullptr});
    EXPECT_EQ(interaction->AddCollidable(second), KARSuccess) << "it is listed no longer";
    EXPECT_EQ(interaction->SetCollidable(1, first), KARSuccess);
    ExpectCollidables(*interaction, {third, first, nullptr, second});
    ExpectReports(0);
}

TEST_F(Interaction, ReleasesWhatIsReplaced)
{
    AddAll();
    const auto counted = first->getReferenceCount();
    interaction->SetCollidable(0, {});
    EXPECT_EQ(first->getReferenceCount(), counted - 1);
}

TEST_F(Interaction, TakesOutTheFirstOfEqualEntries)
{
    AddAll();
    interaction->SetCollidable(0, third);
    EXPECT_EQ(interaction->RemoveCollidable(third), KARSuccess);
    ExpectCollidables(*interaction, {second, third});
}

TEST_F(Interaction, FindsThePositionOfAnEntry)
{
    AddAll();
    KARMPInteraction::ConstCollidableIterator position;
    EXPECT_EQ(Entity(*position), nullptr) << "a position in no list";
    EXPECT_TRUE(interaction->FindCollidable(second, position));
    EXPECT_EQ(position.Index(), 1);
    EXPECT_EQ(Entity(*position), second);
    EXPECT_EQ(Entity(*++position), third);
    EXPECT_EQ(Entity(*position++), third);
    const Body stranger = KARMPBody::create(L"stranger");
    KARMPInteraction::ConstCollidableIterator end;
    EXPECT_FALSE(interaction->FindCollidable(stranger, end));
    EXPECT_EQ(end, position);
    EXPECT_EQ(end.Index(), 3);
    EXPECT_EQ(Entity(*end), nullptr);
    EXPECT_FALSE(interaction->FindCollidable({}, end));
    interaction->SetCollidable(1, {});
    EXPECT_TRUE(interaction->FindCollidable({}, position));
    EXPECT_EQ(position.Index(), 1);
}

TEST_F(Interaction, ReplacesAnEntryThroughItsPosition)
{
    AddAll();
    KARMPInteraction::CollidableIterator position;
    *position = first; // a position in no list
    EXPECT_TRUE(interaction->FindCollidable(second, position));
    const Body other = KARMPBody::create(L"other");
    *position = other;
    ExpectCollidables(*interaction, {first, other, third});
    EXPECT_FALSE(interaction->FindCollidable(second, position));
    *position = second; // the end
    ExpectCollidables(*interaction, {first, other, third});
}

TEST_F(Interaction, AppendsTheCollidableToTheEntitiesOfAnIndex)
{
    AddAll();
    QOBSharedVector<KARMPEntity> all{third};
    EXPECT_EQ(interaction->GetEntities(1, all), KARSuccess);
    EXPECT_EQ(all, (QOBSharedVector<KARMPEntity>{third, second}));
}

/// Gives another entity than it lists.
class SubstitutingInteraction : public ConcreteEntity<KARMPInteraction>
{
public:
    KARStatus GetCollidable(int, QOBSharedHandle<KARMPEntity>& collidable) const override
    {
        collidable = substitute;
        return substitute ? KARSuccess : KARFailure;
    }
    QOBSharedHandle<KARMPEntity> substitute;
};

TEST_F(Interaction, AppendsWhatTheGetterOfASubclassGives)
{
    const QOBSharedHandle<SubstitutingInteraction> substituting(new SubstitutingInteraction);
    substituting->AddCollidable(first);
    QOBSharedVector<KARMPEntity> all;
    EXPECT_EQ(substituting->GetEntities(0, all), KARFailure);
    substituting->substitute = second;
    EXPECT_EQ(substituting->GetEntities(0, all), KARSuccess);
    EXPECT_EQ(all, QOBSharedVector<KARMPEntity>{second});
}

TEST_F(Interaction, StoresAnyRuleType)
{
    const auto unknown = static_cast<KARMPCollisionRuleType::Enum>(7);
    EXPECT_EQ(interaction->SetRuleType(unknown), KARSuccess);
    EXPECT_EQ(interaction->GetRuleType(), unknown);
}

TEST_F(Interaction, CannotTakeItselfOutUnlessEmpty)
{
    EXPECT_EQ(interaction->RemoveParent(), KARSuccess);
    AddAll();
    EXPECT_EQ(interaction->RemoveParent(), KARFailure);
    ExpectReports(0);
    ExpectCollidables(*interaction, {first, second, third});
    interaction->SetCollidable(1, {});
    EXPECT_EQ(interaction->RemoveParent(), KARFailure);
    ExpectReports(0);
    interaction->SetCollidable(0, {});
    EXPECT_EQ(interaction->RemoveParent(), KARFailure);
    ExpectReports(1);
}

TEST_F(Interaction, KeepsItsListWhenOrphaned)
{
    AddAll();
    interaction->orphanObject();
    interaction->ClearContainers();
    EXPECT_TRUE(interaction->isOrphaned());
    ExpectCollidables(*interaction, {first, second, third});
    ExpectReports(0);
}

TEST_F(Interaction, KeepsDestroyedBodiesUntilItGoes)
{
    AddAll();
    Body handle = first;
    KARMPBody::destroy(handle);
    EXPECT_TRUE(first->isOrphaned());
    ExpectCollidables(*interaction, {first, second, third});
    EXPECT_EQ(first->getReferenceCount(), 3U) << "this fixture, its table, the interaction";
    interaction = nullptr;
    EXPECT_EQ(first->getReferenceCount(), 2U);
}

TEST_F(Interaction, CopiesNeitherListNorRuleType)
{
    AddAll();
    interaction->SetRuleType(KARMPCollisionRuleType::NoCollisionNoReaction);
    const auto copy = interaction->copy();
    EXPECT_EQ(copy->GetCollidableCount(), 0);
    EXPECT_EQ(copy->GetRuleType(), KARMPCollisionRuleType::CollisionReaction);
    EXPECT_EQ(copy->getEntityName(), L"i");
}

TEST_F(Interaction, WritesListAndRuleTypeIntoTheGivenElement)
{
    interaction->AddCollidable(first);
    interaction->AddCollidable(second);
    interaction->SetRuleType(KARMPCollisionRuleType::CollisionNoReaction);
    TestSerializer root;
    EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 2U);
    EXPECT_EQ(root.Child(0).GetId(), L"Collidables");
    EXPECT_EQ(root.Count(L"Collidables/Collidable"), 2U);
    EXPECT_EQ(root.Text(L"Collidables/Collidable[1]/@id"), L"second");
    EXPECT_EQ(root.Text(L"Collidables/Collidable[1]/@name"), L"second");
    EXPECT_EQ(root.Child(1).GetId(), L"RuleType");
    EXPECT_EQ(root.Text(L"RuleType"), L"CollisionNoReaction");
}

TEST_F(Interaction, WritesNoListWhenEmptyAndTheFirstWordForAnUnknownType)
{
    interaction->SetRuleType(static_cast<KARMPCollisionRuleType::Enum>(7));
    TestSerializer root;
    EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
    EXPECT_FALSE(root.Has(L"Collidables"));
    EXPECT_EQ(root.Text(L"RuleType"), L"DefaultCollision");
}

TEST_F(Interaction, WritesANullEntryWithoutAttributes)
{
    AddAll();
    interaction->SetCollidable(1, {});
    TestSerializer root;
    EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(root.Count(L"Collidables/Collidable"), 3U);
    EXPECT_FALSE(root.Has(L"Collidables/Collidable[1]/@id"));
    EXPECT_EQ(root.Text(L"Collidables/Collidable[2]/@id"), L"third");
}

TEST_F(Interaction, ReadsBackWhatItWroteInEitherForm)
{
    AddAll();
    for (const std::wstring_view word : karmp::EnumTexts<KARMPCollisionRuleType::Enum>::Rows) {
        interaction->SetRuleType(KARMPEnumValue<KARMPCollisionRuleType::Enum>(word));
        TestSerializer root;
        interaction->Serialize(&root);
        for (const bool asText : {false, true}) {
            const auto tree = TestDeserializer::From(root, {.asText = asText});
            const auto read = New();
            EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
            ExpectCollidables(*read, {first, second, third});
            EXPECT_EQ(KARMPEnumText(read->GetRuleType()), word);
        }
    }
}

TEST_F(Interaction, ReadsAnUnknownRuleTypeAsTheFirstAndGoesOn)
{
    const auto read = New();
    TestDeserializer root;
    Plain(root).Leaf(L"RuleType", L"Sticky");
    root.Add(L"Collidables").Reference(L"Collidable", L"first");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(read->GetRuleType(), KARMPCollisionRuleType::DefaultCollision);
    ExpectCollidables(*read, {first});
}

TEST_F(Interaction, KeepsItsRuleTypeWhereItIsMissing)
{
    const auto read = New();
    read->SetRuleType(KARMPCollisionRuleType::NoCollisionNoReaction);
    TestDeserializer root;
    Plain(root);
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(read->GetRuleType(), KARMPCollisionRuleType::NoCollisionNoReaction);
}

TEST_F(Interaction, ReadsEntitiesOfAnyClassAndSkipsUnknownOnes)
{
    const auto read = New();
    const auto point = KARMPPoint::create(L"p");
    entities.Set(L"point", point);
    entities.Set(L"null", {});
    TestDeserializer root;
    Plain(root).Leaf(L"RuleType", L"CollisionReaction");
    TestDeserializer& list = root.Add(L"Collidables");
    for (const wchar_t* id : {L"unknown", L"point", L"null", L"first", L"point"})
        list.Reference(L"Collidable", id);
    list.Add(L"Collidable");
    list.Reference(L"Other", L"second");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1); // a reference without "id"
    ExpectCollidables(*read, {point, first});
}

TEST_F(Interaction, FailsWithoutANode)
{
    EXPECT_EQ(interaction->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(interaction->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Interaction, ReportsWhatCannotBeAdded)
{
    AddAll();
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
            EXPECT_EQ(TakeReports() > 0, failing != 0);
        });
    EXPECT_EQ(creations, 5U);
}

/// Adds through the virtual operation.
class CountingInteraction : public ConcreteEntity<KARMPInteraction>
{
public:
    KARStatus AddCollidable(const QOBSharedHandle<KARMPEntity>& collidable) override
    {
        ++added;
        return KARMPInteraction::AddCollidable(collidable);
    }
    int added = 0;
};

TEST_F(Interaction, AddsWhatItReadsThroughTheVirtualOperation)
{
    AddAll();
    TestSerializer root;
    interaction->Serialize(&root);
    const QOBSharedHandle<CountingInteraction> read(new CountingInteraction);
    read->Deserialize(TestDeserializer::From(root).get(), entities);
    EXPECT_EQ(read->added, 3);
}

TEST_F(Interaction, StaysConsistentInALongList)
{
    std::vector<Entity> expected;
    for (int index = 0; index < 300; ++index) {
        expected.emplace_back(KARMPPoint::create(L""));
        interaction->AddCollidable(expected.back());
    }
    for (std::size_t index = 0; index < expected.size(); index += 7) {
        expected[index] = index % 2 == 0 ? nullptr : expected[index / 2];
        EXPECT_EQ(interaction->SetCollidable(static_cast<int>(index), expected[index]), KARSuccess);
    }
    ExpectCollidables(*interaction, expected);
    for (int removed = 0; removed < 100; ++removed) {
        const auto chosen = std::find_if(expected.begin() + 5 * removed % 150, expected.end(),
                                         [](const Entity& one) { return one != nullptr; });
        const auto entry = std::find(expected.begin(), expected.end(), *chosen);
        KARMPInteraction::ConstCollidableIterator position;
        EXPECT_TRUE(interaction->FindCollidable(*entry, position));
        EXPECT_EQ(position.Index(), entry - expected.begin());
        EXPECT_EQ(interaction->RemoveCollidable(*entry), KARSuccess);
        expected.erase(entry);
    }
    ExpectCollidables(*interaction, expected);
}

} // namespace
