#include "KARMPProximitySensor.h"

#include "KARIMPProximitySensorLoader.h"
#include "KARMPBody.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSensorUpdate.h"

KARMP_DEFINE_ENTITY(KARMPProximitySensor, "B81BD80B-5A31-43D4-B765-BF555F39AE09");

namespace karmp {

// A flag of a member that is written while it is true.
template <auto Member, auto Get, auto Set>
static constexpr auto Mark(std::wstring_view name, std::string_view says,
                           Where where = Where::current())
{
    return Attribute(Flag<Within<Member, Get>>(name, says, where))
        .template Through<Within<Member, Set>>()
        .template When<Within<Member, Get>>()
        .Optional()
        .ZeroIfMissing();
}

} // namespace karmp

template <>
struct karmp::ContentOf<KARMPProximitySensor>
{
    using C = KARMPProximitySensor;
    using Data = KARMPProximitySensorData;

    static KARStatus RemoveSensorBody(C& sensor, const QOBSharedHandle<KARMPBody>& body)
    {
        QOBSharedHandle<KARMPBody> held;
        return KARFailed(sensor.m_data.GetSensorBody(held)) || held != body
                   ? KARUnchanged
                   : sensor.m_data.SetSensorBody({});
    }
    template <auto Access>
    static constexpr auto OfData = Within<&C::m_data, Access>;
    static constexpr auto List =
        Element(L"ProximitySensor", "Tells whether a body stands near others.", CountingFrame,
                Group(L"ProximitySensorData", "What is watched.",
                      Reference<OfData<&Data::GetSensorBody>, OfData<&Data::SetSensorBody>>(
                          L"SensorBody", "The body that is watched.")
                          .Removing<&RemoveSensorBody>()
                          .EvenWithoutTarget(),
                      Mark<&C::m_data, &Data::GetUseGroupContext, &Data::SetUseGroupContext>(
                          L"UseGroupContext", "Whether only the bodies of the group count."),
                      References<&C::GetBodyInGroupCount, &C::GetBodyInGroup, &C::AddBodyToGroup>(
                          L"ProximitySensorGroup", L"BodyInGroup",
                          "The bodies that the watched body may come near to.")
                          .Removing<OfData<&Data::RemoveBodyFromGroup>>()
                          .When<OfData<&Data::GetUseGroupContext>>(),
                      Mark<&C::m_data, &Data::GetInverseResult, &Data::SetInverseResult>(
                          L"InverseResult", "Whether the status is true while no body is near."),
                      Mark<&C::m_data, &Data::GetUseClearance, &Data::SetUseClearance>(
                          L"UseClearance", "Whether bodies are near within the clearance."),
                      Attribute(Number<OfData<&Data::GetClearance>>(
                                    L"Clearance", "The distance below which a body is near.",
                                    KARMPPhysicalQuantity::Length))
                          .Through<OfData<&Data::SetClearance>>()
                          .When<OfData<&Data::GetUseClearance>>()
                          .Optional()
                          .ZeroIfMissing()),
                Attribute(Flag<&C::m_status>(
                    L"Status", "Whether the watched body is near, as it was measured last.")));
};
KARMP_DEFINE_CONTENT(KARMPProximitySensor);

KARMPProximitySensor::KARMPProximitySensor() = default;
KARMPProximitySensor::KARMPProximitySensor(const KARMPProximitySensor& source, CopyMode mode)
    : Super(source, mode), m_data(source.m_data.WithoutBodies()), m_status(source.m_status)
{}
KARMPProximitySensor::~KARMPProximitySensor() = default;

KARStatus KARMPProximitySensor::Reset()
{
    m_status = false;
    return KARSuccess;
}

KARStatus KARMPProximitySensor::Update()
{
    return karmp::UpdateByLoader<KARIMPProximitySensorLoader>(*this);
}

KARStatus KARMPProximitySensor::GetLoader(KARIMPProximitySensorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPProximitySensor::SetProximitySensorData(const KARMPProximitySensorData& data)
{
    m_data = data;
    return KARSuccess;
}

KARStatus KARMPProximitySensor::GetProximitySensorData(KARMPProximitySensorData& data) const
{
    data = m_data;
    return KARSuccess;
}

KARStatus KARMPProximitySensor::SetProximitySensorStatus(bool status)
{
    m_status = status;
    return KARSuccess;
}

KARStatus KARMPProximitySensor::GetProximitySensorStatus(bool& status) const
{
    status = m_status;
    return KARSuccess;
}

KARStatus KARMPProximitySensor::GetBodyInGroup(int index, QOBSharedHandle<KARMPBody>& body) const
{
    return m_data.GetBodyInGroup(index, body);
}

KARStatus KARMPProximitySensor::AddBodyToGroup(const QOBSharedHandle<KARMPBody>& body)
{
    return m_data.AddBodyToGroup(body);
}
