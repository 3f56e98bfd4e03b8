#include "KARMPBody.h"

#include "KARIMPBodyLoader.h"
#include "KARMPConnector.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPGeometry.h"
#include "KARMPJoint.h"
#include "KARMPLoaderAccess.h"
#include "KARMPShape.h"
#include "KARMPUnlinkAll.h"
#include "QOBBasicBody3D.h"

#include <new>
#include <utility>
#include <vector>

KARMP_DEFINE_ENTITY(KARMPBody, "DC8D8FB9-6ECD-4707-93D5-A11AF41E855B");

namespace {

// The bodies that a dying body of this thread let go of, while there is one.
thread_local std::vector<QOBSharedHandle<KARMPBody>>* t_released = nullptr;

} // namespace

KARMPBody::KARMPBody() = default;

KARMPBody::KARMPBody(const KARMPBody& source, CopyMode mode)
    : Super(source, mode),
      m_fixed(source.m_fixed),
      m_floating(source.m_floating),
      m_position(source.m_position),
      m_linearVelocity(source.m_linearVelocity),
      m_angularVelocity(source.m_angularVelocity),
      m_linearAcceleration(source.m_linearAcceleration),
      m_angularAcceleration(source.m_angularAcceleration),
      m_mass(source.m_mass),
      m_centerOfGravity(source.m_centerOfGravity),
      m_inertiaMatrix(source.m_inertiaMatrix),
      m_filePath(source.m_filePath)
{}

KARMPBody::~KARMPBody()
{
    if (m_impactedChildren.Count() == 0 && m_children.Count() == 0 && !m_father)
        return;
    // The last references to a long row of bodies must not die inside each other: the first body
    // of the row lets all of them go, one after the other.
    std::vector<QOBSharedHandle<KARMPBody>> own;
    const bool first = t_released == nullptr;
    if (first)
        t_released = &own;
    try {
        for (int index = m_impactedChildren.Count(); index > 0; --index)
            t_released->push_back(m_impactedChildren.At(index - 1));
        for (int index = m_children.Count(); index > 0; --index)
            t_released->push_back(m_children.At(index - 1));
        t_released->push_back(m_father);
        ClearBodies();
    } catch (const std::bad_alloc&) {
        // What is still listed goes with the lists.
    }
    if (!first)
        return;
    while (!own.empty()) {
        const QOBSharedHandle<KARMPBody> body = std::move(own.back());
        own.pop_back();
    }
    t_released = nullptr;
}

void KARMPBody::ClearBodies()
{
    m_impactedChildren.Clear();
    m_children.Clear();
    m_father.detach();
}

void KARMPBody::ClearContainers()
{
    m_geometries.Clear();
    m_joints.Clear();
    m_shapes.Clear();
    m_connectors.Clear();
    ClearBodies();
}

KARStatus KARMPBody::RemoveParent()
{
    const QOBSharedHandle<KARMPBody> self(this);
    if (m_displacementSensor) {
        const auto sensor = std::exchange(m_displacementSensor, nullptr);
        const KARStatus status = sensor->RemoveBody(self);
        if (KARFailed(status))
            return status;
    }
    const auto removeThis = [&self](auto& entity) { return entity.RemoveBody(self); };
    KARStatus status = karmp::UnlinkAll(m_geometries, removeThis);
    if (!KARFailed(status))
        status = karmp::UnlinkAll(m_joints, removeThis);
    if (!KARFailed(status))
        status = karmp::UnlinkAll(m_shapes, removeThis);
    if (!KARFailed(status))
        status = karmp::UnlinkAll(m_connectors, removeThis);
    if (!KARFailed(status))
        status = karmp::UnlinkAll(m_impactedChildren, removeThis);
    return status;
}

KARStatus KARMPBody::GetLoader(KARIMPBodyLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPBody::AddGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
{
    return m_geometries.Add(geometry);
}

KARStatus KARMPBody::LinkToJoint(const QOBSharedHandle<KARMPJoint>& joint)
{
    return m_joints.Add(joint);
}

KARStatus KARMPBody::LinkToShape(const QOBSharedHandle<KARMPShape>& shape)
{
    return m_shapes.Add(shape);
}

KARStatus KARMPBody::LinkToConnector(const QOBSharedHandle<KARMPConnector>& connector)
{
    return m_connectors.Add(connector);
}

KARStatus KARMPBody::AddImpactedChildBody(const QOBSharedHandle<KARMPBody>& body)
{
    return m_impactedChildren.Add(body);
}

KARStatus KARMPBody::RemoveGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
{
    return m_geometries.Remove(geometry);
}

KARStatus KARMPBody::RemoveJoint(const QOBSharedHandle<KARMPJoint>& joint)
{
    return m_joints.Remove(joint);
}

KARStatus KARMPBody::RemoveShape(const QOBSharedHandle<KARMPShape>& shape)
{
    return m_shapes.Remove(shape);
}

KARStatus KARMPBody::RemoveConnector(const QOBSharedHandle<KARMPConnector>& connector)
{
    return m_connectors.Remove(connector);
}

KARStatus KARMPBody::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    return m_impactedChildren.Remove(body);
}

KARStatus KARMPBody::GetGeometry(int index, QOBSharedHandle<KARMPGeometry>& geometry) const
{
    return m_geometries.Get(index, geometry);
}

KARStatus KARMPBody::GetLinkedJoint(int index, QOBSharedHandle<KARMPJoint>& joint) const
{
    return m_joints.Get(index, joint);
}

KARStatus KARMPBody::GetLinkedShape(int index, QOBSharedHandle<KARMPShape>& shape) const
{
    return m_shapes.Get(index, shape);
}

KARStatus KARMPBody::GetLinkedConnector(int index, QOBSharedHandle<KARMPConnector>& connector) const
{
    return m_connectors.Get(index, connector);
}

KARStatus KARMPBody::GetImpactedChildBody(int index, QOBSharedHandle<KARMPBody>& body) const
{
    return m_impactedChildren.Get(index, body);
}

KARStatus KARMPBody::GetChildBody(int index, QOBSharedHandle<KARMPBody>& body) const
{
    return m_children.Get(index, body);
}

KARStatus KARMPBody::AddBody(const QOBSharedHandle<KARMPBody>& child)
{
    if (!child)
        return KARFailure;
    if (m_wdmBody)
        m_wdmBody->addBody(child->m_wdmBody);
    m_children.Insert(m_children.Count(), child);
    if (KARMPVerify(!child->m_father))
        child->m_father = this;
    return KARSuccess;
}

KARStatus KARMPBody::GetFatherBody(QOBSharedHandle<KARMPBody>& father) const
{
    father = m_father;
    return KARSuccess;
}

KARStatus KARMPBody::SetDisplacementSensor(const QOBSharedHandle<KARMPDisplacementSensor>& sensor)
{
    m_displacementSensor = sensor;
    return KARSuccess;
}

KARStatus KARMPBody::GetDisplacementSensor(QOBSharedHandle<KARMPDisplacementSensor>& sensor) const
{
    sensor = m_displacementSensor;
    return sensor ? KARSuccess : KARFailure;
}

KARStatus KARMPBody::RemoveDisplacementSensor(
    const QOBSharedHandle<KARMPDisplacementSensor>& sensor)
{
    if (KARMPVerify(static_cast<bool>(sensor)) && sensor == m_displacementSensor)
        m_displacementSensor.detach();
    return KARSuccess;
}

KARStatus KARMPBody::GetMass(double& mass) const
{
    mass = m_mass;
    return KARSuccess;
}

KARStatus KARMPBody::SetMass(double mass)
{
    m_mass = mass;
    return KARSuccess;
}

KARStatus KARMPBody::GetCenterOfGravity(KARMathPoint& center) const
{
    center = m_centerOfGravity;
    return KARSuccess;
}

KARStatus KARMPBody::SetCenterOfGravity(const KARMathPoint& center)
{
    m_centerOfGravity = center;
    return KARSuccess;
}

KARStatus KARMPBody::GetInertiaMatrix(KARMath3x3Matrix& inertia) const
{
    inertia = m_inertiaMatrix;
    return KARSuccess;
}

KARStatus KARMPBody::SetInertiaMatrix(const KARMath3x3Matrix& inertia)
{
    m_inertiaMatrix = inertia;
    return KARSuccess;
}

KARStatus KARMPBody::IsOutOfWorld(bool& outOfWorld) const
{
    outOfWorld = m_outOfWorld;
    return KARSuccess;
}

KARStatus KARMPBody::SetOutOfWorld(bool outOfWorld)
{
    m_outOfWorld = outOfWorld;
    return KARSuccess;
}
