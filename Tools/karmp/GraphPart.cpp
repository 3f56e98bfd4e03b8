#include "GraphPart.h"

#include "KARMPBody.h"
#include "KARMPCoupling.h"
#include "KARMPJoint.h"
#include "KARMPWorld.h"
#include "MechanismParts.h"

#include <unordered_map>
#include <utility>

namespace karmp::tool {

namespace {

template <class T>
std::vector<const T*> AllOf(const KARMPWorld& world)
{
    std::vector<const T*> all;
    for (int index = 0; index < world.Count<T>(); ++index) {
        QOBSharedHandle<T> entity;
        if (world.Get<T>(index, entity) == KARSuccess && entity)
            all.push_back(entity.get());
    }
    return all;
}

// The bodies that a joint joins; a coupling relates the freedoms of joints.
std::vector<const KARMPBody*> BodiesOf(const KARMPJoint& joint)
{
    std::vector<const KARMPBody*> bodies;
    if (!joint.IsActive() || joint.isDerivedFrom(KARMPCoupling::ClassInfo()))
        return bodies;
    for (const LinkedBody& linked : LinkedBodiesOf(joint))
        bodies.push_back(linked.body);
    return bodies;
}

} // namespace

GraphPart::GraphPart(const KARMPWorld& world, const KARMPBody* around, std::size_t reach,
                     std::size_t most)
{
    const auto bodies = AllOf<KARMPBody>(world);
    const auto joints = AllOf<KARMPJoint>(world);
    std::unordered_map<const KARMPBody*, std::vector<const KARMPJoint*>> jointsOf;
    for (const KARMPJoint* const joint : joints)
        for (const KARMPBody* const body : BodiesOf(*joint))
            jointsOf[body].push_back(joint);

    std::vector<const KARMPBody*> front;
    const auto take = [&](const KARMPBody* body) {
        if (m_bodies.size() >= most || !m_bodies.insert(body).second)
            return false;
        front.push_back(body);
        return true;
    };
    const auto takeAllNear = [&] {
        for (std::size_t distance = 0; distance < reach && !front.empty(); ++distance)
            for (const KARMPBody* const body : std::exchange(front, {}))
                for (const KARMPJoint* const joint : jointsOf[body])
                    for (const KARMPBody* const next : BodiesOf(*joint))
                        if (take(next))
                            m_tree.insert(joint);
        front.clear();
    };

    QOBSharedHandle<KARMPBody> global;
    world.GetGlobalBody(global);
    if (around != nullptr) {
        take(around);
        takeAllNear();
    } else {
        for (const KARMPBody* const body : bodies)
            if (body == global.get() || IsFixed(*body))
                take(body);
        takeAllNear();
        for (const KARMPBody* const body : bodies) {
            take(body);
            takeAllNear();
        }
    }
    FindLoops(joints);
}

void GraphPart::FindLoops(const std::vector<const KARMPJoint*>& joints)
{
    for (const KARMPJoint* const joint : joints) {
        const auto bodies = BodiesOf(*joint);
        bool isShown = bodies.size() > 1;
        for (const KARMPBody* const body : bodies)
            isShown = isShown && Has(*body);
        if (isShown && m_tree.count(joint) == 0)
            m_closing.insert(joint);
    }
}

} // namespace karmp::tool
