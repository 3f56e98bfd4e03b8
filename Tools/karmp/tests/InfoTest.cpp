// What karmp info tells of actuators, force elements and sensors.
#include "EquippedCrank.h"

#include <algorithm>
#include <string>

namespace karmp::tool {

namespace {

/// The text with one blank where several stood.
std::string Squeezed(std::string text)
{
    const auto areBlanks = [](char left, char right) { return left == ' ' && right == ' '; };
    text.erase(std::unique(text.begin(), text.end(), areBlanks), text.end());
    return text;
}

TEST_F(Equipped, InfoTellsWhatDrivesActOn)
{
    const std::string info = Squeezed(Run("info " + m_file).output);
    ExpectContains(info, "\nDrives\n");
    ExpectContains(info,
                   " Motor \"motor\" Variable \"Crank angle\" of Revolute \"Main bearing\"\n");
    ExpectContains(info, " Driver \"driver\" Motor \"motor\"\n");
    ExpectContains(info, " JointForceActuator \"brake\" Revolute \"Crank pin\"\n");
    ExpectContains(info, " SpatialForceActuator \"push\" Body \"Slider\"\n");
    ExpectContains(info, " GlobalDisplacementActuator \"shift\" no target\n");
}

TEST_F(Equipped, InfoTellsBetweenWhichBodiesForceElementsAct)
{
    const std::string info = Squeezed(Run("info " + m_file).output);
    ExpectContains(info, "\nForce elements\n");
    ExpectContains(info, "LinearSpring \"spring\" Body \"GlobalBody\", Body \"Slider\"\n");
    ExpectContains(info, "AxialSpring \"loose spring\" Body \"Rod\"\n");
    ExpectContains(info, "ForceElement \"tyre\" Prismatic \"Guide\"\n");
}

TEST_F(Equipped, InfoTellsWhatSensorsMeasure)
{
    const std::string info = Squeezed(Run("info " + m_file).output);
    ExpectContains(info, "\nSensors\n");
    ExpectContains(info, "CollisionRule \"rule\", ContactGeometryDataContainer (2)\n");
    ExpectContains(info, "Body \"Slider\", Body \"Crank\", Body \"Rod\"\n");
    ExpectContains(info, "PrismaticConstraint \"Guide.constraint\" of Prismatic \"Guide\"\n");
    ExpectContains(info, " CollisionRule 1\n");
}

TEST_F(Equipped, InfoHasNoSectionForAFamilyThatIsNotThere)
{
    const std::string info = Run("info " + Write("clean.xml", CleanDocument())).output;
    for (const std::string part : {"Drives", "Force elements", "Sensors", "Driven variables"})
        EXPECT_EQ(info.find(part), std::string::npos) << part;
}

TEST_F(Equipped, InfoNamesTwentyEntitiesOfAFamilyAndTenTargets)
{
    std::string forces;
    std::string motors;
    for (int i = 0; i < 30; ++i) {
        const std::string id = "more " + std::to_string(i);
        forces += "<Motor id=\"" + id + "\" name=\"" + id +
                  "\" isActive=\"yes\"><TargetType>NotSpecified</TargetType></Motor>\n";
        motors += "<Motor id=\"" + id + "\" name=\"" + id + "\"/>";
    }
    const std::string text =
        With(With(EquippedDocument(), "</AttachedMotors>", motors + "</AttachedMotors>"),
             "</Actuators>", forces + "</Actuators>");
    const std::string info = Run("info " + Write("many.xml", text)).output;
    ExpectContains(info, "Motor \"more 8\", and 21 more\n");
    ExpectContains(info, "\n  and 18 more\n");
    EXPECT_EQ(info.find("Motor \"more 9\""), std::string::npos);
    ExpectContains(Run("info --json " + File("many.xml")).output,
                   "{\"label\": \"Motor \\\"more 29\\\"\"");
}

TEST_F(Equipped, InfoTellsSizesAndTheKindsOfJointsThatItEstimatesFrom)
{
    const std::string size = Squeezed(Output("info", "<SizeY>1e+06<", "<SizeY>2<"));
    ExpectContains(size, " Linear tolerance 1e-06\n Angular tolerance 1e-09\n");
    ExpectContains(size, " Size (1e+06, 2, 1e+06)\n");
    const std::string all = Run("info " KARMP_EVERY_CLASS).output;
    ExpectContains(all, "\n  Joints not counted      6\n");
    EXPECT_EQ(all.find("planar mechanism"), std::string::npos);
}

TEST_F(Equipped, DrivenVariablesAreTakenFromTheMobility)
{
    const std::string left = "  Left free               ";
    const std::string driven = "  Driven variables        ";
    const std::string info = Output("info");
    ExpectContains(info, driven + "1\n");
    ExpectContains(info, left + "-3 in space, 0 in the plane\n");
    const std::string twice = Output(
        "info", "<Driver ",
        R"(<Motor id="second" name="second" isActive="yes"><Variable id="Crank angle" name="Crank angle"/>
    <TargetType>PositionTarget</TargetType><Position id="turn" name="turn"/></Motor>
   <Driver )");
    ExpectContains(twice, driven + "1\n");
}

TEST_F(Equipped, AMotorDrivesNothingWhenItIsInactiveOrHasNoTargetOrNoFreedom)
{
    const std::string none =
        "  Driven variables        0\n  Left free               -2 in space, 1 "
        "in the plane\n";
    const std::string motor = "<Motor id=\"motor\" name=\"motor\" isActive=\"";
    const std::string inactive = Output("info", motor + "yes", motor + "no");
    ExpectContains(inactive, none);
    ExpectContains(inactive, "Motor \"motor\" (inactive)");
    const std::string variable = "<Variable id=\"Crank angle\" name=\"Crank angle\"/>\n    <Target";
    ExpectContains(Output("info", variable, "<Target"), none);
    ExpectContains(
        Output("info", variable, "<Variable id=\"GlobalTime\" name=\"GlobalTime\"/>\n    <Target"),
        none);
    ExpectContains(Output("info",
                          "PositionTarget</TargetType><Position id=\"turn\" name=\"turn\"/>",
                          "NotSpecified</TargetType>"),
                   none);
}

} // namespace

} // namespace karmp::tool
