// The entities of a world as the tree of a page has them.
#pragma once

#include "ViewScene.h"

#include <unordered_map>

class KARMPEntity;

namespace karmp::tool {

/// Enters the entities of a world into a scene, in the order of the document's lists, and knows
/// their numbers.
class EntityIndex
{
public:
    EntityIndex(const KARMPWorld& world, ViewScene& scene);

    /// The number of an entity of the world; -1 of any other one.
    int NumberOf(const KARMPEntity& entity) const;
    /// Says of an entity of the world why it is not drawn.
    void Note(const KARMPEntity& entity, std::string_view reason);

private:
    void Add(const KARMPEntity& entity, int kind);
    void AddLinks();

    ViewScene& m_scene;
    std::vector<const KARMPEntity*> m_entities;
    std::unordered_map<const KARMPEntity*, int> m_numbers;
};

} // namespace karmp::tool
