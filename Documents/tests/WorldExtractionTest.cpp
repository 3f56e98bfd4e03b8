// Parts of mechanisms as worlds of their own.
#include "EnvironmentVariable.h"
#include "ExtractionTesting.h"
#include "KARMPTestFixture.h"
#include "KARMPWorldDifference.h"

namespace karmp::documents {

namespace {

// Outputs and their supports belong to the examples.
class WorldExtraction : public KARMPTestFixture
{
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};
};

TEST_F(WorldExtraction, OfAllBodiesIsTheMechanism)
{
    for (const auto& entry : std::filesystem::directory_iterator(KARMP_EXAMPLE_DOCUMENTS)) {
        SCOPED_TRACE(entry.path());
        const World world = LoadFile(entry.path()).world;
        const Extraction extract = ExtractWorld(*world, AllBodies(*world), {0, AllFamilies()});
        ASSERT_TRUE(extract.world);
        EXPECT_TRUE(extract.cutLinks.empty());
        for (const CutLink& lost : extract.lostItems)
            ADD_FAILURE() << lost.holder->getClassName() << " " << kar::ToUtf8(lost.item);
        // A relation of collision layers stays behind: the layers that it refers to are filed in no
        // registry when they are read.
        const std::size_t relations = entry.path().filename() == "collision.xml" ? 1 : 0;
        EXPECT_EQ(FindDifferences(*world, *extract.world).size(), relations);
        EXPECT_EQ(FindDifferences(*extract.world, *world).size(), relations);
    }
}

TEST_F(WorldExtraction, TellsTheLinksThatItCuts)
{
    const World world = SliderCrank();
    const Extraction extract = ExtractWorld(*world, Named(*world, {L"Crank"}));
    ASSERT_TRUE(extract.world);
    EXPECT_EQ(NamesOf(AllBodies(*extract.world)),
              (std::vector<std::string>{"Crank", "GlobalBody"}));
    EXPECT_EQ(extract.world->Count<KARMPJoint>(), 0);
    EXPECT_EQ(extract.world->Count<KARMPConstraint>(), 0);
    EXPECT_EQ(TextsOf(extract.cutLinks),
              (std::vector<std::string>{"Crank Joints Crank pin", "Crank Joints Main bearing",
                                        "Crank.Crank pin Constraints Crank pin.constraint",
                                        "Crank.Main bearing Constraints Main bearing.constraint"}));
    EXPECT_TRUE(CheckOf(extract.world).items.empty());
}

TEST_F(WorldExtraction, ReachesOverJointsToFurtherBodies)
{
    const World world = SliderCrank();
    const Bodies crank = Named(*world, {L"Crank"});
    const auto reached = [&](int reach) {
        const Extraction extract = ExtractWorld(*world, crank, {reach, {}});
        EXPECT_TRUE(CheckOf(extract.world).items.empty());
        return NamesOf(AllBodies(*extract.world));
    };
    EXPECT_EQ(reached(1), (std::vector<std::string>{"Crank", "GlobalBody", "Rod"}));
    EXPECT_EQ(reached(2), (std::vector<std::string>{"Crank", "GlobalBody", "Rod", "Slider"}));
    EXPECT_EQ(reached(1000), reached(2));
}

TEST_F(WorldExtraction, KeepsIdentifiersNamesAndSettings)
{
    const World world = SliderCrank();
    world->SetLengthUnit(KARMPUnit::Inch);
    world->SetLinearTolerance(0.25);
    const Extraction extract = ExtractWorld(*world, Named(*world, {L"Crank", L"Rod"}));
    KARMPUnit::Enum unit{};
    extract.world->GetLengthUnit(unit);
    EXPECT_EQ(unit, KARMPUnit::Inch);
    for (const Difference& difference : FindDifferences(*world, *extract.world)) {
        const bool isExpected = difference.kind == DifferenceKind::Removed ||
                                difference.kind == DifferenceKind::LinkLost;
        EXPECT_TRUE(isExpected) << DifferenceText(difference.kind) << ' '
                                << kar::ToUtf8(difference.item);
    }
}

TEST_F(WorldExtraction, HasTheGlobalsOfTheSourceWhereTheyComeAlong)
{
    const World world = SliderCrank();
    QOBSharedHandle<KARMPBody> global;
    world->GetGlobalBody(global);
    world->SetGroundBody(global);
    const Extraction extract = ExtractWorld(*world, {global});
    QOBSharedHandle<KARMPBody> found;
    QOBSharedHandle<KARMPBody> ground;
    extract.world->GetGlobalBody(found);
    extract.world->GetGroundBody(ground);
    const Bodies bodies = AllBodies(*extract.world);
    ASSERT_EQ(bodies.size(), 1U);
    EXPECT_EQ(bodies[0], found);
    EXPECT_EQ(bodies[0], ground);
    EXPECT_NE(found, global);
}

TEST_F(WorldExtraction, OfOnePartIsTheSameTwice)
{
    const World world = SliderCrank();
    const auto text = [&] {
        std::string saved;
        EXPECT_FALSE(
            SaveText(ExtractWorld(*world, Named(*world, {L"Rod"})).world, saved).HasErrors());
        return saved;
    };
    EXPECT_EQ(text(), text());
}

TEST_F(WorldExtraction, OfNoBodyHasTheGlobalsAlone)
{
    const World world = SliderCrank();
    const Extraction extract = ExtractWorld(*world, {});
    EXPECT_EQ(extract.world->GetBodyCount(), 1);
    EXPECT_TRUE(extract.cutLinks.empty());
    EXPECT_EQ(ExtractWorld(*world, {QOBSharedHandle<KARMPBody>()}).world->GetBodyCount(), 1);
}

TEST_F(WorldExtraction, LeavesTheSourceAsItWas)
{
    const World world = SliderCrank();
    std::string before;
    std::string after;
    EXPECT_FALSE(SaveText(world, before).HasErrors());
    ExtractWorld(*world, Named(*world, {L"Crank", L"Rod"}), {1, AllFamilies()});
    EXPECT_FALSE(SaveText(world, after).HasErrors());
    EXPECT_EQ(before, after);
}

} // namespace

} // namespace karmp::documents
