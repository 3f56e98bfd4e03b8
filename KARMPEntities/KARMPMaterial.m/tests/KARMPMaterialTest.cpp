#include "KARMPMaterial.h"
#include "ConcreteEntity.h"
#include "KARMPEntityTable.h"
#include "KARMPGenericFactory.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

/// What an application derives: a material with a density.
class Steel : public KARMPMaterial
{
    KARMP_ENTITY(Steel, KARMPMaterial)

public:
    double density = 7850.0;

protected:
    Steel();
    Steel(const Steel& source, CopyMode mode);
    ~Steel() override;
};
KARMP_DEFINE_ENTITY(Steel, "1F2D8C61-47A5-4F0B-9C0E-5B1E6B7C7A11");
Steel::Steel() = default;
Steel::Steel(const Steel& source, CopyMode mode) : Super(source, mode), density(source.density) {}
Steel::~Steel() = default;

namespace {

class Material : public KARMPTestFixture
{
protected:
    QOBSharedHandle<Steel> steel = Steel::create(L"steel");
    KARMPEntityTable entities;
};

TEST_F(Material, IsMadeByDerivationAndNotByTheFactory)
{
    QOBSharedHandle<KARMPEntity> entity;
    EXPECT_EQ(KARMPFactory::Create("KARMPMaterial", entity), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(entity);
    EXPECT_TRUE(steel->isDerivedFrom(KARMPMaterial::ClassInfo()));
    const auto copy = Steel::clone(steel, QOBDynamicObject::CopyShallow);
    EXPECT_EQ(copy->getEntityName(), L"steel");
    EXPECT_EQ(copy->density, 7850.0);
}

TEST_F(Material, WritesNothing)
{
    TestSerializer root;
    EXPECT_EQ(steel->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(root.GetAttributeCount(), 0U);
    EXPECT_EQ(steel->Serialize(nullptr), KARFailure);
    ExpectReports(1);
}

TEST_F(Material, ReadsNothing)
{
    TestDeserializer root(L"Material");
    root.Attribute(L"id", L"read").Attribute(L"name", L"read").Attribute(L"isActive", L"no");
    EXPECT_EQ(steel->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(steel->getEntityName(), L"steel");
    EXPECT_TRUE(steel->IsActive());
    EXPECT_EQ(steel->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Material, LeavesAnEmptyListInAWorldsDocumentAndDoesNotComeBack)
{
    const auto basicWorld = QOBBasicWorld::create(L"basic");
    const auto world = KARMPWorld::create(basicWorld);
    EXPECT_EQ(world->Add<KARMPMaterial>(steel), KARSuccess);
    TestSerializer root;
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    const TestSerializer* const materials = root.Find(L"World/Materials");
    ASSERT_NE(materials, nullptr);
    EXPECT_EQ(materials->GetElementCount(), 0U);
    for (const bool asText : {false, true}) {
        const auto otherBasic = QOBBasicWorld::create(L"other");
        const auto other = KARMPWorld::create(otherBasic);
        EXPECT_EQ(other->Deserialize(TestDeserializer::From(root, {.asText = asText}).get()),
                  KARSuccess);
        EXPECT_EQ(other->Count<KARMPMaterial>(), 0);
    }
}

} // namespace
