// The limits that docs/documents.md tells are those that hold.
#include "KARMPDocumentLimits.h"
#include "KARWBExpressionTree.h"
#include "KARWBParser.h"
#include "ToolFixture.h"
#include "ToolLimits.h"

namespace karmp::tool {

namespace {

std::string Grouped(std::size_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t end = text.size(); end > 3; end -= 3)
        text.insert(end - 3, ",");
    return text;
}

/// The cells of the row of a limit, without blanks at their ends; "no row" when there is none.
std::string RowOf(const std::string& limit)
{
    std::istringstream page(ReadFile(KARMP_DOCUMENTS_PAGE));
    for (std::string line; std::getline(page, line);) {
        std::istringstream row(line);
        std::string cells;
        for (std::string cell; std::getline(row, cell, '|');) {
            const auto begin = cell.find_first_not_of(' ');
            if (begin != std::string::npos)
                cells += cell.substr(begin, cell.find_last_not_of(' ') + 1 - begin) + '|';
        }
        if (cells.starts_with(limit + '|'))
            return cells.substr(limit.size() + 1);
    }
    return "no row";
}

std::string Row(std::size_t value)
{
    return Grouped(value) + '|';
}
std::string Row(std::size_t value, std::size_t tight)
{
    return Row(value) + Row(tight);
}

class LimitsPage : public Tool
{};

} // namespace

TEST_F(LimitsPage, TellsTheLimitsOfDocuments)
{
    const documents::Limits limits;
    const documents::Limits tight = documents::Limits::Tight();
    EXPECT_EQ(RowOf("bytes of the text"), Row(limits.bytes, tight.bytes));
    EXPECT_EQ(RowOf("depth of elements"), Row(limits.depth, tight.depth));
    EXPECT_EQ(RowOf("bytes of a name"), Row(limits.nameLength, tight.nameLength));
    EXPECT_EQ(RowOf("elements and attributes"), Row(limits.nodes, tight.nodes));
    EXPECT_EQ(RowOf("messages"), Row(limits.diagnostics, tight.diagnostics));
}

TEST_F(LimitsPage, TellsTheLimitsOfEquations)
{
    EXPECT_EQ(RowOf("bytes of an equation's text"), Row(KARWBParser::MaxTextLength));
    EXPECT_EQ(RowOf("nesting of an equation"), Row(KARWBExpressionTree::MaxDepth));
}

TEST_F(LimitsPage, TellsTheLimitsOfTheTool)
{
    EXPECT_EQ(RowOf("messages about a document"), Row(MostProblems));
    EXPECT_EQ(RowOf("differences that convert, extract and shape list"), Row(MaximumDifferences));
    EXPECT_EQ(RowOf("bodies in a graph"), Row(MostBodies("svg")));
    EXPECT_EQ(RowOf("bodies in a graph as PNG"), Row(MostBodies("png")));
    EXPECT_EQ(RowOf("bytes of a picture"), Row(LargestPicture));
    EXPECT_EQ(RowOf("bytes of a part with the files that it names"), Row(LargestPart));
    EXPECT_EQ(RowOf("triangles of a part"), Row(MostTriangles));
    EXPECT_EQ(RowOf("bytes of a part's scene graph"), Row(LargestSceneGraph));
    EXPECT_EQ(RowOf("bytes of memory for reading a part"), Row(MemoryForParts));
    EXPECT_EQ(RowOf("seconds for reading a part"), Row(std::size_t{SecondsForParts}));
    const std::string help = Run("graph --help").output;
    EXPECT_NE(help.find("[1 - 86400]=60"), std::string::npos) << help;
    EXPECT_EQ(RowOf("seconds for Graphviz"), Row(60));
    EXPECT_NE(help.find("more than " + Grouped(MostBodies("svg")) + " bodies, or " +
                        Grouped(MostBodies("png")) + " in a PNG"),
              std::string::npos)
        << help;
}

} // namespace karmp::tool
