// A gear pair: two wheels on revolute joints, and a gear that ties their angles by an equation. The
// axles lie level: gravity acts along -y.

#include "RoundTrip.h"

using namespace karmp::model;

namespace {

constexpr double Ratio = 2.5;        // turns of the pinion per turn of the wheel
constexpr double PinionRadius = 0.1; // m, of the pitch circle
constexpr double WheelRadius = Ratio * PinionRadius;
constexpr double WheelAngle = 0.2; // rad

/// A disc on an axle across the plane; gives the variable of its angle.
Ref<KARMPVariable> AddWheel(Model& model, const std::string& name, double x, double angle,
                            double radius, double mass)
{
    const auto limb = model.Limb<KARMPRevolute>(name, name + " bearing", model.Ground(),
                                                {{x, 0.0, 0.0}, {0.0, 0.0, 1.0}, angle},
                                                Cylinder(mass, radius, 0.04));
    return model.Variable(name + " angle", limb.joint, angle);
}

} // namespace

int main()
{
    Model model("Gear pair", {.gravity = {0.0, -9.81, 0.0}});
    const auto wheel = AddWheel(model, "Wheel", 0.0, WheelAngle, WheelRadius, 60.0);
    const auto pinion = AddWheel(model, "Pinion", WheelRadius + PinionRadius, -Ratio * WheelAngle,
                                 PinionRadius, 9.6);
    model.Couple<KARMPGear>("Gear", {{wheel, Ratio}, {pinion, 1.0}}); // their sum is 0
    return RoundTrip(model, "gear-pair.xml", [](const Model& again) {
        double ratio = 0.0;
        again.Find<KARMPLinearEquation>("Gear.equation")->GetLinearTerm(0, ratio);
        std::cout << "The gear's ratio is " << ratio << " after loading gear-pair.xml\n";
        return ratio == Ratio;
    });
}
