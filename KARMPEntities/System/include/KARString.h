#pragma once

#include "KARPlatformExport.h"

#include <compare>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

/// Narrow text: a sequence of bytes without an encoding of its own. A null `const char*` counts as
/// the empty text everywhere.
class KARString
{
public:
    /// Makes an empty text.
    KARString() = default;
    /// Takes a copy of a null-terminated text.
    KARString(const char* text) : m_text(OrEmpty(text)) {}
    /// Takes a copy of `length` bytes, null bytes included.
    KARString(const char* text, std::size_t length) : m_text(OrEmpty(text), text ? length : 0) {}
    /// Takes a copy of a text, null bytes included.
    explicit KARString(std::string_view text) : m_text(text) {}
    /// Takes a text over.
    explicit KARString(std::string&& text) noexcept : m_text(std::move(text)) {}

    /// Replaces the content by a null-terminated text.
    KARString& operator=(const char* text)
    {
        m_text = std::string(OrEmpty(text));
        return *this;
    }

    /// Adds a text at the end.
    KARString& Append(const KARString& text)
    {
        m_text += text.m_text;
        return *this;
    }
    /// Adds a text at the end.
    KARString& operator+=(const KARString& text) { return Append(text); }

    /// Gives the part of `length` bytes that begins at byte `start`, counted from 0. What lies
    /// beyond the end is left out, so that the result may be shorter or empty.
    KARString SubString(std::size_t start, std::size_t length = std::string::npos) const
    {
        return start < m_text.size() ? KARString(m_text.substr(start, length)) : KARString();
    }

    /// Gives the number of bytes.
    std::size_t GetLengthInChar() const { return m_text.size(); }
    /// Tells whether there is no byte.
    bool IsEmpty() const { return m_text.empty(); }
    /// Gives the text, null-terminated; valid until the next change.
    const char* CastToCharPtr() const { return m_text.c_str(); }
    /// Gives the text, null-terminated; valid until the next change.
    operator const char*() const { return m_text.c_str(); }
    /// Gives the text as a standard string.
    const std::string& Text() const { return m_text; }

    friend KARString operator+(const KARString& left, const KARString& right)
    {
        return KARString(left.m_text + right.m_text);
    }
    friend KARString operator+(const KARString& left, const char* right)
    {
        return KARString(left.m_text + OrEmpty(right));
    }
    friend KARString operator+(const char* left, const KARString& right)
    {
        return KARString(OrEmpty(left) + right.m_text);
    }

    /// Equality is exact, byte for byte; the order is that of the bytes.
    friend bool operator==(const KARString& left, const KARString& right) = default;
    friend bool operator==(const KARString& left, const char* right)
    {
        return left.m_text == OrEmpty(right);
    }
    friend bool operator==(const KARString& left, std::string_view right)
    {
        return left.m_text == right;
    }
    friend std::strong_ordering operator<=>(const KARString& left, const KARString& right)
    {
        return left.m_text.compare(right.m_text) <=> 0;
    }
    friend std::strong_ordering operator<=>(const KARString& left, const char* right)
    {
        return left.m_text.compare(OrEmpty(right)) <=> 0;
    }

    /// Prints the text.
    friend std::ostream& operator<<(std::ostream& stream, const KARString& text)
    {
        return stream << text.m_text;
    }

private:
    static const char* OrEmpty(const char* text) { return text ? text : ""; }

    std::string m_text;
};
