// What constraints tell of their content to those who reach it without a tree.
#include "ConstraintTesting.h"
#include "KARMPContentWalk.h"
#include "KARMPItems.h"
#include "KARMPLinearEquation.h"
#include "KARMPPlainConstraints.h"
#include "KARMPRevoluteConstraint.h"
#include "KARMPTestFixture.h"

#include <algorithm>

namespace {

using karmp::Item;
using karmp::ItemValue;

class ConstraintContent : public KARMPTestFixture
{
protected:
    static const Item& ItemOf(const karmp::Content& content, std::wstring_view name)
    {
        const auto item = std::find_if(content.items.begin(), content.items.end(),
                                       [name](const Item& each) { return each.name == name; });
        if (item == content.items.end())
            throw std::invalid_argument("no item of that name");
        return *item;
    }
    static double NumberOf(const karmp::Content& content, std::wstring_view name, const void* owner)
    {
        ItemValue value;
        EXPECT_EQ(ItemOf(content, name).get(owner, value), KARSuccess);
        return value.numbers[0];
    }
    static KARMPConstraintParameter* AddParameter(KARMPConstraint& constraint, bool initialized)
    {
        auto* parameter = new KARMPConstraintParameter;
        parameter->SetInitialized(initialized);
        constraint.AddConstraintParameter(parameter);
        return parameter;
    }
};

TEST_F(ConstraintContent, ParametersAreRecordsThatAreWrittenOnceOneIsInitialized)
{
    const auto constraint = KARMPConcentricity::create(L"c");
    const void* owner = karmp::OwnerOf(*constraint);
    const Item& item = ItemOf(KARMPConstraint::ClassContent(), L"ConstraintParameters");
    EXPECT_EQ(item.kind, karmp::ItemKind::Records);
    EXPECT_EQ(item.entry, L"ConstraintParameter");
    EXPECT_TRUE(item.isOwned);
    EXPECT_EQ(item.count(owner), 0);
    AddParameter(*constraint, false);
    EXPECT_EQ(item.count(owner), 1);
    EXPECT_FALSE(item.when(owner));
    AddParameter(*constraint, true);
    EXPECT_EQ(item.count(owner), 2);
    EXPECT_TRUE(item.when(owner));
}

TEST_F(ConstraintContent, NumbersOfAParameterAreReachedThroughItsRecord)
{
    const auto constraint = KARMPConcentricity::create(L"c");
    KARMPConstraintParameter* parameter = AddParameter(*constraint, true);
    constraint->AddConstraintParameter(nullptr);
    const std::array<unsigned int, 3> tags{5U, 0xFFFFFFFFU, 7U};
    parameter->SetTags(tags.data());
    const Item& item = ItemOf(KARMPConstraint::ClassContent(), L"ConstraintParameters");
    ItemValue value;
    ASSERT_EQ(item.at(karmp::OwnerOf(*constraint), 0, value), KARSuccess);
    EXPECT_EQ(value.record, parameter);
    const Item& tag = ItemOf(item.record(), L"Tag2");
    EXPECT_EQ(tag.get(value.record, value), KARSuccess);
    EXPECT_EQ(value.number, -1);
    value.number = 9;
    EXPECT_EQ(tag.set(parameter, value), KARSuccess);
    std::array<unsigned int, 3> changed{};
    parameter->GetTags(changed.data());
    EXPECT_EQ(changed, (std::array{5U, 9U, 7U}));
    EXPECT_EQ(item.at(karmp::OwnerOf(*constraint), 1, value), KARFailure);
}

TEST_F(ConstraintContent, FrictionIsReachedByNameWhateverItsOrder)
{
    const auto constraint = KARMPRevoluteConstraint::create(L"c");
    void* owner = karmp::OwnerOf(*constraint);
    constraint->SetFrictionParameters(0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    const karmp::Content& content = KARMPRevoluteConstraint::ClassContent();
    EXPECT_EQ(NumberOf(content, L"DynamicFriction", owner), 2.0);
    EXPECT_EQ(NumberOf(content, L"StaticSpeedLimit", owner), 1.0);
    EXPECT_EQ(NumberOf(content, L"ReferenceAxialDiameter", owner), 5.0);
    const Item& length = ItemOf(content, L"ReferenceLength");
    EXPECT_EQ(length.quantity, KARMPPhysicalQuantity::Length);
    ItemValue value;
    value.numbers[0] = 40.0;
    EXPECT_EQ(length.set(owner, value), KARSuccess);
    EXPECT_EQ(NumberOf(content, L"ReferenceLength", owner), 40.0);

    const Item& group = ItemOf(content, L"FrictionParameters");
    EXPECT_EQ(group.inner, 7);
    EXPECT_FALSE(group.when(owner));
    EXPECT_EQ(group.set(owner, value), KARSuccess);
    EXPECT_TRUE(constraint->IsFrictionEnabled());
    EXPECT_TRUE(group.when(owner));
}

TEST_F(ConstraintContent, TermsOfALinearEquationAreRecordsOfTheirCoefficients)
{
    const auto equation = KARMPLinearEquation::create(L"e");
    equation->AddLinearTerm(1.5);
    equation->AddLinearTerm(2.5);
    const void* owner = karmp::OwnerOf(*equation);
    const karmp::Content& content = KARMPLinearEquation::ClassContent();
    EXPECT_EQ(content.base, &KARMPConstraint::ClassContent);
    const Item& terms = ItemOf(content, L"LinearTermDataContainer");
    ASSERT_EQ(terms.count(owner), 2);
    ItemValue value;
    ASSERT_EQ(terms.at(owner, 1, value), KARSuccess);
    EXPECT_EQ(NumberOf(terms.record(), L"LinearTermValue", value.record), 2.5);
    // The place in the list is all there is of an index.
    EXPECT_EQ(ItemOf(terms.record(), L"LinearTermIndex").get(value.record, value), KARFailure);
}

TEST_F(ConstraintContent, TermsOfALinearEquationAreInTheTableOfItems)
{
    const auto equation = KARMPLinearEquation::create(L"e");
    equation->AddLinearTerm(1.5);
    equation->AddLinearTerm(2.5);
    const karmp::ItemInfo& terms = karmp::ItemsOf("KARMPLinearEquation").back();
    const std::vector<std::vector<karmp::Value>> expected{{{}, 1.5}, {{}, 2.5}};
    EXPECT_EQ(terms.GetRecords(*equation), expected);
    EXPECT_EQ(terms.AddRecord(*equation, expected[0]), KARSuccess);
    EXPECT_EQ(terms.GetRecords(*equation).size(), 3U);
    EXPECT_EQ(terms.GetRecords(*equation).back(), expected[0]);
}

TEST_F(ConstraintContent, ConstantOfALinearEquationIsThereOnceItWasSet)
{
    const auto equation = KARMPLinearEquation::create(L"e");
    void* owner = karmp::OwnerOf(*equation);
    const Item& constant = ItemOf(KARMPLinearEquation::ClassContent(), L"ConstantTerm");
    ItemValue value;
    EXPECT_EQ(constant.get(owner, value), KARSuccess);
    EXPECT_EQ(value.number, 0);
    value.numbers[0] = 3.5;
    EXPECT_EQ(constant.set(owner, value), KARSuccess);
    EXPECT_TRUE(equation->HasConstantTerm());
    double number = 0.0;
    equation->GetConstantTerm(number);
    EXPECT_EQ(number, 3.5);
}

/// A kind of one's own: the same content in another element.
class Hinge : public KARMPRevoluteConstraint
{
public:
    std::wstring_view getClassSerializeID_() const override { return L"Hinge"; }
};

TEST_F(ConstraintContent, SubclassNamesTheElementThatIsWrittenAndRead)
{
    const QOBSharedHandle<KARMPRevoluteConstraint> hinge(new Hinge);
    hinge->SetSelectedAxis(0, KARMPSelectedAxis::XNeg);
    TestSerializer written;
    EXPECT_EQ(hinge->Serialize(&written), KARSuccess);
    EXPECT_TRUE(written.Has(L"Hinge/SelectedAxis0"));
    const QOBSharedHandle<KARMPRevoluteConstraint> read(new Hinge);
    EXPECT_EQ(CopyThroughTree(hinge, read), KARSuccess);
    KARMPSelectedAxis::Enum axis{};
    read->GetSelectedAxis(0, axis);
    EXPECT_EQ(axis, KARMPSelectedAxis::XNeg);
    const auto revolute = KARMPRevoluteConstraint::create(L"");
    EXPECT_EQ(CopyThroughTree(hinge, revolute), KARUnexpected);
    ExpectReports(1);
}

} // namespace
