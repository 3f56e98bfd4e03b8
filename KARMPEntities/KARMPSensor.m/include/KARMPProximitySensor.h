#pragma once

#include "KARMPProximitySensorData.h"
#include "KARMPSensor.h"

class KARIMPProximitySensorLoader;

/// Tells whether a body stands within a clearance of a group of bodies.
class KARMP_API KARMPProximitySensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPProximitySensor, KARMPSensor)

public:
    /// Writes "ProximitySensor" with what is watched and the status. The group is left out unless
    /// it is used, and so is the clearance. What cannot be added is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same; a flag that is missing is false. A missing status is a failed check and
    /// stays.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes the status false; always 0.
    KARStatus Reset() override;
    /// Has the loader measure, whether the sensor is active or not. No loader, a failing fetch of
    /// it and a failing loader are each a failed check and a failure.
    KARStatus Update() override;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPProximitySensorLoader*& loader) const;
    using Super::GetLoader;

    /// What is watched, copied in and out; always 0.
    KARStatus SetProximitySensorData(const KARMPProximitySensorData& data);
    KARStatus GetProximitySensorData(KARMPProximitySensorData& data) const;
    /// The measured status; always 0.
    KARStatus SetProximitySensorStatus(bool status);
    KARStatus GetProximitySensorStatus(bool& status) const;

protected:
    KARMPProximitySensor();
    /// A copy has the status, the flags and the clearance, and no body.
    KARMPProximitySensor(const KARMPProximitySensor& source, CopyMode mode);
    ~KARMPProximitySensor() override;

private:
    int GetBodyInGroupCount() const { return m_data.GetBodyInGroupCount(); }
    KARStatus GetBodyInGroup(int index, QOBSharedHandle<KARMPBody>& body) const;
    KARStatus AddBodyToGroup(const QOBSharedHandle<KARMPBody>& body);

    KARMPProximitySensorData m_data;
    bool m_status = false;
};
