// Which bodies hang together, and on what.
#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPIdentifiers.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace karmp::documents {

/// True for a body that is fixed in the world or in its plane.
bool IsFixedBody(const KARMPDocumentReader& body);

/// Groups bodies that are joined by joints, constraints, connectors, contacts or the tree of
/// bodies: Note and Fix for all entities first, then the questions. In time and memory about linear
/// in the links.
class JoinedBodies
{
public:
    using Node = KARMPDocumentReader;
    /// The class of an entity and the classes above it.
    using Lineage = std::vector<std::string>;

    explicit JoinedBodies(Identifiers& identifiers) : m_identifiers(identifiers) {}

    /// Keeps what an entity, which has the number `number`, joins.
    void Note(std::uint32_t number, const Lineage& lineage, const Node& entity);
    /// Keeps that a body or geometry, given by a reference to it, stands still.
    void Fix(const KARMPDeserializer& reference);

    /// The bodies that are joined with this one where it is the first of them, it is not alone, and
    /// none is fixed; empty otherwise.
    std::vector<const Node*> FloatingChain(const Node& body);

private:
    struct NotedBody
    {
        std::uint32_t number;
        const Node* node;
    };
    struct Group
    {
        bool isFixed = false;
        std::vector<const Node*> bodies;
    };

    void Join(std::uint32_t number, const KARMPDeserializer& reference);
    std::uint32_t RootOf(std::uint32_t number);
    void FindGroups();

    Identifiers& m_identifiers;
    /// A forest: above each entity another one that it is joined with, or itself.
    std::vector<std::uint32_t> m_above;
    std::vector<NotedBody> m_bodies;
    std::vector<std::uint32_t> m_fixed;
    /// The groups by their roots; made by the first question.
    std::unordered_map<std::uint32_t, Group> m_groups;
};

} // namespace karmp::documents
