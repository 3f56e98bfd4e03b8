// The names of a document and their numbers.
#pragma once

#include "KARMPExport.h"
#include "KARMPNodeStorage.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace karmp {

/// What stands for the number of a name that a document does not have.
constexpr std::uint32_t NoName = 0xFFFFFFFFU;

/// The different names of a document's elements and attributes by their numbers, and the numbers of
/// those that items have. The latter are constants of the program, so that their addresses are
/// enough to know them again: comparing numbers is several times faster than comparing names, each
/// of which is asked for once an entity.
class KARMP_API RecordedNames
{
public:
    /// The names, to which only the maker of the records appends, before the first is asked for.
    std::vector<NodeText>& List() { return m_list; }
    std::size_t Count() const { return m_list.size(); }
    /// The number of a name whose characters are a constant; NoName when there is none.
    std::uint32_t NumberOf(std::wstring_view constant) const
    {
        for (std::size_t slot = SlotOf(constant);; ++slot) {
            const Known& known = m_known[slot & (m_known.size() - 1)];
            if (known.characters == constant.data() && known.size == constant.size())
                return known.number;
            if (known.characters == nullptr)
                return Learn(constant);
        }
    }
    /// The number of any name.
    std::uint32_t Find(std::wstring_view name) const;
    const NodeText& operator[](std::size_t number) const { return m_list[number]; }

private:
    /// The characters are null in a free slot.
    struct Known
    {
        const wchar_t* characters = nullptr;
        std::uint32_t size = 0;
        std::uint32_t number = NoName;
    };
    static constexpr std::size_t FirstSlots = 128;

    static std::size_t SlotOf(std::wstring_view constant)
    {
        constexpr std::uint64_t mixer = 0x9E3779B97F4A7C15U;
        return reinterpret_cast<std::uintptr_t>(constant.data()) * mixer >> 40U;
    }
    std::uint32_t Learn(std::wstring_view constant) const;
    void Take(const Known& known) const;

    std::vector<NodeText> m_list;
    /// A power of two; half of them are free at least.
    mutable std::vector<Known> m_known = std::vector<Known>(FirstSlots);
    mutable std::size_t m_knownCount = 0;
    mutable std::unordered_map<std::wstring_view, std::uint32_t> m_numbers;
};

} // namespace karmp
