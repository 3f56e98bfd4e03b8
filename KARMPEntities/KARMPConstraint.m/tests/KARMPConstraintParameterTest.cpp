#include "KARMPConstraintParameter.h"

#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

class ConstraintParameter : public KARMPTestFixture
{
protected:
    ConstraintParameter()
    {
        parameter.SetTypes(types.data());
        parameter.SetTags(tags.data());
        parameter.SetParams(params.data());
    }
    static void ExpectZeros(const KARMPConstraintParameter& zeros)
    {
        std::array<int, 2> someTypes{1, 1};
        std::array<unsigned int, 3> someTags{1, 1, 1};
        std::array<double, 3> someParams{1.0, 1.0, 1.0};
        zeros.GetTypes(someTypes.data());
        zeros.GetTags(someTags.data());
        zeros.GetParams(someParams.data());
        EXPECT_EQ(someTypes, (std::array{0, 0}));
        EXPECT_EQ(someTags, (std::array{0U, 0U, 0U}));
        EXPECT_EQ(someParams, (std::array{0.0, 0.0, 0.0}));
    }
    void ExpectContent(const KARMPConstraintParameter& other)
    {
        std::array<int, 2> otherTypes{};
        std::array<unsigned int, 3> otherTags{};
        std::array<double, 3> otherParams{};
        other.GetTypes(otherTypes.data());
        other.GetTags(otherTags.data());
        other.GetParams(otherParams.data());
        EXPECT_EQ(otherTypes, types);
        EXPECT_EQ(otherTags, tags);
        EXPECT_EQ(otherParams, params);
    }

    const std::array<int, 2> types{3, -4};
    const std::array<unsigned int, 3> tags{5U, 0xFFFFFFFFU, 7U};
    const std::array<double, 3> params{0.5, -1.5, 2.5};
    KARMPConstraintParameter parameter;
};

TEST_F(ConstraintParameter, IsNewlyZeroAndNotInitialized)
{
    const KARMPConstraintParameter fresh;
    ExpectZeros(fresh);
    EXPECT_FALSE(fresh.IsInitialized());
    EXPECT_FALSE(fresh.IsComplete());
}

TEST_F(ConstraintParameter, KeepsItsNumbers)
{
    ExpectContent(parameter);
    EXPECT_FALSE(parameter.IsInitialized());
}

TEST_F(ConstraintParameter, CopiesTakeEveryFieldAndTheFlag)
{
    parameter.SetInitialized(true);
    const KARMPConstraintParameter copy(parameter);
    ExpectContent(copy);
    EXPECT_TRUE(copy.IsInitialized());
    KARMPConstraintParameter assigned;
    assigned = parameter;
    ExpectContent(assigned);
    EXPECT_TRUE(assigned.IsInitialized());
}

TEST_F(ConstraintParameter, IsCompleteByItsFirstTypeAndFirstTagAlone)
{
    EXPECT_TRUE(parameter.IsComplete());
    const std::array<unsigned int, 3> noFirstTag{0U, 6U, 7U};
    parameter.SetInitialized(true);
    parameter.SetTags(noFirstTag.data());
    EXPECT_FALSE(parameter.IsComplete());

    KARMPConstraintParameter least;
    const std::array<int, 2> firstType{1, 0};
    const std::array<unsigned int, 3> firstTag{1U, 0U, 0U};
    least.SetTypes(firstType.data());
    EXPECT_FALSE(least.IsComplete());
    least.SetTags(firstTag.data());
    EXPECT_TRUE(least.IsComplete());
    const std::array<int, 2> secondType{0, 1};
    least.SetTypes(secondType.data());
    EXPECT_FALSE(least.IsComplete());
}

TEST_F(ConstraintParameter, WritesThreeGroupsInOrder)
{
    TestSerializer root;
    EXPECT_EQ(parameter.Serialize(&root), KARSuccess);
    const TestSerializer* element = root.Find(L"ConstraintParameter");
    ASSERT_NE(element, nullptr);
    ASSERT_EQ(element->GetElementCount(), 3U);
    EXPECT_EQ(element->Child(0).GetId(), L"Types");
    EXPECT_EQ(element->Child(1).GetId(), L"Tags");
    EXPECT_EQ(element->Child(2).GetId(), L"Params");
    EXPECT_EQ(element->Integer(L"Types/Type1"), 3);
    EXPECT_EQ(element->Integer(L"Types/Type2"), -4);
    EXPECT_EQ(element->Integer(L"Tags/Tag1"), 5);
    EXPECT_EQ(element->Integer(L"Tags/Tag2"), -1);
    EXPECT_EQ(element->Integer(L"Tags/Tag3"), 7);
    EXPECT_EQ(element->Number(L"Params/Cx"), 0.5);
    EXPECT_EQ(element->Number(L"Params/Cy"), -1.5);
    EXPECT_EQ(element->Number(L"Params/Cz"), 2.5);
}

TEST_F(ConstraintParameter, ReadsBackWhatItWroteInEitherForm)
{
    TestSerializer written;
    parameter.Serialize(&written);
    for (const bool asText : {false, true}) {
        const auto tree = TestDeserializer::From(written, {.asText = asText});
        const KARMPDeserializer* element = nullptr;
        tree->GetElement(L"ConstraintParameter", element);
        KARMPConstraintParameter read;
        EXPECT_EQ(read.Deserialize(element), KARSuccess);
        ExpectContent(read);
        EXPECT_TRUE(read.IsInitialized());
    }
}

TEST_F(ConstraintParameter, NullArgumentsAreReportedAndFail)
{
    EXPECT_EQ(parameter.Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(parameter.Deserialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(parameter.IsInitialized());
}

TEST_F(ConstraintParameter, OnlyTheFailureOfItsOwnElementFails)
{
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(parameter.Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
            // The tree reports a container once and a value twice; the parameter reports each.
            const bool container = failing == 1 || failing == 2 || failing == 5 || failing == 9;
            ExpectReports(failing == 0 ? 0 : container ? 2 : 3);
            // Whatever fails, all that does not stand in it is tried.
            const std::size_t within = failing == 1                   ? 11U
                                       : failing == 2                 ? 2U
                                       : failing == 5 || failing == 9 ? 3U
                                                                      : 0U;
            EXPECT_EQ(root.Creations(), 12U - within) << failing;
        });
    EXPECT_EQ(creations, 12U);
}

TEST_F(ConstraintParameter, MissingGroupKeepsItsFieldsAndIsReported)
{
    TestDeserializer empty(L"ConstraintParameter");
    EXPECT_EQ(parameter.Deserialize(&empty), KARSuccess);
    ExpectReports(3);
    ExpectContent(parameter);
    EXPECT_TRUE(parameter.IsInitialized());
}

TEST_F(ConstraintParameter, MissingNumberOfAGroupBecomesZeroAndIsReported)
{
    TestDeserializer element(L"ConstraintParameter");
    element.Add(L"Types");
    element.Add(L"Tags");
    element.Add(L"Params");
    EXPECT_EQ(parameter.Deserialize(&element), KARSuccess);
    ExpectReports(8);
    ExpectZeros(parameter);
}

} // namespace
