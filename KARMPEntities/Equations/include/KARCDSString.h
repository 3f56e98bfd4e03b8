#pragma once

#include "KARPlatformExport.h"

#include <string>
#include <string_view>
#include <utility>

/// Narrow string that the equation library takes and gives: any bytes, in the caller's encoding.
class KARCDSString
{
public:
    KARCDSString() = default;

    /// Takes over a terminated text; null gives an empty string.
    KARCDSString(const char* text) : m_text(text != nullptr ? text : "") {}

    /// Takes over a text that may hold any bytes, zeros included.
    KARCDSString(std::string text) : m_text(std::move(text)) {}

    /// Takes over a text that may hold any bytes, zeros included.
    explicit KARCDSString(std::string_view text) : m_text(text) {}

    /// The text, terminated; valid until the string changes.
    const char* CastToCharPtr() const { return m_text.c_str(); }

    /// Number of bytes, without the terminator.
    int GetLengthInChar() const { return static_cast<int>(m_text.size()); }

    /// True when there is no text.
    bool IsEmpty() const { return m_text.empty(); }

    /// The text with its length; valid until the string changes.
    operator std::string_view() const { return m_text; }

    /// Compares characters; nothing is equal to a null text.
    bool operator==(const KARCDSString& other) const = default;
    bool operator==(const char* other) const { return other != nullptr && m_text == other; }

private:
    std::string m_text;
};
