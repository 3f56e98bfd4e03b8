#include "KARMPTextEscapes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace karmp::documents {

namespace {

using Unit = std::uint32_t;

constexpr std::string_view EscapeStart = "\\x{";
constexpr std::size_t LongestEscape = EscapeStart.size() + 8 + 1;
constexpr std::size_t LongestQuote = 80;

Unit UnitOf(wchar_t character)
{
    return static_cast<Unit>(character);
}

bool IsSurrogate(Unit unit)
{
    return unit >= 0xD800 && unit <= 0xDFFF;
}

// What XML can hold, as a character or as a reference.
bool IsXmlCharacter(Unit unit)
{
    if (unit < 0x20)
        return unit == '\t' || unit == '\n' || unit == '\r';
    return !IsSurrogate(unit) && unit != 0xFFFE && unit != 0xFFFF && unit <= 0x10FFFF;
}

// ASCII characters that need no escape in the middle of any text.
constexpr std::array<bool, 128> PlainTable = [] {
    std::array<bool, 128> plain{};
    for (std::size_t unit = 0x20; unit < plain.size(); ++unit)
        plain[unit] = unit != '&' && unit != '<' && unit != '>' && unit != '"' && unit != '\\';
    return plain;
}();

bool IsPlain(Unit unit)
{
    return unit < PlainTable.size() && PlainTable[unit];
}

void AppendCharacter(std::string& bytes, Unit unit)
{
    const auto trail = [&bytes](Unit bits) {
        bytes.push_back(static_cast<char>(0x80U | (bits & 0x3FU)));
    };
    if (unit < 0x80) {
        bytes.push_back(static_cast<char>(unit));
    } else if (unit < 0x800) {
        bytes.push_back(static_cast<char>(0xC0U | (unit >> 6U)));
        trail(unit);
    } else if (unit < 0x10000) {
        bytes.push_back(static_cast<char>(0xE0U | (unit >> 12U)));
        trail(unit >> 6U);
        trail(unit);
    } else {
        bytes.push_back(static_cast<char>(0xF0U | (unit >> 18U)));
        trail(unit >> 12U);
        trail(unit >> 6U);
        trail(unit);
    }
}

// Appends plain ASCII characters.
void AppendPlain(std::string& bytes, std::wstring_view text)
{
    const std::size_t before = bytes.size();
    bytes.resize(before + text.size());
    std::transform(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(before),
                   [](wchar_t character) { return static_cast<char>(character); });
}

void AppendNumber(std::string& bytes, Unit value, int base)
{
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, base);
    for (const char* digit = digits.data(); digit != end.ptr; ++digit)
        bytes.push_back(*digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit);
}

void AppendReference(std::string& bytes, Unit unit)
{
    bytes += "&#";
    AppendNumber(bytes, unit, 10);
    bytes += ';';
}

void AppendEscape(std::string& bytes, Unit unit)
{
    bytes += EscapeStart;
    AppendNumber(bytes, unit, 16);
    bytes += '}';
}

// A character that is not plain, or a blank at an end of an element's text.
void AppendSpecial(std::string& bytes, std::wstring_view text, std::size_t index)
{
    const Unit unit = UnitOf(text[index]);
    switch (unit) {
    case '&':
        bytes += "&amp;";
        return;
    case '<':
        bytes += "&lt;";
        return;
    case '>':
        bytes += "&gt;";
        return;
    case '"':
        bytes += "&quot;";
        return;
    case ' ':
    case '\t':
    case '\n':
    case '\r':
        AppendReference(bytes, unit);
        return;
    case '\\':
        if (text.substr(index + 1, 2) == L"x{")
            AppendEscape(bytes, unit);
        else
            bytes += '\\';
        return;
    default:
        if (IsXmlCharacter(unit))
            AppendCharacter(bytes, unit);
        else
            AppendEscape(bytes, unit);
    }
}

// Decodes the character at `offset`, which is moved behind it. The bytes are known to be UTF-8.
Unit NextCharacter(std::string_view raw, std::size_t& offset)
{
    const auto byte = [raw](std::size_t index) {
        return static_cast<Unit>(static_cast<unsigned char>(raw[index]));
    };
    const Unit first = byte(offset);
    std::size_t trails = first < 0x80 ? 0U : first < 0xE0 ? 1U : first < 0xF0 ? 2U : 3U;
    Unit unit = trails == 0 ? first : first & (0x3FU >> trails);
    for (++offset; trails > 0 && offset < raw.size(); --trails, ++offset)
        unit = (unit << 6U) | (byte(offset) & 0x3FU);
    return unit;
}

void AppendUnit(std::wstring& text, Unit unit)
{
    if constexpr (sizeof(wchar_t) == 2) {
        if (unit > 0xFFFF) {
            text.push_back(static_cast<wchar_t>(0xD800U + ((unit - 0x10000U) >> 10U)));
            unit = 0xDC00U + ((unit - 0x10000U) & 0x3FFU);
        }
    }
    text.push_back(static_cast<wchar_t>(unit));
}

// Reads digits up to `end`; false unless there are some and nothing else.
bool ReadNumber(std::string_view digits, int base, Unit& value)
{
    const char* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, base);
    return !digits.empty() && result.ec == std::errc() && result.ptr == end;
}

bool ReadReference(std::string_view name, Unit& unit)
{
    constexpr std::array<std::pair<std::string_view, char>, 5> named{
        {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
    for (const auto& [text, character] : named) {
        if (name == text) {
            unit = static_cast<Unit>(character);
            return true;
        }
    }
    if (name.size() < 2 || name[0] != '#')
        return false;
    const bool hexadecimal = name[1] == 'x';
    return ReadNumber(name.substr(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10, unit) &&
           IsXmlCharacter(unit);
}

// Decodes the reference at `offset`, which is moved behind it. False for an unknown one, of which
// the "&" is appended.
bool DecodeReference(std::wstring& text, std::string_view raw, std::size_t& offset)
{
    constexpr std::size_t longestName = 4;
    const std::string_view rest = raw.substr(offset + 1);
    // A number may have leading zeros.
    const std::size_t length = rest.starts_with('#')
                                   ? rest.find_first_not_of("0123456789abcdefABCDEFx", 1)
                                   : rest.substr(0, longestName + 1).find(';');
    Unit unit = 0;
    if (length == std::string_view::npos || rest[length] != ';' ||
        !ReadReference(rest.substr(0, length), unit)) {
        text.push_back(L'&');
        ++offset;
        return false;
    }
    AppendUnit(text, unit);
    offset += length + 2;
    return true;
}

// Decodes the escape at `offset`, or the backslash alone.
void DecodeBackslash(std::wstring& text, std::string_view raw, std::size_t& offset)
{
    const std::string_view rest = raw.substr(offset, LongestEscape);
    const std::size_t end = rest.find('}');
    Unit unit = 0;
    if (rest.starts_with(EscapeStart) && end != std::string_view::npos &&
        ReadNumber(rest.substr(EscapeStart.size(), end - EscapeStart.size()), 16, unit)) {
        text.push_back(static_cast<wchar_t>(unit));
        offset += end + 1;
    } else {
        text.push_back(L'\\');
        ++offset;
    }
}

// Decodes a literal blank as XML does: every line end is a line feed, every blank of an attribute a
// space.
void DecodeBlank(std::wstring& text, std::string_view raw, std::size_t& offset, TextContext context)
{
    const char blank = raw[offset++];
    if (blank == '\r' && offset < raw.size() && raw[offset] == '\n')
        ++offset;
    if (context == TextContext::Attribute)
        text.push_back(L' ');
    else
        text.push_back(blank == '\r' ? L'\n' : static_cast<wchar_t>(blank));
}

bool IsSelfStanding(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80 && byte != '&' && byte != '\\' &&
           static_cast<unsigned char>(byte) >= 0x20;
}

// Appends the leading self-standing characters, usually all, and gives their number.
std::size_t AppendWidened(std::wstring& text, std::string_view raw)
{
    const auto end = std::find_if_not(raw.begin(), raw.end(), IsSelfStanding);
    const auto count = static_cast<std::size_t>(end - raw.begin());
    const std::size_t before = text.size();
    text.resize(before + count);
    std::copy(raw.begin(), end, text.begin() + static_cast<std::ptrdiff_t>(before));
    return count;
}

bool IsNameStart(Unit unit)
{
    if (unit < 0x80) {
        return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || unit == '_' ||
               unit == ':';
    }
    constexpr std::array<std::pair<Unit, Unit>, 12> ranges{{{0xC0, 0xD6},
                                                            {0xD8, 0xF6},
                                                            {0xF8, 0x2FF},
                                                            {0x370, 0x37D},
                                                            {0x37F, 0x1FFF},
                                                            {0x200C, 0x200D},
                                                            {0x2070, 0x218F},
                                                            {0x2C00, 0x2FEF},
                                                            {0x3001, 0xD7FF},
                                                            {0xF900, 0xFDCF},
                                                            {0xFDF0, 0xFFFD},
                                                            {0x10000, 0xEFFFF}}};
    return std::any_of(ranges.begin(), ranges.end(), [unit](const auto& range) {
        return unit >= range.first && unit <= range.second;
    });
}

bool IsNameCharacter(Unit unit)
{
    return IsNameStart(unit) || (unit >= '0' && unit <= '9') || unit == '-' || unit == '.' ||
           unit == 0xB7 || (unit >= 0x300 && unit <= 0x36F) || (unit >= 0x203F && unit <= 0x2040);
}

} // namespace

void AppendEscaped(std::string& bytes, std::wstring_view text, TextContext context)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const std::size_t start = done;
        while (done < text.size() && IsPlain(UnitOf(text[done])))
            ++done;
        const bool inElement = context == TextContext::Element;
        std::size_t first = start;
        std::size_t last = done;
        if (inElement && start == 0 && done > 0 && text.front() == L' ') {
            AppendReference(bytes, ' ');
            ++first;
        }
        const bool blankEnd =
            inElement && done == text.size() && last > first && text.back() == L' ';
        last -= blankEnd ? 1 : 0;
        AppendPlain(bytes, text.substr(first, last - first));
        if (blankEnd)
            AppendReference(bytes, ' ');
        if (done < text.size()) {
            AppendSpecial(bytes, text, done);
            ++done;
        }
    }
}

bool AppendDecoded(std::wstring& text, std::string_view raw, TextContext context)
{
    bool known = true;
    std::size_t done = AppendWidened(text, raw);
    while (done < raw.size()) {
        const char byte = raw[done];
        if (byte == '&') {
            known = DecodeReference(text, raw, done) && known;
        } else if (byte == '\\') {
            DecodeBackslash(text, raw, done);
        } else if (byte == '\r' || byte == '\n' || byte == '\t') {
            DecodeBlank(text, raw, done, context);
        } else if (static_cast<unsigned char>(byte) < 0x80) {
            text.push_back(static_cast<wchar_t>(byte));
            ++done;
        } else {
            AppendUnit(text, NextCharacter(raw, done));
        }
    }
    return known;
}

void AppendDecodedCData(std::wstring& text, std::string_view raw)
{
    std::size_t done = AppendWidened(text, raw);
    while (done < raw.size())
        if (raw[done] == '\r')
            DecodeBlank(text, raw, done, TextContext::Element);
        else
            AppendUnit(text, NextCharacter(raw, done));
}

void AppendUtf8(std::string& bytes, std::wstring_view text)
{
    for (const wchar_t character : text) {
        const Unit unit = UnitOf(character);
        AppendCharacter(bytes, IsXmlCharacter(unit) ? unit : 0xFFFD);
    }
}

std::string Quoted(std::wstring_view text)
{
    std::string bytes = "\"";
    AppendEscaped(bytes, text.substr(0, LongestQuote), TextContext::Attribute);
    if (text.size() > LongestQuote)
        bytes += "...";
    bytes += '"';
    return bytes;
}

bool IsXmlName(std::wstring_view text)
{
    return !text.empty() && IsNameStart(UnitOf(text.front())) &&
           std::all_of(
               text.begin() + 1, text.end(),
               [](wchar_t character) { return IsNameCharacter(UnitOf(character)); });
}

} // namespace karmp::documents
