#include "KARMPReferenceTexts.h"

#include <utility>

namespace karmp::documents {

void ReferenceTexts::Add(const void* entity, std::string_view text)
{
    const std::size_t begin = m_texts.size() - Slack;
    if (begin + text.size() > std::numeric_limits<std::uint32_t>::max())
        return;
    if (2 * m_count >= m_entries.size())
        Grow();
    m_texts.resize(begin);
    m_texts.append(text);
    m_texts.append(Slack, '\0');
    m_entries[SlotOf(entity)] = {entity, static_cast<std::uint32_t>(begin),
                                 static_cast<std::uint32_t>(text.size())};
    ++m_count;
}

void ReferenceTexts::Grow()
{
    const std::vector<Entry> former =
        std::exchange(m_entries, std::vector<Entry>(2 * m_entries.size()));
    for (const Entry& entry : former)
        if (entry.entity != nullptr)
            m_entries[SlotOf(entry.entity)] = entry;
}

} // namespace karmp::documents
