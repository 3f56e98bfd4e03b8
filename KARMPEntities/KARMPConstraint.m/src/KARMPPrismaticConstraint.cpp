#include "KARMPPrismaticConstraint.h"

#include "KARMPFriction.h"

#include <tuple>

KARMP_DEFINE_ENTITY(KARMPPrismaticConstraint, "BC308F09-8349-44B7-8983-238FFE90BB57");

template <>
struct karmp::ContentOf<KARMPPrismaticConstraint>
{
    using C = KARMPPrismaticConstraint;
    static constexpr auto List =
        Element(
            L"PrismaticConstraint", "A sliding along an axis.", KinematicFrame,
            Friction<&C::m_friction>(
                ReferenceLength<&C::m_friction, 4>(L"ReferenceWidth", "The width of the slider."),
                ReferenceLength<&C::m_friction, 5>(L"ReferenceLength", "The length of the guide.")))
            .NamedBy<&C::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPPrismaticConstraint);

KARMPPrismaticConstraint::KARMPPrismaticConstraint() = default;
KARMPPrismaticConstraint::KARMPPrismaticConstraint(const KARMPPrismaticConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}
KARMPPrismaticConstraint::~KARMPPrismaticConstraint() = default;

std::wstring_view KARMPPrismaticConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}

KARStatus KARMPPrismaticConstraint::SetFrictionParameters(
    double staticFriction, double staticSpeedLimit, double dynamicFriction,
    double dynamicSpeedLimit, double referenceWidth, double referenceLength)
{
    m_friction = {staticFriction,    staticSpeedLimit, dynamicFriction,
                  dynamicSpeedLimit, referenceWidth,   referenceLength};
    return KARSuccess;
}

KARStatus KARMPPrismaticConstraint::GetFrictionParameters(
    double& staticFriction, double& staticSpeedLimit, double& dynamicFriction,
    double& dynamicSpeedLimit, double& referenceWidth, double& referenceLength) const
{
    std::tie(staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit, referenceWidth,
             referenceLength) = std::tuple_cat(m_friction);
    return KARSuccess;
}
