// The statuses of the families' classes: what each step of writing and reading gives when it fails.
#pragma once

#include "KARMPContentItem.h"

namespace karmp {

/// Failures of items are reported and do not count.
inline constexpr ContentFrame LenientFrame{};

/// Failures of items that are written, and of required ones that are read, count.
inline constexpr ContentFrame CountingFrame{{.itemsCount = true}, {.itemsCount = true}};

/// A class that puts its element around its base's content and passes the base's status on.
inline constexpr ContentFrame PassingFrame{{.passesBase = true}, {.passesBase = true}};

} // namespace karmp
