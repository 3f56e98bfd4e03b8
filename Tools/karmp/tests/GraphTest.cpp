// The graph of bodies and joints: as text, as a picture, and what happens when neither can be made.
#include "ToolFixture.h"

#include <chrono>
#include <cstdlib>
#include <string>

namespace karmp::tool {

namespace {

using Clock = std::chrono::steady_clock;

/// A document of bodies of which each is joined to the next.
std::string Chain(int bodies)
{
    std::string text = "<KARMPDocument version=\"R2018.1\"><World><Bodies>";
    for (int i = 0; i < bodies; ++i) {
        const std::string name = std::to_string(i);
        text += "<Body id=\"b" + name + "\" name=\"Body " + name + "\"/>";
    }
    text += "</Bodies><Joints>";
    for (int i = 1; i < bodies; ++i) {
        text += "<Revolute id=\"j" + std::to_string(i) + "\" name=\"Joint\"><Bodies><Body id=\"b" +
                std::to_string(i - 1) + "\" bodyOrientation=\"Out\"/><Body id=\"b" +
                std::to_string(i) + "\" bodyOrientation=\"In\"/></Bodies></Revolute>";
    }
    return text + "</Joints></World></KARMPDocument>";
}

class Graph : public Tool
{
protected:
    Graph() : m_document(Write("clean.xml", CleanDocument())) {}

    /// Writes a shell script named as Graphviz's program; gives the setting of PATH that finds it.
    std::string FakeGraphviz(const std::string& script) const
    {
        fs::create_directories(File("bin"));
        const std::string program = Write("bin/dot", "#!/bin/sh\n" + script + '\n');
        fs::permissions(program, fs::perms::owner_all);
        return "PATH='" + File("bin") + "':\"$PATH\"";
    }

    // The run fails with the message, leaves an existing picture as it was, and no new file.
    void ExpectNoPicture(const std::string& script, const std::string& message) const
    {
        const std::string environment = FakeGraphviz(script);
        const std::string old = Write("old.svg", "what was there before");
        const auto before = Files();
        for (const std::string& output : {old, File("new.svg")}) {
            const Outcome outcome =
                Run("graph --time-limit 1 " + m_document + " -o " + output, environment);
            EXPECT_EQ(outcome.code, 2) << script << '\n' << outcome.output;
            ExpectContains(outcome.output, message);
        }
        EXPECT_EQ(ReadFile(old), "what was there before") << script;
        EXPECT_EQ(Files(), before) << script;
    }

    bool HasGraphviz() const { return std::system("dot -V >/dev/null 2>&1") == 0; }

    std::string m_document;
};

TEST_F(Graph, DrawsTheGraphAsText)
{
    const Outcome graph = Run("graph " + m_document);
    EXPECT_EQ(graph.code, 0) << graph.output;
    ExpectContains(graph.output, "digraph mechanism {");
    ExpectContains(graph.output, "Crank pin\nRevolute");
    EXPECT_EQ(Run("graph " + m_document + " -o -").output, graph.output);
    EXPECT_EQ(Run("graph --format svg " + m_document).code, 64);
}

TEST_F(Graph, WritesTheSameTextToAFile)
{
    const Outcome outcome = Run("graph " + m_document + " -o " + File("graph.dot"));
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_EQ(ReadFile(File("graph.dot")), Run("graph " + m_document).output);
}

TEST_F(Graph, SaysWhenItCannotWrite)
{
    const std::string environment = FakeGraphviz("echo '<svg></svg>'");
    for (const std::string output : {"/nonexistent/out", "/dev/full"}) {
        for (const std::string format : {"dot", "svg"}) {
            const Outcome outcome =
                Run("graph " + m_document + " --format " + format + " -o " + output, environment);
            EXPECT_EQ(outcome.code, 2) << output << ' ' << format << '\n' << outcome.output;
            ExpectContains(outcome.output, output + ": error: cannot ");
        }
    }
}

TEST_F(Graph, LeavesAnOldFileWhenTheDiskIsFull)
{
    const std::string chain = Write("chain.xml", Chain(100));
    const std::string old = Write("old.dot", "what was there before");
    const auto before = Files();
    for (const std::string& output : {old, File("new.dot")}) {
        const Outcome full = Run("graph " + chain + " -o " + output, "trap '' XFSZ; ulimit -f 2;");
        EXPECT_EQ(full.code, 2) << full.output;
        ExpectContains(full.output, "cannot-write");
    }
    EXPECT_EQ(ReadFile(old), "what was there before");
    EXPECT_EQ(Files(), before);
}

TEST_F(Graph, IsNeverWrittenOntoTheDocument)
{
    EXPECT_EQ(Run("graph " + m_document + " -o " + m_document).code, 2);
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

TEST_F(Graph, TakesThePictureThatGraphvizGives)
{
    const std::string environment = FakeGraphviz("cat >/dev/null; echo \"<svg>$*</svg>\"");
    const Outcome outcome = Run("graph " + m_document + " -o " + File("a.svg"), environment);
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_EQ(ReadFile(File("a.svg")), "<svg>-Tsvg</svg>\n");
}

TEST_F(Graph, LeavesNothingWhenGraphvizFails)
{
    ExpectNoPicture("echo '<svg></svg>'; exit 3", "ended with exit code 3");
    ExpectNoPicture("echo '<svg></svg>'; kill -9 $$", "ended by signal 9");
    ExpectNoPicture("", "no whole picture");
    ExpectNoPicture("echo garbage", "no whole picture");
    ExpectNoPicture("echo '<svg>'", "no whole picture");
}

TEST_F(Graph, TakesNoOtherPictureForPngAndPdf)
{
    for (const std::string name : {"a.png", "a.pdf"}) {
        const Outcome outcome =
            Run("graph " + m_document + " -o " + File(name), FakeGraphviz("echo '<svg></svg>'"));
        EXPECT_EQ(outcome.code, 2) << name;
        EXPECT_FALSE(fs::exists(File(name)));
    }
    EXPECT_EQ(
        Run("graph " + m_document + " -o " + File("a.pdf"), FakeGraphviz("echo '%%EOF'")).code, 2);
}

TEST_F(Graph, IsDrawnAsPdf)
{
    const std::string environment =
        FakeGraphviz("cat >/dev/null; [ $1 = -Tpdf ] && printf '%%PDF-1.5\\n...\\n%%%%EOF\\n'");
    const Outcome outcome = Run("graph " + m_document + " -o " + File("a.pdf"), environment);
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_EQ(ReadFile(File("a.pdf")), "%PDF-1.5\n...\n%%EOF\n");
}

TEST_F(Graph, RefusesAnUnknownEnding)
{
    for (const std::string name : {"a.gif", "a", "a.svgz"}) {
        const Outcome outcome = Run("graph " + m_document + " -o " + File(name));
        EXPECT_EQ(outcome.code, 64) << name;
        ExpectContains(outcome.output, "is none of .dot, .gv, .svg, .png and .pdf");
        EXPECT_FALSE(fs::exists(File(name)));
    }
    EXPECT_EQ(Run("graph " + m_document + " -o " + File("a.gv")).code, 0);
    EXPECT_EQ(Run("graph --format dot " + m_document + " -o " + File("a.gif")).code, 0);
}

TEST_F(Graph, OfALargeMechanismIsDrawnInPartWithAWord)
{
    const std::string environment = FakeGraphviz("cat >" + File("text") + "; echo '<svg></svg>'");
    const std::string chain = Write("chain.xml", Chain(3100));
    const std::string word = "only the 3000 bodies nearest to the ground of 3100 are drawn";
    Outcome outcome = Run("graph " + chain + " -o " + File("a.svg"), environment);
    EXPECT_EQ(outcome.code, 1); // of a document without positions
    ExpectContains(outcome.output, word);
    ExpectContains(ReadFile(File("text")), "3000 of 3100 bodies");
    ExpectContains(ReadFile(File("text")), "\"Body 2999\"");
    EXPECT_EQ(ReadFile(File("text")).find("\"Body 3000\""), std::string::npos);

    outcome = Run("graph --around b5 " + chain + " -o " + File("a.svg"), environment);
    EXPECT_EQ(outcome.output.find(word), std::string::npos);

    outcome = Run("graph --all " + chain + " -o " + File("a.svg"), environment);
    EXPECT_EQ(outcome.output.find(word), std::string::npos);
    ExpectContains(ReadFile(File("text")), "\"Body 3099\"");
}

TEST_F(Graph, StopsAGraphvizThatHangs)
{
    const Clock::time_point start = Clock::now();
    ExpectNoPicture("exec sleep 300", "took longer than 1 s");
    ExpectNoPicture("echo '<svg></svg>'; exec sleep 300 >&-", "took longer than 1 s");
    ExpectNoPicture("while :; do echo x; done", "took longer than 1 s");
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(60));
}

TEST_F(Graph, SaysThatGraphvizIsMissing)
{
    fs::create_directories(File("empty"));
    const Outcome outcome =
        Run("graph " + m_document + " -o " + File("a.svg"), "PATH='" + File("empty") + '\'');
    EXPECT_EQ(outcome.code, 2);
    ExpectContains(outcome.output, "Graphviz is not installed");
    EXPECT_FALSE(fs::exists(File("a.svg")));
}

TEST_F(Graph, OfALongChainIsDrawnSoon)
{
    if (!HasGraphviz())
        GTEST_SKIP() << "Graphviz is not installed";
    const std::string chain = Write("chain.xml", Chain(500));
    const Clock::time_point start = Clock::now();
    for (const std::string picture : {"chain.svg", "chain.png"}) {
        const Outcome outcome = Run("graph --time-limit 20 " + chain + " -o " + File(picture));
        ASSERT_EQ(outcome.code, 1) << outcome.output; // of a document without positions
        EXPECT_GT(fs::file_size(File(picture)), 1000U);
    }
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));
    ExpectContains(ReadFile(File("chain.svg")), "Body 499");
}

} // namespace

} // namespace karmp::tool
