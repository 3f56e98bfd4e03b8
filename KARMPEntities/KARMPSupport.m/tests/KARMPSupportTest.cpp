#include "KARMPSupport.h"
#include "EnvironmentVariable.h"
#include "KARMPAnalysisStep.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Target = QOBSharedHandle<KARMPEntity>;

class Support : public KARMPTestFixture
{
protected:
    Support()
    {
        body->SetIdentifier(L"B1");
        entities.Set(L"B1", body);
        support->SetIdentifier(L"support");
    }
    static TestDeserializer& Element(TestDeserializer& root)
    {
        return root.Add(L"Support")
            .Attribute(L"id", L"read")
            .Attribute(L"name", L"read")
            .Attribute(L"isActive", L"yes");
    }
    static Target TargetOf(const KARMPSupport& support)
    {
        Target target;
        const KARStatus status = support.GetTarget(target);
        EXPECT_EQ(status, target ? KARSuccess : KARFailure);
        return target;
    }

    EnvironmentVariable dumpOutputs{"MOT_DUMP_OUTPUTS", nullptr};
    QOBSharedHandle<KARMPBody> body = KARMPBody::create(L"body");
    QOBSharedHandle<KARMPSupport> support = KARMPSupport::create(L"support");
    KARMPEntityTable entities;
};

TEST_F(Support, KeepsTheTargetThatItIsGivenOrNone)
{
    EXPECT_FALSE(TargetOf(*support));
    EXPECT_EQ(support->SetTarget(body), KARSuccess);
    EXPECT_EQ(TargetOf(*support), body);
    const auto other = KARMPAnalysisStep::create(L"step");
    EXPECT_EQ(support->SetTarget(other), KARSuccess);
    EXPECT_EQ(TargetOf(*support), other);
    EXPECT_EQ(support->SetTarget({}), KARSuccess);
    EXPECT_FALSE(TargetOf(*support));
}

TEST_F(Support, WritesItsTargetOnlyWhenThereIsOne)
{
    TestSerializer root;
    EXPECT_EQ(support->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
    support->SetTarget(body);
    TestSerializer with;
    EXPECT_EQ(support->Serialize(&with), KARSuccess);
    ASSERT_EQ(with.Child(0).GetElementCount(), 1U);
    EXPECT_EQ(with.Text(L"Support/Target/@id"), L"B1");
    EXPECT_EQ(with.Text(L"Support/Target/@name"), L"body");
}

TEST_F(Support, ReadsItsTargetByTheIdentifier)
{
    TestDeserializer root;
    Element(root).Add(L"Target").Attribute(L"id", L"B1").Attribute(L"name", L"another");
    const auto read = KARMPSupport::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(TargetOf(*read), body);
}

TEST_F(Support, KeepsNoTargetWhereTheDocumentHasNone)
{
    for (const bool isUnknown : {false, true}) {
        const auto read = KARMPSupport::create(L"");
        TestDeserializer root;
        TestDeserializer& element = Element(root);
        if (isUnknown)
            element.Reference(L"Target", L"unknown");
        EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
        EXPECT_FALSE(TargetOf(*read));
    }
}

TEST_F(Support, ReportsATargetWithoutAnIdentifier)
{
    const auto read = KARMPSupport::create(L"");
    TestDeserializer root;
    Element(root).Add(L"Target");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_FALSE(TargetOf(*read));
}

TEST_F(Support, OfAResultIsLeftOutOfDocumentsUnlessTheyShallHaveResults)
{
    support->SetOwner("Output");
    support->SetTarget(body);
    TestSerializer without;
    EXPECT_EQ(support->Serialize(&without), KARSuccess);
    EXPECT_EQ(support->Serialize(nullptr), KARSuccess);
    EXPECT_EQ(without.GetElementCount(), 0U);

    dumpOutputs.Set("");
    TestSerializer with;
    EXPECT_EQ(support->Serialize(&with), KARSuccess);
    EXPECT_EQ(with.Text(L"Support/Target/@id"), L"B1");
    EXPECT_EQ(support->Serialize(nullptr), KARFailure);
    ExpectReports(1);

    dumpOutputs.Set(nullptr);
    support->SetOwner("output");
    EXPECT_EQ(support->Serialize(&without), KARSuccess);
    EXPECT_EQ(without.GetElementCount(), 1U) << "the word is another one";
}

TEST_F(Support, OfAResultIsNotReadUnlessDocumentsShallHaveResults)
{
    const auto read = KARMPSupport::create(L"name");
    read->SetOwner("Output");
    TestDeserializer root;
    Element(root).Reference(L"Target", L"B1");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(read->Deserialize(nullptr, entities), KARSuccess);
    EXPECT_FALSE(TargetOf(*read));
    EXPECT_EQ(read->getEntityName(), L"name");
    dumpOutputs.Set("0");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(TargetOf(*read), body);
    EXPECT_EQ(read->getEntityName(), L"read");
}

TEST_F(Support, CopiesItsOwnerAndNoTarget)
{
    support->SetOwner("Output");
    support->SetTarget(body);
    const auto copy = KARMPSupport::clone(support, QOBDynamicObject::CopyShallow);
    EXPECT_FALSE(TargetOf(*copy));
    TestSerializer root;
    EXPECT_EQ(copy->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U) << "the copy belongs to the results as well";
}

TEST_F(Support, DropsItsTargetWhenItIsDestroyed)
{
    support->SetTarget(body);
    const auto other = support;
    KARMPSupport::destroy(support);
    EXPECT_FALSE(TargetOf(*other));
}

} // namespace
