#include "KARMPScrewConstraint.h"

#include "KARMPFriction.h"

#include <tuple>

KARMP_DEFINE_ENTITY(KARMPScrewConstraint, "4D509574-BCB0-4EAD-BC6B-0572FA1A7EA5");

template <>
struct karmp::ContentOf<KARMPScrewConstraint>
{
    using C = KARMPScrewConstraint;
    // Unlike in the other classes, an element that could not be added is reported and yet no
    // failure.
    static constexpr ContentFrame Frame = [] {
        ContentFrame frame = KinematicFrame;
        frame.write.missingElement = KARSuccess;
        return frame;
    }();
    static constexpr auto List =
        Element(
            L"ScrewConstraint", "A turning about an axis coupled with a sliding along it.", Frame,
            Friction<&C::m_friction>(
                ReferenceLength<&C::m_friction, 5>(L"ReferenceDiameter",
                                                   "The diameter of the screw."),
                ReferenceLength<&C::m_friction, 4>(L"ReferenceLength", "The length of the nut.")),
            Text<&C::m_motionState>(L"MotionState",
                                    "The state of the motion, free text of the solver.")
                .Required(),
            Number<&C::m_tangent>(L"ScrewTangent", "The tangent of the helix.").Required(),
            Number<&C::m_rotationOffset>(L"RotationOffset",
                                         "The angle at which the turning starts.",
                                         KARMPPhysicalQuantity::Angle)
                .Required(),
            Number<&C::m_translationOffset>(L"TranslationOffset",
                                            "The length at which the sliding starts.",
                                            KARMPPhysicalQuantity::Length)
                .Required())
            .NamedBy<&C::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPScrewConstraint);

KARMPScrewConstraint::KARMPScrewConstraint() = default;
KARMPScrewConstraint::KARMPScrewConstraint(const KARMPScrewConstraint& source, CopyMode mode)
    : Super(source, mode),
      m_friction(source.m_friction),
      m_motionState(source.m_motionState),
      m_tangent(source.m_tangent),
      m_rotationOffset(source.m_rotationOffset),
      m_translationOffset(source.m_translationOffset)
{}
KARMPScrewConstraint::~KARMPScrewConstraint() = default;

std::wstring_view KARMPScrewConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}

KARStatus KARMPScrewConstraint::SetFrictionParameters(
    double staticFriction, double staticSpeedLimit, double dynamicFriction,
    double dynamicSpeedLimit, double referenceLength, double referenceDiameter)
{
    m_friction = {staticFriction,    staticSpeedLimit, dynamicFriction,
                  dynamicSpeedLimit, referenceLength,  referenceDiameter};
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetFrictionParameters(
    double& staticFriction, double& staticSpeedLimit, double& dynamicFriction,
    double& dynamicSpeedLimit, double& referenceLength, double& referenceDiameter) const
{
    std::tie(staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit, referenceLength,
             referenceDiameter) = std::tuple_cat(m_friction);
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetTangent(double tangent)
{
    m_tangent = tangent;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetTangent(double& tangent) const
{
    tangent = m_tangent;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetRotationOffset(double offset)
{
    m_rotationOffset = offset;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetRotationOffset(double& offset) const
{
    offset = m_rotationOffset;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetTranslationOffset(double offset)
{
    m_translationOffset = offset;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetTranslationOffset(double& offset) const
{
    offset = m_translationOffset;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetMotionState(const KARString& state)
{
    m_motionState = state;
    return KARSuccess;
}
