#include "KARMPDisplacementSensor.h"

#include "KARMPBody.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPMeasuredBody.h"
#include "KARMPSensorUpdate.h"

KARMP_DEFINE_ENTITY(KARMPDisplacementSensor, "C1FACC58-6FB0-4d0f-AEA9-04CCBF7EE9C5");

template <>
struct karmp::ContentOf<KARMPDisplacementSensor>
{
    using C = KARMPDisplacementSensor;
    static constexpr auto List =
        Element(L"DisplacementSensor", "Measures how far a body was moved.", CountingFrame,
                Reference<&C::m_body, &C::SetBody>(L"Body", "The body that is measured.")
                    .Removing<&C::RemoveBody>()
                    .OtherSide(L"DisplacementSensor"),
                Transformation<&C::m_displacement>(
                    L"Displacement", "The transformation of the world by which it was moved."));
};
KARMP_DEFINE_CONTENT(KARMPDisplacementSensor);

KARMPDisplacementSensor::KARMPDisplacementSensor() = default;
KARMPDisplacementSensor::KARMPDisplacementSensor(const KARMPDisplacementSensor& source,
                                                 CopyMode mode)
    : Super(source, mode), m_displacement(source.m_displacement)
{}
KARMPDisplacementSensor::~KARMPDisplacementSensor() = default;

KARStatus KARMPDisplacementSensor::RemoveParent()
{
    return karmp::LeaveMeasuredBody(QOBSharedHandle<KARMPDisplacementSensor>(this), m_body);
}

KARStatus KARMPDisplacementSensor::Reset()
{
    m_displacement = KARMathTransformation();
    return KARSuccess;
}

KARStatus KARMPDisplacementSensor::Update()
{
    return karmp::UpdateIfActive<KARIMPSensorLoader>(*this, KARSuccess);
}
