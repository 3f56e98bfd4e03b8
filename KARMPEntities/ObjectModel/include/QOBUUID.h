#pragma once

#include "KARPlatformExport.h"

#include <string>

/// Globally unique identifier of a class, kept as the text it was made from.
class KAR_API QOBUUID
{
public:
    /// Takes the GUID text as it stands, letter case included.
    explicit QOBUUID(const char* text);
    ~QOBUUID();

    /// The text as given.
    const std::string& getText() const noexcept { return m_text; }

    /// True when both texts name one GUID, whatever the case of their letters.
    friend KAR_API bool operator==(const QOBUUID& left, const QOBUUID& right) noexcept;

private:
    std::string m_text;
};
