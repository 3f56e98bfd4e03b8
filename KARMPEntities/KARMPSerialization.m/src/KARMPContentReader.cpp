// Reading by content lists.
#include "KARMPContentReader.h"

#include "KARMPNodeSource.h"
#include "KARMPRecordElement.h"
#include "KARMPSerializationServices.h"
#include "KARMPStreamElement.h"
#include "KARMPValue.h"

#include <algorithm>
#include <span>
#include <type_traits>

namespace karmp {

namespace {

// What is read by nodes alone.
template <class Read>
bool FromNode(ElementReader& element, Read read)
{
    return read(element);
}
template <class Read>
bool FromNode(RecordElement& element, Read read)
{
    return element.FromNode(read);
}

// Numbers that are all that there is in an element.
bool TakeDoubles(const ElementReader& /*element*/, std::span<const std::wstring_view> /*names*/,
                 double* /*values*/)
{
    return false;
}
bool TakeDoubles(const RecordElement& element, std::span<const std::wstring_view> names,
                 double* values)
{
    return element.TakeDoubles(names, values);
}

// The target of a child where it is found by its number.
const QOBSharedHandle<KARMPEntity>* FindNumberedTarget(const ElementReader& /*element*/,
                                                       std::wstring_view /*name*/,
                                                       const KARMPEntityTable& /*entities*/)
{
    return nullptr;
}
const QOBSharedHandle<KARMPEntity>* FindNumberedTarget(const RecordElement& element,
                                                       std::wstring_view name,
                                                       const KARMPEntityTable& entities)
{
    return element.FindNumberedTarget(name, entities);
}

} // namespace

template <class Element>
void ContentReader<Element>::WalkItem(const Item& item, std::span<const Item> inner,
                                      Element& element)
{
    switch (item.kind) {
    case ItemKind::Group:
        return ReadGroup(item, inner, element);
    case ItemKind::Number:
        return ReadScalar<double>(item, element, m_value.numbers[0]);
    case ItemKind::Integer:
    case ItemKind::Code:
        return ReadScalar<int>(item, element, m_value.number);
    case ItemKind::Flag:
        return ReadScalar<bool>(item, element, m_value.number);
    case ItemKind::Text:
        return ReadText(item, element);
    case ItemKind::Word:
        if (TakeWord(item, element))
            Store(item, element);
        return;
    case ItemKind::Numbers:
        return ReadNumbers(item, element);
    case ItemKind::Transformation:
        return ReadTransformation(item, element);
    case ItemKind::OptionalNumber:
        return ReadOptionalNumber(item, element);
    case ItemKind::Reference:
        return item.isValueReference ? ReadValueReference(item, element)
                                     : ReadReference(item, element);
    case ItemKind::References:
        return ReadReferences(item, inner, element);
    case ItemKind::Records:
        return ReadRecords(item, inner, element);
    case ItemKind::Stream:
        if (TakeBytes(item, element))
            Store(item, element);
        return;
    }
}

template <class Element>
void ContentReader<Element>::Store(const Item& item, Element& element)
{
    const KARStatus status = item.set(m_owner, m_value);
    if (m_statuses.settersCount)
        element.Base(status, item.where);
    else
        ElementReader::Set(status, item.where);
}

template <class Element>
template <class Value>
bool ContentReader<Element>::Take(const Item& item, Element& element, Value& value) const
{
    const Absent absent = item.requiredIfThere && element.Has(item.name) ? Absent::ReportAndFail
                                                                         : AbsentOf(item.presence);
    // A text of an attribute is read without the node keeping a wide copy of it.
    if constexpr (std::is_same_v<Value, karmp::ReadText>)
        return element.Attribute(item.name, value, absent, item.where);
    else
        return item.place == ItemPlace::Attribute
                   ? element.Attribute(item.name, value, absent, item.where)
                   : element.Value(item.name, value, absent, item.where);
}

template <class Element>
template <class Value, class Field>
void ContentReader<Element>::ReadScalar(const Item& item, Element& element, Field& field)
{
    Value value{};
    const bool isRead = Take(item, element, value);
    if (!isRead && !item.zeroIfMissing)
        return;
    field = isRead ? static_cast<Field>(value) : Field();
    Store(item, element);
}

template <class Element>
void ContentReader<Element>::ReadText(const Item& item, Element& element)
{
    if (item.place == ItemPlace::Attribute) {
        if (!Take(item, element, m_text))
            return;
        m_value.text = m_text.View();
        Store(item, element);
    } else if (Take(item, element, m_value.text)) {
        Store(item, element);
    }
}

template <class Element>
bool ContentReader<Element>::TakeWord(const Item& item, Element& element)
{
    if (item.place == ItemPlace::Attribute)
        return Take(item, element, m_text) && FindWord(item, m_text.View());
    std::wstring_view word;
    return Take(item, element, word) && FindWord(item, word);
}

// The row of a word; false where any other word than those of the table is none.
template <class Element>
bool ContentReader<Element>::FindWord(const Item& item, std::wstring_view word)
{
    const auto found = std::find_if(item.words.begin(), item.words.end(),
                                    [word](std::wstring_view row) { return SameName(row, word); });
    if (found == item.words.end() && item.knownWordsOnly)
        return false;
    m_value.number = found != item.words.end() ? static_cast<int>(found - item.words.begin()) : 0;
    return true;
}

template <class Element>
void ContentReader<Element>::ReadDoubles(std::span<const std::wstring_view> names, double* values,
                                         Element& element, Absent absent, KARMPSourceLocation where)
{
    if (TakeDoubles(element, names, values))
        return;
    for (std::size_t i = 0; i < names.size(); ++i)
        element.Value(names[i], values[i], absent, where);
}

template <class Element>
void ContentReader<Element>::ReadNumbers(const Item& item, Element& element)
{
    const auto begin = [&] {
        if (item.zeroIfMissing)
            std::fill_n(m_value.numbers.begin(), item.words.size(), 0.0);
        else
            item.get(m_owner, m_value);
    };
    if (item.place == ItemPlace::Inline) {
        begin();
        ReadDoubles(item.words, m_value.numbers.data(), element, AbsentOf(item.presence),
                    item.where);
    } else {
        Element child = element.Child(item.name, AbsentOf(item.presence), item.where);
        if (!child)
            return;
        begin();
        ReadDoubles(item.words, m_value.numbers.data(), child, Absent::ReportAndKeep, item.where);
    }
    Store(item, element);
}

namespace {

void PutIdentity(const TransformationNames& parts, double* numbers)
{
    const std::size_t dimension = parts.vector.size();
    std::fill_n(numbers, dimension + parts.matrix.size(), 0.0);
    for (std::size_t i = 0; i < dimension; ++i)
        numbers[dimension + i * (dimension + 1)] = 1.0;
}

} // namespace

template <class Element>
void ContentReader<Element>::ReadTransformation(const Item& item, Element& element)
{
    Element child = element.Child(item.name, AbsentOf(item.presence), item.where);
    if (!child)
        return;
    const TransformationNames& parts = *item.parts;
    double* const numbers = m_value.numbers.data();
    if (item.zeroIfMissing)
        PutIdentity(parts, numbers);
    else
        item.get(m_owner, m_value);
    if (Element translation = child.Child(parts.translation, Absent::ReportAndKeep, item.where)) {
        std::fill_n(numbers, parts.vector.size(), 0.0);
        ReadDoubles(parts.vector, numbers, translation, Absent::ReportAndKeep, item.where);
    }
    if (Element rotation = child.Child(parts.rotation, Absent::ReportAndKeep, item.where))
        ReadDoubles(parts.matrix, numbers + parts.vector.size(), rotation, Absent::ReportAndKeep,
                    item.where);
    Store(item, element);
}

template <class Element>
void ContentReader<Element>::ReadOptionalNumber(const Item& item, Element& element)
{
    const Absent absent = AbsentOf(item.presence);
    Element child = element.Child(item.name, absent, item.where);
    bool isSet = false;
    child.Value(item.words[0], isSet, absent, item.where);
    if (isSet && child.Value(item.words[1], m_value.numbers[0], absent, item.where)) {
        m_value.number = 1;
        Store(item, element);
    }
}

template <class Element>
void ContentReader<Element>::ReadGroup(const Item& item, std::span<const Item> inner,
                                       Element& element)
{
    Element child = element.Child(item.name, AbsentOf(item.presence), item.where);
    if (!child)
        return;
    if (item.set != nullptr)
        Store(item, element);
    this->WalkInner(item, inner, child, element);
}

template <class Element>
bool ContentReader<Element>::TakeBytes(const Item& item, Element& element)
{
    if (item.place != ItemPlace::Attribute)
        return FromNode(element, [&](ElementReader& node) {
            return ReadStream(node, item.name, m_value.bytes, AbsentOf(item.presence), item.where);
        });
    if (!Take(item, element, m_text))
        return false;
    if (StreamFromText(m_text.View(), m_value.bytes, item.where))
        return true;
    if (item.presence == ItemPresence::Required)
        element.Fail();
    return false;
}

template <class Element>
void ContentReader<Element>::ReadReference(const Item& item, Element& element)
{
    const Element child = element.Child(item.name, Absent::Keep, item.where);
    if (!child || (item.isWithoutTarget && !child.HasIdentifier()))
        return;
    m_value.target = child.FindTarget(m_entities, item.where);
    if (m_value.target != nullptr)
        ElementReader::Set(item.set(m_owner, m_value), item.where);
}

template <class Element>
void ContentReader<Element>::ReadValueReference(const Item& item, Element& element)
{
    if (item.presence == ItemPresence::Optional && !element.Has(item.name))
        return;
    const QOBSharedHandle<KARMPEntity>* numbered =
        FindNumberedTarget(element, item.name, m_entities);
    QOBSharedHandle<KARMPEntity> target;
    if (numbered == nullptr || !HandleAs<KARMPValue>(*numbered)) {
        QOBSharedHandle<KARMPValue> value;
        const KARStatus status =
            KARMPSerializationServices::Deserialize(element.Node(), item.name, m_entities, value);
        const bool isFound = item.presence == ItemPresence::Reported
                                 ? ElementReader::Set(status, item.where)
                                 : element.Base(status, item.where);
        if (!isFound)
            return;
        target = value;
        numbered = &target;
    }
    m_value.target = numbered;
    Store(item, element);
    m_value.target = nullptr;
}

template <class Element>
void ContentReader<Element>::ReadReferences(const Item& item, std::span<const Item> inner,
                                            Element& element)
{
    element.Child(item.name, Absent::Keep, item.where)
        .Each(
            item.entry,
            [&](Element entry) {
                m_value.target = entry.FindTarget(m_entities, item.where);
                if (m_value.target != nullptr && (inner.empty() || ReadAttributes(inner, entry)))
                    ElementReader::Set(item.set(m_owner, m_value), item.where);
            });
}

// The attributes of an entry, which its link needs; one that the version does not have is row 0.
template <class Element>
bool ContentReader<Element>::ReadAttributes(std::span<const Item> attributes, Element& entry)
{
    m_value.number = 0;
    return std::all_of(attributes.begin(), attributes.end(), [&](const Item& attribute) {
        return !Applies(attribute, entry) || TakeWord(attribute, entry);
    });
}

template <class Element>
void ContentReader<Element>::ReadRecords(const Item& item, std::span<const Item> inner,
                                         Element& element)
{
    Element list = element.Child(item.name, AbsentOf(item.presence), item.where);
    list.Each(item.entry, [&](Element entry) {
        const auto made = item.makeRecord();
        ContentReader(made.get(), this->m_gate.Version(), m_entities, m_statuses)
            .Walk(inner, entry, false);
        m_value.record = made.get();
        if (!KARFailed(entry.Status()))
            Store(item, list);
        else
            list.Fail();
    });
    if (list)
        this->Count(item, list, element);
}

namespace {

// False, with nothing read, for an element whose nodes are made, whose identifiers the table does
// not have by number, or that has no simple record.
bool ReadRecord(const Content& content, void* owner, ElementReader& element,
                const KARMPEntityTable& entities, bool baseFailed)
{
    if ((NodeBuilder::Missing(*element.Node()) & ContentPart) == 0)
        return false;
    const RecordedElement recorded = NodeBuilder::Recorded(*element.Node());
    if (!entities.UsesNumbersOf(recorded.records))
        return false;
    RecordSource source(recorded);
    RecordElement record(&source, recorded.number, element.Node());
    if (!record.IsSimple())
        return false;
    ContentReader<RecordElement>(owner, element.Version(), entities, content.frame.read)
        .Walk(content.items, record, baseFailed);
    if (KARFailed(record.Status()))
        element.Fail();
    return true;
}

} // namespace

KARStatus ReadContent(const Content& content, void* owner, const KARMPDeserializer* deserializer,
                      const KARMPEntityTable& entities, ReadBase base)
{
    const ContentStatuses& statuses = content.frame.read;
    return WalkContent<ElementReader>(
        content, statuses, owner, deserializer, &Content::ReadElementOf, base != nullptr,
        [&](const KARMPDeserializer* element) { return base(owner, element, entities); },
        [&](ElementReader& element, bool baseFailed) {
            if (!ReadRecord(content, owner, element, entities, baseFailed))
                ContentReader<ElementReader>(owner, element.Version(), entities, statuses)
                    .Walk(content.items, element, baseFailed);
        });
}

} // namespace karmp
