#pragma once

#include "KARMPDocumentsExport.h"

#include <cstddef>
#include <limits>

namespace karmp::documents {

/// Limits of one save, load or check, so that a damaged or hostile document gives a message instead
/// of exhausting memory. Exceeding one is an error, and nothing is saved or read.
struct Limits
{
    /// Bytes of the text, at most 4 GiB less one.
    std::size_t bytes = std::numeric_limits<unsigned int>::max();
    /// Elements above an element, itself included.
    std::size_t depth = 10'000;
    /// Bytes of the name of an element or attribute.
    std::size_t nameLength = 1'000;
    /// Elements and attributes.
    std::size_t nodes = 1'000'000'000;
    /// Messages of one operation; further ones are dropped and one message says so.
    std::size_t diagnostics = 1'000;

    /// Limits for texts of unknown origin, as fuzzers make them.
    static constexpr Limits Tight() { return {1U << 20U, 64, 128, 50'000, 100}; }
};

} // namespace karmp::documents
