// The manual page and the completions of shells, compared with the help of each command, and read
// by the programs that they are for.
#include "ToolFixture.h"

#include <regex.h>

#include <algorithm>
#include <string>
#include <vector>

namespace karmp::tool {

namespace {

/// What the last group of an extended regular expression matches, at each place where it does.
/// POSIX's, because GCC 12 warns of its own header for std::regex in builds with sanitizers.
std::vector<std::string> Matches(const std::string& text, const std::string& pattern)
{
    regex_t expression;
    if (regcomp(&expression, pattern.c_str(), REG_EXTENDED | REG_NEWLINE) != 0) {
        ADD_FAILURE() << pattern;
        return {};
    }
    std::vector<std::string> found;
    std::vector<regmatch_t> groups(expression.re_nsub + 1);
    const char* rest = text.c_str();
    const auto flags = [&] { return rest == text.c_str() || rest[-1] == '\n' ? 0 : REG_NOTBOL; };
    for (; regexec(&expression, rest, groups.size(), groups.data(), flags()) == 0;
         rest += groups.front().rm_eo)
        found.emplace_back(rest + groups.back().rm_so, rest + groups.back().rm_eo);
    regfree(&expression);
    return found;
}

std::string WithHyphensOfRoff(const std::string& text)
{
    std::string escaped;
    for (const char letter : text)
        escaped += letter == '-' ? "\\-" : std::string(1, letter);
    return escaped;
}

/// The part of a text from a line on to where its end begins next; empty without the line.
std::string Part(const std::string& text, const std::string& line, const std::string& end)
{
    const auto start = text.find(line);
    if (start == std::string::npos)
        return {};
    const auto first = start + line.size();
    return text.substr(first, text.find(end, first) - first);
}

bool IsThere(const std::string& program)
{
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

class Completions : public Tool
{
protected:
    static std::vector<std::string> CommandNames()
    {
        const std::string help = Run("--help").output;
        return Matches(help.substr(help.find("Subcommands:")), "^  ([a-z]+) ");
    }
    static std::vector<std::string> OptionNames(const std::string& command)
    {
        const std::string help = Run(command + " --help").output;
        std::vector<std::string> names = Matches(help, "^ +(-[a-z],)?(--[a-z-]+)");
        const std::vector<std::string> brief = Matches(help, "^ +(-[a-z]),");
        names.insert(names.end(), brief.begin(), brief.end());
        return names;
    }

    /// Calls `check` with each command and the names of its options.
    template <class Check>
    static void ForEachCommand(Check check)
    {
        const std::vector<std::string> commands = CommandNames();
        EXPECT_GE(commands.size(), 11U);
        for (const std::string& command : commands) {
            const std::vector<std::string> options = OptionNames(command);
            EXPECT_GE(options.size(), 2U) << command;
            check(command, options);
        }
    }

    std::string Printed(const std::string& shell) const
    {
        return Write("karmp." + shell, Run("completions " + shell).output);
    }

    /// What bash offers for the last of some words.
    std::vector<std::string> Offered(const std::string& words) const
    {
        const std::string script =
            "source " + File("karmp.bash") + "; COMP_WORDS=(karmp " + words +
            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); COMPREPLY=(stale); _karmp; "
            "printf \"%s\\n\" \"${COMPREPLY[@]}\"";
        return Matches(RunShell("bash -c '" + script + "' 2>&1").output, "^(.+)$");
    }
};

using Words = std::vector<std::string>;

TEST_F(Completions, ManualPageHasEveryOptionOfEachCommand)
{
    const std::string page = Run("manual").output;
    ForEachCommand([&page](const std::string& command, const Words& options) {
        const std::string part = Part(page, ".SS \\fBkarmp " + command + "\\fR", "\n.S");
        for (const std::string& option : options)
            ExpectContains(part, "\\fB" + WithHyphensOfRoff(option) + "\\fR");
        ExpectContains(part, "karmp " + command + ' '); // the example
    });
}

TEST_F(Completions, ManualPageTellsWhatOptionsTakeAndWhatIsWithoutThem)
{
    const std::string page = Run("manual").output;
    for (const std::string part :
         {"\n\\fBkarmp check\\fR [\\fIoptions\\fR] [\\fIFILE\\fR...]\n.br\n",
          "\n.TP\n\\fIFILE\\fR\nDocument.\n.TP\n",
          "\n.TP\n\\fB\\-\\-disable\\fR \\fITEXT\\fR...\nCodes of findings to leave out.\n.TP\n",
          "\n.TP\n\\fB\\-\\-fail\\-on\\fR \\fITEXT\\fR\n"
          "The least finding for which the exit code is 1.\n"
          "One of \\fBwarning\\fR, \\fBerror\\fR, \\fBnever\\fR.\nWithout it "
          "\\fBwarning\\fR.\n.TP\n",
          "\n.TP\n\\fB\\-o\\fR, \\fB\\-\\-output\\fR \\fIFILE\\fR\nDocument to write.\nRequired.\n",
          "for another ending than \\(ti.\n"})
        ExpectContains(page, part);
}

TEST_F(Completions, ManualPageSetsExamplesAsTheyAreTyped)
{
    const std::string page = Run("manual").output;
    ExpectContains(page, "\n.PP\nExample:\n.RS 4\n.nf\n"
                         "karmp tree crank.xml \\-\\-family Joints\n.fi\n.RE\n.PP\n.SS ");
    ExpectContains(page, "\nkarmp rename crank.xml Rocker \\(dqOutput rocker\\(dq\n.fi\n");
}

TEST_F(Completions, ManualPageBeginsWithTheToolAsAWhole)
{
    const std::string page = Run("manual").output;
    const std::string version = Matches(Run("--version").output, "([0-9]+\\.[0-9.]+)").at(0);
    ExpectContains(page,
                   "\n.TH KARMP 1 \"\" \"KARMPEntities " + version + "\" \"User commands\"\n");
    ExpectContains(page,
                   "\n\\fBkarmp\\fR \\fB\\-\\-help\\fR | \\fB\\-\\-version\\fR\n.SH DESCRIPTION\n"
                   "Looks at, checks and converts the documents of mechanisms.\n.PP\n"
                   "\\(aqkarmp COMMAND \\-\\-help\\(aq tells more about a command.\n.PP\n"
                   ".SH OPTIONS\n.TP\n\\fB\\-h\\fR, \\fB\\-\\-help\\fR\n");
}

TEST_F(Completions, ManualPageTellsTheExitCodesOnceForAllCommandsButOne)
{
    const std::string page = Run("manual").output;
    EXPECT_EQ(Matches(page, "(Exit code:)").size(), 2U);
    ExpectContains(
        Part(page, "karmp diff\\fR [\\fIoptions\\fR] \\fIA\\fR [\\fIB\\fR]\nWhat", ".SS"),
        "Exit code:");
}

TEST_F(Completions, ManualPageIsReadWithoutWarnings)
{
    if (!IsThere("groff"))
        GTEST_SKIP() << "groff is not installed";
    const std::string page = Write("karmp.1", Run("manual").output);
    EXPECT_EQ(RunShell("groff -man -ww -z -Tutf8 " + page + " 2>&1").output, "");
    ExpectContains(RunShell("groff -man -Tascii -P-cbou " + page + " 2>&1").output,
                   "karmp check [options] [FILE...]");
}

TEST_F(Completions, BashOffersCommandsAndTheOptionsOfEach)
{
    EXPECT_EQ(RunShell("bash -n " + Printed("bash") + " 2>&1").output, "");
    const Words first = Offered("\"\"");
    for (const std::string option : {"-h", "--help", "--version"})
        EXPECT_EQ(std::count(first.begin(), first.end(), option), 1) << option;
    ForEachCommand([&](const std::string& command, const Words& options) {
        EXPECT_EQ(std::count(first.begin(), first.end(), command), 1) << command;
        const Words offered = Offered(command + " -");
        for (const std::string& option : options)
            EXPECT_EQ(std::count(offered.begin(), offered.end(), option), 1)
                << command << ' ' << option;
        EXPECT_EQ(offered.size(), options.size()) << command;
    });
}

TEST_F(Completions, BashOffersWordsFilesAndFoldersWhereTheyAreTaken)
{
    Printed("bash");
    EXPECT_EQ(Offered("c"), (Words{"check", "convert"}));
    EXPECT_EQ(Offered("check --fail-on \"\""), (Words{"warning", "error", "never"}));
    EXPECT_EQ(Offered("check --fail-on = n"), Words{"never"});
    EXPECT_EQ(Offered("graph --format ="), (Words{"dot", "svg", "png", "pdf"}));
    EXPECT_EQ(Offered("check --max \"\""), Words{});
    const std::string file = Write("a document.xml", "");
    const std::string folder = File("a folder");
    fs::create_directory(folder);
    const std::string start = '"' + File("a ") + '"';
    for (const std::string before :
         {"info ", "info --json ", "diff a.xml ", "view a.xml -o ", "shape --add "}) {
        Words offered = Offered(before + start);
        std::sort(offered.begin(), offered.end());
        EXPECT_EQ(offered, (Words{file, folder})) << before;
    }
    EXPECT_EQ(Offered("shape a.xml --export " + start), Words{folder});
    EXPECT_EQ(Offered("schema " + start), Words{});
}

TEST_F(Completions, ZshHasEveryOptionOfEachCommand)
{
    const std::string file = Printed("zsh");
    const std::string text = ReadFile(file);
    ForEachCommand([&text](const std::string& command, const Words& options) {
        ExpectContains(text, "\n        '" + command + ':');
        const std::string part = Part(text, "\n        " + command + ")\n", ";;");
        for (const std::string& option : options)
            EXPECT_EQ(Matches(part, "['*)](" + option + ")=?\\[").size(), 1U)
                << command << ' ' << option;
    });
    ExpectContains(text, "'--fail-on=[The least finding for which the exit code is 1]:TEXT:"
                         "(warning error never)'");
    if (IsThere("zsh"))
        EXPECT_EQ(RunShell("zsh -n " + file + " 2>&1").output, "");
}

TEST_F(Completions, ZshIsToldWhatIsTakenOnceOrOftenAndWhatItIs)
{
    const std::string text = Run("completions zsh").output;
    EXPECT_TRUE(text.starts_with("#compdef karmp\n"));
    for (const std::string part :
         {"'--version[", "'check:All that reading passes over in silence, and what it reports'\n",
          "\n    command) _describe command commands ;;\n", "\n    compdef _karmp karmp\n",
          "\n            ':FILE:_files' \\\n", "\n            '*:FILE:_files' \\\n",
          "'(-q --quiet)-q[Findings only, no summary]'",
          "'(-q --quiet)--quiet[Findings only, no summary]'",
          "'*--disable=[Codes of findings to leave out]:TEXT:'",
          "'(-o --output)-o[Document to write]:FILE:_files'",
          "'--export=[Folder for a glTF file of each body with shapes]:FOLDER:_files -/'"})
        ExpectContains(text, part);
}

TEST_F(Completions, FishIsToldWhatIsTakenAndWhatItIs)
{
    const std::string text = Run("completions fish").output;
    const std::string check = "\ncomplete -c karmp -n '__fish_seen_subcommand_from check'";
    const std::string shape = "\ncomplete -c karmp -n '__fish_seen_subcommand_from shape'";
    for (const std::string& part :
         {std::string("\ncomplete -c karmp -f\n"),
          std::string("\ncomplete -c karmp -n '__fish_use_subcommand' -l version -d "),
          std::string(
              " -a check -d 'All that reading passes over in silence, and what it reports'\n"),
          check + " -l json -d 'Findings as JSON'\n",
          check + " -l max -x -d 'Findings to print; all are counted'\n", check + " -F\n",
          shape + " -l add -r -F -d ",
          shape + " -l export -x -a '(__fish_complete_directories)' -d ",
          shape + " -l scale -x -d 'Factor of the part\\'s lengths'\n"})
        ExpectContains(text, part);
    EXPECT_EQ(Matches(text, "(from diff' -F)$").size(), 1U) << "for both of its documents";
}

TEST_F(Completions, FishHasEveryOptionOfEachCommand)
{
    const std::string file = Printed("fish");
    const std::string text = ReadFile(file);
    ForEachCommand([&text](const std::string& command, const Words& options) {
        ExpectContains(text, " -a " + command + " -d '");
        for (const std::string& option : options) {
            const std::string name =
                option.starts_with("--") ? " -l " + option.substr(2) : " -s " + option.substr(1);
            EXPECT_EQ(Matches(text, "(__fish_seen_subcommand_from " + command + "'.*" + name + " )")
                          .size(),
                      1U)
                << command << name;
        }
    });
    if (!IsThere("fish"))
        return;
    EXPECT_EQ(RunShell("fish -n " + file + " 2>&1").output, "");
    const std::string home = File("home"); // fish writes there
    const auto offered = [&file, &home](const std::string& line) {
        const std::string script = "source " + file + "; complete -C '\\''" + line + "'\\''";
        return Matches(
            RunShell("HOME=" + home + " fish --no-config -c '" + script + "' 2>/dev/null").output,
            "^([^\t\n]+)");
    };
    EXPECT_EQ(offered("karmp check --fail-on "), (Words{"error", "never", "warning"}));
    EXPECT_EQ(offered("karmp c"), (Words{"check", "convert"}));
}

TEST_F(Completions, UnknownShellIsRefused)
{
    EXPECT_EQ(Run("completions tcsh").code, 64);
    EXPECT_EQ(Run("completions").code, 64);
}

} // namespace

} // namespace karmp::tool
