#pragma once

#include "SliderCrank.h"

struct CrankState
{
    karmp::model::Motion crank, rod, slider;
};

/// The motion of the mechanism while the crank turns at an even velocity.
inline CrankState MotionAt(double angle, double velocity)
{
    constexpr double Crank = SliderCrank::CrankLength;
    constexpr double Rod = SliderCrank::RodLength;
    constexpr KARMathVector Z(0.0, 0.0, 1.0);
    // The rod's end stays at y = 0: Crank sin(angle) + Rod sin(rodAngle) = 0, and twice its rate.
    const double rodAngle = -std::asin(Crank * std::sin(angle) / Rod);
    const double reach = Rod * std::cos(rodAngle);
    const double rodRate = -Crank * std::cos(angle) * velocity / reach;
    const double rodAcceleration =
        Crank * std::sin(angle) * (velocity * velocity - rodRate * rodRate) / reach;
    CrankState state;
    state.crank = karmp::model::Motion().Turning(Z, angle, velocity);
    state.rod = state.crank.At({Crank, 0.0, 0.0}).Turning(Z, rodAngle, rodRate, rodAcceleration);
    state.slider = state.rod.At({Rod, 0.0, 0.0}).Turning(Z, 0.0);
    return state;
}
