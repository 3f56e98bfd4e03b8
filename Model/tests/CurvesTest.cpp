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

// The steps are 3, 4 and 5 long and the sines of the bends 1, 0.8 and 0.6, whichever piece is
// first.
TEST_F(CurvesTest, GreatestStepAndBendAreFoundBetweenAnyTwoPieces)
{
    const std::array pieces{Spline({{-1.0, 1.0, 0.0}, {2.0, 1.0, 0.0}}),
                            Spline({{2.0, 4.0, 0.0}, {2.0, 8.0, 0.0}}),
                            Spline({{6.0, 8.0, 0.0}, {2.0, 5.0, 0.0}})};
    for (std::size_t first = 0; first < pieces.size(); ++first) {
        const CurveJoins joins = JoinsOf(
            m_model.Curve("C" + std::to_string(first), m_body,
                          {pieces[first], pieces[(first + 1) % 3], pieces[(first + 2) % 3]}));
        EXPECT_DOUBLE_EQ(joins.step, 5.0);
        EXPECT_DOUBLE_EQ(joins.bend, 1.0);
    }
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

TEST_F(CurvesTest, PieceThatRunsBackwardsHasTheDirectionsOfItsOtherEnd)
{
    const auto curve =
        m_model.Curve("C", m_body, {Spline({{0.0, -1.0, 0.0}, {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}})});
    const CurvePiece back =
        Spline({{0.0, -1.0, 0.0}, {0.0, -2.0, 0.0}, {2.0, 0.0, 0.0}, {1.0, 0.0, 0.0}});
    auto* const limits = new KARCrvLimits(back->CreateParam(0.0), back->CreateParam(1.0));
    ASSERT_EQ(curve->AddCurve(back.get(), KARMPCurveOrientation::Negative, limits), KARSuccess);
    EXPECT_NEAR(JoinsOf(curve).step, 0.0, 1e-15);
    EXPECT_NEAR(JoinsOf(curve).bend, 0.0, 1e-15);
}

TEST_F(CurvesTest, ArcTurnsFromTheFirstDirectionOfItsFrameToTheSecond)
{
    const KARMathAxis frame{{1.0, 2.0, 3.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}};
    const CurvePiece arc = Arc(frame, 2.0, 0.0, Pi / 2.0);
    EXPECT_NEAR((arc->EvalPoint(0.0) - KARMathPoint(1.0, 4.0, 3.0)).Norm(), 0.0, 1e-15);
    EXPECT_NEAR((arc->EvalPoint(Pi / 2.0) - KARMathPoint(1.0, 2.0, 5.0)).Norm(), 0.0, 1e-15);
}

TEST_F(CurvesTest, EntryThatIsNoCurveIsANullPiece)
{
    const auto curve = m_model.Curve("C", m_body, {Arc({}, 1.0, 0.0, Pi)});
    KARGeometricFactory* const factory = KARGeometricFactory::Create();
    auto* const plane =
        factory->Make<KARPlaneSurface>(KARMathPoint(), KARMathVector(1.0, 0.0, 0.0),
                                       KARMathVector(0.0, 1.0, 0.0), KARSurLimits{0, 1, 0, 1});
    auto* const limits = new KARCrvLimits(KARCrvParam(0.0), KARCrvParam(1.0));
    ASSERT_EQ(curve->AddCurve(plane, KARMPCurveOrientation::Positive, limits), KARSuccess);
    factory->Release();
    const auto pieces = PiecesOf(curve);
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_TRUE(pieces[0]);
    EXPECT_FALSE(pieces[1]);
    EXPECT_TRUE(std::isfinite(JoinsOf(curve).step));
}

TEST_F(CurvesTest, PieceThatIsNoneLeavesNoCurve)
{
    EXPECT_FALSE(Arc({}, -1.0, 0.0, 1.0));
    EXPECT_FALSE(Spline({{0.0, 0.0, 0.0}}));
    EXPECT_FALSE(Spline({}));
    const std::string before = TextOf(m_model);
    EXPECT_FALSE(m_model.Curve("C", m_body, {Arc({}, 1.0, 0.0, 1.0), Arc({}, -1.0, 0.0, 1.0)}));
    EXPECT_FALSE(m_model.Curve("C", {}, {Arc({}, 1.0, 0.0, 1.0)}));
    ASSERT_EQ(m_model.Problems().size(), 2U);
    EXPECT_EQ(m_model.Problems()[0].text, "a piece of KARMPCurve \"A.C\" is no curve");
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
