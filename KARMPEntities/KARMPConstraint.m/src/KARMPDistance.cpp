#include "KARMPDistance.h"

#include "KARIMPDistanceLoader.h"
#include "KARMPConstraintOption.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPDistance, "F9250622-C718-45ab-9F44-86B6576E1BE9");

template <>
struct karmp::ContentOf<KARMPDistance>
{
    using C = KARMPDistance;
    static constexpr auto List =
        Element(L"Distance", "Two geometries are at a distance.", ConstraintFrame,
                Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
                    .Required()
                    .Through<&C::SetAlignment>(),
                Word<&C::m_halfSpace>(L"HalfSpace", "The side on which the distance is measured.")
                    .Required()
                    .Through<&C::SetHalfSpace>());
};
KARMP_DEFINE_CONTENT(KARMPDistance);

KARMPDistance::KARMPDistance() = default;
KARMPDistance::KARMPDistance(const KARMPDistance& source, CopyMode mode)
    : Super(source, mode), m_alignment(source.m_alignment), m_halfSpace(source.m_halfSpace)
{}
KARMPDistance::~KARMPDistance() = default;

KARStatus KARMPDistance::GetLoader(KARIMPDistanceLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPDistance::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment, &KARIMPDistanceLoader::SetAlignment);
}

KARStatus KARMPDistance::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}

KARStatus KARMPDistance::SetHalfSpace(KARMPHalfSpace::Enum halfSpace)
{
    return karmp::StoreAndTell(*this, m_halfSpace, halfSpace, &KARIMPDistanceLoader::SetHalfSpace);
}

KARStatus KARMPDistance::GetHalfSpace(KARMPHalfSpace::Enum& halfSpace) const
{
    halfSpace = m_halfSpace;
    return KARSuccess;
}
