// The seven-body mechanism in space. The program builds it with its published figures, saves it,
// loads it again, and tells how well the loops close and how the spring pushes.
#include "SevenBody.h"
#include "Springs.h"

using namespace karmp::model;
using namespace seven_body;

namespace {

constexpr int RotationAboutZ = 5; // index of a freedom

/// The axes of a body at one of its points, in the world.
KARMathAxis AxesAt(const Model& model, const char* body, const PlanePoint& point)
{
    return PositionOf(model.Find<KARMPBody>(body)) * *FrameAlong(point);
}

Model Build()
{
    Model model("Seven-body mechanism");
    for (const BodyData& data : Bodies) {
        const KARMathPoint origin = AxesAt(model, data.on, data.origin).GetOrigin();
        // The figures are those of the plane; about the two axes in it, which no motion turns
        // about, a body is taken for a flat one without a preferred direction.
        const double half = data.inertia / 2.0;
        const auto turn = KARMathTransformation::Rotation({{}, {0.0, 0.0, 1.0}}, data.angle);
        model.Body(data.name, {.mass = data.mass,
                               .position = KARMathTransformation(origin - KARMathPoint()) * turn,
                               .centerOfGravity = data.center,
                               .inertia = KARMath3x3Matrix({half, 0.0, 0.0}, {0.0, half, 0.0},
                                                           {0.0, 0.0, data.inertia})});
    }
    for (const JointData& data : Joints)
        model.Joint<KARMPRevolute>(
            std::string("Revolute.") + data.name, model.Find<KARMPBody>(data.first),
            model.Find<KARMPBody>(data.second), AxesAt(model, data.first, data.onFirst),
            AxesAt(model, data.second, data.onSecond));

    const auto driven = model.Find<KARMPJoint>("Revolute.O");
    model.Variable("Beta", driven, Beta);
    const auto torque = model.Constant("Drive.torque", KARMPPhysicalQuantity::Torque, DriveTorque);
    model.Add<KARMPJointForceActuator>(
        "Drive", {{"Joint", driven}, {"DOFindex", RotationAboutZ}, {"Force", torque}});
    model.Connect<KARMPLinearSpring>("Spring", model.Ground(), C, model.Find<KARMPBody>("K3"),
                                     AxesAt(model, "K3", D).GetOrigin(),
                                     {{"Stiffness", SpringStiffness},
                                      {"RestLength", SpringLength},
                                      {"DampingCoefficient", 0.0}});
    return model;
}

} // namespace

int main()
{
    return RoundTrip(
        Build(), "seven-body", [](const Ref<KARMPGeometry>& geometry) { return PlaceOf(geometry); },
        [](const Model& model) { return PushOf(model.Find<KARMPLinearSpring>("Spring")); });
}
