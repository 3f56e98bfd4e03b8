// The table of a class's items: what an entity holds, with get and set, without a tree in between.
#pragma once

#include "KARMPEntity.h"
#include "KARMPEnumerations.h"
#include "KARMPExport.h"
#include "KARMPItemKind.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class QOBClassInfo;

namespace karmp {

struct Item;

/// The value of an item. None: nothing is there. Words and codes are texts, words of a bool are
/// bools, Numbers are as many doubles as the item has names, a Transformation is twelve doubles, in
/// the plane six: translation, then the matrix by columns; streams are bytes.
using ItemData =
    std::variant<std::monostate, bool, int, double, std::wstring, std::vector<double>,
                 QOBSharedHandle<KARMPEntity>, std::vector<QOBSharedHandle<KARMPEntity>>,
                 std::vector<unsigned char>>;

/// A condition for writing: what the function gives for the entity, or the record, if it is
/// written.
struct ItemCondition
{
    bool (*holds)(const void* owner) = nullptr;
    bool wanted = true;
};

/// How many of a Transformation's doubles are its translation, by the number of all of them.
constexpr std::size_t TranslationLength(std::size_t doubles)
{
    constexpr std::size_t spatial = 12;
    return doubles < spatial ? 2 : 3;
}

/// One item of a class. All texts live as long as the library.
struct ItemInfo
{
    std::wstring_view name;
    /// The names of the groups around it and its own, parted by "/"; the second item of one path
    /// has "[2]" behind it.
    std::wstring path;
    ItemKind kind = ItemKind::Number;
    ItemPresence presence = ItemPresence::Reported;
    std::wstring_view since;
    /// One sentence on the meaning.
    std::string_view says;
    KARMPPhysicalQuantity::Enum quantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
    /// The words of a Word or a Code; the names of Numbers, one a double.
    std::span<const std::wstring_view> words;
    /// The class that targets are derived from.
    std::string_view target;
    /// As SchemaItem has it: the target's item that refers back, or those of which one does.
    std::wstring_view otherSide;
    /// The target dies with the entity.
    bool isOwned = false;
    /// The words are those of a bool.
    bool isFlag = false;
    /// The items of each record of Records.
    std::vector<ItemInfo> fields;
    /// The order of the entries means something; true of Records, and of References that say so.
    bool isInOrder = false;
    /// The attribute of a list's entries that holds a word of theirs; empty without one.
    std::wstring_view entryWord;
    /// The version from which on documents hold that word; empty without a limit.
    std::wstring_view entryWordSince;
    /// Why the item cannot be set; empty when it can.
    std::string_view readOnly;
    /// False when reading looks for another name or element than the one that is written, so that
    /// a document does not give the item back.
    bool isReadBack = true;

    /// The item's value in an entity of the class, or of a subclass. A getter of the class that
    /// reports is heard as usual.
    KARMP_API ItemData Get(const KARMPEntity& entity) const;
    /// False for Records and for what a class's code alone knows: Get gives nothing then.
    KARMP_API bool CanGet() const;
    /// The number of entries of References or Records in an entity; -1 when it is not known.
    KARMP_API int Count(const KARMPEntity& entity) const;
    /// The words of a list's entries, as many as Get gives entries; empty texts without a word.
    KARMP_API std::vector<std::wstring_view> EntryWords(const KARMPEntity& entity) const;
    /// Stores a value by the way that reading takes, so that a loader hears of it. A list takes the
    /// entities that it does not hold yet; links are made on this side only. Returns what the
    /// class's setter returns, and a failure without a change for a value of another kind, an
    /// unknown word, a target of another class, none, an entry of the list that is left out, and an
    /// item that cannot be set.
    [[nodiscard]] KARMP_API KARStatus Set(KARMPEntity& entity, const ItemData& value) const;
    /// The records of an entity that can be had, in order: of each the values of its fields.
    KARMP_API std::vector<std::vector<ItemData>> GetRecords(const KARMPEntity& entity) const;
    /// Adds a record with a value for each field; none leaves the field as in a new record. Returns
    /// what the class's operation returns, and a failure without a change for a value that its
    /// field refuses, and for records that the class's own code reads.
    [[nodiscard]] KARMP_API KARStatus AddRecord(KARMPEntity& entity,
                                                std::span<const ItemData> values) const;

    /// True when documents of a version hold the item, be it in an older form of the same value.
    KARMP_API bool IsHeldAt(std::wstring_view version) const;
    /// False while a condition of the class keeps the item of an entity, or all of the entity, out
    /// of documents.
    KARMP_API bool IsWrittenFor(const KARMPEntity& entity) const;

    /// What the item is fetched and stored by; the two differ where one is written and another one
    /// read.
    const Item* written = nullptr;
    const Item* read = nullptr;
    /// What documents of versions below `since` hold in its place; null without that.
    const Item* older = nullptr;
    /// The conditions of the class, of the groups around the item and its own.
    std::vector<ItemCondition> conditions;

private:
    ItemData GetFrom(const void* owner) const;
    KARStatus SetIn(void* owner, const ItemData& value) const;
};

/// The items of a class at the current version, its bases' first; empty for a class without a list.
/// Made on first need and kept. May be called by several threads.
KARMP_API std::span<const ItemInfo> ItemsOf(std::string_view className);
KARMP_API std::span<const ItemInfo> ItemsOf(const QOBClassInfo& info);

/// The references and lists of references among the items of a class, those that Get gives, in the
/// order of ItemsOf. Made on first need and kept. May be called by several threads.
KARMP_API std::span<const ItemInfo* const> LinkItemsOf(const QOBClassInfo& info);

/// Calls `visit` with each item and each entity that it refers to, in the order of the items and of
/// their lists; null entries are left out.
KARMP_API void ForEachTarget(
    const KARMPEntity& entity,
    const std::function<void(const ItemInfo& item, const QOBSharedHandle<KARMPEntity>& target)>&
        visit);

} // namespace karmp
