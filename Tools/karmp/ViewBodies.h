// The bodies of a picture with their shapes, their geometry and the rods that stand for them.
#pragma once

#include "ViewBox.h"
#include "ViewEntities.h"

class KARMPBody;
class KARMPGeometry;
class KARMPShape;

namespace karmp::tool {

/// Enters the bodies of a world into a scene, with the size that suits its symbols, and finds them.
class BodyDrawer
{
public:
    BodyDrawer(const KARMPWorld& world, EntityIndex& entities, ViewScene& scene);

    /// What is drawn of a body; null of one that cannot be drawn.
    const ViewBody* Find(const KARMPBody* body) const;
    /// The drawing of a geometry in the axes of its body; null of one that is not drawn.
    const ViewDrawing* Find(const KARMPGeometry& geometry) const;

private:
    void Add(const KARMPBody& body, bool isGlobal);
    void Add(const KARMPGeometry& geometry);
    void Add(const KARMPShape& shape);
    double Extent() const;
    void AddRods();

    EntityIndex& m_entities;
    ViewScene& m_scene;
    std::vector<ViewBox> m_boxes; // of the shapes
    std::unordered_map<const KARMPBody*, std::size_t> m_bodies;
    std::unordered_map<const KARMPGeometry*, std::pair<std::size_t, std::size_t>> m_drawings;
};

} // namespace karmp::tool
