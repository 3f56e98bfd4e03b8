// A plate cam whose profile is a chain of stored curves: a dwell on an arc, a rise on a spline, a
// dwell on a greater arc, and a return on another spline. The cam turns about z; the tip of a
// follower, which slides along y, stays on the profile. The program builds the mechanism, saves it,
// loads it again, and tells from the curves that were loaded how far the tip is from the profile
// and whether the profile is closed and smooth.
#include "RoundTrip.h"

#include <cmath>
#include <numbers>

using namespace karmp::model;

namespace {

constexpr double BaseRadius = 0.03; // m, of the lower dwell
constexpr double NoseRadius = 0.05; // of the upper dwell
constexpr double StemLength = 0.14;
constexpr double Share = 0.4; // of the rise, where the tip stands

/// Where the pieces of the profile begin, as angles in rad about the cam's axis.
constexpr double RiseStart = -0.3;
constexpr double NoseStart = 1.2;
constexpr double ReturnStart = 1.9;
constexpr double DwellStart = 3.4;

// Streams keep all digits: rounded to a millionth they are the same on every machine.
double Rounded(double number)
{
    return std::round(1e6 * number) / 1e6;
}

KARMathPoint Rounded(const KARMathVector& vector)
{
    return {Rounded(vector.GetX()), Rounded(vector.GetY()), 0.0};
}

KARMathVector Direction(double angle)
{
    return {std::cos(angle), std::sin(angle), 0.0};
}

/// A cubic that leaves one circle about the axis, and joins another, along them.
CurvePiece Flank(double startRadius, double start, double endRadius, double end)
{
    const double reach = (startRadius + endRadius) * (end - start) / 6.0;
    const KARMathVector first = startRadius * Direction(start);
    const KARMathVector last = endRadius * Direction(end);
    const KARMathVector leaving = reach * Direction(start + std::numbers::pi / 2.0);
    const KARMathVector joining = reach * Direction(end + std::numbers::pi / 2.0);
    return Spline(
        {Rounded(first), Rounded(first + leaving), Rounded(last - joining), Rounded(last)});
}

Model Build()
{
    Model model("Cam of curves", {.gravity = {0.0, -9.81, 0.0}});
    // The cam weighs what a disc of its mean radius does.
    const auto cam = model.Body("Cam", Cylinder(0.45, (BaseRadius + NoseRadius) / 2.0, 0.012));
    // Counterclockwise, from the rise on.
    const double end = Rounded(RiseStart + 2.0 * std::numbers::pi);
    const auto profile = model.Curve("Profile", cam,
                                     {Flank(BaseRadius, RiseStart, NoseRadius, NoseStart),
                                      Arc({}, NoseRadius, NoseStart, ReturnStart),
                                      Flank(NoseRadius, ReturnStart, BaseRadius, DwellStart),
                                      Arc({}, BaseRadius, Rounded(DwellStart), end)});
    const KARMathPoint touching = PiecesOf(profile).front()->EvalPoint(Share);
    const double lift = (touching - KARMathPoint()).Norm();
    const double angle = std::numbers::pi / 2.0 - std::atan2(touching.GetY(), touching.GetX());
    cam->SetPosition(KARMathTransformation::Rotation({{}, {0.0, 0.0, 1.0}}, angle), 0);

    const KARMathPoint tip(0.0, lift, 0.0);
    const KARMathVector up(0.0, 1.0, 0.0);
    const auto stem = Box(0.2, {0.01, StemLength, 0.01}, {0.0, StemLength / 2.0, 0.0});
    const auto follower = model.Body("Follower", stem.PlacedAt(tip));
    const auto bearing = model.Joint<KARMPRevolute>("Bearing", model.Ground(), cam, {},
                                                    PositionOf(cam) * KARMathAxis());
    const auto guide = model.Joint<KARMPPrismatic>("Guide", model.Ground(), follower,
                                                   *FrameAlong({}, up), *FrameAlong(tip, up));
    model.Joint<KARMPPointCurve>("Contact", profile, model.Point("Tip", follower, tip));
    model.Variable("Lift", guide, lift);
    model.Point("Stem end", follower, tip + StemLength * up);
    model.Motor("Motor", model.Variable("Cam angle", bearing, angle),
                {.velocity = 12.0, .maximum = 3.0});
    return model;
}

} // namespace

int main()
{
    return RoundTrip(
        Build(), "curve-cam.xml",
        [](const Model& again) {
            const auto profile = again.Find<KARMPCurve>("Cam.Profile");
            const KARMathPoint touching = PositionOf(again.Find<KARMPBody>("Cam")) *
                                          PiecesOf(profile).front()->EvalPoint(Share);
            const double gap = (touching - PlaceOf(again.Find<KARMPPoint>("Follower.Tip"))).Norm();
            const CurveJoins joins = JoinsOf(profile);
            const int count = profile->GetCurveCount();
            std::cout << "After loading curve-cam.xml the tip is " << gap
                      << " m from the profile, whose " << count << " pieces meet within "
                      << joins.step << " m and " << joins.bend << " rad\n";
            return count == 4 && gap < 1e-11 && joins.step < 2e-6 && joins.bend < 1e-3;
        });
}
