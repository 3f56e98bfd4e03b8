#pragma once

#include "KARMPItems.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace karmp::documents {

/// The items of a class by the way in which they are compared.
class ClassItems
{
public:
    /// The items of an entity's class. They are made on first need and live as long as the process;
    /// may be called by several threads.
    static const ClassItems& Of(const KARMPEntity& entity);

    explicit ClassItems(const QOBClassInfo& info);

    std::string_view Name() const { return m_name; }
    /// A number that belongs to the class's name.
    std::uint64_t Hash() const { return m_hash; }
    /// Items with values, without identifier and name.
    const std::vector<const ItemInfo*>& Values() const { return m_values; }
    /// References and lists of references.
    std::span<const ItemInfo* const> Links() const { return m_links; }
    /// Items that cannot be got: lists of records, and what the class's code alone knows.
    const std::vector<const ItemInfo*>& Others() const { return m_others; }
    /// The item of a path among the values or the links; null when there is none.
    const ItemInfo* Find(const std::wstring& path) const;
    /// True when an entity may hold what its items do not give, so that its element is compared.
    bool HasMore(const KARMPEntity& entity) const;
    /// True when the items give what stands at a path in the element.
    bool IsGiven(const std::wstring& path) const { return m_given.count(path) != 0; }

private:
    void AddGiven(const ItemInfo& item);

    std::string m_name;
    std::uint64_t m_hash;
    std::vector<const ItemInfo*> m_values;
    std::span<const ItemInfo* const> m_links;
    std::vector<const ItemInfo*> m_others;
    std::unordered_set<std::wstring> m_given;
};

} // namespace karmp::documents
