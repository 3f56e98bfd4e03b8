// The rules that all commands keep, each tried on every command.
#include "JsonText.h"
#include "ToolFixture.h"

#include <array>
#include <string>
#include <vector>

namespace karmp::tool {

namespace {

/// A command: IN stands for its document and OUT for the file that it writes.
struct Command
{
    std::string line;
    int code = 0;        // for a clean document
    bool hasJson = true; // prints a listing
    bool writesDocument = false;

    std::string With(const std::string& input, const std::string& output = {}) const
    {
        std::string text = line;
        for (const auto& [word, file] : {std::pair("IN", input), std::pair("OUT", output)})
            if (const auto found = text.find(word); found != std::string::npos)
                text.replace(found, 2 + (word[0] == 'O'), "'" + file + "'");
        return text;
    }
    bool Reads() const { return line.find("IN") != std::string::npos; }
    bool Writes() const { return line.find("OUT") != std::string::npos; }
    std::string Name() const { return line.substr(0, line.find(' ')); }
};

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands{
        {"info IN"},
        {"tree IN"},
        {"check IN"},
        {"diff IN --reloaded", 1},
        {"outputs IN"},
        {"convert IN OUT", 0, true, true},
        {"extract IN --body Crank Rod --with all -o OUT", 0, true, true},
        {"set IN Crank Mass=2 -o OUT", 0, true, true},
        {"delete IN Damping -o OUT", 0, true, true},
        {"rename IN Crank Kurbel -o OUT", 0, true, true},
        {"shape IN --body Crank --add '" KARMP_TEST_PARTS "/tetrahedron.stl' -o OUT", 0, true,
         true},
        {"graph IN -o OUT --format dot", 0, false},
        {"view IN -o OUT", 0, false},
        {"schema", 0, false},
    };
    return commands;
}

class CommandRules : public Tool
{
protected:
    CommandRules() : m_document(Write("clean.xml", CleanDocument())) {}

    template <class Rule>
    static void ForEachCommand(Rule rule)
    {
        for (const Command& command : Commands()) {
            SCOPED_TRACE(command.line);
            rule(command);
        }
    }

    // Pictures have the file's name as their title.
    static std::string WithTitle(std::string text)
    {
        while (text.find("clean.xml") != std::string::npos)
            text = With(text, "clean.xml", "standard input");
        return text;
    }

    std::string m_document;
};

TEST_F(CommandRules, AllCommandsAreTried)
{
    const std::string help = Run("--help").output;
    std::size_t count = 0;
    for (auto line = help.find("Subcommands:"); line != std::string::npos;) {
        line = help.find("\n  ", line + 1);
        if (line == std::string::npos || help[line + 3] == ' ')
            continue;
        const std::string name = help.substr(line + 3, help.find(' ', line + 3) - line - 3);
        bool isTried = false;
        for (const Command& command : Commands())
            isTried = isTried || command.Name() == name;
        EXPECT_TRUE(isTried) << name;
        ++count;
    }
    EXPECT_EQ(count, Commands().size());
}

TEST_F(CommandRules, ADashIsStandardInput)
{
    ForEachCommand([this](const Command& command) {
        if (!command.Reads())
            return;
        const Outcome file = Run(command.With(m_document, File("a")));
        EXPECT_EQ(file.code, command.code) << file.output;
        const Outcome dash = Run(command.With("-", File("b")), {}, m_document);
        EXPECT_EQ(dash.code, command.code) << dash.output;
        if (command.Writes())
            EXPECT_EQ(WithTitle(ReadFile(File("a"))), ReadFile(File("b")));
        else if (command.Name() != "check")
            EXPECT_EQ(dash.output, file.output);
    });
}

TEST_F(CommandRules, ADashIsStandardOutput)
{
    ForEachCommand([this](const Command& command) {
        if (!command.Writes())
            return;
        Run(command.With(m_document, File("a")));
        EXPECT_TRUE(RunQuietly(command.With(m_document, "-")).output == ReadFile(File("a")));
        EXPECT_FALSE(fs::exists("-"));
    });
    // A file of that name is none of it.
    Write("-", "old");
    const auto before = Files();
    EXPECT_EQ(
        Run("convert --backup " + m_document + " - >/dev/null", "cd '" + File("") + "';").code, 0);
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(ReadFile(File("-")), "old");
}

TEST_F(CommandRules, WrongArgumentsEndWith64)
{
    ForEachCommand([this](const Command& command) {
        for (const std::string& line : {command.With(m_document, File("a")) + " --nonsense",
                                        command.With(m_document, File("a")) + " one two three",
                                        command.Name() + " --json="}) {
            // It takes any number of files.
            if (command.Name() == "check" && line.find(" three") != std::string::npos)
                continue;
            const Outcome outcome = Run(line);
            EXPECT_EQ(outcome.code, 64) << line << '\n' << outcome.output;
        }
        EXPECT_FALSE(fs::exists(File("a")));
    });
    EXPECT_EQ(Run("tree --family wheels " + m_document).code, 64);
    EXPECT_EQ(Run("diff - -").code, 64);
    EXPECT_EQ(Run("graph " + m_document + " -o " + File("a.jpg")).code, 64);
}

TEST_F(CommandRules, WrongArgumentsAreNamed)
{
    const std::string out = " -o " + File("a");
    const std::array<std::pair<std::string, std::string>, 29> cases{{
        {"", "A command is required"},
        {"frobnicate", "frobnicate"},
        {"tree --family '' " + m_document, "--family: the text is empty"},
        {"info ''", "FILE: the text is empty"},
        {"convert --to '' " + m_document + ' ' + File("a"), "--to: the text is empty"},
        {"diff --tolerance nan " + m_document + " -", "\"nan\" is no number from 0 on"},
        {"diff --tolerance -1 " + m_document + " -", "\"-1\" is no number from 0 on"},
        {"check --max -1 " + m_document, "\"-1\" is no whole number from 0 to 2147483647"},
        {"extract --reach 1.5 --body Crank " + m_document + out,
         "--reach: \"1.5\" is no whole number from 0"},
        {"graph --around Crank --reach 9999999999 " + m_document, "\"9999999999\" is no whole"},
        {"graph --time-limit 0 " + m_document, "\"0\" is no whole number from 1 to 86400"},
        {"graph --time-limit 86401 " + m_document, "\"86401\" is no whole number from 1"},
        {"graph --time-limit 1e3 " + m_document, "--time-limit: \"1e3\" is no whole number"},
        {"shape " + m_document + " --export " + File("a") + " --backup", "--backup requires --add"},
        {"check --explain loose-body " + m_document, "FILE excludes --explain"},
        {"check --explain loose-body --files-from-input", "--files-from-input excludes --explain"},
        {"schema --text Body --for R2017.0", "--for excludes --text"},
        {"schema --reference --for R2017.0", "--for excludes --reference"},
        {"graph --reach 1 " + m_document + out + ".dot", "--reach requires --around"},
        {"check - -", "standard input can be read once only"},
        {"shape --export - " + m_document, "a folder of that name is ./-"},
        {"tree --family wheels " + m_document, "unknown family wheels"},
        {"convert " + m_document + ' ' + m_document + " --backup=", "--backup: the text is empty"},
        {"set " + m_document + " Crank Mass=2 --backup=", "--backup: the text is empty"},
        {"tree --family= joints " + m_document, "--family: the text is empty"},
        {"extract " + m_document + " --body Crank --with connectors,,sensors" + out,
         "--with: a word of the list is empty"},
        {"extract " + m_document + " --body Crank --with ' ,all'" + out,
         "--with: a word of the list is empty"},
        {"check " + m_document + " --disable loose-body,",
         "--disable: a word of the list is empty"},
        {"check " + m_document + " --error ,loose-body", "--error: a word of the list is empty"},
    }};
    for (const auto& [line, text] : cases) {
        const Outcome outcome = Run(line);
        EXPECT_EQ(outcome.code, 64) << line << '\n' << outcome.output;
        ExpectContains(outcome.output, text);
        EXPECT_LT(outcome.output.size(), 500U) << outcome.output;
    }
    EXPECT_EQ(Files(), std::set<std::string>{"clean.xml"});
    EXPECT_EQ(Run("check --files-from-input", {}, Write("names", "-\n")).code, 64);
}

TEST_F(CommandRules, WhatCannotBeReadEndsWith2)
{
    const std::array bad{File("missing.xml"), File(""), Write("empty.xml", ""),
                         Write("none.xml", "no document")};
    ForEachCommand([&](const Command& command) {
        if (!command.Reads())
            return;
        for (const std::string& file : bad) {
            const Outcome outcome = Run(command.With(file, File("out")));
            EXPECT_EQ(outcome.code, 2) << file << '\n' << outcome.output;
            EXPECT_FALSE(outcome.output.empty());
        }
        EXPECT_EQ(Run(command.With("-", File("out"))).code, 2);
        EXPECT_FALSE(fs::exists(File("out")));
    });
}

TEST_F(CommandRules, WhatCannotBeWrittenEndsWith2)
{
    ForEachCommand([this](const Command& command) {
        if (command.Writes()) {
            for (const std::string output : {"/dev/full", "/nonexistent/out", "/"}) {
                const Outcome outcome = Run(command.With(m_document, output));
                EXPECT_EQ(outcome.code, 2) << output << '\n' << outcome.output;
                ExpectContains(outcome.output, "cannot");
            }
        }
        std::string line = command.With(m_document, "-");
        // A comparison without differences prints nothing.
        if (command.Name() == "diff")
            line += " --json";
        const Outcome full = Run(line + " >/dev/full");
        EXPECT_EQ(full.code, 2) << full.output;
    });
}

TEST_F(CommandRules, WhatCannotBePrintedEndsWith2)
{
    ForEachCommand([this](const Command& command) {
        std::string line = command.With(m_document, "-");
        if (command.Name() == "diff")
            line += " --json";
        EXPECT_EQ(RunQuietly(line + " >&-").code, 2);
        EXPECT_EQ(Run(command.Name() + " --help >/dev/full").code, 2);
    });
    EXPECT_EQ(Run("--version >/dev/full").code, 2);
    // What is printed never gets into a file.
    EXPECT_EQ(RunQuietly("convert --json " + m_document + ' ' + File("a") + " >&- <&-").code, 2);
    EXPECT_EQ(Run("convert " + m_document + ' ' + File("b")).code, 0);
    EXPECT_TRUE(ReadFile(File("a")) == ReadFile(File("b")));
}

TEST_F(CommandRules, WhatIsReadIsNotOverwrittenByAnotherKindOfFile)
{
    const std::string part = Write("part.stl", ReadFile(KARMP_TEST_PARTS "/tetrahedron.stl"));
    for (const std::string& line :
         {"view " + m_document + " -o " + m_document,
          "graph --format dot " + m_document + " -o " + m_document,
          "extract " + m_document + " --body Crank -o " + m_document,
          "shape " + m_document + " --body Crank --add " + part + " -o " + part}) {
        const Outcome outcome = Run(line);
        EXPECT_EQ(outcome.code, 2) << line;
        ExpectContains(outcome.output, "choose another file");
    }
    EXPECT_EQ(ReadFile(part), ReadFile(KARMP_TEST_PARTS "/tetrahedron.stl"));
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

TEST_F(CommandRules, AnOldFileStaysWhenANewOneCannotBeWrittenWhole)
{
    ForEachCommand([this](const Command& command) {
        if (!command.Writes())
            return;
        const std::string old = Write("old", "what was there before");
        const auto before = Files();
        const Outcome full = Run(command.With(m_document, old), "trap '' XFSZ; ulimit -f 0;");
        EXPECT_EQ(full.code, 2) << full.output;
        EXPECT_EQ(ReadFile(old), "what was there before");
        EXPECT_EQ(Files(), before);
    });
}

TEST_F(CommandRules, ListingsAreJsonWhateverTheFileIsCalled)
{
    for (const std::string name : {"plain", "a \"b\" \\ c", "bell\aesc\x1b[31m", "new\nline",
                                   "not \xff utf \xc0\x80 8", "caf\xc3\xa9 \xe2\x82\xac"}) {
        const std::string input = Write(name + ".xml", CleanDocument());
        const std::string doubled =
            Write(name + ".bad.xml", tool::With(CleanDocument(), "id=\"b1\"", "id=\"c1\""));
        ForEachCommand([&](const Command& command) {
            if (!command.hasJson)
                return;
            for (const std::string& file : {input, doubled}) {
                const std::string force = command.writesDocument ? " --force" : "";
                const Outcome outcome =
                    RunQuietly(command.With(file, File(name + ".out")) + " --json" + force);
                EXPECT_TRUE(JsonReader::IsJson(outcome.output)) << outcome.output;
            }
        });
    }
    EXPECT_FALSE(JsonReader::IsJson("{\"a\": \"\x1b\"}"));
    EXPECT_FALSE(JsonReader::IsJson("[1,]"));
}

TEST_F(CommandRules, DocumentsWithErrorsAreWrittenWhenForcedOnly)
{
    const std::string input =
        Write("in.xml", tool::With(CleanDocument(), "id=\"b1\"", "id=\"c1\""));
    ForEachCommand([&](const Command& command) {
        if (!command.writesDocument)
            return;
        const std::string line = command.With(input, File("out.xml"));
        EXPECT_EQ(Run(line).code, 2);
        EXPECT_EQ(Run(line + " --dry-run --force").code, 1);
        EXPECT_EQ(Files(), (std::set<std::string>{"clean.xml", "in.xml"}));
        EXPECT_EQ(Run(line + " --force").code, 1);
        EXPECT_EQ(Run(line + " --force --backup").code, 1);
        EXPECT_TRUE(ReadFile(File("out.xml")) == ReadFile(File("out.xml~")));
        fs::remove(File("out.xml"));
        fs::remove(File("out.xml~"));
    });
}

TEST_F(CommandRules, NumbersThatAreNotFiniteAreTold)
{
    const std::string input =
        Write("in.xml",
              tool::With(CleanDocument(), "<Mass>0.7999999999999999</Mass>", "<Mass>INF</Mass>"));
    ForEachCommand([&](const Command& command) {
        if (!command.writesDocument)
            return;
        const Outcome outcome = Run(command.With(input, File("out.xml")));
        EXPECT_EQ(outcome.code, 1);
        ExpectContains(outcome.output, "[not-finite]");
    });
}

TEST_F(CommandRules, DocumentsAreWrittenForTheVersionThatTheyHave)
{
    const std::string older = File("older.xml");
    Run("convert --to R2017.1 " + m_document + ' ' + older);
    const std::string unknown = Write("in.xml", tool::With(CleanDocument(), "R2018.1", "R2099.1"));
    ForEachCommand([&](const Command& command) {
        if (!command.writesDocument)
            return;
        EXPECT_EQ(Run(command.With(older, File("out.xml"))).code, 0);
        ExpectContains(ReadFile(File("out.xml")), "version=\"R2017.1\"");
        fs::remove(File("out.xml"));
        const std::string old = Write("old.xml", "what was there before");
        const Outcome refused = Run(command.With(unknown, old) + " --backup");
        EXPECT_EQ(refused.code, 2);
        ExpectContains(refused.output, "karmp: unknown version R2099.1; known are R2015x.0 ");
        EXPECT_EQ(ReadFile(old), "what was there before");
        EXPECT_FALSE(fs::exists(old + '~'));
    });
}

TEST_F(CommandRules, NamesOfFamiliesAndClassesGoInAnyCase)
{
    const std::string expected = Run("tree --family Joints " + m_document).output;
    ExpectContains(expected, "Revolute");
    for (const std::string family : {"joints", "JOINTS", "jOints"})
        EXPECT_EQ(Run("tree --family " + family + ' ' + m_document).output, expected);
    for (const std::string name : {"body", "BODY", "karmpbody"})
        EXPECT_EQ(Run("schema --text " + name).output, Run("schema --text Body").output);
    for (const std::string family : {"sEnsors", "all", "ALL"})
        EXPECT_EQ(
            Run("extract " + m_document + " --body Crank --with " + family + " -o " + File("a"))
                .code,
            0);
    EXPECT_EQ(Run("graph " + m_document + " -o " + File("a.DOT")).code, 0);
}

TEST_F(CommandRules, HelpTellsOfTheDashAndOfTheExitCodes)
{
    ForEachCommand([](const Command& command) {
        const std::string help = Run(command.Name() + " --help").output;
        ExpectContains(help, "64 when the");
        ExpectContains(help, "The file - is standard input");
        EXPECT_EQ(help.find("--json") != std::string::npos, command.hasJson);
    });
}

} // namespace

} // namespace karmp::tool
