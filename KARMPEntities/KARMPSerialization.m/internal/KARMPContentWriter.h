// Writing by content lists, into nodes or into whatever else takes elements.
#pragma once

#include "KARMPContentWalker.h"
#include "KARMPEntity.h"
#include "KARMPSerializer.h"
#include "KARMPStreamElement.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace karmp {

/// A word of a content list, which stays where it is.
struct ListedWord : std::wstring_view
{};

inline ListedWord WordOfRow(const Item& item, int row)
{
    const auto index = static_cast<std::size_t>(row);
    return {item.words[row > 0 && index < item.words.size() ? index : 0]};
}

template <class Element, class Value>
void PutValue(const Item& item, Element& element, Value value)
{
    if (item.place == ItemPlace::Attribute)
        element.Attribute(item.name, value, item.where);
    else
        element.Value(item.name, value, item.where);
}

/// Writes the items of an owner. `Element` has the operations of ElementWriter.
template <class Element>
class ContentWriter : public ContentWalker<ContentWriter<Element>, Element>
{
    using Walker = ContentWalker<ContentWriter<Element>, Element>;

public:
    ContentWriter(const void* owner, std::wstring_view version) : Walker(version), m_owner(owner) {}

    bool Applies(const Item& item, const Element&)
    {
        return item.isWritten && !item.isCoded && this->m_gate.Passes(item) &&
               (item.when == nullptr || item.when(m_owner)) &&
               (item.kind != ItemKind::References || (m_count = item.count(m_owner)) > 0);
    }
    void WalkItem(const Item& item, std::span<const Item> inner, Element& element);

private:
    void WriteValue(const Item& item, Element& element);
    void WriteGroup(const Item& item, std::span<const Item> inner, Element& element);
    void WriteTransformation(const Item& item, Element& element);
    void WriteOptionalNumber(const Item& item, Element& element);
    void WriteBytes(const Item& item, Element& element);
    void WriteReference(const Item& item, Element& element);
    void WriteValueReference(const Item& item, Element& element);
    void WriteReferences(const Item& item, std::span<const Item> inner, Element& element);
    void WriteEntry(const Item& item, std::span<const Item> attributes, int index, Element& list);
    void WriteRecords(const Item& item, std::span<const Item> inner, Element& element);

    const void* m_owner;
    /// The number of entries of the list that is walked. Most lists of a model are empty.
    int m_count = 0;
    ItemValue m_value;
};

template <class Element>
void ContentWriter<Element>::WalkItem(const Item& item, std::span<const Item> inner,
                                      Element& element)
{
    switch (item.kind) {
    case ItemKind::Group:
        return WriteGroup(item, inner, element);
    case ItemKind::Reference:
        return item.isValueReference ? WriteValueReference(item, element)
                                     : WriteReference(item, element);
    case ItemKind::References:
        return WriteReferences(item, inner, element);
    case ItemKind::Records:
        return WriteRecords(item, inner, element);
    default:
        if (element.Base(item.get(m_owner, m_value), item.where))
            WriteValue(item, element);
    }
}

template <class Element>
void ContentWriter<Element>::WriteValue(const Item& item, Element& element)
{
    switch (item.kind) {
    case ItemKind::Number:
        return PutValue(item, element, m_value.numbers[0]);
    case ItemKind::Integer:
    case ItemKind::Code:
        return PutValue(item, element, m_value.number);
    case ItemKind::Flag:
        return PutValue(item, element, m_value.number != 0);
    case ItemKind::Text:
        return PutValue(item, element, m_value.text);
    case ItemKind::Word:
        return PutValue(item, element, WordOfRow(item, m_value.number));
    case ItemKind::Numbers:
        if (item.place == ItemPlace::Inline)
            element.Values(item.words, m_value.numbers.data(), item.where);
        else if (Element child = element.Child(item.name, item.where))
            child.Values(item.words, m_value.numbers.data(), item.where);
        return;
    case ItemKind::Transformation:
        return WriteTransformation(item, element);
    case ItemKind::OptionalNumber:
        return WriteOptionalNumber(item, element);
    case ItemKind::Stream:
        return WriteBytes(item, element);
    default:
        return;
    }
}

template <class Element>
void ContentWriter<Element>::WriteGroup(const Item& item, std::span<const Item> inner,
                                        Element& element)
{
    Element child = element.Child(item.name, item.where);
    if (child)
        this->WalkInner(item, inner, child, element);
}

template <class Element>
void ContentWriter<Element>::WriteTransformation(const Item& item, Element& element)
{
    Element child = element.Child(item.name, item.where);
    if (!child)
        return;
    const double* const numbers = m_value.numbers.data();
    const TransformationNames& parts = *item.parts;
    if (Element translation = child.Child(parts.translation, item.where))
        translation.Values(parts.vector, numbers, item.where);
    if (Element rotation = child.Child(parts.rotation, item.where))
        rotation.Values(parts.matrix, numbers + parts.vector.size(), item.where);
}

template <class Element>
void ContentWriter<Element>::WriteOptionalNumber(const Item& item, Element& element)
{
    Element child = element.Child(item.name, item.where);
    child.Value(item.words[0], m_value.number != 0, item.where);
    if (m_value.number != 0)
        child.Value(item.words[1], m_value.numbers[0], item.where);
}

template <class Element>
void ContentWriter<Element>::WriteBytes(const Item& item, Element& element)
{
    std::wstring text;
    if (item.place != ItemPlace::Attribute)
        element.Stream(item.name, m_value.bytes, item.where);
    else if (StreamText(m_value.bytes, text, item.where))
        element.Attribute(item.name, text, item.where);
    else
        element.Fail();
}

template <class Element>
void ContentWriter<Element>::WriteReference(const Item& item, Element& element)
{
    if (!KARFailed(item.get(m_owner, m_value))) {
        element.Note(item, m_value.entity);
        element.Reference(item.name, m_value.entity, item.where);
    } else if (item.isWithoutTarget) {
        element.Child(item.name, item.where);
    }
}

template <class Element>
void ContentWriter<Element>::WriteValueReference(const Item& item, Element& element)
{
    const bool isAsked = item.ask != nullptr;
    const auto get = isAsked ? item.ask : item.get;
    const bool hasValue = !KARFailed(get(m_owner, m_value)) && m_value.entity;
    if (!hasValue && item.presence == ItemPresence::Optional && !isAsked)
        return;
    if (!element.Base(hasValue ? KARSuccess : KARFailure, item.where))
        return;
    element.Note(item, m_value.entity);
    element.ValueReference(item.name, m_value.entity, item.where);
}

template <class Element>
void ContentWriter<Element>::WriteReferences(const Item& item, std::span<const Item> inner,
                                             Element& element)
{
    const int count = m_count;
    Element list = element.Child(item.name, item.where);
    for (int index = 0; list && index < count; ++index) {
        if (!inner.empty() || item.alwaysNamed) {
            WriteEntry(item, inner, index, list);
        } else if (KARFailed(item.at(m_owner, index, m_value))) {
            list.UnknownReference(item.entry, item.where);
        } else {
            list.Note(item, m_value.entity);
            list.Reference(item.entry, m_value.entity, item.where);
        }
    }
}

// An entry with attributes of its own.
template <class Element>
void ContentWriter<Element>::WriteEntry(const Item& item, std::span<const Item> attributes,
                                        int index, Element& list)
{
    Element entry = list.Child(item.entry, item.where);
    if (!entry)
        return;
    item.at(m_owner, index, m_value);
    entry.Note(item, m_value.entity);
    const auto* target = static_cast<const KARMPEntity*>(m_value.entity._getReferent());
    entry.ReferenceAttributes(target, item.alwaysNamed || KARMPSerializer::SerializeName(),
                              item.where);
    for (const Item& attribute : attributes)
        if (Applies(attribute, entry))
            WriteValue(attribute, entry);
}

template <class Element>
void ContentWriter<Element>::WriteRecords(const Item& item, std::span<const Item> inner,
                                          Element& element)
{
    Element list = element.Child(item.name, item.where);
    if (!list)
        return;
    const int count = item.count(m_owner);
    if (!item.countName.empty())
        list.Attribute(item.countName, count, item.where);
    const auto made = item.makeRecord();
    for (int index = 0; index < count; ++index) {
        m_value.made = made.get();
        if (!list.Base(item.at(m_owner, index, m_value), item.where))
            continue;
        if (Element entry = list.Child(item.entry, item.where)) {
            ContentWriter(m_value.record, this->m_gate.Version()).Walk(inner, entry, false);
            if (KARFailed(entry.Status()))
                list.Fail();
        }
    }
    this->Count(item, list, element);
}

} // namespace karmp
