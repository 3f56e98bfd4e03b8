#pragma once

#include "KARMPEntity.h"
#include "KARMPObjectMap.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class KARMPWorld;

namespace karmp::documents {

/// The entities that a document of a world holds, in its order. The world must not change
/// meanwhile.
class ListedEntities
{
public:
    /// The list of a family that is not empty.
    struct Family
    {
        std::wstring_view element;
        std::size_t begin;
        std::size_t end;
    };

    explicit ListedEntities(const KARMPWorld& world);

    std::size_t Count() const { return m_entities.size(); }
    const KARMPEntity& At(std::size_t number) const { return *m_entities[number]; }
    std::span<const Family> Families() const { return m_families; }
    /// True for an entity that the world lists and its class does not leave out.
    bool Hold(const QOBSharedObject* entity) const { return m_held.Find(entity) != nullptr; }
    /// The path of an entity in the document.
    std::string PathOf(std::size_t number) const;

private:
    std::vector<const KARMPEntity*> m_entities;
    std::vector<Family> m_families;
    /// Each of m_entities mapped to itself.
    ObjectMap m_held;
    /// The number of each entity among those of its class and family, and how many these are; made
    /// when a path is asked for.
    struct Ordinal
    {
        std::uint32_t number;
        std::uint32_t of;
    };
    mutable std::vector<Ordinal> m_ordinals;
};

/// An entity that a world has of itself.
struct GlobalEntity
{
    QOBSharedHandle<KARMPEntity> entity; ///< Null where the world has none.
    std::wstring_view family;            ///< The element of the family that lists it.
    std::wstring_view element;           ///< Its element among the globals.
};
/// The global body, axis system and time of a world.
std::array<GlobalEntity, 3> GlobalsOf(const KARMPWorld& world);

/// The number of entries of all lists of a world.
std::size_t ListedCount(const KARMPWorld& world);
/// True for outputs and what belongs to them while the environment leaves them out of documents.
bool IsLeftOut(const KARMPEntity& entity);
/// The identifier of an entity, which is made on first need. Throws when an allocation fails.
void GetIdentifierOf(const KARMPEntity& entity, std::wstring& identifier);
/// The name of the element of an entity.
std::wstring_view ElementNameOf(const KARMPEntity& entity);
/// Element, name and identifier of an entity for messages: Body "Crank" [K1].
std::string TitleOf(std::wstring_view element, std::wstring_view name,
                    std::wstring_view identifier);
std::string TitleOf(const KARMPEntity& entity);
/// True when entities of the class are filed in a world when they are read.
bool IsFiled(const QOBClassInfo& info);
/// True when a document gives entities of the class back: they are filed, and their element is the
/// one that reading looks for.
bool IsGivenBack(const QOBClassInfo& info);

} // namespace karmp::documents
