#include "EditTesting.h"
#include "RecordingVariableLoader.h"

using namespace karmp::model;
using karmp::Value;
using Entity = QOBSharedHandle<KARMPEntity>;

namespace {

using ItemsTest = KARMPTestFixture;

TEST_F(ItemsTest, ItemsAreGotAndSetByNameOrPath)
{
    Model model("M");
    const auto body = model.Body("A");
    EXPECT_TRUE(model.Set(body, "Mass", 2.5));
    EXPECT_TRUE(model.Set(body, "Weight/COG", karmp::NumberArray{1.0, 2.0, 3.0}));
    double mass = 0.0;
    KARMathPoint centre;
    body->GetMass(mass);
    body->GetCenterOfGravity(centre);
    EXPECT_EQ(mass, 2.5);
    EXPECT_EQ(centre, KARMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(*model.Get(body, "Weight/Mass"), Value(2.5));
    EXPECT_FALSE(Model::Items(body).empty());
}

TEST_F(ItemsTest, UnknownItemIsAProblemThatTellsANearOne)
{
    Model model("M");
    const auto body = model.Body("A");
    EXPECT_EQ(model.Get(body, "Mas").Error().text,
              "KARMPBody \"A\" has no item \"Mas\"; near: \"Mass\"");
    EXPECT_FALSE(model.Set(body, "Mas", 1.0));
    EXPECT_EQ(model.Problems().size(), 1U);
}

TEST_F(ItemsTest, ValueOfAnotherKindChangesNothing)
{
    Model model("M");
    const auto body = model.Body("A");
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Set(body, "Mass", std::wstring(L"heavy")));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text.find("\"Weight/Mass\" of KARMPBody \"A\" is not set: "), 0U);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

TEST_F(ItemsTest, ReferenceIsSetOnBothSidesAndUnsetByNone)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    const auto point = model.Add<KARMPPoint>("P");
    EXPECT_TRUE(model.Set(point, "Body", Entity(a.Handle())));
    EXPECT_EQ(a->GetGeometryCount(), 1);
    EXPECT_TRUE(model.Set(point, "Body", Entity(b.Handle())));
    EXPECT_EQ(a->GetGeometryCount(), 0);
    EXPECT_EQ(b->GetGeometryCount(), 1);
    EXPECT_TRUE(model.Set(point, "Body", Value()));
    EXPECT_EQ(b->GetGeometryCount(), 0);
    EXPECT_TRUE(model.Get(point, "Body")->IsNone());
    EXPECT_TRUE(model.Set(a, "Geometries", std::vector<Entity>{Entity(point.Handle())}));
    EXPECT_EQ(BrokenLinks(model), "");
    EXPECT_TRUE(model.Problems().empty());
}

TEST_F(ItemsTest, ReferenceTakesNothingButEntities)
{
    Model model("M");
    const auto body = model.Body("A");
    const auto point = model.Point("P", body, {});
    EXPECT_FALSE(model.Set(point, "Body", 1.0));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "\"Body\" of KARMPPoint \"A.P\" refers to entities");
    EXPECT_EQ(body->GetGeometryCount(), 1);
}

TEST_F(ItemsTest, OptionalNumberIsUnsetByNoneAndOtherNumbersAreNot)
{
    Model model("M");
    const auto angle = model.Variable("angle", KARMPPhysicalQuantity::Angle);
    EXPECT_TRUE(model.Get(angle, "MinValue")->IsNone());
    EXPECT_TRUE(model.Set(angle, "MinValue", -1.0));
    EXPECT_EQ(*model.Get(angle, "MinValue"), Value(-1.0));
    EXPECT_TRUE(model.Set(angle, "MinValue", Value()));
    EXPECT_TRUE(model.Get(angle, "MinValue")->IsNone());
    EXPECT_FALSE(angle->HasMinValue());
    EXPECT_TRUE(model.Problems().empty());
    EXPECT_FALSE(model.Set(model.Body("A"), "Mass", Value()));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_NE(model.Problems()[0].text.find("takes a number, not none"), std::string::npos);
}

TEST_F(ItemsTest, NumberThatALoaderRefusesIsUnsetAgain)
{
    LoaderRecord record;
    Model model("M");
    const auto angle = model.Variable("angle", KARMPPhysicalQuantity::Angle);
    angle->SetLoader(new RecordingVariableLoader(record));
    record.answer = KARUnexpected;
    EXPECT_FALSE(model.Set(angle, "MinValue", -1.0));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].status, KARUnexpected);
    EXPECT_TRUE(model.Get(angle, "MinValue")->IsNone());
    TakeReports();
}

TEST_F(ItemsTest, EntityIsAddedWithItsItems)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    const auto joint = model.Joint<KARMPRevolute>("J", a, b, {0.0, 0.0, 0.0});
    const auto sensor =
        model.Add<KARMPJointDOFSensor>("S", {{"Joint", joint}, {"DOFindex", 5}, {"Position", 2}});
    const auto rule = model.Add<KARMPCollisionRule>(
        "R", {{"Collidables", {a, b}}, {"Restitution", 0.5}, {"EnableDampingTransition", 1}});
    const auto moved = model.Add<KARMPDisplacementSensor>(
        "D", {{"Body", a}, {"Displacement", KARMathTransformation({1.0, 2.0, 3.0})}});
    const auto variable = model.Add<KARMPVariable>("V", {{"Type", "Controlled"}, {"MinValue", -1}});
    const auto sphere = model.Attach<KARMPSphere>(
        "Ball", a, {{"Center", KARMathPoint(1.0, 2.0, 3.0)}, {"radius", 0.5}});
    EXPECT_EQ(*model.Get(sensor, "Joint"), Value(Entity(joint)));
    EXPECT_EQ(*model.Get(sensor, "DOFindex"), Value(5));
    EXPECT_EQ(*model.Get(sensor, "Position"), Value(2.0));
    EXPECT_EQ(*model.Get(rule, "Collidables"), Value(std::vector<Entity>{a, b}));
    KARMathTransformation displacement;
    KARMathPoint center;
    moved->GetDisplacement(displacement);
    sphere->GetCenter(center);
    EXPECT_EQ(displacement, KARMathTransformation({1.0, 2.0, 3.0}));
    EXPECT_EQ(center, KARMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(variable->GetType(), KARMPVariableType::Controlled);
    EXPECT_EQ(*model.Get(variable, "MinValue"), Value(-1.0));
    EXPECT_EQ(BrokenLinks(model), "");
    EXPECT_TRUE(model.Problems().empty()) << Format(model.Problems()[0]);
}

TEST_F(ItemsTest, NumberOfAValueReferenceIsAConstantOfTheItemsQuantity)
{
    Model model("M");
    const auto spring = model.Connect<KARMPLinearSpring>(
        "S", model.Point("P", model.Body("A"), {0.0, 0.0, 0.0}),
        model.Point("P", model.Body("B"), {0.0, 0.0, 1.0}),
        {{"Stiffness", 2000}, {"RestLength", 0.5}, {"DampingCoefficient", 10.0}});
    double stiffness = 0.0;
    spring->GetStiffness(stiffness);
    EXPECT_EQ(stiffness, 2000.0);
    const auto rest = model.Find<KARMPConstant>("S.rest length");
    ASSERT_TRUE(rest);
    EXPECT_EQ(*model.Get(spring, "RestLength"), Value(Entity(rest)));
    EXPECT_EQ(kar::ToUtf8(std::get<karmp::EnumWord>(*model.Get(rest, "PhysicalQuantity")).text),
              "Length");
    EXPECT_TRUE(model.Find<KARMPConstant>("S.damping"));
    EXPECT_TRUE(model.Problems().empty());
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Set(spring, {{"FirstBody", 1.0}}));
    EXPECT_EQ(model.Problems().back().text,
              "\"FirstBody\" of KARMPLinearSpring \"S\" refers to entities and takes no number");
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

TEST_F(ItemsTest, ItemThatFailsUndoesThoseBeforeItAndTheEntity)
{
    Model model("M");
    const auto a = model.Body("A", {.mass = 1.0});
    const std::string before = TextOf(model);
    const int line = __LINE__ + 1;
    EXPECT_FALSE(model.Set(a, {{"name", "B"}, {"Mass", 2.0}, {"Mas", 3.0}}));
    EXPECT_FALSE(model.Add<KARMPVariable>("V", {{"MinValue", -1.0}, {"Type", "Fre"}}));
    EXPECT_FALSE(model.Add<KARMPPoint>("P", {{"Body", Ref<KARMPBody>()}}));
    ASSERT_EQ(model.Problems().size(), 3U);
    EXPECT_EQ(model.Problems()[0].where.line, line);
    EXPECT_EQ(model.Problems()[1].where.line, line + 1);
    EXPECT_NE(model.Problems()[1].text.find("\"Type\" of KARMPVariable \"V\" is not set"),
              std::string::npos);
    EXPECT_EQ(model.Problems()[2].text, "there is no entity for \"Body\" of KARMPPoint \"P\"");
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

TEST_F(ItemsTest, NullUnsetsAReferenceAndIsAnEmptyText)
{
    Model model("M");
    const auto body = model.Body("A");
    const auto point = model.Point("P", body, {});
    const char* const none = nullptr;
    EXPECT_TRUE(model.Set(point, {{"Body", nullptr}}));
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_FALSE(model.Set(body, {{"Mass", nullptr}}));
    EXPECT_FALSE(model.Set(body, {{"Mass", none}}));
    EXPECT_EQ(model.Problems().size(), 2U);
}

TEST_F(ItemsTest, RecordsAreSetLast)
{
    Model model("M");
    const auto sensor = model.Add<KARMPCollisionSensor>("S");
    const auto records = *model.Get(sensor, "ContactForceDataContainer");
    EXPECT_FALSE(model.Set(sensor, {{"ContactForceDataContainer", records}, {"name", "T"}}));
    model.ClearProblems();
    EXPECT_TRUE(model.Set(sensor, {{"name", "T"}, {"ContactForceDataContainer", records}}));
}

TEST_F(ItemsTest, ReferenceToAnotherClassLeavesTheFormerOne)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto point = model.Point("P", a, {0.0, 0.0, 0.0});
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Set(point, "Body", Entity(point.Handle())));
    EXPECT_EQ(model.Problems().size(), 1U);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_EQ(BrokenLinks(model), "");
}

/// Three bodies, and a joint of the first two.
struct Jointed
{
    Model model{"M"};
    Ref<KARMPBody> a = model.Body("A");
    Ref<KARMPBody> b = model.Body("B");
    Ref<KARMPBody> c = model.Body("C");
    Ref<KARMPJoint> joint = model.Joint<KARMPRevolute>("J", a, b, KARMathPoint());

    bool SetBodies(const RefList<KARMPBody>& bodies)
    {
        std::vector<QOBSharedHandle<KARMPEntity>> targets;
        for (const auto& body : bodies)
            targets.emplace_back(body.Handle());
        return model.Set(joint, "Bodies", targets);
    }
    /// The parent and the child, by the words of the entries.
    std::string Bodies()
    {
        const karmp::ItemInfo& item = *karmp::FindItem(joint->getClassInfo(), L"Bodies");
        const auto words = item.EntryWords(*joint);
        std::string text;
        for (std::size_t i = 0; i < words.size(); ++i)
            text += kar::ToUtf8(TargetsOf(item, *joint)[i]->getEntityName()) +
                    kar::ToUtf8(words[i]) + ' ';
        return text;
    }
};

TEST_F(ItemsTest, ListWithAnOrderIsSetInThatOrder)
{
    Jointed set;
    const std::string before = TextOf(set.model);
    EXPECT_EQ(set.Bodies(), "AOut BIn ");
    EXPECT_TRUE(set.SetBodies({set.b, set.a}));
    EXPECT_EQ(set.Bodies(), "BOut AIn ");
    EXPECT_EQ(BrokenLinks(set.model), "");
    EXPECT_TRUE(set.SetBodies({set.c, set.b}));
    EXPECT_EQ(set.Bodies(), "COut BIn ");
    EXPECT_EQ(set.a->GetLinkedJointCount(), 0);
    EXPECT_TRUE(set.SetBodies({set.b}));
    EXPECT_EQ(set.Bodies(), "BOut ");
    EXPECT_TRUE(set.SetBodies({set.a, set.b}));
    EXPECT_TRUE(TextOf(set.model) == before);
}

TEST_F(ItemsTest, ListWithAnOrderAndWithoutWordsIsSetInThatOrder)
{
    Jointed set;
    const auto constraint = set.model.Find<KARMPConstraint>("J.constraint");
    const std::vector<Entity> turned{set.model.Find<KARMPGeometry>("B.J").Handle(),
                                     set.model.Find<KARMPGeometry>("A.J").Handle()};
    EXPECT_TRUE(set.model.Set(constraint, "Geometries", turned));
    EXPECT_EQ(*set.model.Get(constraint, "Geometries"), Value(turned));
    EXPECT_EQ(BrokenLinks(set.model), "");
}

TEST_F(ItemsTest, ListThatIsUndoneStandsInItsOrderAgain)
{
    Jointed set;
    const std::string before = TextOf(set.model);
    const auto begin = set.model.BeginEditing();
    EXPECT_TRUE(set.SetBodies({set.c, set.a}));
    EXPECT_TRUE(set.SetBodies({set.b}));
    set.model.EndEditing(begin, false);
    EXPECT_TRUE(TextOf(set.model) == before);
    EXPECT_EQ(set.Bodies(), "AOut BIn ");
}

TEST_F(ItemsTest, RepetitionInAListIsRefused)
{
    Jointed set;
    EXPECT_FALSE(set.SetBodies({set.a, set.a}));
    ASSERT_EQ(set.model.Problems().size(), 1U);
    EXPECT_EQ(set.model.Problems()[0].text,
              "\"Bodies\" of KARMPRevolute \"J\" has each entity once");
    EXPECT_EQ(set.Bodies(), "AOut BIn ");
}

TEST_F(ItemsTest, NameIsSetAsRenameGivesIt)
{
    Model model("M");
    const auto body = model.Body("A");
    EXPECT_FALSE(model.Set(body, "name", std::wstring()));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "KARMPBody \"A\" needs a name");
    EXPECT_EQ(body->getEntityName(), L"A");
    EXPECT_TRUE(model.Set(body, "name", std::wstring(L"Other")));
    EXPECT_EQ(body->getEntityName(), L"Other");
}

} // namespace
