// The seven-body mechanism in a sketch. The program builds it with its published figures, saves it,
// loads it again, and tells how well the loops close and how the spring pulls.
//
// Planar bodies know no connectors: the spring is the force on K3 at D that its law gives for the
// angle of K3, as C and B stand still.
#include "PlanarQueries.h"
#include "SevenBody.h"

#include <stdexcept>

namespace {

using karmp::documents::Doubles;
using namespace seven_body;

using Quantity = KARMPPhysicalQuantity;

// The way from C to D by the angle of K3, `gamma`, and what the spring makes of it.
constexpr const wchar_t* ForceAlongX =
    L"4530 * (0.07785 / sqrt((-0.03635 + 0.02 * cos(gamma) + 0.018 * sin(gamma) - 0.014)^2 + "
    L"(0.03273 + 0.02 * sin(gamma) - 0.018 * cos(gamma) - 0.072)^2) - 1) * "
    L"(-0.03635 + 0.02 * cos(gamma) + 0.018 * sin(gamma) - 0.014)";
constexpr const wchar_t* ForceAlongY =
    L"4530 * (0.07785 / sqrt((-0.03635 + 0.02 * cos(gamma) + 0.018 * sin(gamma) - 0.014)^2 + "
    L"(0.03273 + 0.02 * sin(gamma) - 0.018 * cos(gamma) - 0.072)^2) - 1) * "
    L"(0.03273 + 0.02 * sin(gamma) - 0.018 * cos(gamma) - 0.072)";

using Body = QOBSharedHandle<KARMPBody2D>;

/// The body of that name; the frame stands for the global body.
Body BodyOf(const PlanarMechanismBuilder& mechanism, const std::wstring& name)
{
    return name == L"GlobalBody" ? mechanism.Frame()
                                 : Body(FindByName<KARMPBody>(*mechanism.World(), name));
}

void AddBodies(PlanarMechanismBuilder& mechanism)
{
    for (const BodyData& data : Bodies) {
        const Body carrier = BodyOf(mechanism, data.on);
        const KARMathPoint2D origin = PositionOf(*carrier) * KARMathPoint2D(data.origin);
        const Body body = mechanism.AddPlanarBody(data.name, origin, data.angle);
        // A flat body without a preferred direction.
        SetMass(*body, data.mass, data.center, data.inertia / 2.0, data.inertia / 2.0);
    }
}

/// A component of the spring's force, in N, by the angle of K3.
QOBSharedHandle<KARMPValue> AddLaw(PlanarMechanismBuilder& mechanism, const std::wstring& name,
                                   const wchar_t* law, const QOBSharedHandle<KARMPVariable>& gamma)
{
    const auto value = mechanism.File<KARMPValue>(KARMPExpression::create(name), name);
    KARWBFactory* laws = nullptr;
    KARWBEquation* equation = nullptr;
    mechanism.World()->GetWBFactory(laws);
    if (KARFailed(KARMPSerializationServices::ParseWBEquation(law, laws, equation)))
        throw std::logic_error("a law of the spring is no equation");
    value->SetPhysicalQuantity(Quantity::Force);
    value->SetValue(equation);
    value->LinkToVariable(gamma);
    return QOBSharedHandle<KARMPValue>(value);
}

void AddForces(PlanarMechanismBuilder& mechanism, const QOBSharedHandle<KARMPVariable>& gamma)
{
    const auto spring = mechanism.AddPlanarForce(L"Spring", BodyOf(mechanism, L"K3"), D);
    spring->SetForce({AddLaw(mechanism, L"Spring.x", ForceAlongX, gamma),
                      AddLaw(mechanism, L"Spring.y", ForceAlongY, gamma)});
    const auto drive = mechanism.AddPlanarForce(L"Drive", BodyOf(mechanism, L"K1"), {});
    drive->SetTorque(KARMPSpatialForceActuator2D::TorqueComponents{
        mechanism.AddConstant(L"Drive.torque", Quantity::Torque, DriveTorque)});
}

QOBSharedHandle<KARMPWorld> Build()
{
    PlanarMechanismBuilder mechanism(L"Planar seven-body mechanism", {});
    AddBodies(mechanism);
    QOBSharedHandle<KARMPVariable> gamma;
    for (const JointData& data : Joints) {
        const auto pin = mechanism.AddPin(data.name, BodyOf(mechanism, data.first), data.onFirst,
                                          BodyOf(mechanism, data.second), data.onSecond);
        if (pin->getEntityName() == L"O")
            mechanism.AddVariable(L"beta", Quantity::Angle, Beta, pin);
        if (pin->getEntityName() == L"B")
            gamma = mechanism.AddVariable(L"gamma", Quantity::Angle, Gamma, pin);
    }
    AddForces(mechanism, gamma);
    return mechanism.World();
}

/// The force in N with which the spring pushes C and D apart, by its law at the angle of K3.
double PushOf(const KARMPWorld& world)
{
    const QOBSharedHandle<KARMPSpatialForceActuator2D> spring(
        FindByName<KARMPActuator>(world, L"Spring"));
    KARMPSpatialForceActuator2D::ForceComponents force;
    KARWBFactory* laws = nullptr;
    double angle = 0.0;
    FindByName<KARMPVariable>(world, L"gamma")->GetValue(angle);
    world.GetWBFactory(laws);
    laws->GetVariable("gamma")->SetValue(angle);
    spring->GetForce(force);
    std::array<double, 2> numbers{};
    for (std::size_t i = 0; i < 2; ++i) {
        KARWBEquation* equation = nullptr;
        QOBSharedHandle<KARMPExpression>(force[i])->GetValue(equation);
        KARWBEvaluator().Evaluate(*equation, numbers[i]);
    }
    KARMathPoint2D point;
    spring->GetApplicationPoint(point);
    QOBSharedHandle<KARMPBody2D> body;
    spring->GetBody(body);
    KARMathVector2D way = PositionOf(*body) * point - KARMathPoint2D(C);
    return (numbers[0] * way.GetX() + numbers[1] * way.GetY()) / way.Norm();
}

bool RoundTrip(const QOBSharedHandle<KARMPWorld>& world, const std::string& file, Doubles doubles,
               double tolerance)
{
    karmp::documents::SaveOptions options;
    options.doubles = doubles;
    if (!IsQuiet(karmp::documents::SaveFile(world, file, options)))
        return false;
    const auto loaded = karmp::documents::LoadFile(file);
    if (!IsQuiet(loaded.diagnostics) || !loaded.world ||
        loaded.world->Count<KARMPJoint>() != static_cast<int>(Joints.size()))
        return false;
    const double error = PinError(*loaded.world);
    std::cout << (doubles == Doubles::Exact ? "exact numbers:   " : "default numbers: ")
              << "loops close to " << error << " m and the spring pushes with "
              << PushOf(*loaded.world) << " N after loading " << file << '\n';
    return error <= tolerance;
}

} // namespace

int main()
{
    const auto world = Build();
    const bool rounded = RoundTrip(world, "seven-body-planar.xml", Doubles::Snapped, 1e-11);
    const bool exact = RoundTrip(world, "seven-body-planar-exact.xml", Doubles::Exact, 1e-15);
    return rounded && exact ? 0 : 1;
}
