#include "KARMPCoincidence.h"

#include "KARIMPCoincidenceLoader.h"
#include "KARMPConstraintOption.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderQuestion.h"

KARMP_DEFINE_ENTITY(KARMPCoincidence, "D97DD118-397A-498c-A4B3-25D156F583E2");

template <>
struct karmp::ContentOf<KARMPCoincidence>
{
    using C = KARMPCoincidence;
    static constexpr auto List =
        Element(L"Coincidence", "Two geometries lie in one another.", ConstraintFrame,
                Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
                    .Required()
                    .Through<&C::SetAlignment>(),
                Word<&C::m_orientation>(L"CircleTorusOrientation",
                                        "How a circle lies to the torus that it coincides with.")
                    .Required());
};
KARMP_DEFINE_CONTENT(KARMPCoincidence);

KARMPCoincidence::KARMPCoincidence() = default;
KARMPCoincidence::KARMPCoincidence(const KARMPCoincidence& source, CopyMode mode)
    : Super(source, mode), m_alignment(source.m_alignment), m_orientation(source.m_orientation)
{}
KARMPCoincidence::~KARMPCoincidence() = default;

KARStatus KARMPCoincidence::GetLoader(KARIMPCoincidenceLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPCoincidence::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment,
                               &KARIMPCoincidenceLoader::SetAlignment);
}

KARStatus KARMPCoincidence::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}

KARStatus KARMPCoincidence::SetCircleTorusOrientation(KARMPCircleTorusOrientation::Enum orientation)
{
    m_orientation = orientation;
    return KARSuccess;
}

KARStatus KARMPCoincidence::GetCircleTorusOrientation(
    KARMPCircleTorusOrientation::Enum& orientation) const
{
    orientation = m_orientation;
    return KARSuccess;
}

KARStatus KARMPCoincidence::GetSolverConstraintParameters(double* parameters) const
{
    return karmp::AskLoader<KARIMPCoincidenceLoader>(
        *this, KARFailure,
        [&](auto& loader) { return loader.GetSolverConstraintParameters(parameters); });
}
