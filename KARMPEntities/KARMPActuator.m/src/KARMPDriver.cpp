#include "KARMPDriver.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPMotor.h"

KARMP_DEFINE_ENTITY(KARMPDriver, "25ACE960-0B8E-4E83-813F-132D800FA6C6");

template <>
struct karmp::ContentOf<KARMPDriver>
{
    using C = KARMPDriver;
    static constexpr auto List =
        Element(L"Driver", "A list of motors that work together.", LenientFrame,
                References<&C::m_motors, &C::AddMotor>(L"AttachedMotors", L"Motor",
                                                       "The motors that it drives together."));
};
KARMP_DEFINE_CONTENT(KARMPDriver);

KARMPDriver::KARMPDriver() = default;
KARMPDriver::KARMPDriver(const KARMPDriver& source, CopyMode mode) : Super(source, mode) {}
KARMPDriver::~KARMPDriver() = default;

void KARMPDriver::ClearContainers()
{
    m_motors.Clear();
}
