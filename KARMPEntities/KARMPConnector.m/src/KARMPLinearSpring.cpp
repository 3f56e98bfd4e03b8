#include "KARMPLinearSpring.h"

#include "KARIMPLinearSpringLoader.h"
#include "KARMPFrames.h"
#include "KARMPLinkPrefetch.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSpringValues.h"

KARMP_DEFINE_ENTITY(KARMPLinearSpring, "CCA46C8B-A544-4590-9CE9-880EEA838308");

template <>
struct karmp::ContentOf<KARMPLinearSpring>
{
    using C = KARMPLinearSpring;
    static constexpr auto List =
        Element(L"LinearSpring", "A spring and damper between two points.", LenientFrame,
                AskedValue<C, &C::m_stiffness, &C::GetStiffness, &C::SetStiffness>(
                    L"Stiffness", "Force per length.")
                    .In(KARMPPhysicalQuantity::LinearStiffness),
                AskedValue<C, &C::m_restLength, &C::GetRestLength, &C::SetRestLength>(
                    L"RestLength", "The length at which the spring has no force.")
                    .In(KARMPPhysicalQuantity::Length),
                Word<&C::GetBehavior>(L"Behavior", "The senses in which it acts.")
                    .Optional()
                    .Through<&C::SetBehavior>(),
                AskedValue<C, &C::m_dampingCoefficient, &C::GetDampingCoefficient,
                           &C::SetDampingCoefficient>(L"DampingCoefficient", "Force per velocity.")
                    .In(KARMPPhysicalQuantity::LinearDamping));
};
KARMP_DEFINE_CONTENT(KARMPLinearSpring);

KARMPLinearSpring::KARMPLinearSpring() = default;
KARMPLinearSpring::KARMPLinearSpring(const KARMPLinearSpring& source, CopyMode mode)
    : Super(source, mode),
      m_firstAttachment(source.m_firstAttachment),
      m_secondAttachment(source.m_secondAttachment),
      m_behavior(source.m_behavior)
{}
KARMPLinearSpring::~KARMPLinearSpring()
{
    karmp::PrefetchLinked(m_stiffness, m_restLength, m_dampingCoefficient);
}

KARStatus KARMPLinearSpring::GetLoader(KARIMPLinearSpringLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPLinearSpring::SetFirstAttachment(const KARMathPoint& attachment)
{
    m_firstAttachment = attachment;
    return KARSuccess;
}

KARStatus KARMPLinearSpring::GetFirstAttachment(KARMathPoint& attachment) const
{
    attachment = m_firstAttachment;
    return KARSuccess;
}

KARStatus KARMPLinearSpring::SetSecondAttachment(const KARMathPoint& attachment)
{
    m_secondAttachment = attachment;
    return KARSuccess;
}

KARStatus KARMPLinearSpring::GetSecondAttachment(KARMathPoint& attachment) const
{
    attachment = m_secondAttachment;
    return KARSuccess;
}

KARStatus KARMPLinearSpring::SetStiffness(double stiffness)
{
    return karmp::SetSpringNumber<KARMPLinearSpring>(
        *this, &KARMPLinearSpring::SetStiffness, stiffness, KARMPPhysicalQuantity::LinearStiffness);
}

KARStatus KARMPLinearSpring::GetStiffness(double& stiffness) const
{
    return karmp::GetSpringNumber(m_stiffness, stiffness);
}

KARStatus KARMPLinearSpring::SetRestLength(double length)
{
    return karmp::SetSpringNumber<KARMPLinearSpring>(*this, &KARMPLinearSpring::SetRestLength,
                                                     length, KARMPPhysicalQuantity::Length);
}

KARStatus KARMPLinearSpring::GetRestLength(double& length) const
{
    return karmp::GetSpringNumber(m_restLength, length);
}

KARStatus KARMPLinearSpring::SetDampingCoefficient(double coefficient)
{
    return karmp::SetSpringNumber<KARMPLinearSpring>(
        *this, &KARMPLinearSpring::SetDampingCoefficient, coefficient,
        KARMPPhysicalQuantity::LinearDamping);
}

KARStatus KARMPLinearSpring::GetDampingCoefficient(double& coefficient) const
{
    return karmp::GetSpringNumber(m_dampingCoefficient, coefficient);
}

KARStatus KARMPLinearSpring::SetBehavior(KARMPSpringBehavior::Enum behavior)
{
    m_behavior = behavior;
    return KARSuccess;
}

KARStatus KARMPLinearSpring::GetBehavior(KARMPSpringBehavior::Enum& behavior) const
{
    behavior = m_behavior;
    return KARSuccess;
}
