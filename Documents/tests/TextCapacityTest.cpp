// The capacity that is reserved for a text before it is rendered.
#include "AllocationCounter.h"
#include "KARMPTextCapacity.h"

#include <gtest/gtest.h>

#include <string>

using namespace karmp::documents;

TEST(TextCapacity, IsReservedAtOnceOrNotAtAll)
{
    std::string text = "before";
    ReserveMore(text, 10'000'000);
    EXPECT_GE(text.capacity(), text.size() + 10'000'000);
    std::string small = "before";
    ReserveMore(small, small.max_size());
    EXPECT_EQ(small, "before");
    if (AllocationCounter::Counts) {
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        ReserveMore(small, 10'000);
        EXPECT_EQ(small, "before");
        EXPECT_LT(small.capacity(), 10'000U);
    }
}
