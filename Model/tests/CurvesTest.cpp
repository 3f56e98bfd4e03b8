// Curves on bodies, of arcs and splines.
#include "EditTesting.h"

#include <numbers>

using namespace karmp::model;

namespace {

constexpr double Pi = std::numbers::pi;

class CurvesTest : public KARMPTestFixture
{
protected:
    Model m_model{"M"};
    Ref<KARMPBody> m_body = m_model.Body("A");
};

TEST_F(CurvesTest, CurveHasItsPiecesInOrderAndIsSaved)
{
    const auto curve = m_model.Curve(
        "C", m_body, {Arc({}, 2.0, 0.0, Pi), Spline({{-2.0, 0.0, 0.0}, {2.0, 0.0, 0.0}})});
    ASSERT_TRUE(curve);
    const auto pieces = PiecesOf(curve);
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_NEAR((pieces[0]->EvalPoint(Pi / 2.0) - KARMathPoint(0.0, 2.0, 0.0)).Norm(), 0.0, 1e-15);
    EXPECT_EQ(pieces[1]->EvalPoint(0.5), KARMathPoint());
    EXPECT_EQ(BrokenLinks(m_model), "");
    const auto again = LoadText(*m_model.Text());
    ASSERT_TRUE(again);
    const auto read = PiecesOf(again->Find<KARMPCurve>("A.C"));
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[1]->EvalPoint(0.25), pieces[1]->EvalPoint(0.25));
}

TEST_F(CurvesTest, JoinsTellTheGreatestStepAndTheGreatestBend)
{
    const CurveJoins closed =
        JoinsOf(m_model.Curve("C", m_body, {Arc({}, 1.0, 0.0, Pi), Arc({}, 1.0, Pi, 2.0 * Pi)}));
    EXPECT_NEAR(closed.step, 0.0, 1e-15);
    EXPECT_NEAR(closed.bend, 0.0, 1e-15);
    const CurveJoins open = JoinsOf(m_model.Curve(
        "D", m_body,
        {Spline({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}}), Spline({{1.0, 0.5, 0.0}, {1.0, 1.0, 0.0}})}));
    EXPECT_DOUBLE_EQ(open.step, std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(open.bend, 1.0);
}

TEST_F(CurvesTest, PieceThatRunsBackwardsBeginsAtItsEnd)
{
    const auto curve = m_model.Curve("C", m_body, {Arc({}, 1.0, 0.0, Pi)});
    const CurvePiece back = Arc({}, 1.0, 0.0, Pi);
    auto* const limits = new KARCrvLimits(back->CreateParam(0.0), back->CreateParam(Pi));
    ASSERT_EQ(curve->AddCurve(back.get(), KARMPCurveOrientation::Negative, limits), KARSuccess);
    EXPECT_NEAR(JoinsOf(curve).step, 0.0, 1e-15);
    EXPECT_NEAR(JoinsOf(curve).bend, 0.0, 1e-15);
}

TEST_F(CurvesTest, PieceThatIsNoneLeavesNoCurve)
{
    EXPECT_FALSE(Arc({}, -1.0, 0.0, 1.0));
    EXPECT_FALSE(Spline({{0.0, 0.0, 0.0}}));
    EXPECT_FALSE(Spline({}));
    const std::string before = TextOf(m_model);
    EXPECT_FALSE(m_model.Curve("C", m_body, {Arc({}, 1.0, 0.0, 1.0), Arc({}, -1.0, 0.0, 1.0)}));
    EXPECT_FALSE(m_model.Curve("C", {}, {Arc({}, 1.0, 0.0, 1.0)}));
    EXPECT_EQ(m_model.Problems().size(), 2U);
    m_model.ClearProblems();
    EXPECT_TRUE(TextOf(m_model) == before);
}

TEST_F(CurvesTest, CurveNeedsAPiece)
{
    EXPECT_FALSE(m_model.Curve("C", m_body, {}));
    ASSERT_EQ(m_model.Problems().size(), 1U);
    EXPECT_EQ(m_model.Problems()[0].text, "the curve \"C\" has no piece");
}

} // namespace
