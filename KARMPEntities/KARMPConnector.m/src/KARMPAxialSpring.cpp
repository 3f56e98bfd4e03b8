#include "KARMPAxialSpring.h"

#include "KARIMPAxialSpringLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLinkPrefetch.h"
#include "KARMPLoaderAccess.h"
#include "KARMPValue.h"

KARMP_DEFINE_ENTITY(KARMPAxialSpring, "52001324-69A8-492B-A731-5C37F9DCA5A3");

template <>
struct karmp::ContentOf<KARMPAxialSpring>
{
    using C = KARMPAxialSpring;
    static constexpr auto List = Element(
        L"AxialSpring", "A spring and damper along the line between its bodies.", LenientFrame,
        Word<&C::m_behavior>(L"Behavior", "The senses in which it acts.").Optional(),
        ValueReference<&C::m_restLength, &C::SetRestLength>(
            L"RestLength", "The length at which the spring has no force.")
            .In(KARMPPhysicalQuantity::Length)
            .Optional(),
        ValueReference<&C::m_stiffness, &C::SetStiffness>(L"Stiffness", "Force per length.")
            .In(KARMPPhysicalQuantity::LinearStiffness)
            .Optional(),
        ValueReference<&C::m_damping, &C::SetDamping>(L"Damping", "Force per velocity.")
            .In(KARMPPhysicalQuantity::LinearDamping)
            .Optional(),
        ValueReference<&C::m_actuatorForce, &C::SetActuatorForce>(
            L"PreLoadForce", "The force that an actuator adds.")
            .In(KARMPPhysicalQuantity::Force)
            .Optional());
};
KARMP_DEFINE_CONTENT(KARMPAxialSpring);

KARMPAxialSpring::KARMPAxialSpring() = default;
KARMPAxialSpring::KARMPAxialSpring(const KARMPAxialSpring& source, CopyMode mode)
    : Super(source, mode), m_behavior(source.m_behavior)
{}
KARMPAxialSpring::~KARMPAxialSpring()
{
    karmp::PrefetchLinked(m_restLength, m_stiffness, m_damping, m_actuatorForce);
}

KARStatus KARMPAxialSpring::GetLoader(KARIMPAxialSpringLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}
