// The reader's conversions: from a stored value or text to the kind asked for.
#include "KARMPDeserializer.h"

#include "KARMPFailedCheck.h"
#include "KARMPItemKind.h"
#include "KARMPNodeSource.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <optional>

using karmp::AsciiText;
using karmp::NodeText;
using karmp::ReadValue;

namespace {

// Characters of either width with the ASCII text.
template <class Char>
bool Equals(std::basic_string_view<Char> text, std::string_view ascii)
{
    return std::equal(
        text.begin(), text.end(), ascii.begin(), ascii.end(),
        [](Char left, char right) { return left == static_cast<Char>(right); });
}

template <class Char>
std::optional<bool> BoolOf(std::basic_string_view<Char> text)
{
    const auto isText = [text](std::string_view form) { return Equals(text, form); };
    if (std::any_of(karmp::TrueForms.begin(), karmp::TrueForms.end(), isText))
        return true;
    if (std::any_of(karmp::FalseForms.begin(), karmp::FalseForms.end(), isText))
        return false;
    return std::nullopt;
}

// Reads a plain decimal number: a sign, digits, and a mark among them. Few digits, and the power of
// ten that they are divided by, are exact doubles, so that the quotient is the double nearest to
// the number. Any other text is left to the full scan.
template <class Char>
std::optional<double> PlainNumber(std::basic_string_view<Char> text)
{
    constexpr std::array<double, 16> powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::size_t mostDigits = powers.size() - 1;
    const bool negative = !text.empty() && text.front() == Char{'-'};
    text.remove_prefix(negative ? 1 : 0);
    std::int64_t number = 0;
    std::size_t digits = 0;
    std::size_t whole = 0;
    bool marked = false;
    for (const Char character : text) {
        if (character >= Char{'0'} && character <= Char{'9'} && digits < mostDigits) {
            number = number * 10 + (character - Char{'0'});
            ++digits;
        } else if (!marked && (character == Char{'.'} || character == Char{','})) {
            marked = true;
            whole = digits;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0)
        return std::nullopt;
    const double size = static_cast<double>(number) / powers[marked ? digits - whole : 0];
    return negative ? -size : size;
}

template <class Char>
std::optional<double> ScanNumber(std::basic_string_view<Char> text)
{
    std::optional<double> number = PlainNumber(text);
    if (!number) {
        double scanned = 0.0;
        if (kar::ScanDouble(text, scanned, kar::DecimalMark::PointOrComma) == 1)
            number = scanned;
    }
    return number;
}

template <class Char>
std::optional<int> ScanInteger(std::basic_string_view<Char> text)
{
    int number = 0;
    return kar::ScanInt(text, number) == 1 ? std::optional<int>(number) : std::nullopt;
}

// Gives what `read` makes of the text's characters, wide or narrow; nothing when the value is none.
template <class Read>
auto FromText(const ReadValue& stored, Read read) -> decltype(read(std::wstring_view()))
{
    if (const auto* const narrow = std::get_if<AsciiText>(&stored))
        return read(narrow->View());
    if (const auto* const text = std::get_if<NodeText>(&stored))
        return read(text->View());
    return std::nullopt;
}

template <class T>
KARStatus HandOut(const std::optional<T>& found, T& value)
{
    if (!found)
        return KARFailure;
    value = *found;
    return KARSuccess;
}

} // namespace

KARStatus KARMPDeserializer::GetValue(std::wstring& value) const
{
    Need(karmp::ContentPart);
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(std::wstring_view& value) const
{
    Need(karmp::ContentPart);
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(int& value) const
{
    Need(karmp::ContentPart);
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(double& value) const
{
    Need(karmp::ContentPart);
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(bool& value) const
{
    Need(karmp::ContentPart);
    return GetAttrVal(m_value, value);
}

bool KARMPDeserializer::HasValue() const
{
    Need(karmp::ContentPart);
    return m_value.index() != 0;
}

template <class T>
KARStatus KARMPDeserializer::ConvertAttribute(std::wstring_view name, T& value) const
{
    // A view refers to what the node holds.
    if constexpr (!std::is_same_v<T, std::wstring_view>) {
        AsciiText unfilled;
        if ((m_missing & karmp::AttributesPart) != 0 &&
            m_source->FindAttribute(*this, name, unfilled))
            return unfilled.characters != nullptr ? GetAttrVal(ReadValue(unfilled), value)
                                                  : KARFailure;
    }
    ReadValue* const stored = FindAttribute(name);
    return stored != nullptr ? GetAttrVal(*stored, value) : KARFailure;
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, std::wstring& value) const
{
    return ConvertAttribute(name, value);
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, std::wstring_view& value) const
{
    return ConvertAttribute(name, value);
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, karmp::ReadText& value) const
{
    return ConvertAttribute(name, value);
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, int& value) const
{
    return ConvertAttribute(name, value);
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, double& value) const
{
    return ConvertAttribute(name, value);
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, bool& value) const
{
    return ConvertAttribute(name, value);
}

template <class T>
KARStatus KARMPDeserializer::ConvertElement(std::wstring_view name, const KARMPDeserializer*& child,
                                            T& value) const
{
    if (KARFailed(GetElement(name, child)) || child == nullptr)
        return KARFailure;
    // On top of the report that the conversion may have made.
    return KARMPVerify(!KARFailed(child->GetValue(value))) ? KARSuccess : KARFailure;
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                                        std::wstring& value) const
{
    return ConvertElement(name, child, value);
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                                        std::wstring_view& value) const
{
    return ConvertElement(name, child, value);
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                                        int& value) const
{
    return ConvertElement(name, child, value);
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                                        double& value) const
{
    return ConvertElement(name, child, value);
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                                        bool& value) const
{
    return ConvertElement(name, child, value);
}

// The wide form replaces the narrow one in the node, since the view refers to it.
KARStatus KARMPDeserializer::GetAttrVal(ReadValue& stored, std::wstring_view& value) const
{
    if (const auto* const narrow = std::get_if<AsciiText>(&stored))
        stored = NodeText::Widen(narrow->View(), *m_source);
    const auto* const text = std::get_if<NodeText>(&stored);
    if (!KARMPVerify(text != nullptr))
        return KARFailure;
    value = text->View();
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetAttrVal(const ReadValue& stored, karmp::ReadText& value)
{
    if (const auto* const narrow = std::get_if<AsciiText>(&stored)) {
        value.Refer(*narrow);
        return KARSuccess;
    }
    const auto* const text = std::get_if<NodeText>(&stored);
    if (!KARMPVerify(text != nullptr))
        return KARFailure;
    value.Refer(text->View());
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetAttrVal(const ReadValue& stored, std::wstring& value)
{
    karmp::ReadText text;
    const KARStatus status = GetAttrVal(stored, text);
    if (!KARFailed(status))
        value = text.View();
    return status;
}

KARStatus KARMPDeserializer::GetAttrVal(const ReadValue& stored, int& value)
{
    if (const auto* const number = std::get_if<std::int32_t>(&stored)) {
        value = *number;
        return KARSuccess;
    }
    const auto number = FromText(stored, [](auto text) { return ScanInteger(text); });
    return KARMPVerify(number.has_value()) ? HandOut(number, value) : KARFailure;
}

KARStatus KARMPDeserializer::GetAttrVal(const ReadValue& stored, double& value)
{
    if (const auto* const number = std::get_if<double>(&stored)) {
        value = *number;
        return KARSuccess;
    }
    const auto number = FromText(stored, [](auto text) { return ScanNumber(text); });
    return KARMPVerify(number.has_value()) ? HandOut(number, value) : KARFailure;
}

// A text that is no bool is no report.
KARStatus KARMPDeserializer::GetAttrVal(const ReadValue& stored, bool& value)
{
    if (const auto* const state = std::get_if<bool>(&stored)) {
        value = *state;
        return KARSuccess;
    }
    const bool isText =
        std::holds_alternative<AsciiText>(stored) || std::holds_alternative<NodeText>(stored);
    if (!KARMPVerify(isText))
        return KARFailure;
    return HandOut(FromText(stored, [](auto text) { return BoolOf(text); }), value);
}
