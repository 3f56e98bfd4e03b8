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

/// A geometric constraint: a failing setter counts too, and a failure among the options is reported
/// once more at the end.
inline constexpr ContentFrame ConstraintFrame{
    {.itemsCount = true, .reportedAgain = true},
    {.itemsCount = true, .settersCount = true, .reportedAgain = true}};

/// A constraint that stands for a joint: whatever fails, the status is KARUnexpected.
inline constexpr ContentFrame KinematicFrame{{.nullNode = KARUnexpected,
                                              .missingElement = KARUnexpected,
                                              .failedBase = KARUnexpected,
                                              .counted = KARUnexpected,
                                              .itemsCount = true},
                                             {.nullNode = KARUnexpected,
                                              .missingElement = KARUnexpected,
                                              .failedBase = KARUnexpected,
                                              .counted = KARUnexpected,
                                              .itemsCount = true}};

} // namespace karmp
