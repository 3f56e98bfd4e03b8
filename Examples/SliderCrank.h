#pragma once

#include "MechanismBuilder.h"

/// A slider-crank: three revolute joints, a guide along the slider's motion, and a variable for the
/// angle of the crank. It moves in the plane z = 0, and the guide lies along x.
struct SliderCrank
{
    static constexpr double CrankLength = 0.1; // m
    static constexpr double RodLength = 0.3;   // m

    QOBSharedHandle<KARMPBody> crank;
    QOBSharedHandle<KARMPBody> rod;
    QOBSharedHandle<KARMPBody> slider;
    QOBSharedHandle<KARMPJoint> bearing;
    QOBSharedHandle<KARMPJoint> crankPin;
    QOBSharedHandle<KARMPJoint> sliderPin;
    QOBSharedHandle<KARMPJoint> guide;
    QOBSharedHandle<KARMPVariable> angle;
};

/// Adds a slider-crank with the crank at an angle in rad.
inline SliderCrank AddSliderCrank(MechanismBuilder& mechanism, double angle)
{
    constexpr double CrankLength = SliderCrank::CrankLength;
    constexpr double RodLength = SliderCrank::RodLength;
    const KARMathPoint pin(CrankLength * std::cos(angle), CrankLength * std::sin(angle), 0.0);
    const double rodAngle = -std::asin(pin.GetY() / RodLength);
    const KARMathPoint slide(pin.GetX() + RodLength * std::cos(rodAngle), 0.0, 0.0);

    SliderCrank parts;
    const auto& ground = mechanism.Ground();
    parts.crank = mechanism.AddBody(L"Crank", {}, angle);
    parts.rod = mechanism.AddBody(L"Rod", pin, rodAngle);
    parts.slider = mechanism.AddBody(L"Slider", slide, 0.0);
    SetMass(*parts.crank, Box(0.5, {CrankLength / 2.0, 0.0, 0.0}, {0.14, 0.03, 0.015}));
    SetMass(*parts.rod, Box(0.8, {RodLength / 2.0, 0.0, 0.0}, {0.34, 0.024, 0.012}));
    SetMass(*parts.slider, Box(1.2, {}, {0.08, 0.05, 0.04}));

    parts.bearing = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Main bearing", mechanism.AddAxisSystem(ground, L"Bearing", AxisAlongZ({})),
        mechanism.AddAxisSystem(parts.crank, L"Bearing", AxisAlongZ({})));
    parts.crankPin = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Crank pin",
        mechanism.AddAxisSystem(parts.crank, L"Pin", AxisAlongZ({CrankLength, 0.0, 0.0})),
        mechanism.AddAxisSystem(parts.rod, L"Pin", AxisAlongZ({})));
    parts.sliderPin = mechanism.AddJoint<KARMPRevolute, KARMPRevoluteConstraint>(
        L"Slider pin",
        mechanism.AddAxisSystem(parts.rod, L"End", AxisAlongZ({RodLength, 0.0, 0.0})),
        mechanism.AddAxisSystem(parts.slider, L"Pin", AxisAlongZ({})));
    parts.guide = mechanism.AddJoint<KARMPPrismatic, KARMPPrismaticConstraint>(
        L"Guide", mechanism.AddAxisSystem(ground, L"Guide", AxisAlongX({})),
        mechanism.AddAxisSystem(parts.slider, L"Guide", AxisAlongX({})));
    parts.angle =
        mechanism.AddVariable(L"Crank angle", KARMPPhysicalQuantity::Angle, angle, parts.bearing);
    return parts;
}
