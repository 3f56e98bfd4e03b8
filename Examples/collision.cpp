// A dumbbell of two balls lies on a plate with a rubber mat, between a wall and a gate that closes.
// A collision rule holds the mat's parameters, layers tell what may touch what, a collision sensor
// records where the balls press on the mat, and a proximity sensor watches wall and gate. The
// loaders stand for a solver: they find contacts and clearances from the geometries of the bodies.
// The world's z points up.
#include "KARMPEntities.h"
#include "KARMPModel.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <numbers>

using namespace karmp::model;

namespace {

constexpr double Gravity = 9.81;    // m/s2
constexpr double BallRadius = 0.04; // m
constexpr double HalfLength = 0.15; // m, from the middle of the bar to a ball's centre
constexpr double GateFace = 0.22;   // m, along x

constexpr double MatYoungModulus = 2e6; // Pa
constexpr double MatPoisson = 0.4;
constexpr double MatThickness = 0.005; // m

/// What resists a ball of a radius on a thin elastic layer with a rigid base, in N per squared
/// depth: each element of the layer is a spring of its own.
double LayerStiffness(double youngModulus, double poisson, double thickness, double radius)
{
    const double modulus =
        youngModulus * (1.0 - poisson) / ((1.0 + poisson) * (1.0 - 2.0 * poisson));
    return std::numbers::pi * modulus * radius / thickness;
}

/// A ball and a face in the world.
struct Pair
{
    Pair(const KARMPSphere& sphere, const KARMPPlane& plane)
    {
        KARMathPlane onFace;
        sphere.GetCenter(center);
        sphere.GetRadius(radius);
        plane.GetPlane(onFace);
        sphere.GetBody(ball);
        plane.GetBody(body);
        const auto position = PositionOf(Ref(body));
        center = PositionOf(Ref(ball)) * center;
        normal = position * KARMathVector(onFace.GetNormal());
        gap = (center - position * onFace.GetOrigin()).Dot(normal) - radius;
    }

    QOBSharedHandle<KARMPBody> ball, body;
    KARMathPoint center;
    double radius = 0.0;
    KARMathVector normal;
    double gap = 0.0; // how far the ball stands from the face, negative when it is in it
};

/// What both loaders have: a sensor, which owns the loader, the balls and the faces.
template <class Interface, class Sensor>
class Watcher : public Interface
{
public:
    Watcher(Sensor& sensor, RefList<KARMPSphere> balls, RefList<KARMPPlane> faces)
        : m_sensor(sensor), m_balls(std::move(balls)), m_faces(std::move(faces))
    {}
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

protected:
    std::vector<Pair> Pairs() const
    {
        std::vector<Pair> pairs;
        for (const auto& ball : m_balls)
            for (const auto& face : m_faces)
                pairs.emplace_back(*ball, *face);
        return pairs;
    }

    Sensor& m_sensor;

private:
    RefList<KARMPSphere> m_balls;
    RefList<KARMPPlane> m_faces;
};

/// Finds the contacts of balls with the face of the rule's second body, which has the elastic
/// layer. Nothing slides, so that there is no friction.
class ContactLoader : public Watcher<KARIMPCollisionSensorLoader, KARMPCollisionSensor>
{
public:
    using Watcher::Watcher;

    /// A sensor that is given contacts one by one keeps one of each pair of bodies. These two have
    /// several, which it is given at once, and their pair for the count.
    KARStatus Update() override
    {
        QOBSharedHandle<KARMPCollisionRule> rule;
        double youngModulus = 0.0, poisson = 0.0, thickness = 0.0;
        if (m_sensor.GetCollisionRule(rule) != KARSuccess)
            return KARFailure;
        rule->GetSecondCollidableParameters(youngModulus, poisson, thickness);
        m_sensor.Reset();
        std::vector<KARMPContactForceData> contacts;
        for (const Pair& pair : Pairs()) {
            if (pair.gap >= 0.0)
                continue;
            KARMPContactForceData contact;
            contact.firstBody = pair.ball;
            contact.secondBody = pair.body;
            contact.penetrationDepth = -pair.gap;
            contact.firstContactPoint = pair.center - pair.radius * pair.normal;
            contact.secondContactPoint = contact.firstContactPoint - pair.gap * pair.normal;
            contact.firstNormalVector = -pair.normal;
            contact.secondNormalVector = pair.normal;
            contact.firstNormalForce =
                LayerStiffness(youngModulus, poisson, thickness, pair.radius) * pair.gap *
                pair.gap * pair.normal;
            contact.secondNormalForce = -contact.firstNormalForce;
            contact.firstContactForce = contact.firstNormalForce;
            contact.secondContactForce = contact.secondNormalForce;
            contacts.push_back(contact);
            m_sensor.AddContactData({pair.ball, pair.body});
        }
        return m_sensor.SetContactForceData(contacts);
    }
};

/// Tells whether a face is nearer to a ball than the clearance.
class ProximityLoader : public Watcher<KARIMPProximitySensorLoader, KARMPProximitySensor>
{
public:
    using Watcher::Watcher;

    KARStatus Update() override
    {
        KARMPProximitySensorData data;
        m_sensor.GetProximitySensorData(data);
        double gap = std::numeric_limits<double>::infinity();
        for (const Pair& pair : Pairs())
            gap = std::min(gap, pair.gap);
        return m_sensor.SetProximitySensorStatus(gap < data.GetClearance());
    }
};

Ref<KARMPSphere> AddBall(Model& model, const char* name, const Ref<KARMPBody>& body, double x)
{
    const auto ball = model.Attach<KARMPSphere>(name, body);
    ball->SetCenter({x, 0.0, 0.0});
    ball->SetRadius(BallRadius);
    return ball;
}

Ref<KARMPPlane> AddFace(Model& model, const Ref<KARMPBody>& body, double x,
                        const KARMathVector& normal)
{
    const auto face = model.Attach<KARMPPlane>("Face", body);
    face->SetPlane(KARMathPlane({x, 0.0, 0.0}, normal));
    return face;
}

/// The dumbbell where the mat carries it: each ball as deep as its share of the weight asks for, so
/// that the bar leans to the heavier one.
BodyOptions Dumbbell()
{
    const auto balls = Together(Ball(1.2, BallRadius, {-HalfLength, 0.0, 0.0}),
                                Ball(2.1, BallRadius, {HalfLength, 0.0, 0.0}));
    const auto dumbbell = Together(Box(0.3, {0.22, 0.02, 0.02}), balls);
    const auto depthUnder = [&dumbbell](double share) {
        return std::sqrt(share * dumbbell.mass * Gravity /
                         LayerStiffness(MatYoungModulus, MatPoisson, MatThickness, BallRadius));
    };
    const double rightShare = 0.5 + 0.5 * dumbbell.centerOfGravity->GetX() / HalfLength;
    const double left = depthUnder(1.0 - rightShare);
    const double right = depthUnder(rightShare);
    const KARMathVector middle(0.0, 0.0, BallRadius - (left + right) / 2.0);
    const double lean = std::asin((right - left) / (2.0 * HalfLength));
    return dumbbell.PlacedAt(KARMathTransformation(middle) *
                             KARMathTransformation::Rotation({{}, {0.0, 1.0, 0.0}}, lean));
}

template <class Interaction>
Ref<Interaction> AddInteraction(Model& model, const char* name, const RefList<KARMPEntity>& parts)
{
    const auto interaction = model.Add<Interaction>(name);
    for (const auto& part : parts)
        interaction->AddCollidable(part);
    return interaction;
}

/// The parts, with layers: what moves may touch what is fixed, with coefficients for all of it.
void Build(Model& model)
{
    const KARMathVector up(0.0, 0.0, 1.0), x(1.0, 0.0, 0.0);
    const auto plate = model.Body("Plate", {.isFixed = true});
    const auto wall = model.Body("Wall", {.isFixed = true});
    const auto dumbbell = model.Body("Dumbbell", Dumbbell());
    const auto board = Box(2.5, {0.02, 0.3, 0.2}, {0.01, 0.0, 0.1});
    const auto gate = model.Body("Gate", board.PlacedAt(KARMathPoint(GateFace, 0.0, 0.0)));
    const RefList<KARMPSphere> balls{AddBall(model, "Left ball", dumbbell, -HalfLength),
                                     AddBall(model, "Right ball", dumbbell, HalfLength)};
    const auto mat = AddFace(model, plate, 0.0, up);
    const auto wallFace = AddFace(model, wall, -0.31, x);
    const auto gateFace = AddFace(model, gate, 0.0, -x);
    model.Variable("Gate face",
                   model.Joint<KARMPPrismatic>("Gate guide", model.Ground(), gate,
                                               *FrameAlong({}, x),
                                               *FrameAlong({GateFace, 0.0, 0.0}, x)),
                   GateFace);

    const auto moving =
        AddInteraction<KARMPCollisionLayer>(model, "Moving parts", {dumbbell, gate});
    const auto fixed = AddInteraction<KARMPCollisionLayer>(model, "Fixed parts", {plate, wall});
    const auto both =
        AddInteraction<KARMPCollisionInterLayer>(model, "Moving on fixed parts", {moving, fixed});
    both->SetRestitutionCoefficient(0.4);
    both->SetDynamicFrictionCoefficient(0.3);
    both->SetStaticFrictionCoefficient(0.4);

    // The dumbbell is rigid, and the plate has the mat.
    const auto rule = model.Add<KARMPCollisionRule>("Dumbbell on mat");
    rule->SetFirstBody(dumbbell);
    rule->SetSecondBody(plate);
    rule->SetRestitutionCoefficient(0.1);
    rule->SetDynamicFrictionCoefficient(0.7);
    rule->SetStaticFrictionCoefficient(0.8);
    rule->SetSecondCollidableParameters(MatYoungModulus, MatPoisson, MatThickness);
    const auto contacts = model.Add<KARMPCollisionSensor>("Contact sensor");
    contacts->SetCollisionRule(rule);
    contacts->SetLoader(new ContactLoader(*contacts, balls, {mat}));

    KARMPProximitySensorData data;
    data.SetSensorBody(dumbbell);
    data.SetUseGroupContext(true);
    data.AddBodyToGroup(wall);
    data.AddBodyToGroup(gate);
    data.SetUseClearance(true);
    data.SetClearance(0.05);
    const auto proximity = model.Add<KARMPProximitySensor>("Proximity sensor");
    proximity->SetProximitySensorData(data);
    proximity->SetLoader(new ProximityLoader(*proximity, balls, {wallFace, gateFace}));
}

/// Prints the contacts; true when they carry the dumbbell.
bool PrintContacts(const Model& model)
{
    const auto sensor = model.Find<KARMPCollisionSensor>("Contact sensor");
    double mass = 0.0;
    model.Find<KARMPBody>("Dumbbell")->GetMass(mass);
    KARMathVector sum(0.0, 0.0, -mass * Gravity);
    for (int index = 0; index < sensor->GetContactForceDataCount(); ++index) {
        KARMPContactForceData contact;
        sensor->GetContactForceData(index, contact);
        sum += contact.firstContactForce;
        std::cout << "Contact at x = " << contact.firstContactPoint.GetX() << " m, "
                  << 1000.0 * contact.penetrationDepth << " mm deep, with "
                  << contact.firstContactForce.GetZ() << " N\n";
    }
    return sensor->GetContactForceDataCount() == 2 && sum.Norm() < 1e-6;
}

/// Closes the gate to where it stands at first and tells when it comes near.
bool CloseGate(const Model& model)
{
    const auto sensor = model.Find<KARMPProximitySensor>("Proximity sensor");
    bool isNear = false;
    for (const double face : {GateFace + 0.06, GateFace + 0.04, GateFace + 0.01, GateFace}) {
        model.Find<KARMPBody>("Gate")->SetPosition(KARMathTransformation({face, 0.0, 0.0}), 0);
        model.Find<KARMPVariable>("Gate face")->SetValue(face);
        sensor->Update();
        sensor->GetProximitySensorStatus(isNear);
        std::cout << "With the gate at x = " << face << " m the dumbbell has "
                  << (isNear ? "too little" : "enough") << " clearance\n";
    }
    return isNear;
}

} // namespace

int main()
{
    Model model("Collision", {.gravity = {0.0, 0.0, -Gravity}});
    Build(model);
    if (model.Find<KARMPSensor>("Contact sensor")->Update() != KARSuccess ||
        !PrintContacts(model) || !CloseGate(model))
        return 1;
    if (const auto saved = model.Save("collision.xml", {}); !saved)
        return saved.Report();
    const auto again = Load("collision.xml");
    std::cout << "After loading collision.xml\n";
    return again.Report() == 0 && PrintContacts(*again) ? 0 : 1;
}
