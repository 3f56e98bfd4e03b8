// The element that a kind of joint puts around the content of its base.
#pragma once

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

#include <string_view>

namespace karmp {

/// The element of a class: its name without the library's prefix.
constexpr std::wstring_view KindName(std::wstring_view className)
{
    return className.substr(std::wstring_view(L"KARMP").size());
}

/// Adds the kind's element and has `write` fill it; the result is that of `write`.
template <class Write>
KARStatus WriteKind(KARMPSerializer* serializer, std::wstring_view name, Write write,
                    KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const ElementWriter element(serializer, name, where);
    return element ? write(element.Node()) : KARFailure;
}

/// Finds the kind's element and has `read` read it; the result is that of `read`.
template <class Read>
KARStatus ReadKind(const KARMPDeserializer* deserializer, std::wstring_view name, Read read,
                   KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const ElementReader element(deserializer, name, where);
    return element ? read(element.Node()) : KARFailure;
}

} // namespace karmp

/// Defines a kind that puts its element around its base's content.
#define KARMP_DEFINE_JOINT_KIND(Class, Guid)                                                       \
    KARMP_DEFINE_ENTITY(Class, Guid);                                                              \
    Class::Class() = default;                                                                      \
    Class::Class(const Class& source, CopyMode mode) : Super(source, mode) {}                      \
    Class::~Class() = default;                                                                     \
    KARStatus Class::Serialize(KARMPSerializer* serializer) const                                  \
    {                                                                                              \
        constexpr std::wstring_view name = karmp::KindName(L"" #Class);                            \
        return karmp::WriteKind(serializer, name,                                                  \
                                [this](auto* node) { return Super::Serialize(node); });            \
    }                                                                                              \
    KARStatus Class::Deserialize(const KARMPDeserializer* deserializer,                            \
                                 const KARMPEntityTable& entities)                                 \
    {                                                                                              \
        constexpr std::wstring_view name = karmp::KindName(L"" #Class);                            \
        return karmp::ReadKind(deserializer, name, [&](const auto* node) {                         \
            return Super::Deserialize(node, entities);                                             \
        });                                                                                        \
    }                                                                                              \
    static_assert(true)
