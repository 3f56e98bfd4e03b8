// Documents are edited from a command line.
#include "ToolFixture.h"

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

TEST_F(EditCommands, DryRunTellsAndWritesNothing)
{
    const Outcome outcome = Run("delete '" + m_document + "' Crank --dry-run");
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    ExpectContains(outcome.output, "Crank");
    ExpectContains(outcome.output, "lacks something");
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
    EXPECT_EQ(Files(), (std::set<std::string>{"in.xml"}));
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
                    {"Crank COG=1,2", "is not 3 numbers"},
                    {"Crank is_fixed=maybe", "is not yes or no"},
                    {"Crank Mass", "has no ="}};
    for (const auto& [arguments, reason] : mistakes) {
        const Outcome outcome = Run("set '" + m_document + "' " + arguments);
        EXPECT_EQ(outcome.code, 64) << arguments;
        ExpectContains(outcome.output, reason);
    }
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
