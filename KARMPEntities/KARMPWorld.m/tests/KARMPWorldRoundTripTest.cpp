#include "KARMPAxisSystem.h"
#include "ModelObject.h"
#include "WorldDocumentTesting.h"

namespace {

using WorldRoundTrip = WorldDocument;

TEST_F(WorldRoundTrip, GivesANewWorldTheGlobalsThatWereRead)
{
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    for (const bool asText : {false, true}) {
        const auto otherBasic = QOBBasicWorld::create(L"other");
        const auto other = KARMPWorld::create(otherBasic);
        QOBSharedHandle<KARMPBody> first;
        QOBSharedHandle<KARMPAxisSystem> firstAxisSystem;
        other->GetGlobalBody(first);
        other->GetGlobalAxisSystem(firstAxisSystem);
        const auto tree = TestDeserializer::From(written, {.asText = asText});
        EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);

        EXPECT_EQ(other->GetBodyCount(), 1);
        EXPECT_EQ(other->Count<KARMPGeometry>(), 1);
        EXPECT_EQ(other->Count<KARMPVariable>(), 1);
        QOBSharedHandle<KARMPBody> global;
        QOBSharedHandle<KARMPBody> listed;
        other->GetGlobalBody(global);
        other->Get(0, listed);
        EXPECT_EQ(global, listed);
        EXPECT_NE(global, first);
        EXPECT_TRUE(otherBasic->hasLogicalChild(global));
        QOBSharedHandle<KARMPAxisSystem> axisSystem;
        other->GetGlobalAxisSystem(axisSystem);
        EXPECT_NE(axisSystem, firstAxisSystem);
        EXPECT_EQ(global->GetGeometryCount(), 1);
        EXPECT_TRUE(global->IsFixed());
        QOBSharedHandle<KARMPVariable> time;
        other->GetGlobalTime(time);
        EXPECT_EQ(time->getEntityName(), L"GlobalTime");
    }
}

TEST_F(WorldRoundTrip, WritesTheSameAgain)
{
    world->SetLinearTolerance(0.25);
    world->SetAngularTolerance(0.5);
    world->SetOrigin({1, 2, 3});
    world->SetSize(4, 5, 6);
    world->SetGravity({7, 8, 9});
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        add<T>(L"x" + kar::ToWide(T::ClassName()));
    });
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    const auto tree = TestDeserializer::From(written);
    EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);
    TestSerializer again;
    EXPECT_EQ(other->Serialize(&again), KARSuccess);
    EXPECT_EQ(again.Dump(), written.Dump());
}

TEST_F(WorldRoundTrip, KeepsWhatNoDocumentHolds)
{
    QOBSharedHandle<KARMPBody> ground = TestOf<KARMPBody>::create(L"ground");
    ModelObject loader;
    world->SetGroundBody(ground);
    world->SetLengthUnit(KARMPUnit::Inch);
    world->SetLoader(&loader, 5);
    world->GetEntityId();
    for (const wchar_t* identifier : {L"a", L"b", L"c"})
        entity(registry(L"Supports"), L"TestSupport", identifier);
    read();
    QOBSharedHandle<KARMPBody> body;
    world->GetGroundBody(body);
    EXPECT_EQ(body, ground);
    KARMPUnit::Enum unit{};
    world->GetLengthUnit(unit);
    EXPECT_EQ(unit, KARMPUnit::Inch);
    KARBaseUnknown* got = nullptr;
    int kind = 0;
    EXPECT_EQ(world->GetLoader(got, kind), KARSuccess);
    EXPECT_EQ(kind, 5);
    EXPECT_EQ(world->GetEntityId(), 4U);
}

// Quadratic work would show here.
TEST_F(WorldRoundTrip, StaysFastWhenTheWorldIsLarge)
{
    constexpr int Entities = 20'000;
    for (int i = 0; i < Entities; ++i)
        add<KARMPSupport>(std::to_wstring(i));
    EXPECT_EQ(world->Serialize(&written), KARSuccess);
    const auto tree = TestDeserializer::From(written);
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);
    EXPECT_EQ(other->Count<KARMPSupport>(), Entities);
}

} // namespace
