// Worlds with entities that hold all that a class can hold.
#pragma once

#include "FilledEntities.h"
#include "KARMPAxisSystem.h"
#include "KARMPItems.h"
#include "KARMPWorldFamilies.h"
#include "KARTextConversion.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace karmp::documents {

/// A world with entities that are filled, and with those that they are linked to.
class FilledWorld
{
public:
    using Entity = QOBSharedHandle<KARMPEntity>;

    explicit FilledWorld(const std::string& className, Filling filling = Filling::Full)
    {
        Add(className, filling, L"filled");
        FileLinked();
    }
    /// One with an entity of each class, which the name of its class identifies. What they are
    /// linked to has values as well.
    explicit FilledWorld(const std::vector<std::string>& classNames)
    {
        for (const std::string& className : classNames) {
            const std::wstring identifier = kar::ToWide(std::string_view(className));
            Add(className, Filling::Full, identifier);
            entity->setEntityName(L"the \u00e9 <" + identifier + L'>');
        }
        m_filled.FillLinked();
        FileLinked();
        NameGlobals();
    }
    ~FilledWorld()
    {
        // Entities that hold one another are taken apart.
        for (const KARMPEntityTable::Entry* const entry : m_filled.Table().InOrder())
            if (const Entity linked = entry->Entity())
                linked->orphanObject();
        for (const Entity& filled : m_made)
            filled->orphanObject();
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
    void Add(const std::string& className, Filling filling, const std::wstring& identifier)
    {
        entity = m_filled.Make(className, filling, identifier);
        m_made.push_back(entity);
        entity->GetWorld(world);
        File(entity);
    }
    void FileLinked()
    {
        for (const KARMPEntityTable::Entry* const entry : m_filled.Table().InOrder())
            File(entry->Entity());
    }
    void NameGlobals()
    {
        QOBSharedHandle<KARMPBody> body;
        QOBSharedHandle<KARMPAxisSystem> axisSystem;
        QOBSharedHandle<KARMPVariable> time;
        world->GetGlobalBody(body);
        world->GetGlobalAxisSystem(axisSystem);
        world->GetGlobalTime(time);
        body->SetIdentifier(L"GlobalBody");
        axisSystem->SetIdentifier(L"GlobalAxisSystem");
        time->SetIdentifier(L"GlobalTime");
    }
    void File(const Entity& filed)
    {
        Families::AnyOf([&](auto family) {
            using T = typename decltype(family)::Type;
            // A layer's record does not tell that it is an interaction.
            return dynamic_cast<const T*>(filed.get()) != nullptr &&
                   world->Add<T>(QOBSharedHandle<T>(filed)) == KARSuccess;
        });
    }

    FilledEntities m_filled;
    std::vector<Entity> m_made;

public:
    /// The entity that was filled last.
    Entity entity;
    QOBSharedHandle<KARMPWorld> world;
};

/// Another value for an item that is no list, or none where there is no other one.
inline Value OtherValue(const ItemInfo& item, const FilledWorld& filled, const FilledWorld& other)
{
    Value value = item.Get(*filled.entity);
    if (const auto* const target = std::get_if<FilledWorld::Entity>(&value)) {
        const FilledWorld::Entity another = filled.Other(item.target, {*target, filled.entity});
        return another ? Value(another) : Value();
    }
    const Value ofOther = item.Get(*other.entity);
    if (ofOther.index() == value.index() && ofOther != value)
        return ofOther;
    if (auto* const flag = std::get_if<bool>(&value))
        *flag = !*flag;
    else if (auto* const number = std::get_if<double>(&value))
        *number += 0.125;
    else if (auto* const numbers = std::get_if<NumberArray>(&value))
        (*numbers)[0] += 0.125;
    else
        return {};
    return value;
}

} // namespace karmp::documents
