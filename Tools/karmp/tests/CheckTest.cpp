// What `karmp check` takes and prints; what it finds is tested with the documents library.
#include "ToolFixture.h"

namespace karmp::tool {

namespace {

std::string Faulty()
{
    return With(CleanDocument(), "<Mass>0.5</Mass>", "<Mass>-0.5</Mass>");
}

TEST_F(Tool, ChecksSeveralFilesAndFolders)
{
    fs::create_directories(File("folder/below"));
    Write("folder/below/b.xml", Faulty());
    Write("folder/a.xml", CleanDocument());
    Write("folder/notes.txt", "no document");
    const std::string single = Write("c.xml", CleanDocument());
    const Outcome check = Run("check " + File("folder") + ' ' + single);
    EXPECT_EQ(check.code, 1);
    ExpectContains(check.output, "below/b.xml: 0 errors, 1 warning\n");
    ExpectContains(check.output, "3 documents: 0 errors, 1 warning\n");
    EXPECT_EQ(check.output.find("notes.txt"), std::string::npos);
}

TEST_F(Tool, ChecksFilesThatStandardInputNames)
{
    const std::string names =
        Write("names", Write("a.xml", CleanDocument()) + "\n\n" + Write("b.xml", Faulty()) + '\n');
    // The rest of the line, which empties standard input, is a comment.
    const Outcome check = Run("check --files-from-input <" + names + " #");
    EXPECT_EQ(check.code, 1);
    ExpectContains(check.output, "2 documents: 0 errors, 1 warning\n");
}

TEST_F(Tool, ChecksADocumentInStandardInput)
{
    const Outcome check = Run("check - <" + Write("a.xml", Faulty()) + " #");
    EXPECT_EQ(check.code, 1);
    ExpectContains(check.output, "<standard input>:56:12: warning: the mass is -0.5");
}

TEST_F(Tool, RefusesToCheckNothing)
{
    EXPECT_EQ(Run("check").code, Run("info").code);
    fs::create_directories(File("empty"));
    EXPECT_EQ(Run("check " + File("empty")).code, 2);
}

TEST_F(Tool, LeavesFindingsOutByTheirCode)
{
    const std::string file = Write("a.xml", Faulty());
    EXPECT_EQ(Run("check " + file).code, 1);
    const Outcome check = Run("check --disable negative-mass " + file);
    EXPECT_EQ(check.code, 0) << check.output;
    ExpectContains(check.output, "no findings");
    EXPECT_EQ(Run("check --disable no-such-code " + file).code, 64);
}

TEST_F(Tool, MakesErrorsOfFindingsByTheirCode)
{
    const std::string file = Write("a.xml", Faulty());
    EXPECT_EQ(Run("check --fail-on error " + file).code, 0);
    EXPECT_EQ(Run("check --fail-on error --error negative-mass " + file).code, 1);
    EXPECT_EQ(Run("check --fail-on never " + file).code, 0);
    ExpectContains(Run("check --error negative-mass,cycle " + file).output, "1 error, 0 warnings");
}

TEST_F(Tool, PrintsSomeFindingsAndCountsAll)
{
    const std::string file =
        Write("a.xml", With(Faulty(), "<Mass>1.2</Mass>", "<Mass>-1.2</Mass>"));
    const Outcome check = Run("check --max 1 " + file);
    ExpectContains(check.output, "0 errors, 2 warnings");
    ExpectContains(check.output, "1 more finding is not shown");
    EXPECT_EQ(check.output.find("the mass is -1.2"), std::string::npos);
    ExpectContains(Run("check --json --max 1 " + file).output, "\"warnings\": 2");
    EXPECT_EQ(Run("check --max 0 " + file).output,
              file + ": 0 errors, 2 warnings\n2 more findings are not shown\n");
}

TEST_F(Tool, PrintsFindingsAsSarif)
{
    const std::string file = Write("a b.xml", Faulty());
    const Outcome check = Run("check --sarif '" + file + "'");
    EXPECT_EQ(check.code, 1);
    ExpectContains(check.output, "\"version\": \"2.1.0\"");
    ExpectContains(check.output, "\"ruleId\": \"negative-mass\", \"level\": \"warning\"");
    ExpectContains(check.output, "a%20b.xml\"");
    ExpectContains(check.output, "\"columnKind\": \"unicodeCodePoints\"");
    ExpectContains(check.output, "\"startLine\": 56, \"startColumn\": 12");
}

TEST_F(Tool, ExplainsACode)
{
    const Outcome explained = Run("check --explain negative-mass");
    EXPECT_EQ(explained.code, 0);
    ExpectContains(explained.output, "negative-mass (warning)\n  What   A mass below zero.\n");
    ExpectContains(explained.output, "\n  Cure   ");
    EXPECT_EQ(Run("check --explain no-such-code").code, 64);
    EXPECT_EQ(Run("check --explain all").output, ReadFile(KARMP_FINDINGS_REFERENCE));
}

} // namespace

} // namespace karmp::tool
