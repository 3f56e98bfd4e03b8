// Reading by content lists.
#include "KARMPContentReader.h"

#include "KARMPRecordReader.h"
#include "KARMPSerializationServices.h"
#include "KARMPStreamElement.h"
#include "KARMPValue.h"

#include <algorithm>
#include <span>

namespace karmp {

void ContentReader::WalkItem(const Item& item, std::span<const Item> inner, ElementReader& element)
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

void ContentReader::Store(const Item& item, ElementReader& element)
{
    const KARStatus status = item.set(m_owner, m_value);
    if (m_statuses.settersCount)
        element.Base(status, item.where);
    else
        ElementReader::Set(status, item.where);
}

template <class Value>
bool ContentReader::Take(const Item& item, ElementReader& element, Value& value) const
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

template <class Value, class Field>
void ContentReader::ReadScalar(const Item& item, ElementReader& element, Field& field)
{
    Value value{};
    const bool isRead = Take(item, element, value);
    if (!isRead && !item.zeroIfMissing)
        return;
    field = isRead ? static_cast<Field>(value) : Field();
    Store(item, element);
}

void ContentReader::ReadText(const Item& item, ElementReader& element)
{
    if (item.place == ItemPlace::Attribute) {
        karmp::ReadText text;
        if (!Take(item, element, text))
            return;
        m_value.text = text.View();
        Store(item, element);
    } else if (Take(item, element, m_value.text)) {
        Store(item, element);
    }
}

bool ContentReader::TakeWord(const Item& item, ElementReader& element)
{
    if (item.place == ItemPlace::Attribute) {
        karmp::ReadText text;
        return Take(item, element, text) && FindWord(item, text.View());
    }
    std::wstring_view word;
    return Take(item, element, word) && FindWord(item, word);
}

// The row of a word; false where any other word than those of the table is none.
bool ContentReader::FindWord(const Item& item, std::wstring_view word)
{
    const auto found = std::find_if(item.words.begin(), item.words.end(),
                                    [word](std::wstring_view row) { return SameName(row, word); });
    if (found == item.words.end() && item.knownWordsOnly)
        return false;
    m_value.number = found != item.words.end() ? static_cast<int>(found - item.words.begin()) : 0;
    return true;
}

void ContentReader::ReadDoubles(std::span<const std::wstring_view> names, double* values,
                                ElementReader& element, Absent absent, KARMPSourceLocation where)
{
    for (std::size_t i = 0; i < names.size(); ++i)
        element.Value(names[i], values[i], absent, where);
}

void ContentReader::ReadNumbers(const Item& item, ElementReader& element)
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
        ElementReader child = element.Child(item.name, AbsentOf(item.presence), item.where);
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

void ContentReader::ReadTransformation(const Item& item, ElementReader& element)
{
    ElementReader child = element.Child(item.name, AbsentOf(item.presence), item.where);
    if (!child)
        return;
    const TransformationNames& parts = *item.parts;
    double* const numbers = m_value.numbers.data();
    if (item.zeroIfMissing)
        PutIdentity(parts, numbers);
    else
        item.get(m_owner, m_value);
    if (ElementReader translation =
            child.Child(parts.translation, Absent::ReportAndKeep, item.where)) {
        std::fill_n(numbers, parts.vector.size(), 0.0);
        ReadDoubles(parts.vector, numbers, translation, Absent::ReportAndKeep, item.where);
    }
    if (ElementReader rotation = child.Child(parts.rotation, Absent::ReportAndKeep, item.where))
        ReadDoubles(parts.matrix, numbers + parts.vector.size(), rotation, Absent::ReportAndKeep,
                    item.where);
    Store(item, element);
}

void ContentReader::ReadOptionalNumber(const Item& item, ElementReader& element)
{
    const Absent absent = AbsentOf(item.presence);
    ElementReader child = element.Child(item.name, absent, item.where);
    bool isSet = false;
    child.Value(item.words[0], isSet, absent, item.where);
    if (isSet && child.Value(item.words[1], m_value.numbers[0], absent, item.where)) {
        m_value.number = 1;
        Store(item, element);
    }
}

void ContentReader::ReadGroup(const Item& item, std::span<const Item> inner, ElementReader& element)
{
    ElementReader child = element.Child(item.name, AbsentOf(item.presence), item.where);
    if (!child)
        return;
    if (item.set != nullptr)
        Store(item, element);
    WalkInner(item, inner, child, element);
}

bool ContentReader::TakeBytes(const Item& item, ElementReader& element)
{
    if (item.place != ItemPlace::Attribute)
        return ReadStream(element, item.name, m_value.bytes, AbsentOf(item.presence), item.where);
    karmp::ReadText text;
    if (!Take(item, element, text))
        return false;
    if (StreamFromText(text.View(), m_value.bytes, item.where))
        return true;
    if (item.presence == ItemPresence::Required)
        element.Fail();
    return false;
}

void ContentReader::ReadReference(const Item& item, ElementReader& element)
{
    const ElementReader child = element.Child(item.name, Absent::Keep, item.where);
    if (!child || (item.isWithoutTarget && !child.HasIdentifier()))
        return;
    m_value.target = child.FindTarget(m_entities, item.where);
    if (m_value.target != nullptr)
        ElementReader::Set(item.set(m_owner, m_value), item.where);
}

void ContentReader::ReadValueReference(const Item& item, ElementReader& element)
{
    if (item.presence == ItemPresence::Optional && !element.Has(item.name))
        return;
    QOBSharedHandle<KARMPValue> value;
    const KARStatus status =
        KARMPSerializationServices::Deserialize(element.Node(), item.name, m_entities, value);
    const bool isFound = item.presence == ItemPresence::Reported
                             ? ElementReader::Set(status, item.where)
                             : element.Base(status, item.where);
    if (!isFound)
        return;
    const QOBSharedHandle<KARMPEntity> target(value);
    m_value.target = &target;
    Store(item, element);
    m_value.target = nullptr;
}

void ContentReader::ReadReferences(const Item& item, std::span<const Item> inner,
                                   ElementReader& element)
{
    element.Child(item.name, Absent::Keep, item.where)
        .Each(
            item.entry,
            [&](ElementReader entry) {
                m_value.target = entry.FindTarget(m_entities, item.where);
                if (m_value.target != nullptr && (inner.empty() || ReadAttributes(inner, entry)))
                    ElementReader::Set(item.set(m_owner, m_value), item.where);
            });
}

// The attributes of an entry, which its link needs; one that the version does not have is row 0.
bool ContentReader::ReadAttributes(std::span<const Item> attributes, ElementReader& entry)
{
    m_value.number = 0;
    return std::all_of(attributes.begin(), attributes.end(), [&](const Item& attribute) {
        return !Applies(attribute, entry) || TakeWord(attribute, entry);
    });
}

void ContentReader::ReadRecords(const Item& item, std::span<const Item> inner,
                                ElementReader& element)
{
    ElementReader list = element.Child(item.name, AbsentOf(item.presence), item.where);
    list.Each(item.entry, [&](ElementReader entry) {
        const auto made = item.makeRecord();
        ContentReader(made.get(), m_gate.Version(), m_entities, m_statuses)
            .Walk(inner, entry, false);
        m_value.record = made.get();
        if (!KARFailed(entry.Status()))
            Store(item, list);
        else
            list.Fail();
    });
    if (list)
        Count(item, list, element);
}

KARStatus ReadContent(const Content& content, void* owner, const KARMPDeserializer* deserializer,
                      const KARMPEntityTable& entities, ReadBase base)
{
    const ContentStatuses& statuses = content.frame.read;
    return WalkContent<ElementReader>(
        content, statuses, owner, deserializer, &Content::ReadElementOf, base != nullptr,
        [&](const KARMPDeserializer* element) { return base(owner, element, entities); },
        [&](ElementReader& element, bool baseFailed) {
            const std::wstring_view version = element.Version();
            if (!RecordReader(owner, version, entities, statuses)
                     .WalkRecord(content.items, element, baseFailed))
                ContentReader(owner, version, entities, statuses)
                    .Walk(content.items, element, baseFailed);
        });
}

} // namespace karmp
