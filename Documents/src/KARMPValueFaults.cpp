#include "KARMPValueFaults.h"

#include "KARMPNearestWord.h"
#include "KARMPTextEscapes.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace karmp::documents {

namespace {

constexpr std::wstring_view WideBlanks = L" \t\r\n\v\f";

bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

std::wstring_view Trimmed(std::wstring_view text)
{
    const std::size_t first = text.find_first_not_of(WideBlanks);
    if (first == std::wstring_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(WideBlanks) - first + 1);
}

std::string TextOf(double number)
{
    if (!std::isfinite(number))
        return std::isnan(number) ? "no number" : "an infinity";
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return std::string(buffer.data(), result.ptr);
}

bool IsHexadecimal(std::wstring_view text)
{
    const std::size_t sign = !text.empty() && (text[0] == L'-' || text[0] == L'+') ? 1 : 0;
    return text.size() > sign + 1 && text[sign] == L'0' &&
           (text[sign + 1] == L'x' || text[sign + 1] == L'X');
}

// Groups of three digits that a mark divides: 1'000, 1 000, 1.000.000.
bool HasThousandsMarks(std::wstring_view text, wchar_t mark)
{
    std::size_t groups = 0;
    for (std::size_t at = text.find(mark); at != std::wstring_view::npos;
         at = text.find(mark, at + 1)) {
        const auto isDigitAt = [&](std::size_t index) {
            return index < text.size() && IsDigit(text[index]);
        };
        if (at == 0 || !IsDigit(text[at - 1]) || !isDigitAt(at + 1) || !isDigitAt(at + 2) ||
            !isDigitAt(at + 3) || isDigitAt(at + 4))
            return false;
        ++groups;
    }
    return groups > 0;
}

bool HasAnyThousandsMarks(std::wstring_view text)
{
    constexpr std::wstring_view Always = L"' _\u00A0\u2019\u202F";
    constexpr std::wstring_view Repeated = L".,";
    const auto isMark = [text](wchar_t mark) { return HasThousandsMarks(text, mark); };
    return std::any_of(Always.begin(), Always.end(), isMark) ||
           std::any_of(Repeated.begin(), Repeated.end(), [text](wchar_t mark) {
               return std::count(text.begin(), text.end(), mark) > 1 &&
                      HasThousandsMarks(text.substr(0, text.find(mark == L'.' ? L',' : L'.')),
                                        mark);
           });
}

// Why a text that is not empty is no number.
std::string ReasonOf(std::wstring_view text)
{
    if (IsHexadecimal(text))
        return " is hexadecimal";
    if (HasAnyThousandsMarks(text))
        return " has marks between thousands";
    double value = 0.0;
    const bool isRead = kar::ScanDouble(text, value, kar::DecimalMark::PointOrComma) == 1;
    if (isRead && std::isinf(value) && text.find_first_not_of(L"0123456789+-.,eE") == text.npos)
        return " is too large for 64 bits";
    if (isRead && text.find_first_of(WideBlanks) != text.npos)
        return " is more than one number";
    if (isRead &&
        std::count(text.begin(), text.end(), L'.') + std::count(text.begin(), text.end(), L',') > 1)
        return " has more than one decimal point";
    return isRead ? " is a number with other signs behind it" : " is no number";
}

std::optional<ValueFault> NumberFault(std::wstring_view whole)
{
    const std::wstring_view text = Trimmed(whole);
    if (text.empty())
        return ValueFault{Severity::Error, Code::InvalidValue,
                          "there is no number; a decimal number such as 0.5 was expected"};
    const bool isNumber = kar::IsNumber(whole, kar::DecimalMark::PointOrComma);
    // Without an exponent, few digits are neither too small nor an infinity.
    constexpr std::size_t few = 300;
    if (isNumber && text.size() < few && text.find_first_of(L",eEiInN") == text.npos)
        return {};
    double value = 0.0;
    const bool isRead = kar::ScanDouble(text, value, kar::DecimalMark::PointOrComma) == 1;
    if (!isNumber)
        return ValueFault{Severity::Error, Code::InvalidValue,
                          Quoted(whole) + ReasonOf(text) +
                              "; a decimal number such as 0.5 was expected" +
                              (isRead ? ", and " + TextOf(value) + " is read" : std::string())};
    if (!std::isfinite(value))
        return ValueFault{Severity::Warning, Code::NotFinite,
                          Quoted(whole) + " is " + TextOf(value) +
                              "; a finite number was expected"};
    if (text.find(L',') != text.npos)
        return ValueFault{Severity::Warning, Code::DecimalComma,
                          Quoted(whole) + " has a decimal comma and is read as " + TextOf(value) +
                              "; a decimal point was expected"};
    const std::wstring_view mantissa = text.substr(0, text.find_first_of(L"eE"));
    if (value == 0.0 && mantissa.find_first_of(L"123456789") != mantissa.npos)
        return ValueFault{Severity::Warning, Code::TooSmall,
                          Quoted(whole) + " is too small for 64 bits and is read as 0"};
    return {};
}

std::string IntegerReason(std::wstring_view text)
{
    const std::size_t sign = text[0] == L'-' || text[0] == L'+' ? 1 : 0;
    if (text.size() > sign &&
        std::all_of(text.begin() + static_cast<std::ptrdiff_t>(sign), text.end(), IsDigit))
        return " is too large for 32 bits";
    return kar::IsNumber(text, kar::DecimalMark::PointOrComma) ? " is no whole number"
                                                               : ReasonOf(text);
}

std::optional<ValueFault> IntegerFault(std::wstring_view whole)
{
    if (kar::IsInteger(whole))
        return {};
    const std::wstring_view text = Trimmed(whole);
    return ValueFault{Severity::Error, Code::InvalidValue,
                      text.empty() ? "there is no number; a whole number such as 2 was expected"
                                   : Quoted(whole) + IntegerReason(text) +
                                         "; a whole number such as 2 was expected"};
}

std::string Listed(const std::vector<std::wstring_view>& words)
{
    std::string list;
    for (std::size_t index = 0; index < words.size(); ++index) {
        list += index == 0 ? "" : index + 1 == words.size() ? " or " : ", ";
        list += kar::ToUtf8(words[index]);
    }
    return list;
}

std::optional<ValueFault> CodeFault(const SchemaItem& item, std::wstring_view text)
{
    if (auto fault = IntegerFault(text))
        return fault;
    int number = 0;
    kar::ScanInt(text, number);
    if (item.words.empty() || (number >= 0 && static_cast<std::size_t>(number) < item.words.size()))
        return {};
    return ValueFault{Severity::Warning, Code::UnknownNumber,
                      Quoted(text) + " stands for nothing; a number from 0 to " +
                          std::to_string(item.words.size() - 1) + " was expected, for " +
                          Listed(item.words)};
}

std::optional<ValueFault> WordFault(const SchemaItem& item, std::wstring_view text)
{
    if (std::find(item.words.begin(), item.words.end(), text) != item.words.end())
        return {};
    std::string fault =
        text.empty() ? std::string("there is no word") : Quoted(text) + " is not known here";
    fault += Suggestion(text, item.words) + "; " + Listed(item.words) + " was expected";
    if (!item.words.empty())
        fault += ", and " + kar::ToUtf8(item.words.front()) + " is read";
    return ValueFault{Severity::Warning, Code::InvalidValue, std::move(fault)};
}

std::optional<ValueFault> FlagFault(std::wstring_view text)
{
    static const std::vector<std::wstring_view> words{L"1", L"true",  L"TRUE",  L"yes", L"YES",
                                                      L"0", L"false", L"FALSE", L"no",  L"NO"};
    if (std::find(words.begin(), words.end(), text) != words.end())
        return {};
    return ValueFault{Severity::Error, Code::InvalidValue,
                      Quoted(text) + " is neither true nor false" + Suggestion(text, words) +
                          "; true, yes, 1, false, no or 0 was expected"};
}

} // namespace

std::string Suggestion(std::wstring_view word, const std::vector<std::wstring_view>& candidates)
{
    return Suggestion(NearestWord(word, candidates));
}

std::string Suggestion(std::wstring_view nearest)
{
    return nearest.empty() ? std::string() : " (did you mean " + Quoted(nearest) + "?)";
}

std::optional<ValueFault> FaultOf(const SchemaItem& item, std::wstring_view text)
{
    switch (item.kind) {
    case ItemKind::Number:
        return NumberFault(text);
    case ItemKind::Integer:
        return IntegerFault(text);
    case ItemKind::Code:
        return CodeFault(item, text);
    case ItemKind::Flag:
        return FlagFault(text);
    case ItemKind::Word:
        return WordFault(item, text);
    case ItemKind::Group:
    case ItemKind::Reference:
        if (text.find_first_not_of(L" \t\r\n") == std::wstring_view::npos)
            return {};
        return ValueFault{Severity::Warning, Code::UnexpectedText,
                          "the text " + Quoted(text) + " is not read: " +
                              (item.kind == ItemKind::Group ? "only elements stand here"
                                                            : "a reference has no text")};
    default:
        return {};
    }
}

} // namespace karmp::documents
