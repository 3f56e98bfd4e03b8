// A slider-crank: three revolute joints, a guide along the slider's motion, and a variable for the
// angle of the crank. It stands upright: gravity acts along -y.
#include "MechanismBuilder.h"

namespace {

constexpr double CrankLength = 0.1; // m
constexpr double RodLength = 0.3;   // m
constexpr double CrankAngle = 0.5;  // rad

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Slider-crank", {0.0, -9.81, 0.0});
    const KARMathPoint pin(CrankLength * std::cos(CrankAngle), CrankLength * std::sin(CrankAngle),
                           0.0);
    const double rodAngle = -std::asin(pin.GetY() / RodLength);
    const KARMathPoint slide(pin.GetX() + RodLength * std::cos(rodAngle), 0.0, 0.0);

    const auto& ground = mechanism.Ground();
    const auto crank = mechanism.AddBody(L"Crank", {}, CrankAngle);
    const auto rod = mechanism.AddBody(L"Rod", pin, rodAngle);
    const auto slider = mechanism.AddBody(L"Slider", slide, 0.0);
    SetMass(*crank, Box(0.5, {CrankLength / 2.0, 0.0, 0.0}, {0.14, 0.03, 0.015}));
    SetMass(*rod, Box(0.8, {RodLength / 2.0, 0.0, 0.0}, {0.34, 0.024, 0.012}));
    SetMass(*slider, Box(1.2, {}, {0.08, 0.05, 0.04}));

    const auto bearing = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Main bearing", mechanism.AddAxisSystem(ground, L"Bearing", AxisAlongZ({})),
        mechanism.AddAxisSystem(crank, L"Bearing", AxisAlongZ({})));
    mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Crank pin", mechanism.AddAxisSystem(crank, L"Pin", AxisAlongZ({CrankLength, 0.0, 0.0})),
        mechanism.AddAxisSystem(rod, L"Pin", AxisAlongZ({})));
    mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Slider pin", mechanism.AddAxisSystem(rod, L"End", AxisAlongZ({RodLength, 0.0, 0.0})),
        mechanism.AddAxisSystem(slider, L"Pin", AxisAlongZ({})));
    mechanism.AddJoint<KARMPPrismatic, KARMPPrismaticConstraint>(
        L"Guide", mechanism.AddAxisSystem(ground, L"Guide", AxisAlongX({})),
        mechanism.AddAxisSystem(slider, L"Guide", AxisAlongX({})));
    mechanism.AddVariable(L"Crank angle", KARMPPhysicalQuantity::Angle, CrankAngle, bearing);
    return mechanism.World();
}

} // namespace

int main()
{
    const auto world = Build();
    if (!IsQuiet(karmp::documents::SaveFile(world, "slider-crank.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("slider-crank.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    const auto slider = FindByName<KARMPBody>(*loaded.world, L"Slider");
    std::cout << "The slider stands at x = " << PositionOf(*slider).GetVector().GetX()
              << " m after loading slider-crank.xml\n";
    return 0;
}
