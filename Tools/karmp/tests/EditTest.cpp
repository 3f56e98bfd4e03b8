// Documents are edited from a command line.
#include "JsonText.h"
#include "ToolFixture.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace karmp::tool {

namespace {

class EditCommands : public Tool
{
protected:
    EditCommands() : m_document(Write("in.xml", CleanDocument())) {}

    std::string m_document;
};

TEST_F(EditCommands, SetStoresItemsAndTellsWhatChanged)
{
    const Outcome outcome = Run("set '" + m_document + "' Crank Mass=7.5 COG=0.1,0.2,0.3 -o '" +
                                File("out.xml") + '\'');
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    ExpectContains(outcome.output, "Mass");
    const std::string written = ReadFile(File("out.xml"));
    ExpectContains(written, "<Mass>7.5</Mass>");
    ExpectContains(written, "<COG><Px>0.1</Px><Py>0.2</Py><Pz>0.3</Pz></COG>");
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
    EXPECT_EQ(Run("check '" + File("out.xml") + '\'').code, 0);
}

TEST_F(EditCommands, WithoutAnOutputTheDocumentIsReplacedAndKeptAsABackup)
{
    const Outcome outcome = Run("rename '" + m_document + "' Crank Kurbel --backup");
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    ExpectContains(ReadFile(m_document), "name=\"Kurbel\"");
    EXPECT_EQ(ReadFile(m_document + "~"), CleanDocument());
}

TEST_F(EditCommands, TellWhatADiffOfBothDocumentsTells)
{
    const std::string other = File("out.xml");
    for (const std::string edit : {"delete Crank Damping Visible", "set Crank Mass=2 name=a=b"}) {
        const auto space = edit.find(' ');
        const std::string told = RunQuietly(edit.substr(0, space) + " '" + m_document + '\'' +
                                            edit.substr(space) + " -o '" + other + '\'')
                                     .output;
        const std::string diff = Run("diff '" + m_document + "' '" + other + '\'').output;
        EXPECT_EQ(told + diff.substr(told.size()), diff);
        EXPECT_EQ(diff.find('\n', told.size()), diff.size() - 1) << "only the summary is left";
    }
    ExpectContains(ReadFile(other), "name=\"a=b\"");
}

TEST_F(EditCommands, WhatTheWorldNeedsIsNotDeleted)
{
    const Outcome outcome = Run("delete '" + m_document + "' Damping GlobalBody");
    EXPECT_EQ(outcome.code, 64);
    EXPECT_EQ(outcome.output, "karmp: KARMPBody \"GlobalBody\" belongs to the world and stays\n");
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

TEST_F(EditCommands, ABackupByALinkToTheDocumentIsRefused)
{
    fs::create_symlink("in.xml", m_document + "~");
    const std::string line = "rename '" + m_document + "' Crank Kurbel --backup";
    for (const std::string option : {"", " --dry-run"}) {
        const Outcome outcome = Run(line + option);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.output, "karmp: " + m_document + "~ is a link to " + m_document +
                                      ", which it cannot keep; nothing was written. Choose "
                                      "another ending\n");
    }
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
    // Each name of a file that has two is replaced by itself.
    fs::remove(m_document + "~");
    fs::create_hard_link(m_document, m_document + "~");
    EXPECT_EQ(Run(line).code, 0);
    EXPECT_EQ(ReadFile(m_document + "~"), CleanDocument());
}

TEST_F(EditCommands, TheBackupOfAPrivateDocumentIsPrivate)
{
    constexpr fs::perms Private = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(m_document, Private);
    Write("in.xml~", "an older backup, for everybody");
    for (const char* const name : {"Kurbel", "Arm"}) {
        EXPECT_EQ(Run("rename '" + m_document + "' Crank --backup " + name).code, 0);
        EXPECT_EQ(fs::status(m_document + "~").permissions(), Private);
        EXPECT_EQ(fs::status(m_document).permissions(), Private);
    }
}

TEST_F(EditCommands, DryRunTellsAndWritesNothing)
{
    const Outcome outcome = Run("delete '" + m_document + "' Crank --dry-run");
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    ExpectContains(outcome.output, "Crank");
    ExpectContains(outcome.output, "lacks something");
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
    EXPECT_EQ(Files(), (std::set<std::string>{"in.xml"}));
}

TEST_F(EditCommands, ADryRunTellsWhatTheRealRunTells)
{
    const std::string other = File("out.xml");
    const std::string infinite =
        Write("infinite.xml", With(CleanDocument(), "<Value>0.05</Value>", "<Value>INF</Value>"));
    const std::string unread =
        Write("unread.xml", With(CleanDocument(), "  <Values>", "  <Nonsense/>\n  <Values>"));
    const struct
    {
        std::string arguments;
        int code;
        const char* told;
    } edits[] = {
        {"set '" + m_document + "' Crank Mass=-5 -o '" + other + '\'', 0, "becomes -5"},
        {"delete '" + m_document + "' Crank -o '" + other + '\'', 0, "lacks something"},
        {"set '" + m_document + "' Crank Mass=heavy -o '" + other + '\'', 64, "is not a number"},
        {"set '" + infinite + "' Crank Mass=1 -o '" + other + '\'', 1, "[not-finite]"},
        {"rename '" + unread + "' Crank Kurbel", 2,
         "unread.xml has 1 item that is not read; nothing was written. Mend the document"},
        {"rename '" + unread + "' Crank Kurbel --force -o '" + other + '\'', 1, "Kurbel"}};
    for (const auto& [arguments, code, told] : edits) {
        const Outcome dry = Run(arguments + " --dry-run");
        EXPECT_FALSE(fs::exists(other));
        const Outcome real = Run(arguments);
        fs::remove(other);
        EXPECT_EQ(real.code, code) << arguments << '\n' << real.output;
        EXPECT_EQ(dry.code, code) << arguments << '\n' << dry.output;
        ExpectContains(real.output, told);
        ExpectContains(dry.output, told);
    }
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

class EditedComments : public Tool
{
protected:
    // A comment behind a letter beyond ASCII, one of two lines, and an instruction.
    EditedComments()
        : m_text(With(With(CleanDocument(), "\"Visible\"", "\"Sichtb\xC3\xA4r\""), "</Boolean>",
                      "</Boolean><!-- first --> <!-- of\n two lines --><?x?>")),
          m_document(Write("in.xml", m_text))
    {}

    // The warning at the first comment, whose line has a letter of two bytes before it.
    std::string Warning() const
    {
        const auto at = m_text.find("<!--");
        const auto lines = std::count(m_text.begin(), m_text.begin() + std::ptrdiff_t(at), '\n');
        return m_document + ':' + std::to_string(lines + 1) + ':' +
               std::to_string(at - m_text.rfind('\n', at) - 1) +
               ": warning: 2 comments and 1 processing instruction are not kept; the first one "
               "stands here [not-kept]\n";
    }

    std::string m_text;
    std::string m_document;
};

TEST_F(EditedComments, AreLostOntoTheDocumentByForceWithABackupOnly)
{
    const std::string quoted = '\'' + m_document + '\'';
    for (const std::string& line :
         {"set " + quoted + " Crank Mass=2", "delete " + quoted + " Damping",
          "rename " + quoted + " Crank Kurbel", "convert " + quoted + ' ' + quoted,
          "shape " + quoted + " --body Crank --add '" KARMP_TEST_PARTS "/tetrahedron.stl' -o " +
              quoted}) {
        SCOPED_TRACE(line);
        for (const std::string option : {"", " --force", " --backup", " --dry-run"}) {
            const Outcome refused = Run(line + option);
            EXPECT_EQ(refused.code, 2) << option;
            ExpectContains(refused.output, Warning());
            ExpectContains(refused.output, "karmp: nothing was written. Name another file as "
                                           "output, or overwrite " +
                                               m_document +
                                               " with --force and --backup, which keeps it\n");
            EXPECT_EQ(ReadFile(m_document), m_text);
        }
        const Outcome forced = Run(line + " --force --backup");
        EXPECT_EQ(forced.code, 1);
        ExpectContains(forced.output, Warning());
        EXPECT_EQ(ReadFile(m_document).find("first"), std::string::npos);
        EXPECT_EQ(ReadFile(m_document + '~'), m_text);
        Write("in.xml", m_text);
    }
}

TEST_F(EditedComments, AreNoDeclarationButOtherInstructions)
{
    const std::string declaration = "<?xml version=";
    const std::string file =
        Write("sheet.xml", With(With(CleanDocument(), declaration, "<?xml\nversion="), "?>",
                                "?><?xml-stylesheet href=\"a\"?>"));
    const Outcome refused = Run("rename '" + file + "' Crank Kurbel");
    EXPECT_EQ(refused.code, 2);
    ExpectContains(refused.output, ": warning: 1 processing instruction is not kept [not-kept]\n");
}

TEST_F(EditedComments, AreNoLossInAnotherFile)
{
    const Outcome outcome =
        Run("rename '" + m_document + "' Crank Kurbel -o '" + File("out.xml") + '\'');
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_EQ(outcome.output.find("comment"), std::string::npos) << outcome.output;
}

TEST_F(EditedComments, OfStandardInputAreThoseOfTheOutput)
{
    const Outcome outcome = Run("convert - '" + m_document + '\'', {}, m_document);
    EXPECT_EQ(outcome.code, 2);
    ExpectContains(outcome.output, Warning());
}

TEST_F(EditedComments, StandInTheJson)
{
    const Outcome outcome =
        RunQuietly("convert --json --dry-run '" + m_document + "' '" + m_document + '\'');
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(JsonReader::IsJson(outcome.output)) << outcome.output;
    ExpectContains(outcome.output, "\"code\": \"not-kept\"");
}

TEST_F(EditedComments, AreNotWhatLooksLikeThemInAText)
{
    const std::string input =
        Write("in.xml", With(CleanDocument(), "  </Values>",
                             "<String id=\"s1\" name=\"Note\" isActive=\"yes\"><PhysicalQuantity>"
                             "Length</PhysicalQuantity><Value><![CDATA[<!-- <?no ]]></Value>"
                             "</String>\n  </Values>"));
    const Outcome outcome = Run("rename '" + input + "' Crank Kurbel");
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    ExpectContains(ReadFile(input), "&lt;!-- &lt;?no");
}

TEST_F(EditCommands, JsonTellsWhatADeletionLeavesShort)
{
    const Outcome outcome = Run("delete '" + m_document + "' Crank --dry-run --json");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(JsonReader::IsJson(outcome.output)) << outcome.output;
    const auto at = outcome.output.find("\n  \"short\": [\n");
    ASSERT_NE(at, std::string::npos) << outcome.output;
    ExpectContains(outcome.output.substr(at),
                   "{\"entity\": {\"class\": \"Revolute\", \"name\": \"Crank pin\", \"id\": ");
    ExpectContains(outcome.output.substr(at), "\"item\": \"Bodies\", \"target\": {\"class\": "
                                              "\"Body\", \"name\": \"Crank\"");
}

TEST_F(EditCommands, DeleteWithShortLeavesNoFindingButLooseBodies)
{
    EXPECT_EQ(Run("delete '" + m_document + "' Crank --with-short").code, 0);
    const Outcome checked = Run("check '" + m_document + "' --disable loose-body,floating-chain");
    EXPECT_EQ(checked.code, 0) << checked.output;
    EXPECT_EQ(ReadFile(m_document).find("Crank\""), std::string::npos);
}

TEST_F(EditCommands, UnknownEntityItemOrValueWritesNothing)
{
    const struct
    {
        const char* arguments;
        const char* reason;
    } mistakes[] = {{"Crnk Mass=1", "near: \"Crank\""},
                    {"Crank Mas=1", "near: \"Mass\""},
                    {"Crank Mass=heavy", "\"heavy\" is not a number"},
                    {"Crank Mass=1e999", "is not a number"},
                    {"Crank COG=1,2", "is not 3 numbers"},
                    {"Crank COG=1,2,3,4", "is not 3 numbers"},
                    {"Crank Mass=1,2", "is not one number"},
                    {"Crank is_fixed=maybe", "is not yes or no"},
                    {"Crank Mass", "has no ="}};
    for (const auto& [arguments, reason] : mistakes) {
        const Outcome outcome = Run("set '" + m_document + "' " + arguments);
        EXPECT_EQ(outcome.code, 64) << arguments;
        ExpectContains(outcome.output, reason);
    }
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

TEST_F(EditCommands, ItemsAreNamedAsTheReferenceOfTheClassNamesThem)
{
    const std::string reference = Run("schema --text Body").output;
    const std::string line = "set '" + m_document + "' Crank --dry-run ";
    std::size_t count = 0;
    for (auto at = reference.find("\nItems that can be set"); at != std::string::npos;) {
        at = reference.find("\n  ", at + 1);
        if (at == std::string::npos)
            break;
        const std::string name = reference.substr(at + 3, reference.find(": ", at) - at - 3);
        // Nobody would call an entity so.
        const std::string output = Run(line + '\'' + name + "=(,)'").output;
        EXPECT_EQ(output.find("has no item"), std::string::npos) << output;
        ++count;
    }
    EXPECT_GE(count, 25U);
    const Outcome attribute = Run(line + "@is_fixed=yes");
    EXPECT_EQ(attribute.code, 0);
    ExpectContains(attribute.output, "is_fixed: no becomes yes");
    for (const char* const part : {"Weight/COG/Px", "Geometries/Geometry"}) {
        const Outcome outcome = Run(line + part + "=1");
        EXPECT_EQ(outcome.code, 64);
        ExpectContains(outcome.output, "which is set as a whole; 'karmp schema --text Body' lists");
    }
}

TEST_F(EditCommands, NumbersThatAreNotFiniteAreRefused)
{
    for (const std::string number : {"nan", "inf", "-inf"})
        for (const std::string item : {"Mass=", "COG=1,2,"}) {
            const Outcome outcome = Run("set '" + m_document + "' Crank " + item + number);
            EXPECT_EQ(outcome.code, 64) << item << number;
            ExpectContains(outcome.output,
                           (item == "Mass=" ? "Weight/Mass: \"" : "Weight/COG: \"") + number +
                               "\" is not a finite number");
        }
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

TEST_F(EditCommands, ListsTakeBlanksBesideCommasAndNoEmptyEntry)
{
    const std::string line = "set '" + m_document + "' ";
    for (const char* const gap : {"'Crank pin' Bodies=Crank,", "'Crank pin' 'Bodies=Crank, ,Rod'",
                                  "'Crank pin' Bodies=,Rod", "Crank COG=1,,2,3", "Crank COG=1,2,3,",
                                  "Crank 'COG= ,1,2,3'"}) {
        const Outcome outcome = Run(line + gap);
        EXPECT_EQ(outcome.code, 64) << gap;
        ExpectContains(outcome.output, "has an empty entry");
    }
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
    EXPECT_EQ(Run(line + "Crank 'COG= 1, 2 ,3'").code, 0);
    ExpectContains(ReadFile(m_document), "<COG><Px>1</Px><Py>2</Py><Pz>3</Pz></COG>");
    const Outcome outcome = Run(line + "'Crank angle' 'Constraints= Crank pin.constraint , "
                                       "Slider pin.constraint '");
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    ExpectContains(outcome.output, "+ Variables: Variable \"Crank angle\"");
}

TEST_F(EditCommands, ANameWithACommaIsFoundAsTheWholeText)
{
    const std::string line = "set '" + m_document + "' ";
    EXPECT_EQ(Run("rename '" + m_document + "' 'Crank pin.constraint' 'Pin, upper'").code, 0);
    EXPECT_EQ(Run("rename '" + m_document + "' Rod 'Rod,long'").code, 0);
    const Outcome list = Run(line + "'Crank angle' 'Constraints=Pin, upper'");
    ExpectContains(list.output, "RevoluteConstraint \"Pin, upper\"\n  + Variables: Variable");
    const Outcome single = Run(line + "'Crank.Crank pin' Body=Rod,long");
    ExpectContains(single.output, "becomes Body \"Rod,long\"");
    const Outcome two = Run(line + "'Crank.Crank pin' Body=Crank,Slider");
    EXPECT_EQ(two.code, 64);
    ExpectContains(two.output, "\"Crank,Slider\"");
}

TEST_F(EditCommands, EachKindOfItemTakesItsValues)
{
    const std::string line = "set '" + m_document + "' ";
    const auto expect = [&](const std::string& assignment, const std::string& told) {
        const Outcome outcome = Run(line + assignment);
        EXPECT_EQ(outcome.code, 0) << assignment << '\n' << outcome.output;
        ExpectContains(outcome.output, told);
    };
    expect("Crank entityID=None", "entityID: \"\" becomes \"None\"");
    expect("Crank entityID=", "entityID: \"None\" becomes \"\"");
    expect("Crank is_fixed=true", "is_fixed: no becomes yes");
    expect("Crank is_fixed=false", "is_fixed: yes becomes no");
    expect("'Crank.Crank pin' Body=None", "- Body: Body \"Crank\"");
    expect("'Crank.Crank pin' Body=Crank", "+ Body: Body \"Crank\"");
    expect("'Crank angle' Constraints=None", "- Variables: Variable \"Crank angle\"");
    const Outcome unknown = Run(line + "'Crank angle' 'Constraints=Crank pin.constraint,Crank pn'");
    EXPECT_EQ(unknown.code, 64);
    ExpectContains(unknown.output, "there is no entity \"Crank pn\"; near: \"Crank pin\"");
    const std::string scene = "set " KARMP_EXAMPLE_DOCUMENTS "/collision.xml --dry-run ";
    for (const std::string number : {"1.5", "99999999999", "x"}) {
        const Outcome outcome = Run(scene + "'Dumbbell on mat' EnableDampingTransition=" + number);
        EXPECT_EQ(outcome.code, 64);
        ExpectContains(outcome.output,
                       "EnableDampingTransition: \"" + number + "\" is not a whole number");
    }
    const Outcome bytes =
        Run("set " KARMP_EXAMPLE_DOCUMENTS "/robot-arm.xml --dry-run Hand.Shape stream=1");
    EXPECT_EQ(bytes.code, 64);
    ExpectContains(bytes.output, "stream: \"1\" is not what a command line can tell");
}

TEST_F(EditCommands, OptionalNumberIsUnsetByNoneOrAnEmptyWord)
{
    for (const char* const none : {"", "None"}) {
        EXPECT_EQ(Run("set '" + m_document + "' 'Crank angle' MinValue=-1.5").code, 0);
        ExpectContains(ReadFile(m_document), "<MinValue>-1.5</MinValue>");
        const Outcome outcome =
            Run("set '" + m_document + "' 'Crank angle' MinValue=" + std::string(none));
        EXPECT_EQ(outcome.code, 0) << outcome.output;
        EXPECT_EQ(ReadFile(m_document).find("<MinValue>-1.5"), std::string::npos);
        EXPECT_EQ(Run("check '" + m_document + '\'').code, 0);
    }
    ExpectContains(Run("set '" + m_document + "' Crank Mass=").output, "takes a number, not none");
    ExpectContains(Run("set '" + m_document + "' Crank Mass=None").output,
                   "\"None\" is not a number");
}

TEST_F(EditCommands, NamesReachTheTerminalWithoutTheirControlCharacters)
{
    const std::string name = "'\x1b[31mCrank'";
    const Outcome outcomes[] = {
        Run("rename '" + m_document + "' Crank " + name),
        Run("delete '" + m_document + "' " + name + " --dry-run"),
        Run("delete '" + m_document + "' 'Crank angle' " + name + " --with-short --dry-run"),
        Run("set '" + m_document + "' " + name + " Mass=1"),
        Run("set '" + m_document + "' " + name + " Mas=1"),
        Run("rename '" + m_document + "' '\x1b[31mRocker' " + name)};
    for (const Outcome& outcome : outcomes) {
        ExpectContains(outcome.output, "\\x1b[31m");
        EXPECT_EQ(outcome.output.find('\x1b'), std::string::npos) << outcome.output;
    }
    ExpectContains(outcomes[1].output, "lacks something: its Bodies lost Body \"\\x1b[31mCrank\"");
}

TEST_F(EditCommands, EntitiesThatGoTogetherMayBeNamedTogether)
{
    // The constraint goes with its joint.
    const Outcome outcome = Run("delete '" + m_document + "' 'Crank pin' 'Crank pin.constraint'");
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_EQ(ReadFile(m_document).find("\"Crank pin"), std::string::npos);
}

TEST_F(EditCommands, ADocumentThatNoModelIsMadeOfIsLeftAsItIs)
{
    const Outcome outcome = Run("rename '" + m_document + "' Crank Kurbel",
                                "ASAN_OPTIONS=verify_asan_link_order=0 KARMP_COMPLETION_FAILS=1 "
                                "LD_PRELOAD=" KARMP_WORLD_CALLS_LIBRARY);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.output, "karmp: the globals of the world cannot be listed\n");
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

TEST_F(EditCommands, ReferencesAreSetOnBothSidesAndTakenAway)
{
    EXPECT_EQ(Run("set '" + m_document + "' Damping is_fixed=yes").code, 64);
    const Outcome outcome = Run("set '" + m_document + "' 'Crank angle' Constraints=");
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    const Outcome checked = Run("check '" + m_document + "' --fail-on error");
    EXPECT_EQ(checked.output.find("one-sided-link"), std::string::npos) << checked.output;
}

} // namespace

} // namespace karmp::tool
