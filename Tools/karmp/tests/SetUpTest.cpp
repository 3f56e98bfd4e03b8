// The commands over attributes, supports, analysis cases, steps, initial conditions, generic and
// debug entities.
#include "ToolFixture.h"

#include <string>
#include <vector>

namespace karmp::tool {

namespace {

constexpr const char* CrankAttributes =
    R"(<Parameters><Parameter id="stiffness" name="stiffness"/></Parameters>
    <States><State id="mode" name="mode"/></States><Outputs><Output id="torque" name="torque"/></Outputs>)";

constexpr const char* Preparations = R"(  <Values>
   <Constant id="number" name="number" isActive="yes"><PhysicalQuantity>AngularStiffness</PhysicalQuantity><Value>0.5</Value></Constant>
   <Constant id="result" name="result" isActive="yes"><PhysicalQuantity>Torque</PhysicalQuantity><Value>1.5</Value></Constant>
   <Boolean id="flag" name="flag" isActive="yes"><PhysicalQuantity>Length</PhysicalQuantity><Value>TRUE</Value></Boolean>
  </Values>
  <Attributes>
   <Parameter id="stiffness" name="stiffness" isActive="yes" entityID="k" type="double"><Values><Value id="number" name="number"/></Values>
    <Supports><Support id="on rod" name="on rod"/></Supports></Parameter>
   <State id="mode" name="mode" isActive="yes" entityID="mode"><ChildrenStates><State id="locked" name="locked"/></ChildrenStates></State>
   <State id="locked" name="locked" isActive="yes" entityID="locked" type="bool"><Values><Value id="flag" name="flag"/></Values></State>
   <Output id="torque" name="torque" isActive="yes" entityID="torque" type="double" path="crank.torque"><Values><Value id="result" name="result"/></Values></Output>
  </Attributes>
  <AnalysisCases><AnalysisCase id="turn" name="turn" isActive="yes"><Steps><Step id="start" name="start"/><Step id="run" name="run"/></Steps></AnalysisCase></AnalysisCases>
  <AnalysisSteps><AnalysisStep id="start" name="start" isActive="yes"/><AnalysisStep id="run" name="run" isActive="yes"/></AnalysisSteps>
  <InitialConditions><InitialCondition id="rest" name="rest" isActive="yes"/></InitialConditions>
  <Supports><Support id="on rod" name="on rod" isActive="yes"><Target id="Rod" name="Rod"/></Support></Supports>
  <GenericEntities><GenericEntity id="cover" name="cover" isActive="yes" categoryID="Sheet"/></GenericEntities>
  <DebugEntities><DebugEntity id="mark" name="mark" isActive="yes"/></DebugEntities>
)";

/// A slider-crank that is set up for an analysis.
class SetUpCrank : public Tool
{
protected:
    static std::string Document()
    {
        const std::string body = "<Body id=\"Crank\" name=\"Crank\" isActive=\"yes\" "
                                 "is_fixed=\"no\">";
        const std::string text = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/slider-crank.xml");
        return With(With(text, body, body + CrankAttributes), " </World>",
                    std::string(Preparations) + " </World>");
    }
    std::string Extract(const std::string& families) const
    {
        return Run("extract " + m_file + " --body Crank --with " + families + " -o " + m_part)
            .output;
    }

    const std::string m_file = Write("set-up.xml", Document());
    const std::string m_part = File("part.xml");
};

TEST_F(SetUpCrank, HasNoFindings)
{
    EXPECT_EQ(Run("check " + m_file).code, 0);
}

TEST_F(SetUpCrank, InfoCountsTheFamiliesAndNamesStepsAndTargets)
{
    const std::string output = Run("info " + m_file).output;
    for (const std::string line : {"Attributes             4\n    Output                 1\n"
                                   "    Parameter              1\n    State                  2\n",
                                   "Debug entities         1\n", "Initial conditions     1\n",
                                   "Analysis steps         2\n", "Generic entities       1\n"})
        ExpectContains(output, "  " + line);
    ExpectContains(output, "\nAnalysis cases\n"
                           "  AnalysisCase \"turn\"  AnalysisStep \"start\", AnalysisStep \"run\"\n"
                           "\nSupports\n  Support \"on rod\"  Body \"Rod\"\n");
}

TEST_F(SetUpCrank, TreeShowsLinksAndTheWordsThatTellEntitiesApart)
{
    const std::string output = Run("tree " + m_file).output;
    ExpectContains(output, "Attributes\n"
                           "  Parameter \"stiffness\", entityID k, type double\n"
                           "    Values: Constant \"number\" = 0.5 AngularStiffness\n"
                           "    Supports: Support \"on rod\"\n"
                           "  State \"mode\", entityID mode\n"
                           "    ChildrenStates: State \"locked\"\n"
                           "  State \"locked\", entityID locked, type bool\n"
                           "    Values: Boolean \"flag\"\n"
                           "  Output \"torque\", entityID torque, path crank.torque, type double\n"
                           "    Values: Constant \"result\" = 1.5 Torque\n");
    ExpectContains(output, "  AnalysisCase \"turn\"\n"
                           "    Steps: AnalysisStep \"start\", AnalysisStep \"run\"\n");
    ExpectContains(output, "  InitialCondition \"rest\"\n");
    ExpectContains(output, "  Support \"on rod\"\n    Target: Body \"Rod\"\n");
    ExpectContains(output, "  GenericEntity \"cover\", categoryID Sheet\n");
    ExpectContains(output, "  DebugEntity \"mark\"\n");
    ExpectContains(output, "    Outputs: Output \"torque\"\n");
}

TEST_F(SetUpCrank, DiffTellsWhatChangedOfEachFamily)
{
    struct Change
    {
        std::string part;
        std::string other;
        std::string told;
    };
    const std::vector<Change> changes{
        {"entityID=\"k\" type=\"double\"", "entityID=\"k\" type=\"int\"",
         "Parameter \"stiffness\"\n  type: \"double\" becomes \"int\"\n"},
        {"<ChildrenStates><State id=\"locked\" name=\"locked\"/></ChildrenStates>", "",
         "State \"mode\"\n  - ChildrenStates: State \"locked\"\n"},
        {"path=\"crank.torque\"", "path=\"crank\"",
         "Output \"torque\"\n  path: \"crank.torque\" becomes \"crank\"\n"},
        {"<Outputs><Output id=\"torque\" name=\"torque\"/></Outputs>", "",
         "Body \"Crank\"\n  - Outputs: Output \"torque\"\n"},
        {"<Step id=\"run\" name=\"run\"/>", "",
         "AnalysisCase \"turn\"\n  - Steps: AnalysisStep \"run\"\n"},
        {"<AnalysisStep id=\"run\" name=\"run\" isActive=\"yes\"/>",
         "<AnalysisStep id=\"run\" name=\"stop\" isActive=\"yes\"/>",
         "AnalysisStep \"run\"\n  renamed: \"run\" becomes \"stop\"\n"},
        {"<Step id=\"start\" name=\"start\"/><Step id=\"run\" name=\"run\"/>",
         "<Step id=\"run\" name=\"run\"/><Step id=\"start\" name=\"start\"/>",
         "AnalysisCase \"turn\"\n  Steps in another order: "},
        {"<InitialCondition id=\"rest\" name=\"rest\" isActive=\"yes\"/>", "",
         "- InitialCondition \"rest\"\n"},
        {"<Target id=\"Rod\" name=\"Rod\"/>", "<Target id=\"Slider\" name=\"Slider\"/>",
         "Support \"on rod\"\n  Target: Body \"Rod\" becomes Body \"Slider\"\n"},
        {"categoryID=\"Sheet\"", "categoryID=\"Frame\"",
         "GenericEntity \"cover\"\n  categoryID: \"Sheet\" becomes \"Frame\"\n"},
        {"<DebugEntity id=\"mark\" name=\"mark\" isActive=\"yes\"/>", "",
         "- DebugEntity \"mark\"\n"}};
    for (const Change& change : changes) {
        const std::string other = Write("other.xml", With(Document(), change.part, change.other));
        ExpectContains(Run("diff " + m_file + ' ' + other).output, change.told);
    }
}

TEST_F(SetUpCrank, IsTheSameAfterASaveAndALoadOutputsIncluded)
{
    const auto isEqual = [this](const std::string& other) {
        const Outcome diff = Run("diff " + m_file + ' ' + other);
        EXPECT_EQ(diff.output, "");
        return diff.code == 0;
    };
    EXPECT_TRUE(isEqual("--reloaded"));
    EXPECT_EQ(Run("convert " + m_file + ' ' + m_part).code, 0);
    EXPECT_TRUE(isEqual(m_part));
    ExpectContains(ReadFile(m_part), "<Output id=\"torque\" name=\"torque\" isActive=\"yes\" "
                                     "entityID=\"torque\" type=\"double\"");
}

TEST_F(SetUpCrank, ExtractTakesStepsWithTheirCaseAndSupportsWithTheirAttribute)
{
    const std::string cut = Extract("analysiscases,attributes");
    ExpectContains(cut, "  Support \"on rod\", Target: Body \"Rod\"\n");
    EXPECT_EQ(cut.find("AnalysisStep"), std::string::npos) << cut;
    const std::string tree = Run("tree " + m_part).output;
    ExpectContains(tree, "  AnalysisCase \"turn\"\n"
                         "    Steps: AnalysisStep \"start\", AnalysisStep \"run\"\n");
    ExpectContains(tree, "    Supports: Support \"on rod\"\n");
    ExpectContains(tree, "    Values: Constant \"result\" = 1.5 Torque\n");
    EXPECT_EQ(tree.find("InitialCondition"), std::string::npos) << tree;
    EXPECT_EQ(Run("check " + m_part).code, 0);
}

TEST_F(SetUpCrank, ExtractTakesWhatStandsByItselfWhenItIsAskedFor)
{
    Extract("all");
    const std::string tree = Run("tree " + m_part).output;
    for (const std::string line :
         {"InitialCondition \"rest\"", "GenericEntity \"cover\"", "DebugEntity \"mark\""})
        ExpectContains(tree, "  " + line);
    const std::string cut = Extract("sensors");
    ExpectContains(cut, "  Body \"Crank\", Outputs: Output \"torque\"\n");
    EXPECT_EQ(Run("tree " + m_part).output.find("Attributes"), std::string::npos);
}

} // namespace

} // namespace karmp::tool
