// Reading the items of a content list straight from the records of a document.
#pragma once

#include "KARMPContentWalker.h"
#include "KARMPElementReader.h"
#include "KARMPElementRecords.h"
#include "KARMPEntityTable.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace karmp {

/// A recorded element that holds few elements, each with a name of its own, or a list. Its node is
/// made when it is asked for.
class RecordElement
{
public:
    RecordElement(const RecordedElement& element, const KARMPDeserializer* node);
    /// An element that `parent`, which must live longer, finds by its name.
    RecordElement(const RecordElement& parent, std::uint32_t number);

    /// False when two elements have one name, or there are too many.
    bool IsSimple() const { return m_isSimple; }
    /// The index of the element of a name; 0 when there is none. For simple elements.
    std::uint32_t Find(std::wstring_view name);
    const KARMPDeserializer* Node() const;
    /// Its index.
    std::uint32_t Number() const { return m_element.number; }

    /// As of ElementReader.
    KARStatus Status() const { return m_failed ? KARFailure : KARSuccess; }
    void Fail() { m_failed = true; }

private:
    bool HasDistinctNames() const;
    std::uint32_t FindFrom(std::uint32_t child, std::uint32_t end, std::uint32_t name) const;

    RecordedElement m_element;
    const RecordElement* m_parent = nullptr;
    mutable const KARMPDeserializer* m_node = nullptr;
    /// The child after the one found last, which is mostly asked for next.
    std::uint32_t m_likely;
    bool m_isSimple;
    bool m_failed = false;
};

/// Reads the items of one owner from records. Where an item is missing that should be there, does
/// not convert, or is otherwise unusual, ContentReader reads that item from nodes, and reports.
class RecordReader : public ContentWalker<RecordReader, RecordElement>
{
public:
    RecordReader(void* owner, std::wstring_view version, const KARMPEntityTable& entities,
                 const ContentStatuses& statuses)
        : ContentWalker(version), m_owner(owner), m_entities(entities), m_statuses(statuses)
    {}

    /// False, with nothing read, when the element is not recorded or not simple.
    bool WalkRecord(std::span<const Item> items, ElementReader& element, bool baseFailed);

    bool Applies(const Item& item, RecordElement& element)
    {
        return item.isRead && !item.isCoded && m_gate.Passes(item) &&
               (item.whenRead == nullptr ||
                (element.Find(item.name) != 0 && item.whenRead(m_owner)));
    }
    void WalkItem(const Item& item, std::span<const Item> inner, RecordElement& element);

private:
    /// The target of an entry of a list, and its word.
    struct Entry
    {
        const QOBSharedHandle<KARMPEntity>* target;
        int word;
    };

    // These return false, with nothing stored, for what is not usual.
    bool Read(const Item& item, std::span<const Item> inner, RecordElement& element);
    bool ReadAttribute(const Item& item, RecordElement& element);
    bool ReadScalar(const Item& item, const char* text);
    bool ReadNumbers(const Item& item, std::uint32_t number);
    bool ReadInlineNumbers(const Item& item, RecordElement& element);
    bool ReadTransformation(const Item& item, std::uint32_t number);
    bool ReadOptionalNumber(const Item& item, std::uint32_t number, bool& isSet);
    bool ReadGroup(const Item& item, std::span<const Item> inner, std::uint32_t number,
                   RecordElement& element);
    bool ReadReference(const Item& item, std::uint32_t number);
    bool ReadValueReference(const Item& item, std::uint32_t number, RecordElement& element);
    bool ReadReferences(const Item& item, std::span<const Item> inner, std::uint32_t number);

    bool TakeEntry(std::uint32_t number, std::span<const Item> inner, Entry& entry);
    bool TakeDoubles(std::uint32_t number, std::span<const std::wstring_view> names,
                     double* values) const;
    bool TakeWord(const Item& item, std::string_view text, int& row) const;
    void Begin(const Item& item);
    void Store(const Item& item, RecordElement& element);

    const ElementRecord& RecordOf(std::uint32_t number) const;
    bool IsNamed(std::uint32_t number, std::wstring_view name) const;
    const char* TextOf(std::uint32_t number) const;
    const AttributeRecord* FindAttribute(std::uint32_t number, std::wstring_view name) const;

    void* m_owner;
    const KARMPEntityTable& m_entities;
    const ContentStatuses& m_statuses;
    RecordedElement m_recorded;
    ItemValue m_value;
    ReadText m_text;
    std::vector<Entry> m_entries;
};

} // namespace karmp
