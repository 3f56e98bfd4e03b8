// The seven-body mechanism: a published benchmark of multibody dynamics, planar, with one degree of
// freedom, a spring and a constant torque that drives it. The program builds it with its published
// figures, saves it, loads it again, and tells how well the loops close and how the spring pushes.
//
// Figures: Schiehlen, Multibody Systems Handbook, 1990; Hairer and Wanner, Solving Ordinary
// Differential Equations II, section VII.7. Units: m, kg, s, N, rad.
#include "MechanismBuilder.h"

#include <algorithm>
#include <array>

namespace {

using karmp::documents::Doubles;

/// A point in the plane of the mechanism.
struct PlanePoint
{
    double x;
    double y;

    operator KARMathPoint() const { return {x, y, 0.0}; }
};

constexpr PlanePoint O{0.0, 0.0};
constexpr PlanePoint A{-0.06934, -0.00227};
constexpr PlanePoint B{-0.03635, 0.03273};
constexpr PlanePoint C{0.014, 0.072};
constexpr PlanePoint D{0.02, -0.018}; // on K3

constexpr double SpringStiffness = 4530.0; // between C and D
constexpr double SpringLength = 0.07785;   // at rest
constexpr double DriveTorque = 0.033;      // on K1, about O
constexpr int RotationAboutZ = 5;          // index of a freedom

constexpr double Beta = -0.0617138900142764496358948458001;
constexpr double Theta = 0.0;
constexpr double Gamma = 0.455279819163070380255912382449;
constexpr double Phi = 0.222668390165885884674473185609;
constexpr double Delta = 0.487364979543842550225598953530;
constexpr double Omega = -0.222668390165885884674473185609;
constexpr double Epsilon = 1.23054744454982119249735015568;

/// A body: the point of another one where its frame stands, its angle, its masses.
struct BodyData
{
    const wchar_t* name;
    const wchar_t* on; // the body that carries the frame's origin
    PlanePoint origin; // in that body's frame
    double angle;
    PlanePoint center;
    double mass;
    double inertia; // about the centre of mass, along z
};

constexpr std::array Bodies{
    BodyData{L"K1", L"GlobalBody", O, Beta, {0.00092, 0.0}, 0.04325, 2.194e-6},
    BodyData{L"K2", L"K1", {0.007, 0.0}, Beta + Theta, {-0.0115, 0.0}, 0.00365, 4.410e-7},
    BodyData{L"K3", L"GlobalBody", B, Gamma, {0.01043, -0.01874}, 0.02373, 5.255e-6},
    BodyData{L"K4", L"K3", {0.0, -0.035}, Delta + Phi, {0.0, 0.01421}, 0.00706, 5.667e-7},
    BodyData{L"K5", L"GlobalBody", A, Delta, {0.02308, 0.00916}, 0.07050, 1.169e-5},
    BodyData{L"K6", L"K3", {0.0, -0.035}, Epsilon + Omega, {-0.01421, 0.0}, 0.00706, 5.667e-7},
    BodyData{L"K7", L"GlobalBody", A, Epsilon, {-0.00449, -0.01228}, 0.05498, 1.912e-5}};

/// A revolute joint about z between a point of one body and a point of another.
struct JointData
{
    const wchar_t* name;
    const wchar_t* first;
    PlanePoint onFirst;
    const wchar_t* second;
    PlanePoint onSecond;
};

constexpr std::array Joints{JointData{L"O", L"GlobalBody", O, L"K1", {0.0, 0.0}},
                            JointData{L"F", L"K1", {0.007, 0.0}, L"K2", {0.0, 0.0}},
                            JointData{L"E2", L"K3", {0.0, -0.035}, L"K2", {-0.028, 0.0}},
                            JointData{L"E4", L"K3", {0.0, -0.035}, L"K4", {0.0, 0.0}},
                            JointData{L"E6", L"K3", {0.0, -0.035}, L"K6", {0.0, 0.0}},
                            JointData{L"B", L"GlobalBody", B, L"K3", {0.0, 0.0}},
                            JointData{L"A5", L"GlobalBody", A, L"K5", {0.0, 0.0}},
                            JointData{L"A7", L"GlobalBody", A, L"K7", {0.0, 0.0}},
                            JointData{L"G", L"K5", {0.04, 0.0}, L"K4", {0.0, 0.02}},
                            JointData{L"H", L"K7", {0.0, -0.04}, L"K6", {-0.02, 0.0}}};

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
