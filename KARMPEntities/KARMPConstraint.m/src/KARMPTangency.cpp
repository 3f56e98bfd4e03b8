#include "KARMPTangency.h"

#include "KARIMPTangencyLoader.h"
#include "KARMPConstraintOption.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderQuestion.h"

KARMP_DEFINE_ENTITY(KARMPTangency, "DD99321F-DFBD-400f-B53A-DBFCD31F7988");

template <>
struct karmp::ContentOf<KARMPTangency>
{
    using C = KARMPTangency;
    static constexpr auto List =
        Element(L"Tangency", "Two geometries touch.", ConstraintFrame,
                Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
                    .Required()
                    .Through<&C::SetAlignment>(),
                Word<&C::m_orientation>(L"SurfaceOrientation", "The side of the surface.")
                    .Required()
                    .Through<&C::SetSurfaceOrientation>());
};
KARMP_DEFINE_CONTENT(KARMPTangency);

KARMPTangency::KARMPTangency() = default;
KARMPTangency::KARMPTangency(const KARMPTangency& source, CopyMode mode)
    : Super(source, mode), m_orientation(source.m_orientation), m_alignment(source.m_alignment)
{}
KARMPTangency::~KARMPTangency() = default;

KARStatus KARMPTangency::GetLoader(KARIMPTangencyLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPTangency::SetSurfaceOrientation(KARMPSurfaceOrientation::Enum orientation)
{
    return karmp::StoreAndTell(*this, m_orientation, orientation,
                               &KARIMPTangencyLoader::SetSurfaceOrientation);
}

KARStatus KARMPTangency::GetSurfaceOrientation(KARMPSurfaceOrientation::Enum& orientation) const
{
    orientation = m_orientation;
    return KARSuccess;
}

KARStatus KARMPTangency::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment, &KARIMPTangencyLoader::SetAlignment);
}

KARStatus KARMPTangency::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}

KARStatus KARMPTangency::GetSolverConstraintParameters(double* parameters) const
{
    return karmp::AskLoader<KARIMPTangencyLoader>(
        *this, KARFailure,
        [&](auto& loader) { return loader.GetSolverConstraintParameters(parameters); });
}
