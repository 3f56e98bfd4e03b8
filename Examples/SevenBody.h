// The figures of the seven-body mechanism, a published benchmark of multibody dynamics: planar,
// with one degree of freedom, a spring and a constant torque that drives it; and what its two
// programs share.
//
// Schiehlen, Multibody Systems Handbook, 1990; Hairer and Wanner, Solving Ordinary Differential
// Equations II, section VII.7. Units: m, kg, s, N, rad.
#pragma once

#include "RoundTrip.h"

namespace seven_body {

inline constexpr KARMathPoint2D A{-0.06934, -0.00227};
inline constexpr KARMathPoint2D B{-0.03635, 0.03273};
inline constexpr KARMathPoint2D C{0.014, 0.072};
inline constexpr KARMathPoint2D D{0.02, -0.018}; // on K3

inline constexpr double SpringStiffness = 4530.0; // between C and D
inline constexpr double SpringLength = 0.07785;   // at rest
inline constexpr double DriveTorque = 0.033;      // on K1, about the origin

inline constexpr double Beta = -0.0617138900142764496358948458001;
inline constexpr double Gamma = 0.455279819163070380255912382449;
inline constexpr double Phi = 0.222668390165885884674473185609;
inline constexpr double Delta = 0.487364979543842550225598953530;
inline constexpr double Epsilon = 1.23054744454982119249735015568;

/// A body: the point of another one where its frame stands, its angle, its masses.
struct BodyData
{
    const char* name;
    const char* on;        // the body that carries the frame's origin
    KARMathPoint2D origin; // in that body's frame
    double angle;
    KARMathPoint2D center;
    double mass;
    double inertia; // about the centre of mass, along z
};

inline constexpr BodyData Bodies[] = {
    {"K1", "GlobalBody", {0.0, 0.0}, Beta, {0.00092, 0.0}, 0.04325, 2.194e-6},
    {"K2", "K1", {0.007, 0.0}, Beta, {-0.0115, 0.0}, 0.00365, 4.410e-7},
    {"K3", "GlobalBody", B, Gamma, {0.01043, -0.01874}, 0.02373, 5.255e-6},
    {"K4", "K3", {0.0, -0.035}, Delta + Phi, {0.0, 0.01421}, 0.00706, 5.667e-7},
    {"K5", "GlobalBody", A, Delta, {0.02308, 0.00916}, 0.07050, 1.169e-5},
    {"K6", "K3", {0.0, -0.035}, Epsilon - Phi, {-0.01421, 0.0}, 0.00706, 5.667e-7},
    {"K7", "GlobalBody", A, Epsilon, {-0.00449, -0.01228}, 0.05498, 1.912e-5}};

/// A revolute joint about z between a point of one body and a point of another.
struct JointData
{
    const char* name;
    const char* first;
    KARMathPoint2D onFirst;
    const char* second;
    KARMathPoint2D onSecond;
};

inline constexpr JointData Joints[] = {{"O", "GlobalBody", {0.0, 0.0}, "K1", {0.0, 0.0}},
                                       {"F", "K1", {0.007, 0.0}, "K2", {0.0, 0.0}},
                                       {"E2", "K3", {0.0, -0.035}, "K2", {-0.028, 0.0}},
                                       {"E4", "K3", {0.0, -0.035}, "K4", {0.0, 0.0}},
                                       {"E6", "K3", {0.0, -0.035}, "K6", {0.0, 0.0}},
                                       {"B", "GlobalBody", B, "K3", {0.0, 0.0}},
                                       {"A5", "GlobalBody", A, "K5", {0.0, 0.0}},
                                       {"A7", "GlobalBody", A, "K7", {0.0, 0.0}},
                                       {"G", "K5", {0.04, 0.0}, "K4", {0.0, 0.02}},
                                       {"H", "K7", {0.0, -0.04}, "K6", {-0.02, 0.0}}};

/// Saves a mechanism, once as usual and once exactly, loads it again, and tells how well its loops
/// close and how its spring pushes; gives the exit code.
inline int CheckLoops(const karmp::model::Model& model, const std::string& stem,
                      double (*pushIn)(const karmp::model::Model&))
{
    const auto roundTrip = [&](const std::string& file, double greatestGap, const auto& options) {
        const auto check = [&](const karmp::model::Model& again) {
            const double gap = LoopGap(again);
            std::cout << "After loading " << file << " loops close to " << gap
                      << " m and the spring pushes with " << pushIn(again) << " N\n";
            return again.All<KARMPJoint>().size() == std::size(Joints) && gap <= greatestGap;
        };
        return RoundTrip(model, file, check, options);
    };
    const int usual = roundTrip(stem + ".xml", 1e-11, karmp::documents::SaveOptions());
    return usual != 0 ? usual : roundTrip(stem + "-exact.xml", 1e-15, karmp::model::Exactly());
}

} // namespace seven_body
