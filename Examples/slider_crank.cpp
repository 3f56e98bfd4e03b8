// A slider-crank: three revolute joints and a prismatic one, with a motor's variable on the crank.
#include "MechanismBuilder.h"

namespace {

constexpr double CrankLength = 0.1; // m
constexpr double RodLength = 0.3;   // m
constexpr double CrankAngle = 0.5;  // rad

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Slider-crank");
    const KARMathPoint pin(CrankLength * std::cos(CrankAngle), CrankLength * std::sin(CrankAngle),
                           0.0);
    const double rodAngle = -std::asin(pin.GetY() / RodLength);
    const KARMathPoint slide(pin.GetX() + RodLength * std::cos(rodAngle), 0.0, 0.0);

    const auto& ground = mechanism.Ground();
    const auto crank = mechanism.AddBody(L"Crank", {}, CrankAngle);
    const auto rod = mechanism.AddBody(L"Rod", pin, rodAngle);
    const auto slider = mechanism.AddBody(L"Slider", slide, 0.0);
    crank->SetMass(0.5);
    rod->SetMass(0.8);
    slider->SetMass(1.2);

    const auto crankPin = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Main bearing", mechanism.AddAxisSystem(ground, L"Bearing", {}),
        mechanism.AddAxisSystem(crank, L"Bearing", {}));
    mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Crank pin", mechanism.AddAxisSystem(crank, L"Pin", {CrankLength, 0.0, 0.0}),
        mechanism.AddAxisSystem(rod, L"Pin", {}));
    mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Slider pin", mechanism.AddAxisSystem(rod, L"End", {RodLength, 0.0, 0.0}),
        mechanism.AddAxisSystem(slider, L"Pin", {}));
    mechanism.AddJoint<KARMPPrismatic, KARMPPrismaticConstraint>(
        L"Guide", mechanism.AddAxisSystem(ground, L"Guide", {}),
        mechanism.AddAxisSystem(slider, L"Guide", {}));
    mechanism.AddVariable(L"Crank angle", KARMPPhysicalQuantity::Angle, CrankAngle, crankPin);
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
