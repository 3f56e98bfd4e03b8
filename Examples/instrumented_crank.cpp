// A slider-crank with a motor that turns it evenly, and sensors for what an application wants to
// know: the crank's angle, the slider's stroke and displacement, the force in the crank pin, the
// motor's torque, and whether a constraint is needed at all. The loaders stand for a solver: they
// know the motion and the forces in closed form, and keep what they measured.
#include "CrankMotion.h"
#include "RecordingLoader.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iomanip>
#include <map>
#include <numbers>
#include <numeric>
#include <utility>
#include <vector>

namespace {

constexpr double Gravity = 9.81;   // m/s2, along -y
constexpr double Velocity = 20.0;  // rad/s
constexpr double StartAngle = 0.5; // rad
constexpr double MaxTorque = 12.0; // N m
constexpr int Steps = 24;          // of one turn
constexpr int RotationAboutZ = 5;  // index of a freedom
constexpr int TranslationAlongZ = 2;
constexpr int Child = 1; // index of a joint's body

using Records = std::map<std::wstring, std::vector<double>>; // by the names of sensors

/// Whether two constraints link the same geometries.
bool LinkTheSame(const KARMPConstraint& one, const KARMPConstraint& other)
{
    for (int index = 0; index < one.GetLinkedGeometryCount(); ++index) {
        QOBSharedHandle<KARMPGeometry> geometry;
        QOBSharedHandle<KARMPGeometry> otherGeometry;
        one.GetLinkedGeometry(index, geometry);
        other.GetLinkedGeometry(index, otherGeometry);
        if (geometry != otherGeometry)
            return false;
    }
    return true;
}

/// The mechanism with its motor and sensors, and what their loaders measured.
class InstrumentedCrank
{
public:
    InstrumentedCrank()
    {
        AddFreedomSensors();
        AddDisplacementSensor();
        AddForceSensors();
        AddRedundancySensor();
        GoTo(StartAngle);
    }

    const QOBSharedHandle<KARMPWorld>& World() const { return m_mechanism.World(); }
    const Records& Measured() const { return m_records; }

    /// Looks for constraints that others imply, as a solver does before it starts. An update of
    /// their sensors asks no loader, so that the solver sets the result by itself.
    void FindRedundancies()
    {
        QOBSharedHandle<KARMPConstraint> level;
        QOBSharedHandle<KARMPConstraint> guide;
        const auto sensor = SensorOf<KARMPConstraintSensor>(*World(), L"Redundancy sensor");
        sensor->GetConstraint(level);
        m_parts.guide->GetConstraint(0, guide);
        if (LinkTheSame(*level, *guide))
            sensor->SetRedundancyStatus(KARMPConstraintSensor::RedundancyStatus::Redundant, {guide},
                                        {});
    }

    /// Brings the mechanism to an angle of the crank, as a solver brings its results.
    void GoTo(double angle)
    {
        m_state = MotionAt(angle, Velocity);
        AddForces(m_parts, Gravity, m_state);
        m_parts.angle->SetValue(angle);
        Move(*m_parts.crank, m_state.crank);
        Move(*m_parts.rod, m_state.rod);
        Move(*m_parts.slider, m_state.slider);
    }

private:
    static void Move(KARMPBody& body, const PlaneMotion& motion)
    {
        body.SetPosition(KARMathTransformation(motion.Frame()), 0);
        body.SetVelocity(motion.velocity, Across(motion.rate));
        body.SetAcceleration(motion.acceleration, Across(motion.angularAcceleration));
    }

    template <class Sensor, class Loader, class Measure>
    QOBSharedHandle<Sensor> AddSensor(const std::wstring& name, Measure measure)
    {
        const auto sensor = m_mechanism.File<KARMPSensor>(Sensor::create(name), name);
        sensor->SetLoader(new Loader(*sensor, m_records[name], std::move(measure)));
        return sensor;
    }

    template <class Measure>
    void AddFreedomSensor(const std::wstring& name, const QOBSharedHandle<KARMPJoint>& joint,
                          int freedom, Measure measure)
    {
        using Loader = RecordingLoader<KARIMPJointDOFSensorLoader, KARMPJointDOFSensor>;
        const auto sensor =
            AddSensor<KARMPJointDOFSensor, Loader>(name, [measure](KARMPJointDOFSensor& filled) {
                const auto [position, velocity, acceleration] = measure();
                filled.SetPosition(position);
                filled.SetVelocity(velocity);
                filled.SetAcceleration(acceleration);
                return position;
            });
        sensor->SetJoint(joint);
        sensor->SetIndexDOF(freedom);
    }

    void AddFreedomSensors()
    {
        AddFreedomSensor(L"Crank angle sensor", m_parts.bearing, RotationAboutZ, [this] {
            const PlaneMotion& crank = m_state.crank;
            return std::array{crank.angle, crank.rate, crank.angularAcceleration};
        });
        AddFreedomSensor(L"Stroke sensor", m_parts.guide, TranslationAlongZ, [this] {
            const PlaneMotion& slider = m_state.slider;
            return std::array{slider.origin.GetX(), slider.velocity.GetX(),
                              slider.acceleration.GetX()};
        });
    }

    /// Measures from the dead centre at which the slider is farthest from the bearing.
    void AddDisplacementSensor()
    {
        using Loader = RecordingLoader<KARIMPSensorLoader, KARMPDisplacementSensor>;
        const auto sensor = AddSensor<KARMPDisplacementSensor, Loader>(
            L"Displacement sensor", [this](KARMPDisplacementSensor& filled) {
                const KARMathPoint deadCenter(SliderCrank::CrankLength + SliderCrank::RodLength,
                                              0.0, 0.0);
                const KARMathVector move = m_state.slider.origin - deadCenter;
                filled.SetDisplacement(KARMathTransformation(move));
                return move.GetX();
            });
        sensor->SetBody(m_parts.slider);
        m_parts.slider->SetDisplacementSensor(sensor);
    }

    void AddForceSensors()
    {
        const auto pinSensor = AddSensor<KARMPJointSpatialForceSensor, JointForceLoader>(
            L"Pin force sensor", [this](KARMPJointSpatialForceSensor& filled) {
                filled.SetSpatialForce(m_state.pinForce, {});
                return m_state.pinForce.Norm();
            });
        pinSensor->SetJoint(m_parts.crankPin);
        pinSensor->SetIndexBody(Child);

        using Loader = RecordingLoader<KARIMPMotorForceSensorLoader, KARMPMotorForceSensor>;
        const auto motorSensor = AddSensor<KARMPMotorForceSensor, Loader>(
            L"Motor sensor", [this](KARMPMotorForceSensor& filled) {
                filled.SetForce(m_state.torque, nullptr, nullptr);
                return m_state.torque;
            });
        motorSensor->SetMotor(m_mechanism.AddMotor(L"Motor", m_parts.angle, MaxTorque, Velocity));
    }

    /// A drawing asks for a slider that is parallel to its guide, which the guide sees to already.
    void AddRedundancySensor()
    {
        QOBSharedHandle<KARMPConstraint> guide;
        m_parts.guide->GetConstraint(0, guide);
        const auto level =
            m_mechanism.File<KARMPConstraint>(KARMPParallelism::create(L"Level"), L"Level");
        level->SetAlignment(KARMPAlignment::Align);
        for (int index = 0; index < guide->GetLinkedGeometryCount(); ++index) {
            QOBSharedHandle<KARMPGeometry> geometry;
            guide->GetLinkedGeometry(index, geometry);
            level->LinkToGeometry(geometry);
            geometry->LinkToConstraint(level);
        }
        const std::wstring name = L"Redundancy sensor";
        const auto sensor =
            m_mechanism.File<KARMPSensor>(KARMPConstraintSensor::create(name), name);
        sensor->SetConstraint(level);
        level->LinkToSensor(sensor);
    }

    Records m_records; // outlive the loaders
    CrankState m_state;
    MechanismBuilder m_mechanism{L"Instrumented crank", {0.0, -Gravity, 0.0}};
    SliderCrank m_parts = AddSliderCrank(m_mechanism, StartAngle);
};

template <class Call>
bool ForEachSensor(const KARMPWorld& world, Call call)
{
    bool isDone = true;
    for (int index = 0; index < world.Count<KARMPSensor>(); ++index) {
        QOBSharedHandle<KARMPSensor> sensor;
        isDone = world.Get<KARMPSensor>(index, sensor) == KARSuccess &&
                 std::invoke(call, *sensor) == KARSuccess && isDone;
    }
    return isDone;
}

/// Prints what the sensors say, of the pin's force the part along the rod.
void PrintRow(const KARMPWorld& world)
{
    double angle = 0.0;
    double stroke = 0.0;
    double velocity = 0.0;
    double torque = 0.0;
    KARMathTransformation displacement;
    KARMathVector force;
    KARMathVector pinTorque;
    const auto strokeSensor = SensorOf<KARMPJointDOFSensor>(world, L"Stroke sensor");
    SensorOf<KARMPJointDOFSensor>(world, L"Crank angle sensor")->GetPosition(angle);
    strokeSensor->GetPosition(stroke);
    strokeSensor->GetVelocity(velocity);
    SensorOf<KARMPDisplacementSensor>(world, L"Displacement sensor")->GetDisplacement(displacement);
    SensorOf<KARMPJointSpatialForceSensor>(world, L"Pin force sensor")
        ->GetSpatialForce(force, pinTorque, KARMPAxisMode::SecondBody);
    SensorOf<KARMPMotorForceSensor>(world, L"Motor sensor")->GetForce(torque, nullptr, nullptr);
    std::cout << std::fixed << std::setprecision(3);
    for (const double number :
         {angle, stroke, velocity, displacement.GetVector().GetX(), force.GetX(), torque})
        std::cout << std::setw(10) << std::round(1000.0 * number) / 1000.0 + 0.0;
    std::cout << '\n';
}

/// Turns the crank once; true when all sensors could measure.
bool Turn(InstrumentedCrank& crank)
{
    std::cout << "     crank    stroke  velocity     moved    on rod     motor\n"
                 "       rad         m       m/s         m         N       N m\n";
    bool isMeasured = true;
    for (int step = 0; step < Steps; ++step) {
        crank.GoTo(2.0 * std::numbers::pi * step / Steps);
        isMeasured = ForEachSensor(*crank.World(), &KARMPSensor::Update) && isMeasured;
        if (step % 2 == 0)
            PrintRow(*crank.World());
    }
    return isMeasured;
}

/// What the loaders kept of the turn. At an even velocity and without friction the motor gets back
/// in one half of the turn what it gave in the other.
bool TellTheRecord(const InstrumentedCrank& crank)
{
    const std::vector<double>& forces = crank.Measured().at(L"Pin force sensor");
    const std::vector<double>& torques = crank.Measured().at(L"Motor sensor");
    const double sum = std::accumulate(torques.end() - Steps, torques.end(), 0.0);
    const double work = sum * 2.0 * std::numbers::pi / Steps;
    std::cout << "Over the turn the pin carries up to "
              << *std::max_element(forces.end() - Steps, forces.end())
              << " N, the motor turns with up to "
              << *std::max_element(torques.end() - Steps, torques.end()) << " N m\n";
    return std::abs(work) < 1e-9;
}

/// The constraints that make another one redundant, by what its sensor measured.
bool TellRedundancy(const KARMPWorld& world)
{
    KARMPConstraintSensor::RedundancyStatus status{};
    QOBSharedVector<KARMPConstraint> implying;
    QOBSharedVector<KARMPConstraint> others;
    SensorOf<KARMPConstraintSensor>(world, L"Redundancy sensor")
        ->GetRedundancyStatus(status, implying, others);
    if (status != KARMPConstraintSensor::RedundancyStatus::Redundant || implying.size() != 1)
        return false;
    std::cout << "The level adds nothing to " << kar::ToUtf8(implying[0]->getEntityName()) << '\n';
    return true;
}

/// After a reset no sensor knows anything, a sensor of a freedom not even which one it was.
bool ResetSensors(const KARMPWorld& world)
{
    if (!ForEachSensor(world, &KARMPSensor::Reset))
        return false;
    const auto stroke = SensorOf<KARMPJointDOFSensor>(world, L"Stroke sensor");
    double position = 0.0;
    int freedom = 0;
    stroke->GetPosition(position);
    stroke->GetIndexDOF(freedom);
    std::cout << "After the reset the stroke is " << position << " m along freedom " << freedom
              << '\n';
    stroke->SetIndexDOF(TranslationAlongZ);
    SensorOf<KARMPJointDOFSensor>(world, L"Crank angle sensor")->SetIndexDOF(RotationAboutZ);
    return position == 0.0 && freedom == 0;
}

} // namespace

int main()
{
    InstrumentedCrank crank;
    const KARMPWorld& world = *crank.World();
    if (!ForEachSensor(world, &KARMPSensor::Update) ||
        !IsQuiet(karmp::documents::SaveFile(crank.World(), "instrumented-crank.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("instrumented-crank.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    std::cout << "instrumented-crank.xml holds " << loaded.world->Count<KARMPSensor>()
              << " sensors with what they measured at " << StartAngle << " rad\n";
    crank.FindRedundancies();
    const bool isWhole = Turn(crank) && TellTheRecord(crank) && TellRedundancy(world);
    return isWhole && ResetSensors(world) ? 0 : 1;
}
