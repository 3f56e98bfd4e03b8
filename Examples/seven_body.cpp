// The seven-body mechanism in space. The program builds it with its published figures, saves it,
// loads it again, and tells how well the loops close and how the spring pushes.
#include "SevenBody.h"

using namespace karmp::model;
using namespace seven_body;

namespace {

constexpr int RotationAboutZ = 5; // index of a freedom

/// The axes of a body at one of its points, in the world.
KARMathAxis AxesAt(const Model& model, const char* body, const KARMathPoint2D& point)
{
    return PositionOf(model.Find<KARMPBody>(body)) * *FrameAlong(InSpace(point));
}

Model Build()
{
    Model model("Seven-body mechanism");
    for (const BodyData& data : Bodies) {
        const KARMathPoint origin = AxesAt(model, data.on, data.origin).GetOrigin();
        // The figures are those of the plane: no motion turns about the two axes in it.
        const auto turn = KARMathTransformation::Rotation({{}, {0.0, 0.0, 1.0}}, data.angle);
        const auto plate = Plate(data.mass, data.inertia, InSpace(data.center));
        model.Body(data.name,
                   plate.PlacedAt(KARMathTransformation(origin - KARMathPoint()) * turn));
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
    model.Spring("Spring", model.Ground(), InSpace(C), model.Find<KARMPBody>("K3"),
                 AxesAt(model, "K3", D).GetOrigin(),
                 {.stiffness = SpringStiffness, .restLength = SpringLength});
    return model;
}

} // namespace

int main()
{
    return CheckLoops(
        Build(), "seven-body",
        [](const Model& model) { return ForceOf(model.Find<KARMPLinearSpring>("Spring")); });
}
