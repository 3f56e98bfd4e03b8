// What the tool shows of its progress on a terminal.
#include "ToolFixture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace karmp::tool {

namespace {

constexpr std::string_view RemoveLine = "\r\033[K";

class ToolProgress : public Tool
{
protected:
    /// The output of a command that has a terminal of its own, with commands before it.
    static Outcome RunOnTerminal(const std::string& arguments, const std::string& before = {},
                                 int columns = 300)
    {
        return RunShell("script --quiet --return --command \"stty columns " +
                        std::to_string(columns) + "; " + before + KARMP_TOOL + ' ' + arguments +
                        "\" /dev/null </dev/null");
    }

    /// Gives a small document to the standard input of the next command, late.
    std::string Late() const
    {
        return "(sleep 1.5; cat " + Write("small.xml", CleanDocument()) + ") | ";
    }

    /// A document that takes longer than half a second to read.
    std::string LargeFile() const
    {
        constexpr int count = 300000;
        std::string constants;
        for (int number = 0; number < count; ++number) {
            const std::string name = 'k' + std::to_string(number);
            constants += "<Constant id=\"" + name + "\" name=\"" + name +
                         "\" isActive=\"yes\"><PhysicalQuantity>Length</PhysicalQuantity>"
                         "<Value>0.05</Value></Constant>\n";
        }
        return Write("large.xml", With(CleanDocument(), "  </Values>", constants + "  </Values>"));
    }

    static void ExpectShown(const std::string& output, const std::string& activity)
    {
        const std::string begin = std::string(RemoveLine) + activity;
        const std::size_t first = output.find(begin);
        ASSERT_NE(first, std::string::npos) << activity << "\nis not in\n" << output;
        // What comes after the last of the lines removes it.
        const std::size_t last = output.rfind(begin);
        const std::size_t removal = output.find(RemoveLine, last + begin.size());
        EXPECT_NE(removal, std::string::npos) << output;
        EXPECT_EQ(output.substr(last, removal - last).find('\n'), std::string::npos) << output;
    }
};

} // namespace

TEST_F(ToolProgress, TellsWhatHowMuchAndTheTimeLeftAndRemovesTheLine)
{
    const std::string file = LargeFile();
    const Outcome checked = RunOnTerminal("check " + file);
    ExpectShown(checked.output, "checking " + file + ": ");
    ExpectContains(checked.output, " entities, about ");
    ExpectContains(checked.output, " s left");
}

TEST_F(ToolProgress, TellsWhatIsDoneWhereNothingIsCountedYet)
{
    ExpectShown(RunOnTerminal("info -", Late()).output, "loading - ...");
}

TEST_F(ToolProgress, StaysOnOneLineOfANarrowTerminal)
{
    const std::string output = RunOnTerminal("info -", Late(), 12).output;
    ExpectContains(output, std::string(RemoveLine) + "loading - ." + std::string(RemoveLine));
}

TEST_F(ToolProgress, OfSeveralFilesCountsThem)
{
    const std::string file = LargeFile();
    const Outcome outcome = RunOnTerminal("check " + file + ' ' + file);
    ExpectShown(outcome.output, "checking: 1 of 2 files, about ");
}

TEST_F(ToolProgress, IsSilentWithoutATerminal)
{
    const std::string file = LargeFile();
    const std::string output = RunOnTerminal("check " + file + " 2>" + File("errors")).output;
    EXPECT_EQ(output.find("checking"), std::string::npos) << output;
    EXPECT_EQ(ReadFile(File("errors")), "");
    EXPECT_EQ(Run("check " + file).output.find("checking"), std::string::npos);
}

TEST_F(ToolProgress, IsSilentForWhatIsDoneAtOnce)
{
    const std::string file = Write("small.xml", CleanDocument());
    const Outcome outcome = RunOnTerminal("check " + file);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output.find("checking"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find(RemoveLine), std::string::npos) << outcome.output;
}

} // namespace karmp::tool
