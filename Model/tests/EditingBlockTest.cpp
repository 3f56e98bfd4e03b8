#include "EditTesting.h"

using namespace karmp::model;

namespace {

using EditingBlockTest = KARMPTestFixture;

void EditMuch(Model& model)
{
    const auto a = model.Find<KARMPBody>("A");
    const auto c = model.Body("C", {.mass = 1.0});
    model.Joint<KARMPRevolute>("J2", a, c, {0.0, 0.0, 0.0});
    model.Set(a, "Mass", 7.0);
    model.Set(a, "Mass", 8.0);
    model.Rename(a, "Other");
    model.Unlink(a, model.Find<KARMPPoint>("A.P"));
}

void FillModel(Model& model)
{
    const auto a = model.Body("A", {.mass = 2.0});
    model.Joint<KARMPRevolute>("J", model.Ground(), a, {0.0, 0.0, 0.0});
    model.Point("P", a, {1.0, 0.0, 0.0});
}

TEST_F(EditingBlockTest, RevertedBlockLeavesTheModelAsItWas)
{
    Model model("M");
    FillModel(model);
    const std::string before = TextOf(model);
    const auto begin = model.BeginEditing();
    EditMuch(model);
    EXPECT_TRUE(model.Find<KARMPBody>("C"));
    model.EndEditing(begin, false);
    EXPECT_FALSE(model.Find<KARMPBody>("C"));
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_EQ(BrokenLinks(model), "");
    EXPECT_TRUE(model.Body("C"));
}

TEST_F(EditingBlockTest, KeptBlockIsAsTheCallsAlone)
{
    Model one("M");
    Model other("M");
    FillModel(one);
    FillModel(other);
    const auto begin = one.BeginEditing();
    EditMuch(one);
    one.EndEditing(begin, true);
    EditMuch(other);
    EXPECT_TRUE(TextOf(one) == TextOf(other));
    EXPECT_TRUE(one.Delete(one.Find<KARMPBody>("C")));
}

TEST_F(EditingBlockTest, InnerBlockIsRevertedAlone)
{
    Model model("M");
    const auto outer = model.BeginEditing();
    model.Body("A");
    const std::string before = TextOf(model);
    const auto inner = model.BeginEditing();
    model.Body("B");
    model.EndEditing(inner, false);
    EXPECT_TRUE(TextOf(model) == before);
    model.Body("C");
    model.EndEditing(outer, false);
    EXPECT_FALSE(model.Find<KARMPBody>("A"));
    EXPECT_FALSE(model.Find<KARMPBody>("C"));
}

TEST_F(EditingBlockTest, CallThatFailsInABlockUndoesItselfAlone)
{
    Model model("M");
    const auto begin = model.BeginEditing();
    model.Body("A");
    EXPECT_FALSE(model.Body("A"));
    model.EndEditing(begin, true);
    EXPECT_TRUE(model.Find<KARMPBody>("A"));
    EXPECT_EQ(model.Problems().size(), 1U);
}

TEST_F(EditingBlockTest, TargetOutsideOfTheModelIsKeptUntilTheBlockEnds)
{
    Model model("M");
    const auto body = model.Body("A");
    Ref<KARMPEntity> element(QOBSharedHandle<KARMPEntity>(KARMPPoint::create(L"E")));
    EXPECT_TRUE(model.Link(body, element, "AggregatedElements"));
    const auto begin = model.BeginEditing();
    EXPECT_TRUE(model.Unlink(body, element, "AggregatedElements"));
    element = {};
    model.EndEditing(begin, false);
    EXPECT_EQ(body->GetAggregatedElementCount(), 1);
}

TEST_F(EditingBlockTest, WhatCannotBeUndoneIsRefusedInABlock)
{
    Model model("M");
    const auto body = model.Body("A");
    const auto equation = model.Add("KARMPLinearEquation", "E");
    const auto begin = model.BeginEditing();
    EXPECT_FALSE(model.Delete(body));
    EXPECT_TRUE(model.Delete(body, {.preview = true}));
    EXPECT_FALSE(model.Set(equation, "LinearTermDataContainer",
                           std::vector<karmp::RecordValues>{{1.0, 2.0}}));
    EXPECT_EQ(model.Problems().size(), 2U);
    model.EndEditing(begin, true);
    EXPECT_TRUE(model.Delete(body));
}

} // namespace
