// Worlds with entities that hold all that a class can hold.
#pragma once

#include "FilledEntities.h"
#include "KARMPWorldFamilies.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// A world with an entity of a class that is filled, and with those that it is linked to.
class FilledWorld
{
public:
    using Entity = QOBSharedHandle<KARMPEntity>;

    explicit FilledWorld(const std::string& className, Filling filling = Filling::Full)
        : entity(m_filled.Make(className, filling))
    {
        entity->GetWorld(world);
        File(entity);
        for (const KARMPEntityTable::Entry* const entry : m_filled.Table().InOrder())
            File(entry->Entity());
    }
    ~FilledWorld()
    {
        // Entities that hold one another are taken apart.
        for (const KARMPEntityTable::Entry* const entry : m_filled.Table().InOrder())
            if (const Entity linked = entry->Entity())
                linked->orphanObject();
        entity->orphanObject();
    }
    FilledWorld(const FilledWorld&) = delete;
    FilledWorld& operator=(const FilledWorld&) = delete;

    /// An entity of a class other than those; null when there is none.
    Entity Other(std::string_view className, const std::vector<Entity>& those) const
    {
        for (const KARMPEntityTable::Entry* const entry : m_filled.Table().InOrder()) {
            const Entity& candidate = entry->Entity();
            if (IsA(*candidate, className) &&
                std::find(those.begin(), those.end(), candidate) == those.end())
                return candidate;
        }
        return {};
    }

private:
    static bool IsA(const KARMPEntity& entity, std::string_view className)
    {
        const QOBClassInfo* info = &entity.getClassInfo();
        while (info != nullptr && info->getName() != className)
            info = info->getParent();
        return info != nullptr;
    }
    // Stand-ins for abstract classes have no element.
    void File(const Entity& filed)
    {
        static const std::vector<std::string> made = MadeClasses();
        if (std::find(made.begin(), made.end(), filed->getClassInfo().getName()) == made.end())
            return;
        Families::AnyOf([&](auto family) {
            using T = typename decltype(family)::Type;
            // A layer's record does not tell that it is an interaction.
            return dynamic_cast<const T*>(filed.get()) != nullptr &&
                   world->Add<T>(QOBSharedHandle<T>(filed)) == KARSuccess;
        });
    }

    FilledEntities m_filled;

public:
    Entity entity;
    QOBSharedHandle<KARMPWorld> world;
};

} // namespace karmp::documents
