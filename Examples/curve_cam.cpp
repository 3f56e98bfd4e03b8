// A plate cam whose profile is a chain of stored curves: a dwell on an arc, a rise on a spline, a
// dwell on a greater arc, and a return on another spline. The cam turns about z; the tip of a
// follower, which slides along y, stays on the profile. The program builds the mechanism, saves it,
// loads it again, and tells from the curves that were loaded how far the tip is from the profile
// and whether the profile is closed and smooth.
#include "MechanismBuilder.h"

#include "KARCrvLimits.h"
#include "KAREllipseArc.h"
#include "KARGeometricFactory.h"
#include "KARNurbsCurve.h"

#include <algorithm>
#include <array>
#include <numbers>

namespace {

using Quantity = KARMPPhysicalQuantity;

constexpr double BaseRadius = 0.03; // m, of the lower dwell
constexpr double NoseRadius = 0.05; // of the upper dwell
constexpr double Thickness = 0.012;
constexpr double StemLength = 0.14;
constexpr double Turn = 12.0;  // rad/s
constexpr double Torque = 3.0; // N m, the motor's greatest
constexpr double Share = 0.4;  // of the rise, where the tip stands

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

KARMathVector Direction(double angle)
{
    return {std::cos(angle), std::sin(angle), 0.0};
}

KARMathPoint Rounded(const KARMathVector& vector)
{
    return {Rounded(vector.GetX()), Rounded(vector.GetY()), 0.0};
}

/// The poles of a cubic that leaves one circle about the axis, and joins another, along them.
std::vector<KARMathPoint> Poles(double startRadius, double start, double endRadius, double end)
{
    const double reach = (startRadius + endRadius) * (end - start) / 6.0;
    const KARMathVector first = startRadius * Direction(start);
    const KARMathVector last = endRadius * Direction(end);
    const KARMathVector leaving = reach * Direction(start + std::numbers::pi / 2.0);
    const KARMathVector joining = reach * Direction(end + std::numbers::pi / 2.0);
    return {Rounded(first), Rounded(first + leaving), Rounded(last - joining), Rounded(last)};
}

KARNurbsCurve* MakeFlank(KARGeometricFactory& factory, const std::vector<KARMathPoint>& poles)
{
    return factory.Make<KARNurbsCurve>(3, std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1}, poles);
}

KARCircleArc* MakeDwell(KARGeometricFactory& factory, double radius, double start, double end)
{
    return factory.Make<KARCircleArc>(KARMathPoint(), KARMathVector(1, 0, 0),
                                      KARMathVector(0, 1, 0), radius, start, end);
}

void AddSegment(KARMPCurve& profile, KARCurve* curve)
{
    double low = 0.0;
    double high = 0.0;
    curve->GetLimits(low, high);
    // The profile frees the limits.
    profile.AddCurve(curve, KARMPCurveOrientation::Positive,
                     new KARCrvLimits(curve->CreateParam(low), curve->CreateParam(high)));
}

/// The profile counterclockwise, from the rise on.
QOBSharedHandle<KARMPCurve> MakeProfile()
{
    const auto profile = KARMPCurve::create(L"Profile");
    profile->DeleteCurveLimitsAtEnd(true);
    KARGeometricFactory* const factory = KARGeometricFactory::Create();
    const double turn = 2.0 * std::numbers::pi;
    AddSegment(*profile, MakeFlank(*factory, Poles(BaseRadius, RiseStart, NoseRadius, NoseStart)));
    AddSegment(*profile, MakeDwell(*factory, NoseRadius, NoseStart, ReturnStart));
    AddSegment(*profile,
               MakeFlank(*factory, Poles(NoseRadius, ReturnStart, BaseRadius, DwellStart)));
    AddSegment(*profile,
               MakeDwell(*factory, BaseRadius, Rounded(DwellStart), Rounded(RiseStart + turn)));
    factory->Release(); // the profile has references of its own
    return profile;
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

QOBSharedHandle<KARMPWorld> Build()
{
    MechanismBuilder mechanism(L"Cam of curves", {0.0, -9.81, 0.0});
    const auto profile = MakeProfile();
    const KARMathPoint touching = PieceOf(*profile, 0).EvalPoint(Share);
    const double lift = (touching - KARMathPoint()).Norm();
    const double angle = std::numbers::pi / 2.0 - std::atan2(touching.GetY(), touching.GetX());

    const auto cam = mechanism.AddBody(L"Cam", {}, angle);
    const auto follower = mechanism.AddBody(L"Follower", {0.0, lift, 0.0}, 0.0);
    // The cam weighs what a disc of its mean radius does.
    SetMass(*cam, Cylinder(0.45, {}, (BaseRadius + NoseRadius) / 2.0, Thickness));
    SetMass(*follower, Box(0.2, {0.0, StemLength / 2.0, 0.0}, {0.01, StemLength, 0.01}));

    const auto bearing = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Bearing", mechanism.AddAxisSystem(mechanism.Ground(), L"Bearing", AxisAlongZ({})),
        mechanism.AddAxisSystem(cam, L"Bearing", AxisAlongZ({})));
    const auto guide = mechanism.AddJoint<KARMPPrismatic, KARMPPrismaticConstraint>(
        L"Guide", mechanism.AddAxisSystem(mechanism.Ground(), L"Guide", AxisAlongY({})),
        mechanism.AddAxisSystem(follower, L"Guide", AxisAlongY({})));
    mechanism.AddJoint<KARMPPointCurve, KARMPCoincidence>(
        L"Contact", mechanism.Attach(profile, cam, L"Profile"),
        mechanism.AddPoint(follower, L"Tip", {}));
    mechanism.AddVariable(L"Lift", Quantity::Length, lift, guide);
    mechanism.AddPoint(follower, L"Stem end", {0.0, StemLength, 0.0});
    mechanism.AddMotor(L"Motor",
                       mechanism.AddVariable(L"Cam angle", Quantity::Angle, angle, bearing), Torque,
                       Turn);
    return mechanism.World();
}

/// How far the follower's tip is from the place on the profile where it was put, in m.
double GapOf(const KARMPWorld& world, const KARMPCurve& profile)
{
    const KARMathTransformation cam = PositionOf(*FindByName<KARMPBody>(world, L"Cam"));
    const KARMathTransformation follower = PositionOf(*FindByName<KARMPBody>(world, L"Follower"));
    return (cam * PieceOf(profile, 0).EvalPoint(Share) - follower * KARMathPoint()).Norm();
}

/// The greatest step between a piece and the next, in m, and the greatest turn of the direction.
std::array<double, 2> StepsOf(const KARMPCurve& profile)
{
    std::array<double, 2> greatest{};
    const int count = profile.GetCurveCount();
    for (int index = 0; index < count; ++index) {
        const KARCurve& piece = PieceOf(profile, index);
        const KARCurve& next = PieceOf(profile, (index + 1) % count);
        double low = 0.0;
        double high = 0.0;
        double ignored = 0.0;
        piece.GetLimits(ignored, high);
        next.GetLimits(low, ignored);
        KARMathVector before = piece.EvalTangent(high);
        KARMathVector after = next.EvalTangent(low);
        before.Normalize();
        after.Normalize();
        greatest[0] = std::max(greatest[0], (next.EvalPoint(low) - piece.EvalPoint(high)).Norm());
        greatest[1] = std::max(greatest[1], before.Cross(after).Norm());
    }
    return greatest;
}

} // namespace

int main()
{
    if (!IsQuiet(karmp::documents::SaveFile(Build(), "curve-cam.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("curve-cam.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    const QOBSharedHandle<KARMPCurve> profile(
        FindByName<KARMPGeometry>(*loaded.world, L"Cam.Profile"));
    const double gap = GapOf(*loaded.world, *profile);
    const auto [step, bend] = StepsOf(*profile);
    std::cout << "After loading curve-cam.xml the tip is " << gap << " m from the profile, whose "
              << profile->GetCurveCount() << " pieces meet within " << step << " m and " << bend
              << " rad\n";
    return profile->GetCurveCount() == 4 && gap < 1e-11 && step < 2e-6 && bend < 1e-3 ? 0 : 1;
}
