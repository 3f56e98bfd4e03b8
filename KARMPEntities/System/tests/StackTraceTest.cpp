#include "KARStackTrace.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

[[gnu::noinline]] void TraceDeeper(KARStackTrace& trace, int further)
{
    if (further == 0)
        trace.GetTrace();
    else
        TraceDeeper(trace, further - 1);
    // Work after the call, so that it is no tail call and keeps its frame.
    asm volatile("" ::: "memory");
}

} // namespace

TEST(StackTrace, IsEmptyUntilTaken)
{
    const KARStackTrace trace;
    char buffer[16] = "old";
    EXPECT_EQ(trace.GetDepth(), 0);
    EXPECT_EQ(trace.Read(0, buffer, sizeof buffer), KARFailure);
    EXPECT_STREQ(buffer, "");
}

TEST(StackTrace, HoldsOneFrameForEachCall)
{
    KARStackTrace shallow;
    TraceDeeper(shallow, 0);
    if (shallow.GetDepth() == 0)
        GTEST_SKIP() << "the platform has no means to take a trace";
    KARStackTrace deep;
    TraceDeeper(deep, 5);
    EXPECT_EQ(deep.GetDepth(), shallow.GetDepth() + 5);
    KARStackTrace again;
    TraceDeeper(again, 5);
    TraceDeeper(again, 0);
    EXPECT_EQ(again.GetDepth(), shallow.GetDepth());
}

TEST(StackTrace, EndsAtItsMostFrames)
{
    KARStackTrace trace;
    TraceDeeper(trace, 2 * KARStackTrace::MaxDepth);
    if (trace.GetDepth() == 0)
        GTEST_SKIP() << "the platform has no means to take a trace";
    EXPECT_EQ(trace.GetDepth(), KARStackTrace::MaxDepth);
    char buffer[1024];
    EXPECT_EQ(trace.Read(KARStackTrace::MaxDepth - 1, buffer, sizeof buffer), KARSuccess);
    EXPECT_EQ(trace.Read(KARStackTrace::MaxDepth, buffer, sizeof buffer), KARFailure);
}

TEST(StackTrace, EveryFrameHasAText)
{
    KARStackTrace trace;
    trace.GetTrace();
    for (int frame = 0; frame < trace.GetDepth(); ++frame) {
        char buffer[1024] = "";
        EXPECT_EQ(trace.Read(frame, buffer, sizeof buffer), KARSuccess);
        EXPECT_NE(std::string(buffer).find("0x"), std::string::npos) << buffer;
    }
}

TEST(StackTrace, TextsAreCutToTheBuffer)
{
    KARStackTrace trace;
    trace.GetTrace();
    if (trace.GetDepth() == 0)
        GTEST_SKIP() << "the platform has no means to take a trace";
    char buffer[8];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(trace.Read(0, buffer, 5), KARSuccess);
    EXPECT_EQ(std::strlen(buffer), 4U);
    EXPECT_EQ(buffer[5], '#');
    EXPECT_EQ(trace.Read(0, buffer, 1), KARSuccess);
    EXPECT_STREQ(buffer, "");
}

TEST(StackTrace, BadFramesAndBuffersFail)
{
    KARStackTrace trace;
    trace.GetTrace();
    char buffer[16] = "old";
    EXPECT_EQ(trace.Read(-1, buffer, sizeof buffer), KARFailure);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(trace.Read(trace.GetDepth(), buffer, sizeof buffer), KARFailure);
    EXPECT_EQ(trace.Read(0, nullptr, 16), KARFailure);
    EXPECT_EQ(trace.Read(0, buffer, 0), KARFailure);
}
