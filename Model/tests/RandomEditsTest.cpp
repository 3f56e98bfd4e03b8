#include "RandomEdits.h"

#include <cstdlib>

namespace {

using RandomEditsTest = KARMPTestFixture;

TEST_F(RandomEditsTest, ModelStaysWholeOverTenThousandEditsOfSomeSeeds)
{
    for (unsigned seed = 1; seed <= 3; ++seed)
        EXPECT_EQ(karmp::model::FaultOfRandomEdits(seed, 10'000, 20), "");
    TakeReports();
}

// The target karmp_model_edits runs a hundred seeds of ten thousand edits; KARMP_MODEL_SEEDS asks
// for another number of them.
using RandomEditsProcess = KARMPTestFixture;

TEST_F(RandomEditsProcess, ModelStaysWholeOverTenThousandEditsOfEachSeed)
{
    const char* const seeds = std::getenv("KARMP_MODEL_SEEDS");
    const auto last = static_cast<unsigned>(seeds != nullptr ? std::atoi(seeds) : 100);
    for (unsigned seed = 1; seed <= last; ++seed)
        EXPECT_EQ(karmp::model::FaultOfRandomEdits(seed, 10'000, 20), "");
    TakeReports();
}

} // namespace
