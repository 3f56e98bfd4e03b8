#include "KARMPAngle.h"

#include "KARMPConstraintElement.h"

KARMP_DEFINE_ENTITY(KARMPAngle, "513A51BE-BAC9-410b-9968-1929B17AF850");

KARMPAngle::KARMPAngle() = default;

KARMPAngle::KARMPAngle(const KARMPAngle& source, CopyMode mode)
    : Super(source, mode), m_hingeMode(source.m_hingeMode)
{}

KARMPAngle::~KARMPAngle() = default;

KARStatus KARMPAngle::SetHingeMode(KARMPHingeMode::Enum mode)
{
    m_hingeMode = mode;
    return KARSuccess;
}

KARStatus KARMPAngle::GetHingeMode(KARMPHingeMode::Enum& mode) const
{
    mode = m_hingeMode;
    return KARSuccess;
}

KARStatus KARMPAngle::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteConstraint(
        *this, serializer, L"Angle",
        [this](auto& element) { element.Word(L"HingeMode", m_hingeMode); });
}

KARStatus KARMPAngle::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    return karmp::ReadConstraint(
        *this, deserializer, entities, L"Angle",
        [this](auto& element) { karmp::ReadOption(element, L"HingeMode", m_hingeMode); });
}
