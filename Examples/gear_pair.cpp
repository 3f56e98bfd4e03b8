// A gear pair: two wheels on revolute joints, and a gear that ties their angles by an equation.
#include "MechanismBuilder.h"

namespace {

constexpr double Ratio = 2.5; // turns of the pinion per turn of the wheel

QOBSharedHandle<KARMPRevolute> AddWheel(MechanismBuilder& mechanism, const std::wstring& name,
                                        double x)
{
    const auto wheel = mechanism.AddBody(name, {x, 0.0, 0.0}, 0.0);
    return mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        name + L" bearing", mechanism.AddAxisSystem(mechanism.Ground(), name, {x, 0.0, 0.0}),
        mechanism.AddAxisSystem(wheel, L"Axle", {}));
}

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Gear pair");
    const auto wheel = AddWheel(mechanism, L"Wheel", 0.0);
    const auto pinion = AddWheel(mechanism, L"Pinion", 0.35);
    const auto wheelAngle =
        mechanism.AddVariable(L"Wheel angle", KARMPPhysicalQuantity::Angle, 0.0, wheel);
    const auto pinionAngle =
        mechanism.AddVariable(L"Pinion angle", KARMPPhysicalQuantity::Angle, 0.0, pinion);

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
    for (const wchar_t* name : {L"Wheel", L"Pinion"}) {
        const auto body = FindByName<KARMPBody>(*mechanism.World(), name);
        gear->LinkToBody(body, KARMPBodyOrientation::Out);
        body->LinkToJoint(gear);
    }
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
