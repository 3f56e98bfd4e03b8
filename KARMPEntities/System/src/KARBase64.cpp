#include "KARBase64.h"

#include <array>

namespace kar {
namespace {

constexpr char Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char Padding = '=';

// Above every value of six bits, so that one test of collected values finds it.
constexpr unsigned int NoValue = 0x80;

constexpr std::array<unsigned char, 256> MakeValues()
{
    std::array<unsigned char, 256> values = {};
    for (unsigned char& value : values)
        value = NoValue;
    for (unsigned char i = 0; i < 64; ++i)
        values[static_cast<unsigned char>(Alphabet[i])] = i;
    return values;
}

constexpr std::array<unsigned char, 256> Values = MakeValues();

unsigned int ValueOf(char character)
{
    return Values[static_cast<unsigned char>(character)];
}

unsigned int ValueOf(wchar_t character)
{
    const auto code = static_cast<std::uint32_t>(character);
    return code < Values.size() ? Values[code] : NoValue;
}

template <typename Char>
void Encode(std::span<const unsigned char> bytes, Char* text)
{
    const auto put = [&text](unsigned int bits) {
        *text++ = static_cast<Char>(Alphabet[bits & 0x3FU]);
    };
    const std::size_t whole = bytes.size() / 3 * 3;
    for (std::size_t i = 0; i < whole; i += 3) {
        const unsigned int bits =
            (unsigned{bytes[i]} << 16) | (unsigned{bytes[i + 1]} << 8) | bytes[i + 2];
        put(bits >> 18);
        put(bits >> 12);
        put(bits >> 6);
        put(bits);
    }
    const std::size_t rest = bytes.size() - whole;
    if (rest == 0)
        return;
    const unsigned int second = rest == 2 ? unsigned{bytes[whole + 1]} : 0U;
    const unsigned int bits = (unsigned{bytes[whole]} << 16) | (second << 8);
    put(bits >> 18);
    put(bits >> 12);
    if (rest == 2)
        put(bits >> 6);
    else
        *text++ = static_cast<Char>(Padding);
    *text++ = static_cast<Char>(Padding);
}

template <typename Char>
bool DecodedSize(std::basic_string_view<Char> text, std::size_t& size)
{
    size = 0;
    if (text.size() % 4 != 0)
        return false;
    const auto isPadding = [&](std::size_t fromEnd) {
        return text[text.size() - fromEnd] == static_cast<Char>(Padding);
    };
    size = text.size() / 4 * 3;
    if (!text.empty() && isPadding(1))
        size -= isPadding(2) ? 2 : 1;
    return true;
}

// Decodes the last group, which holds one or two bytes and must have no other bit set.
template <typename Char>
bool DecodeRest(const Char* group, std::size_t rest, unsigned char* bytes)
{
    const unsigned int a = ValueOf(group[0]);
    const unsigned int b = ValueOf(group[1]);
    const unsigned int c = rest == 2 ? ValueOf(group[2]) : 0U;
    const unsigned int bits = (a << 18) | (b << 12) | (c << 6);
    const unsigned int unused = rest == 2 ? 0xFFU : 0xFFFFU;
    if (((a | b | c) & NoValue) != 0 || (bits & unused) != 0)
        return false;
    bytes[0] = static_cast<unsigned char>(bits >> 16);
    if (rest == 2)
        bytes[1] = static_cast<unsigned char>((bits >> 8) & 0xFFU);
    return true;
}

// `size` is what DecodedSize has told of the text.
template <typename Char>
bool Decode(std::basic_string_view<Char> text, std::size_t size, unsigned char* bytes)
{
    unsigned int seen = 0;
    const Char* group = text.data();
    for (std::size_t i = 0; i < size / 3; ++i, group += 4, bytes += 3) {
        const unsigned int a = ValueOf(group[0]);
        const unsigned int b = ValueOf(group[1]);
        const unsigned int c = ValueOf(group[2]);
        const unsigned int d = ValueOf(group[3]);
        seen |= a | b | c | d;
        bytes[0] = static_cast<unsigned char>(((a << 2) | (b >> 4)) & 0xFFU);
        bytes[1] = static_cast<unsigned char>(((b << 4) | (c >> 2)) & 0xFFU);
        bytes[2] = static_cast<unsigned char>(((c << 6) | d) & 0xFFU);
    }
    if ((seen & NoValue) != 0)
        return false;
    return size % 3 == 0 || DecodeRest(group, size % 3, bytes);
}

template <typename Char>
bool DecodeToVector(std::basic_string_view<Char> text, std::vector<unsigned char>& bytes)
{
    bytes.clear();
    std::size_t size = 0;
    if (!DecodedSize(text, size))
        return false;
    bytes.resize(size);
    if (Decode(text, size, bytes.data()))
        return true;
    bytes.clear();
    return false;
}

} // namespace

std::string Base64Encode(std::span<const unsigned char> bytes)
{
    std::string text(Base64EncodedSize(bytes.size()), '\0');
    Encode(bytes, text.data());
    return text;
}

std::wstring Base64EncodeWide(std::span<const unsigned char> bytes)
{
    std::wstring text(Base64EncodedSize(bytes.size()), L'\0');
    Encode(bytes, text.data());
    return text;
}

void Base64Encode(std::span<const unsigned char> bytes, char* text)
{
    Encode(bytes, text);
}

bool Base64DecodedSize(std::string_view text, std::size_t& size)
{
    return DecodedSize(text, size);
}

bool Base64Decode(std::string_view text, std::vector<unsigned char>& bytes)
{
    return DecodeToVector(text, bytes);
}

bool Base64Decode(std::wstring_view text, std::vector<unsigned char>& bytes)
{
    return DecodeToVector(text, bytes);
}

bool Base64Decode(std::string_view text, unsigned char* bytes)
{
    std::size_t size = 0;
    return DecodedSize(text, size) && Decode(text, size, bytes);
}

} // namespace kar
