#include "KARMPSupport.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPOutputGate.h"

KARMP_DEFINE_ENTITY(KARMPSupport, "A2D38552-80B9-4C6C-BB90-59EAC7D208B6");

template <>
struct karmp::ContentOf<KARMPSupport>
{
    using C = KARMPSupport;
    static constexpr auto List =
        Element(L"Support", "Ties an attribute to another entity.", LenientFrame,
                Reference<&C::m_target, &C::SetTarget>(L"Target",
                                                       "The entity that the attribute is tied to."))
            .LeftOutWhen<&C::IsLeftOut>();
};
KARMP_DEFINE_CONTENT(KARMPSupport);

KARMPSupport::KARMPSupport() = default;
KARMPSupport::KARMPSupport(const KARMPSupport& source, CopyMode mode)
    : Super(source, mode), m_owner(source.m_owner)
{}
KARMPSupport::~KARMPSupport() = default;

void KARMPSupport::ClearContainers()
{
    m_target.Clear();
}

bool KARMPSupport::IsLeftOut() const
{
    return karmp::IsOutputLeftOut(m_owner.Text());
}
