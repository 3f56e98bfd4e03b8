#include "KARMPDisplacementSensor2D.h"

#include "KARMPBody2D.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPMeasuredBody.h"
#include "KARMPSensorUpdate.h"

KARMP_DEFINE_ENTITY(KARMPDisplacementSensor2D, "2A3F1D87-50F3-41B0-9C2B-6671CDD9F4B5");

template <>
struct karmp::ContentOf<KARMPDisplacementSensor2D>
{
    using C = KARMPDisplacementSensor2D;
    static constexpr auto List =
        Element(L"DisplacementSensor2D", "Measures how far a planar body was moved.", CountingFrame,
                Reference<&C::m_body, &C::SetBody>(L"Body2D", "The body that is measured.")
                    .Removing<&C::RemoveBody>()
                    .OtherSide(L"DisplacementSensor"),
                Transformation<&C::m_displacement>(
                    L"Displacement2D", "The transformation of the plane by which it was moved."));
};
KARMP_DEFINE_CONTENT(KARMPDisplacementSensor2D);

KARMPDisplacementSensor2D::KARMPDisplacementSensor2D() = default;
KARMPDisplacementSensor2D::KARMPDisplacementSensor2D(const KARMPDisplacementSensor2D& source,
                                                     CopyMode mode)
    : Super(source, mode), m_displacement(source.m_displacement)
{}
KARMPDisplacementSensor2D::~KARMPDisplacementSensor2D() = default;

KARStatus KARMPDisplacementSensor2D::RemoveParent()
{
    return karmp::LeaveMeasuredBody(QOBSharedHandle<KARMPDisplacementSensor2D>(this), m_body);
}

KARStatus KARMPDisplacementSensor2D::Reset()
{
    m_displacement = KARMathTransformation2D();
    return KARSuccess;
}

KARStatus KARMPDisplacementSensor2D::Update()
{
    return karmp::UpdateIfActive<KARIMPSensorLoader>(*this, KARSuccess);
}
