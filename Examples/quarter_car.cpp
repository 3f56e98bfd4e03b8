// A quarter of a car: the body on its front left suspension, two parallel arms with a tie rod.
// Bushings carry the lower arm, a spring with a damper and a torsion bar the body, and the tyre is
// a spring that may leave the road. The world's x points forward, y to the left, z up.
//
// Spring and tyre are as long as the weights at rest ask for, so that the model starts in balance
// but for the give of the bushings.
#include "MechanismBuilder.h"

#include <array>

namespace {

using Quantity = KARMPPhysicalQuantity;

constexpr double Gravity = 9.81; // m/s2

// Points in the world, m. Both arms and the tie rod lie level, side by side, and are equally long.
constexpr double ArmLength = 0.35;
constexpr KARMathPoint BodyCenter(0.0, 0.3, 0.65);
constexpr KARMathPoint LowerPivot(0.0, 0.35, 0.2);
constexpr KARMathPoint LowerBall(0.0, LowerPivot.GetY() + ArmLength, LowerPivot.GetZ());
constexpr KARMathPoint UpperPivot(0.0, 0.35, 0.42);
constexpr KARMathPoint UpperBall(0.0, UpperPivot.GetY() + ArmLength, UpperPivot.GetZ());
constexpr KARMathPoint RodInner(-0.12, 0.35, 0.28);
constexpr KARMathPoint RodOuter(-0.12, RodInner.GetY() + ArmLength, RodInner.GetZ());
constexpr KARMathPoint WheelCenter(0.0, 0.75, 0.3);
constexpr KARMathPoint Road(0.0, 0.75, 0.0);
constexpr KARMathPoint SpringFoot(0.0, 0.6, 0.2); // on the lower arm
constexpr KARMathPoint SpringHead(0.0, 0.45, 0.62);

constexpr double BodyMass = 320.0; // kg, a quarter of the car's without wheels and suspension
constexpr double LowerArmMass = 3.2;
constexpr double UpperArmMass = 2.1;
constexpr double RodMass = 0.7;
constexpr double CarrierMass = 9.0;
constexpr double WheelMass = 18.0;
constexpr double ArmMasses = LowerArmMass + UpperArmMass + RodMass;
constexpr double TotalMass = BodyMass + ArmMasses + CarrierMass + WheelMass;

constexpr double SpringStiffness = 28000.0; // N/m
constexpr double SpringDamping = 1800.0;    // N s/m
constexpr double TyreStiffness = 200000.0;
constexpr double TyreDamping = 150.0;
constexpr double BarStiffness = 400.0; // N m/rad
constexpr double BarDamping = 2.0;     // N m s/rad

/// Of one bushing: a freedom, and what resists it; the third direction is the pivot's axis.
struct BushingData
{
    const wchar_t* freedom;
    double stiffness;
    double damping;
};
constexpr std::array Bushing{BushingData{L"Tx", 8e6, 2000.0}, BushingData{L"Ty", 8e6, 2000.0},
                             BushingData{L"Tz", 1e6, 500.0},  BushingData{L"Rx", 900.0, 1.0},
                             BushingData{L"Ry", 900.0, 1.0},  BushingData{L"Rz", 40.0, 0.2}};

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

class QuarterCar
{
public:
    QuarterCar()
    {
        AddJoints();
        AddConnectors();
    }

    const QOBSharedHandle<KARMPWorld>& World() const { return m_mechanism.World(); }

private:
    using Body = QOBSharedHandle<KARMPBody>;

    /// A body along the world's axes.
    Body AddBody(const wchar_t* name, const KARMathPoint& origin, const MassProperties& mass)
    {
        const Body body = m_mechanism.AddBody(name, KARMathTransformation(AxisAlongZ(origin)));
        SetMass(*body, mass);
        return body;
    }

    Body AddWheel()
    {
        const Body wheel =
            m_mechanism.AddBody(L"Wheel", KARMathTransformation(AxisAlongY(WheelCenter)));
        SetMass(*wheel, Cylinder(WheelMass, {}, 0.31, 0.2));
        return wheel;
    }

    void AddBall(const wchar_t* name, const Body& parent, const KARMathPoint& center)
    {
        m_mechanism.AddJointAt<KARMPSpherical, KARMPSphericalConstraint>(name, parent, m_carrier,
                                                                         AxisAlongZ(center));
    }

    void AddJoints()
    {
        const auto guide = m_mechanism.AddJointAt<KARMPPrismatic, KARMPPrismaticConstraint>(
            L"Guide", m_mechanism.Ground(), m_body, AxisAlongZ(BodyCenter));
        m_mechanism.AddVariable(L"Heave", Quantity::Length, 0.0, guide);
        const auto pivot = m_mechanism.AddJointAt<KARMPRevolute, KARMPRevoluteConstraint>(
            L"Upper pivot", m_body, m_upperArm, AxisAlongX(UpperPivot));
        m_mechanism.AddVariable(L"Upper arm angle", Quantity::Angle, 0.0, pivot);
        m_mechanism.AddJointAt<KARMPUniversal, KARMPUniversalConstraint>(
            L"Tie rod inner", m_body, m_rod, AxisAlongZ(RodInner));
        AddBall(L"Lower ball", m_lowerArm, LowerBall);
        AddBall(L"Upper ball", m_upperArm, UpperBall);
        AddBall(L"Tie rod outer", m_rod, RodOuter);
        const auto bearing = m_mechanism.AddJointAt<KARMPRevolute, KARMPRevoluteConstraint>(
            L"Wheel bearing", m_carrier, m_wheel, AxisAlongY(WheelCenter));
        m_mechanism.AddVariable(L"Wheel angle", Quantity::Angle, 0.0, bearing);
    }

    void AddConnectors()
    {
        AddSpring(L"Spring", m_lowerArm, SpringFoot, m_body, SpringHead, SpringStiffness,
                  SpringDamping, SpringLoad());
        AddSpring(L"Tyre", m_mechanism.Ground(), Road, m_carrier, WheelCenter, TyreStiffness,
                  TyreDamping, Gravity * TotalMass)
            ->SetBehavior(KARMPSpringBehavior::ExtensionFree);
        AddTorsionBar();
        AddBushings();
    }

    /// A spring that is long enough to push with a load where it stands.
    QOBSharedHandle<KARMPLinearSpring> AddSpring(const std::wstring& name, const Body& first,
                                                 const KARMathPoint& from, const Body& second,
                                                 const KARMathPoint& to, double stiffness,
                                                 double damping, double load)
    {
        return m_mechanism.AddSpring(name, m_mechanism.AddPointAt(first, name, from),
                                     m_mechanism.AddPointAt(second, name, to), stiffness,
                                     (to - from).Norm() + load / stiffness, damping);
    }

    /// Resists the upper arm about its pivot, without a torque where the arm lies level.
    void AddTorsionBar()
    {
        const auto bar = m_mechanism.AddConnector<KARMPTorsionSpring>(
            L"Torsion bar",
            m_mechanism.AddAxisSystemAt(m_body, L"Torsion bar", AxisAlongX(UpperPivot)),
            m_mechanism.AddAxisSystemAt(m_upperArm, L"Torsion bar", AxisAlongX(UpperPivot)));
        bar->SetStiffness(m_mechanism.AddConstant(L"Torsion bar.stiffness",
                                                  Quantity::AngularStiffness, BarStiffness));
        bar->SetRestAngle(m_mechanism.AddConstant(L"Torsion bar.rest angle", Quantity::Angle, 0.0));
        bar->SetDampingCoefficient(
            m_mechanism.AddConstant(L"Torsion bar.damping", Quantity::AngularDamping, BarDamping));
        const KARMathVector pivot = UpperPivot - BodyCenter;
        bar->SetFirstAttachment(KARMathLine(KARMathPoint() + pivot, {1.0, 0.0, 0.0}));
        bar->SetSecondAttachment(KARMathLine({}, {1.0, 0.0, 0.0}));
    }

    /// Carry the lower arm before and behind the middle of its pivot. Both are of one kind and
    /// share their values.
    void AddBushings()
    {
        const std::array bushings{AddBushing(L"Front bushing", 0.12),
                                  AddBushing(L"Rear bushing", -0.12)};
        for (int index = 0; index < static_cast<int>(Bushing.size()); ++index) {
            const BushingData& data = Bushing[static_cast<std::size_t>(index)];
            const bool turns = index >= 3;
            const auto stiffness = m_mechanism.AddConstant(
                std::wstring(L"Bushing.stiffness ") + data.freedom,
                turns ? Quantity::AngularStiffness : Quantity::LinearStiffness, data.stiffness);
            const auto damping = m_mechanism.AddConstant(
                std::wstring(L"Bushing.damping ") + data.freedom,
                turns ? Quantity::AngularDamping : Quantity::LinearDamping, data.damping);
            for (const auto& bushing : bushings) {
                bushing->SetStiffness(index, stiffness);
                bushing->SetDamping(index, damping);
            }
        }
    }

    QOBSharedHandle<KARMPBushing> AddBushing(const std::wstring& name, double x)
    {
        const KARMathAxis axis = AxisAlongX(LowerPivot + KARMathVector(x, 0.0, 0.0));
        return m_mechanism.AddConnector<KARMPBushing>(
            name, m_mechanism.AddAxisSystemAt(m_body, name, axis),
            m_mechanism.AddAxisSystemAt(m_lowerArm, name, axis));
    }

    MechanismBuilder m_mechanism{L"Quarter car", {0.0, 0.0, -Gravity}};
    Body m_body = AddBody(L"Body", BodyCenter, Box(BodyMass, {}, {1.3, 0.7, 0.6}));
    Body m_lowerArm =
        AddBody(L"Lower arm", LowerPivot,
                Box(LowerArmMass, {0.0, ArmLength / 2.0, 0.0}, {0.24, ArmLength, 0.03}));
    Body m_upperArm =
        AddBody(L"Upper arm", UpperPivot,
                Box(UpperArmMass, {0.0, ArmLength / 2.0, 0.0}, {0.2, ArmLength, 0.025}));
    Body m_rod = AddBody(L"Tie rod", RodInner,
                         Box(RodMass, {0.0, ArmLength / 2.0, 0.0}, {0.016, ArmLength, 0.016}));
    Body m_carrier = AddBody(L"Hub carrier", WheelCenter,
                             Box(CarrierMass, {0.0, -0.04, 0.01}, {0.12, 0.08, 0.26}));
    Body m_wheel = AddWheel();
};

} // namespace

int main()
{
    const QuarterCar car;
    if (!IsQuiet(karmp::documents::SaveFile(car.World(), "quarter-car.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("quarter-car.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    const auto load = [&](const wchar_t* name) {
        return PushOf(
            *QOBSharedHandle<KARMPLinearSpring>(FindByName<KARMPConnector>(*loaded.world, name)));
    };
    std::cout << "After loading quarter-car.xml the tyre carries " << load(L"Tyre")
              << " N and the spring " << load(L"Spring") << " N\n";
    return std::abs(load(L"Tyre") - Gravity * TotalMass) < 1e-6 ? 0 : 1;
}
