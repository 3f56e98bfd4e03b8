// The room that is made for a text before it is rendered.
#include "AllocationCounter.h"
#include "KARMPTextRoom.h"

#include <gtest/gtest.h>

#include <string>

using namespace karmp::documents;

TEST(TextRoom, IsTakenAtOnceOrNotAtAll)
{
    std::string text = "before";
    MakeRoom(text, 10'000'000);
    EXPECT_GE(text.capacity(), text.size() + 10'000'000);
    std::string small = "before";
    MakeRoom(small, small.max_size());
    EXPECT_EQ(small, "before");
    if (AllocationCounter::Counts) {
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        MakeRoom(small, 10'000);
        EXPECT_EQ(small, "before");
        EXPECT_LT(small.capacity(), 10'000U);
    }
}
