// A slider-crank with a motor that turns it evenly, and sensors for what an application wants to
// know: the crank's angle, the slider's stroke and displacement, the force in the crank pin, the
// motor's torque, and whether a constraint is needed at all. The loaders stand for a solver: they
// know the motion and the forces in closed form.
#include "CrankMotion.h"

#include <algorithm>
#include <numbers>

using namespace karmp::model;

namespace {

constexpr double Gravity = 9.81;  // m/s2, along -y
constexpr double Velocity = 20.0; // rad/s
constexpr int Steps = 24;         // of one turn

/// The moment of a force at an arm, across the plane of the mechanism.
double Moment(const KARMathVector& arm, const KARMathVector& force)
{
    return arm.Cross(force).GetZ();
}

/// The mechanism with its motor and sensors.
struct InstrumentedCrank
{
    CrankState state;
    KARMathVector pinForce; // on the rod
    double torque = 0.0;    // of the motor, on the crank
    Model model{"Instrumented crank", {.gravity = {0.0, -Gravity, 0.0}}};
    SliderCrank parts = AddSliderCrank(model, 0.5);
    Ref<KARMPJointDOFSensor> angleSensor, strokeSensor;
    Ref<KARMPJointSpatialForceSensor> pinSensor;
    Ref<KARMPMotorForceSensor> motorSensor;

    InstrumentedCrank()
    {
        angleSensor = model.Sensor<KARMPJointDOFSensor>(
            "Crank angle sensor", {{"Joint", parts.bearing}, {"DOFindex", 5}},
            [this](KARMPJointDOFSensor& to) {
                to.SetPosition(*NumberOf(parts.angle, "Value"));
                to.SetVelocity(state.crank.angularVelocity.GetZ());
                to.SetAcceleration(state.crank.angularAcceleration.GetZ());
            });
        strokeSensor = model.Sensor<KARMPJointDOFSensor>(
            "Stroke sensor", {{"Joint", parts.guide}, {"DOFindex", 2}},
            [this](KARMPJointDOFSensor& to) {
                to.SetPosition(state.slider.Origin().GetX());
                to.SetVelocity(state.slider.velocity.GetX());
                to.SetAcceleration(state.slider.acceleration.GetX());
            });
        // From the dead centre at which the slider is farthest from the bearing.
        model.Sensor<KARMPDisplacementSensor>(
            "Displacement sensor", {{"Body", parts.slider}},
            [this](KARMPDisplacementSensor& to) {
                const KARMathPoint farthest(SliderCrank::CrankLength + SliderCrank::RodLength, 0.0,
                                            0.0);
                to.SetDisplacement(KARMathTransformation(state.slider.Origin() - farthest));
            });
        pinSensor = model.Sensor<KARMPJointSpatialForceSensor>(
            "Pin force sensor", {{"Joint", parts.crankPin}, {"Index", 1}}, // on the child
            [this](KARMPJointSpatialForceSensor& to) { to.SetSpatialForce(pinForce, {}); });
        const auto motor =
            model.Motor("Motor", parts.angle, {.velocity = Velocity, .maximum = 12.0});
        motorSensor = model.Sensor<KARMPMotorForceSensor>(
            "Motor sensor", {{"Motor", motor}},
            [this](KARMPMotorForceSensor& to) { to.SetForce(torque, nullptr, nullptr); });

        // A drawing asks for a slider that is parallel to its guide, which the guide sees to.
        const auto level =
            model.Add<KARMPParallelism>("Level", {{"Alignment", "Align"},
                                                  {"Geometries",
                                                   {model.Find<KARMPAxisSystem>("GlobalBody.Guide"),
                                                    model.Find<KARMPAxisSystem>("Slider.Guide")}}});
        model.Link(model.Add<KARMPConstraintSensor>("Redundancy sensor"), level);
    }

    /// Brings the mechanism to an angle of the crank, as a solver brings its results.
    bool GoTo(double angle)
    {
        state = MotionAt(angle, Velocity);
        parts.angle->SetValue(angle);
        Move(parts.crank, state.crank);
        Move(parts.rod, state.rod);
        Move(parts.slider, state.slider);
        FindForces();
        const auto sensors = model.All<KARMPSensor>();
        return std::all_of(sensors.begin(), sensors.end(),
                           [](const auto& sensor) { return sensor->Update() == KARSuccess; });
    }

    /// From the slider, which the guide leaves free along x, back to the motor.
    void FindForces()
    {
        const SpatialForce slider = NeededForce(parts.slider), rod = NeededForce(parts.rod);
        const SpatialForce crank = NeededForce(parts.crank);
        // On the rod, about its centre: pin x (need + push) - end x push = torque, with the push of
        // the rod on the slider.
        const KARMathVector pin = state.rod.Origin() - CenterOf(parts.rod);
        const KARMathVector apart = state.rod.Origin() - state.slider.Origin();
        const double alongX = slider.force.GetX();
        const double alongY =
            (rod.torque.GetZ() - Moment(pin, rod.force) + apart.GetY() * alongX) / apart.GetX();
        pinForce = rod.force + KARMathVector(alongX, alongY, 0.0);
        torque = crank.torque.GetZ() + Moment(CenterOf(parts.crank) - KARMathPoint(), crank.force) +
                 Moment(state.rod.Origin() - KARMathPoint(), pinForce);
    }
};

/// Turns the crank once. At an even velocity and without friction the motor gets back in one half
/// of the turn what it gave in the other.
bool Turn(InstrumentedCrank& crank)
{
    double work = 0.0, greatest = 0.0;
    for (int step = 0; step < Steps; ++step) {
        KARMathVector force, pinTorque;
        if (!crank.GoTo(2.0 * std::numbers::pi * step / Steps))
            return false;
        crank.pinSensor->GetSpatialForce(force, pinTorque, KARMPAxisMode::SecondBody);
        const double torque = *NumberOf(crank.motorSensor, "Force");
        if (step % 4 == 0)
            std::cout << "At " << *NumberOf(crank.angleSensor, "Position") << " rad the stroke is "
                      << *NumberOf(crank.strokeSensor, "Position") << " m, along the rod act "
                      << force.GetX() << " N, and the motor gives " << torque << " N m\n";
        work += torque * 2.0 * std::numbers::pi / Steps;
        greatest = std::max(greatest, torque);
    }
    std::cout << "The motor turns with up to " << greatest << " N m\n";
    return std::abs(work) < 1e-9;
}

/// Looks for a constraint that another one implies, as a solver does before it starts: an update of
/// its sensor asks no loader.
bool FindRedundancy(const Model& model)
{
    using Status = KARMPConstraintSensor::RedundancyStatus;
    const auto guide = model.Find<KARMPConstraint>("Guide.constraint");
    const auto level = model.Find<KARMPConstraint>("Level");
    const auto onLevel = model.Get(level, "Geometries");
    const auto onGuide = model.Get(guide, "Geometries");
    if (!onLevel || !onGuide || *onLevel != *onGuide)
        return false;
    return model.Find<KARMPConstraintSensor>("Redundancy sensor")
               ->SetRedundancyStatus(Status::Redundant, {guide}, {}) == KARSuccess;
}

} // namespace

int main()
{
    InstrumentedCrank crank;
    if (!crank.GoTo(0.5))
        return 1;
    return RoundTrip(crank.model, "instrumented-crank.xml", [&crank](const Model& again) {
        std::cout << "instrumented-crank.xml holds " << again.All<KARMPSensor>().size()
                  << " sensors with what they measured at 0.5 rad\n";
        if (!FindRedundancy(crank.model) || !Turn(crank))
            return false;
        // After a reset a sensor of a freedom knows nothing, not even which one it was.
        crank.strokeSensor->Reset();
        return *NumberOf(crank.strokeSensor, "DOFindex") == 0.0;
    });
}
