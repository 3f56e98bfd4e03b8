// What the classes have in common that write an element with the content of every entity, and the
// set-up of an analysis in the document of a world.
#include "KARMPAnalysisCase.h"
#include "KARMPAnalysisStep.h"
#include "KARMPBody.h"
#include "KARMPDebugEntity.h"
#include "KARMPEntityTable.h"
#include "KARMPGenericEntity.h"
#include "KARMPInitialCondition.h"
#include "KARMPSupport.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

template <class T>
class ClassOfASetUp : public KARMPTestFixture
{
protected:
    static std::wstring ElementName()
    {
        const std::string name = T::ClassName().substr(5);
        return {name.begin(), name.end()};
    }

    QOBSharedHandle<T> entity = T::create(L"name");
    KARMPEntityTable entities;
};

using Classes = ::testing::Types<KARMPAnalysisCase, KARMPAnalysisStep, KARMPDebugEntity,
                                 KARMPGenericEntity, KARMPInitialCondition, KARMPSupport>;
TYPED_TEST_SUITE(ClassOfASetUp, Classes);

TYPED_TEST(ClassOfASetUp, WritesAndReadsTheContentOfAnEntityInItsElement)
{
    this->entity->SetIdentifier(L"entity");
    this->entity->SetID("application");
    this->entity->Deactivate();
    TestSerializer root;
    EXPECT_EQ(this->entity->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), this->ElementName());
    EXPECT_EQ(element.Text(L"@id"), L"entity");
    EXPECT_EQ(element.Text(L"@name"), L"name");
    EXPECT_EQ(element.Text(L"@isActive"), L"no");
    EXPECT_EQ(element.Text(L"@entityID"), L"application");
    EXPECT_EQ(element.GetElementCount(), 0U);

    for (const bool isElement : {false, true}) {
        const auto tree = TestDeserializer::From(root);
        const KARMPDeserializer* node = tree.get();
        if (isElement)
            tree->GetElement(this->ElementName(), node);
        const auto read = TypeParam::create(L"");
        EXPECT_EQ(read->Deserialize(node, this->entities), KARSuccess);
        this->TakeReports(); // by a generic entity, when the category is not on the node
        std::wstring identifier;
        read->GetIdentifier(identifier);
        EXPECT_EQ(identifier, L"entity");
        EXPECT_EQ(read->getEntityName(), L"name");
        EXPECT_EQ(read->GetID(), "application");
        EXPECT_FALSE(read->IsActive());
    }
}

TYPED_TEST(ClassOfASetUp, ReportsANullArgumentAndFails)
{
    EXPECT_EQ(this->entity->Serialize(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->entity->Deserialize(nullptr, this->entities), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(ClassOfASetUp, ReportsAMissingElementAndFails)
{
    TestSerializer root;
    root.FailCreation(1);
    EXPECT_EQ(this->entity->Serialize(&root), KARFailure);
    EXPECT_GT(this->TakeReports(), 0U);
    TestDeserializer other;
    other.Add(L"Other").Attribute(L"categoryID", L"other");
    EXPECT_EQ(this->entity->Deserialize(&other, this->entities), KARFailure);
    this->ExpectReports(1);
}

class AnalysisStep : public KARMPTestFixture
{
protected:
    QOBSharedHandle<KARMPAnalysisStep> step = KARMPAnalysisStep::create(L"step");
};

TEST_F(AnalysisStep, KeepsTheResultStreamThatItIsGiven)
{
    EXPECT_EQ(step->GetResultStream(), nullptr);
    const auto stream = std::make_shared<KARString>("first");
    step->UpdateResultStream(stream);
    EXPECT_EQ(step->GetResultStream(), stream);
    step->UpdateResultStream(std::make_shared<KARString>("second"));
    EXPECT_EQ(*step->GetResultStream(), "second");
    EXPECT_EQ(stream.use_count(), 1) << "the step dropped it";
    step->UpdateResultStream(nullptr);
    EXPECT_EQ(step->GetResultStream(), nullptr);
}

TEST_F(AnalysisStep, SharesTheResultStreamWithItsCopy)
{
    step->UpdateResultStream(std::make_shared<KARString>("results"));
    const auto copy = KARMPAnalysisStep::clone(step, QOBDynamicObject::CopyShallow);
    EXPECT_EQ(copy->GetResultStream(), step->GetResultStream());
}

TEST_F(AnalysisStep, WritesNoResultStream)
{
    step->UpdateResultStream(std::make_shared<KARString>("results"));
    TestSerializer root;
    EXPECT_EQ(step->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
    EXPECT_EQ(root.Dump().find("results"), std::string::npos);
    const auto read = KARMPAnalysisStep::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), {}), KARSuccess);
    EXPECT_EQ(read->GetResultStream(), nullptr);
}

class AnalysisWorld : public KARMPTestFixture
{
protected:
    template <class T>
    QOBSharedHandle<T> Add(const wchar_t* name)
    {
        const auto entity = T::create(name);
        entity->SetIdentifier(name);
        basicWorld->addLogicalChild(entity);
        EXPECT_EQ(world->Add(entity), KARSuccess);
        return entity;
    }
    template <class T>
    static QOBSharedHandle<T> Only(const KARMPWorld& world)
    {
        EXPECT_EQ(world.Count<T>(), 1) << T::ClassName();
        QOBSharedHandle<T> entity;
        world.Get(0, entity);
        return entity;
    }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    QOBSharedHandle<QOBBasicWorld> otherBasic = QOBBasicWorld::create(L"other");
    QOBSharedHandle<KARMPWorld> other = KARMPWorld::create(otherBasic);
};

// The steps come behind their cases in a document.
TEST_F(AnalysisWorld, KeepsASetUpInItsDocument)
{
    const auto analysis = Add<KARMPAnalysisCase>(L"case");
    const auto step = Add<KARMPAnalysisStep>(L"step");
    step->UpdateResultStream(std::make_shared<KARString>("results"));
    analysis->AddAnalysisStep(step);
    Add<KARMPSupport>(L"support")->SetTarget(Add<KARMPInitialCondition>(L"condition"));
    Add<KARMPDebugEntity>(L"debug");
    Add<KARMPGenericEntity>(L"generic")->SetCategoryId("category");

    TestSerializer root;
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    for (const bool asText : {false, true}) {
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        otherBasic = QOBBasicWorld::create(L"other");
        other = KARMPWorld::create(otherBasic);
        EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);
        const auto readCase = Only<KARMPAnalysisCase>(*other);
        QOBSharedHandle<KARMPAnalysisStep> readStep;
        EXPECT_EQ(readCase->GetAnalysisStep(0, readStep), KARSuccess);
        EXPECT_EQ(readStep, Only<KARMPAnalysisStep>(*other));
        EXPECT_NE(readStep, step);
        EXPECT_EQ(readStep->GetResultStream(), nullptr);
        QOBSharedHandle<KARMPEntity> target;
        EXPECT_EQ(Only<KARMPSupport>(*other)->GetTarget(target), KARSuccess);
        EXPECT_EQ(target, Only<KARMPInitialCondition>(*other));
        EXPECT_EQ(Only<KARMPDebugEntity>(*other)->getEntityName(), L"debug");
        EXPECT_EQ(Only<KARMPGenericEntity>(*other)->GetCategoryId(), "category");
        TestSerializer again;
        EXPECT_EQ(other->Serialize(&again), KARSuccess);
        EXPECT_EQ(again.Dump(), root.Dump());
    }
}

TEST_F(AnalysisWorld, IsLeftWithoutTheEntitiesThatItIsDestroyedWith)
{
    const auto step = Add<KARMPAnalysisStep>(L"step");
    Add<KARMPAnalysisCase>(L"case")->AddAnalysisStep(step);
    Add<KARMPSupport>(L"support")->SetTarget(step);
    KARMPWorld::destroy(world);
    basicWorld.detach();
    EXPECT_EQ(step->getReferenceCount(), 1U);
}

} // namespace
