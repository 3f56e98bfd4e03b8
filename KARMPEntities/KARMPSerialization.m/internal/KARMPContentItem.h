// The items of a content list: what a class holds in a document, each as data that any walker can
// read, with no knowledge of nodes, bytes or schemas.
#pragma once

#include "KARMPEnumerations.h"
#include "KARMPFailedCheck.h"
#include "KARMPItemKind.h"
#include "KARMPItemNames.h"
#include "KARMPVersions.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class KARMPEntity;
class QOBClassInfo;

namespace karmp {

struct Content;

/// Where an item stands in the element that holds it.
enum class ItemPlace : std::uint8_t {
    Element,   ///< In a child element of its name.
    Attribute, ///< In an attribute of its name.
    Inline     ///< Its numbers stand directly in the element; the name serves programs only.
};

/// A value on its way between an entity and a walker. One serves many items in a row; an item uses
/// the field of its kind alone.
struct ItemValue
{
    /// The largest number of doubles of an item: a translation and a matrix by columns.
    static constexpr std::size_t Capacity = 12;

    std::array<double, Capacity> numbers;
    /// An integer, a code, the row of a word, or a flag as 0 and 1.
    int number = 0;
    /// A text; it may refer to `buffer`.
    std::wstring_view text;
    std::wstring buffer;
    /// The bytes of a stream.
    std::vector<unsigned char> bytes;
    /// The target of a reference that is written.
    QOBSharedBase entity;
    /// The target of a reference that is read, not null.
    const QOBSharedHandle<KARMPEntity>* target = nullptr;
    /// A record of a list: the owner of the record's items.
    const void* record = nullptr;
    /// A record of the item's own class that fetching may fill, where the list keeps none.
    void* made = nullptr;
};

/// One item. `owner` is the entity as a KARMPEntity, or the record as its own class. Items of a
/// list stand in the order of writing, of reading and of the setters' calls; those of a group
/// follow the group.
struct Item
{
    // What the walkers read of every item comes first, in one cache line; what describes the item
    // comes last.
    std::wstring_view name;
    ItemKind kind = ItemKind::Group;
    ItemPlace place = ItemPlace::Element;
    ItemPresence presence = ItemPresence::Reported;
    /// Written by the node walker; read by it.
    bool isWritten = true;
    bool isRead = true;
    /// Written and read by code of the class; the item describes what that does.
    bool isCoded = false;
    /// A missing value or component becomes 0; otherwise it stays as it is.
    bool zeroIfMissing = false;
    /// A word that is none of the table leaves the entity as it is; otherwise it is row 0.
    bool knownWordsOnly = false;
    /// A value that is there and does not convert is a failed check that counts, whatever the
    /// presence.
    bool requiredIfThere = false;
    /// A reference by the rules of value references: its element has the target's name always, and
    /// one without a target in the document is a failed check.
    bool isValueReference = false;
    /// The element of a reference is written without a target as well, and read without one.
    bool isWithoutTarget = false;
    /// The failure of an item of this group, or of this item, counts in the status of the whole.
    bool countsWithin = false;
    bool isUncounted = false;
    /// Walked although the base failed.
    bool evenIfBaseFails = false;
    /// The target's name is written whether names are left out or not.
    bool alwaysNamed = false;
    /// There is a version from which on, or below which, the item exists.
    bool isGated = false;
    /// There is a setter. Compilers with a sanitizer do not compare it with null at compile time.
    bool hasSetter = false;
    /// Number of the items that follow and belong to this one.
    std::uint16_t inner = 0;
    /// The condition for writing; null without one.
    bool (*when)(const void* owner) = nullptr;
    /// Fetches the value. A failure means that there is none; for values that must be there the
    /// writer reports it.
    KARStatus (*get)(const void* owner, ItemValue& value) = nullptr;
    /// Stores the value; for a reference, links the target; for a group, told that it was found;
    /// for records, adds one.
    KARStatus (*set)(void* owner, const ItemValue& value) = nullptr;

    /// The words of a Word, row by row; the names of Numbers; flag and number of OptionalNumber.
    std::span<const std::wstring_view> words;
    /// The names of a Transformation.
    const TransformationNames* parts = nullptr;
    /// The place of the item in the class's source, which reports name.
    KARMPSourceLocation where{"", 0};
    /// The entries of a list: how many, and one by its index.
    int (*count)(const void* owner) = nullptr;
    KARStatus (*at)(const void* owner, int index, ItemValue& value) = nullptr;
    /// The element of each entry of References and Records.
    std::wstring_view entry;
    /// What the writer of a value reference asks in place of `get`; having no value is a failed
    /// check then although the element may be missing.
    KARStatus (*ask)(const void* owner, ItemValue& value) = nullptr;
    /// The condition for reading; null without one.
    bool (*whenRead)(const void* owner) = nullptr;
    /// The versions of a gated item; empty without a limit.
    std::wstring_view since;
    std::wstring_view until;

    /// One sentence on the meaning.
    std::string_view says;
    KARMPPhysicalQuantity::Enum quantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
    /// The target dies with this entity.
    bool isOwned = false;
    /// The words are those of a bool.
    bool isFlag = false;
    /// What the doubles of Numbers and of a Transformation stand for.
    NumberShape shape = NumberShape::Vector;
    /// Any name is read for the entries of a list or of a group's children.
    bool anyName = false;
    /// The order of the entries of References means something.
    bool isInOrder = false;
    /// Why programs cannot set the item by the table of items; empty when they can.
    std::string_view fixedBecause;
    /// The class that targets are derived from.
    const QOBClassInfo& (*target)() = nullptr;
    /// The item of the target that refers back, or those of which one does, between blanks.
    std::wstring_view otherSide;
    /// Takes the target of a reference, or one entry of References, away, or unsets an
    /// OptionalNumber; null when nothing does.
    KARStatus (*remove)(void* owner, const ItemValue& value) = nullptr;
    /// Makes a record that is empty.
    std::shared_ptr<void> (*makeRecord)() = nullptr;
    /// The attribute of a list of records that tells how many there are; empty without one.
    std::wstring_view countName;
    /// The content of each record that is described only; other records have the inner items.
    const Content& (*record)() = nullptr;

    /// True when documents of a version have the item.
    bool ExistsAt(std::wstring_view version) const
    {
        return !isGated || ((since.empty() || AtLeast(version, since)) &&
                            (until.empty() || !AtLeast(version, until)));
    }
};

/// The statuses of a class on one side, writing or reading.
struct ContentStatuses
{
    KARStatus nullNode = KARFailure;
    /// The class's element could not be added, or is not there.
    KARStatus missingElement = KARFailure;
    KARStatus failedBase = KARFailure;
    /// What a failure that counts gives.
    KARStatus counted = KARFailure;
    /// Failed items count; otherwise they are reported alone.
    bool itemsCount = false;
    /// Failing setters of values count as well.
    bool settersCount = false;
    /// A counted failure among the items is reported once more at the end.
    bool reportedAgain = false;
    /// A null node is no failed check.
    bool silentNull = false;
    /// The base comes after the items; otherwise it comes first.
    bool baseLast = false;
    /// The base's status is passed on without a report, and is the result unless items count.
    bool passesBase = false;
    /// A failing base is reported, and items that say so are walked all the same.
    bool goesOn = false;
};

/// How the classes of a family write and read.
struct ContentFrame
{
    ContentStatuses write;
    ContentStatuses read;
};

/// The whole content of a class without that of its base.
struct Content
{
    /// The class's element; empty for a base, which writes into the element of the class.
    std::wstring_view element;
    /// The element that is read where it is another one.
    std::wstring_view readElement;
    /// Names the element where an operation of the owner does so; `element` is the class's own
    /// name.
    std::wstring_view (*elementOf)(const void* owner) = nullptr;
    std::string_view says;
    ContentFrame frame;
    std::span<const Item> items;
    /// False for a class that stands in no document: it has items and no schema.
    bool isInDocuments = true;
    /// Null for the first class of a row.
    const Content& (*base)() = nullptr;
    /// The class writes what the list says and nothing else, unless a coded item applies.
    bool isWrittenByList = false;
    /// True while the entity is neither written nor read.
    bool (*leftOut)(const void* owner) = nullptr;
    KARMPSourceLocation where{"", 0};

    /// The element that the reader looks for.
    std::wstring_view ReadElement() const { return readElement.empty() ? element : readElement; }
    /// The element of an owner that is written.
    std::wstring_view ElementOf(const void* owner) const
    {
        return elementOf != nullptr ? elementOf(owner) : element;
    }
    /// The element that the reader of an owner looks for.
    std::wstring_view ReadElementOf(const void* owner) const
    {
        return elementOf != nullptr ? elementOf(owner) : ReadElement();
    }
};

} // namespace karmp
