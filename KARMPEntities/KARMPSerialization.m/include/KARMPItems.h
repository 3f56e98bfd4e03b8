// The table of a class's items: what an entity holds, with get and set, without a tree in between.
#pragma once

#include "KARMPEntity.h"
#include "KARMPEnumerations.h"
#include "KARMPExport.h"
#include "KARMPItemKind.h"
#include "KARMPItemValues.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class QOBClassInfo;

namespace karmp {

struct Item;

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
    /// What the doubles of Numbers and of a Transformation stand for, and how many there are.
    NumberShape shape = NumberShape::Vector;
    std::size_t numberCount = 0;
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
    /// The words that it may be.
    std::span<const std::wstring_view> entryWords;
    /// The version from which on documents hold that word; empty without a limit.
    std::wstring_view entryWordSince;
    /// Why the item cannot be set; empty when it can.
    std::string_view readOnly;
    /// False when reading looks for another name or element than the one that is written, so that
    /// a document does not give the item back.
    bool isReadBack = true;

    /// The item's value in an entity of the class, or of a subclass; of records those that can be
    /// had. A getter of the class that reports is heard as usual.
    KARMP_API Value Get(const KARMPEntity& entity) const;
    /// False for what a class's code alone knows: Get gives nothing then.
    KARMP_API bool CanGet() const;
    /// The number of entries of References or Records in an entity; -1 when it is not known.
    KARMP_API int Count(const KARMPEntity& entity) const;
    /// The words of a list's entries, as many as Get gives entries; empty texts without a word.
    KARMP_API std::vector<std::wstring_view> EntryWords(const KARMPEntity& entity) const;
    /// The entry of a list at an index below Count, null when it cannot be had, and its word, empty
    /// without one. Allocates nothing.
    KARMP_API QOBSharedHandle<KARMPEntity> TargetAt(const KARMPEntity& entity, int index,
                                                    std::wstring_view& word) const;
    /// The index of a target in a list, -1 when it is not listed; looks at an index and the one
    /// before it first. Allocates nothing.
    KARMP_API int FindTarget(const KARMPEntity& entity, const KARMPEntity& linked,
                             int first = 0) const;
    /// Stores a value by the way that reading takes, so that a loader hears of it. A word may be
    /// given as a text as well. A list takes the entities that it does not hold yet, records those
    /// behind the ones that they hold; links are made and dropped on this side only, none drops the
    /// target of a reference and unsets an optional number, of which a loader is not told. Returns
    /// what the class's setter returns, and a failure without a change for a value that the item
    /// does not take, an entry of a list that is left out, and an item that cannot be set.
    [[nodiscard]] KARMP_API KARStatus Set(KARMPEntity& entity, const Value& value) const;
    /// The same; `why` becomes a sentence on a failure and stays otherwise.
    [[nodiscard]] KARMP_API KARStatus Set(KARMPEntity& entity, const Value& value,
                                          std::string& why) const;
    /// True for a value of the item's kind and shape: one of its words, an entity of its class. The
    /// class's setter may refuse it all the same.
    KARMP_API bool Takes(const Value& value) const;

    /// Links a target on this side only: it becomes the target of a reference, or the last entry of
    /// a list, with one of entryWords where the list has them; without a word with the first one.
    /// Returns what the class's operation returns, KARUnchanged for an entry of the list, and a
    /// failure without a change for null, a target of another class, an unknown word, an item that
    /// is no link and one that cannot be set.
    KARMP_API KARStatus AddTarget(KARMPEntity& entity, const QOBSharedHandle<KARMPEntity>& target,
                                  std::wstring_view word = {}) const;
    /// Drops the link to a target on this side only; one that is not linked changes nothing.
    /// Returns what the class's operation returns, and a failure without a change for null, a
    /// target of another class and where CanRemoveTarget is false.
    KARMP_API KARStatus RemoveTarget(KARMPEntity& entity,
                                     const QOBSharedHandle<KARMPEntity>& target) const;
    /// False for what is no link, and for links that stay once they are made.
    KARMP_API bool CanRemoveTarget() const;

    /// The records of an entity that can be had, in order, as Get gives them; empty for another
    /// item.
    KARMP_API std::vector<RecordValues> GetRecords(const KARMPEntity& entity) const;
    /// Adds a record with a value for each field; none leaves the field as in a new record. Returns
    /// what the class's operation returns, and a failure without a change for a value that its
    /// field refuses, and for records that the class's own code reads.
    [[nodiscard]] KARMP_API KARStatus AddRecord(KARMPEntity& entity,
                                                std::span<const Value> values) const;

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
    Value GetFrom(const void* owner) const;
    std::vector<RecordValues> RecordsIn(const void* owner) const;
    KARStatus SetIn(void* owner, const Value& value) const;
    KARStatus SetTargetIn(void* owner, const Value& value) const;
    KARStatus AddRecords(void* owner, const Value& value) const;
    KARStatus AddRecordIn(void* owner, std::span<const Value> values) const;
};

/// The items of a class at the current version, its bases' first; empty for a class without a list.
/// Made on first need and kept. May be called by several threads.
KARMP_API std::span<const ItemInfo> ItemsOf(std::string_view className);
KARMP_API std::span<const ItemInfo> ItemsOf(const QOBClassInfo& info);

/// The references and lists of references among the items of a class, those that Get gives, in the
/// order of ItemsOf. Made on first need and kept. May be called by several threads.
KARMP_API std::span<const ItemInfo* const> LinkItemsOf(const QOBClassInfo& info);

/// The item of a class by its path, or by its name where one item alone has it; null without one.
KARMP_API const ItemInfo* FindItem(const QOBClassInfo& info, std::wstring_view pathOrName);

/// The items by which a target refers back to an entity of class `info` that refers to it by
/// `item`: those that one of the two names as its other side. Of several, as the first and the
/// second body of a connector, one refers back.
KARMP_API std::vector<const ItemInfo*> OtherSidesOf(const ItemInfo& item, const QOBClassInfo& info,
                                                    const QOBClassInfo& target);

/// Calls `visit` with each item and each entity that it refers to, in the order of the items and of
/// their lists; null entries are left out. The links must not change meanwhile.
KARMP_API void ForEachTarget(
    const KARMPEntity& entity,
    const std::function<void(const ItemInfo& item, const QOBSharedHandle<KARMPEntity>& target)>&
        visit);

} // namespace karmp
