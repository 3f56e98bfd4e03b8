#include "KARMPTangency.h"

#include "KARIMPTangencyLoader.h"
#include "KARMPConstraintElement.h"
#include "KARMPConstraintOption.h"
#include "KARMPLoaderQuestion.h"

KARMP_DEFINE_ENTITY(KARMPTangency, "DD99321F-DFBD-400f-B53A-DBFCD31F7988");

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

KARStatus KARMPTangency::Serialize(KARMPSerializer* serializer) const
{
    // The second field is the first element.
    return karmp::WriteConstraint(*this, serializer, L"Tangency", [this](auto& element) {
        element.Word(L"Alignment", m_alignment);
        element.Word(L"SurfaceOrientation", m_orientation);
    });
}

KARStatus KARMPTangency::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    return karmp::ReadConstraint(
        *this, deserializer, entities, L"Tangency",
        [this](auto& element) {
            karmp::ReadOption(element, L"Alignment", *this, &KARMPTangency::SetAlignment);
            karmp::ReadOption(element, L"SurfaceOrientation", *this,
                              &KARMPTangency::SetSurfaceOrientation);
        });
}
