#include "KARMPRecordReader.h"

#include "KARMPContentReader.h"
#include "KARMPItemKind.h"
#include "KARMPNodeSource.h"
#include "KARMPValue.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace karmp {

namespace {

bool Equals(std::wstring_view wide, std::string_view text)
{
    return std::equal(
        wide.begin(), wide.end(), text.begin(), text.end(),
        [](wchar_t left, char right) { return left == static_cast<wchar_t>(right); });
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

// Gives what a scan of the text gives. Most numbers of a model are 0 and 1.
bool ToDouble(const char* text, double& value)
{
    if (IsDigit(text[0]) && text[1] == '\0') {
        value = text[0] - '0';
        return true;
    }
    const std::string_view whole = text;
    if (IsDigit(text[text[0] == '-' ? 1 : 0])) {
        const char* const end = text + whole.size();
        const auto [last, error] = std::from_chars(text, end, value);
        if (last == end && error == std::errc())
            return true;
    }
    return kar::ScanDouble(whole, value, kar::DecimalMark::PointOrComma) == 1;
}

bool ToFlag(std::string_view text, bool& flag)
{
    const auto isOneOf = [text](const auto& forms) {
        return std::find(forms.begin(), forms.end(), text) != forms.end();
    };
    flag = isOneOf(TrueForms);
    return flag || isOneOf(FalseForms);
}

} // namespace

// An entity's element is looked at by each of its classes in a row.
RecordElement::RecordElement(const RecordedElement& element, const KARMPDeserializer* node)
    : m_element(element),
      m_node(node),
      m_likely(element.number + 1),
      m_isSimple(element.records->lastSimple == element.number || HasDistinctNames())
{
    if (m_isSimple)
        element.records->lastSimple = element.number;
}

RecordElement::RecordElement(const RecordElement& parent, std::uint32_t number)
    : m_element{parent.m_element.records, parent.m_element.bytes, number},
      m_parent(&parent),
      m_likely(number + 1),
      m_isSimple(HasDistinctNames())
{}

bool RecordElement::HasDistinctNames() const
{
    constexpr std::uint32_t most = 16;
    const ElementRecord* const records = m_element.records->elements.data();
    const std::uint32_t end = records[m_element.number].end;
    std::uint64_t bits = 0;
    std::uint32_t count = 0;
    for (std::uint32_t child = m_element.number + 1; child != end; child = records[child].end) {
        const std::uint64_t bit = std::uint64_t{1} << (records[child].Name() % 64);
        if (++count > most || ((bits & bit) != 0 &&
                               FindFrom(m_element.number + 1, child, records[child].Name()) != 0))
            return false;
        bits |= bit;
    }
    return true;
}

// The first child of a name before the end; 0 when there is none.
std::uint32_t RecordElement::FindFrom(std::uint32_t child, std::uint32_t end,
                                      std::uint32_t name) const
{
    const ElementRecord* const records = m_element.records->elements.data();
    for (; child != end; child = records[child].end)
        if (records[child].Name() == name)
            return child;
    return 0;
}

std::uint32_t RecordElement::Find(std::wstring_view name)
{
    const std::uint32_t wanted = m_element.records->names.NumberOf(name);
    if (wanted == NoName)
        return 0;
    const ElementRecord* const records = m_element.records->elements.data();
    std::uint32_t found = FindFrom(m_likely, records[m_element.number].end, wanted);
    if (found == 0)
        found = FindFrom(m_element.number + 1, m_likely, wanted);
    if (found != 0)
        m_likely = records[found].end;
    return found;
}

const KARMPDeserializer* RecordElement::Node() const
{
    if (m_node == nullptr) {
        const ElementRecord& record = m_element.records->elements[m_element.number];
        m_parent->Node()->GetElement(m_element.records->names[record.Name()].View(), m_node);
    }
    return m_node;
}

bool RecordReader::WalkRecord(std::span<const Item> items, ElementReader& element, bool baseFailed)
{
    const KARMPDeserializer* const node = element.Node();
    if ((NodeBuilder::Missing(*node) & ContentPart) == 0)
        return false;
    m_recorded = NodeBuilder::Recorded(*node);
    if (!m_entities.UsesNumbersOf(m_recorded.records))
        return false;
    RecordElement record(m_recorded, node);
    if (!record.IsSimple())
        return false;
    Walk(items, record, baseFailed);
    if (KARFailed(record.Status()))
        element.Fail();
    return true;
}

void RecordReader::WalkItem(const Item& item, std::span<const Item> inner, RecordElement& element)
{
    if (Read(item, inner, element))
        return;
    ElementReader reader(element.Node());
    ContentReader(m_owner, m_gate.Version(), m_entities, m_statuses).WalkItem(item, inner, reader);
    if (KARFailed(reader.Status()))
        element.Fail();
}

bool RecordReader::Read(const Item& item, std::span<const Item> inner, RecordElement& element)
{
    if (item.place == ItemPlace::Attribute)
        return ReadAttribute(item, element);
    if (item.place == ItemPlace::Inline) {
        if (!ReadInlineNumbers(item, element))
            return false;
        Store(item, element);
        return true;
    }
    const std::uint32_t number = element.Find(item.name);
    if (number == 0)
        return item.presence == ItemPresence::Optional && !item.zeroIfMissing;
    bool isSet = true;
    bool isRead = false;
    switch (item.kind) {
    case ItemKind::Group:
        return ReadGroup(item, inner, number, element);
    case ItemKind::Reference:
        return item.isValueReference ? ReadValueReference(item, number, element)
                                     : ReadReference(item, number);
    case ItemKind::References:
        return ReadReferences(item, inner, number);
    case ItemKind::Numbers:
        isRead = ReadNumbers(item, number);
        break;
    case ItemKind::Transformation:
        isRead = ReadTransformation(item, number);
        break;
    case ItemKind::OptionalNumber:
        isRead = ReadOptionalNumber(item, number, isSet);
        break;
    default:
        isRead = ReadScalar(item, TextOf(number));
    }
    if (isRead && isSet)
        Store(item, element);
    return isRead;
}

void RecordReader::Store(const Item& item, RecordElement& element)
{
    if (!ElementReader::Set(item.set(m_owner, m_value), item.where) && m_statuses.settersCount)
        element.Fail();
}

bool RecordReader::ReadAttribute(const Item& item, RecordElement& element)
{
    const AttributeRecord* const attribute = FindAttribute(element.Number(), item.name);
    if (attribute == nullptr)
        return item.presence == ItemPresence::Optional && !item.zeroIfMissing;
    if (!attribute->IsPlain() || !ReadScalar(item, m_recorded.bytes + attribute->value))
        return false;
    Store(item, element);
    return true;
}

bool RecordReader::ReadScalar(const Item& item, const char* text)
{
    if (text == nullptr)
        return false;
    bool flag = false;
    switch (item.kind) {
    case ItemKind::Number:
        return ToDouble(text, m_value.numbers[0]);
    case ItemKind::Integer:
    case ItemKind::Code:
        return kar::ScanInt(std::string_view(text), m_value.number) == 1;
    case ItemKind::Flag:
        if (!ToFlag(text, flag))
            return false;
        m_value.number = flag ? 1 : 0;
        return true;
    case ItemKind::Word:
        return TakeWord(item, text, m_value.number);
    case ItemKind::Text:
        m_text.Refer(AsciiText{text});
        m_value.text = m_text.View();
        return true;
    default:
        return false;
    }
}

bool RecordReader::TakeWord(const Item& item, std::string_view text, int& row) const
{
    const auto found = std::find_if(item.words.begin(), item.words.end(),
                                    [text](std::wstring_view word) { return Equals(word, text); });
    row = static_cast<int>(found - item.words.begin());
    return found != item.words.end();
}

// Takes the only numbers of an element, in the order of their names.
bool RecordReader::TakeDoubles(std::uint32_t number, std::span<const std::wstring_view> names,
                               double* values) const
{
    const std::uint32_t end = RecordOf(number).end;
    std::uint32_t child = number + 1;
    for (const std::wstring_view name : names) {
        if (child == end || !IsNamed(child, name))
            return false;
        const char* const text = TextOf(child);
        if (text == nullptr || !ToDouble(text, *values++))
            return false;
        ++child; // it has no elements
    }
    return child == end;
}

// What a reader from nodes begins with, though all of it is replaced: a getter may report.
void RecordReader::Begin(const Item& item)
{
    if (!item.zeroIfMissing)
        item.get(m_owner, m_value);
}

bool RecordReader::ReadNumbers(const Item& item, std::uint32_t number)
{
    std::array<double, ItemValue::Capacity> values;
    if (!TakeDoubles(number, item.words, values.data()))
        return false;
    Begin(item);
    std::copy_n(values.begin(), item.words.size(), m_value.numbers.begin());
    return true;
}

bool RecordReader::ReadInlineNumbers(const Item& item, RecordElement& element)
{
    std::array<double, ItemValue::Capacity> values;
    double* value = values.data();
    for (const std::wstring_view name : item.words) {
        const std::uint32_t number = element.Find(name);
        const char* const text = number != 0 ? TextOf(number) : nullptr;
        if (text == nullptr || !ToDouble(text, *value++))
            return false;
    }
    Begin(item);
    std::copy_n(values.begin(), item.words.size(), m_value.numbers.begin());
    return true;
}

bool RecordReader::ReadTransformation(const Item& item, std::uint32_t number)
{
    const TransformationNames& parts = *item.parts;
    const std::uint32_t end = RecordOf(number).end;
    const std::uint32_t translation = number + 1;
    if (translation == end)
        return false;
    const std::uint32_t rotation = RecordOf(translation).end;
    std::array<double, ItemValue::Capacity> values;
    if (rotation == end || RecordOf(rotation).end != end ||
        !IsNamed(translation, parts.translation) || !IsNamed(rotation, parts.rotation) ||
        !TakeDoubles(translation, parts.vector, values.data()) ||
        !TakeDoubles(rotation, parts.matrix, values.data() + parts.vector.size()))
        return false;
    Begin(item);
    std::copy_n(values.begin(), parts.vector.size() + parts.matrix.size(), m_value.numbers.begin());
    return true;
}

bool RecordReader::ReadOptionalNumber(const Item& item, std::uint32_t number, bool& isSet)
{
    const std::uint32_t end = RecordOf(number).end;
    const std::uint32_t flag = number + 1;
    const char* const text = flag != end && IsNamed(flag, item.words[0]) ? TextOf(flag) : nullptr;
    if (text == nullptr || !ToFlag(text, isSet))
        return false;
    const std::uint32_t counted = flag + 1;
    if (!isSet)
        return counted == end;
    m_value.number = 1;
    return counted != end && counted + 1 == end && IsNamed(counted, item.words[1]) &&
           TextOf(counted) != nullptr && ToDouble(TextOf(counted), m_value.numbers[0]);
}

bool RecordReader::ReadGroup(const Item& item, std::span<const Item> inner, std::uint32_t number,
                             RecordElement& element)
{
    RecordElement child(element, number);
    if (!child.IsSimple())
        return false;
    if (item.set != nullptr)
        Store(item, element);
    WalkInner(item, inner, child, element);
    return true;
}

bool RecordReader::ReadReference(const Item& item, std::uint32_t number)
{
    Entry entry{};
    if (!TakeEntry(number, {}, entry))
        return item.isWithoutTarget &&
               IdentifierOf({m_recorded.records, m_recorded.bytes, number}) == nullptr;
    if (entry.target == nullptr)
        return true;
    m_value.target = entry.target;
    ElementReader::Set(item.set(m_owner, m_value), item.where);
    return true;
}

// Throws what a reader from nodes throws when the target is no value.
bool RecordReader::ReadValueReference(const Item& item, std::uint32_t number,
                                      RecordElement& element)
{
    m_value.target = FindNumbered(m_entities, {m_recorded.records, m_recorded.bytes, number});
    if (m_value.target == nullptr || !HandleAs<KARMPValue>(*m_value.target))
        return false;
    Store(item, element);
    return true;
}

// All entries are looked at before the first of them is linked.
bool RecordReader::ReadReferences(const Item& item, std::span<const Item> inner,
                                  std::uint32_t number)
{
    m_entries.clear();
    const std::uint32_t end = RecordOf(number).end;
    for (std::uint32_t child = number + 1; child != end; child = RecordOf(child).end) {
        if (!IsNamed(child, item.entry))
            continue;
        Entry entry{};
        if (!TakeEntry(child, inner, entry))
            return false;
        if (entry.target != nullptr)
            m_entries.push_back(entry);
    }
    for (const Entry& entry : m_entries) {
        m_value.target = entry.target;
        m_value.number = entry.word;
        ElementReader::Set(item.set(m_owner, m_value), item.where);
    }
    return true;
}

// The target is null for one that the document does not have.
bool RecordReader::TakeEntry(std::uint32_t number, std::span<const Item> inner, Entry& entry)
{
    const RecordedElement element{m_recorded.records, m_recorded.bytes, number};
    entry.target = FindNumbered(m_entities, element);
    if (entry.target == nullptr) {
        const AttributeRecord* const identifier = IdentifierOf(element);
        if (identifier == nullptr || !identifier->IsPlain())
            return false;
        ReadText text;
        text.Refer(AsciiText{m_recorded.bytes + identifier->value});
        entry.target = m_entities.Find(text);
    }
    if (entry.target == nullptr || !*entry.target) {
        entry.target = nullptr;
        return true;
    }
    return std::all_of(inner.begin(), inner.end(), [&](const Item& attribute) {
        if (!attribute.isRead || attribute.isCoded || !m_gate.Passes(attribute))
            return true;
        const AttributeRecord* const word = FindAttribute(number, attribute.name);
        return attribute.whenRead == nullptr && word != nullptr && word->IsPlain() &&
               TakeWord(attribute, m_recorded.bytes + word->value, entry.word);
    });
}

const ElementRecord& RecordReader::RecordOf(std::uint32_t number) const
{
    return m_recorded.records->elements[number];
}

bool RecordReader::IsNamed(std::uint32_t number, std::wstring_view name) const
{
    return RecordOf(number).Name() == m_recorded.records->names.NumberOf(name);
}

// The text of an element that is as it stands; null for other ones.
const char* RecordReader::TextOf(std::uint32_t number) const
{
    const ElementRecord& record = RecordOf(number);
    if (record.Kind() != TextKind::Plain)
        return nullptr;
    return record.text != NoOffset ? m_recorded.bytes + record.text : "";
}

// The last attribute of a name counts.
const AttributeRecord* RecordReader::FindAttribute(std::uint32_t number,
                                                   std::wstring_view name) const
{
    const std::uint32_t wanted = m_recorded.records->names.NumberOf(name);
    for (std::uint32_t index = RecordOf(number + 1).attributes;
         index != RecordOf(number).attributes;) {
        const AttributeRecord& attribute = m_recorded.records->attributes[--index];
        if (attribute.Name() == wanted)
            return &attribute;
    }
    return nullptr;
}

} // namespace karmp
