// The links of a filtered clone, made by a program that does nothing else.
#pragma once

#include "KARMPEntities.h"
#include "KARMPObjectMap.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// Makes for each entity of a list an object without content, and links these objects as the
/// entities are linked. What is linked to what is known beforehand, by the addresses of the
/// entities; the library's map gives the object of an address, an object counts the links to it,
/// and a list has a block of its own. There are none of the library's rules: no class is asked,
/// nothing is filed, no allocation fails. It shows what the links take of a filtered clone.
class StrippedLinks
{
public:
    /// Where the blocks of lists come from.
    enum class Blocks { OneByOne, AtOnce };

    explicit StrippedLinks(const QOBSharedList<KARMPEntity>& entities);
    ~StrippedLinks();
    StrippedLinks(const StrippedLinks&) = delete;
    StrippedLinks& operator=(const StrippedLinks&) = delete;

    /// Enters all objects into the map and makes the links.
    void Make(Blocks blocks);
    /// Takes the links away, and the entries of the map; the memory stays at hand.
    void TakeAway();

private:
    static constexpr std::size_t MostLists = 8;
    /// As large as most entities are.
    struct Object
    {
        std::size_t count;
        Object** lists[MostLists];
        char content[280];
    };
    struct List
    {
        std::uint32_t begin;
        std::uint32_t count;
    };

    Object*& ObjectOf(const QOBSharedObject* entity);

    std::vector<const QOBSharedObject*> m_entities;
    std::vector<std::unique_ptr<Object>> m_objects;
    std::vector<std::uint32_t> m_firstLists; // of each entity, and the end
    std::vector<List> m_lists;
    std::vector<const QOBSharedObject*> m_targets;
    karmp::ObjectMap m_map;
    std::vector<Object*> m_block; // of all lists
    bool m_areOneByOne = false;
};
