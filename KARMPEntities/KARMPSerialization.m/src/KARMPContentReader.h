// Reading the items of a content list.
#pragma once

#include "KARMPContentWalker.h"
#include "KARMPElementReader.h"
#include "KARMPEntityTable.h"

#include <span>
#include <string_view>

namespace karmp {

inline Absent AbsentOf(ItemPresence presence)
{
    switch (presence) {
    case ItemPresence::Required:
        return Absent::ReportAndFail;
    case ItemPresence::Optional:
        return Absent::Keep;
    default:
        return Absent::ReportAndKeep;
    }
}

/// Reads the items of one owner from the nodes of any tree, by ElementReader, or from the records
/// of a document, by RecordElement.
template <class Element>
class ContentReader : public ContentWalker<ContentReader<Element>, Element>
{
    using Walker = ContentWalker<ContentReader<Element>, Element>;

public:
    ContentReader(void* owner, std::wstring_view version, const KARMPEntityTable& entities,
                  const ContentStatuses& statuses)
        : Walker(version), m_owner(owner), m_entities(entities), m_statuses(statuses)
    {}

    bool Applies(const Item& item, const Element& element)
    {
        return item.isRead && !item.isCoded && this->m_gate.Passes(item) &&
               (item.whenRead == nullptr || (element.Has(item.name) && item.whenRead(m_owner)));
    }
    void WalkItem(const Item& item, std::span<const Item> inner, Element& element);

private:
    void Store(const Item& item, Element& element);
    template <class Value>
    bool Take(const Item& item, Element& element, Value& value) const;
    bool TakeWord(const Item& item, Element& element);
    bool FindWord(const Item& item, std::wstring_view word);
    template <class Value, class Field>
    void ReadScalar(const Item& item, Element& element, Field& field);
    void ReadText(const Item& item, Element& element);
    void ReadNumbers(const Item& item, Element& element);
    void ReadDoubles(std::span<const std::wstring_view> names, double* values, Element& element,
                     Absent absent, KARMPSourceLocation where);
    void ReadGroup(const Item& item, std::span<const Item> inner, Element& element);
    void ReadTransformation(const Item& item, Element& element);
    void ReadOptionalNumber(const Item& item, Element& element);
    bool TakeBytes(const Item& item, Element& element);
    void ReadReference(const Item& item, Element& element);
    void ReadValueReference(const Item& item, Element& element);
    void ReadReferences(const Item& item, std::span<const Item> inner, Element& element);
    bool ReadAttributes(std::span<const Item> attributes, Element& entry);
    void ReadRecords(const Item& item, std::span<const Item> inner, Element& element);

    void* m_owner;
    const KARMPEntityTable& m_entities;
    const ContentStatuses& m_statuses;
    ItemValue m_value;
    karmp::ReadText m_text;
};

} // namespace karmp
