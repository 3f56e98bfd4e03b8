// The reader's conversions: from a stored value or text to the kind asked for.
#include "KARMPDeserializer.h"

#include "KARMPFailedCheck.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <optional>

using karmp::NodeAttribute;
using karmp::NodeText;
using karmp::NodeValue;

namespace {

std::optional<bool> BoolOf(std::wstring_view text)
{
    constexpr std::array<std::wstring_view, 5> trueForms{L"1", L"true", L"TRUE", L"yes", L"YES"};
    constexpr std::array<std::wstring_view, 5> falseForms{L"0", L"false", L"FALSE", L"no", L"NO"};
    if (std::find(trueForms.begin(), trueForms.end(), text) != trueForms.end()) {
        return true;
    }
    if (std::find(falseForms.begin(), falseForms.end(), text) != falseForms.end()) {
        return false;
    }
    return std::nullopt;
}

// Reads a plain decimal number: a sign, digits, and a mark among them. Few digits, and the power of
// ten that they are divided by, are exact doubles, so that the quotient is the double nearest to
// the number. Any other text is left to the full scan.
std::optional<double> PlainNumber(std::wstring_view text)
{
    constexpr std::array<double, 16> powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::size_t mostDigits = powers.size() - 1;
    const bool negative = !text.empty() && text.front() == L'-';
    text.remove_prefix(negative ? 1 : 0);
    std::int64_t number = 0;
    std::size_t digits = 0;
    std::size_t whole = 0;
    bool marked = false;
    for (const wchar_t character : text) {
        if (character >= L'0' && character <= L'9' && digits < mostDigits) {
            number = number * 10 + (character - L'0');
            ++digits;
        } else if (!marked && (character == L'.' || character == L',')) {
            marked = true;
            whole = digits;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0) {
        return std::nullopt;
    }
    const double size = static_cast<double>(number) / powers[marked ? digits - whole : 0];
    return negative ? -size : size;
}

} // namespace

KARStatus KARMPDeserializer::GetValue(std::wstring& value) const
{
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(std::wstring_view& value) const
{
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(int& value) const
{
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(double& value) const
{
    return GetAttrVal(m_value, value);
}

KARStatus KARMPDeserializer::GetValue(bool& value) const
{
    return GetAttrVal(m_value, value);
}

template <class T>
KARStatus KARMPDeserializer::ConvertAttribute(std::wstring_view name, T& value) const
{
    const NodeAttribute* const attribute = FindAttribute(name);
    return attribute != nullptr ? GetAttrVal(attribute->value, value) : KARFailure;
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, std::wstring& value) const
{
    return ConvertAttribute(name, value);
}

KARStatus KARMPDeserializer::GetAttribute(std::wstring_view name, std::wstring_view& value) const
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
    if (KARFailed(GetElement(name, child)) || child == nullptr) {
        return KARFailure;
    }
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

KARStatus KARMPDeserializer::GetAttrVal(const NodeValue& stored, std::wstring_view& value)
{
    const auto* const text = std::get_if<NodeText>(&stored);
    if (!KARMPVerify(text != nullptr)) {
        return KARFailure;
    }
    value = text->View();
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetAttrVal(const NodeValue& stored, std::wstring& value)
{
    std::wstring_view text;
    const KARStatus status = GetAttrVal(stored, text);
    if (!KARFailed(status)) {
        value = text;
    }
    return status;
}

KARStatus KARMPDeserializer::GetAttrVal(const NodeValue& stored, int& value)
{
    if (const auto* const number = std::get_if<std::int32_t>(&stored)) {
        value = *number;
        return KARSuccess;
    }
    const auto* const text = std::get_if<NodeText>(&stored);
    const bool converted = text != nullptr && kar::ScanInt(text->View(), value) == 1;
    return KARMPVerify(converted) ? KARSuccess : KARFailure;
}

KARStatus KARMPDeserializer::GetAttrVal(const NodeValue& stored, double& value)
{
    if (const auto* const number = std::get_if<double>(&stored)) {
        value = *number;
        return KARSuccess;
    }
    const auto* const text = std::get_if<NodeText>(&stored);
    const std::wstring_view view = text != nullptr ? text->View() : std::wstring_view();
    if (const std::optional<double> number = PlainNumber(view)) {
        value = *number;
        return KARSuccess;
    }
    const bool converted =
        text != nullptr && kar::ScanDouble(view, value, kar::DecimalMark::PointOrComma) == 1;
    return KARMPVerify(converted) ? KARSuccess : KARFailure;
}

KARStatus KARMPDeserializer::GetAttrVal(const NodeValue& stored, bool& value)
{
    if (const auto* const state = std::get_if<bool>(&stored)) {
        value = *state;
        return KARSuccess;
    }
    const auto* const text = std::get_if<NodeText>(&stored);
    if (!KARMPVerify(text != nullptr)) {
        return KARFailure;
    }
    const std::optional<bool> state = BoolOf(text->View());
    if (!state.has_value()) {
        return KARFailure;
    }
    value = *state;
    return KARSuccess;
}
