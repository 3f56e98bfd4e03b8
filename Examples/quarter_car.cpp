// A quarter of a car: the body on its front left suspension, two parallel arms with a tie rod.
// Bushings carry the lower arm, a spring with a damper and a torsion bar the body, and the tyre is
// a spring that may leave the road. The world's x points forward, y to the left, z up.
//
// Spring and tyre are as long as the weights at rest ask for, so that the model starts in balance
// but for the give of the bushings.
#include "RoundTrip.h"

#include <cmath>

using namespace karmp::model;

namespace {

using Quantity = KARMPPhysicalQuantity;

constexpr double Gravity = 9.81; // m/s2

// Points in the world, m. Both arms and the tie rod lie level, side by side, and are equally long.
constexpr double ArmLength = 0.35;
constexpr KARMathVector Along(1.0, 0.0, 0.0);
constexpr KARMathVector Across(0.0, 1.0, 0.0);
constexpr KARMathPoint BodyCenter(0.0, 0.3, 0.65);
constexpr KARMathPoint LowerPivot(0.0, 0.35, 0.2);
constexpr KARMathPoint UpperPivot(0.0, 0.35, 0.42);
constexpr KARMathPoint RodInner(-0.12, 0.35, 0.28);
constexpr KARMathPoint WheelCenter(0.0, 0.75, 0.3);
constexpr KARMathPoint SpringFoot(0.0, 0.6, 0.2); // on the lower arm
constexpr KARMathPoint SpringHead(0.0, 0.45, 0.62);

constexpr double BodyMass = 320.0; // kg, a quarter of the car's without wheels and suspension
constexpr double LowerArmMass = 3.2, UpperArmMass = 2.1, RodMass = 0.7;
constexpr double CarrierMass = 9.0, WheelMass = 18.0;
constexpr double ArmMasses = LowerArmMass + UpperArmMass + RodMass;
constexpr double TotalMass = BodyMass + ArmMasses + CarrierMass + WheelMass;

/// Of one bushing: a freedom, and what resists it; the third direction is the pivot's axis.
struct BushingData
{
    std::string freedom;
    double stiffness, damping;
};
const BushingData Bushing[] = {{"Tx", 8e6, 2000.0}, {"Ty", 8e6, 2000.0}, {"Tz", 1e6, 500.0},
                               {"Rx", 900.0, 1.0},  {"Ry", 900.0, 1.0},  {"Rz", 40.0, 0.2}};

/// The force of the spring at rest, by virtual work: when the wheel rises by 1, so do carrier and
/// ball joints, the centres of arms and rod by a half, and the foot of the spring by its share of
/// the arm.
double SpringLoad()
{
    const double lifted = TotalMass - WheelMass - CarrierMass - ArmMasses / 2.0;
    const double footRise = (SpringFoot.GetY() - LowerPivot.GetY()) / ArmLength;
    const KARMathVector spring = SpringHead - SpringFoot;
    return Gravity * lifted / (footRise * spring.GetZ() / spring.Norm());
}

struct QuarterCar
{
    Model model{"Quarter car", {.gravity = {0.0, 0.0, -Gravity}}};
    Ref<KARMPBody> body = model.Body("Body", Box(BodyMass, {1.3, 0.7, 0.6}).PlacedAt(BodyCenter));
    Ref<KARMPBody> lowerArm = AddArm("Lower arm", LowerPivot, LowerArmMass, 0.24, 0.03);
    Ref<KARMPBody> upperArm = AddArm("Upper arm", UpperPivot, UpperArmMass, 0.2, 0.025);
    Ref<KARMPBody> rod = AddArm("Tie rod", RodInner, RodMass, 0.016, 0.016);
    Ref<KARMPBody> carrier =
        model.Body("Hub carrier",
                   Box(CarrierMass, {0.12, 0.08, 0.26}, {0.0, -0.04, 0.01}).PlacedAt(WheelCenter));
    Ref<KARMPBody> wheel =
        model.Body("Wheel", Cylinder(WheelMass, 0.31, 0.2)
                                .PlacedAt(KARMathTransformation(*FrameAlong(WheelCenter, Across))));

    QuarterCar()
    {
        AddJoints();
        AddSprings();
        AddBushings();
    }

    Ref<KARMPBody> AddArm(const char* name, const KARMathPoint& pivot, double mass, double width,
                          double height)
    {
        const auto box = Box(mass, {width, ArmLength, height}, {0.0, ArmLength / 2.0, 0.0});
        return model.Body(name, box.PlacedAt(pivot));
    }

    void AddJoints()
    {
        const KARMathVector arm = ArmLength * Across;
        model.Variable("Heave",
                       model.Joint<KARMPPrismatic>("Guide", model.Ground(), body, BodyCenter));
        model.Variable("Upper arm angle", model.Joint<KARMPRevolute>("Upper pivot", body, upperArm,
                                                                     UpperPivot, Along));
        model.Joint<KARMPUniversal>("Tie rod inner", body, rod, RodInner);
        model.Joint<KARMPSpherical>("Lower ball", lowerArm, carrier, LowerPivot + arm);
        model.Joint<KARMPSpherical>("Upper ball", upperArm, carrier, UpperPivot + arm);
        model.Joint<KARMPSpherical>("Tie rod outer", rod, carrier, RodInner + arm);
        model.Variable("Wheel angle", model.Joint<KARMPRevolute>("Wheel bearing", carrier, wheel,
                                                                 WheelCenter, Across));
    }

    void AddSprings()
    {
        model.Spring("Spring", lowerArm, SpringFoot, body, SpringHead,
                     {.stiffness = 28000.0, .damping = 1800.0, .load = SpringLoad()});
        const auto tyre =
            model.Spring("Tyre", model.Ground(), {0.0, 0.75, 0.0}, carrier, WheelCenter,
                         {.stiffness = 200000.0, .damping = 150.0, .load = Gravity * TotalMass});
        model.Set(tyre, {{"Behavior", "ExtensionFree"}});
        // Resists the upper arm about its pivot, without a torque where the arm lies level.
        model.Connect<KARMPTorsionSpring>(
            "Torsion bar", body, upperArm, *FrameAlong(UpperPivot, Along),
            {{"Stiffness", 400.0}, {"RestAngle", 0.0}, {"DampingCoefficient", 2.0}});
    }

    /// Carry the lower arm before and behind the middle of its pivot. Both are of one kind and
    /// share their values.
    void AddBushings()
    {
        const auto add = [&](const char* name, double x) {
            return model.Connect<KARMPBushing>(name, body, lowerArm,
                                               *FrameAlong(LowerPivot + x * Along, Along));
        };
        const auto front = add("Front bushing", 0.12);
        const auto rear = add("Rear bushing", -0.12);
        for (const auto& [freedom, stiffness, damping] : Bushing) {
            const bool isLinear = freedom[0] == 'T';
            const auto resists = model.Constant(
                "Bushing.stiffness " + freedom,
                isLinear ? Quantity::LinearStiffness : Quantity::AngularStiffness, stiffness);
            const auto damps = model.Constant(
                "Bushing.damping " + freedom,
                isLinear ? Quantity::LinearDamping : Quantity::AngularDamping, damping);
            for (const auto& bushing : {front, rear})
                model.Set(bushing,
                          {{"Stiffness" + freedom, resists}, {"Damping" + freedom, damps}});
        }
    }
};

} // namespace

int main()
{
    return RoundTrip(
        QuarterCar().model, "quarter-car.xml",
        [](const Model& again) {
            const double tyre = ForceOf(again.Find<KARMPLinearSpring>("Tyre"));
            std::cout << "After loading quarter-car.xml the tyre carries " << tyre
                      << " N and the spring " << ForceOf(again.Find<KARMPLinearSpring>("Spring"))
                      << " N\n";
            return std::abs(tyre - Gravity * TotalMass) < 1e-6;
        });
}
