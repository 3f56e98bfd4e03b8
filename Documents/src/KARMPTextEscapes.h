// The form of wide texts in XML, by which every text is read back as it was.
//
// A tab, a line feed and a carriage return are character references everywhere, a blank is one at
// either end of an element's text. What XML cannot hold (control characters, unpaired surrogates,
// U+FFFE, U+FFFF, values that are no character) is written \x{H} with its value in hexadecimal
// digits. So that a text which looks like that comes back as well, its backslash is written \x{5C};
// any other backslash is written as it is.
#pragma once

#include <string>
#include <string_view>

namespace karmp::documents {

/// What XML counts as blank.
constexpr std::string_view Blanks = " \t\r\n";

/// What a text is in XML: the value of an element or of an attribute.
enum class TextContext { Element, Attribute };

/// Appends a wide text as UTF-8 with escapes.
void AppendEscaped(std::string& bytes, std::wstring_view text, TextContext context);

/// Appends the wide text of raw UTF-8 between two marks of XML. Returns false when it holds an "&"
/// that begins no known reference; that one is kept as it is.
bool AppendDecoded(std::wstring& text, std::string_view raw, TextContext context);

/// Appends the characters of a CDATA section.
void AppendDecodedCData(std::wstring& text, std::string_view raw);

/// Appends a wide text as UTF-8; a unit that is no character becomes U+FFFD.
void AppendUtf8(std::string& bytes, std::wstring_view text);

/// The UTF-8 of a wide text for a message: in one line, shortened when it is long.
std::string Quoted(std::wstring_view text);

/// True when the text may be the name of an XML element or attribute.
bool IsXmlName(std::wstring_view text);

} // namespace karmp::documents
