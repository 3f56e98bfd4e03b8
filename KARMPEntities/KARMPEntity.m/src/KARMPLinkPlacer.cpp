#include "KARMPLinkPlacer.h"

#include <utility>

bool karmp::LinkPlacer::PlaceFound(QOBSharedBase* link, const QOBSharedObject* related)
{
    QOBSharedObject* const duplicate = Find(related);
    if (duplicate != nullptr)
        ::new (link) QOBSharedBase(duplicate);
    return duplicate != nullptr;
}

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
