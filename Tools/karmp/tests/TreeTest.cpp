// What karmp tree shows of links and of the numbers behind them.
#include "EquippedCrank.h"

#include <string>

namespace karmp::tool {

namespace {

TEST_F(Equipped, TreeShowsTheNumbersOfConstants)
{
    const std::string tree = Run("tree " + m_file).output;
    ExpectContains(tree, "    Stiffness: Constant \"k\" = 1000 LinearStiffness\n");
    ExpectContains(tree, "    DampingCoefficient: Constant \"ratio\" = 2.5\n");
    ExpectContains(tree, "    Position: Expression \"turn\"\n");
}

TEST_F(Equipped, TreeNamesAQuantityThatIsWrittenAsANumber)
{
    const std::string old = Output("tree", "<PhysicalQuantity>LinearStiffness</PhysicalQuantity>",
                                   "<PhysicalQuantity>29</PhysicalQuantity>");
    ExpectContains(old, "Stiffness: Constant \"k\" = 1000 LinearStiffness\n");
    // The last one is 2 to the power of 64, and 29.
    for (const std::string number : {"1000", "18446744073709551645"}) {
        const std::string unknown =
            Output("tree", "<PhysicalQuantity>LinearStiffness</PhysicalQuantity>",
                   "<PhysicalQuantity>" + number + "</PhysicalQuantity>");
        ExpectContains(unknown, "Stiffness: Constant \"k\" = 1000 " + number + '\n');
    }
}

TEST_F(Equipped, TreeShowsReferencesAndNumbersThatAreMissing)
{
    ExpectContains(Output("tree", "<Driver ",
                          "<Driver id=\"lost\"><AttachedMotors><Motor id=\"K9\"/>"
                          "</AttachedMotors></Driver><Driver "),
                   "\n    AttachedMotors: missing [K9]\n");
    ExpectContains(Output("tree", "<Value>1000</Value>", ""), "    Stiffness: Constant \"k\"\n");
}

TEST_F(Equipped, TreeShowsLinksWithinGroups)
{
    const std::string tree = Run("tree " + m_file).output;
    ExpectContains(tree, "    Force/Vx: Constant \"F\" = -12 Force\n");
    ExpectContains(tree, "    Torque2D/Vx: Constant \"ratio\" = 2.5\n");
    ExpectContains(tree, "    ProximitySensorData/SensorBody: Body \"Slider\"\n"
                         "    ProximitySensorData/ProximitySensorGroup: Body \"Crank\", Body "
                         "\"Rod\"\n");
}

TEST_F(Equipped, TreeCountsContacts)
{
    const std::string tree = Run("tree --family Sensors " + m_file).output;
    ExpectContains(tree, "  CollisionSensor \"contacts\"\n"
                         "    CollisionRule: CollisionRule \"rule\"\n"
                         "    ContactGeometryDataContainer: 2 ContactGeometryData\n"
                         "  ProximitySensor \"near\"\n");
}

TEST_F(Equipped, TreeTellsWhatAShapeLooksLike)
{
    const std::string triangle = "S0NSRwEAAABTAAAAAAAAAB6bgJ1HAAAAAgADAAAAAAAAAAAAAAAAAAAA"
                                 "AAAAAAAAAAAAAAAAAAAA8D8AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
                                 "AAAAAADwPwAAAAAAAAAAAQACAg==";
    const std::string shapes = "<Shapes><Rep3D id=\"L\" name=\"look\" isActive=\"yes\" stream=\"" +
                               triangle +
                               "\"/><ShapeBody id=\"S\" name=\"solid\" isActive=\"yes\" stream=\"" +
                               triangle + "\"/></Shapes></World>";
    const std::string file = Write("shape.xml", With(EquippedDocument(), "</World>", shapes));
    ExpectContains(Run("tree --family Shapes " + file).output,
                   "  Rep3D \"look\", stream a scene graph of 1 node with 1 triangle (103 bytes, "
                   "83070f1)\n  ShapeBody \"solid\", stream a scene graph of 1 node with 1 "
                   "triangle (103 bytes, ");
    ExpectContains(Run("tree --json " + file).output,
                   "\"stream\": \"a scene graph of 1 node with 1 triangle (103 bytes, ");
}

TEST_F(Equipped, TreeCountsProblemsAsInfoDoes)
{
    const std::string text = CleanDocument();
    const std::string clean = Write("clean.xml", text);
    const std::string two =
        Write("element.xml", With(text, "</World>", "<Nothing/><Nothing/></World>"));
    const std::string files[] = {
        clean,
        two,
        m_file,
        KARMP_EVERY_CLASS,
        Write("reference.xml", With(text, "<Body id=\"Crank\" name=\"Crank\" bodyOrientation",
                                    "<Body id=\"K9\" name=\"Crank\" bodyOrientation")),
        Write("version.xml", With(text, "version=\"R2018.1\"", "version=\"R2018.9\""))};
    for (const std::string& file : files) {
        const Outcome tree = RunShell(KARMP_TOOL " tree " + file + " 2>&1 >/dev/null");
        const Outcome info = RunShell(KARMP_TOOL " info " + file + " 2>&1 >/dev/null");
        EXPECT_EQ(tree.output, info.output) << file;
        EXPECT_EQ(tree.code, info.code) << file;
        EXPECT_EQ(tree.code, file == clean ? 0 : 1) << file;
    }
    EXPECT_EQ(RunShell(KARMP_TOOL " tree --json - 2>&1 >/dev/null <" + two).output,
              "karmp: the document has 2 problems; 'karmp check' lists them\n");
}

TEST_F(Equipped, TreeShowsTheLinksOfAClassThatItDoesNotKnow)
{
    const std::string text =
        With(With(EquippedDocument(), "<Driver ", "<Gadget "), "</Driver>", "</Gadget>");
    ExpectContains(Run("tree " + Write("gadget.xml", text)).output,
                   "  Gadget \"driver\"\n    AttachedMotors: Motor \"motor\"\n");
}

} // namespace

} // namespace karmp::tool
