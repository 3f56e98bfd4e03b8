#include "KARMPCollisionLayer.h"
#include "InteractionTesting.h"
#include "KARMPCollisionInterLayer.h"
#include "KARMPPoint.h"
#include "QOBException.h"

namespace {

class CollisionLayer : public InteractionTesting<KARMPCollisionLayer>
{};

TEST_F(CollisionLayer, HasTheRecordOfAnEntityAndIsAnInteraction)
{
    EXPECT_EQ(KARMPCollisionLayer::ClassInfo().getParent(), &KARMPEntity::ClassInfo());
    EXPECT_FALSE(interaction->isDerivedFrom(KARMPInteraction::ClassInfo()));
    const Entity entity(interaction);
    EXPECT_TRUE(QOBSharedHandle<KARMPInteraction>(entity));
}

TEST_F(CollisionLayer, AlwaysLetsItselfBeTakenOut)
{
    interaction->AddCollidable(first);
    EXPECT_EQ(interaction->RemoveParent(), KARSuccess);
    interaction->SetCollidable(0, {});
    EXPECT_EQ(interaction->RemoveParent(), KARSuccess);
    EXPECT_EQ(interaction->GetCollidableCount(), 1);
}

TEST_F(CollisionLayer, WritesItsEntitiesTwice)
{
    interaction->AddCollidable(second);
    interaction->AddCollidable(first);
    TestSerializer root;
    EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"CollisionLayer");
    ASSERT_EQ(element.GetElementCount(), 3U);
    EXPECT_EQ(element.Child(0).GetId(), L"Collidables");
    EXPECT_EQ(element.Child(1).GetId(), L"RuleType");
    EXPECT_EQ(element.Child(2).GetId(), L"Entities");
    EXPECT_EQ(element.Count(L"Entities/Entity"), 2U);
    EXPECT_EQ(element.Text(L"Entities/Entity/@id"), L"second");
    EXPECT_EQ(element.Text(L"Entities/Entity[1]/@id"), L"first");
    EXPECT_EQ(element.Text(L"Entities/Entity[1]/@name"), L"first");
}

TEST_F(CollisionLayer, WritesNoListsWhenEmpty)
{
    TestSerializer root;
    EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).GetElementCount(), 1U);
}

TEST_F(CollisionLayer, ReadsEachEntityOnce)
{
    interaction->AddCollidable(second);
    interaction->AddCollidable(first);
    TestSerializer root;
    interaction->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = KARMPCollisionLayer::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ExpectCollidables(*read, {second, first});
    }
}

TEST_F(CollisionLayer, AddsEntitiesToWhatTheBaseBrought)
{
    const auto read = New();
    TestDeserializer root;
    TestDeserializer& element = Plain(root.Add(L"CollisionLayer"));
    element.Leaf(L"RuleType", L"CollisionReaction");
    element.Add(L"Collidables").Reference(L"Collidable", L"second");
    element.Add(L"Entities")
        .Reference(L"Entity", L"third")
        .Reference(L"Entity", L"unknown")
        .Reference(L"Entity", L"second")
        .Reference(L"Entity", L"first");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectCollidables(*read, {second, third, first});
}

TEST_F(CollisionLayer, FailsWithoutNodeOrElement)
{
    TestDeserializer root;
    EXPECT_EQ(interaction->Deserialize(&root, entities), KARFailure);
    EXPECT_EQ(interaction->Deserialize(nullptr, entities), KARFailure);
    EXPECT_EQ(interaction->Serialize(nullptr), KARFailure);
    ExpectReports(3);
}

TEST_F(CollisionLayer, FailsOnlyWhenItsElementCannotBeAdded)
{
    interaction->AddCollidable(first);
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(interaction->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
            EXPECT_EQ(TakeReports() > 0, failing != 0);
        });
    EXPECT_EQ(creations, 6U);
}

class CollisionInterLayer : public InteractionTesting<KARMPCollisionInterLayer>
{
protected:
    CollisionInterLayer()
    {
        Enter(L"near", near);
        Enter(L"far", far);
        near->AddCollidable(first);
        near->AddCollidable(second);
        far->AddCollidable(third);
    }
    static std::array<double, 3> CoefficientsOf(const KARMPCollisionInterLayer& one)
    {
        std::array<double, 3> all{};
        EXPECT_EQ(one.GetRestitutionCoefficient(all[0]), KARSuccess);
        EXPECT_EQ(one.GetDynamicFrictionCoefficient(all[1]), KARSuccess);
        EXPECT_EQ(one.GetStaticFrictionCoefficient(all[2]), KARSuccess);
        return all;
    }
    static void Fill(KARMPCollisionInterLayer& one)
    {
        EXPECT_EQ(one.SetRestitutionCoefficient(0.5), KARSuccess);
        EXPECT_EQ(one.SetDynamicFrictionCoefficient(-0.25), KARSuccess);
        EXPECT_EQ(one.SetStaticFrictionCoefficient(0.75), KARSuccess);
    }

    static constexpr std::array Filled{0.5, -0.25, 0.75};
    using Layer = QOBSharedHandle<KARMPCollisionLayer>;
    Layer near = KARMPCollisionLayer::create(L"near");
    Layer far = KARMPCollisionLayer::create(L"far");
};

TEST_F(CollisionInterLayer, GivesAllEntitiesOfTheLayerAtAnIndex)
{
    interaction->AddCollidable(near);
    interaction->AddCollidable(far);
    QOBSharedVector<KARMPEntity> all{third};
    EXPECT_EQ(interaction->GetEntities(0, all), KARSuccess);
    EXPECT_EQ(all, (QOBSharedVector<KARMPEntity>{third, first, second}));
    EXPECT_EQ(interaction->GetEntities(1, all), KARSuccess);
    EXPECT_EQ(all.size(), 4U);
    for (const int index : {-1, 2})
        EXPECT_EQ(interaction->GetEntities(index, all), KARFailure);
    EXPECT_EQ(all.size(), 4U);
    ExpectReports(0);
}

/// Gives one entity at every index.
template <class T>
class UniformOf : public ConcreteEntity<T>
{
public:
    explicit UniformOf(QOBSharedHandle<KARMPEntity> entity) : m_entity(std::move(entity)) {}
    KARStatus GetCollidable(int, QOBSharedHandle<KARMPEntity>& collidable) const override
    {
        collidable = m_entity;
        return KARSuccess;
    }

private:
    QOBSharedHandle<KARMPEntity> m_entity;
};

TEST_F(CollisionInterLayer, GivesWhatTheGettersOfSubclassesGive)
{
    const Layer uniform(new UniformOf<KARMPCollisionLayer>(third));
    uniform->AddCollidable(first);
    uniform->AddCollidable(second);
    const QOBSharedHandle<KARMPCollisionInterLayer> relation(
        new UniformOf<KARMPCollisionInterLayer>(uniform));
    relation->AddCollidable(near);
    QOBSharedVector<KARMPEntity> all;
    EXPECT_EQ(relation->GetEntities(0, all), KARSuccess);
    EXPECT_EQ(all, (QOBSharedVector<KARMPEntity>{third, third}));
}

TEST_F(CollisionInterLayer, HasNoEntitiesOfWhatIsNoLayer)
{
    interaction->AddCollidable(near);
    interaction->AddCollidable(first);
    interaction->SetCollidable(0, {});
    QOBSharedVector<KARMPEntity> all;
    EXPECT_EQ(interaction->GetEntities(0, all), KARFailure);
    ExpectReports(1);
    EXPECT_THROW(interaction->GetEntities(1, all), QOBEInvalidCast);
    EXPECT_TRUE(all.empty());
}

TEST_F(CollisionInterLayer, CannotTakeItselfOutUnlessEmpty)
{
    EXPECT_EQ(interaction->RemoveParent(), KARSuccess);
    interaction->AddCollidable(near);
    EXPECT_EQ(interaction->RemoveParent(), KARFailure);
    ExpectReports(0);
}

TEST_F(CollisionInterLayer, CopiesItsCoefficientsAlone)
{
    EXPECT_EQ(CoefficientsOf(*interaction), (std::array<double, 3>{}));
    Fill(*interaction);
    interaction->AddCollidable(near);
    interaction->SetRuleType(KARMPCollisionRuleType::CollisionNoReaction);
    const auto copy = interaction->copy();
    EXPECT_EQ(CoefficientsOf(*copy), Filled);
    EXPECT_EQ(copy->GetCollidableCount(), 0);
    EXPECT_EQ(copy->GetRuleType(), KARMPCollisionRuleType::CollisionReaction);
}

TEST_F(CollisionInterLayer, WritesLayersAndCoefficientsBehindTheBase)
{
    Fill(*interaction);
    interaction->AddCollidable(near);
    interaction->AddCollidable(far);
    TestSerializer root;
    EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"CollisionInterLayer");
    const std::array names{L"Collidables", L"RuleType",        L"CollisionLayers",
                           L"Restitution", L"DynamicFriction", L"StaticFriction"};
    ASSERT_EQ(element.GetElementCount(), names.size());
    for (std::size_t index = 0; index < names.size(); ++index)
        EXPECT_EQ(element.Child(index).GetId(), names[index]);
    EXPECT_EQ(element.Text(L"CollisionLayers/CollisionLayer[1]/@id"), L"far");
    EXPECT_EQ(element.Number(L"Restitution"), 0.5);
    EXPECT_EQ(element.Number(L"DynamicFriction"), -0.25);
    EXPECT_EQ(element.Number(L"StaticFriction"), 0.75);
}

TEST_F(CollisionInterLayer, ReadsBackWhatItWroteInEitherForm)
{
    Fill(*interaction);
    interaction->AddCollidable(far);
    interaction->AddCollidable(near);
    TestSerializer root;
    interaction->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = KARMPCollisionInterLayer::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ExpectCollidables(*read, {far, near});
        EXPECT_EQ(CoefficientsOf(*read), Filled);
    }
}

TEST_F(CollisionInterLayer, ReadsAnEntityOfAnyClassAsALayerAndKeepsMissingCoefficients)
{
    const auto read = New();
    TestDeserializer root;
    TestDeserializer& element = Plain(root.Add(L"CollisionInterLayer"));
    element.Leaf(L"RuleType", L"CollisionReaction");
    element.Add(L"CollisionLayers")
        .Reference(L"CollisionLayer", L"first")
        .Reference(L"CollisionLayer", L"near");
    Fill(*read);
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(3);
    ExpectCollidables(*read, {first, near});
    EXPECT_EQ(CoefficientsOf(*read), Filled);
}

TEST_F(CollisionInterLayer, FailsWithoutNodeOrElement)
{
    TestDeserializer root;
    EXPECT_EQ(interaction->Deserialize(&root, entities), KARFailure);
    EXPECT_EQ(interaction->Deserialize(nullptr, entities), KARFailure);
    EXPECT_EQ(interaction->Serialize(nullptr), KARFailure);
    ExpectReports(3);
}

} // namespace
