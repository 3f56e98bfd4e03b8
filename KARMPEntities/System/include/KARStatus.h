// Result of an operation: 32 bits on every platform, negative when the operation failed.
#pragma once

#include "KARPlatformExport.h"

#include <cstdint>

using KARStatus = std::int32_t;

/// The operation did what it says.
inline constexpr KARStatus KARSuccess = 0;
/// Nothing was done: already there, not found, no loader. Not a failure.
inline constexpr KARStatus KARUnchanged = 1;
/// The operation failed.
inline constexpr KARStatus KARFailure = static_cast<KARStatus>(0x80004005U);
/// The operation failed; the failure of the concrete kinematic constraints.
inline constexpr KARStatus KARUnexpected = static_cast<KARStatus>(0x8000FFFFU);
/// The operation is not implemented by the class.
inline constexpr KARStatus KARNotImplemented = static_cast<KARStatus>(0x80004001U);
/// An allocation failed.
inline constexpr KARStatus KAROutOfMemory = static_cast<KARStatus>(0x8007000EU);

/// True when the status is a failure.
constexpr bool KARFailed(KARStatus status)
{
    return status < 0;
}
