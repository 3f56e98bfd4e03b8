#include "AllocationCounter.h"
#include "ObjectModelTestClasses.h"
#include "QOBBasicBody3D.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <vector>

namespace {

TEST(Extension, AndHostAreKeptByAReferenceToEither)
{
    const int before = Plan::s_living;
    QOBSharedHandle<QOBBasicWorld> world = QOBBasicWorld::create(L"world");
    QOBSharedHandle<Plan> plan(new Plan);
    EXPECT_EQ(plan->bindExtension(world), KARSuccess);

    const QOBBasicWorld* host = world.get();
    world.detach();
    EXPECT_EQ(plan->getExtendible().get(), host);

    world = QOBSharedHandle<QOBBasicWorld>(plan->getExtendible());
    plan.detach();
    EXPECT_TRUE(world->hasExtension(Plan::ClassID()));
    EXPECT_TRUE(world->getExtension(Plan::ClassID()));
    EXPECT_EQ(Plan::s_living, before + 1);

    world.detach();
    EXPECT_EQ(Plan::s_living, before);
}

TEST(Extension, GoesWithItsHostWhenItWasNeverReferredTo)
{
    const int before = Plan::s_living;
    {
        const auto world = QOBBasicWorld::create(L"world");
        auto* plan = new Plan;
        EXPECT_EQ(plan->bindExtension(world), KARSuccess);
        EXPECT_EQ(world->getReferenceCount(), 1U);
    }
    EXPECT_EQ(Plan::s_living, before);
}

TEST(Extension, MayHandItselfOutWhileItsHostGoes)
{
    const int before = Plan::s_living;
    {
        const auto world = QOBBasicWorld::create(L"world");
        auto* plan = new Plan;
        plan->atEnd = [](Plan& self) { const QOBSharedHandle<Plan> handle(&self); };
        EXPECT_EQ(plan->bindExtension(world), KARSuccess);
    }
    EXPECT_EQ(Plan::s_living, before);
}

TEST(Extension, IsBoundOnceAndToAHostOnly)
{
    const auto first = QOBBasicWorld::create(L"first");
    const auto second = QOBBasicWorld::create(L"second");
    const QOBSharedHandle<Plan> plan(new Plan);
    EXPECT_EQ(plan->bindExtension({}), KARFailure);
    EXPECT_FALSE(plan->getExtendible());
    EXPECT_EQ(plan->bindExtension(first), KARSuccess);
    EXPECT_EQ(plan->bindExtension(second), KARFailure);
    EXPECT_FALSE(second->hasExtension(Plan::ClassID()));
    EXPECT_FALSE(second->getExtension(Plan::ClassID()));
}

TEST(Extension, IsDuplicatedForAnotherHost)
{
    const auto first = QOBBasicWorld::create(L"first");
    const auto second = QOBBasicWorld::create(L"second");
    const QOBSharedHandle<Plan> plan(new Plan);
    EXPECT_EQ(plan->bindExtension(first), KARSuccess);
    const QOBSharedObject* raw = plan->duplicateObject(QOBDynamicObject::CopyDefault,
                                                       QOBSharedHandle<QOBNotificationAgent>());
    const QOBSharedHandle<Plan> copy(raw);
    raw->removeReference();
    EXPECT_FALSE(copy->getExtendible());
    EXPECT_EQ(copy->bindExtension(second), KARSuccess);
    EXPECT_EQ(copy->getReferenceCount(), 1U);
}

TEST(Extension, WithoutAHostLivesByItsOwnReferences)
{
    const int before = Plan::s_living;
    {
        const QOBSharedHandle<Plan> plan(new Plan);
        EXPECT_EQ(Plan::s_living, before + 1);
    }
    EXPECT_EQ(Plan::s_living, before);
}

TEST(BasicEntity, GivesBackTheNameItWasGiven)
{
    const auto item = MakeItem();
    EXPECT_EQ(item->getEntityName(), L"");
    item->setEntityName(L"Crank");
    EXPECT_EQ(
        item->getEntityName(QOBBasicEntity::InternalName, QOBBasicEntity::ExternalNameSeparator),
        L"Crank");
    EXPECT_EQ(item->getEntityTypeName(), L"QOBBasicEntity");
}

TEST(BasicEntity, FindsTheWorldAboveItWhateverTheDepth)
{
    const auto world = QOBBasicWorld::create(L"world");
    const auto outer = MakeItem();
    const auto inner = MakeItem();
    EXPECT_EQ(outer->addLogicalChild(inner), KARSuccess);
    EXPECT_FALSE(inner->getWorld());
    EXPECT_EQ(world->addLogicalChild(outer), KARSuccess);
    EXPECT_EQ(outer->getWorld(), world);
    EXPECT_EQ(inner->getWorld(), world);
    EXPECT_EQ(world->getWorld(), world);
}

TEST(BasicEntity, MovesAChildToItsNewParent)
{
    const auto world = QOBBasicWorld::create(L"world");
    const auto first = MakeItem();
    const auto second = MakeItem();
    const auto child = MakeItem();
    world->addLogicalChild(first);
    first->addLogicalChild(child);
    EXPECT_EQ(second->addLogicalChild(child), KARSuccess);
    EXPECT_FALSE(first->hasLogicalChild(child));
    EXPECT_TRUE(second->hasLogicalChild(child));
    EXPECT_FALSE(child->getWorld());
    EXPECT_EQ(first->getLogicalChildCount(), 0U);
    EXPECT_EQ(second->addLogicalChild(child), KARUnchanged);
    EXPECT_EQ(second->getLogicalChildCount(), 1U);
}

TEST(BasicEntity, KeepsItsPlaceWhenThereIsNoMemoryForAnother)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    const auto world = QOBBasicWorld::create(L"world");
    const auto other = MakeItem();
    const auto child = MakeItem();
    const auto nested = MakeItem();
    world->addLogicalChild(child);
    child->addLogicalChild(nested);
    std::size_t failing = 0;
    for (bool moved = false; !moved;) {
        AllocationCounter allocations;
        allocations.FailAllocation(++failing);
        try {
            EXPECT_EQ(other->addLogicalChild(child), KARSuccess);
            moved = true;
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(world->hasLogicalChild(child));
            EXPECT_EQ(child->getWorld(), world);
            EXPECT_EQ(nested->getWorld(), world);
        }
    }
    // A list and its first slot; telling what is below takes none.
    EXPECT_EQ(failing, 3U);
    EXPECT_TRUE(other->hasLogicalChild(child));
    EXPECT_FALSE(nested->getWorld());
    EXPECT_EQ(world->getLogicalChildCount(), 0U);
}

TEST(BasicEntity, TellsAWholeBranchOfItsWorld)
{
    const auto world = QOBBasicWorld::create(L"world");
    const auto root = MakeItem();
    const auto beside = MakeItem();
    world->addLogicalChild(beside);
    // Branches of several depths, with children taken out in front, between and behind.
    std::vector<QOBSharedHandle<Item>> items{root};
    for (std::size_t i = 0; i < 60; ++i) {
        items.push_back(MakeItem());
        items[i / 3]->addLogicalChild(items.back());
    }
    for (const std::size_t leaf : {60U, 59U, 58U, 55U, 44U, 43U, 42U})
        items[leaf]->orphanObject();
    const auto expectWorld = [&](const QOBSharedHandle<QOBBasicWorld>& expected) {
        for (const auto& item : items)
            EXPECT_EQ(item->getWorld(), item->isOrphaned() ? nullptr : expected.get());
    };
    world->addLogicalChild(root);
    expectWorld(world);
    items[2]->addLogicalChild(items[30]);
    expectWorld(world);
    MakeItem()->addLogicalChild(root);
    expectWorld(nullptr);
    EXPECT_EQ(beside->getWorld(), world);
}

TEST(BasicEntity, RefusesNullItselfAndItsAncestorsAsChildren)
{
    const auto outer = MakeItem();
    const auto inner = MakeItem();
    outer->addLogicalChild(inner);
    EXPECT_EQ(inner->addLogicalChild({}), KARFailure);
    EXPECT_EQ(inner->addLogicalChild(inner), KARFailure);
    EXPECT_EQ(inner->addLogicalChild(outer), KARFailure);
    EXPECT_FALSE(outer->hasLogicalChild({}));
}

TEST(BasicEntity, ShowsEachOfItsChildrenInTheOrderOfPlacing)
{
    const auto world = QOBBasicWorld::create(L"world");
    const auto first = MakeItem();
    const auto second = MakeItem();
    const auto third = MakeItem();
    std::vector<QOBBasicEntity*> visited;
    const auto note = [&visited](QOBBasicEntity& child) { visited.push_back(&child); };
    world->visitLogicalChildren(note);
    EXPECT_TRUE(visited.empty());
    for (const auto& child : {first, second, third})
        world->addLogicalChild(child);
    second->orphanObject();
    world->visitLogicalChildren(note);
    EXPECT_EQ(visited, (std::vector<QOBBasicEntity*>{first.get(), third.get()}));
}

TEST(BasicEntity, LeavesItsPlaceWhenOrphaned)
{
    const auto world = QOBBasicWorld::create(L"world");
    std::vector<QOBSharedHandle<Item>> items;
    for (int i = 0; i < 100; ++i) {
        items.push_back(MakeItem());
        world->addLogicalChild(items.back());
    }
    for (int i = 0; i < 100; i += 2)
        items[static_cast<std::size_t>(i)]->orphanObject();
    EXPECT_EQ(world->getLogicalChildCount(), 50U);
    for (int i = 0; i < 100; ++i) {
        const auto& item = items[static_cast<std::size_t>(i)];
        EXPECT_EQ(world->hasLogicalChild(item), i % 2 == 1);
        EXPECT_EQ(static_cast<bool>(item->getWorld()), i % 2 == 1);
        EXPECT_EQ(item->getReferenceCount(), i % 2 == 1 ? 2U : 1U);
    }
}

TEST(BasicWorld, OrphansAllThatHangsUnderItWithItsLastReference)
{
    const int before = Item::s_living;
    std::vector<const Item*> orphaned;
    {
        const auto world = QOBBasicWorld::create(L"world");
        const auto first = MakeItem(&orphaned);
        const auto second = MakeItem(&orphaned);
        const auto nested = MakeItem(&orphaned);
        first->partner = second;
        second->partner = first;
        world->addLogicalChild(first);
        world->addLogicalChild(second);
        second->addLogicalChild(nested);
    }
    EXPECT_EQ(orphaned.size(), 3U);
    EXPECT_EQ(Item::s_living, before);
}

// An entity that notes when it is orphaned and when it goes.
class Witness : public QOBBasicEntity
{
public:
    Witness(std::vector<int>& orphaned, std::vector<int>& gone, int number)
        : m_orphaned(orphaned), m_gone(gone), m_number(number)
    {}
    ~Witness() override { m_gone.push_back(m_number); }
    void orphanObject() override
    {
        m_orphaned.push_back(m_number);
        QOBBasicEntity::orphanObject();
    }

private:
    std::vector<int>& m_orphaned;
    std::vector<int>& m_gone;
    int m_number;
};

TEST(BasicWorld, OrphansAllOfAFamilyBeforeItLetsThemGoFirstToLast)
{
    for (const int count : {1, 6, 7, 8, 100}) {
        std::vector<int> orphaned;
        std::vector<int> gone;
        auto world = QOBBasicWorld::create(L"world");
        for (int number = 0; number < count; ++number) {
            const QOBSharedHandle<Witness> child(new Witness(orphaned, gone, number));
            world->addLogicalChild(child);
            // An orphan leaves a free slot among its siblings.
            if (number % 5 == 2)
                child->orphanObject();
        }
        const std::size_t before = orphaned.size();
        EXPECT_EQ(gone.size(), before);
        orphaned.clear();
        gone.clear();
        world.detach();
        EXPECT_EQ(orphaned.size(), static_cast<std::size_t>(count) - before);
        EXPECT_TRUE(std::is_sorted(orphaned.begin(), orphaned.end())) << count;
        EXPECT_EQ(gone, orphaned) << count;
    }
}

TEST(BasicWorld, LetsEntitiesGoInTheOrderOfPlacingWhateverAnExtensionLists)
{
    constexpr int Count = 20;
    std::vector<int> orphaned;
    std::vector<int> gone;
    std::vector<QOBSharedHandle<QOBBasicEntity>> listed;
    auto world = QOBBasicWorld::create(L"world");
    for (int number = 0; number < Count; ++number) {
        const QOBSharedHandle<Witness> child(new Witness(orphaned, gone, number));
        world->addLogicalChild(child);
        listed.insert(listed.begin(), child);
    }
    QOBSharedHandle<Plan> plan(new Plan);
    plan->atEnd = [&](Plan&) {
        EXPECT_EQ(orphaned.size(), std::size_t{Count});
        EXPECT_TRUE(gone.empty());
        listed.clear();
    };
    EXPECT_EQ(plan->bindExtension(world), KARSuccess);
    world.detach();
    EXPECT_TRUE(gone.empty());
    plan.detach();
    EXPECT_EQ(gone.size(), std::size_t{Count});
    EXPECT_TRUE(std::is_sorted(gone.begin(), gone.end()));
}

TEST(BasicEntity, LetsItsChildrenGoFirstToLastWithoutOrphaningThem)
{
    std::vector<int> orphaned;
    std::vector<int> gone;
    auto parent = MakeItem();
    for (int number = 0; number < 50; ++number)
        parent->addLogicalChild(QOBSharedHandle<Witness>(new Witness(orphaned, gone, number)));
    parent.detach();
    EXPECT_TRUE(orphaned.empty());
    EXPECT_EQ(gone.size(), 50U);
    EXPECT_TRUE(std::is_sorted(gone.begin(), gone.end()));
}

// An entity that takes another one along in its teardown.
class Leader : public QOBBasicEntity
{
public:
    void orphanObject() override
    {
        if (isOrphaned())
            return;
        if (follower)
            follower->orphanObject();
        follower.detach();
        QOBBasicEntity::orphanObject();
    }

    QOBSharedHandle<QOBBasicEntity> follower;
};

TEST(BasicWorld, OrphansEntitiesThatOrphanOneAnother)
{
    const int before = Item::s_living;
    std::vector<const Item*> orphaned;
    {
        const auto world = QOBBasicWorld::create(L"world");
        const auto outer = MakeItem(&orphaned);
        world->addLogicalChild(outer);
        // Beside one that is taken along, before and behind it, and beside the one above it.
        for (const QOBSharedHandle<QOBBasicEntity>& above :
             {QOBSharedHandle<QOBBasicEntity>(world), QOBSharedHandle<QOBBasicEntity>(outer)}) {
            const auto taken = MakeItem(&orphaned);
            const QOBSharedHandle<Leader> first(new Leader);
            const QOBSharedHandle<Leader> last(new Leader);
            first->follower = taken;
            last->follower = taken;
            world->addLogicalChild(first);
            above->addLogicalChild(taken);
            world->addLogicalChild(last);
        }
    }
    EXPECT_EQ(orphaned.size(), 3U);
    EXPECT_EQ(Item::s_living, before);
}

TEST(BasicWorld, OrphanedWhileReferredToStaysItsOwnWorld)
{
    const auto world = QOBBasicWorld::create(L"world");
    const auto item = MakeItem();
    world->addLogicalChild(item);
    world->orphanObject();
    EXPECT_TRUE(world->isOrphaned());
    EXPECT_TRUE(item->isOrphaned());
    EXPECT_FALSE(item->getWorld());
    EXPECT_EQ(world->getLogicalChildCount(), 0U);
    EXPECT_EQ(world->getWorld(), world);
}

TEST(BasicWorld, WithADeepHierarchyIsFreedWithoutOverflowingTheStack)
{
    const int before = Item::s_living;
    {
        const auto world = QOBBasicWorld::create(L"world");
        QOBSharedHandle<QOBBasicEntity> parent = world;
        for (int i = 0; i < 100'000; ++i) {
            const auto item = MakeItem();
            EXPECT_EQ(parent->addLogicalChild(item), KARSuccess);
            parent = item;
        }
        EXPECT_EQ(parent->getWorld(), world);
    }
    EXPECT_EQ(Item::s_living, before);
}

TEST(BasicBody3D, KeepsItsPositionAndFloatingStatus)
{
    const auto body = QOBBasicBody3D::create(L"body");
    EXPECT_TRUE(body->isFloating());
    body->setFloating(false);
    EXPECT_FALSE(body->isFloating());

    KARMathTransformation position;
    position.SetVector(KARMathVector(1.0, 2.0, 3.0));
    EXPECT_EQ(body->SetPosition(position), KARSuccess);
    KARMathTransformation read;
    EXPECT_EQ(body->GetPosition(read), KARSuccess);
    EXPECT_EQ(read.GetVector().GetZ(), 3.0);

    EXPECT_EQ(body->addBody({}), KARFailure);
    EXPECT_EQ(body->addBody(QOBBasicBody3D::create(L"child")), KARSuccess);
    EXPECT_EQ(body->getBodyCount(), 1U);
    body->orphanObject();
    EXPECT_EQ(body->getBodyCount(), 0U);
}

} // namespace
