#include "KARMPConstraintSensor.h"

#include "KARMPConstraint.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPConstraintSensor, "86C1ABB4-60FC-4605-893A-F39F8675DA73");

template <>
struct karmp::ContentOf<KARMPConstraintSensor>
{
    using C = KARMPConstraintSensor;
    // The result is the solver's and not written.
    static constexpr auto List =
        Element(L"ConstraintSensor", "Measures whether a constraint is redundant.", CountingFrame,
                Reference<&C::m_constraint, &C::SetConstraint>(L"Constraint",
                                                               "The constraint that is measured.")
                    .Removing<&C::RemoveConstraint>()
                    .OtherSide(L"Sensors"));
};
KARMP_DEFINE_CONTENT(KARMPConstraintSensor);

namespace {

using Constraints = QOBSharedVector<KARMPConstraint>;

KARStatus Fill(KARMPLinkList<KARMPConstraint>& list, const Constraints& entries)
{
    list.Clear();
    KARStatus status = KARSuccess;
    for (const auto& entry : entries)
        if (KARFailed(list.Add(entry)))
            status = KARFailure;
    return status;
}

Constraints EntriesOf(const KARMPLinkList<KARMPConstraint>& list)
{
    Constraints entries;
    entries.reserve(static_cast<std::size_t>(list.Count()));
    for (int index = 0; index < list.Count(); ++index)
        entries.push_back(list.At(index));
    return entries;
}

} // namespace

KARMPConstraintSensor::KARMPConstraintSensor() = default;
KARMPConstraintSensor::KARMPConstraintSensor(const KARMPConstraintSensor& source, CopyMode mode)
    : Super(source, mode), m_status(source.m_status)
{}
KARMPConstraintSensor::~KARMPConstraintSensor() = default;

void KARMPConstraintSensor::ClearContainers()
{
    m_first.Clear();
    m_second.Clear();
}

KARStatus KARMPConstraintSensor::RemoveParent()
{
    KARStatus status = KARSuccess;
    if (m_constraint)
        status = RemoveReferenceParent({m_constraint.Take()});
    for (const KARMPLinkList<KARMPConstraint>* list : {&m_first, &m_second})
        if (!KARFailed(status))
            status = RemoveReferenceParent(EntriesOf(*list));
    return status;
}

KARStatus KARMPConstraintSensor::RemoveReferenceParent(const Constraints& constraints)
{
    const QOBSharedHandle<KARMPSensor> self(this);
    for (const auto& constraint : constraints) {
        if (!KARMPVerify(static_cast<bool>(constraint)))
            return KARFailure;
        const KARStatus status = constraint->RemoveSensor(self);
        if (KARFailed(status))
            return status;
    }
    return KARSuccess;
}

KARStatus KARMPConstraintSensor::Reset()
{
    m_status = RedundancyStatus::Independent;
    return KARSuccess;
}

KARStatus KARMPConstraintSensor::RemoveConstraint(
    const QOBSharedHandle<KARMPConstraint>& constraint)
{
    const KARStatus status = Super::RemoveConstraint(constraint);
    if (KARFailed(status))
        return status;
    const bool isMeasured = m_constraint.Remove(constraint) == KARSuccess;
    const bool isInFirst = m_first.Remove(constraint) == KARSuccess;
    const bool isInSecond = m_second.Remove(constraint) == KARSuccess;
    return isMeasured || isInFirst || isInSecond ? KARSuccess : KARUnchanged;
}

KARStatus KARMPConstraintSensor::SetRedundancyStatus(RedundancyStatus status,
                                                     const Constraints& first,
                                                     const Constraints& second)
{
    m_status = status;
    const KARStatus firstStatus = Fill(m_first, first);
    const KARStatus secondStatus = Fill(m_second, second);
    return KARFailed(firstStatus) ? firstStatus : secondStatus;
}

KARStatus KARMPConstraintSensor::GetRedundancyStatus(RedundancyStatus& status, Constraints& first,
                                                     Constraints& second) const
{
    status = m_status;
    first = EntriesOf(m_first);
    second = EntriesOf(m_second);
    return KARSuccess;
}
