// The frame of a world's document: what writer and reader agree on around the entities.
#pragma once

#include "KARMPElementWriter.h"
#include "KARMPWorldFamilies.h"

#include <string_view>
#include <tuple>

namespace karmp {

inline constexpr std::wstring_view WorldElement = L"World";
inline constexpr std::wstring_view LinearTolerance = L"linear_tolerance";
inline constexpr std::wstring_view AngularTolerance = L"angular_tolerance";
inline constexpr std::wstring_view Origin = L"Origin";
inline constexpr std::wstring_view Size = L"Size";
inline constexpr Names<3> SizeNames{L"SizeX", L"SizeY", L"SizeZ"};
inline constexpr std::wstring_view Gravity = L"Gravity";
inline constexpr Names<3> GravityNames{L"Gx", L"Gy", L"Gz"};
inline constexpr std::wstring_view Globals = L"Globals";
inline constexpr std::wstring_view GlobalBody = L"GlobalBody";
inline constexpr std::wstring_view GlobalAxisSystem = L"GlobalAxisSystem";
inline constexpr std::wstring_view GlobalTime = L"GlobalTime";

/// The element that holds the entities of a family.
template <class T>
struct RegistryElement
{
    using Type = T;
    std::wstring_view name;
};

/// All families in the order of the document, which is not the one of their registries.
inline constexpr std::tuple RegistryElements{
    RegistryElement<KARMPBody>{L"Bodies"},
    RegistryElement<KARMPShape>{L"Shapes"},
    RegistryElement<KARMPJoint>{L"Joints"},
    RegistryElement<KARMPConstraint>{L"Constraints"},
    RegistryElement<KARMPGeometry>{L"Geometries"},
    RegistryElement<KARMPVariable>{L"Variables"},
    RegistryElement<KARMPValue>{L"Values"},
    RegistryElement<KARMPActuator>{L"Actuators"},
    RegistryElement<KARMPSensor>{L"Sensors"},
    RegistryElement<KARMPMaterial>{L"Materials"},
    RegistryElement<KARMPConnector>{L"Connectors"},
    RegistryElement<KARMPInteraction>{L"Interactions"},
    RegistryElement<KARMPAttribute>{L"Attributes"},
    RegistryElement<KARMPSupport>{L"Supports"},
    RegistryElement<KARMPDebugEntity>{L"DebugEntities"},
    RegistryElement<KARMPInitialCondition>{L"InitialConditions"},
    RegistryElement<KARMPAnalysisCase>{L"AnalysisCases"},
    RegistryElement<KARMPAnalysisStep>{L"AnalysisSteps"},
    RegistryElement<KARMPGenericEntity>{L"GenericEntities"},
};

/// Calls `visit` with each of them, in order.
template <class Visit>
void ForEachRegistryElement(Visit visit)
{
    std::apply([&visit](const auto&... element) { (visit(element), ...); }, RegistryElements);
}

} // namespace karmp
