#include "KARMPWorld.h"
#include "KARMPWorldFamilies.h"

namespace {

using KeyFamilies = karmp::FamilyList<KARMPBody, KARMPJoint, KARMPConstraint, KARMPGeometry,
                                      KARMPVariable, KARMPActuator, KARMPSensor, KARMPMaterial,
                                      KARMPConnector, KARMPShape, KARMPValue, KARMPAttribute,
                                      KARMPSupport, KARMPDebugEntity, KARMPInitialCondition,
                                      KARMPAnalysisCase, KARMPAnalysisStep, KARMPGenericEntity>;

static_assert(karmp::HoldSameFamilies(karmp::Families(), KeyFamilies::And<KARMPInteraction>()),
              "the keys of all entities but interactions are found by class; those of interactions "
              "by their own type only");

} // namespace

KARStatus KARMPWorld::GetKeys(const QOBSharedHandle<QOBBasicEntity>& entity,
                              KARBaseUnknown_var& key1, KARBaseUnknown_var& key2) const
{
    KARStatus status = KARFailure;
    KeyFamilies::AnyOf([&](auto family) {
        using T = typename decltype(family)::Type;
        if (!entity.isDerivedFrom(T::ClassInfo()))
            return false;
        status = GetKeys(QOBSharedHandle<T>(entity), key1, key2);
        return true;
    });
    return status;
}
