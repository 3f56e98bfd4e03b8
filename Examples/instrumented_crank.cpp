// A slider-crank with a motor that turns it evenly, and sensors for what an application wants to
// know: the crank's angle, the slider's stroke and displacement, the force in the crank pin, the
// motor's torque, and whether a constraint is needed at all. The loaders stand for a solver: they
// know the motion and the forces in closed form.
#include "CrankMotion.h"
#include "Filler.h"

#include <algorithm>
#include <numbers>

using namespace karmp::model;

namespace {

constexpr double Gravity = 9.81;  // m/s2, along -y
constexpr double Velocity = 20.0; // rad/s
constexpr int Steps = 24;         // of one turn

/// A loader on the force in a joint knows the frames of the joint's bodies, too.
class PinFiller : public Filler<KARIMPJointSpatialForceSensorLoader>
{
public:
    PinFiller(const Model& model, std::function<void()> fill)
        : Filler(std::move(fill)), m_model(model)
    {}
    KARStatus ReadJointFrame(KARMathAxis& frame) override
    {
        return ReadFrame(KARMPAxisMode::FirstBody, frame);
    }
    KARStatus ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame) override
    {
        const std::string body = mode == KARMPAxisMode::FirstBody ? "Crank" : "Rod";
        m_model.Find<KARMPAxisSystem>(body + ".Crank pin")->GetAxisSystem(frame);
        frame = PositionOf(m_model.Find<KARMPBody>(body)) * frame;
        return KARSuccess;
    }

private:
    const Model& m_model;
};

/// What moves a body: the force that its neighbours must give it, and its angular momentum's rate.
struct Need
{
    Need(const KARMPBody& body, const PlaneMotion& motion)
    {
        double mass = 0.0;
        KARMathPoint center;
        KARMath3x3Matrix inertia;
        body.GetMass(mass);
        body.GetCenterOfGravity(center);
        body.GetInertiaMatrix(inertia);
        arm = motion.Arm(center.GetX());
        force = mass * (motion.AccelerationAt(arm) + Plane(0.0, Gravity));
        torque = inertia(2, 2) * motion.angularAcceleration;
    }
    Plane arm; // from the body's origin to its centre
    Plane force;
    double torque = 0.0; // about the centre
};

/// The mechanism with its motor and sensors.
struct InstrumentedCrank
{
    CrankState state;
    KARMathVector pinForce; // on the rod
    double torque = 0.0;    // of the motor, on the crank
    Model model{"Instrumented crank", {.gravity = {0.0, -Gravity, 0.0}}};
    SliderCrank parts = AddSliderCrank(model, 0.5);

    InstrumentedCrank()
    {
        AddFreedomSensor("Crank angle sensor", parts.bearing, 5, [this](KARMPJointDOFSensor& to) {
            to.SetPosition(state.crank.angle);
            to.SetVelocity(state.crank.rate);
            to.SetAcceleration(state.crank.angularAcceleration);
        });
        AddFreedomSensor("Stroke sensor", parts.guide, 2, [this](KARMPJointDOFSensor& to) {
            to.SetPosition(state.slider.origin.real());
            to.SetVelocity(state.slider.velocity.real());
            to.SetAcceleration(state.slider.acceleration.real());
        });

        // From the dead centre at which the slider is farthest from the bearing.
        const auto moved =
            model.Add<KARMPDisplacementSensor>("Displacement sensor", {{"Body", parts.slider}});
        moved->SetLoader(new Filler<KARIMPSensorLoader>([this, &to = *moved] {
            const double deadCenter = SliderCrank::CrankLength + SliderCrank::RodLength;
            const double way = state.slider.origin.real() - deadCenter;
            to.SetDisplacement(KARMathTransformation(KARMathVector(way, 0.0, 0.0)));
        }));
        const auto pin = model.Add<KARMPJointSpatialForceSensor>("Pin force sensor",
                                                                 {{"Joint", parts.crankPin}});
        pin->SetIndexBody(1); // the child
        pin->SetLoader(
            new PinFiller(model, [this, &to = *pin] { to.SetSpatialForce(pinForce, {}); }));
        const auto motor =
            model.Motor("Motor", parts.angle, {.velocity = Velocity, .maximum = 12.0});
        const auto drive = model.Add<KARMPMotorForceSensor>("Motor sensor", {{"Motor", motor}});
        drive->SetLoader(new Filler<KARIMPMotorForceSensorLoader>(
            [this, &to = *drive] { to.SetForce(torque, nullptr, nullptr); }));

        // A drawing asks for a slider that is parallel to its guide, which the guide sees to.
        const auto level =
            model.Add<KARMPParallelism>("Level", {{"Alignment", "Align"},
                                                  {"Geometries",
                                                   {model.Find<KARMPAxisSystem>("GlobalBody.Guide"),
                                                    model.Find<KARMPAxisSystem>("Slider.Guide")}}});
        model.Link(model.Add<KARMPConstraintSensor>("Redundancy sensor"), level);
    }

    template <class Fill>
    void AddFreedomSensor(const char* name, const Ref<KARMPJoint>& joint, int freedom, Fill fill)
    {
        const auto sensor =
            model.Add<KARMPJointDOFSensor>(name, {{"Joint", joint}, {"DOFindex", freedom}});
        sensor->SetLoader(
            new Filler<KARIMPJointDOFSensorLoader>([fill, &to = *sensor] { fill(to); }));
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
        bool isMeasured = true;
        for (const auto& sensor : model.All<KARMPSensor>())
            isMeasured = sensor->Update() == KARSuccess && isMeasured;
        return isMeasured;
    }
    static void Move(const Ref<KARMPBody>& body, const PlaneMotion& motion)
    {
        motion.Apply(*body);
        body->SetAcceleration({motion.acceleration.real(), motion.acceleration.imag(), 0.0},
                              {0.0, 0.0, motion.angularAcceleration});
    }

    /// From the slider, which the guide leaves free along x, back to the motor.
    void FindForces()
    {
        const Need slider(*parts.slider, state.slider);
        const Need rod(*parts.rod, state.rod);
        const Need crank(*parts.crank, state.crank);
        // On the rod, about its centre: pin x (need + push) - end x push = torque, with the push of
        // the rod on the slider.
        const Plane pin = -rod.arm;
        const Plane apart = pin - (state.slider.origin - state.rod.origin - rod.arm);
        const double alongX = slider.force.real();
        const double alongY =
            (rod.torque - Moment(pin, rod.force) + apart.imag() * alongX) / apart.real();
        const Plane force = rod.force + Plane(alongX, alongY);
        pinForce = {force.real(), force.imag(), 0.0};
        torque = crank.torque + Moment(crank.arm, crank.force) + Moment(state.rod.origin, force);
    }
};

/// Turns the crank once. At an even velocity and without friction the motor gets back in one half
/// of the turn what it gave in the other.
bool Turn(InstrumentedCrank& crank)
{
    double work = 0.0, greatest = 0.0;
    for (int step = 0; step < Steps; ++step) {
        double angle = 0.0, stroke = 0.0, torque = 0.0;
        KARMathVector force, pinTorque;
        if (!crank.GoTo(2.0 * std::numbers::pi * step / Steps))
            return false;
        crank.model.Find<KARMPJointDOFSensor>("Crank angle sensor")->GetPosition(angle);
        crank.model.Find<KARMPJointDOFSensor>("Stroke sensor")->GetPosition(stroke);
        crank.model.Find<KARMPJointSpatialForceSensor>("Pin force sensor")
            ->GetSpatialForce(force, pinTorque, KARMPAxisMode::SecondBody);
        crank.model.Find<KARMPMotorForceSensor>("Motor sensor")->GetForce(torque, nullptr, nullptr);
        if (step % 4 == 0)
            std::cout << "At " << angle << " rad the stroke is " << stroke
                      << " m, along the rod act " << force.GetX() << " N, and the motor gives "
                      << torque << " N m\n";
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
    const auto again = RoundTrip(crank.model, "instrumented-crank.xml");
    if (!again)
        return 1;
    std::cout << "instrumented-crank.xml holds " << again->All<KARMPSensor>().size()
              << " sensors with what they measured at 0.5 rad\n";
    if (!FindRedundancy(crank.model) || !Turn(crank))
        return 1;
    // After a reset a sensor of a freedom knows nothing, not even which one it was.
    const auto stroke = crank.model.Find<KARMPJointDOFSensor>("Stroke sensor");
    int freedom = -1;
    stroke->Reset();
    stroke->GetIndexDOF(freedom);
    return freedom == 0 ? 0 : 1;
}
