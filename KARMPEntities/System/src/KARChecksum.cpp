#include "KARChecksum.h"

#include <array>

namespace kar {

namespace {

constexpr std::array<std::uint32_t, 256> MakeTable()
{
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> 1) ^ ((value & 1U) != 0 ? 0xEDB88320U : 0U);
        table[i] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> Table = MakeTable();

} // namespace

std::uint32_t Checksum(std::span<const std::uint8_t> bytes)
{
    std::uint32_t sum = 0xFFFFFFFFU;
    for (const std::uint8_t byte : bytes)
        sum = (sum >> 8) ^ Table[(sum ^ byte) & 0xFFU];
    return ~sum;
}

} // namespace kar
