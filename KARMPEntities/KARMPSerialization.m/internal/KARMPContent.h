// Content lists: what a class holds in a document, stated once in its source. Writer, reader,
// schema, check, comparison and the reference of the format are walks over them.
//
//     template <>
//     struct karmp::ContentOf<KARMPCoincidence>
//     {
//         using C = KARMPCoincidence;
//         static constexpr auto List = Element(
//             L"Coincidence", "Keeps two geometries in one place.", ConstraintFrame,
//             Word<&C::m_alignment>(L"Alignment", "How directions are aligned.")
//                 .Required()
//                 .Through<&C::SetAlignment>(),
//             Word<&C::m_orientation>(L"CircleTorusOrientation", "...").Required());
//     };
//     KARMP_DEFINE_CONTENT(KARMPCoincidence);
//
// The way to a value is a data member, a getter that returns it, a getter that fills its argument
// and returns a status, or a function of ContentOf that does one or the other with the object.
#pragma once

#include "KARMPContentAccess.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPItemNames.h"
#include "KARMPLink.h"
#include "KARMPLinkList.h"
#include "KARMPVersions.h"

namespace karmp {

/// The content of a class, as its static member `List`; specialised in the class's source.
template <class C>
struct ContentOf;

/// Links a target, or takes it away, by an operation of the class.
template <auto Operation>
KARStatus LinkTargetBy(void* owner, const ItemValue& value);

/// One or more items in a row: an item, or a group with what it holds. The facets apply to the
/// first one, those of versions and of presence to all that are not within a group.
template <std::size_t N>
struct ItemList
{
    using Where = KARMPSourceLocation;

    std::array<Item, N> items;

    constexpr Item& First() { return items[0]; }
    template <class Change>
    constexpr ItemList With(Change change) const
    {
        ItemList copy = *this;
        for (std::size_t i = 0; i < N; i += 1U + copy.items[i].inner)
            change(copy.items[i]);
        return copy;
    }

    constexpr ItemList Required() const
    {
        return With([](Item& item) { item.presence = ItemPresence::Required; });
    }
    constexpr ItemList Optional() const
    {
        return With([](Item& item) { item.presence = ItemPresence::Optional; });
    }
    /// A missing value is a failed check that does not count, as for all items but value
    /// references.
    constexpr ItemList Reported() const
    {
        return With([](Item& item) { item.presence = ItemPresence::Reported; });
    }
    /// A missing value is nothing; one that is there and does not convert is a failed check that
    /// counts. For single values in elements.
    constexpr ItemList RequiredIfThere() const
    {
        return Optional().With([](Item& item) { item.requiredIfThere = true; });
    }
    /// A missing value, or component of one, is read as 0; without this it stays.
    constexpr ItemList ZeroIfMissing() const
    {
        return With([](Item& item) { item.zeroIfMissing = true; });
    }
    /// Any other word than those of the table leaves the entity as it is.
    constexpr ItemList KnownWordsOnly() const
    {
        return With([](Item& item) { item.knownWordsOnly = true; });
    }
    /// Reading stores by a setter, or calls it when a group is found.
    template <auto Set>
    constexpr ItemList Through() const
    {
        return With([](Item& item) {
            item.set = &StoreItem<Set>;
            item.hasSetter = true;
        });
    }
    /// The item is written while a condition of its owner holds: a const member function or a
    /// function that returns a bool.
    template <auto Condition>
    constexpr ItemList When() const
    {
        return With([](Item& item) { item.when = &Holds<Condition>; });
    }
    /// The item is read while a condition of its owner holds.
    template <auto Condition>
    constexpr ItemList WhenRead() const
    {
        return With([](Item& item) { item.whenRead = &Holds<Condition>; });
    }
    /// An operation of the class takes the target of a reference away, or an entry of a list. A
    /// member that is a link, or a list of links, needs none.
    template <auto Remove>
    constexpr ItemList Removing() const
    {
        return With([](Item& item) { item.remove = &LinkTargetBy<Remove>; });
    }
    /// The item of the target that refers back, or those of which one does, between blanks.
    constexpr ItemList OtherSide(std::wstring_view item) const
    {
        return With([item](Item& entry) { entry.otherSide = item; });
    }
    /// The order of the entries of References means something: two lists in another order differ.
    constexpr ItemList InOrder() const
    {
        return With([](Item& item) { item.isInOrder = true; });
    }
    /// What the number measures, or the number of the value that is referred to.
    constexpr ItemList In(KARMPPhysicalQuantity::Enum quantity) const
    {
        return With([quantity](Item& item) { item.quantity = quantity; });
    }
    /// The target dies with this entity.
    constexpr ItemList Owned() const
    {
        return With([](Item& item) { item.isOwned = true; });
    }
    /// Programs cannot set the item by the table of items; the sentence tells why.
    constexpr ItemList FixedBecause(std::string_view why) const
    {
        return With([why](Item& item) { item.fixedBecause = why; });
    }
    /// A reference without a target is an element without attributes.
    constexpr ItemList EvenWithoutTarget() const
    {
        return With([](Item& item) { item.isWithoutTarget = true; });
    }
    constexpr ItemList AlwaysNamed() const
    {
        return With([](Item& item) { item.alwaysNamed = true; });
    }
    /// A failure among the items of a group, or of records, counts in the status of the whole.
    constexpr ItemList Counting() const
    {
        return With([](Item& item) { item.countsWithin = true; });
    }
    /// A list of records has an attribute with their number. It is written only: reading counts the
    /// elements.
    constexpr ItemList CountedBy(std::wstring_view attribute) const
    {
        return With([attribute](Item& item) { item.countName = attribute; });
    }
    /// A failure of the item never counts.
    constexpr ItemList Uncounted() const
    {
        return With([](Item& item) { item.isUncounted = true; });
    }
    constexpr ItemList EvenIfBaseFails() const
    {
        return With([](Item& item) { item.evenIfBaseFails = true; });
    }
    /// Entries are read whatever their names.
    constexpr ItemList AnyName() const
    {
        return With([](Item& item) { item.anyName = true; });
    }
    constexpr ItemList WrittenOnly() const
    {
        return With([](Item& item) { item.isRead = false; });
    }
    constexpr ItemList ReadOnly() const
    {
        return With([](Item& item) { item.isWritten = false; });
    }
    /// The class's own code writes and reads it; the list only describes it.
    constexpr ItemList Coded() const
    {
        return With([](Item& item) { item.isCoded = true; });
    }

private:
    template <auto Condition>
    static bool Holds(const void* owner)
    {
        using Traits = TraitsOf<Condition>;
        bool holds = false;
        Traits::Get(Condition, OwnerAs<typename Traits::Class>(owner), holds);
        return holds;
    }
};

/// Items one after the other.
template <std::size_t... N>
constexpr ItemList<(N + ... + 0)> List(const ItemList<N>&... lists)
{
    ItemList<(N + ... + 0)> all{};
    std::size_t next = 0;
    [[maybe_unused]] const auto append = [&](const auto& list) {
        for (const Item& item : list.items)
            all.items[next++] = item;
    };
    (append(lists), ...);
    return all;
}

/// Items from a version on.
template <std::size_t... N>
constexpr auto Since(std::wstring_view version, const ItemList<N>&... lists)
{
    return List(lists...).With([version](Item& item) {
        item.since = version;
        item.isGated = true;
    });
}
/// Items below a version.
template <std::size_t... N>
constexpr auto Until(std::wstring_view version, const ItemList<N>&... lists)
{
    return List(lists...).With([version](Item& item) {
        item.until = version;
        item.isGated = true;
    });
}
/// What is written is not what is read.
template <std::size_t N, std::size_t M>
constexpr auto Unequal(const ItemList<N>& written, const ItemList<M>& read)
{
    return List(written.WrittenOnly(), read.ReadOnly());
}

/// What the doubles of a value stand for.
template <class T>
inline constexpr NumberShape ShapeOf = NumberShape::Vector;
template <>
inline constexpr NumberShape ShapeOf<KARMath3x3Matrix> = NumberShape::Matrix;
template <>
inline constexpr NumberShape ShapeOf<KARMath2x2Matrix> = NumberShape::Matrix;
template <>
inline constexpr NumberShape ShapeOf<KARMathTransformation> = NumberShape::Transformation;
template <>
inline constexpr NumberShape ShapeOf<KARMathTransformation2D> = NumberShape::Transformation;

/// An item that a way to a value leads to.
template <auto Access>
constexpr ItemList<1> MakeItem(std::wstring_view name, std::string_view says, ItemKind kind,
                               KARMPSourceLocation where)
{
    ItemList<1> list{};
    Item& item = list.First();
    item.name = name;
    item.says = says;
    item.kind = kind;
    item.shape = ShapeOf<typename TraitsOf<Access>::Value>;
    item.get = &FetchItem<Access>;
    item.set = StoreItemOrNone<Access>();
    item.hasSetter = TraitsOf<Access>::Stores;
    item.where = where;
    return list;
}

using Where = KARMPSourceLocation;
using Quantity = KARMPPhysicalQuantity::Enum;

/// A double in an element of its own.
template <auto Access>
constexpr ItemList<1> Number(std::wstring_view name, std::string_view says,
                             Quantity quantity = KARMPPhysicalQuantity::NoPhysicalQuantity,
                             Where where = Where::current())
{
    auto list = MakeItem<Access>(name, says, ItemKind::Number, where);
    list.First().quantity = quantity;
    return list;
}
template <auto Access>
constexpr ItemList<1> Integer(std::wstring_view name, std::string_view says,
                              Where where = Where::current())
{
    return MakeItem<Access>(name, says, ItemKind::Integer, where);
}
template <auto Access>
constexpr ItemList<1> Flag(std::wstring_view name, std::string_view says,
                           Where where = Where::current())
{
    return MakeItem<Access>(name, says, ItemKind::Flag, where);
}
template <auto Access>
constexpr ItemList<1> Text(std::wstring_view name, std::string_view says,
                           Where where = Where::current())
{
    return MakeItem<Access>(name, says, ItemKind::Text, where);
}
/// An enumeration by its table of words.
template <auto Access>
constexpr ItemList<1> Word(std::wstring_view name, std::string_view says,
                           Where where = Where::current())
{
    auto list = MakeItem<Access>(name, says, ItemKind::Word, where);
    list.First().words = EnumTexts<typename TraitsOf<Access>::Value>::Rows;
    return list;
}
/// A flag, or another number, by words of its own.
template <auto Access>
constexpr ItemList<1> WordOf(std::wstring_view name, std::span<const std::wstring_view> words,
                             std::string_view says, Where where = Where::current())
{
    auto list = MakeItem<Access>(name, says, ItemKind::Word, where);
    list.First().words = words;
    list.First().isFlag = std::is_same_v<typename TraitsOf<Access>::Value, bool>;
    return list;
}
/// An enumeration as its number.
template <auto Access>
constexpr ItemList<1> Code(std::wstring_view name, std::string_view says,
                           Where where = Where::current())
{
    auto list = MakeItem<Access>(name, says, ItemKind::Code, where);
    list.First().words = EnumTexts<typename TraitsOf<Access>::Value>::Rows;
    return list;
}
/// Doubles side by side, each in an element of its own name; the item's name serves programs only.
template <auto Access>
constexpr ItemList<1> Numbers(std::wstring_view name, std::span<const std::wstring_view> names,
                              std::string_view says,
                              Quantity quantity = KARMPPhysicalQuantity::NoPhysicalQuantity,
                              Where where = Where::current())
{
    auto list = MakeItem<Access>(name, says, ItemKind::Numbers, where);
    list.First().words = names;
    list.First().quantity = quantity;
    list.First().place = ItemPlace::Inline;
    return list;
}
/// The same within an element of the item's name.
template <auto Access>
constexpr ItemList<1> NumbersElement(std::wstring_view name,
                                     std::span<const std::wstring_view> names,
                                     std::string_view says,
                                     Quantity quantity = KARMPPhysicalQuantity::NoPhysicalQuantity,
                                     Where where = Where::current())
{
    auto list = Numbers<Access>(name, names, says, quantity, where);
    list.First().place = ItemPlace::Element;
    return list;
}
/// Translation and rotation within an element, by the names of `parts`. Missing components of the
/// translation are 0.
template <auto Access>
constexpr ItemList<1> Transformation(std::wstring_view name, const TransformationNames& parts,
                                     std::string_view says, Where where = Where::current())
{
    auto list = MakeItem<Access>(name, says, ItemKind::Transformation, where);
    list.First().parts = &parts;
    list.First().quantity = KARMPPhysicalQuantity::Length;
    return list;
}
/// The same by the names of its dimension.
template <auto Access>
constexpr ItemList<1> Transformation(std::wstring_view name, std::string_view says,
                                     Where where = Where::current())
{
    constexpr bool isPlanar =
        std::is_same_v<typename TraitsOf<Access>::Value, KARMathTransformation2D>;
    return Transformation<Access>(name, isPlanar ? PlanarTransformation : SpatialTransformation,
                                  says, where);
}

/// Bytes, a std::vector of unsigned chars, as base-64 text: in an element with their number as
/// "length", or in an attribute. A text that is no base-64, or has no bytes, is a failed check that
/// counts where the item is required.
template <auto Access>
constexpr ItemList<1> Stream(std::wstring_view name, std::string_view says,
                             Where where = Where::current())
{
    return MakeItem<Access>(name, says, ItemKind::Stream, where);
}

/// Fetch and store of a number that may be there.
template <auto Value, auto HasValue>
struct OptionalNumberAccess
{
    using C = typename TraitsOf<Value>::Class;
    static KARStatus Get(const void* owner, ItemValue& value)
    {
        value.numbers[0] = OwnerAs<C>(owner).*Value;
        value.number = OwnerAs<C>(owner).*HasValue ? 1 : 0;
        return KARSuccess;
    }
    static KARStatus Set(void* owner, const ItemValue& value)
    {
        OwnerAs<C>(owner).*Value = value.numbers[0];
        OwnerAs<C>(owner).*HasValue = true;
        return KARSuccess;
    }
    // As in a new object. Classes and loaders have no operation for it.
    static KARStatus Unset(void* owner, const ItemValue&)
    {
        OwnerAs<C>(owner).*Value = 0.0;
        OwnerAs<C>(owner).*HasValue = false;
        return KARSuccess;
    }
};
/// An element with a flag and, while it is set, a number. `names` are those of flag and number.
template <auto Value, auto HasValue>
constexpr ItemList<1> OptionalNumber(std::wstring_view name,
                                     std::span<const std::wstring_view> names,
                                     std::string_view says,
                                     Quantity quantity = KARMPPhysicalQuantity::NoPhysicalQuantity,
                                     Where where = Where::current())
{
    using Access = OptionalNumberAccess<Value, HasValue>;
    ItemList<1> list{};
    Item& item = list.First();
    item.name = name;
    item.says = says;
    item.kind = ItemKind::OptionalNumber;
    item.quantity = quantity;
    item.words = names;
    item.get = &Access::Get;
    item.set = &Access::Set;
    item.remove = &Access::Unset;
    item.hasSetter = true;
    item.where = where;
    return list;
}

/// The item as an attribute of the element instead of an element of its own.
constexpr ItemList<1> Attribute(ItemList<1> item)
{
    item.First().place = ItemPlace::Attribute;
    return item;
}

/// An element that holds further items.
template <std::size_t... N>
constexpr auto Group(std::wstring_view name, std::string_view says, const ItemList<N>&... inner)
{
    ItemList<1> head{};
    head.First().name = name;
    head.First().says = says;
    auto list = List(head, inner...);
    list.First().inner = static_cast<std::uint16_t>(list.items.size() - 1);
    for (std::size_t i = 1; i < list.items.size(); ++i) {
        // A group has no place of its own in the call: that of its first item says as much.
        if (list.items[0].where.line == 0)
            list.items[0].where = list.items[i].where;
    }
    return list;
}

/// An item without a way to its value: the class's code writes and reads it.
constexpr ItemList<1> Described(ItemKind kind, std::wstring_view name, std::string_view says,
                                Where where = Where::current())
{
    ItemList<1> list{};
    Item& item = list.First();
    item.name = name;
    item.says = says;
    item.kind = kind;
    item.isCoded = true;
    item.where = where;
    return list;
}
template <class Enum>
constexpr ItemList<1> DescribedWord(std::wstring_view name, std::string_view says,
                                    Where where = Where::current())
{
    auto list = Described(ItemKind::Word, name, says, where);
    list.First().words = EnumTexts<Enum>::Rows;
    return list;
}

} // namespace karmp
