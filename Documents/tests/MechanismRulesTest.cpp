// What a well-formed document says that no mechanism can mean. Each document has one mistake.
#include "KARMPDocuments.h"

#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <vector>

namespace {

using karmp::documents::CheckLevel;
using karmp::documents::CheckText;
using karmp::documents::Code;
using karmp::documents::Diagnostic;
using karmp::documents::Diagnostics;
using karmp::documents::LoadText;
using karmp::documents::Severity;

constexpr const char* Things =
    R"(  <Bodies><Body id="B1"/><Body id="B2"/><Body2D id="P"><Sketch id="K"/></Body2D></Bodies>
  <Joints><Revolute id="J"/></Joints>
  <Variables><Variable id="V"/></Variables>
  <Values>
   <Constant id="N"><PhysicalQuantity>Force</PhysicalQuantity><Value>1</Value></Constant>
   <Constant id="U"><PhysicalQuantity>NoPhysicalQuantity</PhysicalQuantity><Value>1</Value></Constant>
  </Values>
)";

std::string Document(const std::string& families)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KARMPDocument version=\"R2018.1\">\n"
           " <World>\n" +
           std::string(Things) + families + "\n </World>\n</KARMPDocument>\n";
}

bool IsOfMeaning(Code code)
{
    return (code >= Code::MotorWithoutVariable && code <= Code::LostMaterials) ||
           code == Code::NullAxis || code == Code::ReversedLimits;
}

Diagnostics MeaningOf(const std::string& families)
{
    Diagnostics found;
    for (const Diagnostic& message : CheckText(Document(families)).items)
        if (IsOfMeaning(message.code))
            found.items.push_back(message);
    return found;
}

// One finding, a warning, at the end of the path.
void ExpectOne(const std::string& families, Code code, const std::string& path)
{
    SCOPED_TRACE(families);
    const Diagnostics found = MeaningOf(families);
    ASSERT_EQ(found.items.size(), 1U);
    const Diagnostic& message = found.items.front();
    EXPECT_EQ(message.code, code) << message.text;
    EXPECT_EQ(message.severity, Severity::Warning);
    EXPECT_EQ(message.path, "/KARMPDocument/World/" + path);
    EXPECT_FALSE(message.text.empty());
    EXPECT_NE(message.line, 0U);
}

void ExpectNone(const std::string& families)
{
    SCOPED_TRACE(families);
    for (const Diagnostic& message : MeaningOf(families).items)
        ADD_FAILURE() << karmp::documents::Format(message);
}

TEST(MechanismRules, WantAVariableForEachMotor)
{
    ExpectOne("<Actuators><Motor id=\"M\"/></Actuators>", Code::MotorWithoutVariable,
              "Actuators/Motor");
    ExpectNone("<Actuators><Motor id=\"M\"><Variable id=\"V\"/></Motor></Actuators>");
}

TEST(MechanismRules, WantOneMotorForAVariable)
{
    ExpectOne("<Actuators><Motor id=\"M\"><Variable id=\"V\"/></Motor>"
              "<Motor id=\"N\"><Variable id=\"V\"/></Motor></Actuators>",
              Code::SharedVariable, "Actuators/Motor[2]/Variable");
    ExpectNone("<Actuators><Motor id=\"M\"><Variable/></Motor><Motor id=\"N\"><Variable/></Motor>"
               "</Actuators>");
}

TEST(MechanismRules, WantATargetForEachForce)
{
    ExpectOne("<Actuators><JointForceActuator id=\"F\"><Force id=\"N\"/></JointForceActuator>"
              "</Actuators>",
              Code::ForceWithoutTarget, "Actuators/JointForceActuator");
    ExpectOne("<Actuators><SpatialForceActuator id=\"F\"/></Actuators>", Code::ForceWithoutTarget,
              "Actuators/SpatialForceActuator");
    ExpectNone("<Actuators><JointForceActuator id=\"F\"><Joint id=\"J\"/></JointForceActuator>"
               "<SpatialForceActuator id=\"G\"><Body id=\"B1\"/></SpatialForceActuator>"
               "</Actuators>");
}

TEST(MechanismRules, WantBothBodiesOfAConnector)
{
    for (const std::string kind :
         {"AxialSpring", "LinearSpring", "TorsionSpring", "Bushing", "ForceElement"}) {
        const auto connector = [&kind](const std::string& content) {
            return "<Connectors><" + kind + " id=\"S\">" + content + "</" + kind + "></Connectors>";
        };
        const std::string path = "Connectors/" + kind;
        ExpectOne(connector(""), Code::ConnectorWithoutBody, path);
        ExpectOne(connector("<FirstBody id=\"B1\"/>"), Code::ConnectorWithoutBody, path);
        ExpectOne(connector("<SecondBody id=\"B1\"/>"), Code::ConnectorWithoutBody, path);
        ExpectNone(connector("<FirstBody id=\"B1\"/><SecondBody id=\"B2\"/>"));
    }
    ExpectNone("<Connectors><ForceElement id=\"S\"><Joint id=\"J\"/></ForceElement></Connectors>");
}

TEST(MechanismRules, WantAQuantityOfEachValueThatADriveOrConnectorUses)
{
    ExpectOne("<Actuators><Motor id=\"M\"><Variable id=\"V\"/><MaxForce id=\"U\"/></Motor>"
              "</Actuators>",
              Code::ValueWithoutQuantity, "Actuators/Motor/MaxForce");
    ExpectOne("<Actuators><SpatialForceActuator id=\"F\"><Force><Vx id=\"N\"/><Vy id=\"U\"/>"
              "<Vz id=\"N\"/></Force><Body id=\"B1\"/></SpatialForceActuator></Actuators>",
              Code::ValueWithoutQuantity, "Actuators/SpatialForceActuator/Force/Vy");
    ExpectOne("<Connectors><Bushing id=\"S\"><FirstBody id=\"B1\"/><SecondBody id=\"B2\"/>"
              "<StiffnessTx id=\"U\"/></Bushing></Connectors>",
              Code::ValueWithoutQuantity, "Connectors/Bushing/StiffnessTx");
    ExpectNone("<Actuators><Motor id=\"M\"><Variable id=\"V\"/><MaxForce id=\"N\"/></Motor>"
               "</Actuators>");
}

TEST(MechanismRules, WantATargetForEachSensor)
{
    for (const std::string kind :
         {"DisplacementSensor", "JointDOFSensor", "JointSpatialForceSensor",
          "ConnectorSpatialForceSensor", "MotorForceSensor", "ConstraintSensor", "DofSensor",
          "CollisionSensor", "ProximitySensor"}) {
        ExpectOne("<Sensors><" + kind + " id=\"S\"/></Sensors>", Code::SensorWithoutTarget,
                  "Sensors/" + kind);
    }
    ExpectNone("<Sensors><JointDOFSensor id=\"S\"><Joint id=\"J\"/></JointDOFSensor>"
               "<ProximitySensor id=\"P\"><ProximitySensorData><SensorBody id=\"B1\"/>"
               "</ProximitySensorData></ProximitySensor></Sensors>");
    ExpectOne("<Sensors><ProximitySensor id=\"P\"><ProximitySensorData><SensorBody/>"
              "</ProximitySensorData></ProximitySensor></Sensors>",
              Code::SensorWithoutTarget, "Sensors/ProximitySensor");
}

TEST(MechanismRules, WantAPlanarBodyForEachPlanarForceAndSensor)
{
    ExpectOne("<Actuators><SpatialForceActuator2D id=\"F\"/></Actuators>", Code::ForceWithoutTarget,
              "Actuators/SpatialForceActuator2D");
    for (const std::string kind : {"DisplacementSensor2D", "DofSensor2D"})
        ExpectOne("<Sensors><" + kind + " id=\"S\"/></Sensors>", Code::SensorWithoutTarget,
                  "Sensors/" + kind);
    ExpectNone("<Sensors><DisplacementSensor2D id=\"S\"><Body2D id=\"P\"/></DisplacementSensor2D>"
               "<DofSensor2D id=\"T\"><ConstrainedBody2D id=\"P\"/></DofSensor2D></Sensors>"
               "<Actuators><SpatialForceActuator2D id=\"F\"><Body2D id=\"P\"/>"
               "</SpatialForceActuator2D></Actuators>");
}

// The document with another body, joint or value than it has otherwise.
std::string Changed(const std::string& part, const std::string& other)
{
    std::string text = Document("<Geometries><Sketch id=\"K\"><Body id=\"B1\"/></Sketch>"
                                "</Geometries>");
    return text.replace(text.find(part), part.size(), other);
}

TEST(MechanismRules, WantAPlaneForEachPlanarBodyAndABodyForEachPlane)
{
    ExpectOne("<Geometries><Sketch id=\"K\"/></Geometries>", Code::SketchWithoutBody,
              "Geometries/Sketch");
    ExpectNone("<Geometries><Sketch id=\"K\"><Body id=\"B1\"/></Sketch></Geometries>");
    const Diagnostics found =
        CheckText(Changed("<Body2D id=\"P\"><Sketch id=\"K\"/></Body2D>", "<Body2D id=\"P\"/>"));
    const Diagnostic* const message = found.Find(Code::BodyWithoutSketch);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->severity, Severity::Warning);
    EXPECT_EQ(message->path, "/KARMPDocument/World/Bodies/Body2D");
}

TEST(MechanismRules, WantAQuantityOfAnExpressionAndOfAConstantWithoutTheItem)
{
    const std::string constant = "<Constant id=\"N\"><PhysicalQuantity>Force</PhysicalQuantity>"
                                 "<Value>1</Value></Constant>";
    const auto check = [&constant](const std::string& value) {
        std::string text = Document("<Actuators><Motor id=\"M\"><Variable id=\"V\"/>"
                                    "<MaxForce id=\"N\"/></Motor></Actuators>");
        return CheckText(text.replace(text.find(constant), constant.size(), value))
            .Find(Code::ValueWithoutQuantity);
    };
    EXPECT_EQ(check(constant), nullptr);
    EXPECT_NE(check("<Constant id=\"N\"><Value>1</Value></Constant>"), nullptr);
    EXPECT_NE(check("<Expression id=\"N\"><PhysicalQuantity>NoPhysicalQuantity</PhysicalQuantity>"
                    "</Expression>"),
              nullptr);
    EXPECT_EQ(check("<String id=\"N\"/>"), nullptr);
}

// What is told of the inertia matrix of a body, by its lines.
std::string InertiaFaultIn(const std::array<std::array<double, 3>, 3>& lines)
{
    std::ostringstream body;
    body.precision(12);
    body << "<Body id=\"B1\"><Weight><InertiaMatrix>";
    for (int column = 0; column < 3; ++column)
        for (int line = 0; line < 3; ++line) {
            const std::string name = std::string("M") + "123"[column] + "xyz"[line];
            body << '<' << name << '>' << lines[line][column] << "</" << name << '>';
        }
    body << "</InertiaMatrix></Weight></Body>";
    std::string text;
    for (const Diagnostic& message : CheckText(Changed("<Body id=\"B1\"/>", body.str())).items)
        if (message.path.ends_with("/Weight/InertiaMatrix"))
            text += message.text;
    return text;
}

TEST(MechanismRules, TellThePrincipalMomentsOfAnInertiaThatNoBodyHas)
{
    const std::string moments = "the principal moments of inertia are ";
    const std::string sum = "; in a body none is greater than the sum of the others";
    const std::string sign = "; none is negative in a body";
    EXPECT_EQ(InertiaFaultIn({{{2, 0, 0}, {0, 6, 0}, {0, 0, 1}}}), moments + "1, 2 and 6" + sum);
    EXPECT_EQ(InertiaFaultIn({{{1.5, 0.5, 0}, {0.5, 1.5, 0}, {0, 0, 6}}}),
              moments + "1, 2 and 6" + sum);
    EXPECT_EQ(InertiaFaultIn({{{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}),
              moments + "-1, -1 and -1" + sign);
    EXPECT_EQ(InertiaFaultIn({{{3, 0, 0}, {0, 1, 2}, {0, 2, 1}}}), moments + "-1, 3 and 3" + sign);
    EXPECT_EQ(InertiaFaultIn({{{1, 0, 0}, {0, 2, 0.5}, {0, 0.25, 2}}}),
              "the inertia matrix is not symmetric: \"M3y\" is 0.5 and \"M2z\" is 0.25");
}

TEST(MechanismRules, LetInertiasBeRoundedToAMillionthOfTheirGreatestNumber)
{
    const auto diagonal = [](double first, double second, double third) {
        return InertiaFaultIn({{{first, 0, 0}, {0, second, 0}, {0, 0, third}}});
    };
    EXPECT_EQ(diagonal(100, 200, 300), ""); // a plate
    EXPECT_EQ(diagonal(100, 200, 300.0002), "");
    EXPECT_NE(diagonal(100, 200, 300.0004), "");
    EXPECT_EQ(diagonal(-0.00009, 100, 100), "");
    EXPECT_NE(diagonal(-0.00011, 100, 100), "");
    EXPECT_EQ(InertiaFaultIn({{{100, 0.00009, 0}, {0, 100, 0}, {0, 0, 100}}}), "");
    EXPECT_NE(InertiaFaultIn({{{100, 0.00011, 0}, {0, 100, 0}, {0, 0, 100}}}), "");
}

TEST(MechanismRules, LetNoPlanarJointLinkABodyInSpace)
{
    const auto check = [](const std::string& body) {
        return CheckText(
            Changed("<Revolute id=\"J\"/>", "<UserDefined2D id=\"J\"><Bodies2D><Body2D id=\"" +
                                                body + "\"/></Bodies2D></UserDefined2D>"));
    };
    EXPECT_EQ(check("P").Find(Code::WrongClass), nullptr);
    const Diagnostics found = check("B1");
    const Diagnostic* const message = found.Find(Code::WrongClass);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->severity, Severity::Error);
    EXPECT_EQ(message->path, "/KARMPDocument/World/Joints/UserDefined2D/Bodies2D/Body2D/@id");
}

TEST(MechanismRules, WantPlanarGeometriesForTheConstraintsOfAPlanarJoint)
{
    const auto check = [](const std::string& joint, const std::string& geometry) {
        std::string text =
            Document("<Geometries><Point2D id=\"P1\"/><Point id=\"P2\"/></Geometries>"
                     "<Constraints><Coincidence id=\"C\"><Geometries><Geometry id=\"P1\"/>"
                     "<Geometry id=\"" +
                     geometry + "\"/></Geometries><Joint id=\"J\"/></Coincidence></Constraints>");
        const std::string revolute = "<Revolute id=\"J\"/>";
        return CheckText(
            text.replace(text.find(revolute), revolute.size(), "<" + joint + " id=\"J\"/>"));
    };
    const Diagnostics found = check("UserDefined2D", "P2");
    const Diagnostic* const message = found.Find(Code::MixedDimensions);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->severity, Severity::Warning);
    EXPECT_EQ(message->path, "/KARMPDocument/World/Constraints/Coincidence/Geometries/Geometry[2]");
    for (const char* const other : {"P1", "J", "unknown"})
        EXPECT_EQ(check("UserDefined2D", other).Find(Code::MixedDimensions), nullptr) << other;
    EXPECT_EQ(check("Revolute", "P2").Find(Code::MixedDimensions), nullptr);
}

TEST(MechanismRules, CompareTheNumbersOfADofSensorWithItsLists)
{
    const auto sensor = [](const std::string& sum, const std::string& number) {
        return "<Sensors><DofSensor id=\"S\" numberOfDof=\"" + sum + "\"><Translations number=\"" +
               number +
               "\"><Translation><Tx>1</Tx><Ty>0</Ty><Tz>0</Tz></Translation></Translations>"
               "<ConstrainedBody id=\"B1\"/></DofSensor></Sensors>";
    };
    ExpectNone(sensor("1", "1"));
    ExpectOne(sensor("2", "1"), Code::WrongCount, "Sensors/DofSensor");
    ExpectOne(sensor("1", "3"), Code::WrongCount, "Sensors/DofSensor/Translations");
    ExpectOne("<Sensors><DofSensor2D id=\"S\" numberOfDof=\"1\"><ConstrainedBody2D id=\"P\"/>"
              "</DofSensor2D></Sensors>",
              Code::WrongCount, "Sensors/DofSensor2D");
}

TEST(MechanismRules, WantTheLimitsOfACurvesSegmentsInOrder)
{
    const auto segments = [](const std::string& low, const std::string& high) {
        return "<CurveSegments><CurveSegment curveLowLimit=\"" + low + "\" curveHighLimit=\"" +
               high + "\"/></CurveSegments>";
    };
    for (const std::string kind : {"Curve", "Curve2D"}) {
        const auto curve = [&](const std::string& low, const std::string& high) {
            return "<Geometries><" + kind + " id=\"X\">" + segments(low, high) + "</" + kind +
                   "></Geometries>";
        };
        ExpectOne(curve("2", "1"), Code::ReversedLimits,
                  "Geometries/" + kind + "/CurveSegments/CurveSegment/@curveLowLimit");
        ExpectNone(curve("1", "1"));
    }
}

TEST(MechanismRules, WantALengthOfEachDirection)
{
    const auto frame = [](const std::string& second, const std::string& third) {
        return "<Geometries><AxisSystem id=\"X\"><Body id=\"B1\"/><Coordinates><D1x>1</D1x><D1y>0"
               "</D1y><D1z>0</D1z><D2x>0</D2x><D2y>" +
               second + "</D2y><D2z>0</D2z><D3x>0</D3x><D3y>0</D3y><D3z>" + third +
               "</D3z></Coordinates></AxisSystem></Geometries>";
    };
    ExpectNone(frame("1", "1"));
    ExpectOne(frame("0", "1"), Code::NullAxis, "Geometries/AxisSystem/Coordinates");
    ExpectOne(frame("1", "0"), Code::NullAxis, "Geometries/AxisSystem/Coordinates");
    ExpectOne("<Sensors><DofSensor id=\"S\"><Screws><Screw><Axis><Axisx>0</Axisx><Axisy>0</Axisy>"
              "<Axisz>0</Axisz></Axis></Screw></Screws><ConstrainedBody id=\"B1\"/></DofSensor>"
              "</Sensors>",
              Code::NullAxis, "Sensors/DofSensor/Screws/Screw/Axis");
    ExpectOne("<Sensors><DofSensor2D id=\"S\"><Translations2D><Translation2D><Tx>0</Tx><Ty>0</Ty>"
              "</Translation2D></Translations2D><ConstrainedBody2D id=\"P\"/></DofSensor2D>"
              "</Sensors>",
              Code::NullAxis, "Sensors/DofSensor2D/Translations2D/Translation2D");
}

TEST(MechanismRules, LetADisplacementActuatorMoveAGeometry)
{
    const std::string point = "<Geometries><Point id=\"X\"/><Point2D id=\"Y\"/></Geometries>";
    ExpectNone(point + "<Actuators><DisplacementActuator id=\"F\"><Geometry id=\"X\"/>"
                       "</DisplacementActuator></Actuators>");
    ExpectNone(point + "<Actuators><DisplacementActuator2D id=\"F\"><Geometry2D id=\"Y\"/>"
                       "</DisplacementActuator2D></Actuators>");
}

TEST(MechanismRules, WantTwoCollidablesOfACollisionRule)
{
    const auto rule = [](const std::string& collidables) {
        return "<Interactions><CollisionRule id=\"R\"><Collidables>" + collidables +
               "</Collidables></CollisionRule></Interactions>";
    };
    const std::string path = "Interactions/CollisionRule";
    ExpectOne(rule(""), Code::RuleWithoutBody, path);
    ExpectOne(rule("<Collidable id=\"B1\"/>"), Code::RuleWithoutBody, path);
    ExpectNone(rule("<Collidable id=\"B1\"/><Collidable id=\"B2\"/>"));
}

TEST(MechanismRules, WantAnEntityInOneLayerOnly)
{
    const std::string first = "<CollisionLayer id=\"L1\"><Entities><Entity id=\"B1\"/></Entities>"
                              "</CollisionLayer>";
    ExpectOne("<Interactions>" + first +
                  "<CollisionLayer id=\"L2\"><Entities><Entity id=\"B2\"/><Entity id=\"B1\"/>"
                  "</Entities></CollisionLayer></Interactions>",
              Code::SharedByLayers, "Interactions/CollisionLayer[2]/Entities/Entity[2]");
    ExpectNone("<Interactions>" + first +
               "<CollisionLayer id=\"L2\"><Entities><Entity id=\"B2\"/></Entities></CollisionLayer>"
               "</Interactions>");
}

TEST(MechanismRules, WantLayersInARelationOfLayers)
{
    const auto relation = [](const std::string& id) {
        return "<Interactions><CollisionInterLayer id=\"I\"><CollisionLayers><CollisionLayer "
               "id=\"" +
               id +
               "\"/></CollisionLayers></CollisionInterLayer><CollisionLayer id=\"L\"/>"
               "</Interactions>";
    };
    ExpectOne(relation("B1"), Code::NoLayer,
              "Interactions/CollisionInterLayer/CollisionLayers/CollisionLayer");
    ExpectNone(relation("L"));
}

TEST(MechanismRules, WantIdentifiersWithoutADotOfAttributes)
{
    for (const std::string kind : {"Parameter", "State", "Output"}) {
        const auto attribute = [&kind](const std::string& identifier) {
            return "<Attributes><" + kind + " id=\"A\" entityID=\"" + identifier +
                   "\"/></Attributes>";
        };
        ExpectOne(attribute("torque.x"), Code::UnreachablePath, "Attributes/" + kind);
        ExpectOne(attribute("."), Code::UnreachablePath, "Attributes/" + kind);
        ExpectNone(attribute("torque"));
    }
    ExpectNone("<Bodies><Body id=\"B3\" entityID=\"a.b\"/></Bodies>");
}

// Three attributes of a kind: two of one identifier and one of another.
std::string Attributes(const std::string& kind)
{
    const auto attribute = [&kind](const std::string& id, const std::string& identifier) {
        return "<" + kind + " id=\"" + id + "\" entityID=\"" + identifier + "\"/>";
    };
    return attribute("A1", "x") + attribute("A2", "x") + attribute("A3", "y");
}

TEST(MechanismRules, WantSiblingAttributesOfDifferentIdentifiers)
{
    for (const std::string kind : {"Parameter", "State", "Output"}) {
        const auto listed = [&kind](const std::string& first, const std::string& second) {
            return "<Connectors><Bushing id=\"S\"><FirstBody id=\"B1\"/><SecondBody id=\"B2\"/><" +
                   kind + "s><" + kind + " id=\"" + first + "\"/><" + kind + " id=\"" + second +
                   "\"/></" + kind + "s></Bushing></Connectors><Attributes>" + Attributes(kind) +
                   "</Attributes>";
        };
        ExpectOne(listed("A1", "A2"), Code::AmbiguousPath,
                  "Connectors/Bushing/" + kind + "s/" + kind + "[2]");
        ExpectNone(listed("A1", "A3"));
        ExpectNone(listed("A1", "A1"));
    }
}

TEST(MechanismRules, WantChildrenOfAnAttributeOfDifferentIdentifiers)
{
    for (const std::string kind : {"Parameter", "State", "Output"}) {
        const auto parent = [&kind](const std::string& second) {
            const std::string list = "Children" + kind + "s";
            return "<Attributes><" + kind + " id=\"A\"><" + list + "><" + kind + " id=\"A1\"/><" +
                   kind + " id=\"" + second + "\"/></" + list + "></" + kind + ">" +
                   Attributes(kind) + "</Attributes>";
        };
        ExpectOne(parent("A2"), Code::AmbiguousPath,
                  "Attributes/" + kind + "[1]/Children" + kind + "s/" + kind + "[2]");
        ExpectNone(parent("A3"));
    }
}

TEST(MechanismRules, PassOverSiblingAttributesWithoutAnIdentifier)
{
    ExpectNone("<Attributes><State id=\"A\"><ChildrenStates><State id=\"A1\"/><State id=\"A2\"/>"
               "</ChildrenStates></State><State id=\"A1\"/><State id=\"A2\"/></Attributes>");
}

TEST(MechanismRules, WantOneValueOfWhatABulkUpdateStores)
{
    const auto attribute = [](const std::string& kind, const std::string& type,
                              const std::string& values) {
        return "<Attributes><" + kind + " id=\"A\" entityID=\"x\" type=\"" + type + "\"><Values>" +
               values + "</Values></" + kind + "></Attributes>";
    };
    const std::string one = "<Value id=\"N\"/>";
    const std::string two = one + "<Value id=\"U\"/>";
    for (const std::string kind : {"State", "Output"}) {
        ExpectOne(attribute(kind, "double", two), Code::SeveralValues,
                  "Attributes/" + kind + "/Values");
        ExpectNone(attribute(kind, "double", one));
    }
    ExpectNone(attribute("Output", "octet", two)); // takes bytes, whatever values it has
    ExpectOne(attribute("State", "octet", two), Code::SeveralValues, "Attributes/State/Values");
    ExpectNone(attribute("Parameter", "double", two)); // no bulk update is about parameters
}

TEST(MechanismRules, WantStepsOfAnAnalysisCaseThatTheDocumentHolds)
{
    const auto analysis = [](const std::string& step) {
        return "<AnalysisCases><AnalysisCase id=\"C\"><Steps><Step id=\"S1\"/><Step " + step +
               "/></Steps></AnalysisCase></AnalysisCases><AnalysisSteps><AnalysisStep id=\"S1\"/>"
               "<AnalysisStep id=\"S2\"/></AnalysisSteps>";
    };
    const std::string path = "AnalysisCases/AnalysisCase/Steps/Step[2]";
    ExpectOne(analysis("id=\"S3\""), Code::UnknownStep, path);
    ExpectOne(analysis("id=\"B1\""), Code::UnknownStep, path);
    ExpectOne(analysis("id=\"true\" name=\"true\""), Code::UnknownStep, path);
    ExpectOne(analysis(""), Code::UnknownStep, path);
    ExpectNone(analysis("id=\"S2\""));
}

TEST(MechanismRules, TellOfMaterialsThatTheDocumentDoesNotHold)
{
    ExpectOne("<Materials/>", Code::LostMaterials, "Materials");
    ExpectOne("<Materials></Materials>", Code::LostMaterials, "Materials");
    ExpectNone("<Supports/>");
}

// The bodies of the one floating chain; empty when there is none. F is fixed, G is the ground.
std::string ChainIn(const std::string& families, const std::string& bodies)
{
    const Diagnostics found =
        CheckText("<KARMPDocument version=\"R2018.1\"><World><Globals><GlobalBody id=\"G\"/>"
                  "<GlobalAxisSystem id=\"GA\"/></Globals><Bodies><Body id=\"G\"/><Body id=\"F\" "
                  "is_fixed=\"yes\"/>" +
                  bodies + "</Bodies>" + families + "</World></KARMPDocument>");
    std::string chains;
    for (const Diagnostic& message : found.items)
        if (message.code == Code::FloatingChain)
            chains += message.text.substr(message.text.find(": ") + 2) + ';';
    return chains;
}

std::string Joint(const std::string& first, const std::string& second)
{
    return "<Revolute id=\"" + first + second + "\"><Bodies><Body id=\"" + first +
           "\"/><Body id=\"" + second + "\"/></Bodies></Revolute>";
}

TEST(MechanismRules, FindBodiesThatAreJoinedWithNothingFixed)
{
    const std::string three = "<Body id=\"A\"/><Body id=\"B\"/><Body id=\"C\"/>";
    const auto chain = [&three](const std::string& joints) {
        return ChainIn("<Joints>" + joints + "</Joints>", three);
    };
    EXPECT_EQ(chain(Joint("A", "B") + Joint("B", "C")), "\"A\", \"B\", \"C\";");
    EXPECT_EQ(chain(Joint("C", "B") + Joint("A", "C") + Joint("F", "G")), "\"A\", \"B\", \"C\";");
    EXPECT_EQ(chain(Joint("A", "B") + Joint("C", "G")), "\"A\", \"B\";");
    EXPECT_EQ(chain(Joint("A", "B") + Joint("B", "C") + Joint("C", "F")), "");
    EXPECT_EQ(chain(Joint("A", "B") + Joint("B", "C") + Joint("G", "B")), "");
    EXPECT_EQ(chain(""), ""); // without a joint, nobody means to hold anything
    EXPECT_EQ(ChainIn("<Joints>" + Joint("A", "B") + Joint("B", "C") + Joint("C", "D") +
                          Joint("D", "E") + "</Joints>",
                      three + "<Body id=\"D\"/><Body id=\"E\"/>"),
              "\"A\", \"B\", \"C\" and 2 more;");
}

TEST(MechanismRules, TakeWhateverHoldsAChain)
{
    const std::string joint = "<Joints>" + Joint("A", "B") + "</Joints>";
    const auto chain = [&joint](const std::string& families) {
        return ChainIn(joint + families, "<Body id=\"A\"/><Body id=\"B\"/>");
    };
    EXPECT_EQ(chain("<Connectors><Bushing id=\"S\"><FirstBody id=\"B\"/><SecondBody id=\"G\"/>"
                    "</Bushing></Connectors>"),
              "");
    const std::string points = "<Geometries><Point id=\"P\"><Body id=\"B\"/></Point>"
                               "<Point id=\"Q\"><Body id=\"F\"/></Point></Geometries>";
    const auto constraint = [](const std::string& second) {
        return "<Constraints><Coincidence id=\"C\"><Geometries><Geometry id=\"P\"/><Geometry "
               "id=\"" +
               second + "\"/></Geometries></Coincidence></Constraints>";
    };
    EXPECT_EQ(chain(constraint("Q") + points), "");
    EXPECT_EQ(chain(constraint("GA") + points), "");
    EXPECT_EQ(chain(constraint("P") + points), "\"A\", \"B\";");
    // A joint whose constraint alone names the ground.
    EXPECT_EQ(ChainIn("<Joints>" + Joint("A", "B") +
                          "<Revolute id=\"J\"><Bodies><Body id=\"A\"/></Bodies><Constraints>"
                          "<Constraint id=\"C\"/></Constraints></Revolute></Joints>"
                          "<Constraints><Coincidence id=\"C\"><Geometries><Geometry id=\"GA\"/>"
                          "</Geometries></Coincidence></Constraints>",
                      "<Body id=\"A\"/><Body id=\"B\"/>"),
              "");
    EXPECT_EQ(chain("<Interactions><CollisionRule id=\"R\"><Collidables><Collidable id=\"A\"/>"
                    "<Collidable id=\"F\"/></Collidables></CollisionRule></Interactions>"),
              "");
    EXPECT_EQ(chain("<Connectors><ForceElement id=\"S\"><FirstBody id=\"G\"/><Joint id=\"AB\"/>"
                    "</ForceElement></Connectors>"),
              "");
    EXPECT_EQ(
        chain("<Interactions><CollisionLayer id=\"L\"><Entities><Entity id=\"A\"/></Entities>"
              "</CollisionLayer><CollisionLayer id=\"M\"><Entities><Entity id=\"F\"/></Entities>"
              "</CollisionLayer><CollisionInterLayer id=\"R\"><CollisionLayers><CollisionLayer "
              "id=\"L\"/><CollisionLayer id=\"M\"/></CollisionLayers></CollisionInterLayer>"
              "</Interactions>"),
        "");
    EXPECT_EQ(chain("<Sensors><DisplacementSensor id=\"D\"><Body id=\"A\"/></DisplacementSensor>"
                    "</Sensors><Actuators><SpatialForceActuator id=\"E\"><Body id=\"B\"/>"
                    "</SpatialForceActuator></Actuators>"),
              "\"A\", \"B\";");
    EXPECT_EQ(ChainIn(joint, "<Body id=\"A\"/><Body id=\"B\"/><Body id=\"H\" is_fixed=\"yes\">"
                             "<ChildrenBodies><ChildBody id=\"B\"/></ChildrenBodies></Body>"),
              "");
}

TEST(MechanismRules, FindPlanarBodiesThatAreJoinedWithNothingFixed)
{
    const std::string bodies =
        "<Body2D id=\"A\"/><Body2D id=\"B\"/><Body2D id=\"H\" is_fixed2D=\"yes\"/>";
    const auto joint = [](const std::string& first, const std::string& second) {
        return "<UserDefined2D id=\"" + first + second + "\"><Bodies2D><Body2D id=\"" + first +
               "\"/><Body2D id=\"" + second + "\"/></Bodies2D></UserDefined2D>";
    };
    EXPECT_EQ(ChainIn("<Joints>" + joint("A", "B") + "</Joints>", bodies), "\"A\", \"B\";");
    EXPECT_EQ(ChainIn("<Joints>" + joint("A", "B") + joint("B", "H") + "</Joints>", bodies), "");
    EXPECT_EQ(ChainIn("<Joints>" + joint("A", "B") +
                          "</Joints><Constraints><Coincidence id=\"C\"><Geometries><Geometry "
                          "id=\"P\"/><Geometry id=\"Q\"/></Geometries></Coincidence></Constraints>"
                          "<Geometries><Point2D id=\"P\"><Body2D id=\"B\"/></Point2D>"
                          "<Point2D id=\"Q\"><Body2D id=\"H\"/></Point2D></Geometries>",
                      bodies),
              "");
}

// The bodies that hang on nothing, beside the ground G, where A and B are joined.
std::string LooseIn(const std::string& bodies, const std::string& families = "",
                    const std::string& link = "<Joints>" + Joint("A", "B") + "</Joints>")
{
    const Diagnostics found =
        CheckText("<KARMPDocument version=\"R2018.1\"><World><Globals><GlobalBody id=\"G\"/>"
                  "</Globals><Bodies>" +
                  bodies + "<Body id=\"G\"/><Body id=\"A\"/><Body id=\"B\"/></Bodies>" + link +
                  families + "</World></KARMPDocument>");
    std::string loose;
    for (const Diagnostic& message : found.items)
        if (message.code == Code::LooseBody)
            loose += message.path.substr(message.path.rfind('/') + 1) + ';';
    return loose;
}

TEST(MechanismRules, FindABodyThatHangsOnNothingBesideALink)
{
    const std::string body = "<Body id=\"L\"/>";
    EXPECT_EQ(LooseIn(body), "Body[1];");
    EXPECT_EQ(LooseIn(body, "<Geometries><Point id=\"P\"><Body id=\"L\"/></Point></Geometries>"),
              "Body[1];");
    const std::string ends = "<FirstBody id=\"A\"/><SecondBody id=\"B\"/>";
    EXPECT_EQ(
        LooseIn(body, "", "<Connectors><Bushing id=\"S\">" + ends + "</Bushing></Connectors>"),
        "Body[1];");
    EXPECT_EQ(LooseIn("<Body2D id=\"L\"/>", "",
                      "<Joints><UserDefined2D id=\"J\"><Bodies2D><Body2D id=\"A\"/>"
                      "<Body2D id=\"B\"/></Bodies2D></UserDefined2D></Joints>"),
              "Body2D;");
    EXPECT_EQ(LooseIn(body, "", ""), ""); // without a link, bodies are a part
}

TEST(MechanismRules, TakeABodyThatIsFixedOrRefersToALinkForHeld)
{
    EXPECT_EQ(LooseIn("<Body id=\"L\" is_fixed=\"yes\"/>"), "");
    EXPECT_EQ(LooseIn("<Body2D id=\"L\" is_fixed2D=\"yes\"/>"), "");
    for (const std::string list :
         {"<Joints><Joint id=\"J\"/></Joints>", "<Connectors><Connector id=\"C\"/></Connectors>",
          "<DisplacementSensor id=\"D\"/>"})
        EXPECT_EQ(LooseIn("<Body id=\"L\">" + list + "</Body>"), "") << list;
    const std::string children =
        "<AggregatedElements><Element id=\"M\"/></AggregatedElements></Body><Body id=\"M\"/>";
    EXPECT_EQ(LooseIn("<Body id=\"L\">" + children), "");
}

TEST(MechanismRules, TakeABodyThatAnythingButItsShapeRefersToForHeld)
{
    const std::vector<std::string> families{
        "<Actuators><SpatialForceActuator id=\"F\"><Body id=\"L\"/></SpatialForceActuator>"
        "</Actuators>",
        "<Sensors><DisplacementSensor id=\"D\"><Body id=\"L\"/></DisplacementSensor></Sensors>",
        "<Sensors><ProximitySensor id=\"D\"><ProximitySensorData><SensorBody id=\"A\"/>"
        "<ProximitySensorGroup><BodyInGroup id=\"L\"/></ProximitySensorGroup>"
        "</ProximitySensorData></ProximitySensor></Sensors>",
        "<Connectors><ForceElement id=\"S\"><FirstBody id=\"L\"/></ForceElement></Connectors>",
        "<Interactions><CollisionRule id=\"R\"><Collidables><Collidable id=\"L\"/></Collidables>"
        "</CollisionRule></Interactions>",
    };
    for (const std::string& family : families)
        EXPECT_EQ(LooseIn("<Body id=\"L\"/>", family), "") << family;
}

// The codes of trees among the findings about bodies, each with its path.
std::vector<std::string> TreesIn(const std::string& bodies)
{
    std::vector<std::string> trees;
    const std::string start = "/KARMPDocument/World/Bodies/";
    for (const Diagnostic& message :
         CheckText("<KARMPDocument version=\"R2018.1\"><World><Bodies>" + bodies +
                   "</Bodies></World></KARMPDocument>")
             .items)
        if (message.code == Code::Cycle || message.code == Code::SecondFather)
            trees.push_back(std::string(karmp::documents::CodeText(message.code)) + ' ' +
                            message.path.substr(start.size()));
    return trees;
}

std::string Father(const std::string& id, const std::vector<std::string>& children,
                   const std::string& list = "ChildrenBodies",
                   const std::string& item = "ChildBody")
{
    std::string text = "<Body id=\"" + id + "\"><" + list + '>';
    for (const std::string& child : children)
        text += '<' + item + " id=\"" + child + "\"/>";
    return text + "</" + list + "></Body>";
}

TEST(MechanismRules, FindEntitiesInCyclesAndWithTwoFathers)
{
    using Trees = std::vector<std::string>;
    const std::string path = "/ChildrenBodies/ChildBody";
    EXPECT_EQ(TreesIn(Father("A", {"B"}) + Father("B", {"C", "D"})), Trees());
    EXPECT_EQ(TreesIn(Father("A", {"A"})), Trees{"cycle Body" + path});
    EXPECT_EQ(TreesIn(Father("A", {"B"}) + Father("B", {"C"}) + Father("C", {"A"})),
              Trees{"cycle Body[3]" + path});
    EXPECT_EQ(TreesIn(Father("A", {"C"}) + Father("B", {"C"})),
              Trees{"second-father Body[2]" + path});
    EXPECT_EQ(TreesIn(Father("A", {"B"}) + Father("B", {"C"}) + Father("C", {"B"})),
              Trees{"cycle Body[3]" + path}); // and no second father besides
    EXPECT_EQ(TreesIn(Father("A", {"B", "E"}) + Father("B", {"A"}) + Father("D", {"E"})),
              (Trees{"cycle Body[2]" + path, "second-father Body[3]" + path}));
    EXPECT_EQ(TreesIn(Father("A", {"C"}, "AggregatedElements", "Element") +
                      Father("B", {"C"}, "AggregatedElements", "Element")),
              Trees{"second-father Body[2]/AggregatedElements/Element"});
    EXPECT_EQ(TreesIn(Father("A", {"C"}, "ImpactedChildrenBodies", "ImpactedChildBody") +
                      Father("B", {"C"}, "ImpactedChildrenBodies", "ImpactedChildBody")),
              Trees());
}

TEST(MechanismRules, AreNotAppliedWhereTheFormAloneIsChecked)
{
    const std::string text = Document("<Actuators><Motor id=\"M\"/></Actuators>");
    EXPECT_NE(CheckText(text).Find(Code::MotorWithoutVariable), nullptr);
    EXPECT_EQ(CheckText(text, "text", {}, CheckLevel::Form).Find(Code::MotorWithoutVariable),
              nullptr);
    EXPECT_EQ(LoadText(text).diagnostics.Find(Code::MotorWithoutVariable), nullptr);
}

} // namespace
