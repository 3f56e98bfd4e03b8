#include "KARMPDumpPath.h"
#include "EnvironmentVariable.h"

#include <gtest/gtest.h>

namespace {

TEST(DumpPathProcess, IsThatOfTheTimeOfLoading)
{
    EXPECT_STREQ(karmp::DumpPath, "at/load");
    const EnvironmentVariable later("MP_DUMP_PATH", "later");
    EXPECT_STREQ(karmp::DumpPath, "at/load");
}

TEST(DumpPathProcess, IsNullWithoutTheVariable)
{
    EXPECT_EQ(karmp::DumpPath, nullptr);
    const EnvironmentVariable later("MP_DUMP_PATH", "later");
    EXPECT_EQ(karmp::DumpPath, nullptr);
}

} // namespace
