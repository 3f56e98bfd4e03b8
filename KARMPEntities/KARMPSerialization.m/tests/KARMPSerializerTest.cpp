#include "KARMPSerializer.h"

#include "AllocationCounter.h"
#include "KARMPTestFixture.h"
#include "KARMPVersions.h"
#include "TestSerializer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <concepts>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class Serializer : public KARMPTestFixture
{
protected:
    // A variable of the environment for as long as a test runs.
    static void SetPrecision(bool exact)
    {
        if (exact)
            ASSERT_EQ(setenv("SERIALIZATION_PRECISION", "", 1), 0);
        else
            ASSERT_EQ(unsetenv("SERIALIZATION_PRECISION"), 0);
    }

    static double Stored(double value)
    {
        TestSerializer root;
        KARMPSerializer* child = nullptr;
        EXPECT_EQ(root.AddElement(L"value", child, value), KARSuccess);
        EXPECT_EQ(root.AddAttribute(L"value", value), KARSuccess);
        const double stored = root.Number(L"value");
        const double attribute = root.Number(L"@value");
        EXPECT_TRUE(stored == attribute || (std::isnan(stored) && std::isnan(attribute)));
        return stored;
    }
};

TEST_F(Serializer, ANewNodeIsEmptyAndAtTheCurrentVersion)
{
    TestSerializer root;
    std::wstring version = L"what was there before";
    EXPECT_EQ(root.GetVersion(version), KARSuccess);
    EXPECT_EQ(version, L"R2018.1");
    EXPECT_EQ(root.GetId(), L"");
    EXPECT_EQ(root.GetType(), KARMPSerializationVariable::None);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(root.GetAttributeCount(), 0U);
}

TEST_F(Serializer, FieldsOfOtherKindsKeepTheirDefaults)
{
    TestSerializer root;
    EXPECT_FALSE(root.GetValueb());
    EXPECT_EQ(root.GetValuei(), -1);
    EXPECT_EQ(root.GetValued(), -1.0);
    EXPECT_EQ(root.GetValues(), L"");
    root.AddAttribute(L"a", 3);
    EXPECT_EQ(root.GetAttributeValuei(0), 3);
    EXPECT_FALSE(root.GetAttributeValueb(0));
    EXPECT_EQ(root.GetAttributeValued(0), -1.0);
    EXPECT_EQ(root.GetAttributeValues(0), L"");
    const KARMPSerializationVariable plain = root.GetAttribute(0);
    EXPECT_EQ(plain.name, L"a");
    EXPECT_EQ(plain.type, KARMPSerializationVariable::Int);
    EXPECT_EQ(plain.value.intValue, 3);
    EXPECT_EQ(plain.value.doubleValue, -1.0);
    EXPECT_EQ(plain.value.reserved, 0U);
}

TEST_F(Serializer, AnAttributeKeepsTheKindOfItsValue)
{
    TestSerializer root;
    const std::wstring text = L"text";
    EXPECT_EQ(root.AddAttribute(L"literal", L"text"), KARSuccess);
    EXPECT_EQ(root.AddAttribute(L"string", text), KARSuccess);
    EXPECT_EQ(root.AddAttribute(L"view", std::wstring_view(text)), KARSuccess);
    EXPECT_EQ(root.AddAttribute(L"moved", std::wstring(1000, L'x')), KARSuccess);
    EXPECT_EQ(root.AddAttribute(L"int", 7), KARSuccess);
    EXPECT_EQ(root.AddAttribute(L"double", 0.5), KARSuccess);
    EXPECT_EQ(root.AddAttribute(L"bool", true), KARSuccess);
    EXPECT_EQ(root.Text(L"@literal"), L"text");
    EXPECT_EQ(root.Text(L"@string"), L"text");
    EXPECT_EQ(root.Text(L"@view"), L"text");
    EXPECT_EQ(root.Text(L"@moved"), std::wstring(1000, L'x'));
    EXPECT_EQ(root.Integer(L"@int"), 7);
    EXPECT_EQ(root.Number(L"@double"), 0.5);
    EXPECT_TRUE(root.Flag(L"@bool"));
}

TEST_F(Serializer, AnElementKeepsTheKindOfItsValue)
{
    TestSerializer root;
    const std::wstring text = L"text";
    const auto add = [&root](std::wstring_view name, auto&& value) {
        KARMPSerializer* child = nullptr;
        EXPECT_EQ(root.AddElement(name, child, std::forward<decltype(value)>(value)), KARSuccess);
        EXPECT_NE(child, nullptr);
    };
    add(L"literal", L"text");
    add(L"string", text);
    add(L"view", std::wstring_view(text));
    add(L"moved", std::wstring(1000, L'x'));
    add(L"int", -7);
    add(L"double", -0.5);
    add(L"bool", false);
    EXPECT_EQ(root.Text(L"literal"), L"text");
    EXPECT_EQ(root.Text(L"string"), L"text");
    EXPECT_EQ(root.Text(L"view"), L"text");
    EXPECT_EQ(root.Text(L"moved"), std::wstring(1000, L'x'));
    EXPECT_EQ(root.Integer(L"int"), -7);
    EXPECT_EQ(root.Number(L"double"), -0.5);
    EXPECT_FALSE(root.Flag(L"bool"));
}

namespace {

template <class Value>
concept Addable = requires(KARMPSerializer& node, Value value)
{
    node.AddAttribute(L"n", value);
};

} // namespace

TEST_F(Serializer, APointerIsNoBool)
{
    EXPECT_FALSE((Addable<const void*>));
    EXPECT_FALSE((Addable<const char*>));
    EXPECT_TRUE((Addable<const wchar_t*>));
}

TEST_F(Serializer, ANullTextIsAnEmptyText)
{
    TestSerializer root;
    const wchar_t* const none = nullptr;
    root.AddAttribute(L"a", none);
    EXPECT_EQ(root.Text(L"@a"), L"");
}

TEST_F(Serializer, TextsKeepAllCharacters)
{
    const std::wstring text = {L'a', L'\0', L'b', wchar_t(0x1F600), wchar_t(-1), L'\n'};
    TestSerializer root;
    root.AddAttribute(L"a", text);
    EXPECT_EQ(root.Text(L"@a"), text);
}

TEST_F(Serializer, AttributesOfOneNameAreAllKeptInOrder)
{
    TestSerializer root;
    root.AddAttribute(L"id", L"first");
    root.AddAttribute(L"id", L"second");
    ASSERT_EQ(root.GetAttributeCount(), 2U);
    EXPECT_EQ(root.GetAttributeValues(0), L"first");
    EXPECT_EQ(root.GetAttributeValues(1), L"second");
}

TEST_F(Serializer, ElementsOfOneNameAreAllKeptInOrder)
{
    TestSerializer root;
    for (int value = 0; value < 100; ++value) {
        KARMPSerializer* child = nullptr;
        root.AddElement(L"Item", child, value);
    }
    ASSERT_EQ(root.Count(L"Item"), 100U);
    for (std::size_t index = 0; index < 100; ++index)
        EXPECT_EQ(root.Child(index).GetValuei(), static_cast<int>(index));
}

TEST_F(Serializer, AChildPointerThatIsSetFailsWithAReportAndAddsNothing)
{
    TestSerializer root;
    KARMPSerializer* child = &root;
    EXPECT_EQ(root.AddElement(L"Child", child), KARFailure);
    EXPECT_EQ(child, &root);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(root.Creations(), 0U);
    ExpectReports(1);
}

TEST_F(Serializer, AChildPointerThatIsSetFailsWithTwoReportsWhenAValueIsGiven)
{
    TestSerializer root;
    KARMPSerializer* child = &root;
    EXPECT_EQ(root.AddElement(L"Child", child, 1.0), KARFailure);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(root.GetType(), KARMPSerializationVariable::None);
    ExpectReports(2);
}

TEST_F(Serializer, ANodeThatCannotBeCreatedFailsWithAReport)
{
    TestSerializer root;
    root.FailCreation(1);
    KARMPSerializer* child = nullptr;
    EXPECT_EQ(root.AddElement(L"Child", child), KARFailure);
    EXPECT_EQ(child, nullptr);
    EXPECT_EQ(root.GetElementCount(), 0U);
    ExpectReports(1);
}

TEST_F(Serializer, ANodeThatCannotBeCreatedFailsWithTwoReportsWhenAValueIsGiven)
{
    TestSerializer root;
    KARMPSerializer* child = nullptr;
    for (int kind = 0; kind < 4; ++kind) {
        root.FailCreation(1);
        const KARStatus status = kind == 0   ? root.AddElement(L"Child", child, L"text")
                                 : kind == 1 ? root.AddElement(L"Child", child, 1)
                                 : kind == 2 ? root.AddElement(L"Child", child, 1.0)
                                             : root.AddElement(L"Child", child, true);
        EXPECT_EQ(status, KARFailure);
        EXPECT_EQ(child, nullptr);
        ExpectReports(2);
    }
    EXPECT_EQ(root.GetElementCount(), 0U);
}

TEST_F(Serializer, AChildHasTheVersionThatItsParentHadAtItsCreation)
{
    TestSerializer root;
    KARMPSerializer* before = nullptr;
    root.AddElement(L"Before", before);
    EXPECT_EQ(root.SetVersion(L"R2016.0"), KARSuccess);
    KARMPSerializer* after = nullptr;
    root.AddElement(L"After", after);
    KARMPSerializer* grandchild = nullptr;
    after->AddElement(L"Grandchild", grandchild, 1.0);
    EXPECT_EQ(before->Version(), L"R2018.1");
    EXPECT_EQ(after->Version(), L"R2016.0");
    std::wstring version;
    EXPECT_EQ(grandchild->GetVersion(version), KARSuccess);
    EXPECT_EQ(version, L"R2016.0");
}

TEST_F(Serializer, AVersionMayBeAnyText)
{
    const std::wstring text(500, L'v');
    TestSerializer root(text);
    KARMPSerializer* child = nullptr;
    root.AddElement(L"Child", child);
    root.SetVersion(L"");
    EXPECT_EQ(child->Version(), text);
    EXPECT_EQ(root.Version(), L"");
}

TEST_F(Serializer, ASmallDoubleIsStoredAsPositiveZero)
{
    SetPrecision(false);
    for (const double value : {1e-13, -1e-13, 0.9e-12, -0.9e-12, 0.0, -0.0, 5e-324}) {
        const double stored = Stored(value);
        EXPECT_EQ(stored, 0.0) << value;
        EXPECT_FALSE(std::signbit(stored)) << value;
    }
}

TEST_F(Serializer, ADoubleIsSnappedToTheGridHalfAwayFromZero)
{
    SetPrecision(false);
    EXPECT_EQ(Stored(1e-12), 1e-12);
    EXPECT_EQ(Stored(-1e-12), -1e-12);
    EXPECT_EQ(Stored(2.4e-12), 2 * 1e-12);
    EXPECT_EQ(Stored(-2.4e-12), -2 * 1e-12);
    EXPECT_EQ(Stored(2.6e-12), 3 * 1e-12);
    EXPECT_EQ(Stored(-2.6e-12), -3 * 1e-12);
    EXPECT_EQ(Stored(0x1.8p-39), std::floor(0x1.8p-39 / 1e-12 + 0.5) * 1e-12);
}

TEST_F(Serializer, ARoundedDoubleIsTheProductAndNotTheNearestDecimal)
{
    SetPrecision(false);
    EXPECT_EQ(Stored(0.3), 300000000000.0 * 1e-12);
    bool differs = false;
    for (int tenths = 1; tenths < 100; ++tenths) {
        const double value = tenths / 10.0;
        EXPECT_EQ(Stored(-value), -(std::floor(value / 1e-12 + 0.5) * 1e-12));
        differs = differs || Stored(value) != value;
    }
    EXPECT_TRUE(differs);
}

// Past 2^52 steps the quotient and a half do not fit into a double: adding it rounds odd quotients
// up.
TEST_F(Serializer, ALargeDoubleIsSnappedByAddingAHalf)
{
    SetPrecision(false);
    bool differs = false;
    for (int i = 0; i < 100; ++i) {
        const double value = 5000.0 + 1e-12 * i;
        const double quotient = value / 1e-12;
        EXPECT_EQ(Stored(value), std::floor(quotient + 0.5) * 1e-12);
        differs = differs || std::floor(quotient + 0.5) != std::round(quotient);
    }
    EXPECT_TRUE(differs);
}

// The number of their steps is more than a double holds.
TEST_F(Serializer, AHugeDoubleIsLeftAsItIs)
{
    SetPrecision(false);
    for (const double value : {1e296, 1.7e296, 1e297, 1e300, std::numeric_limits<double>::max()}) {
        EXPECT_NEAR(Stored(value) / value, 1.0, 1e-15) << value;
        EXPECT_NEAR(Stored(-value) / -value, 1.0, 1e-15) << value;
    }
    EXPECT_EQ(Stored(1e297), 1e297);
    EXPECT_EQ(Stored(-1e297), -1e297);
}

TEST_F(Serializer, AChildOfANodeWithExactDoublesHasThemToo)
{
    class Exact : public TestSerializer
    {
    public:
        using TestSerializer::SetExactDoubles;
    };
    SetPrecision(false);
    Exact root;
    root.SetExactDoubles(true);
    KARMPSerializer* child = nullptr;
    EXPECT_EQ(root.AddElement(L"Child", child), KARSuccess);
    EXPECT_EQ(child->AddAttribute(L"value", 1e-13), KARSuccess);
    EXPECT_EQ(root.Number(L"Child/@value"), 1e-13);
}

TEST_F(Serializer, WhatIsNoFiniteNumberStaysOne)
{
    SetPrecision(false);
    EXPECT_TRUE(std::isnan(Stored(std::numeric_limits<double>::quiet_NaN())));
    EXPECT_EQ(Stored(std::numeric_limits<double>::infinity()),
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(Stored(-std::numeric_limits<double>::infinity()),
              -std::numeric_limits<double>::infinity());
}

TEST_F(Serializer, ThePrecisionVariableIsLookedUpOnEachCall)
{
    SetPrecision(true);
    EXPECT_EQ(Stored(1e-13), 1e-13);
    EXPECT_EQ(Stored(0.3), 0.3);
    EXPECT_TRUE(std::signbit(Stored(-0.0)));
    SetPrecision(false);
    EXPECT_EQ(Stored(1e-13), 0.0);
    EXPECT_EQ(Stored(0.3), 300000000000.0 * 1e-12);
    EXPECT_FALSE(std::signbit(Stored(-0.0)));
    SetPrecision(true);
    EXPECT_EQ(Stored(1e-13), 1e-13);
    SetPrecision(false);
}

TEST_F(Serializer, EveryNodeOfATreeIsFreedOnce)
{
    const std::size_t before = TestSerializer::Alive();
    {
        TestSerializer root;
        for (int index = 0; index < 10; ++index) {
            KARMPSerializer* child = nullptr;
            root.AddElement(L"Child", child);
            for (int inner = 0; inner < 10; ++inner) {
                KARMPSerializer* grandchild = nullptr;
                child->AddElement(L"Grandchild", grandchild, inner);
            }
        }
        EXPECT_EQ(TestSerializer::Alive(), before + 111);
    }
    EXPECT_EQ(TestSerializer::Alive(), before);
}

TEST_F(Serializer, ADeepTreeDoesNotExhaustTheStack)
{
    const std::size_t before = TestSerializer::Alive();
    {
        TestSerializer root;
        KARMPSerializer* deepest = &root;
        for (int depth = 0; depth < 1000000; ++depth) {
            KARMPSerializer* child = nullptr;
            ASSERT_EQ(deepest->AddElement(L"Level", child), KARSuccess);
            deepest = child;
        }
        EXPECT_EQ(TestSerializer::Alive(), before + 1000001);
    }
    EXPECT_EQ(TestSerializer::Alive(), before);
}

TEST_F(Serializer, ANodeIsSmall)
{
    EXPECT_LE(sizeof(KARMPSerializer), 64U);
}

// In a process of its own: other tests fill the table of shared names.
TEST(SerializerProcess, AChildWithANumberCostsOneAllocation)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    TestSerializer root;
    for (int warming = 0; warming < 4; ++warming) {
        KARMPSerializer* child = nullptr;
        root.AddElement(L"Component", child, 1.0);
    }
    AllocationCounter allocations;
    KARMPSerializer* child = nullptr;
    root.AddElement(L"Component", child, 1.0);
    EXPECT_EQ(allocations.Count(), 1U);
}

TEST_F(Serializer, AFailedAllocationLeavesATreeThatCanBeFreed)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const std::size_t before = TestSerializer::Alive();
    for (std::size_t failing = 1; failing <= 8; ++failing) {
        TestSerializer root;
        AllocationCounter allocations;
        allocations.FailAllocation(failing);
        std::size_t added = 0;
        try {
            for (int index = 0; index < 8; ++index) {
                KARMPSerializer* child = nullptr;
                root.AddElement(L"Child", child, L"a text with an allocation of its own");
                ++added;
            }
            ADD_FAILURE() << "No allocation failed";
        } catch (const std::bad_alloc&) {
            // The text is made before the child.
            EXPECT_EQ(root.GetElementCount(), added);
        }
    }
    EXPECT_EQ(TestSerializer::Alive(), before);
}

TEST_F(Serializer, ATreeIsFreedWhenAllocationsFail)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const std::size_t before = TestSerializer::Alive();
    {
        auto root = std::make_unique<TestSerializer>();
        for (int index = 0; index < 3; ++index) {
            KARMPSerializer* child = nullptr;
            root->AddElement(L"Child", child);
            KARMPSerializer* grandchild = nullptr;
            child->AddElement(L"Grandchild", grandchild);
        }
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        root.reset();
        EXPECT_GE(allocations.Count(), 1U);
    }
    EXPECT_EQ(TestSerializer::Alive(), before);
}

namespace {

// A node that records its name when it is destroyed, and may delete another tree then.
class NotingNode : public TestSerializer
{
public:
    NotingNode(std::vector<std::wstring>& dead) : m_dead(dead) {}
    ~NotingNode() override
    {
        m_dead.push_back(std::wstring(GetId()) + L":" + std::to_wstring(GetElementCount()));
        if (other != nullptr) {
            delete other;
            m_dead.push_back(L"end of " + std::wstring(GetId()));
        }
    }

    NotingNode* other = nullptr;

protected:
    KARMPSerializer* CreateChildElement() override { return new NotingNode(m_dead); }

private:
    std::vector<std::wstring>& m_dead;
};

NotingNode& AddNoting(KARMPSerializer& parent, std::wstring_view name)
{
    KARMPSerializer* child = nullptr;
    parent.AddElement(name, child);
    return static_cast<NotingNode&>(*child);
}

// A node with the children 1 (with 11, 12) and 2 (with 21), their names after a prefix.
NotingNode* NewNotingTree(std::vector<std::wstring>& dead, const std::wstring& prefix)
{
    auto* root = new NotingNode(dead);
    NotingNode& first = AddNoting(*root, prefix + L"1");
    AddNoting(first, prefix + L"11");
    AddNoting(first, prefix + L"12");
    AddNoting(AddNoting(*root, prefix + L"2"), prefix + L"21");
    return root;
}

using Names = std::vector<std::wstring>;

} // namespace

TEST_F(Serializer, ANodeDiesBeforeItsChildrenAndASubtreeBeforeTheNextChild)
{
    Names dead;
    delete NewNotingTree(dead, L"");
    EXPECT_EQ(dead, (Names{L":2", L"1:2", L"11:0", L"12:0", L"2:1", L"21:0"}));
}

TEST_F(Serializer, TheOrderOfDestructionIsTheSameWhenAllocationsFail)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    Names dead;
    dead.reserve(6);
    NotingNode* const root = NewNotingTree(dead, L"");
    {
        // What the root notes fits into the string itself; the first allocation is the loop's.
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        delete root;
    }
    EXPECT_EQ(dead, (Names{L":2", L"1:2", L"11:0", L"12:0", L"2:1", L"21:0"}));
}

TEST_F(Serializer, ATreeThatADyingNodeDeletesIsGoneWhenThatDeleteReturns)
{
    Names dead;
    NotingNode* const root = NewNotingTree(dead, L"");
    static_cast<NotingNode*>(const_cast<TestSerializer*>(root->Find(L"1")))->other =
        NewNotingTree(dead, L"x");
    delete root;
    EXPECT_EQ(dead, (Names{L":2", L"1:2", L":2", L"x1:2", L"x11:0", L"x12:0", L"x2:1", L"x21:0",
                           L"end of 1", L"11:0", L"12:0", L"2:1", L"21:0"}));
}

TEST_F(Serializer, NamesAreWrittenWhenNothingForbidsIt)
{
    EXPECT_TRUE(KARMPSerializer::SerializeName());
}

TEST(SerializerProcess, TheNameVariableForbidsNamesForTheRestOfTheProcess)
{
    TestSerializer root;
    EXPECT_FALSE(root.SerializeName());
    ASSERT_EQ(unsetenv("NO_MP_NAME_FOR_SERIALIZATION"), 0);
    EXPECT_FALSE(root.SerializeName());
}

TEST(SerializerProcess, TheNameVariableIsReadOnce)
{
    EXPECT_TRUE(KARMPSerializer::SerializeName());
    ASSERT_EQ(setenv("NO_MP_NAME_FOR_SERIALIZATION", "1", 1), 0);
    EXPECT_TRUE(KARMPSerializer::SerializeName());
}

TEST(SerializerProcess, ThePrecisionVariableKeepsDoublesAsTheyAre)
{
    TestSerializer root;
    KARMPSerializer* child = nullptr;
    root.AddElement(L"value", child, 1e-13);
    root.AddAttribute(L"value", 1e-13);
    EXPECT_EQ(root.Number(L"value"), 1e-13);
    EXPECT_EQ(root.Number(L"@value"), 1e-13);
}

TEST(Versions, AVersionIsComparedCharacterByCharacter)
{
    EXPECT_TRUE(karmp::AtLeast(L"R2018.1", karmp::R2018_1));
    EXPECT_TRUE(karmp::AtLeast(L"R2018.1", karmp::R2016_0));
    EXPECT_TRUE(karmp::AtLeast(L"R2018.10", karmp::R2018_1));
    EXPECT_FALSE(karmp::AtLeast(L"R2018", karmp::R2018_0));
    EXPECT_FALSE(karmp::AtLeast(L"", karmp::R2015x_0));
    EXPECT_FALSE(karmp::AtLeast(L"R2016.0", karmp::R2016_1));
}

TEST(Versions, TagsAscend)
{
    const std::vector<std::wstring_view> tags = {karmp::R2015x_0, karmp::R2016_0, karmp::R2016_1,
                                                 karmp::R2017_0,  karmp::R2017_1, karmp::R2018_0,
                                                 karmp::R2018_1};
    for (std::size_t index = 1; index < tags.size(); ++index) {
        EXPECT_TRUE(karmp::AtLeast(tags[index], tags[index - 1]));
        EXPECT_FALSE(karmp::AtLeast(tags[index - 1], tags[index]));
    }
    EXPECT_EQ(tags.front(), L"R2015x.0");
    EXPECT_EQ(karmp::CurrentVersion, L"R2018.1");
}
