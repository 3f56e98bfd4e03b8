#include "KARMPEquation.h"

#include "KARMPConstraintElement.h"
#include "KARWBFactory.h"

KARMP_DEFINE_ENTITY(KARMPEquation, "F7D802AB-65E2-4376-AD11-03A50ADFD052");

KARMPEquation::KARMPEquation() = default;

KARMPEquation::KARMPEquation(const KARMPEquation& source, CopyMode mode) : Super(source, mode) {}

KARMPEquation::~KARMPEquation()
{
    delete m_factory;
    m_factory = nullptr;
}

KARStatus KARMPEquation::SetEquation(KARWBFactory* factory)
{
    m_factory = factory;
    return KARSuccess;
}

KARStatus KARMPEquation::GetEquation(KARWBFactory*& factory) const
{
    factory = m_factory;
    return KARMPVerify(factory != nullptr) ? KARSuccess : KARFailure;
}

KARStatus KARMPEquation::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteConstraint(*this, serializer, L"Equation");
}

KARStatus KARMPEquation::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    return karmp::ReadConstraint(*this, deserializer, entities, L"Equation");
}
