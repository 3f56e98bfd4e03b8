// Documents with errors are converted only with --force, and never onto themselves.
#include "JsonText.h"
#include "ToolFixture.h"

#include <algorithm>
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

TEST_F(ConvertOfErrors, CountsErrorsAndWhatIsNotRead)
{
    const std::string input =
        Write("in.xml", Replaced(DoubledDocument(), "<OutOfWorld>", "<Colour/><OutOfWorld>"));
    ExpectContains(Run("convert " + input + ' ' + File("out.xml")).output,
                   "in.xml has 1 error and 1 item that is not read; nothing was written.");
}

TEST_F(ConvertOfErrors, RefusesItemsThatNothingReads)
{
    ExpectRefused(Replaced(CleanDocument(), "<Mass>1.2</Mass>", "<Mass>1.2</Mass><Colour/>"),
                  "unknown-element");
    ExpectRefused(Replaced(CleanDocument(), "is_fixed=\"no\"", "is_fixed=\"no\" fixed=\"no\""),
                  "unknown-attribute");
    ExpectRefused(Replaced(CleanDocument(), "is_fixed=\"no\"", "is_fixed=\"false\""),
                  "invalid-value");
    ExpectRefused(Replaced(CleanDocument(), "<Weight>", "<Weight>heavy"), "unexpected-text");
    ExpectRefused(
        Replaced(CleanDocument(), "<OutOfWorld>", "<OutOfWorld>true</OutOfWorld><OutOfWorld>"),
        "duplicate-element");
}

TEST_F(Tool, ConvertsADocumentOfManyWarningsWhenForced)
{
    const std::string input = Write("in.xml", WithManyWarnings(CleanDocument()));
    const Outcome convert = Run("convert --force " + input + ' ' + File("out.xml"));
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
    EXPECT_EQ(forced.output, "karmp: the document has 1 problem; 'karmp check' lists them\n");
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

TEST_F(ConvertOfErrors, OverwritesTheInputWhenForcedAndTheOldFileIsKept)
{
    const std::string text = DoubledDocument();
    const std::string input = Write("in.xml", text);
    EXPECT_EQ(Run("convert --force --backup " + input + ' ' + input).code, 1);
    EXPECT_EQ(ReadFile(input + '~'), text);
    EXPECT_EQ(Run("check " + input).code, 0);
    EXPECT_EQ(Run("convert --backup=.old " + input + ' ' + input).code, 0);
    EXPECT_EQ(Files(), (std::set<std::string>{"in.xml", "in.xml~", "in.xml.old"}));
}

TEST_F(ConvertOfErrors, WritesNothingWhenTheOldFileCannotBeKept)
{
    const std::string text = DoubledDocument();
    const std::string input = Write("in.xml", text);
    EXPECT_EQ(Run("convert --force --backup=/none/x " + input + ' ' + input).code, 2);
    EXPECT_EQ(ReadFile(input), text);
}

TEST_F(ConvertOfErrors, AreListedByADryRunThatWritesNothing)
{
    const std::string text = Replaced(DoubledDocument(), "<OutOfWorld>false", "<OutOfWorld>true");
    const std::string input = Write("in.xml", text);
    const Outcome dry = Run("convert --dry-run --to R2016.0 " + input + ' ' + input);
    EXPECT_EQ(dry.code, 2);
    ExpectContains(dry.output, "[duplicate-identifier]");
    ExpectContains(dry.output, "has 1 error; nothing was written.");
    ExpectContains(dry.output, "Version R2016.0 cannot hold:");
    ExpectContains(dry.output, "  OutOfWorld: yes becomes no\n");
    EXPECT_EQ(ReadFile(input), text);
    EXPECT_EQ(Files(), std::set<std::string>{"in.xml"});
    const std::string clean = Write("clean.xml", CleanDocument());
    const Outcome nothing = Run("convert --dry-run " + clean + " -");
    EXPECT_EQ(nothing.code, 0);
    EXPECT_EQ(nothing.output, "");
}

TEST_F(Tool, ADryRunTellsOfFilesThatCannotBeWritten)
{
    const std::string file = Write("clean.xml", CleanDocument());
    const std::string missing = File("missing/x.xml");
    for (const std::string& line :
         {"convert " + file + ' ' + missing, "convert " + file + ' ' + file + "/x.xml",
          "convert " + file + ' ' + File(""), "convert " + file + ' ' + file + " --backup=/x",
          "extract " + file + " --body Crank -o " + missing,
          "set " + file + " Crank Mass=2 -o " + missing, "delete " + file + " Damping --backup=/x",
          "shape " + file + " --body Crank --add '" KARMP_TEST_PARTS "/tetrahedron.stl' -o " +
              missing}) {
        const Outcome dry = Run(line + " --dry-run");
        EXPECT_EQ(dry.code, 2) << line << '\n' << dry.output;
        ExpectContains(dry.output, "[cannot-write]");
        EXPECT_EQ(dry.output, Run(line).output) << line;
        EXPECT_EQ(std::count(dry.output.begin(), dry.output.end(), '\n'), 1) << dry.output;
    }
    EXPECT_EQ(ReadFile(file), CleanDocument());
    EXPECT_EQ(Files(), std::set<std::string>{"clean.xml"});
    fs::create_symlink("nowhere.xml", File("link.xml"));
    for (const std::string& output : {file, File("new.xml"), File("link.xml"), std::string("-")})
        EXPECT_EQ(Run("convert --dry-run --backup " + file + ' ' + output).code, 0) << output;
}

TEST_F(ConvertOfErrors, AreToldAsJsonWhereNothingIsWritten)
{
    const std::string input = Write("in.xml", DoubledDocument());
    for (const std::string& line :
         {"convert --json " + input + ' ' + File("out.xml"),
          "convert --json " + input + ' ' + input,
          "extract --json " + input + " --body Crank -o " + File("out.xml"),
          "set --json " + input + " Crank Mass=2"}) {
        const Outcome refused = RunQuietly(line);
        EXPECT_EQ(refused.code, 2) << line;
        EXPECT_TRUE(JsonReader::IsJson(refused.output)) << refused.output;
        ExpectContains(refused.output, "\"code\": \"duplicate-identifier\"");
        ExpectContains(refused.output, "\"written\": false");
        EXPECT_EQ(refused.output, RunQuietly(line + " --dry-run").output) << line;
        ExpectContains(Run(line).output, "nothing was written");
    }
    const std::string toOutput = "convert --json " + input + " -";
    EXPECT_EQ(RunQuietly(toOutput).output, "");
    ExpectContains(Run(toOutput).output, "\"written\": false");
    EXPECT_EQ(ReadFile(input), DoubledDocument());
    EXPECT_EQ(Files(), std::set<std::string>{"in.xml"});
}

class Canonical : public Tool
{
protected:
    // Twice the same bytes, and the same once more of those.
    void ExpectStable(const std::string& input, const std::string& arguments = {})
    {
        SCOPED_TRACE(input + arguments);
        const auto convert = [&](const std::string& from, const std::string& to) {
            EXPECT_LT(Run("convert --force " + arguments + ' ' + from + ' ' + File(to)).code, 2);
            return ReadFile(File(to));
        };
        const std::string first = convert(input, "first.xml");
        EXPECT_FALSE(first.empty());
        EXPECT_TRUE(convert(input, "again.xml") == first);
        EXPECT_TRUE(convert(File("first.xml"), "second.xml") == first);
    }
};

TEST_F(Canonical, IsWhatConvertWritesOfEachExampleAndVersion)
{
    for (const auto& example : fs::directory_iterator(KARMP_EXAMPLE_DOCUMENTS))
        for (const std::string version : {"", "--to R2015x.0", "--to R2017.0", "--exact"})
            ExpectStable(example.path().string(), version);
}

TEST_F(Canonical, HasGlobalsOfStableIdentifiers)
{
    const std::string input =
        Write("in.xml", "<KARMPDocument version=\"R2018.1\"><World><Bodies>"
                        "<Body id=\"z\" name=\"z\"/><Body id=\"A\" name=\"A\"/>"
                        "<Body id=\"GlobalBody\" name=\"b\"/></Bodies></World></KARMPDocument>");
    ExpectStable(input);
    ExpectContains(ReadFile(File("first.xml")), "<GlobalBody id=\"GlobalBody_2\" name=");
    EXPECT_EQ(Run("check " + File("first.xml")).code, 0);
}

TEST_F(Canonical, GivesConesIdentifiersThatAreTheSameEachTime)
{
    const std::string input = Write(
        "in.xml", Replaced(CleanDocument(), "<Geometries>\n   <",
                           "<Geometries>\n   <Cone id=\"c\" name=\"c\"/><Cone id=\"d\"/>\n   <"));
    ExpectStable(input);
    ExpectContains(ReadFile(File("first.xml")), "<Cone id=\"Cone_2\"");
}

TEST_F(Canonical, HasHugeNumbersThatAreFinite)
{
    const std::string four = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/four-bar.xml");
    const std::string huge = Write("huge.xml", With(four, "<Mass>0.4<", "<Mass>-1e297<"));
    const std::string text = RunQuietly("convert " + huge + " -").output;
    ExpectContains(text, "<Mass>-1e+297</Mass>");
    EXPECT_EQ(text.find("inf"), std::string::npos);
}

TEST_F(Tool, ListsWhatNoDocumentGivesBack)
{
    const std::string input = Write(
        "in.xml",
        Replaced(CleanDocument(), "<Geometries>\n   <",
                 "<Geometries>\n   <Cylinder id=\"c\" name=\"Pin\" isActive=\"yes\"><Coordinates>"
                 "<Cx>1</Cx><Cy>2</Cy><Cz>3</Cz><Nx>1</Nx><Ny>0</Ny><Nz>0</Nz><radius>2</radius>"
                 "</Coordinates></Cylinder>\n   <"));
    ASSERT_EQ(Run("check " + input).code, 0);
    const Outcome convert = Run("convert " + input + ' ' + File("out.xml"));
    EXPECT_EQ(convert.code, 1);
    EXPECT_EQ(convert.output, "Version R2018.1 cannot hold:\nCylinder \"Pin\" [c]\n"
                              "  Coordinates/Origin: (1, 2, 3) becomes (0, 0, 0)\n");
}

TEST_F(Tool, TellsWhatAVersionNeedsAndTheDocumentLacks)
{
    const std::string note =
        "<String id=\"s\" name=\"Note\" isActive=\"yes\"><Value>a</Value></String>";
    const std::string input =
        Write("in.xml", With(CleanDocument(), "</Values>", note + "</Values>"));
    EXPECT_EQ(Run("convert " + input + ' ' + File("new.xml")).output, "");
    const std::string line = "convert --to R2017.1 " + input + ' ' + File("out.xml");
    for (const std::string option : {" --dry-run", ""}) {
        const Outcome convert = Run(line + option);
        EXPECT_EQ(convert.code, 1);
        ExpectContains(convert.output, "String \"Note\" [s]: reading needs \"PhysicalQuantity\", "
                                       "which is missing [missing-element]");
    }
    ExpectContains(Run("check " + File("out.xml")).output, "[missing-element]");
}

TEST_F(Tool, ListsTheFirstThousandLosses)
{
    std::string inactive;
    for (int i = 0; i < 1001; ++i)
        inactive += "<Boolean id=\"i" + std::to_string(i) +
                    "\" name=\"\" isActive=\"no\"><PhysicalQuantity>Length</PhysicalQuantity>"
                    "<Value>TRUE</Value></Boolean>";
    const auto convert = [&](const std::string& values) {
        const std::string input =
            Write("in.xml", "<KARMPDocument version=\"R2018.1\"><World><Values>" + values +
                                "</Values></World></KARMPDocument>");
        const std::string output =
            RunQuietly("convert --force --dry-run --to R2017.0 " + input + " -").output;
        const std::string change = "  isActive: no becomes yes\n";
        std::size_t count = 0;
        for (auto at = output.find(change); at != std::string::npos;
             at = output.find(change, at + 1))
            ++count;
        EXPECT_EQ(count, 1000U);
        return output.substr(output.rfind(change) + change.size());
    };
    EXPECT_EQ(convert(inactive), "and 1 more\n");
    EXPECT_EQ(convert(inactive.substr(0, inactive.rfind("<Boolean"))), "");
}

TEST_F(Tool, ListsEachLayerThatNoRelationIsAbout)
{
    const std::string interactions = "<Interactions>\n";
    const std::string rule = "<RuleType>CollisionReaction</RuleType>";
    const std::string lonely = "   <CollisionLayer id=\"L7\" name=\"Lonely\" isActive=\"yes\">" +
                               rule +
                               "</CollisionLayer>\n"
                               "   <CollisionLayer id=\"L8\" name=\"Left\" isActive=\"yes\">" +
                               rule + "</CollisionLayer>\n";
    const std::string scene = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/collision.xml");
    const std::string input = Write("in.xml", Replaced(scene, interactions, interactions + lonely));
    const std::string output = File("out.xml");
    const auto told = [&](const std::string& line, const std::string& title,
                          const std::string& number) {
        return input + ':' + line + ":5: warning: CollisionLayer " + title +
               " is read, but the world does not list it, so that its document lacks it "
               "[not-read-back] at /KARMPDocument/World/Interactions/CollisionLayer[" +
               number + "]\n";
    };
    for (const std::string option : {"", "--dry-run "}) {
        const Outcome convert = Run("convert " + option + input + ' ' + output);
        EXPECT_EQ(convert.code, 1);
        EXPECT_EQ(convert.output,
                  told("299", "\"Lonely\" [L7]", "1") + told("300", "\"Left\" [L8]", "2"));
    }
    ExpectContains(Run("convert --dry-run --json " + input + " -").output,
                   "CollisionLayer[2]\", \"text\": \"CollisionLayer \\\"Left\\\" [L8]");
    // The layers of the relation are there, the others are not.
    EXPECT_EQ(Run("convert " + output + ' ' + File("again.xml")).output, "");
    EXPECT_EQ(ReadFile(output), ReadFile(File("again.xml")));
    ExpectContains(ReadFile(output), "<CollisionLayer id=\"Fixed parts\"");
    EXPECT_EQ(ReadFile(output).find("Lonely"), std::string::npos);
}

TEST_F(Tool, TellsLossesAsJson)
{
    const std::string input = Write("in.xml", DoubledDocument());
    const Outcome dry = Run("convert --dry-run --json --to R2016.0 " + input + " -");
    EXPECT_EQ(dry.code, 2);
    ExpectContains(dry.output, "\"written\": false");
    ExpectContains(dry.output, "\"code\": \"duplicate-identifier\"");
    ExpectContains(dry.output, "\"item\": \"Bodies/bodyOrientation\"");
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
