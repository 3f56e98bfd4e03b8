#include "KARMPSymmetry.h"

#include "KARIMPSymmetryLoader.h"
#include "KARMPConstraintOption.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPSymmetry, "1defed09-4076-47c0-8b44-dd1b69a4e3b8");

template <>
struct karmp::ContentOf<KARMPSymmetry>
{
    using C = KARMPSymmetry;
    static constexpr auto List =
        Element(L"Symmetry", "Two geometries mirror one another in a plane of an axis system.",
                ConstraintFrame,
                Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
                    .Required()
                    .Through<&C::SetAlignment>(),
                Word<&C::m_plane>(L"SelectedPlane", "The plane of the axis system.").Required());
};
KARMP_DEFINE_CONTENT(KARMPSymmetry);

KARMPSymmetry::KARMPSymmetry() = default;
KARMPSymmetry::KARMPSymmetry(const KARMPSymmetry& source, CopyMode mode)
    : Super(source, mode), m_plane(source.m_plane), m_alignment(source.m_alignment)
{}
KARMPSymmetry::~KARMPSymmetry() = default;

KARStatus KARMPSymmetry::GetLoader(KARIMPSymmetryLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPSymmetry::SetSelectedPlane(KARMPSelectedPlane::Enum plane)
{
    m_plane = plane;
    return KARSuccess;
}

KARStatus KARMPSymmetry::GetSelectedPlane(KARMPSelectedPlane::Enum& plane) const
{
    plane = m_plane;
    return KARSuccess;
}

KARStatus KARMPSymmetry::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment, &KARIMPSymmetryLoader::SetAlignment);
}

KARStatus KARMPSymmetry::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}
