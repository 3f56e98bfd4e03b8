#include "KARMPConstraint.h"

#include "GMKTkCompatCtx.h"
#include "KARIMPConstraintLoader.h"
#include "KARMPGeometry.h"
#include "KARMPJoint.h"
#include "KARMPLoaderAccess.h"
#include "KARMPLoaderQuestion.h"
#include "KARMPSensor.h"
#include "KARMPUnlinkAll.h"
#include "KARMPVariable.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <numeric>
#include <utility>

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPConstraint, "7F1E045F-4F56-4db2-9392-3DA8A5FC2990");

namespace {

using Parameters = std::vector<KARMPConstraintParameter*>;

// Replaces each pointer that stands further in front already by null, one pair after the other.
void DropRepeatsSlowly(Parameters& parameters)
{
    for (auto slot = parameters.begin(); slot != parameters.end(); ++slot)
        if (std::find(parameters.begin(), slot, *slot) != slot)
            *slot = nullptr;
}

// The same in n log n steps when there is memory for it.
void DropRepeats(Parameters& parameters)
{
    constexpr std::size_t Few = 16;
    const std::size_t count = parameters.size();
    using Slot = KARMPConstraintParameter**;
    const std::unique_ptr<Slot[]> slots(count > Few ? new (std::nothrow) Slot[count] : nullptr);
    if (slots == nullptr) {
        DropRepeatsSlowly(parameters);
        return;
    }
    std::iota(slots.get(), slots.get() + count, parameters.data());
    // By pointer, then by position: of equal ones the first slot comes first.
    std::sort(slots.get(), slots.get() + count,
              [](Slot a, Slot b) { return *a != *b ? std::less<>()(*a, *b) : a < b; });
    const KARMPConstraintParameter* last = nullptr;
    for (std::size_t i = 0; i < count; ++i)
        if (*slots[i] == std::exchange(last, *slots[i]))
            *slots[i] = nullptr;
}

} // namespace

KARMPConstraint::KARMPConstraint() = default;

KARMPConstraint::KARMPConstraint(const KARMPConstraint&, CopyMode) : KARMPConstraint() {}

KARMPConstraint::~KARMPConstraint()
{
    // A parameter that was added twice is freed once, where it stands first.
    DropRepeats(m_parameters);
    for (const KARMPConstraintParameter* parameter : m_parameters)
        delete parameter;
}

void KARMPConstraint::ClearContainers()
{
    m_geometries.Clear();
    m_variables.Clear();
    m_sensors.Clear();
}

KARStatus KARMPConstraint::RemoveParent()
{
    const QOBSharedHandle<KARMPConstraint> self(this, QOBSharedBase::NoLock);
    KARStatus status = KARSuccess;
    if (m_joint) {
        const QOBSharedHandle<KARMPJoint> joint(m_joint.Handle(), QOBSharedBase::WriteLock);
        if (KARMPVerify(static_cast<bool>(joint)))
            status = joint->RemoveConstraint(self);
        m_joint.Clear();
    }
    const auto unlink = [&self](auto& linked) { return linked.RemoveConstraint(self); };
    if (!KARFailed(status))
        status = karmp::UnlinkAll(m_geometries, unlink);
    if (!KARFailed(status))
        status = karmp::UnlinkAll(m_variables, unlink);
    if (!KARFailed(status))
        status = karmp::UnlinkAll(m_sensors, unlink);
    return status;
}

KARStatus KARMPConstraint::GetLoader(KARIMPConstraintLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPConstraint::SetJoint(const QOBSharedHandle<KARMPJoint>& joint)
{
    return m_joint.Assign(joint);
}

KARStatus KARMPConstraint::RemoveJoint(const QOBSharedHandle<KARMPJoint>& joint)
{
    return m_joint.Remove(joint);
}

KARStatus KARMPConstraint::LinkToGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
{
    return m_geometries.Add(geometry);
}

KARStatus KARMPConstraint::GetLinkedGeometry(int index,
                                             QOBSharedHandle<KARMPGeometry>& geometry) const
{
    return m_geometries.Get(index, geometry);
}

KARStatus KARMPConstraint::RemoveGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
{
    return m_geometries.Remove(geometry);
}

KARStatus KARMPConstraint::LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable)
{
    return m_variables.Add(variable);
}

KARStatus KARMPConstraint::GetLinkedVariable(int index,
                                             QOBSharedHandle<KARMPVariable>& variable) const
{
    return m_variables.Get(index, variable);
}

KARStatus KARMPConstraint::RemoveVariable(const QOBSharedHandle<KARMPVariable>& variable)
{
    return m_variables.Remove(variable);
}

KARStatus KARMPConstraint::LinkToSensor(const QOBSharedHandle<KARMPSensor>& sensor)
{
    return m_sensors.Add(sensor);
}

KARStatus KARMPConstraint::GetLinkedSensor(int index, QOBSharedHandle<KARMPSensor>& sensor) const
{
    return m_sensors.Get(index, sensor);
}

KARStatus KARMPConstraint::RemoveSensor(const QOBSharedHandle<KARMPSensor>& sensor)
{
    return m_sensors.Remove(sensor);
}

KARStatus KARMPConstraint::AddConstraintParameter(KARMPConstraintParameter* parameter)
{
    m_parameters.push_back(parameter);
    return KARSuccess;
}

KARStatus KARMPConstraint::GetConstraintParameter(int index,
                                                  KARMPConstraintParameter*& parameter) const
{
    // Not the virtual count: a subclass may count what is not in this list.
    if (index < 0 || static_cast<std::size_t>(index) >= m_parameters.size())
        return KARFailure;
    parameter = m_parameters[static_cast<std::size_t>(index)];
    return KARSuccess;
}

bool KARMPConstraint::IsSatisfied(double& residual) const
{
    return karmp::AskLoader<KARIMPConstraintLoader>(
        *this, false, [&](auto& loader) { return loader.IsSatisfied(residual); });
}

bool KARMPConstraint::IsSatisfied() const
{
    return karmp::AskLoader<KARIMPConstraintLoader>(
        *this, false,
        [](auto& loader) {
            const GMKTkCompatCtx compatibility;
            return loader.IsSatisfied();
        });
}

KARStatus KARMPConstraint::CurrentValue(int index, double& value, double& rate) const
{
    return karmp::AskLoader<KARIMPConstraintLoader>(
        *this, KARFailure, [&](auto& loader) { return loader.CurrentValue(index, value, rate); });
}

KARStatus KARMPConstraint::CurrentValue(double& value) const
{
    return karmp::AskLoader<KARIMPConstraintLoader>(
        *this, KARFailure, [&](auto& loader) { return loader.CurrentValue(value); });
}

KARStatus KARMPConstraint::CurrentOptions(KARMPOptionsOrientation& options) const
{
    return karmp::AskLoader<KARIMPConstraintLoader>(
        *this, KARFailure, [&](auto& loader) { return loader.CurrentOptions(options); });
}
