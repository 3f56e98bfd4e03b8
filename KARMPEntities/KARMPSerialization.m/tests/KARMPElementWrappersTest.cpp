#include "AllocationCounter.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestEntity.h"
#include "TestSerializer.h"

namespace {

using karmp::Absent;
using karmp::ElementReader;
using karmp::ElementWriter;

class Wrappers : public KARMPTestFixture
{
protected:
    TestSerializer root;
};

TEST_F(Wrappers, WriterReportsANullParentOnceAndThenIsSilent)
{
    ElementWriter element(nullptr, L"Element");
    ExpectReports(1);
    EXPECT_FALSE(element);
    EXPECT_FALSE(element.Value(L"Value", 1.0));
    EXPECT_FALSE(element.Attribute(L"id", L"E1"));
    EXPECT_FALSE(element.Child(L"Child"));
    EXPECT_FALSE(element.Reference(L"Reference", QOBSharedBase()));
    EXPECT_EQ(element.Status(), KARFailure);
}

TEST_F(Wrappers, WriterReportsAtItsCaller)
{
    const int line = __LINE__ + 1;
    const ElementWriter element(static_cast<KARMPSerializer*>(nullptr));
    ASSERT_EQ(UnclaimedReports().size(), 1U);
    EXPECT_NE(
        UnclaimedReports().front().find("KARMPElementWrappersTest.cpp:" + std::to_string(line)),
        std::string::npos);
    ExpectReports(1);
}

TEST_F(Wrappers, WriterWritesValuesOfEachKind)
{
    ElementWriter element(&root, L"Element");
    EXPECT_TRUE(element.Value(L"Text", L"text"));
    EXPECT_TRUE(element.Value(L"Double", 1.5));
    EXPECT_TRUE(element.Value(L"Int", 7));
    EXPECT_TRUE(element.Value(L"Bool", true));
    EXPECT_TRUE(element.Word(L"Word", KARMPAlignment::AntiAlign));
    EXPECT_TRUE(element.Attribute(L"flag", false));
    EXPECT_TRUE(element.Values(karmp::PointNames, {1.0, 2.0, 3.0}));
    EXPECT_TRUE(element.Values(karmp::VectorNames, KARMathVector(4.0, 5.0, 6.0)));
    EXPECT_EQ(element.Status(), KARSuccess);
    EXPECT_EQ(root.Text(L"Element/Text"), L"text");
    EXPECT_EQ(root.Number(L"Element/Double"), 1.5);
    EXPECT_EQ(root.Integer(L"Element/Int"), 7);
    EXPECT_TRUE(root.Flag(L"Element/Bool"));
    EXPECT_EQ(root.Text(L"Element/Word"), L"AntiAlign");
    EXPECT_FALSE(root.Flag(L"Element/@flag"));
    EXPECT_EQ(root.Number(L"Element/Py"), 2.0);
    EXPECT_EQ(root.Number(L"Element/Vz"), 6.0);
}

TEST_F(Wrappers, WriterGoesOnPastAFailedAdditionAndRemembersIt)
{
    ElementWriter element(&root, L"Element");
    root.FailCreation(2);
    EXPECT_FALSE(element.Values(karmp::PointNames, {1.0, 2.0, 3.0}));
    EXPECT_GE(TakeReports(), 1U);
    EXPECT_TRUE(root.Has(L"Element/Px"));
    EXPECT_FALSE(root.Has(L"Element/Py"));
    EXPECT_TRUE(root.Has(L"Element/Pz"));
    EXPECT_EQ(element.Status(), KARFailure);
}

TEST_F(Wrappers, WriterReportsEachFailedAddition)
{
    ElementWriter element(&root, L"Element");
    root.FailCreation(1);
    EXPECT_FALSE(element.Child(L"First"));
    const std::size_t reports = TakeReports();
    EXPECT_GE(reports, 1U);
    root.FailCreation(1);
    EXPECT_FALSE(element.Child(L"Second"));
    EXPECT_EQ(TakeReports(), reports);
}

TEST_F(Wrappers, WriterCountsAChildThatCannotBeAdded)
{
    ElementWriter element(&root, L"Element");
    root.FailCreation(1);
    EXPECT_FALSE(element.Child(L"Child"));
    EXPECT_GE(TakeReports(), 1U);
    EXPECT_EQ(element.Status(), KARFailure);
    EXPECT_TRUE(element.Child(L"Other"));
}

TEST_F(Wrappers, MatrixStandsByColumns)
{
    const KARMath3x3Matrix matrix({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    ElementWriter element(&root, L"Element");
    EXPECT_TRUE(element.Values(matrix));
    EXPECT_EQ(root.Number(L"Element/M1y"), 2.0);
    EXPECT_EQ(root.Number(L"Element/M2x"), 4.0);
    EXPECT_EQ(root.Number(L"Element/M3z"), 9.0);

    const auto tree = TestDeserializer::From(root);
    ElementReader reader(tree.get(), L"Element");
    KARMath3x3Matrix read;
    EXPECT_TRUE(reader.Values(read, Absent::ReportAndKeep));
    EXPECT_EQ(read, matrix);
}

TEST_F(Wrappers, ReferenceToNothingLeavesAnElementWithoutAttributes)
{
    ElementWriter element(&root, L"Element");
    EXPECT_FALSE(element.Reference(L"Body", QOBSharedBase()));
    ExpectReports(1);
    ASSERT_TRUE(root.Has(L"Element/Body"));
    EXPECT_EQ(root.Find(L"Element/Body")->GetAttributeCount(), 0U);
}

TEST_F(Wrappers, ReferenceWithoutAnIdentifierHasItsName)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot let an allocation fail";
    bool seen = false;
    for (std::size_t number = 1; number < 20 && !seen; ++number) {
        const auto entity = TestEntity::create(L"an entity with a name of some length");
        TestSerializer tree;
        try {
            ElementWriter element(&tree, L"Element");
            AllocationCounter allocations;
            allocations.FailAllocation(number);
            element.Reference(L"Body", entity);
        } catch (const std::bad_alloc&) {
            continue;
        }
        TakeReports();
        seen = tree.Has(L"Element/Body/@name") && !tree.Has(L"Element/Body/@id");
    }
    EXPECT_TRUE(seen);
}

TEST_F(Wrappers, UnknownReferenceKeepsTheNumberOfItems)
{
    const auto entity = TestEntity::create(L"e");
    entity->SetIdentifier(L"E1");
    ElementWriter element(&root, L"Element");
    element.References<TestEntity>(L"Items", L"Item", 2, [&](int index, auto& handle) {
        handle = index == 1 ? entity : QOBSharedHandle<TestEntity>();
        return index == 1 ? KARSuccess : KARFailure;
    });
    EXPECT_EQ(root.Count(L"Element/Items/Item"), 2U);
    EXPECT_TRUE(root.Flag(L"Element/Items/Item[0]/@id"));
    EXPECT_TRUE(root.Flag(L"Element/Items/Item[0]/@name"));
    EXPECT_EQ(root.Text(L"Element/Items/Item[1]/@id"), L"E1");
}

TEST_F(Wrappers, ReaderTakesTheNodeItselfOrItsChild)
{
    TestDeserializer holder(L"Holder");
    auto& own = holder.Add(L"Element");
    EXPECT_EQ(ElementReader(&holder, L"Element").Node(), &own);
    EXPECT_EQ(ElementReader(&own, L"Element").Node(), &own);
    EXPECT_FALSE(ElementReader(&holder, L"Other"));
    ExpectReports(1);
    EXPECT_FALSE(ElementReader(nullptr, L"Element"));
    ExpectReports(1);
}

TEST_F(Wrappers, AbsenceMeansWhatThePolicySays)
{
    TestDeserializer node(L"Element");
    ElementReader element(&node);
    double value = 5.0;
    EXPECT_FALSE(element.Value(L"x", value, Absent::Keep));
    ExpectReports(0);
    EXPECT_FALSE(element.Value(L"x", value, Absent::ReportAndKeep));
    ExpectReports(1);
    EXPECT_EQ(value, 5.0);
    EXPECT_EQ(element.Status(), KARSuccess);
    EXPECT_FALSE(element.Value(L"x", value, Absent::ReportAndZero));
    ExpectReports(1);
    EXPECT_EQ(value, 0.0);
    value = 5.0;
    EXPECT_FALSE(element.Value(L"x", value, Absent::ReportAndFail));
    ExpectReports(1);
    EXPECT_EQ(value, 5.0);
    EXPECT_EQ(element.Status(), KARFailure);
}

TEST_F(Wrappers, MissingChildReadsAsNothingWithoutFurtherReports)
{
    TestDeserializer node(L"Element");
    ElementReader element(&node);
    ElementReader child = element.Child(L"Child", Absent::ReportAndKeep);
    ExpectReports(1);
    EXPECT_FALSE(child);
    std::wstring text = L"kept";
    EXPECT_FALSE(child.Value(L"x", text, Absent::ReportAndZero));
    EXPECT_FALSE(child.Attribute(L"x", text, Absent::ReportAndFail));
    EXPECT_FALSE(child.Has(L"x"));
    EXPECT_EQ(child.Status(), KARFailure);
    EXPECT_EQ(element.Status(), KARSuccess);
}

TEST_F(Wrappers, GroupKeepsOrZeroesTheMissingMemberOnly)
{
    TestDeserializer node(L"Element");
    node.Leaf(L"Vx", 1.0).Leaf(L"Vz", 3.0);
    ElementReader element(&node);
    KARMathVector vector(7.0, 8.0, 9.0);
    EXPECT_FALSE(element.Values(karmp::VectorNames, vector, Absent::ReportAndKeep));
    ExpectReports(1);
    EXPECT_EQ(vector, KARMathVector(1.0, 8.0, 3.0));
    EXPECT_FALSE(element.Values(karmp::VectorNames, vector, Absent::ReportAndZero));
    ExpectReports(1);
    EXPECT_EQ(vector, KARMathVector(1.0, 0.0, 3.0));
}

TEST_F(Wrappers, UnknownWordReadsAsRowZeroWithoutAReport)
{
    TestDeserializer node(L"Element");
    node.Leaf(L"Alignment", L"align");
    ElementReader element(&node);
    KARMPAlignment::Enum alignment = KARMPAlignment::AntiAlign;
    EXPECT_TRUE(element.Word(L"Alignment", alignment, Absent::ReportAndFail));
    EXPECT_EQ(alignment, KARMPAlignment::NotSpecified);
}

TEST_F(Wrappers, ReferenceReportsOnlyAFailingSetter)
{
    const auto entity = TestEntity::create(L"e");
    KARMPEntityTable entities;
    entities.Set(L"E1", entity);
    TestDeserializer node(L"Element");
    node.Reference(L"Known", L"E1").Reference(L"Unknown", L"E2");
    ElementReader element(&node);
    int calls = 0;
    const auto set = [&calls](const QOBSharedHandle<TestEntity>&) {
        return ++calls == 1 ? KARUnchanged : KARFailure;
    };
    element.Reference<TestEntity>(L"Absent", entities, set);
    element.Reference<TestEntity>(L"Unknown", entities, set);
    EXPECT_EQ(calls, 0);
    element.Reference<TestEntity>(L"Known", entities, set);
    ExpectReports(0);
    element.Reference<TestEntity>(L"Known", entities, set);
    ExpectReports(1);
    EXPECT_EQ(calls, 2);
}

} // namespace
