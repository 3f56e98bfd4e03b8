#pragma once

#include "KARMPContentItem.h"
#include "KARMPItems.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace karmp::documents {

/// Why a document does not give an item back.
enum class LossReason : std::uint8_t {
    Version,  ///< Documents of the version do not hold the item.
    Reading,  ///< The item is written, and reading looks for something else.
    Condition ///< The class writes the item in some cases only.
};

/// An item that a document of a version may lose.
struct LossyItem
{
    const ItemInfo* item;
    LossReason reason;
    /// It is about the word of a list's entries, of which the first one is what reading gives.
    bool isEntryWord;
    /// What a new entity has, and so one that is read.
    Value fresh;

    /// True when the document does not give back what an entity has. `value` is for what the item
    /// fetches.
    bool IsLostOf(const KARMPEntity& entity, ItemValue& value) const;
    /// The path of the item, for a word that of the attribute.
    std::wstring Path() const;
};

/// An item that reading must find and that documents of a version may lack.
struct NeededItem
{
    const ItemInfo* item;

    /// True when the document of an entity lacks the item. `value` is for what the item fetches.
    bool IsMissingOf(const KARMPEntity& entity, ItemValue& value) const;
};

/// Those of a class, in the order of its items. Items of groups are none of them: their groups need
/// not be there.
std::vector<NeededItem> NeededItemsOf(const QOBClassInfo& info, std::wstring_view version);

/// The items of all classes that documents of a version may lose; few classes have any.
class LossyItems
{
public:
    explicit LossyItems(std::wstring_view version) : m_version(version) {}

    /// Those of a class, in the order of its items.
    std::span<const LossyItem> Of(const QOBClassInfo& info);

private:
    std::vector<LossyItem> Make(const QOBClassInfo& info) const;

    std::wstring m_version;
    std::unordered_map<const QOBClassInfo*, std::vector<LossyItem>> m_made;
};

} // namespace karmp::documents
