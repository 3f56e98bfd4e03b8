#include "EditTesting.h"

using namespace karmp::model;

namespace {

using CouplingEquationTest = KARMPTestFixture;

TEST_F(CouplingEquationTest, EquationThatIsRefusedBehindOtherConstraintsIsNotLinked)
{
    Model model("M");
    const auto cable = model.Add<KARMPCable>("C");
    EXPECT_TRUE(model.Link(cable, model.Add<KARMPRevoluteConstraint>("R")));
    const auto equation = model.Add<KARMPLinearEquation>("E");
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Set(cable, "Equation",
                           karmp::Value(QOBSharedHandle<KARMPEntity>(equation.Handle()))));
    EXPECT_EQ(model.Problems().size(), 1U);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_EQ(BrokenLinks(model), "");
}

} // namespace
