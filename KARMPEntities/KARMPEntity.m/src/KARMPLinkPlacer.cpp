#include "KARMPLinkPlacer.h"

#include <utility>

void karmp::LinkPlacer::DropWaiting() noexcept
{
    m_letsWait = false;
    if (!HasWaiting())
        return;
    m_map.ForEachSlot([this](QOBSharedObject*& slot) {
        if (IsWaiting(slot))
            Complete(std::exchange(slot, nullptr), nullptr);
    });
}
