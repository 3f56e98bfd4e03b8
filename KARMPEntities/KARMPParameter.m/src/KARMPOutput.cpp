#include "KARMPOutput.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPSupport.h"

KARMP_DEFINE_ENTITY(KARMPOutput, "7ABAF76A-4679-4EC9-9275-BB20B26905B1");

template <>
struct karmp::ContentOf<KARMPOutput>
{
    using C = KARMPOutput;
    static KARStatus TakeChild(C& parent, const QOBSharedHandle<C>& child)
    {
        return parent.AddChild(child);
    }
    static constexpr auto List = Element(L"Output", "A named result of an entity.", LenientFrame,
                                         References<&C::m_childOutputs, &TakeChild>(
                                             L"ChildrenOutputs", L"Output", "The outputs below it.")
                                             .InOrder(),
                                         References<&C::m_supports, &C::AddSupport>(
                                             L"Supports", L"Support", "Its ties to other entities.")
                                             .InOrder())
                                     .LeftOutWhen<&C::IsLeftOut>();
};
KARMP_DEFINE_CONTENT(KARMPOutput);

KARMPOutput::KARMPOutput() = default;
KARMPOutput::KARMPOutput(const KARMPOutput& source, CopyMode mode) : Super(source, mode) {}
KARMPOutput::~KARMPOutput() = default;
