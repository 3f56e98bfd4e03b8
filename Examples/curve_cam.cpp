// A plate cam whose profile is a chain of stored curves: a dwell on an arc, a rise on a spline, a
// dwell on a greater arc, and a return on another spline. The cam turns about z; the tip of a
// follower, which slides along y, stays on the profile. The program builds the mechanism, saves it,
// loads it again, and tells from the curves that were loaded how far the tip is from the profile
// and whether the profile is closed and smooth.
#include "KARCrvLimits.h"
#include "KAREllipseArc.h"
#include "KARGeometricFactory.h"
#include "KARNurbsCurve.h"
#include "RoundTrip.h"

#include <algorithm>
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
KARCurve* MakeFlank(KARGeometricFactory& factory, double startRadius, double start,
                    double endRadius, double end)
{
    const double reach = (startRadius + endRadius) * (end - start) / 6.0;
    const KARMathVector first = startRadius * Direction(start);
    const KARMathVector last = endRadius * Direction(end);
    const KARMathVector leaving = reach * Direction(start + std::numbers::pi / 2.0);
    const KARMathVector joining = reach * Direction(end + std::numbers::pi / 2.0);
    const std::vector<KARMathPoint> poles{Rounded(first), Rounded(first + leaving),
                                          Rounded(last - joining), Rounded(last)};
    return factory.Make<KARNurbsCurve>(3, std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1}, poles);
}

KARCurve* MakeDwell(KARGeometricFactory& factory, double radius, double start, double end)
{
    return factory.Make<KARCircleArc>(KARMathPoint(), KARMathVector(1, 0, 0),
                                      KARMathVector(0, 1, 0), radius, start, end);
}

/// Fills the profile in counterclockwise, from the rise on.
void FillProfile(KARMPCurve& profile)
{
    KARGeometricFactory* const factory = KARGeometricFactory::Create();
    const double end = Rounded(RiseStart + 2.0 * std::numbers::pi);
    profile.DeleteCurveLimitsAtEnd(true);
    for (KARCurve* const curve :
         {MakeFlank(*factory, BaseRadius, RiseStart, NoseRadius, NoseStart),
          MakeDwell(*factory, NoseRadius, NoseStart, ReturnStart),
          MakeFlank(*factory, NoseRadius, ReturnStart, BaseRadius, DwellStart),
          MakeDwell(*factory, BaseRadius, Rounded(DwellStart), end)}) {
        double low = 0.0, high = 0.0;
        curve->GetLimits(low, high);
        profile.AddCurve(curve, KARMPCurveOrientation::Positive,
                         new KARCrvLimits(curve->CreateParam(low), curve->CreateParam(high)));
    }
    factory->Release(); // the profile has references of its own
}

/// A piece of a profile, which the profile holds.
const KARCurve& PieceOf(const KARMPCurve& profile, int index)
{
    KARBaseUnknown* piece = nullptr;
    KARMPCurveOrientation::Enum orientation = KARMPCurveOrientation::Positive;
    void* limits = nullptr;
    profile.GetCurve(index, piece, orientation, limits);
    return *KARSysDynamicCast<KARCurve>(piece);
}

Model Build()
{
    Model model("Cam of curves", {.gravity = {0.0, -9.81, 0.0}});
    // The cam weighs what a disc of its mean radius does.
    const auto cam = model.Body("Cam", Cylinder(0.45, (BaseRadius + NoseRadius) / 2.0, 0.012));
    const auto profile = model.Attach<KARMPCurve>("Profile", cam);
    FillProfile(*profile);
    const KARMathPoint touching = PieceOf(*profile, 0).EvalPoint(Share);
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
    const auto again = RoundTrip(Build(), "curve-cam.xml");
    if (!again)
        return 1;
    const auto profile = again->Find<KARMPCurve>("Cam.Profile");
    const KARMathPoint touching =
        PositionOf(again->Find<KARMPBody>("Cam")) * PieceOf(*profile, 0).EvalPoint(Share);
    const double gap =
        (touching - PositionOf(again->Find<KARMPBody>("Follower")) * KARMathPoint()).Norm();
    // The greatest step between a piece and the next, in m, and the greatest turn.
    double step = 0.0, bend = 0.0;
    const int count = profile->GetCurveCount();
    for (int index = 0; index < count; ++index) {
        const KARCurve& piece = PieceOf(*profile, index);
        const KARCurve& next = PieceOf(*profile, (index + 1) % count);
        double low = 0.0, high = 0.0, ignored = 0.0;
        piece.GetLimits(ignored, high);
        next.GetLimits(low, ignored);
        KARMathVector before = piece.EvalTangent(high), after = next.EvalTangent(low);
        before.Normalize();
        after.Normalize();
        step = std::max(step, (next.EvalPoint(low) - piece.EvalPoint(high)).Norm());
        bend = std::max(bend, before.Cross(after).Norm());
    }
    std::cout << "After loading curve-cam.xml the tip is " << gap << " m from the profile, whose "
              << count << " pieces meet within " << step << " m and " << bend << " rad\n";
    return count == 4 && gap < 1e-11 && step < 2e-6 && bend < 1e-3 ? 0 : 1;
}
