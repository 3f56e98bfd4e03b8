// Blocks of any payload with length and checksum that fit it, since a fuzzer does not find them.
#pragma once

#include "KARChecksum.h"
#include "KARMathStream.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

inline std::vector<std::uint8_t> SealedBlock(std::uint32_t mark,
                                             std::span<const std::uint8_t> payload)
{
    KARMathStream stream;
    stream.WriteUInt32(mark);
    stream.WriteUInt32(1);
    stream.WriteUInt64(payload.size());
    stream.WriteUInt32(kar::Checksum(payload));
    stream.WriteBytes(payload);
    return {stream.GetBytes().begin(), stream.GetBytes().end()};
}
