#pragma once

#include "SliderCrank.h"

/// A vector across the plane of the mechanism.
constexpr KARMathVector Across(double length)
{
    return {0.0, 0.0, length};
}

/// How a body moves in the plane: its frame, and the rates of frame and angle.
struct PlaneMotion
{
    KARMathPoint origin;
    double angle = 0.0;
    KARMathVector velocity;
    KARMathVector acceleration;
    double rate = 0.0;
    double angularAcceleration = 0.0;

    /// From the origin to a point on the body's first axis.
    KARMathVector Arm(double x) const { return {x * std::cos(angle), x * std::sin(angle), 0.0}; }
    /// The body's frame, whose third axis stays across the plane.
    KARMathAxis Frame() const
    {
        const KARMathVector first = Arm(1.0);
        const KARMathVector third = Across(1.0);
        return {origin, first, third.Cross(first), third};
    }
    KARMathVector AccelerationAt(const KARMathVector& arm) const
    {
        const KARMathVector turn = Across(rate).Cross(arm);
        return acceleration + Across(angularAcceleration).Cross(arm) + Across(rate).Cross(turn);
    }
    /// The motion of a body that is pinned to this one.
    PlaneMotion PinnedAt(double x, double itsAngle, double itsRate, double itsAcceleration) const
    {
        const KARMathVector arm = Arm(x);
        return {origin + arm,        itsAngle, velocity + Across(rate).Cross(arm),
                AccelerationAt(arm), itsRate,  itsAcceleration};
    }
};

struct CrankState
{
    PlaneMotion crank;
    PlaneMotion rod;
    PlaneMotion slider;
    KARMathVector pinForce; // on the rod
    double torque = 0.0;    // of the motor, on the crank
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
    const double rodAcceleration = (Crank * std::sin(angle) * velocity * velocity +
                                    Rod * std::sin(rodAngle) * rodRate * rodRate) /
                                   reach;
    CrankState state;
    state.crank.angle = angle;
    state.crank.rate = velocity;
    state.rod = state.crank.PinnedAt(Crank, rodAngle, rodRate, rodAcceleration);
    state.slider = state.rod.PinnedAt(Rod, 0.0, 0.0, 0.0);
    return state;
}

/// What moves a body: the force that its neighbours must give it, and its angular momentum's rate.
struct Need
{
    KARMathVector arm; // from the body's origin to its centre
    KARMathVector force;
    double torque = 0.0; // about the centre
};

inline Need NeedOf(const KARMPBody& body, const PlaneMotion& motion, double gravity)
{
    double mass = 0.0;
    KARMathPoint center;
    KARMath3x3Matrix inertia;
    body.GetMass(mass);
    body.GetCenterOfGravity(center);
    body.GetInertiaMatrix(inertia);
    const KARMathVector arm = motion.Arm(center.GetX());
    return {arm, mass * (motion.AccelerationAt(arm) + KARMathVector(0.0, gravity, 0.0)),
            inertia(2, 2) * motion.angularAcceleration};
}

/// Adds the forces under a gravity along -y, from the slider, which the guide leaves free along x,
/// back to the motor.
inline void AddForces(const SliderCrank& parts, double gravity, CrankState& state)
{
    const Need slider = NeedOf(*parts.slider, state.slider, gravity);
    const Need rod = NeedOf(*parts.rod, state.rod, gravity);
    const Need crank = NeedOf(*parts.crank, state.crank, gravity);

    // On the rod, about its centre: pin x (need + push) - end x push = torque, with the push of the
    // rod on the slider.
    const KARMathVector pin = -rod.arm;
    const KARMathVector end = state.slider.origin - state.rod.origin - rod.arm;
    const KARMathVector apart = pin - end;
    const double alongX = slider.force.GetX();
    const double alongY =
        (rod.torque - pin.Cross(rod.force).GetZ() + apart.GetY() * alongX) / apart.GetX();
    state.pinForce = rod.force + KARMathVector(alongX, alongY, 0.0);

    const KARMathVector arm = state.rod.origin - state.crank.origin;
    state.torque = crank.torque + (crank.arm.Cross(crank.force) + arm.Cross(state.pinForce)).GetZ();
}
