#include "KARMPDisplacementSensor2D.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPSensorUpdate.h"

KARMP_DEFINE_ENTITY(KARMPDisplacementSensor2D, "2A3F1D87-50F3-41B0-9C2B-6671CDD9F4B5");

template <>
struct karmp::ContentOf<KARMPDisplacementSensor2D>
{
    using C = KARMPDisplacementSensor2D;
    static constexpr auto List =
        Element(L"DisplacementSensor2D", "Measures how far a planar body was moved.", CountingFrame,
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

KARStatus KARMPDisplacementSensor2D::Reset()
{
    m_displacement = KARMathTransformation2D();
    return KARSuccess;
}

KARStatus KARMPDisplacementSensor2D::Update()
{
    return karmp::UpdateIfActive<KARIMPSensorLoader>(*this, KARSuccess);
}
