#pragma once

#include "KARMPElementReader.h"
#include "KARMPElementRecords.h"
#include "KARMPEntityTable.h"
#include "KARMPNodeStorage.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace karmp {

/// What the elements of a document have in common while one of them is read.
struct RecordSource
{
    const DocumentRecords& records;
    /// The bytes that offsets count from.
    const char* bytes;
    /// Holds the text that was read last as a view.
    ReadText buffer;

    explicit RecordSource(const RecordedElement& element)
        : records(*element.records), bytes(element.bytes)
    {}
};

/// Reads the content of one recorded element as ElementReader does, without its nodes. What is
/// missing, does not convert or is otherwise unusual is left to an ElementReader, which reports;
/// the element's node is made then.
class RecordElement
{
public:
    using Where = KARMPSourceLocation;

    /// The element of an index; `source`, which must live longer, is null for none.
    RecordElement(RecordSource* source, std::uint32_t number, const KARMPDeserializer* node)
        : m_source(source), m_number(number), m_likely(number + 1), m_node(node)
    {}

    /// False when there is no element to read; then everything else does nothing and fails.
    explicit operator bool() const { return m_source != nullptr; }
    /// False when two elements have one name, or there are too many: nodes are asked for them.
    bool IsSimple() const;
    const KARMPDeserializer* Node() const;
    KARStatus Status() const { return m_failed ? KARFailure : KARSuccess; }
    void Fail() { m_failed = true; }
    void SetStatus(KARStatus earlier) { m_failed = KARFailed(earlier); }
    bool Base(KARStatus status, Where where)
    {
        m_failed = !ElementReader::Set(status, where) || m_failed;
        return !KARFailed(status);
    }

    template <class T>
    bool Attribute(std::wstring_view name, T& value, Absent absent, Where where)
    {
        const AttributeRecord* const attribute = FindAttribute(name);
        if (attribute == nullptr && absent == Absent::Keep)
            return false;
        if (attribute != nullptr && attribute->IsPlain() &&
            Convert(m_source->bytes + attribute->value, value))
            return true;
        return FromNode(
            [&](ElementReader& node) { return node.Attribute(name, value, absent, where); });
    }
    template <class T>
    bool Value(std::wstring_view name, T& value, Absent absent, Where where)
    {
        const std::uint32_t child = Find(name);
        if (child == 0 && absent == Absent::Keep)
            return false;
        const char* const text = child != 0 && IsSimple() ? TextOf(child) : nullptr;
        if (text != nullptr && Convert(text, value))
            return true;
        return FromNode(
            [&](ElementReader& node) { return node.Value(name, value, absent, where); });
    }
    /// Reads the children of a group of doubles where they are all that there is, in this order;
    /// otherwise some of the values may be read, and the result is false.
    bool TakeDoubles(std::span<const std::wstring_view> names, double* values) const;
    bool Has(std::wstring_view name) const { return Find(name) != 0; }
    RecordElement Child(std::wstring_view name, Absent absent, Where where);
    template <class Read>
    void Each(std::wstring_view name, Read read) const
    {
        if (m_source == nullptr)
            return;
        const std::uint32_t wanted = m_source->records.names.NumberOf(name);
        const std::uint32_t end = RecordOf(m_number).end;
        std::uint32_t index = 0;
        for (std::uint32_t child = m_number + 1; child != end; child = RecordOf(child).end)
            if (RecordOf(child).Name() == wanted)
                read(RecordElement(*this, child, index++));
    }
    bool HasIdentifier() const { return IdentifierOf(Recorded(m_number)) != nullptr; }
    const QOBSharedHandle<KARMPEntity>* FindTarget(const KARMPEntityTable& entities,
                                                   Where where) const;
    /// The target of a child of a name where it is found by its number; null otherwise.
    const QOBSharedHandle<KARMPEntity>* FindNumberedTarget(std::wstring_view name,
                                                           const KARMPEntityTable& entities) const;
    /// Reads by nodes; a failure counts here as well.
    template <class Read>
    bool FromNode(Read read)
    {
        if (m_source == nullptr)
            return false;
        ElementReader node(Node());
        const bool isRead = read(node);
        m_failed = m_failed || KARFailed(node.Status());
        return isRead;
    }

private:
    /// The child of `parent`, which must live longer, that has an index among those of its name.
    RecordElement(const RecordElement& parent, std::uint32_t number, std::uint32_t index)
        : m_source(parent.m_source),
          m_number(number),
          m_likely(number + 1),
          m_parent(&parent),
          m_index(index)
    {}

    // False for a text that is no such value.
    static bool Convert(const char* text, double& value);
    static bool Convert(const char* text, int& value);
    static bool Convert(const char* text, bool& value);
    static bool Convert(const char* text, ReadText& value);
    bool Convert(const char* text, std::wstring_view& value) const;

    const ElementRecord& RecordOf(std::uint32_t number) const
    {
        return m_source->records.elements[number];
    }
    RecordedElement Recorded(std::uint32_t number) const
    {
        return {&m_source->records, m_source->bytes, number};
    }
    bool HasDistinctNames() const;
    /// The index of the first element of a name; 0 when there is none.
    std::uint32_t Find(std::wstring_view name) const;
    std::uint32_t FindFrom(std::uint32_t child, std::uint32_t end, std::uint32_t name) const;
    const char* TextOf(std::uint32_t number) const;
    const AttributeRecord* FindAttribute(std::wstring_view name) const;

    RecordSource* m_source;
    std::uint32_t m_number;
    /// The child after the one found last, which is mostly asked for next.
    mutable std::uint32_t m_likely;
    const RecordElement* m_parent = nullptr;
    mutable const KARMPDeserializer* m_node = nullptr;
    std::uint32_t m_index = 0;
    bool m_failed = false;
    /// Empty until it is asked for.
    mutable std::optional<bool> m_isSimple;
};

} // namespace karmp
