// Room for large texts.
#pragma once

#include <cstddef>
#include <string>

namespace karmp::documents {

/// Makes room for `more` bytes behind a text at once, if there is memory for it: growing step by
/// step copies the text and touches fresh memory each time, and room that stays unused costs next
/// to nothing.
void MakeRoom(std::string& bytes, std::size_t more);

} // namespace karmp::documents
