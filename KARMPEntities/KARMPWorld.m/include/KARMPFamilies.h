// The families of entities that a world keeps a registry of.
#pragma once

#include "KARMPExport.h"

#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

class KARMPActuator;
class KARMPAnalysisCase;
class KARMPAnalysisStep;
class KARMPAttribute;
class KARMPBody;
class KARMPConnector;
class KARMPConstraint;
class KARMPDebugEntity;
class KARMPGenericEntity;
class KARMPGeometry;
class KARMPInitialCondition;
class KARMPInteraction;
class KARMPJoint;
class KARMPMaterial;
class KARMPSensor;
class KARMPShape;
class KARMPSupport;
class KARMPValue;
class KARMPVariable;
class QOBClassInfo;

namespace karmp {

/// Stands for one class in a walk over several.
template <class T>
struct Family
{
    using Type = T;
};

/// Some families in an order.
template <class... T>
struct FamilyList
{
    /// These families followed by others.
    template <class... More>
    using And = FamilyList<T..., More...>;

    /// Calls `visit` with the Family of each class, in order.
    template <class Visit>
    static void ForEach(Visit visit)
    {
        (visit(Family<T>()), ...);
    }
    /// The same, up to the first call that gives true; tells whether one did.
    template <class Visit>
    static bool AnyOf(Visit visit)
    {
        return (visit(Family<T>()) || ...);
    }
};

/// All families in the order in which a world holds their registries.
using Families =
    FamilyList<KARMPActuator, KARMPBody, KARMPConnector, KARMPConstraint, KARMPGeometry,
               KARMPInteraction, KARMPJoint, KARMPMaterial, KARMPSensor, KARMPValue, KARMPVariable,
               KARMPShape, KARMPAttribute, KARMPSupport, KARMPDebugEntity, KARMPInitialCondition,
               KARMPAnalysisCase, KARMPAnalysisStep, KARMPGenericEntity>;

/// The element that holds the entities of a family in a document.
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

/// Name of the element that holds the family T.
template <class T>
constexpr std::wstring_view RegistryElementName()
{
    return std::get<RegistryElement<T>>(RegistryElements).name;
}

/// True when two lists hold the same families, each once, in whatever order.
template <class... T, class... U>
constexpr bool HoldSameFamilies(FamilyList<T...>, FamilyList<U...>)
{
    const auto timesIn = []<class F, class... G>(Family<F>, FamilyList<G...>) {
        return (0 + ... + (std::is_same_v<F, G> ? 1 : 0));
    };
    return sizeof...(T) == sizeof...(U) &&
           ((timesIn(Family<T>(), FamilyList<U...>()) == 1) && ...) &&
           ((timesIn(Family<U>(), FamilyList<T...>()) == 1) && ...);
}

/// The families of a tuple of elements.
template <class... T>
constexpr FamilyList<T...> FamiliesOf(const std::tuple<RegistryElement<T>...>&)
{
    return {};
}

/// A family for code without types: its element and the record of its class.
struct FamilyRecord
{
    std::wstring_view element;
    const QOBClassInfo* info;
};

/// The records of all families in the order of the document.
KARMP_API const std::vector<FamilyRecord>& FamilyRecords();

static_assert(HoldSameFamilies(Families(), FamiliesOf(RegistryElements)),
              "each family that a world keeps has its element in a document");

} // namespace karmp
