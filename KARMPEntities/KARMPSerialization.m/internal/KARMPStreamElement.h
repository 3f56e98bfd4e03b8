// Bytes in the element tree: as base-64 text, in an element or in an attribute.
#pragma once

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace karmp {

using StreamBytes = std::vector<unsigned char>;

/// Gives the text of bytes. Every failure is reported, more bytes than an int counts and an
/// allocation that fails among them.
KARMP_API bool StreamText(std::span<const unsigned char> bytes, std::wstring& text,
                          KARMPSourceLocation where);
/// Gives the bytes of a text. Anything but base-64, a text without bytes and an allocation that
/// fails are reported.
bool StreamFromText(std::wstring_view text, StreamBytes& bytes, KARMPSourceLocation where);

/// Adds an element with the text and the number of bytes as "length". Every failure is reported;
/// false, which counts, when no such element was added.
bool WriteStream(ElementWriter& parent, std::wstring_view name,
                 std::span<const unsigned char> bytes, KARMPSourceLocation where);
/// Reads such an element: `absent` says what a missing one is, and whether a text that is none
/// counts, which is reported in any case. A missing or wrong "length" is reported alone: the text
/// decides.
bool ReadStream(ElementReader& parent, std::wstring_view name, StreamBytes& bytes, Absent absent,
                KARMPSourceLocation where);

/// Reads an attribute of such a text, as required: every failure is reported and counts.
bool ReadStreamAttribute(ElementReader& element, std::wstring_view name, StreamBytes& bytes,
                         KARMPSourceLocation where = KARMPSourceLocation::current());

} // namespace karmp
