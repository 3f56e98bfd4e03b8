#pragma once

#include "RoundTrip.h"

#include <cmath>

/// A slider-crank: three revolute joints, a guide along the slider's motion, and a variable for the
/// angle of the crank. It moves in the plane z = 0, and the guide lies along x.
struct SliderCrank
{
    static constexpr double CrankLength = 0.1; // m
    static constexpr double RodLength = 0.3;   // m

    karmp::model::Ref<KARMPBody> crank, rod, slider;
    karmp::model::Ref<KARMPJoint> bearing, crankPin, guide;
    karmp::model::Ref<KARMPVariable> angle;
};

/// Adds a slider-crank with the crank at an angle in rad.
inline SliderCrank AddSliderCrank(karmp::model::Model& model, double angle)
{
    using namespace karmp::model;
    constexpr double Crank = SliderCrank::CrankLength;
    constexpr double Rod = SliderCrank::RodLength;
    constexpr KARMathVector X(1.0, 0.0, 0.0);
    const KARMathPoint bearing;
    const KARMathPoint pin(Crank * std::cos(angle), Crank * std::sin(angle), 0.0);
    const KARMathPoint end(pin.GetX() + std::sqrt(Rod * Rod - pin.GetY() * pin.GetY()), 0.0, 0.0);

    SliderCrank parts;
    const auto crank = Box(0.5, {0.14, 0.03, 0.015}, {Crank / 2.0, 0.0, 0.0});
    const auto rod = Box(0.8, {0.34, 0.024, 0.012}, {Rod / 2.0, 0.0, 0.0});
    parts.crank = model.Body("Crank", crank.PlacedAt(bearing, pin));
    parts.rod = model.Body("Rod", rod.PlacedAt(pin, end));
    parts.slider = model.Body("Slider", Box(1.2, {0.08, 0.05, 0.04}).PlacedAt(end));
    // The angle is that between the axes of ground and crank, the stroke that from origin to end.
    parts.bearing = model.Joint<KARMPRevolute>("Main bearing", model.Ground(), parts.crank, {},
                                               PositionOf(parts.crank) * KARMathAxis());
    parts.crankPin = model.Joint<KARMPRevolute>("Crank pin", parts.crank, parts.rod, pin);
    model.Joint<KARMPRevolute>("Slider pin", parts.rod, parts.slider, end);
    parts.guide = model.Joint<KARMPPrismatic>("Guide", model.Ground(), parts.slider,
                                              *FrameAlong(bearing, X), *FrameAlong(end, X));
    parts.angle = model.Variable("Crank angle", parts.bearing, angle);
    return parts;
}
