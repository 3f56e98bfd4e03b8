#include "KARMPFamilyOperations.h"

#include "KARMPActuator.h"
#include "KARMPAnalysisCase.h"
#include "KARMPAnalysisStep.h"
#include "KARMPAttribute.h"
#include "KARMPBody.h"
#include "KARMPConnector.h"
#include "KARMPConstraint.h"
#include "KARMPDebugEntity.h"
#include "KARMPGenericEntity.h"
#include "KARMPGeometry.h"
#include "KARMPInitialCondition.h"
#include "KARMPInteraction.h"
#include "KARMPJoint.h"
#include "KARMPMaterial.h"
#include "KARMPSensor.h"
#include "KARMPShape.h"
#include "KARMPSupport.h"
#include "KARMPValue.h"
#include "KARMPVariable.h"

#include <array>
#include <unordered_map>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

template <class T>
constexpr FamilyOperations OperationsOf()
{
    return {[](KARMPWorld& world, const Entity& entity) {
                return world.Add<T>(QOBSharedHandle<T>::unchecked(entity));
            },
            [](KARMPWorld& world, const Entity& entity) {
                return world.Remove<T>(QOBSharedHandle<T>::unchecked(entity));
            },
            [](const KARMPWorld& world) { return static_cast<std::size_t>(world.Count<T>()); },
            [](const KARMPWorld& world, std::size_t index) {
                QOBSharedHandle<T> entity;
                world.Get<T>(static_cast<int>(index), entity);
                return Entity::unchecked(entity);
            },
            [](const KARMPEntity& entity) { return dynamic_cast<const T*>(&entity) != nullptr; }};
}

template <class... T>
constexpr std::array<FamilyOperations, sizeof...(T)> OperationsOf(FamilyList<T...>)
{
    return {OperationsOf<T>()...};
}

constexpr auto Operations = OperationsOf(Families());

} // namespace

std::span<const FamilyOperations> AllFamilies()
{
    return Operations;
}

// Found once a class: the record of a class does not tell each family.
const FamilyOperations* FamilyOf(const KARMPEntity& entity)
{
    thread_local std::unordered_map<const QOBClassInfo*, const FamilyOperations*> found;
    const auto [entry, isNew] = found.try_emplace(&entity.getClassInfo(), nullptr);
    if (isNew)
        for (const FamilyOperations& family : Operations)
            if (entry->second == nullptr && family.holds(entity))
                entry->second = &family;
    return entry->second;
}

} // namespace karmp::model
