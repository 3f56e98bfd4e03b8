#include "EquippedCrank.h"

#include <string>

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

TEST_F(ExtractCommand, LeavesNumbersAsTheyAre)
{
    const std::string four = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/four-bar.xml");
    const std::string file =
        Write("four.xml", With(four, "<Mass>0.4<", "<Mass>0.40000000000000013<"));
    ASSERT_EQ(Run("diff --reloaded " + file).code, 1);
    const std::string bodies = "GlobalBody Crank Coupler Rocker";
    const Outcome extract =
        Run("extract " + file + " --body " + bodies + " --with all -o " + File("part.xml"));
    EXPECT_EQ(extract.code, 0) << extract.output;
    const Outcome diff = Run("diff " + file + ' ' + File("part.xml"));
    EXPECT_EQ(diff.code, 0) << diff.output;
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
    EXPECT_EQ(refused.code, 64);
    ExpectContains(refused.output, "name it by its identifier: Rod Slider");
    EXPECT_EQ(Files().count("part.xml"), 0U);
    EXPECT_EQ(extract("Rod").code, 0);
}

TEST_F(ExtractCommand, TakesABodyByItsIdentifierBeforeOthersOfThatName)
{
    const std::string named = "<Body id=\"Rod\" name=\"Rod\" isActive";
    const std::string file = Write(
        "named.xml", With(CleanDocument(), named, "<Body id=\"Rod\" name=\"Crank\" isActive"));
    Run("extract " + file + " --body Crank Rod Crank -q -o " + File("part.xml"));
    const std::string bodies = Run("tree --ids --family bodies " + File("part.xml")).output;
    ExpectContains(bodies, "Body \"Crank\" [Crank]\n");
    ExpectContains(bodies, "Body \"Crank\" [Rod]\n");
}

TEST_F(ExtractCommand, RefusesWhatItDoesNotKnow)
{
    ExpectContains(Extract("--body Crank --with wheels").output, "unknown family wheels");
    EXPECT_EQ(Extract("--body Wheel").output, "karmp: no body has the name Wheel\n");
    EXPECT_EQ(Extract("--body Crank Rd").output, "karmp: no body has the name Rd; near: \"Rod\"\n");
    const std::string named =
        Write("named.xml", With(CleanDocument(), "id=\"Rod\" name=\"Rod\" isActive",
                                "id=\"Rod\" name=\"Coupler\" isActive"));
    for (const auto& [wrong, near] : {std::pair("Rd", "Rod"), std::pair("Copler", "Coupler")})
        EXPECT_EQ(Run("extract " + named + " --body " + wrong + " -o " + File("part.xml")).output,
                  std::string("karmp: no body has the name ") + wrong + "; near: \"" + near +
                      "\"\n");
    EXPECT_EQ(Extract("--body Crank --with wheels").code, 64);
    EXPECT_EQ(Extract("--body Wheel").code, 64);
    EXPECT_EQ(Extract("--body Crank --reach -1").code, 64);
    EXPECT_EQ(Files().count("part.xml"), 0U);
}

TEST_F(ExtractCommand, TakesFamiliesInAnyCaseAndWithBlanks)
{
    EXPECT_EQ(Extract("--body Crank --with connectors,SENSORS").code, 0);
    EXPECT_EQ(Extract("--body Crank --with 'connectors, sensors'").code, 0);
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

TEST_F(Equipped, ExtractOfAllBodiesHasWhatRefersToThem)
{
    Run("extract " + m_file + " --body GlobalBody Crank Rod Slider --with all -o " +
        File("part.xml"));
    const std::string diff = Run("diff " + m_file + ' ' + File("part.xml")).output;
    ExpectContains(diff, "5 entities removed, 0 added, 0 changed");
    for (const std::string name :
         {"flat hand", "flat push", "shift", "flat freedoms", "flat stroke"})
        ExpectContains(diff, " \"" + name + "\"\n");
}

TEST_F(Equipped, ExtractTellsWhatItLeavesBehindForWantOfATarget)
{
    const auto extract = [&](const std::string& options) {
        return Run("extract " + m_file + " --body Rod Slider -o " + File("part.xml") + options)
            .output;
    };
    const std::string told = "Left behind, since they refer to no entity\n"
                             "  DisplacementActuator2D \"flat hand\"\n"
                             "  SpatialForceActuator2D \"flat push\"\n"
                             "  GlobalDisplacementActuator \"shift\"\n";
    ExpectContains(extract(" --with actuators"), told);
    EXPECT_EQ(extract(" --with connectors").find("Left behind"), std::string::npos);
    const std::string json = extract(" --with actuators --json");
    ExpectContains(json, "  \"unrelated\": [\n"
                         "    {\"class\": \"DisplacementActuator2D\", \"name\": \"flat hand\"");
    ExpectContains(extract(" --json"), "  \"unrelated\": []\n");
}

TEST_F(Equipped, ExtractTakesLayersWithTheirRelation)
{
    Run("extract " + m_file + " --body GlobalBody Slider --with interactions -o " +
        File("part.xml"));
    ExpectContains(Run("tree " + File("part.xml") + " --family interactions").output,
                   "  CollisionInterLayer \"layers\"\n"
                   "    Collidables: CollisionLayer \"movers\", CollisionLayer \"still\"\n");
    Run("extract " + m_file + " --body Slider --with interactions -o " + File("part.xml"));
    const std::string tree = Run("tree " + File("part.xml")).output;
    ExpectContains(tree, "CollisionLayer \"movers\"");
    EXPECT_EQ(tree.find("\"layers\""), std::string::npos);
    EXPECT_EQ(tree.find("\"still\""), std::string::npos);
}

TEST_F(Equipped, ExtractTellsOfLayersThatNoRelationIsAbout)
{
    const std::string text = EquippedDocument();
    const auto start = text.find("   <CollisionInterLayer");
    const std::string end = "</CollisionInterLayer>\n";
    const std::string file = Write(
        "lonely.xml", text.substr(0, start) + text.substr(text.find(end, start) + end.size()));
    const auto extract = [&](const std::string& with) {
        return Run("extract " + file + " --body Slider" + with + " -o " + File("part.xml"));
    };
    const Outcome lossy = extract(" --with interactions");
    EXPECT_EQ(lossy.code, 1);
    ExpectContains(lossy.output, "warning: CollisionLayer \"movers\" [movers] is read");
    EXPECT_EQ(extract("").output.find("movers"), std::string::npos);
}

TEST_F(Equipped, ExtractTakesWhatIsAboutItsBodiesAlone)
{
    Run("extract " + m_file + " --body Rod Slider --with all -o " + File("part.xml"));
    const std::string tree = Run("tree " + File("part.xml")).output;
    ExpectContains(tree, "  SpatialForceActuator \"push\"\n");
    ExpectContains(tree, "  AxialSpring \"loose spring\"\n");
    ExpectContains(tree, "  DisplacementSensor \"stroke\"\n");
    ExpectContains(tree, "  CollisionRule \"rule\"\n");
    for (const std::string name : {"motor", "spring", "near", "freedoms"})
        EXPECT_EQ(tree.find(" \"" + name + '"'), std::string::npos) << name;
}

TEST_F(Equipped, ExtractLeavesContactsOfOtherBodiesOut)
{
    const std::string output =
        Run("extract " + m_file + " --body Rod Slider --with all -o " + File("part.xml")).output;
    ExpectContains(
        output, "  CollisionSensor \"contacts\", ContactGeometryDataContainer: Body \"Crank\"\n");
    EXPECT_EQ(output.find("lost"), std::string::npos) << output;
    ExpectContains(Run("tree " + File("part.xml")).output,
                   "ContactGeometryDataContainer: 1 ContactGeometryData\n");
    ExpectContains(ReadFile(File("part.xml")), "<PenetrationDepth>0.25</PenetrationDepth>");
}

} // namespace

} // namespace karmp::tool
