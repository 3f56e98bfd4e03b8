#include "KARMPPerpendicularity.h"

#include "KARIMPPerpendicularityLoader.h"
#include "KARMPConstraintOption.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPPerpendicularity, "0A2DBF9A-AEBB-4f3a-A5DE-B737B3A0987C");

template <>
struct karmp::ContentOf<KARMPPerpendicularity>
{
    using C = KARMPPerpendicularity;
    static constexpr auto List = Element(
        L"Perpendicularity", "Two geometries have directions at a right angle.", ConstraintFrame,
        Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
            .Required()
            .Through<&C::SetAlignment>());
};
KARMP_DEFINE_CONTENT(KARMPPerpendicularity);

KARMPPerpendicularity::KARMPPerpendicularity() = default;
KARMPPerpendicularity::KARMPPerpendicularity(const KARMPPerpendicularity& source, CopyMode mode)
    : Super(source, mode), m_alignment(source.m_alignment)
{}
KARMPPerpendicularity::~KARMPPerpendicularity() = default;

KARStatus KARMPPerpendicularity::GetLoader(KARIMPPerpendicularityLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPPerpendicularity::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment,
                               &KARIMPPerpendicularityLoader::SetAlignment);
}

KARStatus KARMPPerpendicularity::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}
