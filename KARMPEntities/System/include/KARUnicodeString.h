#pragma once

#include "KARPlatformExport.h"

#include <compare>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

/// Text in any script, kept as UTF-8 bytes, that converts to and from wide text and numbers. Narrow
/// text is taken over byte for byte and read as UTF-8. Nothing here depends on the process's
/// locale. A null `const char*` or `const wchar_t*` counts as the empty text.
class KAR_API KARUnicodeString
{
public:
    /// Makes an empty text.
    KARUnicodeString() = default;
    /// Takes a copy of a null-terminated text.
    KARUnicodeString(const char* text) : m_text(OrEmpty(text)) {}
    /// Takes a copy of `length` bytes, null bytes included.
    KARUnicodeString(const char* text, std::size_t length)
        : m_text(OrEmpty(text), text ? length : 0)
    {}
    /// Takes a copy of a text, null bytes included.
    explicit KARUnicodeString(std::string_view text) : m_text(text) {}
    /// Takes a text over.
    explicit KARUnicodeString(std::string&& text) noexcept : m_text(std::move(text)) {}

    /// Replaces the content by a null-terminated text.
    KARUnicodeString& operator=(const char* text)
    {
        m_text = std::string(OrEmpty(text));
        return *this;
    }

    /// Adds a text at the end.
    KARUnicodeString& Append(const KARUnicodeString& text)
    {
        m_text += text.m_text;
        return *this;
    }
    /// Adds a text at the end.
    KARUnicodeString& operator+=(const KARUnicodeString& text) { return Append(text); }

    /// Replaces the content by a number, printed by a format with one conversion out of d, i, u, x,
    /// X, o, with flags, width and precision in digits, and text around it ("%%" for a percent
    /// sign). Returns 1; with any other format 0, and the content stays.
    int BuildFromNum(int number, const char* format = "%d");
    /// The same for an unsigned number.
    int BuildFromNum(unsigned int number, const char* format = "%u");
    /// The same for a double, with one conversion out of e, E, f, F, g, G; "l" may stand before it
    /// and the flag "#" may not. The decimal mark is always the point.
    int BuildFromNum(double number, const char* format = "%g");
    /// Replaces the content by a null-terminated wide text. Returns 1, with a null pointer 0.
    int BuildFromWChar(const wchar_t* text);
    /// Replaces the content by a wide text, null characters included. Returns 1.
    int BuildFromWChar(std::wstring_view text);

    /// Reads an int from the beginning of the text by the format "%d", as kar::ScanInt does.
    /// Returns the number of items read, 1 or 0; 0 also with another format or a null pointer.
    int ConvertToNum(int* number, const char* format = "%d") const;
    /// Reads a double from the beginning of the text by the format "%le" (or f, g in place of e),
    /// as kar::ScanDouble does. Returns the number of items read, 1 or 0; 0 also with another
    /// format or a null pointer.
    int ConvertToNum(double* number, const char* format = "%le") const;
    /// Writes the wide text and its terminator into a buffer of GetLengthInChar() + 1 units, and
    /// returns the units written without the terminator. Does nothing with a null pointer.
    std::size_t ConvertToWChar(wchar_t* buffer) const;
    /// Gives the wide text.
    std::wstring ConvertToWString() const;

    /// Gives the length of the wide text in wchar_t units, counted at each call.
    std::size_t GetLengthInChar() const;
    /// Gives the number of bytes of the narrow text.
    std::size_t GetLengthInByte() const { return m_text.size(); }
    /// Tells whether there is no character.
    bool IsEmpty() const { return m_text.empty(); }
    /// Gives the narrow text, null-terminated; valid until the next change.
    const char* ConvertToChar() const { return m_text.c_str(); }
    /// Gives the narrow text, null-terminated; valid until the next change.
    const char* CastToCharPtr() const { return m_text.c_str(); }
    /// Gives the narrow text, null-terminated; valid until the next change.
    operator const char*() const { return m_text.c_str(); }
    /// Gives the narrow text as a standard string.
    const std::string& Text() const { return m_text; }

    /// Replaces every occurrence of a text, from left to right, without looking again at what was
    /// put in. An empty search text changes nothing. Returns the number of replacements.
    int ReplaceAll(const KARUnicodeString& search, const KARUnicodeString& replacement);

    friend KARUnicodeString operator+(const KARUnicodeString& left, const KARUnicodeString& right)
    {
        return KARUnicodeString(left.m_text + right.m_text);
    }
    friend KARUnicodeString operator+(const KARUnicodeString& left, const char* right)
    {
        return KARUnicodeString(left.m_text + OrEmpty(right));
    }
    friend KARUnicodeString operator+(const char* left, const KARUnicodeString& right)
    {
        return KARUnicodeString(OrEmpty(left) + right.m_text);
    }

    /// Equality is exact, byte for byte; the order is that of the bytes.
    friend bool operator==(const KARUnicodeString& left, const KARUnicodeString& right) = default;
    friend bool operator==(const KARUnicodeString& left, const char* right)
    {
        return left.m_text == OrEmpty(right);
    }
    friend bool operator==(const KARUnicodeString& left, std::string_view right)
    {
        return left.m_text == right;
    }
    friend std::strong_ordering operator<=>(const KARUnicodeString& left,
                                            const KARUnicodeString& right)
    {
        return left.m_text.compare(right.m_text) <=> 0;
    }
    friend std::strong_ordering operator<=>(const KARUnicodeString& left, const char* right)
    {
        return left.m_text.compare(OrEmpty(right)) <=> 0;
    }

    /// Prints the narrow text.
    friend std::ostream& operator<<(std::ostream& stream, const KARUnicodeString& text)
    {
        return stream << text.m_text;
    }

private:
    static const char* OrEmpty(const char* text) { return text ? text : ""; }

    std::string m_text;
};
