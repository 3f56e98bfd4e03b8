// A gear pair: two wheels on revolute joints, and a gear that ties their angles by an equation. The
// axles lie level: gravity acts along -y.
#include "MechanismBuilder.h"

namespace {

constexpr double Ratio = 2.5;        // turns of the pinion per turn of the wheel
constexpr double PinionRadius = 0.1; // m, of the pitch circle
constexpr double WheelRadius = Ratio * PinionRadius;
constexpr double Width = 0.04;     // m
constexpr double WheelAngle = 0.2; // rad

/// A disc on an axle across the plane; gives the variable of its angle.
QOBSharedHandle<KARMPVariable> AddWheel(MechanismBuilder& mechanism, const std::wstring& name,
                                        double x, double angle, double radius, double mass)
{
    const auto wheel = mechanism.AddBody(name, {x, 0.0, 0.0}, angle);
    SetMass(*wheel, Cylinder(mass, {}, radius, Width));
    const auto bearing = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        name + L" bearing",
        mechanism.AddAxisSystem(mechanism.Ground(), name, AxisAlongZ({x, 0.0, 0.0})),
        mechanism.AddAxisSystem(wheel, L"Axle", AxisAlongZ({})));
    return mechanism.AddVariable(name + L" angle", KARMPPhysicalQuantity::Angle, angle, bearing);
}

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Gear pair", {0.0, -9.81, 0.0});
    const auto wheelAngle = AddWheel(mechanism, L"Wheel", 0.0, WheelAngle, WheelRadius, 60.0);
    const auto pinionAngle = AddWheel(mechanism, L"Pinion", WheelRadius + PinionRadius,
                                      -Ratio * WheelAngle, PinionRadius, 9.6);

    // Ratio * wheel angle + pinion angle = 0.
    const auto equation =
        mechanism.File<KARMPConstraint>(KARMPLinearEquation::create(L"Mesh"), L"Mesh");
    equation->AddLinearTerm(Ratio);
    equation->AddLinearTerm(1.0);
    equation->SetConstantTerm(0.0);
    for (const auto& angle : {wheelAngle, pinionAngle}) {
        equation->LinkToVariable(angle);
        angle->LinkToConstraint(equation);
    }

    const auto gear = mechanism.File<KARMPJoint>(KARMPGear::create(L"Gear"), L"Gear");
    gear->SetEquation(equation);
    equation->SetJoint(gear);
    const auto link = [&](const wchar_t* name, KARMPBodyOrientation::Enum orientation) {
        const auto body = FindByName<KARMPBody>(*mechanism.World(), name);
        gear->LinkToBody(body, orientation);
        body->LinkToJoint(gear);
    };
    link(L"Wheel", KARMPBodyOrientation::Out);
    link(L"Pinion", KARMPBodyOrientation::In);
    return mechanism.World();
}

} // namespace

int main()
{
    const auto world = Build();
    if (!IsQuiet(karmp::documents::SaveFile(world, "gear-pair.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("gear-pair.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    const QOBSharedHandle<KARMPGear> gear(FindByName<KARMPJoint>(*loaded.world, L"Gear"));
    QOBSharedHandle<KARMPEquation> equation;
    double ratio = 0.0;
    if (KARFailed(gear->GetEquation(equation)) ||
        KARFailed(QOBSharedHandle<KARMPLinearEquation>(equation)->GetLinearTerm(0, ratio)))
        return 1;
    std::cout << "The gear's ratio is " << ratio << " after loading gear-pair.xml\n";
    return ratio == Ratio ? 0 : 1;
}
