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

} // namespace

std::string Printable(std::string_view text)
{
    std::string printable;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // C1 controls are two bytes in UTF-8, C2 80 to C2 9F.
        const bool second =
            byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (byte < 0x20 || byte == 0x7F) {
            printable += "\\x";
            AppendHex(printable, byte);
        } else if (second) {
            printable += "\\x";
            AppendHex(printable, static_cast<unsigned char>(text[++i]));
        } else {
            printable += text[i];
        }
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

std::string JsonText(std::string_view text)
{
    std::string json = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            json += '\\';
            json += character;
        } else if (byte < 0x20) {
            json += "\\u00";
            AppendHex(json, byte);
        } else {
            json += character;
        }
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

Progress::Progress(std::string_view activity) : m_shown(::isatty(STDERR_FILENO) != 0)
{
    if (m_shown)
        std::cerr << activity << " ..." << std::flush;
}

Progress::~Progress()
{
    if (m_shown)
        std::cerr << "\r\033[K" << std::flush;
}

} // namespace karmp::tool
