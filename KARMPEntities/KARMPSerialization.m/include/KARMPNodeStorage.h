// Compact texts, values and lists of the nodes of element trees: a tree of a large model has
// millions of nodes, most of them with a name and a number only.
#pragma once

#include "KARMPExport.h"
#include "KARMPNodeMemory.h"
#include "KARMPSerializationVariable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace karmp {

/// An immutable wide text of the size of one pointer.
///
/// Names and versions are few and repeat in every entity, so that their storage is shared by the
/// whole process; other texts own their storage, or are allocated in the arena of a tree.
class KARMP_API NodeText
{
public:
    NodeText() = default;
    /// A text that is likely to occur again: shares its storage with equal ones where possible.
    static NodeText Name(std::wstring_view text);
    /// The name of the current version.
    static NodeText CurrentVersion();
    /// A value: one of one or two characters, as most numbers of a model are, shares its storage.
    static NodeText Value(std::wstring_view text)
    {
        constexpr std::size_t longestShared = 2;
        return text.size() <= longestShared ? Name(text) : Copy(text);
    }
    /// A text with storage of its own.
    static NodeText Copy(std::wstring_view text);
    /// Like Name and Copy; what is not shared is allocated in the arena of a tree.
    static NodeText Name(std::wstring_view text, NodeMemory& memory);
    static NodeText Copy(std::wstring_view text, NodeMemory& memory);
    /// A text of ASCII characters in the arena of a tree.
    static NodeText Widen(std::string_view text, NodeMemory& memory);
    /// A text with storage of its own that takes ownership of a long string without copying it.
    static NodeText Take(std::wstring&& text);

    NodeText(const NodeText& other) : m_bits(other.m_bits)
    {
        if (other.IsOwned())
            m_bits = Copy(other.View()).Release();
    }
    NodeText(NodeText&& other) noexcept : m_bits(other.Release()) {}
    NodeText& operator=(NodeText other) noexcept
    {
        std::swap(m_bits, other.m_bits);
        return *this;
    }
    ~NodeText()
    {
        if (IsOwned())
            Free();
    }

    /// The characters, valid for as long as this text is neither assigned nor destroyed.
    std::wstring_view View() const
    {
        if (m_bits == 0)
            return {};
        const auto address = m_bits & ~FlagBits;
        if ((m_bits & OwnsString) != 0)
            return *reinterpret_cast<const std::wstring*>(address);
        const auto* block = reinterpret_cast<const Block*>(address);
        return {reinterpret_cast<const wchar_t*>(block + 1), block->length};
    }

    friend bool operator==(const NodeText& left, const NodeText& right)
    {
        // Names in the table of the process are equal only when their storage is the same.
        return left.m_bits == right.m_bits ||
               ((left.m_bits & right.m_bits & IsShared) == 0 && left.View() == right.View());
    }

    /// True when it shares its storage. Two texts that do so are equal only when their storage is
    /// the same.
    bool SharesStorage() const { return (m_bits & IsShared) != 0; }
    /// True when both have the same storage.
    bool IsSameAs(const NodeText& other) const { return m_bits == other.m_bits; }

private:
    struct Block
    {
        std::size_t length;
    };
    static constexpr std::uintptr_t OwnsBlock = 1;
    static constexpr std::uintptr_t OwnsString = 2;
    static constexpr std::uintptr_t IsShared = 4;
    static constexpr std::uintptr_t OwnerBits = OwnsBlock | OwnsString;
    static constexpr std::uintptr_t FlagBits = OwnerBits | IsShared;

    explicit NodeText(std::uintptr_t bits) : m_bits(bits) {}
    static Block* NewBlock(std::wstring_view text);
    static Block* NewBlock(std::size_t length, NodeMemory& memory);
    static NodeText Shared(std::wstring_view text);
    bool IsOwned() const { return (m_bits & OwnerBits) != 0; }
    std::uintptr_t Release() { return std::exchange(m_bits, 0); }
    void Free() noexcept;

    std::uintptr_t m_bits = 0;
};

/// True when two names are equal. Names are short: comparing two characters at a time is faster
/// than a call.
inline bool SameName(std::wstring_view left, std::wstring_view right)
{
    if (left.size() != right.size())
        return false;
    using Pair = std::array<wchar_t, 2>;
    std::size_t index = 0;
    for (; index + 1 < left.size(); index += 2) {
        Pair leftPair;
        Pair rightPair;
        std::memcpy(leftPair.data(), left.data() + index, sizeof(Pair));
        std::memcpy(rightPair.data(), right.data() + index, sizeof(Pair));
        if (leftPair != rightPair)
            return false;
    }
    return index == left.size() || left[index] == right[index];
}

/// The value of an element or an attribute; the alternatives are in the order of the type's bits.
using NodeValue = std::variant<std::monostate, bool, std::int32_t, double, NodeText>;

/// The type of a value.
inline KARMPSerializationVariable::Type TypeOf(const NodeValue& value)
{
    return static_cast<KARMPSerializationVariable::Type>((1 << value.index()) >> 1);
}

/// The value's field of kind T, or the default of the plain form when the value is of another kind.
template <class T>
T FieldOf(const NodeValue& value, T otherwise)
{
    const T* field = std::get_if<T>(&value);
    return field != nullptr ? *field : otherwise;
}

/// The value's text; empty when the value is of another kind.
inline std::wstring_view TextOf(const NodeValue& value)
{
    const auto* text = std::get_if<NodeText>(&value);
    return text != nullptr ? text->View() : std::wstring_view();
}

/// A named value in plain form.
inline KARMPSerializationVariable PlainVariable(std::wstring_view name, const NodeValue& value)
{
    KARMPSerializationVariable variable;
    variable.name = name;
    variable.type = TypeOf(value);
    variable.value.boolValue = FieldOf(value, variable.value.boolValue);
    variable.value.intValue = FieldOf(value, variable.value.intValue);
    variable.value.doubleValue = FieldOf(value, variable.value.doubleValue);
    variable.value.stringValue = TextOf(value);
    return variable;
}

/// A name with a value, as a node holds its attributes.
struct NodeAttribute
{
    NodeText name;
    NodeValue value;
};

/// A text of ASCII characters up to a null, which must outlive the node that holds it: the bytes of
/// a document, say. It is converted when it is read as a wide text.
struct AsciiText
{
    const char* characters = nullptr;

    /// The characters.
    std::string_view View() const { return characters; }
};

/// A text that is read once: it refers to the characters of its node, wide or narrow ones. Narrow
/// ones that are read as wide are converted into a buffer of this object instead of the node.
class ReadText
{
public:
    ReadText() = default;
    ReadText(const ReadText&) = delete;
    ReadText& operator=(const ReadText&) = delete;

    /// Valid for as long as this text and the node's value.
    std::wstring_view View() const
    {
        if (m_ascii.data() != nullptr)
            Widen();
        return m_view;
    }
    /// True when narrow characters, all of them ASCII, are referred to.
    bool IsAscii() const { return m_ascii.data() != nullptr; }
    /// These characters, valid for as long as the node's value.
    std::string_view Ascii() const { return m_ascii; }

    /// Refers to wide characters.
    void Refer(std::wstring_view text)
    {
        m_view = text;
        m_ascii = {};
    }
    /// Refers to narrow ones.
    void Refer(AsciiText text) { m_ascii = text.View(); }

private:
    void Widen() const
    {
        wchar_t* characters = m_short.data();
        if (m_ascii.size() > m_short.size()) {
            m_long.resize(m_ascii.size());
            characters = m_long.data();
        }
        std::copy(m_ascii.begin(), m_ascii.end(), characters);
        m_view = {characters, m_ascii.size()};
    }

    std::string_view m_ascii;
    mutable std::wstring_view m_view;
    mutable std::array<wchar_t, 64> m_short;
    mutable std::wstring m_long;
};

/// The value of a node that is read: numbers are converted from narrow characters directly.
using ReadValue = std::variant<std::monostate, bool, std::int32_t, double, NodeText, AsciiText>;

/// A growing array of the size of one pointer.
template <class T>
class NodeArray
{
    static_assert(std::is_nothrow_move_constructible_v<T> && alignof(T) <= 8);

public:
    NodeArray() = default;
    NodeArray(const NodeArray&) = delete;
    NodeArray& operator=(const NodeArray&) = delete;
    ~NodeArray() { Clear(); }

    /// The elements, as a container gives them; an index is not checked.
    std::size_t size() const { return m_block != nullptr ? m_block->size : 0; }
    T& operator[](std::size_t index) { return First()[index]; }
    const T& operator[](std::size_t index) const { return First()[index]; }
    T* begin() { return m_block != nullptr ? First() : nullptr; }
    T* end() { return begin() + size(); }
    const T* begin() const { return m_block != nullptr ? First() : nullptr; }
    const T* end() const { return begin() + size(); }

    /// Reserves capacity for one more element, so that the next Append cannot fail. Allocates in
    /// `memory` unless it is null.
    void GrowIfFull(NodeMemory* memory = nullptr)
    {
        if (m_block == nullptr || m_block->size == m_block->capacity) {
            const std::size_t count = size();
            Grow(count == 0 ? 3 : count * 2, memory);
        }
    }
    /// The same for `more` elements; an empty list gets exactly that capacity.
    void Reserve(std::size_t more, NodeMemory* memory = nullptr)
    {
        if (more > (m_block != nullptr ? m_block->capacity - m_block->size : 0U))
            Grow(std::max(size() + more, size() * 2), memory);
    }

    /// Puts an element behind the last one.
    void Append(T&& element)
    {
        GrowIfFull();
        ::new (First() + m_block->size) T(std::move(element));
        ++m_block->size;
    }
    void Append(const T& element) { Append(T(element)); }
    /// Appends `count` elements, created by `make` from their numbers, within the capacity.
    template <class Make>
    void Fill(std::size_t count, Make make)
    {
        T* const first = First() + m_block->size;
        for (std::size_t number = 0; number < count; ++number)
            ::new (first + number) T(make(number));
        m_block->size += static_cast<std::uint32_t>(count);
    }

    /// Destroys all elements.
    void Clear() noexcept
    {
        std::destroy(begin(), end());
        Header* const block = std::exchange(m_block, nullptr);
        if (block != nullptr && block->isOwned != 0)
            ::operator delete(block);
    }

private:
    struct alignas(8) Header
    {
        std::uint32_t size;
        std::uint32_t capacity : 31;
        std::uint32_t isOwned : 1;
    };
    static constexpr std::uint32_t Largest = 0x7FFFFFFFU;

    T* First() const { return std::launder(reinterpret_cast<T*>(m_block + 1)); }

    void Grow(std::size_t capacity, NodeMemory* memory)
    {
        const std::size_t count = size();
        if (capacity > Largest)
            throw std::length_error("KARMP element tree: list too long");
        const std::size_t bytes = sizeof(Header) + capacity * sizeof(T);
        auto* block = static_cast<Header*>(memory != nullptr ? memory->Allocate(bytes)
                                                             : ::operator new(bytes));
        block->size = static_cast<std::uint32_t>(count);
        block->capacity = static_cast<std::uint32_t>(capacity) & Largest;
        block->isOwned = memory == nullptr ? 1 : 0;
        std::uninitialized_move(begin(), end(), reinterpret_cast<T*>(block + 1));
        Clear();
        m_block = block;
    }

    Header* m_block = nullptr;
};

} // namespace karmp
