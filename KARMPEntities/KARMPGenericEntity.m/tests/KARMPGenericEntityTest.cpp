#include "KARMPGenericEntity.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

class GenericEntity : public KARMPTestFixture
{
protected:
    static TestDeserializer& Element(TestDeserializer& root)
    {
        return root.Add(L"GenericEntity")
            .Attribute(L"id", L"read")
            .Attribute(L"name", L"read")
            .Attribute(L"isActive", L"yes");
    }

    QOBSharedHandle<KARMPGenericEntity> entity = KARMPGenericEntity::create(L"generic");
    KARMPEntityTable entities;
};

TEST_F(GenericEntity, KeepsACategoryThatIsEmptyAtFirst)
{
    EXPECT_EQ(entity->GetCategoryId(), "");
    entity->SetCategoryId("category");
    EXPECT_EQ(entity->GetCategoryId(), "category");
    const auto copy = KARMPGenericEntity::clone(entity, QOBDynamicObject::CopyShallow);
    EXPECT_EQ(copy->GetCategoryId(), "category");
}

TEST_F(GenericEntity, WritesItsCategoryOnItsElementAlways)
{
    TestSerializer empty;
    EXPECT_EQ(entity->Serialize(&empty), KARSuccess);
    EXPECT_EQ(empty.Text(L"GenericEntity/@categoryID"), L"");
    entity->SetCategoryId("caf\xC3\xA9");
    TestSerializer root;
    EXPECT_EQ(entity->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"GenericEntity/@categoryID"), L"caf\u00e9");
    EXPECT_FALSE(root.Has(L"@categoryID"));
}

TEST_F(GenericEntity, ReadsItsCategoryFromTheElementWhenItIsGivenThat)
{
    TestDeserializer root;
    root.Attribute(L"categoryID", L"above");
    TestDeserializer& element = Element(root).Attribute(L"categoryID", L"caf\u00e9");
    EXPECT_EQ(entity->Deserialize(&element, entities), KARSuccess);
    EXPECT_EQ(entity->GetCategoryId(), "caf\xC3\xA9");
}

TEST_F(GenericEntity, ReadsItsCategoryFromTheNodeAboveWhenItIsGivenThat)
{
    TestDeserializer root;
    root.Attribute(L"categoryID", L"above");
    Element(root).Attribute(L"categoryID", L"within");
    EXPECT_EQ(entity->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(entity->GetCategoryId(), "above");
    EXPECT_EQ(entity->getEntityName(), L"read");
}

TEST_F(GenericEntity, ReportsAMissingCategoryAndKeepsItsOwn)
{
    TestDeserializer root;
    Element(root).Attribute(L"categoryID", L"within");
    entity->SetCategoryId("own");
    EXPECT_EQ(entity->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(entity->GetCategoryId(), "own");
}

TEST_F(GenericEntity, ReadsNoCategoryWithoutItsElement)
{
    TestDeserializer root;
    root.Attribute(L"categoryID", L"above");
    EXPECT_EQ(entity->Deserialize(&root, entities), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(entity->GetCategoryId(), "");
}

} // namespace
