// Reading the items of a content list from the nodes of any tree.
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

/// Reads the items of one owner.
class ContentReader : public ContentWalker<ContentReader, ElementReader>
{
public:
    ContentReader(void* owner, std::wstring_view version, const KARMPEntityTable& entities,
                  const ContentStatuses& statuses)
        : ContentWalker(version), m_owner(owner), m_entities(entities), m_statuses(statuses)
    {}

    bool Applies(const Item& item, const ElementReader& element)
    {
        return item.isRead && !item.isCoded && m_gate.Passes(item) &&
               (item.whenRead == nullptr || (element.Has(item.name) && item.whenRead(m_owner)));
    }
    void WalkItem(const Item& item, std::span<const Item> inner, ElementReader& element);

private:
    void Store(const Item& item, ElementReader& element);
    template <class Value>
    bool Take(const Item& item, ElementReader& element, Value& value) const;
    bool TakeWord(const Item& item, ElementReader& element);
    bool FindWord(const Item& item, std::wstring_view word);
    template <class Value, class Field>
    void ReadScalar(const Item& item, ElementReader& element, Field& field);
    void ReadText(const Item& item, ElementReader& element);
    void ReadNumbers(const Item& item, ElementReader& element);
    void ReadDoubles(std::span<const std::wstring_view> names, double* values,
                     ElementReader& element, Absent absent, KARMPSourceLocation where);
    void ReadGroup(const Item& item, std::span<const Item> inner, ElementReader& element);
    void ReadTransformation(const Item& item, ElementReader& element);
    void ReadOptionalNumber(const Item& item, ElementReader& element);
    bool TakeBytes(const Item& item, ElementReader& element);
    void ReadReference(const Item& item, ElementReader& element);
    void ReadValueReference(const Item& item, ElementReader& element);
    void ReadReferences(const Item& item, std::span<const Item> inner, ElementReader& element);
    bool ReadAttributes(std::span<const Item> attributes, ElementReader& entry);
    void ReadRecords(const Item& item, std::span<const Item> inner, ElementReader& element);

    void* m_owner;
    const KARMPEntityTable& m_entities;
    const ContentStatuses& m_statuses;
    ItemValue m_value;
};

} // namespace karmp
