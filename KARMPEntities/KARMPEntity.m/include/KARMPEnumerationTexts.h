// The words of the element tree for the enumerations' values: one table each, one rule for all.
#pragma once

#include "KARMPEnumerations.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace karmp {

using namespace std::string_view_literals;

/// The table of an enumeration: row n is the word of value n, row 0 also the answer of a search
/// that fails.
template <class Enum>
struct EnumTexts;

template <>
struct EnumTexts<KARMPAlignment::Enum>
{
    static constexpr std::array Rows{L"NotSpecified"sv, L"Specified"sv, L"Align"sv, L"AntiAlign"sv};
};

template <>
struct EnumTexts<KARMPBodyOrientation::Enum>
{
    static constexpr std::array Rows{L"Out"sv, L"In"sv};
};

template <>
struct EnumTexts<KARMPCircleTorusOrientation::Enum>
{
    static constexpr std::array Rows{L"NotSpecified"sv, L"Parallel"sv, L"Perpendicular"sv};
};

template <>
struct EnumTexts<KARMPCollisionRuleType::Enum>
{
    static constexpr std::array Rows{L"DefaultCollision"sv, L"CollisionReaction"sv,
                                     L"CollisionNoReaction"sv, L"NoCollisionNoReaction"sv};
};

template <>
struct EnumTexts<KARMPCurveOrientation::Enum>
{
    static constexpr std::array Rows{L"Positive"sv, L"Negative"sv};
};

template <>
struct EnumTexts<KARMPHalfSpace::Enum>
{
    static constexpr std::array Rows{L"NotSpecified"sv, L"Positive"sv, L"Negative"sv};
};

template <>
struct EnumTexts<KARMPSurfaceOrientation::Enum>
{
    static constexpr std::array Rows{L"NotSpecified"sv, L"Positive"sv, L"Negative"sv};
};

template <>
struct EnumTexts<KARMPHingeMode::Enum>
{
    static constexpr std::array Rows{L"NotSpecified"sv, L"Parallel"sv, L"Coincident"sv};
};

template <>
struct EnumTexts<KARMPMotorTargetType::Enum>
{
    static constexpr std::array Rows{L"NotSpecified"sv, L"PositionTarget"sv, L"VelocityTarget"sv,
                                     L"AccelerationTarget"sv};
};

template <>
struct EnumTexts<KARMPSelectedAxis::Enum>
{
    static constexpr std::array Rows{L"X"sv, L"Y"sv, L"Z"sv, L"XNeg"sv, L"YNeg"sv, L"ZNeg"sv};
};

template <>
struct EnumTexts<KARMPSelectedPlane::Enum>
{
    static constexpr std::array Rows{L"XY"sv, L"YZ"sv, L"ZX"sv};
};

template <>
struct EnumTexts<KARMPSpringBehavior::Enum>
{
    static constexpr std::array Rows{L"Bidirectional"sv, L"ExtensionFree"sv, L"CompressionFree"sv,
                                     L"ExtensionLock"sv, L"CompressionLock"sv};
};

template <>
struct EnumTexts<KARMPVariableType::Enum>
{
    static constexpr std::array Rows{L"Free"sv, L"Constant"sv, L"Controlled"sv};
};

template <>
struct EnumTexts<KARMPPhysicalQuantity::Enum>
{
    static constexpr std::array Rows{L"NoPhysicalQuantity"sv,
                                     L"Length"sv,
                                     L"Mass"sv,
                                     L"Time"sv,
                                     L"ElectricCharge"sv,
                                     L"LuminousIntensity"sv,
                                     L"Temperature"sv,
                                     L"Angle"sv,
                                     L"Area"sv,
                                     L"Volume"sv,
                                     L"Velocity"sv,
                                     L"AngularVelocity"sv,
                                     L"Acceleration"sv,
                                     L"AngularAcceleration"sv,
                                     L"Force"sv,
                                     L"Energy"sv,
                                     L"Torque"sv,
                                     L"Power"sv,
                                     L"Density"sv,
                                     L"Pressure"sv,
                                     L"Momentum"sv,
                                     L"Inertia"sv,
                                     L"LuminousFlux"sv,
                                     L"Illumination"sv,
                                     L"Entropy"sv,
                                     L"VolumeRateOfFlow"sv,
                                     L"KinematicViscosity"sv,
                                     L"DynamicViscosity"sv,
                                     L"SpecificWeight"sv,
                                     L"LinearStiffness"sv,
                                     L"AngularStiffness"sv,
                                     L"LinearDamping"sv,
                                     L"AngularDamping"sv};
};

} // namespace karmp

/// The word of a value; that of row 0 for a value outside the table.
template <class Enum>
constexpr std::wstring_view KARMPEnumText(Enum value)
{
    constexpr auto& rows = karmp::EnumTexts<Enum>::Rows;
    const auto number = static_cast<std::int32_t>(value);
    const bool known = number > 0 && static_cast<std::size_t>(number) < rows.size();
    return rows[known ? static_cast<std::size_t>(number) : 0];
}

/// The value of a word, compared exactly; value 0 for a word outside the table.
template <class Enum>
constexpr Enum KARMPEnumValue(std::wstring_view text)
{
    constexpr auto& rows = karmp::EnumTexts<Enum>::Rows;
    const auto found = std::find(rows.begin() + 1, rows.end(), text);
    return static_cast<Enum>(found != rows.end() ? found - rows.begin() : 0);
}
