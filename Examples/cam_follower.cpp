// A cam with a follower in a sketch: an eccentric disc turns about a pin, and the flat face of a
// follower, which slides in a guide, touches it. A sensor on the follower keeps how far it was
// lifted from its lowest position. The program builds it, saves it, loads it again, and tells how
// far face and disc are apart.
#include "PlanarQueries.h"

namespace {

using Quantity = KARMPPhysicalQuantity;

constexpr double CamRadius = 0.03;
constexpr double Eccentricity = 0.01;
constexpr double CamAngle = 0.5; // of the disc's centre about the pin, from the x axis
constexpr double CamVelocity = 10.0;
constexpr double MotorTorque = 2.0;
constexpr double FollowerMass = 0.15;
constexpr double StemLength = 0.12;

/// The height of the follower's face above the pin.
double LiftAt(double angle)
{
    return CamRadius + Eccentricity * std::sin(angle);
}

void AddCam(PlanarMechanismBuilder& mechanism, const QOBSharedHandle<KARMPBody2D>& cam)
{
    const double mass = 0.25;
    const double moment = mass * CamRadius * CamRadius / 4.0;
    SetMass(*cam, mass, {Eccentricity, 0.0}, moment, moment);
    const auto bearing = mechanism.AddPin(L"Cam bearing", mechanism.Frame(), {}, cam, {});
    const auto angle = mechanism.AddVariable(L"Cam angle", Quantity::Angle, CamAngle, bearing);
    mechanism.AddMotor(L"Motor", angle, MotorTorque, CamVelocity);
}

/// The follower's face is its x axis; its stem goes up from there.
void AddFollower(PlanarMechanismBuilder& mechanism, const QOBSharedHandle<KARMPBody2D>& follower)
{
    SetMass(*follower, FollowerMass, {0.0, StemLength / 2.0},
            FollowerMass * StemLength * StemLength / 12.0, 0.0);
    const KARMathLine2D up({0.0, 0.0}, {0.0, 1.0});
    mechanism.AddPlanarJoint<KARMPCoincidence>(L"Guide",
                                               mechanism.AddLine(mechanism.Frame(), L"Guide", up),
                                               mechanism.AddLine(follower, L"Stem", up));

    const auto sensor =
        mechanism.File<KARMPSensor>(KARMPDisplacementSensor2D::create(L"Lift"), L"Lift");
    sensor->SetBody(follower);
    sensor->SetDisplacement(KARMathTransformation2D(
        KARMathVector2D(0.0, LiftAt(CamAngle) - (CamRadius - Eccentricity))));
    follower->SetDisplacementSensor(sensor);
}

QOBSharedHandle<KARMPWorld> Build()
{
    PlanarMechanismBuilder mechanism(L"Cam and follower", {0.0, -9.81, 0.0});
    const auto cam = mechanism.AddPlanarBody(L"Cam", {}, CamAngle);
    const auto follower = mechanism.AddPlanarBody(L"Follower", {0.0, LiftAt(CamAngle)}, 0.0);
    AddCam(mechanism, cam);
    AddFollower(mechanism, follower);
    mechanism.AddPlanarJoint<KARMPTangency>(
        L"Contact", mechanism.AddCircle(cam, L"Disc", {Eccentricity, 0.0}, CamRadius),
        mechanism.AddLine(follower, L"Face", {{0.0, 0.0}, {1.0, 0.0}}));
    return mechanism.World();
}

/// How far the face is from touching the disc, in m.
double GapOf(const KARMPWorld& world)
{
    const QOBSharedHandle<KARMPCircle2D> disc(FindByName<KARMPGeometry>(world, L"Cam.Disc"));
    const QOBSharedHandle<KARMPLine2D> face(FindByName<KARMPGeometry>(world, L"Follower.Face"));
    QOBSharedHandle<KARMPBody2D> cam;
    QOBSharedHandle<KARMPBody2D> follower;
    KARMathPoint2D center;
    KARMathLine2D line;
    double radius = 0.0;
    disc->GetBody(cam);
    disc->GetPoint(center);
    disc->GetRadius(radius);
    face->GetBody(follower);
    face->GetLine(line);
    const KARMathVector2D way =
        PositionOf(*cam) * center - PositionOf(*follower) * line.GetOrigin();
    const KARMathVector2D along = PositionOf(*follower).GetMatrix() * line.GetDirection();
    const double distance = way.GetX() * along.GetY() - way.GetY() * along.GetX();
    return std::abs(distance) / along.Norm() - radius;
}

} // namespace

int main()
{
    if (!IsQuiet(karmp::documents::SaveFile(Build(), "cam-follower.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("cam-follower.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    KARMathTransformation2D lift;
    SensorOf<KARMPDisplacementSensor2D>(*loaded.world, L"Lift")->GetDisplacement(lift);
    const double gap = GapOf(*loaded.world);
    std::cout << "After loading cam-follower.xml the follower is lifted by "
              << lift.GetVector().GetY() << " m and its face is " << gap << " m from the disc\n";
    return std::abs(gap) <= 1e-11 ? 0 : 1;
}
