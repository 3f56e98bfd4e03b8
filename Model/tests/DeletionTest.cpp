#include "EditTesting.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <ctime>

using namespace karmp::model;
using karmp::ItemInfo;

namespace {

using DeletionTest = KARMPTestFixture;

TEST_F(DeletionTest, NothingRefersToADeletedEntityOfAnyClass)
{
    const auto names = KARMPFactory::GetClassNames();
    for (const std::string& name : names) {
        Model model("M");
        // No world lists it, so that no model has one.
        if (name == "KARMPDiagnostic")
            continue;
        const Ref<KARMPEntity> entity = model.Add(name, "doomed");
        ASSERT_TRUE(entity) << name << (model.Problems().empty() ? "" : model.Problems()[0].text);
        EXPECT_EQ(model.Find<KARMPEntity>("doomed"), entity);
        // A holder for each item that can refer to it.
        std::size_t links = 0;
        for (const std::string& holderName : names) {
            QOBSharedHandle<KARMPEntity> sample;
            KARMPFactory::Create(holderName, sample);
            for (const ItemInfo* const item : karmp::LinkItemsOf(sample->getClassInfo())) {
                if (!IsA(entity->getClassInfo(), item->target) || !item->readOnly.empty())
                    continue;
                const auto holder = model.Add(holderName, "holder" + std::to_string(links));
                if (holder && model.Link(holder, entity, kar::ToUtf8(item->path)))
                    ++links;
            }
        }
        model.ClearProblems();
        EXPECT_TRUE(model.Rename(entity, "renamed"));
        EXPECT_GE(model.Dependents(entity).size(), links) << name;
        const auto deletion = model.Delete(entity);
        EXPECT_TRUE(deletion) << name << (model.Problems().empty() ? "" : model.Problems()[0].text);
        EXPECT_FALSE(entity) << name;
        EXPECT_EQ(BrokenLinks(model), "") << name;
        EXPECT_FALSE(model.Find<KARMPEntity>("doomed")) << name;
        EXPECT_FALSE(model.Find<KARMPEntity>("renamed")) << name;
        EXPECT_EQ(TextOf(model).find("\"doomed\""), std::string::npos) << name;
    }
}

/// A slider on a crank: two joints, a variable that a motor drives, a sensor.
struct Driven
{
    Driven()
    {
        crank = model.Body("Crank", {.mass = 1.0});
        rod = model.Body("Rod", {.mass = 1.0});
        bearing = model.Joint<KARMPRevolute>("Bearing", model.Ground(), crank, {0.0, 0.0, 0.0});
        pin = model.Joint<KARMPRevolute>("Pin", crank, rod, {1.0, 0.0, 0.0});
        angle = model.Variable("angle", bearing);
        motor = model.Add<KARMPMotor>("Motor");
        model.Link(motor, angle);
    }

    Model model{"Driven"};
    Ref<KARMPBody> crank;
    Ref<KARMPBody> rod;
    Ref<KARMPRevolute> bearing;
    Ref<KARMPRevolute> pin;
    Ref<KARMPVariable> angle;
    Ref<KARMPMotor> motor;
};

TEST_F(DeletionTest, JointTakesItsConstraintAndBodyItsGeometries)
{
    Driven driven;
    const auto deletion = driven.model.Delete(driven.pin);
    ASSERT_TRUE(deletion);
    EXPECT_EQ(deletion.gone.size(), 2U);
    EXPECT_FALSE(driven.model.Find<KARMPConstraint>("Pin.constraint"));
    EXPECT_TRUE(deletion.leftShort.empty());
    EXPECT_EQ(Lines(driven.model.Check()).find("error"), std::string::npos);
    EXPECT_TRUE(driven.model.Delete(driven.rod));
    EXPECT_FALSE(driven.model.Find<KARMPGeometry>("Rod.Pin"));
    EXPECT_EQ(BrokenLinks(driven.model), "");
}

TEST_F(DeletionTest, PreviewTellsAndDoesNothing)
{
    Driven driven;
    const std::string before = TextOf(driven.model);
    const auto preview = driven.model.Delete(driven.crank, {.preview = true});
    ASSERT_TRUE(preview);
    EXPECT_TRUE(TextOf(driven.model) == before);
    ASSERT_EQ(preview.gone.size(), 3U);
    EXPECT_EQ(preview.gone[0], driven.crank);
    // Both joints have one body left and both constraints one geometry.
    EXPECT_EQ(preview.leftShort.size(), 4U);
    const auto deletion = driven.model.Delete(driven.crank);
    EXPECT_EQ(deletion.gone.size(), preview.gone.size());
    EXPECT_EQ(deletion.unlinked.size(), preview.unlinked.size());
    EXPECT_EQ(BrokenLinks(driven.model), "");
}

TEST_F(DeletionTest, WithShortTakesWhatWouldLackSomething)
{
    Driven driven;
    ASSERT_TRUE(driven.model.Delete(driven.crank, {.withShort = true}));
    EXPECT_EQ(driven.model.All<KARMPJoint>().size(), 0U);
    EXPECT_EQ(driven.model.All<KARMPConstraint>().size(), 0U);
    EXPECT_TRUE(driven.angle);
    EXPECT_TRUE(driven.rod);
    EXPECT_EQ(BrokenLinks(driven.model), "");
    ASSERT_TRUE(driven.model.Delete(driven.angle, {.withShort = true}));
    EXPECT_FALSE(driven.motor);
}

TEST_F(DeletionTest, WithShortTakesShapesWithoutBodiesAndExpressionsThatLoseAVariable)
{
    Driven driven;
    Model& model = driven.model;
    const auto other = model.Variable("other", KARMPPhysicalQuantity::Angle, 0.0);
    const auto sum = model.Expression("Sum", KARMPPhysicalQuantity::Angle, "angle + other",
                                      {driven.angle, other});
    const auto shape = model.Add<KARMP3DRep>("Shape");
    const auto shared = model.Add<KARMP3DRep>("Shared");
    ASSERT_TRUE(model.Link(shape, driven.rod));
    ASSERT_TRUE(model.Link(shared, driven.rod));
    ASSERT_TRUE(model.Link(shared, driven.crank));
    ASSERT_TRUE(sum);
    ASSERT_TRUE(model.Delete(driven.rod, {.withShort = true}));
    EXPECT_FALSE(shape);
    EXPECT_TRUE(shared);
    ASSERT_TRUE(model.Delete(other, {.withShort = true}));
    EXPECT_FALSE(sum);
    EXPECT_TRUE(driven.angle);
}

/// What a deletion leaves short, each with its item.
std::string Short(const Deletion& deletion)
{
    std::string text;
    for (const Dependent& left : deletion.leftShort)
        text += kar::ToUtf8(left.entity->getEntityName()) + ' ' + left.item + ' ';
    return text;
}

TEST_F(DeletionTest, EntityIsLeftShortByTheLeastNumberOfEntriesThatItNeeds)
{
    Driven driven;
    Model& model = driven.model;
    const auto preview = [&model](const Ref<KARMPEntity>& entity) {
        return Short(model.Delete(entity, {.preview = true}));
    };
    EXPECT_EQ(preview(model.Find<KARMPEntity>("Pin.constraint")), "Pin Constraints ");
    RefList<KARMPVariable> variables;
    const auto equation = model.Add<KARMPLinearEquation>("Equation");
    for (const char* const name : {"p", "q", "r"})
        variables.push_back(model.Variable(name, KARMPPhysicalQuantity::Angle));
    model.Expression("Sum", KARMPPhysicalQuantity::Angle, "p + q + r", variables);
    for (const auto& variable : variables)
        ASSERT_TRUE(model.Link(equation, variable));
    EXPECT_EQ(preview(variables[0]), "Sum Variables ");
    ASSERT_TRUE(model.Unlink(equation, variables[2]));
    EXPECT_EQ(preview(variables[0]), "Equation Variables Sum Variables ");
    model.Connect<KARMPBushing>("Bushing", driven.crank, driven.rod, KARMathAxis());
    EXPECT_EQ(preview(model.Find<KARMPEntity>("Rod.Bushing")), "Bushing Geometries ");
    const auto rule = model.Add<KARMPCollisionRule>("Rule");
    const auto shape = model.Add<KARMP3DRep>("Shape");
    const auto other = model.Add<KARMP3DRep>("Other");
    ASSERT_TRUE(model.Set(rule, {{"Collidables", {shape, other}}}));
    EXPECT_EQ(preview(shape), "Rule Collidables ");
    const auto flat = model.PlanarBody("Flat");
    model.Joint<KARMPUserDefined2D>("Hinge", model.PlanarGround(), flat, {1.0, 0.0});
    EXPECT_EQ(preview(flat), "Hinge.constraint Geometries Hinge Bodies2D ");
    const auto moved = model.Add<KARMPDisplacementSensor>("Moved", {{"Body", driven.crank}});
    EXPECT_EQ(preview(moved), "");
    EXPECT_TRUE(model.Problems().empty()) << model.Problems()[0].text;
}

TEST_F(DeletionTest, WithShortGoesOnToWhatNeedsWhatIsShort)
{
    Driven driven;
    const auto target = driven.model.Expression("Target", KARMPPhysicalQuantity::Angle, "2 * angle",
                                                {driven.angle});
    const auto other = driven.model.Add<KARMPMotor>("Other", {{"Position", target}});
    ASSERT_TRUE(driven.model.Delete(driven.angle, {.withShort = true}));
    EXPECT_FALSE(target);
    EXPECT_FALSE(other);
    EXPECT_EQ(BrokenLinks(driven.model), "");
}

TEST_F(DeletionTest, ElementsGoWithTheEntityThatIsMadeOfThem)
{
    Model model("M");
    const auto whole = model.Add<KARMPSketch>("whole");
    const auto part = model.Add<KARMPSketch>("part");
    const auto point = model.Add<KARMPPoint>("point");
    const auto told = model.Add<KARMPSketch>("told");
    ASSERT_TRUE(model.Link(whole, part, "AggregatedElements"));
    ASSERT_TRUE(model.Link(part, point, "AggregatedElements"));
    // No world lists it.
    const QOBSharedHandle<KARMPEntity> finding(KARMPDiagnostic::create(L"finding"));
    ASSERT_TRUE(model.Link(part, Ref<KARMPEntity>(finding), "AggregatedElements"));
    EXPECT_EQ(model.Delete(whole).gone.size(), 4U);
    EXPECT_FALSE(part);
    EXPECT_FALSE(point);
    EXPECT_TRUE(told);
}

TEST_F(DeletionTest, WhatASensorHasMeasuredOfADeletedEntityIsForgotten)
{
    Driven driven;
    Model& model = driven.model;
    const auto sensor = model.Add<KARMPCollisionSensor>("Sensor");
    KARMPContactForceData contact;
    contact.firstBody = driven.rod.Handle();
    contact.secondBody = driven.rod.Handle();
    ASSERT_EQ(sensor->AddContactForceData(contact), KARSuccess);
    const auto support = model.Add<KARMPSupport>("Support", {{"Target", driven.rod}});
    EXPECT_TRUE(model.Delete(driven.crank));
    EXPECT_EQ(sensor->GetContactForceDataCount(), 1);
    const auto deletion = model.Delete(driven.rod);
    EXPECT_TRUE(std::any_of(
        deletion.unlinked.begin(), deletion.unlinked.end(), [&](const Dependent& dropped) {
            return dropped.entity == sensor && dropped.item == "ContactForceDataContainer" &&
                   dropped.target == driven.rod;
        }));
    EXPECT_EQ(sensor->GetContactForceDataCount(), 0);
    EXPECT_TRUE(model.Get(support, "Target")->IsNone());
    EXPECT_EQ(BrokenLinks(model), "");
}

TEST_F(DeletionTest, DependentsTellEachItemThatRefers)
{
    const Driven driven;
    const auto dependents = driven.model.Dependents(driven.angle);
    ASSERT_EQ(dependents.size(), 2U);
    EXPECT_EQ(dependents[0].item, "Variables");
    EXPECT_EQ(dependents[1].entity, driven.motor);
    EXPECT_EQ(dependents[1].item, "Variable");
    EXPECT_EQ(dependents[1].target, driven.angle);
}

TEST_F(DeletionTest, GroundAndGlobalsStay)
{
    Driven driven;
    const std::string before = TextOf(driven.model);
    EXPECT_FALSE(driven.model.Delete(driven.model.Ground()));
    EXPECT_FALSE(driven.model.Delete(driven.model.Time()));
    EXPECT_FALSE(driven.model.Delete(driven.model.Find<KARMPGeometry>("GlobalAxisSystem")));
    ASSERT_EQ(driven.model.Problems().size(), 3U);
    EXPECT_EQ(driven.model.Problems()[1].text,
              "KARMPVariable \"GlobalTime\" belongs to the world and stays");
    driven.model.ClearProblems();
    EXPECT_TRUE(TextOf(driven.model) == before);
    driven.model.World()->SetGroundBody(driven.rod.Handle());
    EXPECT_FALSE(driven.model.Delete(driven.rod));
    EXPECT_FALSE(driven.model.Delete(driven.model.Find<KARMPBody>("GlobalBody")));
}

TEST_F(DeletionTest, DeletedEntityIsNotDeletedTwice)
{
    Driven driven;
    EXPECT_TRUE(driven.model.Delete(driven.motor));
    EXPECT_FALSE(driven.model.Delete(driven.motor));
    ASSERT_EQ(driven.model.Problems().size(), 1U);
    EXPECT_EQ(driven.model.Problems()[0].text, "the entity to delete was deleted");
    EXPECT_TRUE(driven.model.Add<KARMPMotor>("Motor"));
}

TEST_F(DeletionTest, SeveralEntitiesGoAtOnceOrNotAtAll)
{
    Driven driven;
    const std::string before = TextOf(driven.model);
    EXPECT_FALSE(driven.model.Delete(RefList<KARMPBody>{driven.crank, driven.model.Ground()}));
    EXPECT_FALSE(driven.model.Delete(RefList<KARMPBody>{driven.crank, nullptr}));
    EXPECT_EQ(driven.model.Problems().size(), 2U);
    driven.model.ClearProblems();
    EXPECT_TRUE(TextOf(driven.model) == before);
    // The constraints go with the joints, which are given twice.
    RefList<KARMPEntity> doomed;
    for (int time = 0; time < 2; ++time)
        for (const auto& joint : driven.model.All<KARMPJoint>())
            doomed.push_back(joint);
    const auto deletion = driven.model.Delete(doomed);
    EXPECT_EQ(deletion.gone.size(), 4U);
    EXPECT_TRUE(driven.model.All<KARMPConstraint>().empty());
    EXPECT_EQ(BrokenLinks(driven.model), "");
    EXPECT_TRUE(driven.model.Delete(RefList<KARMPBody>()));
}

/// The seconds of the processor that the deletion of a body takes for each of its joints.
double SecondsOfAJoint(int joints)
{
    Model model("M");
    const auto hub = model.Body("hub");
    for (int i = 0; i < joints; ++i)
        model.Link(model.Add<KARMPRevolute>("joint" + std::to_string(i)), hub);
    const std::clock_t begin = std::clock();
    const auto deletion = model.Delete(hub);
    const std::clock_t end = std::clock();
    EXPECT_EQ(deletion.leftShort.size(), static_cast<std::size_t>(joints));
    return static_cast<double>(end - begin) / CLOCKS_PER_SEC / joints;
}

TEST_F(DeletionTest, BodyOfManyJointsGoesInATimeThatGrowsLikeTheirNumber)
{
    double few = SecondsOfAJoint(500);
    for (int time = 0; time < 4; ++time)
        few = std::min(few, SecondsOfAJoint(500));
    EXPECT_LT(SecondsOfAJoint(30'000), 5.0 * few);
}

/// An interaction that does not let go.
class HoldingRule : public KARMPCollisionRule
{
public:
    KARStatus RemoveCollidable(const QOBSharedHandle<KARMPEntity>&) override
    {
        return KARUnexpected;
    }
};

TEST_F(DeletionTest, RefusalUndoesWhatWasUnlinkedBefore)
{
    Driven driven;
    const auto layer = driven.model.Add<KARMPCollisionLayer>("Layer");
    for (const auto& body : {driven.crank, driven.rod})
        ASSERT_TRUE(driven.model.Link(layer, body, "Entities"));
    const QOBSharedHandle<KARMPInteraction> rule(new HoldingRule);
    rule->setEntityName(L"Rule");
    rule->SetIdentifier(L"Rule");
    driven.model.World()->Add<KARMPInteraction>(rule);
    rule->AddCollidable(driven.crank.Handle());
    const std::string before = TextOf(driven.model);
    const int line = __LINE__ + 1;
    EXPECT_FALSE(driven.model.Delete(driven.crank));
    ASSERT_EQ(driven.model.Problems().size(), 1U);
    EXPECT_EQ(driven.model.Problems()[0].status, KARUnexpected);
    EXPECT_EQ(driven.model.Problems()[0].where.line, line);
    driven.model.ClearProblems();
    EXPECT_TRUE(TextOf(driven.model) == before);
    EXPECT_TRUE(driven.crank);
    rule->orphanObject();
}

} // namespace
