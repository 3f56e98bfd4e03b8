// What one document's tree holds and another one's does not.
#include "TreeDifference.h"
#include "KARMPDocumentReader.h"

#include <gtest/gtest.h>

#include <string>

namespace karmp::tool {

namespace {

std::vector<Difference> DifferencesOf(const std::string& before, const std::string& after)
{
    const auto document = [](const std::string& world) {
        return documents::Document::ReadText("<KARMPDocument version=\"R2018.1\">" + world +
                                             "</KARMPDocument>");
    };
    const auto left = document(before);
    const auto right = document(after);
    return FindDifferences(*left.Root(), *right.Root(), 10);
}

TEST(TreeDifference, ComparesAllAttributes)
{
    const auto found = DifferencesOf("<CurveSegment curveLowLimit=\"0.25\" curveHighLimit=\"1\"/>",
                                     "<CurveSegment curveLowLimit=\"0.5\"/>");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].path, "/KARMPDocument/CurveSegment/@curveLowLimit");
    EXPECT_EQ(found[0].text, "0.25 becomes 0.5");
    EXPECT_EQ(found[1].path, "/KARMPDocument/CurveSegment/@curveHighLimit");
    EXPECT_EQ(found[1].text, "1 is lost");
}

TEST(TreeDifference, FindsNoneBetweenEqualTrees)
{
    const std::string world = "<World linear_tolerance=\"0.1\"><Size>1</Size></World>";
    EXPECT_TRUE(DifferencesOf(world, world).empty());
}

} // namespace

} // namespace karmp::tool
