#include "KARMPEntityTable.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPEquation.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "ProcessLocale.h"
#include "QOBException.h"
#include "RecordingVariableLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

class UnsureVariable : public KARMPVariable
{
public:
    KARStatus GetLinkedConstraint(int, QOBSharedHandle<KARMPConstraint>&) const override
    {
        return KARFailure;
    }
};

// Names of the children of a written element, in order.
std::vector<std::wstring> ChildNames(const TestSerializer& element)
{
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < element.GetElementCount(); ++i)
        names.emplace_back(element.Child(i).GetId());
    return names;
}

std::vector<std::wstring> AttributeNames(const TestSerializer& element)
{
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < element.GetAttributeCount(); ++i)
        names.emplace_back(element.GetAttributeId(static_cast<int>(i)));
    return names;
}

double NumberOf(const KARMPVariable& variable,
                KARStatus (KARMPVariable::*get)(double&) const = &KARMPVariable::GetValue)
{
    double number = -1.0;
    EXPECT_EQ((variable.*get)(number), KARSuccess);
    return number;
}

class VariableTree : public KARMPTestFixture
{
protected:
    VariableTree()
    {
        variable->SetIdentifier(L"V1");
        variable->SetValue(1.5);
        variable->SetMinValue(-2.25);
        variable->SetMaxValue(8.0);
        variable->SetRestitutionOnMinLimit(0.25);
        variable->SetRestitutionOnMaxLimit(0.75);
        variable->SetPhysicalQuantity(KARMPPhysicalQuantity::Angle);
        variable->SetType(KARMPVariableType::Controlled);
        constraint->SetIdentifier(L"C1");
        other->SetIdentifier(L"C2");
        entities.Set(L"C1", constraint);
        entities.Set(L"C2", other);
    }
    ~VariableTree() override
    {
        for (auto* entity : {&variable, &copy})
            KARMPVariable::destroy(*entity);
        KARMPEquation::destroy(constraint);
        KARMPEquation::destroy(other);
    }

    QOBSharedHandle<KARMPVariable> variable = KARMPVariable::create(L"v");
    QOBSharedHandle<KARMPVariable> copy = KARMPVariable::create(L"copy");
    QOBSharedHandle<KARMPEquation> constraint = KARMPEquation::create(L"first");
    QOBSharedHandle<KARMPEquation> other = KARMPEquation::create(L"second");
    KARMPEntityTable entities;
};

TEST_F(VariableTree, WritesTheCurrentFormInItsOrder)
{
    variable->LinkToConstraint(other);
    variable->LinkToConstraint(constraint);
    for (const wchar_t* version : {L"R2017.0", L"R2018.1"}) {
        TestSerializer root(version);
        ASSERT_EQ(variable->Serialize(&root), KARSuccess);
        ASSERT_EQ(ChildNames(root), std::vector<std::wstring>{L"Variable"});
        EXPECT_EQ(ChildNames(root.Child(0)),
                  (std::vector<std::wstring>{L"Value", L"MaxValue", L"MinValue",
                                             L"MaxLimitRestitution", L"MinLimitRestitution",
                                             L"PhysicalQuantity", L"Type", L"Constraints"}));
        EXPECT_TRUE(root.Flag(L"Variable/Value/HasValue"));
        EXPECT_EQ(root.Number(L"Variable/Value/Value"), 1.5);
        EXPECT_TRUE(root.Flag(L"Variable/MaxValue/HasMaxValue"));
        EXPECT_EQ(root.Number(L"Variable/MaxValue/MaxValue"), 8.0);
        EXPECT_TRUE(root.Flag(L"Variable/MinValue/HasMinValue"));
        EXPECT_EQ(root.Number(L"Variable/MinValue/MinValue"), -2.25);
        EXPECT_TRUE(root.Flag(L"Variable/MaxLimitRestitution/HasMaxLimitRestitution"));
        EXPECT_EQ(root.Number(L"Variable/MaxLimitRestitution/MaxLimitRestitutionValue"), 0.75);
        EXPECT_TRUE(root.Flag(L"Variable/MinLimitRestitution/HasMinLimitRestitution"));
        EXPECT_EQ(root.Number(L"Variable/MinLimitRestitution/MinLimitRestitutionValue"), 0.25);
        EXPECT_EQ(root.Text(L"Variable/PhysicalQuantity"), L"Angle");
        EXPECT_EQ(root.Text(L"Variable/Type"), L"Controlled");
        EXPECT_EQ(root.Count(L"Variable/Constraints/Constraint"), 2U);
        EXPECT_EQ(root.Text(L"Variable/Constraints/Constraint/@id"), L"C2");
        EXPECT_EQ(root.Text(L"Variable/Constraints/Constraint/@name"), L"second");
        EXPECT_EQ(root.Text(L"Variable/Constraints/Constraint[1]/@id"), L"C1");
        EXPECT_FALSE(root.Has(L"Variable/@value"));
    }
}

TEST_F(VariableTree, WritesNoNumberWhereNoneIsSetAndNoConstraintsWithoutLinks)
{
    copy->UpdateValue(4.0);
    TestSerializer root;
    ASSERT_EQ(copy->Serialize(&root), KARSuccess);
    for (const wchar_t* group :
         {L"Value", L"MaxValue", L"MinValue", L"MaxLimitRestitution", L"MinLimitRestitution"}) {
        const TestSerializer* element = root.Find(std::wstring(L"Variable/") + group);
        ASSERT_NE(element, nullptr);
        EXPECT_EQ(ChildNames(*element), std::vector<std::wstring>{std::wstring(L"Has") + group});
        EXPECT_FALSE(element->Flag(std::wstring(L"Has") + group));
    }
    EXPECT_EQ(root.Text(L"Variable/PhysicalQuantity"), L"NoPhysicalQuantity");
    EXPECT_EQ(root.Text(L"Variable/Type"), L"Free");
    EXPECT_FALSE(root.Has(L"Variable/Constraints"));
}

TEST_F(VariableTree, WritesTheEarlierFormBelowItsVersion)
{
    variable->LinkToConstraint(constraint);
    for (const wchar_t* version : {L"R2016.0", L"R2016.1", L"R2016.9"}) {
        TestSerializer root(version);
        ASSERT_EQ(variable->Serialize(&root), KARSuccess);
        EXPECT_EQ(ChildNames(root.Child(0)),
                  (std::vector<std::wstring>{L"PhysicalQuantity", L"Type", L"Constraints"}));
        EXPECT_EQ(AttributeNames(root.Child(0)),
                  (std::vector<std::wstring>{L"id", L"name", L"value", L"minvalue", L"maxvalue"}));
        EXPECT_EQ(root.Number(L"Variable/@value"), 1.5);
        EXPECT_EQ(root.Number(L"Variable/@minvalue"), -2.25);
        EXPECT_EQ(root.Number(L"Variable/@maxvalue"), 8.0);
        EXPECT_EQ(root.Integer(L"Variable/PhysicalQuantity"), 7);
        EXPECT_EQ(root.Integer(L"Variable/Type"), 2);
        EXPECT_EQ(root.Text(L"Variable/Constraints/Constraint/@id"), L"C1");
    }
}

TEST_F(VariableTree, WritesNoTypeBeforeThereWasOne)
{
    for (const wchar_t* version : {L"R2015x.0", L"R2015.9", L""}) {
        TestSerializer root(version);
        ASSERT_EQ(variable->Serialize(&root), KARSuccess);
        EXPECT_EQ(ChildNames(root.Child(0)), std::vector<std::wstring>{L"PhysicalQuantity"});
        EXPECT_EQ(root.Number(L"Variable/@value"), 1.5);
    }
}

TEST_F(VariableTree, WritesLinksThatCannotBeHadAsTrueWhichLinkNothingOnReading)
{
    const QOBSharedHandle<KARMPVariable> unsure(new UnsureVariable);
    unsure->LinkToConstraint(constraint);
    unsure->LinkToConstraint(other);
    TestSerializer root;
    ASSERT_EQ(unsure->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Count(L"Variable/Constraints/Constraint"), 2U);
    EXPECT_TRUE(root.Flag(L"Variable/Constraints/Constraint[1]/@id"));
    EXPECT_TRUE(root.Flag(L"Variable/Constraints/Constraint[1]/@name"));
    EXPECT_EQ(copy->Deserialize(TestDeserializer::From(root, {.asText = true}).get(), entities),
              KARSuccess);
    EXPECT_EQ(copy->GetLinkedConstraintCount(), 0);
}

TEST_F(VariableTree, ComesBackWholeInTheCurrentForm)
{
    variable->LinkToConstraint(other);
    variable->LinkToConstraint(constraint);
    for (const wchar_t* version : {L"R2017.0", L"R2018.1"}) {
        for (const bool asText : {false, true}) {
            TestSerializer root(version);
            variable->Serialize(&root);
            const auto read = KARMPVariable::create(L"");
            const auto tree = TestDeserializer::From(root, {.asText = asText});
            ASSERT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
            EXPECT_EQ(read->getEntityName(), L"v");
            EXPECT_TRUE(read->HasValue() && read->HasMinValue() && read->HasMaxValue());
            EXPECT_TRUE(read->HasRestitutionOnMinLimit() && read->HasRestitutionOnMaxLimit());
            EXPECT_EQ(NumberOf(*read), 1.5);
            EXPECT_EQ(NumberOf(*read, &KARMPVariable::GetMinValue), -2.25);
            EXPECT_EQ(NumberOf(*read, &KARMPVariable::GetMaxValue), 8.0);
            EXPECT_EQ(NumberOf(*read, &KARMPVariable::GetRestitutionOnMinLimit), 0.25);
            EXPECT_EQ(NumberOf(*read, &KARMPVariable::GetRestitutionOnMaxLimit), 0.75);
            EXPECT_EQ(read->GetPhysicalQuantity(), KARMPPhysicalQuantity::Angle);
            EXPECT_EQ(read->GetType(), KARMPVariableType::Controlled);
            ASSERT_EQ(read->GetLinkedConstraintCount(), 2);
            QOBSharedHandle<KARMPConstraint> link;
            read->GetLinkedConstraint(0, link);
            EXPECT_EQ(link, other);
            TestSerializer again(version);
            read->Serialize(&again);
            EXPECT_EQ(again.Dump(), root.Dump());
        }
    }
}

TEST_F(VariableTree, EarlierFormBringsTheNumbersWithoutTheFlags)
{
    TestDeserializer root;
    auto& element = root.At(L"R2016.0").Add(L"Variable");
    element.Attribute(L"id", L"V9").Attribute(L"name", L"n");
    element.Attribute(L"value", L"3,5").Attribute(L"minvalue", -1.0).Attribute(L"maxvalue", L"9");
    element.Leaf(L"PhysicalQuantity", 3).Leaf(L"Type", L"1");
    ASSERT_EQ(copy->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(NumberOf(*copy), 3.5);
    EXPECT_EQ(NumberOf(*copy, &KARMPVariable::GetMinValue), -1.0);
    EXPECT_EQ(NumberOf(*copy, &KARMPVariable::GetMaxValue), 9.0);
    EXPECT_FALSE(copy->HasValue() || copy->HasMinValue() || copy->HasMaxValue());
    EXPECT_EQ(copy->GetPhysicalQuantity(), KARMPPhysicalQuantity::Time);
    EXPECT_EQ(copy->GetType(), KARMPVariableType::Constant);

    TestSerializer current(L"R2017.0");
    ASSERT_EQ(copy->Serialize(&current), KARSuccess);
    EXPECT_FALSE(current.Flag(L"Variable/Value/HasValue"));
    EXPECT_FALSE(current.Has(L"Variable/Value/Value"));
}

TEST_F(VariableTree, EarlierFormKeepsNumbersThatAreNotThere)
{
    copy->UpdateValue(4.0);
    TestDeserializer root;
    auto& element = root.At(L"R2016.1").Add(L"Variable");
    element.Attribute(L"id", L"V9").Attribute(L"name", L"n");
    element.Leaf(L"PhysicalQuantity", 3).Leaf(L"Type", 1);
    ASSERT_EQ(copy->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(NumberOf(*copy), 4.0);
}

TEST_F(VariableTree, EarlierFormReportsMissingQuantityAndTypeAndKeepsThem)
{
    TestDeserializer root;
    root.At(L"R2016.0").Add(L"Variable").Attribute(L"id", L"V9").Attribute(L"name", L"n");
    copy->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    copy->SetType(KARMPVariableType::Constant);
    EXPECT_EQ(copy->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(copy->GetPhysicalQuantity(), KARMPPhysicalQuantity::Mass);
    EXPECT_EQ(copy->GetType(), KARMPVariableType::Constant);
}

TEST_F(VariableTree, DocumentsWithoutATypeLeaveItFree)
{
    TestDeserializer root;
    auto& element = root.At(L"R2015x.0").Add(L"Variable");
    element.Attribute(L"id", L"V9").Attribute(L"name", L"n");
    element.Leaf(L"PhysicalQuantity", 3).Leaf(L"Type", 2);
    EXPECT_EQ(copy->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(copy->GetType(), KARMPVariableType::Free);
}

TEST_F(VariableTree, OneVersionBelowTheCurrentFormIsNotReadAsIt)
{
    TestSerializer root(L"R2017.0");
    variable->Serialize(&root);
    const auto tree = TestDeserializer::From(root, {.version = L"R2016.9"});
    EXPECT_EQ(copy->Deserialize(tree.get(), entities), KARSuccess);
    // The words of quantity and type are no numbers there; the tree reports each twice as well.
    ExpectReports(6);
    EXPECT_FALSE(copy->HasValue());
    EXPECT_EQ(NumberOf(*copy), 0.0);
}

TEST_F(VariableTree, EveryWordAndNumberOfQuantityAndTypeComesBack)
{
    for (const wchar_t* version : {L"R2016.0", L"R2017.0"}) {
        for (int row = 0; row < 33; ++row) {
            variable->SetPhysicalQuantity(static_cast<KARMPPhysicalQuantity::Enum>(row));
            variable->SetType(static_cast<KARMPVariableType::Enum>(row % 3));
            TestSerializer root(version);
            variable->Serialize(&root);
            const auto read = KARMPVariable::create(L"");
            read->Deserialize(TestDeserializer::From(root).get(), entities);
            EXPECT_EQ(read->GetPhysicalQuantity(), row);
            EXPECT_EQ(read->GetType(), row % 3);
        }
    }
}

TEST_F(VariableTree, UnknownWordsGiveTheFirstRow)
{
    TestSerializer root;
    variable->Serialize(&root);
    const auto tree = TestDeserializer::From(root);
    const KARMPDeserializer* element = nullptr;
    tree->GetElement(L"Variable", element);
    const KARMPDeserializer* word = nullptr;
    for (const wchar_t* name : {L"PhysicalQuantity", L"Type"}) {
        element->GetElement(name, word);
        const_cast<TestDeserializer*>(static_cast<const TestDeserializer*>(word))
            ->SetValue(L"angle");
    }
    copy->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    copy->SetType(KARMPVariableType::Constant);
    EXPECT_EQ(copy->Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(copy->GetPhysicalQuantity(), KARMPPhysicalQuantity::NoPhysicalQuantity);
    EXPECT_EQ(copy->GetType(), KARMPVariableType::Free);
}

TEST_F(VariableTree, IsReadTheSameWhereTheCommaIsTheDecimalMark)
{
    const DecimalCommaLocale locale;
    if (!locale.IsInstalled())
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    TestDeserializer root;
    auto& element = root.At(L"R2016.0").Add(L"Variable");
    element.Attribute(L"id", L"V9").Attribute(L"name", L"n");
    element.Attribute(L"value", L"1,5").Attribute(L"minvalue", L"-2.25");
    element.Leaf(L"PhysicalQuantity", L"3").Leaf(L"Type", L"1");
    EXPECT_EQ(copy->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(NumberOf(*copy), 1.5);
    EXPECT_EQ(NumberOf(*copy, &KARMPVariable::GetMinValue), -2.25);
}

TEST_F(VariableTree, LoaderHearsOfValueAndBoundsInTheReadersOrder)
{
    LoaderRecord record;
    copy->SetLoader(new RecordingVariableLoader(record));
    TestSerializer root;
    variable->Serialize(&root);
    EXPECT_EQ(copy->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_EQ(record.calls,
              (std::vector<std::string>{"SetValue 1.5", "SetMinValue -2.25", "SetMaxValue 8"}));
    // A loader that refuses is reported, and the reading goes on.
    record.answer = KARFailure;
    const auto again = KARMPVariable::create(L"");
    again->SetLoader(new RecordingVariableLoader(record));
    EXPECT_EQ(again->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(again->GetType(), KARMPVariableType::Controlled);
    KARMPVariable::destroy(copy);
}

TEST_F(VariableTree, WhateverIsMissingIsReportedAndTheRestIsRead)
{
    variable->LinkToConstraint(constraint);
    TestSerializer root;
    variable->Serialize(&root);
    const TestSerializer& element = root.Child(0);
    const std::size_t items = ForEachMissingItem(
        element, {.asText = true}, [this](TestDeserializer& tree, const std::wstring& missing) {
            const auto read = KARMPVariable::create(L"");
            EXPECT_EQ(read->Deserialize(&tree, entities), KARSuccess);
            const bool optional = missing == L"Variable/Constraints" ||
                                  missing == L"Variable/Constraints/Constraint" ||
                                  missing == L"Variable/Constraints/Constraint/@name";
            SCOPED_TRACE(std::string(missing.begin(), missing.end()));
            ExpectReports(optional ? 0 : 1);
            EXPECT_EQ(read->GetType() == KARMPVariableType::Controlled,
                      missing != L"Variable/Type");
            EXPECT_EQ(read->HasRestitutionOnMaxLimit(),
                      missing.find(L"MaxLimitRestitution") == std::wstring::npos);
            EXPECT_EQ(read->HasValue(), missing.find(L"/Value") == std::wstring::npos);
        });
    EXPECT_EQ(items, 3U + 15U + 2U + 1U + 1U + 2U);
}

TEST_F(VariableTree, UnknownConstraintIsSkippedInSilence)
{
    variable->LinkToConstraint(constraint);
    TestSerializer root;
    variable->Serialize(&root);
    const auto tree = TestDeserializer::From(root);
    entities.Set(L"C1", {});
    EXPECT_EQ(copy->Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(copy->GetLinkedConstraintCount(), 0);
}

TEST_F(VariableTree, LinkToSomethingElseThanAConstraintThrows)
{
    variable->LinkToConstraint(constraint);
    TestSerializer root;
    variable->Serialize(&root);
    entities.Set(L"C1", variable);
    const auto tree = TestDeserializer::From(root);
    EXPECT_THROW(copy->Deserialize(tree.get(), entities), QOBEInvalidCast);
}

TEST_F(VariableTree, FailsOnlyWithoutItsElement)
{
    EXPECT_EQ(variable->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(variable->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    TestDeserializer empty(L"Body");
    EXPECT_EQ(variable->Deserialize(&empty, entities), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(NumberOf(*variable), 1.5);
}

TEST_F(VariableTree, AdditionThatFailsIsReportedAndTheRestIsWritten)
{
    variable->LinkToConstraint(constraint);
    for (const wchar_t* version : {L"R2016.0", L"R2018.1"}) {
        ForEachFailedCreation(
            version,
            [this](TestSerializer& root, std::size_t failing) {
                EXPECT_EQ(variable->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
                const std::size_t reports = TakeReports();
                EXPECT_EQ(failing != 0, reports != 0);
                if (failing > 1) {
                    const std::size_t whole = root.Version() == L"R2016.0" ? 3 : 8;
                    EXPECT_GE(root.Child(0).GetElementCount(), whole - 1);
                }
            });
    }
}

} // namespace
