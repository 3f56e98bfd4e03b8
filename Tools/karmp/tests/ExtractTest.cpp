#include "ToolFixture.h"

namespace karmp::tool {

namespace {

class ExtractCommand : public Tool
{
protected:
    Outcome Extract(const std::string& arguments) const
    {
        return Run("extract " + Write("whole.xml", CleanDocument()) + ' ' + arguments + " -o " +
                   File("part.xml"));
    }
};

TEST_F(ExtractCommand, WritesADocumentThatHasNoFindings)
{
    const Outcome extract = Extract("--body Crank Rod --reach 1 --with all");
    EXPECT_EQ(extract.code, 0) << extract.output;
    EXPECT_EQ(Run("check " + File("part.xml")).code, 0);
    // The values of the document are used by nothing.
    const Outcome diff = Run("diff " + File("whole.xml") + ' ' + File("part.xml"));
    ExpectContains(diff.output, "Constant \"Damping\"");
    ExpectContains(diff.output, "2 entities removed, 0 added, 0 changed");
}

TEST_F(ExtractCommand, ListsTheLinksThatWereCut)
{
    const Outcome extract = Extract("--body Crank");
    EXPECT_EQ(extract.code, 0);
    ExpectContains(extract.output, "Body \"Crank\", Joints: Revolute \"Crank pin\"\n");
    EXPECT_EQ(Extract("--body Crank --quiet").output, "");
}

TEST_F(ExtractCommand, TakesIdentifiersForNamesThatSeveralBodiesHave)
{
    std::string text = CleanDocument();
    for (const std::string body : {"Rod", "Slider"}) {
        const std::string start = "<Body id=\"" + body + "\" name=\"";
        const auto offset = text.find(start + body + "\" isActive");
        ASSERT_NE(offset, std::string::npos);
        text.replace(offset + start.size(), body.size(), "Twin");
    }
    const std::string file = Write("twins.xml", text);
    const auto extract = [&](const std::string& name) {
        return Run("extract " + file + " --body '" + name + "' -q -o " + File("part.xml"));
    };
    const Outcome refused = extract("Twin");
    EXPECT_EQ(refused.code, 2);
    ExpectContains(refused.output, "name it by its identifier: Rod Slider");
    EXPECT_EQ(Files().count("part.xml"), 0U);
    EXPECT_EQ(extract("Rod").code, 0);
}

TEST_F(ExtractCommand, RefusesWhatItDoesNotKnow)
{
    ExpectContains(Extract("--body Crank --with wheels").output, "unknown family wheels");
    ExpectContains(Extract("--body Wheel").output, "no body has the name Wheel");
    EXPECT_EQ(Extract("--body Crank --with wheels").code, 2);
    EXPECT_EQ(Extract("--body Wheel").code, 2);
    EXPECT_EQ(Extract("--body Crank --reach -1").code, 2);
    EXPECT_EQ(Files().count("part.xml"), 0U);
}

TEST_F(ExtractCommand, TakesFamiliesInAnyCase)
{
    EXPECT_EQ(Extract("--body Crank --with connectors,SENSORS").code, 0);
}

TEST_F(ExtractCommand, NeverWritesOntoTheDocument)
{
    const std::string file = Write("whole.xml", CleanDocument());
    EXPECT_EQ(Run("extract " + file + " --body Crank -o " + file).code, 2);
    EXPECT_EQ(ReadFile(file), CleanDocument());
}

TEST_F(ExtractCommand, WritesNothingFromADocumentWithErrorsUnlessForced)
{
    std::string text = CleanDocument();
    text.replace(text.find("<Boolean id=\"b1\""), 16, "<Boolean id=\"c1\"");
    const std::string start =
        "extract " + Write("doubled.xml", text) + " --body Crank -o " + File("part.xml");
    EXPECT_EQ(Run(start).code, 2);
    EXPECT_EQ(Files().count("part.xml"), 0U);
    EXPECT_EQ(Run(start + " --force").code, 1);
    EXPECT_EQ(Files().count("part.xml"), 1U);
}

} // namespace

} // namespace karmp::tool
