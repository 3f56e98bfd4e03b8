// The seven-body mechanism in a sketch. The program builds it with its published figures, saves it,
// loads it again, and tells how well the loops close and how the spring pulls.
//
// Planar bodies know no connectors: the spring is the force on K3 at D that its law gives for the
// angle of K3, as C and B stand still.
#include "SevenBody.h"

using namespace karmp::model;
using namespace seven_body;

namespace {

using Quantity = KARMPPhysicalQuantity;

// The way from C to D by the angle of K3, `gamma`, and what the spring makes of it.
const std::string WayX = "(-0.03635 + 0.02 * cos(gamma) + 0.018 * sin(gamma) - 0.014)";
const std::string WayY = "(0.03273 + 0.02 * sin(gamma) - 0.018 * cos(gamma) - 0.072)";
const std::string Push = "4530 * (0.07785 / sqrt(" + WayX + "^2 + " + WayY + "^2) - 1) * ";

/// The body of that name; the frame stands for the global body.
Ref<KARMPBody2D> BodyOf(Model& model, const char* name)
{
    const auto body = model.Find<KARMPBody2D>(name);
    return body ? body : model.PlanarGround();
}

Model Build()
{
    Model model("Planar seven-body mechanism");
    for (const BodyData& data : Bodies) {
        const KARMathPoint2D origin = PositionOf(BodyOf(model, data.on)) * data.origin;
        const auto turn = KARMathTransformation2D::Rotation({}, data.angle).GetMatrix();
        const KARMathTransformation2D position(turn, origin - KARMathPoint2D());
        model.PlanarBody(data.name, Plate(data.mass, data.inertia, data.center).PlacedAt(position));
    }
    for (const JointData& data : Joints) {
        const auto point = [&](const char* name, const KARMathPoint2D& at) {
            const auto body = BodyOf(model, name);
            return model.Point(data.name, body, PositionOf(body) * at);
        };
        const auto onFirst = point(data.first, data.onFirst);
        model.Joint<KARMPUserDefined2D>(data.name, onFirst, point(data.second, data.onSecond));
    }
    model.Variable("beta", model.Find<KARMPJoint>("O"), Beta);
    const auto gamma = model.Variable("gamma", model.Find<KARMPJoint>("B"), Gamma);

    const auto x = model.Expression("Spring.x", Quantity::Force, Push + WayX, {gamma});
    const auto y = model.Expression("Spring.y", Quantity::Force, Push + WayY, {gamma});
    model.Add<KARMPSpatialForceActuator2D>("Spring", {{"ApplicationPoint2D", D},
                                                      {"Body2D", model.Find<KARMPBody2D>("K3")},
                                                      {"Force2D/Vx", x},
                                                      {"Force2D/Vy", y}});
    const auto torque = model.Constant("Drive.torque", Quantity::Torque, DriveTorque);
    model.Add<KARMPSpatialForceActuator2D>(
        "Drive", {{"Body2D", model.Find<KARMPBody2D>("K1")}, {"Torque2D/Vx", torque}});
    return model;
}

/// The force in N with which the spring pushes C and D apart, by its law at the angle of K3.
double PushIn(const Model& model)
{
    const double gamma = *NumberOf(model.Find<KARMPVariable>("gamma"), "Value");
    const auto along = [&](const char* law) {
        return *model.Evaluate(model.Find<KARMPExpression>(law), {{"gamma", gamma}});
    };
    const KARMathVector2D way = PositionOf(model.Find<KARMPBody2D>("K3")) * D - C;
    return (along("Spring.x") * way.GetX() + along("Spring.y") * way.GetY()) / way.Norm();
}

} // namespace

int main()
{
    return CheckLoops(Build(), "seven-body-planar", PushIn);
}
