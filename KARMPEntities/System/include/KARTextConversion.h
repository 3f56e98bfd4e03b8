// Conversions between wide text, UTF-8 and numbers that do not depend on the process's locale.
#pragma once

#include "KARPlatformExport.h"

#include <string>
#include <string_view>

namespace kar {

/// Which characters separate the whole digits of a number from its fraction.
enum class DecimalMark {
    Point,       ///< only the point
    PointOrComma ///< the comma counts as a point
};

/// Gives the UTF-8 bytes of a wide text; ToWide gives every text back. Lone surrogates and values
/// above the last Unicode character are encoded by the same scheme, except that U+DC80 to U+DCFF
/// are the bytes 0x80 to 0xFF. Where such a byte would begin a character with the bytes behind it,
/// it is encoded as its code point after all, in three bytes.
KAR_API std::string ToUtf8(std::wstring_view text);

/// Gives the wide text of UTF-8 bytes. Each byte that belongs to no character becomes U+DC00 plus
/// its value, so that ToUtf8 gives every sequence of bytes back.
KAR_API std::wstring ToWide(std::string_view text);

/// Gives the number of wchar_t units of ToWide, without making the text.
KAR_API std::size_t WideLength(std::string_view text);

/// Reads a double from the longest fitting prefix of a text, as a scan by "%le" does in the C
/// locale: leading blanks skipped, signs, hexadecimal numbers, "inf" and "nan" taken, the rest of
/// the text ignored. Too large a number gives an infinity, too small a one zero. Returns the number
/// of items read, 1 or 0; with 0 the value is left alone.
KAR_API int ScanDouble(std::wstring_view text, double& value,
                       DecimalMark mark = DecimalMark::Point);
/// The same from narrow text.
KAR_API int ScanDouble(std::string_view text, double& value, DecimalMark mark = DecimalMark::Point);

/// Reads a decimal int from the longest fitting prefix of a text, as a scan by "%d" does: leading
/// blanks skipped, a sign taken, the rest ignored. Returns the number of items read, 1 or 0; a
/// number that does not fit an int counts as none. With 0 the value is left alone.
KAR_API int ScanInt(std::wstring_view text, int& value);
/// The same from narrow text.
KAR_API int ScanInt(std::string_view text, int& value);

/// True when all of a text, but blanks around it, is one decimal number that a double can hold, an
/// infinity or a NaN. Hexadecimal numbers, which the scan takes, and too large ones are none.
KAR_API bool IsNumber(std::wstring_view text, DecimalMark mark = DecimalMark::Point);
/// True when all of a text, but blanks around it, is one decimal int.
KAR_API bool IsInteger(std::wstring_view text);

} // namespace kar
