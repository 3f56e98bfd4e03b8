// The index of identifiers by itself: when its buckets are full, and when entities are taken out.
#include "KARMPEntityIndex.h"

#include "ModelTesting.h"

#include <vector>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

class EntityIndexTest : public KARMPTestFixture
{
protected:
    static Entity Make(const std::string& identifier)
    {
        const std::wstring text = kar::ToWide(identifier);
        const auto made = KARMPVariable::create(text);
        EXPECT_EQ(made->SetIdentifier(text), KARSuccess);
        return made;
    }

    void Fill(std::size_t count)
    {
        while (m_entities.size() < count) {
            m_entities.push_back(Make("v" + std::to_string(m_entities.size())));
            m_index.Add(m_entities.back());
        }
    }

    void ExpectAllFound() const
    {
        for (const Entity& entity : m_entities)
            ASSERT_EQ(m_index.Find(kar::ToUtf8(entity->getEntityName())), entity.get());
    }

    EntityIndex m_index;
    std::vector<Entity> m_entities;
};

// Before the last of them makes the table grow, some buckets have to pass entities on to the next.
TEST_F(EntityIndexTest, EntitiesOfFullBucketsAreFound)
{
    for (const std::size_t count : {12U, 48U, 192U, 768U, 3072U}) {
        Fill(count);
        ExpectAllFound();
        const std::string last = "v" + std::to_string(count - 1);
        EXPECT_EQ(m_index.AddPrepared(m_index.Prepare(last), last, Make(last)),
                  m_entities.back().get());
    }
}

TEST_F(EntityIndexTest, EntityThatIsTakenOutIsNeitherFoundNorHeld)
{
    for (const std::string identifier : {"a", "\u00e4"}) {
        const Entity entity = Make(identifier);
        m_index.Add(entity);
        EXPECT_EQ(m_index.Find(identifier), entity.get());
        m_index.Remove(*entity);
        EXPECT_EQ(m_index.Find(identifier), nullptr);
        EXPECT_EQ(entity->getReferenceCount(), 1U);
    }
}

TEST_F(EntityIndexTest, EntityThatIsNotInItTakesNothingOut)
{
    m_index.Remove(*Make("v0"));
    Fill(1);
    m_index.Remove(*Make("v0"));
    m_index.Remove(*KARMPVariable::create(L"v0"));
    ExpectAllFound();
}

TEST_F(EntityIndexTest, StartsAnewWhenItIsCleared)
{
    Fill(20);
    for (const Entity& entity : m_entities)
        m_index.Remove(*entity);
    m_index.Clear();
    EXPECT_EQ(m_index.Find("v0"), nullptr);
    for (const Entity& entity : m_entities)
        m_index.Add(entity);
    Fill(40);
    ExpectAllFound();
    m_index.Clear();
    m_index.Add(Make("other"));
    EXPECT_EQ(m_entities.front()->getReferenceCount(), 1U);
}

TEST_F(EntityIndexTest, KeepsItsEntitiesWhenLessIsReserved)
{
    Fill(100);
    m_index.Reserve(1);
    ExpectAllFound();
}

} // namespace

} // namespace karmp::model
