// Writing by content lists.
#include "KARMPContentWalker.h"
#include "KARMPElementWriter.h"
#include "KARMPSerializationServices.h"
#include "KARMPStreamElement.h"
#include "KARMPValue.h"

#include <span>

namespace karmp {

namespace {

class ContentWriter : public ContentWalker<ContentWriter, ElementWriter>
{
public:
    ContentWriter(const void* owner, std::wstring_view version)
        : ContentWalker(version), m_owner(owner)
    {}

    bool Applies(const Item& item, const ElementWriter&)
    {
        return item.isWritten && !item.isCoded && m_gate.Passes(item) &&
               (item.when == nullptr || item.when(m_owner));
    }
    void WalkItem(const Item& item, std::span<const Item> inner, ElementWriter& element);

private:
    void WriteValue(const Item& item, ElementWriter& element);
    void WriteDoubles(std::span<const std::wstring_view> names, const double* values,
                      ElementWriter& element, KARMPSourceLocation where);
    void WriteGroup(const Item& item, std::span<const Item> inner, ElementWriter& element);
    void WriteTransformation(const Item& item, ElementWriter& element);
    void WriteOptionalNumber(const Item& item, ElementWriter& element);
    void WriteBytes(const Item& item, ElementWriter& element);
    void WriteReference(const Item& item, ElementWriter& element);
    void WriteValueReference(const Item& item, ElementWriter& element);
    void WriteReferences(const Item& item, std::span<const Item> inner, ElementWriter& element);
    void WriteEntry(const Item& item, std::span<const Item> attributes, int index,
                    ElementWriter& list);
    void WriteRecords(const Item& item, std::span<const Item> inner, ElementWriter& element);

    const void* m_owner;
    ItemValue m_value;
};

std::wstring_view WordOfRow(const Item& item, int row)
{
    const auto index = static_cast<std::size_t>(row);
    return item.words[row > 0 && index < item.words.size() ? index : 0];
}

template <class Value>
void Put(const Item& item, ElementWriter& element, Value value)
{
    if (item.place == ItemPlace::Attribute)
        element.Attribute(item.name, value, item.where);
    else
        element.Value(item.name, value, item.where);
}

void ContentWriter::WalkItem(const Item& item, std::span<const Item> inner, ElementWriter& element)
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

void ContentWriter::WriteValue(const Item& item, ElementWriter& element)
{
    switch (item.kind) {
    case ItemKind::Number:
        return Put(item, element, m_value.numbers[0]);
    case ItemKind::Integer:
    case ItemKind::Code:
        return Put(item, element, m_value.number);
    case ItemKind::Flag:
        return Put(item, element, m_value.number != 0);
    case ItemKind::Text:
        return Put(item, element, m_value.text);
    case ItemKind::Word:
        return Put(item, element, WordOfRow(item, m_value.number));
    case ItemKind::Numbers:
        if (item.place == ItemPlace::Inline)
            return WriteDoubles(item.words, m_value.numbers.data(), element, item.where);
        if (ElementWriter child = element.Child(item.name, item.where))
            WriteDoubles(item.words, m_value.numbers.data(), child, item.where);
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

void ContentWriter::WriteDoubles(std::span<const std::wstring_view> names, const double* values,
                                 ElementWriter& element, KARMPSourceLocation where)
{
    for (std::size_t i = 0; i < names.size(); ++i)
        element.Value(names[i], values[i], where);
}

void ContentWriter::WriteGroup(const Item& item, std::span<const Item> inner,
                               ElementWriter& element)
{
    ElementWriter child = element.Child(item.name, item.where);
    if (child)
        WalkInner(item, inner, child, element);
}

void ContentWriter::WriteTransformation(const Item& item, ElementWriter& element)
{
    ElementWriter child = element.Child(item.name, item.where);
    if (!child)
        return;
    const double* const numbers = m_value.numbers.data();
    const TransformationNames& parts = *item.parts;
    if (ElementWriter translation = child.Child(parts.translation, item.where))
        WriteDoubles(parts.vector, numbers, translation, item.where);
    if (ElementWriter rotation = child.Child(parts.rotation, item.where))
        WriteDoubles(parts.matrix, numbers + parts.vector.size(), rotation, item.where);
}

void ContentWriter::WriteOptionalNumber(const Item& item, ElementWriter& element)
{
    ElementWriter child = element.Child(item.name, item.where);
    child.Value(item.words[0], m_value.number != 0, item.where);
    if (m_value.number != 0)
        child.Value(item.words[1], m_value.numbers[0], item.where);
}

void ContentWriter::WriteBytes(const Item& item, ElementWriter& element)
{
    std::wstring text;
    if (item.place != ItemPlace::Attribute)
        WriteStream(element, item.name, m_value.bytes, item.where);
    else if (StreamText(m_value.bytes, text, item.where))
        element.Attribute(item.name, text, item.where);
    else
        element.Fail();
}

void ContentWriter::WriteReference(const Item& item, ElementWriter& element)
{
    if (!KARFailed(item.get(m_owner, m_value)))
        element.Reference(item.name, m_value.entity, item.where);
    else if (item.isWithoutTarget)
        element.Child(item.name, item.where);
}

void ContentWriter::WriteValueReference(const Item& item, ElementWriter& element)
{
    const bool isAsked = item.ask != nullptr;
    const auto get = isAsked ? item.ask : item.get;
    const bool hasValue = !KARFailed(get(m_owner, m_value)) && m_value.entity;
    if (!hasValue && item.presence == ItemPresence::Optional && !isAsked)
        return;
    if (element.Base(hasValue ? KARSuccess : KARFailure, item.where))
        element.Base(KARMPSerializationServices::Serialize(
                         element.Node(), QOBSharedHandle<KARMPValue>(m_value.entity), item.name),
                     item.where);
}

void ContentWriter::WriteReferences(const Item& item, std::span<const Item> inner,
                                    ElementWriter& element)
{
    const int count = item.count(m_owner);
    if (count < 1)
        return;
    ElementWriter list = element.Child(item.name, item.where);
    for (int index = 0; list && index < count; ++index) {
        if (inner.empty() && !item.alwaysNamed)
            if (KARFailed(item.at(m_owner, index, m_value)))
                list.UnknownReference(item.entry, item.where);
            else
                list.Reference(item.entry, m_value.entity, item.where);
        else
            WriteEntry(item, inner, index, list);
    }
}

// An entry with attributes of its own.
void ContentWriter::WriteEntry(const Item& item, std::span<const Item> attributes, int index,
                               ElementWriter& list)
{
    ElementWriter entry = list.Child(item.entry, item.where);
    if (!entry)
        return;
    item.at(m_owner, index, m_value);
    const auto* target = static_cast<const KARMPEntity*>(m_value.entity._getReferent());
    entry.ReferenceAttributes(target, item.alwaysNamed || KARMPSerializer::SerializeName(),
                              item.where);
    for (const Item& attribute : attributes)
        if (Applies(attribute, entry))
            WriteValue(attribute, entry);
}

void ContentWriter::WriteRecords(const Item& item, std::span<const Item> inner,
                                 ElementWriter& element)
{
    ElementWriter list = element.Child(item.name, item.where);
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
        if (ElementWriter entry = list.Child(item.entry, item.where)) {
            ContentWriter(m_value.record, m_gate.Version()).Walk(inner, entry, false);
            if (KARFailed(entry.Status()))
                list.Fail();
        }
    }
    Count(item, list, element);
}

} // namespace

KARStatus WriteContent(const Content& content, const void* owner, KARMPSerializer* serializer,
                       WriteBase base)
{
    return WalkContent<ElementWriter>(
        content, content.frame.write, owner, serializer, &Content::ElementOf, base != nullptr,
        [&](KARMPSerializer* element) { return base(owner, element); },
        [&](ElementWriter& element, bool baseFailed) {
            ContentWriter(owner, element.Version()).Walk(content.items, element, baseFailed);
        });
}

} // namespace karmp
