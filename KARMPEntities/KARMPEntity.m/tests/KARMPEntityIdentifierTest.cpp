#include "AllocationCounter.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestEntity.h"
#include "TestSerializer.h"

#include <cstdlib>
#include <set>

namespace {

std::wstring IdentifierOf(const KARMPEntity& entity)
{
    std::wstring identifier = L"former";
    EXPECT_EQ(entity.GetIdentifier(identifier), KARSuccess);
    return identifier;
}

class Identifier : public KARMPTestFixture
{
protected:
    QOBSharedHandle<TestEntity> entity = TestEntity::create(L"entity");
};

TEST_F(Identifier, IsTheWordIdAndAUuidByDefault)
{
    const std::wstring identifier = IdentifierOf(*entity);
    ASSERT_EQ(identifier.size(), 38U);
    EXPECT_EQ(identifier.substr(0, 2), L"id");
    for (const std::size_t dash : {10U, 15U, 20U, 25U})
        EXPECT_EQ(identifier[dash], L'-');
}

TEST_F(Identifier, StaysTheSameOnceMade)
{
    const std::wstring first = IdentifierOf(*entity);
    entity->setEntityName(L"renamed");
    EXPECT_EQ(IdentifierOf(*entity), first);
}

TEST_F(Identifier, DiffersFromEntityToEntity)
{
    std::set<std::wstring> seen;
    for (int i = 0; i < 1000; ++i)
        seen.insert(IdentifierOf(*TestEntity::create(L"same")));
    EXPECT_EQ(seen.size(), 1000U);
}

TEST_F(Identifier, IsNotReplacedBySetIdentifier)
{
    const std::wstring generated = IdentifierOf(*entity);
    EXPECT_EQ(entity->SetIdentifier(L"other"), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(IdentifierOf(*entity), generated);
}

TEST_F(Identifier, IsTheOneThatWasSetFirst)
{
    EXPECT_EQ(entity->SetIdentifier(L"B1"), KARSuccess);
    EXPECT_EQ(entity->SetIdentifier(L"B2"), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(IdentifierOf(*entity), L"B1");
}

TEST_F(Identifier, GivesOutOfMemoryWhicheverAllocationFailsAndIsMadeLater)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    std::size_t failing = 0;
    for (KARStatus status = KAROutOfMemory; status != KARSuccess;) {
        entity = TestEntity::create(L"entity");
        std::wstring identifier = L"former";
        {
            AllocationCounter allocations;
            allocations.FailAllocation(++failing);
            status = entity->GetIdentifier(identifier);
        }
        if (status != KARSuccess) {
            EXPECT_EQ(status, KAROutOfMemory);
            EXPECT_EQ(identifier, L"");
            EXPECT_GE(TakeReports(), 1U);
        }
        EXPECT_EQ(IdentifierOf(*entity).size(), 38U);
    }
    EXPECT_GT(failing, 3U);
}

TEST_F(Identifier, CannotBeSetWithoutMemory)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    const std::wstring identifier(2'000, L'a'); // so long that it comes from the heap
    KARStatus status = KARSuccess;
    {
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        status = entity->SetIdentifier(identifier);
    }
    EXPECT_EQ(status, KARFailure);
    EXPECT_GE(TakeReports(), 1U);
    EXPECT_EQ(entity->SetIdentifier(identifier), KARSuccess);
    EXPECT_EQ(IdentifierOf(*entity), identifier);
}

TEST_F(Identifier, IsNotReadWithoutMemoryAndTheRestIs)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    TestSerializer root;
    root.AddAttribute(L"id", std::wstring(2'000, L'\u00e9').c_str());
    root.AddAttribute(L"name", L"read");
    const auto tree = TestDeserializer::From(root);
    // The first allocations are those of the tree, which gives the text.
    std::size_t survived = 0;
    for (std::size_t failing = 1; failing <= 8; ++failing) {
        entity = TestEntity::create(L"entity");
        try {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            EXPECT_EQ(entity->Deserialize(tree.get(), KARMPEntityTable()), KARSuccess);
        } catch (const std::bad_alloc&) {
            TakeReports();
            continue;
        }
        EXPECT_EQ(entity->getEntityName(), L"read");
        survived += TakeReports() > 0 ? 1 : 0;
    }
    EXPECT_GT(survived, 0U);
}

class IdentifierProcess : public Identifier
{
protected:
    /// An entity whose operations ask for its identifier, or throw, while that is made.
    class Asking : public TestEntity
    {
    public:
        KARStatus IsInWorld(bool& inWorld) const override
        {
            if (m_throws)
                throw QOBEInvalidCast(L"no world", "", 0);
            std::wstring identifier = L"former";
            m_status = GetIdentifier(identifier);
            m_given = identifier;
            return TestEntity::IsInWorld(inWorld);
        }
        bool m_throws = false;
        mutable KARStatus m_status = KARFailure;
        mutable std::wstring m_given;
    };
};

TEST_F(IdentifierProcess, IsEmptyToWhoAsksWhileItIsMade)
{
    const QOBSharedHandle<Asking> asking(new Asking);
    EXPECT_EQ(IdentifierOf(*asking), L"id");
    EXPECT_EQ(asking->m_status, KARSuccess);
    EXPECT_EQ(asking->m_given, L"");
}

// What an entity's own operations answer on its world.
class Elsewhere : public TestEntity
{
public:
    KARStatus IsInWorld(bool& inWorld) const override
    {
        inWorld = true;
        return KARFailure;
    }
    KARStatus GetWorld(QOBSharedHandle<KARMPWorld>& world) const override
    {
        world = m_world;
        return m_answer;
    }
    QOBSharedHandle<KARMPWorld> m_world;
    KARStatus m_answer = KARSuccess;
};

TEST_F(IdentifierProcess, CountsInTheWorldThatTheEntityNames)
{
    const auto named = QOBSharedHandle<Elsewhere>(new Elsewhere);
    named->m_world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
    EXPECT_EQ(IdentifierOf(*named), L"id3");
    const auto nowhere = QOBSharedHandle<Elsewhere>(new Elsewhere);
    EXPECT_EQ(IdentifierOf(*nowhere), L"id");
    const auto failing = QOBSharedHandle<Elsewhere>(new Elsewhere);
    failing->m_world = named->m_world;
    failing->m_answer = KARFailure;
    EXPECT_EQ(IdentifierOf(*failing), L"id");
}

TEST_F(IdentifierProcess, StaysEmptyWhereMakingItThrew)
{
    const QOBSharedHandle<Asking> asking(new Asking);
    asking->m_throws = true;
    std::wstring identifier;
    EXPECT_THROW(asking->GetIdentifier(identifier), QOBEInvalidCast);
    asking->m_throws = false;
    EXPECT_EQ(IdentifierOf(*asking), L"");
}

TEST_F(IdentifierProcess, CountsFromZeroInTheSerialForm)
{
    EXPECT_EQ(IdentifierOf(*entity), L"id0");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"second")), L"id1");
    EXPECT_EQ(IdentifierOf(*entity), L"id0");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"third")), L"id2");
    // Entities of all worlds are counted together.
    for (const wchar_t* const expected : {L"id3", L"id4"}) {
        const auto basicWorld = QOBBasicWorld::create(L"World");
        const auto world = KARMPWorld::create(basicWorld);
        const auto placed = TestEntity::create(L"placed");
        basicWorld->addLogicalChild(placed);
        EXPECT_EQ(IdentifierOf(*placed), expected);
    }
    // Both variables were read with the first identifier.
    ::unsetenv("ADL_ODT_OUT");
    ::setenv("MP_USE_NAME_FOR_ID", "1", 1);
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"fourth")), L"id5");
}

TEST_F(IdentifierProcess, IsTheEntityNameWhenNamesAreUsed)
{
    EXPECT_EQ(IdentifierOf(*entity), L"entity");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"entity")), L"entity");
    const auto unnamed = TestEntity::create(L"");
    EXPECT_EQ(IdentifierOf(*unnamed), L"");
    ExpectReports(1);
    unnamed->setEntityName(L"named later");
    EXPECT_EQ(IdentifierOf(*unnamed), L"");
    ::unsetenv("MP_USE_NAME_FOR_ID");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"later")), L"later");
}

TEST_F(IdentifierProcess, OutsideAWorldKnowsTheGlobalsByTheirNames)
{
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"GlobalBody")), L"id0");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"GlobalAxisSystem")), L"id1");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"GlobalTime")), L"id2");
    EXPECT_EQ(IdentifierOf(*entity), L"id");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"globaltime")), L"id");
    // Unlike the others, this variable is read for each identifier.
    ::unsetenv("NEW_MP_IDS");
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"by name")), L"by name");
    ::setenv("NEW_MP_IDS", "", 1);
    EXPECT_EQ(IdentifierOf(*TestEntity::create(L"by number")), L"id");
}

} // namespace
