// A robot arm with six revolute joints, whose links have meshes: the program makes them of boxes
// and cylinders, which also tell what the links weigh. Motors hold the joints where they stand. The
// program builds the arm, saves it, loads it again, and tells where the tool points and how many
// triangles there are. The world's z points up.
#include "SolidParts.h"

#include "KAR3DRepWalk.h"

namespace {

using Body = QOBSharedHandle<KARMPBody>;
using Parts = std::vector<SolidPart>;
using Quantity = KARMPPhysicalQuantity;

constexpr double Density = 1400.0; // kg/m3: hollow castings, taken as solid
constexpr KARColour Orange{0.93, 0.45, 0.1, 1.0};
constexpr KARColour Dark{0.2, 0.22, 0.25, 1.0};
constexpr KARColour Bright{0.78, 0.8, 0.83, 1.0};

constexpr double ShoulderHeight = 0.26; // m, above the column's joint
constexpr double UpperArmLength = 0.45;
constexpr double ForearmLength = 0.4;
constexpr double ToolLength = 0.17;

/// An axis system about whose third direction, along -y, a positive angle lifts what lies along x.
KARMathAxis LiftAxis(const KARMathPoint& origin)
{
    return {origin, {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {0.0, -1.0, 0.0}};
}

/// A link of the arm: it turns about an axis through its origin, which lies at a point of the link
/// before it.
struct Link
{
    const wchar_t* name;
    const wchar_t* joint;
    KARMathPoint point;
    KARMathAxis (*axis)(const KARMathPoint&);
    double angle;  // rad
    double torque; // N m, the motor's greatest
    Parts parts;
};

std::vector<Link> Links()
{
    return {
        {L"Column",
         L"Waist",
         {0.0, 0.0, 0.14},
         AxisAlongZ,
         0.5,
         300.0,
         {SolidPart::Drum({0.0, 0.0, 0.05}, 2, 0.11, 0.1, Orange),
          SolidPart::Block({0.0, 0.0, 0.17}, {0.13, 0.09, 0.16}, Orange),
          SolidPart::Drum({0.0, 0.0, ShoulderHeight}, 1, 0.085, 0.12, Dark)}},
        {L"Upper arm",
         L"Shoulder",
         {0.0, 0.0, ShoulderHeight},
         LiftAxis,
         1.1,
         300.0,
         {SolidPart::Drum({0.0, 0.09, 0.0}, 1, 0.08, 0.06, Orange),
          SolidPart::Block({UpperArmLength / 2.0, 0.09, 0.0}, {UpperArmLength, 0.05, 0.1}, Orange),
          SolidPart::Drum({UpperArmLength, 0.09, 0.0}, 1, 0.065, 0.06, Orange)}},
        {L"Forearm",
         L"Elbow",
         {UpperArmLength, 0.0, 0.0},
         LiftAxis,
         -1.3,
         150.0,
         {SolidPart::Drum({0.0, 0.005, 0.0}, 1, 0.06, 0.11, Dark),
          SolidPart::Block({0.1, 0.0, 0.0}, {0.16, 0.08, 0.08}, Orange),
          SolidPart::Drum({0.22, 0.0, 0.0}, 0, 0.042, 0.08, Dark)}},
        {L"Wrist",
         L"Forearm roll",
         {0.26, 0.0, 0.0},
         AxisAlongX,
         0.4,
         40.0,
         {SolidPart::Drum({0.05, 0.0, 0.0}, 0, 0.038, 0.1, Orange),
          SolidPart::Drum({ForearmLength - 0.26, 0.0, 0.0}, 1, 0.042, 0.1, Dark)}},
        {L"Hand",
         L"Wrist bend",
         {ForearmLength - 0.26, 0.0, 0.0},
         LiftAxis,
         -0.7,
         40.0,
         {SolidPart::Block({0.045, 0.0, 0.0}, {0.07, 0.06, 0.06}, Orange)}},
        {L"Gripper",
         L"Tool roll",
         {0.08, 0.0, 0.0},
         AxisAlongX,
         0.3,
         20.0,
         {SolidPart::Drum({0.01, 0.0, 0.0}, 0, 0.035, 0.02, Dark),
          SolidPart::Block({0.035, 0.0, 0.0}, {0.03, 0.1, 0.04}, Bright),
          SolidPart::Block({0.11, 0.035, 0.0}, {0.12, 0.012, 0.03}, Bright),
          SolidPart::Block({0.11, -0.035, 0.0}, {0.12, 0.012, 0.03}, Bright)}},
    };
}

/// Where a link stands on the one before it.
KARMathTransformation StepTo(const Link& link)
{
    const KARMathLine axis({}, link.axis({}).GetThirdDirection());
    return KARMathTransformation(link.point - KARMathPoint()) *
           KARMathTransformation::Rotation(axis, link.angle);
}

/// Adds a link to the body before it.
Body AddLink(MechanismBuilder& mechanism, const Body& before, const Link& link)
{
    const std::wstring joint = link.joint;
    const Body body = mechanism.AddBody(link.name, PositionOf(*before) * StepTo(link));
    SetMass(*body, link.parts, Density);
    AddMeshes(mechanism, body, link.parts);
    const auto revolute = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        joint, mechanism.AddAxisSystem(before, joint, link.axis(link.point)),
        mechanism.AddAxisSystem(body, joint, link.axis({})));
    const auto angle =
        mechanism.AddVariable(joint + L" angle", Quantity::Angle, link.angle, revolute);
    mechanism.AddMotor(joint + L" motor", angle, link.torque, 0.0);
    return body;
}

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Robot arm", {0.0, 0.0, -9.81});
    AddMeshes(mechanism, mechanism.Ground(),
              {SolidPart::Block({0.0, 0.0, 0.01}, {0.36, 0.36, 0.02}, Dark),
               SolidPart::Drum({0.0, 0.0, 0.08}, 2, 0.12, 0.12, Bright)});
    Body last = mechanism.Ground();
    for (const Link& link : Links())
        last = AddLink(mechanism, last, link);
    mechanism.AddPoint(last, L"Tip", {ToolLength, 0.0, 0.0});
    return mechanism.World();
}

/// The tip of the tool in the world, by the joints alone.
KARMathPoint ExpectedTip()
{
    KARMathTransformation position;
    for (const Link& link : Links())
        position = position * StepTo(link);
    return position * KARMathPoint(ToolLength, 0.0, 0.0);
}

/// The tip of the tool in the world, as a document has it.
KARMathPoint TipOf(const KARMPWorld& world)
{
    KARMathPoint tip;
    QOBSharedHandle<KARMPPoint>(FindByName<KARMPGeometry>(world, L"Gripper.Tip"))->GetPoint(tip);
    return PositionOf(*FindByName<KARMPBody>(world, L"Gripper")) * tip;
}

std::size_t CountTriangles(const KARMPWorld& world)
{
    std::size_t count = 0;
    for (int index = 0; index < world.Count<KARMPShape>(); ++index) {
        QOBSharedHandle<KARMPShape> shape;
        world.Get<KARMPShape>(index, shape);
        KARForEach3DRep(
            *QOBSharedHandle<KARMP3DRep>(shape)->Get3DRep(), [&](const KAR3DRepPlace& place) {
                if (const auto* const mesh = dynamic_cast<const KAR3DMeshRep*>(place.rep))
                    count += mesh->GetTriangles().size();
            });
    }
    return count;
}

} // namespace

int main()
{
    const auto world = Build();
    if (!IsQuiet(karmp::documents::SaveFile(world, "robot-arm.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("robot-arm.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    const KARMathPoint tip = TipOf(*loaded.world);
    const std::size_t triangles = CountTriangles(*loaded.world);
    std::cout << "After loading robot-arm.xml the tip of the gripper is at (" << tip.GetX() << ", "
              << tip.GetY() << ", " << tip.GetZ() << ") m, and the links have " << triangles
              << " triangles\n";
    return (tip - ExpectedTip()).Norm() < 1e-11 && triangles == CountTriangles(*world) ? 0 : 1;
}
