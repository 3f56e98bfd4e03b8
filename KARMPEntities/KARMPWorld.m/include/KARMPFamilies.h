// The families of entities that a world keeps a registry of.
#pragma once

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

} // namespace karmp
