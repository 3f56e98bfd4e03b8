#include "KARMPAxisSystem.h"
#include "TestEntity.h"
#include "WorldTesting.h"

#include <cstdlib>

namespace {

class WorldIdentifierProcess : public WorldFixture
{
protected:
    void SetUp() override { ASSERT_NE(std::getenv("NEW_MP_IDS"), nullptr); }
    static std::wstring nextIn(const QOBSharedHandle<QOBBasicWorld>& basicWorld)
    {
        const auto entity = TestEntity::create(L"GlobalTime");
        basicWorld->addLogicalChild(entity);
        return identifierOf(*entity);
    }
};

TEST_F(WorldIdentifierProcess, CountsFromThreeInEachWorld)
{
    EXPECT_EQ(nextIn(basicWorld), L"id3");
    EXPECT_EQ(nextIn(basicWorld), L"id4");
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    EXPECT_EQ(nextIn(otherBasic), L"id3");
    EXPECT_EQ(nextIn(basicWorld), L"id5");
    EXPECT_EQ(world->GetEntityId(), 6U);
}

TEST_F(WorldIdentifierProcess, CountsOnlyWhenAnIdentifierIsMade)
{
    const auto entity = TestEntity::create(L"entity");
    basicWorld->addLogicalChild(entity);
    EXPECT_EQ(identifierOf(*entity), L"id3");
    EXPECT_EQ(identifierOf(*entity), L"id3");
    const auto named = TestEntity::create(L"named");
    named->SetIdentifier(L"mine");
    basicWorld->addLogicalChild(named);
    EXPECT_EQ(identifierOf(*named), L"mine");
    EXPECT_EQ(nextIn(basicWorld), L"id4");
}

TEST_F(WorldIdentifierProcess, GivesTheGlobalsOfAWorldFixedNumbers)
{
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    QOBSharedHandle<KARMPVariable> time;
    world->GetGlobalBody(body);
    world->GetGlobalAxisSystem(axisSystem);
    world->GetGlobalTime(time);
    EXPECT_EQ(identifierOf(*body), L"id0");
    EXPECT_EQ(identifierOf(*axisSystem), L"id1");
    EXPECT_EQ(identifierOf(*time), L"id2");
}

TEST_F(WorldIdentifierProcess, HasNoNumberUnderABasicWorldThatNothingExtends)
{
    EXPECT_EQ(nextIn(QOBBasicWorld::create(L"bare")), L"id");
    ExpectReports(1);
}

TEST_F(WorldIdentifierProcess, GoesOnFromTheCountOfACopiedWorld)
{
    EXPECT_EQ(nextIn(basicWorld), L"id3");
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto copy = KARMPWorld::clone(world, QOBDynamicObject::CopyShallow, otherBasic);
    EXPECT_EQ(nextIn(otherBasic), L"id4");
    EXPECT_EQ(nextIn(basicWorld), L"id4");
}

} // namespace
