#include "KARMPState.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPState, "232A05FA-B2B5-4237-BCD8-E6FC220B7860");

template <>
struct karmp::ContentOf<KARMPState>
{
    using C = KARMPState;
    static KARStatus TakeChild(C& parent, const QOBSharedHandle<C>& child)
    {
        return parent.AddChild(child);
    }
    static constexpr auto List = Element(L"State", "A named state of an entity.", LenientFrame,
                                         References<&C::m_childStates, &TakeChild>(
                                             L"ChildrenStates", L"State", "The states below it.")
                                             .InOrder());
};
KARMP_DEFINE_CONTENT(KARMPState);

KARMPState::KARMPState() = default;
KARMPState::KARMPState(const KARMPState& source, CopyMode mode) : Super(source, mode) {}
KARMPState::~KARMPState() = default;
