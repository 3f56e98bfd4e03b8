// Attributes, initial conditions and analysis cases by single calls.
#include "EditTesting.h"

using namespace karmp::model;

namespace {

using Quantity = KARMPPhysicalQuantity;

class AnalysisTest : public KARMPTestFixture
{
protected:
    Model m_model{"M"};
    Ref<KARMPBody> m_body = m_model.Body("A");
};

TEST_F(AnalysisTest, AttributeHasItsNameItsValueAndTheWordForIt)
{
    ASSERT_TRUE(m_model.AddAttributes<KARMPParameter>(
        m_body, {{"speed", Quantity::Velocity, 2.5},
                 {"on", Quantity::NoPhysicalQuantity, true},
                 {"kind", Quantity::NoPhysicalQuantity, "n\u00e4her"}}));
    const auto speed = m_model.Find<KARMPParameter>("A.speed");
    EXPECT_EQ(speed->GetID(), KARString("speed"));
    EXPECT_EQ(speed->GetType(), KARString("double"));
    EXPECT_EQ(*NumberAt<KARMPParameter>(m_body, "speed"), 2.5);
    Quantity::Enum quantity{};
    m_model.Find<KARMPConstant>("A.speed.value")->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, Quantity::Velocity);
    unsigned char flag = 0;
    KARUnicodeString text;
    EXPECT_EQ(m_body->GetParameterValue({"on"}, 0, flag), KARSuccess);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(m_model.Find<KARMPParameter>("A.on")->GetType(), KARString("bool"));
    EXPECT_EQ(m_body->GetParameterValue({"kind"}, 0, text), KARSuccess);
    EXPECT_EQ(std::string(text.Text()), "n\u00e4her");
    EXPECT_EQ(m_model.Find<KARMPParameter>("A.kind")->GetType(), KARString("string"));
    EXPECT_EQ(BrokenLinks(m_model), "");
}

TEST_F(AnalysisTest, AttributeOfPartsIsAboutAnEntity)
{
    const auto other = m_model.Body("B");
    ASSERT_TRUE(m_model.AddAttributes<KARMPOutput>(
        m_body,
        {{"group", other, {{"x", Quantity::Length}, {"deep", {{"y", Quantity::Angle, 3.0}}}}}}));
    const auto group = m_model.Find<KARMPOutput>("A.group");
    QOBSharedHandle<KARMPEntity> about;
    EXPECT_EQ(group->GetSupportTarget(0, about), KARSuccess);
    EXPECT_EQ(about, QOBSharedHandle<KARMPEntity>(other.Handle()));
    EXPECT_EQ(m_model.Find<KARMPOutput>("A.group.deep")->GetSupportsCount(), 0);
    EXPECT_EQ(*NumberAt<KARMPOutput>(m_body, "group.x"), 0.0);
    EXPECT_EQ(*NumberAt<KARMPOutput>(m_body, "group.deep.y"), 3.0);
    EXPECT_EQ(m_body->GetOutputCount(), 1);
    EXPECT_EQ(NumberAt<KARMPOutput>(m_body, "group.z").Error().text,
              "KARMPBody \"A\" has no number at \"group.z\"");
    EXPECT_FALSE(NumberAt<KARMPOutput>(m_body, "group"));
    EXPECT_FALSE(NumberAt<KARMPParameter>(m_body, "group.x"));
    EXPECT_EQ(BrokenLinks(m_model), "");
}

TEST_F(AnalysisTest, StatesAreAttributesToo)
{
    ASSERT_TRUE(m_model.AddAttributes<KARMPState>(m_body, {{"height", Quantity::Length, 0.5}}));
    ASSERT_TRUE(m_model.AddAttributes<KARMPState>(m_body, {{"width", Quantity::Length, 0.25}}));
    EXPECT_EQ(m_body->GetStateCount(), 2);
    EXPECT_EQ(*NumberAt<KARMPState>(m_body, "width"), 0.25);
}

TEST_F(AnalysisTest, CaseHasStepsWithParametersAndOutputs)
{
    const auto start =
        m_model.InitialCondition("Start", {{"body", m_body, {{"x", Quantity::Length, 1.5}}}});
    ASSERT_TRUE(start);
    EXPECT_EQ(*NumberAt<KARMPParameter>(start, "body.x"), 1.5);
    const auto run = m_model.AnalysisCase(
        "Run", {.steps = {{"One", {{"duration", Quantity::Time, 2.0}}}, {"Two"}},
                .outputs = {{"time", Quantity::Time}}});
    ASSERT_TRUE(run);
    m_model.Add<KARMPAnalysisStep>("Of no case");
    EXPECT_EQ(StepsOf(run), (RefList<KARMPAnalysisStep>{m_model.Find<KARMPAnalysisStep>("One"),
                                                        m_model.Find<KARMPAnalysisStep>("Two")}));
    EXPECT_EQ(*NumberAt<KARMPParameter>(m_model.Find<KARMPAnalysisStep>("One"), "duration"), 2.0);
    EXPECT_EQ(UpdateOutputs(run, {{"time", 0.75}}), KARSuccess);
    EXPECT_EQ(*NumberAt<KARMPOutput>(run, "time"), 0.75);
    EXPECT_EQ(BrokenLinks(m_model), "");
}

TEST_F(AnalysisTest, AttributesThatCannotBeMadeLeaveNothing)
{
    m_model.Constant("A.second.value", Quantity::Length, 1.0);
    const std::string before = TextOf(m_model);
    EXPECT_FALSE(m_model.AddAttributes<KARMPParameter>(
        m_body, {{"first", Quantity::Length}, {"second", Quantity::Length}}));
    EXPECT_FALSE(m_model.AddAttributes<KARMPParameter>(
        m_body, {{"group", Ref<KARMPEntity>(), {{"x", Quantity::Length}}}}));
    EXPECT_EQ(m_model.Problems().back().text, "there is no entity that an attribute is about");
    EXPECT_FALSE(m_model.AddAttributes<KARMPParameter>({}, {{"first", Quantity::Length}}));
    EXPECT_FALSE(m_model.InitialCondition("A", {}));
    EXPECT_FALSE(m_model.AnalysisCase("Run", {.steps = {{"Step"}, {"Step"}}}));
    EXPECT_FALSE(m_model.AddAttributes<KARMPParameter>(m_body, {{"", Quantity::Length}}));
    ASSERT_EQ(m_model.Problems().size(), 6U);
    EXPECT_EQ(m_model.Problems().back().text,
              "what belongs to KARMPBody \"A\" needs an identifier");
    m_model.ClearProblems();
    EXPECT_TRUE(TextOf(m_model) == before);
    EXPECT_EQ(m_body->GetParameterCount(), 0);
}

} // namespace
