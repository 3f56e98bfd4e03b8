// A robot arm with six revolute joints, whose links have meshes: the program makes them of boxes
// and cylinders, which also tell what the links weigh. Motors hold the joints where they stand. The
// program builds the arm, saves it, loads it again, and tells where the tool points and how many
// triangles there are. The world's z points up.
#include "RoundTrip.h"

using namespace karmp::model;

namespace {

constexpr double Density = 1400.0; // kg/m3: hollow castings, taken as solid
constexpr KARColour Orange{0.93, 0.45, 0.1, 1.0};
constexpr KARColour Dark{0.2, 0.22, 0.25, 1.0};
constexpr KARColour Bright{0.78, 0.8, 0.83, 1.0};

constexpr KARMathVector Up(0.0, 0.0, 1.0);
constexpr KARMathVector Lift(0.0, -1.0, 0.0); // a positive angle lifts what lies along x
constexpr KARMathVector Roll(1.0, 0.0, 0.0);
constexpr KARMathPoint Tool(0.17, 0.0, 0.0); // the tip, on the last link

/// The arm while it grows by links.
struct Arm
{
    Model model{"Robot arm", {.gravity = {0.0, 0.0, -9.81}}};
    Ref<KARMPBody> last = model.Ground();

    /// A link that turns about an axis through its origin, which lies at a point of the link
    /// before it, by an angle, with a motor's greatest torque.
    void Add(const char* name, const std::string& joint, const KARMathPoint& point,
             const KARMathVector& axis, double angle, double torque,
             const std::vector<Solid>& parts)
    {
        const auto limb = model.Limb<KARMPRevolute>(name, joint, last, {point, axis, angle},
                                                    MassOf(parts, Density));
        model.Shape("Shape", limb.body, parts);
        model.Motor(joint + " motor", model.Variable(joint + " angle", limb.joint, angle),
                    {.velocity = 0.0, .maximum = torque});
        last = limb.body;
    }
};

Arm Build()
{
    Arm arm;
    arm.model.Shape("Shape", arm.last,
                    std::vector{Solid{{0.0, 0.0, 0.01}, {0.36, 0.36, 0.02}, -1, Dark},
                                Drum({0.0, 0.0, 0.08}, 2, 0.12, 0.12, Bright)});
    arm.Add("Column", "Waist", {0.0, 0.0, 0.14}, Up, 0.5, 300.0,
            {Drum({0.0, 0.0, 0.05}, 2, 0.11, 0.1, Orange),
             {{0.0, 0.0, 0.17}, {0.13, 0.09, 0.16}, -1, Orange},
             Drum({0.0, 0.0, 0.26}, 1, 0.085, 0.12, Dark)});
    arm.Add("Upper arm", "Shoulder", {0.0, 0.0, 0.26}, Lift, 1.1, 300.0,
            {Drum({0.0, 0.09, 0.0}, 1, 0.08, 0.06, Orange),
             {{0.225, 0.09, 0.0}, {0.45, 0.05, 0.1}, -1, Orange},
             Drum({0.45, 0.09, 0.0}, 1, 0.065, 0.06, Orange)});
    arm.Add("Forearm", "Elbow", {0.45, 0.0, 0.0}, Lift, -1.3, 150.0,
            {Drum({0.0, 0.005, 0.0}, 1, 0.06, 0.11, Dark),
             {{0.1, 0.0, 0.0}, {0.16, 0.08, 0.08}, -1, Orange},
             Drum({0.22, 0.0, 0.0}, 0, 0.042, 0.08, Dark)});
    arm.Add("Wrist", "Forearm roll", {0.26, 0.0, 0.0}, Roll, 0.4, 40.0,
            {Drum({0.05, 0.0, 0.0}, 0, 0.038, 0.1, Orange),
             Drum({0.14, 0.0, 0.0}, 1, 0.042, 0.1, Dark)});
    arm.Add("Hand", "Wrist bend", {0.14, 0.0, 0.0}, Lift, -0.7, 40.0,
            {{{0.045, 0.0, 0.0}, {0.07, 0.06, 0.06}, -1, Orange}});
    arm.Add("Gripper", "Tool roll", {0.08, 0.0, 0.0}, Roll, 0.3, 20.0,
            {Drum({0.01, 0.0, 0.0}, 0, 0.035, 0.02, Dark),
             {{0.035, 0.0, 0.0}, {0.03, 0.1, 0.04}, -1, Bright},
             {{0.11, 0.035, 0.0}, {0.12, 0.012, 0.03}, -1, Bright},
             {{0.11, -0.035, 0.0}, {0.12, 0.012, 0.03}, -1, Bright}});
    arm.model.Point("Tip", arm.last, PositionOf(arm.last) * Tool);
    return arm;
}

} // namespace

int main()
{
    const Arm arm = Build();
    return RoundTrip(arm.model, "robot-arm.xml", [&](const Model& again) {
        const KARMathPoint tip = PlaceOf(again.Find<KARMPPoint>("Gripper.Tip"));
        const std::size_t triangles = TriangleCountOf(again);
        std::cout << "After loading robot-arm.xml the tip of the gripper is at (" << tip.GetX()
                  << ", " << tip.GetY() << ", " << tip.GetZ() << ") m, and the links have "
                  << triangles << " triangles\n";
        const double error = (tip - PositionOf(arm.last) * Tool).Norm();
        return error < 1e-11 && triangles == TriangleCountOf(arm.model);
    });
}
