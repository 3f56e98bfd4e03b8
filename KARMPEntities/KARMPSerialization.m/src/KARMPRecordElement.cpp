#include "KARMPRecordElement.h"

#include "KARMPItemKind.h"
#include "KARMPNodeSource.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace karmp {

namespace {

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

} // namespace

// An entity's element is looked at by each of its classes in a row.
bool RecordElement::IsSimple() const
{
    if (!m_isSimple) {
        std::uint32_t& last = m_source->records.lastSimple;
        m_isSimple = last == m_number || HasDistinctNames();
        if (*m_isSimple && m_parent == nullptr)
            last = m_number;
    }
    return *m_isSimple;
}

bool RecordElement::HasDistinctNames() const
{
    constexpr std::uint32_t most = 16;
    const std::uint32_t end = RecordOf(m_number).end;
    std::uint64_t bits = 0;
    std::uint32_t count = 0;
    for (std::uint32_t child = m_number + 1; child != end; child = RecordOf(child).end) {
        const std::uint32_t name = RecordOf(child).Name();
        const std::uint64_t bit = std::uint64_t{1} << (name % 64);
        if (++count > most || ((bits & bit) != 0 && FindFrom(m_number + 1, child, name) != 0))
            return false;
        bits |= bit;
    }
    return true;
}

// The first child of a name before the end; 0 when there is none.
std::uint32_t RecordElement::FindFrom(std::uint32_t child, std::uint32_t end,
                                      std::uint32_t name) const
{
    for (; child != end; child = RecordOf(child).end)
        if (RecordOf(child).Name() == name)
            return child;
    return 0;
}

std::uint32_t RecordElement::Find(std::wstring_view name) const
{
    if (m_source == nullptr)
        return 0;
    const std::uint32_t wanted = m_source->records.names.NumberOf(name);
    if (wanted == NoName)
        return 0;
    std::uint32_t found = FindFrom(m_likely, RecordOf(m_number).end, wanted);
    if (found == 0)
        found = FindFrom(m_number + 1, m_likely, wanted);
    if (found != 0)
        m_likely = RecordOf(found).end;
    return found;
}

const KARMPDeserializer* RecordElement::Node() const
{
    if (m_node == nullptr && m_parent != nullptr) {
        const std::uint32_t name = RecordOf(m_number).Name();
        m_node = m_parent->Node()->ElementsNamed(m_source->records.names[name].View())[m_index];
    }
    return m_node;
}

RecordElement RecordElement::Child(std::wstring_view name, Absent absent, Where where)
{
    const std::uint32_t number = Find(name);
    if (number != 0 && IsSimple())
        return {*this, number, 0};
    const KARMPDeserializer* node = nullptr;
    if (number != 0 || absent != Absent::Keep)
        FromNode([&](ElementReader& reader) {
            node = reader.Child(name, absent, where).Node();
            return node != nullptr;
        });
    RecordElement child(nullptr, 0, nullptr);
    child.m_failed = node == nullptr;
    if (node != nullptr)
        child = RecordElement(m_source, NodeBuilder::Recorded(*node).number, node);
    return child;
}

const QOBSharedHandle<KARMPEntity>* RecordElement::FindTarget(const KARMPEntityTable& entities,
                                                              Where where) const
{
    if (const QOBSharedHandle<KARMPEntity>* const found =
            FindNumbered(entities, Recorded(m_number)))
        return *found ? found : nullptr;
    return ElementReader(Node()).FindTarget(entities, where);
}

const QOBSharedHandle<KARMPEntity>* RecordElement::FindNumberedTarget(
    std::wstring_view name, const KARMPEntityTable& entities) const
{
    const std::uint32_t child = IsSimple() ? Find(name) : 0;
    return child != 0 ? FindNumbered(entities, Recorded(child)) : nullptr;
}

bool RecordElement::TakeDoubles(std::span<const std::wstring_view> names, double* values) const
{
    std::uint32_t child = m_number;
    if (RecordOf(child).end != child + 1 + names.size())
        return false;
    return std::all_of(names.begin(), names.end(), [&](std::wstring_view name) {
        const char* const text = TextOf(++child);
        return text != nullptr &&
               RecordOf(child).Name() == m_source->records.names.NumberOf(name) &&
               Convert(text, *values++);
    });
}

// Gives what a scan of the text gives. Most numbers of a model are 0 and 1.
bool RecordElement::Convert(const char* text, double& value)
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

bool RecordElement::Convert(const char* text, int& value)
{
    return kar::ScanInt(std::string_view(text), value) == 1;
}

bool RecordElement::Convert(const char* text, bool& value)
{
    const auto isOneOf = [form = std::string_view(text)](const auto& forms) {
        return std::find(forms.begin(), forms.end(), form) != forms.end();
    };
    value = isOneOf(TrueForms);
    return value || isOneOf(FalseForms);
}

bool RecordElement::Convert(const char* text, ReadText& value)
{
    value.Refer(AsciiText{text});
    return true;
}

bool RecordElement::Convert(const char* text, std::wstring_view& value) const
{
    m_source->buffer.Refer(AsciiText{text});
    value = m_source->buffer.View();
    return true;
}

// The text of an element that is as it stands; null for other ones.
const char* RecordElement::TextOf(std::uint32_t number) const
{
    const ElementRecord& record = RecordOf(number);
    if (record.Kind() != TextKind::Plain)
        return nullptr;
    return record.text != NoOffset ? m_source->bytes + record.text : "";
}

// The last attribute of a name counts.
const AttributeRecord* RecordElement::FindAttribute(std::wstring_view name) const
{
    if (m_source == nullptr)
        return nullptr;
    const std::uint32_t wanted = m_source->records.names.NumberOf(name);
    for (std::uint32_t index = RecordOf(m_number + 1).attributes;
         index != RecordOf(m_number).attributes;) {
        const AttributeRecord& attribute = m_source->records.attributes[--index];
        if (attribute.Name() == wanted)
            return &attribute;
    }
    return nullptr;
}

} // namespace karmp
