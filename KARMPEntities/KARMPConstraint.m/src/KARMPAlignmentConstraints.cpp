#include "KARMPAlignmentConstraints.h"

#include "KARIMPCoaxialityLoader.h"
#include "KARIMPParallelismLoader.h"
#include "KARIMPPerpendicularityLoader.h"
#include "KARIMPRollCurveConstraintLoader.h"
#include "KARMPConstraintElement.h"
#include "KARMPConstraintOption.h"

// What the classes have in common; their setters follow by themselves.
#define KARMP_DEFINE_ALIGNMENT_TREE(Class, Element)                                                \
    KARStatus Class::Serialize(KARMPSerializer* serializer) const                                  \
    {                                                                                              \
        return karmp::WriteConstraint(*this, serializer, Element, [this](auto& element) {          \
            element.Word(AlignmentName, m_alignment);                                              \
        });                                                                                        \
    }                                                                                              \
    KARStatus Class::GetAlignment(KARMPAlignment::Enum& alignment) const                           \
    {                                                                                              \
        alignment = m_alignment;                                                                   \
        return KARSuccess;                                                                         \
    }                                                                                              \
    static_assert(true)

#define KARMP_DEFINE_ALIGNMENT_CONSTRAINT(Class, Guid, Element, Loader)                            \
    KARMP_DEFINE_ENTITY(Class, Guid);                                                              \
    Class::Class() = default;                                                                      \
    Class::Class(const Class& source, CopyMode mode)                                               \
        : Super(source, mode), m_alignment(source.m_alignment)                                     \
    {}                                                                                             \
    Class::~Class() = default;                                                                     \
    KARStatus Class::GetLoader(Loader*& loader) const                                              \
    {                                                                                              \
        return karmp::FetchLoader(*this, loader);                                                  \
    }                                                                                              \
    KARStatus Class::Deserialize(const KARMPDeserializer* deserializer,                            \
                                 const KARMPEntityTable& entities)                                 \
    {                                                                                              \
        return karmp::ReadConstraint(                                                              \
            *this, deserializer, entities, Element, [this](auto& element) {                        \
                karmp::ReadOption(element, AlignmentName, *this, &Class::SetAlignment);            \
            });                                                                                    \
    }                                                                                              \
    KARMP_DEFINE_ALIGNMENT_TREE(Class, Element)

namespace {

constexpr std::wstring_view AlignmentName = L"Alignment";

} // namespace

KARMP_DEFINE_ALIGNMENT_CONSTRAINT(KARMPCoaxiality, "7525EEEA-82EA-41e4-BFC9-E826C18FEB1F",
                                  L"Coaxiality", KARIMPCoaxialityLoader);
KARMP_DEFINE_ALIGNMENT_CONSTRAINT(KARMPParallelism, "B15B637D-7193-474e-A95E-B4C9D58AD9BD",
                                  L"Parallelism", KARIMPParallelismLoader);
KARMP_DEFINE_ALIGNMENT_CONSTRAINT(KARMPPerpendicularity, "0A2DBF9A-AEBB-4f3a-A5DE-B737B3A0987C",
                                  L"Perpendicularity", KARIMPPerpendicularityLoader);
KARMP_DEFINE_ALIGNMENT_CONSTRAINT(KARMPRollCurveConstraint, "FE7C870B-8ACE-452D-BC33-EBF61441AAB9",
                                  L"RollCurveConstraint", KARIMPRollCurveConstraintLoader);

KARStatus KARMPCoaxiality::SetAlignment(KARMPAlignment::Enum alignment)
{
    // Alone among its kin: a loader that cannot be fetched is reported, yet it is no failure.
    m_alignment = alignment;
    KARIMPCoaxialityLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(GetLoader(loader))) || loader == nullptr)
        return KARSuccess;
    return loader->SetAlignment(alignment);
}

KARStatus KARMPParallelism::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment,
                               &KARIMPParallelismLoader::SetAlignment);
}

KARStatus KARMPPerpendicularity::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment,
                               &KARIMPPerpendicularityLoader::SetAlignment);
}

KARStatus KARMPRollCurveConstraint::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment,
                               &KARIMPRollCurveConstraintLoader::SetAlignment);
}

KARMP_DEFINE_ENTITY(KARMPNormal, "8AD4A2AD-CF0B-45c1-934A-B6BAB1F0CD42");
KARMP_DEFINE_ALIGNMENT_TREE(KARMPNormal, L"Normal");

KARMPNormal::KARMPNormal() = default;

// Unlike with its kin, the option stays behind.
KARMPNormal::KARMPNormal(const KARMPNormal& source, CopyMode mode) : Super(source, mode) {}

KARMPNormal::~KARMPNormal() = default;

KARStatus KARMPNormal::SetAlignment(KARMPAlignment::Enum alignment)
{
    m_alignment = alignment;
    return KARSuccess;
}

KARStatus KARMPNormal::Deserialize(const KARMPDeserializer* deserializer,
                                   const KARMPEntityTable& entities)
{
    return karmp::ReadConstraint(
        *this, deserializer, entities, L"Normal",
        [this](auto& element) { karmp::ReadOption(element, AlignmentName, m_alignment); });
}
