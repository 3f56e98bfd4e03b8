// The word that was probably meant.
#pragma once

#include "KARMPExport.h"

#include <string_view>
#include <vector>

namespace karmp {

/// The candidate that differs least from a word by insertions, deletions, replacements, exchanges
/// of neighbours, and least of all by case; empty when none is near: a change of every third letter
/// at most, or of one.
KARMP_API std::wstring_view NearestWord(std::wstring_view word,
                                        const std::vector<std::wstring_view>& candidates);

} // namespace karmp
