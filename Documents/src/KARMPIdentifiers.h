#pragma once

#include "KARMPDeserializer.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace karmp::documents {

/// Maps the values of an attribute, "id" mostly, to numbers: equal ones have one number, from 0.
class Identifiers
{
public:
    /// The number of an element's identifier, a new one for a new identifier; empty when the
    /// element has no such attribute.
    std::optional<std::uint32_t> Of(const KARMPDeserializer& node,
                                    std::wstring_view attribute = L"id");
    /// True when an element that Of was called with carries the identifier.
    bool Know(std::wstring_view identifier) const;
    /// One more than the last number.
    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_numbers.size()); }

private:
    std::unordered_map<std::string_view, std::uint32_t> m_numbers;
    /// Identifiers whose form is not in the bytes of the document.
    std::deque<std::string> m_texts;
};

} // namespace karmp::documents
