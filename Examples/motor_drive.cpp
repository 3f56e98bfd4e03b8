// A driven arm: a turntable, an arm that lifts and a slide that reaches out. Three motors show the
// three ways to tell one its target: the turntable turns at a velocity given as a number, the arm
// follows an equation of time, and the slide goes where a value says that the application may
// change. The world's z points up.
#include "MechanismBuilder.h"

#include <stdexcept>

namespace {

using Quantity = KARMPPhysicalQuantity;

constexpr double ShoulderHeight = 0.4; // m
constexpr double Reach = 0.3;          // m, from the shoulder to the slide
constexpr double Elevation = 0.4;      // rad above the level
constexpr double TurnVelocity = 0.5;   // rad/s
constexpr const wchar_t* LiftLaw = L"0.4 + 0.3 * (1 - cos(1.5 * t))";

/// An axis system at a point of the arm when it is level, about whose third direction, along -y, a
/// positive angle lifts.
constexpr KARMathAxis LiftAxis(const KARMathPoint& origin)
{
    return {origin, {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {0.0, -1.0, 0.0}};
}

struct Variables
{
    QOBSharedHandle<KARMPVariable> turn;
    QOBSharedHandle<KARMPVariable> lift;
    QOBSharedHandle<KARMPVariable> reach;
};

Variables AddArm(MechanismBuilder& mechanism)
{
    const KARMathPoint shoulder(0.0, 0.0, ShoulderHeight);
    const auto lifted =
        KARMathTransformation::Rotation(KARMathLine(shoulder, {0.0, -1.0, 0.0}), Elevation);
    const auto turntable = mechanism.AddBody(L"Turntable", KARMathTransformation());
    const auto arm =
        mechanism.AddBody(L"Arm", lifted * KARMathTransformation(shoulder - KARMathPoint()));
    const auto slide = mechanism.AddBody(
        L"Slide", PositionOf(*arm) * KARMathTransformation(KARMathVector(Reach, 0.0, 0.0)));
    SetMass(*turntable, Cylinder(14.0, {0.0, 0.0, 0.2}, 0.15, 0.4));
    SetMass(*arm, Box(6.0, {0.2, 0.0, 0.0}, {0.5, 0.08, 0.1}));
    SetMass(*slide, Box(3.0, {0.2, 0.0, 0.0}, {0.5, 0.05, 0.06}));

    const auto column = mechanism.AddJointAt<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Column", mechanism.Ground(), turntable, AxisAlongZ({}));
    const auto joint = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Shoulder", mechanism.AddAxisSystem(turntable, L"Shoulder", LiftAxis(shoulder)),
        mechanism.AddAxisSystem(arm, L"Shoulder", LiftAxis({})));
    const auto guide = mechanism.AddJoint<KARMPPrismatic, KARMPPrismaticConstraint>(
        L"Guide", mechanism.AddAxisSystem(arm, L"Guide", AxisAlongX({})),
        mechanism.AddAxisSystem(slide, L"Guide", AxisAlongX({})));
    return {mechanism.AddVariable(L"Turn", Quantity::Angle, 0.0, column),
            mechanism.AddVariable(L"Lift", Quantity::Angle, Elevation, joint),
            mechanism.AddVariable(L"Reach", Quantity::Length, Reach, guide)};
}

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Motor drive", {0.0, 0.0, -9.81});
    const auto [turn, lift, reach] = AddArm(mechanism);

    const auto turnMotor = mechanism.AddMotor(L"Turn motor", turn, 40.0, TurnVelocity);

    // The world's factory owns the equation as long as there is a world, and holds no other one.
    KARWBFactory* laws = nullptr;
    KARWBEquation* law = nullptr;
    mechanism.World()->GetWBFactory(laws);
    if (KARFailed(KARMPSerializationServices::ParseWBEquation(LiftLaw, laws, law)))
        throw std::logic_error("the law of the lift is no equation");
    const auto liftMotor = mechanism.AddMotor(L"Lift motor", lift, 80.0);
    liftMotor->SetPosition(laws);
    QOBSharedHandle<KARMPValue> value;
    liftMotor->GetPosition(value);
    mechanism.File<KARMPValue>(value, L"Lift motor.position");

    const auto reachMotor = mechanism.AddMotor(L"Reach motor", reach, 200.0);
    reachMotor->SetPosition(mechanism.AddConstant(L"Wanted reach", Quantity::Length, Reach));

    const auto driver = mechanism.File<KARMPActuator>(KARMPDriver::create(L"Drive"), L"Drive");
    for (const auto& motor : {turnMotor, liftMotor, reachMotor})
        driver->AddMotor(motor);
    return mechanism.World();
}

QOBSharedHandle<KARMPMotor> MotorOf(const KARMPWorld& world, const wchar_t* name)
{
    return QOBSharedHandle<KARMPMotor>(FindByName<KARMPActuator>(world, name));
}

/// Where the equation of the arm's motor wants the arm at a time in s.
double LiftAt(const KARMPWorld& world, double time)
{
    QOBSharedHandle<KARMPValue> value;
    MotorOf(world, L"Lift motor")->GetPosition(value);
    KARWBEquation* equation = nullptr;
    QOBSharedHandle<KARMPExpression>(value)->GetValue(equation);
    KARWBFactory* laws = nullptr;
    world.GetWBFactory(laws);
    laws->GetVariable("t")->SetValue(time);
    double angle = 0.0;
    KARWBEvaluator().Evaluate(*equation, angle);
    return angle;
}

} // namespace

int main()
{
    const auto world = Build();
    if (!IsQuiet(karmp::documents::SaveFile(world, "motor-drive.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("motor-drive.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    double velocity = 0.0;
    double reach = 0.0;
    MotorOf(*loaded.world, L"Turn motor")->GetVelocity(velocity);
    MotorOf(*loaded.world, L"Reach motor")->GetPosition(reach);
    const double start = LiftAt(*loaded.world, 0.0);
    std::cout << "After loading motor-drive.xml the turntable turns at " << velocity
              << " rad/s, the slide goes to " << reach << " m,\nand the arm stands at " << start
              << " rad at 0 s and at " << LiftAt(*loaded.world, 1.0) << " rad at 1 s\n";
    const bool isSame =
        velocity == TurnVelocity && reach == Reach && std::abs(start - Elevation) < 1e-12;
    return isSame ? 0 : 1;
}
