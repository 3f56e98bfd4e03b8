// The identifiers of a document as numbers.
#pragma once

#include "KARMPDeserializer.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace karmp::documents {

/// Equal identifiers have one number; numbers count from 0.
class Identifiers
{
public:
    /// The number of an element's attribute "id", which gets one if it is new; nothing when there
    /// is none.
    std::optional<std::uint32_t> Of(const KARMPDeserializer& node);
    /// True when an element asked about carries the identifier.
    bool Know(std::wstring_view identifier) const;
    /// One more than the last number.
    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_numbers.size()); }

private:
    std::unordered_map<std::string_view, std::uint32_t> m_numbers;
    /// The texts that are not bytes of the document.
    std::deque<std::string> m_texts;
};

} // namespace karmp::documents
