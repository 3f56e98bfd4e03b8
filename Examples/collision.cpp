// A dumbbell of two balls lies on a plate with a rubber mat, between a wall and a gate that closes.
// A collision rule holds the mat's parameters, layers tell what may touch what, a collision sensor
// records where the balls press on the mat, and a proximity sensor watches wall and gate. The
// loaders stand for a solver: they find contacts and clearances from the geometries of the bodies.
// The world's z points up.
#include "ContactLoaders.h"
#include "MechanismBuilder.h"

namespace {

constexpr double Gravity = 9.81; // m/s2

constexpr double BallRadius = 0.04; // m
constexpr double HalfLength = 0.15; // m, from the middle of the bar to a ball's centre
constexpr double LeftMass = 1.2;    // kg, of titanium
constexpr double RightMass = 2.1;   // of steel
constexpr double BarMass = 0.3;

constexpr double MatYoungModulus = 2e6; // Pa
constexpr double MatPoisson = 0.4;
constexpr double MatThickness = 0.005; // m

constexpr double WallFace = -0.31; // m, along x
constexpr double GateFace = 0.22;
constexpr double Clearance = 0.05;

using Body = QOBSharedHandle<KARMPBody>;

class Scene
{
public:
    Scene()
    {
        AddFace(m_plate, {}, {0.0, 0.0, 1.0});
        AddFace(m_wall, {WallFace, 0.0, 0.0}, {1.0, 0.0, 0.0});
        AddFace(m_gate, {}, {-1.0, 0.0, 0.0});
        AddGateGuide();
        AddLayers();
        AddContactSensor();
        AddProximitySensor();
    }

    const QOBSharedHandle<KARMPWorld>& World() const { return m_mechanism.World(); }

    /// Moves the face of the gate to an x in m.
    void MoveGate(double face)
    {
        m_gate->SetPosition(KARMathTransformation(KARMathVector(face, 0.0, 0.0)), 0);
        m_gateFace->SetValue(face);
    }

private:
    /// The dumbbell where the mat carries it: each ball as deep as its share of the weight asks
    /// for, so that the bar leans to the heavier one.
    Body AddDumbbell()
    {
        const KARMathPoint left(-HalfLength, 0.0, 0.0);
        const KARMathPoint right(HalfLength, 0.0, 0.0);
        const MassProperties mass = Together(Box(BarMass, {}, {0.22, 0.02, 0.02}),
                                             Together(SolidSphere(LeftMass, left, BallRadius),
                                                      SolidSphere(RightMass, right, BallRadius)));
        const double rightShare = 0.5 + 0.5 * mass.center.GetX() / HalfLength;
        const double leftDepth = DepthUnder((1.0 - rightShare) * mass.mass * Gravity);
        const double rightDepth = DepthUnder(rightShare * mass.mass * Gravity);
        const KARMathPoint middle(0.0, 0.0, BallRadius - (leftDepth + rightDepth) / 2.0);
        const double lean = std::asin((rightDepth - leftDepth) / (2.0 * HalfLength));
        const Body body = m_mechanism.AddBody(
            L"Dumbbell",
            KARMathTransformation::Rotation(KARMathLine(middle, {0.0, 1.0, 0.0}), lean) *
                KARMathTransformation(middle - KARMathPoint()));
        SetMass(*body, mass);
        AddBall(body, L"Left ball", left);
        AddBall(body, L"Right ball", right);
        return body;
    }

    static double DepthUnder(double load)
    {
        return std::sqrt(load /
                         LayerStiffness(MatYoungModulus, MatPoisson, MatThickness, BallRadius));
    }

    void AddBall(const Body& body, const std::wstring& name, const KARMathPoint& center)
    {
        const auto sphere = m_mechanism.Attach(KARMPSphere::create(name), body, name);
        sphere->SetCenter(center);
        sphere->SetRadius(BallRadius);
    }

    void AddFace(const Body& body, const KARMathPoint& point, const KARMathVector& normal)
    {
        const auto plane = m_mechanism.Attach(KARMPPlane::create(L"Face"), body, L"Face");
        plane->SetPlane(KARMathPlane(point, normal));
    }

    Body AddFixedBody(const std::wstring& name)
    {
        const Body body = m_mechanism.AddBody(name, KARMathTransformation());
        body->Fix();
        return body;
    }

    Body AddGate()
    {
        const Body gate =
            m_mechanism.AddBody(L"Gate", KARMathTransformation(KARMathVector(GateFace, 0.0, 0.0)));
        SetMass(*gate, Box(2.5, {0.01, 0.0, 0.1}, {0.02, 0.3, 0.2}));
        return gate;
    }

    void AddGateGuide()
    {
        const auto guide = m_mechanism.AddJoint<KARMPPrismatic, KARMPPrismaticConstraint>(
            L"Gate guide",
            m_mechanism.AddAxisSystem(m_mechanism.Ground(), L"Guide", AxisAlongX({})),
            m_mechanism.AddAxisSystem(m_gate, L"Guide", AxisAlongX({})));
        m_gateFace =
            m_mechanism.AddVariable(L"Gate face", KARMPPhysicalQuantity::Length, GateFace, guide);
    }

    template <class Interaction>
    QOBSharedHandle<Interaction> AddInteraction(const std::wstring& name,
                                                const QOBSharedVector<KARMPEntity>& collidables)
    {
        const auto interaction =
            m_mechanism.File<KARMPInteraction>(Interaction::create(name), name);
        for (const auto& collidable : collidables)
            interaction->AddCollidable(collidable);
        return interaction;
    }

    /// What moves may touch what is fixed, with coefficients for all of it.
    void AddLayers()
    {
        const auto moving =
            AddInteraction<KARMPCollisionLayer>(L"Moving parts", {m_dumbbell, m_gate});
        const auto fixed = AddInteraction<KARMPCollisionLayer>(L"Fixed parts", {m_plate, m_wall});
        const auto both =
            AddInteraction<KARMPCollisionInterLayer>(L"Moving on fixed parts", {moving, fixed});
        both->SetRestitutionCoefficient(0.4);
        both->SetDynamicFrictionCoefficient(0.3);
        both->SetStaticFrictionCoefficient(0.4);
    }

    /// The dumbbell is rigid, and the plate has the mat.
    QOBSharedHandle<KARMPCollisionRule> AddRule()
    {
        const auto rule = AddInteraction<KARMPCollisionRule>(L"Dumbbell on mat", {});
        rule->SetFirstBody(m_dumbbell);
        rule->SetSecondBody(m_plate);
        rule->SetRestitutionCoefficient(0.1);
        rule->SetDynamicFrictionCoefficient(0.7);
        rule->SetStaticFrictionCoefficient(0.8);
        rule->SetSecondCollidableParameters(MatYoungModulus, MatPoisson, MatThickness);
        return rule;
    }

    void AddContactSensor()
    {
        const std::wstring name = L"Contact sensor";
        const auto sensor = m_mechanism.File<KARMPSensor>(KARMPCollisionSensor::create(name), name);
        sensor->SetCollisionRule(AddRule());
        sensor->SetLoader(new ContactLoader(*sensor));
    }

    void AddProximitySensor()
    {
        KARMPProximitySensorData data;
        data.SetSensorBody(m_dumbbell);
        data.SetUseGroupContext(true);
        data.AddBodyToGroup(m_wall);
        data.AddBodyToGroup(m_gate);
        data.SetUseClearance(true);
        data.SetClearance(Clearance);
        const std::wstring name = L"Proximity sensor";
        const auto sensor = m_mechanism.File<KARMPSensor>(KARMPProximitySensor::create(name), name);
        sensor->SetProximitySensorData(data);
        sensor->SetLoader(new ProximityLoader(*sensor));
    }

    MechanismBuilder m_mechanism{L"Collision", {0.0, 0.0, -Gravity}};
    Body m_plate = AddFixedBody(L"Plate");
    Body m_wall = AddFixedBody(L"Wall");
    Body m_dumbbell = AddDumbbell();
    Body m_gate = AddGate();
    QOBSharedHandle<KARMPVariable> m_gateFace;
};

/// Prints the pairs that the layers let touch: each entity of one with each of the other.
void PrintLayers(const KARMPWorld& world)
{
    const auto both = FindByName<KARMPInteraction>(world, L"Moving on fixed parts");
    QOBSharedVector<KARMPEntity> moving;
    QOBSharedVector<KARMPEntity> fixed;
    both->GetEntities(0, moving);
    both->GetEntities(1, fixed);
    for (const auto& one : moving)
        for (const auto& other : fixed)
            std::cout << kar::ToUtf8(one->getEntityName()) << " may touch "
                      << kar::ToUtf8(other->getEntityName()) << '\n';
}

/// Prints the contacts; true when they carry the dumbbell.
bool PrintContacts(const KARMPWorld& world)
{
    const auto sensor = SensorOf<KARMPCollisionSensor>(world, L"Contact sensor");
    const auto dumbbell = FindByName<KARMPBody>(world, L"Dumbbell");
    double mass = 0.0;
    dumbbell->GetMass(mass);
    KARMathVector sum(0.0, 0.0, -mass * Gravity);
    std::cout << sensor->GetContactForceDataCount() << " contacts\n";
    for (int index = 0; index < sensor->GetContactForceDataCount(); ++index) {
        KARMPContactForceData contact;
        sensor->GetContactForceData(index, contact);
        sum += contact.firstContactForce;
        std::cout << "  at x = " << contact.firstContactPoint.GetX() << " m, "
                  << 1000.0 * contact.penetrationDepth << " mm deep, with "
                  << contact.firstContactForce.GetZ() << " N\n";
    }
    return sensor->GetContactForceDataCount() == 2 && sum.Norm() < 1e-6;
}

/// Closes the gate to where it stands at first and prints when it comes near.
bool CloseGate(Scene& scene)
{
    const auto sensor = SensorOf<KARMPProximitySensor>(*scene.World(), L"Proximity sensor");
    bool isNear = false;
    for (const double face : {GateFace + 0.06, GateFace + 0.04, GateFace + 0.01, GateFace}) {
        scene.MoveGate(face);
        if (sensor->Update() != KARSuccess)
            return false;
        sensor->GetProximitySensorStatus(isNear);
        std::cout << "With the gate at x = " << face << " m the dumbbell has "
                  << (isNear ? "too little" : "enough") << " clearance\n";
    }
    return isNear;
}

} // namespace

int main()
{
    Scene scene;
    const KARMPWorld& world = *scene.World();
    const auto sensor = SensorOf<KARMPCollisionSensor>(world, L"Contact sensor");
    PrintLayers(world);
    if (sensor->Update() != KARSuccess || !PrintContacts(world) || !CloseGate(scene) ||
        !IsQuiet(karmp::documents::SaveFile(scene.World(), "collision.xml")))
        return 1;
    sensor->Reset();
    std::cout << "After a reset there are " << sensor->GetContactForceDataCount()
              << " contacts; collision.xml has ";
    const auto loaded = karmp::documents::LoadFile("collision.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    return PrintContacts(*loaded.world) ? 0 : 1;
}
