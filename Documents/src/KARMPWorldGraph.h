#pragma once

#include "KARMPClassItems.h"
#include "KARMPEntity.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class KARMPWorld;

namespace karmp::documents {

/// The number of an entity in a WorldGraph.
using EntityNumber = std::uint32_t;
inline constexpr EntityNumber NoEntity = ~EntityNumber(0);

/// Joins a number to another one so that all bits of both count.
constexpr std::uint64_t Mix(std::uint64_t seed, std::uint64_t value)
{
    std::uint64_t mixed = seed * 0x9E3779B97F4A7C15U + value + 0x2545F4914F6CDD1DU;
    mixed ^= mixed >> 32U;
    mixed *= 0xD6E8FEB86659FD93U;
    return mixed ^ (mixed >> 29U);
}

/// The entities of a world in the order of documents, with the links among them in both directions.
class WorldGraph
{
public:
    struct Entity
    {
        QOBSharedHandle<KARMPEntity> handle;
        const ClassItems* items;
        std::wstring identifier;
        /// The entity's family by its number in the order of documents.
        std::uint32_t family;
        bool isNamed;
        /// Belongs to class and name.
        std::uint64_t title;
    };
    /// A link to another entity. `label` belongs to the item that holds it and to the direction;
    /// `position` is that of the link in a list whose order means something, from 1, and 0 in
    /// others.
    struct Link
    {
        std::uint64_t label;
        EntityNumber target;
        std::uint32_t position;

        /// Belongs to label and position. Only where the lists are those of equal entities it tells
        /// links apart: an entry that is added changes the position of others.
        std::uint64_t PlacedLabel() const { return label + position * 0x9FB21C651E98DF25U; }
    };

    explicit WorldGraph(const KARMPWorld& world);

    EntityNumber Count() const { return static_cast<EntityNumber>(m_entities.size()); }
    const Entity& At(EntityNumber number) const { return m_entities[number]; }
    /// All links that an entity holds and those that others hold to it.
    std::span<const Link> LinksOf(EntityNumber number) const
    {
        return std::span(m_links).subspan(m_firstLinks[number],
                                          m_firstLinks[number + 1] - m_firstLinks[number]);
    }
    /// The number of an entity; NoEntity for null and for one that the world does not list.
    EntityNumber NumberOf(const KARMPEntity* entity) const;
    /// Global body, axis system and time and the ground body, in this order; null ones included.
    const std::vector<QOBSharedHandle<KARMPEntity>>& Globals() const { return m_globals; }

private:
    void Add(const QOBSharedHandle<KARMPEntity>& entity, std::uint32_t family);
    void AddLinks();

    std::vector<Entity> m_entities;
    std::vector<QOBSharedHandle<KARMPEntity>> m_globals;
    std::unordered_map<const KARMPEntity*, EntityNumber> m_numbers;
    std::vector<Link> m_links;
    /// Where an entity's links begin, and the end of all.
    std::vector<std::size_t> m_firstLinks;
};

} // namespace karmp::documents
