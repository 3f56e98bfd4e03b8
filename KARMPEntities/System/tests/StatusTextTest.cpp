#include "KARStatusText.h"

#include <gtest/gtest.h>

namespace {

TEST(StatusText, TellsWhatAStatusMeans)
{
    EXPECT_EQ(KARStatusText(KARSuccess), "success");
    EXPECT_EQ(KARStatusText(KARUnchanged), "unchanged");
    EXPECT_EQ(KARStatusText(KARFailure), "failure");
    EXPECT_EQ(KARStatusText(KARUnexpected), "unexpected failure");
    EXPECT_EQ(KARStatusText(KARNotImplemented), "not implemented");
    EXPECT_EQ(KARStatusText(KAROutOfMemory), "out of memory");
    EXPECT_EQ(KARStatusText(7), "unknown status");
}

} // namespace
