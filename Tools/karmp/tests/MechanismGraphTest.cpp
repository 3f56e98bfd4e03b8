// How karmp graph draws force elements, drives, sensors and collision rules.
#include "EquippedCrank.h"

#include <string>

namespace karmp::tool {

namespace {

constexpr const char* ForceNode =
    " [shape=box, style=\"filled,rounded,dashed\", fillcolor=\"#fffde7\", fontsize=11, label=\"";

/// The node with a label, as the text of a graph names it.
std::string NodeOf(const std::string& graph, const std::string& label)
{
    const auto line = graph.rfind("\n  n", graph.find(label));
    const auto begin = line == std::string::npos ? line : line + 3;
    return begin == std::string::npos ? "?" : graph.substr(begin, graph.find(' ', begin) - begin);
}

TEST_F(Equipped, GraphDrawsForceElementsWithDashedEdges)
{
    const std::string graph = Run("graph " + m_file).output;
    for (const std::string label :
         {"spring\nLinearSpring", "bushing\nBushing", "loose spring\nAxialSpring"})
        ExpectContains(graph, ForceNode + label + "\"];\n");
    const std::string spring = NodeOf(graph, "\"spring\nLinearSpring");
    ExpectContains(graph, " -> " + spring + " [style=dashed, dir=none];\n");
    ExpectContains(graph, "  " + spring + " -> ");
}

TEST_F(Equipped, GraphLeadsFromTheOutBodyThroughTheJointToTheInBody)
{
    const std::string graph = Run("graph " + m_file).output;
    const std::string pin = NodeOf(graph, "\"Slider pin\n");
    const std::string rod = NodeOf(graph, "\"Rod\n");
    const std::string slider = NodeOf(graph, "\"Slider\n");
    ExpectContains(graph,
                   "  " + rod + " -> " + pin + " [dir=none];\n  " + pin + " -> " + slider + ";\n");
}

TEST_F(Equipped, GraphDrawsJointsInTheColourAndShapeOfTheirKind)
{
    const std::string graph = Run("graph " + m_file).output;
    ExpectContains(graph,
                   " [shape=ellipse, fillcolor=\"#bbdefb\", fontsize=11, label=\"Slider pin");
    ExpectContains(graph, " [shape=box, fillcolor=\"#c8e6c9\", fontsize=11, label=\"Guide");
    ExpectContains(graph, "<td bgcolor=\"#c8e6c9\"><font point-size=\"10\"> Prismatic </font>");
    ExpectContains(graph, "<td bgcolor=\"#bbdefb\"><font point-size=\"10\"> Revolute </font>");
    EXPECT_EQ(graph.find(" Universal "), std::string::npos);
}

TEST_F(Equipped, GraphThickensTheEdgesOfOneJointPerLoop)
{
    const std::string graph = Run("graph " + m_file).output;
    const std::string pin = NodeOf(graph, "\"Crank pin\n");
    ExpectContains(graph, " -> " + pin + " [penwidth=2.5, dir=none];\n  " + pin + " -> ");
    EXPECT_EQ(graph.find("penwidth", graph.find("  " + pin + " -> ") + 40), std::string::npos);
    ExpectContains(graph, "thick: closes a loop");
}

TEST_F(Equipped, GraphHatchesTheGroundAtTheTop)
{
    const std::string graph = Run("graph " + m_file).output;
    const std::string ground = NodeOf(graph, "GlobalBody</td>");
    ExpectContains(graph, "/ / / /");
    ExpectContains(graph, "{rank=source; " + ground + "}");
}

TEST_F(Equipped, GraphTitleTellsCountsLoopsAndMobility)
{
    const std::string graph = Run("graph " + m_file).output;
    ExpectContains(graph,
                   "label=\"" + fs::path(m_file).filename().string() + "\n4 bodies, 4 joints, ");
    ExpectContains(graph, ", 1 closed loop\nestimated mobility 1 in the plane, -2 in space\"");
}

TEST_F(Equipped, GraphNamesBodiesWithTheirMass)
{
    ExpectContains(Run("graph " + m_file).output, "\"Crank\n0.5 kg\"");
}

TEST_F(Equipped, GraphShowsInactiveEntitiesGrey)
{
    const std::string graph = Output("graph", "name=\"Slider pin\" isActive=\"yes\"",
                                     "name=\"Slider pin\" isActive=\"no\"");
    ExpectContains(graph, "\"Slider pin\nRevolute\", color=grey60, fontcolor=grey60, "
                          "fillcolor=grey95];\n");
    EXPECT_EQ(graph.find("closed loop"), std::string::npos);
    EXPECT_EQ(graph.find("thick"), std::string::npos);
}

TEST_F(Equipped, GraphOfAGearIsNoLoop)
{
    const std::string graph = Run("graph " KARMP_EXAMPLE_DOCUMENTS "/gear-pair.xml").output;
    EXPECT_EQ(graph.find("closed loop"), std::string::npos);
    const std::string gear = NodeOf(graph, "\"Gear\nGear");
    ExpectContains(graph, " -> " + gear + " [dir=none, style=\"dashed\", color=\"#bf360c\"];\n");
}

TEST_F(Equipped, GraphAroundABodyHasWhatIsNear)
{
    const std::string graph = Run("graph --around Crank --reach 1 " + m_file).output;
    ExpectContains(graph, "3 of 4 bodies");
    ExpectContains(graph, "\"Rod\n");
    EXPECT_EQ(graph.find("\"Slider\n"), std::string::npos);
    ExpectContains(graph, "\"Slider pin\n"); // leads on from the rod
    const Outcome unknown = Run("graph --around Nobody " + m_file);
    EXPECT_EQ(unknown.code, 64);
    ExpectContains(unknown.output, "no body has the name Nobody\n");
    const Outcome misspelt = Run("graph --around crank " + m_file);
    EXPECT_EQ(misspelt.code, 64);
    ExpectContains(misspelt.output, "no body has the name crank; near: \"Crank\"");
}

TEST_F(Equipped, GraphMarksWhatMotorsAndForcesActOn)
{
    const std::string graph = Run("graph " + m_file).output;
    ExpectContains(graph, "\"Main bearing\nRevolute\ndriven by motor\"");
    ExpectContains(graph, "\"Crank pin\nRevolute\nacted on by brake\"");
    ExpectContains(graph, "\"Slider\n1.2 kg\nacted on by push\"");
    ExpectContains(graph, "\"Rod\n0.8 kg\nacted on by hand\"");
    ExpectContains(graph, "\"Guide\nPrismatic\nacted on by tyre\"");
    EXPECT_EQ(graph.find("driver"), std::string::npos);
}

TEST_F(Equipped, GraphMarksTheJointOfAFreedomRatherThanACouplingThatUsesIt)
{
    std::string text = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/gear-pair.xml");
    text = With(
        text, " </World>",
        R"(<Actuators><Motor id="m" name="m" isActive="yes"><Variable id="Pinion angle" name=""/>
<TargetType>NotSpecified</TargetType></Motor></Actuators> </World>)");
    const std::string graph = Run("graph " + Write("gears.xml", text)).output;
    ExpectContains(graph, "Revolute\ndriven by m\"");
    EXPECT_EQ(graph.find("Gear\ndriven by m"), std::string::npos);
}

TEST_F(Equipped, GraphShowsSensorsAndCollisionsOnRequestOnly)
{
    const std::string plain = Run("graph " + m_file).output;
    EXPECT_EQ(plain.find("shape=note"), std::string::npos);
    EXPECT_EQ(plain.find("CollisionReaction"), std::string::npos);

    const std::string sensors = Run("graph --sensors " + m_file).output;
    ExpectContains(sensors, " [shape=note, fontsize=10, label=\"stroke\nDisplacementSensor\"];\n");
    const std::string slider = NodeOf(sensors, "\"Slider\n");
    const std::string stroke = NodeOf(sensors, "\"stroke\n");
    ExpectContains(sensors, "  " + slider + " -> " + stroke + " [style=dotted, dir=none];\n");

    const std::string collisions = Run("graph --collisions " + m_file).output;
    ExpectContains(collisions, "fontcolor=red, fontsize=11, label=\"rule\nCollisionReaction\"];\n");
    ExpectContains(collisions, " [style=dotted, dir=none, color=red, constraint=false];\n");
    EXPECT_EQ(collisions.find("layers"), std::string::npos);
}

TEST_F(Equipped, GraphNamesThreeOfManyForcesOnABody)
{
    std::string forces;
    for (int i = 0; i < 5; ++i)
        forces += "<DisplacementActuator id=\"f" + std::to_string(i) +
                  "\" name=\"\" isActive=\"yes\"><Body id=\"Crank\" name=\"Crank\"/>"
                  "</DisplacementActuator>";
    ExpectContains(Output("graph", "</Actuators>", forces + "</Actuators>"),
                   "\"Crank\n0.5 kg\nacted on by f0\nacted on by f1\nacted on by f2\nand 2 more\"");
}

} // namespace

} // namespace karmp::tool
