#include "ViewScene.h"

#include "ForEach.h"
#include "KARMPConnector.h"
#include "KARMPCoupling.h"
#include "KARMPJoint.h"
#include "KARMPScrew.h"
#include "ViewBodies.h"
#include "ViewEntities.h"
#include "ViewJoints.h"

namespace karmp::tool {

namespace {

/// Enters what stands between bodies into a scene.
class LinkCollector
{
public:
    LinkCollector(EntityIndex& entities, const BodyDrawer& bodies, ViewScene& scene)
        : m_entities(entities), m_drawer(bodies), m_scene(scene)
    {}

    void Add(const KARMPJoint& joint)
    {
        // A screw couples the two freedoms of one joint.
        const auto* const coupling = dynamic_cast<const KARMPCoupling*>(&joint);
        if (coupling != nullptr && dynamic_cast<const KARMPScrew*>(&joint) == nullptr)
            Keep(m_drawer.Draw(*coupling), joint, m_scene.couplings);
        else
            Keep(m_drawer.Draw(joint), joint, m_scene.joints);
    }

    void Add(const KARMPConnector& connector)
    {
        Keep(m_drawer.Draw(connector), connector, m_scene.connectors);
    }

private:
    template <class Drawn>
    void Keep(std::optional<Drawn> drawn, const KARMPEntity& entity, std::vector<Drawn>& list)
    {
        if (drawn) {
            drawn->entity = m_entities.NumberOf(entity);
            list.push_back(std::move(*drawn));
        } else {
            m_entities.Note(entity, "Not drawn: nothing tells where it is.");
        }
    }

    EntityIndex& m_entities;
    LinkDrawer m_drawer;
    ViewScene& m_scene;
};

} // namespace

ViewScene CollectScene(const KARMPWorld& world, std::string title)
{
    ViewScene scene;
    scene.title = std::move(title);
    world.GetGravity(scene.gravity);
    EntityIndex entities(world, scene);
    const BodyDrawer bodies(world, entities, scene);
    LinkCollector links(entities, bodies, scene);
    ForEach<KARMPJoint>(
        world, [&](const KARMPJoint& joint) { links.Add(joint); });
    ForEach<KARMPConnector>(world, [&](const KARMPConnector& connector) { links.Add(connector); });
    return scene;
}

} // namespace karmp::tool
