// The seven-body mechanism in space. The program builds it with its published figures, saves it,
// loads it again, and tells how well the loops close and how the spring pushes.
#include "MechanismBuilder.h"
#include "SevenBody.h"

#include <algorithm>
#include <array>

namespace {

using karmp::documents::Doubles;
using namespace seven_body;

constexpr int RotationAboutZ = 5; // index of a freedom

/// The constant torque on K1, and the angle that it drives.
void AddDrive(MechanismBuilder& mechanism, const QOBSharedHandle<KARMPJoint>& joint)
{
    mechanism.AddVariable(L"Beta", KARMPPhysicalQuantity::Angle, Beta, joint);
    const auto drive =
        mechanism.File<KARMPActuator>(KARMPJointForceActuator::create(L"Drive"), L"Drive");
    drive->SetJoint(joint);
    drive->SetIndexDOF(RotationAboutZ);
    drive->SetForce(
        mechanism.AddConstant(L"Drive.torque", KARMPPhysicalQuantity::Torque, DriveTorque));
}

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Seven-body mechanism", {});
    const KARMPWorld& world = *mechanism.World();
    for (const BodyData& data : Bodies) {
        const auto carrier = FindByName<KARMPBody>(world, data.on);
        const KARMathPoint origin = PositionOf(*carrier) * KARMathPoint(data.origin);
        const auto body = mechanism.AddBody(data.name, origin, data.angle);
        // The figures are those of the plane; about the two axes in it, which no motion turns
        // about, a body is taken for a flat one without a preferred direction.
        const double inPlane = data.inertia / 2.0;
        SetMass(*body, {data.mass, data.center, Diagonal(inPlane, inPlane, data.inertia)});
    }

    for (const JointData& data : Joints) {
        const auto first = FindByName<KARMPBody>(world, data.first);
        const auto second = FindByName<KARMPBody>(world, data.second);
        const std::wstring name = data.name;
        const auto joint = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
            L"Revolute." + name, mechanism.AddAxisSystem(first, name, AxisAlongZ(data.onFirst)),
            mechanism.AddAxisSystem(second, name, AxisAlongZ(data.onSecond)));
        if (joint->getEntityName() == L"Revolute.O")
            AddDrive(mechanism, joint);
    }
    const auto k3 = FindByName<KARMPBody>(world, L"K3");
    mechanism.AddSpring(L"Spring", mechanism.AddPoint(mechanism.Ground(), L"C", C),
                        mechanism.AddPoint(k3, L"D", D), SpringStiffness, SpringLength, 0.0);
    return mechanism.World();
}

/// The greatest distance between the two axes of a joint.
double LoopError(const KARMPWorld& world)
{
    double error = 0.0;
    for (int index = 0; index < world.Count<KARMPConstraint>(); ++index) {
        QOBSharedHandle<KARMPConstraint> constraint;
        world.Get<KARMPConstraint>(index, constraint);
        std::array<KARMathPoint, 2> points;
        for (int side = 0; side < 2; ++side) {
            QOBSharedHandle<KARMPGeometry> geometry;
            QOBSharedHandle<KARMPBody> body;
            KARMathAxis axis;
            constraint->GetLinkedGeometry(side, geometry);
            geometry->GetBody(body);
            QOBSharedHandle<KARMPAxisSystem>(geometry)->GetAxisSystem(axis);
            points[static_cast<std::size_t>(side)] = PositionOf(*body) * axis.GetOrigin();
        }
        error = std::max({error, std::abs(points[0].GetX() - points[1].GetX()),
                          std::abs(points[0].GetY() - points[1].GetY())});
    }
    return error;
}

bool RoundTrip(const QOBSharedHandle<KARMPWorld>& world, const std::string& file, Doubles doubles,
               double tolerance)
{
    karmp::documents::SaveOptions options;
    options.doubles = doubles;
    if (!IsQuiet(karmp::documents::SaveFile(world, file, options)))
        return false;
    const auto loaded = karmp::documents::LoadFile(file);
    if (!IsQuiet(loaded.diagnostics) || !loaded.world ||
        loaded.world->Count<KARMPJoint>() != static_cast<int>(Joints.size()))
        return false;
    const QOBSharedHandle<KARMPLinearSpring> spring(
        FindByName<KARMPConnector>(*loaded.world, L"Spring"));
    const double error = LoopError(*loaded.world);
    std::cout << (doubles == Doubles::Exact ? "exact numbers:   " : "default numbers: ")
              << "loops close to " << error << " m and the spring pushes with " << PushOf(*spring)
              << " N after loading " << file << '\n';
    return error <= tolerance;
}

} // namespace

int main()
{
    const auto world = Build();
    std::cout << "Built " << world->Count<KARMPBody>() << " bodies with the ground, "
              << world->Count<KARMPJoint>() << " revolute joints, " << world->Count<KARMPGeometry>()
              << " geometries.\n";
    const bool rounded = RoundTrip(world, "seven-body.xml", Doubles::Snapped, 1e-11);
    const bool exact = RoundTrip(world, "seven-body-exact.xml", Doubles::Exact, 1e-15);
    return rounded && exact ? 0 : 1;
}
