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

#include <unordered_map>

// The model has placed what it adds under the basic world, so that the registries do the same for
// all families.
struct karmp::RegistryAccess
{
    template <class T>
    static RegistryCore& Of(KARMPWorld& world)
    {
        return world.Registry<T>().Core();
    }
    static const std::uint32_t& ChangesOf(const KARMPWorld& world) { return world.m_changes; }
};

namespace karmp::model {

std::vector<RegistryCore*> RegistriesOf(KARMPWorld& world)
{
    std::vector<RegistryCore*> registries;
    Families::ForEach([&](auto family) {
        using Family = typename decltype(family)::Type;
        registries.push_back(&RegistryAccess::Of<Family>(world));
    });
    return registries;
}

const std::uint32_t& ChangesOf(const KARMPWorld& world)
{
    return RegistryAccess::ChangesOf(world);
}

// Found once a class: the record of a class does not tell each family.
std::size_t FamilyOf(const KARMPEntity& entity)
{
    thread_local std::unordered_map<const QOBClassInfo*, std::size_t> found;
    const auto added = found.try_emplace(&entity.getClassInfo(), NoFamily);
    std::size_t& known = added.first->second;
    if (added.second) {
        std::size_t index = 0;
        Families::ForEach([&](auto family) {
            using Family = typename decltype(family)::Type;
            if (known == NoFamily && dynamic_cast<const Family*>(&entity) != nullptr)
                known = index;
            ++index;
        });
    }
    return known;
}

} // namespace karmp::model
