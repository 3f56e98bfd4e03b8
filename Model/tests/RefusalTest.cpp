// What calls refuse, so that the model stays whole.
#include "EditTesting.h"

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>
#include <utility>

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
        filled.Variable("p",
                        filled.Joint<KARMPRevolute>("J", filled.Ground(), body, KARMathPoint()));
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
         [](Neighbours& n) {
             return bool(n.model.Delete(RefList<KARMPBody>{n.own, n.foreign}));
         }},
        {"Joint",
         [](Neighbours& n) {
             return bool(n.model.Joint<KARMPRevolute>("New", n.own, n.foreign, KARMathPoint()));
         }},
        {"Joint on geometries",
         [](Neighbours& n) {
             return bool(n.model.Joint<KARMPRevolute>("New", n.model.Find<KARMPGeometry>("A.F"),
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
             return bool(
                 n.model.Couple<KARMPGear>("New", {{n.model.Find<KARMPVariable>("p"), 1.0},
                                                   {n.other.Find<KARMPVariable>("p"), 1.0}}));
         }},
        {"Motor",
         [](Neighbours& n) {
             return bool(n.model.Motor("New", n.other.Find<KARMPVariable>("p")));
         }},
        {"Link",
         [](Neighbours& n) { return n.model.Link(n.own, n.other.Find<KARMPEntity>("A.F")); }},
        {"Unlink",
         [](Neighbours& n) { return n.model.Unlink(n.foreign, n.other.Find<KARMPEntity>("A.F")); }},
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
    EXPECT_EQ(extraction.Error().text, "the body to extract, KARMPBody \"A\", is of another world");
    Model other("N");
    const auto law = other.Expression("L", KARMPPhysicalQuantity::Angle, "2 * t", {other.Time()});
    EXPECT_EQ(models.model.Evaluate(law, {{"t", 1.0}}).Error().text,
              "the expression, KARMPExpression \"L\", is of another world");
}

TEST_F(RefusalTest, LinkToAnotherWorldThatSomebodyMadeCanBeTakenAway)
{
    Neighbours models;
    ASSERT_EQ(models.own->LinkToJoint(models.other.Find<KARMPJoint>("J")), KARSuccess);
    EXPECT_TRUE(models.model.Unlink(models.own, models.other.Find<KARMPJoint>("J")));
    EXPECT_EQ(models.own->GetLinkedJointCount(), 1);
}

TEST_F(RefusalTest, WhatWouldBeInconsistentIsRefused)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    Model model("M");
    const auto body = Neighbours::Fill(model);
    const auto p = model.Find<KARMPVariable>("p");
    const auto child = model.Add<KARMPSketch>("child");
    const auto parent = model.Add<KARMPSketch>("parent");
    ASSERT_TRUE(model.Link(parent, child, "AggregatedElements"));
    const std::string before = TextOf(model);
    std::size_t refused = 0;
    const auto expectRefused = [&](bool succeeded) {
        EXPECT_FALSE(succeeded) << refused;
        EXPECT_EQ(model.Problems().size(), ++refused);
    };
    expectRefused(bool(model.Couple<KARMPGear>("New", {{p, 1.0}, {p, 2.0}})));
    expectRefused(bool(
        model.Couple<KARMPRevolute>("New", {{p, 1.0}, {model.Find<KARMPVariable>("q"), 2.0}})));
    expectRefused(model.Link(parent, parent, "AggregatedElements"));
    expectRefused(model.Link(child, parent, "AggregatedElements"));
    expectRefused(bool(model.Attach<KARMPRevolute>("New", body)));
    expectRefused(bool(model.Attach<KARMPPoint2D>("New", body)));
    expectRefused(bool(model.Frame("", body, {})));
    for (const double mass : {nan, infinite, -1.0})
        expectRefused(bool(model.Body("New", {.mass = mass})));
    EXPECT_EQ(model.Problems().back().text,
              "the mass of KARMPBody \"New\" is no finite number from 0 on");
    expectRefused(bool(model.Body("New", {.at = KARMathPoint(0.0, nan, 0.0)})));
    expectRefused(bool(model.PlanarBody("New", {.at = KARMathPoint2D(infinite, 0.0)})));
    expectRefused(bool(model.Body("New", {.centerOfGravity = KARMathPoint(0.0, infinite, 0.0)})));
    expectRefused(bool(model.PlanarBody("New", {.centerOfGravity = KARMathPoint2D(0.0, nan)})));
    for (int column = 0; column < 3; ++column) {
        KARMath3x3Matrix inertia = KARMath3x3Matrix::Identity();
        inertia.SetColumn(column, {0.0, 1.0, nan});
        expectRefused(bool(model.Body("New", {.inertia = inertia})));
    }
    expectRefused(bool(model.PlanarBody("New", {.inertia = {{{nan, 0.0}, {0.0, 1.0}}}})));
    expectRefused(bool(model.PlanarBody("New", {.inertia = {{{1.0, 0.0}, {0.0, infinite}}}})));
    expectRefused(bool(model.Point("New", body, KARMathPoint(0.0, nan, 0.0))));
    const KARMathVector x(1.0, 0.0, 0.0);
    const KARMathVector y(0.0, 1.0, 0.0);
    for (const KARMathAxis& skew :
         {KARMathAxis(KARMathPoint(), x, y, {0.0, 0.0, -1.0}),
          KARMathAxis(KARMathPoint(), x, {0.6, 0.8, 0.0}, {0.0, 0.0, 0.8}),
          KARMathAxis(KARMathPoint(), x, 2.0 * y, {0.0, 0.0, 2.0}),
          KARMathAxis(KARMathPoint(), 2.0 * x, y, {0.0, 0.0, 2.0}),
          KARMathAxis(KARMathPoint(), x, y, {0.0, 1e-5, 1.0})}) {
        expectRefused(bool(model.Frame("New", model.Ground(), skew)));
        expectRefused(bool(model.Body("New", {.position = KARMathTransformation(skew)})));
    }
    EXPECT_EQ(model.Problems()[model.Problems().size() - 2].text,
              "the position of \"New\" is no frame of right-handed axes of length 1");
    for (const KARMath2x2Matrix& skew :
         {KARMath2x2Matrix({1.0, 0.0}, {0.0, -1.0}), KARMath2x2Matrix({2.0, 0.0}, {0.0, 1.0}),
          KARMath2x2Matrix({1.0, 0.0}, {0.6, 0.8})})
        expectRefused(
            bool(model.PlanarBody("New", {.position = KARMathTransformation2D(skew, {})})));
    EXPECT_EQ(model.Problems().back().text, "the position of KARMPBody2D \"New\" is no frame of "
                                            "right-handed axes of length 1");
    KARMathAxis nowhere;
    nowhere.SetOrigin({0.0, nan, 0.0});
    expectRefused(bool(model.Frame("New", body, nowhere)));
    EXPECT_EQ(model.Problems().back().text, "the position of \"New\" is not finite");
    expectRefused(bool(model.Add("", "New")));
    EXPECT_EQ(model.Problems().back().text, "there is no class \"\"");
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_EQ(Model("M", {.gravity = {0.0, nan, 0.0}}).Problems().size(), 1U);
    EXPECT_EQ(Model("M", {.linearTolerance = -1.0}).Problems().size(), 1U);
    EXPECT_FALSE(MeetingPoint({}, nan, KARMathPoint(1.0, 0.0, 0.0), 1.0));
}

TEST_F(RefusalTest, NumbersThatAreNotFiniteAreRefusedByAllCalls)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    using Quantity = KARMPPhysicalQuantity;
    Model model("M");
    const auto body = Neighbours::Fill(model);
    const auto joint = model.Find<KARMPJoint>("J");
    const auto p = model.Find<KARMPVariable>("p");
    const auto q = model.Find<KARMPVariable>("q");
    const std::string before = TextOf(model);
    const auto expectRefused = [&](bool succeeded, const std::string& text) {
        EXPECT_FALSE(succeeded);
        ASSERT_EQ(model.Problems().size(), 1U) << text;
        EXPECT_EQ(model.Problems()[0].text, text);
        model.ClearProblems();
    };
    expectRefused(bool(model.Constant("c", Quantity::Length, infinite)),
                  "the number of \"c\" is not finite");
    expectRefused(bool(model.Variable("v", Quantity::Length, nan)),
                  "the value of KARMPVariable \"v\" is not finite");
    expectRefused(bool(model.Motor("m", p, {.velocity = nan})),
                  "the number of \"m.velocity\" is not finite");
    expectRefused(bool(model.Couple<KARMPGear>("g", {{p, nan}, {q, 1.0}})),
                  "the numbers of \"g\" are not finite");
    expectRefused(bool(model.Couple<KARMPGear>("g", {{p, 1.0}, {q, 1.0}}, infinite)),
                  "the numbers of \"g\" are not finite");
    expectRefused(model.Set(body, {{"Mass", nan}}),
                  "\"Weight/Mass\" of KARMPBody \"A\" is to have finite numbers");
    expectRefused(model.Set(body, {{"COG", KARMathPoint(0.0, infinite, 0.0)}}),
                  "\"Weight/COG\" of KARMPBody \"A\" is to have finite numbers");
    expectRefused(bool(model.Add<KARMPConstant>("c", {{"Value", nan}})),
                  "\"Value\" of KARMPConstant \"c\" is to have finite numbers");
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_EQ(Model("M", {.gravity = {0.0, nan, 0.0}}).Problems()[0].text,
              "the gravity of the world is not finite");
    EXPECT_EQ(Model("M", {.angularTolerance = 0.0}).Problems()[0].text,
              "a tolerance of the world is no finite number above 0");
}

TEST_F(RefusalTest, RecordsWithNumbersThatAreNotFiniteAreRefused)
{
    Model model("M");
    const auto constraint = model.Add<KARMPRevoluteConstraint>("C");
    const auto set = [&](double last) {
        using Records = std::vector<karmp::RecordValues>;
        const karmp::NumberArray values{1.0, 2.0, last};
        return model.Set(constraint, "ConstraintParameters",
                         karmp::Value(Records{{1, 2, 3, 4, 5, values}}));
    };
    EXPECT_FALSE(set(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(
        model.Problems()[0].text,
        "\"ConstraintParameters\" of KARMPRevoluteConstraint \"C\" is to have finite numbers");
    EXPECT_TRUE(set(3.0));
}

TEST_F(RefusalTest, MotorHasOneTargetInTheQuantityOfItsVariable)
{
    Model model("M");
    Neighbours::Fill(model);
    const auto p = model.Find<KARMPVariable>("p");
    const auto bare = model.Add<KARMPVariable>("bare");
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Motor("m", p, {.position = 1.0, .velocity = 2.0}));
    EXPECT_FALSE(model.Motor("m", bare, {.velocity = 2.0}));
    EXPECT_FALSE(model.Motor("m", bare, {.maximum = 5.0}));
    ASSERT_EQ(model.Problems().size(), 3U);
    EXPECT_EQ(model.Problems()[0].text, "the motor \"m\" is to reach a position, a velocity or an "
                                        "acceleration, and not several of them");
    EXPECT_EQ(model.Problems()[1].text,
              "KARMPVariable \"bare\" has no quantity, in which a motor could have a number");
    EXPECT_EQ(model.Problems()[2].text, model.Problems()[1].text);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_TRUE(model.Motor("m", p, {.velocity = 2.0, .maximum = 5.0}));
    EXPECT_TRUE(model.Motor("n", bare, {}));
}

TEST_F(RefusalTest, SpringNeedsTwoBodies)
{
    Model model("M");
    const auto body = model.Body("A");
    EXPECT_FALSE(model.Spring("S", body, {}, body, {1.0, 0.0, 0.0}, {.stiffness = 1.0}));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "a connector needs two bodies, not KARMPBody \"A\" alone");
}

/// A subclass without a record of its own.
class UnknownBody : public KARMPBody
{};

TEST_F(RefusalTest, SubclassThatTheFactoryDoesNotMakeIsRefused)
{
    Model model("M");
    EXPECT_FALSE(model.Add<UnknownBody>("A"));
    EXPECT_EQ(model.Problems().size(), 1U);
    EXPECT_FALSE(model.Find<KARMPBody>("A"));
}

TEST_F(RefusalTest, ModelWithoutAWorldRefusesAllCalls)
{
    Model model{QOBSharedHandle<KARMPWorld>()};
    EXPECT_EQ(model.Problems().size(), 1U);
    EXPECT_FALSE(model.Body("A"));
    EXPECT_EQ(model.Problems().size(), 2U);
    EXPECT_EQ(model.Problems()[1].text, "there is no world");
    model.ClearProblems();
    EXPECT_FALSE(model.Find<KARMPBody>("A"));
    EXPECT_TRUE(model.All<KARMPBody>().empty());
    EXPECT_FALSE(model.Ground());
    EXPECT_FALSE(model.Time());
    EXPECT_EQ(model.Options().linearTolerance, 1e-6);
    EXPECT_FALSE(model.SetOptions({}));
    EXPECT_FALSE(model.Text());
    EXPECT_FALSE(model.Clone());
    EXPECT_FALSE(model.Extract({}));
    EXPECT_TRUE(model.Diff(Model("M")).empty());
    EXPECT_TRUE(model.Check().items.empty());
}

using RefusalDeathTest = RefusalTest;

TEST_F(RefusalDeathTest, ModelThatWasMovedFromStopsWithASentence)
{
    Model model("M");
    const Model other(std::move(model));
    EXPECT_DEATH(model.Body("A"), "a model was used that was moved from");
}

TEST_F(RefusalTest, OutcomeWithoutAValueIsAFailure)
{
    const Result<int> none = Outcome();
    EXPECT_FALSE(none);
    EXPECT_EQ(none.Error().text, "the call gives no value");
    static_assert(!std::is_convertible_v<Result<void>, Result<std::string>>);
}

TEST_F(RefusalTest, FrameMayBeOffByTheRoundingOfADocument)
{
    Model model("M");
    EXPECT_TRUE(model.Frame("F", model.Ground(),
                            KARMathAxis({}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 1e-7, 1.0})));
}

TEST_F(RefusalTest, GeometriesAndJointsAreRefusedWithWhatTheyNeed)
{
    Model model("M");
    const auto body = Neighbours::Fill(model);
    const auto other = model.Body("B");
    const auto p = model.Find<KARMPVariable>("p");
    const auto flat = model.PlanarBody("Flat");
    const auto free = model.Add<KARMPPoint>("Free");
    const auto frame = model.Find<KARMPGeometry>("A.F");
    const auto bare = model.Add<KARMPRevolute>("Bare");
    const std::string before = TextOf(model);
    const auto expectRefused = [&](bool succeeded, const std::string& text) {
        EXPECT_FALSE(succeeded) << text;
        ASSERT_EQ(model.Problems().size(), 1U) << text;
        EXPECT_EQ(model.Problems()[0].text, text);
        model.ClearProblems();
        EXPECT_TRUE(TextOf(model) == before) << text;
    };
    expectRefused(bool(model.Attach<KARMPRevolute>("New", body)), "a KARMPRevolute is no geometry");
    expectRefused(bool(model.Attach<KARMPPoint2D>("New", body)),
                  "a KARMPPoint2D lies on a body of the plane");
    expectRefused(bool(model.Attach<KARMPPoint>("", body)), "a KARMPPoint needs an identifier");
    expectRefused(bool(model.Shape("", body, {})),
                  "what belongs to KARMPBody \"A\" needs an identifier");
    expectRefused(bool(model.Point("New", flat, {0.0, std::nan("")})),
                  "the position of \"New\" is not finite");
    expectRefused(bool(model.Joint<KARMPRollCurve>("New", body, other, KARMathPoint())),
                  "this kind of joint is made from a geometry of each body");
    expectRefused(bool(model.Joint<KARMPGear>("New", body, other, KARMathPoint())),
                  "no constraint realises a KARMPGear");
    expectRefused(bool(model.Joint<KARMPRevolute>("New", body, other, {}, KARMathVector())),
                  "the axis of \"New\" has no direction");
    expectRefused(bool(model.Joint<KARMPRevolute>("New", frame, free)),
                  "KARMPPoint \"Free\" belongs to no body");
    expectRefused(bool(model.Joint<KARMPRevolute>("New", Ref<KARMPGeometry>(), frame)),
                  "there is no geometry of the parent");
    expectRefused(bool(model.Variable("New", bare)), "KARMPRevolute \"Bare\" has no constraint");
    expectRefused(bool(model.Variable("New", model.Find<KARMPJoint>("J"))),
                  "KARMPRevolute \"J\" has no freedom without a variable");
    const auto q = model.Find<KARMPVariable>("q");
    expectRefused(bool(model.Couple<KARMPRevolute>("New", {{p, 1.0}, {q, 1.0}})),
                  "a KARMPRevolute is no coupling");
    expectRefused(bool(model.Couple<KARMPGear>("New", {{p, 1.0}})),
                  "a coupling needs two variables");
    expectRefused(bool(model.Couple<KARMPGear>("New", {{p, 1.0}, {p, 1.0}})),
                  "a coupling has each variable in one term");
    ASSERT_TRUE(model.Unlink(model.Find<KARMPJoint>("J"), model.Ground()));
    EXPECT_FALSE(model.Couple<KARMPGear>("New", {{p, 1.0}, {q, 1.0}}));
    EXPECT_EQ(model.Problems()[0].text,
              "the variables of \"New\" belong to joints of fewer than two bodies");
}

TEST_F(RefusalTest, CouplingOfPlanarJointsIsRefusedAsSuch)
{
    Model model("M");
    const auto rod = model.PlanarBody("Rod");
    const auto variable = [&](std::string id) {
        return model.Variable(id, model.Joint<KARMPUserDefined2D>(id + ".pin", model.PlanarGround(),
                                                                  rod, KARMathPoint2D()));
    };
    EXPECT_FALSE(model.Couple<KARMPGear>("New", {{variable("p"), 1.0}, {variable("q"), 1.0}}));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text,
              "a coupling links bodies in space; KARMPUserDefined2D \"p.pin\" is planar");
}

TEST_F(RefusalTest, NothingIsPutOnABodyWhosePositionHasNoInverse)
{
    Model model("M");
    const auto body = model.Body("A");
    body->SetPosition(KARMathTransformation(KARMath3x3Matrix({}, {}, {}), {}), 0);
    EXPECT_FALSE(model.Point("P", body, {}));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "the position of KARMPBody \"A\" has no inverse");
    EXPECT_EQ(body->GetGeometryCount(), 0);
}

TEST_F(RefusalTest, PlanarGroundIsMadeAgainWhateverIsLeftOfIt)
{
    for (const char* const gone : {"Frame", "Sketch"}) {
        Model model("M");
        ASSERT_TRUE(model.PlanarGround());
        ASSERT_TRUE(model.Delete(model.Find<KARMPEntity>(gone)));
        const auto body = model.PlanarBody("A");
        EXPECT_TRUE(body) << gone;
        QOBSharedHandle<KARMPSketch> sketch;
        model.PlanarGround()->GetSketch(sketch);
        EXPECT_TRUE(sketch) << gone;
        EXPECT_TRUE(model.Problems().empty()) << gone;
        EXPECT_EQ(model.All<KARMPSketch>().size(), 1U) << gone;
    }
    Model model("M");
    model.Body("Frame");
    const auto ground = model.Body("Sketch");
    model.World()->SetGroundBody(ground.Handle());
    EXPECT_TRUE(model.PlanarBody("A"));
    EXPECT_EQ(model.PlanarGround(), model.Find<KARMPBody2D>("Sketch.Frame"));
    const auto sketch = model.Find<KARMPSketch>("Frame.Sketch");
    ASSERT_TRUE(sketch);
    EXPECT_EQ(model.Dependents(sketch)[0].entity, ground);
}

} // namespace
