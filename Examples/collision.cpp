// A dumbbell of two balls lies on a plate with a rubber mat, between a wall and a gate that closes.
// A collision rule holds the mat's parameters, layers tell what may touch what, a collision sensor
// records where the balls press on the mat, and a proximity sensor watches wall and gate. The
// loaders stand for a solver: they find contacts and clearances from the geometries of the bodies.
// The world's z points up.
#include "KARMPModelContacts.h"
#include "RoundTrip.h"

#include <cmath>
#include <numbers>

using namespace karmp::model;

namespace {

constexpr double Gravity = 9.81;    // m/s2
constexpr double BallRadius = 0.04; // m
constexpr double HalfLength = 0.15; // m, from the middle of the bar to a ball's centre
constexpr double GateFace = 0.22;   // m, along x
constexpr double Clearance = 0.05;  // m, to the dumbbell

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
    const auto addBall = [&](const char* name, double at) {
        return model.Attach<KARMPSphere>(name, dumbbell,
                                         {{"Center", {at, 0.0, 0.0}}, {"radius", BallRadius}});
    };
    const auto addFace = [&](const Ref<KARMPBody>& body, double at, const KARMathVector& normal) {
        return model.Attach<KARMPPlane>("Face", body,
                                        {{"Origin", {at, 0.0, 0.0}}, {"Normal", normal}});
    };
    const RefList<KARMPSphere> balls{addBall("Left ball", -HalfLength),
                                     addBall("Right ball", HalfLength)};
    const auto mat = addFace(plate, 0.0, up);
    const RefList<KARMPPlane> faces{addFace(wall, -0.31, x), addFace(gate, 0.0, -x)};
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
    // Nothing slides, so that there is no friction.
    model.Sensor<KARMPCollisionSensor>(
        "Contact sensor", {{"CollisionRule", rule}},
        [rule, balls, mat](KARMPCollisionSensor& sensor) {
            const double stiffness =
                LayerStiffness(*NumberOf(rule, "YoungModulus2"), *NumberOf(rule, "PoissonCoef2"),
                               *NumberOf(rule, "ElasticLayerThickness2"));
            std::vector<KARMPContactForceData> contacts;
            for (const auto& ball : balls) {
                const double depth = GapBetween(ball, mat)->distance;
                if (const auto contact = ContactBetween(ball, mat, stiffness * depth * depth))
                    contacts.push_back(*contact);
            }
            RecordContacts(sensor, contacts);
        });
    model.Sensor<KARMPProximitySensor>(
        "Proximity sensor",
        {{"SensorBody", dumbbell},
         {"UseGroupContext", true},
         {"ProximitySensorGroup", {wall, gate}},
         {"UseClearance", true},
         {"Clearance", Clearance}},
        [balls, faces](KARMPProximitySensor& sensor) {
            bool isNear = false;
            for (const auto& ball : balls)
                for (const auto& face : faces)
                    isNear = isNear || GapBetween(ball, face)->distance < Clearance;
            sensor.SetProximitySensorStatus(isNear);
        });
}

/// Prints the contacts; true when they carry the dumbbell.
bool PrintContacts(const Model& model)
{
    const auto sensor = model.Find<KARMPCollisionSensor>("Contact sensor");
    KARMathVector sum = -NeededForce(model.Find<KARMPBody>("Dumbbell")).force;
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
    return RoundTrip(model, "collision.xml", [](const Model& again) {
        std::cout << "After loading collision.xml\n";
        return PrintContacts(again);
    });
}
