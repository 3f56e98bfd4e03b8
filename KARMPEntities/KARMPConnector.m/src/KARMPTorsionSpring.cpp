#include "KARMPTorsionSpring.h"

#include "KARIMPTorsionSpringLoader.h"
#include "KARMPFrames.h"
#include "KARMPLinkPrefetch.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSpringValues.h"

KARMP_DEFINE_ENTITY(KARMPTorsionSpring, "2D792DD9-69D6-4177-8701-E00496C213D4");

template <>
struct karmp::ContentOf<KARMPTorsionSpring>
{
    using C = KARMPTorsionSpring;
    static constexpr auto List = Element(
        L"TorsionSpring", "A spring and damper about a line.", LenientFrame,
        AskedValue<C, &C::m_stiffness, &C::GetStiffness, &C::SetStiffness>(L"Stiffness",
                                                                           "Torque per angle.")
            .In(KARMPPhysicalQuantity::AngularStiffness),
        AskedValue<C, &C::m_restAngle, &C::GetRestAngle, &C::SetRestAngle>(
            L"RestAngle", "The angle at which the spring has no torque.")
            .In(KARMPPhysicalQuantity::Angle),
        Word<&C::GetBehavior>(L"Behavior", "The senses in which it acts.")
            .Optional()
            .Through<&C::SetBehavior>(),
        AskedValue<C, &C::m_dampingCoefficient, &C::GetDampingCoefficient,
                   &C::SetDampingCoefficient>(L"DampingCoefficient", "Torque per angular velocity.")
            .In(KARMPPhysicalQuantity::AngularDamping));
};
KARMP_DEFINE_CONTENT(KARMPTorsionSpring);

KARMPTorsionSpring::KARMPTorsionSpring() = default;
KARMPTorsionSpring::KARMPTorsionSpring(const KARMPTorsionSpring& source, CopyMode mode)
    : Super(source, mode),
      m_firstAttachment(source.m_firstAttachment),
      m_secondAttachment(source.m_secondAttachment),
      m_behavior(source.m_behavior)
{}
KARMPTorsionSpring::~KARMPTorsionSpring()
{
    karmp::PrefetchLinked(m_stiffness, m_restAngle, m_dampingCoefficient);
}

KARStatus KARMPTorsionSpring::GetLoader(KARIMPTorsionSpringLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPTorsionSpring::SetFirstAttachment(const KARMathLine& attachment)
{
    m_firstAttachment = attachment;
    return KARSuccess;
}

KARStatus KARMPTorsionSpring::GetFirstAttachment(KARMathLine& attachment) const
{
    attachment = m_firstAttachment;
    return KARSuccess;
}

KARStatus KARMPTorsionSpring::SetSecondAttachment(const KARMathLine& attachment)
{
    m_secondAttachment = attachment;
    return KARSuccess;
}

KARStatus KARMPTorsionSpring::GetSecondAttachment(KARMathLine& attachment) const
{
    attachment = m_secondAttachment;
    return KARSuccess;
}

KARStatus KARMPTorsionSpring::SetStiffness(double stiffness)
{
    return karmp::SetSpringNumber<KARMPTorsionSpring>(*this, &KARMPTorsionSpring::SetStiffness,
                                                      stiffness,
                                                      KARMPPhysicalQuantity::AngularStiffness);
}

KARStatus KARMPTorsionSpring::GetStiffness(double& stiffness) const
{
    return karmp::GetSpringNumber(m_stiffness, stiffness);
}

KARStatus KARMPTorsionSpring::SetRestAngle(double angle)
{
    return karmp::SetSpringNumber<KARMPTorsionSpring>(*this, &KARMPTorsionSpring::SetRestAngle,
                                                      angle, KARMPPhysicalQuantity::Angle);
}

KARStatus KARMPTorsionSpring::GetRestAngle(double& angle) const
{
    return karmp::GetSpringNumber(m_restAngle, angle);
}

KARStatus KARMPTorsionSpring::SetDampingCoefficient(double coefficient)
{
    return karmp::SetSpringNumber<KARMPTorsionSpring>(
        *this, &KARMPTorsionSpring::SetDampingCoefficient, coefficient,
        KARMPPhysicalQuantity::AngularDamping);
}

KARStatus KARMPTorsionSpring::GetDampingCoefficient(double& coefficient) const
{
    return karmp::GetSpringNumber(m_dampingCoefficient, coefficient);
}

KARStatus KARMPTorsionSpring::SetBehavior(KARMPSpringBehavior::Enum behavior)
{
    m_behavior = behavior;
    return KARSuccess;
}

KARStatus KARMPTorsionSpring::GetBehavior(KARMPSpringBehavior::Enum& behavior) const
{
    behavior = m_behavior;
    return KARSuccess;
}
