#include "KARMPIdentifierNumbers.h"

#include "KARPrefetch.h"
#include "KARTextHash.h"

#include <utility>

namespace karmp::documents {

void IdentifierNumbers::Await(std::string_view identifier, std::uint32_t attribute)
{
    Waiting& added = m_waiting[m_waitingCount++];
    added.text = identifier;
    added.hash = static_cast<std::uint32_t>(kar::HashText(identifier).hash >> 32U);
    added.attribute = attribute;
    kar::Prefetch(&SlotAt(added.hash), sizeof(Slot));
}

void IdentifierNumbers::Finish()
{
    if (m_slots.size() < 2 * (m_records.identifiers + m_waitingCount))
        Grow();
    for (std::size_t index = 0; index < m_waitingCount; ++index)
        kar::Prefetch(SlotAt(m_waiting[index].hash).text, m_waiting[index].text.size());
    for (std::size_t index = 0; index < m_waitingCount; ++index) {
        const Waiting& identifier = m_waiting[index];
        m_records.attributes[identifier.attribute].identifier = NumberOf(identifier);
    }
    m_waitingCount = 0;
}

std::uint32_t IdentifierNumbers::NumberOf(const Waiting& identifier)
{
    for (std::uint32_t hash = identifier.hash;; ++hash) {
        Slot& slot = SlotAt(hash);
        if (slot.text == nullptr)
            slot = {identifier.text.data(), static_cast<std::uint32_t>(identifier.text.size()),
                    identifier.hash, m_records.identifiers++};
        else if (slot.hash != identifier.hash ||
                 std::string_view(slot.text, slot.size) != identifier.text)
            continue;
        return slot.number;
    }
}

void IdentifierNumbers::Grow()
{
    const std::vector<Slot> former = std::exchange(m_slots, std::vector<Slot>(2 * m_slots.size()));
    for (const Slot& slot : former) {
        std::uint32_t hash = slot.hash;
        while (slot.text != nullptr && SlotAt(hash).text != nullptr)
            ++hash;
        if (slot.text != nullptr)
            SlotAt(hash) = slot;
    }
}

} // namespace karmp::documents
