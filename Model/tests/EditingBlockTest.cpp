#include "AllocationCounter.h"
#include "EditTesting.h"
#include "KARIMPMotorLoader.h"

#include <chrono>

using namespace karmp::model;

namespace {

using EditingBlockTest = KARMPTestFixture;
using Entity = QOBSharedHandle<KARMPEntity>;

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
    ASSERT_EQ(model.Problems().size(), 2U);
    EXPECT_EQ(model.Problems()[0].text,
              "a deletion cannot be undone with the block of edits it is in");
    EXPECT_EQ(model.Problems()[1].text, "\"LinearTermDataContainer\" of KARMPLinearEquation \"E\" "
                                        "cannot be undone with the block of edits it is set in");
    model.EndEditing(begin, true);
    EXPECT_TRUE(model.Delete(body));
}

/// A block with every kind of step.
void EditAll(Model& model)
{
    EditMuch(model);
    const auto a = model.Find<KARMPBody>("A");
    model.Unlink(model.Find<KARMPJoint>("J"), a);
    model.Set(model.Find<KARMPEntity>("A.P"), "Body", Entity(model.Find<KARMPBody>("C").Handle()));
    model.Set(a, "name", std::wstring(L"a name that is not short at all"));
}

TEST_F(EditingBlockTest, BlockIsUndoneWhereverAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    for (const bool isForGood : {false, true}) {
        bool failed = true;
        for (std::size_t failing = 1; failed; ++failing) {
            Model model("M");
            FillModel(model);
            const std::string before = TextOf(model);
            const auto begin = model.BeginEditing();
            EditAll(model);
            ASSERT_TRUE(model.Problems().empty()) << model.Problems()[0].text;
            {
                AllocationCounter allocations;
                if (isForGood)
                    allocations.FailAllocationsFrom(failing);
                else
                    allocations.FailAllocation(failing);
                model.EndEditing(begin, false);
                failed = allocations.Count() >= failing;
            }
            if (model.Problems().empty()) {
                EXPECT_TRUE(TextOf(model) == before) << failing;
                EXPECT_EQ(BrokenLinks(model), "") << failing;
                continue;
            }
            EXPECT_TRUE(failed);
            ASSERT_EQ(model.Problems().size(), 1U);
            EXPECT_EQ(model.Problems()[0].text, "the undo failed");
            EXPECT_EQ(model.Problems()[0].status, KAROutOfMemory);
            EXPECT_EQ(std::string(model.Problems()[0].where.file), __FILE__);
            EXPECT_FALSE(model.Find<KARMPBody>("C"));
        }
    }
}

TEST_F(EditingBlockTest, CallThatFailsInABlockLetsLaterOnesKeepTheirEntities)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    bool failed = true;
    for (std::size_t failing = 1; failed; ++failing) {
        Model model("M");
        const auto a = model.Body("A");
        const auto b = model.Body("B");
        const auto motor = model.Add<KARMPMotor>("Motor");
        Entity value(KARMPConstant::create(L"unlisted"));
        ASSERT_TRUE(model.Set(motor, "Velocity", value));
        const auto begin = model.BeginEditing();
        {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            model.Joint<KARMPRevolute>("J", a, b, KARMathPoint());
            failed = allocations.Count() >= failing;
        }
        const KARMPEntity* const address = value.get();
        EXPECT_TRUE(model.Set(motor, "Velocity", karmp::Value()));
        value = nullptr;
        model.EndEditing(begin, false);
        const auto restored = model.Get(motor, "Velocity");
        ASSERT_TRUE(restored);
        EXPECT_EQ(std::get<Entity>(*restored).get(), address) << failing;
        TakeReports();
    }
}

TEST_F(EditingBlockTest, BlockThatIsNotOpenIsNotEnded)
{
    Model model("M");
    model.EndEditing(1, false);
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "a block of edits that is not open cannot be ended");
    model.ClearProblems();
    const auto body = model.Body("A");
    EXPECT_TRUE(model.Delete(body));
    const auto begin = model.BeginEditing();
    model.EndEditing(begin, true);
    model.Body("B");
    model.EndEditing(begin, false);
    EXPECT_EQ(model.Problems().size(), 1U);
    EXPECT_TRUE(model.Find<KARMPBody>("B"));
}

TEST_F(EditingBlockTest, BlockThatHasNoMemoryIsAProblemAndNotOpen)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    Model model("M");
    std::size_t begin = 1;
    {
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        EXPECT_NO_THROW(begin = model.BeginEditing());
    }
    EXPECT_EQ(begin, 0U);
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].status, KAROutOfMemory);
    EXPECT_TRUE(model.Delete(model.Body("A")));
}

TEST_F(EditingBlockTest, OuterBlockEndsTheInnerOnesWithIt)
{
    Model model("M");
    const auto outer = model.BeginEditing();
    model.Body("A");
    const auto inner = model.BeginEditing();
    model.Body("B");
    model.EndEditing(outer, false);
    EXPECT_FALSE(model.Find<KARMPBody>("A"));
    EXPECT_FALSE(model.Find<KARMPBody>("B"));
    const auto body = model.Body("C");
    model.EndEditing(inner, false);
    EXPECT_TRUE(body);
    EXPECT_EQ(model.Problems().size(), 1U);
    EXPECT_TRUE(model.Delete(body));
}

TEST_F(EditingBlockTest, ValueThatCannotBeUnsetIsSetInABlockOfNewEntitiesAlone)
{
    Model model("M");
    const auto constant = model.Add<KARMPConstant>("c");
    const std::string before = TextOf(model);
    const auto begin = model.BeginEditing();
    EXPECT_FALSE(model.Set(constant, "PhysicalQuantity", std::wstring(L"Length")));
    const auto made = model.Add<KARMPConstant>("d");
    const auto inner = model.BeginEditing();
    EXPECT_FALSE(model.Set(made, "PhysicalQuantity", std::wstring(L"Length")));
    model.EndEditing(inner, false);
    EXPECT_TRUE(model.Set(made, "PhysicalQuantity", std::wstring(L"Length")));
    EXPECT_EQ(model.Problems().size(), 2U);
    model.ClearProblems();
    model.EndEditing(begin, false);
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_TRUE(model.Set(constant, "PhysicalQuantity", std::wstring(L"Length")));
}

TEST_F(EditingBlockTest, ManyUnlinksTakeMemoryAndTimeByTheirNumber)
{
    Model model("M");
    const auto ground = model.Ground();
    constexpr int many = 4'000;
    for (int i = 0; i < many; ++i)
        model.Frame("F" + std::to_string(i), ground, {});
    const auto frames = model.All<KARMPAxisSystem>();
    const std::string before = TextOf(model);
    const auto begin = model.BeginEditing();
    std::size_t bytes = 0;
    {
        AllocationCounter allocations;
        for (std::size_t i = 1; i < frames.size(); i += 2)
            model.Unlink(frames[i], ground);
        for (std::size_t i = frames.size(); i-- > 1;)
            if (i % 2 == 0)
                model.Unlink(frames[i], ground);
        bytes = allocations.Bytes();
    }
    EXPECT_TRUE(model.Problems().empty());
    EXPECT_EQ(ground->GetGeometryCount(), 1);
    if (AllocationCounter::Counts)
        EXPECT_LT(bytes, std::size_t{5'000'000});
    const auto start = std::chrono::steady_clock::now();
    model.EndEditing(begin, false);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_LT(seconds.count(), 0.3);
}

TEST_F(EditingBlockTest, EntriesBehindManyThatWereUnlinkedStandInTheirOrderAgain)
{
    Model model("M");
    const auto joint = model.Add<KARMPRevolute>("J");
    RefList<KARMPPoint> points;
    for (int i = 0; i < 40; ++i) {
        const std::string number = std::to_string(i);
        points.push_back(model.Point("P" + number, model.Ground(), {}));
        model.Link(joint, model.Body("B" + number));
    }
    const auto outer = model.BeginEditing();
    EXPECT_TRUE(model.Unlink(points.back(), model.Ground()));
    const std::string before = TextOf(model);
    const auto inner = model.BeginEditing();
    for (std::size_t i = points.size() - 1; i > 1; i -= 2)
        EXPECT_TRUE(model.Unlink(points[i - 1], model.Ground()));
    EXPECT_TRUE(model.Set(joint, "Bodies", karmp::Value()));
    model.EndEditing(inner, false);
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_EQ(BrokenLinks(model), "");
    model.EndEditing(outer, true);
}

/// A loader that calls the model back.
class CallingLoader : public KARIMPMotorLoader
{
public:
    CallingLoader(Model& model, KARStatus status) : m_model(model), m_status(status) {}
    KARStatus SetPosition(const QOBSharedHandle<KARMPValue>&) override { return Call(); }
    KARStatus SetVelocity(const QOBSharedHandle<KARMPValue>&) override { return Call(); }
    KARStatus SetAcceleration(const QOBSharedHandle<KARMPValue>&) override { return Call(); }
    KARStatus SetMaxForce(const QOBSharedHandle<KARMPValue>&) override { return Call(); }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    KARStatus Call()
    {
        m_model.Body("inner");
        m_model.EndEditing(m_model.BeginEditing(), false);
        return m_status;
    }

    Model& m_model;
    KARStatus m_status;
};

TEST_F(EditingBlockTest, CallOfALoaderInsideOfACallIsRefused)
{
    for (const KARStatus status : {KARSuccess, KARFailure}) {
        Model model("M");
        const auto motor = model.Add<KARMPMotor>("Motor");
        const auto constant = model.Constant("c", KARMPPhysicalQuantity::Length, 1.0);
        motor->SetLoader(new CallingLoader(model, status));
        EXPECT_EQ(model.Set(motor, "Velocity", Entity(constant.Handle())), status == KARSuccess);
        EXPECT_FALSE(model.Find<KARMPBody>("inner"));
        ASSERT_FALSE(model.Problems().empty());
        EXPECT_EQ(model.Problems()[0].text,
                  "a call inside of another call of the model is refused");
        TakeReports();
    }
}

} // namespace
