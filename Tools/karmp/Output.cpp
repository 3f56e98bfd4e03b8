#include "Output.h"

#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <unistd.h>

namespace karmp::tool {

namespace {

constexpr std::string_view HexDigits = "0123456789abcdef";

void AppendHex(std::string& text, unsigned char byte)
{
    text += HexDigits[byte >> 4U];
    text += HexDigits[byte & 15U];
}

std::string Styled(const char* code, std::string_view text)
{
    if (!IsTerminal())
        return std::string(text);
    return std::string("\033[") + code + 'm' + std::string(text) + "\033[0m";
}

// Columns count characters, not bytes.
std::size_t Width(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(),
        [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

// The length of the UTF-8 character at the start of a text; 0 when there is none. The forms that
// are longer than need be, surrogates, and what lies beyond the last character are no UTF-8.
std::size_t CharacterLength(std::string_view text)
{
    const auto at = [text](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const auto follows = [&at](std::size_t index) { return (at(index) & 0xC0U) == 0x80U; };
    const unsigned first = at(0);
    const unsigned second = at(1);
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first < 0xE0)
        return follows(1) ? 2 : 0;
    if ((first & 0xF0U) == 0xE0) {
        const bool isWrong = (first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0);
        return follows(1) && follows(2) && !isWrong ? 3 : 0;
    }
    if (first >= 0xF0 && first < 0xF5) {
        const bool isWrong = (first == 0xF0 && second < 0x90) || (first == 0xF4 && second >= 0x90);
        return follows(1) && follows(2) && follows(3) && !isWrong ? 4 : 0;
    }
    return 0;
}

bool IsControl(std::string_view character)
{
    const auto byte = static_cast<unsigned char>(character.back());
    // C1 controls are two bytes in UTF-8, C2 80 to C2 9F.
    return character.size() == 1 ? byte < 0x20 || byte == 0x7F
                                 : character.front() == '\xC2' && byte < 0xA0;
}

} // namespace

std::string Printable(std::string_view text)
{
    std::string printable;
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        if (length == 0 || IsControl(character)) {
            printable += "\\x";
            AppendHex(printable, static_cast<unsigned char>(character.back()));
        } else {
            printable += character;
        }
        text.remove_prefix(character.size());
    }
    return printable;
}

std::string Printable(std::wstring_view text)
{
    return Printable(std::string_view(kar::ToUtf8(text)));
}

std::string Title(std::wstring_view name, std::wstring_view identifier)
{
    return name.empty() ? '[' + Printable(identifier) + ']' : '"' + Printable(name) + '"';
}

std::string NumberText(double number)
{
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return std::string(buffer.data(), result.ptr);
}

std::string CountText(std::size_t count, const char* one, const char* several)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

std::string JsonText(std::string_view text)
{
    std::string json = "\"";
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        if (length == 0) {
            json += "\\ufffd";
        } else if (IsControl(character)) {
            json += "\\u00";
            AppendHex(json, static_cast<unsigned char>(character.back()));
        } else {
            if (character == "\"" || character == "\\")
                json += '\\';
            json += character;
        }
        text.remove_prefix(character.size());
    }
    return json + '"';
}

bool IsTerminal()
{
    static const bool terminal = ::isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
    return terminal;
}

std::string Bold(std::string_view text)
{
    return Styled("1", text);
}

std::string Red(std::string_view text)
{
    return Styled("31", text);
}

std::string Yellow(std::string_view text)
{
    return Styled("33", text);
}

std::string Dim(std::string_view text)
{
    return Styled("2", text);
}

void Columns::Add(std::string label, std::string text)
{
    m_lines.push_back({std::move(label), std::move(text)});
}

void Columns::Print(std::size_t indentation) const
{
    std::size_t widest = 0;
    for (const Line& line : m_lines)
        widest = std::max(widest, Width(line.label));
    for (const Line& line : m_lines) {
        std::cout << std::string(indentation, ' ') << line.label
                  << std::string(widest - Width(line.label) + 2, ' ') << line.text << '\n';
    }
}

std::string Columns::Json(std::size_t indentation) const
{
    std::string json = "[";
    for (const Line& line : m_lines) {
        const auto trimmed = [](std::string_view text) {
            return text.substr(std::min(text.find_first_not_of(' '), text.size()));
        };
        json += &line == m_lines.data() ? "\n" : ",\n";
        json += std::string(indentation, ' ') + "{\"label\": " + JsonText(trimmed(line.label)) +
                ", \"text\": " + JsonText(trimmed(line.text)) + '}';
    }
    return json + (m_lines.empty() ? "]" : '\n' + std::string(indentation - 2, ' ') + ']');
}

} // namespace karmp::tool
