#include "KARMPExpression.h"
#include "EnvironmentVariable.h"
#include "KARIMPExpressionLoader.h"
#include "KARMPConstant.h"
#include "KARMPContentAccess.h"
#include "KARMPEntityTable.h"
#include "KARMPSerializationServices.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARMPVariableHelper.h"
#include "KARMPWorld.h"
#include "KARWBEquation.h"
#include "KARWBFactory.h"
#include "KARWBVariable.h"
#include "QOBBasicWorld.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <cstdlib>

namespace {

using Mapping = std::map<int, int>;

// An expression whose mapping and whose second variable cannot be had.
class UnsureExpression : public KARMPExpression
{
public:
    KARStatus GetVariableMapping(Mapping&) const override { return KARFailure; }
    KARStatus GetLinkedVariable(int index, QOBSharedHandle<KARMPVariable>& variable) const override
    {
        return index != 1 ? KARMPExpression::GetLinkedVariable(index, variable) : KARFailure;
    }
};

// An expression that lists one variable more, in front of those that were linked.
class LeadingExpression : public KARMPExpression
{
public:
    explicit LeadingExpression(QOBSharedHandle<KARMPVariable> lead) : m_lead(std::move(lead)) {}
    KARStatus GetLinkedVariable(int index, QOBSharedHandle<KARMPVariable>& variable) const override
    {
        if (index != 0)
            return KARMPExpression::GetLinkedVariable(index - 1, variable);
        variable = m_lead;
        return KARSuccess;
    }
    int GetLinkedVariableCount() const override
    {
        return KARMPExpression::GetLinkedVariableCount() + 1;
    }

private:
    QOBSharedHandle<KARMPVariable> m_lead;
};

// An expression that takes no equation and no mapping.
class RefusingExpression : public KARMPExpression
{
public:
    KARStatus SetVariableMapping(const Mapping&) override { return KARFailure; }
    KARStatus SetValue(KARWBEquation*) override { return KARFailure; }
};

// An expression that gives another equation than it holds, and a part of its mapping.
class LendingExpression : public KARMPExpression
{
public:
    KARStatus GetValue(KARWBEquation*& equation) const override
    {
        equation = lent;
        return lent != nullptr ? KARSuccess : KARFailure;
    }
    KARStatus GetVariableMapping(Mapping& mapping) const override
    {
        KARMPExpression::GetVariableMapping(mapping);
        return KARUnchanged;
    }

    KARWBEquation* lent = nullptr;
};

// An expression that notes what it is given.
class NotingExpression : public KARMPExpression
{
public:
    KARStatus SetValue(KARWBEquation* equation) override
    {
        given.emplace_back("equation");
        return KARMPExpression::SetValue(equation);
    }
    KARStatus LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable) override
    {
        given.emplace_back("variable");
        return KARMPExpression::LinkToVariable(variable);
    }

    std::vector<std::string> given;
};

// An expression that fails to tell that it is in a world.
class LostExpression : public KARMPExpression
{
public:
    KARStatus IsInWorld(bool& inWorld) const override
    {
        inWorld = true;
        return KARUnexpected;
    }
};

class Expression : public KARMPTestFixture
{
protected:
    Expression()
    {
        basicWorld->addLogicalChild(expression);
        basicWorld->addLogicalChild(copy);
        world->GetWBFactory(factory);
        for (std::size_t i = 0; i < 3; ++i) {
            const std::wstring identifier = L"x" + std::to_wstring(i);
            variables[i] = KARMPVariable::create(L"name of " + identifier);
            variables[i]->SetIdentifier(identifier);
            entities.Set(identifier, variables[i]);
        }
        expression->SetIdentifier(L"E1");
    }

    KARWBEquation* Parse(const wchar_t* text)
    {
        KARWBEquation* equation = nullptr;
        EXPECT_EQ(KARMPSerializationServices::ParseWBEquation(text, factory, equation), KARSuccess);
        return equation;
    }
    // The element of an expression without content of its own.
    TestDeserializer& Element()
    {
        TestDeserializer& element = document.Add(L"Expression");
        return element.Attribute(L"id", L"E9")
            .Attribute(L"name", L"e")
            .Attribute(L"isActive", L"yes");
    }
    Mapping MappingOf(const KARMPExpression& value) const
    {
        Mapping mapping;
        EXPECT_EQ(value.GetVariableMapping(mapping), KARSuccess);
        return mapping;
    }

    EnvironmentVariable dumpOutputs{"MOT_DUMP_OUTPUTS", nullptr};
    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"world");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    KARWBFactory* factory = nullptr;
    QOBSharedHandle<KARMPExpression> expression = KARMPExpression::create(L"e");
    QOBSharedHandle<KARMPExpression> copy = KARMPExpression::create(L"c");
    QOBSharedHandle<KARMPVariable> variables[3];
    KARMPEntityTable entities;
    TestDeserializer document;
};

TEST_F(Expression, HasNoEquationUntilItIsGivenOne)
{
    KARWBEquation* equation = Parse(L"x");
    KARWBEquation* held = equation;
    EXPECT_EQ(expression->GetValue(held), KARFailure);
    EXPECT_EQ(held, nullptr);
    EXPECT_EQ(expression->SetValue(equation), KARSuccess);
    EXPECT_EQ(expression->SetValue(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(expression->GetValue(held), KARSuccess);
    EXPECT_EQ(held, equation);
}

TEST_F(Expression, SecondLinkToTheSameVariableAddsNothing)
{
    EXPECT_EQ(expression->LinkToVariable(variables[0]), KARSuccess);
    EXPECT_EQ(expression->LinkToVariable(variables[1]), KARSuccess);
    EXPECT_EQ(expression->LinkToVariable(variables[0]), KARUnchanged);
    EXPECT_EQ(expression->LinkToVariable({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(expression->GetLinkedVariableCount(), 2);
    EXPECT_EQ(MappingOf(*expression), (Mapping{{0, 0}, {1, 1}}));
    QOBSharedHandle<KARMPVariable> variable;
    EXPECT_EQ(expression->GetLinkedVariable(1, variable), KARSuccess);
    EXPECT_EQ(variable, variables[1]);
    EXPECT_EQ(expression->GetLinkedVariable(2, variable), KARFailure);
    EXPECT_FALSE(variable);
    variable = variables[0];
    EXPECT_EQ(expression->GetLinkedVariable(-1, variable), KARFailure);
    EXPECT_FALSE(variable);
}

TEST_F(Expression, LinkAsksTheGetterOfASubclassForTheLinkedVariables)
{
    const QOBSharedHandle<KARMPExpression> leading(new LeadingExpression(variables[0]));
    EXPECT_EQ(leading->LinkToVariable(variables[0]), KARUnchanged);
    EXPECT_EQ(leading->LinkToVariable(variables[1]), KARSuccess);
    EXPECT_EQ(leading->LinkToVariable(variables[1]), KARUnchanged);
    EXPECT_EQ(leading->GetLinkedVariableCount(), 2);
    EXPECT_EQ(MappingOf(*leading), (Mapping{{1, 1}}));
}

TEST_F(Expression, LinkGoesOnBehindAVariableThatCannotBeHad)
{
    const QOBSharedHandle<KARMPExpression> unsure(new UnsureExpression);
    unsure->LinkToVariable(variables[0]);
    unsure->LinkToVariable(variables[1]);
    EXPECT_EQ(unsure->LinkToVariable(variables[0]), KARUnchanged) << "in front of the failure";
    EXPECT_EQ(unsure->LinkToVariable(variables[2]), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(unsure->LinkToVariable(variables[2]), KARUnchanged) << "behind the failure";
    ExpectReports(1);
    EXPECT_EQ(unsure->LinkToVariable(variables[1]), KARSuccess) << "the getter does not tell of it";
    ExpectReports(1);
    EXPECT_EQ(unsure->GetLinkedVariableCount(), 4);
}

TEST_F(Expression, LinkMapsItsPositionToItselfAndLeavesOtherEntries)
{
    EXPECT_EQ(expression->SetVariableMapping({{0, 5}, {7, 2}}), KARSuccess);
    expression->LinkToVariable(variables[0]);
    EXPECT_EQ(MappingOf(*expression), (Mapping{{0, 0}, {7, 2}}));
    expression->SetVariableMapping({});
    expression->LinkToVariable(variables[0]);
    EXPECT_EQ(MappingOf(*expression), Mapping());
}

TEST_F(Expression, GivesItsLoaderAsAnExpressionsLoader)
{
    LoaderRecord record;
    auto* attached = new RecordingLoader<KARIMPExpressionLoader>(record);
    auto* loader = reinterpret_cast<KARIMPExpressionLoader*>(&record);
    EXPECT_EQ(expression->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    expression->SetLoader(attached);
    EXPECT_EQ(expression->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, attached);
    expression->SetLoader(nullptr);
    delete attached;
}

TEST_F(Expression, CopyRefersToTheSameEquationWithoutVariablesAndMapping)
{
    KARWBEquation* equation = Parse(L"x");
    expression->SetValue(equation);
    expression->LinkToVariable(variables[0]);
    expression->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    const auto cloned = KARMPExpression::clone(expression, QOBDynamicObject::CopyDefault);
    KARWBEquation* held = nullptr;
    EXPECT_EQ(cloned->GetValue(held), KARSuccess);
    EXPECT_EQ(held, equation);
    EXPECT_EQ(cloned->GetLinkedVariableCount(), 0);
    EXPECT_TRUE(MappingOf(*cloned).empty());
    KARMPPhysicalQuantity::Enum quantity = {};
    EXPECT_EQ(cloned->GetPhysicalQuantity(quantity), KARSuccess);
}

TEST_F(Expression, ComesBackWithEquationVariablesAndMapping)
{
    expression->SetValue(Parse(L"2 * x0 + sin(x2)"));
    expression->LinkToVariable(variables[2]);
    expression->LinkToVariable(variables[0]);
    expression->SetVariableMapping({{0, 1}, {1, 0}});
    expression->SetPhysicalQuantity(KARMPPhysicalQuantity::Length);
    for (const wchar_t* version : {L"R2017.0", L"R2018.1"}) {
        for (const bool asText : {false, true}) {
            TestSerializer root(version);
            ASSERT_EQ(expression->Serialize(&root), KARSuccess);
            const TestSerializer& element = root.Child(0);
            EXPECT_EQ(element.GetId(), L"Expression");
            ASSERT_EQ(element.GetElementCount(), 4U);
            EXPECT_EQ(element.Child(1).GetId(), L"Value");
            EXPECT_EQ(element.Child(2).GetId(), L"Variables");
            EXPECT_EQ(element.Child(3).GetId(), L"VariableMapping");
            EXPECT_EQ(element.Text(L"Value"), L"2 * x0 + sin(x2)");
            EXPECT_EQ(element.Count(L"Variables/Variable"), 2U);
            EXPECT_EQ(element.Text(L"Variables/Variable/@id"), L"x2");
            EXPECT_EQ(element.Text(L"Variables/Variable/@name"), L"name of x2");
            EXPECT_EQ(element.Integer(L"VariableMapping/Var0"), 1);
            EXPECT_EQ(element.Integer(L"VariableMapping/Var1"), 0);

            const auto read = KARMPExpression::create(L"");
            basicWorld->addLogicalChild(read);
            const auto tree = TestDeserializer::From(root, {.asText = asText});
            ASSERT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
            KARWBEquation* written = nullptr;
            KARWBEquation* equation = nullptr;
            expression->GetValue(written);
            ASSERT_EQ(read->GetValue(equation), KARSuccess);
            EXPECT_NE(equation, written);
            EXPECT_EQ(&equation->GetFactory(), factory);
            EXPECT_TRUE(equation->IsSameAs(*written));
            ASSERT_EQ(read->GetLinkedVariableCount(), 2);
            QOBSharedHandle<KARMPVariable> variable;
            read->GetLinkedVariable(0, variable);
            EXPECT_EQ(variable, variables[2]);
            EXPECT_EQ(MappingOf(*read), (Mapping{{0, 1}, {1, 0}}));
        }
    }
}

TEST_F(Expression, IsWrittenWithTheEquationThatASubclassGives)
{
    const QOBSharedHandle<LendingExpression> lending(new LendingExpression);
    lending->lent = Parse(L"x0");
    TestSerializer root;
    EXPECT_EQ(lending->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Expression/Value"), L"x0");

    lending->SetValue(lending->lent);
    lending->lent = nullptr;
    TestSerializer without;
    EXPECT_EQ(lending->Serialize(&without), KARSuccess);
    EXPECT_FALSE(without.Has(L"Expression/Value"));
}

TEST_F(Expression, MappingIsWrittenOnlyWhereItsGetterGivesZero)
{
    const QOBSharedHandle<LendingExpression> lending(new LendingExpression);
    lending->LinkToVariable(variables[0]);
    TestSerializer root;
    EXPECT_EQ(lending->Serialize(&root), KARSuccess);
    EXPECT_TRUE(root.Has(L"Expression/Variables"));
    EXPECT_FALSE(root.Has(L"Expression/VariableMapping"));
}

TEST_F(Expression, EquationIsReadBeforeTheVariables)
{
    Element().Leaf(L"Value", L"x0").Add(L"Variables").Reference(L"Variable", L"x0");
    const QOBSharedHandle<NotingExpression> noting(new NotingExpression);
    basicWorld->addLogicalChild(noting);
    EXPECT_EQ(noting->Deserialize(&document, entities), KARSuccess);
    EXPECT_EQ(noting->given, (std::vector<std::string>{"equation", "variable"}));
}

TEST_F(Expression, EquationThatIsReadSpeaksOfTheVariablesByTheirIdentifiers)
{
    Element().Leaf(L"Value", L"x0 * 2");
    ASSERT_EQ(copy->Deserialize(&document, entities), KARSuccess);
    KARWBVariable* variable = nullptr;
    KARMPVariableHelper::CreateWBVariable(variables[0], factory, variable);
    KARWBEquation* equation = nullptr;
    ASSERT_EQ(copy->GetValue(equation), KARSuccess);
    EXPECT_EQ(equation->GetVariable(0), variable);
}

TEST_F(Expression, WithoutAnEquationIsWrittenWithoutAValueAndReadWithStatusOne)
{
    TestSerializer root;
    EXPECT_EQ(expression->Serialize(&root), KARSuccess);
    EXPECT_FALSE(root.Has(L"Expression/Value"));
    EXPECT_FALSE(root.Has(L"Expression/Variables"));
    ASSERT_TRUE(root.Has(L"Expression/VariableMapping"));
    EXPECT_EQ(root.Find(L"Expression/VariableMapping")->GetElementCount(), 0U);
    EXPECT_EQ(copy->Deserialize(TestDeserializer::From(root).get(), entities), KARUnchanged);
    KARWBEquation* equation = nullptr;
    EXPECT_EQ(copy->GetValue(equation), KARFailure);
}

TEST_F(Expression, WithoutAnEquationReadsTheRest)
{
    TestDeserializer& element = Element();
    element.Add(L"Variables").Reference(L"Variable", L"x1");
    EXPECT_EQ(copy->Deserialize(&document, entities), KARUnchanged);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 1);
    // Without a mapping in the tree the links' own stays.
    EXPECT_EQ(MappingOf(*copy), (Mapping{{0, 0}}));
}

TEST_F(Expression, MappingWithoutConsecutiveKeysLosesThem)
{
    expression->SetVariableMapping({{0, 5}, {2, 7}});
    TestSerializer root;
    ASSERT_EQ(expression->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Integer(L"Expression/VariableMapping/Var0"), 5);
    EXPECT_EQ(root.Integer(L"Expression/VariableMapping/Var2"), 7);
    EXPECT_EQ(copy->Deserialize(TestDeserializer::From(root).get(), entities), KARUnchanged);
    ExpectReports(1);
    EXPECT_EQ(MappingOf(*copy), (Mapping{{0, 5}}));
}

TEST_F(Expression, NegativeKeysAreWrittenAndLost)
{
    expression->SetVariableMapping({{-1, 5}, {0, 7}});
    TestSerializer root;
    ASSERT_EQ(expression->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Integer(L"Expression/VariableMapping/Var-1"), 5);
    copy->Deserialize(TestDeserializer::From(root).get(), entities);
    ExpectReports(1);
    EXPECT_EQ(MappingOf(*copy), (Mapping{{0, 7}}));
}

TEST_F(Expression, EmptyMappingOfTheTreeReplacesTheLinksOwn)
{
    TestDeserializer& element = Element();
    element.Add(L"Variables").Reference(L"Variable", L"x1");
    element.Add(L"VariableMapping");
    EXPECT_EQ(copy->Deserialize(&document, entities), KARUnchanged);
    EXPECT_TRUE(MappingOf(*copy).empty());
}

TEST_F(Expression, MappingOfOneNameTwiceIsReadOnceAndReported)
{
    Element().Add(L"VariableMapping").Leaf(L"Var0", 3).Leaf(L"Var0", 4);
    EXPECT_EQ(copy->Deserialize(&document, entities), KARUnchanged);
    ExpectReports(1);
    EXPECT_EQ(MappingOf(*copy), (Mapping{{0, 3}}));
}

TEST_F(Expression, OutsideAWorldCannotReadItsEquationButTheRest)
{
    TestDeserializer& element = Element().Leaf(L"Value", L"x0");
    element.Add(L"Variables").Reference(L"Variable", L"x0");
    const auto outside = KARMPExpression::create(L"o");
    EXPECT_EQ(outside->Deserialize(&document, entities), KARSuccess);
    ExpectReports(1);
    KARWBEquation* equation = nullptr;
    EXPECT_EQ(outside->GetValue(equation), KARFailure);
    EXPECT_EQ(outside->GetLinkedVariableCount(), 1);
}

TEST_F(Expression, ThatFailsToTellThatItIsInAWorldReadsNoEquation)
{
    Element().Leaf(L"Value", L"x0").Add(L"Variables").Reference(L"Variable", L"x0");
    const QOBSharedHandle<KARMPExpression> lost(new LostExpression);
    basicWorld->addLogicalChild(lost);
    EXPECT_EQ(lost->Deserialize(&document, entities), KARSuccess);
    ExpectReports(1);
    KARWBEquation* equation = nullptr;
    EXPECT_EQ(lost->GetValue(equation), KARFailure);
    EXPECT_EQ(lost->GetLinkedVariableCount(), 1);
}

TEST_F(Expression, ValueWithoutATextIsReportedAndTheRestRead)
{
    TestDeserializer& element = Element();
    element.Add(L"Value");
    element.Add(L"Variables").Reference(L"Variable", L"x0");
    EXPECT_EQ(copy->Deserialize(&document, entities), KARSuccess);
    ExpectReports(3); // two of them by the reading of the value itself
    KARWBEquation* equation = nullptr;
    EXPECT_EQ(copy->GetValue(equation), KARFailure);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 1);
}

TEST_F(Expression, UnderABasicWorldWithoutItsExtensionReportsTwice)
{
    const auto bare = QOBBasicWorld::create(L"bare");
    bare->addLogicalChild(copy);
    Element().Leaf(L"Value", L"x0");
    EXPECT_EQ(copy->Deserialize(&document, entities), KARSuccess);
    ExpectReports(2);
}

TEST_F(Expression, EquationTextThatIsNotOneEquationIsReportedAndTheRestRead)
{
    for (const wchar_t* text : {L"", L"x0 +", L"x0; x1", L"1,5"}) {
        TestDeserializer tree(L"Expression");
        tree.Attribute(L"id", L"E9").Attribute(L"name", L"e").Attribute(L"isActive", L"yes");
        tree.Leaf(L"Value", text).Add(L"Variables").Reference(L"Variable", L"x0");
        const auto read = KARMPExpression::create(L"");
        basicWorld->addLogicalChild(read);
        EXPECT_EQ(read->Deserialize(&tree, entities), KARSuccess);
        // The parsing reports, and so does the reading.
        ExpectReports(2);
        KARWBEquation* equation = nullptr;
        EXPECT_EQ(read->GetValue(equation), KARFailure);
        EXPECT_EQ(read->GetLinkedVariableCount(), 1);
    }
    // Two equations had filled the factory before their number was tested.
    EXPECT_EQ(factory->GetNbOfEquations(), 2);
}

TEST_F(Expression, EquationThatItRefusesIsReportedAndTheRestRead)
{
    Element().Leaf(L"Value", L"x0").Add(L"Variables").Reference(L"Variable", L"x0");
    const QOBSharedHandle<KARMPExpression> refusing(new RefusingExpression);
    basicWorld->addLogicalChild(refusing);
    EXPECT_EQ(refusing->Deserialize(&document, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(refusing->GetLinkedVariableCount(), 1);
}

TEST_F(Expression, MappingThatItRefusesIsReported)
{
    Element().Add(L"VariableMapping").Leaf(L"Var0", 3);
    const QOBSharedHandle<KARMPExpression> refusing(new RefusingExpression);
    EXPECT_EQ(refusing->Deserialize(&document, entities), KARUnchanged);
    ExpectReports(1);
    EXPECT_TRUE(MappingOf(*refusing).empty());
}

TEST_F(Expression, UnknownVariablesAreSkippedAndAMissingIdentifierIsReported)
{
    TestDeserializer& list = Element().Leaf(L"Value", L"x0").Add(L"Variables");
    list.Reference(L"Variable", L"x9").Reference(L"Variable", L"x0").Reference(L"Variable", L"x0");
    list.Add(L"Variable");
    entities.Set(L"x9", {});
    EXPECT_EQ(copy->Deserialize(&document, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 1);
}

TEST_F(Expression, LinkToSomethingElseThanAVariableThrows)
{
    entities.Set(L"x0", expression);
    Element().Add(L"Variables").Reference(L"Variable", L"x0");
    EXPECT_THROW(copy->Deserialize(&document, entities), QOBEInvalidCast);
}

TEST_F(Expression, UnfinishedEquationFailsOnceTheRestIsWritten)
{
    expression->SetValue(factory->CreateEquation());
    expression->LinkToVariable(variables[0]);
    TestSerializer root;
    EXPECT_EQ(expression->Serialize(&root), KARFailure);
    ExpectReports(2);
    EXPECT_FALSE(root.Has(L"Expression/Value"));
    EXPECT_TRUE(root.Has(L"Expression/Variables/Variable/@id"));
    EXPECT_TRUE(root.Has(L"Expression/VariableMapping/Var0"));
}

TEST_F(Expression, LinksAndMappingThatCannotBeHadDoNotFailTheWriting)
{
    const QOBSharedHandle<KARMPExpression> unsure(new UnsureExpression);
    unsure->LinkToVariable(variables[0]);
    unsure->LinkToVariable(variables[1]);
    TestSerializer root;
    EXPECT_EQ(unsure->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Expression/Variables/Variable/@id"), L"x0");
    EXPECT_TRUE(root.Flag(L"Expression/Variables/Variable[1]/@id"));
    EXPECT_TRUE(root.Flag(L"Expression/Variables/Variable[1]/@name"));
    EXPECT_FALSE(root.Has(L"Expression/VariableMapping"));
}

TEST_F(Expression, OnlyEquationAndMappingThatCannotBeAddedFail)
{
    expression->SetValue(Parse(L"x0"));
    expression->LinkToVariable(variables[0]);
    // Element, value, list, its item, mapping, its item.
    const std::vector<KARStatus> expected{KARSuccess, KARFailure, KARFailure, KARSuccess,
                                          KARSuccess, KARFailure, KARFailure};
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(expression->Serialize(&root), expected.at(failing));
            EXPECT_EQ(TakeReports() != 0, failing != 0);
        });
    EXPECT_EQ(creations, 6U);
}

TEST_F(Expression, FailingBaseEndsTheReading)
{
    TestDeserializer& element = Element().Leaf(L"Value", L"x0");
    element.Add(L"Variables").Reference(L"Variable", L"x0");
    document.At(L"R2017.1");
    EXPECT_EQ(copy->Deserialize(&document, entities), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 0);
    EXPECT_EQ(factory->GetNbOfEquations(), 0);
}

TEST_F(Expression, NeedsItsElement)
{
    EXPECT_EQ(expression->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(expression->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(expression->Deserialize(&document, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Expression, OfAnOutputIsLeftOutUnlessTheVariableIsSet)
{
    expression->SetOwner("Output");
    TestSerializer root;
    EXPECT_EQ(expression->Serialize(&root), KARSuccess);
    EXPECT_EQ(expression->Deserialize(nullptr, entities), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
    dumpOutputs.Set("");
    EXPECT_EQ(expression->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 1U);
}

// Whether names are written is decided once a process.
class ReferenceNameProcess : public Expression
{};

TEST_F(ReferenceNameProcess, FamiliesLeaveNamesOutWhereValueReferencesKeepThem)
{
    ASSERT_NE(std::getenv("NO_MP_NAME_FOR_SERIALIZATION"), nullptr);
    expression->LinkToVariable(variables[0]);
    TestSerializer root;
    ASSERT_EQ(expression->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Expression/Variables/Variable/@id"), L"x0");
    EXPECT_FALSE(root.Has(L"Expression/Variables/Variable/@name"));
    const QOBSharedHandle<KARMPValue> value = KARMPConstant::create(L"k");
    ASSERT_EQ(KARMPSerializationServices::Serialize(&root, value, L"Stiffness"), KARSuccess);
    EXPECT_EQ(root.Text(L"Stiffness/@name"), L"k");
}

TEST_F(Expression, IsDescribedByItsEquationAsAText)
{
    const karmp::Content& content = KARMPExpression::ClassContent();
    ASSERT_EQ(content.items.size(), 4U);
    const karmp::Item& equation = content.items[0];
    EXPECT_EQ(equation.name, L"Value");
    karmp::ItemValue value;
    EXPECT_EQ(equation.get(karmp::OwnerOf(*expression), value), KARFailure);
    value.text = L"no equation";
    EXPECT_EQ(equation.set(karmp::OwnerOf(*expression), value), KARFailure);
    EXPECT_GE(TakeReports(), 1U);

    expression->SetValue(Parse(L"x = 2 * y"));
    ASSERT_EQ(equation.get(karmp::OwnerOf(*expression), value), KARSuccess);
    TestSerializer root;
    expression->Serialize(&root);
    EXPECT_EQ(value.text, root.Text(L"Expression/Value"));
    EXPECT_EQ(equation.set(karmp::OwnerOf(*copy), value), KARSuccess);
    copy->Serialize(&root);
    EXPECT_EQ(root.Text(L"Expression[1]/Value"), value.text);
    // The mapping is the class's own matter: any name, an integer each.
    EXPECT_TRUE(root.Has(L"Expression/" + std::wstring(content.items[2].name)));
    EXPECT_TRUE(content.items[2].anyName);
    EXPECT_EQ(content.items[3].kind, karmp::ItemKind::Integer);
}

} // namespace
