#include "KARMPParameter.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPSupport.h"

KARMP_DEFINE_ENTITY(KARMPParameter, "6B2E7454-EDC6-465E-B398-A75F9A3B7D4C");

template <>
struct karmp::ContentOf<KARMPParameter>
{
    using C = KARMPParameter;
    static KARStatus TakeChild(C& parent, const QOBSharedHandle<C>& child)
    {
        return parent.AddChild(child);
    }
    static constexpr auto List =
        Element(L"Parameter", "A named input of an entity.", LenientFrame,
                References<&C::m_childParameters, &TakeChild>(L"ChildrenParameters", L"Parameter",
                                                              "The parameters below it.")
                    .InOrder(),
                References<&C::m_supports, &C::AddSupport>(L"Supports", L"Support",
                                                           "Its ties to other entities.")
                    .InOrder());
};
KARMP_DEFINE_CONTENT(KARMPParameter);

KARMPParameter::KARMPParameter() = default;
KARMPParameter::KARMPParameter(const KARMPParameter& source, CopyMode mode) : Super(source, mode) {}
KARMPParameter::~KARMPParameter() = default;
