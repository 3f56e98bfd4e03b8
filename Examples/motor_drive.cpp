// A driven arm: a turntable, an arm that lifts and a slide that reaches out. Three motors show the
// three ways to tell one its target: the turntable turns at a velocity given as a number, the arm
// follows an equation of time, and the slide goes where a value says that the application may
// change. The world's z points up.

#include <cmath>

#include "RoundTrip.h"

using namespace karmp::model;

namespace {

using Quantity = KARMPPhysicalQuantity;

constexpr double Reach = 0.3;        // m, from the shoulder to the slide
constexpr double Elevation = 0.4;    // rad above the level
constexpr double TurnVelocity = 0.5; // rad/s

Model Build()
{
    const KARMathPoint shoulder(0.0, 0.0, 0.4);
    const KARMathVector across(0.0, -1.0, 0.0); // a positive angle about it lifts
    const auto lifted = KARMathTransformation::Rotation(KARMathLine(shoulder, across), Elevation);
    const auto atArm = lifted * KARMathTransformation(shoulder - KARMathPoint());
    const auto atSlide = atArm * KARMathTransformation(KARMathVector(Reach, 0.0, 0.0));
    const KARMathAxis level = *FrameAlong(shoulder, across);
    const KARMathAxis along = *FrameAlong({}, {1.0, 0.0, 0.0});

    Model model("Motor drive", {.gravity = {0.0, 0.0, -9.81}});
    const auto turntable = model.Body("Turntable", Cylinder(14.0, 0.15, 0.4, {0.0, 0.0, 0.2}));
    const auto arm = model.Body("Arm", Box(6.0, {0.5, 0.08, 0.1}, {0.2, 0.0, 0.0}).PlacedAt(atArm));
    const auto slide =
        model.Body("Slide", Box(3.0, {0.5, 0.05, 0.06}, {0.2, 0.0, 0.0}).PlacedAt(atSlide));
    const auto column =
        model.Joint<KARMPRevolute>("Column", model.Ground(), turntable, KARMathPoint());
    const auto joint =
        model.Joint<KARMPRevolute>("Shoulder", turntable, arm, level, lifted * level);
    const auto guide =
        model.Joint<KARMPPrismatic>("Guide", arm, slide, atArm * along, atSlide * along);
    const auto turn = model.Variable("Turn", column);
    const auto lift = model.Variable("Lift", joint, Elevation);
    const auto reach = model.Variable("Reach", guide, Reach);

    const auto turnMotor =
        model.Motor("Turn motor", turn, {.velocity = TurnVelocity, .maximum = 40.0});
    const auto liftMotor = model.Motor("Lift motor", lift, {.maximum = 80.0});
    liftMotor->SetPosition(model.Expression("Lift motor.position", Quantity::Angle,
                                            "0.4 + 0.3 * (1 - cos(1.5 * t))", {model.Time()}));
    const auto reachMotor = model.Motor("Reach motor", reach, {.maximum = 200.0});
    reachMotor->SetPosition(model.Constant("Wanted reach", Quantity::Length, Reach));
    const auto driver = model.Add<KARMPDriver>("Drive");
    for (const auto& motor : {turnMotor, liftMotor, reachMotor})
        model.Link(driver, motor);
    return model;
}

} // namespace

int main()
{
    const auto again = RoundTrip(Build(), "motor-drive.xml");
    if (!again)
        return 1;
    double velocity = 0.0, reach = 0.0;
    again->Find<KARMPMotor>("Turn motor")->GetVelocity(velocity);
    again->Find<KARMPMotor>("Reach motor")->GetPosition(reach);
    const auto law = again->Find<KARMPExpression>("Lift motor.position");
    const double start = *again->Evaluate(law, {{"t", 0.0}});
    std::cout << "After loading motor-drive.xml the turntable turns at " << velocity
              << " rad/s, the slide goes to " << reach << " m,\nand the arm stands at " << start
              << " rad at 0 s and at " << *again->Evaluate(law, {{"t", 1.0}}) << " rad at 1 s\n";
    const bool isLifted = std::abs(start - Elevation) < 1e-12;
    return velocity == TurnVelocity && reach == Reach && isLifted ? 0 : 1;
}
