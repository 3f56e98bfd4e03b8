#include "KARMPFailedCheck.h"

#include "KARMPTestFixture.h"
#include "KARProcessServices.h"
#include "KARStackTrace.h"
#include "KARUnicodeString.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#if defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#        define HAS_SANITIZER 1
#    endif
#elif defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
#    define HAS_SANITIZER 1
#endif
// Sanitizers do not follow a change of the stack.
#if __has_include(<ucontext.h>) && !defined(HAS_SANITIZER)
#    include <ucontext.h>
#    define HAS_SHALLOW_STACK 1
#endif

namespace {

struct Fatal
{
    std::string text;
    std::string path;
    bool hasPath;
    int line;
};

void ThrowFatal(const char* text, const void* first, const void* second, const void* third,
                const char* path, int line)
{
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(third, nullptr);
    throw Fatal{text, path != nullptr ? path : "", path != nullptr, line};
}

std::vector<std::string>& Log()
{
    static std::vector<std::string> texts;
    return texts;
}

void KeepLog(const char* text)
{
    Log().emplace_back(text);
}

int StageZeroOnly(int stage)
{
    return stage == 0 ? 1 : 0;
}

class Ear : public KARMPFailedCheckListener
{
public:
    void OnFailedCheck(const char* file, int line) override { locations.push_back({file, line}); }

    std::vector<KARMPSourceLocation> locations;
};

std::vector<std::string> Lines(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return lines;
}

unsigned FlagsNow()
{
    return KARMPFailedCheckFlags::s_flags.load();
}

// Handlers that keep the process alive, for as long as one test needs them.
class FailedCheckProcess : public ::testing::Test
{
protected:
    FailedCheckProcess()
    {
        KARSetFatalErrorHandler(&ThrowFatal);
        KARSetSysLogAbendHandler(&KeepLog);
    }
    ~FailedCheckProcess() override
    {
        KARSetFatalErrorHandler(nullptr);
        KARSetSysLogAbendHandler(nullptr);
        KARSetDevelopmentStageHandler(nullptr);
    }
};

} // namespace

TEST_F(FailedCheckProcess, WithoutVariablesAReportHasNoVisibleEffect)
{
    EXPECT_EQ(FlagsNow(), 0U);
    EXPECT_FALSE(KARMPVerify(false));
    EXPECT_TRUE(Log().empty());
    EXPECT_EQ(FlagsNow(), unsigned{KARMPFailedCheckFlags::Computed});
}

TEST_F(FailedCheckProcess, TheEnvironmentIsReadAtTheFirstReportOnly)
{
    EXPECT_FALSE(KARMPVerify(false));
    ASSERT_EQ(setenv("ADL_ODT_IN", "1", 1), 0);
    KARSetDevelopmentStageHandler(&StageZeroOnly);
    EXPECT_FALSE(KARMPVerify(false));
    EXPECT_TRUE(Log().empty());
}

TEST_F(FailedCheckProcess, ACheckThatHoldsDoesNotReadTheEnvironment)
{
    EXPECT_TRUE(KARMPVerify(true));
    EXPECT_EQ(FlagsNow(), 0U);
}

TEST_F(FailedCheckProcess, TheAbendVariableEndsTheProcessThroughFatalError)
{
    try {
        KARMPReportFailedCheck("", "dir/site.cpp", 17);
        FAIL() << "The report returned";
    } catch (const Fatal& fatal) {
        EXPECT_EQ(fatal.text.rfind("AssertionFailed: \nFile: dir/site.cpp\nLine: 17\n", 0), 0U);
        EXPECT_EQ(fatal.path, "dir/site.cpp");
        EXPECT_EQ(fatal.line, 17);
    }
    EXPECT_TRUE(Log().empty());
    EXPECT_EQ(FlagsNow(), unsigned{KARMPFailedCheckFlags::Computed | KARMPFailedCheckFlags::Abend});
}

TEST_F(FailedCheckProcess, TheAbendVariableEndsTheProcessForGood)
{
    KARSetFatalErrorHandler(nullptr);
    EXPECT_DEATH(KARMPReportFailedCheck("", "dir/site.cpp", 17), "AssertionFailed: ");
}

TEST_F(FailedCheckProcess, AMessageOnlyReportLeavesThePlaceOut)
{
    try {
        KARMPCheckFailed("message", "dir/site.cpp", 17, true, false);
        FAIL() << "The report returned";
    } catch (const Fatal& fatal) {
        EXPECT_EQ(fatal.text.rfind("AssertionFailed: \n", 0), 0U);
        EXPECT_EQ(fatal.text.find("message"), std::string::npos);
        EXPECT_FALSE(fatal.hasPath);
        EXPECT_EQ(fatal.line, 0);
    }
}

TEST_F(FailedCheckProcess, AnAbendVariableWithoutAValueCountsAsSet)
{
    EXPECT_THROW(KARMPReportFailedCheck("", "site.cpp", 1), Fatal);
}

TEST_F(FailedCheckProcess, TheSilencingVariableOutweighsTheAbendVariable)
{
    EXPECT_NO_THROW(KARMPReportFailedCheck("", "site.cpp", 1));
    EXPECT_TRUE(Log().empty());
}

TEST_F(FailedCheckProcess, TheDevelopmentStageLogsAndGoesOn)
{
    KARSetDevelopmentStageHandler(&StageZeroOnly);
    EXPECT_FALSE(KARMPVerify(false));
    KARMPReportFailedCheck("", "dir/site.cpp", 17);
    ASSERT_EQ(Log().size(), 2U);
    EXPECT_EQ(Log()[1].rfind("AssertionFailed: \nFile: dir/site.cpp\nLine: 17\n", 0), 0U);
}

TEST_F(FailedCheckProcess, TheSilencingVariableOutweighsTheDevelopmentStage)
{
    KARSetDevelopmentStageHandler(&StageZeroOnly);
    EXPECT_FALSE(KARMPVerify(false));
    EXPECT_TRUE(Log().empty());
}

TEST_F(FailedCheckProcess, TheAbendVariableOutweighsTheDevelopmentStage)
{
    KARSetDevelopmentStageHandler(&StageZeroOnly);
    EXPECT_THROW(KARMPReportFailedCheck("", "site.cpp", 1), Fatal);
    EXPECT_TRUE(Log().empty());
}

TEST_F(FailedCheckProcess, AFatalReportEndsTheProcessInTheDevelopmentStage)
{
    KARSetDevelopmentStageHandler(&StageZeroOnly);
    try {
        KARMPCheckFailed("message", "dir/site.cpp", 17, false, true);
        FAIL() << "The report returned";
    } catch (const Fatal& fatal) {
        EXPECT_EQ(fatal.text.rfind("AssertionFailed: message\nFile: dir/site.cpp\n", 0), 0U);
        EXPECT_EQ(fatal.path, "dir/site.cpp");
        EXPECT_EQ(fatal.line, 17);
    }
    try {
        KARMPCheckFailed("message", "dir/site.cpp", 17, true, true);
        FAIL() << "The report returned";
    } catch (const Fatal& fatal) {
        EXPECT_EQ(fatal.text.rfind("AssertionFailed: \n", 0), 0U);
        EXPECT_FALSE(fatal.hasPath);
        EXPECT_EQ(fatal.line, 0);
    }
    EXPECT_TRUE(Log().empty());
}

TEST_F(FailedCheckProcess, AFatalReportHasNoEffectInANormalRun)
{
    EXPECT_NO_THROW(KARMPCheckFailed("message", "site.cpp", 1, false, true));
}

TEST_F(FailedCheckProcess, AListenerHearsAReportBeforeTheProcessEnds)
{
    Ear ear;
    EXPECT_THROW(KARMPReportFailedCheck("", "site.cpp", 1), Fatal);
    EXPECT_EQ(ear.locations.size(), 1U);
}

TEST_F(FailedCheckProcess, AListenerHearsASilencedReport)
{
    Ear ear;
    KARMPReportFailedCheck("", "site.cpp", 1);
    EXPECT_EQ(ear.locations.size(), 1U);
}

namespace {

struct Traced
{
    std::string report;
    std::string callerOfSite;
};

[[gnu::noinline]] Traced ReportFromASite()
{
    KARMPReportFailedCheck("", "site.cpp", 1);
    KARStackTrace trace;
    trace.GetTrace();
    char buffer[1024];
    trace.Read(1, buffer, sizeof buffer);
    return {Log().back(), buffer};
}

} // namespace

TEST_F(FailedCheckProcess, TheTextLeavesOutTheReportingCodeItself)
{
    KARSetDevelopmentStageHandler(&StageZeroOnly);
    const Traced traced = ReportFromASite();
    // Three lines of location, the line of the site's own frame, then its caller's.
    const std::vector<std::string> lines = Lines(traced.report);
    ASSERT_GT(lines.size(), 5U);
    EXPECT_EQ(lines[4], traced.callerOfSite);
}

#if defined(HAS_SHALLOW_STACK)
namespace {

std::string& ShallowText()
{
    static std::string text;
    return text;
}

void BuildShallowText()
{
    KARUnicodeString text;
    KARMPBuildFailureText("message", "site.cpp", 1, false, text);
    ShallowText() = text.Text();
}

} // namespace

TEST(FailedCheck, AStackOfAtMostThreeFramesGivesNoFrameLines)
{
    std::vector<char> stack(std::size_t{256} * 1024);
    ucontext_t here = {};
    ucontext_t there = {};
    ASSERT_EQ(getcontext(&there), 0);
    there.uc_stack.ss_sp = stack.data();
    there.uc_stack.ss_size = stack.size();
    there.uc_link = &here;
    makecontext(&there, &BuildShallowText, 0);
    ASSERT_EQ(swapcontext(&here, &there), 0);
    EXPECT_EQ(ShallowText(), "AssertionFailed: message\nFile: site.cpp\nLine: 1\n");
}
#endif

TEST(FailedCheck, TheTextHasALineForEachFrameBeyondTheThird)
{
    KARStackTrace trace;
    trace.GetTrace();
    KARUnicodeString text("what was there before");
    KARMPBuildFailureText("message", "site.cpp", -1, true, text);
    // The text's own trace is one frame deeper than this one.
    ASSERT_GE(trace.GetDepth(), 3);
    const auto frames = static_cast<std::size_t>(trace.GetDepth()) + 1 - 3;
    EXPECT_EQ(Lines(text.Text()).size(), 1 + frames);
    EXPECT_EQ(Lines(text.Text()).front(), "AssertionFailed: ");
}

TEST(FailedCheck, AReportNamesThePlaceOfTheCheck)
{
    Ear ear;
    EXPECT_FALSE(KARMPVerify(1 > 2));
    const int line = __LINE__ - 1;
    ASSERT_EQ(ear.locations.size(), 1U);
    EXPECT_EQ(ear.locations[0].line, line);
    EXPECT_STREQ(ear.locations[0].file, __FILE__);
}

namespace {

bool CheckForACaller(bool holds, KARMPSourceLocation where = KARMPSourceLocation::current())
{
    return KARMPVerify(holds, where);
}

} // namespace

TEST(FailedCheck, AHelperReportsThePlaceOfItsCaller)
{
    Ear ear;
    EXPECT_FALSE(CheckForACaller(false));
    const int line = __LINE__ - 1;
    ASSERT_EQ(ear.locations.size(), 1U);
    EXPECT_EQ(ear.locations[0].line, line);
}

TEST(FailedCheck, TheInnermostListenerAloneHearsAReport)
{
    Ear outer;
    {
        Ear inner;
        EXPECT_FALSE(KARMPVerify(false));
        EXPECT_EQ(inner.locations.size(), 1U);
    }
    EXPECT_EQ(outer.locations.size(), 0U);
    EXPECT_FALSE(KARMPVerify(false));
    EXPECT_EQ(outer.locations.size(), 1U);
}

TEST(FailedCheck, AListenerMayDieBeforeOneThatCameLater)
{
    auto first = std::make_unique<Ear>();
    auto second = std::make_unique<Ear>();
    auto third = std::make_unique<Ear>();
    second.reset();
    EXPECT_FALSE(KARMPVerify(false));
    EXPECT_EQ(third->locations.size(), 1U);
    third.reset();
    EXPECT_FALSE(KARMPVerify(false));
    EXPECT_EQ(first->locations.size(), 1U);
}

TEST(FailedCheck, AReportInAnotherThreadIsNotHeard)
{
    Ear ear;
    std::size_t heardThere = 0;
    std::thread([&heardThere] {
        EXPECT_FALSE(KARMPVerify(false));
        Ear other;
        EXPECT_FALSE(KARMPVerify(false));
        heardThere = other.locations.size();
    }).join();
    EXPECT_EQ(heardThere, 1U);
    EXPECT_TRUE(ear.locations.empty());
}

TEST(FailedCheck, AReportMadeByAListenerGoesToTheOneAroundIt)
{
    class Complaining : public Ear
    {
    public:
        void OnFailedCheck(const char* file, int line) override
        {
            Ear::OnFailedCheck(file, line);
            KARMPReportFailedCheck("", "listener.cpp", 2);
        }
    };
    Ear outer;
    Complaining inner;
    KARMPReportFailedCheck("", "site.cpp", 1);
    ASSERT_EQ(inner.locations.size(), 1U);
    ASSERT_EQ(outer.locations.size(), 1U);
    EXPECT_EQ(outer.locations[0].line, 2);
    KARMPReportFailedCheck("", "site.cpp", 1);
    EXPECT_EQ(inner.locations.size(), 2U);
}

TEST(FailedCheck, WithoutListenersTheListenedBitIsClear)
{
    EXPECT_EQ(FlagsNow() & KARMPFailedCheckFlags::Listened, 0U);
    {
        Ear ear;
        EXPECT_NE(FlagsNow() & KARMPFailedCheckFlags::Listened, 0U);
    }
    EXPECT_EQ(FlagsNow() & KARMPFailedCheckFlags::Listened, 0U);
}
