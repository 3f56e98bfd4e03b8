// The figures of the seven-body mechanism, a published benchmark of multibody dynamics: planar,
// with one degree of freedom, a spring and a constant torque that drives it.
//
// Schiehlen, Multibody Systems Handbook, 1990; Hairer and Wanner, Solving Ordinary Differential
// Equations II, section VII.7. Units: m, kg, s, N, rad.
#pragma once

#include "KARMPEntities.h"

#include <array>

namespace seven_body {

/// A point in the plane of the mechanism.
struct PlanePoint
{
    double x;
    double y;

    operator KARMathPoint() const { return {x, y, 0.0}; }
    operator KARMathPoint2D() const { return {x, y}; }
};

inline constexpr PlanePoint O{0.0, 0.0};
inline constexpr PlanePoint A{-0.06934, -0.00227};
inline constexpr PlanePoint B{-0.03635, 0.03273};
inline constexpr PlanePoint C{0.014, 0.072};
inline constexpr PlanePoint D{0.02, -0.018}; // on K3

inline constexpr double SpringStiffness = 4530.0; // between C and D
inline constexpr double SpringLength = 0.07785;   // at rest
inline constexpr double DriveTorque = 0.033;      // on K1, about O

inline constexpr double Beta = -0.0617138900142764496358948458001;
inline constexpr double Theta = 0.0;
inline constexpr double Gamma = 0.455279819163070380255912382449;
inline constexpr double Phi = 0.222668390165885884674473185609;
inline constexpr double Delta = 0.487364979543842550225598953530;
inline constexpr double Omega = -0.222668390165885884674473185609;
inline constexpr double Epsilon = 1.23054744454982119249735015568;

/// A body: the point of another one where its frame stands, its angle, its masses.
struct BodyData
{
    const wchar_t* name;
    const wchar_t* on; // the body that carries the frame's origin
    PlanePoint origin; // in that body's frame
    double angle;
    PlanePoint center;
    double mass;
    double inertia; // about the centre of mass, along z
};

inline constexpr std::array Bodies{
    BodyData{L"K1", L"GlobalBody", O, Beta, {0.00092, 0.0}, 0.04325, 2.194e-6},
    BodyData{L"K2", L"K1", {0.007, 0.0}, Beta + Theta, {-0.0115, 0.0}, 0.00365, 4.410e-7},
    BodyData{L"K3", L"GlobalBody", B, Gamma, {0.01043, -0.01874}, 0.02373, 5.255e-6},
    BodyData{L"K4", L"K3", {0.0, -0.035}, Delta + Phi, {0.0, 0.01421}, 0.00706, 5.667e-7},
    BodyData{L"K5", L"GlobalBody", A, Delta, {0.02308, 0.00916}, 0.07050, 1.169e-5},
    BodyData{L"K6", L"K3", {0.0, -0.035}, Epsilon + Omega, {-0.01421, 0.0}, 0.00706, 5.667e-7},
    BodyData{L"K7", L"GlobalBody", A, Epsilon, {-0.00449, -0.01228}, 0.05498, 1.912e-5}};

/// A revolute joint about z between a point of one body and a point of another.
struct JointData
{
    const wchar_t* name;
    const wchar_t* first;
    PlanePoint onFirst;
    const wchar_t* second;
    PlanePoint onSecond;
};

inline constexpr std::array Joints{JointData{L"O", L"GlobalBody", O, L"K1", {0.0, 0.0}},
                                   JointData{L"F", L"K1", {0.007, 0.0}, L"K2", {0.0, 0.0}},
                                   JointData{L"E2", L"K3", {0.0, -0.035}, L"K2", {-0.028, 0.0}},
                                   JointData{L"E4", L"K3", {0.0, -0.035}, L"K4", {0.0, 0.0}},
                                   JointData{L"E6", L"K3", {0.0, -0.035}, L"K6", {0.0, 0.0}},
                                   JointData{L"B", L"GlobalBody", B, L"K3", {0.0, 0.0}},
                                   JointData{L"A5", L"GlobalBody", A, L"K5", {0.0, 0.0}},
                                   JointData{L"A7", L"GlobalBody", A, L"K7", {0.0, 0.0}},
                                   JointData{L"G", L"K5", {0.04, 0.0}, L"K4", {0.0, 0.02}},
                                   JointData{L"H", L"K7", {0.0, -0.04}, L"K6", {-0.02, 0.0}}};

} // namespace seven_body
