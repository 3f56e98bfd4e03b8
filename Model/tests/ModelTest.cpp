#include "KARMPEntityIndex.h"
#include "ModelTesting.h"

#include <limits>
#include <sstream>

using namespace karmp::model;

namespace {

using ModelTest = KARMPTestFixture;

TEST_F(ModelTest, NewModelIsInMetresAndHasGroundAndTime)
{
    const Model model("Empty", {.gravity = {0.0, 0.0, -9.81}});
    KARMPUnit::Enum unit{};
    KARMathVector gravity;
    model.World()->GetLengthUnit(unit);
    model.World()->GetGravity(gravity);
    EXPECT_EQ(unit, KARMPUnit::Meter);
    EXPECT_EQ(gravity, KARMathVector(0.0, 0.0, -9.81));
    EXPECT_TRUE(model.Ground());
    EXPECT_TRUE(model.Time());
    EXPECT_EQ(model.Find<KARMPBody>("GlobalBody"), model.Ground());
    EXPECT_EQ(Lines(model.Check()), "");
}

TEST_F(ModelTest, AddedEntityIsNamedIdentifiedPlacedAndFiled)
{
    Model model("M");
    const Ref<KARMPLinearSpring> spring = model.Add<KARMPLinearSpring>("Feder-\xC3\xA4");
    ASSERT_TRUE(spring);
    std::wstring identifier;
    spring->GetIdentifier(identifier);
    EXPECT_EQ(identifier, L"Feder-\u00E4");
    EXPECT_EQ(spring->getEntityName(), L"Feder-\u00E4");
    EXPECT_TRUE(spring->getWorld());
    EXPECT_EQ(model.World()->Count<KARMPConnector>(), 1);
    EXPECT_EQ(model.Find<KARMPConnector>("Feder-\xC3\xA4"), spring);
}

TEST_F(ModelTest, IdentifierThatIsTakenIsAProblemWithTheCallersLine)
{
    Model model("M");
    model.Body("Crank");
    const std::string before = TextOf(model);
    const int line = __LINE__ + 1;
    EXPECT_FALSE(model.Add<KARMPMotor>("Crank"));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "\"Crank\" is the identifier of KARMPBody \"Crank\"");
    EXPECT_EQ(Format(model.Problems()[0]),
              "ModelTest.cpp:" + std::to_string(line) + ": " + model.Problems()[0].text);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

TEST_F(ModelTest, EmptyIdentifierIsAProblem)
{
    Model model("M");
    EXPECT_FALSE(model.Body(""));
    EXPECT_EQ(model.Problems().size(), 1U);
}

TEST_F(ModelTest, ClassIsAlsoChosenByName)
{
    Model model("M");
    EXPECT_TRUE(model.Add("KARMPRevolute", "A").As<KARMPRevolute>());
    EXPECT_FALSE(model.Add("KARMPRevolut", "B"));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text,
              "there is no class \"KARMPRevolut\"; near: \"KARMPRevolute\"");
    EXPECT_FALSE(model.Add("KARMPConstraint", "C"));
    EXPECT_EQ(model.Problems()[1].text,
              "a KARMPConstraint is a base class, of which no entity is made");
    EXPECT_FALSE(model.Attach<KARMPGeometry>("D", model.Body("B")));
    EXPECT_EQ(TakeReports(), 1U);
    EXPECT_EQ(model.Problems()[2].text,
              "a KARMPGeometry is a base class, of which no entity is made");
}

TEST_F(ModelTest, SettingsOfTheWorldAreUndoneWithABlock)
{
    Model model("M", {.gravity = {0.0, 0.0, -9.81}});
    const std::size_t begin = model.BeginEditing();
    EXPECT_TRUE(model.SetOptions({.gravity = {0.0, 1.0, 0.0}, .linearTolerance = 1e-3}));
    EXPECT_EQ(model.Options().gravity, KARMathVector(0.0, 1.0, 0.0));
    EXPECT_EQ(model.World()->GetLinearTolerance(), 1e-3);
    model.EndEditing(begin, false);
    EXPECT_EQ(model.Options().gravity, KARMathVector(0.0, 0.0, -9.81));
    EXPECT_EQ(model.Options().linearTolerance, 1e-6);
    EXPECT_TRUE(model.Problems().empty());
    for (const double tolerance : {0.0, -1.0, std::nan("")}) {
        EXPECT_FALSE(model.SetOptions({.angularTolerance = tolerance}));
        EXPECT_EQ(model.Options().angularTolerance, 1e-9);
        EXPECT_EQ(model.Options().gravity, KARMathVector(0.0, 0.0, -9.81));
    }
    EXPECT_EQ(model.Problems().size(), 3U);
}

TEST_F(ModelTest, SettingsOfADocumentStayAsTheyAre)
{
    const auto world = KARMPWorld::create(QOBBasicWorld::create(L"W"));
    world->SetLinearTolerance(0.0);
    world->SetGravity({0.0, std::numeric_limits<double>::infinity(), 0.0});
    Model model(world);
    ModelOptions options = model.Options();
    options.angularTolerance = 0.5;
    EXPECT_TRUE(model.SetOptions(options));
    options.gravity = {1.0, 0.0, 0.0};
    EXPECT_TRUE(model.SetOptions(options));
    EXPECT_EQ(world->GetLinearTolerance(), 0.0);
}

TEST_F(ModelTest, EntityIsFoundByIdentifierThenByName)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    EXPECT_TRUE(model.Rename(b, "A"));
    EXPECT_EQ(model.Find<KARMPBody>("A"), a);
    EXPECT_EQ(model.Find<KARMPBody>("B"), b);
    EXPECT_TRUE(model.Rename(b, "C"));
    EXPECT_EQ(model.Find<KARMPBody>("C"), b);
    EXPECT_FALSE(model.Find<KARMPJoint>("A"));
    EXPECT_FALSE(model.Find<KARMPBody>("D"));
    EXPECT_TRUE(model.Problems().empty());
}

TEST_F(ModelTest, GetTellsNearNamesAndHowManyHaveAName)
{
    Model model("M");
    for (const char* name : {"A", "B", "C"})
        model.Rename(model.Body(name), "Rod");
    model.Body("Rocker");
    EXPECT_EQ(model.Get<KARMPBody>("Roker").Error().text,
              "there is no KARMPBody \"Roker\"; near: \"Rocker\"");
    EXPECT_EQ(model.Get<KARMPBody>("Rod").Error().text, "three KARMPBody have the name \"Rod\"");
    EXPECT_EQ(model.Get<KARMPEntity>("Roker").Error().text,
              "there is no entity \"Roker\"; near: \"Rocker\"");
    EXPECT_EQ(model.Get<KARMPEntity>("Rod").Error().text, "three entities have the name \"Rod\"");
    EXPECT_FALSE(model.Find<KARMPBody>("Rod"));
    const int line = __LINE__ + 1;
    EXPECT_EQ(model.Get<KARMPBody>("zzz").Error().where.line, line);
    EXPECT_EQ(model.Get<KARMPBody>("zzz").Error().text, "there is no KARMPBody \"zzz\"");
    EXPECT_EQ(*model.Get<KARMPBody>("Rocker"), model.Find<KARMPBody>("Rocker"));
}

TEST_F(ModelTest, NearNamesAreNamesAndIdentifiersOfTheClassAlone)
{
    Model model("M");
    model.Rename(model.Body("coupler"), "Rocker");
    model.Constant("Lever", KARMPPhysicalQuantity::Length, 1.0);
    EXPECT_EQ(model.Get<KARMPBody>("Roker").Error().text,
              "there is no KARMPBody \"Roker\"; near: \"Rocker\"");
    EXPECT_EQ(model.Get<KARMPBody>("couplr").Error().text,
              "there is no KARMPBody \"couplr\"; near: \"coupler\"");
    EXPECT_EQ(model.Get<KARMPBody>("Levr").Error().text, "there is no KARMPBody \"Levr\"");
}

TEST_F(ModelTest, GlobalsOfAWorldThatIsGivenHaveTheirIdentifiers)
{
    const Model model(KARMPWorld::create(QOBBasicWorld::create(L"W")));
    for (const char* const global : {"GlobalBody", "GlobalAxisSystem", "GlobalTime"}) {
        const auto found = model.Find<KARMPEntity>(global);
        ASSERT_TRUE(found) << global;
        EXPECT_NE(IdentifierIfGiven(*found), nullptr) << global;
    }
}

TEST_F(ModelTest, WhatIsAddedAndRemovedPastTheModelIsNoticed)
{
    Model model("M");
    model.Body("A");
    const auto raw = KARMPBody::create(L"Raw");
    raw->SetIdentifier(L"Raw");
    model.World()->Add<KARMPBody>(raw);
    EXPECT_EQ(model.Find<KARMPBody>("Raw").Handle(), raw);
    EXPECT_FALSE(model.Body("Raw"));
    model.World()->Remove<KARMPBody>(raw);
    EXPECT_FALSE(model.Find<KARMPBody>("Raw"));
    EXPECT_TRUE(model.Find<KARMPBody>("A"));
    raw->orphanObject();
}

// The model files what it makes without asking the registry, which keeps an index of a long list
// from the first question on.
TEST_F(ModelTest, WhatAModelAddsIsInTheRegistry)
{
    constexpr int count = 200;
    Model model("M");
    std::vector<Ref<KARMPBody>> bodies;
    for (int i = 0; i < count; ++i) {
        bodies.push_back(model.Body("B" + std::to_string(i)));
        if (i == count / 2)
            EXPECT_EQ(model.World()->Add<KARMPBody>(bodies[0]), 1);
    }
    const int listed = model.World()->GetBodyCount();
    for (const Ref<KARMPBody>& body : bodies)
        EXPECT_EQ(model.World()->Add<KARMPBody>(body), 1) << "listed already";
    EXPECT_EQ(model.World()->GetBodyCount(), listed);
    for (int i = 0; i < count; i += 2)
        EXPECT_EQ(model.World()->Remove<KARMPBody>(bodies[i]), KARSuccess);
    EXPECT_EQ(model.World()->GetBodyCount(), listed - count / 2);
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(model.Find<KARMPBody>("B" + std::to_string(i)), i % 2 == 0 ? nullptr : bodies[i]);
}

TEST_F(ModelTest, WhatReplacesAnEntityPastTheModelIsNoticed)
{
    Model model("M");
    const auto first = model.Body("A");
    const auto raw = KARMPBody::create(L"Raw");
    raw->SetIdentifier(L"Raw");
    model.World()->Remove<KARMPBody>(first);
    model.World()->Add<KARMPBody>(raw);
    EXPECT_FALSE(model.Find<KARMPBody>("A"));
    EXPECT_EQ(model.Find<KARMPBody>("Raw").Handle(), raw);
    EXPECT_FALSE(model.Body("Raw"));
    model.World()->Remove<KARMPBody>(raw);
    raw->orphanObject();
}

// The index looks at eight characters at once, and in another way at those that are not ASCII.
TEST_F(ModelTest, IdentifiersOfAllLengthsAreFound)
{
    Model model("M");
    std::vector<std::string> identifiers;
    for (const std::string letter : {"a", "\u00e4"}) {
        std::string identifier;
        for (int length = 1; length < 40; ++length)
            identifiers.push_back(identifier += letter);
    }
    for (int number = 0; number < 1000; ++number)
        identifiers.push_back(std::to_string(number));
    for (const std::string& identifier : identifiers)
        model.Body(identifier);
    for (const std::string& identifier : identifiers) {
        const auto body = model.Find<KARMPBody>(identifier);
        ASSERT_TRUE(body) << identifier;
        EXPECT_EQ(kar::ToUtf8(body->getEntityName()), identifier);
        EXPECT_FALSE(model.Body(identifier));
    }
}

TEST_F(ModelTest, IdentifierOfAnEntityThatWasOrphanedPastTheModelIsFree)
{
    Model model("M");
    model.Body("A")->orphanObject();
    const auto second = model.Body("A");
    EXPECT_TRUE(second);
    EXPECT_EQ(model.Find<KARMPBody>("A"), second);
}

TEST_F(ModelTest, EntitiesAreFoundWhileOthersComeAndGo)
{
    Model model("M");
    RefList<KARMPEntity> kept;
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string(i);
        kept.push_back(model.Add<KARMPVariable>("kept" + number));
        const auto gone = model.Add<KARMPVariable>("gone" + number);
        ASSERT_TRUE(model.Delete(gone));
        if (i > 20)
            ASSERT_TRUE(model.Delete(kept[static_cast<std::size_t>(i)]));
    }
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_EQ(static_cast<bool>(model.Find<KARMPEntity>("kept" + number)), i <= 20) << i;
        EXPECT_FALSE(model.Find<KARMPEntity>("gone" + number)) << i;
        EXPECT_TRUE(model.Add<KARMPVariable>("gone" + number)) << i;
    }
}

TEST_F(ModelTest, NameAndIdentifierStartAsOneText)
{
    Model model("M");
    const auto body = model.Body("A");
    EXPECT_EQ(body->getStoredName().Narrow().data(), IdentifierIfGiven(*body)->Narrow().data());
    EXPECT_TRUE(model.Rename(body, "B"));
    std::wstring identifier;
    EXPECT_EQ(body->GetIdentifier(identifier), KARSuccess);
    EXPECT_EQ(identifier, L"A");
    EXPECT_EQ(body->SetIdentifier(L"C"), KARFailure);
    ExpectReports(1);
}

TEST_F(ModelTest, DiagnosticIsRefusedSinceNoWorldListsIt)
{
    Model model("M");
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Add("KARMPDiagnostic", "D"));
    EXPECT_FALSE(model.Add<KARMPDiagnostic>("D"));
    ASSERT_EQ(model.Problems().size(), 2U);
    for (const Problem& problem : model.Problems())
        EXPECT_EQ(problem.text, "a world has no list for a KARMPDiagnostic, which is kept by who "
                                "makes it and by no document");
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_TRUE(model.Body("D"));
}

TEST_F(ModelTest, LookingUpGivesNoIdentifier)
{
    Model model("M");
    const auto raw = KARMPBody::create(L"Raw");
    model.World()->Add<KARMPBody>(raw);
    EXPECT_EQ(model.Find<KARMPBody>("Raw").Handle(), raw);
    EXPECT_EQ(raw->SetIdentifier(L"Late"), KARSuccess);
    raw->orphanObject();
}

TEST_F(ModelTest, AllGivesAFamilyAClassOrEverythingAndStays)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    model.Joint<KARMPRevolute>("J", a, b, {0.0, 0.0, 0.0});
    model.Joint<KARMPPrismatic>("K", a, b, {0.0, 0.0, 0.0});
    const auto bodies = model.All<KARMPBody>();
    ASSERT_EQ(bodies.size(), 3U);
    EXPECT_EQ(bodies[1], a);
    model.Body("C");
    EXPECT_EQ(bodies.size(), 3U);
    EXPECT_EQ(model.All<KARMPJoint>().size(), 2U);
    EXPECT_EQ(model.All<KARMPRevolute>().size(), 1U);
    EXPECT_EQ(model.All<KARMPAxisSystem>().size(), 5U);
    EXPECT_EQ(model.All<KARMPEntity>().size(), 4U + 2U + 2U + 5U + 1U);
}

TEST_F(ModelTest, CallsWithAFalseRefAddAProblemEach)
{
    Model model("M");
    const Ref<KARMPBody> none;
    EXPECT_FALSE(model.Joint<KARMPRevolute>("J", model.Ground(), none, {0.0, 0.0, 0.0}));
    EXPECT_FALSE(model.Frame("F", none, {}));
    EXPECT_FALSE(model.Rename(none, "N"));
    EXPECT_FALSE(model.Link(none, model.Ground()));
    ASSERT_EQ(model.Problems().size(), 4U);
    EXPECT_EQ(model.Problems()[0].text, "there is no child body");
}

TEST_F(ModelTest, ModelWithProblemsIsNotSaved)
{
    Model model("M");
    const int line = __LINE__ + 1;
    model.Body("");
    const auto saved = model.Save("never.xml");
    EXPECT_FALSE(saved);
    EXPECT_EQ(saved.Error().where.line, line);
    std::ostringstream printed;
    EXPECT_EQ(saved.Report(printed), 1);
    EXPECT_EQ(printed.str(),
              "ModelTest.cpp:" + std::to_string(line) + ": a KARMPBody needs an identifier\n");
    EXPECT_FALSE(std::filesystem::exists("never.xml"));
    EXPECT_EQ(model.Text().Error().text, "a KARMPBody needs an identifier");
    model.ClearProblems();
    const auto lost = model.Save("no-such-folder/never.xml");
    EXPECT_EQ(lost.Error().text, "no-such-folder/never.xml was not saved");
    EXPECT_FALSE(lost.Findings().items.empty());
}

TEST_F(ModelTest, CheckTellsWhatTheCheckOfItsDocumentFinds)
{
    Model model("M");
    model.Joint<KARMPRevolute>("J", model.Body("A"), model.Body("B"), KARMathPoint());
    EXPECT_NE(Lines(model.Check()).find("[floating-chain]"), std::string::npos);
    EXPECT_EQ(Lines(model.Check(karmp::documents::CheckLevel::Form)), "");
}

TEST_F(ModelTest, RefTurnsFalseWithItsModel)
{
    Ref<KARMPBody> body;
    {
        Model model("M");
        body = model.Body("A");
        EXPECT_TRUE(body);
    }
    EXPECT_FALSE(body);
    EXPECT_FALSE(body.As<KARMPBody>());
}

TEST_F(ModelTest, RefConvertsToBasesAndAsksForDerivedClasses)
{
    Model model("M");
    const auto point = model.Point("P", model.Ground(), {1.0, 2.0, 3.0});
    const Ref<KARMPEntity> entity = point;
    EXPECT_EQ(entity, point);
    EXPECT_EQ(entity.As<KARMPPoint>(), point);
    EXPECT_FALSE(entity.As<KARMPLine>());
    EXPECT_EQ(entity.As<KARMPLine>(), nullptr);
}

using ModelDeathTest = KARMPTestFixture;

TEST_F(ModelDeathTest, AccessThroughAFalseRefStopsWithASentence)
{
    const Ref<KARMPBody> none;
    EXPECT_DEATH(none->IsFixed(), "a reference to no entity was used");
}

TEST_F(ModelDeathTest, AccessToTheValueOfAFailureStopsWithASentence)
{
    const Model model("M");
    auto none = model.Get<KARMPBody>("A");
    const auto& constant = none;
    const char* const sentence = "the value of a call that failed was used; "
                                 "ModelTest.cpp:[0-9]+: there is no KARMPBody \"A\"";
    EXPECT_DEATH(static_cast<void>(*none), sentence);
    EXPECT_DEATH(static_cast<void>(*constant), sentence);
    EXPECT_DEATH(static_cast<void>(*std::move(none)), sentence);
    EXPECT_DEATH(static_cast<void>((*none)->IsFixed()), sentence);
    EXPECT_DEATH(static_cast<void>(none->Handle()), sentence);
    EXPECT_DEATH(static_cast<void>(constant->Handle()), sentence);
}

TEST_F(ModelTest, BodyStandsWhereItIsToldAndLooksWhereItIsTold)
{
    Model model("M");
    const auto rod = model.Body("Rod", Rod(2.0, {1.0, 0.0, 0.0}, {1.0, 3.0, 0.0}));
    KARMathTransformation position;
    KARMathPoint centre;
    KARMath3x3Matrix inertia;
    double mass = 0.0;
    rod->GetPosition(position);
    rod->GetCenterOfGravity(centre);
    rod->GetInertiaMatrix(inertia);
    rod->GetMass(mass);
    EXPECT_EQ(position * KARMathPoint(3.0, 0.0, 0.0), KARMathPoint(1.0, 3.0, 0.0));
    EXPECT_EQ(position * KARMathVector(0.0, 0.0, 1.0), KARMathVector(0.0, 0.0, 1.0));
    EXPECT_EQ(centre, KARMathPoint(1.5, 0.0, 0.0));
    EXPECT_EQ(mass, 2.0);
    EXPECT_EQ(inertia(0, 0), 0.0);
    EXPECT_EQ(inertia(1, 1), 1.5);
    model.Body("Round", Rod(2.0, {1.0, 0.0, 0.0}, {1.0, 3.0, 0.0}, 1.0))->GetInertiaMatrix(inertia);
    EXPECT_EQ(inertia(0, 0), 1.0);
    EXPECT_EQ(inertia(1, 1), 2.0);
    EXPECT_FALSE(model.Body("Bad", {.at = KARMathPoint(), .towards = KARMathPoint()}));
    EXPECT_EQ(model.World()->GetBodyCount(), 3);
    EXPECT_FALSE(model.PlanarBody("Bad", {.towards = KARMathPoint2D()}));
    ASSERT_EQ(model.Problems().size(), 2U);
    EXPECT_EQ(model.Problems()[0].text, "KARMPBody \"Bad\" looks at its own origin");
    EXPECT_EQ(model.Problems()[1].text, "KARMPBody2D \"Bad\" looks at its own origin");
}

TEST_F(ModelTest, BodyThatLooksUpHasTheWorldsSecondAxisForItsThird)
{
    Model model("M");
    for (const double height : {2.0, -2.0}) {
        const auto post =
            model.Body(height > 0.0 ? "Post" : "Pile", {.towards = KARMathPoint(0.0, 0.0, height)});
        const KARMathTransformation position = PositionOf(post);
        EXPECT_EQ(position * KARMathPoint(2.0, 0.0, 0.0), KARMathPoint(0.0, 0.0, height));
        EXPECT_EQ(position * KARMathVector(0.0, 0.0, 1.0), KARMathVector(0.0, 1.0, 0.0));
    }
    const auto flat = model.PlanarBody("Flat", {.towards = KARMathPoint2D(0.0, 2.0)});
    EXPECT_EQ(PositionOf(flat) * KARMathPoint2D(2.0, 0.0), KARMathPoint2D(0.0, 2.0));
}

TEST_F(ModelTest, FrameIsToldInTheWorldAndKeptInBodyAxes)
{
    Model model("M");
    const auto body = model.Body(
        "A", {.at = KARMathPoint(1.0, 1.0, 0.0), .towards = KARMathPoint(1.0, 2.0, 0.0)});
    const auto frame = model.Frame("F", body, KARMathAxis());
    KARMathAxis axis;
    frame->GetAxisSystem(axis);
    EXPECT_EQ(axis.GetOrigin(), KARMathPoint(-1.0, 1.0, 0.0));
    EXPECT_EQ(axis.GetFirstDirection(), KARMathVector(0.0, -1.0, 0.0));
    EXPECT_EQ(model.Find<KARMPAxisSystem>("A.F"), frame);
    QOBSharedHandle<KARMPBody> carrier;
    frame->GetBody(carrier);
    EXPECT_EQ(carrier, body.Handle());
    EXPECT_EQ(body->GetGeometryCount(), 1);
}

TEST_F(ModelTest, ModelIsSavedAndLoadedAsItWas)
{
    Model model("M");
    const auto body = model.Body("A", {.mass = 0.2, .at = KARMathPoint(0.1, 0.2, 0.3)});
    model.Joint<KARMPRevolute>("J", model.Ground(), body, {0.1, 0.2, 0.3});
    ASSERT_TRUE(model.Save("model-test.xml"));
    const auto loaded = Load("model-test.xml");
    ASSERT_TRUE(loaded) << loaded.Error().text << Lines(loaded.Findings());
    EXPECT_TRUE(model.Diff(*loaded).empty());
    EXPECT_EQ(loaded->All<KARMPEntity>().size(), model.All<KARMPEntity>().size());
    double mass = 0.0;
    loaded->Find<KARMPBody>("A")->GetMass(mass);
    EXPECT_EQ(mass, 0.2);
    std::filesystem::remove("model-test.xml");
}

TEST_F(ModelTest, DocumentWithErrorsIsNotLoaded)
{
    EXPECT_FALSE(Load("no-such-file.xml"));
    const auto loaded = LoadText("<KARMPDocument version=\"R2018.1\"><World/>", "broken");
    EXPECT_FALSE(loaded);
    EXPECT_EQ(loaded.Error().text, "broken cannot be loaded");
    EXPECT_FALSE(loaded.Findings().items.empty());
}

TEST_F(ModelTest, CloneListsItsEntitiesInTheSameOrder)
{
    Model model("M");
    for (const char* const name : {"C", "A", "D", "B"}) {
        const auto body = model.Body(name);
        const auto point = model.Point("P", body, {});
        model.Constant(std::string(name) + ".c", KARMPPhysicalQuantity::Length, 1.0);
    }
    const auto clone = model.Clone();
    ASSERT_TRUE(clone);
    const auto expectSame = [&]<class T>(std::type_identity<T>) {
        const auto ours = model.All<T>();
        const auto theirs = clone->All<T>();
        ASSERT_EQ(theirs.size(), ours.size());
        for (std::size_t i = 0; i < ours.size(); ++i)
            EXPECT_EQ(theirs[i]->getEntityName(), ours[i]->getEntityName());
    };
    expectSame(std::type_identity<KARMPBody>());
    expectSame(std::type_identity<KARMPGeometry>());
    expectSame(std::type_identity<KARMPValue>());
    EXPECT_TRUE(model.Diff(*clone).empty());
}

TEST_F(ModelTest, CloneTellsWhatADocumentCannotHold)
{
    Model model("M");
    const auto body = model.Body("A");
    const auto output = model.Add<KARMPOutput>("O");
    ASSERT_TRUE(model.Link(body, output, "Outputs"));
    const auto clone = model.Clone();
    ASSERT_TRUE(clone);
    EXPECT_FALSE(clone.Findings().items.empty());
}

TEST_F(ModelTest, CloneIsAModelOfItsOwn)
{
    Model model("M");
    const auto body = model.Body("A");
    auto clone = model.Clone();
    ASSERT_TRUE(clone);
    EXPECT_TRUE(model.Diff(*clone).empty());
    clone->Find<KARMPBody>("A")->SetMass(3.0);
    EXPECT_EQ(model.Diff(*clone).size(), 1U);
    EXPECT_EQ(model.Diff(*clone)[0].item, L"Weight/Mass");
    model.World()->SetLengthUnit(KARMPUnit::Millimeter);
    KARMPUnit::Enum unit{};
    model.Clone()->World()->GetLengthUnit(unit);
    EXPECT_EQ(unit, KARMPUnit::Millimeter);
}

TEST_F(ModelTest, ExtractHasTheBodiesAndTellsWhatWasCut)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    const auto c = model.Body("C");
    model.Joint<KARMPRevolute>("AB", a, b, {0.0, 0.0, 0.0});
    model.Joint<KARMPRevolute>("BC", b, c, {0.0, 0.0, 0.0});
    const auto extract = model.Extract(std::array{a, b});
    ASSERT_TRUE(extract);
    EXPECT_TRUE(extract->model.Find<KARMPJoint>("AB"));
    EXPECT_FALSE(extract->model.Find<KARMPJoint>("BC"));
    EXPECT_FALSE(extract->cutLinks.empty());
    EXPECT_EQ(model.Extract(std::array{Ref<KARMPBody>()}).Error().text,
              "there is no body to extract");
}

} // namespace
