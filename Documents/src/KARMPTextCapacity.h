// The capacity of large texts.
#pragma once

#include <cstddef>
#include <string>

namespace karmp::documents {

/// Reserves capacity for `more` bytes behind a text; the text stays as it is when the allocation
/// fails. Growing step by step copies the text and touches new pages each time; reserved pages that
/// stay unused cost next to nothing.
void ReserveMore(std::string& bytes, std::size_t more);

} // namespace karmp::documents
