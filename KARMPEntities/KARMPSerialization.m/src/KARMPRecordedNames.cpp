#include "KARMPRecordedNames.h"

#include <utility>

namespace karmp {

std::uint32_t RecordedNames::Find(std::wstring_view name) const
{
    for (std::size_t number = m_numbers.size(); number < m_list.size(); ++number)
        m_numbers.try_emplace(m_list[number].View(), static_cast<std::uint32_t>(number));
    const auto found = m_numbers.find(name);
    return found != m_numbers.end() ? found->second : NoName;
}

std::uint32_t RecordedNames::Learn(std::wstring_view constant) const
{
    const std::uint32_t number = Find(constant);
    if (constant.data() == nullptr)
        return number;
    if (m_known.size() < 2 * ++m_knownCount) {
        const std::vector<Known> former =
            std::exchange(m_known, std::vector<Known>(2 * m_known.size()));
        for (const Known& known : former)
            if (known.characters != nullptr)
                Take(known);
    }
    Take({constant.data(), static_cast<std::uint32_t>(constant.size()), number});
    return number;
}

void RecordedNames::Take(const Known& known) const
{
    std::size_t slot = SlotOf({known.characters, known.size});
    while (m_known[slot & (m_known.size() - 1)].characters != nullptr)
        ++slot;
    m_known[slot & (m_known.size() - 1)] = known;
}

} // namespace karmp
