// A four-bar linkage in a sketch: a crank and a rocker on the frame, a coupler between them, four
// pins, and a motor that turns the crank. The program builds it, saves it, loads it again, and
// tells how well the loop closes.
#include "PlanarQueries.h"

namespace {

using Quantity = KARMPPhysicalQuantity;

constexpr double CrankLength = 0.1;
constexpr double CouplerLength = 0.3;
constexpr double RockerLength = 0.2;
constexpr double FrameLength = 0.3;
constexpr double CrankAngle = 1.0;
constexpr double CrankVelocity = 2.0;
constexpr double MotorTorque = 5.0;

/// The point above the line from one point to another at given distances from them.
KARMathPoint2D MeetingPoint(const KARMathPoint2D& from, double first, const KARMathPoint2D& to,
                            double second)
{
    const KARMathVector2D way = to - from;
    const double length = way.Norm();
    const double along = (first * first - second * second + length * length) / (2.0 * length);
    const double above = std::sqrt(first * first - along * along);
    const KARMathVector2D unit = way * (1.0 / length);
    return from + along * unit + above * KARMathVector2D(-unit.GetY(), unit.GetX());
}

double AngleOf(const KARMathVector2D& way)
{
    return std::atan2(way.GetY(), way.GetX());
}

QOBSharedHandle<KARMPWorld> Build()
{
    PlanarMechanismBuilder mechanism(L"Four-bar linkage", {0.0, -9.81, 0.0});
    const KARMathPoint2D pivot;
    const KARMathPoint2D otherPivot(FrameLength, 0.0);
    const KARMathPoint2D crankEnd(CrankLength * std::cos(CrankAngle),
                                  CrankLength * std::sin(CrankAngle));
    const KARMathPoint2D rockerEnd =
        MeetingPoint(crankEnd, CouplerLength, otherPivot, RockerLength);

    const auto& frame = mechanism.Frame();
    const auto crank = mechanism.AddPlanarBody(L"Crank", pivot, CrankAngle);
    const auto coupler =
        mechanism.AddPlanarBody(L"Coupler", crankEnd, AngleOf(rockerEnd - crankEnd));
    const auto rocker =
        mechanism.AddPlanarBody(L"Rocker", otherPivot, AngleOf(rockerEnd - otherPivot));
    SetRodMass(*crank, 0.2, CrankLength);
    SetRodMass(*coupler, 0.6, CouplerLength);
    SetRodMass(*rocker, 0.4, RockerLength);

    const auto bearing = mechanism.AddPin(L"Crank bearing", frame, pivot, crank, {});
    mechanism.AddPin(L"Crank pin", crank, {CrankLength, 0.0}, coupler, {});
    mechanism.AddPin(L"Rocker pin", coupler, {CouplerLength, 0.0}, rocker, {RockerLength, 0.0});
    mechanism.AddPin(L"Rocker bearing", frame, otherPivot, rocker, {});

    const auto angle = mechanism.AddVariable(L"Crank angle", Quantity::Angle, CrankAngle, bearing);
    mechanism.AddMotor(L"Motor", angle, MotorTorque, CrankVelocity);
    return mechanism.World();
}

} // namespace

int main()
{
    if (!IsQuiet(karmp::documents::SaveFile(Build(), "four-bar.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("four-bar.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    const double error = PinError(*loaded.world);
    std::cout << "After loading four-bar.xml its " << loaded.world->Count<KARMPJoint>()
              << " pins close to " << error << " m\n";
    return error <= 1e-11 ? 0 : 1;
}
