#include "KARTextConversion.h"

#include <cstdint>

namespace kar {
namespace {

// A byte that belongs to no character is the unit ByteUnits + byte, U+DC80 to U+DCFF.
constexpr std::uint32_t ByteUnits = 0xDC00;
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

bool IsByteUnit(std::uint32_t unit)
{
    return unit >= ByteUnits + 0x80 && unit <= ByteUnits + 0xFF;
}

bool IsTrail(unsigned char byte)
{
    return (byte & 0xC0U) == 0x80U;
}

int LengthFromLead(unsigned char lead)
{
    int length = 0;
    while (length < 8 && (lead & (0x80U >> length)) != 0)
        ++length;
    return length;
}

struct Character
{
    std::uint32_t value = 0;
    std::size_t length = 0; // in bytes, 0 for no character
};

// What a byte of 0x80 or above and the bytes behind it encode by the scheme alone.
Character Decode(unsigned char lead, std::string_view behind)
{
    const int length = LengthFromLead(lead);
    if (length < 2 || length > MaxLength || behind.size() + 1 < static_cast<std::size_t>(length))
        return {};
    std::uint64_t value = lead & (0x7FU >> length);
    for (int i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(behind[static_cast<std::size_t>(i) - 1]);
        if (!IsTrail(byte))
            return {};
        value = (value << 6) | (byte & 0x3FU);
    }
    // A longer form than needed would make two byte sequences of one text.
    if (value < LowestOfLength[length] || value > (PairedUnits ? LastCharacter : UINT32_MAX))
        return {};
    return {static_cast<std::uint32_t>(value), static_cast<std::size_t>(length)};
}

// The character that a byte of 0x80 or above begins. The unit of a byte is encoded only where the
// byte itself would begin a character with what follows; anywhere else its encoding is three bytes
// that belong to no character. So no two texts have the same bytes, and no two sequences of bytes
// have the same text.
Character FirstCharacter(unsigned char lead, std::string_view behind)
{
    const Character first = Decode(lead, behind);
    Character last = first;
    while (last.length > 0 && IsByteUnit(last.value)) {
        behind.remove_prefix(last.length - 1);
        last = Decode(static_cast<unsigned char>(last.value - ByteUnits), behind);
    }
    return last.length > 0 ? first : Character();
}

// Takes one character off the front of `bytes`, or one byte that belongs to none.
std::uint32_t TakeCharacter(std::string_view& bytes)
{
    const auto lead = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    if (lead < 0x80)
        return lead;
    const Character character = FirstCharacter(lead, bytes);
    if (character.length == 0)
        return ByteUnits + lead;
    bytes.remove_prefix(character.length - 1);
    return character.value;
}

// The bytes that the units at the front of a text stand for, as far as they may end a character.
std::string LeadingTrails(std::wstring_view text)
{
    std::string trails;
    for (const wchar_t unit : text) {
        const std::uint32_t byte = UnitOf(unit) - ByteUnits;
        if (!IsByteUnit(UnitOf(unit)) || !IsTrail(static_cast<unsigned char>(byte)))
            break;
        trails.push_back(static_cast<char>(byte));
    }
    return trails;
}

// Appends the byte that the first unit of a text stands for, or the unit's encoding where that byte
// would become part of a character.
void AppendByte(std::string& bytes, std::wstring_view text)
{
    const std::uint32_t unit = UnitOf(text.front());
    const auto byte = static_cast<unsigned char>(unit - ByteUnits);
    if (!IsTrail(byte) && FirstCharacter(byte, LeadingTrails(text.substr(1))).length > 0)
        AppendCharacter(bytes, unit);
    else
        bytes.push_back(static_cast<char>(byte));
}

} // namespace

std::string ToUtf8(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t character = UnitOf(text[i]);
        if (IsByteUnit(character)) {
            AppendByte(bytes, text.substr(i));
            continue;
        }
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
        units += PairedUnits && character > 0xFFFF ? 2 : 1;
    }
    return units;
}

} // namespace kar
