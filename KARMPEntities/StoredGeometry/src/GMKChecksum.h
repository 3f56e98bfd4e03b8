// The checksum of stored blocks: CRC-32 of the IEEE polynomial, low bit first.
#pragma once

#include <cstdint>
#include <span>

namespace kar {

std::uint32_t Checksum(std::span<const std::uint8_t> bytes);

} // namespace kar
