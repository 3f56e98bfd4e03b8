// Writing and reading a class by its content list, and the macros that give a class its operations
// and its entry among the schemas.
#pragma once

#include "KARMPContent.h"
#include "KARMPContentLinks.h"
#include "KARMPContentRecords.h"

#include <string_view>

namespace karmp {

/// Writes the base's content into an element, and reads it.
using WriteBase = KARStatus (*)(const void* owner, KARMPSerializer* element);
using ReadBase = KARStatus (*)(void* owner, const KARMPDeserializer* element,
                               const KARMPEntityTable& entities);

/// Writes an owner; null for `base` when there is none.
KARStatus WriteContent(const Content& content, const void* owner, KARMPSerializer* serializer,
                       WriteBase base);
/// Reads an owner in the same manner.
KARStatus ReadContent(const Content& content, void* owner, const KARMPDeserializer* deserializer,
                      const KARMPEntityTable& entities, ReadBase base);

/// Writes an entity of class C around what its class Base writes.
template <class Base, class C>
KARStatus WriteContent(const C& entity, KARMPSerializer* serializer)
{
    return WriteContent(
        C::ClassContent(), OwnerOf(entity), serializer,
        [](const void* owner, KARMPSerializer* element) {
            return OwnerAs<C>(owner).Base::Serialize(element);
        });
}
/// Reads an entity of class C around what its class Base reads.
template <class Base, class C>
KARStatus ReadContent(C& entity, const KARMPDeserializer* deserializer,
                      const KARMPEntityTable& entities)
{
    return ReadContent(
        C::ClassContent(), OwnerOf(entity), deserializer, entities,
        [](void* owner, const KARMPDeserializer* element, const KARMPEntityTable& table) {
            return OwnerAs<C>(owner).Base::Deserialize(element, table);
        });
}

/// The content of a class and how its family writes and reads it.
template <std::size_t N>
struct ContentList
{
    Content content;
    ItemList<N> list;

    /// The class is neither written nor read while a condition holds.
    template <auto Condition>
    constexpr ContentList LeftOutWhen() const
    {
        ContentList copy = *this;
        copy.content.leftOut = ItemList<1>{}.template When<Condition>().items[0].when;
        return copy;
    }
    /// Documents hold no entities of the class: the list serves programs alone.
    constexpr ContentList OutOfDocuments() const
    {
        ContentList copy = *this;
        copy.content.isInDocuments = false;
        return copy;
    }
    /// Although the class has an operation of its own, it writes what the list says and nothing
    /// else, unless a coded item applies.
    constexpr ContentList WrittenByList() const
    {
        ContentList copy = *this;
        copy.content.isWrittenByList = true;
        return copy;
    }
    /// The element that is read is another one than that which is written.
    constexpr ContentList ReadAs(std::wstring_view element) const
    {
        ContentList copy = *this;
        copy.content.readElement = element;
        return copy;
    }
    /// An operation of the owner names the element, so that a subclass can name another one.
    template <auto Name>
    constexpr ContentList NamedBy() const
    {
        ContentList copy = *this;
        copy.content.elementOf = [](const void* owner) -> std::wstring_view {
            return (OwnerAs<typename TraitsOf<Name>::Class>(owner).*Name)();
        };
        return copy;
    }
};

constexpr Content MakeHead(std::wstring_view element, std::string_view says,
                           const ContentFrame& frame, Where where)
{
    Content head;
    head.element = element;
    head.says = says;
    head.frame = frame;
    head.where = where;
    return head;
}

/// A class with its element and its items.
template <std::size_t... N>
constexpr auto Element(std::wstring_view element, std::string_view says, const ContentFrame& frame,
                       const ItemList<N>&... lists)
{
    return ContentList<(N + ... + 0)>{MakeHead(element, says, frame, {"", 0}), List(lists...)};
}
/// A base, which writes into the element of the class.
template <std::size_t... N>
constexpr auto Base(std::string_view says, const ContentFrame& frame, const ItemList<N>&... lists)
{
    return Element({}, says, frame, lists...);
}

/// Ends the compilation when an item that is read cannot be stored. The attributes of a list's
/// entries are stored with the entries.
template <std::size_t N>
consteval bool IsWhole(const ItemList<N>& list)
{
    for (std::size_t i = 0; i < list.items.size(); ++i) {
        const Item& item = list.items[i];
        if (item.kind != ItemKind::Group && item.isRead && !item.isCoded && !item.hasSetter)
            return false;
        if (item.kind == ItemKind::References)
            i += item.inner;
    }
    return true;
}

/// The content of a record. `Described` has the list as its member `List`, made by Base: the item
/// that lists the records names their element.
template <class Described>
const Content& RecordContent()
{
    static constexpr auto items = Described::List.list;
    static constexpr Content content = [] {
        Content made = Described::List.content;
        made.items = items.items;
        // A record has no place of its own: that of its first item says as much.
        made.where = items.items[0].where;
        return made;
    }();
    return content;
}

/// Enters a class's content under the class's name when it is constructed.
class ContentRegistration
{
public:
    ContentRegistration(std::string_view className, const Content& (*content)());
};
/// The content of a class by its name; null for a class without a list.
KARMP_API const Content* FindContent(std::string_view className);

} // namespace karmp

/// The content of a class, described only: its code writes and reads it.
#define KARMP_DESCRIBE_CONTENT(Class, ...)                                                         \
    KARMP_MAKE_CONTENT(Class, karmp::ContentOf<Class>::List __VA_OPT__(, ) __VA_ARGS__)

#define KARMP_MAKE_CONTENT(Class, Listed, ...)                                                     \
    static_assert(karmp::IsWhole(karmp::ContentOf<Class>::List.list),                              \
                  "each item that is read has a setter");                                          \
    const karmp::Content& Class::ClassContent()                                                    \
    {                                                                                              \
        static constexpr auto items = karmp::ContentOf<Class>::List.list;                          \
        static constexpr karmp::Content content = [] {                                             \
            karmp::Content made = Listed.content;                                                  \
            made.items = items.items;                                                              \
            made.base = karmp::BaseContent<KARMP_RECORD_PARENT(Class, __VA_ARGS__)>();             \
            made.where = {__builtin_FILE(), __builtin_LINE()};                                     \
            return made;                                                                           \
        }();                                                                                       \
        return content;                                                                            \
    }                                                                                              \
    static const karmp::ContentRegistration s_##Class##Content(#Class, &Class::ClassContent)

/// The content of a class, with its operations. Where another class than the direct base is written
/// and read within it, that class is a further argument.
#define KARMP_DEFINE_CONTENT(Class, ...)                                                           \
    KARMP_MAKE_CONTENT(Class,                                                                      \
                       karmp::ContentOf<Class>::List.WrittenByList() __VA_OPT__(, ) __VA_ARGS__);  \
    KARStatus Class::Serialize(KARMPSerializer* serializer) const                                  \
    {                                                                                              \
        return karmp::WriteContent<KARMP_RECORD_PARENT(Class, __VA_ARGS__)>(*this, serializer);    \
    }                                                                                              \
    KARStatus Class::Deserialize(const KARMPDeserializer* deserializer,                            \
                                 const KARMPEntityTable& entities)                                 \
    {                                                                                              \
        return karmp::ReadContent<KARMP_RECORD_PARENT(Class, __VA_ARGS__)>(*this, deserializer,    \
                                                                           entities);              \
    }                                                                                              \
    static_assert(true)

namespace karmp {

/// The content that a class adds to; null below the first one.
template <class Base>
constexpr auto BaseContent() -> const Content& (*)()
{
    if constexpr (std::is_base_of_v<KARMPEntity, Base>)
        return &Base::ClassContent;
    else
        return nullptr;
}

} // namespace karmp
