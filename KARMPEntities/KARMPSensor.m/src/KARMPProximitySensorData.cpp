#include "KARMPProximitySensorData.h"

#include "KARMPBody.h"

KARStatus KARMPProximitySensorData::SetSensorBody(const QOBSharedHandle<KARMPBody>& body)
{
    m_sensorBody = body;
    return KARSuccess;
}

KARStatus KARMPProximitySensorData::GetSensorBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = m_sensorBody;
    return body ? KARSuccess : KARFailure;
}

KARStatus KARMPProximitySensorData::AddBodyToGroup(const QOBSharedHandle<KARMPBody>& body)
{
    return m_group.Add(body);
}

KARStatus KARMPProximitySensorData::RemoveBodyFromGroup(const QOBSharedHandle<KARMPBody>& body)
{
    return m_group.Remove(body);
}

KARStatus KARMPProximitySensorData::GetBodyInGroup(int index,
                                                   QOBSharedHandle<KARMPBody>& body) const
{
    return m_group.Get(index, body);
}

KARStatus KARMPProximitySensorData::SetUseGroupContext(bool use)
{
    m_useGroupContext = use;
    return KARSuccess;
}

KARStatus KARMPProximitySensorData::SetInverseResult(bool inverse)
{
    m_inverseResult = inverse;
    return KARSuccess;
}

KARStatus KARMPProximitySensorData::SetUseClearance(bool use)
{
    m_useClearance = use;
    return KARSuccess;
}

KARStatus KARMPProximitySensorData::SetClearance(double clearance)
{
    m_clearance = clearance;
    return KARSuccess;
}

KARMPProximitySensorData KARMPProximitySensorData::WithoutBodies() const
{
    KARMPProximitySensorData copy(*this);
    copy.m_sensorBody = nullptr;
    copy.m_group.Clear();
    return copy;
}
