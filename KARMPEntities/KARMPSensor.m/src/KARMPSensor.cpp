#include "KARMPSensor.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPSensor, "C1FACC58-6FB0-4d0f-AEA9-04CCBF7EE9C4");

KARMPSensor::KARMPSensor() = default;
KARMPSensor::KARMPSensor(const KARMPSensor& source, CopyMode mode) : Super(source, mode) {}
KARMPSensor::~KARMPSensor() = default;

KARStatus KARMPSensor::Serialize(KARMPSerializer* serializer) const
{
    return KARMPVerify(serializer != nullptr) ? Super::Serialize(serializer) : KARFailure;
}

KARStatus KARMPSensor::Deserialize(const KARMPDeserializer* deserializer,
                                   const KARMPEntityTable& entities)
{
    return KARMPVerify(deserializer != nullptr) ? Super::Deserialize(deserializer, entities)
                                                : KARFailure;
}

void KARMPSensor::ClearContainers() {}

KARStatus KARMPSensor::RemoveParent()
{
    return KARSuccess;
}

KARStatus KARMPSensor::Reset()
{
    return KARSuccess;
}

KARStatus KARMPSensor::Update()
{
    return KARSuccess;
}

KARStatus KARMPSensor::RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return KARMPVerify(static_cast<bool>(constraint)) ? KARSuccess : KARFailure;
}
