#include "KARMPCollisionSensor.h"

#include "KARIMPCollisionSensorLoader.h"
#include "KARMPBody.h"
#include "KARMPCollisionRule.h"
#include "KARMPContactItems.h"
#include "KARMPContentRecords.h"
#include "KARMPContentTakeBack.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSensorUpdate.h"

#include <algorithm>

KARMP_DEFINE_ENTITY(KARMPCollisionSensor, "39199CEE-BC80-47CA-80EB-1B4A45BDB79C");

template <>
struct karmp::ContentOf<KARMPCollisionSensor>
{
    using C = KARMPCollisionSensor;

    // Having no rule is no fault of what is written.
    static KARStatus Rule(const C& sensor, QOBSharedHandle<KARMPCollisionRule>& rule)
    {
        return sensor.m_interaction ? sensor.GetCollisionRule(rule) : KARFailure;
    }

    static KARStatus RemoveRule(C& sensor, const QOBSharedHandle<KARMPCollisionRule>& rule)
    {
        return sensor.m_interaction.Remove(rule);
    }

    static bool HasDataOf(const C& sensor, const C::ContactPair& pair)
    {
        const auto isOf = [&pair](const auto& data) {
            return data.firstBody == pair.first && data.secondBody == pair.second;
        };
        return std::any_of(sensor.m_geometryData.begin(), sensor.m_geometryData.end(), isOf) ||
               std::any_of(sensor.m_forceData.begin(), sensor.m_forceData.end(), isOf);
    }
    // The pairs that came with the data go with it.
    template <auto Member>
    static void TakeBack(C& sensor, int count)
    {
        while ((sensor.*Member).size() > static_cast<std::size_t>(count)) {
            const auto& last = (sensor.*Member).back();
            const C::ContactPair pair(last.firstBody, last.secondBody);
            (sensor.*Member).pop_back();
            if (!HasDataOf(sensor, pair))
                sensor.m_pairs.erase(pair);
        }
    }

    static constexpr auto List =
        Element(L"CollisionSensor", "Records the contacts of a step.", CountingFrame,
                Reference<&Rule, &C::SetCollisionRule>(L"CollisionRule",
                                                       "The rule whose contacts are recorded.")
                    .Removing<&RemoveRule>(),
                TakenBackBy<&TakeBack<&C::m_geometryData>>(
                    Records<&C::m_geometryData, &C::TakeGeometryData>(
                        L"ContactGeometryDataContainer", L"ContactGeometryData",
                        "Where bodies touch.", ContactGeometry<KARMPContactGeometryData>())),
                TakenBackBy<&TakeBack<&C::m_forceData>>(Records<&C::m_forceData, &C::TakeForceData>(
                    L"ContactForceDataContainer", L"ContactForceData",
                    "Where bodies touch, and with which forces.",
                    ContactGeometry<KARMPContactForceData>(), ContactForces())));
};
KARMP_DEFINE_CONTENT(KARMPCollisionSensor);

namespace {

using Pair = KARMPCollisionSensor::ContactPair;

template <class Data>
bool HasBodies(const Data& data)
{
    return data.firstBody && data.secondBody;
}

// Capacity comes first, so that no pair is without data when an allocation fails.
template <class Data>
void EnsureCapacity(std::vector<Data>& list)
{
    if (list.size() == list.capacity())
        list.reserve(std::max<std::size_t>(4, 2 * list.size()));
}

template <class Data>
KARStatus Add(KARMPCollisionSensor& sensor, std::vector<Data>& list, const Data& data)
{
    EnsureCapacity(list);
    const KARStatus status = sensor.AddContactData(Pair(data.firstBody, data.secondBody));
    if (status == KARSuccess)
        list.push_back(data);
    return status;
}

// A document is taken as it stands: data that was set need not agree with the pairs.
template <class Data>
KARStatus Take(KARMPCollisionSensor& sensor, std::vector<Data>& list, const Data& data)
{
    if (!HasBodies(data))
        return KARFailure;
    EnsureCapacity(list);
    sensor.AddContactData(Pair(data.firstBody, data.secondBody));
    list.push_back(data);
    return KARSuccess;
}

template <class Data>
KARStatus Get(const std::vector<Data>& list, int index, Data& data)
{
    if (index < 0 || static_cast<std::size_t>(index) >= list.size())
        return KARFailure;
    data = list[static_cast<std::size_t>(index)];
    return KARSuccess;
}

} // namespace

KARMPCollisionSensor::KARMPCollisionSensor() = default;
KARMPCollisionSensor::KARMPCollisionSensor(const KARMPCollisionSensor& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPCollisionSensor::~KARMPCollisionSensor() = default;

KARStatus KARMPCollisionSensor::Reset()
{
    m_pairs.clear();
    m_geometryData.clear();
    m_forceData.clear();
    return KARSuccess;
}

KARStatus KARMPCollisionSensor::Update()
{
    return karmp::UpdateIfActive<KARIMPCollisionSensorLoader>(*this, KARUnchanged);
}

KARStatus KARMPCollisionSensor::GetLoader(KARIMPCollisionSensorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPCollisionSensor::SetInteraction(const QOBSharedHandle<KARMPInteraction>& interaction)
{
    return m_interaction.Set(interaction);
}

KARStatus KARMPCollisionSensor::GetInteraction(QOBSharedHandle<KARMPInteraction>& interaction) const
{
    return m_interaction.Require(interaction);
}

KARStatus KARMPCollisionSensor::SetCollisionRule(const QOBSharedHandle<KARMPCollisionRule>& rule)
{
    return m_interaction.Set(rule);
}

KARStatus KARMPCollisionSensor::GetCollisionRule(QOBSharedHandle<KARMPCollisionRule>& rule) const
{
    rule = nullptr;
    QOBSharedHandle<KARMPInteraction> interaction;
    if (KARFailed(m_interaction.Require(interaction)))
        return KARFailure;
    if (!interaction.isDerivedFrom(KARMPCollisionRule::ClassInfo()))
        return KARFailure;
    rule = QOBSharedHandle<KARMPCollisionRule>(interaction);
    return KARSuccess;
}

KARStatus KARMPCollisionSensor::AddContactData(const ContactPair& pair)
{
    return m_pairs.insert(pair).second ? KARSuccess : KARUnchanged;
}

KARStatus KARMPCollisionSensor::AddContactGeometryData(const KARMPContactGeometryData& data)
{
    return KARMPVerify(HasBodies(data)) ? Add(*this, m_geometryData, data) : KARFailure;
}

KARStatus KARMPCollisionSensor::AddContactForceData(const KARMPContactForceData& data)
{
    return KARMPVerify(HasBodies(data)) ? Add(*this, m_forceData, data) : KARFailure;
}

KARStatus KARMPCollisionSensor::TakeGeometryData(const KARMPContactGeometryData& data)
{
    return Take(*this, m_geometryData, data);
}

KARStatus KARMPCollisionSensor::TakeForceData(const KARMPContactForceData& data)
{
    return Take(*this, m_forceData, data);
}

KARStatus KARMPCollisionSensor::SetContactGeometryData(
    const std::vector<KARMPContactGeometryData>& data)
{
    m_geometryData = data;
    return KARSuccess;
}

KARStatus KARMPCollisionSensor::SetContactForceData(const std::vector<KARMPContactForceData>& data)
{
    m_forceData = data;
    return KARSuccess;
}

KARStatus KARMPCollisionSensor::GetContactGeometryData(int index,
                                                       KARMPContactGeometryData& data) const
{
    return Get(m_geometryData, index, data);
}

KARStatus KARMPCollisionSensor::GetContactForceData(int index, KARMPContactForceData& data) const
{
    return Get(m_forceData, index, data);
}
