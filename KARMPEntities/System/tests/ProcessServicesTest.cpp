#include "KARProcessServices.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

std::string heard;
int heardLine = 0;

int StageThree(int stage)
{
    return stage == 3 ? 1 : 0;
}

void Hear(const char* text)
{
    heard = text;
}

void ThrowFatal(const char* text, const void* first, const void* second, const void* third,
                const char* path, int line)
{
    heard = std::string(text) + "|" + (path ? path : "none");
    heardLine = first || second || third ? -1 : line;
    throw std::runtime_error("fatal");
}

void ReturnFromFatal(const char*, const void*, const void*, const void*, const char*, int) {}

} // namespace

TEST(Environment, UnsetAndNullNamesGiveNull)
{
    ASSERT_EQ(unsetenv("KAR_TEST_VARIABLE"), 0);
    EXPECT_EQ(KARGetEnv("KAR_TEST_VARIABLE"), nullptr);
    EXPECT_EQ(KARGetEnv(nullptr), nullptr);
}

TEST(Environment, AVariableSetToNothingIsSet)
{
    ASSERT_EQ(setenv("KAR_TEST_VARIABLE", "", 1), 0);
    EXPECT_STREQ(KARGetEnv("KAR_TEST_VARIABLE"), "");
    ASSERT_EQ(setenv("KAR_TEST_VARIABLE", "value", 1), 0);
    EXPECT_STREQ(KARGetEnv("KAR_TEST_VARIABLE"), "value");
    ASSERT_EQ(unsetenv("KAR_TEST_VARIABLE"), 0);
}

TEST(DevelopmentStage, IsNeverReachedByDefault)
{
    for (const int stage : {-1, 0, 1, 3})
        EXPECT_EQ(KARDevelopmentStage(stage), 0);
}

TEST(DevelopmentStage, AsksTheHandlerUntilItIsTakenBack)
{
    EXPECT_EQ(KARSetDevelopmentStageHandler(&StageThree), nullptr);
    EXPECT_EQ(KARDevelopmentStage(3), 1);
    EXPECT_EQ(KARDevelopmentStage(0), 0);
    EXPECT_EQ(KARSetDevelopmentStageHandler(nullptr), &StageThree);
    EXPECT_EQ(KARDevelopmentStage(3), 0);
}

TEST(SysLogAbend, PrintsByDefaultAndReturns)
{
    testing::internal::CaptureStderr();
    KARSysLogAbend("AssertionFailed: here");
    KARSysLogAbend(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "AssertionFailed: here\n\n");
}

TEST(SysLogAbend, GivesTheTextToTheHandler)
{
    heard.clear();
    testing::internal::CaptureStderr();
    EXPECT_EQ(KARSetSysLogAbendHandler(&Hear), nullptr);
    KARSysLogAbend("text");
    EXPECT_EQ(KARSetSysLogAbendHandler(nullptr), &Hear);
    EXPECT_EQ(heard, "text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(FatalErrorDeathTest, PrintsAndAbortsByDefault)
{
    EXPECT_DEATH(KARFatalError("AssertionFailed: x", nullptr, nullptr, nullptr, "file.cpp", 12),
                 "^AssertionFailed: x\nFatal error at file.cpp:12\n");
    EXPECT_DEATH(KARFatalError("AssertionFailed: y", nullptr, nullptr, nullptr, nullptr, 0),
                 "^AssertionFailed: y\n$");
    EXPECT_DEATH(KARFatalError(nullptr, nullptr, nullptr, nullptr, nullptr, 0), "^\n$");
}

TEST(FatalErrorDeathTest, AHandlerThatReturnsDoesNotKeepTheProcessAlive)
{
    EXPECT_EXIT(
        {
            KARSetFatalErrorHandler(&ReturnFromFatal);
            KARFatalError("text", nullptr, nullptr, nullptr, nullptr, 0);
        },
        testing::KilledBySignal(SIGABRT), "^$");
}

TEST(FatalError, TheHandlerIsToldEverythingAndItsExceptionLeaves)
{
    EXPECT_EQ(KARSetFatalErrorHandler(&ThrowFatal), nullptr);
    EXPECT_THROW(KARFatalError("text", nullptr, nullptr, nullptr, "path", 7), std::runtime_error);
    EXPECT_EQ(heard, "text|path");
    EXPECT_EQ(heardLine, 7);
    EXPECT_THROW(KARFatalError("text", nullptr, nullptr, nullptr, nullptr, 0), std::runtime_error);
    EXPECT_EQ(heard, "text|none");
    EXPECT_EQ(heardLine, 0);
    EXPECT_EQ(KARSetFatalErrorHandler(nullptr), &ThrowFatal);
}
