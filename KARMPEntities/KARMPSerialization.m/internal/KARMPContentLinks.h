// Items of a content list that refer to other entities.
#pragma once

#include "KARMPContent.h"
#include "KARMPElementReader.h"

#include <utility>

namespace karmp {

/// The entity type of a handle, a link, or a list of either.
template <class T>
struct LinkTarget;
template <class T>
struct LinkTarget<QOBSharedHandle<T>>
{
    using Type = T;
};
template <class T>
struct LinkTarget<KARMPLink<T>>
{
    using Type = T;
};
template <class T>
struct LinkTarget<KARMPLinkList<T>>
{
    using Type = T;
};
template <class T>
struct LinkTarget<KARMPAttributeList<T>>
{
    using Type = T;
};

/// Fetches the target of a link; a failure without one.
template <auto Get>
KARStatus FetchTarget(const void* owner, ItemValue& value)
{
    using Traits = TraitsOf<Get>;
    const auto& object = OwnerAs<typename Traits::Class>(owner);
    using Target = typename LinkTarget<typename Traits::Value>::Type;
    if constexpr (std::is_same_v<typename Traits::Value, KARMPLink<Target>>) {
        value.entity = (object.*Get).Handle();
        return value.entity ? KARSuccess : KARFailure;
    } else if constexpr (std::is_member_object_pointer_v<decltype(Get)>) {
        value.entity = object.*Get;
        return value.entity ? KARSuccess : KARFailure;
    } else {
        QOBSharedHandle<Target> target;
        const KARStatus status = Traits::Get(Get, object, target);
        value.entity = std::move(target);
        return status;
    }
}
/// Links the target that was read, or takes it away. Throws QOBEInvalidCast when it is of another
/// class.
template <auto Link>
KARStatus LinkTargetBy(void* owner, const ItemValue& value)
{
    using Traits = TraitsOf<Link>;
    auto& object = OwnerAs<typename Traits::Class>(owner);
    using Target = typename LinkTarget<typename Traits::Value>::Type;
    return Traits::Set(Link, object, HandleAs<Target>(*value.target));
}

/// Takes a target from a member that is a link or a list of links, or a handle.
template <auto Member>
KARStatus RemoveTargetFrom(void* owner, const ItemValue& value)
{
    using Traits = TraitsOf<Member>;
    using Held = typename Traits::Value;
    auto& object = OwnerAs<typename Traits::Class>(owner);
    const auto target = HandleAs<typename LinkTarget<Held>::Type>(*value.target);
    if constexpr (requires(Held held) { held.Remove(target); }) {
        return (object.*Member).Remove(target);
    } else {
        Held held;
        if (KARFailed(Traits::Get(Member, object, held)) || held != target)
            return KARUnchanged;
        return Traits::Set(Member, object, Held());
    }
}
/// Null where the way to the target is no such member.
template <auto Member>
constexpr auto RemoveTargetOrNone() -> KARStatus (*)(void*, const ItemValue&)
{
    constexpr bool isFunction =
        std::is_member_function_pointer_v<decltype(Member)> || std::is_pointer_v<decltype(Member)>;
    if constexpr (!isFunction && TraitsOf<Member>::Stores)
        return &RemoveTargetFrom<Member>;
    else
        return nullptr;
}

/// A single entity in an element with its identifier. `Get` is the link or its getter, which fails
/// while there is none; `Link` is what links a target that was read.
template <auto Get, auto Link>
constexpr ItemList<1> Reference(std::wstring_view name, std::string_view says,
                                Where where = Where::current())
{
    ItemList<1> list{};
    Item& item = list.First();
    item.name = name;
    item.says = says;
    item.kind = ItemKind::Reference;
    item.presence = ItemPresence::Optional;
    item.target = &LinkTarget<typename TraitsOf<Link>::Value>::Type::ClassInfo;
    item.get = &FetchTarget<Get>;
    item.set = &LinkTargetBy<Link>;
    item.hasSetter = true;
    item.remove = RemoveTargetOrNone<Get>();
    item.where = where;
    return list;
}

/// A value in an element with its identifier and always its name, which must be there unless the
/// item is optional: then it is nothing to have no value and to miss the element. An element whose
/// value the document does not have is a failed check that counts in any case but Reported.
template <auto Get, auto Link>
constexpr ItemList<1> ValueReference(std::wstring_view name, std::string_view says,
                                     Where where = Where::current())
{
    auto list = Reference<Get, Link>(name, says, where).Required();
    list.First().alwaysNamed = true;
    list.First().isValueReference = true;
    return list;
}

/// An optional value that the writer asks a getter for, which reports when there is none, as the
/// writer does then. All others look at the link, so that they report nothing.
template <auto LinkMember, auto Get, auto Link>
constexpr ItemList<1> AskedValueReference(std::wstring_view name, std::string_view says,
                                          Where where = Where::current())
{
    auto list = ValueReference<LinkMember, Link>(name, says, where).Optional();
    list.First().ask = &FetchTarget<Get>;
    return list;
}

/// The entries of a link list, or of a pair of operations, by index.
template <auto List>
struct ListedEntries
{
    using C = typename TraitsOf<List>::Class;
    static int Count(const void* owner) { return (OwnerAs<C>(owner).*List).Count(); }
    static KARStatus At(const void* owner, int index, ItemValue& value)
    {
        value.entity = (OwnerAs<C>(owner).*List).At(index);
        return KARSuccess;
    }
};
template <class Getter>
struct EntryGetter;
template <class C, class T>
struct EntryGetter<KARStatus (C::*)(int, QOBSharedHandle<T>&) const>
{
    using Class = C;
    using Target = T;
};
template <auto CountOf, auto GetAt>
struct CountedEntries
{
    using Getter = EntryGetter<std::remove_const_t<decltype(GetAt)>>;
    using C = typename Getter::Class;
    static int Count(const void* owner) { return (OwnerAs<C>(owner).*CountOf)(); }
    static KARStatus At(const void* owner, int index, ItemValue& value)
    {
        QOBSharedHandle<typename Getter::Target> entry;
        const KARStatus status = (OwnerAs<C>(owner).*GetAt)(index, entry);
        value.entity = std::move(entry);
        return status;
    }
};

template <class Entries, class Target>
constexpr Item MakeEntries(std::wstring_view name, std::wstring_view entry, std::string_view says,
                           KARStatus (*link)(void*, const ItemValue&), Where where)
{
    Item item;
    item.name = name;
    item.entry = entry;
    item.says = says;
    item.kind = ItemKind::References;
    item.presence = ItemPresence::Optional;
    item.target = &Target::ClassInfo;
    item.count = &Entries::Count;
    item.at = &Entries::At;
    item.set = link;
    item.hasSetter = true;
    item.where = where;
    return item;
}
template <class Entries, auto Link>
constexpr ItemList<1> MakeReferences(std::wstring_view name, std::wstring_view entry,
                                     std::string_view says, Where where)
{
    using Target = typename LinkTarget<typename TraitsOf<Link>::Value>::Type;
    return {{MakeEntries<Entries, Target>(name, entry, says, &LinkTargetBy<Link>, where)}};
}
/// The entities of a link list, in an element with one element an entry; nothing when there are
/// none. `Link` links each target that was read.
template <auto LinkList, auto Link>
constexpr ItemList<1> References(std::wstring_view name, std::wstring_view entry,
                                 std::string_view says, Where where = Where::current())
{
    auto list = MakeReferences<ListedEntries<LinkList>, Link>(name, entry, says, where);
    list.First().remove = RemoveTargetOrNone<LinkList>();
    return list;
}
/// The same by the operations that count the entries and give one, virtual ones for instance. An
/// entry that cannot be had is written with the bool true as identifier and name.
template <auto CountOf, auto GetAt, auto Link>
constexpr ItemList<1> References(std::wstring_view name, std::wstring_view entry,
                                 std::string_view says, Where where = Where::current())
{
    return MakeReferences<CountedEntries<CountOf, GetAt>, Link>(name, entry, says, where);
}

/// What links an entity together with a word of an enumeration.
template <class Link>
struct WordedLink;
template <class C, class T, class Enum>
struct WordedLink<KARStatus (C::*)(const QOBSharedHandle<T>&, Enum)>
{
    using Target = T;
    using Word = Enum;
};
/// The entries of a list that keeps such a word with each of them, by index.
template <auto List, auto Link>
struct WordedEntries : ListedEntries<List>
{
    using C = typename ListedEntries<List>::C;
    using Target = typename WordedLink<std::remove_const_t<decltype(Link)>>::Target;
    using Word = typename WordedLink<std::remove_const_t<decltype(Link)>>::Word;

    static KARStatus At(const void* owner, int index, ItemValue& value)
    {
        QOBSharedHandle<Target> entry;
        Word word{};
        const KARStatus status = (OwnerAs<C>(owner).*List).Get(index, entry, word);
        value.entity = std::move(entry);
        value.number = static_cast<int>(word);
        return status;
    }
    static KARStatus Set(void* owner, const ItemValue& value)
    {
        return (OwnerAs<C>(owner).*Link)(HandleAs<Target>(*value.target),
                                         static_cast<Word>(value.number));
    }
};
/// The word in an attribute of each entry.
template <class Enum>
constexpr ItemList<1> EntryWord(std::wstring_view name, std::string_view says,
                                Where where = Where::current())
{
    ItemList<1> list{};
    Item& item = list.First();
    item.name = name;
    item.says = says;
    item.kind = ItemKind::Word;
    item.place = ItemPlace::Attribute;
    item.words = EnumTexts<Enum>::Rows;
    item.where = where;
    return list;
}
/// Entities of which each has a word: `List` counts them and gives both by an index, `Link` links
/// both. `word` is the EntryWord; an entry that lacks a required one is not linked.
template <auto List, auto Link>
constexpr ItemList<2> ReferencesWith(std::wstring_view name, std::wstring_view entry,
                                     std::string_view says, const ItemList<1>& word,
                                     Where where = Where::current())
{
    using Entries = WordedEntries<List, Link>;
    ItemList<2> list{
        {MakeEntries<Entries, typename Entries::Target>(name, entry, says, &Entries::Set, where),
         word.items[0]}};
    list.First().inner = 1;
    return list;
}

} // namespace karmp
