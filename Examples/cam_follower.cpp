// A cam with a follower in a sketch: an eccentric disc turns about a pin, and the flat face of a
// follower, which slides in a guide, touches it. A sensor on the follower keeps how far it was
// lifted from its lowest position. The program builds it, saves it, loads it again, and tells how
// far face and disc are apart.

#include <cmath>

#include "RoundTrip.h"

using namespace karmp::model;

namespace {

constexpr double CamRadius = 0.03;
constexpr double Eccentricity = 0.01;
constexpr double CamAngle = 0.5; // of the disc's centre about the pin, from the x axis
constexpr double CamMass = 0.25;
constexpr double FollowerMass = 0.15;
constexpr double StemLength = 0.12;

Model Build()
{
    Model model("Cam and follower", {.gravity = {0.0, -9.81, 0.0}});
    const double round = CamMass * CamRadius * CamRadius / 2.0;
    const double slender = FollowerMass * StemLength * StemLength / 12.0;
    const double lift = CamRadius + Eccentricity * std::sin(CamAngle); // of the face above the pin
    const auto cam =
        model.PlanarBody("Cam", Plate(CamMass, round, {Eccentricity, 0.0})
                                    .PlacedAt(KARMathTransformation2D::Rotation({}, CamAngle)));
    // Its face is its x axis; its stem goes up from there.
    const auto follower =
        model.PlanarBody("Follower", {.mass = FollowerMass,
                                      .at = KARMathPoint2D(0.0, lift),
                                      .centerOfGravity = KARMathPoint2D(0.0, StemLength / 2.0),
                                      .inertia = KARMath2x2Matrix({slender, 0.0}, {0.0, 0.0})});
    const auto bearing =
        model.Joint<KARMPUserDefined2D>("Cam bearing", model.PlanarGround(), cam, KARMathPoint2D());
    model.Motor("Motor", model.Variable("Cam angle", bearing, CamAngle),
                {.velocity = 10.0, .maximum = 2.0});

    const Settings up{{"Origin", {0.0, 0.0}}, {"Direction", {0.0, 1.0}}};
    const auto guide = model.Attach<KARMPLine2D>("Guide", model.PlanarGround(), up);
    const auto stem = model.Attach<KARMPLine2D>("Stem", follower, up);
    const auto disc = model.Attach<KARMPCircle2D>(
        "Disc", cam, {{"Center", {Eccentricity, 0.0}}, {"radius", CamRadius}});
    const auto face = model.Attach<KARMPLine2D>(
        "Face", follower, {{"Origin", {0.0, 0.0}}, {"Direction", {1.0, 0.0}}});
    model.Joint<KARMPUserDefined2D>("Guide", guide, stem);
    model.Joint<KARMPUserDefined2D, KARMPTangency>("Contact", disc, face);

    const KARMathVector2D lifted(0.0, lift - (CamRadius - Eccentricity));
    model.Add<KARMPDisplacementSensor2D>(
        "Lift", {{"Body2D", follower}, {"Displacement2D", KARMathTransformation2D(lifted)}});
    return model;
}

} // namespace

int main()
{
    return RoundTrip(
        Build(), "cam-follower.xml",
        [](const Model& again) {
            const double lift = *NumberOf(again.Find<KARMPSensor>("Lift"), "Displacement2D", 1);
            const double gap = GapBetween(again.Find<KARMPCircle2D>("Cam.Disc"),
                                          again.Find<KARMPLine2D>("Follower.Face"))
                                   ->distance;
            std::cout << "After loading cam-follower.xml the follower is lifted by " << lift
                      << " m and its face is " << gap << " m from the disc\n";
            return std::abs(gap) <= 1e-11;
        });
}
