// Attributes by path: as a table, as CSV and as JSON.
#include "ToolFixture.h"

namespace karmp::tool {

namespace {

/// A world of one body with a parameter that has two values, a state without one, and an output
/// below another one.
constexpr const char* Document = R"(<KARMPDocument version="R2018.1"><World>
 <Bodies>
  <Body id="b" name="Arm, &quot;left&quot;" isActive="yes">
   <Parameters><Parameter id="p"/></Parameters>
   <States><State id="s"/></States>
   <Outputs><Output id="o"/></Outputs>
  </Body>
 </Bodies>
 <Values>
  <Constant id="v1" name="" isActive="yes"><PhysicalQuantity>Length</PhysicalQuantity><Value>0.5</Value></Constant>
  <String id="v2" name="" isActive="yes"><PhysicalQuantity>Length</PhysicalQuantity><Value>a,&#10;b</Value></String>
  <Boolean id="v3" name="" isActive="yes"><PhysicalQuantity>Length</PhysicalQuantity><Value>TRUE</Value></Boolean>
 </Values>
 <Attributes>
  <Parameter id="p" name="" isActive="yes" entityID="stiffness" type="double"><Values><Value id="v1"/><Value id="v2"/></Values></Parameter>
  <State id="s" name="" isActive="yes" entityID="mode"/>
  <Output id="o" name="" isActive="yes" entityID="joint"><ChildrenOutputs><Output id="oo"/></ChildrenOutputs></Output>
  <Output id="oo" name="" isActive="yes" entityID="locked" type="bool"><Values><Value id="v3"/></Values></Output>
 </Attributes>
</World></KARMPDocument>
)";

class Outputs : public Tool
{
protected:
    // What the reader has to say of so small a document does not matter here.
    static std::string OutputOf(const std::string& arguments)
    {
        return Run("outputs " + arguments + " 2>/dev/null; }", "{").output;
    }
    const std::string m_file = Write("run.xml", Document);
};

TEST_F(Outputs, AreATableByEntityAndPath)
{
    EXPECT_EQ(OutputOf(m_file), "Body \"Arm, \"left\"\"\n"
                                "  Parameter  stiffness     double  0.5\n"
                                "  Parameter  stiffness     double  a,\\x0ab\n"
                                "  State      mode\n"
                                "  Output     joint\n"
                                "  Output     joint.locked  bool    true\n");
}

TEST_F(Outputs, AreCommaSeparatedWithQuotesWhereTheyAreNeeded)
{
    const std::string entity = "\"Body \"\"Arm, \"\"left\"\"\"\"\",b,";
    EXPECT_EQ(OutputOf(m_file + " --csv"),
              "entity,id,kind,path,type,value\n" + entity + "Parameter,stiffness,double,0.5\n" +
                  entity + "Parameter,stiffness,double,\"a,\nb\"\n" + entity + "State,mode,,\n" +
                  entity + "Output,joint,,\n" + entity + "Output,joint.locked,bool,true\n");
}

TEST_F(Outputs, AreJsonWithPathsAsListsAndTypedValues)
{
    const std::string entity =
        "{\"entity\": \"Body \\\"Arm, \\\"left\\\"\\\"\", \"id\": \"b\", \"kind\": ";
    EXPECT_EQ(
        OutputOf(m_file + " --json"),
        "{\n  \"file\": \"" + m_file + "\",\n  \"attributes\": [\n    " + entity +
            "\"Parameter\", \"path\": [\"stiffness\"], \"type\": \"double\", \"values\": [0.5, "
            "\"a,\\u000ab\"]},\n    " +
            entity + "\"State\", \"path\": [\"mode\"], \"type\": \"\", \"values\": []},\n    " +
            entity + "\"Output\", \"path\": [\"joint\"], \"type\": \"\", \"values\": []},\n    " +
            entity +
            "\"Output\", \"path\": [\"joint\", \"locked\"], \"type\": \"bool\", \"values\": "
            "[true]}\n  ]\n}\n");
}

TEST_F(Outputs, EndAtAnAttributeThatIsItsOwnDescendant)
{
    const std::string file =
        Write("cycle.xml", With(Document, "entityID=\"locked\" type=\"bool\">",
                                "entityID=\"locked\" type=\"bool\"><ChildrenOutputs><Output "
                                "id=\"o\"/></ChildrenOutputs>"));
    const std::string output = OutputOf(file + " --csv");
    EXPECT_NE(output.find("joint.locked,bool,true\n"), std::string::npos) << output;
    EXPECT_EQ(output.find("joint.locked.joint"), std::string::npos) << output;
}

TEST_F(Outputs, OfAModelWithoutAttributesAreNone)
{
    const std::string file = Write("clean.xml", CleanDocument());
    const Outcome outcome = Run("outputs " + file);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.output, "no attributes\n");
    EXPECT_EQ(Run("outputs " + file + " --csv").output, "entity,id,kind,path,type,value\n");
    EXPECT_EQ(Run("outputs " + file + " --json").output,
              "{\n  \"file\": \"" + file + "\",\n  \"attributes\": []\n}\n");
}

TEST_F(Outputs, HaveOneFormAtATimeAndNeedAFileThatCanBeRead)
{
    EXPECT_EQ(Run("outputs " + m_file + " --csv --json").code, 64);
    EXPECT_EQ(Run("outputs " + File("none.xml")).code, 2);
}

} // namespace

} // namespace karmp::tool
