#pragma once

#include "SliderCrank.h"

#include <complex>

/// A vector in the plane of the mechanism, x + i y.
using Plane = std::complex<double>;

/// The turning sense of a force at an arm: its moment across the plane.
inline double Moment(Plane arm, Plane force)
{
    return std::imag(std::conj(arm) * force);
}

/// How a body moves in the plane: its frame, and the rates of frame and angle.
struct PlaneMotion
{
    Plane origin, velocity, acceleration;
    double angle = 0.0, rate = 0.0, angularAcceleration = 0.0;

    /// From the origin to a point on the body's first axis.
    Plane Arm(double x) const { return x * std::polar(1.0, angle); }
    Plane AccelerationAt(Plane arm) const
    {
        return acceleration + Plane(-rate * rate, angularAcceleration) * arm;
    }
    /// The motion of a body that is pinned to this one.
    PlaneMotion PinnedAt(double x, double itsAngle, double itsRate, double itsAcceleration) const
    {
        const Plane arm = Arm(x);
        return {origin + arm,
                velocity + Plane(0.0, rate) * arm,
                AccelerationAt(arm),
                itsAngle,
                itsRate,
                itsAcceleration};
    }
    /// Moves a body so.
    void Apply(KARMPBody& body) const
    {
        const KARMathTransformation at(KARMathVector(origin.real(), origin.imag(), 0.0));
        body.SetPosition(at * KARMathTransformation::Rotation({{}, {0.0, 0.0, 1.0}}, angle), 0);
        body.SetVelocity({velocity.real(), velocity.imag(), 0.0}, {0.0, 0.0, rate});
    }
};

struct CrankState
{
    PlaneMotion crank, rod, slider;
};

/// The motion of the mechanism while the crank turns at an even velocity.
inline CrankState MotionAt(double angle, double velocity)
{
    constexpr double Crank = SliderCrank::CrankLength;
    constexpr double Rod = SliderCrank::RodLength;
    // The rod's end stays at y = 0: Crank sin(angle) + Rod sin(rodAngle) = 0, and twice its rate.
    const double rodAngle = -std::asin(Crank * std::sin(angle) / Rod);
    const double reach = Rod * std::cos(rodAngle);
    const double rodRate = -Crank * std::cos(angle) * velocity / reach;
    const double rodAcceleration =
        Crank * std::sin(angle) * (velocity * velocity - rodRate * rodRate) / reach;
    CrankState state;
    state.crank = {{}, {}, {}, angle, velocity, 0.0};
    state.rod = state.crank.PinnedAt(Crank, rodAngle, rodRate, rodAcceleration);
    state.slider = state.rod.PinnedAt(Rod, 0.0, 0.0, 0.0);
    return state;
}
