#include "KARMPNormal.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPNormal, "8AD4A2AD-CF0B-45c1-934A-B6BAB1F0CD42");

template <>
struct karmp::ContentOf<KARMPNormal>
{
    using C = KARMPNormal;
    static constexpr auto List = Element(
        L"Normal", "A direction stands at a right angle on a surface.", ConstraintFrame,
        Word<&C::m_alignment>(L"Alignment", "On which side of the surface it points.").Required());
};
KARMP_DEFINE_CONTENT(KARMPNormal);

KARMPNormal::KARMPNormal() = default;
// The option stays behind.
KARMPNormal::KARMPNormal(const KARMPNormal& source, CopyMode mode) : Super(source, mode) {}
KARMPNormal::~KARMPNormal() = default;

KARStatus KARMPNormal::SetAlignment(KARMPAlignment::Enum alignment)
{
    m_alignment = alignment;
    return KARSuccess;
}

KARStatus KARMPNormal::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}
