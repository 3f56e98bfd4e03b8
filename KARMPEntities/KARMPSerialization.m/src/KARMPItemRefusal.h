#pragma once

#include <string>

namespace karmp {

struct ItemInfo;
struct Value;

/// Why an item took no value, as a sentence.
std::string RefusalOf(const ItemInfo& item, const Value& value);

} // namespace karmp
