#include "KARMPSymmetry.h"

#include "KARIMPSymmetryLoader.h"
#include "KARMPConstraintElement.h"
#include "KARMPConstraintOption.h"

KARMP_DEFINE_ENTITY(KARMPSymmetry, "1defed09-4076-47c0-8b44-dd1b69a4e3b8");

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

KARStatus KARMPSymmetry::Serialize(KARMPSerializer* serializer) const
{
    // The second field is the first element.
    return karmp::WriteConstraint(*this, serializer, L"Symmetry", [this](auto& element) {
        element.Word(L"Alignment", m_alignment);
        element.Word(L"SelectedPlane", m_plane);
    });
}

KARStatus KARMPSymmetry::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    return karmp::ReadConstraint(
        *this, deserializer, entities, L"Symmetry",
        [this](auto& element) {
            karmp::ReadOption(element, L"Alignment", *this, &KARMPSymmetry::SetAlignment);
            karmp::ReadOption(element, L"SelectedPlane", m_plane);
        });
}
