#include "KARMPDistance.h"

#include "KARIMPDistanceLoader.h"
#include "KARMPConstraintElement.h"
#include "KARMPConstraintOption.h"

KARMP_DEFINE_ENTITY(KARMPDistance, "F9250622-C718-45ab-9F44-86B6576E1BE9");

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

KARStatus KARMPDistance::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteConstraint(
        *this, serializer, L"Distance",
        [this](auto& element) {
            element.Word(L"Alignment", m_alignment);
            element.Word(L"HalfSpace", m_halfSpace);
        });
}

KARStatus KARMPDistance::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    return karmp::ReadConstraint(
        *this, deserializer, entities, L"Distance",
        [this](auto& element) {
            karmp::ReadOption(element, L"Alignment", *this, &KARMPDistance::SetAlignment);
            karmp::ReadOption(element, L"HalfSpace", *this, &KARMPDistance::SetHalfSpace);
        });
}
