#include "KARMPCollisionRule.h"
#include "InteractionTesting.h"
#include "KARMPPoint.h"
#include "QOBException.h"

#include <array>
#include <limits>

namespace {

using Rule = KARMPCollisionRule;

constexpr std::array Names{L"Restitution",
                           L"DynamicFriction",
                           L"StaticFriction",
                           L"YoungModulus1",
                           L"PoissonCoef1",
                           L"ElasticLayerThickness1",
                           L"YoungModulus2",
                           L"PoissonCoef2",
                           L"ElasticLayerThickness2",
                           L"Damping",
                           L"EnableDampingTransition",
                           L"DampingTransitionDepth",
                           L"FrictionCoef",
                           L"FrictionVelocity"};

class CollisionRule : public InteractionTesting<KARMPCollisionRule>
{
protected:
    /// Gives each parameter the number of its name; that of the tolerance is the last one.
    static void Fill(Rule& rule)
    {
        rule.SetRestitutionCoefficient(1.5);
        rule.SetDynamicFrictionCoefficient(-2.5);
        rule.SetStaticFrictionCoefficient(3.5);
        rule.SetFirstCollidableParameters(4.5, 5.5, 6.5);
        rule.SetSecondCollidableParameters(7.5, 8.5, 9.5);
        rule.SetDampingCoefficient(10.5);
        rule.EnableDampingTransition(1);
        rule.SetDampingTransitionDepth(12.5);
        rule.SetFrictionParameters(13.5, 14.5);
        rule.SetMaxDepthTol(15.5);
    }
    /// All parameters, in the order of the fields.
    static std::array<double, 15> ParametersOf(const Rule& rule)
    {
        std::array<double, 15> all{};
        EXPECT_EQ(rule.GetRestitutionCoefficient(all[0]), KARSuccess);
        EXPECT_EQ(rule.GetDynamicFrictionCoefficient(all[1]), KARSuccess);
        EXPECT_EQ(rule.GetStaticFrictionCoefficient(all[2]), KARSuccess);
        EXPECT_EQ(rule.GetFirstCollidableParameters(all[3], all[4], all[5]), KARSuccess);
        EXPECT_EQ(rule.GetSecondCollidableParameters(all[6], all[7], all[8]), KARSuccess);
        EXPECT_EQ(rule.GetDampingCoefficient(all[9]), KARSuccess);
        all[10] = rule.IsDampingTransitionEnabled();
        EXPECT_EQ(rule.GetDampingTransitionDepth(all[11]), KARSuccess);
        EXPECT_EQ(rule.GetFrictionParameters(all[12], all[13]), KARSuccess);
        EXPECT_EQ(rule.GetMaxDepthTol(all[14]), KARSuccess);
        return all;
    }
    /// Adds an element whose parameters are the numbers 1 to 14, with another number for the
    /// enabled transition; that of an index is left out.
    static void FillElement(TestDeserializer& root, int enabled, std::size_t leftOut)
    {
        TestDeserializer& element = Plain(root.Add(L"CollisionRule"));
        element.Leaf(L"RuleType", L"CollisionReaction");
        for (std::size_t index = 0; index < Names.size(); ++index) {
            if (index == leftOut)
                continue;
            if (index == 10)
                element.Leaf(Names[index], enabled);
            else
                element.Leaf(Names[index], static_cast<double>(index + 1));
        }
    }

    static constexpr std::array<double, 15> Filled{1.5, -2.5, 3.5, 4.5,  5.5,  6.5,  7.5, 8.5,
                                                   9.5, 10.5, 1.0, 12.5, 13.5, 14.5, 15.5};
};

TEST_F(CollisionRule, IsANewOneWithReactionAndNoParameters)
{
    EXPECT_EQ(static_cast<int>(interaction->GetRuleType()), 1);
    EXPECT_EQ(ParametersOf(*interaction), (std::array<double, 15>{}));
    EXPECT_EQ(interaction->GetCollidableCount(), 0);
}

TEST_F(CollisionRule, AddsTheFirstBodyWhenItIsEmpty)
{
    EXPECT_EQ(interaction->SetFirstBody(first), KARSuccess);
    ExpectCollidables(*interaction, {first});
    ExpectReports(0);
}

TEST_F(CollisionRule, ReplacesTheFirstBodyAndFails)
{
    interaction->SetFirstBody(first);
    interaction->SetSecondBody(second);
    EXPECT_EQ(interaction->SetFirstBody(third), KARFailure);
    ExpectReports(1);
    ExpectCollidables(*interaction, {third, second});
    EXPECT_EQ(interaction->SetFirstBody({}), KARFailure);
    ExpectReports(1);
    ExpectCollidables(*interaction, {third, second});
}

TEST_F(CollisionRule, AppendsTheSecondBodyBehindOne)
{
    interaction->SetFirstBody(first);
    EXPECT_EQ(interaction->SetSecondBody(second), KARSuccess);
    ExpectCollidables(*interaction, {first, second});
    EXPECT_EQ(interaction->SetSecondBody(third), KARFailure);
    ExpectReports(1);
    ExpectCollidables(*interaction, {first, third});
    EXPECT_EQ(interaction->SetSecondBody({}), KARFailure);
    ExpectReports(1);
}

TEST_F(CollisionRule, MakesTheSecondBodyTheFirstWhenItIsEmpty)
{
    EXPECT_EQ(interaction->SetSecondBody(second), KARSuccess);
    ExpectCollidables(*interaction, {second});
    EXPECT_EQ(interaction->SetSecondBody(second), KARUnchanged);
    ExpectCollidables(*interaction, {second});
}

/// Refuses to replace an entry.
class RefusingRule : public ConcreteEntity<KARMPCollisionRule>
{
public:
    KARStatus SetCollidable(int, const QOBSharedHandle<KARMPEntity>&) override { return answer; }
    KARStatus answer = KARFailure;
};

TEST_F(CollisionRule, SucceedsWhenTheFirstBodyCouldNotBeReplaced)
{
    const QOBSharedHandle<RefusingRule> rule(new RefusingRule);
    rule->SetFirstBody(first);
    rule->SetSecondBody(second);
    for (const KARStatus answer : {KARFailure, KARUnchanged}) {
        rule->answer = answer;
        EXPECT_EQ(rule->SetFirstBody(third), KARSuccess);
        EXPECT_EQ(rule->SetSecondBody(third), KARSuccess);
    }
    ExpectReports(0);
    ExpectCollidables(*rule, {first, second});
}

TEST_F(CollisionRule, GivesItsBodies)
{
    Body found = third;
    EXPECT_EQ(interaction->GetFirstBody(found), KARFailure);
    EXPECT_FALSE(found);
    ExpectReports(1);
    interaction->SetFirstBody(first);
    found = third;
    EXPECT_EQ(interaction->GetSecondBody(found), KARFailure);
    EXPECT_FALSE(found);
    ExpectReports(1);
    interaction->SetSecondBody(second);
    EXPECT_EQ(interaction->GetFirstBody(found), KARSuccess);
    EXPECT_EQ(found, first);
    EXPECT_EQ(interaction->GetSecondBody(found), KARSuccess);
    EXPECT_EQ(found, second);
}

TEST_F(CollisionRule, GivesNoBodyForANullEntryAndThrowsForAnotherClass)
{
    interaction->SetFirstBody(first);
    interaction->SetSecondBody(second);
    interaction->SetCollidable(0, {});
    interaction->SetCollidable(1, KARMPPoint::create(L"p"));
    Body found = third;
    EXPECT_EQ(interaction->GetFirstBody(found), KARSuccess);
    EXPECT_FALSE(found);
    EXPECT_THROW(interaction->GetSecondBody(found), QOBEInvalidCast);
    ExpectReports(0);
}

TEST_F(CollisionRule, TakesABodyOut)
{
    interaction->SetFirstBody(first);
    interaction->SetSecondBody(second);
    EXPECT_EQ(interaction->RemoveBody(first), KARSuccess);
    EXPECT_EQ(interaction->RemoveBody(first), KARUnchanged);
    ExpectCollidables(*interaction, {second});
    EXPECT_EQ(interaction->RemoveBody({}), KARFailure);
    ExpectReports(1);
}

/// Notes which operations on its list are called.
class NotingRule : public ConcreteEntity<KARMPCollisionRule>
{
public:
    KARStatus AddCollidable(const QOBSharedHandle<KARMPEntity>& collidable) override
    {
        calls.emplace_back("Add");
        return KARMPCollisionRule::AddCollidable(collidable);
    }
    KARStatus GetCollidable(int index, QOBSharedHandle<KARMPEntity>& collidable) const override
    {
        calls.push_back("Get " + std::to_string(index));
        return KARMPCollisionRule::GetCollidable(index, collidable);
    }
    KARStatus RemoveCollidable(const QOBSharedHandle<KARMPEntity>& collidable) override
    {
        calls.emplace_back("Remove");
        return KARMPCollisionRule::RemoveCollidable(collidable);
    }
    mutable std::vector<std::string> calls;
};

TEST_F(CollisionRule, ReachesItsBodiesThroughTheOperationsOfASubclass)
{
    const QOBSharedHandle<NotingRule> rule(new NotingRule);
    rule->SetFirstBody(first);
    rule->SetSecondBody(second);
    Body found;
    rule->GetFirstBody(found);
    rule->GetSecondBody(found);
    rule->RemoveBody(first);
    EXPECT_EQ(rule->calls, (std::vector<std::string>{"Add", "Add", "Get 0", "Get 1", "Remove"}));
}

TEST_F(CollisionRule, StoresWhateverItIsGiven)
{
    Fill(*interaction);
    EXPECT_EQ(ParametersOf(*interaction), Filled);
    interaction->SetRestitutionCoefficient(-std::numeric_limits<double>::infinity());
    double coefficient = 0.0;
    interaction->GetRestitutionCoefficient(coefficient);
    EXPECT_EQ(coefficient, -std::numeric_limits<double>::infinity());
    interaction->EnableDampingTransition(2);
    EXPECT_EQ(interaction->IsDampingTransitionEnabled(), 2);
    ExpectReports(0);
}

TEST_F(CollisionRule, CopiesItsParametersAndNothingOfTheBase)
{
    Fill(*interaction);
    interaction->SetFirstBody(first);
    interaction->SetRuleType(KARMPCollisionRuleType::CollisionNoReaction);
    const auto copy = interaction->copy();
    EXPECT_EQ(ParametersOf(*copy), Filled);
    EXPECT_EQ(copy->GetCollidableCount(), 0);
    EXPECT_EQ(copy->GetRuleType(), KARMPCollisionRuleType::CollisionReaction);
}

TEST_F(CollisionRule, WritesItsParametersInOrderBehindTheBase)
{
    Fill(*interaction);
    interaction->SetFirstBody(first);
    TestSerializer root;
    EXPECT_EQ(interaction->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"CollisionRule");
    ASSERT_EQ(element.GetElementCount(), 2 + Names.size());
    EXPECT_EQ(element.Child(0).GetId(), L"Collidables");
    EXPECT_EQ(element.Child(1).GetId(), L"RuleType");
    for (std::size_t index = 0; index < Names.size(); ++index) {
        const TestSerializer& child = element.Child(2 + index);
        EXPECT_EQ(child.GetId(), Names[index]);
        if (index == 10)
            EXPECT_EQ(child.GetValuei(), 1);
        else
            EXPECT_EQ(child.GetValued(), Filled[index]);
    }
}

TEST_F(CollisionRule, WritesOneForAnyEnabledTransition)
{
    for (const int enabled : {0, 1, 2, 255}) {
        interaction->EnableDampingTransition(static_cast<unsigned char>(enabled));
        TestSerializer root;
        interaction->Serialize(&root);
        EXPECT_EQ(root.Integer(L"CollisionRule/EnableDampingTransition"), enabled != 0 ? 1 : 0);
    }
}

TEST_F(CollisionRule, ReadsAnEnabledTransitionFromOneOnly)
{
    constexpr unsigned char No = 0;
    constexpr unsigned char Yes = 1;
    for (const int number : {1, 0, 2, -1, 257}) {
        TestDeserializer root;
        FillElement(root, number, Names.size());
        const auto read = Rule::create(L"");
        read->EnableDampingTransition(number == 1 ? No : Yes);
        EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
        EXPECT_EQ(read->IsDampingTransitionEnabled(), number == 1 ? Yes : No) << number;
    }
}

TEST_F(CollisionRule, ReadsBackAllButTheDepthToleranceInEitherForm)
{
    Fill(*interaction);
    interaction->SetFirstBody(first);
    interaction->SetSecondBody(second);
    TestSerializer root;
    interaction->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = Rule::create(L"");
        read->SetMaxDepthTol(0.25);
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        auto expected = Filled;
        expected[14] = 0.25;
        EXPECT_EQ(ParametersOf(*read), expected);
        ExpectCollidables(*read, {first, second});
    }
}

TEST_F(CollisionRule, KeepsAParameterThatIsMissing)
{
    for (std::size_t missing = 0; missing < Names.size(); ++missing) {
        SCOPED_TRACE(missing);
        TestDeserializer root;
        FillElement(root, 1, missing);
        const auto read = Rule::create(L"");
        Fill(*read);
        read->EnableDampingTransition(3);
        EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
        ExpectReports(1);
        const auto found = ParametersOf(*read);
        for (std::size_t index = 0; index < Names.size(); ++index) {
            const double number = index == 10 ? 1.0 : static_cast<double>(index + 1);
            const double kept = index == 10 ? 3.0 : Filled[index];
            EXPECT_EQ(found[index], index == missing ? kept : number) << index;
        }
    }
}

TEST_F(CollisionRule, FailsWithoutNodeOrElement)
{
    TestDeserializer root;
    EXPECT_EQ(interaction->Deserialize(&root, entities), KARFailure);
    EXPECT_EQ(interaction->Deserialize(nullptr, entities), KARFailure);
    EXPECT_EQ(interaction->Serialize(nullptr), KARFailure);
    ExpectReports(3);
}

TEST_F(CollisionRule, FailsOnlyWhenItsElementCannotBeAdded)
{
    Fill(*interaction);
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(interaction->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
            EXPECT_EQ(TakeReports() > 0, failing != 0);
            if (failing > 1)
                EXPECT_EQ(root.Child(0).GetElementCount(), Names.size()) << failing;
        });
    EXPECT_EQ(creations, 16U);
}

} // namespace
