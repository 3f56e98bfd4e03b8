#include "KARMPAnalysisCase.h"
#include "ConcreteEntity.h"
#include "KARMPAnalysisStep.h"
#include "KARMPEntityTable.h"
#include "KARMPItems.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <algorithm>

namespace {

using Step = QOBSharedHandle<KARMPAnalysisStep>;

/// A case whose step at an index cannot be had.
class LackingCase : public ConcreteEntity<KARMPAnalysisCase>
{
public:
    explicit LackingCase(int lacking) : m_lacking(lacking) {}
    KARStatus GetAnalysisStep(int index, Step& step) const override
    {
        return index != m_lacking ? KARMPAnalysisCase::GetAnalysisStep(index, step) : KARFailure;
    }

private:
    int m_lacking;
};

class AnalysisCase : public KARMPTestFixture
{
protected:
    AnalysisCase()
    {
        for (const Step& step : {first, second, third}) {
            step->SetIdentifier(step->getEntityName());
            entities.Set(step->getEntityName(), step);
        }
        analysis->SetIdentifier(L"case");
    }
    static std::vector<Step> StepsOf(const KARMPAnalysisCase& analysis)
    {
        std::vector<Step> steps;
        for (int index = 0; index < analysis.GetAnalysisStepCount(); ++index) {
            steps.emplace_back();
            EXPECT_EQ(analysis.GetAnalysisStep(index, steps.back()), KARSuccess);
        }
        return steps;
    }
    static TestDeserializer& Element(TestDeserializer& root)
    {
        return root.Add(L"AnalysisCase")
            .Attribute(L"id", L"read")
            .Attribute(L"name", L"")
            .Attribute(L"isActive", L"yes");
    }
    /// Reads a case that is to be had without a report.
    QOBSharedHandle<KARMPAnalysisCase> Read(const TestDeserializer& root)
    {
        const auto read = KARMPAnalysisCase::create(L"");
        EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
        ExpectReports(0);
        return read;
    }

    QOBSharedHandle<KARMPAnalysisCase> analysis = KARMPAnalysisCase::create(L"case");
    Step first = KARMPAnalysisStep::create(L"first");
    Step second = KARMPAnalysisStep::create(L"second");
    Step third = KARMPAnalysisStep::create(L"third");
    KARMPEntityTable entities;
};

TEST_F(AnalysisCase, IsNewWithoutSteps)
{
    EXPECT_EQ(analysis->GetAnalysisStepCount(), 0);
    Step step = first;
    EXPECT_EQ(analysis->GetAnalysisStep(0, step), KARFailure);
    EXPECT_FALSE(step);
}

TEST_F(AnalysisCase, ListsStepsOnceInTheOrderOfAdding)
{
    EXPECT_EQ(analysis->AddAnalysisStep(second), KARSuccess);
    EXPECT_EQ(analysis->AddAnalysisStep(first), KARSuccess);
    EXPECT_EQ(analysis->AddAnalysisStep(second), KARUnchanged);
    EXPECT_EQ(StepsOf(*analysis), (std::vector<Step>{second, first}));
    for (const int index : {-1, 2}) {
        Step step = first;
        EXPECT_EQ(analysis->GetAnalysisStep(index, step), KARFailure);
        EXPECT_FALSE(step);
    }
}

TEST_F(AnalysisCase, TakesStepsOutAndKeepsTheOrderOfTheRest)
{
    for (const Step& step : {first, second, third})
        analysis->AddAnalysisStep(step);
    EXPECT_EQ(analysis->RemoveAnalysisStep(first), KARSuccess);
    EXPECT_EQ(analysis->RemoveAnalysisStep(first), KARUnchanged);
    EXPECT_EQ(StepsOf(*analysis), (std::vector<Step>{second, third}));
}

TEST_F(AnalysisCase, RefusesNullHandlesWithAReport)
{
    EXPECT_EQ(analysis->AddAnalysisStep(Step()), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(analysis->RemoveAnalysisStep(Step()), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(analysis->GetAnalysisStepCount(), 0);
}

TEST_F(AnalysisCase, CopiesNoSteps)
{
    analysis->AddAnalysisStep(first);
    const auto copy = KARMPAnalysisCase::clone(analysis, QOBDynamicObject::CopyShallow);
    EXPECT_EQ(copy->GetAnalysisStepCount(), 0);
    EXPECT_EQ(copy->getEntityName(), L"case");
}

TEST_F(AnalysisCase, DropsItsStepsWhenItIsDestroyed)
{
    analysis->AddAnalysisStep(first);
    const auto other = analysis;
    KARMPAnalysisCase::destroy(analysis);
    EXPECT_EQ(other->GetAnalysisStepCount(), 0);
    EXPECT_EQ(first->getReferenceCount(), 2U) << "the table holds it besides";
}

TEST_F(AnalysisCase, WritesItsStepsInOrder)
{
    analysis->AddAnalysisStep(second);
    analysis->AddAnalysisStep(first);
    TestSerializer root;
    EXPECT_EQ(analysis->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"AnalysisCase");
    EXPECT_EQ(element.Text(L"@id"), L"case");
    EXPECT_EQ(element.Count(L"Steps/Step"), 2U);
    EXPECT_EQ(element.Text(L"Steps/Step/@id"), L"second");
    EXPECT_EQ(element.Text(L"Steps/Step/@name"), L"second");
    EXPECT_EQ(element.Text(L"Steps/Step[1]/@id"), L"first");
}

TEST_F(AnalysisCase, WritesNoListWithoutSteps)
{
    TestSerializer root;
    EXPECT_EQ(analysis->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
}

TEST_F(AnalysisCase, WritesTrueForAStepThatCannotBeHad)
{
    const QOBSharedHandle<LackingCase> lacking(new LackingCase(1));
    lacking->SetIdentifier(L"lacking");
    for (const Step& step : {first, second, third})
        lacking->AddAnalysisStep(step);
    TestSerializer root;
    EXPECT_EQ(lacking->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.Count(L"Steps/Step"), 3U);
    EXPECT_TRUE(element.Flag(L"Steps/Step[1]/@id"));
    EXPECT_TRUE(element.Flag(L"Steps/Step[1]/@name"));
    EXPECT_EQ(element.Text(L"Steps/Step[2]/@id"), L"third");
    const auto tree = TestDeserializer::From(root, {.asText = true});
    EXPECT_EQ(StepsOf(*Read(*tree)), (std::vector<Step>{first, third}));
}

TEST_F(AnalysisCase, ReadsItsStepsByTheirIdentifiers)
{
    analysis->AddAnalysisStep(second);
    analysis->AddAnalysisStep(first);
    TestSerializer root;
    analysis->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(StepsOf(*Read(*tree)), (std::vector<Step>{second, first}));
    }
}

TEST_F(AnalysisCase, PassesOverStepsThatTheDocumentDoesNotHaveOrHasTwice)
{
    entities.Set(L"null", {});
    TestDeserializer root;
    Element(root)
        .Add(L"Steps")
        .Reference(L"Step", L"unknown")
        .Reference(L"Step", L"null")
        .Reference(L"Step", L"third")
        .Reference(L"Other", L"second")
        .Reference(L"Step", L"third");
    EXPECT_EQ(StepsOf(*Read(root)), std::vector<Step>{third});
}

TEST_F(AnalysisCase, ReportsAStepWithoutAnIdentifierAndReadsOn)
{
    TestDeserializer root;
    TestDeserializer& steps = Element(root).Add(L"Steps");
    steps.Add(L"Step");
    steps.Reference(L"Step", L"first");
    const auto read = KARMPAnalysisCase::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(StepsOf(*read), std::vector<Step>{first});
}

TEST_F(AnalysisCase, ReadsNoStepsFromAnEmptyList)
{
    TestDeserializer root;
    Element(root).Add(L"Steps");
    EXPECT_EQ(Read(root)->GetAnalysisStepCount(), 0);
}

TEST_F(AnalysisCase, DiffersFromOneWithItsStepsInAnotherOrder)
{
    const auto items = karmp::ItemsOf(KARMPAnalysisCase::ClassName());
    const auto steps = std::find_if(items.begin(), items.end(),
                                    [](const auto& item) { return item.name == L"Steps"; });
    ASSERT_NE(steps, items.end());
    EXPECT_TRUE(steps->isInOrder);
}

TEST_F(AnalysisCase, ThrowsForAStepOfAnotherClass)
{
    entities.Set(L"first", KARMPPoint::create(L"point"));
    TestDeserializer root;
    Element(root).Add(L"Steps").Reference(L"Step", L"first");
    const auto read = KARMPAnalysisCase::create(L"");
    EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
}

} // namespace
