#include "KARMPListedEntities.h"

#include "KARMPAxisSystem.h"
#include "KARMPBody.h"
#include "KARMPDocumentNames.h"
#include "KARMPFamilies.h"
#include "KARMPItems.h"
#include "KARMPSchema.h"
#include "KARMPTextEscapes.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <new>
#include <unordered_map>

namespace karmp::documents {

std::size_t ListedCount(const KARMPWorld& world)
{
    std::size_t count = 0;
    Families::ForEach([&world, &count](auto family) {
        count += static_cast<std::size_t>(world.Count<typename decltype(family)::Type>());
    });
    return count;
}

bool IsLeftOut(const KARMPEntity& entity)
{
    const auto items = ItemsOf(entity.getClassInfo());
    return !items.empty() && !items.front().IsWrittenFor(entity);
}

ListedEntities::ListedEntities(const KARMPWorld& world)
{
    m_entities.reserve(ListedCount(world));
    const QOBClassInfo* last = nullptr;
    bool mayBeLeftOut = false;
    ForEachRegistryElement([&](const auto& element) {
        using T = typename std::remove_cvref_t<decltype(element)>::Type;
        const std::size_t begin = m_entities.size();
        for (int index = 0; index < world.Count<T>(); ++index) {
            QOBSharedHandle<T> listed;
            if (KARFailed(world.Get<T>(index, listed)) || !listed)
                continue;
            auto* const entity =
                static_cast<KARMPEntity*>(static_cast<QOBSharedBase&>(listed)._getReferent());
            if (&entity->getClassInfo() != last) {
                last = &entity->getClassInfo();
                const auto items = ItemsOf(*last);
                mayBeLeftOut = !items.empty() && !items.front().conditions.empty();
            }
            if (mayBeLeftOut && IsLeftOut(*entity))
                continue;
            m_entities.push_back(entity);
            m_held.SlotOf(entity) = entity;
        }
        if (m_entities.size() > begin)
            m_families.push_back({element.name, begin, m_entities.size()});
    });
}

std::string ListedEntities::PathOf(std::size_t number) const
{
    if (m_ordinals.empty()) {
        m_ordinals.resize(Count());
        for (const Family& family : m_families) {
            std::unordered_map<const QOBClassInfo*, std::uint32_t> counts;
            for (std::size_t i = family.begin; i < family.end; ++i)
                m_ordinals[i].number = ++counts[&At(i).getClassInfo()];
            for (std::size_t i = family.begin; i < family.end; ++i)
                m_ordinals[i].of = counts[&At(i).getClassInfo()];
        }
    }
    const auto family = std::find_if(m_families.begin(), m_families.end(),
                                     [number](const Family& entry) { return number < entry.end; });
    std::string path = '/' + std::string(RootName) + "/World/";
    AppendUtf8(path, family->element);
    path += '/';
    AppendUtf8(path, ElementNameOf(At(number)));
    const Ordinal ordinal = m_ordinals[number];
    return ordinal.of > 1 ? path + '[' + std::to_string(ordinal.number) + ']' : path;
}

std::array<GlobalEntity, 3> GlobalsOf(const KARMPWorld& world)
{
    using Entity = QOBSharedHandle<KARMPEntity>;
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    QOBSharedHandle<KARMPVariable> time;
    world.GetGlobalBody(body);
    world.GetGlobalAxisSystem(axisSystem);
    world.GetGlobalTime(time);
    return {
        GlobalEntity{Entity(body), RegistryElementName<KARMPBody>(), L"GlobalBody"},
        GlobalEntity{Entity(axisSystem), RegistryElementName<KARMPGeometry>(), L"GlobalAxisSystem"},
        GlobalEntity{Entity(time), RegistryElementName<KARMPVariable>(), L"GlobalTime"}};
}

void GetIdentifierOf(const KARMPEntity& entity, std::wstring& identifier)
{
    if (entity.GetIdentifier(identifier) == KAROutOfMemory)
        throw std::bad_alloc();
}

std::wstring_view ElementNameOf(const KARMPEntity& entity)
{
    const SchemaItem* const item = SchemaOf(entity.getClassInfo().getName());
    return item != nullptr && !item->name.empty() ? item->name : L"Entity";
}

std::string TitleOf(std::wstring_view element, std::wstring_view name, std::wstring_view identifier)
{
    std::string title;
    AppendUtf8(title, element);
    if (!name.empty())
        title += ' ' + Quoted(name);
    const std::string quoted = Quoted(identifier);
    return title + " [" + quoted.substr(1, quoted.size() - 2) + ']';
}

std::string TitleOf(const KARMPEntity& entity)
{
    std::wstring identifier;
    GetIdentifierOf(entity, identifier);
    return TitleOf(ElementNameOf(entity), entity.getEntityName(), identifier);
}

bool IsFiled(const QOBClassInfo& info)
{
    const auto& families = FamilyRecords();
    return std::any_of(families.begin(), families.end(), [&info](const FamilyRecord& family) {
        return info.isDerivedFrom(*family.info);
    });
}

bool IsGivenBack(const QOBClassInfo& info)
{
    const auto items = ItemsOf(info);
    return IsFiled(info) && (items.empty() || items.front().isReadBack);
}

} // namespace karmp::documents
