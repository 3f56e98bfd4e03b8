#include "KARMPEquation.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARWBFactory.h"

KARMP_DEFINE_ENTITY(KARMPEquation, "F7D802AB-65E2-4376-AD11-03A50ADFD052");

template <>
struct karmp::ContentOf<KARMPEquation>
{
    using C = KARMPEquation;
    static constexpr auto List =
        Element(L"Equation", "A relation that equations state; they are not kept in the document.",
                ConstraintFrame);
};
KARMP_DEFINE_CONTENT(KARMPEquation);

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
