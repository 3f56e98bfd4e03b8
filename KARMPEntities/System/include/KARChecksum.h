// The checksum of stored blocks.
#pragma once

#include "KARPlatformExport.h"

#include <cstdint>
#include <span>

namespace kar {

/// CRC-32 of the IEEE polynomial, low bit first.
KAR_API std::uint32_t Checksum(std::span<const std::uint8_t> bytes);

} // namespace kar
