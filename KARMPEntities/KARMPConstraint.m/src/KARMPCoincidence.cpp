#include "KARMPCoincidence.h"

#include "KARIMPCoincidenceLoader.h"
#include "KARMPConstraintElement.h"
#include "KARMPConstraintOption.h"
#include "KARMPLoaderQuestion.h"

KARMP_DEFINE_ENTITY(KARMPCoincidence, "D97DD118-397A-498c-A4B3-25D156F583E2");

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

KARStatus KARMPCoincidence::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteConstraint(
        *this, serializer, L"Coincidence",
        [this](auto& element) {
            element.Word(L"Alignment", m_alignment);
            element.Word(L"CircleTorusOrientation", m_orientation);
        });
}

KARStatus KARMPCoincidence::Deserialize(const KARMPDeserializer* deserializer,
                                        const KARMPEntityTable& entities)
{
    return karmp::ReadConstraint(
        *this, deserializer, entities, L"Coincidence",
        [this](auto& element) {
            karmp::ReadOption(element, L"Alignment", *this, &KARMPCoincidence::SetAlignment);
            karmp::ReadOption(element, L"CircleTorusOrientation", m_orientation);
        });
}
