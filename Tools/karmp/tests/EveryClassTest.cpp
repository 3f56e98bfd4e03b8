// The commands on the kept document with an entity of every class, at every version.
#include "KARMPDocuments.h"
#include "KARTextConversion.h"
#include "ToolFixture.h"

#include <vector>

namespace karmp::tool {

namespace {

/// The mechanism means nothing, so that all that read it have findings.
constexpr int HasFindings = 1;

class EveryClassCommands : public Tool
{
protected:
    EveryClassCommands()
    {
        for (const std::wstring_view version : documents::KnownVersions()) {
            const std::string name = kar::ToUtf8(version);
            const std::string file = File(name + ".xml");
            const Outcome convert =
                Run("convert --force --to " + name + ' ' + KARMP_EVERY_CLASS + ' ' + file);
            EXPECT_EQ(convert.code, HasFindings) << convert.output;
            EXPECT_TRUE(ReadFile(file).find("version=\"" + name + '"') != std::string::npos);
            m_documents.push_back(file);
        }
    }

    std::vector<std::string> m_documents;
};

TEST_F(EveryClassCommands, CheckIt)
{
    for (const std::string& document : m_documents) {
        const Outcome check = RunQuietly("check " + document);
        EXPECT_EQ(check.code, HasFindings) << document;
        ExpectContains(check.output, "one-sided-link");
    }
}

TEST_F(EveryClassCommands, TellOfIt)
{
    for (const std::string& document : m_documents) {
        const Outcome tree = RunQuietly("tree " + document);
        EXPECT_EQ(tree.code, HasFindings) << document;
        for (const char* const name : {"KARMPBody2D", "KARMPScrew", "KARMPTorus", "KARMPBushing",
                                       "KARMPDofSensor2D", "KARMPSketchFunction", "KARMP3DRep"})
            ExpectContains(tree.output, "the \u00e9 <" + std::string(name) + '>');
        const Outcome info = RunQuietly("info " + document);
        EXPECT_EQ(info.code, HasFindings) << document;
        ExpectContains(info.output, "Joints");
        EXPECT_EQ(RunQuietly("outputs " + document).code, HasFindings) << document;
    }
}

TEST_F(EveryClassCommands, DrawIt)
{
    for (const std::string& document : m_documents) {
        const Outcome graph = RunQuietly("graph --sensors --collisions " + document);
        EXPECT_EQ(graph.code, HasFindings) << document;
        ExpectContains(graph.output, "7 bodies, 22 joints, 7 force elements");
        EXPECT_EQ(Run("graph " + document + " --output " + File("graph.svg")).code, HasFindings);
        ExpectContains(ReadFile(File("graph.svg")), "</svg>");
    }
}

TEST_F(EveryClassCommands, ViewIt)
{
    for (const std::string& document : m_documents) {
        EXPECT_EQ(Run("view " + document + " --output " + File("view.html")).code, HasFindings);
        const std::string page = ReadFile(File("view.html"));
        ExpectContains(page, "</html>");
        ExpectContains(page, "KARMPShapeBody");
    }
}

TEST_F(EveryClassCommands, ExtractFromIt)
{
    for (const std::string& document : m_documents) {
        const std::string extract = File("extract.xml");
        const Outcome outcome = Run("extract " + document +
                                    " --force --with all --body KARMPBody KARMPBody2D B1 PB1 "
                                    "--output " +
                                    extract);
        EXPECT_EQ(outcome.code, HasFindings) << outcome.output;
        ExpectContains(outcome.output, "Links that were cut");
        ExpectContains(RunQuietly("check " + extract).output, " 0 errors");
    }
}

TEST_F(EveryClassCommands, FindNoDifferenceBetweenItAndItself)
{
    for (const std::string& document : m_documents) {
        EXPECT_EQ(RunQuietly("diff " + document + ' ' + document).code, 0) << document;
        const Outcome diff = RunQuietly("diff " + document + ' ' + KARMP_EVERY_CLASS);
        EXPECT_EQ(diff.code, HasFindings) << document;
    }
}

} // namespace

} // namespace karmp::tool
