// Runs the tool as a user does and tests its output and exit code.
#include "Mobility.h"
#include "Output.h"
#include "ToolFixture.h"

#include <algorithm>
#include <array>
#include <string>

namespace karmp::tool {

namespace {

TEST_F(Tool, HelpsOnItselfAndOnEachCommandWithAnExample)
{
    const Outcome all = Run("--help");
    EXPECT_EQ(all.code, 0);
    for (const std::string command :
         {"info", "tree", "check", "convert", "diff", "extract", "graph", "outputs", "schema"}) {
        ExpectContains(all.output, command);
        const Outcome help = Run(command + " --help");
        EXPECT_EQ(help.code, 0);
        ExpectContains(help.output, "Example:\n  karmp " + command);
        ExpectContains(help.output, "Exit code");
    }
}

TEST_F(Tool, RefusesAnUnknownCommandAndMissingArguments)
{
    EXPECT_EQ(Run("").code, 64);
    EXPECT_EQ(Run("frobnicate").code, 64);
    EXPECT_EQ(Run("info").code, 64);
}

TEST_F(Tool, FindsNothingInACleanDocument)
{
    const std::string file = Write("clean.xml", CleanDocument());
    const Outcome check = Run("check " + file);
    EXPECT_EQ(check.code, 0) << check.output;
    ExpectContains(check.output, "no findings");
}

TEST_F(Tool, WarnsOfWhatCannotWorkInAMechanism)
{
    std::string text = CleanDocument();
    text.insert(text.find(" </World>"),
                "  <Actuators><Motor id=\"m\" name=\"Drive\" isActive=\"yes\"><TargetType>"
                "NotSpecified</TargetType></Motor></Actuators>\n");
    const std::string file = Write("motor.xml", text);
    const Outcome check = Run("check " + file);
    EXPECT_EQ(check.code, 1);
    ExpectContains(check.output, "warning: the motor drives no variable [motor-without-variable]");
    ExpectContains(check.output, "0 errors, 1 warning\n");
}

TEST_F(Tool, TellsFindingsAsTextAndAsJson)
{
    std::string text = CleanDocument();
    text.replace(text.find("<Boolean id=\"b1\""), 16, "<Boolean id=\"c1\"");
    const std::string file = Write("doubled.xml", text);
    const auto line = std::to_string(
        1 + std::count(text.begin(),
                       text.begin() + static_cast<std::ptrdiff_t>(text.find("<Boolean")), '\n'));
    const Outcome check = Run("check " + file);
    EXPECT_EQ(check.code, 1);
    ExpectContains(check.output, "doubled.xml:" + line + ":");
    ExpectContains(check.output, "duplicate-identifier");
    const Outcome json = Run("check --json " + file);
    EXPECT_EQ(json.code, 1);
    EXPECT_EQ(json.output.front(), '{');
    ExpectContains(json.output, "\"code\": \"duplicate-identifier\"");
    ExpectContains(json.output, "\"line\": " + line);
    EXPECT_EQ(Run("info " + file).code, 1);
}

TEST_F(Tool, EndsWithTwoForWhatItCannotRead)
{
    const std::array bad{Write("garbage.xml", "\x01\x02\xff\xfe garbage"), Write("empty.xml", ""),
                         Write("root.xml", "<Other/>"), File(""), File("missing.xml")};
    for (const std::string& file : bad) {
        for (const std::string command : {"info", "tree", "check", "graph", "outputs"}) {
            const Outcome outcome = Run(command + " '" + file + "'");
            EXPECT_EQ(outcome.code, 2) << command << ' ' << file << '\n' << outcome.output;
            EXPECT_FALSE(outcome.output.empty());
        }
        EXPECT_EQ(Run("convert '" + file + "' " + File("out.xml")).code, 2);
        EXPECT_FALSE(fs::exists(File("out.xml")));
    }
}

TEST_F(Tool, CountsEntitiesByFamilyAndClass)
{
    const Outcome info = Run("info " + Write("clean.xml", CleanDocument()));
    EXPECT_EQ(info.code, 0) << info.output;
    ExpectContains(info.output, "R2018.1");
    ExpectContains(info.output, "Revolute");
    ExpectContains(info.output, "As a planar mechanism   1");
    ExpectContains(info.output, "Values");
    ExpectContains(info.output, "Constant");
    ExpectContains(info.output, "Total mass");
    ExpectContains(info.output, "Centre of mass");
    ExpectContains(info.output, "\n  Total                  25\n");
    const Outcome empty =
        Run("info " + Write("empty.xml", "<KARMPDocument version=\"R2018.1\"><World/>"
                                         "</KARMPDocument>"));
    ExpectContains(empty.output, "\n  Total  0\n");
    EXPECT_EQ(empty.output.find("Centre of mass"), std::string::npos);
}

TEST_F(Tool, ShowsTheEntitiesByTheirNames)
{
    const std::string file = Write("clean.xml", CleanDocument());
    const Outcome tree = Run("tree " + file);
    EXPECT_EQ(tree.code, 0) << tree.output;
    ExpectContains(tree.output, "Bodies: Body \"GlobalBody\" (Out), Body \"Crank\" (In)");
    EXPECT_EQ(Run("tree --family Values " + file).output,
              "Values\n  Constant \"Damping\"\n  Boolean \"Visible\" (inactive)\n");
    ExpectContains(Run("tree --ids " + file).output, "Constant \"Damping\" [c1]");
    ExpectContains(Run("tree --json " + file).output, "\"name\": \"Visible\", \"active\": false");
    const Outcome worldless =
        Run("tree " + Write("worldless.xml", "<KARMPDocument version=\"R2018.1\"/>"));
    EXPECT_EQ(worldless.code, 2);
    ExpectContains(worldless.output, "karmp: the document has no World\n");
    const Outcome none = Run("tree --family Shapes " + file);
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.output, "karmp: the world has no list Shapes\n");
    const std::string world = "<KARMPDocument version=\"R2018.1\"><World/></KARMPDocument>";
    EXPECT_EQ(Run("tree " + Write("empty.xml", world)).output.find("no list"), std::string::npos);
    EXPECT_EQ(Run("tree --ids " +
                  Write("nameless.xml", With(CleanDocument(), "name=\"Damping\"", "name=\"\"")))
                  .output.find("[c1] [c1]"),
              std::string::npos);
}

TEST_F(Tool, ConvertsToACanonicalFormThatStaysAsItIs)
{
    const std::string file = Write("clean.xml", CleanDocument());
    EXPECT_EQ(Run("convert " + file + ' ' + File("first.xml")).code, 0);
    EXPECT_EQ(Run("convert " + File("first.xml") + ' ' + File("second.xml")).code, 0);
    EXPECT_FALSE(ReadFile(File("first.xml")).empty());
    EXPECT_EQ(ReadFile(File("first.xml")), ReadFile(File("second.xml")));
}

TEST_F(Tool, ListsWhatAnOlderVersionCannotHold)
{
    const std::string file = Write("clean.xml", CleanDocument());
    const Outcome convert = Run("convert --to R2016.1 " + file + ' ' + File("old.xml"));
    EXPECT_EQ(convert.code, 1) << convert.output;
    ExpectContains(convert.output, "R2016.1 cannot hold");
    ExpectContains(convert.output, "Boolean \"Visible\" [b1]\n  isActive: no becomes yes\n");
    ExpectContains(ReadFile(File("old.xml")), "version=\"R2016.1\"");
    EXPECT_EQ(Run("convert --to R1999 " + file + ' ' + File("never.xml")).code, 64);
    EXPECT_FALSE(fs::exists(File("never.xml")));
}

TEST_F(Tool, SaysWhenItCannotWrite)
{
    const std::string file = Write("clean.xml", CleanDocument());
    EXPECT_EQ(Run("convert " + file + " /nonexistent/out.xml").code, 2);
    EXPECT_EQ(Run("info " + file + " >/dev/full").code, 2);
}

TEST(Mobility, OfASliderCrankIsOneInThePlane)
{
    const auto mobility =
        karmp::tool::EstimateMobility(3, {{"KARMPRevolute", 3}, {"KARMPPrismatic", 1}});
    EXPECT_EQ(mobility.planar, 1);
    EXPECT_EQ(mobility.spatial, -2);
    EXPECT_TRUE(mobility.mayBePlanar);
    EXPECT_EQ(mobility.notCounted, 0);
}

TEST(Mobility, TellsWhichJointsItDoesNotCount)
{
    const auto mobility = karmp::tool::EstimateMobility(
        2, {{"KARMPSpherical", 1}, {"KARMPUserDefined", 2}, {"KARMPGear", 1}});
    EXPECT_EQ(mobility.spatial, 12 - 3 - 1);
    EXPECT_FALSE(mobility.mayBePlanar);
    EXPECT_EQ(mobility.notCounted, 2);
}

TEST(Output, WritesControlCharactersAsEscapes)
{
    EXPECT_EQ(karmp::tool::Printable(std::string_view("a\033[31mb\n")), "a\\x1b[31mb\\x0a");
    EXPECT_EQ(karmp::tool::Printable(std::string_view("\xC2\x9B")), "\\x9b");
    EXPECT_EQ(karmp::tool::Printable(std::string_view("caf\xC3\xA9")), "caf\xC3\xA9");
    EXPECT_EQ(karmp::tool::Printable(std::string_view("\x7f \xC2\x9F \xC2\xA0")),
              "\\x7f \\x9f \xC2\xA0");
    EXPECT_EQ(karmp::tool::JsonText("a\"b\\\n"), "\"a\\\"b\\\\\\u000a\"");
}

TEST(Output, TakesNoOtherBytesForUtf8)
{
    // Forms that are longer than need be, a surrogate, a character beyond the last one, a cut one.
    for (const std::string_view bytes : {"\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
                                         "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
        EXPECT_EQ(karmp::tool::Printable(bytes).substr(0, 2), "\\x");
        EXPECT_EQ(karmp::tool::JsonText(bytes).substr(0, 7), "\"\\ufffd");
    }
    for (const std::string_view bytes :
         {"\xC2\xA0", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_EQ(karmp::tool::Printable(bytes), bytes);
}

} // namespace

} // namespace karmp::tool
