// A dumbbell of two balls lies on a plate with a rubber mat, between a wall and a gate that closes.
// A collision rule holds the mat's parameters, layers tell what may touch what, a collision sensor
// records where the balls press on the mat, and a proximity sensor watches wall and gate. The
// loaders stand for a solver: they find contacts and clearances from the geometries of the bodies.
// The world's z points up.
#include "Filler.h"
#include "RoundTrip.h"

#include <cmath>
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

/// What resists a ball on a thin elastic layer with a rigid base, in N per squared
/// depth: each element of the layer is a spring of its own.
double LayerStiffness(double youngModulus, double poisson, double thickness)
{
    const double modulus =
        youngModulus * (1.0 - poisson) / ((1.0 + poisson) * (1.0 - 2.0 * poisson));
    return std::numbers::pi * modulus * BallRadius / thickness;
}

/// A ball and a face in the world.
struct Pair
{
    Pair(const Ref<KARMPSphere>& sphere, const Ref<KARMPPlane>& plane)
    {
        KARMathPlane face;
        sphere->GetCenter(center);
        plane->GetPlane(face);
        sphere->GetBody(first);
        plane->GetBody(second);
        center = PositionOf(Ref(first)) * center;
        normal = PositionOf(Ref(second)) * KARMathVector(face.GetNormal());
        gap = (center - PositionOf(Ref(second)) * face.GetOrigin()).Dot(normal) - BallRadius;
    }

    QOBSharedHandle<KARMPBody> first, second;
    KARMathPoint center;
    KARMathVector normal;
    double gap; // how far the ball stands from the face, negative when it is in it
};

/// Finds the contacts of balls with the face that has the elastic layer. Nothing slides, so that
/// there is no friction. A sensor that is given contacts one by one keeps one of each pair of
/// bodies. These two have several, which it is given at once, and their pair for the count.
void FillContacts(KARMPCollisionSensor& sensor, const RefList<KARMPSphere>& balls,
                  const Ref<KARMPPlane>& mat)
{
    QOBSharedHandle<KARMPCollisionRule> rule;
    double youngModulus = 0.0, poisson = 0.0, thickness = 0.0;
    sensor.Reset();
    sensor.GetCollisionRule(rule);
    rule->GetSecondCollidableParameters(youngModulus, poisson, thickness);
    std::vector<KARMPContactForceData> contacts;
    for (const auto& ball : balls) {
        const Pair pair(ball, mat);
        if (pair.gap >= 0.0)
            continue;
        KARMPContactForceData contact;
        contact.firstBody = pair.first;
        contact.secondBody = pair.second;
        contact.penetrationDepth = -pair.gap;
        contact.firstContactPoint = pair.center - BallRadius * pair.normal;
        contact.secondContactPoint = contact.firstContactPoint - pair.gap * pair.normal;
        contact.firstNormalVector = -pair.normal;
        contact.secondNormalVector = pair.normal;
        contact.firstNormalForce =
            LayerStiffness(youngModulus, poisson, thickness) * pair.gap * pair.gap * pair.normal;
        contact.secondNormalForce = -contact.firstNormalForce;
        contact.firstContactForce = contact.firstNormalForce;
        contact.secondContactForce = contact.secondNormalForce;
        contacts.push_back(contact);
        sensor.AddContactData({pair.first, pair.second});
    }
    sensor.SetContactForceData(contacts);
}

/// Tells whether a face is nearer to a ball than the clearance.
void FillProximity(KARMPProximitySensor& sensor, const RefList<KARMPSphere>& balls,
                   const RefList<KARMPPlane>& faces)
{
    KARMPProximitySensorData data;
    bool isNear = false;
    sensor.GetProximitySensorData(data);
    for (const auto& ball : balls)
        for (const auto& face : faces)
            isNear = isNear || Pair(ball, face).gap < data.GetClearance();
    sensor.SetProximitySensorStatus(isNear);
}

Ref<KARMPSphere> AddBall(Model& model, const char* name, const Ref<KARMPBody>& body, double x)
{
    return model.Attach<KARMPSphere>(name, body,
                                     {{"Center", {x, 0.0, 0.0}}, {"radius", BallRadius}});
}

Ref<KARMPPlane> AddFace(Model& model, const Ref<KARMPBody>& body, double x,
                        const KARMathVector& normal)
{
    return model.Attach<KARMPPlane>("Face", body, {{"Origin", {x, 0.0, 0.0}}, {"Normal", normal}});
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
                         LayerStiffness(MatYoungModulus, MatPoisson, MatThickness));
    };
    const double rightShare = 0.5 + 0.5 * dumbbell.centerOfGravity->GetX() / HalfLength;
    const double left = depthUnder(1.0 - rightShare);
    const double right = depthUnder(rightShare);
    const KARMathVector middle(0.0, 0.0, BallRadius - (left + right) / 2.0);
    const double lean = std::asin((right - left) / (2.0 * HalfLength));
    return dumbbell.PlacedAt(KARMathTransformation(middle) *
                             KARMathTransformation::Rotation({{}, {0.0, 1.0, 0.0}}, lean));
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
    const RefList<KARMPPlane> faces{AddFace(model, wall, -0.31, x), AddFace(model, gate, 0.0, -x)};
    const auto guide =
        model.Joint<KARMPPrismatic>("Gate guide", model.Ground(), gate, *FrameAlong({}, x),
                                    *FrameAlong({GateFace, 0.0, 0.0}, x));
    model.Variable("Gate face", guide, GateFace);

    const auto moving =
        model.Add<KARMPCollisionLayer>("Moving parts", {{"Collidables", {dumbbell, gate}}});
    const auto fixed =
        model.Add<KARMPCollisionLayer>("Fixed parts", {{"Collidables", {plate, wall}}});
    model.Add<KARMPCollisionInterLayer>("Moving on fixed parts", {{"Collidables", {moving, fixed}},
                                                                  {"Restitution", 0.4},
                                                                  {"DynamicFriction", 0.3},
                                                                  {"StaticFriction", 0.4}});

    // The dumbbell is rigid, and the plate has the mat.
    const auto rule = model.Add<KARMPCollisionRule>("Dumbbell on mat",
                                                    {{"Collidables", {dumbbell, plate}},
                                                     {"Restitution", 0.1},
                                                     {"DynamicFriction", 0.7},
                                                     {"StaticFriction", 0.8},
                                                     {"YoungModulus2", MatYoungModulus},
                                                     {"PoissonCoef2", MatPoisson},
                                                     {"ElasticLayerThickness2", MatThickness}});
    const auto contacts =
        model.Add<KARMPCollisionSensor>("Contact sensor", {{"CollisionRule", rule}});
    contacts->SetLoader(new Filler<KARIMPCollisionSensorLoader>(
        [&sensor = *contacts, balls, mat] { FillContacts(sensor, balls, mat); }));
    const auto proximity =
        model.Add<KARMPProximitySensor>("Proximity sensor", {{"SensorBody", dumbbell},
                                                             {"UseGroupContext", true},
                                                             {"ProximitySensorGroup", {wall, gate}},
                                                             {"UseClearance", true},
                                                             {"Clearance", 0.05}});
    proximity->SetLoader(new Filler<KARIMPProximitySensorLoader>(
        [&sensor = *proximity, balls, faces] { FillProximity(sensor, balls, faces); }));
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
    const auto again = RoundTrip(model, "collision.xml");
    std::cout << "After loading collision.xml\n";
    return again && PrintContacts(*again) ? 0 : 1;
}
