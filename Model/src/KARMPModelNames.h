#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::model {

/// The name that differs least from a text, the text itself where it is among them; empty when none
/// is near.
std::string NearestName(std::string_view text, const std::vector<std::string>& names);

/// "two" to "nine", other numbers in digits.
std::string NumberWord(std::size_t number);

} // namespace karmp::model
