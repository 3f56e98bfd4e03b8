// How karmp graph draws force elements, drives, sensors and collision rules.
#include "EquippedCrank.h"

#include <string>

namespace karmp::tool {

namespace {

TEST_F(Equipped, GraphDrawsForceElementsAsDashedEdges)
{
    const std::string graph = Run("graph " + m_file).output;
    ExpectContains(graph, " [style=dashed, label=\"spring\nLinearSpring\"];\n");
    ExpectContains(graph, " [style=dashed, label=\"bushing\nBushing\"];\n");
    ExpectContains(graph, " [shape=point];\n  ");
    ExpectContains(graph, " [style=dashed, label=\"loose spring\nAxialSpring\"];\n");
}

TEST_F(Equipped, GraphMarksWhatMotorsAndForcesActOn)
{
    const std::string graph = Run("graph " + m_file).output;
    ExpectContains(graph, "\"Main bearing\nRevolute\ndriven by motor\"");
    ExpectContains(graph, "\"Crank pin\nRevolute\nacted on by brake\"");
    ExpectContains(graph, "\"Slider\nacted on by push\"");
    ExpectContains(graph, "\"Rod\nacted on by hand\"");
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
    EXPECT_EQ(plain.find("ellipse"), std::string::npos);

    const std::string sensors = Run("graph --sensors " + m_file).output;
    ExpectContains(sensors, " [shape=note, fontsize=10, label=\"stroke\nDisplacementSensor\"];\n");
    ExpectContains(sensors, " [shape=ellipse, label=\"Main bearing\nRevolute\ndriven by motor\"]");
    ExpectContains(sensors, " [shape=ellipse, style=dashed, label=\"spring\nLinearSpring\"];\n");
    ExpectContains(sensors, " [style=dotted];\n");
    ExpectContains(sensors, " [label=\"Slider pin\nRevolute\"];\n");

    const std::string collisions = Run("graph --collisions " + m_file).output;
    ExpectContains(collisions, "constraint=false, label=\"rule\nCollisionReaction\"];\n");
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
                   "\"Crank\nacted on by f0\nacted on by f1\nacted on by f2\nand 2 more\"");
}

} // namespace

} // namespace karmp::tool
