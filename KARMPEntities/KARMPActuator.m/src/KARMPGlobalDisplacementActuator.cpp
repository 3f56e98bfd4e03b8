#include "KARMPGlobalDisplacementActuator.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPGlobalDisplacementActuator, "93D94421-11AE-459b-8A24-58677A143B41");

template <>
struct karmp::ContentOf<KARMPGlobalDisplacementActuator>
{
    using C = KARMPGlobalDisplacementActuator;
    static constexpr auto List =
        Element(L"GlobalDisplacementActuator", "Moves the whole model.", LenientFrame,
                Transformation<&C::m_displacement>(
                    L"Displacement", "The transformation of the world by which it is moved.")
                    .Through<&C::SetGlobalDisplacement>());
};
KARMP_DEFINE_CONTENT(KARMPGlobalDisplacementActuator);

KARMPGlobalDisplacementActuator::KARMPGlobalDisplacementActuator() = default;
KARMPGlobalDisplacementActuator::KARMPGlobalDisplacementActuator(
    const KARMPGlobalDisplacementActuator& source, CopyMode mode)
    : Super(source, mode), m_displacement(source.m_displacement)
{}
KARMPGlobalDisplacementActuator::~KARMPGlobalDisplacementActuator() = default;

KARStatus KARMPGlobalDisplacementActuator::SetGlobalDisplacement(
    const KARMathTransformation& displacement)
{
    m_displacement = displacement;
    return KARSuccess;
}

KARStatus KARMPGlobalDisplacementActuator::GetGlobalDisplacement(
    KARMathTransformation& displacement) const
{
    displacement = m_displacement;
    return KARSuccess;
}
