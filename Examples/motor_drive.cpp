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
    const KARMathVector up(0.0, 0.0, 1.0), forward(1.0, 0.0, 0.0);
    const KARMathVector across(0.0, -1.0, 0.0); // a positive angle about it lifts
    Model model("Motor drive", {.gravity = {0.0, 0.0, -9.81}});
    const auto turntable =
        model.Limb<KARMPRevolute>("Turntable", "Column", model.Ground(), {{}, up},
                                  Cylinder(14.0, 0.15, 0.4, {0.0, 0.0, 0.2}));
    const auto arm = model.Limb<KARMPRevolute>("Arm", "Shoulder", turntable.body,
                                               {{0.0, 0.0, 0.4}, across, Elevation},
                                               Box(6.0, {0.5, 0.08, 0.1}, {0.2, 0.0, 0.0}));
    const auto slide = model.Limb<KARMPPrismatic>("Slide", "Guide", arm.body, {{}, forward, Reach},
                                                  Box(3.0, {0.5, 0.05, 0.06}, {0.2, 0.0, 0.0}));
    const auto turn = model.Variable("Turn", turntable.joint);
    const auto lift = model.Variable("Lift", arm.joint, Elevation);
    const auto reach = model.Variable("Reach", slide.joint, Reach);

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
    return RoundTrip(
        Build(), "motor-drive.xml",
        [](const Model& again) {
            const double velocity = *NumberOf(again.Find<KARMPMotor>("Turn motor"), "Velocity");
            const double reach = *NumberOf(again.Find<KARMPMotor>("Reach motor"), "Position");
            const auto law = again.Find<KARMPExpression>("Lift motor.position");
            const double start = *again.Evaluate(law, {{"t", 0.0}});
            std::cout << "After loading motor-drive.xml the turntable turns at " << velocity
                      << " rad/s, the slide goes to " << reach << " m,\nand the arm stands at "
                      << start << " rad at 0 s and at " << *again.Evaluate(law, {{"t", 1.0}})
                      << " rad at 1 s\n";
            const bool isLifted = std::abs(start - Elevation) < 1e-12;
            return velocity == TurnVelocity && reach == Reach && isLifted;
        });
}
