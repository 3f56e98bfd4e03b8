// Documents with errors are converted only with --force, and never onto themselves.
#include "ToolFixture.h"

#include <string>

namespace karmp::tool {

namespace {

std::string Replaced(std::string text, const std::string& part, const std::string& by)
{
    const auto found = text.find(part);
    EXPECT_NE(found, std::string::npos) << part;
    return found == std::string::npos ? text : text.replace(found, part.size(), by);
}

std::string DoubledDocument()
{
    return Replaced(CleanDocument(), "<Boolean id=\"b1\"", "<Boolean id=\"c1\"");
}

std::string WithManyWarnings(const std::string& text)
{
    std::string warnings;
    for (int i = 0; i < 2000; ++i)
        warnings += "<Nothing/>";
    return Replaced(text, "<OutOfWorld>", warnings + "<OutOfWorld>");
}

class ConvertOfErrors : public Tool
{
protected:
    // Nothing is written onto another file nor onto itself, and the messages tell why.
    void ExpectRefused(const std::string& text, const std::string& code)
    {
        const std::string input = Write("in.xml", text);
        const std::string old = Write("old.xml", "what was there before");
        const Outcome outcomes[] = {Run("convert " + input + ' ' + File("out.xml")),
                                    Run("convert " + input + ' ' + old),
                                    Run("convert " + input + ' ' + input)};
        for (const Outcome& outcome : outcomes) {
            EXPECT_EQ(outcome.code, 2) << outcome.output;
            ExpectContains(outcome.output, '[' + code + ']');
            ExpectContains(outcome.output, "nothing was written");
            ExpectContains(outcome.output, "--force");
        }
        EXPECT_EQ(ReadFile(input), text);
        EXPECT_EQ(ReadFile(old), "what was there before");
        EXPECT_EQ(Files(), (std::set<std::string>{"in.xml", "old.xml"}));
    }

    // Not even with --force, by whichever name the input goes.
    void ExpectNeverOverwritten(const std::string& input, const std::string& output)
    {
        const std::string before = ReadFile(input);
        for (const std::string option : {"", "--force "}) {
            const Outcome outcome = Run("convert " + option + input + ' ' + output);
            EXPECT_EQ(outcome.code, 2) << output << '\n' << outcome.output;
            ExpectContains(outcome.output, "never overwritten");
        }
        EXPECT_EQ(ReadFile(input), before);
    }
};

TEST_F(ConvertOfErrors, RefusesAnUnknownClass)
{
    ExpectRefused(Replaced(CleanDocument(), "  <Values>\n",
                           "  <Values>\n   <Frobnicator id=\"f\" name=\"f\" isActive=\"yes\"/>\n"),
                  "unknown-class");
}

TEST_F(ConvertOfErrors, RefusesADoubledIdentifier)
{
    ExpectRefused(DoubledDocument(), "duplicate-identifier");
}

TEST_F(ConvertOfErrors, RefusesAnUnresolvedReference)
{
    ExpectRefused(Replaced(CleanDocument(), "<Variable id=\"Crank angle\"", "<Variable id=\"K9\""),
                  "unresolved-reference");
}

TEST_F(ConvertOfErrors, RefusesADamagedValue)
{
    ExpectRefused(Replaced(CleanDocument(), "<Mass>1.2</Mass>", "<Mass>heavy</Mass>"),
                  "invalid-value");
}

TEST_F(ConvertOfErrors, RefusesAnErrorBehindManyWarnings)
{
    ExpectRefused(WithManyWarnings(DoubledDocument()), "duplicate-identifier");
}

TEST_F(Tool, ConvertsADocumentOfManyWarnings)
{
    const std::string input = Write("in.xml", WithManyWarnings(CleanDocument()));
    const Outcome convert = Run("convert " + input + ' ' + File("out.xml"));
    EXPECT_EQ(convert.code, 1) << convert.output;
    ExpectContains(convert.output, "2000 problems");
    EXPECT_EQ(Run("check " + File("out.xml")).code, 0);
}

TEST_F(ConvertOfErrors, WritesWhatCouldBeReadToAnotherFileWhenForced)
{
    const std::string text = DoubledDocument();
    const std::string input = Write("in.xml", text);
    const Outcome forced = Run("convert --force " + input + ' ' + File("out.xml"));
    EXPECT_EQ(forced.code, 1) << forced.output;
    EXPECT_EQ(Run("check " + File("out.xml")).code, 0);
    ExpectContains(ReadFile(File("out.xml")), "id=\"Crank\"");
    EXPECT_EQ(ReadFile(input), text);
}

TEST_F(ConvertOfErrors, NeverOverwritesTheInputByWhicheverNameItGoes)
{
    const std::string input = Write("in.xml", DoubledDocument());
    fs::create_symlink(input, File("link.xml"));
    fs::create_hard_link(input, File("twin.xml"));
    ExpectNeverOverwritten(input, input);
    ExpectNeverOverwritten(input, File("./in.xml"));
    ExpectNeverOverwritten(input, File("link.xml"));
    ExpectNeverOverwritten(input, File("twin.xml"));
    ExpectNeverOverwritten(File("link.xml"), input);
    EXPECT_TRUE(fs::is_symlink(File("link.xml")));
    EXPECT_EQ(fs::hard_link_count(input), 2U);
}

TEST_F(ConvertOfErrors, TellsAFewOfManyErrors)
{
    std::string doubled;
    for (int i = 0; i < 30; ++i)
        doubled += R"(   <String id="s" name="s" isActive="yes"><Value>a</Value></String>)"
                   "\n";
    const std::string input =
        Write("in.xml", Replaced(CleanDocument(), "  <Values>\n", "  <Values>\n" + doubled));
    const Outcome refused = Run("convert " + input + ' ' + File("out.xml"));
    EXPECT_EQ(refused.code, 2);
    ExpectContains(refused.output, "... and 19 more\n");
    ExpectContains(refused.output, "has 29 errors");
}

TEST_F(Tool, ConvertsOntoItsInputWhenThatHasNoErrors)
{
    const std::string file = Write("clean.xml", CleanDocument());
    EXPECT_EQ(Run("convert " + file + ' ' + file).code, 0);
    EXPECT_EQ(Run("check " + file).code, 0);
}

TEST_F(Tool, LeavesAnOldFileWhenTheDiskIsFull)
{
    const std::string file = Write("clean.xml", CleanDocument());
    const std::string old = Write("old.xml", "what was there before");
    const Outcome full = Run("convert " + file + ' ' + old, "trap '' XFSZ; ulimit -f 2;");
    EXPECT_EQ(full.code, 2) << full.output;
    ExpectContains(full.output, "cannot-write");
    EXPECT_EQ(ReadFile(old), "what was there before");
    EXPECT_EQ(Files(), (std::set<std::string>{"clean.xml", "old.xml"}));
    EXPECT_EQ(Run("convert " + file + " /dev/full").code, 2);
}

} // namespace

} // namespace karmp::tool
