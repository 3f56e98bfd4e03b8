#include "KARMPAngle.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPAngle, "513A51BE-BAC9-410b-9968-1929B17AF850");

template <>
struct karmp::ContentOf<KARMPAngle>
{
    using C = KARMPAngle;
    static constexpr auto List = Element(
        L"Angle", "Two directions are at an angle.", ConstraintFrame,
        Word<&C::m_hingeMode>(L"HingeMode", "How the hinge lies to the directions.").Required());
};
KARMP_DEFINE_CONTENT(KARMPAngle);

KARMPAngle::KARMPAngle() = default;
KARMPAngle::KARMPAngle(const KARMPAngle& source, CopyMode mode)
    : Super(source, mode), m_hingeMode(source.m_hingeMode)
{}
KARMPAngle::~KARMPAngle() = default;

KARStatus KARMPAngle::SetHingeMode(KARMPHingeMode::Enum mode)
{
    m_hingeMode = mode;
    return KARSuccess;
}

KARStatus KARMPAngle::GetHingeMode(KARMPHingeMode::Enum& mode) const
{
    mode = m_hingeMode;
    return KARSuccess;
}
