// What calls refuse, so that the model stays whole.
#include "EditTesting.h"

#include <array>
#include <functional>

using namespace karmp::model;

namespace {

using RefusalTest = KARMPTestFixture;
using Entity = QOBSharedHandle<KARMPEntity>;

/// A model, and another one of the same.
struct Neighbours
{
    Model model{"M"};
    Model other{"N"};
    Ref<KARMPBody> own = Fill(model);
    Ref<KARMPBody> foreign = Fill(other);

    static Ref<KARMPBody> Fill(Model& filled)
    {
        const auto body = filled.Body("A");
        filled.Frame("F", body, {});
        filled.Variable("p", filled.Joint<KARMPRevolute>("J", filled.Ground(), body, KARMathPoint()));
        filled.Variable("q", KARMPPhysicalQuantity::Angle);
        return body;
    }
};

struct ForeignCall
{
    const char* name;
    std::function<bool(Neighbours&)> make;
};

TEST_F(RefusalTest, EntitiesOfAnotherModelAreRefused)
{
    const std::vector<ForeignCall> calls{
        {"Delete", [](Neighbours& n) { return bool(n.model.Delete(n.foreign)); }},
        {"Delete several",
         [](Neighbours& n) { return bool(n.model.Delete(RefList<KARMPBody>{n.own, n.foreign})); }},
        {"Joint",
         [](Neighbours& n) {
             return bool(n.model.Joint<KARMPRevolute>("New", n.own, n.foreign, KARMathPoint()));
         }},
        {"Joint on geometries",
         [](Neighbours& n) {
             return bool(n.model.Joint<KARMPRevolute>(
                 "New", n.model.Find<KARMPGeometry>("A.F"),
                 n.other.Find<KARMPGeometry>("GlobalBody.J")));
         }},
        {"Frame", [](Neighbours& n) { return bool(n.model.Frame("New", n.foreign, {})); }},
        {"Attach",
         [](Neighbours& n) { return bool(n.model.Attach<KARMPSphere>("New", n.foreign)); }},
        {"Variable",
         [](Neighbours& n) {
             return bool(n.model.Variable("New", n.other.Find<KARMPJoint>("J")));
         }},
        {"Couple",
         [](Neighbours& n) {
             return bool(n.model.Couple<KARMPGear>(
                 "New", {{n.model.Find<KARMPVariable>("p"), 1.0},
                         {n.other.Find<KARMPVariable>("p"), 1.0}}));
         }},
        {"Motor",
         [](Neighbours& n) {
             return bool(n.model.Motor("New", n.other.Find<KARMPVariable>("p")));
         }},
        {"Link",
         [](Neighbours& n) {
             return n.model.Link(n.own, n.other.Find<KARMPEntity>("A.F"));
         }},
        {"Unlink",
         [](Neighbours& n) {
             return n.model.Unlink(n.foreign, n.other.Find<KARMPEntity>("A.F"));
         }},
        {"Set", [](Neighbours& n) { return n.model.Set(n.foreign, "Mass", 2.0); }},
        {"Set a reference",
         [](Neighbours& n) {
             return n.model.Set(n.model.Find<KARMPEntity>("J"), "Bodies",
                                std::vector<Entity>{n.own.Handle(), n.foreign.Handle()});
         }},
        {"Rename", [](Neighbours& n) { return n.model.Rename(n.foreign, "New"); }},
    };
    for (const auto& [name, call] : calls) {
        Neighbours models;
        const std::array before{TextOf(models.model), TextOf(models.other)};
        EXPECT_FALSE(call(models)) << name;
        ASSERT_EQ(models.model.Problems().size(), 1U) << name;
        EXPECT_TRUE(models.model.Problems()[0].text.ends_with(", is of another world"))
            << name << ": " << models.model.Problems()[0].text;
        models.model.ClearProblems();
        EXPECT_TRUE(TextOf(models.model) == before[0]) << name;
        EXPECT_TRUE(TextOf(models.other) == before[1]) << name;
        EXPECT_TRUE(models.foreign) << name;
    }
}

TEST_F(RefusalTest, EntityOfAnotherModelInARecordIsRefused)
{
    Neighbours models;
    const auto sensor = models.model.Add<KARMPCollisionSensor>("S");
    const karmp::ItemInfo& item =
        *karmp::FindItem(sensor->getClassInfo(), L"ContactForceDataContainer");
    karmp::RecordValues record(item.fields.size());
    for (std::size_t i = 0; i < record.size(); ++i)
        if (item.fields[i].kind == karmp::ItemKind::Reference)
            record[i] = Entity(models.foreign.Handle());
    EXPECT_FALSE(models.model.Set(sensor, "ContactForceDataContainer",
                                  std::vector<karmp::RecordValues>{record}));
    EXPECT_EQ(sensor->GetContactForceDataCount(), 0);
}

TEST_F(RefusalTest, QuestionsAboutAnEntityOfAnotherModelHaveNoAnswer)
{
    const Neighbours models;
    EXPECT_FALSE(models.other.Dependents(models.foreign).empty());
    EXPECT_TRUE(models.model.Dependents(models.foreign).empty());
    const std::array bodies{models.foreign};
    const auto extraction = models.model.Extract(bodies);
    EXPECT_FALSE(extraction);
    EXPECT_EQ(extraction.Error().text,
              "the body to extract, KARMPBody \"A\", is of another world");
}

TEST_F(RefusalTest, LinkToAnotherWorldThatSomebodyMadeCanBeTakenAway)
{
    Neighbours models;
    ASSERT_EQ(models.own->LinkToJoint(models.other.Find<KARMPJoint>("J")), KARSuccess);
    EXPECT_TRUE(models.model.Unlink(models.own, models.other.Find<KARMPJoint>("J")));
    EXPECT_EQ(models.own->GetLinkedJointCount(), 1);
}

} // namespace
