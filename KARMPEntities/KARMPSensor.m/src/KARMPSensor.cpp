#include "KARMPSensor.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPSensor, "C1FACC58-6FB0-4d0f-AEA9-04CCBF7EE9C4");

template <>
struct karmp::ContentOf<KARMPSensor>
{
    static constexpr auto List = Base("Anything that holds a measurement.", PassingFrame);
};
KARMP_DEFINE_CONTENT(KARMPSensor);

KARMPSensor::KARMPSensor() = default;
KARMPSensor::KARMPSensor(const KARMPSensor& source, CopyMode mode) : Super(source, mode) {}
KARMPSensor::~KARMPSensor() = default;

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
