#include "KARMPActuator.h"
#include "KARMPGenericFactory.h"
#include "KARMPParameter.h"
#include "KARMPTestFixture.h"
#include "TestEntity.h"

#include <algorithm>

namespace {

class Identity : public KARMPTestFixture
{};

class Registry : public KARMPGenericFactoryBase
{
public:
    using KARMPGenericFactoryBase::CreateInstance;
    using KARMPGenericFactoryBase::GetMap;
    using KARMPGenericFactoryBase::Register;
};

TEST_F(Identity, GivesNameRecordAndGuidOfTheClassAndOfTheObject)
{
    const QOBSharedHandle<KARMPEntity> entity = TestEntity::create(L"entity");
    EXPECT_EQ(TestEntity::ClassName(), "TestEntity");
    EXPECT_EQ(entity->getClassName(), "TestEntity");
    EXPECT_EQ(&entity->getClassInfo(), &TestEntity::ClassInfo());
    EXPECT_EQ(&entity->getClassID(), &TestEntity::ClassID());
    EXPECT_EQ(TestEntity::ClassInfo().getSize(), sizeof(TestEntity));
    EXPECT_EQ(KARMPEntity::ClassID().getText(), "980325BD-374E-4168-93FB-710D2C2E14A2");
    EXPECT_EQ(KARMPEntity::ClassInfo().getParent(), &QOBBasicEntity::ClassInfo());
}

TEST_F(Identity, TellsDerivedFromAndInstanceOfApart)
{
    const QOBSharedHandle<KARMPEntity> entity = TestEntity::create(L"entity");
    EXPECT_TRUE(entity->isDerivedFrom(KARMPEntity::ClassInfo()));
    EXPECT_TRUE(entity->isDerivedFrom(QOBBasicEntity::ClassInfo()));
    EXPECT_FALSE(entity->isInstanceOf(KARMPEntity::ClassInfo()));
    EXPECT_TRUE(entity->isInstanceOf(TestEntity::ClassInfo()));
    EXPECT_FALSE(entity->isDerivedFrom(KARMPActuator::ClassInfo()));
}

TEST_F(Identity, CreateGivesTheNameWhileTheFactoryGivesAnEmptyOne)
{
    EXPECT_EQ(TestEntity::create(L"crank")->getEntityName(), L"crank");
    QOBSharedHandle<KARMPEntity> entity;
    EXPECT_EQ(KARMPFactory::Create("TestEntity", entity), KARSuccess);
    ASSERT_TRUE(entity);
    EXPECT_EQ(entity->getEntityName(), L"");
    EXPECT_EQ(entity->getClassName(), "TestEntity");
    EXPECT_EQ(entity->getReferenceCount(), 1U);
}

TEST_F(Identity, ClassThatIsNotRegisteredGivesANullHandleAndAFailedCheck)
{
    EXPECT_FALSE(Registry::CreateInstance("KARMPActuator"));
    QOBSharedHandle<KARMPEntity> entity = TestEntity::create(L"entity");
    EXPECT_EQ(KARMPFactory::Create("KARMPActuator", entity), KARFailure);
    EXPECT_FALSE(entity);
    entity = TestEntity::create(L"entity");
    EXPECT_EQ(KARMPFactory::Create(KARMPFactory::Class("KARMPActuator"), entity), KARFailure);
    EXPECT_FALSE(entity);
    ExpectReports(2);
}

TEST_F(Identity, FactoryNamesCompareExactly)
{
    EXPECT_TRUE(Registry::CreateInstance("TestEntity"));
    EXPECT_FALSE(Registry::CreateInstance("testentity"));
    EXPECT_FALSE(Registry::CreateInstance("TestEntity "));
    EXPECT_FALSE(Registry::CreateInstance(""));
}

TEST_F(Identity, SecondRegistrationReplacesTheFirst)
{
    static int made = 0;
    const KARMPFactory::Class lookedUpBefore("TestEntity");
    const auto original = Registry::GetMap().at("TestEntity");
    Registry::Register("TestEntity", [] {
        ++made;
        return QOBSharedHandle<KARMPEntity>(TestEntity::create(L"other"));
    });
    EXPECT_EQ(Registry::CreateInstance("TestEntity")->getEntityName(), L"other");
    EXPECT_EQ(made, 1);
    QOBSharedHandle<KARMPEntity> entity;
    EXPECT_EQ(KARMPFactory::Create(lookedUpBefore, entity), KARSuccess);
    EXPECT_EQ(entity->getEntityName(), L"other");
    EXPECT_EQ(made, 2);
    Registry::Register("TestEntity", original);
    EXPECT_EQ(Registry::CreateInstance("TestEntity")->getEntityName(), L"");
    EXPECT_EQ(made, 2);
}

TEST_F(Identity, FactoryListsItsClasses)
{
    const std::vector<std::string> names = KARMPFactory::GetClassNames();
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::count(names.begin(), names.end(), "TestEntity"), 1);
    EXPECT_EQ(std::count(names.begin(), names.end(), "KARMPEntity"), 0);
}

TEST_F(Identity, DestroyEmptiesTheHandleAndOrphansTheReferentForOthers)
{
    auto entity = TestEntity::create(L"entity");
    const auto other = entity;
    entity->AddParameter(KARMPParameter::create(L"p"));
    TestEntity::destroy(entity);
    EXPECT_FALSE(entity);
    ASSERT_TRUE(other);
    EXPECT_TRUE(other->isOrphaned());
    EXPECT_EQ(other->GetParameterCount(), 0);
    EXPECT_EQ(other->getEntityName(), L"entity");
}

// What classes that derive from an entity's have on top.
class ForHeirs : public KARMPEntity
{
public:
    using KARMPEntity::CloneObject;
    using KARMPEntity::DestroyObject;
};

TEST_F(Identity, DestroyObjectOrphansTheReferentAndLeavesTheHandle)
{
    const auto entity = TestEntity::create(L"entity");
    ForHeirs::DestroyObject(entity);
    EXPECT_TRUE(entity->isOrphaned());
    EXPECT_EQ(entity->getReferenceCount(), 1U);
    ForHeirs::DestroyObject({});
}

TEST_F(Identity, CloneObjectGivesACopyWithOneReference)
{
    const auto entity = TestEntity::create(L"entity");
    const auto copy = ForHeirs::CloneObject(entity, QOBDynamicObject::CopyDefault);
    ASSERT_TRUE(copy);
    EXPECT_NE(copy, entity);
    EXPECT_EQ(copy->getReferenceCount(), 1U);
    EXPECT_EQ(entity->getReferenceCount(), 1U);
}

TEST_F(Identity, DestroyOfANullHandleDoesNothing)
{
    QOBSharedHandle<TestEntity> null;
    TestEntity::destroy(null);
    EXPECT_FALSE(null);
}

TEST_F(Identity, CloneOfANullHandleIsNull)
{
    EXPECT_FALSE(TestEntity::clone({}, QOBDynamicObject::CopyDefault));
}

TEST_F(Identity, CloneThroughABaseKeepsTheDynamicClass)
{
    const QOBSharedHandle<KARMPEntity> entity = TestEntity::create(L"entity");
    const auto copy = KARMPEntity::clone(entity, QOBDynamicObject::CopyDeep);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getClassName(), "TestEntity");
    EXPECT_NE(copy, entity);
}

TEST_F(Identity, ReplicatedEntityIsADefaultOneWithOneReference)
{
    const auto entity = TestEntity::create(L"entity");
    QOBSharedObject* raw = entity->replicateObject();
    ASSERT_NE(raw, nullptr);
    const QOBSharedHandle<TestEntity> replica(raw);
    EXPECT_EQ(raw->removeReference(), 1U);
    EXPECT_EQ(replica->getEntityName(), L"");
}

TEST_F(Identity, EntitiesAreFreedWithTheLastHandle)
{
    const int before = TestEntity::Alive();
    {
        const auto entity = TestEntity::create(L"entity");
        const auto copy = TestEntity::clone(entity, QOBDynamicObject::CopyDefault);
        EXPECT_EQ(TestEntity::Alive(), before + 2);
    }
    EXPECT_EQ(TestEntity::Alive(), before);
}

} // namespace
