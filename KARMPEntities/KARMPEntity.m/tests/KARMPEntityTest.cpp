#include "KARMPEntity.h"
#include "AllocationCounter.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "KARUuid.h"
#include "ModelObject.h"
#include "QOBBasicWorld.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestEntity.h"

namespace {

class Entity : public KARMPTestFixture
{
protected:
    QOBSharedHandle<TestEntity> entity = TestEntity::create(L"entity");
};

TEST_F(Entity, IsNewlyActiveWithoutParentListsAndId)
{
    EXPECT_TRUE(entity->IsActive());
    QOBSharedHandle<KARMPEntity> parent = entity;
    EXPECT_EQ(entity->GetParentEntity(parent), KARFailure);
    EXPECT_FALSE(parent);
    EXPECT_EQ(entity->GetParameterCount(), 0);
    EXPECT_EQ(entity->GetStateCount(), 0);
    EXPECT_EQ(entity->GetOutputCount(), 0);
    EXPECT_EQ(entity->GetAggregatedElementCount(), 0);
    EXPECT_TRUE(entity->GetID().IsEmpty());
    EXPECT_EQ(entity->GetUniqueId(), nullptr);
    EXPECT_EQ(entity->IsThreadSafe(), 1);
    KARMPBuildingMode::Enum mode = {};
    EXPECT_EQ(entity->GetBuildingMode(mode), KARSuccess);
    EXPECT_EQ(mode, 0);
}

TEST_F(Entity, KeepsItsPlainValues)
{
    const KARUuid uuid;
    EXPECT_EQ(entity->SetBuildingMode(static_cast<KARMPBuildingMode::Enum>(2)), KARSuccess);
    EXPECT_EQ(entity->SetID("application text"), KARSuccess);
    EXPECT_EQ(entity->SetUniqueId(&uuid), KARSuccess);
    KARMPBuildingMode::Enum mode = {};
    entity->GetBuildingMode(mode);
    EXPECT_EQ(mode, 2);
    EXPECT_EQ(entity->GetID(), "application text");
    EXPECT_EQ(entity->GetUniqueId(), &uuid);
}

template <class T>
struct ListOf;
#define LIST_OF(Attribute, Add, Get, Count)                                                        \
    template <>                                                                                    \
    struct ListOf<Attribute>                                                                       \
    {                                                                                              \
        static KARStatus add(KARMPEntity& e, const QOBSharedHandle<Attribute>& h)                  \
        {                                                                                          \
            return e.Add(h);                                                                       \
        }                                                                                          \
        static KARStatus get(KARMPEntity& e, int i, QOBSharedHandle<Attribute>& h)                 \
        {                                                                                          \
            return e.Get(i, h);                                                                    \
        }                                                                                          \
        static int count(KARMPEntity& e) { return e.Count(); }                                     \
    }
LIST_OF(KARMPParameter, AddParameter, GetParameter, GetParameterCount);
LIST_OF(KARMPState, AddState, GetState, GetStateCount);
LIST_OF(KARMPOutput, AddOutput, GetOutput, GetOutputCount);

template <class T>
class EntityList : public KARMPTestFixture
{
protected:
    QOBSharedHandle<TestEntity> entity = TestEntity::create(L"entity");
};
using ListTypes = ::testing::Types<KARMPParameter, KARMPState, KARMPOutput>;
TYPED_TEST_SUITE(EntityList, ListTypes);

TYPED_TEST(EntityList, SecondAddOfTheSameEntryChangesNothing)
{
    using List = ListOf<TypeParam>;
    const auto entry = TypeParam::create(L"entry");
    EXPECT_EQ(List::add(*this->entity, entry), KARSuccess);
    EXPECT_EQ(List::add(*this->entity, entry), KARUnchanged);
    EXPECT_EQ(List::count(*this->entity), 1);
}

TYPED_TEST(EntityList, AddingANullHandleFailsAndReports)
{
    EXPECT_EQ(ListOf<TypeParam>::add(*this->entity, {}), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(EntityList, IndexOutsideTheListGivesANullHandleWithoutAReport)
{
    using List = ListOf<TypeParam>;
    const auto entry = TypeParam::create(L"entry");
    List::add(*this->entity, entry);
    auto handle = entry;
    EXPECT_EQ(List::get(*this->entity, -1, handle), KARFailure);
    EXPECT_FALSE(handle);
    handle = entry;
    EXPECT_EQ(List::get(*this->entity, 1, handle), KARFailure);
    EXPECT_FALSE(handle);
    EXPECT_EQ(List::get(*this->entity, 0, handle), KARSuccess);
    EXPECT_EQ(handle, entry);
}

TEST_F(Entity, AggregatingAnElementMakesItTheParent)
{
    const auto element = TestEntity::create(L"element");
    EXPECT_EQ(entity->AddAggregatedElement(element), KARSuccess);
    EXPECT_EQ(entity->AddAggregatedElement(element), KARUnchanged);
    EXPECT_EQ(entity->AddAggregatedElement({}), KARFailure);
    ExpectReports(1);
    QOBSharedHandle<KARMPEntity> handle;
    EXPECT_EQ(element->GetParentEntity(handle), KARSuccess);
    EXPECT_EQ(handle, entity);
    EXPECT_EQ(entity->GetAggregatedElementCount(), 1);
    for (const int outside : {-1, 1}) {
        EXPECT_EQ(entity->GetAggregatedElement(outside, handle), KARFailure);
        EXPECT_FALSE(handle);
    }
    EXPECT_EQ(entity->GetAggregatedElement(0, handle), KARSuccess);
    EXPECT_EQ(handle, element);

    const auto other = TestEntity::create(L"other");
    EXPECT_EQ(other->AddAggregatedElement(element), KARSuccess);
    element->GetParentEntity(handle);
    EXPECT_EQ(handle, other);
    // It is listed already, so that its parent stays.
    EXPECT_EQ(entity->AddAggregatedElement(element), KARUnchanged);
    element->GetParentEntity(handle);
    EXPECT_EQ(handle, other);
    entity->orphanObject();
    other->orphanObject();
}

TEST_F(Entity, CycleOfParentAndElementIsFreedOnceEitherIsOrphaned)
{
    const int before = TestEntity::Alive();
    {
        const auto outer = TestEntity::create(L"outer");
        const auto inner = TestEntity::create(L"inner");
        outer->AddAggregatedElement(inner);
        inner->orphanObject();
    }
    EXPECT_EQ(TestEntity::Alive(), before);
}

// An entity whose class has links of its own to tear down.
class Linked : public KARMPEntity
{
public:
    std::vector<std::string> steps;

protected:
    KARStatus RemoveParent() override
    {
        steps.push_back("RemoveParent with " + std::to_string(GetParameterCount()));
        return KARFailure;
    }
    void ClearContainers() override
    {
        steps.push_back("ClearContainers with " + std::to_string(GetParameterCount()));
    }
};

TEST_F(Entity, IsOrphanedOnceByItsClassAndThenByItsBase)
{
    const QOBSharedHandle<Linked> linked(new Linked);
    linked->AddParameter(KARMPParameter::create(L"p"));
    linked->SetParentEntity(entity);
    linked->orphanObject();
    EXPECT_TRUE(linked->isOrphaned());
    const std::vector<std::string> once{"RemoveParent with 1", "ClearContainers with 1"};
    EXPECT_EQ(linked->steps, once);
    EXPECT_EQ(linked->GetParameterCount(), 0);
    QOBSharedHandle<KARMPEntity> parent;
    EXPECT_EQ(linked->GetParentEntity(parent), KARFailure);

    linked->AddParameter(KARMPParameter::create(L"late"));
    linked->orphanObject();
    EXPECT_EQ(linked->steps, once);
    EXPECT_EQ(linked->GetParameterCount(), 1);
}

TEST_F(Entity, RefusesANullParent)
{
    const auto parent = TestEntity::create(L"parent");
    EXPECT_EQ(entity->SetParentEntity(parent), KARSuccess);
    EXPECT_EQ(entity->SetParentEntity({}), KARFailure);
    ExpectReports(1);
    QOBSharedHandle<KARMPEntity> handle;
    EXPECT_EQ(entity->GetParentEntity(handle), KARSuccess);
    EXPECT_EQ(handle, parent);
}

TEST_F(Entity, ActivatingAnActiveEntityDoesNotReachTheLoader)
{
    LoaderRecord record;
    entity->SetLoader(new RecordingEntityLoader(record));
    EXPECT_EQ(entity->Activate(), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
    record.answer = KARNotImplemented;
    EXPECT_EQ(entity->Deactivate(), KARNotImplemented);
    EXPECT_FALSE(entity->IsActive());
    EXPECT_EQ(entity->Deactivate(), KARSuccess);
    EXPECT_EQ(entity->Activate(), KARNotImplemented);
    EXPECT_EQ(record.calls, (std::vector<std::string>{"OnDeactivate", "OnActivate"}));
    entity.detach();
}

TEST_F(Entity, WithoutALoaderActivatesWithSuccess)
{
    EXPECT_EQ(entity->Deactivate(), KARSuccess);
    EXPECT_EQ(entity->Activate(), KARSuccess);
    EXPECT_TRUE(entity->IsActive());
}

TEST_F(Entity, SecondLoaderLeavesTheFirstAliveAndOnlyTheLastIsDeleted)
{
    LoaderRecord first;
    LoaderRecord last;
    auto* loader = new RecordingEntityLoader(first);
    EXPECT_EQ(entity->SetLoader(loader), KARSuccess);
    EXPECT_EQ(entity->SetLoader(new RecordingEntityLoader(last)), KARSuccess);
    EXPECT_EQ(first.deleted, 0);
    KARIMPEntityLoader* held = loader;
    EXPECT_EQ(entity->GetLoader(held), KARSuccess);
    EXPECT_NE(held, loader);
    entity.detach();
    EXPECT_EQ(first.deleted, 0);
    EXPECT_EQ(last.deleted, 1);
    delete loader;
}

TEST_F(Entity, DeletesItsLoaderBeforeItReleasesItsModelObject)
{
    class LastLook : public KARIMPEntityLoader
    {
    public:
        LastLook(const ModelObject& object, unsigned int& released)
            : m_object(object), m_released(released)
        {}
        ~LastLook() override { m_released = m_object.Released(); }
        KARStatus OnActivate() override { return KARSuccess; }
        KARStatus OnDeactivate() override { return KARSuccess; }

    private:
        const ModelObject& m_object;
        unsigned int& m_released;
    };
    ModelObject object;
    unsigned int releasedBefore = 7;
    entity->SetModelObject(&object);
    entity->SetLoader(new LastLook(object, releasedBefore));
    entity.detach();
    EXPECT_EQ(releasedBefore, 0U);
    EXPECT_EQ(object.Released(), 1U);
}

TEST_F(Entity, CountsItsModelObject)
{
    ModelObject first;
    ModelObject second;
    KARBaseUnknown* object = &first;
    EXPECT_EQ(entity->GetModelObject(object), KARFailure);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(entity->SetModelObject(&first), KARSuccess);
    EXPECT_EQ(entity->SetModelObject(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(first.Held(), 1U);
    EXPECT_EQ(entity->SetModelObject(&first), KARSuccess);
    EXPECT_EQ(first.Held(), 1U);
    EXPECT_EQ(entity->GetModelObject(object), KARSuccess);
    EXPECT_EQ(object, &first);
    EXPECT_EQ(first.Held(), 2U);
    EXPECT_EQ(entity->SetModelObject(&second), KARSuccess);
    EXPECT_EQ(first.Held(), 1U);
    entity.detach();
    EXPECT_EQ(second.Held(), 0U);
}

TEST_F(Entity, BorrowsItsVisualObjectButGivesAReference)
{
    ModelObject visual;
    KARBaseUnknown* object = &visual;
    EXPECT_EQ(entity->GetMPVisuObject(object), KARSuccess);
    EXPECT_EQ(object, nullptr);
    const KARBaseUnknown* borrowed = &visual;
    EXPECT_EQ(entity->SetMPVisuObject(borrowed), KARSuccess);
    EXPECT_EQ(visual.Added(), 0U);
    EXPECT_EQ(entity->GetMPVisuObject(object), KARSuccess);
    EXPECT_EQ(visual.Added(), 1U);
    entity.detach();
    EXPECT_EQ(visual.Released(), 0U);
}

TEST_F(Entity, OutsideAWorldAnswersWithoutAReportButHasNoWorld)
{
    bool inWorld = true;
    EXPECT_EQ(entity->IsInWorld(inWorld), KARSuccess);
    EXPECT_FALSE(inWorld);
    QOBSharedHandle<KARMPWorld> world;
    EXPECT_EQ(entity->GetWorld(world), KARFailure);
    ExpectReports(1);
}

TEST_F(Entity, UnderABasicWorldWithoutTheExtensionHasNoWorld)
{
    const auto basicWorld = QOBBasicWorld::create(L"world");
    basicWorld->addLogicalChild(entity);
    bool inWorld = false;
    EXPECT_EQ(entity->IsInWorld(inWorld), KARSuccess);
    EXPECT_TRUE(inWorld);
    QOBSharedHandle<KARMPWorld> world;
    EXPECT_EQ(entity->GetWorld(world), KARFailure);
    ExpectReports(1);
}

// An extension that passes for a world.
class Impostor : public QOBExtensionObject
{
public:
    const QOBUUID& getClassID() const override { return KARMPWorld::ClassID(); }
};

TEST_F(Entity, ThrowsWhenTheWorldOfTheGuidIsOfAnotherClass)
{
    const auto basicWorld = QOBBasicWorld::create(L"world");
    const QOBSharedHandle<Impostor> impostor(new Impostor);
    impostor->bindExtension(basicWorld);
    basicWorld->addLogicalChild(entity);
    QOBSharedHandle<KARMPWorld> world;
    EXPECT_THROW(entity->GetWorld(world), QOBEInvalidCast);
    EXPECT_FALSE(world);
}

TEST_F(Entity, FindsItsWorldThroughTheBasicWorldAboveIt)
{
    const auto basicWorld = QOBBasicWorld::create(L"world");
    const auto world = KARMPWorld::create(basicWorld);
    basicWorld->addLogicalChild(entity);
    QOBSharedHandle<KARMPWorld> found;
    EXPECT_EQ(entity->GetWorld(found), KARSuccess);
    EXPECT_EQ(found, world);
}

TEST_F(Entity, NotifyUpdatePostsEventNine)
{
    const auto owner = TestEntity::create(L"owner");
    std::vector<QOBNotificationAgent::Events> heard;
    const QOBNotificationFunctor functor(*owner,
                                         [&heard](auto, auto events) { heard.push_back(events); });
    entity->addSubscriber(functor, QOBNotificationAgent::Events().set());
    EXPECT_EQ(entity->NotifyUpdate(), KARSuccess);
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard.front(), QOBNotificationAgent::Events().set(9));
}

TEST_F(Entity, CopyTakesThePlainValuesAndNothingElse)
{
    ModelObject model;
    ModelObject visual;
    LoaderRecord record;
    const KARUuid uuid;
    const auto parent = TestEntity::create(L"parent");
    entity->SetBuildingMode(static_cast<KARMPBuildingMode::Enum>(1));
    entity->SetLoader(new RecordingEntityLoader(record));
    entity->Deactivate();
    entity->SetModelObject(&model);
    entity->SetMPVisuObject(&visual);
    entity->SetIdentifier(L"id7");
    entity->SetParentEntity(parent);
    entity->AddParameter(KARMPParameter::create(L"p"));
    entity->AddState(KARMPState::create(L"s"));
    entity->AddOutput(KARMPOutput::create(L"o"));
    auto element = TestEntity::create(L"element");
    entity->AddAggregatedElement(element);
    entity->SetID("text");
    entity->SetUniqueId(&uuid);

    auto copy = TestEntity::clone(entity, QOBDynamicObject::CopyDefault);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getReferenceCount(), 1U);
    EXPECT_EQ(copy->getEntityName(), L"entity");
    KARMPBuildingMode::Enum mode = {};
    copy->GetBuildingMode(mode);
    EXPECT_EQ(mode, 1);
    KARIMPEntityLoader* loader = nullptr;
    copy->GetLoader(loader);
    EXPECT_EQ(loader, nullptr);
    EXPECT_FALSE(copy->IsActive());
    EXPECT_EQ(model.Held(), 2U);
    KARBaseUnknown* object = nullptr;
    copy->GetMPVisuObject(object);
    EXPECT_EQ(object, &visual);
    EXPECT_EQ(visual.Added(), 1U);
    std::wstring identifier;
    EXPECT_EQ(copy->GetIdentifier(identifier), KARSuccess);
    EXPECT_NE(identifier, L"id7");
    QOBSharedHandle<KARMPEntity> copiedParent;
    copy->GetParentEntity(copiedParent);
    EXPECT_EQ(copiedParent, parent);
    EXPECT_EQ(copy->GetParameterCount() + copy->GetStateCount() + copy->GetOutputCount() +
                  copy->GetAggregatedElementCount(),
              0);
    EXPECT_EQ(copy->GetID(), "text");
    EXPECT_EQ(copy->GetUniqueId(), &uuid);
    copy.detach();
    TestEntity::destroy(element);
    TestEntity::destroy(entity);
    EXPECT_EQ(model.Held(), 0U);
}

TEST_F(Entity, ClearingWhatItNeverHadTakesNoMemory)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations are not counted in this build";
    const AllocationCounter counter;
    EXPECT_EQ(entity->SetMPVisuObject(nullptr), KARSuccess);
    EXPECT_EQ(entity->SetUniqueId(nullptr), KARSuccess);
    EXPECT_EQ(entity->GetParameterCount() + entity->GetStateCount() + entity->GetOutputCount() +
                  entity->GetAggregatedElementCount(),
              0);
    EXPECT_EQ(counter.Count(), 0U);
}

// A large model is waiting for memory most of the time, so that what an entity holds is its cost.
TEST_F(Entity, IsSmall)
{
    EXPECT_LE(sizeof(KARMPEntity), 112U);
}

TEST_F(Entity, ClearsTheVisualObjectAndTheUniqueIdThatWereSet)
{
    ModelObject visual;
    const KARUuid uuid;
    entity->SetMPVisuObject(&visual);
    entity->SetUniqueId(&uuid);
    entity->SetMPVisuObject(nullptr);
    entity->SetUniqueId(nullptr);
    KARBaseUnknown* object = &visual;
    EXPECT_EQ(entity->GetMPVisuObject(object), KARSuccess);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(entity->GetUniqueId(), nullptr);
}

TEST_F(Entity, StoresItsNameNarrowAndGivesItWide)
{
    EXPECT_EQ(entity->getStoredName().Narrow(), "entity");
    EXPECT_EQ(entity->getEntityName(), L"entity");
    entity->setEntityName(L"K\u00F6rper");
    EXPECT_FALSE(entity->getStoredName().IsNarrow());
    EXPECT_EQ(entity->getEntityName(), L"K\u00F6rper");
}

} // namespace
