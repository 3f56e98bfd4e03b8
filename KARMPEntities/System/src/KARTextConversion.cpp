#include "KARTextConversion.h"

#include <cstdint>

namespace kar {
namespace {

constexpr std::uint32_t Replacement = 0xFFFD;
constexpr std::uint32_t LastCharacter = 0x10FFFF;
constexpr bool PairedUnits = sizeof(wchar_t) == 2;

// Lengths 5 to 7 extend the scheme of UTF-8 to all values of 32 bits.
constexpr int MaxLength = 7;
constexpr std::uint64_t LowestOfLength[MaxLength + 1] = {0,       0,        0x80,      0x800,
                                                         0x10000, 0x200000, 0x4000000, 0x80000000};

void AppendCharacter(std::string& bytes, std::uint32_t character)
{
    if (character < LowestOfLength[2]) {
        bytes.push_back(static_cast<char>(character));
        return;
    }
    int length = 2;
    while (length < MaxLength && character >= LowestOfLength[length + 1])
        ++length;
    int shift = 6 * (length - 1);
    const std::uint64_t value = character;
    const unsigned int leadMark = (0xFF00U >> length) & 0xFFU;
    bytes.push_back(static_cast<char>(leadMark | (value >> shift)));
    while (shift > 0) {
        shift -= 6;
        bytes.push_back(static_cast<char>(0x80U | ((value >> shift) & 0x3FU)));
    }
}

std::uint32_t UnitOf(wchar_t character)
{
    const auto unit = static_cast<std::uint32_t>(character);
    return PairedUnits ? unit & 0xFFFFU : unit;
}

bool IsHighSurrogate(std::uint32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(std::uint32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

int LengthFromLead(unsigned char lead)
{
    int length = 0;
    while (length < 8 && (lead & (0x80U >> length)) != 0)
        ++length;
    return length;
}

// Takes one character off the front of `bytes`, or one byte that belongs to none.
std::uint32_t TakeCharacter(std::string_view& bytes)
{
    const auto lead = static_cast<unsigned char>(bytes.front());
    if (lead < 0x80) {
        bytes.remove_prefix(1);
        return lead;
    }
    const int length = LengthFromLead(lead);
    if (length < 2 || length > MaxLength || bytes.size() < static_cast<std::size_t>(length)) {
        bytes.remove_prefix(1);
        return Replacement;
    }
    std::uint64_t value = lead & (0x7FU >> length);
    for (int i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
        if ((byte & 0xC0U) != 0x80U) {
            bytes.remove_prefix(1);
            return Replacement;
        }
        value = (value << 6) | (byte & 0x3FU);
    }
    // A longer form than needed would make two byte sequences of one text.
    if (value < LowestOfLength[length] || value > UINT32_MAX) {
        bytes.remove_prefix(1);
        return Replacement;
    }
    bytes.remove_prefix(static_cast<std::size_t>(length));
    return static_cast<std::uint32_t>(value);
}

} // namespace

std::string ToUtf8(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t character = UnitOf(text[i]);
        if (PairedUnits && IsHighSurrogate(character) && i + 1 < text.size() &&
            IsLowSurrogate(UnitOf(text[i + 1]))) {
            ++i;
            character = 0x10000 + ((character - 0xD800) << 10) + (UnitOf(text[i]) - 0xDC00);
        }
        AppendCharacter(bytes, character);
    }
    return bytes;
}

std::wstring ToWide(std::string_view text)
{
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        std::uint32_t character = TakeCharacter(text);
        if (PairedUnits && character > LastCharacter)
            character = Replacement;
        if (PairedUnits && character > 0xFFFF) {
            character -= 0x10000;
            wide.push_back(static_cast<wchar_t>(0xD800 + (character >> 10)));
            character = 0xDC00 + (character & 0x3FFU);
        }
        wide.push_back(static_cast<wchar_t>(character));
    }
    return wide;
}

std::size_t WideLength(std::string_view text)
{
    std::size_t units = 0;
    while (!text.empty()) {
        const std::uint32_t character = TakeCharacter(text);
        units += PairedUnits && character > 0xFFFF && character <= LastCharacter ? 2 : 1;
    }
    return units;
}

} // namespace kar
