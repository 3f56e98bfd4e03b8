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

} // namespace
