#include "KARMPAxisSystem.h"
#include "TestEntity.h"
#include "WorldTesting.h"

#include <cstdlib>

namespace {

class WorldIdentifierProcess : public WorldFixture
{
protected:
    void SetUp() override { ASSERT_NE(std::getenv("NEW_MP_IDS"), nullptr); }
    static std::wstring NextIn(const QOBSharedHandle<QOBBasicWorld>& basicWorld)
    {
        const auto entity = TestEntity::create(L"GlobalTime");
        basicWorld->addLogicalChild(entity);
        return IdentifierOf(*entity);
    }
};

TEST_F(WorldIdentifierProcess, CountsFromThreeInEachWorld)
{
    EXPECT_EQ(NextIn(basicWorld), L"id3");
    EXPECT_EQ(NextIn(basicWorld), L"id4");
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    EXPECT_EQ(NextIn(otherBasic), L"id3");
    EXPECT_EQ(NextIn(basicWorld), L"id5");
    EXPECT_EQ(world->GetEntityId(), 6U);
}

TEST_F(WorldIdentifierProcess, CountsOnlyWhenAnIdentifierIsMade)
{
    const auto entity = TestEntity::create(L"entity");
    basicWorld->addLogicalChild(entity);
    EXPECT_EQ(IdentifierOf(*entity), L"id3");
    EXPECT_EQ(IdentifierOf(*entity), L"id3");
    const auto named = TestEntity::create(L"named");
    named->SetIdentifier(L"mine");
    basicWorld->addLogicalChild(named);
    EXPECT_EQ(IdentifierOf(*named), L"mine");
    EXPECT_EQ(NextIn(basicWorld), L"id4");
}

TEST_F(WorldIdentifierProcess, GivesTheGlobalsOfAWorldFixedNumbers)
{
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    QOBSharedHandle<KARMPVariable> time;
    world->GetGlobalBody(body);
    world->GetGlobalAxisSystem(axisSystem);
    world->GetGlobalTime(time);
    EXPECT_EQ(IdentifierOf(*body), L"id0");
    EXPECT_EQ(IdentifierOf(*axisSystem), L"id1");
    EXPECT_EQ(IdentifierOf(*time), L"id2");
}

TEST_F(WorldIdentifierProcess, HasNoNumberUnderABasicWorldThatNothingExtends)
{
    EXPECT_EQ(NextIn(QOBBasicWorld::create(L"bare")), L"id");
    ExpectReports(1);
}

TEST_F(WorldIdentifierProcess, GoesOnFromTheCountOfACopiedWorld)
{
    EXPECT_EQ(NextIn(basicWorld), L"id3");
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto copy = KARMPWorld::clone(world, QOBDynamicObject::CopyShallow, otherBasic);
    EXPECT_EQ(NextIn(otherBasic), L"id4");
    EXPECT_EQ(NextIn(basicWorld), L"id4");
}

} // namespace
