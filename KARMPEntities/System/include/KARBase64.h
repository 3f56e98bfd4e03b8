// Base-64 after RFC 4648: the standard alphabet, with padding, without line breaks.
#pragma once

#include "KARPlatformExport.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kar {

/// Largest number of bytes whose text has a length that std::size_t holds.
inline constexpr std::size_t Base64MaxBytes = SIZE_MAX / 4 * 3 - 3;

/// Gives the length of the text of so many bytes, at most Base64MaxBytes.
constexpr std::size_t Base64EncodedSize(std::size_t bytes)
{
    return (bytes / 3 + (bytes % 3 != 0 ? 1 : 0)) * 4;
}

/// Gives the text of bytes.
KAR_API std::string Base64Encode(std::span<const unsigned char> bytes);
/// Gives the wide text of bytes.
KAR_API std::wstring Base64EncodeWide(std::span<const unsigned char> bytes);
/// Writes the text of bytes, without terminator, into a buffer of Base64EncodedSize characters.
KAR_API void Base64Encode(std::span<const unsigned char> bytes, char* text);

/// Tells in `size` how many bytes a text stands for, judged by its length and padding. False when
/// the length is no multiple of 4.
KAR_API bool Base64DecodedSize(std::string_view text, std::size_t& size);

/// Replaces `bytes` by what a text stands for. False, with `bytes` empty, for anything but strict
/// base-64: a character outside the alphabet, blanks included, a length that is no multiple of 4,
/// padding that is missing or misplaced, or left-over bits that are not 0.
KAR_API bool Base64Decode(std::string_view text, std::vector<unsigned char>& bytes);
/// The same from wide text.
KAR_API bool Base64Decode(std::wstring_view text, std::vector<unsigned char>& bytes);
/// Writes the bytes of a text into a buffer of the size that Base64DecodedSize tells. False, with
/// the buffer's content undefined, when the text is not strict base-64.
KAR_API bool Base64Decode(std::string_view text, unsigned char* bytes);

} // namespace kar
